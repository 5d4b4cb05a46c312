// Sub-ranges, precision conversion, magnitudes and square roots.
#include <cmath>

#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Utility : public ::testing::Test {};
TYPED_TEST_SUITE(Utility, Precisions);

TYPED_TEST(Utility, Subvec) {
    using T = TypeParam;
    Rec<T> src({0, 1, 2, 3}, false, T(0.5)), c({0, 10, 1, 11, 2, 12}, true), dst;
    // First point and count are clipped to the record.
    // clang-format off
    const struct { int first, count; std::vector<T> want; } cases[] = {
        {-3, 5, {0, 1, 2, 3}}, {10, 2, {}}, {1, -2, {}}, {3, 7, {3}}};
    // clang-format on
    for (const auto &k : cases) {
        ASSERT_EQ(DSP(u_subvec)(&src, &dst, k.first, k.count), 0);
        expect_values<T>(*dst, k.want);
        EXPECT_EQ(dst->delta, T(0.5));
    }
    ASSERT_EQ(DSP(u_subvec)(&c, &dst, 1, 2), 0);
    EXPECT_TRUE(dst->cplx);
    expect_values<T>(*dst, {1, 11, 2, 12});

    // In place: points 2 and 3 move to the front.
    ASSERT_EQ(DSP(u_subvec)(&src, &src, 2, 2), 0);
    expect_values<T>(*src, {2, 3});

    // In place on a caller's array: the points come from the array into a
    // fresh block and the array is not written.
    T caller[5] = {5, 6, 7, 8, 9};
    Rec<T> w;
    *w = wrap(caller, 5);
    ASSERT_EQ(DSP(u_subvec)(&w, &w, 1, 3), 0);
    expect_values<T>(*w, {6, 7, 8});
    EXPECT_EQ(std::vector<T>(caller, caller + 5), (std::vector<T>{5, 6, 7, 8, 9}));
}

TYPED_TEST(Utility, Tof) {
    using T = TypeParam;
    Rec<T> src({1.25, -2, 3, 1e-3}, true, T(0.1));
    Rec<float> dst;
    ASSERT_EQ(DSP(u_tof)(&src, &dst), 0);
    EXPECT_TRUE(dst->cplx && dst->delta == float(T(0.1)));
    expect_values<float>(*dst, {1.25f, -2.f, 3.f, float(T(1e-3))});
    if constexpr (std::is_same_v<T, float>) {  // onto itself: refused, unchanged
        EXPECT_EQ(dspfu_tof(&src, &src), -1);
        expect_values<float>(*src, {1.25f, -2.f, 3.f, 1e-3f});
    }
}

TYPED_TEST(Utility, MagnitudesAndRoots) {
    using T = TypeParam;
    using V = std::vector<T>;
    constexpr T L = dsp::precision<T>::large;
    const T big = T(L * 10), r2 = T(std::sqrt(2.0)), r45 = T(std::sqrt(4.5));
    auto out = [](auto op, Rec<T> &in) {
        Rec<T> r;
        EXPECT_EQ(op(&in, &r), 0);
        EXPECT_TRUE(!r->cplx || op == DSP(u_sqrt));
        EXPECT_EQ(r->delta, in->delta);
        return r.values();
    };
    Rec<T> c({3, 4, -5, 12, 0, 0}, true, T(2)), h({big, big, -big, 0}, true), real({-3, big});
    EXPECT_EQ(out(DSP(u_magsq), c), (V{25, 169, 0}));
    // No overflow for huge parts: hypot for the magnitude, L for the square.
    EXPECT_NEAR(double(out(DSP(u_mag), h)[0]), double(big) * std::sqrt(2.0),
                double(big) * ulps<T>());
    EXPECT_EQ(out(DSP(u_magsq), h), (V{L, L}));
    EXPECT_EQ(out(DSP(u_magsq), real), (V{9, L}));
    EXPECT_EQ(out(DSP(u_mag), real), (V{3, big}));
    // In place, complex to real.
    ASSERT_EQ(DSP(u_mag)(&c, &c), 0);
    expect_values<T>(*c, {5, 13, 0});

    // In place on a caller's complex array: the array is never written.
    T caller[4] = {6, 8, 0, -2};
    Rec<T> w;
    *w = wrap(caller, 2, true);
    ASSERT_EQ(DSP(u_magsq)(&w, &w), 0);
    expect_values<T>(*w, {100, 4});
    EXPECT_TRUE(caller[0] == T(6) && caller[1] == T(8));

    Rec<T> s({4, -4, 2}), z({-4, 0, 0, 0, 3, 4, 0, -9}, true), zh({big, 0}, true);
    ASSERT_EQ(DSP(u_sqrt)(&z, &z), 0);
    expect_values<T>(*z, {0, 2, 0, 0, 2, 1, r45, -r45}, 4 * ulps<T>());
    const V sq = out(DSP(u_sqrt), s), sqh = out(DSP(u_sqrt), zh);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(sq[i], (V{2, 0, r2})[i], ulps<T>());
    // A part beyond L makes the modulus L, so the root's magnitude is sqrt(L).
    EXPECT_NEAR(double(sqh[0]), std::sqrt(double(L)), std::sqrt(double(L)) * ulps<T>());
}
