// Block FIR filtering.
//
// The source of output k is the history (m - 1 points) followed by the
// block: y[k] = sum_j h[j] src[k + m - 1 - j]. Only the first m - 1 outputs
// reach into the history, so the direct path lays out just those points
// (history, then the first points of the block) in working storage and reads
// the block itself for the rest.
//
// The FFT path transforms L points: the block, zeros, and behind them as much
// of the history as fits. Circularly the end of the buffer is the time before
// the block, so the outputs that reach into the history get it from the
// transform itself; with L >= n + m - 1 the whole convolution is exact. A
// shorter L (the block's own length rounded up, chosen when the filter is
// short against the block) leaves the first w = n + m - 1 - L outputs reading
// the block's tail in place of the oldest history points; those w outputs
// are recomputed directly.
#include "filter/fir.hpp"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "elementwise/arith.hpp"
#include "elementwise/rearrange.hpp"
#include "filter/kernels.hpp"
#include "frame/prepare.hpp"
#include "frame/record.hpp"
#include "frame/utility.hpp"
#include "transform/fft.hpp"
#include "transform/fourier.hpp"

namespace dsp {

namespace {

template <class T>
struct fir_state {
    // The transform cache: the filter last transformed (the key, shared by
    // both spectra) and its spectra for real and for complex blocks.
    static inline signal_t<T> key{}, real_spectrum{}, complex_spectrum{};
    static inline bool cache_ready = false;  // the three records are initialised
    static inline bool keyed = false;        // key holds a filter whose spectrum was completed
    // Working storage of the direct loops.
    static inline signal_t<T> work{};
    static inline bool work_ready = false;
};

template <class T>
struct sfir_state {
    static inline signal_t<T> expanded{};
    static inline bool ready = false;
};

// Working storage of at least `scalars` scalars, or null.
template <class T>
T *work_buffer(int64_t scalars) {
    using S = fir_state<T>;
    if (!S::work_ready) {
        init<T>(S::work);
        S::work_ready = true;
    }
    if (scalars > INT32_MAX) return nullptr;
    S::work.cplx = 0;
    S::work.n = int32_t(scalars);
    return alloc<T>(S::work) == 0 ? S::work.data : nullptr;
}

template <class T>
void copy_scalars(T *dst, const T *src, int64_t count) {
    if (count > 0) std::memcpy(dst, src, size_t(count) * sizeof(T));
}

template <class T>
void zero_scalars(T *dst, int64_t count) {
    for (int64_t i = 0; i < count; ++i) dst[i] = T(0);
}

// The source of the first outputs: the m1 history points (zeros without a
// history), then `count` points of x; s scalars per point. Null when the
// working storage cannot be had.
template <class T>
const T *head_source(const T *hist, int64_t m1, const T *x, int64_t count, int s) {
    T *w = work_buffer<T>(s * (m1 + count));
    if (!w) return nullptr;
    if (hist)
        copy_scalars(w, hist, s * m1);
    else
        zero_scalars(w, s * m1);
    copy_scalars(w + s * m1, x, s * count);
    return w;
}

// The history becomes the m1 points before the next block: the last m1 of x,
// or the old ones shifted left by n with the n points of x behind them.
template <class T>
void carry_history(signal_t<T> &hist, const T *x, int64_t n, int64_t m1, int s) {
    T *d = hist.data;
    if (n >= m1) {
        copy_scalars(d, x + s * (n - m1), s * m1);
    } else {
        if (n > 0) std::memmove(d, d + s * n, size_t(s * (m1 - n)) * sizeof(T));
        copy_scalars(d + s * (m1 - n), x, s * n);
    }
    hist.n = int32_t(m1);
}

// Outputs 0 .. count - 1 of a real filter, straight from the input and the
// history.
template <class T>
int direct_head(const signal_t<T> &x, T *y, const signal_t<T> &h, const T *hist, int64_t count) {
    const int s = x.cplx ? 2 : 1;
    const int64_t m1 = h.n - 1;
    if (count <= 0) return 0;
    const T *src = head_source(hist, m1, x.data, count, s);
    if (!src) return -1;
    filter_kernel::direct(src, h.data, 1, h.n, s, y, s * count, false);
    return 0;
}

template <class T>
int convolve_direct(const signal_t<T> &x, signal_t<T> &y, const signal_t<T> &h, const T *hist) {
    const int64_t n = x.n, m = h.n, m1 = m - 1;
    if (!h.cplx) {
        const int s = x.cplx ? 2 : 1;
        if (direct_head(x, y.data, h, hist, n < m1 ? n : m1) != 0) return -1;
        if (n > m1)
            filter_kernel::direct(x.data, h.data, 1, m, s, y.data + s * m1, s * (n - m1), false);
        return 0;
    }
    // A complex filter hr + i hi: y = hr * z + hi * (i z) over the complex
    // source z (real samples widened), two runs of the real-filter loop.
    if (n == 0) return 0;
    const int64_t len = m1 + n;
    T *z = work_buffer<T>(4 * len);
    if (!z) return -1;
    T *iz = z + 2 * len;
    const int s = x.cplx ? 2 : 1;
    for (int64_t p = 0; p < len; ++p) {
        const T *v = p < m1 ? (hist ? hist + s * p : nullptr) : x.data + s * (p - m1);
        const T re = v ? v[0] : T(0), im = (v && s == 2) ? v[1] : T(0);
        z[2 * p] = re;
        z[2 * p + 1] = im;
        iz[2 * p] = -im;
        iz[2 * p + 1] = re;
    }
    filter_kernel::direct(z, h.data, 2, m, 2, y.data, 2 * n, false);
    filter_kernel::direct(iz, h.data + 1, 2, m, 2, y.data, 2 * n, true);
    return 0;
}

// The cached spectrum of the real filter h for transforms of L points:
// unscaled, sum_j h[j] e^(-2 pi i k j / L) (the filter is scaled by L, a power
// of two, before the forward transform's 1/L), the half spectrum for real
// blocks, the full one for complex blocks. The key is compared with
// tolerance |h[0]| * 5.9604645e-7 and shared by both spectra, so a filter
// that matches it reuses whatever spectrum of the block's kind is held, even
// one of another length or of an earlier filter.
template <class T>
int filter_spectrum(const signal_t<T> &h, int64_t L, bool complex_block,
                    const signal_t<T> *&spectrum) {
    using S = fir_state<T>;
    if (!S::cache_ready) {
        init<T>(S::key);
        init<T>(S::real_spectrum);
        init<T>(S::complex_spectrum);
        S::cache_ready = true;
    }
    signal_t<T> &sp = complex_block ? S::complex_spectrum : S::real_spectrum;
    spectrum = &sp;
    // The same filter as the key is the common case: its bytes decide at once.
    int differs = 1;
    if (S::keyed && h.n == S::key.n && h.delta == S::key.delta &&
        std::memcmp(h.data, S::key.data, size_t(h.n) * sizeof(T)) == 0)
        differs = 0;
    else if (S::keyed && cmp<T>(h, S::key, std::fabs(h.data[0]) * T(5.9604645e-7), &differs) != 0)
        differs = 1;
    if (!differs) return 0;
    S::keyed = false;
    if (copy<T>(sp, h) != 0 || scale<T>(sp, T(L)) != 0 || zpad<T>(sp, int(L)) != 0 ||
        (complex_block ? fft<T>(sp, 0) : rfft<T>(sp)) != 0) {
        // A spectrum left half built (untransformed, or sized without
        // storage) would be found under the next key: it is no spectrum.
        sp.n = 0;
        return -1;
    }
    if (copy<T>(S::key, h) != 0) return -1;
    S::keyed = true;
    return 0;
}

// Transform length of the FFT path: the whole linear convolution when the
// filter is long against the block (m^2 > 9 n log2 n), else the block
// rounded up to a power of two.
int64_t transform_length(int64_t n, int64_t m) {
    int64_t bits = 0;
    for (int64_t p = 1; p < n; p *= 2) ++bits;
    const int64_t span = m * m > 9 * n * bits ? n + m - 1 : n;
    int64_t L = 1;
    while (L < span) L *= 2;
    return L;
}

// Blocks whose transform would not fit a record go direct.
constexpr int64_t max_transform = int64_t(1) << 29;

template <class T>
int convolve_fft(const signal_t<T> &x, signal_t<T> &y, const signal_t<T> &h, const T *hist,
                 int64_t L) {
    const int64_t n = x.n, m1 = h.n - 1;
    const bool cx = x.cplx != 0;
    const int s = cx ? 2 : 1;
    const signal_t<T> *spectrum = nullptr;
    if (filter_spectrum<T>(h, L, cx, spectrum) != 0) return -1;

    // Room for the spectrum (a real block's half spectrum needs L + 2).
    y.cplx = 1;
    y.n = int32_t(cx ? L : L / 2 + 1);
    if (alloc<T>(y) != 0) return -1;
    y.cplx = cx ? 1 : 0;
    y.n = int32_t(L);
    T *d = y.data;
    const int64_t kept = L - n < m1 ? L - n : m1;
    copy_scalars(d, x.data, s * n);
    if (hist) {
        zero_scalars(d + s * n, s * (L - n - kept));
        copy_scalars(d + s * (L - kept), hist + s * (m1 - kept), s * kept);
    } else {
        zero_scalars(d + s * n, s * (L - n));
    }
    if ((cx ? fft<T>(y, 0) : rfft<T>(y)) != 0) return -1;
    // A spectrum of another length (or none) cannot be applied.
    if (spectrum->n != y.n || !spectrum->cplx) return -1;
    filter_kernel::multiply(y.data, spectrum->data, y.n);
    if ((cx ? fft<T>(y, 1) : irfft<T>(y)) != 0) return -1;
    y.n = int32_t(n);
    y.delta = x.delta;
    // The outputs that read the block's tail in place of history.
    return direct_head(x, y.data, h, hist, n + m1 - L);
}

}  // namespace

template <class T>
int fir(const signal_t<T> &x, signal_t<T> &y, const signal_t<T> &h, signal_t<T> *history) {
    if (x.n < 0) return -1;
    const int64_t m = h.n;
    if (m <= 0) return copy<T>(y, x);
    if (same_storage<T>(&h, &y) || same_storage<T>(history, &x) || same_storage<T>(history, &y) ||
        same_storage<T>(history, &h))
        return -1;
    const int64_t n = x.n, m1 = m - 1;
    const int s = x.cplx ? 2 : 1;
    signal_t<T> *r = &y, *hist = history;
    if (prepare_result<T>(x, &r, &h, &hist, int(m1), PREP_INPLACE) != 0) return -1;
    const T *past = hist ? hist->data : nullptr;
    const int64_t L = transform_length(n, m);
    const bool direct = h.cplx || n < m1 || m < (x.cplx ? 36 : 46) || L > max_transform;
    if ((direct ? convolve_direct<T>(x, *r, h, past) : convolve_fft<T>(x, *r, h, past, L)) != 0)
        return -1;
    if (hist) carry_history(*hist, x.data, n, m1, s);
    return finish_result<T>(*r);
}

template <class T>
int sfir(const signal_t<T> &x, signal_t<T> &y, const signal_t<T> &half, int odd, int antisym,
         signal_t<T> *history) {
    if (x.n < 0) return -1;
    const int64_t k = half.n;
    if (k <= 0) return copy<T>(y, x);
    const int64_t M = 2 * k - (odd ? 1 : 0), m1 = M - 1;
    if (M > INT32_MAX) return -1;
    if (M <= 60 && !half.cplx && x.n >= m1) {
        if (same_storage<T>(&half, &y) || same_storage<T>(history, &x) ||
            same_storage<T>(history, &y) || same_storage<T>(history, &half))
            return -1;
        const int64_t n = x.n;
        const int s = x.cplx ? 2 : 1;
        signal_t<T> *r = &y, *hist = history;
        if (prepare_result<T>(x, &r, &half, &hist, int(m1), PREP_INPLACE) != 0) return -1;
        if (m1 > 0) {
            const T *src = head_source(hist ? hist->data : nullptr, m1, x.data, m1, s);
            if (!src) return -1;
            filter_kernel::symmetric(src, half.data, M, antisym != 0, s, r->data, s * m1);
        }
        filter_kernel::symmetric(x.data, half.data, M, antisym != 0, s, r->data + s * m1,
                                 s * (n - m1));
        if (hist) carry_history(*hist, x.data, n, m1, s);
        return finish_result<T>(*r);
    }
    // The full filter: the half as given, then the half read backwards from
    // just before the centre (odd) or from its last element (even).
    using S = sfir_state<T>;
    if (!S::ready) {
        init<T>(S::expanded);
        S::ready = true;
    }
    signal_t<T> &e = S::expanded;
    e.cplx = half.cplx ? 1 : 0;
    e.n = int32_t(M);
    e.delta = half.delta;
    if (alloc<T>(e) != 0) return -1;
    const int c = half.cplx ? 2 : 1;
    const T sign = antisym ? T(-1) : T(1);
    copy_scalars(e.data, half.data, c * k);
    for (int64_t j = k; j < M; ++j)
        for (int p = 0; p < c; ++p) e.data[c * j + p] = sign * half.data[c * (M - 1 - j) + p];
    return fir<T>(x, y, e, history);
}

template <class T>
int release_fir_scratch() {
    using S = fir_state<T>;
    S::keyed = false;
    if (S::cache_ready) {
        S::cache_ready = false;
        if (destroy<T>(S::key) != 0 || destroy<T>(S::real_spectrum) != 0 ||
            destroy<T>(S::complex_spectrum) != 0)
            return -1;
    }
    if (S::work_ready) {
        S::work_ready = false;
        if (destroy<T>(S::work) != 0) return -1;
    }
    return 0;
}

template <class T>
int release_sfir_scratch() {
    using S = sfir_state<T>;
    if (!S::ready) return 0;
    S::ready = false;
    return destroy<T>(S::expanded);
}

#define DSP_INSTANTIATE(T)                                                                       \
    template int fir<T>(const signal_t<T> &, signal_t<T> &, const signal_t<T> &, signal_t<T> *); \
    template int sfir<T>(const signal_t<T> &, signal_t<T> &, const signal_t<T> &, int, int,      \
                         signal_t<T> *);                                                         \
    template int release_fir_scratch<T>();                                                       \
    template int release_sfir_scratch<T>();
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
