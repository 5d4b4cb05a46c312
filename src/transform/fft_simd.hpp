// Vectorised butterfly passes of the complex FFT, written with the compiler's
// generic vector types so that one source serves SSE2, AVX2 and NEON.
//
// Included by a .cpp that defines DSP_FFT_ISA (the namespace of one
// instruction set), DSP_FFT_WIDTH (vector bytes, 16 or 32) and
// DSP_FFT_VECTORS (0: only the scalar passes). Everything here
// lives in that namespace and uses no inline library functions, so that
// files compiled for different processors share no code.
//
// Layout: the first pass reads interleaved points (re, im, re, im, ...) and
// leaves groups of V consecutive points as V real parts followed by V
// imaginary parts; the middle passes work on these groups without any
// shuffling; the last passes of every small block (where a block quarter
// holds fewer than V points) run in scalar code and leave interleaved points.
#pragma once

#include <cstdint>

namespace dsp::fft_kernel::DSP_FFT_ISA {

#if DSP_FFT_VECTORS
// Vector types of each width and the lane shuffles the layout needs.
template <class T, int W>
struct vtype;

#define DSP_FFT_VECTOR(T, W, name)                               \
    typedef T name __attribute__((vector_size(W)));             \
    template <>                                                  \
    struct vtype<T, W> {                                         \
        using type = name;                                       \
    };
DSP_FFT_VECTOR(float, 16, f4)
DSP_FFT_VECTOR(double, 16, d2)
#if DSP_FFT_WIDTH >= 32
DSP_FFT_VECTOR(float, 32, f8)
DSP_FFT_VECTOR(double, 32, d4)
#endif
#undef DSP_FFT_VECTOR

#define SHUF __builtin_shufflevector
// even(a, b): lanes 0, 2, 4, ... of a then b (real parts of interleaved
// points); odd: lanes 1, 3, 5, ...; lo / hi: (re, im) back to interleaved.
inline f4 even(f4 a, f4 b) { return SHUF(a, b, 0, 2, 4, 6); }
inline f4 odd(f4 a, f4 b) { return SHUF(a, b, 1, 3, 5, 7); }
inline f4 lo(f4 r, f4 i) { return SHUF(r, i, 0, 4, 1, 5); }
inline f4 hi(f4 r, f4 i) { return SHUF(r, i, 2, 6, 3, 7); }
inline d2 even(d2 a, d2 b) { return SHUF(a, b, 0, 2); }
inline d2 odd(d2 a, d2 b) { return SHUF(a, b, 1, 3); }
inline d2 lo(d2 r, d2 i) { return SHUF(r, i, 0, 2); }
inline d2 hi(d2 r, d2 i) { return SHUF(r, i, 1, 3); }
#if DSP_FFT_WIDTH >= 32
inline f8 even(f8 a, f8 b) { return SHUF(a, b, 0, 2, 4, 6, 8, 10, 12, 14); }
inline f8 odd(f8 a, f8 b) { return SHUF(a, b, 1, 3, 5, 7, 9, 11, 13, 15); }
inline f8 lo(f8 r, f8 i) { return SHUF(r, i, 0, 8, 1, 9, 2, 10, 3, 11); }
inline f8 hi(f8 r, f8 i) { return SHUF(r, i, 4, 12, 5, 13, 6, 14, 7, 15); }
inline d4 even(d4 a, d4 b) { return SHUF(a, b, 0, 2, 4, 6); }
inline d4 odd(d4 a, d4 b) { return SHUF(a, b, 1, 3, 5, 7); }
inline d4 lo(d4 r, d4 i) { return SHUF(r, i, 0, 4, 1, 5); }
inline d4 hi(d4 r, d4 i) { return SHUF(r, i, 2, 6, 3, 7); }
#endif
// swap<h>(v): lane j and lane j ^ h change places.
template <int h> inline f4 swap(f4 v) {
    if constexpr (h == 1) return SHUF(v, v, 1, 0, 3, 2);
    else return SHUF(v, v, 2, 3, 0, 1);
}
template <int h> inline d2 swap(d2 v) { return SHUF(v, v, 1, 0); }
#if DSP_FFT_WIDTH >= 32
template <int h> inline f8 swap(f8 v) {
    if constexpr (h == 1) return SHUF(v, v, 1, 0, 3, 2, 5, 4, 7, 6);
    else if constexpr (h == 2) return SHUF(v, v, 2, 3, 0, 1, 6, 7, 4, 5);
    else return SHUF(v, v, 4, 5, 6, 7, 0, 1, 2, 3);
}
template <int h> inline d4 swap(d4 v) {
    if constexpr (h == 1) return SHUF(v, v, 1, 0, 3, 2);
    else return SHUF(v, v, 2, 3, 0, 1);
}
#endif
#undef SHUF
#endif  // DSP_FFT_VECTORS

// One radix-4 stage over every block of 4m points of the n interleaved points
// at d (scalar code; see fft_kernel.cpp for the butterfly).
template <class T, bool Inverse>
inline void radix4_scalar(T *d, int64_t n, int64_t m, const T *w) {
    const T *w1r = w, *w1i = w + m, *w2r = w + 2 * m, *w2i = w + 3 * m, *w3r = w + 4 * m,
            *w3i = w + 5 * m;
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
            const T c1 = w1r[k], s1 = s * w1i[k];
            const T c2 = w2r[k], s2 = s * w2i[k];
            const T c3 = w3r[k], s3 = s * w3i[k];
            p1[i] = yr * c2 - yi * s2, p1[i + 1] = yr * s2 + yi * c2;
            p2[i] = ur * c1 - ui * s1, p2[i + 1] = ur * s1 + ui * c1;
            p3[i] = vr * c3 - vi * s3, p3[i + 1] = vr * s3 + vi * c3;
        }
    }
}

// The last stage of an odd power of two: pairs (x0 + x1, x0 - x1).
template <class T>
inline void radix2_scalar(T *d, int64_t n) {
    for (int64_t i = 0; i < 2 * n; i += 4) {
        const T r0 = d[i], i0 = d[i + 1], r1 = d[i + 2], i1 = d[i + 3];
        d[i] = r0 + r1, d[i + 1] = i0 + i1;
        d[i + 2] = r0 - r1, d[i + 3] = i0 - i1;
    }
}

// Scalar transform of n = 2^b interleaved points: every stage breadth first.
template <class T, bool Inverse>
inline void scalar_transform(T *d, int b, const T *tw) {
    const int64_t n = int64_t(1) << b;
    for (int64_t m = n / 4; m >= 1; m /= 4) {
        radix4_scalar<T, Inverse>(d, n, m, tw);
        tw += 6 * m;
        if (m == 2) radix2_scalar(d, n);
    }
}

#if DSP_FFT_VECTORS
// Blocks up to this many bytes are transformed stage after stage; larger
// ones take one stage and recurse into their quarters (depth first), so that
// the later stages run on data in cache.
constexpr int64_t breadth_first_bytes = 32 * 1024;

template <class T, bool Inverse>
struct simd_kernel {
    using vec = typename vtype<T, DSP_FFT_WIDTH>::type;
    static constexpr int V = DSP_FFT_WIDTH / int(sizeof(T));

    T *d;
    const T *tw[32];  // twiddles of each radix-4 stage
    int64_t ms[32];   // quarter length m of each radix-4 stage, then 0
    bool odd_b;       // a radix-2 stage ends the transform

    static vec load(const T *p) {
        vec v;
        __builtin_memcpy(&v, p, sizeof v);
        return v;
    }
    static void store(T *p, vec v) { __builtin_memcpy(p, &v, sizeof v); }

    // One radix-4 stage on the block of 4m points starting at point B
    // (m >= V). First: the input is still interleaved.
    template <bool First>
    void pass(int64_t B, int64_t m, const T *w) const {
        T *p0 = d + 2 * B, *p1 = p0 + 2 * m, *p2 = p1 + 2 * m, *p3 = p2 + 2 * m;
        const T *w1r = w, *w1i = w + m, *w2r = w + 2 * m, *w2i = w + 3 * m, *w3r = w + 4 * m,
                *w3i = w + 5 * m;
        for (int64_t k = 0; k < m; k += V) {
            const int64_t i = 2 * k;
            vec x0r, x0i, x1r, x1i, x2r, x2i, x3r, x3i;
            if constexpr (First) {
                vec a = load(p0 + i), b = load(p0 + i + V);
                x0r = even(a, b), x0i = odd(a, b);
                a = load(p1 + i), b = load(p1 + i + V);
                x1r = even(a, b), x1i = odd(a, b);
                a = load(p2 + i), b = load(p2 + i + V);
                x2r = even(a, b), x2i = odd(a, b);
                a = load(p3 + i), b = load(p3 + i + V);
                x3r = even(a, b), x3i = odd(a, b);
            } else {
                x0r = load(p0 + i), x0i = load(p0 + i + V);
                x1r = load(p1 + i), x1i = load(p1 + i + V);
                x2r = load(p2 + i), x2i = load(p2 + i + V);
                x3r = load(p3 + i), x3i = load(p3 + i + V);
            }
            const vec ar = x0r + x2r, ai = x0i + x2i;
            const vec br = x1r + x3r, bi = x1i + x3i;
            const vec cr = x0r - x2r, ci = x0i - x2i;
            const vec dr = x1r - x3r, di = x1i - x3i;
            store(p0 + i, ar + br);
            store(p0 + i + V, ai + bi);
            const vec yr = ar - br, yi = ai - bi;
            // c -+ i d (forward) / c +- i d (inverse)
            vec ur, ui, vr, vi;
            if constexpr (Inverse) {
                ur = cr - di, ui = ci + dr, vr = cr + di, vi = ci - dr;
            } else {
                ur = cr + di, ui = ci - dr, vr = cr - di, vi = ci + dr;
            }
            const vec c1 = load(w1r + k), c2 = load(w2r + k), c3 = load(w3r + k);
            vec s1 = load(w1i + k), s2 = load(w2i + k), s3 = load(w3i + k);
            if constexpr (Inverse) s1 = -s1, s2 = -s2, s3 = -s3;
            store(p1 + i, yr * c2 - yi * s2);
            store(p1 + i + V, yr * s2 + yi * c2);
            store(p2 + i, ur * c1 - ui * s1);
            store(p2 + i + V, ur * s1 + ui * c1);
            store(p3 + i, vr * c3 - vi * s3);
            store(p3 + i + V, vr * s3 + vi * c3);
        }
    }

    // The last stages, as radix-2 levels of half-distance h = S/2 ... 1 on
    // blocks of S <= 2V points (one or two groups): a level with h = V pairs
    // the two groups lane by lane, a level with h < V pairs lanes j and
    // j + h within a group. The second point of every pair is multiplied by
    // w_2h^(j mod h); these factors are the same in every block and are
    // kept as lane vectors (wr, wi). The points leave interleaved.
    struct level {
        vec sign, wr, wi;
    };
    level levels[4];  // h = V (two groups), V/2, ..., 1

    template <int h>
    static void within(vec &r, vec &i, const level &l) {
        vec ur = swap<h>(r) + l.sign * r, ui = swap<h>(i) + l.sign * i;
        if constexpr (h == 1) {
            r = ur, i = ui;
        } else {
            r = ur * l.wr - ui * l.wi;
            i = ur * l.wi + ui * l.wr;
        }
    }

    // Levels of half-distance h and below of one group.
    static void group_levels(vec &r, vec &i, int h, const level *l) {
        if constexpr (V >= 8)
            if (h >= 4) within<4>(r, i, l[0]), ++l, h = 2;
        if constexpr (V >= 4)
            if (h >= 2) within<2>(r, i, l[0]), ++l, h = 1;
        if (h >= 1) within<1>(r, i, l[0]);
    }

    static void store_interleaved(T *p, vec r, vec i) {
        store(p, lo(r, i));
        store(p + V, hi(r, i));
    }

    // Blocks of S points from point B to B + size.
    void tail(int64_t B, int64_t size, int64_t S) const {
        T *p = d + 2 * B, *end = d + 2 * (B + size);
        if (S == 2 * V) {
            const level &top = levels[0];
            for (; p < end; p += 4 * V) {
                const vec ar = load(p), ai = load(p + V), br = load(p + 2 * V),
                          bi = load(p + 3 * V);
                vec r0 = ar + br, i0 = ai + bi;
                const vec yr = ar - br, yi = ai - bi;
                vec r1 = yr * top.wr - yi * top.wi, i1 = yr * top.wi + yi * top.wr;
                group_levels(r0, i0, V / 2, levels + 1);
                group_levels(r1, i1, V / 2, levels + 1);
                store_interleaved(p, r0, i0);
                store_interleaved(p + 2 * V, r1, i1);
            }
        } else {
            // S <= V: the levels within a group, from h = S/2, are the last
            // ones of the table (which ends with h = 1).
            int skip = 0;
            for (int64_t h = V / 2; h > S / 2; h /= 2) ++skip;
            for (; p < end; p += 2 * V) {
                vec r = load(p), i = load(p + V);
                group_levels(r, i, int(S / 2), levels + 1 + skip);
                store_interleaved(p, r, i);
            }
        }
    }

    template <bool First>
    void stage(int64_t B, int s) const {
        const int64_t m = ms[s];
        if (m < V) {
            tail(B, m ? 4 * m : 2, m ? 4 * m : 2);
            return;
        }
        if (4 * m * 2 * int64_t(sizeof(T)) > breadth_first_bytes) {
            pass<First>(B, m, tw[s]);
            for (int q = 0; q < 4; ++q) stage<false>(B + q * m, s + 1);
            return;
        }
        // Breadth first within the block.
        const int64_t size = 4 * m;
        pass<First>(B, m, tw[s]);
        int t = s + 1;
        for (; ms[t] >= V; ++t)
            for (int64_t blk = B; blk < B + size; blk += 4 * ms[t]) pass<false>(blk, ms[t], tw[t]);
        tail(B, size, ms[t] ? 4 * ms[t] : 2);
    }

    simd_kernel(T *data, int b, const T *table) : d(data), odd_b(b % 2 != 0) {
        int s = 0;
        for (int64_t m = (int64_t(1) << b) / 4; m >= 1; m /= 4, ++s) {
            ms[s] = m;
            tw[s] = table;
            table += 6 * m;
        }
        ms[s] = 0;
        tw[s] = nullptr;
        // w_16^t, t = 0 .. 15 (cos and sin of 2 pi t / 16 from their exact
        // values); the factor of a level of half-distance h for k < h is
        // w_2h^k = w_16^(8 k / h), conjugated for the inverse.
        constexpr long double c1 = 0.923879532511286756128183189396788933L;  // cos(pi/8)
        constexpr long double s1 = 0.382683432365089771728459984030398866L;  // sin(pi/8)
        constexpr long double r2 = 0.707106781186547524400844362104849039L;  // sqrt(1/2)
        const long double cq[5] = {1.0L, c1, r2, s1, 0.0L};  // cos(2 pi t / 16), t = 0..4
        int li = 0;
        for (int h = V; h >= 1; h /= 2, ++li) {
            level &l = levels[li];
            for (int j = 0; j < V; ++j) {
                const bool second = h == V || (j & h) != 0;
                const int k = h == V ? j : j % h;
                const int t = second ? (8 * k) / h : 0;  // angle 2 pi t / 16, t < 8
                // cos and sin of 2 pi t / 16 for t in 0..7 from the quarter table
                const long double c = t <= 4 ? cq[t] : -cq[8 - t];
                const long double sn = t <= 4 ? cq[4 - t] : cq[t - 4];
                l.sign[j] = (h == V || !second) ? T(1) : T(-1);
                l.wr[j] = T(c);
                l.wi[j] = Inverse ? T(sn) : T(-sn);
            }
        }
    }
};

// The transform of n = 2^b interleaved points, n >= 4 V.
template <class T>
inline void simd_transform(T *d, int b, const T *tw, bool inverse) {
    if (inverse)
        simd_kernel<T, true>(d, b, tw).template stage<true>(0, 0);
    else
        simd_kernel<T, false>(d, b, tw).template stage<true>(0, 0);
}

#endif  // DSP_FFT_VECTORS

}  // namespace dsp::fft_kernel::DSP_FFT_ISA
