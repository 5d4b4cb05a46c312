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

#include "transform/fft_kernel.hpp"

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


constexpr uint32_t reverse_const(uint32_t i, int bits) {
    uint32_t r = 0;
    for (int k = 0; k < bits; ++k) r |= ((i >> k) & 1u) << (bits - 1 - k);
    return r;
}

// Interleaved points: the order of the points reversed, the two parts of
// each point exchanged, and lane Part of each point copied to both.
template <class vec, std::size_t... t>
inline vec reverse_points_(vec v, std::index_sequence<t...>) {
    constexpr int N = int(sizeof...(t));
    return __builtin_shufflevector(v, v, int(N - 2 - (t & ~std::size_t(1)) + (t & 1))...);
}
template <class vec>
inline vec reverse_points(vec v) {
    return reverse_points_(v, std::make_index_sequence<sizeof(vec) / sizeof(v[0])>{});
}
template <class vec, std::size_t... t>
inline vec swap_pairs_(vec v, std::index_sequence<t...>) {
    return __builtin_shufflevector(v, v, int(t ^ 1)...);
}
template <class vec>
inline vec swap_pairs(vec v) {
    return swap_pairs_(v, std::make_index_sequence<sizeof(vec) / sizeof(v[0])>{});
}
// The vector one point (two lanes) on from a, continuing into b.
template <class vec, std::size_t... t>
inline vec shift_point_(vec a, vec b, std::index_sequence<t...>) {
    return __builtin_shufflevector(a, b, int(t + 2)...);
}
template <int Part, class vec, std::size_t... t>
inline vec pick_(vec v, std::index_sequence<t...>) {
    return __builtin_shufflevector(v, v, int((t & ~std::size_t(1)) + Part)...);
}

// cos(2 pi t / 16), t = 0 .. 4, from their exact values.
constexpr long double cos16[5] = {1.0L, 0.923879532511286756128183189396788933L,
                                  0.707106781186547524400844362104849039L,
                                  0.382683432365089771728459984030398866L, 0.0L};

// Blocks of the first part up to this many bytes are transformed stage
// after stage; larger ones take one stage and recurse into their quarters
// (depth first), so that the later stages run on data in cache.
constexpr int64_t breadth_first_bytes = 16 * 1024;

// What the transform reads first and writes last: plain (in place, the
// forward results times `scale`), or the two transforms of a chirp-z
// convolution (see convolve below).
enum mode { plain, chirp_forward, chirp_inverse };

template <class T, int W, bool Inverse, mode Mode = plain>
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
    T scale = T(1);
    const T *chirp = nullptr;     // chirp_forward / chirp_inverse: n points
    const T *spectrum = nullptr;  // chirp_forward: the kernel spectrum
    int64_t n = 0;                // points of the chirp-z transform
    int stages;                   // stages of the first part
    int radix[32] = {};           // their radices (2, 4 or 8), largest span first
    int64_t ms[32] = {};          // span / radix, in groups
    const T *tw[33] = {};         // twiddles of each, then the table of the second part
    int mbits;                    // log2 M

    kernel(T *data, int b, const T *table, bool eight) : d(data) {
        mbits = b - __builtin_ctz(unsigned(V));
        stages = stage_radices(mbits, eight, radix);
        int64_t span = int64_t(1) << mbits;
        for (int s = 0; s < stages; ++s) {
            ms[s] = span / radix[s];
            tw[s] = table;
            table += 2 * (radix[s] - 1) * ms[s];
            span = ms[s];
        }
        tw[stages] = table;
    }

    // Group p as (re, im) vectors. First: the group still holds interleaved
    // points; for chirp_forward, those of the input times the chirp, zero
    // from point n on.
    template <bool First>
    DSP_FFT_INLINE void get(const T *p, vec &r, vec &i) const {
        if constexpr (First && Mode == chirp_forward) {
            const int64_t at = (p - d) / 2;  // first point of the group
            if (at >= n) {
                r = i = vec{};
                return;
            }
            vec a, b, ca, cb;
            if (at + V <= n) {
                a = load(p), b = load(p + V);
                ca = load(chirp + 2 * at), cb = load(chirp + 2 * at + V);
            } else {
                alignas(64) T x[G] = {}, c[G] = {};
                for (int64_t j = 0; j < 2 * (n - at); ++j) x[j] = p[j], c[j] = chirp[2 * at + j];
                a = load(x), b = load(x + V), ca = load(c), cb = load(c + V);
            }
            r = even_(a, b, seq{}), i = odd_(a, b, seq{});
            times(r, i, even_(ca, cb, seq{}), odd_(ca, cb, seq{}));
        } else if constexpr (First) {
            const vec a = load(p), b = load(p + V);
            r = even_(a, b, seq{});
            i = odd_(a, b, seq{});
        } else {
            r = load(p), i = load(p + V);
        }
    }
    DSP_FFT_INLINE static void put(T *p, vec r, vec i) {
        store(p, r);
        store(p + V, i);
    }

    // (r, i) times (cr, ci).
    DSP_FFT_INLINE static void times(vec &r, vec &i, vec cr, vec ci) {
        const vec t = r * cr - i * ci;
        i = r * ci + i * cr;
        r = t;
    }

    // The last write: the output group at p interleaved again, after the
    // scaling (plain forward), the product with the kernel spectrum
    // (chirp_forward), or the product with the chirp and the scale, for the
    // points below n only (chirp_inverse).
    DSP_FFT_INLINE void emit(T *p, vec r, vec i) const {
        if constexpr (Mode == chirp_forward) {
            const vec a = load(spectrum + (p - d)), b = load(spectrum + (p - d) + V);
            times(r, i, even_(a, b, seq{}), odd_(a, b, seq{}));
        } else if constexpr (Mode == chirp_inverse) {
            const int64_t at = (p - d) / 2;
            if (at >= n) return;
            vec ca, cb;
            const bool whole = at + V <= n;
            if (whole) {
                ca = load(chirp + 2 * at), cb = load(chirp + 2 * at + V);
            } else {
                alignas(64) T c[G] = {};
                for (int64_t j = 0; j < 2 * (n - at); ++j) c[j] = chirp[2 * at + j];
                ca = load(c), cb = load(c + V);
            }
            times(r, i, even_(ca, cb, seq{}) * scale, odd_(ca, cb, seq{}) * scale);
            if (!whole) {
                alignas(64) T out[G];
                store(out, zip_<0>(r, i, seq{}));
                store(out + V, zip_<1>(r, i, seq{}));
                for (int64_t j = 0; j < 2 * (n - at); ++j) p[j] = out[j];
                return;
            }
        } else if constexpr (!Inverse) {
            r *= scale, i *= scale;
        }
        store(p, zip_<0>(r, i, seq{}));
        store(p + V, zip_<1>(r, i, seq{}));
    }

    // x times -i (forward) or +i (inverse).
    DSP_FFT_INLINE static void rotate(vec &r, vec &i) {
        const vec t = r;
        if constexpr (Inverse) {
            r = -i, i = t;
        } else {
            r = i, i = -t;
        }
    }

    // The stages of the first part: decimation in frequency, the output of
    // position q (the frequency bit-reversed from q) times w^(k rev(q)),
    // w = e^(-2 pi i / (r m)), from the table (see table_length).
    // Butterflies of 4 and 8 elements in place: x[j] in, at position q the
    // frequency rev(q) of their DFT out (no twiddles).
    DSP_FFT_INLINE static void butterfly4(vec *xr, vec *xi) {
        const vec ar = xr[0] + xr[2], ai = xi[0] + xi[2];
        const vec br = xr[1] + xr[3], bi = xi[1] + xi[3];
        const vec cr = xr[0] - xr[2], ci = xi[0] - xi[2];
        vec dr = xr[1] - xr[3], di = xi[1] - xi[3];
        rotate(dr, di);
        xr[0] = ar + br, xi[0] = ai + bi;
        xr[1] = ar - br, xi[1] = ai - bi;
        xr[2] = cr + dr, xi[2] = ci + di;
        xr[3] = cr - dr, xi[3] = ci - di;
    }

    DSP_FFT_INLINE static void butterfly8(vec *xr, vec *xi) {
        constexpr T h = T(0.707106781186547524400844362104849039L);  // sqrt(1/2)
        vec ar[4], ai[4], br[4], bi[4];
        static_for<4>([&](auto j) DSP_FFT_LAMBDA {
            ar[j] = xr[j] + xr[j + 4], ai[j] = xi[j] + xi[j + 4];
            br[j] = xr[j] - xr[j + 4], bi[j] = xi[j] - xi[j + 4];
        });
        // b1 w8, b2 (-i), b3 w8^3, conjugated for the inverse
        const vec r1 = br[1], i1 = bi[1], r3 = br[3], i3 = bi[3];
        if constexpr (Inverse) {
            br[1] = (r1 - i1) * h, bi[1] = (r1 + i1) * h;
            br[3] = -(r3 + i3) * h, bi[3] = (r3 - i3) * h;
        } else {
            br[1] = (r1 + i1) * h, bi[1] = (i1 - r1) * h;
            br[3] = (i3 - r3) * h, bi[3] = -(r3 + i3) * h;
        }
        rotate(br[2], bi[2]);
        // Four-point DFTs of a (the even frequencies) and of b (the odd
        // ones): positions 0 A0, 1 A2, 2 A1, 3 A3, 4 B0, 5 B2, 6 B1, 7 B3.
        butterfly4(ar, ai);
        butterfly4(br, bi);
        static_for<4>([&](auto j) DSP_FFT_LAMBDA {
            xr[j] = ar[j], xi[j] = ai[j];
            xr[j + 4] = br[j], xi[j + 4] = bi[j];
        });
    }

    // The same DFT by radix-2 decimation in frequency when the elements
    // from Z on are zero (the chirp-z input past its n points), sparing the
    // additions and products of zeros.
    template <int R, int Z>
    DSP_FFT_INLINE static void dif(vec *xr, vec *xi) {
        if constexpr (R > 1) {
            constexpr int H = R / 2;
            static_for<H>([&](auto jj) DSP_FFT_LAMBDA {
                constexpr int j = decltype(jj)::value;
                vec &ar = xr[j], &ai = xi[j], &br = xr[j + H], &bi = xi[j + H];
                if constexpr (j < Z) {
                    vec tr = ar, ti = ai;
                    if constexpr (j + H < Z) {
                        tr = ar - br, ti = ai - bi;
                        ar += br, ai += bi;
                    }
                    // times w_R^j = e^(-2 pi i t / 16), t = 16 j / R
                    constexpr int t = 16 * j / R;
                    br = tr, bi = ti;
                    if constexpr (t == 4) {
                        rotate(br, bi);
                    } else if constexpr (t != 0) {
                        const T c = T(t <= 4 ? cos16[t] : -cos16[8 - t]);
                        const T s = T(t <= 4 ? -cos16[4 - t] : -cos16[t - 4]);
                        twiddle(br, bi, c, s);
                    }
                }
            });
            constexpr int Z2 = Z < H ? Z : H;
            dif<H, Z2>(xr, xi);
            dif<H, Z2>(xr + H, xi + H);
        }
    }

    // A stage of radix R on the block of R m groups from group B; the
    // elements from Z on are zero (see dif).
    template <int R, bool First, int Z = R>
    void stage_pass(int64_t B, int64_t m, const T *w) const {
        T *p = d + G * B;
        const int64_t step = G * m;
        for (int64_t k = 0; k < m; ++k) {
            T *q = p + G * k;
            vec xr[R], xi[R];
            static_for<R>([&](auto j) DSP_FFT_LAMBDA {
                if constexpr (j < Z)
                    get<First>(q + j * step, xr[j], xi[j]);
                else
                    xr[j] = xi[j] = vec{};
            });
            if constexpr (Z < R) {
                dif<R, Z>(xr, xi);
            } else if constexpr (R == 8) {
                butterfly8(xr, xi);
            } else if constexpr (R == 4) {
                butterfly4(xr, xi);
            } else {
                const vec tr = xr[0] - xr[1], ti = xi[0] - xi[1];
                xr[0] += xr[1], xi[0] += xi[1];
                xr[1] = tr, xi[1] = ti;
            }
            if (R > 2 && k != 0) {
                const T *t = w + 2 * (R - 1) * k;
                static_for<R - 1>([&](auto j) DSP_FFT_LAMBDA {
                    twiddle(xr[j + 1], xi[j + 1], t[2 * j], t[2 * j + 1]);
                });
            }
            static_for<R>([&](auto j) DSP_FFT_LAMBDA { put(q + j * step, xr[j], xi[j]); });
        }
    }

    template <bool First>
    void pass(int s, int64_t B) const {
        switch (radix[s]) {
            case 8:
                return stage_pass<8, First>(B, ms[s], tw[s]);
            case 4:
                return stage_pass<4, First>(B, ms[s], tw[s]);
            default:
                return stage_pass<2, First>(B, ms[s], tw[s]);
        }
    }

    // The first stage of the chirp-z forward transform, where the elements
    // of a butterfly (span R m groups) that hold points from n on are zero.
    template <int R>
    void pass_pruned(int64_t m) const {
        const int64_t nonzero = (n + V * m - 1) / (V * m);
        if (nonzero <= 1) return stage_pass<R, true, 1>(0, m, tw[0]);
        if constexpr (R >= 4)
            if (nonzero <= 2) return stage_pass<R, true, 2>(0, m, tw[0]);
        if constexpr (R >= 8)
            if (nonzero <= 4) return stage_pass<R, true, 4>(0, m, tw[0]);
        stage_pass<R, true>(0, m, tw[0]);
    }

    // The first part from stage s on its block from group B.
    template <bool First>
    void first_part(int64_t B, int s) const {
        const int64_t m = ms[s], span = radix[s] * m;
        if constexpr (First && Mode == chirp_forward) {
            switch (radix[0]) {
                case 8:
                    pass_pruned<8>(m);
                    break;
                case 4:
                    pass_pruned<4>(m);
                    break;
                default:
                    pass_pruned<2>(m);
                    break;
            }
        } else {
            pass<First>(s, B);
        }
        if (span * G * int64_t(sizeof(T)) > breadth_first_bytes && s + 1 < stages) {
            for (int q = 0; q < radix[s]; ++q) first_part<false>(B + q * m, s + 1);
            return;
        }
        for (int t = s + 1; t < stages; ++t)
            for (int64_t blk = B; blk < B + span; blk += radix[t] * ms[t]) pass<false>(t, blk);
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
    DSP_FFT_INLINE void block(uint32_t c, Rows rows, const T *w) const {
        vec r[V], i[V];
        static_for<V>([&](auto row) DSP_FFT_LAMBDA {
            const T *p = rows(row);
            r[row] = load(p);
            i[row] = load(p + V);
        });
        block(c, r, i, w);
    }

    // The same with the rows in r, i.
    DSP_FFT_INLINE void block(uint32_t c, vec *r, vec *i, const T *w) const {
        constexpr int v = __builtin_ctz(unsigned(V));
        const int64_t C = (int64_t(1) << mbits) / V;
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
            emit(d + G * (int64_t(c) + C * k), r[rk], i[rk]);
        });
    }

    void second_part() const {
        constexpr int v = __builtin_ctz(unsigned(V));
        const int cbits = mbits - v;
        const int64_t C = int64_t(1) << cbits;
        const T *w = tw[stages];
        // Row i of block c is the group cr + C rev(i), cr the reversal of c.
        // Where c and cr differ, the rows of block cr (the groups c + C
        // rev(i), which block c overwrites) are copied aside first.
        alignas(64) T rows[V * G];
        for (uint32_t c = 0; c < uint32_t(C); ++c) {
            const uint32_t cr = reverse(c, cbits);
            if (cr < c) continue;
            const T *mine = d + G * int64_t(cr), *theirs = d + G * int64_t(c);
            auto own_rows = [&](auto row) DSP_FFT_LAMBDA {
                constexpr int j = int(reverse_const(decltype(row)::value, v));
                return mine + G * C * j;
            };
            if (cr == c) {  // also the single block of M = V
                block(c, own_rows, w);
                continue;
            }
            static_for<V>([&](auto row) DSP_FFT_LAMBDA {
                constexpr int j = int(reverse_const(decltype(row)::value, v));
                const T *p = theirs + G * C * j;
                store(rows + row * G, load(p));
                store(rows + row * G + V, load(p + V));
            });
            block(c, own_rows, w);
            block(
                cr, [&](auto row) DSP_FFT_LAMBDA { return rows + row * G; }, w);
        }
    }

    void run() const {
        if (stages == 1 && mbits == __builtin_ctz(unsigned(V))) {
            // M = V in a single stage: the whole transform in registers.
            vec xr[V], xi[V], r[V], i[V];
            static_for<V>([&](auto j) DSP_FFT_LAMBDA { get<true>(d + G * j, xr[j], xi[j]); });
            if constexpr (V == 8) butterfly8(xr, xi);
            if constexpr (V == 4) butterfly4(xr, xi);
            if constexpr (V == 4 || V == 8) {
                // Row i: the group of k1 = i, at position rev(i).
                static_for<V>([&](auto row) DSP_FFT_LAMBDA {
                    constexpr int j =
                        int(reverse_const(decltype(row)::value, __builtin_ctz(unsigned(V))));
                    r[row] = xr[j], i[row] = xi[j];
                });
                block(0, r, i, tw[stages]);
                return;
            }
        }
        first_part<true>(0, 0);
        second_part();
    }
};

// The natural-order transform of n = 2^b interleaved points in place, with
// the table for (b, W / sizeof(T)); forward results times scale.
template <class T, int W>
inline void simd_transform(T *d, int b, const T *table, bool eight, bool inverse, T scale) {
    if (inverse) {
        kernel<T, W, true>(d, b, table, eight).run();
    } else {
        kernel<T, W, false> k(d, b, table, eight);
        k.scale = scale;
        k.run();
    }
}

// The circular convolution of a chirp-z transform of n points over the
// N = 2^b points at d: the forward transform of the n points at d times
// the chirp (zero from n on) multiplied by the kernel spectrum K (N points,
// with the 1/N of the convolution), then the inverse transform, whose first
// n points are stored times the chirp and `scale`.
template <class T, int W>
inline void simd_convolve(T *d, int b, const T *table, bool eight, const T *chirp, const T *K,
                          int64_t n, T scale) {
    kernel<T, W, false, chirp_forward> f(d, b, table, eight);
    f.chirp = chirp, f.spectrum = K, f.n = n;
    f.run();
    kernel<T, W, true, chirp_inverse> i(d, b, table, eight);
    i.chirp = chirp, i.n = n, i.scale = scale;
    i.run();
}

// The pairs (k, h - k) of the real FFT's split (see fourier.cpp) on
// vectors of L = N/2 interleaved points, for k from 1 while a whole vector
// of them lies below h/2. w: (cos, sin) of 2 pi k / 2h. Returns the first k
// left to scalar code. The vectors are read where the transform wrote them
// (whole vectors from d on), so that the processor forwards the values from
// its store buffer: the points h-k-L+1 .. h-k are such a vector, and the
// points k .. k+L-1 (one point off) are put together from two.
template <class T, int W, bool Inverse>
inline int64_t split_pairs(T *d, int64_t h, const T *w) {
    using vec = typename vtype<T, W>::type;
    constexpr int N = W / int(sizeof(T)), L = N / 2;
    using seq = std::make_index_sequence<std::size_t(N)>;
    auto load = [](const T *p) {
        vec v;
        __builtin_memcpy(&v, p, sizeof v);
        return v;
    };
    auto store = [](T *p, vec v) { __builtin_memcpy(p, &v, sizeof v); };
    vec alt;  // (1, -1, 1, -1, ...): conjugates interleaved points
    for (int t = 0; t < N; ++t) alt[t] = t % 2 ? T(-1) : T(1);
    const T f = Inverse ? T(1) : T(0.25);
    T *hi = d + 2 * h;
    int64_t k = 1;
    if (2 * L >= h) return k;
    vec next = load(d);
    for (; 2 * (k + L - 1) < h; k += L) {
        const vec before = next;
        next = load(d + 2 * (k - 1) + N);
        T *back = hi - 2 * (k + L - 1);  // points h-k-L+1 .. h-k
        const vec a = shift_point_(before, next, seq{});
        const vec b = reverse_points(load(back)) * alt;
        const vec p = a + b, dd = a - b;
        const vec wv = load(w + 2 * k);
        const vec c = pick_<0>(wv, seq{}), s = pick_<1>(wv, seq{});
        // forward: q = -i W^k D, inverse: q = i conj(W^k) D, W^k = c - i s
        const vec cd = swap_pairs(dd) * c;
        const vec q = (Inverse ? -cd : cd) * alt - dd * s;
        store(d + 2 * k, f * (p + q));
        store(back, reverse_points(f * (p - q) * alt));
    }
    return k;
}

#endif  // DSP_FFT_VECTORS

}  // namespace dsp::fft_kernel::DSP_FFT_ISA
