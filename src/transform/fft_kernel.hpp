// The complex FFT on a bare interleaved array: the kernel that suits the
// processor and the size, and the layout of its twiddle table.
#pragma once

#include <cstdint>

namespace dsp::fft_kernel {

// The kernel for a transform of 2^b points: `lanes` points per vector (1:
// the scalar passes), `isa` the instruction set it was compiled for (0
// scalar, 1 the build's own vectors, 2 AVX2 + FMA, 3 AVX-512).
struct choice {
    int lanes;
    int isa;
};
template <class T>
choice choose(int b);

// Scalars in the table of a transform of n = 2^b points on `lanes` lanes.
// With M = n / lanes: for each radix-4 stage of the transforms of length M
// (quarter lengths m = M/4, M/16, ... down to 1 or 2), six scalars for each
// k < m: re and im of w^k, w^2k, w^3k, w = e^(-2 pi i / 4m). Then, with
// more than one lane, for each block c < M / lanes and l = 1 .. lanes - 1:
// the re and then the im parts of w_n^(l (c lanes + i)), i < lanes.
inline int64_t table_length(int b, int lanes) {
    const int64_t M = (int64_t(1) << b) / lanes;
    int64_t length = 0;
    for (int64_t m = M / 4; m >= 1; m /= 4) length += 6 * m;
    return lanes > 1 ? length + (M / lanes) * (lanes - 1) * 2 * lanes : length;
}

// The transform of the n = 2^b >= 4 interleaved complex points at d, in
// place, with the table for (b, k.lanes), k.lanes > 1: natural order out,
// forward results multiplied by scale. inverse: conjugate twiddles.
template <class T>
void transform(T *d, int b, choice k, const T *table, bool inverse, T scale);

// The scalar passes (k.lanes == 1): the unscaled transform left in
// bit-reversed order.
template <class T>
void scalar_passes(T *d, int b, const T *table, bool inverse);

// Limits the kernels used from now on (for tests and benchmarks): 0 scalar
// code only, 1 the vectors the library was built for, 2 also AVX2, 3 also
// AVX-512 (max_level, the default), each where the processor has it.
// Returns the level actually available up to `level`.
constexpr int max_level = 3;
int select_kernels(int level);

}  // namespace dsp::fft_kernel
