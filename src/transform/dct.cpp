// Discrete cosine transform (DCT-II) and its exact inverse through the real
// DFT of the even/odd reordered samples.
//
// Forward, for n real samples x:
//   C[k] = (2/n) w[k] sum_{m=0}^{n-1} x[m] cos(pi k (2m + 1) / (2n)),
//   w[0] = sqrt(1/2), w[k] = 1 for k >= 1.
// Reorder v[m] = x[2m] (m < (n+1)/2) and v[n-1-m] = x[2m+1] (m < n/2). Then
//   sum x[m] cos(pi k (2m + 1) / (2n)) = Re(e^(-i pi k / (2n)) V[k]),
// V[k] = sum v[m] e^(-2 pi i k m / n), and as V[n-k] = conj V[k] both C[k]
// and C[n-k] come from one point of the half spectrum. rdft gives
// X = V / n; with the rotation r = e^(-i k t), t = pi / (2n), and
// R = r X[k] (k = 1 .. (n-1)/2, the rotation table):
//   S[k] = Re R,   S[n-k] = -Im R,
//   S[0] = Re X[0],   S[n/2] = sqrt(1/2) Re X[n/2] (even n),
// and C = 2 S with C[0] additionally times sqrt(1/2).
//
// Inverse (a DCT-III): x[m] = sqrt(1/2) C[0] + sum_{k>=1} C[k] cos(pi k (2m+1)/(2n)).
// Halve C, multiply the first value by sqrt(2): that gives S back. Then
// X[0] = S[0], X[k] = conj(r) (S[k] - i S[n-k]), X[n/2] = sqrt(2) S[n/2], the
// unscaled inverse real DFT of that half spectrum (odd flag n mod 2) gives
// v, and v is put back into the natural order.
//
// The single family uses the float constants 0.70710677 and 1.4142135.
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "frame/record.hpp"
#include "transform/fourier.hpp"

namespace dsp {

namespace {

template <class T>
struct dct_cache {
    static inline signal_t<T> work;    // reordering and combination scratch
    static inline bool ready = false;  // work is initialised
    static inline T *rotation = nullptr;
    static inline int32_t rotation_n = 0;  // length the table is for (0: none)
};

template <class T>
constexpr T sqrt_half = single<T> ? T(0.70710677f) : T(0.70710678118654752440);
template <class T>
constexpr T sqrt_two = single<T> ? T(1.4142135f) : T(1.4142135623730950488);

// The rotation table for n: (cos k t, sin k t), k = 1 .. (n-1)/2, t = pi/(2n),
// and a work record of n real points (-1 when either cannot be allocated).
template <class T>
int prepare(int32_t n) {
    using cache = dct_cache<T>;
    if (!cache::ready) {
        init<T>(cache::work);
        cache::ready = true;
    }
    cache::work.cplx = 0;
    cache::work.n = n;
    if (alloc<T>(cache::work) != 0) return -1;
    if (cache::rotation_n == n) return 0;
    std::free(cache::rotation);
    cache::rotation = nullptr;
    cache::rotation_n = 0;
    const int64_t count = (int64_t(n) - 1) / 2;
    if (count > 0) {
        T *r = static_cast<T *>(std::malloc(size_t(2 * count) * sizeof(T)));
        if (!r) return -1;
        const long double t = 3.141592653589793238462643383279502884L / (2.0L * n);
        for (int64_t k = 1; k <= count; ++k) {
            r[2 * (k - 1)] = T(std::cos(t * k));
            r[2 * (k - 1) + 1] = T(std::sin(t * k));
        }
        cache::rotation = r;
    }
    cache::rotation_n = n;
    return 0;
}

template <class T>
int forward(signal_t<T> &x) {
    const int32_t n = x.n;
    if (prepare<T>(n) != 0) return -1;
    T *w = dct_cache<T>::work.data;
    const T *r = dct_cache<T>::rotation;
    T *d = x.data;
    for (int64_t i = 0; i < n; ++i) w[i] = d[i];
    for (int64_t m = 0; 2 * m < n; ++m) d[m] = w[2 * m];
    for (int64_t m = 0; 2 * m + 1 < n; ++m) d[n - 1 - m] = w[2 * m + 1];
    if (rdft<T>(x) != 0) return -1;
    d = x.data;
    if (!x.cplx) {
        w[0] = d[0];  // one point: rdft leaves it real
    } else {
        w[0] = d[0];
        for (int64_t k = 1; k <= (int64_t(n) - 1) / 2; ++k) {
            const T c = r[2 * (k - 1)], s = r[2 * (k - 1) + 1];
            const T xr = d[2 * k], xi = d[2 * k + 1];
            w[k] = c * xr + s * xi;
            w[n - k] = s * xr - c * xi;
        }
        if (n % 2 == 0) w[n / 2] = sqrt_half<T> * d[n];
    }
    x.cplx = 0;
    x.n = n;
    for (int64_t i = 0; i < n; ++i) d[i] = w[i] * T(2);
    d[0] *= sqrt_half<T>;
    return 0;
}

template <class T>
int inverse(signal_t<T> &x) {
    const int32_t n = x.n;
    if (prepare<T>(n) != 0) return -1;
    T *w = dct_cache<T>::work.data;
    const T *r = dct_cache<T>::rotation;
    T *d = x.data;
    for (int64_t i = 0; i < n; ++i) d[i] *= T(0.5);
    d[0] *= sqrt_two<T>;
    for (int64_t i = 0; i < n; ++i) w[i] = d[i];
    // The half spectrum of n/2 + 1 points replaces the samples.
    x.cplx = 1;
    x.n = n / 2 + 1;
    if (alloc<T>(x) != 0) return -1;
    d = x.data;
    d[0] = w[0];
    d[1] = T(0);
    for (int64_t k = 1; k <= (int64_t(n) - 1) / 2; ++k) {
        const T c = r[2 * (k - 1)], s = r[2 * (k - 1) + 1];
        const T sr = w[k], si = -w[n - k];
        d[2 * k] = c * sr - s * si;
        d[2 * k + 1] = c * si + s * sr;
    }
    if (n % 2 == 0) {
        d[n] = w[n / 2] * sqrt_two<T>;
        d[n + 1] = T(0);
    }
    if (irdft<T>(x, n % 2) != 0) return -1;
    d = x.data;
    for (int64_t i = 0; i < n; ++i) w[i] = d[i];
    for (int64_t m = 0; 2 * m < n; ++m) d[2 * m] = w[m];
    for (int64_t m = 0; 2 * m + 1 < n; ++m) d[2 * m + 1] = w[n - 1 - m];
    return 0;
}

}  // namespace

template <class T>
int dct(signal_t<T> &x, int inverse_flag) {
    if (x.cplx) return -1;
    if (x.n < 1) return inverse_flag ? irdft<T>(x, 0) : rdft<T>(x);
    return inverse_flag ? inverse<T>(x) : forward<T>(x);
}

template <class T>
int release_dct_cache() {
    using cache = dct_cache<T>;
    if (cache::ready) {
        destroy<T>(cache::work);
        cache::ready = false;
    }
    std::free(cache::rotation);
    cache::rotation = nullptr;
    cache::rotation_n = 0;
    return 0;
}

#define DSP_INSTANTIATE(T)                   \
    template int dct<T>(signal_t<T> &, int); \
    template int release_dct_cache<T>();
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
