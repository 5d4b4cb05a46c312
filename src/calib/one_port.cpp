// Complex matrix product and inverse on caller arrays, and the one-port
// error terms solved with them.
#include <algorithm>
#include <complex>
#include <cstddef>
#include <cstdint>

#include "calib/calib.hpp"
#include "calib/matrix.hpp"

namespace dsp::calib {

namespace {

using cd = std::complex<double>;
using cmatrix = matrix<cd>;

// Caller arrays of interleaved doubles hold complex<double> elements.
const cd *elements(const double *p) { return reinterpret_cast<const cd *>(p); }
cd *elements(double *p) { return reinterpret_cast<cd *>(p); }

}  // namespace

int matrix_mult(const double *a, const double *b, double *c, int rows, int inner, int cols) {
    // Products with more inner terms than rows are refused, well defined
    // though they are.
    if (int64_t(inner) * inner > int64_t(rows) * inner) return -1;
    if (rows < 0 || inner < 0 || cols < 0 || int64_t(rows) * cols > INT32_MAX) return -1;
    try {
        const cmatrix left{size_t(rows), size_t(inner), elements(a)};
        const cmatrix right{size_t(inner), size_t(cols), elements(b)};
        const cmatrix product = left * right;
        std::copy(product.data(), product.data() + size_t(rows) * size_t(cols), elements(c));
    } catch (...) {
        return -1;
    }
    return rows * cols;
}

int invert(double *m, int n) {
    if (n < 0) return 0;
    try {
        cmatrix x{size_t(n), size_t(n), elements(m)};
        if (!x.inv()) return 0;
        std::copy(x.data(), x.data() + size_t(n) * size_t(n), elements(m));
    } catch (...) {
        return 0;
    }
    return 1;
}

int compute_1port_terms(double *m1, double *m2, double *m3, const double *g1, const double *g2,
                        const double *g3, int first, int end) {
    if (first >= end) return 0;
    try {
        // Everything the loop needs is allocated here, so a failure leaves
        // every point as it was.
        cmatrix a(3, 3), b(3, 1), x(3, 1);
        const cd one(1, 0);
        double *const m[3] = {m1, m2, m3};
        const double *const g[3] = {g1, g2, g3};
        for (ptrdiff_t i = first; i < end; ++i) {
            // M = e00 + G (e01 e10 - e00 e11) + G M e11 for each standard:
            // rows [G, 1, -G M], right-hand side M.
            for (size_t k = 0; k < 3; ++k) {
                const cd mk = elements(m[k])[i], gk = elements(g[k])[i];
                a(k, 0) = gk;
                a(k, 1) = one;
                a(k, 2) = -gk * mk;
                b(k, 0) = mk;
            }
            // A singular system is not reported: the partly reduced matrix
            // gives the point's terms.
            a.inv();
            cmatrix::multiply(a, b, x);
            const cd x0 = x(0, 0), x1 = x(1, 0), x2 = x(2, 0);
            elements(m1)[i] = x1;            // directivity e00
            elements(m2)[i] = -x2;           // source match e11
            elements(m3)[i] = x0 - x1 * x2;  // reflection tracking e01 e10
        }
    } catch (...) {
        return -1;
    }
    return 0;
}

}  // namespace dsp::calib
