// The FFT kernel for x86 processors with AVX2 and FMA. The build compiles
// this file alone with those instructions enabled; the library calls it only
// after checking that the processor has them.
#if defined(__AVX2__) && defined(__FMA__) && (defined(__clang__) || __GNUC__ >= 12)

#define DSP_FFT_ISA avx2
#define DSP_FFT_VECTORS 1
#define DSP_FFT_WIDTH 32
#include "transform/fft_simd.hpp"
#include "transform/mixed_simd.hpp"

namespace dsp::fft_kernel::avx2 {

template <class T>
void run(T *d, int b, int width, const T *table, bool eight, bool inverse, T scale) {
    if (width == 32)
        simd_transform<T, 32>(d, b, table, eight, inverse, scale);
    else
        simd_transform<T, 16>(d, b, table, eight, inverse, scale);
}

template <class T>
int64_t split(T *d, int64_t h, const T *w, int width, bool inverse) {
    if (width == 32)
        return inverse ? split_pairs<T, 32, true>(d, h, w) : split_pairs<T, 32, false>(d, h, w);
    return inverse ? split_pairs<T, 16, true>(d, h, w) : split_pairs<T, 16, false>(d, h, w);
}

template <class T>
void conv(T *d, int b, int width, const T *table, bool eight, const T *chirp, const T *K, int64_t n,
          T scale) {
    if (width == 32) return simd_convolve<T, 32>(d, b, table, eight, chirp, K, n, scale);
    simd_convolve<T, 16>(d, b, table, eight, chirp, K, n, scale);
}

template <class T>
void run_mixed(const mixed_plan<T> &plan, T *d, T *scratch, bool inverse, T scale) {
    if (plan.width == 32) return mixed_transform<cvector<T, 32>>(plan, d, scratch, inverse, scale);
    mixed_transform<cvector<T, 16>>(plan, d, scratch, inverse, scale);
}

void transform(float *d, int b, int width, const float *table, bool eight, bool inverse,
               float scale) {
    run(d, b, width, table, eight, inverse, scale);
}
void transform(double *d, int b, int width, const double *table, bool eight, bool inverse,
               double scale) {
    run(d, b, width, table, eight, inverse, scale);
}
int64_t split(float *d, int64_t h, const float *w, int width, bool inverse) {
    return split<float>(d, h, w, width, inverse);
}
int64_t split(double *d, int64_t h, const double *w, int width, bool inverse) {
    return split<double>(d, h, w, width, inverse);
}
void convolve(float *d, int b, int width, const float *table, bool eight, const float *chirp,
              const float *K, int64_t n, float scale) {
    conv(d, b, width, table, eight, chirp, K, n, scale);
}
void convolve(double *d, int b, int width, const double *table, bool eight, const double *chirp,
              const double *K, int64_t n, double scale) {
    conv(d, b, width, table, eight, chirp, K, n, scale);
}
void mixed(const mixed_plan<float> &plan, float *d, float *scratch, bool inverse, float scale) {
    run_mixed(plan, d, scratch, inverse, scale);
}
void mixed(const mixed_plan<double> &plan, double *d, double *scratch, bool inverse, double scale) {
    run_mixed(plan, d, scratch, inverse, scale);
}

}  // namespace dsp::fft_kernel::avx2

#endif
