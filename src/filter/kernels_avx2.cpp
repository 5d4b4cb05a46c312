// The direct FIR inner loops for x86 processors with AVX2 and FMA. The build
// compiles this file alone with those instructions enabled; the library calls
// it only after checking that the processor has them.
#if defined(__AVX2__) && defined(__FMA__)

#define DSP_FILTER_ISA avx2
#define DSP_FILTER_VECTORS 1
#define DSP_FILTER_WIDTH 32
#include "filter/kernels_simd.hpp"

#endif
