// Resampling kernels: a finely sampled symmetric interpolation function and
// its width in one record, for the kernel resampler.
//
// Kernel record (real, N points, N even): point 0 holds the width (input
// samples spanned); points 1 .. N-1 hold v(theta) symmetric about point N/2:
// points N/2 + j and N/2 - j both hold v(theta_j), theta_j = j 2 pi/(N-2),
// j = 0 .. (N-2)/2, bit-identical on the two sides.
//
// Description record (real, K points): point 0 the width, points 1 .. K-1
// the coefficients c1 .. c(K-1).
#pragma once

#include <cstdint>

#include "frame/traits.hpp"

namespace dsp {

// v(theta) = c1 + sum_{i>=2} c_i cos((i-1) theta); theta and its multiples
// are accumulated by repeated addition. N <= 1 or K <= 1: the kernel is
// zeroed and gets only the width (when N >= 1 and K >= 1). -1 for storage
// failure, odd N or a complex description. A complex kernel record is built
// real and widened (zero imaginary parts).
template <class T>
int rsmp_cos(signal_t<T> &kernel, const signal_t<T> &desc);
// v(theta) = sum_{i>=1} c_i cos(theta)^(i-1) by Horner's rule; otherwise as
// rsmp_cos.
template <class T>
int rsmp_pcos(signal_t<T> &kernel, const signal_t<T> &desc);

// A stored description: `n` scalars (width, then coefficients) and the
// builder it is meant for (polynomial: rsmp_pcos, else rsmp_cos).
template <class T>
struct rsmp_description {
    const T *values;
    int32_t n;
    bool polynomial;
};

// Stored descriptions 0 .. 4 (widths 8, 13, 8, 10, 13; modes 0 and 1
// polynomial); null values for any other mode. The single family holds the
// values as floats; the double family holds them as doubles, longer where
// more digits are known.
template <class T>
rsmp_description<T> rsmp_stored(int mode);

// Builds the stored kernel `mode` into kernel (whose n the caller sets): -1
// for a mode outside 0 .. 4, else as the builder.
template <class T>
int rsmp_kernel(signal_t<T> &kernel, int mode);

}  // namespace dsp
