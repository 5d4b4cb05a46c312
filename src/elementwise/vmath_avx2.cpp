// The math kernels for x86 processors with AVX2 and FMA. The build compiles
// this file alone with those instructions enabled; the library calls it
// only after checking that the processor has them.
#if defined(__AVX2__) && defined(__FMA__)

#define DSP_VMATH_ISA avx2
#define DSP_VMATH_WIDTH 32
#include "elementwise/vmath_simd.hpp"

namespace dsp::vmath::avx2 {
DSP_VMATH_ENTRY_POINTS(vd4)
}  // namespace dsp::vmath::avx2

#endif
