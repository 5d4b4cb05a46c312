// The FFT kernel for x86 processors with AVX2 and FMA. The build compiles
// this file alone with those instructions enabled; the library calls it only
// after checking that the processor has them.
#if defined(__AVX2__) && defined(__FMA__) && (defined(__clang__) || __GNUC__ >= 12)

#define DSP_FFT_ISA avx2
#define DSP_FFT_VECTORS 1
#define DSP_FFT_WIDTH 32
#include "transform/fft_simd.hpp"

namespace dsp::fft_kernel::avx2 {

void transform(float *d, int b, const float *table, bool inverse, float scale) {
    simd_transform<float, 32>(d, b, table, false, inverse, scale);
}
void transform(double *d, int b, const double *table, bool inverse, double scale) {
    simd_transform<double, 32>(d, b, table, false, inverse, scale);
}

}  // namespace dsp::fft_kernel::avx2

#endif
