// Inner loops of the direct FIR paths on bare arrays, vectorised over the
// outputs: every vector of consecutive outputs accumulates one coefficient
// times the samples under it per step, so the loop has no horizontal sums
// and no dependence between neighbouring outputs.
#pragma once

#include <cstdint>

namespace dsp::filter_kernel {

// out[i] (= or +=, by add) sum_{j<m} h[j hs] src[i + s (m - 1 - j)] for the
// scalars i = 0 .. count - 1: a real filter h (coefficient stride hs) run over
// real samples (s = 1) or over interleaved complex points (s = 2). src holds
// the m - 1 samples before the first output's own sample, then the rest.
template <class T>
void direct(const T *src, const T *h, int hs, int64_t m, int s, T *out, int64_t count, bool add);

// The linear-phase filter of full length M whose first half is c (c[j] for
// the pair j, M - 1 - j; c[M/2] the centre tap when M is odd): each pair of
// samples is summed (antisym: differenced) before its one multiplication.
// Same layout as direct.
template <class T>
void symmetric(const T *src, const T *c, int64_t M, bool antisym, int s, T *out, int64_t count);

// a[k] *= b[k] for the `points` interleaved complex points of a and b.
template <class T>
void multiply(T *a, const T *b, int64_t points);

// Limits the loops used from now on (for tests and benchmarks): 0 the
// vectors the library was built for, 1 also AVX2 when the processor has it
// (the default). Returns the level actually available up to max_level.
int select_kernels(int max_level);

}  // namespace dsp::filter_kernel
