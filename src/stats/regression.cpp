// Least-squares lines and polynomials.
#include <cmath>
#include <cstdint>
#include <limits>

#include "frame/buffer.hpp"
#include "frame/record.hpp"
#include "stats/polynomial.hpp"

namespace dsp {

namespace {

using poly::cd;

inline double conj_of(double v) { return v; }
inline cd conj_of(cd v) { return std::conj(v); }

// Writes {slope, intercept, r} from the centred sums of the points, which
// are all read before out is sized (out may be an input).
template <class T>
int put_line(signal_t<T> &out, double xm, double ym, double sxx, double sxy, double syy) {
    if (!(sxx > 0)) return -1;
    const double slope = sxy / sxx;
    // A constant y has no correlation: r = 0, as a flat line explains it.
    double r = syy > 0 ? sxy / std::sqrt(sxx * syy) : 0.0;
    r = r > 1 ? 1 : (r < -1 ? -1 : r);
    out.n = 3;
    out.cplx = 0;
    if (alloc<T>(out) != 0) return -1;
    out.data[0] = T(slope);
    out.data[1] = T(ym - slope * xm);
    out.data[2] = T(r);
    return 0;
}

// Centred sums of y against x(k) in two passes; x(k) gives the abscissa.
template <class T, class X>
int line_fit(const signal_t<T> &y, X x, signal_t<T> &out) {
    const int64_t n = y.n;
    if (y.cplx || n < 2) return -1;
    double xs = 0, ys = 0;
    for (int64_t k = 0; k < n; ++k) {
        xs += x(k);
        ys += double(y.data[k]);
    }
    const double xm = xs / double(n), ym = ys / double(n);
    double sxx = 0, sxy = 0, syy = 0;
    for (int64_t k = 0; k < n; ++k) {
        const double dx = x(k) - xm, dy = double(y.data[k]) - ym;
        sxx += dx * dx;
        sxy += dx * dy;
        syy += dy * dy;
    }
    return put_line<T>(out, xm, ym, sxx, sxy, syy);
}

// Least squares of the Vandermonde system sum c[j] x[k]^j = y[k] over the
// scalar type S. Column j is scaled to unit norm; the rows go one at a
// time into the triangular factor R (p x p, row-major, with Q^H y beside
// it) by Givens rotations, so the storage is O(p^2) whatever the length.
template <class S, class T>
int vandermonde_fit(const signal_t<T> &x, const signal_t<T> &y, S *c, int p) {
    const int64_t n = x.n;
    buffer<double> scale{size_t(p)};
    buffer<S> r{uint64_t(p) * uint64_t(p + 1)}, row{size_t(p + 1)};
    if (!scale.ok() || !r.ok() || !row.ok()) return -1;
    for (int j = 0; j < p; ++j) scale[j] = 0;
    for (int64_t k = 0; k < n; ++k) {
        const S xk = poly::point<S>(x, k);
        S v = S(1);
        for (int j = 0; j < p; ++j, v *= xk) scale[j] += std::norm(v);
    }
    for (int j = 0; j < p; ++j) {
        if (!(scale[j] > 0) || !std::isfinite(scale[j])) return -1;
        scale[j] = std::sqrt(scale[j]);
    }
    const size_t w = size_t(p + 1);
    for (size_t i = 0; i < size_t(p) * w; ++i) r[i] = S(0);
    for (int64_t k = 0; k < n; ++k) {
        const S xk = poly::point<S>(x, k);
        S v = S(1);
        for (int j = 0; j < p; ++j, v *= xk) row[j] = v / scale[j];
        row[p] = poly::point<S>(y, k);
        // Rotate the row into R: (R[j][j], row[j]) becomes (rho, 0).
        for (int j = 0; j < p; ++j) {
            S *rj = &r[size_t(j) * w];
            const S f = rj[j], g = row[j];
            if (g == S(0)) continue;
            const double af = std::abs(f), h = std::hypot(af, std::abs(g));
            const double cs = af / h;
            const S sn = (af > 0 ? f / af : S(1)) * conj_of(g) / h;
            for (int i = j; i <= p; ++i) {
                const S a = rj[i], b = row[i];
                rj[i] = cs * a + sn * b;
                row[i] = cs * b - conj_of(sn) * a;
            }
        }
    }
    // Columns that depend on the ones before leave a diagonal at rounding
    // level: the fit is singular.
    double largest = 0;
    for (int j = 0; j < p; ++j) largest = std::fmax(largest, std::abs(r[size_t(j) * w + j]));
    const double tiny = double(n) * std::numeric_limits<double>::epsilon() * largest;
    for (int j = p - 1; j >= 0; --j) {
        const S *rj = &r[size_t(j) * w];
        if (!(std::abs(rj[j]) > tiny)) return -1;
        S s = rj[p];
        for (int i = j + 1; i < p; ++i) s -= rj[i] * c[i];
        c[j] = s / rj[j];
    }
    for (int j = 0; j < p; ++j) c[j] /= scale[j];
    return 0;
}

template <class S, class T>
int polynomial_fit(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &out, int degree) {
    if (x.n != y.n || degree < 0 || x.n <= degree) return -1;
    const int p = degree + 1;
    buffer<S> c{size_t(p)};
    if (!c.ok() || vandermonde_fit<S, T>(x, y, c.get(), p) != 0) return -1;
    out.n = p;
    out.cplx = std::is_same_v<S, cd> ? 1 : 0;
    if (alloc<T>(out) != 0) return -1;
    for (int j = 0; j < p; ++j) poly::store<T>(out, j, cd(c[j]));
    return 0;
}

}  // namespace

template <class T>
int lin_regres(const signal_t<T> &in, signal_t<T> &out) {
    const double delta = double(in.delta);
    return line_fit<T>(
        in, [delta](int64_t k) { return double(k) * delta; }, out);
}

template <class T>
int lin_regres2(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &out) {
    if (x.cplx || x.n != y.n) return -1;
    const T *xd = x.data;
    return line_fit<T>(
        y, [xd](int64_t k) { return double(xd[k]); }, out);
}

template <class T>
int psolve(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &out, int degree) {
    if (x.cplx || y.cplx) return -1;
    return polynomial_fit<double, T>(x, y, out, degree);
}

template <class T>
int pcsolve(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &out, int degree) {
    return polynomial_fit<cd, T>(x, y, out, degree);
}

#define DSP_INSTANTIATE(T)                                                                \
    template int lin_regres<T>(const signal_t<T> &, signal_t<T> &);                       \
    template int lin_regres2<T>(const signal_t<T> &, const signal_t<T> &, signal_t<T> &); \
    template int psolve<T>(const signal_t<T> &, const signal_t<T> &, signal_t<T> &, int); \
    template int pcsolve<T>(const signal_t<T> &, const signal_t<T> &, signal_t<T> &, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
