// Operations on two records: elementwise arithmetic and extremes, the
// polynomial product, dot product and correlation.
#include <complex>
#include <functional>
#include <tuple>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

using cld = std::complex<long double>;

// Point i of a record given as scalars, as a complex value.
template <class T>
cld point(const std::vector<T> &v, bool cplx, size_t i) {
    return cplx ? cld(v[2 * i], v[2 * i + 1]) : cld(v[i], 0);
}

}  // namespace

DSP_TYPED_SUITE(Binary);

// Every operation and every kind combination: an independent long-double
// reference, and the same result when r is a, when r is b, and when a wraps
// a caller's array (which must stay unwritten).
TYPED_TEST(Binary, EveryOperationEveryKindAndInPlace) {
    using T = TypeParam;
    using Fn = std::function<int(const sig<T> *, const sig<T> *, sig<T> *)>;
    const T w = T(0.25);
    // Each operation with its long-double reference (none: max and min,
    // whose choice of point is checked on its own).
    const std::vector<std::tuple<const char *, Fn, std::function<cld(cld, cld)>>> cases = {
        {"add", DSP(b_add), [](cld a, cld b) { return a + b; }},
        {"sub", DSP(b_sub), [](cld a, cld b) { return a - b; }},
        {"mul", DSP(b_mul), [](cld a, cld b) { return a * b; }},
        {"div", DSP(b_div), [](cld a, cld b) { return a / b; }},
        {"conj_mul", DSP(b_conj_mul), [](cld a, cld b) { return a * std::conj(b); }},
        {"avg_add", [w](auto a, auto b, auto r) { return DSP(b_avg_add)(a, b, r, w); },
         [w](cld a, cld b) { return b + (long double)w * (a - b); }},
        {"max", DSP(b_max), nullptr},
        {"min", DSP(b_min), nullptr}};
    const size_t n = 37;
    unsigned seed = 7;
    for (const auto &[name, fn, ref] : cases) {
        for (int kinds = 0; kinds < 4; ++kinds) {
            const bool ac = kinds & 1, bc = kinds & 2;
            SCOPED_TRACE(std::string(name) + " a" + (ac ? "C" : "R") + " b" + (bc ? "C" : "R"));
            const auto av = uniform<T>(ac ? 2 * n : n, seed++, -4, 4);
            const auto bv = uniform<T>(bc ? 2 * n : n, seed++, -4, 4);
            Rec<T> a(av, ac, T(1)), b(bv, bc, T(3)), r;
            ASSERT_EQ(fn(&a, &b, &r), 0);
            EXPECT_EQ(r->delta, T(2));
            EXPECT_EQ(r->cplx, (ac || bc) ? 1 : 0);
            ASSERT_EQ(r->n, int32_t(n));
            const auto want = r.values();
            if (ref) {
                for (size_t i = 0; i < n; ++i) {
                    const cld z = ref(point(av, ac, i), point(bv, bc, i));
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
                EXPECT_OK(fn(&a1, &b1, out), *out, want);
                EXPECT_EQ(out->delta, T(2));
            }
            std::vector<T> caller = av;
            Rec<T> wrapped;
            *wrapped = wrap(caller.data(), int(n), ac);
            EXPECT_OK(fn(&wrapped, &b, &wrapped), *wrapped, want);
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
    for (auto [x, y] : {std::pair{&a2, &b3}, {&a2, &c2}, {&c2, &a2}})
        EXPECT_EQ(DSP(b_ritoc)(x, y, &keep), -1);
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

// A zero divisor gives the large value L; max and min choose whole points.
TYPED_TEST(Binary, ZeroDivisorAndExtremesOfComplexPoints) {
    using T = TypeParam;
    const T L = dsp::precision<T>::large;
    Rec<T> a4({1, -1, 0, 6}), b4({0, 0, 0, 3}), r, a3({1, -1, 0}), z3({0, 2, 0});
    Rec<T> ca({1, 0, 0, -2, 0, 0}, true), cb({0, 0, 0, 0, 0, 0}, true);
    EXPECT_OK(DSP(b_div)(&a4, &b4, &r), *r, {L, L, 0, 2});
    EXPECT_OK(DSP(b_div)(&ca, &cb, &r), *r, {L, L, L, L, 0, 0});
    EXPECT_OK(DSP(b_div)(&a3, &cb, &r), *r, {L, L, L, L, 0, 0});
    EXPECT_OK(DSP(b_div)(&ca, &z3, &ca), *ca, {L, L, 0, -1, 0, 0});  // complex by real, in place
    Rec<T> ra({1, 5, -3}), rb({2, 5, -4});
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
    // Every kind combination of 23 by 9 points, in place as b, against the
    // direct sum in long double.
    const size_t an = 23, bn = 9, m = an + bn - 1;
    for (int kinds = 0; kinds < 4; ++kinds) {
        const bool ac = kinds & 1, bc = kinds & 2;
        const auto av = uniform<T>(ac ? 2 * an : an, unsigned(2 * kinds + 3), -4, 4);
        const auto bv = uniform<T>(bc ? 2 * bn : bn, unsigned(2 * kinds + 4), -4, 4);
        Rec<T> a(av, ac, T(1)), b(bv, bc, T(2));
        ASSERT_EQ(DSP(b_pmul)(&a, &b, &b), 0);
        ASSERT_TRUE(b->n == int32_t(m) && b->cplx == (ac || bc) && b->delta == T(1.5));
        const auto got = b.values();
        for (size_t k = 0; k < m; ++k) {
            cld z = 0;
            for (size_t i = k >= bn ? k - bn + 1 : 0; i <= std::min(k, an - 1); ++i)
                z += point(av, ac, i) * point(bv, bc, k - i);
            const cld g = point(got, ac || bc, k);
            EXPECT_NEAR(double(g.real()), double(z.real()), ulps<T>(64) * 50) << kinds << " " << k;
            EXPECT_NEAR(double(g.imag()), double(z.imag()), ulps<T>(64) * 50) << kinds << " " << k;
        }
    }
}

TYPED_TEST(Binary, DotProductOfEveryKind) {
    using T = TypeParam;
    Rec<T> x({1, 2, 3}), y({4, -5, 6}), r({9}, false, T(7)), e, ec({}, true), r2({5});
    EXPECT_OK(DSP(bs_dot)(&x, &y, &r), *r, {12});
    EXPECT_EQ(r->delta, T(7));  // kept
    // Complex with itself: sum of z^2, not of |z|^2.
    Rec<T> z({1, 2, 3, -1}, true), w({1, 1}), zz({1, 2, 3, -1}, true);
    EXPECT_OK(DSP(bs_dot)(&z, &zz, &r), *r, {(1 - 4) + (9 - 1), 4 + -6});
    EXPECT_OK(DSP(bs_dot)(&z, &w, &r), *r, {4, 1});
    EXPECT_OK(DSP(bs_dot)(&w, &z, &w), *w, {4, 1});  // real a into a complex result in place
    EXPECT_OK(DSP(bs_dot)(&x, &y, &y), *y, {12});
    EXPECT_OK(DSP(bs_dot)(&e, &e, &r), *r, {0});
    EXPECT_OK(DSP(bs_dot)(&ec, &e, &ec), *ec, {0, 0});
    EXPECT_EQ(DSP(bs_dot)(&x, &z, &r2), -1);
    expect_values<T>(*r2, {5});
    // Caller storage used in place is read where it is and left unwritten.
    T v[3] = {1, 2, 3};
    Rec<T> a;
    *a = wrap(v, 3);
    EXPECT_OK(DSP(bs_dot)(&a, &x, &a), *a, {14});
    EXPECT_EQ(std::vector<T>(v, v + 3), (std::vector<T>{1, 2, 3}));
    // Accumulated in point order in the working precision: 1e8 + 1 is 1e8 in
    // single precision.
    Rec<T> big({T(1e8), 1, T(-1e8)}), ones({1, 1, 1});
    EXPECT_OK(DSP(bs_dot)(&big, &ones, &big), *big, {pick<T>(0.0f, 1.0)});
}

// Correlation through the FFT against the direct sum in long double, lag l
// being the sum of x[m + l] conj(y[m]); every arrangement of result and
// scratch in turn: separate records, the result in x or y, the scratch null,
// the result's, or x's; odd cases halved.
TYPED_TEST(Binary, CorrelationLagsAgainstLongDouble) {
    using T = TypeParam;
    unsigned seed = 0;
    int k = 0;
    Rec<T> scratch;
    for (int n : {1, 2, 3, 4, 5, 17, 64, 100})
        for (int lags : {1, (n + 1) / 2, n})
            for (int xc = 0; xc < 2; ++xc)
                for (int yc = 0; yc < 2; ++yc, seed += 2) {
                    const auto xv = uniform<T>(size_t((1 + xc) * n), seed);
                    const auto yv = uniform<T>(size_t((1 + yc) * n), seed + 1);
                    Rec<T> x(xv, xc, T(1)), y(yv, yc, T(3)), r;
                    const int arrangement = k % 4, option = k++ % 2, c = xc || yc ? 2 : 1;
                    Rec<T> &res = arrangement == 1 ? x : arrangement == 2 ? y : r;
                    auto *s = arrangement == 0   ? scratch.get()
                              : arrangement == 3 ? r.get()
                                                 : nullptr;
                    ASSERT_EQ(
                        DSP(h_corr)(&x, &y, &res, arrangement == 2 ? x.get() : s, lags, option), 0);
                    ASSERT_TRUE(res->n == lags && res->cplx == (c == 2) && res->delta == T(2));
                    const auto got = res.values();
                    for (int l = 0; l < lags; ++l) {
                        cld z = 0;
                        for (int m = 0; m + l < n; ++m)
                            z += point(xv, xc, size_t(m + l)) * std::conj(point(yv, yc, size_t(m)));
                        z *= option ? 0.5L : 1.0L;
                        const cld g = point(got, c == 2, size_t(l));
                        SCOPED_TRACE(testing::Message()
                                     << n << " " << lags << " " << xc << yc << " lag " << l);
                        EXPECT_NEAR(double(g.real()), double(z.real()), ulps<T>(4) * n);
                        EXPECT_NEAR(double(g.imag()), c == 2 ? double(z.imag()) : 0.0,
                                    ulps<T>(4) * n);
                    }
                }
    // The two-record form is option 0; unequal lengths or a lag count outside
    // 1 .. n give -1 and leave r untouched.
    Rec<T> a({1, 2, 3}), b({1, 1, 0}), c({1, 2}), r({9});
    EXPECT_OK(DSP(b_corr)(&a, &b, &r, nullptr, 3), *r, {3, 5, 3}, ulps<T>(8));
    EXPECT_EQ(DSP(b_corr)(&a, &c, &r, nullptr, 1), -1);
    EXPECT_EQ(DSP(b_corr)(&a, &b, &r, nullptr, 0), -1);
    EXPECT_EQ(DSP(h_corr)(&a, &b, &r, nullptr, 4, 1), -1);
    expect_values<T>(*r, {3, 5, 3}, ulps<T>(8));
}
