// Linear and cubic-spline interpolation.
//
// On the interval [x[i], x[i+1]] of width h, with d = (y[i+1] - y[i]) / h and
// the second derivatives M at the knots, the spline is
//   S(x[i] + t) = y[i] + t (d - h (2 M[i] + M[i+1]) / 6) + t^2 M[i] / 2
//                 + t^3 (M[i+1] - M[i]) / (6 h),
// and continuity of the first derivative at the interior knots gives
//   h[i-1] M[i-1] + 2 (h[i-1] + h[i]) M[i] + h[i] M[i+1] = 6 (d[i] - d[i-1]).
// Natural ends set M[0] = M[n-1] = 0. Not-a-knot ends make the third
// derivative continuous at x[1] and x[n-2]:
//   M[0] = ((h0 + h1) M[1] - h0 M[2]) / h1, likewise at the far end,
// which, put into the first and last equations, leaves a tridiagonal system
// in M[1] .. M[n-2] with the first row ((h0 + h1)(h0 + 2 h1) / h1,
// (h1^2 - h0^2) / h1) and its mirror as the last. It is diagonally dominant
// and solved without pivoting. Two knots give the straight line (M = 0) in
// both modes, and three knots with not-a-knot ends the parabola through them.
// Outside the knots the first and last pieces continue.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "frame/buffer.hpp"
#include "frame/prepare.hpp"
#include "frame/record.hpp"
#include "interp/interp.hpp"

namespace dsp {

namespace {

// A tabulated function in double precision: n knots with the abscissae x
// (null: k h), the ordinates y and second derivatives m of `parts` parts
// per knot (interleaved like a record's scalars).
class table {
 public:
    table() = default;
    table(const table &) = delete;
    table &operator=(const table &) = delete;
    ~table() { std::free(store_); }

    // Reads the knots of (x, y), or of y on its uniform grid when x is
    // null, and solves for the second derivatives in a spline mode. -1 for
    // an unknown mode, no knots, complex or unequal x, or abscissae that do
    // not increase.
    template <class T>
    int load(const signal_t<T> *x, const signal_t<T> &y, int mode) {
        mode_ = mode;
        n_ = y.n;
        parts_ = y.cplx ? 2 : 1;
        if (mode < INTERP_LINEAR || mode > INTERP_NOT_A_KNOT || n_ < 1) return -1;
        if (x ? (x->cplx || x->n != n_) : !(y.delta > 0 && std::isfinite(double(y.delta))))
            return -1;
        h_ = double(y.delta);
        const size_t n = size_t(n_), w = size_t(parts_);
        store_ = static_cast<double *>(scratch_alloc(uint64_t(n) * (2 * w + 2), sizeof(double)));
        if (!store_) return -1;
        y_ = store_;
        m_ = y_ + n * w;
        x_ = x ? m_ + n * w : nullptr;
        for (size_t k = 0; k < n * w; ++k) y_[k] = double(y.data[k]);
        if (x) {
            for (size_t k = 0; k < n; ++k) x_[k] = double(x->data[k]);
            for (size_t k = 1; k < n; ++k)
                if (!(x_[k] > x_[k - 1]) || !std::isfinite(x_[k] - x_[k - 1])) return -1;
        }
        if (mode != INTERP_LINEAR) solve(m_ + n * w + (x ? n : 0));
        return 0;
    }

    int parts() const { return parts_; }
    const double *second_derivatives() const { return m_; }

    // The parts of the function at p.
    void value(double p, double *v) const {
        const int64_t n = n_;
        const int w = parts_;
        if (n == 1) {
            for (int c = 0; c < w; ++c) v[c] = y_[c];
            return;
        }
        int64_t i;
        if (x_) {
            i = std::upper_bound(x_, x_ + n, p) - x_ - 1;
            i = std::clamp<int64_t>(i, 0, n - 2);
        } else {
            // Compared so that NaN takes the first piece (and stays NaN).
            const double u = p / h_;
            i = !(u >= 0) ? 0 : (u >= double(n - 2) ? n - 2 : int64_t(u));
        }
        const double h = step(i), t = p - knot(i);
        const double *y0 = y_ + i * w, *y1 = y0 + w;
        if (mode_ == INTERP_LINEAR) {
            for (int c = 0; c < w; ++c)
                v[c] = p <= knot(0)       ? y_[c]
                       : p >= knot(n - 1) ? y_[(n - 1) * w + c]
                                          : y0[c] + (y1[c] - y0[c]) * (t / h);
            return;
        }
        const double *m0 = m_ + i * w, *m1 = m0 + w;
        for (int c = 0; c < w; ++c) {
            const double d = (y1[c] - y0[c]) / h;
            v[c] = y0[c] + t * (d - h * (2 * m0[c] + m1[c]) / 6 +
                                t * (m0[c] / 2 + t * (m1[c] - m0[c]) / (6 * h)));
        }
    }

 private:
    double knot(int64_t i) const { return x_ ? x_[i] : double(i) * h_; }
    double step(int64_t i) const { return x_ ? x_[i + 1] - x_[i] : h_; }

    // The second derivatives; `work` holds n scalars.
    void solve(double *work) {
        const int64_t n = n_;
        const int w = parts_;
        double *m = m_;
        for (int64_t k = 0; k < n * w; ++k) m[k] = 0;
        if (n < 3) return;
        auto slope = [&](int64_t i, int c) {
            return (y_[(i + 1) * w + c] - y_[i * w + c]) / step(i);
        };
        if (n == 3 && mode_ == INTERP_NOT_A_KNOT) {
            for (int c = 0; c < w; ++c) {
                const double v = 2 * (slope(1, c) - slope(0, c)) / (knot(2) - knot(0));
                for (int k = 0; k < 3; ++k) m[k * w + c] = v;
            }
            return;
        }
        const bool knot_ends = mode_ == INTERP_NOT_A_KNOT;
        // Forward elimination over rows i = 1 .. n-2 (work[i]: the reduced
        // upper coefficient; m[i]: the reduced right-hand side).
        for (int64_t i = 1; i <= n - 2; ++i) {
            const double h0 = step(i - 1), h1 = step(i);
            double lower = h0, diag = 2 * (h0 + h1), upper = h1;
            if (knot_ends && i == 1) {
                diag = (h0 + h1) * (h0 + 2 * h1) / h1;
                upper = (h1 * h1 - h0 * h0) / h1;
            }
            if (knot_ends && i == n - 2) {
                lower = (h0 * h0 - h1 * h1) / h0;
                diag = (h0 + h1) * (h1 + 2 * h0) / h0;
            }
            const double den = i == 1 ? diag : diag - lower * work[i - 1];
            work[i] = upper / den;
            for (int c = 0; c < w; ++c) {
                const double rhs = 6 * (slope(i, c) - slope(i - 1, c));
                m[i * w + c] = (i == 1 ? rhs : rhs - lower * m[(i - 1) * w + c]) / den;
            }
        }
        for (int64_t i = n - 3; i >= 1; --i)
            for (int c = 0; c < w; ++c) m[i * w + c] -= work[i] * m[(i + 1) * w + c];
        if (knot_ends) {
            const double h0 = step(0), h1 = step(1), g0 = step(n - 2), g1 = step(n - 3);
            for (int c = 0; c < w; ++c) {
                m[c] = ((h0 + h1) * m[w + c] - h0 * m[2 * w + c]) / h1;
                m[(n - 1) * w + c] =
                    ((g1 + g0) * m[(n - 2) * w + c] - g0 * m[(n - 3) * w + c]) / g1;
            }
        }
    }

    double *store_ = nullptr;
    double *y_ = nullptr, *m_ = nullptr, *x_ = nullptr;
    double h_ = 1;
    int64_t n_ = 0;
    int parts_ = 1;
    int mode_ = INTERP_LINEAR;
};

// f at the positions pos into out (pos.n points of f's kind, pos.delta).
template <class T>
int evaluate(const table &f, const signal_t<T> &pos, signal_t<T> &out) {
    const int w = f.parts();
    const T *p = size_over<T>(out, pos, w == 2 ? 1 : 0);
    if (!p) return -1;
    double v[2];
    for (int64_t k = int64_t(out.n) - 1; k >= 0; --k) {
        f.value(double(p[k]), v);
        for (int c = 0; c < w; ++c) out.data[k * w + c] = T(v[c]);
    }
    return 0;
}

// The second derivatives of f into out, sized as the caller has set it.
template <class T>
void put_second_derivatives(const table &f, signal_t<T> &out) {
    const double *m = f.second_derivatives();
    const int64_t count = int64_t(out.n) * f.parts();
    for (int64_t k = 0; k < count; ++k) out.data[k] = T(m[k]);
}

bool spline_mode(int mode) { return mode == INTERP_NATURAL || mode == INTERP_NOT_A_KNOT; }

}  // namespace

template <class T>
int interp(const signal_t<T> &in, const signal_t<T> &pos, signal_t<T> &out, int mode) {
    table f;
    if (pos.cplx || f.load<T>(nullptr, in, mode) != 0) return -1;
    return evaluate<T>(f, pos, out);
}

template <class T>
int inter(const signal_t<T> &x, const signal_t<T> &y, const signal_t<T> &pos, signal_t<T> &out,
          int mode) {
    table f;
    if (pos.cplx || f.load<T>(&x, y, mode) != 0) return -1;
    return evaluate<T>(f, pos, out);
}

template <class T>
int cspline(const signal_t<T> &in, signal_t<T> &out, int mode) {
    table f;
    if (!spline_mode(mode) || f.load<T>(nullptr, in, mode) != 0) return -1;
    out.delta = in.delta;
    out.n = in.n;
    out.cplx = in.cplx ? 1 : 0;
    if (alloc<T>(out) != 0) return -1;
    put_second_derivatives<T>(f, out);
    return 0;
}

template <class T>
int cspline_2d(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &out, int mode) {
    table f;
    if (!spline_mode(mode) || f.load<T>(&x, y, mode) != 0) return -1;
    if (prepare_binary_result<T>(x, y, out) != 0) return -1;
    put_second_derivatives<T>(f, out);
    return 0;
}

#define DSP_INSTANTIATE(T)                                                                \
    template int interp<T>(const signal_t<T> &, const signal_t<T> &, signal_t<T> &, int); \
    template int inter<T>(const signal_t<T> &, const signal_t<T> &, const signal_t<T> &,  \
                          signal_t<T> &, int);                                            \
    template int cspline<T>(const signal_t<T> &, signal_t<T> &, int);                     \
    template int cspline_2d<T>(const signal_t<T> &, const signal_t<T> &, signal_t<T> &, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
