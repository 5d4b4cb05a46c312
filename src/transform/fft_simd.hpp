// The complex FFT on vectors of V lanes, written with the compiler's generic
// vector types so that one source serves SSE2, AVX2, AVX-512 and NEON.
//
// Included by a .cpp that defines DSP_FFT_ISA (the namespace of one
// instruction set), DSP_FFT_WIDTH (the widest vector in bytes: 16, 32 or 64)
// and DSP_FFT_VECTORS (0: only the scalar passes). Everything here lives in
// that namespace and uses no inline library functions, so that files
// compiled for different processors share no code.
//
// A transform of n = V M points is split in two (with w_n = e^(-2 pi i / n),
// point m = V j + l, frequency k = k1 + M k2):
//   X[k1 + M k2] = sum_l w_V^(l k2) w_n^(l k1) Y_l[k1],
//   Y_l[k1]      = sum_j x[V j + l] w_M^(j k1).
// The memory is read as M groups of V consecutive points; the first part,
// V transforms of length M side by side (one per lane), is a radix-4
// decimation-in-frequency FFT whose elements are whole groups, in place,
// leaving Y in bit-reversed order of k1. Its first pass turns every group
// from interleaved points (re, im, re, im, ...) into V real parts followed
// by V imaginary parts, so that the passes need no shuffles at all.
//
// The second part takes V groups at a time, those of V consecutive k1 (the
// block c: k1 = c V + i), transposes them so that a vector holds one lane l
// for the V values of k1, multiplies by w_n^(l k1), and a V-point DFT
// across the vectors gives, for each k2, the V consecutive points
// X[c V + i + M k2]: one group of the natural order, interleaved again on
// the way out. Block c reads the groups c' + C j (C = M / V, c' the bit
// reversal of c) and writes the groups c + C k2, so the blocks c and c' are
// done together and the transform stays in place. The forward scaling by
// 1/n is applied there as well.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace dsp::fft_kernel::DSP_FFT_ISA {

// Reversal of the low `bits` bits of i.
inline uint32_t reverse(uint32_t i, int bits) {
    i = ((i >> 1) & 0x55555555u) | ((i & 0x55555555u) << 1);
    i = ((i >> 2) & 0x33333333u) | ((i & 0x33333333u) << 2);
    i = ((i >> 4) & 0x0f0f0f0fu) | ((i & 0x0f0f0f0fu) << 4);
    i = ((i >> 8) & 0x00ff00ffu) | ((i & 0x00ff00ffu) << 8);
    i = (i >> 16) | (i << 16);
    return bits ? i >> (32 - bits) : 0;
}

#if DSP_FFT_VECTORS
// Vector types of each width.
template <class T, int W>
struct vtype;

#define DSP_FFT_VECTOR(T, W, name)                  \
    typedef T name __attribute__((vector_size(W))); \
    template <>                                     \
    struct vtype<T, W> {                            \
        using type = name;                          \
    };
DSP_FFT_VECTOR(float, 16, f4)
DSP_FFT_VECTOR(double, 16, d2)
#if DSP_FFT_WIDTH >= 32
DSP_FFT_VECTOR(float, 32, f8)
DSP_FFT_VECTOR(double, 32, d4)
#endif
#if DSP_FFT_WIDTH >= 64
DSP_FFT_VECTOR(float, 64, f16)
DSP_FFT_VECTOR(double, 64, d8)
#endif
#undef DSP_FFT_VECTOR

// Lane shuffles on vectors of N lanes, from index sequences.
template <class vec, std::size_t... t>
inline vec even_(vec a, vec b, std::index_sequence<t...>) {
    return __builtin_shufflevector(a, b, int(2 * t)...);
}
template <class vec, std::size_t... t>
inline vec odd_(vec a, vec b, std::index_sequence<t...>) {
    return __builtin_shufflevector(a, b, int(2 * t + 1)...);
}
// Interleaves the lanes of the lower (Half = 0) or upper half of r and i.
template <int Half, class vec, std::size_t... t>
inline vec zip_(vec r, vec i, std::index_sequence<t...>) {
    constexpr int N = int(sizeof...(t));
    return __builtin_shufflevector(r, i, int((t % 2 ? N : 0) + Half * N / 2 + t / 2)...);
}
// The transpose step of distance h (see transpose).
template <int h, class vec, std::size_t... t>
inline vec low_(vec a, vec b, std::index_sequence<t...>) {
    constexpr int N = int(sizeof...(t));
    return __builtin_shufflevector(a, b, int((t & h) ? N + t - h : t)...);
}
template <int h, class vec, std::size_t... t>
inline vec high_(vec a, vec b, std::index_sequence<t...>) {
    constexpr int N = int(sizeof...(t));
    return __builtin_shufflevector(a, b, int((t & h) ? N + t : t + h)...);
}

// Functions and lambdas of the unrolled code are always inlined, so that the
// arrays of vectors they work on stay in registers.
#define DSP_FFT_INLINE inline __attribute__((always_inline))
#define DSP_FFT_LAMBDA __attribute__((always_inline))

// f(integral_constant<int, i>) for i = 0 .. N-1, unrolled.
template <int N, class F>
DSP_FFT_INLINE void static_for(F &&f) {
    [&]<std::size_t... i>(std::index_sequence<i...>) DSP_FFT_LAMBDA {
        (f(std::integral_constant<int, int(i)>{}), ...);
    }
    (std::make_index_sequence<std::size_t(N)>{});
}

constexpr uint32_t reverse_const(uint32_t i, int bits) {
    uint32_t r = 0;
    for (int k = 0; k < bits; ++k) r |= ((i >> k) & 1u) << (bits - 1 - k);
    return r;
}

// cos(2 pi t / 16), t = 0 .. 4, from their exact values.
constexpr long double cos16[5] = {1.0L, 0.923879532511286756128183189396788933L,
                                  0.707106781186547524400844362104849039L,
                                  0.382683432365089771728459984030398866L, 0.0L};

// Blocks of the first part up to this many bytes are transformed stage
// after stage; larger ones take one stage and recurse into their quarters
// (depth first), so that the later stages run on data in cache.
constexpr int64_t breadth_first_bytes = 16 * 1024;

template <class T, int W, bool Inverse>
struct kernel {
    using vec = typename vtype<T, W>::type;
    static constexpr int V = W / int(sizeof(T));
    static constexpr int G = 2 * V;  // scalars of a group
    using seq = std::make_index_sequence<std::size_t(V)>;

    static vec load(const T *p) {
        vec v;
        __builtin_memcpy(&v, p, sizeof v);
        return v;
    }
    static void store(T *p, vec v) { __builtin_memcpy(p, &v, sizeof v); }

    // A complex vector times the twiddle (c, s), conjugated when Inverse.
    template <class C>
    static void twiddle(vec &r, vec &i, C c, C s) {
        if constexpr (Inverse) s = -s;
        const vec t = r * c - i * s;
        i = r * s + i * c;
        r = t;
    }

    T *d;
    int stages;            // radix-4 stages of the first part
    int64_t ms[32] = {};   // quarter length (in groups) of each, largest first
    const T *tw[32] = {};  // twiddles of each, then the table of the second part
    bool odd;              // a radix-2 stage ends the first part
    int mbits;             // log2 M

    kernel(T *data, int b, const T *table) : d(data) {
        mbits = b - __builtin_ctz(unsigned(V));
        odd = mbits % 2 != 0;
        stages = 0;
        for (int64_t m = (int64_t(1) << mbits) / 4; m >= 1; m /= 4) {
            ms[stages] = m;
            tw[stages++] = table;
            table += 6 * m;
        }
        tw[stages] = table;  // the table of the second part
    }

    // One radix-4 stage on the block of 4m groups from group B. First: the
    // groups still hold interleaved points.
    template <bool First>
    void pass(int64_t B, int64_t m, const T *w) const {
        T *p0 = d + G * B, *p1 = p0 + G * m, *p2 = p1 + G * m, *p3 = p2 + G * m;
        for (int64_t k = 0; k < m; ++k) {
            const int64_t o = G * k;
            vec x0r, x0i, x1r, x1i, x2r, x2i, x3r, x3i;
            if constexpr (First) {
                auto split = [](const T *p, vec &r, vec &i) {
                    const vec a = load(p), b = load(p + V);
                    r = even_(a, b, seq{});
                    i = odd_(a, b, seq{});
                };
                split(p0 + o, x0r, x0i);
                split(p1 + o, x1r, x1i);
                split(p2 + o, x2r, x2i);
                split(p3 + o, x3r, x3i);
            } else {
                x0r = load(p0 + o), x0i = load(p0 + o + V);
                x1r = load(p1 + o), x1i = load(p1 + o + V);
                x2r = load(p2 + o), x2i = load(p2 + o + V);
                x3r = load(p3 + o), x3i = load(p3 + o + V);
            }
            const vec ar = x0r + x2r, ai = x0i + x2i;
            const vec br = x1r + x3r, bi = x1i + x3i;
            const vec cr = x0r - x2r, ci = x0i - x2i;
            const vec dr = x1r - x3r, di = x1i - x3i;
            vec yr = ar - br, yi = ai - bi;
            // c -+ i d (forward) / c +- i d (inverse)
            vec ur, ui, vr, vi;
            if constexpr (Inverse) {
                ur = cr - di, ui = ci + dr, vr = cr + di, vi = ci - dr;
            } else {
                ur = cr + di, ui = ci - dr, vr = cr - di, vi = ci + dr;
            }
            if (k != 0) {
                const T *t = w + 6 * k;
                twiddle(ur, ui, t[0], t[1]);
                twiddle(yr, yi, t[2], t[3]);
                twiddle(vr, vi, t[4], t[5]);
            }
            store(p0 + o, ar + br);
            store(p0 + o + V, ai + bi);
            store(p1 + o, yr);
            store(p1 + o + V, yi);
            store(p2 + o, ur);
            store(p2 + o + V, ui);
            store(p3 + o, vr);
            store(p3 + o + V, vi);
        }
    }

    // The radix-2 stage that ends an odd M, on the groups from B to B + size.
    void radix2(int64_t B, int64_t size) const {
        for (T *p = d + G * B, *end = d + G * (B + size); p < end; p += 2 * G) {
            const vec ar = load(p), ai = load(p + V), br = load(p + G), bi = load(p + G + V);
            store(p, ar + br);
            store(p + V, ai + bi);
            store(p + G, ar - br);
            store(p + G + V, ai - bi);
        }
    }

    // The first part from stage s on the block of 4 ms[s] groups from B.
    template <bool First>
    void first_part(int64_t B, int s) const {
        const int64_t m = ms[s];
        pass<First>(B, m, tw[s]);
        if (4 * m * G * int64_t(sizeof(T)) > breadth_first_bytes && s + 1 < stages) {
            for (int q = 0; q < 4; ++q) first_part<false>(B + q * m, s + 1);
            return;
        }
        for (int t = s + 1; t < stages; ++t)
            for (int64_t blk = B; blk < B + 4 * m; blk += 4 * ms[t]) pass<false>(blk, ms[t], tw[t]);
        if (odd) radix2(B, 4 * m);
    }

    // V-point DFT across the vectors (x[l] lane by lane), leaving
    // sum_l x[l] w_V^(l k) in x[reverse(k)]: radix-2 decimation in frequency
    // with constant twiddles, from the level of half-distance h down.
    template <int h>
    DSP_FFT_INLINE static void dft_across(vec *xr, vec *xi) {
        static_for<V / (2 * h)>([&](auto blk) DSP_FFT_LAMBDA {
            static_for<h>([&](auto jj) DSP_FFT_LAMBDA {
                constexpr int j = decltype(jj)::value, base = decltype(blk)::value * 2 * h;
                vec &ar = xr[base + j], &ai = xi[base + j];
                vec &br = xr[base + j + h], &bi = xi[base + j + h];
                const vec tr = ar - br, ti = ai - bi;
                ar += br, ai += bi;
                // w_2h^j = e^(-2 pi i t / 16), t = 8 j / h
                constexpr int t = 8 * j / h;
                if constexpr (t == 0) {
                    br = tr, bi = ti;
                } else if constexpr (t == 4) {  // -i (forward), +i (inverse)
                    br = Inverse ? -ti : ti;
                    bi = Inverse ? tr : -tr;
                } else {
                    const T c = T(t <= 4 ? cos16[t] : -cos16[8 - t]);
                    const T s = T(t <= 4 ? -cos16[4 - t] : -cos16[t - 4]);
                    br = tr, bi = ti;
                    twiddle(br, bi, c, s);
                }
            });
        });
        if constexpr (h > 1) dft_across<h / 2>(xr, xi);
    }

    // Transposes the V x V matrix of rows x[0 .. V-1]: the 2 x 2 blocks of
    // distance h = V/2, V/4, ..., 1 change places.
    template <int h>
    DSP_FFT_INLINE static void transpose(vec *x) {
        static_for<V / 2>([&](auto jj) DSP_FFT_LAMBDA {
            constexpr int q = decltype(jj)::value, j = (q / h) * 2 * h + q % h;
            const vec lo = low_<h>(x[j], x[j + h], seq{}), hi = high_<h>(x[j], x[j + h], seq{});
            x[j] = lo, x[j + h] = hi;
        });
        if constexpr (h > 1) transpose<h / 2>(x);
    }

    // The second part for block c: row i (the group of k1 = c V + i, i < V)
    // is at rows(i), and it writes the groups c + C k2.
    template <class Rows>
    DSP_FFT_INLINE void block(uint32_t c, Rows rows, const T *w, T scale) const {
        constexpr int v = __builtin_ctz(unsigned(V));
        const int64_t C = (int64_t(1) << mbits) / V;
        vec r[V], i[V];
        static_for<V>([&](auto row) DSP_FFT_LAMBDA {
            const T *p = rows(row);
            r[row] = load(p);
            i[row] = load(p + V);
        });
        transpose<V / 2>(r);
        transpose<V / 2>(i);
        // r[l], i[l]: lane l of the V values k1 = c V + lane.
        const T *t = w + int64_t(c) * (V - 1) * G;
        static_for<V - 1>([&](auto ll) DSP_FFT_LAMBDA {
            constexpr int l = decltype(ll)::value + 1;
            twiddle(r[l], i[l], load(t + (l - 1) * G), load(t + (l - 1) * G + V));
        });
        dft_across<V / 2>(r, i);
        static_for<V>([&](auto kk) DSP_FFT_LAMBDA {
            constexpr int k = decltype(kk)::value;
            constexpr int rk = int(reverse_const(k, v));
            vec zr = r[rk], zi = i[rk];
            if constexpr (!Inverse) zr *= scale, zi *= scale;
            T *p = d + G * (int64_t(c) + C * k);
            store(p, zip_<0>(zr, zi, seq{}));
            store(p + V, zip_<1>(zr, zi, seq{}));
        });
    }

    void second_part(T scale) const {
        constexpr int v = __builtin_ctz(unsigned(V));
        const int cbits = mbits - v;
        const int64_t C = int64_t(1) << cbits;
        const T *w = tw[stages];
        // Row i of block c is the group cr + C rev(i), cr the reversal of c.
        // Where c and cr differ, the rows of block cr (the groups c + C
        // rev(i), which block c overwrites) are copied aside first.
        alignas(64) T rows[V * G] = {};
        for (uint32_t c = 0; c < uint32_t(C); ++c) {
            const uint32_t cr = reverse(c, cbits);
            if (cr < c) continue;
            T *mine = d + G * int64_t(cr), *theirs = d + G * int64_t(c);
            if (cr != c) {
                static_for<V>([&](auto row) DSP_FFT_LAMBDA {
                    constexpr int j = int(reverse_const(decltype(row)::value, v));
                    const T *p = theirs + G * C * j;
                    store(rows + row * G, load(p));
                    store(rows + row * G + V, load(p + V));
                });
            }
            block(
                c,
                [&](auto row) DSP_FFT_LAMBDA {
                    constexpr int j = int(reverse_const(decltype(row)::value, v));
                    return mine + G * C * j;
                },
                w, scale);
            if (cr != c)
                block(
                    cr, [&](auto row) DSP_FFT_LAMBDA { return rows + row * G; }, w, scale);
        }
    }

    void run(T scale) const {
        first_part<true>(0, 0);
        second_part(scale);
    }
};

// The natural-order transform of n = 2^b interleaved points in place, with
// the table for (b, W / sizeof(T)); forward results times scale.
template <class T, int W>
inline void simd_transform(T *d, int b, const T *table, bool inverse, T scale) {
    if (inverse)
        kernel<T, W, true>(d, b, table).run(scale);
    else
        kernel<T, W, false>(d, b, table).run(scale);
}

#endif  // DSP_FFT_VECTORS

}  // namespace dsp::fft_kernel::DSP_FFT_ISA
