// Raw-array kernels for measurement traces: scaling to and from screen
// integers, multiplication, extremes, axes, smoothing, phase unwrapping and
// display formats. They take bare arrays and counts (complex arrays as
// interleaved re, im pairs), keep no state and trust their arguments except
// where a status is returned.
#pragma once

#include <cstdint>

namespace dsp::vfp {

// x[i] *= k for i in [0, n).
template <class T>
void mul(T k, T *x, int n);
// The same through the vector unit's short-vector mode where the build has
// it (DSP_VFP_SHORT_VECTOR), leaving the LEN field 0; elsewhere as mul.
template <class T>
void mul_vector(T k, T *x, int n);

// dst[i] = integer of ilo + k (src[i] - lo), k = (ihi - ilo) / (hi - lo),
// truncated toward zero; beyond the int range it saturates, NaN gives 0.
template <class T>
void scale_to_int(const T *src, int n, T lo, T hi, int32_t *dst, int32_t ilo, int32_t ihi);
// As scale_to_int, rounded to nearest (ties to even) and clamped to
// [min(ilo, ihi), max(ilo, ihi)]; NaN gives ilo. -1 (nothing written) when
// lo, hi or k is not finite.
template <class T>
int scale_to_int_rounded(const T *src, int n, T lo, T hi, int32_t *dst, int32_t ilo, int32_t ihi);
// dst[i] = olo + k (src[i] - lo), k = (ohi - olo) / (hi - lo); dst may be src.
template <class T>
void scale_to_fp(const T *src, int n, T lo, T hi, T *dst, T olo, T ohi);

// Extremes over [start, end); the *_skip forms leave out [skip_start,
// skip_end) and give -1 when nothing is left to search.
template <class T>
int find_max(const T *x, int start, int end);
template <class T>
int find_min(const T *x, int start, int end);
template <class T>
int find_max_skip(const T *x, int start, int end, int skip_start, int skip_end);
template <class T>
int find_min_skip(const T *x, int start, int end, int skip_start, int skip_end);

// n values from a to b, equally spaced / logarithmically spaced.
template <class T>
void expand_linear(T *x, int n, T a, T b);
template <class T>
void expand_log(T *x, int n, T a, T b);

// Moving average over [first, end) of an array of n values (phase != 0:
// radians, unwrapped within each window) / n complex points (mean
// magnitude and mean phase). Number of outputs, or -1.
template <class T>
int smooth(const T *in, T *out, int n, int first, int end, int width, int phase);
template <class T>
int smooth_complex(const T *in, T *out, int n, int first, int end, int width);

// out[i] = unwrapped phase of complex point i, for i in [start, end).
template <class T>
void unwrap_phase(const T *in, int start, int end, T *out);

// out[i] = display value of complex point i (format 0 log magnitude, 1 linear
// magnitude, 2 phase in degrees, 3 standing-wave ratio, 4 return loss).
template <class T>
void format_buffer(int format, const T *in, T *out, int start, int end);

}  // namespace dsp::vfp
