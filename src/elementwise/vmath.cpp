// Choice of the math kernels: AVX-512 and AVX2 at run time on x86 when the
// library was built with them, the build's own vectors otherwise, scalar
// code where there are no vectors of doubles.
#include "elementwise/vmath.hpp"

#include "frame/cpu.hpp"

#if defined(__SSE2__) || defined(__aarch64__)
#define DSP_VMATH_WIDTH 16
#else
#define DSP_VMATH_WIDTH 0
#endif
#define DSP_VMATH_ISA base
#include "elementwise/vmath_simd.hpp"

namespace dsp::vmath {

#if !defined(DSP_VMATH_AVX2)
#define DSP_VMATH_AVX2 0
#endif
#if !defined(DSP_VMATH_AVX512)
#define DSP_VMATH_AVX512 0
#endif

namespace base {
namespace scalar {
DSP_VMATH_ENTRY_POINTS(double)
}  // namespace scalar
#if DSP_VMATH_WIDTH >= 16
DSP_VMATH_ENTRY_POINTS(vd2)
#endif
}  // namespace base

// The entry points compiled for AVX2 and AVX-512 (vmath_avx2.cpp,
// vmath_avx512.cpp).
#define DSP_VMATH_DECLARE(isa)                                     \
    namespace isa {                                                \
    void log(float *d, int64_t n, float k, float sub);             \
    void log(double *d, int64_t n, double k, double sub);          \
    void log10(float *d, int64_t n, float k, float sub);           \
    void log10(double *d, int64_t n, double k, double sub);        \
    void exp(float *d, int64_t n);                                 \
    void exp(double *d, int64_t n);                                \
    void exp10(float *d, int64_t n);                               \
    void exp10(double *d, int64_t n);                              \
    void magnitude(float *d, int64_t n);                           \
    void magnitude(double *d, int64_t n);                          \
    int64_t db_pairs(float *d, int64_t pairs, float k, float sub); \
    }
#if DSP_VMATH_AVX2
DSP_VMATH_DECLARE(avx2)
#endif
#if DSP_VMATH_AVX512
DSP_VMATH_DECLARE(avx512)
#endif
#undef DSP_VMATH_DECLARE

namespace {

int level = max_level;

// The kernel in use: 3 AVX-512, 2 AVX2, 1 the build's vectors, 0 scalar.
int kernel() {
#if DSP_VMATH_AVX512
    if (level >= 3 && have_avx512()) return 3;
#endif
#if DSP_VMATH_AVX2
    if (level >= 2 && have_avx2_fma()) return 2;
#endif
    return level >= 1 && DSP_VMATH_WIDTH >= 16 ? 1 : 0;
}

}  // namespace

int select_kernels(int wanted) {
    level = wanted;
    int have = DSP_VMATH_WIDTH >= 16 ? 1 : 0;
#if DSP_VMATH_AVX2
    if (have_avx2_fma()) have = 2;
#endif
#if DSP_VMATH_AVX512
    if (have_avx512()) have = 3;
#endif
    return have < wanted ? have : wanted;
}

// Calls fn of the kernel in use.
#if DSP_VMATH_WIDTH >= 16
#define DSP_VMATH_BASE(call) \
    case 1:                  \
        return base::call;
#else
#define DSP_VMATH_BASE(call)
#endif
#if DSP_VMATH_AVX2
#define DSP_VMATH_AVX2_CASE(call) \
    case 2:                       \
        return avx2::call;
#else
#define DSP_VMATH_AVX2_CASE(call)
#endif
#if DSP_VMATH_AVX512
#define DSP_VMATH_AVX512_CASE(call) \
    case 3:                         \
        return avx512::call;
#else
#define DSP_VMATH_AVX512_CASE(call)
#endif
#define DSP_VMATH_DISPATCH(call)       \
    switch (kernel()) {                \
        DSP_VMATH_AVX512_CASE(call)    \
        DSP_VMATH_AVX2_CASE(call)      \
        DSP_VMATH_BASE(call)           \
        default:                       \
            return base::scalar::call; \
    }

template <class T>
void log(T *d, int64_t n, T k, T sub) {
    DSP_VMATH_DISPATCH(log(d, n, k, sub))
}
template <class T>
void log10(T *d, int64_t n, T k, T sub) {
    DSP_VMATH_DISPATCH(log10(d, n, k, sub))
}
template <class T>
void exp(T *d, int64_t n) {
    DSP_VMATH_DISPATCH(exp(d, n))
}
template <class T>
void exp10(T *d, int64_t n) {
    DSP_VMATH_DISPATCH(exp10(d, n))
}
template <class T>
void magnitude(T *d, int64_t n){DSP_VMATH_DISPATCH(magnitude(d, n))} int64_t
    db_pairs(float *d, int64_t pairs, float k,
             float sub){DSP_VMATH_DISPATCH(db_pairs(d, pairs, k, sub))}

#define DSP_INSTANTIATE(T)                      \
    template void log<T>(T *, int64_t, T, T);   \
    template void log10<T>(T *, int64_t, T, T); \
    template void exp<T>(T *, int64_t);         \
    template void exp10<T>(T *, int64_t);       \
    template void magnitude<T>(T *, int64_t);
DSP_INSTANTIATE(float) DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp::vmath
