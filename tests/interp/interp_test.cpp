// Linear and cubic-spline interpolation against np.interp and scipy's
// CubicSpline.
#include <cmath>
#include <limits>

#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;

DSP_TYPED_SUITE(Interp);

// Every mode on uniform and tabulated knots, real and complex values, one to
// nine knots, at positions on, between and beyond the knots; the second
// derivatives of the splines.
TYPED_TEST(Interp, AgainstScipy) {
    DSP_NEED_PYTHON();
    using T = TypeParam;
    const double tol = std::is_same_v<T, float> ? 1e-5 : 1e-12;
    std::vector<T> y = uniform<T>(18, 7), xs(9), pos;
    for (int k = 1; k < 9; ++k) xs[k] = xs[k - 1] + T(0.2) + T(0.1) * y[k];
    for (double p : {-0.4, 0.0, 0.1, 0.25, 0.6, 1.37, 1.999, 2.0, 2.6}) pos.push_back(T(p));
    std::vector<double> in(y.begin(), y.end());
    in.insert(in.end(), xs.begin(), xs.end());
    in.insert(in.end(), pos.begin(), pos.end());
    const auto want = python(R"(
from scipy.interpolate import CubicSpline
xs, pos = x[18:27], x[27:]
for n in (1, 2, 3, 4, 9):
    for c in (0, 1):
        for u in (1, 0):
            for mode in (0, 1, 2):
                k = 0.25 * np.arange(n) if u else xs[:n]
                f = x[0:2 * n:2] + 1j * x[1:2 * n:2] if c else x[:n]
                if n == 1:
                    out = [np.full(len(pos), f[0]), np.zeros(1, f.dtype)]
                elif mode == 0:
                    out = [np.interp(pos, k, f)]
                else:
                    s = CubicSpline(k, f, bc_type=['natural', 'not-a-knot'][mode - 1])
                    out = [s(pos), s(k, 2)]
                for a in out[:1 + (mode > 0)]:
                    print(*(np.column_stack([a.real, a.imag]).ravel() if c else a))
)",
                             in);
    size_t at = 0;
    for (int n : {1, 2, 3, 4, 9})
        for (int cplx : {0, 1})
            for (int uniform : {1, 0})
                for (int mode : {DSP_INTERP_LINEAR, DSP_INTERP_NATURAL, DSP_INTERP_NOT_A_KNOT}) {
                    SCOPED_TRACE(::testing::Message() << n << " " << cplx << uniform << mode);
                    Rec<T> f(std::vector<T>(y.begin(), y.begin() + n * (1 + cplx)), cplx, T(0.25));
                    Rec<T> x(std::vector<T>(xs.begin(), xs.begin() + n)), p(pos), out;
                    auto expect = [&](size_t count) {
                        ASSERT_LE(at + count, want.size());
                        for (size_t i = 0; i < count; ++i, ++at)
                            EXPECT_NEAR(out->data[i], want[at], tol * (1 + std::abs(want[at])))
                                << i;
                    };
                    EXPECT_EQ(uniform ? DSP(_interp)(&f, &p, &out, mode)
                                      : DSP(b_inter)(&x, &f, &p, &out, mode),
                              0);
                    EXPECT_EQ(out->n, 9);
                    expect(size_t(9 * (1 + cplx)));
                    if (mode == DSP_INTERP_LINEAR) continue;
                    EXPECT_EQ(uniform ? DSP(_cspline)(&f, &out, mode)
                                      : DSP(b_cspline_2d)(&x, &f, &out, mode),
                              0);
                    EXPECT_EQ(out->n, n);
                    expect(size_t(n * (1 + cplx)));
                }
    EXPECT_EQ(at, want.size());
}

// Exact cases, results in an input record or in caller storage, failures.
TYPED_TEST(Interp, ExactAliasesAndFailures) {
    using T = TypeParam;
    // Not-a-knot ends reproduce a cubic, natural ends a straight line.
    Rec<T> cubic({0, 1, 8, 27, 64}), line({1, 3, 5, 7}), at({1.5, -1, 5}), out;
    EXPECT_OK(DSP(_interp)(&cubic, &at, &out, DSP_INTERP_NOT_A_KNOT), *out, {3.375, -1, 125}, 1e-4);
    EXPECT_OK(DSP(_cspline)(&cubic, &out, DSP_INTERP_NOT_A_KNOT), *out, {0, 6, 12, 18, 24}, 1e-4);
    EXPECT_OK(DSP(_interp)(&line, &at, &out, DSP_INTERP_NATURAL), *out, {4, -1, 11}, 1e-5);
    EXPECT_OK(DSP(_interp)(&line, &at, &out, DSP_INTERP_LINEAR), *out, {4, 1, 7});

    // A complex result written over the caller's array of positions: the
    // record takes storage of its own and the array is left as it was.
    Rec<T> z({0, 1, 2, 3, 4, 5}, true, T(0.5)), ref, p;
    T caller[3] = {T(0.25), T(0.75), T(1)};
    *p = wrap(caller, 3);
    ASSERT_EQ(DSP(_interp)(&z, &p, &ref, DSP_INTERP_NATURAL), 0);
    EXPECT_OK(DSP(_interp)(&z, &p, &p, DSP_INTERP_NATURAL), *p, ref.values());
    EXPECT_EQ(caller[0], T(0.25));
    // Tabulated knots with the result in x or y.
    for (int into : {0, 1}) {
        Rec<T> xk({0, 1, 3}), yk({1, 2, 0}), pos({2});
        sig<T> *o = into ? yk.get() : xk.get();
        EXPECT_OK(DSP(b_inter)(&xk, &yk, &pos, o, DSP_INTERP_LINEAR), *o, {1});
    }
    Rec<T> xk({0, 1, 3}), yk({1, 2, 0}), d;
    ASSERT_EQ(DSP(b_cspline_2d)(&xk, &yk, &d, DSP_INTERP_NATURAL), 0);
    EXPECT_OK(DSP(b_cspline_2d)(&xk, &yk, &yk, DSP_INTERP_NATURAL), *yk, d.values());

    // Failures leave the result as it was.
    const T nan = std::numeric_limits<T>::quiet_NaN();
    Rec<T> r({9}), empty, flat({1, 2}, false, T(0)), back({1, 2}, false, T(-1));
    Rec<T> cpos({1, 0}, true), same({0, 1, 1}), down({0, 2, 1}), holed({0, nan, 2}), two({0, 1});
    Rec<T> cx({0, 0, 1, 0, 2, 0}, true), y3({1, 2, 3});
    for (int mode : {-1, 3}) EXPECT_EQ(DSP(_interp)(&line, &at, &r, mode), -1);
    for (sig<T> *in : {empty.get(), flat.get(), back.get()})
        EXPECT_EQ(DSP(_interp)(in, &at, &r, DSP_INTERP_LINEAR), -1);
    EXPECT_EQ(DSP(_interp)(&line, &cpos, &r, DSP_INTERP_LINEAR), -1);
    EXPECT_EQ(DSP(_cspline)(&line, &r, DSP_INTERP_LINEAR), -1);
    for (sig<T> *x : {same.get(), down.get(), holed.get(), two.get(), cx.get()}) {
        EXPECT_EQ(DSP(b_inter)(x, &y3, &at, &r, DSP_INTERP_NATURAL), -1);
        EXPECT_EQ(DSP(b_cspline_2d)(x, &y3, &r, DSP_INTERP_NATURAL), -1);
    }
    expect_values<T>(*r, {9});
}
