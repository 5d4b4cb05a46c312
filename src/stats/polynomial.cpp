// Polynomial evaluation and construction from roots.
#include "stats/polynomial.hpp"

#include <cstdint>

#include "frame/buffer.hpp"
#include "frame/record.hpp"

namespace dsp {

using poly::cd;

template <class T>
int peval(const signal_t<T> &coef, const signal_t<T> &x, signal_t<T> &out) {
    // The coefficients are read first: out may be coef.
    const int64_t m = coef.n > 0 ? coef.n : 0;
    buffer<cd> c{size_t(m)};
    if (!c.ok()) return -1;
    for (int64_t i = 0; i < m; ++i) c[i] = poly::point<cd>(coef, i);
    const int32_t xc = x.cplx;
    // Backwards over the points: out may share x's storage.
    const T *xs = size_over<T>(out, x, x.cplx || coef.cplx ? 1 : 0);
    if (!xs) return -1;
    for (int64_t k = int64_t(out.n) - 1; k >= 0; --k) {
        const cd v = xc ? cd(xs[2 * k], xs[2 * k + 1]) : cd(xs[k], 0.0);
        cd s = 0;
        if (out.cplx) {
            for (int64_t i = m - 1; i >= 0; --i) s = s * v + c[i];
        } else {
            double r = 0;
            for (int64_t i = m - 1; i >= 0; --i) r = r * v.real() + c[i].real();
            s = r;
        }
        poly::store<T>(out, k, s);
    }
    return 0;
}

template <class T>
int pztoc(signal_t<T> &x) {
    const int64_t n = x.n > 0 ? x.n : 0;
    buffer<cd> c{size_t(n + 1)};
    if (!c.ok()) return -1;
    // Multiplies by (t - root) one root at a time: c'[i] = c[i - 1] - root c[i].
    c[0] = 1;
    for (int64_t j = 0; j < n; ++j) {
        const cd root = poly::point<cd>(x, j);
        c[j + 1] = c[j];
        for (int64_t i = j; i >= 1; --i) c[i] = c[i - 1] - root * c[i];
        c[0] = -root * c[0];
    }
    const int32_t old_n = x.n;
    x.n = int32_t(n + 1);
    if (realloc<T>(x, old_n, x.cplx) != 0) return -1;
    for (int64_t i = 0; i <= n; ++i) poly::store<T>(x, i, c[i]);
    return 0;
}

#define DSP_INSTANTIATE(T)                                                          \
    template int peval<T>(const signal_t<T> &, const signal_t<T> &, signal_t<T> &); \
    template int pztoc<T>(signal_t<T> &);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
