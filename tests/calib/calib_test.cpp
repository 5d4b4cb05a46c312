// Complex matrix class, product and inverse against numpy; the one-port
// error terms recovered from measurements made with their own model; circle
// centres through four points (known circles, noisy points, the near-parallel
// substitute, chords parallel to the axes) and interpolation along circles
// through three points, or along the chord.
#include <algorithm>
#include <cmath>
#include <complex>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "calib/matrix.hpp"
#include "support/python.hpp"
#include "support/support.hpp"

using namespace dsp_test;
using cd = std::complex<double>;
using cmatrix = dsp::calib::matrix<cd>;

namespace {

// Runs f with the matrix allocations failing after `left` successes.
template <class F>
auto with_allocations(long left, F f) {
    struct reset {
        ~reset() { dsp::calib::matrix_allocations_left = -1; }
    } guard;
    dsp::calib::matrix_allocations_left = left;
    return f();
}

// Expects f to throw E with the message.
template <class E, class F>
void throws(F f, const char *message) {
    try {
        f();
        ADD_FAILURE() << "no exception: " << message;
    } catch (const E &x) {
        EXPECT_STREQ(x.what(), message);
    }
}

DSP_TYPED_SUITE(CircleFit);

}  // namespace

TEST(Matrix, SharingExceptionsAndMessages) {
    const cd e[6] = {{1, 2}, {3, 4}, {5, 6}, {7, 8}, {9, 10}, {11, 12}};
    cmatrix a(2, 3, e), b = a;
    const cmatrix &c = a;
    EXPECT_EQ(a.use_count(), 2u);
    b(1, 2) = 0;  // copy on write
    EXPECT_EQ(a.use_count(), 1u);
    EXPECT_EQ(b.row(1)[2], cd(0));
    const char *row = "matrix<T>::row: subscript is out of range!",
               *brackets = "matrix<T>::operator[][]: Subscript out of range!",
               *call = "matrix<T>::operator(): subscript is out of range!";
    throws<std::out_of_range>([&] { a.row(2); }, row);
    throws<std::out_of_range>([&] { c.row(5); }, row);
    throws<std::out_of_range>([&] { a[2][0]; }, brackets);
    throws<std::out_of_range>([&] { c[0][3]; }, brackets);
    throws<std::out_of_range>([&] { a(0, 3); }, call);
    throws<std::out_of_range>([&] { c(2, 0); }, call);
    throws<std::invalid_argument>(
        [&] { a *= b; }, "matrix<T>::operator*=: Inconsistent matrix size in multiplication!");
    throws<std::invalid_argument>([&] { a.inv(); },
                                  "matrix<T>::inv(): Inversion of non-square matrix!");
    throws<std::bad_alloc>([] { with_allocations(0, [] { return cmatrix(2, 2); }); },
                           "std::bad_alloc");
    EXPECT_EQ(c[1][2], cd(11, 12));  // nothing changed by the failures
}

TEST(Matrix, ProductAndInverseMatchNumpy) {
    DSP_NEED_PYTHON();
    // numpy draws complex operands for the products (rows, inner, cols) and
    // the inverses (n) and prints each with its result.
    const std::vector<double> shapes = {1, 1, 1, 3, 2, 4, 4, 4, 4, 7, 5, 3, 16, 9, 11},
                              sizes = {1, 2, 3, 5, 8, 20};
    std::vector<double> in = shapes;
    in.insert(in.end(), sizes.begin(), sizes.end());
    const auto ref = python(R"(
g = np.random.default_rng(1)
def rnd(*shape): return g.uniform(-1, 1, shape) + 1j * g.uniform(-1, 1, shape)
def out(*ms): print(*np.concatenate([m.view(float).ravel() for m in ms]))
for r, k, c in x[:15].astype(int).reshape(-1, 3):
    a, b = rnd(r, k), rnd(k, c)
    out(a, b, a @ b)
for n in x[15:].astype(int):
    m = rnd(n, n)
    out(m, np.linalg.inv(m))
)",
                            in);
    const double *p = ref.data();
    for (size_t s = 0; s < shapes.size(); s += 3) {
        const int rows = int(shapes[s]), inner = int(shapes[s + 1]), cols = int(shapes[s + 2]);
        const double *a = p, *b = a + 2 * rows * inner, *want = b + 2 * inner * cols;
        p = want + 2 * rows * cols;
        std::vector<double> c(size_t(2 * rows * cols) + 1, 5.0);
        EXPECT_EQ(MatrixMult(a, b, c.data(), rows, inner, cols), rows * cols);
        for (int i = 0; i < 2 * rows * cols; ++i) EXPECT_NEAR(c[size_t(i)], want[i], 1e-14 * inner);
        EXPECT_EQ(c.back(), 5.0);
    }
    for (double size : sizes) {
        const int n = int(size);
        std::vector<double> m(p, p + 2 * n * n);
        const double *want = p + 2 * n * n;
        p = want + 2 * n * n;
        EXPECT_EQ(invert(m.data(), n), 1);
        const double norm = std::fabs(*std::max_element(
            want, p, [](double u, double v) { return std::fabs(u) < std::fabs(v); }));
        for (int i = 0; i < 2 * n * n; ++i) EXPECT_NEAR(m[size_t(i)], want[i], 1e-10 * norm) << n;
    }
    // In place: c is a.
    auto sq = uniform(18, 99);
    std::vector<double> c(18);
    MatrixMult(sq.data(), sq.data(), c.data(), 3, 3, 3);
    EXPECT_EQ(MatrixMult(sq.data(), std::vector<double>(sq).data(), sq.data(), 3, 3, 3), 9);
    EXPECT_EQ(sq, c);
}

TEST(Matrix, RefusedSingularAndFailingCases) {
    // Inner above rows and negative sizes are refused; c is left alone.
    const auto a = uniform(2 * 17 * 17, 7);
    std::vector<double> c(8, 5.0), m = a;
    for (auto [rows, inner, cols] :
         {std::tuple{2, 3, 1}, {0, 1, 1}, {-3, -2, 1}, {3, 2, -1}, {-1, 0, 2}})
        EXPECT_EQ(MatrixMult(a.data(), a.data(), c.data(), rows, inner, cols), -1);
    // Out of memory in the matrix code (two operands and the product; the
    // matrix and the pivot record of a large inverse): nothing written.
    for (long left = 0; left <= 3; ++left, m = a) {
        EXPECT_EQ(with_allocations(
                      left, [&] { return MatrixMult(a.data(), a.data(), c.data(), 2, 2, 2); }),
                  left < 3 ? -1 : 4);
        EXPECT_EQ(c[0] == 5.0, left < 3);
        EXPECT_EQ(with_allocations(left, [&] { return invert(m.data(), 17); }), left < 2 ? 0 : 1);
        EXPECT_EQ(m == a, left < 2);
    }
    // Singular, the array unchanged: a zero column, a rank-deficient matrix,
    // a pivot of 1e-12. Not singular: the identity (unchanged), 1e-11.
    std::vector<double> zero_col = {1, 2, 0, 0, 3, 4, 0, 0}, tiny = {1e-12, 0},
                        deficient(a.begin(), a.begin() + 32);
    for (size_t k = 0; k < 8; ++k) deficient[24 + k] = deficient[k] - 2 * deficient[8 + k];
    for (auto *s : {&zero_col, &deficient, &tiny}) {
        const auto before = *s;
        EXPECT_EQ(invert(s->data(), int(std::sqrt(s->size() / 2))), 0);
        EXPECT_EQ(*s, before);
    }
    std::vector<double> id = {1, 0, 0, 0, 0, 0, 1, 0}, small = {0, 1e-11};
    EXPECT_EQ(invert(id.data(), 2) + invert(small.data(), 1) + invert(small.data(), -1), 2);
    EXPECT_EQ(id, (std::vector<double>{1, 0, 0, 0, 0, 0, 1, 0}));
    EXPECT_NEAR(small[1], -1e11, 1e-4);
}

TEST(OnePort, RecoversTheErrorTermsOfItsModel) {
    // Random error terms per point; ideal short, open and load standards at
    // the first half of the points, random ones after; measurements from
    // M = e00 + e01e10 G / (1 - e11 G) in long double.
    const int n = 12;
    std::mt19937 gen(11);
    std::uniform_real_distribution<double> u(-0.6, 0.6);
    auto rnd = [&] { return std::complex<long double>(u(gen), u(gen)); };
    std::vector<double> m[3], g[3], e[3];
    for (int i = 0; i < n; ++i) {
        const std::complex<long double> e00 = rnd(), e11 = rnd(),
                                        terms[3] = {e00, e11, 1.0L + rnd()};
        for (int k = 0; k < 3; ++k) {
            const std::complex<long double> gk = i < n / 2 ? (long double)(k == 2 ? 0 : 2 * k - 1)
                                                           : rnd(),
                                            mk = e00 + terms[2] * gk / (1.0L - e11 * gk);
            for (auto [v, z] : {std::pair{&g[k], gk}, {&m[k], mk}, {&e[k], terms[k]}})
                v->insert(v->end(), {double(z.real()), double(z.imag())});
        }
    }
    const std::vector<double> measured[3] = {m[0], m[1], m[2]};  // (auto would keep a pointer to m)
    auto run = [&](int first, int end) {
        return Compute1PortTerms(m[0].data(), m[1].data(), m[2].data(), g[0].data(), g[1].data(),
                                 g[2].data(), first, end);
    };
    // Empty ranges and running out of memory (three matrices) change nothing.
    EXPECT_EQ(run(4, 4) | run(7, 3), 0);
    for (long left : {0, 1, 2}) EXPECT_EQ(with_allocations(left, [&] { return run(0, n); }), -1);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(m[k], measured[k]);
    EXPECT_EQ(run(2, n - 1), 0);
    for (int k = 0; k < 3; ++k) {  // points 2 .. n - 2 solved, the others kept
        auto want = measured[k];
        std::copy(e[k].begin() + 4, e[k].end() - 2, want.begin() + 4);
        expect_values<double>(wrap(m[k].data(), 2 * n), want, 1e-13);
    }
    // A perfect instrument with ideal standards: e00 = e11 = 0, e01e10 = 1.
    // At the second point two standards are the same: not reported.
    std::vector<double> s = {-1, 0, -1, 0}, o = {1, 0, -1, 0}, l = {0, 0, 0, 0};
    const auto gs = s, go = o, gl = l;
    EXPECT_EQ(
        Compute1PortTerms(s.data(), o.data(), l.data(), gs.data(), go.data(), gl.data(), 0, 2), 0);
    EXPECT_EQ((std::vector<double>{s[0], s[1], o[0], o[1], l[0], l[1]}),
              (std::vector<double>{0, 0, 0, 0, 1, 0}));
}

TYPED_TEST(CircleFit, CentresOfCircles) {
    using T = TypeParam;
    // Index 0: the unit circle at 0, 90, 180 and 270 degrees from cos/sin:
    // (0, 0) up to rounding. 1: the same points exactly, so that the chords
    // are horizontal and vertical: NaN from the slopes. 2: nearly collinear
    // points, chords 5.6 degrees apart (under 10): d itself. Then circles of
    // random centre and radius, four points 40 to 80 degrees apart, every
    // other one with noise of 1e-4 r.
    const int n = 200;
    std::mt19937 gen(21);
    std::uniform_real_distribution<double> u(-1, 1), gap(0.7, 1.4);
    std::normal_distribution<double> noise(0, 1);
    const double q = std::acos(-1.0) / 2;
    std::vector<T> p[4] = {{1, 0, 1, 0, 0, 0},
                           {T(std::cos(q)), 1, 0, 1, 1, T(0.1)},
                           {-1, T(std::sin(4 * q)), -1, 0, 2, 0},
                           {T(std::cos(3 * q)), -1, 0, -1, 3, T(0.2)}};
    std::vector<double> want = {0, 0, NAN, NAN, 3, T(0.2)}, tol(6, 0);
    tol[0] = tol[1] = 4 * ulps<T>();
    for (int i = 0; i < n; ++i) {
        const double cx = 5 * u(gen), cy = 5 * u(gen), r = 0.1 + std::fabs(u(gen));
        double angle = 3 * u(gen), sigma = i % 2 ? 1e-4 * r : 0;
        for (auto &v : p) {
            v.push_back(T(cx + r * std::cos(angle) + sigma * noise(gen)));
            v.push_back(T(cy + r * std::sin(angle) + sigma * noise(gen)));
            angle += gap(gen);
        }
        want.insert(want.end(), {cx, cy});
        tol.insert(tol.end(), 2, 20 * sigma + 5e4 * ulps<T>());
    }
    std::vector<T> centre(2 * (n + 5), T(-7));
    auto fit = [&](T *to, int first, int end) {
        VFP(_CircleFit)(p[0].data(), p[1].data(), p[2].data(), p[3].data(), to, first, end);
    };
    fit(centre.data() + 2, 0, n + 3);
    fit(centre.data(), 4, 4);
    fit(centre.data(), 5, 1);
    EXPECT_EQ(centre[0] + centre[1] + centre.back(), T(-21));
    fit(p[3].data(), 0, n + 3);  // in place: the centres replace d
    for (size_t i = 0; i < want.size(); ++i) {
        EXPECT_TRUE(std::isnan(want[i]) ? std::isnan(centre[i + 2])
                                        : std::fabs(centre[i + 2] - want[i]) <= tol[i])
            << i << " " << centre[i + 2];
        EXPECT_TRUE(p[3][i] == centre[i + 2] || std::isnan(want[i])) << i;
    }
}

TEST(CircularInterpolation, MatchesNumpyAndRefusesBadInput) {
    DSP_NEED_PYTHON();
    // Random reflections (points 5 to 7 collinear, 9 to 11 nearly) at uneven frequencies,
    // queried at random frequencies and then at the data frequencies; numpy
    // fits each circle by solving for x^2 + y^2 + Dx + Ey + F = 0.
    const int n = 12, m = 40 + n;
    std::vector<double> f = uniform(n, 4, 0.1, 1), g = uniform(2 * n, 5, -0.7, 0.7);
    for (int k = 1; k < n; ++k) f[size_t(k)] += f[size_t(k - 1)];
    g[12] = (g[10] + g[14]) / 2, g[13] = (g[11] + g[15]) / 2;
    g[20] = (g[18] + g[22]) / 2 + 3e-4, g[21] = (g[19] + g[23]) / 2;  // nearly: still a circle
    std::vector<double> at = uniform(40, 6, f[0], f[n - 1]), in = f;
    at.insert(at.end(), f.begin(), f.end());
    in.insert(in.end(), g.begin(), g.end());
    in.insert(in.end(), at.begin(), at.end());
    const auto ref = python(R"(
n = 12
f, g, q = x[:n], x[n:3 * n].view(complex), x[3 * n:]
def interp(x):
    k = np.searchsorted(f, x, 'right') - 1
    if f[k] == x: return g[k]
    t = (x - f[k]) / (f[k + 1] - f[k])
    z = g[min(max(k - 1, 0), n - 3):][:3]
    turn = ((z[1] - z[0]).conjugate() * (z[2] - z[0])).imag
    if abs(turn) <= 1e-12 * abs(z[1] - z[0]) * abs(z[2] - z[0]): return g[k] + t * (g[k + 1] - g[k])
    d, e, _ = np.linalg.solve(np.column_stack([z.real, z.imag, np.ones(3)]), -abs(z) ** 2)
    c = complex(-d / 2, -e / 2)
    arc = np.angle((g[k + 1] - c) / (g[k] - c)) % (2 * np.pi)
    return c + (g[k] - c) * np.exp(1j * t * (arc if turn > 0 else arc - 2 * np.pi))
print(*np.array([interp(v) for v in q]).view(float))
)",
                            in);
    std::vector<double> out(2 * m), self = g;
    ASSERT_EQ(CircularInterpolation(f.data(), g.data(), n, at.data(), out.data(), m), 0);
    expect_values<double>(wrap(out.data(), 2 * m), ref, 1e-12);
    EXPECT_EQ(std::vector<double>(out.begin() + 80, out.end()), g);  // data points exactly
    // Two points give the chord.
    const double f2[] = {f[0], f[n - 1]}, g2[] = {g[0], g[1], g[2 * n - 2], g[2 * n - 1]};
    std::vector<double> chord(80);
    ASSERT_EQ(CircularInterpolation(f2, g2, 2, at.data(), chord.data(), 40), 0);
    for (int j = 0; j < 80; ++j) {
        const double t = (at[size_t(j / 2)] - f[0]) / (f[n - 1] - f[0]);
        EXPECT_NEAR(chord[size_t(j)], g2[j % 2] + t * (g2[2 + j % 2] - g2[j % 2]), 1e-12) << j;
    }
    // The result written over the reflections themselves.
    ASSERT_EQ(CircularInterpolation(f.data(), self.data(), n, at.data() + 20, self.data(), n), 0);
    EXPECT_EQ(self, std::vector<double>(out.begin() + 40, out.begin() + 64));
    // Refused, nothing written: no points, a negative count, frequencies
    // not increasing or NaN, queries outside the range or NaN. One point
    // answers at its own frequency only; no queries: nothing to do.
    // (The bad frequencies are queried at 2, within their own first and last.)
    const double nan = NAN, down[] = {1, 3, 2}, flat[] = {1, 2, 2}, bad[] = {1, nan, 3}, two = 2,
                 outside[] = {f[0] - 1e-9, f[n - 1] * (1 + 1e-15), nan}, *fp = f.data();
    std::vector<double> r(4, 9.0);
    for (auto [freq, count, q, queries] : {std::tuple{fp, 0, fp, 1},
                                           {fp, n, fp, -1},
                                           {down, 3, &two, 1},
                                           {flat, 3, &two, 1},
                                           {bad, 3, &two, 1},
                                           {fp, n, outside, 1},
                                           {fp, n, outside + 1, 1},
                                           {fp, n, outside + 2, 1},
                                           {fp, 1, fp + 1, 1}})
        EXPECT_EQ(CircularInterpolation(freq, g.data(), count, q, r.data(), queries), -1);
    EXPECT_EQ(CircularInterpolation(fp, g.data(), n, fp, r.data(), 0), 0);
    EXPECT_EQ(r, std::vector<double>(4, 9.0));
    EXPECT_EQ(CircularInterpolation(fp, g.data(), 1, fp, r.data(), 1), 0);
    EXPECT_EQ(r, (std::vector<double>{g[0], g[1], 9, 9}));
}
