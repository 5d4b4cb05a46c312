// Correlation through the FFT: both records zero-padded to N points, the
// product of x's spectrum with the conjugate of y's transformed back. N is
// the power of two of at least n + lags - 1 points, so that no lag wanted
// receives circular wrap-around (x[i + k] for i + k >= N would otherwise come
// back as x[i + k - N]). The forward transforms carry 1/N each and the
// inverse none, so the product is scaled by N.
#include "binary/corr.hpp"

#include <cstdint>
#include <cstring>

#include "frame/prepare.hpp"
#include "frame/record.hpp"
#include "transform/fft.hpp"
#include "transform/fourier.hpp"

namespace dsp {

namespace {

// The n samples at src as N points of the given kind (a real source widened
// when cplx) at dst, zeros behind them; dst may be src (its block holding the
// samples at the front), which the backward widening allows.
template <class T>
void lay_out(T *dst, const T *src, bool src_cplx, int64_t n, bool cplx, int64_t N) {
    const int s = cplx ? 2 : 1;
    if (cplx && !src_cplx) {
        for (int64_t i = n - 1; i >= 0; --i) {
            const T v = src[i];
            dst[2 * i + 1] = T(0);
            dst[2 * i] = v;
        }
    } else if (dst != src && n > 0) {
        std::memmove(dst, src, size_t(s * n) * sizeof(T));
    }
    for (int64_t i = s * n; i < s * N; ++i) dst[i] = T(0);
}

// Sizes a record for N points of the given kind plus the two scalars a real
// half spectrum needs, keeping the scalars of `keep` points of kind keep_cplx.
template <class T>
int size_for_transform(signal_t<T> &z, int64_t N, bool cplx, int keep, int keep_cplx) {
    z.cplx = 1;
    z.n = int32_t(cplx ? N : N / 2 + 1);
    if (realloc<T>(z, keep, keep_cplx) != 0) return -1;
    z.cplx = cplx ? 1 : 0;
    z.n = int32_t(N);
    return 0;
}

// Tiny records (n + lags - 1 <= 4) are summed directly.
template <class T>
int corr_direct(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &r, int lags, T factor) {
    const int64_t n = x.n;
    T v[8] = {};
    for (int64_t k = 0; k < lags; ++k)
        for (int64_t i = 0; i + k < n; ++i) {
            const T ar = x.cplx ? x.data[2 * (i + k)] : x.data[i + k];
            const T ai = x.cplx ? x.data[2 * (i + k) + 1] : T(0);
            const T br = y.cplx ? y.data[2 * i] : y.data[i];
            const T bi = y.cplx ? -y.data[2 * i + 1] : T(0);
            v[2 * k] += ar * br - ai * bi;
            v[2 * k + 1] += ar * bi + ai * br;
        }
    if (prepare_binary_result<T>(x, y, r) != 0) return -1;
    r.n = lags;
    for (int64_t k = 0; k < lags; ++k) {
        if (r.cplx) {
            r.data[2 * k] = v[2 * k] * factor;
            r.data[2 * k + 1] = v[2 * k + 1] * factor;
        } else {
            r.data[k] = v[2 * k] * factor;
        }
    }
    return 0;
}

template <class T>
int corr_fft(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &r, signal_t<T> &w, int64_t N,
             int lags, T factor) {
    const int64_t n = x.n;
    const bool cplx = x.cplx || y.cplx;
    // y first: r may be y.
    if (size_for_transform<T>(w, N, cplx, 0, 0) != 0) return -1;
    lay_out<T>(w.data, y.data, y.cplx != 0, n, cplx, N);
    // x into r: where r shares x's storage, sizing keeps x's scalars at the
    // front of r's block.
    const bool shared = &r == &x || (r.data && r.data == x.data);
    const int32_t x_cplx = x.cplx;
    if (prepare_binary_result<T>(x, y, r) != 0) return -1;
    const T delta = r.delta;
    if (size_for_transform<T>(r, N, cplx, int(n), x_cplx) != 0) return -1;
    lay_out<T>(r.data, shared ? r.data : x.data, x_cplx != 0, n, cplx, N);
    if ((cplx ? fft<T>(w, 0) | fft<T>(r, 0) : rfft<T>(w) | rfft<T>(r)) != 0) return -1;
    const T g = T(N) * factor;
    T *a = r.data;
    const T *b = w.data;
    for (int64_t k = 0; k < r.n; ++k) {
        const T ar = a[2 * k], ai = a[2 * k + 1], br = b[2 * k], bi = b[2 * k + 1];
        a[2 * k] = (ar * br + ai * bi) * g;
        a[2 * k + 1] = (ai * br - ar * bi) * g;
    }
    if ((cplx ? fft<T>(r, 1) : irfft<T>(r)) != 0) return -1;
    r.n = lags;
    r.delta = delta;
    return 0;
}

}  // namespace

template <class T>
int corr(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &r, signal_t<T> *scratch, int lags,
         int option) {
    if (x.n != y.n || lags < 1 || lags > x.n) return -1;
    const T factor = option ? T(0.5) : T(1);
    int64_t N = 1;
    while (N < int64_t(x.n) + lags - 1) N *= 2;
    if (N < 8) return corr_direct<T>(x, y, r, lags, factor);
    if (N > (int64_t(1) << 30)) return -1;
    signal_t<T> temp;
    init<T>(temp);
    signal_t<T> *w = scratch;
    if (!w || same_storage<T>(w, &x) || same_storage<T>(w, &y) || same_storage<T>(w, &r)) w = &temp;
    const int status = corr_fft<T>(x, y, r, *w, N, lags, factor);
    const int released = destroy<T>(temp);
    return status != 0 ? status : released;
}

#define DSP_INSTANTIATE(T)                                                                       \
    template int corr<T>(const signal_t<T> &, const signal_t<T> &, signal_t<T> &, signal_t<T> *, \
                         int, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
