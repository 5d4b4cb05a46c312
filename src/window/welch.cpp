// Welch's averaged power spectrum.
#include <cstdint>

#include "frame/utility.hpp"
#include "transform/fourier.hpp"
#include "window/catalogue.hpp"
#include "window/window.hpp"
#include "window/windowed_fft.hpp"

namespace dsp {

namespace {

// True when writing a does not change b.
template <class T>
bool distinct(const signal_t<T> &a, const signal_t<T> &b) {
    return &a != &b && (a.data == nullptr || a.data != b.data);
}

}  // namespace

template <class T>
int averaged_spectrum(const signal_t<T> &in, signal_t<T> &result, signal_t<T> *scratch, int kind,
                      int flags, int segment, int overlap) {
    const int n = in.n;
    const int form = flags & SPECTRUM_FORM_MASK;
    if (n < 1 || (form != SPECTRUM_POWER && form != SPECTRUM_DENSITY)) return -1;
    const int len = segment == 0 ? n : segment;
    if (len < 1 || len > n) return -1;
    const int shared = overlap < 0 ? len / 2 : overlap;
    if (shared >= len) return -1;
    const int64_t step = len - shared;
    const int64_t count = (n - len) / step + 1;
    const int w = in.cplx ? 2 : 1;
    const int bins = in.cplx ? len : len / 2 + 1;
    const int window_flags = (flags & 63) | WINDOW_NO_ROTATE;

    // The sums of the window: ones windowed as every segment will be (the
    // rotation, which only turns the phase, is left out).
    working<T> work_rec(scratch,
                        scratch && distinct<T>(*scratch, in) && distinct<T>(*scratch, result));
    signal_t<T> &work = *work_rec;
    work.n = len;
    work.cplx = 0;
    if (alloc<T>(work) != 0) return -1;
    for (int i = 0; i < len; ++i) work.data[i] = T(1);
    if (window<T>(work, kind, window_flags) != 0) return -1;
    double s1 = 0, s2 = 0;
    for (int i = 0; i < len; ++i) {
        s1 += double(work.data[i]);
        s2 += double(work.data[i]) * double(work.data[i]);
    }
    const double norm = form == SPECTRUM_POWER ? s1 * s1 : s2 / double(in.delta);
    if (!(norm != 0)) return -1;

    // The mean goes into the result, or into a temporary when the result
    // shares the input's storage.
    working<T> sum_rec(&result, distinct<T>(result, in));
    signal_t<T> &sum = *sum_rec;
    sum.n = bins;
    sum.cplx = 0;
    if (alloc<T>(sum) != 0) return -1;
    for (int k = 0; k < bins; ++k) sum.data[k] = T(0);

    for (int64_t s = 0; s < count; ++s) {
        work.n = len;
        work.cplx = in.cplx;
        if (alloc<T>(work) != 0) return -1;
        const T *x = in.data + s * step * w;
        T mean[2] = {T(0), T(0)};
        if (flags & SPECTRUM_DETREND) {
            double total[2] = {0, 0};
            for (int i = 0; i < len * w; ++i) total[i % w] += double(x[i]);
            for (int p = 0; p < w; ++p) mean[p] = T(total[p] / len);
        }
        for (int i = 0; i < len * w; ++i) work.data[i] = x[i] - mean[i % w];
        if (window<T>(work, kind, window_flags) != 0) return -1;
        if ((in.cplx ? dft<T>(work, 0) : rdft<T>(work)) != 0) return -1;
        // A one-point transform leaves a real input real.
        const T *X = work.data;
        for (int k = 0; k < bins; ++k)
            sum.data[k] +=
                work.cplx ? X[2 * k] * X[2 * k] + X[2 * k + 1] * X[2 * k + 1] : X[k] * X[k];
    }

    // The transform's 1/N goes back in with N^2; the one-sided spectrum
    // doubles every bin but 0 Hz and, for even N, the Nyquist bin.
    const double scale = double(len) * double(len) / (norm * double(count));
    const int last = in.cplx ? -1 : (len % 2 ? bins - 1 : bins - 2);
    for (int k = 0; k < bins; ++k) sum.data[k] *= T(k >= 1 && k <= last ? 2 * scale : scale);
    sum.delta = transformed_spacing<T>(in.delta, T(len));
    return &sum == &result ? 0 : copy<T>(result, sum);
}

#define DSP_INSTANTIATE(T)                                                                         \
    template int averaged_spectrum<T>(const signal_t<T> &, signal_t<T> &, signal_t<T> *, int, int, \
                                      int, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
