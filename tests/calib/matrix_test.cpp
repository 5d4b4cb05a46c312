// Complex matrix class, product and inverse against numpy, and the one-port
// error terms recovered from measurements made with their own model.
#include "calib/matrix.hpp"

#include <algorithm>
#include <complex>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

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
    const auto measured = m;
    auto run = [&](int first, int end) {
        return Compute1PortTerms(m[0].data(), m[1].data(), m[2].data(), g[0].data(), g[1].data(),
                                 g[2].data(), first, end);
    };
    // Empty ranges and running out of memory (three matrices) change nothing.
    EXPECT_EQ(run(4, 4), 0);
    EXPECT_EQ(run(7, 3), 0);
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
