// The mixed-radix DFT (lengths whose factors are 2, 3, 5 and 7) on complex
// vectors: a Stockham transform, each stage read from one buffer and
// written to the other, so that the result comes out in natural order.
//
// Included after fft_simd.hpp by the files that compile the kernels for one
// instruction set (see there); everything lives in that namespace.
//
// Stage of radix r with stride s and count m (the transform of the length
// n' = r m still to be done for each of the s interleaved subsequences):
//   y[q + s (r p + k)] = w_n'^(p k) sum_j x[q + s (p + j m)] w_r^(j k),
// p < m, q < s, k < r. A stage with s >= L (the points per vector) takes L
// consecutive q at a time ("wide"); one with s < L (s divides L) takes the
// L consecutive points x[s (p + j m) + e], e < L, that is L/s consecutive p
// with all their q ("narrow"), and writes its r vectors back through a
// small buffer, as each p goes to r s consecutive points. Ranges that do not
// fill a last vector are done by one more vector that overlaps the one
// before: the stage writes another buffer than it reads, so the overlap
// computes the same values twice.
#pragma once

#include <cstdint>

#include "transform/fft_kernel.hpp"

namespace dsp::fft_kernel::DSP_FFT_ISA {

// One complex point as a scalar pair: the code without vectors.
template <class T>
struct cscalar {
    static constexpr int L = 1;
    using scalar = T;
    T r, i;
    static cscalar load(const T *p) { return {p[0], p[1]}; }
    void store(T *p) const { p[0] = r, p[1] = i; }
    cscalar operator+(cscalar b) const { return {r + b.r, i + b.i}; }
    cscalar operator-(cscalar b) const { return {r - b.r, i - b.i}; }
    cscalar operator*(T f) const { return {r * f, i * f}; }
    // times -i (Inverse: +i)
    template <bool Inverse>
    cscalar rotate() const {
        return Inverse ? cscalar{-i, r} : cscalar{i, -r};
    }
    // times c - i s (Inverse: c + i s), the same for every point
    template <bool Inverse>
    cscalar twiddle(T c, T s) const {
        if constexpr (Inverse) s = -s;
        return {r * c + i * s, i * c - r * s};
    }
    // times the points of the twiddle vectors C = (c, c), S = (s, -s)
    template <bool Inverse>
    cscalar twiddle(const T *C, const T *S) const {
        return twiddle<Inverse>(C[0], S[0]);
    }
};

#if DSP_FFT_VECTORS
// L = W / (2 sizeof(T)) interleaved points in one vector.
template <class T, int W>
struct cvector {
    using vec = typename vtype<T, W>::type;
    using scalar = T;
    static constexpr int N = W / int(sizeof(T)), L = N / 2;
    vec v;
    static cvector load(const T *p) {
        cvector c;
        __builtin_memcpy(&c.v, p, sizeof c.v);
        return c;
    }
    void store(T *p) const { __builtin_memcpy(p, &v, sizeof v); }
    cvector operator+(cvector b) const { return {v + b.v}; }
    cvector operator-(cvector b) const { return {v - b.v}; }
    cvector operator*(T f) const { return {v * f}; }
    static vec alt() {  // (1, -1, 1, -1, ...)
        vec a;
        for (int t = 0; t < N; ++t) a[t] = t % 2 ? T(-1) : T(1);
        return a;
    }
    template <bool Inverse>
    cvector rotate() const {
        return {swap_pairs(v) * (Inverse ? -alt() : alt())};
    }
    template <bool Inverse>
    cvector twiddle(T c, T s) const {
        const vec S = alt() * (Inverse ? -s : s);
        return {v * c + swap_pairs(v) * S};
    }
    template <bool Inverse>
    cvector twiddle(const T *C, const T *S) const {
        vec c, s;
        __builtin_memcpy(&c, C, sizeof c);
        __builtin_memcpy(&s, S, sizeof s);
        return {v * c + swap_pairs(v) * (Inverse ? -s : s)};
    }
};
#endif

// cos and sin of 2 pi a / R for the radices, a <= R/2.
constexpr long double cs_table(int R, int a, bool sine) {
    constexpr long double h = 0.707106781186547524400844362104849039L;
    switch (R * 16 + a) {
        case 3 * 16 + 1:
            return sine ? 0.866025403784438646763723170752936183L : -0.5L;
        case 5 * 16 + 1:
            return sine ? 0.951056516295153572116439333379382143L
                        : 0.309016994374947424102293417182819059L;
        case 5 * 16 + 2:
            return sine ? 0.587785252292473129168705954639072769L
                        : -0.809016994374947424102293417182819059L;
        case 7 * 16 + 1:
            return sine ? 0.781831482468029808708444526674057750L
                        : 0.623489801858733530525004884004239811L;
        case 7 * 16 + 2:
            return sine ? 0.974927912181823607018131682993931217L
                        : -0.222520933956314404288902564496794759L;
        case 7 * 16 + 3:
            return sine ? 0.433883739117558120475768332848358755L
                        : -0.900968867902419126236102319507445051L;
        case 8 * 16 + 1:
            return h;
        case 8 * 16 + 3:
            return sine ? h : -h;
        default:
            return 0;  // the exact values are taken apart (see rcos)
    }
}
// cos(2 pi a / R) and sin(2 pi a / R) for any a: 2 = exactly zero, else the
// value (exact 1 and -1 included).
constexpr long double rcos(int R, int a) {
    a %= R;
    if (a == 0) return 1;
    if (2 * a == R) return -1;
    if (4 * a == R || 4 * a == 3 * R) return 2;
    return cs_table(R, a <= R / 2 ? a : R - a, false);
}
constexpr long double rsin(int R, int a) {
    a %= R;
    if (a == 0 || 2 * a == R) return 2;
    if (4 * a == R) return 1;
    if (4 * a == 3 * R) return -1;
    return a <= R / 2 ? cs_table(R, a, true) : -cs_table(R, R - a, true);
}

// f * x, f a constant: nothing for 0 (2 stands for an exact zero), the
// value itself for 1 and -1.
template <class C, int F100, class S>
DSP_FFT_INLINE void add_times(C &acc, const C &x, S f) {
    if constexpr (F100 == 0) {
        (void)f;
    } else if constexpr (F100 == 1) {
        acc = acc + x;
    } else if constexpr (F100 == -1) {
        acc = acc - x;
    } else {
        acc = acc + x * f;
    }
}
constexpr int kind_of(long double v) { return v == 2 ? 0 : v == 1 ? 1 : v == -1 ? -1 : 9; }

// The DFT of R points in place, a[k] = sum_j a[j] w_R^(j k) (w_R =
// e^(-2 pi i / R), conjugated when Inverse), through the pairs j, R - j:
// t_j = a_j + a_(R-j), d_j = a_j - a_(R-j), and for 0 < k < R/2
//   a_k, a_(R-k) = A_k -+ i B_k,  A_k = a_0 + sum_j cos(2 pi j k / R) t_j
//   (+ (-1)^k a_(R/2) for even R),  B_k = sum_j sin(2 pi j k / R) d_j.
template <int R, bool Inverse, class C>
DSP_FFT_INLINE void dft(C *a) {
    using T = typename C::scalar;
    constexpr int H = (R - 1) / 2;  // pairs
    C t[H > 0 ? H : 1], d[H > 0 ? H : 1];
    static_for<H>([&](auto jj) DSP_FFT_LAMBDA {
        constexpr int j = decltype(jj)::value + 1;
        t[j - 1] = a[j] + a[R - j];
        d[j - 1] = a[j] - a[R - j];
    });
    C y[R];
    y[0] = a[0];
    static_for<H>([&](auto jj) DSP_FFT_LAMBDA { y[0] = y[0] + t[jj]; });
    if constexpr (R % 2 == 0) {
        y[0] = y[0] + a[R / 2];
        C half = a[0];
        static_for<H>([&](auto jj) DSP_FFT_LAMBDA {
            constexpr int j = decltype(jj)::value + 1;
            if constexpr (j % 2)
                half = half - t[j - 1];
            else
                half = half + t[j - 1];
        });
        y[R / 2] = (R / 2) % 2 ? half - a[R / 2] : half + a[R / 2];
    }
    static_for<H>([&](auto kk) DSP_FFT_LAMBDA {
        constexpr int k = decltype(kk)::value + 1;
        C A = a[0];
        if constexpr (R % 2 == 0) A = k % 2 ? A - a[R / 2] : A + a[R / 2];
        C B{};
        bool have_b = false;
        static_for<H>([&](auto jj) DSP_FFT_LAMBDA {
            constexpr int j = decltype(jj)::value + 1;
            constexpr long double c = rcos(R, j * k), s = rsin(R, j * k);
            add_times<C, kind_of(c)>(A, t[j - 1], T(c));
            if constexpr (kind_of(s) != 0) {
                if (!have_b) {
                    B = kind_of(s) == 1 ? d[j - 1] : d[j - 1] * T(s);
                    have_b = true;
                } else {
                    add_times<C, kind_of(s)>(B, d[j - 1], T(s));
                }
            }
        });
        const C iB = B.template rotate<Inverse>();  // -i B (Inverse: +i B)
        y[k] = A + iB;
        y[R - k] = A - iB;
    });
    static_for<R>([&](auto k) DSP_FFT_LAMBDA { a[k] = y[k]; });
}

// A wide stage (s >= L): tw holds (c, s) of w^(p k), k = 1 .. R-1, per p.
template <int R, bool Inverse, class C, class T>
void wide_stage(const T *x, T *y, int64_t s, int64_t m, const T *tw, T scale, bool last) {
    constexpr int L = C::L;
    for (int64_t p = 0; p < m; ++p) {
        const T *w = tw + 2 * (R - 1) * p;
        for (int64_t q0 = 0; q0 < s; q0 += L) {
            const int64_t q = q0 + L <= s ? q0 : s - L;
            C a[R];
            static_for<R>([&](auto j)
                              DSP_FFT_LAMBDA { a[j] = C::load(x + 2 * (q + s * (p + j * m))); });
            dft<R, Inverse>(a);
            if (p != 0)
                static_for<R - 1>([&](auto k) DSP_FFT_LAMBDA {
                    a[k + 1] = a[k + 1].template twiddle<Inverse>(w[2 * k], w[2 * k + 1]);
                });
            if (last) static_for<R>([&](auto k) DSP_FFT_LAMBDA { a[k] = a[k] * scale; });
            static_for<R>([&](auto k)
                              DSP_FFT_LAMBDA { a[k].store(y + 2 * (q + s * (R * p + k))); });
        }
    }
}

// A narrow stage (S = s < L, S divides L): tw holds, for k = 1 .. R-1, the
// vectors C = (c, c, ...) and S = (s, -s, ...) of w^(p k) for every point
// P = p S + q (2 m S scalars each).
template <int R, int S, bool Inverse, class C, class T>
void narrow_stage(const T *x, T *y, int64_t m, const T *tw, T scale, bool last) {
    constexpr int L = C::L, per = L / S;  // per: values of p in a vector
    const int64_t ms = m * S;
    alignas(64) T buf[2 * R * L];
    for (int64_t p0 = 0; p0 < m; p0 += per) {
        const int64_t p = p0 + per <= m ? p0 : m - per;
        C a[R];
        static_for<R>([&](auto j) DSP_FFT_LAMBDA { a[j] = C::load(x + 2 * S * (p + j * m)); });
        dft<R, Inverse>(a);
        static_for<R - 1>([&](auto k) DSP_FFT_LAMBDA {
            const T *w = tw + 4 * ms * k + 2 * S * p;
            a[k + 1] = a[k + 1].template twiddle<Inverse>(w, w + 2 * ms);
        });
        if (last) static_for<R>([&](auto k) DSP_FFT_LAMBDA { a[k] = a[k] * scale; });
        // Points t S .. t S + S - 1 of a[k] go to y[S (R (p + t) + k)].
        static_for<R>([&](auto k) DSP_FFT_LAMBDA { a[k].store(buf + 2 * L * k); });
        T *out = y + 2 * S * R * p;
        static_for<per>([&](auto t) DSP_FFT_LAMBDA {
            static_for<R>([&](auto k) DSP_FFT_LAMBDA {
                __builtin_memcpy(out + 2 * S * (R * t + k), buf + 2 * (L * k + t * S),
                                 2 * S * sizeof(T));
            });
        });
    }
}

template <bool Inverse, class C, class T>
void stage(int R, bool narrow, const T *x, T *y, int64_t s, int64_t m, const T *tw, T scale,
           bool last) {
#define DSP_MIXED_STAGE(r)                                                               \
    case r:                                                                              \
        if (!narrow) return wide_stage<r, Inverse, C>(x, y, s, m, tw, scale, last);      \
        if constexpr (C::L >= 2)                                                         \
            if (s == 1) return narrow_stage<r, 1, Inverse, C>(x, y, m, tw, scale, last); \
        if constexpr (C::L >= 4)                                                         \
            if (s == 2) return narrow_stage<r, 2, Inverse, C>(x, y, m, tw, scale, last); \
        if constexpr (C::L >= 8)                                                         \
            if (s == 4) return narrow_stage<r, 4, Inverse, C>(x, y, m, tw, scale, last); \
        return;
    switch (R) {
        DSP_MIXED_STAGE(2)
        DSP_MIXED_STAGE(3)
        DSP_MIXED_STAGE(4)
        DSP_MIXED_STAGE(5)
        DSP_MIXED_STAGE(7)
        DSP_MIXED_STAGE(8)
        default:
            return;
    }
#undef DSP_MIXED_STAGE
}

// The transform of the plan on the points at d, with scratch of as many
// points; forward results times scale.
template <class C, class T>
void mixed_transform(const mixed_plan<T> &plan, T *d, T *scratch, bool inverse, T scale) {
    T *from = d, *to = scratch;
    for (int i = 0; i < plan.stages; ++i) {
        const bool last = i + 1 == plan.stages;
        const bool narrow = plan.s[i] < C::L;
        const T f = inverse ? T(1) : scale;
        if (inverse)
            stage<true, C>(plan.radix[i], narrow, from, to, plan.s[i], plan.m[i], plan.tw[i], f,
                           last && f != T(1));
        else
            stage<false, C>(plan.radix[i], narrow, from, to, plan.s[i], plan.m[i], plan.tw[i], f,
                            last && f != T(1));
        T *t = from;
        from = to, to = t;
    }
    if (from != d) __builtin_memcpy(d, from, size_t(2 * plan.n) * sizeof(T));
}

}  // namespace dsp::fft_kernel::DSP_FFT_ISA
