// The vectorised FFT passes for x86 processors with AVX2 and FMA. The build
// compiles this file alone with those instructions enabled; the library calls
// it only after checking that the processor has them.
#if defined(__AVX2__) && defined(__FMA__) && (defined(__clang__) || __GNUC__ >= 12)

#define DSP_FFT_ISA avx2
#define DSP_FFT_VECTORS 1
#define DSP_FFT_WIDTH 32
#include "transform/fft_simd.hpp"

namespace dsp::fft_kernel::avx2 {

void transform(float *d, int b, const float *tw, bool inverse) {
    simd_transform(d, b, tw, inverse);
}
void transform(double *d, int b, const double *tw, bool inverse) {
    simd_transform(d, b, tw, inverse);
}

}  // namespace dsp::fft_kernel::avx2

#endif
