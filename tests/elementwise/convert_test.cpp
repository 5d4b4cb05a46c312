// Representation conversions: real, imag, rtoc, rtop, ptor, mag, magsq,
// phase, conj, timesi.
#include <cmath>
#include <cstdlib>
#include <random>

#include "support/support.hpp"

using namespace dsp_test;

template <class T>
class Convert : public ::testing::Test {};
TYPED_TEST_SUITE(Convert, Precisions);

TYPED_TEST(Convert, NarrowingKeepsStorage) {
    using T = TypeParam;
    Rec<T> x({1, 2, 3, 4, 5, 6}, true, T(0.5));
    T *const block = x->data;
    ASSERT_EQ(DSP(i_real)(&x), 0);
    EXPECT_FALSE(x->cplx);
    EXPECT_EQ(x->alloc, 6);
    EXPECT_EQ(x->delta, T(0.5));
    expect_values<T>(*x, {1, 3, 5});
    ASSERT_EQ(DSP(i_real)(&x), 0);  // real: unchanged
    expect_values<T>(*x, {1, 3, 5});
    // Widening again needs no allocation: the block still holds 2n scalars.
    ASSERT_EQ(DSP(i_rtoc)(&x), 0);
    EXPECT_EQ(x->data, block);
    expect_values<T>(*x, {1, 0, 3, 0, 5, 0});
    ASSERT_EQ(DSP(i_rtoc)(&x), 0);  // complex: unchanged
    expect_values<T>(*x, {1, 0, 3, 0, 5, 0});

    Rec<T> y({1, 2, 3, 4}, true);
    ASSERT_EQ(DSP(i_imag)(&y), 0);
    expect_values<T>(*y, {2, 4});
    ASSERT_EQ(DSP(i_imag)(&y), 0);  // real: all zero, stays real
    EXPECT_FALSE(y->cplx);
    expect_values<T>(*y, {0, 0});
}

TYPED_TEST(Convert, WideningCallerStorage) {
    using T = TypeParam;
    // 9 points exercise the tail and the groups of the downward expansion.
    T caller[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    sig<T> w;
    DSP(_init)(&w);
    w.data = caller;
    w.n = 9;
    ASSERT_EQ(DSP(i_rtoc)(&w), 0);
    EXPECT_NE(w.data, caller);
    EXPECT_EQ(w.alloc, 18);
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(w.data[2 * i], T(i + 1));
        EXPECT_EQ(w.data[2 * i + 1], T(0));
        EXPECT_EQ(caller[i], T(i + 1));
    }
    DSP(_destroy)(&w);

    // Empty records: rtoc makes them complex, timesi leaves them real.
    Rec<T> e1, e2;
    ASSERT_EQ(DSP(i_rtoc)(&e1), 0);
    EXPECT_TRUE(e1->cplx);
    ASSERT_EQ(DSP(i_timesi)(&e2), 0);
    EXPECT_FALSE(e2->cplx);
}

TYPED_TEST(Convert, WideningFailureLeavesComplexFlag) {
    using T = TypeParam;
    auto failing = [](sig<T> *x, int, int) {
        std::free(x->data);
        x->data = nullptr;
    };
    Rec<T> a({1, 2}), b({1, 2}), c({1, 2});
    DSP(_lib_realloc)(failing, nullptr);
    EXPECT_EQ(DSP(i_rtoc)(&a), -1);
    EXPECT_EQ(DSP(i_rtop)(&b), -1);
    EXPECT_EQ(DSP(i_timesi)(&c), -1);
    DSP(_lib_realloc)(nullptr, nullptr);
    for (auto *r : {&a, &b, &c}) {
        EXPECT_TRUE(r->cplx);
        EXPECT_EQ(r->alloc, 0);
        EXPECT_EQ(r->data, nullptr);
    }
}

TYPED_TEST(Convert, PolarAndPhase) {
    using T = TypeParam;
    constexpr T pi = dsp::precision<T>::pi;
    Rec<T> r({T(-2.5), T(-0.0), T(3)});
    ASSERT_EQ(DSP(i_rtop)(&r), 0);
    EXPECT_TRUE(r->cplx);
    expect_values<T>(*r, {T(2.5), pi, 0, 0, 3, 0});  // -0.0 has phase 0

    Rec<T> c({0, 0, -1, 0, 0, -1, 3, 4}, true);
    ASSERT_EQ(DSP(i_phase)(&c), 0);
    EXPECT_FALSE(c->cplx);
    expect_values<T>(*c, {0, pi, -pi / 2, T(std::atan2(4.0, 3.0))}, ulps<T>());

    Rec<T> p({T(-1), T(0), T(2)});
    ASSERT_EQ(DSP(i_phase)(&p), 0);
    expect_values<T>(*p, {pi, 0, 0});

    // rtop then ptor against a long-double reference on random points.
    std::mt19937 gen(7);
    std::uniform_real_distribution<double> u(-100, 100);
    std::vector<T> v(64);
    for (auto &s : v) s = T(u(gen));
    Rec<T> z;
    z.set(v, true);
    ASSERT_EQ(DSP(i_rtop)(&z), 0);
    for (int i = 0; i < 32; ++i) {
        const long double re = v[2 * i], im = v[2 * i + 1];
        EXPECT_NEAR(double(z->data[2 * i]), double(std::hypot(re, im)),
                    double(std::hypot(re, im)) * ulps<T>(1));
        EXPECT_NEAR(double(z->data[2 * i + 1]), double(std::atan2(im, re)), 4 * ulps<T>(1));
    }
    ASSERT_EQ(DSP(i_ptor)(&z), 0);
    for (int i = 0; i < 64; ++i) EXPECT_NEAR(double(z->data[i]), double(v[i]), 100 * ulps<T>(4));

    Rec<T> real({1, 2});
    ASSERT_EQ(DSP(i_ptor)(&real), 0);  // real: unchanged
    expect_values<T>(*real, {1, 2});
}

TYPED_TEST(Convert, MagnitudeAndClampedSquare) {
    using T = TypeParam;
    constexpr T L = dsp::precision<T>::large;
    Rec<T> c({3, 4, 2 * L, 0, 0, -L, T(NAN), 1}, true);
    Rec<T> m;
    ASSERT_EQ(DSP(_copy)(&m, &c), 0);
    ASSERT_EQ(DSP(i_magsq)(&c), 0);
    EXPECT_FALSE(c->cplx);
    EXPECT_EQ(c->data[0], T(25));
    EXPECT_EQ(c->data[1], L);  // a part beyond L gives exactly L
    EXPECT_EQ(c->data[2], L * L);
    EXPECT_TRUE(std::isnan(c->data[3]));
    ASSERT_EQ(DSP(i_mag)(&m), 0);
    EXPECT_EQ(m->data[0], T(5));
    EXPECT_EQ(m->data[1], 2 * L);
    EXPECT_EQ(m->data[2], L);

    Rec<T> r({T(-3), -2 * L, L});
    ASSERT_EQ(DSP(i_magsq)(&r), 0);
    expect_values<T>(*r, {9, L, L * L});
    Rec<T> a({T(-3), T(2)});
    ASSERT_EQ(DSP(i_mag)(&a), 0);
    expect_values<T>(*a, {3, 2});
    if constexpr (std::is_same_v<T, float>) {
        Rec<float> f({2e15f, 0.f}, true);
        ASSERT_EQ(dspfi_magsq(&f), 0);
        EXPECT_EQ(f->data[0], 999999986991104.0f);
    }
}

TYPED_TEST(Convert, ConjugateAndTimesI) {
    using T = TypeParam;
    Rec<T> c({1, 2, -3, 4}, true);
    ASSERT_EQ(DSP(i_conj)(&c), 0);
    expect_values<T>(*c, {1, -2, -3, -4});
    ASSERT_EQ(DSP(i_timesi)(&c), 0);
    expect_values<T>(*c, {2, 1, 4, -3});
    ASSERT_EQ(DSP(i_timesi)(&c), 0);
    expect_values<T>(*c, {-1, 2, 3, 4});  // twice: negated
    Rec<T> r({5, -6});
    ASSERT_EQ(DSP(i_conj)(&r), 0);
    expect_values<T>(*r, {5, -6});
    ASSERT_EQ(DSP(i_timesi)(&r), 0);
    expect_values<T>(*r, {0, 5, 0, -6});
}
