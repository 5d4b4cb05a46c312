// Polynomial roots as the eigenvalues of the companion matrix.
//
// The monic polynomial t^m + a[m-1] t^(m-1) + ... + a[0] is the
// characteristic polynomial of the companion matrix with first row
// -a[m-1], ..., -a[0] and ones on the subdiagonal, which is already upper
// Hessenberg. It is balanced (rows and columns scaled by powers of two until
// their norms match, an exact similarity that evens out coefficients of very
// different sizes) and its eigenvalues are found by the shifted QR
// iteration on the active block [lo, hi], deflating whenever a subdiagonal
// entry falls to rounding level against its diagonal neighbours:
// - real coefficients: Francis double-shift steps (the shifts are the
//   eigenvalues of the trailing 2 x 2 block, a complex pair handled in real
//   arithmetic), chasing a 3 x 3 Householder bulge down the diagonal; a 1 x 1
//   block is a real root, a 2 x 2 block a real pair or a conjugate pair;
// - complex coefficients: single-shift steps with the eigenvalue of the
//   trailing 2 x 2 block nearest its last diagonal entry (Wilkinson), as
//   Givens rotations of H - mu I followed by R Q + mu I.
// After 10 and 20 steps without deflation an exceptional shift breaks
// cycles; a root that needs more than 60 steps makes the call fail, as do
// NaN or infinite coefficients.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "frame/buffer.hpp"
#include "frame/record.hpp"
#include "stats/polynomial.hpp"

namespace dsp {

namespace {

using poly::cd;

constexpr double eps = std::numeric_limits<double>::epsilon();
constexpr int max_steps = 60;

inline double size_of(double v) { return std::fabs(v); }
inline double size_of(cd v) { return std::fabs(v.real()) + std::fabs(v.imag()); }

// Row-major m x m matrix.
template <class S>
struct matrix {
    S *a;
    int m;
    S &operator()(int i, int j) { return a[size_t(i) * size_t(m) + size_t(j)]; }
};

// Scales row i by 1/f and column i by f (f a power of two) until every
// row and column have comparable norms.
template <class S>
void balance(matrix<S> h) {
    constexpr double radix = 2, sq = radix * radix;
    bool done = false;
    for (int sweep = 0; sweep < 100 && !done; ++sweep) {
        done = true;
        for (int i = 0; i < h.m; ++i) {
            double c = 0, r = 0;
            for (int j = 0; j < h.m; ++j)
                if (j != i) {
                    c += size_of(h(j, i));
                    r += size_of(h(i, j));
                }
            if (c == 0 || r == 0 || !std::isfinite(c + r)) continue;
            const double s = c + r;
            // The factor stays well inside the exponent range, so a column
            // of extreme sizes cannot turn it infinite or zero.
            double f = 1, g = r / radix;
            while (c < g && f < 0x1p400) {
                f *= radix;
                c *= sq;
            }
            g = r * radix;
            while (c > g && f > 0x1p-400) {
                f /= radix;
                c /= sq;
            }
            if ((c + r) / f < 0.95 * s) {
                done = false;
                for (int j = 0; j < h.m; ++j) h(i, j) /= f;
                for (int j = 0; j < h.m; ++j) h(j, i) *= f;
            }
        }
    }
}

// The largest lo <= hi whose subdiagonal entry h(lo, lo - 1) is negligible
// (set to zero), or 0.
template <class S>
int active_start(matrix<S> h, int hi, double norm) {
    for (int l = hi; l >= 1; --l) {
        double s = size_of(h(l - 1, l - 1)) + size_of(h(l, l));
        if (s == 0) s = norm;
        if (size_of(h(l, l - 1)) <= eps * s) {
            h(l, l - 1) = S(0);
            return l;
        }
    }
    return 0;
}

template <class S>
double matrix_norm(matrix<S> h) {
    double norm = 0;
    for (int i = 0; i < h.m; ++i)
        for (int j = std::max(i - 1, 0); j < h.m; ++j) norm += size_of(h(i, j));
    return norm;
}

// Eigenvalues of the 2 x 2 block [a b; c d].
void pair_roots(double a, double b, double c, double d, cd *out) {
    const double p = 0.5 * (a - d), disc = p * p + b * c;
    if (disc >= 0) {
        const double z = p + std::copysign(std::sqrt(disc), p);
        out[0] = d + z;
        out[1] = z != 0 ? d - b * c / z : d;
    } else {
        const double q = std::sqrt(-disc);
        out[0] = cd(d + p, -q);
        out[1] = cd(d + p, q);
    }
}

// Reflects rows (columns) k .. k + r - 1 of h by I - tau v v^T, v[0] = 1.
void reflect_rows(matrix<double> h, int k, int r, const double *v, double tau, int j0, int j1) {
    for (int j = j0; j <= j1; ++j) {
        double s = 0;
        for (int i = 0; i < r; ++i) s += v[i] * h(k + i, j);
        s *= tau;
        for (int i = 0; i < r; ++i) h(k + i, j) -= s * v[i];
    }
}
void reflect_cols(matrix<double> h, int k, int r, const double *v, double tau, int i0, int i1) {
    for (int i = i0; i <= i1; ++i) {
        double s = 0;
        for (int j = 0; j < r; ++j) s += v[j] * h(i, k + j);
        s *= tau;
        for (int j = 0; j < r; ++j) h(i, k + j) -= s * v[j];
    }
}

// Householder vector of (x[0], ..., x[r-1]): v with v[0] = 1 and tau so
// that (I - tau v v^T) x = (beta, 0, ...); false when x is zero.
bool householder(const double *x, int r, double *v, double &tau, double &beta) {
    double norm = 0;
    for (int i = 0; i < r; ++i) norm = std::hypot(norm, x[i]);
    if (norm == 0) return false;
    beta = -std::copysign(norm, x[0]);
    const double v0 = x[0] - beta;
    v[0] = 1;
    for (int i = 1; i < r; ++i) v[i] = x[i] / v0;
    tau = -v0 / beta;
    return true;
}

// The deflation loop of both iterations: a 1 x 1 active block is an
// eigenvalue; `pair(lo, hi)` may take a 2 x 2 block whole and returns how
// many eigenvalues it took (0 or 2); otherwise `step(lo, hi, steps)` runs
// one QR step on the block.
template <class S, class Pair, class Step>
int deflate(matrix<S> h, cd *out, Pair pair, Step step) {
    const double norm = matrix_norm(h);
    int hi = h.m - 1, steps = 0;
    while (hi >= 0) {
        const int lo = active_start(h, hi, norm);
        int taken = 0;
        if (lo == hi) {
            out[hi] = h(lo, lo);
            taken = 1;
        } else if (lo == hi - 1) {
            taken = pair(lo, hi);
        }
        if (taken) {
            hi -= taken;
            steps = 0;
        } else if (++steps > max_steps) {
            return -1;
        } else {
            step(lo, hi, steps);
        }
    }
    return 0;
}

// Eigenvalues of a real upper Hessenberg matrix.
int real_eigenvalues(matrix<double> h, cd *out) {
    auto pair = [&](int lo, int hi) {
        pair_roots(h(lo, lo), h(lo, hi), h(hi, lo), h(hi, hi), out + lo);
        return 2;
    };
    auto step = [&](int lo, int hi, int steps) {
        // Shifts from the trailing block: their sum s and product t.
        double s = h(hi - 1, hi - 1) + h(hi, hi);
        double t = h(hi - 1, hi - 1) * h(hi, hi) - h(hi - 1, hi) * h(hi, hi - 1);
        if (steps == 10 || steps == 20) {
            const double e = std::fabs(h(hi, hi - 1)) + std::fabs(h(hi - 1, hi - 2));
            s = 1.5 * e;
            t = e * e;
        }
        // First column of (H - s1)(H - s2), then the bulge chase.
        double x[3] = {h(lo, lo) * h(lo, lo) + h(lo, lo + 1) * h(lo + 1, lo) - s * h(lo, lo) + t,
                       h(lo + 1, lo) * (h(lo, lo) + h(lo + 1, lo + 1) - s),
                       h(lo + 1, lo) * h(lo + 2, lo + 1)};
        for (int k = lo; k <= hi - 1; ++k) {
            const int r = k + 2 <= hi ? 3 : 2;
            double v[3], tau, beta;
            if (k > lo) {
                x[0] = h(k, k - 1);
                x[1] = h(k + 1, k - 1);
                x[2] = r == 3 ? h(k + 2, k - 1) : 0;
            }
            if (!householder(x, r, v, tau, beta)) continue;
            reflect_rows(h, k, r, v, tau, std::max(k - 1, lo), hi);
            if (k > lo) {
                h(k, k - 1) = beta;
                h(k + 1, k - 1) = 0;
                if (r == 3) h(k + 2, k - 1) = 0;
            }
            reflect_cols(h, k, r, v, tau, lo, std::min(k + 3, hi));
        }
    };
    return deflate(h, out, pair, step);
}

// Eigenvalues of a complex upper Hessenberg matrix.
int complex_eigenvalues(matrix<cd> h, cd *out) {
    buffer<double> cs{size_t(h.m)};
    buffer<cd> sn{size_t(h.m)};
    if (!cs.ok() || !sn.ok()) return -1;
    auto step = [&](int lo, int hi, int steps) {
        cd mu;
        if (steps == 10 || steps == 20) {
            mu = std::fabs(h(hi, hi - 1).real()) +
                 (hi - 2 >= lo ? std::fabs(h(hi - 1, hi - 2).real()) : 0.0);
        } else {
            // The eigenvalue of the trailing block nearest h(hi, hi).
            const cd a = h(hi - 1, hi - 1), b = h(hi - 1, hi), c = h(hi, hi - 1), d = h(hi, hi);
            const cd p = 0.5 * (a - d), q = std::sqrt(p * p + b * c);
            const cd z = std::real(std::conj(p) * q) >= 0 ? p + q : p - q;
            mu = z != cd(0) ? d - b * c / z : d;
        }
        for (int k = lo; k <= hi; ++k) h(k, k) -= mu;
        for (int k = lo; k < hi; ++k) {
            const cd f = h(k, k), g = h(k + 1, k);
            const double af = std::abs(f), r = std::hypot(af, std::abs(g));
            cs[k] = r > 0 ? af / r : 1;
            sn[k] = r > 0 ? (af > 0 ? f / af : cd(1)) * std::conj(g) / r : cd(0);
            for (int j = k; j <= hi; ++j) {
                const cd u = h(k, j), w = h(k + 1, j);
                h(k, j) = cs[k] * u + sn[k] * w;
                h(k + 1, j) = cs[k] * w - std::conj(sn[k]) * u;
            }
        }
        for (int k = lo; k < hi; ++k)
            for (int i = lo; i <= std::min(k + 1, hi); ++i) {
                const cd u = h(i, k), w = h(i, k + 1);
                h(i, k) = cs[k] * u + std::conj(sn[k]) * w;
                h(i, k + 1) = cs[k] * w - sn[k] * u;
            }
        for (int k = lo; k <= hi; ++k) h(k, k) += mu;
    };
    return deflate(
        h, out, [](int, int) { return 0; }, step);
}

template <class S>
int companion_roots(const cd *c, int m, cd *out) {
    buffer<S> a{uint64_t(m) * uint64_t(m)};
    if (!a.ok()) return -1;
    matrix<S> h{a.get(), m};
    for (int i = 0; i < m; ++i)
        for (int j = 0; j < m; ++j) h(i, j) = S(i == j + 1 ? 1 : 0);
    for (int j = 0; j < m; ++j) {
        const cd v = -c[m - 1 - j] / c[m];
        // A ratio of coefficients beyond the range has no representable roots.
        if (!std::isfinite(v.real()) || !std::isfinite(v.imag())) return -1;
        if constexpr (std::is_same_v<S, cd>)
            h(0, j) = v;
        else
            h(0, j) = v.real();
    }
    balance<S>(h);
    if constexpr (std::is_same_v<S, cd>)
        return complex_eigenvalues(h, out);
    else
        return real_eigenvalues(h, out);
}

}  // namespace

template <class T>
int proots(signal_t<T> &x) {
    const int64_t n = x.n > 0 ? x.n : 0;
    buffer<cd> c{size_t(n)};
    if (!c.ok()) return -1;
    bool real = true;
    int64_t top = -1, zeros = 0;
    for (int64_t i = 0; i < n; ++i) {
        c[i] = poly::point<cd>(x, i);
        if (!std::isfinite(c[i].real()) || !std::isfinite(c[i].imag())) return -1;
        if (c[i] != cd(0)) top = i;
        if (c[i].imag() != 0) real = false;
    }
    if (top < 0) return -1;
    while (c[zeros] == cd(0)) ++zeros;
    // Zero low-order coefficients are roots at 0; the rest is a polynomial
    // of degree m with a nonzero constant term.
    const int m = int(top - zeros);
    buffer<cd> roots{size_t(top)};
    if (!roots.ok()) return -1;
    for (int64_t i = 0; i < zeros; ++i) roots[size_t(m + i)] = 0;
    if (m > 0) {
        const int status = real ? companion_roots<double>(c.get() + zeros, m, roots.get())
                                : companion_roots<cd>(c.get() + zeros, m, roots.get());
        if (status != 0) return -1;
        // Roots beyond the record's precision would be stored infinite.
        constexpr double top_value = std::numeric_limits<T>::max();
        for (int i = 0; i < m; ++i)
            if (!(std::fabs(roots[size_t(i)].real()) <= top_value &&
                  std::fabs(roots[size_t(i)].imag()) <= top_value))
                return -1;
    }
    std::sort(roots.get(), roots.get() + top, [](cd a, cd b) {
        return a.real() != b.real() ? a.real() < b.real() : a.imag() < b.imag();
    });
    const int32_t old_n = x.n, old_cplx = x.cplx;
    x.n = int32_t(top);
    x.cplx = 1;
    if (realloc<T>(x, old_n, old_cplx) != 0) return -1;
    for (int64_t i = 0; i < top; ++i) poly::store<T>(x, i, roots[size_t(i)]);
    return 0;
}

#define DSP_INSTANTIATE(T) template int proots<T>(signal_t<T> &);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
