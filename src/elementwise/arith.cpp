#include "elementwise/arith.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "elementwise/bessel.hpp"
#include "elementwise/convert.hpp"
#include "elementwise/vmath.hpp"
#include "frame/math.hpp"
#include "frame/record.hpp"

namespace dsp {

namespace {

template <class T>
inline bool outside(T v) {
    return v > precision<T>::large || v < -precision<T>::large;
}

template <class T>
inline T clamp_large(T v) {
    constexpr T L = precision<T>::large;
    return v > L ? L : (v < -L ? -L : v);
}

// The furthest a single-precision walk that moves faster than its step count
// may reach: the larger of the scalars the record owns and those it holds.
template <class T>
inline int64_t walk_bound(const signal_t<T> &x) {
    return std::max(owned<T>(x), scalar_count<T>(x));
}

// Applies f to every scalar of a real record; complex records are refused.
template <class T, class F>
int real_only(signal_t<T> &x, F f) {
    if (x.cplx) return -1;
    T *d = x.data;
    for (int64_t i = 0; i < x.n; ++i) d[i] = f(d[i]);
    return 0;
}

// Complex base-ten logarithm times k (k = 1: log10, else decibels).
template <class T>
void complex_log10(signal_t<T> &x, T k) {
    using C = precision<T>;
    constexpr T L = precision<T>::large, L2 = precision<T>::large_sq;
    const T kF = k * rt::log10(C::normal_min);
    T *d = x.data;
    for (int64_t i = 0; i < x.n; ++i) {
        const T re = d[2 * i], im = d[2 * i + 1];
        if constexpr (single<T>) {
            // The single family ignores the real part and takes every point
            // as (L, im): m = im^2 + L^2 (im clamped), phase atan2(im, L).
            // m never falls below F, so only the imaginary part matters.
            (void)re;
            const T b2 = outside(im) ? L2 : im * im;
            const T m = b2 + L2;
            if (m < C::normal_min) {
                d[2 * i] = kF;
                d[2 * i + 1] = k * T(0);
            } else {
                d[2 * i] = k * T(0.5) * rt::log10(m);
                d[2 * i + 1] = k * C::log10e * rt::atan2(clamp_large(im), L);
            }
        } else {
            if (outside(re) || outside(im)) {
                d[2 * i] = k * (T(0.5) * rt::log10(L));
                d[2 * i + 1] = k * (C::log10e * rt::atan2(clamp_large(im), clamp_large(re)));
                continue;
            }
            const T m = im * im + re * re;
            if (m < C::normal_min) {
                d[2 * i] = kF;
                d[2 * i + 1] = k * T(0);
            } else {
                d[2 * i] = k * (T(0.5) * rt::log10(m));
                d[2 * i + 1] = k * (C::log10e * rt::atan2(im, re));
            }
        }
    }
}

// k log10 x of a real record, k log10 F below F (on the vector units).
template <class T>
void real_log10(signal_t<T> &x, T k) {
    const T kF = k * rt::log10(precision<T>::normal_min);
    vmath::log10<T>(x.data, x.n, k, kF);
}

}  // namespace

template <class T>
int neg(signal_t<T> &x) {
    T *__restrict d = x.data;
    const int64_t m = scalar_count<T>(x);
    for (int64_t i = 0; i < m; ++i) d[i] = -d[i];
    return 0;
}

template <class T>
int offset(signal_t<T> &x, T dv) {
    T *__restrict d = x.data;
    const int64_t n = x.n;
    if (x.cplx) {
        for (int64_t i = 0; i < n; ++i) d[2 * i] += dv;
    } else {
        for (int64_t i = 0; i < n; ++i) d[i] += dv;
    }
    return 0;
}

template <class T>
int scale(signal_t<T> &x, T a) {
    T *__restrict d = x.data;
    const int64_t m = scalar_count<T>(x);
    for (int64_t i = 0; i < m; ++i) d[i] *= a;
    return 0;
}

template <class T>
int cscale(signal_t<T> &x, T a, T b) {
    if (!x.cplx) {
        // Widen: cplx first, then grow keeping the n real scalars; expand
        // from the top so no input is overwritten before it is read.
        x.cplx = 1;
        if (realloc<T>(x, x.n, 0) != 0) return -1;
        T *d = x.data;
        for (int64_t i = int64_t(x.n) - 1; i >= 0; --i) {
            const T v = d[i];
            d[2 * i + 1] = v * b;
            d[2 * i] = v * a;
        }
        return 0;
    }
    T *__restrict d = x.data;
    for (int64_t i = 0; i < x.n; ++i) {
        const T re = d[2 * i], im = d[2 * i + 1];
        d[2 * i] = re * a - im * b;
        d[2 * i + 1] = re * b + im * a;
    }
    return 0;
}

template <class T>
int recip(signal_t<T> &x) {
    using C = precision<T>;
    constexpr T L = precision<T>::large;
    T *d = x.data;
    if (x.cplx) {
        for (int64_t i = 0; i < x.n; ++i) {
            const T re = d[2 * i], im = d[2 * i + 1];
            if (outside(re) || outside(im)) {
                d[2 * i] = re * C::recip_small;
                d[2 * i + 1] = -(im * C::recip_small);
                continue;
            }
            const T m = im * im + re * re;
            T s;
            if constexpr (single<T>) {
                // The single family scales by the fixed 1/L (not 1/m) when
                // m > 0, and by L otherwise (NaN included).
                s = m > T(0) ? T(1) / L : L;
            } else {
                s = m <= T(0) ? L : T(1) / m;
            }
            d[2 * i] = s * re;
            d[2 * i + 1] = -(im * s);
        }
        return 0;
    }
    if constexpr (single<T>) {
        // The single family walks n steps, but a zero moves the walk on two
        // scalars: it becomes L and the scalar after it is overwritten with
        // that zero (and skipped). So the walk can reach past the n-th
        // scalar, into storage the record owns beyond it. It stops at the
        // end of storage (walk_bound); a zero in the last scalar of storage
        // becomes L and the zero that would follow it is dropped.
        const int64_t bound = walk_bound<T>(x);
        int64_t p = 0;
        for (int64_t step = 0; step < x.n && p < bound; ++step) {
            const T v = d[p];
            if (v != T(0)) {
                d[p] = T(1) / v;
                p += 1;
            } else {
                d[p] = L;
                if (p + 1 < bound) d[p + 1] = v;
                p += 2;
            }
        }
    } else {
        for (int64_t i = 0; i < x.n; ++i) d[i] = d[i] == T(0) ? L : T(1) / d[i];
    }
    return 0;
}

template <class T>
int sqrt(signal_t<T> &x) {
    constexpr T L = precision<T>::large;
    T *d = x.data;
    if (x.cplx) {
        const T root_large = rt::sqrt(L);
        for (int64_t i = 0; i < x.n; ++i) {
            const T re = d[2 * i], im = d[2 * i + 1];
            const T r =
                (outside(re) || outside(im)) ? root_large : rt::sqrt(rt::sqrt(im * im + re * re));
            if (r <= T(0)) {
                d[2 * i] = T(0);
                d[2 * i + 1] = T(0);
                continue;
            }
            const T a = rt::atan2(im, re) * T(0.5);  // from the unclamped parts
            d[2 * i] = r * rt::cos(a);
            d[2 * i + 1] = r * rt::sin(a);
        }
        return 0;
    }
    for (int64_t i = 0; i < x.n; ++i) d[i] = d[i] < T(0) ? T(0) : rt::sqrt(d[i]);
    return 0;
}

template <class T>
int square(signal_t<T> &x) {
    constexpr T L = precision<T>::large, L2 = precision<T>::large_sq;
    T *__restrict d = x.data;
    if (!x.cplx) {
        for (int64_t i = 0; i < x.n; ++i) d[i] = clamped_square(d[i]);
        return 0;
    }
    for (int64_t i = 0; i < x.n; ++i) {
        const T re = d[2 * i], im = d[2 * i + 1];
        // A part beyond [-L, L] counts as +-L with square L2.
        const T a2 = outside(re) ? L2 : re * re;
        const T t = re > L ? T(2) * L : (re < -L ? T(-2) * L : T(2) * re);
        const T b2 = outside(im) ? L2 : im * im;
        const T b = clamp_large(im);
        d[2 * i] = a2 - b2;
        d[2 * i + 1] = T(double(t) * double(b));
    }
    return 0;
}

template <class T>
int exp(signal_t<T> &x) {
    using C = precision<T>;
    constexpr T L = precision<T>::large;
    T *d = x.data;
    if (x.cplx) {
        for (int64_t i = 0; i < x.n; ++i) {
            const T re = d[2 * i], im = d[2 * i + 1];
            const T m = re > C::exp_max ? L : rt::exp(re);
            d[2 * i] = m * rt::cos(im);
            d[2 * i + 1] = m * rt::sin(im);
        }
        return 0;
    }
    // No lower clamp: a large negative x underflows to 0.
    vmath::exp<T>(d, x.n);
    return 0;
}

template <class T>
int exp10(signal_t<T> &x) {
    using C = precision<T>;
    constexpr T L = precision<T>::large;
    T *d = x.data;
    if (x.cplx) {
        for (int64_t i = 0; i < x.n; ++i) {
            const T re = d[2 * i], im = d[2 * i + 1];
            const T m = re > C::exp10_max ? L : (re < -L ? -L : rt::exp(re * C::ln10));
            const T q = im * C::ln10;
            d[2 * i] = m * rt::cos(q);
            d[2 * i + 1] = m * rt::sin(q);
        }
        return 0;
    }
    if constexpr (single<T>) {
        // The single family stops advancing at a sample below -L: every
        // remaining step looks at that same sample and leaves it, so it and
        // all later samples keep their input values. (Blocks are searched
        // for such a sample, then passed to the vector code.)
        for (int64_t b = 0; b < x.n; b += 256) {
            const int64_t e = std::min<int64_t>(x.n, b + 256);
            bool below = false;
            for (int64_t i = b; i < e; ++i) below |= d[i] < -L;
            int64_t end = e;
            if (below) end = std::find_if(d + b, d + e, [](T v) { return v < -L; }) - d;
            vmath::exp10<T>(d + b, end - b);
            if (end < e) return 0;
        }
        return 0;
    }
    vmath::exp10<T>(d, x.n);  // below -L in double: underflows to 0
    return 0;
}

template <class T>
int log(signal_t<T> &x) {
    using C = precision<T>;
    constexpr T L = precision<T>::large;
    const T lnF = rt::log(C::normal_min);
    T *d = x.data;
    if (x.cplx) {
        const T half_ln_large = T(0.5) * rt::log(L);
        for (int64_t i = 0; i < x.n; ++i) {
            const T re = d[2 * i], im = d[2 * i + 1];
            if (outside(re) || outside(im)) {
                d[2 * i] = half_ln_large;
                d[2 * i + 1] = rt::atan2(clamp_large(im), clamp_large(re));
                continue;
            }
            const T m = im * im + re * re;
            if (m < C::normal_min) {
                d[2 * i] = lnF;
                d[2 * i + 1] = T(0);
            } else {
                d[2 * i] = T(0.5) * rt::log(m);
                d[2 * i + 1] = rt::atan2(im, re);
            }
        }
        return 0;
    }
    // Zero, negative numbers and denormals all give ln F.
    vmath::log<T>(d, x.n, T(1), lnF);
    return 0;
}

template <class T>
int log10(signal_t<T> &x) {
    if (x.cplx)
        complex_log10<T>(x, T(1));
    else
        real_log10<T>(x, T(1));
    return 0;
}

template <class T>
int db(signal_t<T> &x, T k) {
    using C = precision<T>;
    if (x.cplx) {
        complex_log10<T>(x, k);
        return 0;
    }
    if constexpr (single<T>) {
        // The single family walks n steps; each step overwrites the scalar
        // under the walk with k log10 F and moves on, and a value read at or
        // above F has its decibel value written into the next scalar (whose
        // input is lost) and moves the walk on once more. The walk may thus
        // reach 2n scalars; it stops at the end of storage (walk_bound), and
        // a decibel value that would land beyond it is dropped.
        //
        // Stretches where every value read is at least F go through the
        // vector units a pair of scalars per step; the other steps are
        // walked in runs of up to 64, their logarithms taken together (from
        // the same kernel) and written after the run: the walk never reads
        // the scalar after one it has read at or above F.
        const T kF = k * rt::log10(C::normal_min);
        const int64_t bound = walk_bound<T>(x);
        T *d = x.data;
        int64_t p = 0, step = 0;
        while (step < x.n && p < bound) {
            const int64_t pairs =
                vmath::db_pairs(d + p, std::min(x.n - step, (bound - p) / 2), k, kF);
            step += pairs;
            p += 2 * pairs;
            T value[64];
            int64_t at[64];
            int count = 0;
            for (int s = 0; s < 64 && step < x.n && p < bound; ++s, ++step) {
                const T v = d[p];
                d[p++] = kF;
                if (v >= C::normal_min) {
                    if (p < bound) value[count] = v, at[count++] = p;
                    ++p;
                }
            }
            vmath::log10<T>(value, count, k, kF);
            for (int i = 0; i < count; ++i) d[at[i]] = value[i];
        }
    } else {
        real_log10<T>(x, k);
    }
    return 0;
}

template <class T>
int sinh(signal_t<T> &x) {
    using C = precision<T>;
    constexpr T L = precision<T>::large;
    return real_only<T>(
        x, [](T v) { return v > C::exp_max ? L : (v < -C::exp_max ? -L : rt::sinh(v)); });
}

template <class T>
int cosh(signal_t<T> &x) {
    using C = precision<T>;
    constexpr T L = precision<T>::large;
    return real_only<T>(x,
                        [](T v) { return (v > C::exp_max || v < -C::exp_max) ? L : rt::cosh(v); });
}

template <class T>
int asin(signal_t<T> &x) {
    return real_only<T>(x, [](T v) { return (v > T(1) || v < T(-1)) ? T(0) : rt::asin(v); });
}

template <class T>
int acos(signal_t<T> &x) {
    return real_only<T>(x, [](T v) { return (v > T(1) || v < T(-1)) ? T(0) : rt::acos(v); });
}

template <class T>
int besi0(signal_t<T> &x) {
    using C = precision<T>;
    constexpr T L = precision<T>::large;
    return real_only<T>(
        x, [](T v) { return (v > C::exp_max || v < -C::exp_max) ? L : bessel_i0<T>(v); });
}

template <class T>
int besy0(signal_t<T> &x) {
    return real_only<T>(x, [](T v) { return v <= T(0) ? T(0) : rt::y0(v); });
}

template <class T>
int besy1(signal_t<T> &x) {
    return real_only<T>(x, [](T v) { return v <= T(0) ? T(0) : rt::y1(v); });
}

template <class T>
int limit(signal_t<T> &x, T a, T b, int *clipped) {
    const T lo = a > b ? b : a, hi = a > b ? a : b;
    T *__restrict d = x.data;
    const int64_t m = scalar_count<T>(x);
    // The flag is carried as a T select rather than an int, which keeps the
    // loop vectorisable in double precision as well.
    T flag = T(0);
    for (int64_t i = 0; i < m; ++i) {
        const T v = d[i];
        flag = ((v > hi) | (v < lo)) ? T(1) : flag;
        if constexpr (single<T>) {
            // The single family keeps only hi for samples above the range;
            // every other sample, one inside the range too, becomes lo.
            d[i] = v > hi ? hi : lo;
        } else {
            d[i] = v > hi ? hi : (v < lo ? lo : v);
        }
    }
    if (clipped) *clipped = flag != T(0) ? 1 : 0;
    return 0;
}

template <class T>
int addcos(signal_t<T> &x, int flags, T freq, T amp, T phase) {
    if (x.n < 1) return 0;
    constexpr double two_pi = 6.283185307179586;
    constexpr int64_t block = 256;
    const T w = ((x.delta + x.delta) * precision<T>::pi) * freq;
    const T cw = rt::cos(w), sw = rt::sin(w);
    const bool cplx = x.cplx != 0, exponential = cplx && (flags & 1);
    const int64_t n = x.n;
    T *d = x.data;
    // The oscillator advances by rotation and is re-seeded from the exact
    // phase every 256 points, which bounds the drift of the recurrence.
    for (int64_t j = 0; j < n; j += block) {
        const double phi = std::fmod(double(phase) + double(w) * double(j), two_pi);
        T u = T(std::cos(phi)), v = T(std::sin(phi));
        const int64_t end = std::min(n, j + block);
        for (int64_t i = j; i < end; ++i) {
            if (!cplx) {
                d[i] += amp * u;
            } else {
                d[2 * i] += amp * u;
                if (exponential) d[2 * i + 1] += amp * v;
            }
            const T next_u = cw * u - sw * v;
            v = sw * u + cw * v;
            u = next_u;
        }
    }
    return 0;
}

#define DSP_INSTANTIATE(T)                             \
    template int neg<T>(signal_t<T> &);                \
    template int offset<T>(signal_t<T> &, T);          \
    template int scale<T>(signal_t<T> &, T);           \
    template int cscale<T>(signal_t<T> &, T, T);       \
    template int recip<T>(signal_t<T> &);              \
    template int sqrt<T>(signal_t<T> &);               \
    template int square<T>(signal_t<T> &);             \
    template int exp<T>(signal_t<T> &);                \
    template int exp10<T>(signal_t<T> &);              \
    template int log<T>(signal_t<T> &);                \
    template int log10<T>(signal_t<T> &);              \
    template int db<T>(signal_t<T> &, T);              \
    template int sinh<T>(signal_t<T> &);               \
    template int cosh<T>(signal_t<T> &);               \
    template int asin<T>(signal_t<T> &);               \
    template int acos<T>(signal_t<T> &);               \
    template int besy0<T>(signal_t<T> &);              \
    template int besy1<T>(signal_t<T> &);              \
    template int limit<T>(signal_t<T> &, T, T, int *); \
    template int addcos<T>(signal_t<T> &, int, T, T, T);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE
template int besi0<float>(signal_t<float> &);

}  // namespace dsp
