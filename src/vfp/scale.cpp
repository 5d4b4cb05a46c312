// Multiplication and scaling between physical values and screen integers.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "vfp/short_vector.hpp"
#include "vfp/trace.hpp"

namespace dsp::vfp {

namespace {

// Truncation toward zero that saturates beyond the int range and gives 0
// for NaN, as the VFP conversion does; the plain C++ conversion of such
// values would be undefined.
template <class T>
int32_t saturating_trunc(T v) {
    if (v != v) return 0;
    if (v >= T(2147483648.0)) return INT32_MAX;
    if (v <= T(-2147483648.0)) return INT32_MIN;
    return int32_t(v);
}

// Nearest integer, ties to even, whatever the rounding mode; |v| < 2^31.
template <class T>
T round_even(T v) {
    T r = std::floor(v);
    const T d = v - r;  // exact: the fraction of v
    const T half = r * T(0.5);
    if (d > T(0.5) || (d == T(0.5) && half != std::floor(half))) r += T(1);
    return r;
}

}  // namespace

template <class T>
void mul(T k, T *x, int n) {
    for (int i = 0; i < n; ++i) x[i] *= k;
}

template <class T>
void mul_vector(T k, T *x, int n) {
    if (n < 1) return;
    // The first n mod 16 values one by one, the rest in groups of 16.
    const int head = n % 16;
    mul(k, x, head);
#if DSP_VFP_SHORT_VECTOR
    if (n > head) mul16_short_vector(k, x + head, size_t(n - head) / 16);
#else
    mul(k, x + head, n - head);
#endif
}

template <class T>
void scale_to_int(const T *src, int n, T lo, T hi, int32_t *dst, int32_t ilo, int32_t ihi) {
    const T k = (T(ihi) - T(ilo)) / (hi - lo);
    for (int i = 0; i < n; ++i) dst[i] = saturating_trunc(T(ilo) + k * (src[i] - lo));
}

template <class T>
int scale_to_int_rounded(const T *src, int n, T lo, T hi, int32_t *dst, int32_t ilo, int32_t ihi) {
    const T k = (T(ihi) - T(ilo)) / (hi - lo);
    if (!std::isfinite(lo) || !std::isfinite(hi) || !std::isfinite(k)) return -1;
    const int32_t bottom = std::min(ilo, ihi), top = std::max(ilo, ihi);
    for (int i = 0; i < n; ++i) {
        const T v = T(ilo) + k * (src[i] - lo);
        if (v != v)
            dst[i] = ilo;
        else if (v <= T(bottom))
            dst[i] = bottom;
        else if (v >= T(top))
            dst[i] = top;
        else  // strictly inside, so |v| <= 2^31 converts safely
            dst[i] = int32_t(std::clamp(int64_t(round_even(v)), int64_t(bottom), int64_t(top)));
    }
    return 0;
}

template <class T>
void scale_to_fp(const T *src, int n, T lo, T hi, T *dst, T olo, T ohi) {
    const T k = (ohi - olo) / (hi - lo);
    for (int i = 0; i < n; ++i) dst[i] = olo + k * (src[i] - lo);
}

#define DSP_INSTANTIATE(T)                                                                   \
    template void mul<T>(T, T *, int);                                                       \
    template void mul_vector<T>(T, T *, int);                                                \
    template void scale_to_int<T>(const T *, int, T, T, int32_t *, int32_t, int32_t);        \
    template int scale_to_int_rounded<T>(const T *, int, T, T, int32_t *, int32_t, int32_t); \
    template void scale_to_fp<T>(const T *, int, T, T, T *, T, T);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp::vfp
