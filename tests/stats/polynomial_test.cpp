// Linear regression, least-squares polynomials, evaluation, roots and
// coefficients from roots, against scipy.stats and numpy.
#include <algorithm>
#include <array>
#include <complex>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

namespace {

using cd = std::complex<double>;

template <class T>
std::vector<cd> points(const sig<T> &s) {
    std::vector<cd> v;
    for (int k = 0; k < s.n; ++k)
        v.push_back(s.cplx ? cd(s.data[2 * k], s.data[2 * k + 1]) : cd(s.data[k], 0));
    return v;
}

// Every wanted root has a computed root within tol, and the counts agree.
void expect_roots(const std::vector<cd> &got, const std::vector<cd> &want, double tol) {
    ASSERT_EQ(got.size(), want.size());
    for (cd w : want) {
        double best = 1e300;
        for (cd g : got) best = std::min(best, std::abs(g - w));
        EXPECT_LT(best, tol) << w;
    }
}

}  // namespace

DSP_TYPED_SUITE(Polynomial);

// Lines through the time axis and through an x record against
// scipy.stats.linregress, in place; two points, a constant record, failures.
TYPED_TEST(Polynomial, LinesAgainstScipy) {
    DSP_NEED_PYTHON();
    using T = TypeParam;
    const double tol = std::is_same_v<T, float> ? 2e-5 : 1e-12;
    std::vector<double> all;
    for (size_t n : {3, 50, 3000}) {
        const auto v = uniform<double>(2 * n, unsigned(n), 0, 10);  // x, then y
        all.insert(all.end(), v.begin(), v.end());
        for (size_t k = 0; k < n; ++k) all[all.size() - n + k] += 0.01 * double(k);
    }
    const auto want = python(
        "import scipy.stats as st\nat = 0\nfor n in (3, 50, 3000):\n"
        "    u, y = x[at:at + n], x[at + n:at + 2 * n]\n    at += 2 * n\n"
        "    print(*st.linregress(0.25 * np.arange(n), y)[:3], *st.linregress(u, y)[:3])",
        all);
    size_t used = 0, at = 0;
    for (size_t n : {3, 50, 3000}) {
        Rec<T> x(take<T>(all, used, n)), y(take<T>(all, used, n), false, T(0.25)), out;
        EXPECT_OK(DSP(s_lin_regres)(&y, &out), *out, take<T>(want, at, 3), tol);
        EXPECT_OK(DSP(s_lin_regres2)(&x, &y, &y), *y, take<T>(want, at, 3), tol);
    }
    // Two points lie on their line (r = -1); a constant has r = 0.
    Rec<T> two({3, 1}, false, T(0.5)), flat({2, 2, 2}), out({9});
    EXPECT_OK(DSP(s_lin_regres)(&two, &out), *out, {-4, 3, -1});
    EXPECT_OK(DSP(s_lin_regres)(&flat, &out), *out, {0, 2, 0});
    // Failures leave the result: one point, delta 0, complex, all x equal,
    // unequal lengths.
    Rec<T> one({1}), zero({1, 2}, false, T(0)), c({1, 2, 3, 4}, true), same({5, 5}), r({9});
    for (sig<T> *in : {one.get(), zero.get(), c.get()}) EXPECT_EQ(DSP(s_lin_regres)(in, &r), -1);
    for (sig<T> *x : {same.get(), flat.get(), c.get()})
        EXPECT_EQ(DSP(s_lin_regres2)(x, &two, &r), -1);
    expect_values<T>(*r, {9});
}

// Real and complex fits of several sizes and degrees against np.polyfit
// (reversed: the library lists x^0 first), their values by peval against
// np.polyval (in place for the complex ones), singular and short fits.
TYPED_TEST(Polynomial, FitsAndValuesAgainstNumpy) {
    DSP_NEED_PYTHON();
    using T = TypeParam;
    const double tol = std::is_same_v<T, float> ? 2e-5 : 1e-11;
    std::vector<double> all;  // per case 2n scalars of complex x, then of y
    for (int n : {1, 20, 200}) {
        const auto v = uniform<double>(size_t(4 * n), unsigned(n), -2, 3);
        all.insert(all.end(), v.begin(), v.end());
    }
    const auto want = python(
        "at = 0\nfor n, d in ((1, 0), (20, 3), (200, 5)):\n"
        "    u, y = x[at:at + 2 * n], x[at + 2 * n:at + 4 * n]\n    at += 4 * n\n"
        "    c = np.polyfit(u[:n], y[:n], d)\n"
        "    zx, zy = u[0::2] + 1j * u[1::2], y[0::2] + 1j * y[1::2]\n"
        "    z = np.polyfit(zx, zy, d)\n    v = np.polyval(z, zx)\n"
        "    print(*c[::-1], *np.polyval(c, u[:n]), *np.column_stack([z.real, "
        "z.imag])[::-1].ravel(),"
        " *np.column_stack([v.real, v.imag]).ravel())",
        all);
    size_t used = 0, at = 0;
    for (auto [n, d] : std::vector<std::array<int, 2>>{{1, 0}, {20, 3}, {200, 5}}) {
        SCOPED_TRACE(n);
        Rec<T> cx(take<T>(all, used, size_t(2 * n)), true),
            cy(take<T>(all, used, size_t(2 * n)), true);
        // The real x is the first n scalars of cx's storage, not owned.
        Rec<T> x, y(std::vector<T>(cy->data, cy->data + n)), c, v;
        *x = wrap(cx->data, n);
        ASSERT_LE(at + size_t(3 * (d + 1) + 3 * n), want.size());
        EXPECT_OK(DSP(s_psolve)(&x, &y, &c, d), *c, take<T>(want, at, size_t(d + 1)), tol);
        EXPECT_OK(DSP(s_peval)(&c, &x, &v), *v, take<T>(want, at, size_t(n)), tol * 10);
        EXPECT_OK(DSP(s_psolve)(&x, &y, &y, d), *y, c.values());  // the result in y
        EXPECT_OK(DSP(s_pcsolve)(&cx, &cy, &c, d), *c, take<T>(want, at, size_t(2 * d + 2)), tol);
        EXPECT_OK(DSP(s_peval)(&c, &cx, &cx), *cx, take<T>(want, at, size_t(2 * n)), tol * 10);
    }
    EXPECT_EQ(at, want.size());
    // Failures leave the result: fewer distinct x than terms, too few
    // points, a negative degree, unequal lengths, complex records.
    Rec<T> x({1, 1, 1, 2, 2}), y({1, 2, 3, 4, 5}), z({1, 0, 2, 0, 3, 0, 4, 0, 5, 0}, true);
    Rec<T> shorter({1, 2, 3}), r({9});
    EXPECT_EQ(DSP(s_psolve)(&x, &y, &r, 2), -1);
    EXPECT_EQ(DSP(s_pcsolve)(&x, &z, &r, 2), -1);
    EXPECT_EQ(DSP(s_psolve)(&shorter, &shorter, &r, 3), -1);
    EXPECT_EQ(DSP(s_psolve)(&x, &y, &r, -1), -1);
    EXPECT_EQ(DSP(s_psolve)(&shorter, &y, &r, 1), -1);
    EXPECT_EQ(DSP(s_psolve)(&x, &z, &r, 1), -1);
    expect_values<T>(*r, {9});
}

// cos(x) on x clustered in [10, 11], degree 6: the Vandermonde matrix (unit
// columns) has a condition number near 3e11, which the normal equations
// square: their fit misses by over 1e-6 where the least-squares residual is
// 3e-8. The QR solution gives numpy's fitted values to 1e-9.
TEST(PolynomialDouble, ClusteredFitHoldsWhereNormalEquationsFail) {
    DSP_NEED_PYTHON();
    std::vector<double> xs, ys;
    for (int k = 0; k < 40; ++k) {
        xs.push_back(10 + k / 39.0);
        ys.push_back(std::cos(xs.back()));
    }
    const auto want = python(
        "y = np.cos(x)\nV = np.vander(x, 7, increasing=True)\n"
        "ne = np.linalg.solve(V.T @ V, V.T @ y)\n"
        "print(np.max(np.abs(V @ ne - y)), *np.polyval(np.polyfit(x, y, 6), x))",
        xs);
    ASSERT_EQ(want.size(), 41u);
    EXPECT_GT(want[0], 1e-6);
    Rec<double> x(xs), y(ys), c, v;
    ASSERT_TRUE(dsps_psolve(&x, &y, &c, 6) == 0 && dsps_peval(&c, &x, &v) == 0);
    for (int k = 0; k < 40; ++k) EXPECT_NEAR(v->data[k], want[k + 1], 1e-9) << k;
}

// Roots of a polynomial with a triple root, a real root and two conjugate
// pairs; random real and complex polynomials against np.roots; roots at 0;
// coefficients back from the roots.
TYPED_TEST(Polynomial, RootsAndCoefficients) {
    using T = TypeParam;
    // (x - 1)^3 (x + 2) (x^2 + 1) (x^2 + 2x + 5), built from its roots.
    Rec<T> p({1, 0, 1, 0, 1, 0, -2, 0, 0, 1, 0, -1, -1, 2, -1, -2}, true);
    EXPECT_OK(DSP(i_pztoc)(&p), *p, {-10, 0, 21, 0, -17, 0, 15, 0, -7, 0, -5, 0, 1, 0, 1, 0, 1, 0});
    ASSERT_TRUE(DSP(i_real)(&p) == 0 && DSP(i_proots)(&p) == 0);
    const std::vector<cd> r = points<T>(*p);
    expect_roots(r, {{-2, 0}, {-1, -2}, {-1, 2}, {0, -1}, {0, 1}, {1, 0}, {1, 0}, {1, 0}}, 1e-4);
    // Sorted by real part; conjugate pairs exact from real coefficients.
    for (size_t k = 1; k < r.size(); ++k) EXPECT_LE(r[k - 1].real(), r[k].real());
    EXPECT_EQ(r[1], std::conj(r[2]));
    EXPECT_EQ(r[3], std::conj(r[4]));

    // Zero low-order coefficients are roots at 0; a constant has no roots;
    // the zero polynomial, a NaN coefficient and roots beyond the range fail.
    // No roots give 1.
    Rec<T> low({0, 0, 2, -3, 1}), constant({5}), zero({0, 0}), empty, bad({1, NAN, 2});
    Rec<T> huge({std::numeric_limits<T>::max(), 0, std::numeric_limits<T>::denorm_min()});
    for (sig<T> *f : {&zero, &huge, &bad}) EXPECT_EQ(DSP(i_proots)(f), -1);
    expect_values<T>(*zero, {0, 0});
    EXPECT_EQ(bad->cplx, 0);
    EXPECT_OK(DSP(i_proots)(&low), *low, {0, 0, 0, 0, 1, 0, 2, 0}, 1e-6);
    EXPECT_OK(DSP(i_proots)(&constant), *constant, {});
    EXPECT_EQ(constant->cplx, 1);
    EXPECT_OK(DSP(i_pztoc)(&empty), *empty, {1});

    // Random degree-20 real and degree-12 complex polynomials; the
    // coefficients come back from the roots (monic, in the leading one's scale).
    DSP_NEED_PYTHON();
    const auto in = uniform<double>(47, 3);  // 21 real, 13 complex
    const auto want = python(
        "a = np.roots(x[20::-1])\nb = np.roots((x[21::2] + 1j * x[22::2])[::-1])\n"
        "for r in (a, b): print(*np.column_stack([r.real, r.imag]).ravel())",
        in);
    ASSERT_EQ(want.size(), 64u);
    const double tol = std::is_same_v<T, float> ? 1e-5 : 1e-10;
    size_t used = 0, at = 0;
    for (int set = 0; set < 2; ++set) {
        Rec<T> q(take<T>(in, used, set ? 26 : 21), set == 1);
        const std::vector<cd> coef = points<T>(*q);
        ASSERT_EQ(DSP(i_proots)(&q), 0);
        std::vector<T> w = take<T>(want, at, set ? 24 : 40);
        expect_roots(points<T>(*q), points<T>(wrap(w.data(), int(w.size() / 2), true)), tol * 10);
        ASSERT_EQ(DSP(i_pztoc)(&q), 0);
        const std::vector<cd> back = points<T>(*q);
        ASSERT_EQ(back.size(), coef.size());
        for (size_t i = 0; i < coef.size(); ++i)
            EXPECT_LT(std::abs(back[i] * coef.back() - coef[i]), tol * 100) << i;
    }
}
