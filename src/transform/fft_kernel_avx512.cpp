// The FFT kernel for x86 processors with AVX-512 (F, VL, DQ) and FMA, on
// 64-byte vectors and, for transforms too short for those, on 32-byte ones
// (which still have the 32 vector registers). The build compiles this file
// alone with those instructions enabled; the library calls it only after
// checking that the processor has them.
#if defined(__AVX512F__) && defined(__AVX512VL__) && defined(__AVX512DQ__) && defined(__FMA__) && \
    (defined(__clang__) || __GNUC__ >= 12)

#define DSP_FFT_ISA avx512
#define DSP_FFT_VECTORS 1
#define DSP_FFT_WIDTH 64
#include "transform/fft_simd.hpp"

namespace dsp::fft_kernel::avx512 {

template <class T>
void run(T *d, int b, int width, const T *table, bool eight, bool inverse, T scale) {
    if (width == 64)
        simd_transform<T, 64>(d, b, table, eight, inverse, scale);
    else if (width == 32)
        simd_transform<T, 32>(d, b, table, eight, inverse, scale);
    else
        simd_transform<T, 16>(d, b, table, eight, inverse, scale);
}

template <class T>
int64_t split(T *d, int64_t h, const T *w, int width, bool inverse) {
    if (width == 64)
        return inverse ? split_pairs<T, 64, true>(d, h, w) : split_pairs<T, 64, false>(d, h, w);
    if (width == 32)
        return inverse ? split_pairs<T, 32, true>(d, h, w) : split_pairs<T, 32, false>(d, h, w);
    return inverse ? split_pairs<T, 16, true>(d, h, w) : split_pairs<T, 16, false>(d, h, w);
}

void transform(float *d, int b, int width, const float *table, bool eight, bool inverse,
               float scale) {
    run(d, b, width, table, eight, inverse, scale);
}
void transform(double *d, int b, int width, const double *table, bool eight, bool inverse,
               double scale) {
    run(d, b, width, table, eight, inverse, scale);
}
int64_t split(float *d, int64_t h, const float *w, int width, bool inverse) {
    return split<float>(d, h, w, width, inverse);
}
int64_t split(double *d, int64_t h, const double *w, int width, bool inverse) {
    return split<double>(d, h, w, width, inverse);
}

}  // namespace dsp::fft_kernel::avx512

#endif
