// Real FFT and its inverse, DFT of any length, real DFT, Hilbert transform
// and analytic signal.
//
// Real FFT of n = 2h points (n >= 4). The n real samples already lie in
// memory as h complex points z[m] = x[2m] + i x[2m+1]; a complex FFT of
// length h over that storage gives Z[k] = (1/h) sum z[m] e^(-2 pi i k m / h).
// With A = Z[k], B = conj Z[h - k] and W = e^(-2 pi i / n):
//   even part  (A + B) / 2 = (1/h) sum x[2m]   e^(-2 pi i k m / h)
//   odd part   (A - B) / 2i = (1/h) sum x[2m+1] e^(-2 pi i k m / h)
//   X[k] = (1/n) sum x[m] W^(k m) = (even + W^k odd) / 2
//        = ((A + B) - i W^k (A - B)) / 4,
// and, as W^(h - k) = -conj W^k, the partner is
//   X[h - k] = conj((A + B) + i W^k (A - B)) / 4.
// X[0] = (Re Z[0] + Im Z[0]) / 2, X[h] = (Re Z[0] - Im Z[0]) / 2 and
// X[h/2] = conj Z[h/2] / 2. X[h] needs the two scalars after the packed
// samples, so the record is widened first.
//
// The inverse runs the same split backwards: with A = X[k], B = conj X[h - k]
// and P = A + B, Q = i conj(W^k) (A - B), the points Z[k] = P + Q and
// Z[h - k] = conj(P - Q) (Z[0] = (X0 + Xh) + i (X0 - Xh) from the real parts,
// Z[h/2] = 2 conj X[h/2]) go through the unscaled inverse FFT of length h,
// which leaves x[2m] + i x[2m+1] in place: the n real samples in order.
//
// Chirp-z transform of a length n that is not a power of two. With
// k m = (k^2 + m^2 - (k - m)^2) / 2 and the chirp c[k] = e^(-i pi k^2 / n),
//   sum x[m] e^(-2 pi i k m / n) = c[k] sum (x[m] c[m]) conj c[k - m],
// a linear convolution of x c with the even kernel b[j] = conj c[|j|] for
// |j| < n. e^(-i pi k^2 / n) has period 2n in k^2, so k^2 mod 2n (kept by
// an incremental remainder) gives the same chirp without large arguments.
// The convolution is done circularly over M = 2^(t + 2) points, t the
// integer part of log2(n - 1.5): M > 2n - 3, so the kernel's support
// -(n - 1) .. n - 1 never wraps onto a different value (for M = 2n - 2 the
// two copies of b[n - 1] meet at one index and agree). The kernel record
// holds b at 0 .. n - 1 and at M - n + 1 .. M - 1 and is transformed once
// by the forward FFT: K = FFT(b), the spectrum with the factor 1/M that the
// convolution needs, so that the unscaled transform of x c times K,
// transformed back unscaled, is exactly the circular convolution. The vector
// kernels do all of it in two passes over the data (fft_kernel::convolve);
// otherwise the FFT's own 1/M is made good at the end. The transform's own
// factor (1/n forward, 1 inverse) is applied with the final chirp. The inverse direction uses conj
// c, whose kernel spectrum is the reversed conjugate, K'[k] = conj K[(M - k) mod M]: a change of
// direction alone conjugates the chirp and reverses the kernel in place.
#include "transform/fourier.hpp"

#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "elementwise/convert.hpp"
#include "elementwise/differences.hpp"
#include "elementwise/rearrange.hpp"
#include "frame/record.hpp"
#include "transform/fft.hpp"
#include "transform/fft_kernel.hpp"
#include "transform/mixed.hpp"

#if defined(__GNUC__) || defined(__clang__)
#define DSP_RESTRICT __restrict__
#else
#define DSP_RESTRICT
#endif

namespace dsp {

namespace {

constexpr long double pi_l = 3.141592653589793238462643383279502884L;

// True when n is 1, 2, 4, ... (n <= 0 is not).
bool power_of_two(int64_t n) {
    int64_t p = 1;
    while (p < n) p *= 2;
    return n >= 1 && p == n;
}

int log2_of(int64_t n) {
    int b = 0;
    while ((int64_t(1) << b) < n) ++b;
    return b;
}

// ---------------------------------------------------------------------------
// Real FFT split tables: for n = 2^b, the n/4 values (cos, sin) of 2 pi k / n,
// k = 0 .. n/4 - 1, one table per size, kept until free_internal.

template <class T>
struct split_tables {
    static inline T *table[32] = {};
};

template <class T>
const T *split_table(int b) {
    T *&t = split_tables<T>::table[b];
    if (t) return t;
    const int64_t n = int64_t(1) << b;
    const int64_t count = n / 4;
    t = static_cast<T *>(std::malloc(size_t(2 * count) * sizeof(T)));
    if (!t) return nullptr;
    for (int64_t k = 0; k < count; ++k) {
        const long double a = 2 * pi_l * (long double)k / (long double)n;
        t[2 * k] = T(std::cos(a));
        t[2 * k + 1] = T(std::sin(a));
    }
    return t;
}

// The pairs (k, h - k), 1 <= k < h/2, of the split (see the top of this
// file), with A = point k, B = conj point h - k, P = A + B, D = A - B:
//   forward  Q = -i W^k D,       X[k] = (P + Q) / 4,  X[h-k] = conj(P - Q) / 4
//   inverse  Q = i conj(W^k) D,  Z[k] = P + Q,        Z[h-k] = conj(P - Q)
// with W^k = c - i s from the table w. Point k is read and written through
// lo, its partner through hi; the two ranges never meet.
template <bool Inverse, class T>
inline void split_pair(T *DSP_RESTRICT lo, T *DSP_RESTRICT hi, const T *DSP_RESTRICT w, int64_t k) {
    const T ar = lo[2 * k], ai = lo[2 * k + 1];
    const T br = hi[-2 * k], bi = -hi[-2 * k + 1];
    const T pr = ar + br, pim = ai + bi;
    const T dr = ar - br, di = ai - bi;
    const T c = w[2 * k], s = w[2 * k + 1];
    T qr, qi;
    if constexpr (Inverse) {
        qr = -(c * di + s * dr);
        qi = c * dr - s * di;
    } else {
        qr = c * di - s * dr;
        qi = -(c * dr + s * di);
    }
    const T f = Inverse ? T(1) : T(0.25);
    lo[2 * k] = f * (pr + qr);
    lo[2 * k + 1] = f * (pim + qi);
    hi[-2 * k] = f * (pr - qr);
    hi[-2 * k + 1] = -f * (pim - qi);
}

// The pairs on the vectors of the FFT kernel, the rest here.
template <bool Inverse, class T>
void split_pairs(T *d, int64_t h, const T *w) {
    for (int64_t k = fft_kernel::real_split<T>(d, h, w, Inverse); k < h / 2; ++k)
        split_pair<Inverse>(d, d + 2 * h, w, k);
}

// Post-processing of the half-length complex FFT into the half spectrum.
// d holds h = n/2 points Z and room for one more.
template <class T>
void split_forward(T *d, int64_t h, const T *w) {
    const T z0r = d[0], z0i = d[1];
    d[0] = (z0r + z0i) * T(0.5);
    d[1] = T(0);
    d[2 * h] = (z0r - z0i) * T(0.5);
    d[2 * h + 1] = T(0);
    split_pairs<false>(d, h, w);
    d[h] *= T(0.5);  // point h/2: conj Z / 2
    d[h + 1] *= T(-0.5);
}

// The reverse split: half spectrum X[0 .. h] to the h points Z whose
// unscaled inverse FFT is x[2m] + i x[2m+1].
template <class T>
void split_inverse(T *d, int64_t h, const T *w) {
    const T x0 = d[0], xh = d[2 * h];
    d[0] = x0 + xh;
    d[1] = x0 - xh;
    split_pairs<true>(d, h, w);
    d[h] *= T(2);  // point h/2: 2 conj X
    d[h + 1] *= T(-2);
}

// ---------------------------------------------------------------------------
// Chirp-z cache: the chirp (n points) and the kernel spectrum (M points) of
// the last length and direction used.

template <class T>
struct chirp_cache {
    static inline signal_t<T> chirp;
    static inline signal_t<T> kernel;
    static inline bool ready = false;  // the two records are initialised
    static inline int32_t n = 0;       // length they were made for (0: none)
    static inline int inverse = 0;     // direction they were made for
};

// Size of the circular convolution for a chirp-z transform of n points.
int64_t chirp_size(int64_t n) {
    const int t = int(std::log(double(n) - 1.5) / 0.6931472);
    int64_t m = int64_t(1) << (t + 2);
    while (m < 2 * n - 2) m *= 2;  // guards the rounding of the logarithm
    return m;
}

template <class T>
int prepare_chirp(int32_t n, int inverse) {
    using cache = chirp_cache<T>;
    if (!cache::ready) {
        init<T>(cache::chirp);
        init<T>(cache::kernel);
        cache::ready = true;
    }
    if (cache::n == n) {
        if (cache::inverse != inverse) {
            T *c = cache::chirp.data;
            for (int64_t k = 0; k < n; ++k) c[2 * k + 1] = -c[2 * k + 1];
            T *K = cache::kernel.data;
            const int64_t m = cache::kernel.n;
            K[1] = -K[1];
            K[m + 1] = -K[m + 1];  // point m/2 is its own mirror
            for (int64_t k = 1; k < m / 2; ++k) {
                T *a = K + 2 * k, *b = K + 2 * (m - k);
                const T re = a[0], im = a[1];
                a[0] = b[0];
                a[1] = -b[1];
                b[0] = re;
                b[1] = -im;
            }
            cache::inverse = inverse;
        }
        return 0;
    }
    cache::n = 0;
    const int64_t m = chirp_size(n);
    signal_t<T> &c = cache::chirp;
    signal_t<T> &K = cache::kernel;
    c.cplx = 1;
    c.n = n;
    K.cplx = 1;
    K.n = int32_t(m);
    if (alloc<T>(c) != 0 || alloc<T>(K) != 0) return -1;
    // c[k] = e^(-+ i pi (k^2 mod 2n) / n), the remainder kept incrementally.
    const long double sign = inverse ? 1.0L : -1.0L;
    int64_t r = 0;
    for (int64_t k = 0; k < n; ++k) {
        const long double a = pi_l * (long double)r / (long double)n;
        c.data[2 * k] = T(std::cos(a));
        c.data[2 * k + 1] = T(sign * std::sin(a));
        r += 2 * k + 1;
        if (r >= 2 * int64_t(n)) r -= 2 * int64_t(n);
    }
    // Kernel b[j] = conj c[|j|], placed circularly, then its spectrum.
    T *kd = K.data;
    for (int64_t i = 0; i < 2 * m; ++i) kd[i] = T(0);
    for (int64_t j = 0; j < n; ++j) {
        kd[2 * j] = c.data[2 * j];
        kd[2 * j + 1] = -c.data[2 * j + 1];
    }
    for (int64_t j = 1; j < n; ++j) {
        kd[2 * (m - j)] = c.data[2 * j];
        kd[2 * (m - j) + 1] = -c.data[2 * j + 1];
    }
    if (fft<T>(K, 0) != 0) return -1;  // with the 1/M of the convolution
    cache::n = n;
    cache::inverse = inverse;
    return 0;
}

// Chirp-z transform of the n points of x (n >= 2, not a power of two) in
// the given direction, with the library's scaling. delta is left as found.
template <class T>
int chirp_z(signal_t<T> &x, int inverse) {
    const int32_t n = x.n;
    const T delta = x.delta;
    if (prepare_chirp<T>(n, inverse) != 0) return -1;
    const T *c = chirp_cache<T>::chirp.data;
    const T *K = chirp_cache<T>::kernel.data;
    const int32_t m = chirp_cache<T>::kernel.n;
    if (rtoc<T>(x) != 0) return -1;
    const T s = inverse ? T(1) : T(1.0 / double(n));
    // Room for the m points of the convolution, keeping the n points.
    x.n = m;
    if (realloc<T>(x, n, 1) != 0) return -1;
    x.n = n;
    const int status = chirp_convolve<T>(x.data, log2_of(m), c, K, n, s);
    if (status < 0) return -1;
    if (status > 0) {
        // Through the plain transforms: chirp, zeros to m, forward FFT (its
        // 1/m made good at the end), kernel spectrum, inverse FFT, chirp.
        T *d = x.data;
        for (int64_t k = 0; k < n; ++k) {
            const T re = d[2 * k], im = d[2 * k + 1];
            d[2 * k] = re * c[2 * k] - im * c[2 * k + 1];
            d[2 * k + 1] = re * c[2 * k + 1] + im * c[2 * k];
        }
        if (zpad<T>(x, m) != 0) return -1;
        if (fft<T>(x, 0) != 0) return -1;
        d = x.data;
        for (int64_t k = 0; k < m; ++k) {
            const T re = d[2 * k], im = d[2 * k + 1];
            d[2 * k] = re * K[2 * k] - im * K[2 * k + 1];
            d[2 * k + 1] = re * K[2 * k + 1] + im * K[2 * k];
        }
        if (fft<T>(x, 1) != 0) return -1;
        x.n = n;
        d = x.data;
        const T sm = s * T(m);
        for (int64_t k = 0; k < n; ++k) {
            const T re = d[2 * k], im = d[2 * k + 1];
            d[2 * k] = sm * (re * c[2 * k] - im * c[2 * k + 1]);
            d[2 * k + 1] = sm * (re * c[2 * k + 1] + im * c[2 * k]);
        }
    }
    x.delta = delta;
    return 0;
}

// The DFT of a length that is not a power of two: mixed radix for lengths
// with factors 2, 3, 5 and 7 only, the chirp-z transform for the others.
template <class T>
int any_length(signal_t<T> &x, int inverse) {
    return smooth(x.n) ? mixed_dft<T>(x, inverse) : chirp_z<T>(x, inverse);
}

}  // namespace

// ---------------------------------------------------------------------------

template <class T>
int rfft(signal_t<T> &x) {
    if (x.cplx) return -1;
    const int64_t n = x.n;
    if (!power_of_two(n)) return -1;
    const T delta = x.delta;
    if (n == 1) {
        x.delta = transformed_spacing(delta, T(1));
        return 0;
    }
    if (n == 2) {
        if (rtoc<T>(x) != 0) return -1;
        T *d = x.data;
        const T x0 = d[0], x1 = d[2];
        d[0] = (x0 + x1) * T(0.5);
        d[1] = T(0);
        d[2] = (x0 - x1) * T(0.5);
        d[3] = T(0);
        x.delta = transformed_spacing(delta, T(2));
        return 0;
    }
    const T *w = split_table<T>(log2_of(n));
    if (!w) return -1;
    // Widen keeping the packed samples: they are the h complex points.
    x.cplx = 1;
    if (realloc<T>(x, int(n), 0) != 0) return -1;
    signal_t<T> half = x;
    half.n = int32_t(n / 2);
    if (fft<T>(half, 0) != 0) return -1;
    split_forward(x.data, n / 2, w);
    x.n = int32_t(n / 2 + 1);
    x.delta = transformed_spacing(delta, T(n));
    return 0;
}

template <class T>
int irfft(signal_t<T> &x) {
    const int64_t n = x.n;
    const int64_t N = 2 * (n - 1);
    if (!x.cplx || N < 4 || !power_of_two(N)) {
        // Small or unusual inputs take the plain route: rebuild the full
        // spectrum, inverse FFT, real part.
        if (orecon<T>(x, 0) != 0) return -1;
        if (fft<T>(x, 1) != 0) return -1;
        return real<T>(x);
    }
    const T *w = split_table<T>(log2_of(N));
    if (!w) return -1;
    const T delta = x.delta;
    split_inverse(x.data, N / 2, w);
    signal_t<T> half = x;
    half.n = int32_t(N / 2);
    if (fft<T>(half, 1) != 0) return -1;
    x.cplx = 0;
    x.n = int32_t(N);
    x.delta = transformed_spacing(delta, T(N));
    return 0;
}

template <class T>
int dft(signal_t<T> &x, int inverse) {
    const int32_t n = x.n;
    if (n < 2) {
        x.delta = transformed_spacing(x.delta, T(1));
        return 0;
    }
    if (power_of_two(n)) return fft<T>(x, inverse);
    const T delta = x.delta;
    if (any_length<T>(x, inverse ? 1 : 0) != 0) return -1;
    x.delta = transformed_spacing(delta, T(n));
    return 0;
}

template <class T>
int rdft(signal_t<T> &x) {
    if (x.cplx) return -1;
    const int32_t n = x.n;
    if (power_of_two(n)) return rfft<T>(x);
    if (n >= 2) {
        const T delta = x.delta;
        if (any_length<T>(x, 0) != 0) return -1;
        x.delta = transformed_spacing(delta, T(n));
        x.n = n / 2 + 1;
        return 0;
    }
    // n = 1 keeps its single sample; n <= 0 has none.
    x.delta = transformed_spacing(x.delta, T(1));
    return 0;
}

template <class T>
int irdft(signal_t<T> &x, int odd) {
    if (!odd && x.n >= 2 && power_of_two(2 * (int64_t(x.n) - 1))) return irfft<T>(x);
    if (orecon<T>(x, odd) != 0) return -1;
    const int32_t n = x.n;
    if (n < 2) {
        x.delta = transformed_spacing(x.delta, T(1));
    } else if (!power_of_two(n)) {
        const T delta = x.delta;
        if (any_length<T>(x, 1) != 0) return -1;
        x.delta = transformed_spacing(delta, T(n));
    } else if (fft<T>(x, 1) != 0) {
        return -1;
    }
    return real<T>(x);
}

template <class T>
int hilbert(signal_t<T> &x) {
    const int64_t n = x.n;
    if (n < 1) return 0;
    const bool was_complex = x.cplx != 0;
    if (dft<T>(x, 0) != 0) return -1;
    T *d = x.data;
    if (!x.cplx) {
        d[0] = T(0);  // a single real point: only DC, removed
    } else {
        d[0] = d[1] = T(0);
        for (int64_t k = 1; k < (n + 1) / 2; ++k) {  // times -i
            const T re = d[2 * k];
            d[2 * k] = d[2 * k + 1];
            d[2 * k + 1] = -re;
        }
        if (n % 2 == 0) d[n] = d[n + 1] = T(0);
        for (int64_t k = n / 2 + 1; k < n; ++k) {  // times +i
            const T re = d[2 * k];
            d[2 * k] = -d[2 * k + 1];
            d[2 * k + 1] = re;
        }
    }
    if (dft<T>(x, 1) != 0) return -1;
    return was_complex ? 0 : real<T>(x);
}

template <class T>
int analytic(signal_t<T> &x) {
    const int32_t n = x.n;
    if (n < 1) return 0;
    if (dft<T>(x, 0) != 0) return -1;
    if (x.cplx) {
        T *d = x.data;
        for (int64_t i = 2; i < 2 * int64_t((n - 1) / 2 + 1); ++i) d[i] *= T(2);
    }
    x.n = n / 2 + 1;
    if (zpad<T>(x, n) != 0) return -1;
    return dft<T>(x, 1);
}

template <class T>
int release_dft_scratch() {
    using cache = chirp_cache<T>;
    if (cache::ready) {
        destroy<T>(cache::chirp);
        destroy<T>(cache::kernel);
        cache::ready = false;
    }
    cache::n = 0;
    cache::inverse = 0;
    for (T *&t : split_tables<T>::table) {
        std::free(t);
        t = nullptr;
    }
    release_mixed<T>();
    return 0;
}

#define DSP_INSTANTIATE(T)                     \
    template int rfft<T>(signal_t<T> &);       \
    template int irfft<T>(signal_t<T> &);      \
    template int dft<T>(signal_t<T> &, int);   \
    template int rdft<T>(signal_t<T> &);       \
    template int irdft<T>(signal_t<T> &, int); \
    template int hilbert<T>(signal_t<T> &);    \
    template int analytic<T>(signal_t<T> &);   \
    template int release_dft_scratch<T>();
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
