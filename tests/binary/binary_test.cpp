#include <complex>
#include <functional>

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
    const size_t n = 37;
    unsigned seed = 7;
    for (const Case &c : cases) {
        for (int kinds = 0; kinds < 4; ++kinds) {
            const bool ac = kinds & 1, bc = kinds & 2;
            SCOPED_TRACE(std::string(c.name) + " a" + (ac ? "C" : "R") + " b" + (bc ? "C" : "R"));
            const auto av = uniform<T>(ac ? 2 * n : n, seed++, -4, 4);
            const auto bv = uniform<T>(bc ? 2 * n : n, seed++, -4, 4);
            Rec<T> a(av, ac, T(1)), b(bv, bc, T(3)), r;
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
            // The result as a, then as b: the same values and spacing.
            for (bool as_a : {true, false}) {
                Rec<T> a1(av, ac, T(1)), b1(bv, bc, T(3));
                sig<T> *out = as_a ? a1.get() : b1.get();
                EXPECT_OK(c.fn(&a1, &b1, out), *out, want);
                EXPECT_EQ(out->delta, T(2));
            }
            std::vector<T> caller = av;
            Rec<T> wrapped;
            *wrapped = wrap(caller.data(), int(n), ac);
            EXPECT_OK(c.fn(&wrapped, &b, &wrapped), *wrapped, want);
            EXPECT_EQ(caller, av);
        }
    }
}

// Add and sub pad the shorter input; the other operations need equal lengths
// (and ritoc equal kinds) and leave the result untouched otherwise.
TYPED_TEST(Binary, LengthsAndKinds) {
    using T = TypeParam;
    Rec<T> a({1, 2, 3}), b({10, 20, 30, 40, 50}), r, c({1, 1, 2, 2}, true), e;
    EXPECT_OK(DSP(b_add)(&a, &b, &r), *r, {11, 22, 33, 40, 50});
    EXPECT_OK(DSP(b_sub)(&a, &b, &r), *r, {-9, -18, -27, -40, -50});
    EXPECT_OK(DSP(b_sub)(&b, &a, &b), *b, {9, 18, 27, 40, 50});  // in place into the longer one
    // Real shorter-or-equal a into complex, in place.
    EXPECT_OK(DSP(b_sub)(&a, &c, &a), *a, {0, -1, 0, -2, 3, 0});
    ASSERT_EQ(DSP(b_add)(&e, &e, &e), 0);
    EXPECT_EQ(e->n, 0);
    Rec<T> a2({1, 2}), b3({1, 2, 3}), c2({1, 2, 3, 4}, true), keep({7}, false, T(5));
    for (auto fn : {DSP(b_mul), DSP(b_div), DSP(b_conj_mul), DSP(b_max), DSP(b_min)})
        EXPECT_EQ(fn(&a2, &b3, &keep), -1);
    EXPECT_EQ(DSP(b_avg_add)(&a2, &b3, &keep, T(0.5)), -1);
    EXPECT_EQ(DSP(b_ritoc)(&a2, &b3, &keep), -1);
    EXPECT_EQ(DSP(b_ritoc)(&a2, &c2, &keep), -1);
    EXPECT_EQ(DSP(b_ritoc)(&c2, &a2, &keep), -1);
    expect_values<T>(*keep, {7});
    EXPECT_EQ(keep->delta, T(5));
    // Real and imaginary parts joined into a new record, im or re.
    for (int out = 0; out < 3; ++out) {
        Rec<T> re({1, 2, 3}, false, T(1)), im({4, 5, 6}, false, T(2)), j;
        sig<T> *res = out == 0 ? j.get() : out == 1 ? im.get() : re.get();
        EXPECT_OK(DSP(b_ritoc)(&re, &im, res), *res, {1, 4, 2, 5, 3, 6});
        EXPECT_EQ(res->delta, T(1.5));
    }
}

TYPED_TEST(Binary, ZeroDivisorGivesTheLargeValue) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    Rec<T> a({1, -1, 0, 6}), b({0, 0, 0, 3}), r, a3({1, -1, 0}), z3({0, 2, 0});
    Rec<T> ca({1, 0, 0, -2, 0, 0}, true), cb({0, 0, 0, 0, 0, 0}, true);
    EXPECT_OK(DSP(b_div)(&a, &b, &r), *r, {L, L, 0, 2});
    EXPECT_OK(DSP(b_div)(&ca, &cb, &r), *r, {L, L, L, L, 0, 0});
    EXPECT_OK(DSP(b_div)(&a3, &cb, &r), *r, {L, L, L, L, 0, 0});
    EXPECT_OK(DSP(b_div)(&ca, &z3, &ca), *ca, {L, L, 0, -1, 0, 0});  // complex by real, in place
}

TYPED_TEST(Binary, MaxMinOfComplexPoints) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    Rec<T> ra({1, 5, -3}), rb({2, 5, -4}), r;
    EXPECT_OK(DSP(b_max)(&ra, &rb, &r), *r, {2, 5, -3});
    EXPECT_OK(DSP(b_min)(&ra, &rb, &r), *r, {1, 5, -4});
    // a: (3,4) |5|, (2L,0) guarded to L, (0,1); b: (0,1), (big,0) with
    // big^2 > L in the double family, (0,2).
    const T big = pick<T>(1e6f, 1e60);
    Rec<T> a({3, 4, 2 * L, 0, 0, 1}, true), b({0, 1, big, 0, 0, 2}, true);
    Rec<T> real_a({-6, 0, 3}), real_b({0, 2, 1}), mx, mn, mixed1, mixed2;
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
    Rec<T> one({1, 1}), r, e;
    EXPECT_OK(DSP(b_pmul)(&one, &one, &one), *one, {1, 2, 1});
    ASSERT_EQ(DSP(b_pmul)(&one, &e, &r), 0);
    EXPECT_EQ(r->n, 0);
    // Every kind combination of 23 by 9 points against numpy, in one call:
    // the inputs go as complex points, a then b, per combination.
    const size_t an = 23, bn = 9, m = an + bn - 1;
    std::vector<std::vector<T>> avs, bvs;
    std::vector<double> in;
    for (int kinds = 0; kinds < 4; ++kinds) {
        const bool ac = kinds & 1, bc = kinds & 2;
        avs.push_back(uniform<T>(ac ? 2 * an : an, unsigned(2 * kinds + 3), -4, 4));
        bvs.push_back(uniform<T>(bc ? 2 * bn : bn, unsigned(2 * kinds + 4), -4, 4));
        for (size_t i = 0; i < an + bn; ++i) {
            const cld z = i < an ? point(avs.back(), ac, i) : point(bvs.back(), bc, i - an);
            in.insert(in.end(), {double(z.real()), double(z.imag())});
        }
    }
    DSP_NEED_PYTHON();
    const auto want = python(
        "z = (x[0::2] + 1j * x[1::2]).reshape(4, 32)\n"
        "for a in z:\n"
        "    c = np.convolve(a[:23], a[23:])\n"
        "    print(' '.join(repr(float(v)) for p in c for v in (p.real, p.imag)))",
        in);
    ASSERT_EQ(want.size(), 4 * 2 * m);
    for (int kinds = 0; kinds < 4; ++kinds) {
        const bool ac = kinds & 1, bc = kinds & 2;
        Rec<T> a(avs[size_t(kinds)], ac, T(1)), b(bvs[size_t(kinds)], bc, T(2));
        ASSERT_EQ(DSP(b_pmul)(&a, &b, &b), 0);  // in place as b
        EXPECT_EQ(b->n, int32_t(m));
        EXPECT_EQ(b->cplx, (ac || bc) ? 1 : 0);
        EXPECT_EQ(b->delta, T(1.5));
        const auto got = b.values();
        for (size_t k = 0; k < m; ++k) {
            const cld z = point(got, ac || bc, k);
            EXPECT_NEAR(double(z.real()), want[2 * (kinds * m + k)], ulps<T>(64) * 50);
            EXPECT_NEAR(double(z.imag()), want[2 * (kinds * m + k) + 1], ulps<T>(64) * 50);
        }
    }
}
