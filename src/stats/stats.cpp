#include "stats/stats.hpp"

#include <cstdint>
#include <limits>

#include "elementwise/convert.hpp"
#include "elementwise/rearrange.hpp"
#include "frame/math.hpp"
#include "frame/record.hpp"
#include "frame/utility.hpp"
#include "stats/accumulate.hpp"

namespace dsp {

namespace {

// Writes the one-point result: n = 1 and the given kind, sized with alloc.
// Statistics are computed before this, so out may be the input record.
template <class T>
int put(signal_t<T> &out, bool cplx, T re, T im = T(0)) {
    out.n = 1;
    out.cplx = cplx ? 1 : 0;
    if (alloc<T>(out) != 0) return -1;
    out.data[0] = re;
    if (cplx) out.data[1] = im;
    return 0;
}

// Sum of the samples (per part for complex records), block accumulation.
template <class T>
void sample_sum(const signal_t<T> &in, T *total) {
    const T *x = in.data;
    const int64_t n = in.n > 0 ? in.n : 0;
    auto value = [x](int64_t i) { return x[i]; };
    if (in.cplx)
        acc::block_sum<2, T>(2 * n, value, total);
    else
        acc::block_sum<1, T>(n, value, total);
}

// Sum of squared magnitudes; a sample with a part outside [-L, L] adds L.
template <class T>
T square_sum(const signal_t<T> &in) {
    constexpr T L = precision<T>::large;
    const T *x = in.data;
    const int64_t n = in.n > 0 ? in.n : 0;
    T total;
    if (in.cplx) {
        auto term = [x](int64_t i) {
            const T re = x[2 * i], im = x[2 * i + 1];
            return acc::select<T>(acc::beyond_large(re) | acc::beyond_large(im), L,
                                  im * im + re * re);
        };
        acc::block_sum<1, T>(n, term, &total);
    } else {
        auto term = [x](int64_t i) {
            const T v = x[i];
            return acc::select<T>(acc::beyond_large(v), L, v * v);
        };
        acc::block_sum<1, T>(n, term, &total);
    }
    return total;
}

// A real sample's comparison value: L outside [-L, L] (either side).
template <class T>
inline T guarded(T x) {
    constexpr T L = precision<T>::large;
    return (x > L || x < -L) ? L : x;
}

// Index of the largest (Max) or smallest sample by guarded value (complex:
// guarded squared magnitude), starting from -L (+L) and replacing only on
// strictly greater (smaller): the first of equal extremes wins, and 0 when
// no sample beats the start value.
template <bool Max, class T>
int64_t extreme_index(const signal_t<T> &in) {
    constexpr T L = precision<T>::large;
    const T *x = in.data;
    T best = Max ? -L : L;
    int64_t at = 0;
    for (int64_t i = 0; i < in.n; ++i) {
        const T k = in.cplx ? clamped_magsq(x[2 * i], x[2 * i + 1]) : guarded(x[i]);
        if (Max ? k > best : k < best) {
            best = k;
            at = i;
        }
    }
    return at;
}

template <bool Max, class T>
int extreme(const signal_t<T> &in, signal_t<T> &out) {
    if (in.n < 1) return put<T>(out, in.cplx, T(0));
    const int64_t at = extreme_index<Max, T>(in);
    const T *x = in.data;
    return in.cplx ? put<T>(out, true, x[2 * at], x[2 * at + 1]) : put<T>(out, false, x[at]);
}

// Deviation power sums S_power = sum (x - K)^power of a record with n >= 1,
// per part for complex records (into total[0], total[1]), over blocks. K is
// the mean of the points 0, n/2 and n-1. A deviation outside [-L, L] enters
// as the bound and its square as L^2. With `constants` every sample enters
// as a deviation of +L (see pop_var and skew).
template <int Power, class T>
void deviation_sum(const signal_t<T> &in, bool constants, T (&total)[2]) {
    constexpr T L = precision<T>::large, L2 = precision<T>::large_sq;
    const T *x = in.data;
    const int64_t n = in.n;
    if (constants) {
        const T c = Power == 1 ? L : Power == 2 ? L2 : Power == 3 ? L2 * L : L2 * L2;
        acc::block_sum<1, T>(
            n, [c](int64_t) { return c; }, total);
        return;
    }
    auto dev = [](T v, T k) {
        const T d = v - k;
        const bool out = d > L || d < -L;
        const T dc = d > L ? L : (d < -L ? -L : d);
        const T d2 = out ? L2 : d * d;
        return Power == 1 ? dc : Power == 2 ? d2 : Power == 3 ? d2 * dc : d2 * d2;
    };
    const int64_t w = in.cplx ? 2 : 1;
    T shift[2] = {T(0), T(0)};
    for (int64_t p = 0; p < w; ++p)
        shift[p] = (x[p] + x[(n / 2) * w + p] + x[(n - 1) * w + p]) / T(3);
    if (in.cplx) {
        const T kr = shift[0], ki = shift[1];
        acc::block_sum<2, T>(
            2 * n, [x, kr, ki, dev](int64_t i) { return dev(x[i], (i & 1) ? ki : kr); }, total);
    } else {
        const T k = shift[0];
        acc::block_sum<1, T>(
            n, [x, k, dev](int64_t i) { return dev(x[i], k); }, total);
    }
}

// Population variance by the shifted two-sum formula (n >= 1). The single
// family sums the guard constants instead of the deviations of a real
// record, so its real variance comes from those constants alone (a value
// near 0 whatever the samples); complex records use true deviations.
template <class T>
T population_variance(const signal_t<T> &in) {
    const T n = T(in.n);
    const bool constants = single<T> && !in.cplx;
    T s1[2] = {T(0), T(0)}, s2[2] = {T(0), T(0)};
    deviation_sum<1, T>(in, constants, s1);
    deviation_sum<2, T>(in, constants, s2);
    if (!in.cplx) {
        const T m1 = s1[0] / n;
        return s2[0] / n - m1 * m1;
    }
    const T mr = s1[0] / n, mi = s1[1] / n;
    return (s2[0] + s2[1]) / n - mr * mr - mi * mi;
}

// Variance times n / (n - 1) when n >= 2.
template <class T>
T sample_variance(const signal_t<T> &in) {
    const T v = population_variance<T>(in);
    return in.n >= 2 ? v * (T(in.n) / T(in.n - 1)) : v;
}

}  // namespace

template <class T>
int sum(const signal_t<T> &in, signal_t<T> &out) {
    T total[2] = {T(0), T(0)};
    if (in.n > 0) sample_sum<T>(in, total);
    return put<T>(out, in.cplx, total[0], total[1]);
}

template <class T>
int mean(const signal_t<T> &in, signal_t<T> &out) {
    T total[2] = {T(0), T(0)};
    if (in.n > 0) {
        sample_sum<T>(in, total);
        total[0] /= T(in.n);
        total[1] /= T(in.n);
    }
    return put<T>(out, in.cplx, total[0], total[1]);
}

template <class T>
int magsq_sum(const signal_t<T> &in, signal_t<T> &out) {
    return put<T>(out, false, in.n > 0 ? square_sum<T>(in) : T(0));
}

template <class T>
int rms(const signal_t<T> &in, signal_t<T> &out) {
    return put<T>(out, false, in.n > 0 ? rt::sqrt<T>(square_sum<T>(in) / T(in.n)) : T(0));
}

template <class T>
int median(const signal_t<T> &in, signal_t<T> &out) {
    T m[2] = {T(0), T(0)};
    if (in.n > 0) {
        signal_t<T> sorted;
        init<T>(sorted);
        if (copy<T>(sorted, in) != 0 || sort<T>(sorted) != 0) {
            destroy<T>(sorted);
            return -1;
        }
        const int64_t n = in.n, half = n / 2, w = in.cplx ? 2 : 1;
        const T *x = sorted.data;
        for (int64_t p = 0; p < w; ++p)
            m[p] = (n % 2) ? x[half * w + p] : (x[(half - 1) * w + p] + x[half * w + p]) * T(0.5);
        if (destroy<T>(sorted) != 0) return -1;
    }
    return put<T>(out, in.cplx, m[0], m[1]);
}

template <class T>
int max(const signal_t<T> &in, signal_t<T> &out) {
    return extreme<true, T>(in, out);
}

template <class T>
int min(const signal_t<T> &in, signal_t<T> &out) {
    return extreme<false, T>(in, out);
}

// Running product (no blocks); a product below the smallest normal number
// (complex: a squared magnitude below it) gives 0, otherwise the principal
// n-th root.
template <class T>
int gmean(const signal_t<T> &in, signal_t<T> &out) {
    constexpr T tiny = precision<T>::normal_min;
    const T *x = in.data;
    const int64_t n = in.n;
    if (n < 1) return put<T>(out, in.cplx, T(0));
    if (!in.cplx) {
        T p = T(1);
        for (int64_t i = 0; i < n; ++i) p *= x[i];
        return put<T>(out, false, p < tiny ? T(0) : rt::exp<T>(rt::log<T>(p) / T(n)));
    }
    T pr = T(1), pi = T(0);
    for (int64_t i = 0; i < n; ++i) {
        const T re = pr * x[2 * i] - pi * x[2 * i + 1];
        pi = pr * x[2 * i + 1] + pi * x[2 * i];
        pr = re;
    }
    if (pr * pr + pi * pi < tiny) return put<T>(out, true, T(0), T(0));
    const T mag = rt::exp<T>(rt::log<T>(rt::hypot<T>(pr, pi)) / T(n));
    const T angle = rt::atan2<T>(pi, pr) / T(n);
    return put<T>(out, true, mag * rt::cos<T>(angle), mag * rt::sin<T>(angle));
}

// n / sum(1/x), the reciprocals summed over blocks; an exact zero sample
// makes the result 0.
template <class T>
int hmean(const signal_t<T> &in, signal_t<T> &out) {
    const T *x = in.data;
    const int64_t n = in.n;
    if (n < 1) return put<T>(out, in.cplx, T(0));
    if (!in.cplx) {
        for (int64_t i = 0; i < n; ++i)
            if (x[i] == T(0)) return put<T>(out, false, T(0));
        T s;
        acc::block_sum<1, T>(
            n, [x](int64_t i) { return T(1) / x[i]; }, &s);
        return put<T>(out, false, T(n) / s);
    }
    for (int64_t i = 0; i < n; ++i)
        if (x[2 * i] == T(0) && x[2 * i + 1] == T(0)) return put<T>(out, true, T(0), T(0));
    // 1/z = conj(z) / |z|^2, summed per part.
    T s[2];
    acc::block_sum<2, T>(
        2 * n,
        [x](int64_t i) {
            const int64_t k = i & ~int64_t(1);
            const T d = x[k] * x[k] + x[k + 1] * x[k + 1];
            return (i & 1) ? -x[i] / d : x[i] / d;
        },
        s);
    const T d = s[0] * s[0] + s[1] * s[1];
    return put<T>(out, true, T(n) * s[0] / d, -T(n) * s[1] / d);
}

template <class T>
int pop_var(const signal_t<T> &in, signal_t<T> &out) {
    return put<T>(out, false, in.n > 0 ? population_variance<T>(in) : T(0));
}

template <class T>
int samp_var(const signal_t<T> &in, signal_t<T> &out) {
    return put<T>(out, false, in.n > 0 ? sample_variance<T>(in) : T(0));
}

template <class T>
int pop_stddev(const signal_t<T> &in, signal_t<T> &out) {
    return put<T>(out, false, in.n > 0 ? rt::sqrt<T>(population_variance<T>(in)) : T(0));
}

template <class T>
int samp_stddev(const signal_t<T> &in, signal_t<T> &out) {
    return put<T>(out, false, in.n > 0 ? rt::sqrt<T>(sample_variance<T>(in)) : T(0));
}

// Skewness c3 / v^1.5 from the shifted power sums; a zero denominator gives
// 0 when c3 is 0, else L. The single family sums the guard constants here
// as in its variance (the cube's constant L^2 * L is infinite in single
// precision), so its skew is L when that variance is 0, else NaN.
template <class T>
int skew(const signal_t<T> &in, signal_t<T> &out) {
    if (in.cplx) return -1;
    if (in.n < 1) return put<T>(out, false, T(0));
    const T n = T(in.n);
    const bool constants = single<T>;
    T s1[2], s2[2], s3[2];  // real records use the first of each pair
    deviation_sum<1, T>(in, constants, s1);
    deviation_sum<2, T>(in, constants, s2);
    deviation_sum<3, T>(in, constants, s3);
    const T m1 = s1[0] / n, m2 = s2[0] / n;
    const T v = m2 - m1 * m1;
    const T c3 = s3[0] / n - T(3) * m1 * m2 + T(2) * m1 * m1 * m1;
    const T den = v * rt::sqrt<T>(v);
    if (den == T(0)) return put<T>(out, false, c3 == T(0) ? T(0) : precision<T>::large);
    return put<T>(out, false, c3 / den);
}

// Excess kurtosis c4 / v^2 - 3 from the shifted power sums (true deviations
// in both families); a zero denominator gives L, an empty record -3.
template <class T>
int excess(const signal_t<T> &in, signal_t<T> &out) {
    if (in.cplx) return -1;
    if (in.n < 1) return put<T>(out, false, T(-3));
    const T n = T(in.n);
    T s[4][2];  // real records use the first of each pair
    deviation_sum<1, T>(in, false, s[0]);
    deviation_sum<2, T>(in, false, s[1]);
    deviation_sum<3, T>(in, false, s[2]);
    deviation_sum<4, T>(in, false, s[3]);
    const T m1 = s[0][0] / n, m2 = s[1][0] / n, m3 = s[2][0] / n, m4 = s[3][0] / n;
    const T v = m2 - m1 * m1;
    const T m1sq = m1 * m1;
    const T c4 = m4 - T(4) * m1 * m3 + T(6) * m1sq * m2 - T(3) * m1sq * m1sq;
    const T den = v * v;
    if (den == T(0)) return put<T>(out, false, precision<T>::large);
    return put<T>(out, false, c4 / den - T(3));
}

namespace {

template <class T>
void count_bins(const signal_t<T> &in, T *h, T low, T width, int bins) {
    constexpr T L = precision<T>::large;
    const T *x = in.data;
    const T upper = T(bins) * T(1.0000012);
    for (int64_t i = 0; i < in.n; ++i) {
        T v;
        if (in.cplx) {
            const T re = x[2 * i], im = x[2 * i + 1];
            v = (re > L || re < -L || im > L || im < -L) ? L : rt::sqrt<T>(re * re + im * im);
        } else {
            v = guarded(x[i]);
        }
        const T t = width != T(0) ? (v - low) / width : (v == low ? T(0) : L);
        if (t >= T(0) && t < T(bins))
            h[int64_t(t)] += T(1);
        else if (bins > 0 && t >= T(bins) && t < upper)
            h[bins - 1] += T(1);
    }
}

}  // namespace

template <class T>
int hist(const signal_t<T> &in, signal_t<T> &out, T low, T width, int bins) {
    // Counted into a scratch record when out shares the input's storage.
    const bool shared = &out == &in || (out.data != nullptr && out.data == in.data);
    signal_t<T> scratch;
    init<T>(scratch);
    signal_t<T> &h = shared ? scratch : out;
    h.n = bins;
    h.cplx = 0;
    h.delta = width;
    int status = alloc<T>(h);
    if (status == 0) {
        for (int64_t k = 0; k < bins; ++k) h.data[k] = T(0);
        count_bins<T>(in, h.data, low, width, bins);
        if (shared) status = copy<T>(out, scratch);
    }
    const int released = destroy<T>(scratch);
    return status != 0 ? status : released;
}

#define DSP_STAT(T, name) template int name<T>(const signal_t<T> &, signal_t<T> &);
#define DSP_INSTANTIATE(T)   \
    DSP_STAT(T, sum)         \
    DSP_STAT(T, mean)        \
    DSP_STAT(T, magsq_sum)   \
    DSP_STAT(T, rms)         \
    DSP_STAT(T, median)      \
    DSP_STAT(T, max)         \
    DSP_STAT(T, min)         \
    DSP_STAT(T, gmean)       \
    DSP_STAT(T, hmean)       \
    DSP_STAT(T, pop_var)     \
    DSP_STAT(T, samp_var)    \
    DSP_STAT(T, pop_stddev)  \
    DSP_STAT(T, samp_stddev) \
    DSP_STAT(T, skew)        \
    DSP_STAT(T, excess)      \
    template int hist<T>(const signal_t<T> &, signal_t<T> &, T, T, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE
#undef DSP_STAT

}  // namespace dsp
