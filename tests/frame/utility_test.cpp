// Sub-ranges, precision conversion, magnitudes and square roots.
#include <cmath>

#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Utility : public ::testing::Test {};
TYPED_TEST_SUITE(Utility, Precisions);

TYPED_TEST(Utility, Subvec) {
    using T = TypeParam;
    Rec<T> src({0, 1, 2, 3}, false, T(0.5)), dst;
    ASSERT_EQ(DSP(u_subvec)(&src, &dst, -3, 5), 0);
    expect_values<T>(*dst, {0, 1, 2, 3});
    EXPECT_EQ(dst->delta, T(0.5));
    ASSERT_EQ(DSP(u_subvec)(&src, &dst, 10, 2), 0);
    EXPECT_EQ(dst->n, 0);
    ASSERT_EQ(DSP(u_subvec)(&src, &dst, 1, -2), 0);
    EXPECT_EQ(dst->n, 0);
    ASSERT_EQ(DSP(u_subvec)(&src, &dst, 3, 7), 0);
    expect_values<T>(*dst, {3});

    Rec<T> c({0, 10, 1, 11, 2, 12}, true);
    ASSERT_EQ(DSP(u_subvec)(&c, &dst, 1, 2), 0);
    EXPECT_TRUE(dst->cplx);
    expect_values<T>(*dst, {1, 11, 2, 12});

    // In place: points 2 and 3 move to the front.
    ASSERT_EQ(DSP(u_subvec)(&src, &src, 2, 2), 0);
    expect_values<T>(*src, {2, 3});

    // In place on a caller's array: the points come from the array into a
    // fresh block and the array is not written.
    T caller[5] = {5, 6, 7, 8, 9};
    sig<T> w;
    DSP(_init)(&w);
    w.data = caller;
    w.n = 5;
    ASSERT_EQ(DSP(u_subvec)(&w, &w, 1, 3), 0);
    expect_values<T>(w, {6, 7, 8});
    EXPECT_EQ(caller[0], T(5));
    EXPECT_EQ(caller[1], T(6));
    DSP(_destroy)(&w);
}

TYPED_TEST(Utility, Tof) {
    using T = TypeParam;
    Rec<T> src({1.25, -2, 3, 1e-3}, true, T(0.1));
    Rec<float> dst;
    ASSERT_EQ(DSP(u_tof)(&src, &dst), 0);
    EXPECT_TRUE(dst->cplx);
    EXPECT_EQ(dst->n, 2);
    EXPECT_EQ(dst->delta, float(T(0.1)));
    expect_values<float>(*dst, {1.25f, -2.f, 3.f, float(T(1e-3))});
    if constexpr (std::is_same_v<T, float>) {
        EXPECT_EQ(dspfu_tof(&src, &src), -1);
        expect_values<float>(*src, {1.25f, -2.f, 3.f, 1e-3f});
    }
}

TYPED_TEST(Utility, MagnitudesAndRoots) {
    using T = TypeParam;
    constexpr T L = dsp::precision<T>::large;
    Rec<T> c({3, 4, -5, 12, 0, 0}, true, T(2)), r;
    ASSERT_EQ(DSP(u_mag)(&c, &r), 0);
    EXPECT_FALSE(r->cplx);
    EXPECT_EQ(r->delta, T(2));
    expect_values<T>(*r, {5, 13, 0});
    ASSERT_EQ(DSP(u_magsq)(&c, &r), 0);
    expect_values<T>(*r, {25, 169, 0});

    // No overflow for huge parts: hypot for the magnitude, L for the square.
    const T big = T(L * 10);
    Rec<T> h({big, big, -big, 0}, true);
    ASSERT_EQ(DSP(u_mag)(&h, &r), 0);
    EXPECT_NEAR(double(r->data[0]), double(big) * std::sqrt(2.0), double(big) * ulps<T>());
    ASSERT_EQ(DSP(u_magsq)(&h, &r), 0);
    expect_values<T>(*r, {L, L});
    Rec<T> real({T(-3), big});
    ASSERT_EQ(DSP(u_magsq)(&real, &r), 0);
    expect_values<T>(*r, {9, L});
    ASSERT_EQ(DSP(u_mag)(&real, &r), 0);
    expect_values<T>(*r, {3, big});

    // In place, complex to real.
    ASSERT_EQ(DSP(u_mag)(&c, &c), 0);
    expect_values<T>(*c, {5, 13, 0});

    // In place on a caller's complex array: the array is never written.
    T caller[4] = {6, 8, 0, -2};
    sig<T> w;
    DSP(_init)(&w);
    w.data = caller;
    w.n = 2;
    w.cplx = 1;
    ASSERT_EQ(DSP(u_magsq)(&w, &w), 0);
    expect_values<T>(w, {100, 4});
    EXPECT_EQ(caller[0], T(6));
    EXPECT_EQ(caller[1], T(8));
    DSP(_destroy)(&w);

    Rec<T> s({4, -4, 2});
    ASSERT_EQ(DSP(u_sqrt)(&s, &r), 0);
    expect_values<T>(*r, {2, 0, T(std::sqrt(2.0))}, ulps<T>());
    Rec<T> z({-4, 0, 0, 0, 3, 4, 0, -9}, true);
    ASSERT_EQ(DSP(u_sqrt)(&z, &z), 0);
    expect_values<T>(*z, {0, 2, 0, 0, 2, 1, T(std::sqrt(4.5)), T(-std::sqrt(4.5))}, 4 * ulps<T>());
    Rec<T> zh({big, 0}, true);
    ASSERT_EQ(DSP(u_sqrt)(&zh, &r), 0);
    // a part beyond L makes the modulus L, so the root's magnitude is sqrt(L)
    EXPECT_NEAR(double(r->data[0]), std::sqrt(double(L)), std::sqrt(double(L)) * ulps<T>());
}
