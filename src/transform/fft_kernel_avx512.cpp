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
void run(T *d, int b, int width, const T *table, bool inverse, T scale) {
    if (width == 64)
        simd_transform<T, 64>(d, b, table, true, inverse, scale);
    else
        simd_transform<T, 32>(d, b, table, true, inverse, scale);
}

void transform(float *d, int b, int width, const float *table, bool inverse, float scale) {
    run(d, b, width, table, inverse, scale);
}
void transform(double *d, int b, int width, const double *table, bool inverse, double scale) {
    run(d, b, width, table, inverse, scale);
}

}  // namespace dsp::fft_kernel::avx512

#endif
