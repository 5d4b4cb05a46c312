// The butterfly passes of the complex FFT on a bare interleaved array.
#pragma once

#include <cstdint>

namespace dsp::fft_kernel {

// Scalars in the twiddle table of n = 2^b points: for each radix-4 stage of
// blocks of 4m points (m = n/4, n/16, ... down to 1 or 2), six arrays of m
// scalars: re and im of w^k, w^2k, w^3k, w = e^(-2 pi i / 4m).
inline int64_t twiddle_length(int b) {
    int64_t length = 0;
    for (int64_t m = (int64_t(1) << b) / 4; m >= 1; m /= 4) length += 6 * m;
    return length;
}

// Decimation-in-frequency passes over the n = 2^b >= 4 interleaved complex
// points at d (radix 4, and a last radix-2 pass when b is odd), leaving the
// unscaled transform in bit-reversed order. inverse: conjugate twiddles and
// +i in place of -i.
template <class T>
void transform(T *d, int b, const T *tw, bool inverse);

// Limits the kernels used from now on (for tests): 0 scalar code only, 1 the
// vectors the library was built for, 2 also AVX2 when the processor has it
// (the default). Returns the level actually available up to max_level.
int select_kernels(int max_level);

}  // namespace dsp::fft_kernel
