// Choice of the FFT kernel: the widest vectors the processor has (AVX-512
// and AVX2 chosen at run time on x86 when the library was built with those
// kernels), the build's own vectors otherwise, and scalar passes for short
// transforms and processors without vectors.
#include "transform/fft_kernel.hpp"

#include "frame/cpu.hpp"

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
#include "transform/mixed_simd.hpp"

namespace dsp::fft_kernel {

#if !defined(DSP_FFT_AVX2) || !DSP_FFT_VECTORS
#undef DSP_FFT_AVX2
#define DSP_FFT_AVX2 0
#endif
#if !defined(DSP_FFT_AVX512) || !DSP_FFT_VECTORS
#undef DSP_FFT_AVX512
#define DSP_FFT_AVX512 0
#endif

// The kernels compiled for AVX2 and AVX-512 (fft_kernel_avx2.cpp,
// fft_kernel_avx512.cpp), on vectors of `width` bytes.
#define DSP_FFT_DECLARE(isa)                                                                      \
    namespace isa {                                                                               \
    void transform(float *d, int b, int width, const float *table, bool eight, bool inverse,      \
                   float scale);                                                                  \
    void transform(double *d, int b, int width, const double *table, bool eight, bool inverse,    \
                   double scale);                                                                 \
    int64_t split(float *d, int64_t h, const float *w, int width, bool inverse);                  \
    int64_t split(double *d, int64_t h, const double *w, int width, bool inverse);                \
    void convolve(float *d, int b, int width, const float *table, bool eight, const float *chirp, \
                  const float *K, int64_t n, float scale);                                        \
    void convolve(double *d, int b, int width, const double *table, bool eight,                   \
                  const double *chirp, const double *K, int64_t n, double scale);                 \
    void mixed(const mixed_plan<float> &plan, float *d, float *scratch, bool inverse,             \
               float scale);                                                                      \
    void mixed(const mixed_plan<double> &plan, double *d, double *scratch, bool inverse,          \
               double scale);                                                                     \
    }
#if DSP_FFT_AVX2
DSP_FFT_DECLARE(avx2)
#endif
#if DSP_FFT_AVX512
DSP_FFT_DECLARE(avx512)
#endif
#undef DSP_FFT_DECLARE

namespace {

// The scalar passes: radix-4 decimation in frequency over every block of
// 4m points (six twiddle scalars per k, see table_length), and a last
// radix-2 stage for odd powers of two (the stages of stage_radices without
// radix 8).
template <class T, bool Inverse>
void radix4_scalar(T *d, int64_t n, int64_t m, const T *w) {
    for (int64_t base = 0; base < n; base += 4 * m) {
        T *p0 = d + 2 * base, *p1 = p0 + 2 * m, *p2 = p1 + 2 * m, *p3 = p2 + 2 * m;
        for (int64_t k = 0; k < m; ++k) {
            const int64_t i = 2 * k;
            const T ar = p0[i] + p2[i], ai = p0[i + 1] + p2[i + 1];
            const T br = p1[i] + p3[i], bi = p1[i + 1] + p3[i + 1];
            const T cr = p0[i] - p2[i], ci = p0[i + 1] - p2[i + 1];
            // e = -i (x1 - x3) forward, +i (x1 - x3) inverse
            T er = p1[i + 1] - p3[i + 1], ei = p3[i] - p1[i];
            if constexpr (Inverse) er = -er, ei = -ei;
            const T s = Inverse ? T(-1) : T(1);
            p0[i] = ar + br, p0[i + 1] = ai + bi;
            const T yr = ar - br, yi = ai - bi;
            const T ur = cr + er, ui = ci + ei;
            const T vr = cr - er, vi = ci - ei;
            const T *t = w + 6 * k;  // positions 1, 2, 3: w^2k, w^k, w^3k
            const T c2 = t[0], s2 = s * t[1], c1 = t[2], s1 = s * t[3], c3 = t[4], s3 = s * t[5];
            p1[i] = yr * c2 - yi * s2, p1[i + 1] = yr * s2 + yi * c2;
            p2[i] = ur * c1 - ui * s1, p2[i + 1] = ur * s1 + ui * c1;
            p3[i] = vr * c3 - vi * s3, p3[i + 1] = vr * s3 + vi * c3;
        }
    }
}

template <class T, bool Inverse>
void scalar_transform(T *d, int b, const T *tw) {
    const int64_t n = int64_t(1) << b;
    for (int64_t m = n / 4; m >= 1; m /= 4) {
        radix4_scalar<T, Inverse>(d, n, m, tw);
        tw += 6 * m;
        if (m == 2) {
            for (int64_t i = 0; i < 2 * n; i += 4) {
                const T r0 = d[i], i0 = d[i + 1], r1 = d[i + 2], i1 = d[i + 3];
                d[i] = r0 + r1, d[i + 1] = i0 + i1;
                d[i + 2] = r0 - r1, d[i + 3] = i0 - i1;
            }
        }
    }
}

// The build's own vectors hold doubles on x86 and 64-bit ARM, not on 32-bit ARM.
#if defined(__SSE2__) || defined(__aarch64__)
constexpr bool double_vectors = true;
#else
constexpr bool double_vectors = false;
#endif
template <class T>
constexpr bool base_vectors = DSP_FFT_VECTORS && (sizeof(T) == 4 || double_vectors);

int available() {
    int have = DSP_FFT_VECTORS ? 1 : 0;
#if DSP_FFT_AVX2
    if (have_avx2_fma()) have = 2;
#endif
#if DSP_FFT_AVX512
    if (have_avx512()) have = 3;
#endif
    return have;
}

int level = max_level;

}  // namespace

int kernel_level() { return level; }

int select_kernels(int wanted) {
    level = wanted;
    const int have = available();
    return have < wanted ? have : wanted;
}

template <class T>
choice choose(int b) {
    // A kernel of V lanes needs at least 4 groups and V blocks of groups.
    auto fits = [b](int width) {
        const int64_t V = width / int64_t(sizeof(T)), n = int64_t(1) << b;
        return n >= 4 * V && n >= V * V;
    };
#if DSP_FFT_AVX512
    if (level >= 3 && have_avx512())
        for (int width : {64, 32, 16})
            if (fits(width)) return {width / int(sizeof(T)), 3, true};
#endif
#if DSP_FFT_AVX2
    if (level >= 2 && have_avx2_fma())
        for (int width : {32, 16})
            if (fits(width)) return {width / int(sizeof(T)), 2, false};
#endif
    if constexpr (base_vectors<T>) {
        if (level >= 1)
            for (int width = DSP_FFT_WIDTH; width >= 16; width /= 2)
                if (fits(width)) return {width / int(sizeof(T)), 1, false};
    }
    return {1, 0, false};
}

template <class T>
void transform(T *d, int b, choice k, const T *table, bool inverse, T scale) {
    const int width = k.lanes * int(sizeof(T));
#if DSP_FFT_AVX512
    if (k.isa == 3) return avx512::transform(d, b, width, table, k.eight, inverse, scale);
#endif
#if DSP_FFT_AVX2
    if (k.isa == 2) return avx2::transform(d, b, width, table, k.eight, inverse, scale);
#endif
#if DSP_FFT_VECTORS
    if constexpr (base_vectors<T>) {
#if DSP_FFT_WIDTH >= 32
        if (width == 32) return base::simd_transform<T, 32>(d, b, table, false, inverse, scale);
#endif
        return base::simd_transform<T, 16>(d, b, table, false, inverse, scale);
    }
#endif
    (void)d, (void)b, (void)width, (void)table, (void)inverse, (void)scale;
}

template <class T>
void convolve(T *d, int b, choice k, const T *table, const T *chirp, const T *K, int64_t n,
              T scale) {
    const int width = k.lanes * int(sizeof(T));
#if DSP_FFT_AVX512
    if (k.isa == 3) return avx512::convolve(d, b, width, table, k.eight, chirp, K, n, scale);
#endif
#if DSP_FFT_AVX2
    if (k.isa == 2) return avx2::convolve(d, b, width, table, k.eight, chirp, K, n, scale);
#endif
#if DSP_FFT_VECTORS
    if constexpr (base_vectors<T>) {
#if DSP_FFT_WIDTH >= 32
        if (width == 32) return base::simd_convolve<T, 32>(d, b, table, false, chirp, K, n, scale);
#endif
        return base::simd_convolve<T, 16>(d, b, table, false, chirp, K, n, scale);
    }
#endif
    (void)d, (void)b, (void)width, (void)table, (void)chirp, (void)K, (void)n, (void)scale;
}

template <class T>
bool mixed_candidate(int i, int *isa, int *width) {
    // Candidates in order: AVX-512 (64, 32, 16 bytes), AVX2 (32, 16), the
    // build's vectors (down to 16), then scalar code.
    int list[8][2] = {}, count = 0;
#if DSP_FFT_AVX512
    if (level >= 3 && have_avx512())
        for (int w : {64, 32, 16}) list[count][0] = 3, list[count++][1] = w;
#endif
#if DSP_FFT_AVX2
    if (level >= 2 && have_avx2_fma())
        for (int w : {32, 16}) list[count][0] = 2, list[count++][1] = w;
#endif
    if constexpr (base_vectors<T>) {
        if (level >= 1)
            for (int w = DSP_FFT_WIDTH; w >= 16; w /= 2) list[count][0] = 1, list[count++][1] = w;
    }
    list[count][0] = 0, list[count++][1] = 0;
    if (i >= count) return false;
    *isa = list[i][0], *width = list[i][1];
    return true;
}

template <class T>
void mixed(const mixed_plan<T> &plan, T *d, T *scratch, bool inverse, T scale) {
#if DSP_FFT_AVX512
    if (plan.isa == 3) return avx512::mixed(plan, d, scratch, inverse, scale);
#endif
#if DSP_FFT_AVX2
    if (plan.isa == 2) return avx2::mixed(plan, d, scratch, inverse, scale);
#endif
#if DSP_FFT_VECTORS
    if constexpr (base_vectors<T>) {
#if DSP_FFT_WIDTH >= 32
        if (plan.isa == 1 && plan.width == 32)
            return base::mixed_transform<base::cvector<T, 32>>(plan, d, scratch, inverse, scale);
#endif
        if (plan.isa == 1)
            return base::mixed_transform<base::cvector<T, 16>>(plan, d, scratch, inverse, scale);
    }
#endif
    base::mixed_transform<base::cscalar<T>>(plan, d, scratch, inverse, scale);
}

template <class T>
int64_t real_split(T *d, int64_t h, const T *w, bool inverse) {
    // The vectors of the kernel that transformed the h points: they read
    // its results as it wrote them.
    const choice k = choose<T>(__builtin_ctzll(uint64_t(h)));
    const int width = k.lanes * int(sizeof(T));
#if DSP_FFT_AVX512
    if (k.isa == 3) return avx512::split(d, h, w, width, inverse);
#endif
#if DSP_FFT_AVX2
    if (k.isa == 2) return avx2::split(d, h, w, width, inverse);
#endif
#if DSP_FFT_VECTORS
    if constexpr (base_vectors<T>) {
        if (k.isa == 1) {
#if DSP_FFT_WIDTH >= 32
            if (width == 32)
                return inverse ? base::split_pairs<T, 32, true>(d, h, w)
                               : base::split_pairs<T, 32, false>(d, h, w);
#endif
            return inverse ? base::split_pairs<T, 16, true>(d, h, w)
                           : base::split_pairs<T, 16, false>(d, h, w);
        }
    }
#endif
    (void)d, (void)w, (void)inverse, (void)width;
    return 1;
}

template <class T>
void scalar_passes(T *d, int b, const T *table, bool inverse) {
    if (inverse)
        scalar_transform<T, true>(d, b, table);
    else
        scalar_transform<T, false>(d, b, table);
}

#define DSP_INSTANTIATE(T)                                                                    \
    template choice choose<T>(int);                                                           \
    template void transform<T>(T *, int, choice, const T *, bool, T);                         \
    template void scalar_passes<T>(T *, int, const T *, bool);                                \
    template int64_t real_split<T>(T *, int64_t, const T *, bool);                            \
    template void convolve<T>(T *, int, choice, const T *, const T *, const T *, int64_t, T); \
    template bool mixed_candidate<T>(int, int *, int *);                                      \
    template void mixed<T>(const mixed_plan<T> &, T *, T *, bool, T);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp::fft_kernel
