// Closed-form FIR design: sampled ideal responses and analytic kernels.
#include "generate/fir.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "elementwise/arith.hpp"
#include "elementwise/convert.hpp"
#include "frame/math.hpp"
#include "frame/record.hpp"
#include "window/generate.hpp"
#include "window/ops.hpp"

namespace dsp {

namespace {

template <class T>
T sinc(T x) {
    return x == T(0) ? T(1) : rt::sin(x) / x;
}

// Writes `centre` at an odd-length centre and v(m) at offset m on both
// sides (-v(m) on the left when antisymmetric).
template <class T, class F>
void mirror(signal_t<T> &h, T centre, bool anti, F v) {
    const int n = h.n, c = n / 2;
    if (n < 1) return;
    T *d = h.data;
    if (n % 2) {
        d[c] = anti ? T(0) : centre;
        for (int j = 1; j <= c; ++j) {
            const T x = v(T(j));
            d[c + j] = x;
            d[c - j] = anti ? -x : x;
        }
    } else {
        for (int j = 0; j < c; ++j) {
            const T x = v(T(j) + T(0.5));
            d[c + j] = x;
            d[c - 1 - j] = anti ? -x : x;
        }
    }
}

// Scales the coefficients to unit sum through their mean; a zero mean
// leaves them as they are.
template <class T>
int normalise(signal_t<T> &h) {
    T mean = 0;
    if (win::mean<T>(h, mean) != 0) return -1;
    if (mean == T(0)) return 0;
    return scale<T>(h, T(1) / (mean * T(h.n)));
}

// 1 - h: every coefficient negated and 1 added to the (odd-length) centre.
template <class T>
void complement(signal_t<T> &h) {
    for (int k = 0; k < h.n; ++k) h.data[k] = -h.data[k];
    if (h.n >= 1) h.data[h.n / 2] += T(1);
}

// The two smoothing kernels: f(u) at u = x2 - t^2/4, t = m t0, with the
// centre f(x2). f is sinh(sqrt u) (sin(sqrt -u) for u <= 0) or, divided by
// the root, sinh(sqrt u)/sqrt u. When sqrt(x2) exceeds ln L the values are
// evaluated relative to e^sqrt(x2), so that the centre and the sum stay
// finite; normalisation takes the factor out again.
template <class T>
int smoothing(signal_t<T> &h, T x2, T t0, bool divided) {
    const T r = rt::sqrt(x2);
    const bool relative = r > precision<T>::exp_max;
    const T down = relative ? rt::exp(-r) : T(1);
    const auto f = [&](T u) -> T {
        if (u > T(0)) {
            const T s = rt::sqrt(u);
            const T v = relative ? (rt::exp(s - r) - rt::exp(-s - r)) * T(0.5) : rt::sinh(s);
            return divided ? v / s : v;
        }
        const T s = rt::sqrt(-u);
        if (!divided) return rt::sin(s) * down;
        return s == T(0) ? down : rt::sin(s) / s * down;
    };
    mirror<T>(h, f(x2), false, [&](T m) {
        const T t = m * t0;
        return f(x2 - T(0.25) * t * t);
    });
    return normalise<T>(h);
}

// Kind 4 with shape a (0: the default shape of the length).
template <class T>
int sinh_kernel(signal_t<T> &h, T a) {
    const int n = h.n;
    const T n1 = T(int64_t(n) + 1);
    if (a != T(0)) return smoothing<T>(h, a * a, T(4) * a / n1, false);
    // Short default kernels: tabled shapes, and for n = 5, 7, 9 the
    // coefficients themselves (centre c0, pairs c_j / 2, not normalised).
    static constexpr T c5[] = {T(0.4243801), T(0.4973406), T(0.0782793)};
    static constexpr T c7[] = {T(0.3635819), T(0.4891775), T(0.1365995), T(0.0106411)};
    static constexpr T c9[] = {T(0.32321537), T(0.47149214), T(0.17553413), T(0.02849699),
                               T(0.0012613571)};
    const T *direct = n == 5 ? c5 : n == 7 ? c7 : n == 9 ? c9 : nullptr;
    if (direct) {
        const int c = n / 2;
        h.data[c] = direct[0];
        for (int j = 1; j <= c; ++j) h.data[c + j] = h.data[c - j] = direct[j] / T(2);
        return 0;
    }
    switch (n) {
        case 3:
            return smoothing<T>(h, T(39.955326), T(6.3210225), false);
        case 4:
            return smoothing<T>(h, T(56.541378), T(30.0776) / n1, false);
        case 6:
            return smoothing<T>(h, T(114.19059), T(42.744) / n1, false);
        case 8:
            return smoothing<T>(h, T(194.93744), T(55.848) / n1, false);
        case 11:
            return smoothing<T>(h, T(355.57288), T(6.2855468), false);
        default:
            break;
    }
    const T half_pi = precision<T>::pi / T(2);
    // The even-length offset 1.4 is added in double.
    const T alpha = n % 2 ? n1 * half_pi : T(double(T(n) * half_pi) + 1.4);
    return smoothing<T>(h, alpha * alpha, T(4) * alpha / n1, false);
}

// Kind 9 with shape a (0: the default shape of the length). The step puts
// the first zero of the kernel just beyond both ends.
template <class T>
int kaiser_kernel(signal_t<T> &h, T a) {
    const int n = h.n;
    const T n1 = T(int64_t(n) + 1);
    constexpr T pi = precision<T>::pi;
    T b2, b2_pi2;
    // Tabled default shapes (beta^2, beta^2 + pi^2) of the odd lengths 3..11.
    static constexpr T tabled[5][2] = {{T(35.07455), T(44.944157)},
                                       {T(89.98737), T(99.85697)},
                                       {T(157.93779), T(167.80739)},
                                       {T(254.05711), T(263.92673)},
                                       {T(364.85162), T(374.72122)}};
    if (a == T(0) && n >= 3 && n <= 11 && n % 2) {
        b2 = tabled[(n - 3) / 2][0];
        b2_pi2 = tabled[(n - 3) / 2][1];
    } else {
        // The default beta is computed in double and held in the precision
        // of the family.
        const T beta = a != T(0) ? a : T(1.386795655 + 1.610830415 * double(n));
        b2 = beta * beta;
        b2_pi2 = b2 + pi * pi;
    }
    return smoothing<T>(h, b2, T(4) * rt::sqrt(b2_pi2) / n1, true);
}

template <class T>
int design(signal_t<T> &h, int kind, T a, T b) {
    constexpr T pi = precision<T>::pi, two_pi = T(2) * pi;
    // Below this x^2 the quadratic terms use their limit at 0.
    constexpr T small_sq = T(1.4305115e-6);
    const int n = h.n;
    const T a2 = T(2) * a;
    switch (kind) {
        case FIR_BANDPASS:
            mirror<T>(h, T(2) * b, false,
                      [&](T m) { return b * sinc(pi * b * m) * T(2) * rt::cos(two_pi * a * m); });
            return 0;
        case FIR_BANDSTOP:
        case FIR_HIGHPASS:
            if (n % 2 == 0) return -1;
            design<T>(h, kind == FIR_BANDSTOP ? FIR_BANDPASS : FIR_LOWPASS, a, b);
            complement<T>(h);
            return 0;
        case FIR_LOWPASS:
            mirror<T>(h, a2, false, [&](T m) { return a2 * sinc(two_pi * a * m); });
            return 0;
        case FIR_SINH_KERNEL:
            return sinh_kernel<T>(h, a);
        case FIR_DELAYED:
            for (int k = 0; k < n; ++k) {
                const T m = T(k) - T(int64_t(n) - 1) / T(2) - b;
                h.data[k] = a2 * sinc(two_pi * a * m);
            }
            return normalise<T>(h);
        case FIR_DIFFERENTIATOR:
            mirror<T>(h, T(0), true, [&](T m) {
                const T x = two_pi * a * m;
                // The limit at x = 0 is 0.
                return x == T(0) ? T(0) : a2 * (two_pi * a) * (rt::cos(x) - sinc(x)) / x;
            });
            return 0;
        case FIR_GAUSSIAN:
            // Unit-peak symmetric Gaussian fill, sigma relative to n, with
            // 0.83255464 = sqrt(ln 2).
            if (gauss_window<T>(h, T(0.83255464) / (a * T(n) * two_pi), 38) != 0) return -1;
            return normalise<T>(h);
        case FIR_QUADRATURE:
            mirror<T>(h, T(0), true, [&](T m) {
                const T x = two_pi * a * m, x2 = x * x;
                return a2 * x * (x2 < small_sq ? T(-0.5) : (rt::cos(x) - T(1)) / x2);
            });
            return 0;
        case FIR_KAISER_KERNEL:
            return kaiser_kernel<T>(h, a);
        case FIR_RAMP:
            mirror<T>(h, a2 * a2 * T(0.5), false, [&](T m) {
                const T x = two_pi * a * m, x2 = x * x;
                return a2 * a2 *
                       (x2 < small_sq ? sinc(x) - T(0.5) : sinc(x) + (rt::cos(x) - T(1)) / x2);
            });
            return 0;
        default:
            return -1;
    }
}

// The stored sets, one list each; F(x) expands to the float or the double
// literal of x.
// clang-format off
#define DSP_FIR_SET_100(F)                                                                     \
    F(0.00065261498) F(0.0016139852) F(0.00054899277) F(0.011656722) F(-0.0056217578)          \
    F(0.046847913) F(-0.027674841) F(0.13557912) F(-0.075108483) F(0.3035574) F(-0.13942508)   \
    F(0.49474683)
#define DSP_FIR_SET_101(F)                                                                     \
    F(0.00036813278) F(0.00096791575) F(0.00017100126) F(-0.0020970942) F(-0.0013455939)       \
    F(0.0037644482) F(0.0036925951) F(-0.0061629424) F(-0.0082455557) F(0.0088529075)          \
    F(0.015766649) F(-0.01188577) F(-0.028398201) F(0.01465508) F(0.050266247)                 \
    F(-0.017083358) F(-0.097622193) F(0.018582376) F(0.31535187) F(0.48080382)
#define DSP_FIR_SET_102(F)                                                                     \
    F(0.0021159896) F(-0.0077329464) F(0.024345828) F(-0.09624514) F(1.1550325)
// clang-format on
#define DSP_AS_FLOAT(x) x##f,
#define DSP_AS_DOUBLE(x) x,

template <class T>
struct fir_sets;
template <>
struct fir_sets<float> {
    static constexpr float s100[] = {DSP_FIR_SET_100(DSP_AS_FLOAT)};
    static constexpr float s101[] = {DSP_FIR_SET_101(DSP_AS_FLOAT)};
    static constexpr float s102[] = {DSP_FIR_SET_102(DSP_AS_FLOAT)};
};
template <>
struct fir_sets<double> {
    static constexpr double s100[] = {DSP_FIR_SET_100(DSP_AS_DOUBLE)};
    static constexpr double s101[] = {DSP_FIR_SET_101(DSP_AS_DOUBLE)};
    static constexpr double s102[] = {DSP_FIR_SET_102(DSP_AS_DOUBLE)};
};

#undef DSP_FIR_SET_100
#undef DSP_FIR_SET_101
#undef DSP_FIR_SET_102
#undef DSP_AS_FLOAT
#undef DSP_AS_DOUBLE

}  // namespace

template <class T>
int fir_design(signal_t<T> &h, int kind, T a, T b) {
    if (alloc<T>(h) != 0) return -1;
    const int32_t was_cplx = h.cplx;
    h.cplx = 0;
    if (unsigned(kind) > 10u || design<T>(h, kind, a, b) != 0) return -1;
    return was_cplx ? rtoc<T>(h) : 0;
}

template <class T>
fir_set<T> fir_stored_set(int code) {
    using S = fir_sets<T>;
    switch (code) {
        case 100:
            return {S::s100, int32_t(std::size(S::s100))};
        case 101:
            return {S::s101, int32_t(std::size(S::s101))};
        case 102:
            return {S::s102, int32_t(std::size(S::s102))};
        default:
            return {nullptr, 0};
    }
}

template <class T>
int fir_stored(signal_t<T> &h, int code) {
    const fir_set<T> set = fir_stored_set<T>(code);
    if (!set.values) return -1;
    h.n = set.n;
    if (alloc<T>(h) != 0) return -1;
    const int32_t was_cplx = h.cplx;
    h.cplx = 0;
    std::copy(set.values, set.values + set.n, h.data);
    return was_cplx ? rtoc<T>(h) : 0;
}

#define DSP_INSTANTIATE(T)                                \
    template int fir_design<T>(signal_t<T> &, int, T, T); \
    template fir_set<T> fir_stored_set<T>(int);           \
    template int fir_stored<T>(signal_t<T> &, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
