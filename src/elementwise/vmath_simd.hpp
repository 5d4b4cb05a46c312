// Logarithms, exponential and hypotenuse on vectors of doubles, and the
// loops that apply them (with their substitutes) to the samples of a
// record. Single-precision samples are widened, computed in double and
// rounded back, as the runtime functions are used for them.
//
// Included by a .cpp that defines DSP_VMATH_ISA (the namespace of one
// instruction set) and DSP_VMATH_WIDTH (the widest vector in bytes, 0 for
// scalar code only). Everything lives in that namespace, so that files
// compiled for different processors share no code.
//
// The functions are written once for a "vector" D of doubles: double itself
// (the scalar code) or a vector of the compiler's generic types.
//
// log(x), x positive, normal and finite: x = 2^k m, m in [sqrt(1/2),
// sqrt(2)), f = m - 1, s = f / (2 + f), and with the polynomial R of s^2
// (|error| < 2^-58.45 on this range)
//   log(x) = k ln2 + f - f^2/2 + s (f^2/2 + R),
// where k ln2_hi + f - f^2/2 is summed exactly (ln2_hi has 21 trailing zero
// bits; the rounding error of f^2/2 from a fused multiply-add or Dekker's
// product) and all the small terms are added to the errors before the last
// rounding: about 0.6 units in the last place. log10 is that sum times
// 1/ln10 in two parts, about 0.7 units (the runtime's own log10 is off by up
// to 1.6 units, measured).
// exp(x): k = round(x / ln2), r = x - k ln2 (ln2 in two parts, the first
// product exact), exp(r) = 1 + r + r^2 P(r) with the Taylor terms up to
// r^13 (|r| <= ln2/2: truncation below 2^-57), 1 + r_hi added exactly, then
// times 2^k in two exact steps (a result below the normal range is rounded
// once, in the second).
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "frame/traits.hpp"

#if DSP_VMATH_WIDTH >= 16 && (defined(__SSE2__) || defined(__AVX__))
#include <immintrin.h>
#endif
#if DSP_VMATH_WIDTH >= 16 && defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace dsp::vmath::DSP_VMATH_ISA {

#define DSP_VMATH_INLINE inline __attribute__((always_inline))
#define DSP_VMATH_LAMBDA __attribute__((always_inline))

// The integer vector of the same shape as D, and the matching float vector.
// F holds as many floats as D doubles, F2 twice as many.
template <class D>
struct shape {
    using I = int64_t;
    using F = float;
    static constexpr int lanes = 1;
};
#if DSP_VMATH_WIDTH >= 16
typedef double vd2 __attribute__((vector_size(16)));
typedef int64_t vi2 __attribute__((vector_size(16)));
typedef float vf2 __attribute__((vector_size(8)));
typedef float vf4 __attribute__((vector_size(16)));
template <>
struct shape<vd2> {
    using I = vi2;
    using F = vf2;
    using F2 = vf4;
    static constexpr int lanes = 2;
};
#endif
#if DSP_VMATH_WIDTH >= 32
typedef double vd4 __attribute__((vector_size(32)));
typedef int64_t vi4 __attribute__((vector_size(32)));
typedef float vf8 __attribute__((vector_size(32)));
template <>
struct shape<vd4> {
    using I = vi4;
    using F = vf4;
    using F2 = vf8;
    static constexpr int lanes = 4;
};
#endif
#if DSP_VMATH_WIDTH >= 64
typedef double vd8 __attribute__((vector_size(64)));
typedef int64_t vi8 __attribute__((vector_size(64)));
typedef float vf16 __attribute__((vector_size(64)));
template <>
struct shape<vd8> {
    using I = vi8;
    using F = vf8;
    using F2 = vf16;
    static constexpr int lanes = 8;
};
#endif

template <class D>
using ivec = typename shape<D>::I;
template <class D>
using fvec = typename shape<D>::F;

template <class D>
DSP_VMATH_INLINE D as_double(ivec<D> i) {
    return __builtin_bit_cast(D, i);
}
template <class D>
DSP_VMATH_INLINE ivec<D> as_int(D x) {
    return __builtin_bit_cast(ivec<D>, x);
}
// Converts between float and double vectors (or scalars) of the same
// number of lanes.
template <class To, class From>
DSP_VMATH_INLINE To convert(From x) {
    if constexpr (std::is_arithmetic_v<From>)
        return To(x);
    else
        return __builtin_convertvector(x, To);
}
// Small integers (|k| < 2^51) as doubles, without a conversion
// instruction (which the vector units before AVX-512 lack for 64 bits).
template <class D>
DSP_VMATH_INLINE D to_double(ivec<D> k) {
#if DSP_VMATH_WIDTH >= 64 && defined(__AVX512DQ__) && defined(__AVX512VL__)
    if constexpr (!std::is_arithmetic_v<D>) return __builtin_convertvector(k, D);
#endif
    constexpr double magic = 0x1.8p52;
    return as_double<D>(as_int(D{} + magic) + k) - magic;
}
template <class D>
DSP_VMATH_INLINE D sqrt_of(D x) {
    if constexpr (std::is_arithmetic_v<D>) {
        return __builtin_sqrt(x);
#if DSP_VMATH_WIDTH >= 64 && defined(__AVX512F__)
    } else if constexpr (sizeof(D) == 64) {
        D r;  // (the intrinsic's header trips GCC 12's uninitialised-use warning)
        __asm__("vsqrtpd %1, %0" : "=v"(r) : "v"(x));
        return r;
#endif
#if DSP_VMATH_WIDTH >= 32 && defined(__AVX__)
    } else if constexpr (sizeof(D) == 32) {
        return D(_mm256_sqrt_pd(__m256d(x)));
#endif
#if DSP_VMATH_WIDTH >= 16 && defined(__SSE2__)
    } else if constexpr (sizeof(D) == 16) {
        return D(_mm_sqrt_pd(__m128d(x)));
#endif
#if DSP_VMATH_WIDTH >= 16 && defined(__aarch64__)
    } else if constexpr (sizeof(D) == 16) {
        return D(vsqrtq_f64(float64x2_t(x)));
#endif
    } else {
        D r;
        for (int t = 0; t < shape<D>::lanes; ++t) r[t] = __builtin_sqrt(x[t]);
        return r;
    }
}
// A mask (comparison result) as a vector of 0 / -1 integers.
template <class D, class M>
DSP_VMATH_INLINE ivec<D> mask(M m) {
    if constexpr (sizeof(D) == sizeof(double))
        return m ? int64_t(-1) : int64_t(0);
    else
        return m;
}
template <class D>
DSP_VMATH_INLINE D pick(ivec<D> m, D a, D b) {  // m ? a : b, lane by lane
    return m ? a : b;
}
template <class D>
DSP_VMATH_INLINE D splat(double v) {
    return D{} + v;
}
#if defined(__clang__) || (defined(__GNUC__) && __GNUC__ >= 12)
#define DSP_VMATH_SHUFFLES 1
// The even lanes of two (a vector of L lanes from one of 2L), and two
// vectors of L lanes interleaved into one of 2L.
template <class F1, class F2, std::size_t... t>
DSP_VMATH_INLINE F1 evens(F2 v, std::index_sequence<t...>) {
    return __builtin_shufflevector(v, v, int(2 * t)...);
}
template <class F2, class F1, std::size_t... u>
DSP_VMATH_INLINE F2 interleave(F1 a, F1 b, std::index_sequence<u...>) {
    constexpr int L = int(sizeof...(u)) / 2;
    return __builtin_shufflevector(a, b, int(u % 2 ? L + u / 2 : u / 2)...);
}
#else
#define DSP_VMATH_SHUFFLES 0
#endif

// Lane t of a vector (the value itself for scalar code), read and written.
template <class V>
DSP_VMATH_INLINE auto lane(const V &x, int t) {
    if constexpr (std::is_arithmetic_v<V>) {
        (void)t;
        return x;
    } else {
        return x[t];
    }
}
template <class V, class S>
DSP_VMATH_INLINE void set_lane(V &x, int t, S v) {
    if constexpr (std::is_arithmetic_v<V>) {
        (void)t;
        x = V(v);
    } else {
        x[t] = v;
    }
}

// a b + c with a single rounding. Without the instruction (x86 before
// AVX2) only the product's rounding error is wanted, which Dekker's split
// gives exactly: fma_of is then only used as fma_of(a, b, -p), p = a b.
template <class D>
DSP_VMATH_INLINE D product_error(D a, D b, D p) {
#if defined(__FMA__) || defined(__aarch64__)
    if constexpr (std::is_arithmetic_v<D>) {
        return __builtin_fma(a, b, -p);
#if DSP_VMATH_WIDTH >= 64 && defined(__AVX512F__)
    } else if constexpr (sizeof(D) == 64) {
        return D(_mm512_fmsub_pd(__m512d(a), __m512d(b), __m512d(p)));
#endif
#if DSP_VMATH_WIDTH >= 32 && defined(__FMA__)
    } else if constexpr (sizeof(D) == 32) {
        return D(_mm256_fmsub_pd(__m256d(a), __m256d(b), __m256d(p)));
#endif
#if DSP_VMATH_WIDTH >= 16 && defined(__FMA__)
    } else if constexpr (sizeof(D) == 16) {
        return D(_mm_fmsub_pd(__m128d(a), __m128d(b), __m128d(p)));
#endif
#if DSP_VMATH_WIDTH >= 16 && defined(__aarch64__)
    } else if constexpr (sizeof(D) == 16) {
        return D(vfmaq_f64(float64x2_t(-p), float64x2_t(a), float64x2_t(b)));
#endif
    } else {
        D r;
        for (int t = 0; t < shape<D>::lanes; ++t) r[t] = __builtin_fma(a[t], b[t], -p[t]);
        return r;
    }
#else
    constexpr double split = 134217729.0;  // 2^27 + 1
    const D ca = a * split, cb = b * split;
    const D ah = ca - (ca - a), al = a - ah, bh = cb - (cb - b), bl = b - bh;
    return ((ah * bh - p) + ah * bl + al * bh) + al * bl;
#endif
}

// a - b of integers wrapping around (lanes whose results are thrown away
// may hold any bits).
template <class I>
DSP_VMATH_INLINE I minus(I a, I b) {
    if constexpr (std::is_arithmetic_v<I>) {
        return I(uint64_t(a) - uint64_t(b));
    } else {
        typedef uint64_t U __attribute__((vector_size(sizeof(I))));
        return __builtin_bit_cast(I, __builtin_bit_cast(U, a) - __builtin_bit_cast(U, b));
    }
}

// The natural logarithm of positive, normal, finite x as an unevaluated
// sum hi + lo (|lo| below half a unit of hi, the whole within about 2^-59
// of the value).
template <class D>
DSP_VMATH_INLINE void log_parts(D x, D &hi, D &lo) {
    using I = ivec<D>;
    constexpr double ln2_hi = 6.93147180369123816490e-01, ln2_lo = 1.90821492927058770002e-10;
    constexpr double Lg1 = 6.666666666666735130e-01, Lg2 = 3.999999999940941908e-01,
                     Lg3 = 2.857142874366239149e-01, Lg4 = 2.222219843214978396e-01,
                     Lg5 = 1.818357216161805012e-01, Lg6 = 1.531383769920937332e-01,
                     Lg7 = 1.479819860511658591e-01;
    const I bits = as_int(x);
    I k = (bits >> 52) - 1023;
    D m = as_double<D>((bits & int64_t(0x000fffffffffffff)) | int64_t(0x3ff0000000000000));
    const I big = mask<D>(m > 1.4142135623730951);  // sqrt(2) rounded up
    m = pick<D>(big, m * 0.5, m);
    k -= big;
    const D dk = to_double<D>(k);
    const D f = m - 1.0;  // exact
    const D s = f / (f + 2.0);
    const D z = s * s, w = z * z;
    const D t1 = w * (Lg2 + w * (Lg4 + w * Lg6));
    const D t2 = z * (Lg1 + w * (Lg3 + w * (Lg5 + w * Lg7)));
    const D hf = 0.5 * f;  // exact
    const D hfsq = hf * f;
    const D hfsq_err = product_error(hf, f, hfsq);
    // log(m) = f - f^2/2 + s (f^2/2 + R): f - hfsq exactly as h + l.
    const D h = f - hfsq;
    const D l = ((f - h) - hfsq) - hfsq_err + s * (hfsq + (t1 + t2));
    const D a = dk * ln2_hi;  // exact
    hi = a + h;
    lo = ((a - hi) + h) + (l + dk * ln2_lo);  // exact sum: |a| >= |h| or a = 0
}

// The natural logarithm of positive, normal, finite x.
template <class D>
DSP_VMATH_INLINE D log_positive(D x) {
    D hi, lo;
    log_parts(x, hi, lo);
    return hi + lo;
}

// log10 of positive, normal, finite x: log(x) (hi + lo) times 1/ln10
// (hi + lo), the product's rounding error kept.
template <class D>
DSP_VMATH_INLINE D log10_positive(D x) {
    constexpr double inv_hi = 0.4342944819032518, inv_lo = 1.098319650216765e-17;
    D hi, lo;
    log_parts(x, hi, lo);
    const D p = hi * inv_hi;
    return p + (product_error(hi, D{} + inv_hi, p) + (hi * inv_lo + lo * inv_hi));
}

// ---------------------------------------------------------------------------
// Kernels for the single family, whose results are rounded to float: the
// same double-precision functions to about 2^-50 relative (a float result
// can then differ from the rounded runtime value only where that value lies
// within a few double units of the middle between two floats), reduced by
// tables of 16 entries so that short polynomials and no division suffice.

// The entry of a 16-entry table for the low four bits of each lane of idx.
template <class D>
DSP_VMATH_INLINE D lookup16(const double *table, ivec<D> idx) {
    if constexpr (std::is_arithmetic_v<D>) {
        return table[idx & 15];
#if DSP_VMATH_WIDTH >= 64 && defined(__AVX512F__)
    } else if constexpr (sizeof(D) == 64) {
        return D(_mm512_permutex2var_pd(_mm512_loadu_pd(table), __m512i(idx),
                                        _mm512_loadu_pd(table + 8)));
#endif
    } else {
        D r;
        for (int t = 0; t < shape<D>::lanes; ++t) r[t] = table[idx[t] & 15];
        return r;
    }
}

// z = x / 2^k in [0.7057, 1.4115) is cut into 16 pieces; for piece i,
// 1/c_i near its middle (exactly 1 for the piece around 1) and -log(1/c_i).
alignas(64) constexpr double single_invc[16] = {1.3862818939058916, 1.3287200038014984,
                                                1.275747766994898,  1.2268372999367614,
                                                1.1815386834319943, 1.139466081743295,
                                                1.1002867253758515, 1.0637120912017555,
                                                1.02949078508078,   1.0,
                                                0.9365856447056154, 0.8847928755920341,
                                                0.8384281710637311, 0.796680699691,
                                                0.7588934637121784, 0.7245284687611634};
alignas(64) constexpr double single_logc[16] = {-0.32662526674393694,  -0.28421607566962925,
                                                -0.24353249061347718,  -0.2044395570480919,
                                                -0.16681755805848775,  -0.13055980334860492,
                                                -0.09557080527114942,  -0.06176476332731531,
                                                -0.029064296577051375, 0.0,
                                                0.06551430937811278,   0.12240170024463733,
                                                0.17622636499735597,   0.2273013082049316,
                                                0.27589387545403277,   0.32223422363706977};
// 2^(j/16), j < 16.
alignas(64) constexpr double single_exp2[16] = {1.0,
                                                1.0442737824274138,
                                                1.0905077326652577,
                                                1.1387886347566916,
                                                1.189207115002721,
                                                1.241857812073484,
                                                1.2968395546510096,
                                                1.3542555469368927,
                                                1.4142135623730951,
                                                1.4768261459394993,
                                                1.5422108254079407,
                                                1.6104903319492543,
                                                1.681792830507429,
                                                1.7562521603732995,
                                                1.8340080864093424,
                                                1.9152065613971474};

// log(x) for positive, normal, finite x: k ln2 - log(1/c) + log1p(r),
// r = z/c - 1 (|r| < 0.037), log1p by its series to r^10.
template <class D>
DSP_VMATH_INLINE D log_single(D x) {
    using I = ivec<D>;
    constexpr double ln2 = 0.6931471805599453;
    const I tmp = minus<I>(as_int(x), I{} + int64_t(0x3fe6955500000000));
    const I k = tmp >> 52;
    const D z = as_double<D>(minus<I>(as_int(x), tmp & int64_t(0xfff0000000000000)));
    const I piece = tmp >> 48;
    const D r = z * lookup16<D>(single_invc, piece) - 1.0;
    // q = -1/2 + r/3 - r^2/4 + ... - r^8/10, in pairs (shorter chains)
    const D r2 = r * r, r4 = r2 * r2;
    const D q01 = (r * (1.0 / 3) - 0.5) + r2 * (r * (1.0 / 5) - 0.25);
    const D q23 = (r * (1.0 / 7) - 1.0 / 6) + r2 * (r * (1.0 / 9) - 0.125);
    const D q = q01 + r4 * (q23 - r4 * 0.1);
    return to_double<D>(k) * ln2 + (lookup16<D>(single_logc, piece) + (r + r2 * q));
}

// exp(x) for x <= 709 (below -708: 0, NaN stays NaN): x = (16 m + j) ln2/16
// + r, |r| <= ln2/32, exp(x) = 2^m 2^(j/16) exp(r), exp(r) - 1 by its
// series to r^6.
template <class D>
DSP_VMATH_INLINE D exp_single(D x) {
    using I = ivec<D>;
    constexpr double inv = 23.083120654223414, hi = 0.04332169877307024,
                     lo = 1.1926343307941173e-11, shifter = 0x1.8p52;
    const D t = x * inv + shifter;
    const D dk = t - shifter;
    const I k = minus<I>(as_int(t), as_int(splat<D>(shifter)));
    const D r = (x - dk * hi) - dk * lo;
    // q = 1 + r/2 + r^2/6 + ... + r^5/720, in pairs
    const D r2 = r * r;
    const D q =
        (r * 0.5 + 1.0) + r2 * ((r * (1.0 / 24) + 1.0 / 6) + r2 * (r * (1.0 / 720) + 1.0 / 120));
    const D two = lookup16<D>(single_exp2, k);
    const D y = (two + two * (r * q)) * as_double<D>(((k >> 4) + 1023) << 52);
    return pick<D>(mask<D>(x != x), x, pick<D>(mask<D>(x < -708.0), D{}, y));
}

// The logarithms of any x >= F: +infinity stays infinite, NaN stays NaN.
// Single: the kernels for results rounded to float.
template <class D, bool Ten, bool Single = false>
DSP_VMATH_INLINE D log_any(D x) {
    constexpr double ivln10 = 0.4342944819032518;
    const D inf = splat<D>(__builtin_inf());
    D y;
    if constexpr (Single)
        y = Ten ? log_single(x) * ivln10 : log_single(x);
    else
        y = Ten ? log10_positive(x) : log_positive(x);
    return pick<D>(mask<D>(x < inf), y, x);  // x itself for +infinity and NaN
}

// exp(x) for any x (NaN stays NaN, beyond 709.78 infinity, below -745.13
// zero).
template <class D>
DSP_VMATH_INLINE D exp_any(D x) {
    using I = ivec<D>;
    constexpr double invln2 = 1.44269504088896338700e+00, ln2_hi = 6.93147180369123816490e-01,
                     ln2_lo = 1.90821492927058770002e-10, shifter = 0x1.8p52;
    D xc = pick<D>(mask<D>(x > 709.8), splat<D>(709.8), x);
    xc = pick<D>(mask<D>(xc < -746.0), splat<D>(-746.0), xc);  // also NaN stays NaN
    const D t = xc * invln2 + shifter;
    const D dk = t - shifter;
    const I k = minus<I>(as_int(t), as_int(splat<D>(shifter)));
    const D r_hi = xc - dk * ln2_hi;  // exact
    const D r_lo = dk * ln2_lo;
    const D r = r_hi - r_lo;
    constexpr double c2 = 1.0 / 2, c3 = 1.0 / 6, c4 = 1.0 / 24, c5 = 1.0 / 120, c6 = 1.0 / 720,
                     c7 = 1.0 / 5040, c8 = 1.0 / 40320, c9 = 1.0 / 362880, c10 = 1.0 / 3628800,
                     c11 = 1.0 / 39916800, c12 = 1.0 / 479001600, c13 = 1.0 / 6227020800;
    const D r2 = r * r, r4 = r2 * r2;
    const D p1 = c2 + r * c3 + r2 * (c4 + r * c5);
    const D p2 = c6 + r * c7 + r2 * (c8 + r * c9);
    const D p3 = c10 + r * c11 + r2 * (c12 + r * c13);
    const D q = r2 * (p1 + r4 * (p2 + r4 * p3));
    const D hi = 1.0 + r_hi;
    const D lo = (1.0 - hi) + r_hi;  // exact
    const D y = hi + (lo - r_lo + q);
    // times 2^k, k = k1 + k2 with both halves in the normal range
    const I k1 = k >> 1, k2 = k - k1;
    D e = y * as_double<D>((k1 + 1023) << 52);
    e *= as_double<D>((k2 + 1023) << 52);
    e = pick<D>(mask<D>(x > 709.8), splat<D>(__builtin_inf()), e);
    e = pick<D>(mask<D>(x < -746.0), D{}, e);
    return pick<D>(mask<D>(x != x), x, e);
}

// hypot(a, b) for any a, b (an infinite part gives infinity, NaN otherwise
// stays NaN).
template <class D>
DSP_VMATH_INLINE D hypot_any(D a, D b) {
    const D ua = as_double<D>(as_int(a) & int64_t(0x7fffffffffffffff));
    const D ub = as_double<D>(as_int(b) & int64_t(0x7fffffffffffffff));
    const D hi = pick<D>(mask<D>(ua > ub), ua, ub), lo = pick<D>(mask<D>(ua > ub), ub, ua);
    // Scale by a power of two so that the squares stay normal and finite.
    const D up = pick<D>(mask<D>(hi < 0x1p-500), splat<D>(0x1p600), splat<D>(1.0));
    const D scale = pick<D>(mask<D>(hi > 0x1p500), splat<D>(0x1p-600), up);
    const D h = hi * scale, l = lo * scale;
    const D r = sqrt_of(h * h + l * l) / scale;
    const D inf = splat<D>(__builtin_inf());
    return pick<D>(mask<D>(ua == inf), inf, pick<D>(mask<D>(ub == inf), inf, r));
}

// ---------------------------------------------------------------------------
// Loops over the samples of a record: op maps a vector of samples (T
// lanes, as many as D has) to the results. A last part shorter than a
// vector goes through a padded copy, so that every sample takes the same
// arithmetic.

// The vector of T with as many lanes as D.
template <class D, class T>
using tvec = std::conditional_t<std::is_same_v<T, double>, D, fvec<D>>;

// Samples widened to doubles, and doubles rounded to T.
template <class D, class V>
DSP_VMATH_INLINE D widen(V x) {
#if DSP_VMATH_WIDTH >= 64 && defined(__AVX512F__)
    // (GCC converts the two halves apart and joins them; the intrinsic's
    // header trips GCC 12's uninitialised-use warning)
    if constexpr (sizeof(D) == 64 && sizeof(V) == 32) {
        D r;
        __asm__("vcvtps2pd %1, %0" : "=v"(r) : "v"(x));
        return r;
    }
#endif
    return convert<D>(x);
}
template <class V, class D>
DSP_VMATH_INLINE V narrow(D y) {
    return convert<V>(y);
}

template <class D, class T, class Op>
DSP_VMATH_INLINE void apply(T *d, int64_t n, Op op) {
    constexpr int L = shape<D>::lanes;
    using V = tvec<D, T>;
    auto one = [&](T *p) DSP_VMATH_LAMBDA {
        V x;
        std::memcpy(&x, p, sizeof x);
        const V y = op(x);
        std::memcpy(p, &y, sizeof y);
    };
    int64_t i = 0;
    for (; i + L <= n; i += L) one(d + i);
    if (i < n) {
        T pad[L];
        for (int t = 0; t < L; ++t) pad[t] = i + t < n ? d[i + t] : T(1);
        one(pad);
        for (int t = 0; i + t < n; ++t) d[i + t] = pad[t];
    }
}

// Lane by lane: c ? a : b, for c a comparison of vectors (or scalars) of a
// and b's shape.
template <class M, class V>
DSP_VMATH_INLINE V choose(M c, V a, V b) {
    return c ? a : b;
}

// x < F: sub; otherwise k log(x) (base ten with Ten), the logarithm
// rounded to T before the product, which is formed in T (for floats, the
// exact double product of two floats rounded once: the float product).
template <class D, class T, bool Ten>
void log_loop(T *d, int64_t n, T k, T sub) {
    using V = tvec<D, T>;
    constexpr T F = precision<T>::normal_min;
    const V subs = V{} + sub;
    apply<D>(d, n, [&](V x) DSP_VMATH_LAMBDA {
        V y = narrow<V>(log_any<D, Ten, std::is_same_v<T, float>>(widen<D>(x)));
        if (k != T(1)) y = y * k;
        return choose(x < F, subs, y);
    });
}

// x > the exponent threshold: L; otherwise exp(x), or for exp10 exp of the
// product x ln10 formed in T.
template <class D, class T, bool Ten>
void exp_loop(T *d, int64_t n) {
    using C = precision<T>;
    using V = tvec<D, T>;
    constexpr T top = Ten ? C::exp10_max : C::exp_max;
    const V large = V{} + C::large;
    apply<D>(d, n, [&](V x) DSP_VMATH_LAMBDA {
        const D arg = widen<D>(Ten ? x * C::ln10 : x);
        D e;
        if constexpr (std::is_same_v<T, float>)
            e = exp_single(arg);
        else
            e = exp_any(arg);
        return choose(x > top, large, narrow<V>(e));
    });
}

// The n complex points at d to their magnitudes, d[i] = hypot(re, im),
// in place (each result lands on scalars already read).
template <class D, class T>
void magnitude_loop(T *d, int64_t n) {
    constexpr int L = shape<D>::lanes;
    auto block = [&](const T *in, T *out) DSP_VMATH_LAMBDA {
        D re, im;
        for (int t = 0; t < L; ++t) set_lane(re, t, in[2 * t]), set_lane(im, t, in[2 * t + 1]);
        D h = hypot_any(re, im);
        for (int t = 0; t < L; ++t) out[t] = T(lane(h, t));
    };
    int64_t i = 0;
    T out[L];
    for (; i + L <= n; i += L) {
        block(d + 2 * i, out);
        for (int t = 0; t < L; ++t) d[i + t] = out[t];
    }
    if (i < n) {
        T pad[2 * L];
        for (int t = 0; t < 2 * L; ++t) pad[t] = i + t / 2 < n ? d[2 * i + t] : T(1);
        block(pad, out);
        for (int t = 0; i + t < n; ++t) d[i + t] = out[t];
    }
}

// Whether every lane of the mask m is set.
template <class D>
DSP_VMATH_INLINE bool all_set(ivec<D> m) {
    if constexpr (std::is_arithmetic_v<D>) {
        return m != 0;
#if DSP_VMATH_WIDTH >= 64 && defined(__AVX512DQ__)
    } else if constexpr (sizeof(D) == 64) {
        return _mm512_movepi64_mask(__m512i(m)) == 0xff;
#endif
#if DSP_VMATH_WIDTH >= 32 && defined(__AVX__)
    } else if constexpr (sizeof(D) == 32) {
        return _mm256_movemask_pd(__m256d(as_double<D>(m))) == 15;
#endif
#if DSP_VMATH_WIDTH >= 16 && defined(__SSE2__)
    } else if constexpr (sizeof(D) == 16) {
        return _mm_movemask_pd(__m128d(as_double<D>(m))) == 3;
#endif
    } else {
        bool all = true;
        for (int t = 0; t < shape<D>::lanes; ++t) all &= m[t] != 0;
        return all;
    }
}

// The single family's decibel walk (see arith.cpp) over a stretch where
// every value it reads is at least F: for j < pairs, d[2j] becomes sub and
// d[2j + 1] k log10 d[2j]. Stops at the first vector of pairs with a value
// below F (or NaN) and returns the pairs done.
template <class D>
int64_t db_pairs_loop(float *d, int64_t pairs, float k, float sub) {
    constexpr int L = shape<D>::lanes;
    constexpr double F = double(precision<float>::normal_min);
    int64_t j = 0;
#if DSP_VMATH_SHUFFLES
    if constexpr (!std::is_arithmetic_v<D>) {
        using F1 = fvec<D>;
        using F2 = typename shape<D>::F2;
        constexpr auto seq = std::make_index_sequence<std::size_t(L)>{};
        const F1 subs = F1{} + sub;
        for (; j + L <= pairs; j += L) {
            F2 two;
            std::memcpy(&two, d + 2 * j, sizeof two);
            const D x = widen<D>(evens<F1>(two, seq));
            if (!all_set<D>(mask<D>(x >= F))) break;
            const F1 y = convert<F1>(log_any<D, true, true>(x)) * k;
            const F2 out = interleave<F2>(subs, y, std::make_index_sequence<std::size_t(2 * L)>{});
            std::memcpy(d + 2 * j, &out, sizeof out);
        }
        return j;
    }
#endif
    for (; j + L <= pairs; j += L) {
        D x;
        bool low = false;
        for (int t = 0; t < L; ++t) {
            const float v = d[2 * (j + t)];
            set_lane(x, t, v);
            low |= !(v >= float(F));
        }
        if (low) break;
        const fvec<D> y = convert<fvec<D>>(log_any<D, true, true>(x)) * k;
        for (int t = 0; t < L; ++t) d[2 * (j + t)] = sub, d[2 * (j + t) + 1] = lane(y, t);
    }
    return j;
}

// The entry points of one instruction set on the double vectors D (see
// vmath.cpp, which declares them).
#define DSP_VMATH_ENTRY_POINTS(D)                                                                  \
    void log(float *d, int64_t n, float k, float sub) { log_loop<D, float, false>(d, n, k, sub); } \
    void log(double *d, int64_t n, double k, double sub) {                                         \
        log_loop<D, double, false>(d, n, k, sub);                                                  \
    }                                                                                              \
    void log10(float *d, int64_t n, float k, float sub) {                                          \
        log_loop<D, float, true>(d, n, k, sub);                                                    \
    }                                                                                              \
    void log10(double *d, int64_t n, double k, double sub) {                                       \
        log_loop<D, double, true>(d, n, k, sub);                                                   \
    }                                                                                              \
    void exp(float *d, int64_t n) { exp_loop<D, float, false>(d, n); }                             \
    void exp(double *d, int64_t n) { exp_loop<D, double, false>(d, n); }                           \
    void exp10(float *d, int64_t n) { exp_loop<D, float, true>(d, n); }                            \
    void exp10(double *d, int64_t n) { exp_loop<D, double, true>(d, n); }                          \
    void magnitude(float *d, int64_t n) { magnitude_loop<D, float>(d, n); }                        \
    void magnitude(double *d, int64_t n) { magnitude_loop<D, double>(d, n); }                      \
    int64_t db_pairs(float *d, int64_t pairs, float k, float sub) {                                \
        return db_pairs_loop<D>(d, pairs, k, sub);                                                 \
    }

}  // namespace dsp::vmath::DSP_VMATH_ISA
