// The direct FIR inner loops on the compiler's generic vector types, so that
// one source serves SSE2, AVX2 and NEON (and plain scalar code elsewhere).
//
// Included by a .cpp that defines DSP_FILTER_ISA (the namespace of one
// instruction set), DSP_FILTER_WIDTH (vector bytes) and DSP_FILTER_VECTORS
// (0: scalar loops only). Everything here lives in that namespace and calls
// no inline library function, so that files compiled for different
// processors share no code.
//
// Outputs are taken four vectors at a time (then one vector, then single
// scalars): the accumulators stay in registers while the loop walks the
// coefficients, each step one broadcast coefficient times the unaligned
// vectors of samples under the outputs.
#pragma once

#include <cstdint>

namespace dsp::filter_kernel::DSP_FILTER_ISA {

#if DSP_FILTER_VECTORS
template <class T>
struct vec;
template <>
struct vec<float> {
    typedef float type __attribute__((vector_size(DSP_FILTER_WIDTH)));
};
template <>
struct vec<double> {
    typedef double type __attribute__((vector_size(DSP_FILTER_WIDTH)));
};

template <class V, class T>
inline V load(const T *p) {
    V v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
}
template <class V, class T>
inline void store(T *p, V v) {
    __builtin_memcpy(p, &v, sizeof v);
}

template <int U, class V, class T>
inline void direct_block(const T *src, const T *h, int hs, int64_t m, int s, T *out, bool add) {
    constexpr int N = sizeof(V) / sizeof(T);
    V acc[U] = {};
    const T *p = src + int64_t(s) * (m - 1);
    for (int64_t j = 0; j < m; ++j, p -= s) {
        const V c = V{} + h[j * hs];
        for (int u = 0; u < U; ++u) acc[u] += c * load<V>(p + u * N);
    }
    for (int u = 0; u < U; ++u) {
        if (add) acc[u] += load<V>(out + u * N);
        store(out + u * N, acc[u]);
    }
}

template <int U, bool Anti, class V, class T>
inline void symmetric_block(const T *src, const T *c, int64_t M, int s, T *out) {
    constexpr int N = sizeof(V) / sizeof(T);
    V acc[U] = {};
    const T *hi = src + int64_t(s) * (M - 1), *lo = src;
    for (int64_t j = 0; j < M / 2; ++j, hi -= s, lo += s) {
        const V k = V{} + c[j];
        for (int u = 0; u < U; ++u) {
            const V a = load<V>(hi + u * N), b = load<V>(lo + u * N);
            acc[u] += k * (Anti ? a - b : a + b);
        }
    }
    if (M % 2) {
        const V k = V{} + c[M / 2];
        for (int u = 0; u < U; ++u) acc[u] += k * load<V>(lo + u * N);
    }
    for (int u = 0; u < U; ++u) store(out + u * N, acc[u]);
}
#endif

template <class T>
inline void direct_loop(const T *src, const T *h, int hs, int64_t m, int s, T *out, int64_t count,
                        bool add) {
    int64_t i = 0;
#if DSP_FILTER_VECTORS
    using V = typename vec<T>::type;
    constexpr int N = sizeof(V) / sizeof(T);
    for (; i + 4 * N <= count; i += 4 * N) direct_block<4, V>(src + i, h, hs, m, s, out + i, add);
    for (; i + N <= count; i += N) direct_block<1, V>(src + i, h, hs, m, s, out + i, add);
#endif
    for (; i < count; ++i) {
        T a = add ? out[i] : T(0), t = T(0);
        const T *p = src + i + int64_t(s) * (m - 1);
        for (int64_t j = 0; j < m; ++j, p -= s) t += h[j * hs] * *p;
        out[i] = a + t;
    }
}

template <bool Anti, class T>
inline void symmetric_loop(const T *src, const T *c, int64_t M, int s, T *out, int64_t count) {
    int64_t i = 0;
#if DSP_FILTER_VECTORS
    using V = typename vec<T>::type;
    constexpr int N = sizeof(V) / sizeof(T);
    for (; i + 4 * N <= count; i += 4 * N) symmetric_block<4, Anti, V>(src + i, c, M, s, out + i);
    for (; i + N <= count; i += N) symmetric_block<1, Anti, V>(src + i, c, M, s, out + i);
#endif
    for (; i < count; ++i) {
        T t = T(0);
        const T *hi = src + i + int64_t(s) * (M - 1), *lo = src + i;
        for (int64_t j = 0; j < M / 2; ++j, hi -= s, lo += s)
            t += c[j] * (Anti ? *hi - *lo : *hi + *lo);
        if (M % 2) t += c[M / 2] * *lo;
        out[i] = t;
    }
}

// Left to the compiler's vectoriser, which pairs the lanes itself.
template <class T>
inline void multiply_loop(T *__restrict a, const T *__restrict b, int64_t points) {
    for (int64_t k = 0; k < points; ++k) {
        const T ar = a[2 * k], ai = a[2 * k + 1], br = b[2 * k], bi = b[2 * k + 1];
        a[2 * k] = ar * br - ai * bi;
        a[2 * k + 1] = ar * bi + ai * br;
    }
}

void multiply(float *a, const float *b, int64_t points) { multiply_loop(a, b, points); }
void multiply(double *a, const double *b, int64_t points) { multiply_loop(a, b, points); }

void direct(const float *src, const float *h, int hs, int64_t m, int s, float *out, int64_t count,
            bool add) {
    direct_loop(src, h, hs, m, s, out, count, add);
}
void direct(const double *src, const double *h, int hs, int64_t m, int s, double *out,
            int64_t count, bool add) {
    direct_loop(src, h, hs, m, s, out, count, add);
}
void symmetric(const float *src, const float *c, int64_t M, bool antisym, int s, float *out,
               int64_t count) {
    if (antisym)
        symmetric_loop<true>(src, c, M, s, out, count);
    else
        symmetric_loop<false>(src, c, M, s, out, count);
}
void symmetric(const double *src, const double *c, int64_t M, bool antisym, int s, double *out,
               int64_t count) {
    if (antisym)
        symmetric_loop<true>(src, c, M, s, out, count);
    else
        symmetric_loop<false>(src, c, M, s, out, count);
}

}  // namespace dsp::filter_kernel::DSP_FILTER_ISA
