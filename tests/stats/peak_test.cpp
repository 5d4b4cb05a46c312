#include <cmath>

#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Peak : public ::testing::Test {};
TYPED_TEST_SUITE(Peak, Precisions);

TYPED_TEST(Peak, SearchAndIndexChoice) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    Rec<T> x({1, 3, 3, 2}), r;
    ASSERT_EQ(DSP(s_peak)(&x, &r, 0, 0), 0);
    EXPECT_EQ(r->cplx, 0);
    expect_values<T>(*r, {3, 1});
    ASSERT_EQ(DSP(s_peak)(&x, &r, 0x2000, 0), 0);
    expect_values<T>(*r, {1, 0});
    ASSERT_EQ(DSP(s_peak)(&x, &r, 0x1000 | 0x2000, 3), 0);  // minimum ignored
    expect_values<T>(*r, {2, 3});
    ASSERT_EQ(DSP(s_peak)(&x, &r, 0x1000, -5), 0);
    expect_values<T>(*r, {1, 0});
    ASSERT_EQ(DSP(s_peak)(&x, &r, 0x1000, 99), 0);
    expect_values<T>(*r, {2, 3});
    // Squared magnitudes; a part beyond L counts as L during the search only.
    Rec<T> z({1, 1, 0, 3, 2, 2}, true);
    ASSERT_EQ(DSP(s_peak)(&z, &r, 0, 0), 0);
    expect_values<T>(*r, {9, 1});
    // (2L, 0) counts as L, below big^2; its own square would be far above.
    const T big = std::is_same_v<T, float> ? T(1e8) : T(1e60);
    Rec<T> zg({2 * L, 0, big, 0}, true);
    ASSERT_EQ(DSP(s_peak)(&zg, &r, 0, 0), 0);
    expect_values<T>(*r, {big * big, 1});
    Rec<T> low({-2 * L, -3 * L});
    ASSERT_EQ(DSP(s_peak)(&low, &r, 0, 0), 0);
    expect_values<T>(*r, {-2 * L, 0});
    Rec<T> e;
    for (int f : {0, 0x100, 0x200, 0x300, 0x1000}) {
        ASSERT_EQ(DSP(s_peak)(&e, &r, f, 3), 0);
        expect_values<T>(*r, {0, 0});
    }
    for (int f : {0x400, 0x500, 0x700, 0x1400}) {
        EXPECT_EQ(DSP(s_peak)(&x, &r, f, 0), -1);
        EXPECT_EQ(DSP(s_peak)(&e, &r, f, 0), -1);
    }
    // out may be the input record.
    ASSERT_EQ(DSP(s_peak)(&x, &x, 0, 0), 0);
    expect_values<T>(*x, {3, 1});
}

TYPED_TEST(Peak, ParabolicInterpolation) {
    using T = TypeParam;
    // y = 5 - 2 (x - 2.3)^2 sampled at 0..4: the parabola is exact.
    std::vector<T> v;
    for (int k = 0; k < 5; ++k) v.push_back(T(5 - 2 * (k - 2.3) * (k - 2.3)));
    Rec<T> x, r;
    x.set(v);
    ASSERT_EQ(DSP(s_peak)(&x, &r, 0x100, 0), 0);
    expect_values<T>(*r, {5, T(2.3)}, 1e3 * ulps<T>());
    // At the ends the plain sample and its index.
    ASSERT_EQ(DSP(s_peak)(&x, &r, 0x1100, 0), 0);
    expect_values<T>(*r, {v[0], 0});
    ASSERT_EQ(DSP(s_peak)(&x, &r, 0x1100, 4), 0);
    expect_values<T>(*r, {v[4], 4});
}

TYPED_TEST(Peak, GaussianInterpolationFollowsItsFormula) {
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
            Rec<T> x, r;
            x.set(v);
            ASSERT_EQ(DSP(s_peak)(&x, &r, f, 0), 0);
            const int i = int(std::lround(mu));
            const int left = v[i - 1] > v[i + 1] ? i - 1 : i;
            long double t = std::log((long double)v[left + 1] / v[left]) / (4 * a);
            if (f == 0x300) t *= 1 - (t * t - 0.25L) * 0.02036L;
            const long double p = t + 0.5L;
            const long double value = v[left] * std::exp(a * p * p);
            expect_values<T>(*r, {T(value), T(left + p)}, 1e3 * ulps<T>());
            if (f == 0x200) {
                EXPECT_NEAR(double(r->data[1]), mu, 1e3 * ulps<T>());
            }
        }
    }
}

TYPED_TEST(Peak, GaussianOffsetOutsideTheRangeFails) {
    using T = TypeParam;
    const bool single = std::is_same_v<T, float>;
    // Falls off steeply to the right: offset below -0.5, pair (1, 2).
    Rec<T> x({0, 10, T(1e-3)}), r;
    EXPECT_EQ(DSP(s_peak)(&x, &r, 0x200, 0), -1);
    expect_values<T>(*r,
                     {T(10 * std::exp(single ? double(0.07889091f) : 0.0788909122894585)), T(0.5)},
                     8 * ulps<T>() * 10);
    // Rises steeply at the last point: offset above 1.5, pair (1, 2).
    Rec<T> y({1, 1, 100}, false);
    EXPECT_EQ(DSP(s_peak)(&y, &r, 0x300, 0), -1);
    expect_values<T>(*r,
                     {T(std::exp(single ? double(0.71001816f) : 0.7100182106051266)),
                      single ? T(1) + T(0.31556365f) : T(2.5)},
                     8 * ulps<T>());
    // In place: written into the input record and still reported.
    EXPECT_EQ(DSP(s_peak)(&y, &y, 0x200, 0), -1);
    EXPECT_EQ(y->n, 2);
    EXPECT_EQ(y->data[1], single ? T(1) + T(0.31556365f) : T(2.5));
    // One point: no pair, the plain sample.
    Rec<T> one({7});
    ASSERT_EQ(DSP(s_peak)(&one, &r, 0x200, 0), 0);
    expect_values<T>(*r, {7, 0});
}
