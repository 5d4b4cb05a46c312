// Representation conversions: real, imag, rtoc, rtop, ptor, mag, magsq,
// phase, conj, timesi.
#include <cmath>

#include "support/support.hpp"

using namespace dsp_test;

DSP_TYPED_SUITE(Convert);

TYPED_TEST(Convert, ValuesAndKinds) {
    using T = TypeParam;
    using V = std::vector<T>;
    const T pi = dsp::precision<T>::pi, L = dsp::precision<T>::large;
    // The result's kind shows in its scalar count. Each operation also on the
    // kind it leaves alone (imag of a real record: all zero, stays real).
    // clang-format off
    const struct { int (*op)(sig<T> *); bool cplx; V in, want; } cases[] = {
        {DSP(i_real), false, {1, 3}, {1, 3}},        {DSP(i_imag), true, {1, 2, 3, 4}, {2, 4}},
        {DSP(i_imag), false, {2, 4}, {0, 0}},        {DSP(i_rtoc), true, {1, 2}, {1, 2}},
        {DSP(i_ptor), false, {1, 2}, {1, 2}},        {DSP(i_phase), false, {-1, 0, 2}, {pi, 0, 0}},
        {DSP(i_mag), false, {-3, 2}, {3, 2}},        {DSP(i_magsq), false, {-3, -2 * L, L}, {9, L, L * L}},
        {DSP(i_conj), false, {5, -6}, {5, -6}},      {DSP(i_timesi), false, {5, -6}, {0, 5, 0, -6}},
        {DSP(i_conj), true, {1, 2, -3, 4}, {1, -2, -3, -4}},
        {DSP(i_timesi), true, {1, -2, -3, -4}, {2, 1, 4, -3}},
        {DSP(i_timesi), true, {2, 1, 4, -3}, {-1, 2, 3, 4}},  // twice: negated
        {DSP(i_rtop), false, {-2.5, -0.0, 3}, {2.5, pi, 0, 0, 3, 0}},  // -0.0 has phase 0
        {DSP(i_mag), true, {3, 4, 2 * L, 0, 0, -L}, {5, 2 * L, L}},
    };
    // clang-format on
    for (const auto &c : cases)
        EXPECT_EQ(applied<T>(c.in, c.cplx, c.op), c.want) << ::testing::PrintToString(c.in);

    // Narrowing keeps the block and the spacing: widening again needs no
    // allocation, the block still holds 2n scalars.
    Rec<T> x({1, 2, 3, 4, 5, 6}, true, T(0.5));
    T *const block = x->data;
    EXPECT_OK(DSP(i_real)(&x), *x, {1, 3, 5});
    EXPECT_TRUE(x->alloc == 6 && x->delta == T(0.5));
    EXPECT_OK(DSP(i_rtoc)(&x), *x, {1, 0, 3, 0, 5, 0});
    EXPECT_EQ(x->data, block);

    // Empty records: rtoc makes them complex, timesi leaves them real.
    Rec<T> e1, e2;
    EXPECT_TRUE(DSP(i_rtoc)(&e1) == 0 && DSP(i_timesi)(&e2) == 0 && e1->cplx && !e2->cplx);
}

TYPED_TEST(Convert, WideningCallerStorageAndFailure) {
    using T = TypeParam;
    // 9 points exercise the tail and the groups of the downward expansion.
    T caller[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    Rec<T> w;
    *w = wrap(caller, 9);
    ASSERT_EQ(DSP(i_rtoc)(&w), 0);
    EXPECT_TRUE(w->data != caller && w->alloc == 18);
    for (int i = 0; i < 9; ++i) {
        EXPECT_TRUE(w->data[2 * i] == T(i + 1) && w->data[2 * i + 1] == T(0)) << i;
        EXPECT_EQ(caller[i], T(i + 1));
    }

    // A failed widening leaves the record complex with nothing owned.
    Rec<T> a({1, 2}), b({1, 2}), c({1, 2});
    DSP(_lib_realloc)([](sig<T> *x, int, int) { x->data = nullptr; }, nullptr);
    EXPECT_EQ(DSP(i_rtoc)(&a), -1);
    EXPECT_EQ(DSP(i_rtop)(&b), -1);
    EXPECT_EQ(DSP(i_timesi)(&c), -1);
    DSP(_lib_realloc)(nullptr, nullptr);
    for (auto *r : {&a, &b, &c}) EXPECT_TRUE(r->cplx && r->alloc == 0 && r->data == nullptr);
}

TYPED_TEST(Convert, PolarAndPhase) {
    using T = TypeParam;
    constexpr T pi = dsp::precision<T>::pi;
    Rec<T> c({0, 0, -1, 0, 0, -1, 3, 4}, true);
    EXPECT_OK(DSP(i_phase)(&c), *c, {0, pi, -pi / 2, T(std::atan2(4.0, 3.0))}, ulps<T>());

    // rtop then ptor against a long-double reference on random points.
    const std::vector<T> v = uniform<T>(64, 7, -100, 100);
    Rec<T> z(v, true);
    ASSERT_EQ(DSP(i_rtop)(&z), 0);
    for (int i = 0; i < 32; ++i) {
        const long double re = v[2 * i], im = v[2 * i + 1], m = std::hypot(re, im);
        EXPECT_NEAR(double(z->data[2 * i]), double(m), double(m) * ulps<T>(1));
        EXPECT_NEAR(double(z->data[2 * i + 1]), double(std::atan2(im, re)), 4 * ulps<T>(1));
    }
    ASSERT_EQ(DSP(i_ptor)(&z), 0);
    for (int i = 0; i < 64; ++i) EXPECT_NEAR(double(z->data[i]), double(v[i]), 100 * ulps<T>(4));
}

TYPED_TEST(Convert, ClampedSquaredMagnitude) {
    using T = TypeParam;
    constexpr T L = dsp::precision<T>::large;
    // The squared magnitude takes L when a part is beyond L (a part of
    // exactly L is squared); NaN stays NaN. A long record of both kinds
    // exercises the branch-free form.
    for (int cplx = 0; cplx < 2; ++cplx) {
        std::vector<T> v;
        for (int i = 0; i < 204; ++i)
            v.push_back(T((i * 37) % 11 - 5) * (i % 7 ? T(1) : L * T(0.4)));
        v[10] = NAN, v[11] = 2 * L, v[20] = NAN, v[23] = -1, v[30] = L, v[31] = -L;
        const std::vector<T> got = applied<T>(v, cplx, DSP(i_magsq));
        for (size_t i = 0; i < got.size(); ++i) {
            const T re = cplx ? v[2 * i] : v[i], im = cplx ? v[2 * i + 1] : 0;
            const T want = std::fabs(re) > L || std::fabs(im) > L ? L : im * im + re * re;
            EXPECT_TRUE(got[i] == want || (std::isnan(want) && std::isnan(got[i]))) << i;
        }
    }
}
