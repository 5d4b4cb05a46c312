// The FFT kernel for x86 processors with AVX2 and FMA. The build compiles
// this file alone with those instructions enabled; the library calls it only
// after checking that the processor has them.
#if defined(__AVX2__) && defined(__FMA__) && (defined(__clang__) || __GNUC__ >= 12)

#define DSP_FFT_ISA avx2
#define DSP_FFT_VECTORS 1
#define DSP_FFT_WIDTH 32
#include "transform/fft_simd.hpp"

namespace dsp::fft_kernel::avx2 {

template <class T>
void run(T *d, int b, int width, const T *table, bool eight, bool inverse, T scale) {
    if (width == 32)
        simd_transform<T, 32>(d, b, table, eight, inverse, scale);
    else
        simd_transform<T, 16>(d, b, table, eight, inverse, scale);
}

template <class T>
int64_t split(T *d, int64_t h, const T *w, int width, bool inverse) {
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

}  // namespace dsp::fft_kernel::avx2

#endif
