// Direct FIR inner loops: the build's own vectors, and on x86-64 an AVX2 +
// FMA copy chosen at run time when the library was built with it.
#include "filter/kernels.hpp"

#include "frame/cpu.hpp"

#if defined(__GNUC__) || defined(__clang__)
#define DSP_FILTER_VECTORS 1
#else
#define DSP_FILTER_VECTORS 0
#endif
#define DSP_FILTER_ISA base
#if defined(__AVX__)  // a build for processors with AVX (e.g. DSP_NATIVE)
#define DSP_FILTER_WIDTH 32
#else
#define DSP_FILTER_WIDTH 16
#endif
#include "filter/kernels_simd.hpp"

namespace dsp::filter_kernel {

#if DSP_FILTER_AVX2
namespace avx2 {
void direct(const float *, const float *, int, int64_t, int, float *, int64_t, bool);
void direct(const double *, const double *, int, int64_t, int, double *, int64_t, bool);
void symmetric(const float *, const float *, int64_t, bool, int, float *, int64_t);
void symmetric(const double *, const double *, int64_t, bool, int, double *, int64_t);
void multiply(float *, const float *, int64_t);
void multiply(double *, const double *, int64_t);
}  // namespace avx2
#endif

// 1: the AVX2 loops where the processor has them; 0: the build's vectors
// only (for tests and benchmarks).
int level = 1;

int select_kernels(int max_level) {
    level = max_level;
#if DSP_FILTER_AVX2
    if (have_avx2_fma()) return max_level < 1 ? max_level : 1;
#endif
    return 0;
}

template <class T>
void direct(const T *src, const T *h, int hs, int64_t m, int s, T *out, int64_t count, bool add) {
#if DSP_FILTER_AVX2
    if (level > 0 && have_avx2_fma()) return avx2::direct(src, h, hs, m, s, out, count, add);
#endif
    base::direct(src, h, hs, m, s, out, count, add);
}

template <class T>
void symmetric(const T *src, const T *c, int64_t M, bool antisym, int s, T *out, int64_t count) {
#if DSP_FILTER_AVX2
    if (level > 0 && have_avx2_fma()) return avx2::symmetric(src, c, M, antisym, s, out, count);
#endif
    base::symmetric(src, c, M, antisym, s, out, count);
}

template <class T>
void multiply(T *a, const T *b, int64_t points) {
#if DSP_FILTER_AVX2
    if (level > 0 && have_avx2_fma()) return avx2::multiply(a, b, points);
#endif
    base::multiply(a, b, points);
}

#define DSP_INSTANTIATE(T)                                                                \
    template void direct<T>(const T *, const T *, int, int64_t, int, T *, int64_t, bool); \
    template void symmetric<T>(const T *, const T *, int64_t, bool, int, T *, int64_t);   \
    template void multiply<T>(T *, const T *, int64_t);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp::filter_kernel
