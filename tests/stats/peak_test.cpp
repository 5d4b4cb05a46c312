#include <cmath>

#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Peak : public ::testing::Test {};
TYPED_TEST_SUITE(Peak, Precisions);

TYPED_TEST(Peak, SearchAndIndexChoice) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    Rec<T> x({1, 3, 3, 2}), r, e;
    // Flags and index: maximum, minimum, a given index (clamped to the ends;
    // the minimum flag is then ignored).
    const struct {
        int flags, index;
        std::vector<T> want;
    } cases[] = {{0, 0, {3, 1}},
                 {0x2000, 0, {1, 0}},
                 {0x1000 | 0x2000, 3, {2, 3}},
                 {0x1000, -5, {1, 0}},
                 {0x1000, 99, {2, 3}}};
    for (const auto &c : cases) EXPECT_OK(DSP(s_peak)(&x, &r, c.flags, c.index), *r, c.want);
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

TYPED_TEST(Peak, GaussianInterpolationAndItsLimits) {
    using T = TypeParam;
    const long double a = 0.315563649157834L;
    for (int f : {0x200, 0x300}) {
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
