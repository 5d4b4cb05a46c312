// Butterfly passes of the complex FFT: the vectorised passes where the
// processor has vectors of the scalar type (AVX2 chosen at run time on x86
// when the library was built with that kernel), scalar code otherwise and
// for short transforms.
#include "transform/fft_kernel.hpp"

#if (defined(__clang__) || (defined(__GNUC__) && __GNUC__ >= 12)) && \
    (defined(__SSE2__) || defined(__ARM_NEON) || defined(__aarch64__))
#define DSP_FFT_VECTORS 1
#else
#define DSP_FFT_VECTORS 0
#endif

#define DSP_FFT_ISA base
#if defined(__AVX__)  // a build for processors with AVX (e.g. DSP_NATIVE)
#define DSP_FFT_WIDTH 32
#else
#define DSP_FFT_WIDTH 16
#endif
#include "transform/fft_simd.hpp"

namespace dsp::fft_kernel {

#if DSP_FFT_AVX2 && DSP_FFT_VECTORS
namespace avx2 {
void transform(float *d, int b, const float *tw, bool inverse);
void transform(double *d, int b, const double *tw, bool inverse);
}  // namespace avx2

namespace {
bool have_avx2() {
    static const bool yes = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    }();
    return yes;
}
}  // namespace
#endif

// The widest kernel in use: 2 AVX2, 1 the build's vectors, 0 scalar only.
int level = 2;

int select_kernels(int max_level) {
    level = max_level;
    int have = 0;
#if DSP_FFT_VECTORS
    have = 1;
#endif
#if DSP_FFT_AVX2 && DSP_FFT_VECTORS
    if (have_avx2()) have = 2;
#endif
    return have < max_level ? have : max_level;
}

template <class T>
void transform(T *d, int b, const T *tw, bool inverse) {
    constexpr int vector_min_log2 = 6;  // 64 points: every first quarter fills vectors
    if (b >= vector_min_log2 && level > 0) {
#if DSP_FFT_AVX2 && DSP_FFT_VECTORS
        // Below 256 points the 16-byte kernel is the faster one for floats.
        constexpr int avx2_min_log2 = sizeof(T) == 4 ? 8 : vector_min_log2;
        if (level > 1 && b >= avx2_min_log2 && have_avx2())
            return avx2::transform(d, b, tw, inverse);
#endif
#if DSP_FFT_VECTORS
            // Double-precision vectors exist on x86 and 64-bit ARM, not on 32-bit ARM.
#if defined(__SSE2__) || defined(__aarch64__)
        return base::simd_transform(d, b, tw, inverse);
#else
        if constexpr (sizeof(T) == 4) return base::simd_transform(d, b, tw, inverse);
#endif
#endif
    }
    if (inverse)
        base::scalar_transform<T, true>(d, b, tw);
    else
        base::scalar_transform<T, false>(d, b, tw);
}

template void transform<float>(float *, int, const float *, bool);
template void transform<double>(double *, int, const double *, bool);

}  // namespace dsp::fft_kernel
