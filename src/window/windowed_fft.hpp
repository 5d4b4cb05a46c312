// The windowed, zero-padded spectrum of a record in one call.
#pragma once

#include "frame/record.hpp"

namespace dsp {

// Output forms (flag bits 8-9).
enum : int {
    SPECTRUM_COMPLEX = 0x000,
    SPECTRUM_MAGNITUDE = 0x100,
    SPECTRUM_POWER = 0x200,
    SPECTRUM_FORM_MASK = 0x300,
    SPECTRUM_DENSITY = 0x300,  // averaged spectrum only: power per unit frequency
    SPECTRUM_DETREND = 0x400,  // averaged spectrum: each segment less its mean
};

// The working record of a spectrum call: the caller's scratch record when
// there is one it may write, otherwise a temporary destroyed at scope exit.
template <class T>
class working {
 public:
    working(signal_t<T> *scratch, bool usable) : rec_(scratch && usable ? scratch : &temporary_) {
        init<T>(temporary_);
    }
    ~working() { destroy<T>(temporary_); }
    working(const working &) = delete;
    working &operator=(const working &) = delete;
    signal_t<T> &operator*() { return *rec_; }

 private:
    signal_t<T> temporary_;
    signal_t<T> *rec_;
};

// Windows a copy of `in` with the window kind and flags (bits 0-5 as for
// windowing; bit 3 is refused), zero-pads it to `length` points (0: n
// rounded up to a power of two; otherwise a power of two of at least n),
// keeping the level of an unpadded transform, and transforms it: a real
// input gives the half spectrum of length/2 + 1 points, a complex input the
// full spectrum of length points. The result is complex, or the magnitudes
// or squared magnitudes (flag bits 8-9). `scratch` (may be null) is a
// working record kept by the caller so that repeated calls do not allocate.
template <class T>
int windowed_fft(const signal_t<T> &in, signal_t<T> &result, signal_t<T> *scratch, int kind,
                 int flags, int length);

// windowed_fft for any length through the DFT: `length` 0 is n (no padding),
// otherwise any length of at least n.
template <class T>
int windowed_dft(const signal_t<T> &in, signal_t<T> &result, signal_t<T> *scratch, int kind,
                 int flags, int length);

// Welch's averaged power spectrum: segments of `segment` points (0: n)
// starting every segment - overlap points (overlap < 0: segment / 2), each
// optionally less its mean (SPECTRUM_DETREND), windowed unrotated with the
// kind and flags bits 0-5 and transformed by the DFT; the mean of their
// squared magnitudes, scaled by N^2 / (sum w)^2 (SPECTRUM_POWER) or
// N^2 delta / sum w^2 (SPECTRUM_DENSITY), one-sided (interior bins doubled)
// for a real input. Points after the last whole segment are not used.
template <class T>
int averaged_spectrum(const signal_t<T> &in, signal_t<T> &result, signal_t<T> *scratch, int kind,
                      int flags, int segment, int overlap);

// The raw-array entry points: `in` holds n points (2n scalars when cplx).
template <class T>
int windowed_fft_array(const T *in, T *out, int n, int cplx, int kind, int flags, int length);
int windowed_fft_array_in_place(const float *in, float *out, int n, int cplx, int kind, int flags,
                                int length);

}  // namespace dsp
