// The complex FFT on a bare interleaved array: the kernel that suits the
// processor and the size, and the layout of its twiddle table.
#pragma once

#include <cstdint>

namespace dsp::fft_kernel {

// The kernel for a transform of 2^b points: `lanes` points per vector (1:
// the scalar passes), `isa` the instruction set it was compiled for (0
// scalar, 1 the build's own vectors, 2 AVX2 + FMA, 3 AVX-512).
// eight: the kernel takes radix-8 stages (it has the registers for them).
struct choice {
    int lanes;
    int isa;
    bool eight;
};
template <class T>
choice choose(int b);

// The radices of the stages of a transform of M = 2^mb points, largest span
// first: radix 8 (with `eight`) or 4 as far as they go, then 4, 4 x 4 or 2.
// Returns the number of stages. (Internal linkage: the kernels compiled for
// other processors include this header too.)
static constexpr int stage_radices(int mb, bool eight, int *radix) {
    int count = 0, eights = eight ? mb / 3 : 0, rest = mb - 3 * eights;
    if (rest == 1 && eights > 0) --eights, rest = 4;
    for (int i = 0; i < eights; ++i) radix[count++] = 8;
    for (; rest >= 2; rest -= 2) radix[count++] = 4;
    if (rest == 1) radix[count++] = 2;
    return count;
}

// Scalars in the table of a transform of n = 2^b points by the kernel k.
// With M = n / k.lanes, for each stage of the transforms of length M (the
// radices r of stage_radices, span r m): for each k < m, re and im of
// w^(k rev(q)) for the output positions q = 1 .. r - 1, w = e^(-2 pi i / rm),
// rev(q) the bit reversal of q over log2 r bits. Then, with more than one
// lane, for each block c < M / lanes and l = 1 .. lanes - 1: the re and then
// the im parts of w_n^(l (c lanes + i)), i < lanes.
static constexpr int64_t table_length(int b, choice k) {
    const int64_t M = (int64_t(1) << b) / k.lanes;
    int radix[64] = {};
    const int stages = stage_radices(b - __builtin_ctz(unsigned(k.lanes)), k.eight, radix);
    int64_t length = 0, span = M;
    for (int s = 0; s < stages; ++s) {
        span /= radix[s];
        length += 2 * (radix[s] - 1) * span;
    }
    return k.lanes > 1 ? length + (M / k.lanes) * (k.lanes - 1) * 2 * k.lanes : length;
}

// The transform of the n = 2^b >= 4 interleaved complex points at d, in
// place, with the table for (b, k), k.lanes > 1: natural order out,
// forward results multiplied by scale. inverse: conjugate twiddles.
template <class T>
void transform(T *d, int b, choice k, const T *table, bool inverse, T scale);

// The scalar passes (k.lanes == 1): the unscaled transform left in
// bit-reversed order.
template <class T>
void scalar_passes(T *d, int b, const T *table, bool inverse);

// The convolution of a chirp-z transform of n points over N = 2^b points
// (N >= 2n - 2) with the kernel k (k.lanes > 1) and its table, in place:
// the forward transform of the n points at d times the chirp (n points; the
// points from n on count as zero), times the kernel spectrum K (N points,
// the transform of the kernel divided by N), the inverse transform, and its
// first n points times the chirp and scale written back to d.
template <class T>
void convolve(T *d, int b, choice k, const T *table, const T *chirp, const T *K, int64_t n,
              T scale);

// The pairs (k, h - k) of the real FFT's split step on vectors (see
// fourier.cpp), for k from 1 as far as whole vectors go; returns the first
// k left to scalar code. w: (cos, sin) of 2 pi k / 2h.
template <class T>
int64_t real_split(T *d, int64_t h, const T *w, bool inverse);

// A mixed-radix transform of n points (factors 2, 3, 5, 7; see
// mixed_simd.hpp): its kernel (isa as in choice, width the vector bytes, 0
// for scalar code) and its Stockham stages, with stride s, count m and the
// twiddle table of each.
template <class T>
struct mixed_plan {
    int64_t n = 0;
    int isa = 0, width = 0;
    int stages = 0;
    int level = -1;  // select_kernels level it was made for
    int radix[32] = {};
    int64_t s[32] = {}, m[32] = {};
    const T *tw[32] = {};
};

// The mixed-radix transform of the plan on the n points at d in place
// (scratch: room for n more points); forward results times scale.
template <class T>
void mixed(const mixed_plan<T> &plan, T *d, T *scratch, bool inverse, T scale);

// The kernels offered for mixed-radix transforms, widest first: for i = 0,
// 1, ... while it returns true, *isa and *width (bytes, 0 for scalar code)
// of candidate i.
template <class T>
bool mixed_candidate(int i, int *isa, int *width);

// Limits the kernels used from now on (for tests and benchmarks): 0 scalar
// code only, 1 the vectors the library was built for, 2 also AVX2, 3 also
// AVX-512 (max_level, the default), each where the processor has it.
// Returns the level actually available up to `level`.
constexpr int max_level = 3;
int select_kernels(int level);
// The level set by select_kernels.
int kernel_level();

}  // namespace dsp::fft_kernel
