// Logarithms, exponentials and magnitudes of whole records on the vector
// units (vmath_simd.hpp): the loops of the math functions, with their
// substitutes, for real samples. Results are within one unit in the last
// place of the runtime library's double-precision function; single
// precision rounds that double result to float, as the runtime path does.
#pragma once

#include <cstdint>

namespace dsp::vmath {

// d[i] < F: sub; otherwise k log(d[i]) (log10 with Ten), the logarithm
// rounded to T before the product with k (formed in T).
template <class T>
void log(T *d, int64_t n, T k, T sub);
template <class T>
void log10(T *d, int64_t n, T k, T sub);

// d[i] > E (ln L): L; otherwise exp(d[i]) (no lower clamp).
template <class T>
void exp(T *d, int64_t n);
// d[i] > the base-ten threshold: L; otherwise exp(d[i] ln10), the product
// formed in T.
template <class T>
void exp10(T *d, int64_t n);

// The n complex points at d become their magnitudes hypot(re, im) in the
// first n scalars.
template <class T>
void magnitude(T *d, int64_t n);

// The single family's decibel walk over values that are all at least F:
// for j < pairs, d[2j] becomes sub and d[2j + 1] k log10 d[2j]. Stops where
// a value below F (or NaN) would be read; returns the pairs done.
int64_t db_pairs(float *d, int64_t pairs, float k, float sub);

// Limits the kernels used from now on (for tests and benchmarks): 0 scalar
// code, 1 the build's vectors, 2 also AVX2, 3 also AVX-512 (max_level, the
// default), each where the processor has it. Returns the level actually
// available up to `level`.
constexpr int max_level = 3;
int select_kernels(int level);

}  // namespace dsp::vmath
