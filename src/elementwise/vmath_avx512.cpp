// The math kernels for x86 processors with AVX-512 (F, VL, DQ) and FMA. The
// build compiles this file alone with those instructions enabled; the
// library calls it only after checking that the processor has them.
#if defined(__AVX512F__) && defined(__AVX512VL__) && defined(__AVX512DQ__) && defined(__FMA__)

#define DSP_VMATH_ISA avx512
#define DSP_VMATH_WIDTH 64
#include "elementwise/vmath_simd.hpp"

namespace dsp::vmath::avx512 {
DSP_VMATH_ENTRY_POINTS(vd8)
}  // namespace dsp::vmath::avx512

#endif
