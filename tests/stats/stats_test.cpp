#include <cstring>
#include <random>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

// A record wrapping points of v from scalar `first` (not owned by the record).
template <class T>
sig<T> wrap_at(std::vector<T> &v, size_t first, size_t points, bool cplx = false) {
    return wrap(v.data() + first, int(points), cplx);
}

}  // namespace

template <class T>
class Stats : public ::testing::Test {};
TYPED_TEST_SUITE(Stats, Precisions);

TYPED_TEST(Stats, SumsMeansAndTheLargeValue) {
    using T = TypeParam;
    Rec<T> x({1, 2, 3, 6}), z({1, -1, 2, -2, 6, 0}, true), r, e, ec({}, true);
    EXPECT_OK(DSP(s_sum)(&x, &r), *r, {12});
    EXPECT_OK(DSP(s_mean)(&x, &r), *r, {3});
    EXPECT_OK(DSP(s_magsq_sum)(&x, &r), *r, {50});
    EXPECT_OK(DSP(s_sum)(&z, &r), *r, {9, -3});
    EXPECT_OK(DSP(s_mean)(&z, &z), *z, {3, -1});  // out is the input
    for (auto fn : {DSP(s_sum), DSP(s_mean), DSP(s_magsq_sum), DSP(s_rms)})
        EXPECT_OK(fn(&e, &r), *r, {0});
    EXPECT_OK(DSP(s_mean)(&ec, &r), *r, {0, 0});
    // A caller's array is read, never written.
    std::vector<T> v = {3, 4};
    sig<T> w = wrap_at(v, 0, 1, true);
    EXPECT_OK(DSP(s_rms)(&w, &w), w, {5});
    EXPECT_EQ(v, (std::vector<T>{3, 4}));
    DSP(_destroy)(&w);
    // A square beyond the large value L adds L.
    const T L = dsp::precision<T>::large, inf = std::numeric_limits<T>::infinity();
    Rec<T> g({2 * L, T(0)}), gz({3, 4, T(1), -2 * L}, true);
    EXPECT_OK(DSP(s_magsq_sum)(&g, &r), *r, {L});
    EXPECT_OK(DSP(s_rms)(&g, &r), *r, {T(std::sqrt(double(L / 2)))});
    EXPECT_OK(DSP(s_magsq_sum)(&gz, &r), *r, {L + T(25)});
    // Infinities are beyond L too; NaN passes through.
    Rec<T> gi({-inf, 1, L}), q({0, std::numeric_limits<T>::quiet_NaN()}, true);
    EXPECT_OK(DSP(s_magsq_sum)(&gi, &r), *r, {L + T(1) + L * L});
    ASSERT_EQ(DSP(s_rms)(&q, &r), 0);
    EXPECT_TRUE(std::isnan(r->data[0]));
}

// Sums run over blocks of 2048 samples added to a running total: the result
// equals the blocks summed one by one and added in order.
TYPED_TEST(Stats, BlockAccumulation) {
    using T = TypeParam;
    for (bool cplx : {false, true}) {
        const size_t n = 2048 * 3 + 77, width = cplx ? 2 : 1;
        auto v = uniform<T>(n * width, 11, -1e3, 1e4);
        sig<T> all = wrap_at(v, 0, n, cplx);
        Rec<T> r, part;
        ASSERT_EQ(DSP(s_sum)(&all, &r), 0);
        std::vector<T> total(width, T(0));
        for (size_t s = 0; s < n; s += 2048) {
            sig<T> block = wrap_at(v, s * width, std::min<size_t>(2048, n - s), cplx);
            ASSERT_EQ(DSP(s_sum)(&block, &part), 0);
            for (size_t p = 0; p < width; ++p) total[p] += part->data[p];
        }
        expect_values<T>(*r, total);
    }
}

TYPED_TEST(Stats, MedianMaxMinAndMeans) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    const double tol = 4 * ulps<T>();
    Rec<T> x({3, 1, 2, 4}), r, e;
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
    for (auto fn : {DSP(s_median), DSP(s_max), DSP(s_min), DSP(s_gmean), DSP(s_hmean)})
        EXPECT_OK(fn(&e, &r), *r, {0});
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
    for (auto fn :
         {DSP(s_skew), DSP(s_pop_var), DSP(s_samp_var), DSP(s_pop_stddev), DSP(s_samp_stddev)})
        EXPECT_OK(fn(&e, &r), *r, {0});
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
        auto a = uniform<float>(size_t(n), 1, -3, 5);
        auto b = uniform<float>(size_t(n), 2, 100, 200);
        std::vector<float> l1(size_t(n), L), l2(size_t(n), L2);
        sig<float> x = wrap_at(a, 0, size_t(n)), y = wrap_at(b, 0, size_t(n));
        sig<float> c1 = wrap_at(l1, 0, size_t(n)), c2 = wrap_at(l2, 0, size_t(n));
        Rec<float> rx, ry, s1, s2;
        for (auto fn : {dspfs_pop_var, dspfs_samp_var, dspfs_skew}) {
            ASSERT_EQ(fn(&x, &rx), 0);
            ASSERT_EQ(fn(&y, &ry), 0);
            EXPECT_EQ(std::memcmp(rx->data, ry->data, sizeof(float)), 0);
        }
        // The same formula over n copies of the constants, summed in blocks.
        ASSERT_EQ(dspfs_sum(&c1, &s1), 0);
        ASSERT_EQ(dspfs_sum(&c2, &s2), 0);
        const float m1 = s1->data[0] / float(n), var = s2->data[0] / float(n) - m1 * m1;
        ASSERT_EQ(dspfs_pop_var(&x, &rx), 0);
        EXPECT_EQ(rx->data[0], var);
        // The cube's constant overflows: L when the variance is 0, else NaN.
        ASSERT_EQ(dspfs_skew(&x, &rx), 0);
        if (var == 0.0f)
            EXPECT_EQ(rx->data[0], L);
        else
            EXPECT_TRUE(std::isnan(rx->data[0]));
    }
    // The excess uses the true deviations: that of {1, 2, 3, 4} is -1.36.
    Rec<float> k({1, 2, 3, 4}), r;
    ASSERT_EQ(dspfs_excess(&k, &r), 0);
    EXPECT_NEAR(r->data[0], -1.36f, 1e-6);
    Rec<double> kd({1, 2, 3, 4}), rd;
    ASSERT_EQ(dsps_pop_var(&kd, &rd), 0);
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
        sig<double> x = wrap_at(all, at, n);
        at += n;
        Rec<double> r;
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
