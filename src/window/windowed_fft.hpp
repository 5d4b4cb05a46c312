// The windowed, zero-padded spectrum of a record in one call.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// Output forms (flag bits 8-9).
enum : int {
    SPECTRUM_COMPLEX = 0x000,
    SPECTRUM_MAGNITUDE = 0x100,
    SPECTRUM_POWER = 0x200,
    SPECTRUM_FORM_MASK = 0x300,
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

// The raw-array entry points: `in` holds n points (2n scalars when cplx).
template <class T>
int windowed_fft_array(const T *in, T *out, int n, int cplx, int kind, int flags, int length);
int windowed_fft_array_in_place(const float *in, float *out, int n, int cplx, int kind, int flags,
                                int length);

}  // namespace dsp
