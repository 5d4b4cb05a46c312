#include <complex>
#include <functional>
#include <random>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

using cld = std::complex<long double>;

template <class T>
using BinFn = std::function<int(const sig<T> *, const sig<T> *, sig<T> *)>;

// Point i of a record given as scalars, as a complex value.
template <class T>
cld point(const std::vector<T> &v, bool cplx, size_t i) {
    return cplx ? cld(v[2 * i], v[2 * i + 1]) : cld(v[i], 0);
}

template <class T>
std::vector<T> random_values(std::mt19937 &gen, size_t count) {
    std::uniform_real_distribution<double> d(-4, 4);
    std::vector<T> v(count);
    for (auto &x : v) x = T(d(gen));
    return v;
}

}  // namespace

template <class T>
class Binary : public ::testing::Test {};
TYPED_TEST_SUITE(Binary, Precisions);

// Every operation and every kind combination: an independent long-double
// reference, and the same result when r is a, when r is b, and when a wraps
// a caller's array (which must stay unwritten).
TYPED_TEST(Binary, EveryOperationEveryKindAndInPlace) {
    using T = TypeParam;
    const T w = T(0.25);
    struct Case {
        const char *name;
        BinFn<T> fn;
        std::function<cld(cld, cld)> ref;  // null: checked elsewhere
    };
    const std::vector<Case> cases = {
        {"add", DSP(b_add), [](cld a, cld b) { return a + b; }},
        {"sub", DSP(b_sub), [](cld a, cld b) { return a - b; }},
        {"mul", DSP(b_mul), [](cld a, cld b) { return a * b; }},
        {"div", DSP(b_div), [](cld a, cld b) { return a / b; }},
        {"conj_mul", DSP(b_conj_mul), [](cld a, cld b) { return a * std::conj(b); }},
        {"avg_add",
         [w](const sig<T> *a, const sig<T> *b, sig<T> *r) { return DSP(b_avg_add)(a, b, r, w); },
         [w](cld a, cld b) { return b + (long double)w * (a - b); }},
        {"max", DSP(b_max), nullptr},
        {"min", DSP(b_min), nullptr},
    };
    std::mt19937 gen(7);
    const size_t n = 37;
    for (const Case &c : cases) {
        for (int kinds = 0; kinds < 4; ++kinds) {
            const bool ac = kinds & 1, bc = kinds & 2;
            SCOPED_TRACE(std::string(c.name) + " a" + (ac ? "C" : "R") + " b" + (bc ? "C" : "R"));
            const auto av = random_values<T>(gen, ac ? 2 * n : n);
            const auto bv = random_values<T>(gen, bc ? 2 * n : n);
            Rec<T> a, b, r;
            a.set(av, ac, T(1));
            b.set(bv, bc, T(3));
            ASSERT_EQ(c.fn(&a, &b, &r), 0);
            EXPECT_EQ(r->delta, T(2));
            EXPECT_EQ(r->cplx, (ac || bc) ? 1 : 0);
            ASSERT_EQ(r->n, int32_t(n));
            const auto want = r.values();
            if (c.ref) {
                for (size_t i = 0; i < n; ++i) {
                    const cld z = c.ref(point(av, ac, i), point(bv, bc, i));
                    const cld got = point(want, ac || bc, i);
                    const double tol = ulps<T>(8) * (1 + double(std::abs(z)));
                    EXPECT_NEAR(double(got.real()), double(z.real()), tol) << i;
                    EXPECT_NEAR(double(got.imag()), double(z.imag()), tol) << i;
                }
            }
            Rec<T> a1, b1;
            a1.set(av, ac, T(1));
            b1.set(bv, bc, T(3));
            ASSERT_EQ(c.fn(&a1, &b1, &a1), 0);
            expect_values<T>(*a1, want);
            EXPECT_EQ(a1->delta, T(2));
            Rec<T> a2, b2;
            a2.set(av, ac, T(1));
            b2.set(bv, bc, T(3));
            ASSERT_EQ(c.fn(&a2, &b2, &b2), 0);
            expect_values<T>(*b2, want);
            std::vector<T> caller = av;
            sig<T> wrapped{T(1), caller.data(), 0, int32_t(n), ac ? 1 : 0, 0};
            ASSERT_EQ(c.fn(&wrapped, &b, &wrapped), 0);
            expect_values<T>(wrapped, want);
            EXPECT_EQ(caller, av);
            DSP(_destroy)(&wrapped);
        }
    }
}

TYPED_TEST(Binary, AddSubPadTheShorterInput) {
    using T = TypeParam;
    Rec<T> a({1, 2, 3}), b({10, 20, 30, 40, 50}), r;
    ASSERT_EQ(DSP(b_add)(&a, &b, &r), 0);
    expect_values<T>(*r, {11, 22, 33, 40, 50});
    ASSERT_EQ(DSP(b_sub)(&a, &b, &r), 0);
    expect_values<T>(*r, {-9, -18, -27, -40, -50});
    ASSERT_EQ(DSP(b_sub)(&b, &a, &b), 0);  // in place into the longer one
    expect_values<T>(*b, {9, 18, 27, 40, 50});
    Rec<T> c({1, 1, 2, 2}, true);
    ASSERT_EQ(DSP(b_sub)(&a, &c, &a), 0);  // real shorter-or-equal a into complex
    expect_values<T>(*a, {0, -1, 0, -2, 3, 0});
    EXPECT_EQ(DSP(b_mul)(&a, &b, &r), -1);
    Rec<T> e;
    ASSERT_EQ(DSP(b_add)(&e, &e, &e), 0);
    EXPECT_EQ(e->n, 0);
}

TYPED_TEST(Binary, UnequalLengthsLeaveTheResultUntouched) {
    using T = TypeParam;
    Rec<T> a({1, 2}), b({1, 2, 3}), r({7}, false, T(5));
    for (auto fn : {DSP(b_mul), DSP(b_div), DSP(b_conj_mul), DSP(b_max), DSP(b_min)}) {
        EXPECT_EQ(fn(&a, &b, &r), -1);
        expect_values<T>(*r, {7});
        EXPECT_EQ(r->delta, T(5));
    }
    EXPECT_EQ(DSP(b_avg_add)(&a, &b, &r, T(0.5)), -1);
    EXPECT_EQ(DSP(b_ritoc)(&a, &b, &r), -1);
    Rec<T> c({1, 2, 3, 4}, true);
    EXPECT_EQ(DSP(b_ritoc)(&a, &c, &r), -1);
    EXPECT_EQ(DSP(b_ritoc)(&c, &a, &r), -1);
    expect_values<T>(*r, {7});
}

TYPED_TEST(Binary, ZeroDivisorGivesTheLargeValue) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    Rec<T> a({1, -1, 0, 6}), b({0, 0, 0, 3}), r;
    ASSERT_EQ(DSP(b_div)(&a, &b, &r), 0);
    expect_values<T>(*r, {L, L, 0, 2});
    Rec<T> ca({1, 0, 0, -2, 0, 0}, true), cb({0, 0, 0, 0, 0, 0}, true);
    ASSERT_EQ(DSP(b_div)(&ca, &cb, &r), 0);
    expect_values<T>(*r, {L, L, L, L, 0, 0});
    Rec<T> a3({1, -1, 0});
    ASSERT_EQ(DSP(b_div)(&a3, &cb, &r), 0);
    expect_values<T>(*r, {L, L, L, L, 0, 0});
    Rec<T> z3({0, 2, 0});
    ASSERT_EQ(DSP(b_div)(&ca, &z3, &ca), 0);  // complex by real, in place
    expect_values<T>(*ca, {L, L, 0, -1, 0, 0});
}

TYPED_TEST(Binary, MaxMinOfComplexPoints) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    Rec<T> ra({1, 5, -3}), rb({2, 5, -4}), r;
    ASSERT_EQ(DSP(b_max)(&ra, &rb, &r), 0);
    expect_values<T>(*r, {2, 5, -3});
    ASSERT_EQ(DSP(b_min)(&ra, &rb, &r), 0);
    expect_values<T>(*r, {1, 5, -4});
    // a: (3,4) |5|, (2L,0) guarded to L, (0,1); b: (0,1), (big,0) with
    // big^2 > L in the double family, (0,2).
    const T big = std::is_same_v<T, float> ? T(1e6) : T(1e60);
    Rec<T> a({3, 4, 2 * L, 0, 0, 1}, true), b({0, 1, big, 0, 0, 2}, true);
    Rec<T> real_a({-6, 0, 3}), real_b({0, 2, 1});
    Rec<T> mx, mn, mixed1, mixed2;
    ASSERT_EQ(DSP(b_max)(&a, &b, &mx), 0);
    ASSERT_EQ(DSP(b_min)(&a, &b, &mn), 0);
    ASSERT_EQ(DSP(b_max)(&real_a, &b, &mixed1), 0);
    ASSERT_EQ(DSP(b_min)(&a, &real_b, &mixed2), 0);
    if constexpr (std::is_same_v<T, float>) {
        // The single family keeps its fixed choice of operand.
        expect_values<T>(*mx, b.values());
        expect_values<T>(*mn, b.values());
        expect_values<T>(*mixed1, {-6, 0, 0, 0, 3, 0});
        expect_values<T>(*mixed2, a.values());
    } else {
        // The guarded 2L counts as L, below big^2; ties give b's point.
        expect_values<T>(*mx, {3, 4, big, 0, 0, 2});
        expect_values<T>(*mn, {0, 1, 2 * L, 0, 0, 1});
        expect_values<T>(*mixed1, {-6, 0, big, 0, 3, 0});
        expect_values<T>(*mixed2, {0, 0, 2, 0, 1, 0});
    }
}

TYPED_TEST(Binary, PolynomialProductIsTheLinearConvolution) {
    using T = TypeParam;
    Rec<T> one({1, 1}), r;
    ASSERT_EQ(DSP(b_pmul)(&one, &one, &one), 0);
    expect_values<T>(*one, {1, 2, 1});
    Rec<T> e;
    ASSERT_EQ(DSP(b_pmul)(&one, &e, &r), 0);
    EXPECT_EQ(r->n, 0);
    std::mt19937 gen(3);
    for (int kinds = 0; kinds < 4; ++kinds) {
        const bool ac = kinds & 1, bc = kinds & 2;
        const size_t an = 23, bn = 9;
        const auto av = random_values<T>(gen, ac ? 2 * an : an);
        const auto bv = random_values<T>(gen, bc ? 2 * bn : bn);
        std::vector<double> in;
        for (size_t i = 0; i < an; ++i) {
            in.push_back(double(point(av, ac, i).real()));
            in.push_back(double(point(av, ac, i).imag()));
        }
        for (size_t i = 0; i < bn; ++i) {
            in.push_back(double(point(bv, bc, i).real()));
            in.push_back(double(point(bv, bc, i).imag()));
        }
        const auto want = python(
            "z = x[0::2] + 1j * x[1::2]\n"
            "c = np.convolve(z[:23], z[23:])\n"
            "print(' '.join(repr(float(v)) for p in c for v in (p.real, p.imag)))",
            in);
        ASSERT_EQ(want.size(), 2 * (an + bn - 1));
        Rec<T> a, b;
        a.set(av, ac, T(1));
        b.set(bv, bc, T(2));
        ASSERT_EQ(DSP(b_pmul)(&a, &b, &b), 0);  // in place as b
        EXPECT_EQ(b->n, int32_t(an + bn - 1));
        EXPECT_EQ(b->cplx, (ac || bc) ? 1 : 0);
        EXPECT_EQ(b->delta, T(1.5));
        const auto got = b.values();
        for (size_t k = 0; k < an + bn - 1; ++k) {
            const cld z = point(got, ac || bc, k);
            EXPECT_NEAR(double(z.real()), want[2 * k], ulps<T>(64) * 50);
            EXPECT_NEAR(double(z.imag()), want[2 * k + 1], ulps<T>(64) * 50);
        }
    }
}

TYPED_TEST(Binary, RealAndImaginaryPartsJoin) {
    using T = TypeParam;
    Rec<T> re({1, 2, 3}, false, T(1)), im({4, 5, 6}, false, T(2)), r;
    ASSERT_EQ(DSP(b_ritoc)(&re, &im, &r), 0);
    expect_values<T>(*r, {1, 4, 2, 5, 3, 6});
    EXPECT_EQ(r->delta, T(1.5));
    ASSERT_EQ(DSP(b_ritoc)(&re, &im, &im), 0);
    expect_values<T>(*im, {1, 4, 2, 5, 3, 6});
    Rec<T> re2({1, 2, 3}), im2({4, 5, 6});
    ASSERT_EQ(DSP(b_ritoc)(&re2, &im2, &re2), 0);
    expect_values<T>(*re2, {1, 4, 2, 5, 3, 6});
}
