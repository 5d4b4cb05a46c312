// Sums, means, order statistics, moments, histograms and peaks.
#include <cmath>
#include <cstring>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

DSP_TYPED_SUITE(Stats);

TYPED_TEST(Stats, SumsMeansAndTheLargeValue) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large, inf = std::numeric_limits<T>::infinity();
    Rec<T> x({1, 2, 3, 6}), z({1, -1, 2, -2, 6, 0}, true), r, e, ec({}, true);
    EXPECT_OK(DSP(s_sum)(&x, &r), *r, {12});
    EXPECT_OK(DSP(s_mean)(&x, &r), *r, {3});
    EXPECT_OK(DSP(s_magsq_sum)(&x, &r), *r, {50});
    EXPECT_OK(DSP(s_sum)(&z, &r), *r, {9, -3});
    EXPECT_OK(DSP(s_mean)(&z, &z), *z, {3, -1});  // out is the input
    // An empty record gives 0 (its excess -3, below).
    for (auto fn : {DSP(s_sum), DSP(s_mean), DSP(s_magsq_sum), DSP(s_rms), DSP(s_median),
                    DSP(s_max), DSP(s_min), DSP(s_gmean), DSP(s_hmean), DSP(s_skew), DSP(s_pop_var),
                    DSP(s_samp_var), DSP(s_pop_stddev), DSP(s_samp_stddev)})
        EXPECT_OK(fn(&e, &r), *r, {0});
    EXPECT_OK(DSP(s_mean)(&ec, &r), *r, {0, 0});
    // A caller's array is read, never written.
    T v[2] = {3, 4};
    Rec<T> w;
    *w = wrap(v, 1, true);
    EXPECT_OK(DSP(s_rms)(&w, &w), *w, {5});
    EXPECT_TRUE(v[0] == 3 && v[1] == 4);
    // A square beyond the large value L adds L, and so does an infinity; NaN
    // passes through.
    Rec<T> g({2 * L, T(0)}), gz({3, 4, T(1), -2 * L}, true), gi({-inf, 1, L});
    Rec<T> q({0, std::numeric_limits<T>::quiet_NaN()}, true);
    EXPECT_OK(DSP(s_magsq_sum)(&g, &r), *r, {L});
    EXPECT_OK(DSP(s_rms)(&g, &r), *r, {T(std::sqrt(double(L / 2)))});
    EXPECT_OK(DSP(s_magsq_sum)(&gz, &r), *r, {L + T(25)});
    EXPECT_OK(DSP(s_magsq_sum)(&gi, &r), *r, {L + T(1) + L * L});
    ASSERT_EQ(DSP(s_rms)(&q, &r), 0);
    EXPECT_TRUE(std::isnan(r->data[0]));
}

// Sums run over blocks of 2048 samples added to a running total: the result
// equals the blocks summed one by one (every other one in place) and added
// in order.
TYPED_TEST(Stats, BlockAccumulation) {
    using T = TypeParam;
    for (bool cplx : {false, true}) {
        const size_t n = 2048 * 3 + 77, width = cplx ? 2 : 1;
        const auto v = uniform<T>(n * width, 11, -1e3, 1e4);
        const auto parts = blockwise<T>(v, cplx, {2048}, DSP(s_sum));
        std::vector<T> total(width, T(0));
        for (size_t i = 0; i < parts.size(); ++i) total[i % width] += parts[i];
        Rec<T> all(v, cplx), r;
        EXPECT_OK(DSP(s_sum)(&all, &r), *r, total);
    }
}

TYPED_TEST(Stats, MedianMaxMinAndMeans) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    const double tol = 4 * ulps<T>();
    Rec<T> x({3, 1, 2, 4}), r;
    EXPECT_OK(DSP(s_median)(&x, &r), *r, {2.5});
    expect_values<T>(*x, {3, 1, 2, 4});  // the input is not sorted
    EXPECT_OK(DSP(s_median)(&x, &x), *x, {2.5});
    // Complex points sort by magnitude: (0,1) (2,0) (3,4).
    Rec<T> z({3, 4, 0, 1, 2, 0}, true), m({1, 3, 3, 2});
    EXPECT_OK(DSP(s_median)(&z, &r), *r, {2, 0});
    EXPECT_OK(DSP(s_max)(&m, &r), *r, {3});
    EXPECT_OK(DSP(s_min)(&m, &r), *r, {1});
    // The first of equal magnitudes is returned whole.
    Rec<T> c({0, 1, 3, -4, -5, 0, 1, 1}, true);
    EXPECT_OK(DSP(s_max)(&c, &r), *r, {3, -4});
    EXPECT_OK(DSP(s_min)(&c, &c), *c, {0, 1});
    // Beyond [-L, L] a sample compares as L, whatever its sign.
    Rec<T> g({-2 * L, 5, 7});
    EXPECT_OK(DSP(s_max)(&g, &r), *r, {-2 * L});
    EXPECT_OK(DSP(s_min)(&g, &r), *r, {5});
    Rec<T> p({2, 8}), neg({-2, 8}), tiny({T(1e-20), T(1e-20)}), h({1, 2, 4}), hz({1, 0, 4});
    EXPECT_OK(DSP(s_gmean)(&p, &r), *r, {4}, tol);
    EXPECT_OK(DSP(s_gmean)(&neg, &r), *r, {0});
    // Product 1e-40: below normal in float.
    EXPECT_OK(DSP(s_gmean)(&tiny, &r), *r, {pick<T>(0.0f, 1e-20)}, 1e-33);
    EXPECT_OK(DSP(s_hmean)(&h, &r), *r, {T(3 / 1.75)}, tol);
    EXPECT_OK(DSP(s_hmean)(&hz, &r), *r, {0});
    // Complex: the principal square root of the product -1 of (0,1)(0,1) is
    // i; the reciprocals of (1,1) and (1,-1) sum to 1, so their harmonic
    // mean is 2.
    Rec<T> ii({0, 1, 0, 1}, true), hh({1, 1, 1, -1}, true);
    EXPECT_OK(DSP(s_gmean)(&ii, &r), *r, {0, 1}, tol);
    EXPECT_OK(DSP(s_hmean)(&hh, &r), *r, {2, 0}, tol);
}

TYPED_TEST(Stats, MomentsDegenerateAndFailing) {
    using T = TypeParam;
    Rec<T> e, r({9}), z({1, 2, 3, 4}, true), keep({7}), c({5, 5, 5}), v({0, 0, 2, 2}, true);
    EXPECT_OK(DSP(s_excess)(&e, &r), *r, {-3});
    EXPECT_EQ(DSP(s_skew)(&z, &keep), -1);
    EXPECT_EQ(DSP(s_excess)(&z, &keep), -1);
    expect_values<T>(*keep, {7});
    // A constant record: no spread, so the excess is L.
    EXPECT_OK(DSP(s_excess)(&c, &r), *r, {dsp::precision<T>::large});
    // Complex variance: (S2re + S2im)/n - mean parts squared, in both
    // families: points 0, 2+2i -> 2 (population), 4 (sample).
    EXPECT_OK(DSP(s_pop_var)(&v, &r), *r, {2});
    EXPECT_OK(DSP(s_samp_var)(&v, &r), *r, {4});
    EXPECT_OK(DSP(s_samp_stddev)(&v, &v), *v, {2});
}

// The single family computes the variance of a real record, and its skew,
// from the guard constants: the result depends only on the length.
TEST(StatsSingle, VarianceAndSkewFromTheGuardConstants) {
    const float L = 999999986991104.0f, L2 = 9.99999944e29f;
    for (int n : {1, 2, 5, 100, 2049}) {
        SCOPED_TRACE(n);
        const size_t m = size_t(n);
        Rec<float> x(uniform<float>(m, 1, -3, 5)), y(uniform<float>(m, 2, 100, 200)), rx, ry;
        Rec<float> c1(std::vector<float>(m, L)), c2(std::vector<float>(m, L2)), s1, s2;
        for (auto fn : {dspfs_pop_var, dspfs_samp_var, dspfs_skew}) {
            ASSERT_EQ(fn(&x, &rx), 0);
            ASSERT_EQ(fn(&y, &ry), 0);
            EXPECT_EQ(std::memcmp(rx->data, ry->data, sizeof(float)), 0);
        }
        // The same formula over n copies of the constants, summed in blocks.
        ASSERT_TRUE(dspfs_sum(&c1, &s1) == 0 && dspfs_sum(&c2, &s2) == 0);
        const float m1 = s1->data[0] / float(n), var = s2->data[0] / float(n) - m1 * m1;
        ASSERT_EQ(dspfs_pop_var(&x, &rx), 0);
        EXPECT_EQ(rx->data[0], var);
        // The cube's constant overflows: L when the variance is 0, else NaN.
        ASSERT_EQ(dspfs_skew(&x, &rx), 0);
        EXPECT_TRUE(var == 0.0f ? rx->data[0] == L : std::isnan(rx->data[0])) << rx->data[0];
    }
    // The excess uses the true deviations: that of {1, 2, 3, 4} is -1.36;
    // the double family's variance of it is the true 1.25.
    Rec<float> k({1, 2, 3, 4}), r;
    Rec<double> kd({1, 2, 3, 4}), rd;
    ASSERT_TRUE(dspfs_excess(&k, &r) == 0 && dsps_pop_var(&kd, &rd) == 0);
    EXPECT_NEAR(r->data[0], -1.36f, 1e-6);
    EXPECT_NEAR(rd->data[0], 1.25, 1e-15);
}

TYPED_TEST(Stats, HistogramBinsAndLastBinRule) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    Rec<T> x({T(4.000001), T(4.1), T(-0.5), 0, T(0.5), T(3.99), 1, 2 * L}), h, e;
    EXPECT_OK(DSP(s_hist)(&x, &h, T(0), T(1), 4), *h, {2, 1, 0, 2});
    EXPECT_EQ(h->delta, T(1));
    // Width 0: a value equal to low counts in bin 0.
    EXPECT_OK(DSP(s_hist)(&x, &h, T(1), T(0), 3), *h, {1, 0, 0});
    // Guarded values count as L, which lands in a bin that reaches it.
    EXPECT_OK(DSP(s_hist)(&x, &h, L, T(1), 2), *h, {1, 0});
    EXPECT_OK(DSP(s_hist)(&e, &h, T(0), T(1), 3), *h, {0, 0, 0});
    // Complex values count by magnitude; out may be the input.
    Rec<T> z({3, 4, 0, 1, 0, T(-2.5)}, true);
    EXPECT_OK(DSP(s_hist)(&z, &z, T(0), T(2), 3), *z, {1, 1, 1});
    EXPECT_EQ(z->delta, T(2));
}

TYPED_TEST(Stats, PeakSearchAndIndexChoice) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    Rec<T> x({1, 3, 3, 2}), r, e;
    // Flags and index: maximum, minimum, a given index (clamped to the ends;
    // the minimum flag is then ignored).
    EXPECT_OK(DSP(s_peak)(&x, &r, 0, 0), *r, {3, 1});
    EXPECT_OK(DSP(s_peak)(&x, &r, 0x2000, 0), *r, {1, 0});
    EXPECT_OK(DSP(s_peak)(&x, &r, 0x1000 | 0x2000, 3), *r, {2, 3});
    EXPECT_OK(DSP(s_peak)(&x, &r, 0x1000, -5), *r, {1, 0});
    EXPECT_OK(DSP(s_peak)(&x, &r, 0x1000, 99), *r, {2, 3});
    // Squared magnitudes; a part beyond L counts as L during the search only:
    // (2L, 0) counts as L, below big^2, though its own square is far above.
    const T big = pick<T>(1e8f, 1e60);
    Rec<T> z({1, 1, 0, 3, 2, 2}, true), zg({2 * L, 0, big, 0}, true), low({-2 * L, -3 * L});
    EXPECT_OK(DSP(s_peak)(&z, &r, 0, 0), *r, {9, 1});
    EXPECT_OK(DSP(s_peak)(&zg, &r, 0, 0), *r, {big * big, 1});
    EXPECT_OK(DSP(s_peak)(&low, &r, 0, 0), *r, {-2 * L, 0});
    for (int f : {0, 0x100, 0x200, 0x300, 0x1000}) EXPECT_OK(DSP(s_peak)(&e, &r, f, 3), *r, {0, 0});
    for (int f : {0x400, 0x500, 0x700, 0x1400}) {
        EXPECT_EQ(DSP(s_peak)(&x, &r, f, 0), -1);
        EXPECT_EQ(DSP(s_peak)(&e, &r, f, 0), -1);
    }
    EXPECT_OK(DSP(s_peak)(&x, &x, 0, 0), *x, {3, 1});  // out may be the input record
    // Parabolic: y = 5 - 2 (x - 2.3)^2 sampled at 0..4 is exact; at the ends
    // the plain sample and its index.
    std::vector<T> v;
    for (int k = 0; k < 5; ++k) v.push_back(T(5 - 2 * (k - 2.3) * (k - 2.3)));
    x.set(v);
    EXPECT_OK(DSP(s_peak)(&x, &r, 0x100, 0), *r, {5, T(2.3)}, 1e3 * ulps<T>());
    EXPECT_OK(DSP(s_peak)(&x, &r, 0x1100, 0), *r, {v[0], 0});
    EXPECT_OK(DSP(s_peak)(&x, &r, 0x1100, 4), *r, {v[4], 4});
}

TYPED_TEST(Stats, PeakGaussianInterpolationAndItsLimits) {
    using T = TypeParam;
    const long double a = 0.315563649157834L;
    for (int f : {0x200, 0x300})
        for (double mu : {3.2, 3.5, 3.9, 4.45}) {
            SCOPED_TRACE(mu);
            // A Gaussian exp(-2a (x - mu)^2): the uncorrected log ratio
            // recovers its centre exactly.
            std::vector<T> v;
            for (int k = 0; k < 9; ++k)
                v.push_back(T(std::exp(-2 * double(a) * (k - mu) * (k - mu))));
            Rec<T> x(v), r;
            const int status = DSP(s_peak)(&x, &r, f, 0);
            const int i = int(std::lround(mu));
            const int left = v[i - 1] > v[i + 1] ? i - 1 : i;
            long double t = std::log((long double)v[left + 1] / v[left]) / (4 * a);
            if (f == 0x300) t *= 1 - (t * t - 0.25L) * 0.02036L;
            const long double p = t + 0.5L;
            const long double value = v[left] * std::exp(a * p * p);
            EXPECT_OK(status, *r, {T(value), T(left + p)}, 1e3 * ulps<T>());
            // Without the correction that is the centre itself.
            EXPECT_NEAR(double(r->data[1]), f == 0x200 ? mu : double(r->data[1]), 1e3 * ulps<T>());
        }
    // An offset outside [-0.5, 1.5] fails but still reports the clamped peak.
    // The single family reports the position 1 + 0.31556365 where the
    // double family reports 2.5.
    const T pos = pick<T>(1.0f + 0.31556365f, 2.5);
    // Falls off steeply to the right: offset below -0.5, pair (1, 2).
    Rec<T> x({0, 10, T(1e-3)}), r, y({1, 1, 100}), one({7});
    EXPECT_EQ(DSP(s_peak)(&x, &r, 0x200, 0), -1);
    expect_values<T>(*r, {T(10 * std::exp(pick<T>(double(0.07889091f), 0.0788909122894585))), 0.5},
                     8 * ulps<T>() * 10);
    // Rises steeply at the last point: offset above 1.5, pair (1, 2).
    EXPECT_EQ(DSP(s_peak)(&y, &r, 0x300, 0), -1);
    expect_values<T>(*r, {T(std::exp(pick<T>(double(0.71001816f), 0.7100182106051266))), pos},
                     8 * ulps<T>());
    // In place: written into the input record and still reported.
    EXPECT_EQ(DSP(s_peak)(&y, &y, 0x200, 0), -1);
    EXPECT_EQ(y->n, 2);
    EXPECT_EQ(y->data[1], pos);
    // One point: no pair, the plain sample.
    EXPECT_OK(DSP(s_peak)(&one, &r, 0x200, 0), *r, {7, 0});
}

// The double family against numpy/scipy on random data of lengths across
// the block size (values near 1, so that the running product of the
// geometric mean stays finite), in one python call.
TEST(StatsDouble, MomentsMedianAndHistogramAgreeWithScipy) {
    const std::vector<size_t> sizes = {2, 7, 2048, 2049, 5000};
    std::vector<double> all;
    for (size_t n : sizes) {
        auto v = uniform<double>(n, unsigned(n) + 5, 0.6, 1.6);
        all.insert(all.end(), v.begin(), v.end());
    }
    DSP_NEED_PYTHON();
    const auto want = python(
        "import scipy.stats as st\nat = 0\n"
        "for n in (2, 7, 2048, 2049, 5000):\n"
        "    y = x[at:at + n]\n    at += n\n"
        "    h = np.histogram(y, bins=6, range=(0.6, 1.8))[0]\n"
        "    print(*[repr(float(q)) for q in [np.var(y), np.var(y, ddof=1), "
        "st.skew(y, bias=True), st.kurtosis(y, bias=True), np.median(y), "
        "st.gmean(y), st.hmean(y), np.mean(y), np.sqrt(np.mean(y * y))]], *h)",
        all);
    ASSERT_EQ(want.size(), 15 * sizes.size());
    size_t at = 0, k = 0;
    for (size_t n : sizes) {
        SCOPED_TRACE(n);
        Rec<double> x(take<double>(all, at, n)), r;
        for (auto fn : {dsps_pop_var, dsps_samp_var, dsps_skew, dsps_excess, dsps_median,
                        dsps_gmean, dsps_hmean, dsps_mean, dsps_rms}) {
            ASSERT_EQ(fn(&x, &r), 0);
            EXPECT_NEAR(r->data[0], want[k], 1e-12 * (1 + std::abs(want[k]))) << k;
            ++k;
        }
        ASSERT_EQ(dsps_hist(&x, &r, 0.6, 0.2, 6), 0);
        for (size_t b = 0; b < 6; ++b) EXPECT_EQ(r->data[b], want[k++]) << b;
    }
}
