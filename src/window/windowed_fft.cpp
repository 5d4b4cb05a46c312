// The windowed spectrum.
#include "window/windowed_fft.hpp"

#include <algorithm>
#include <cstring>

#include "elementwise/convert.hpp"
#include "elementwise/rearrange.hpp"
#include "frame/record.hpp"
#include "frame/utility.hpp"
#include "transform/fft.hpp"
#include "transform/fourier.hpp"
#include "window/catalogue.hpp"
#include "window/window.hpp"

namespace dsp {

namespace {

bool power_of_two(int n) { return n > 0 && (n & (n - 1)) == 0; }

// The transform length for n points: `length`, or the default when it is 0.
// The FFT (any false) needs a power of two of at least n and defaults to n
// rounded up to one; the DFT (any true) takes any length of at least n and
// defaults to n. -1 when the length is not allowed.
int spectrum_length(int n, int length, bool any) {
    if (any) return length == 0 ? n : (length >= n ? length : -1);
    int m = length;
    if (m == 0) {
        m = 1;
        while (m < n && m <= (1 << 29)) m *= 2;
    }
    return power_of_two(m) && m >= n ? m : -1;
}

// Scalars of the result: a half spectrum (real input) or a full one, as
// complex points or as one real value per point.
int64_t spectrum_scalars(int m, int cplx, int flags) {
    const int64_t points = cplx ? m : m / 2 + 1;
    return (flags & SPECTRUM_FORM_MASK) == SPECTRUM_COMPLEX ? 2 * points : points;
}

template <class T>
int spectrum_into(const signal_t<T> &in, signal_t<T> &work, int kind, int flags, int m, bool any) {
    const int n = in.n;
    if (copy<T>(work, in) != 0) return -1;
    if (window<T>(work, kind, flags & 63) != 0) return -1;
    // A rotated window has its centre at index 0: the padding goes into the
    // middle so that it stays there. Scaling by m/n keeps the level of an
    // unpadded transform.
    const bool rotated = kind == 0 ? (flags & WINDOW_ROTATE) : !(flags & WINDOW_NO_ROTATE);
    if (m > n &&
        zpad2<T>(work, m, (rotated ? ZPAD_PLACE_SPLIT : ZPAD_PLACE_END) | ZPAD_SCALE_RATIO) != 0)
        return -1;
    const int status = any ? (work.cplx ? dft<T>(work, 0) : rdft<T>(work))
                           : (work.cplx ? fft<T>(work, 0) : rfft<T>(work));
    if (status != 0) return -1;
    switch (flags & SPECTRUM_FORM_MASK) {
        case SPECTRUM_MAGNITUDE:
            return mag<T>(work);
        case SPECTRUM_POWER:
            return magsq<T>(work);
        default:
            return 0;
    }
}

// The windowed spectrum by the FFT (any == false) or the DFT of any length.
template <class T>
int windowed_spectrum(const signal_t<T> &in, signal_t<T> &result, signal_t<T> *scratch, int kind,
                      int flags, int length, bool any) {
    const int n = in.n;
    if (n < 1 || (flags & SPECTRUM_FORM_MASK) == SPECTRUM_FORM_MASK) return -1;
    const int m = spectrum_length(n, length, any);
    if (m < 0) return -1;
    // Work in the caller's scratch record, in the result itself when they
    // are the same record, or in a temporary one; the result is sized only
    // for the final form.
    if (scratch == &result) return spectrum_into<T>(in, result, kind, flags, m, any);
    working<T> work(scratch, scratch != &in);
    int status = spectrum_into<T>(in, *work, kind, flags, m, any);
    if (status == 0) status = copy<T>(result, *work);
    return status == 0 ? 0 : -1;
}

}  // namespace

template <class T>
int windowed_fft(const signal_t<T> &in, signal_t<T> &result, signal_t<T> *scratch, int kind,
                 int flags, int length) {
    return windowed_spectrum<T>(in, result, scratch, kind, flags, length, false);
}

template <class T>
int windowed_dft(const signal_t<T> &in, signal_t<T> &result, signal_t<T> *scratch, int kind,
                 int flags, int length) {
    return windowed_spectrum<T>(in, result, scratch, kind, flags, length, true);
}

template <class T>
int windowed_fft_array(const T *in, T *out, int n, int cplx, int kind, int flags, int length) {
    signal_t<T> x, r;
    init<T>(x);
    init<T>(r);
    x.data = const_cast<T *>(in);  // not owned: never written
    x.n = n;
    x.cplx = cplx;
    const int status = windowed_fft<T>(x, r, nullptr, kind, flags, length);
    // Copies the scalars of n input points, at most as many as the result
    // holds; the rest of `out` is left as it was.
    const int64_t want = n > 0 ? scalar_count(n, cplx) : 0;
    const int64_t held = r.n > 0 && r.data ? std::min<int64_t>(scalar_count<T>(r), owned<T>(r)) : 0;
    const int64_t count = std::min(want, held);
    if (count > 0) std::memcpy(out, r.data, size_t(count) * sizeof(T));
    destroy<T>(r);
    return status;
}

int windowed_fft_array_in_place(const float *in, float *out, int n, int cplx, int kind, int flags,
                                int length) {
    dspf_signal x, r;
    init<float>(x);
    init<float>(r);
    x.data = const_cast<float *>(in);
    x.n = n;
    x.cplx = cplx;
    // The result record takes the caller's array as if it owned it: no copy
    // and nothing to destroy. A result larger than the array would have the
    // allocator free the caller's array and take a new block, so such a call
    // fails with -1 before anything is written.
    const int m = spectrum_length(n, length, false);
    if (n < 1 || m < 0 || spectrum_scalars(m, cplx, flags) > scalar_count(n, cplx)) return -1;
    r.data = out;
    r.n = n;
    r.cplx = cplx;
    r.alloc = int32_t(scalar_count(n, cplx));
    return windowed_fft<float>(x, r, nullptr, kind, flags, length);
}

#define DSP_INSTANTIATE(T)                                                                    \
    template int windowed_fft<T>(const signal_t<T> &, signal_t<T> &, signal_t<T> *, int, int, \
                                 int);                                                        \
    template int windowed_dft<T>(const signal_t<T> &, signal_t<T> &, signal_t<T> *, int, int, \
                                 int);                                                        \
    template int windowed_fft_array<T>(const T *, T *, int, int, int, int, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
