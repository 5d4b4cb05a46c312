// Extremes, axes, phase unwrapping and display formats of trace arrays.
#include "vfp/trace.hpp"

#include <cmath>
#include <cstddef>
#include <limits>

#include "frame/math.hpp"

namespace dsp::vfp {

namespace {

constexpr double pi = 3.141592653589793;
constexpr double two_pi = 6.283185307179586;
constexpr double degrees_per_radian = 57.29577951307855;

// The skip-range search shared by find_max_skip and find_min_skip: better(a,
// b) is true when a replaces the candidate b.
template <class T, class Better>
int find_skip(const T *x, int start, int end, int skip_start, int skip_end, Better better) {
    int64_t j;
    int candidate;
    if (skip_start > start || start >= skip_end) {
        candidate = start;
        j = int64_t(start) + 1;
    } else if (skip_end >= end) {
        return -1;  // the whole rest is skipped
    } else {
        candidate = skip_end;
        j = skip_end;
    }
    if (j >= end) return candidate;
    T best = x[candidate];
    while (j < end) {
        if (skip_start <= j && j < skip_end) {
            j = skip_end;
            continue;
        }
        if (better(x[j], best)) {
            best = x[j];
            candidate = int(j);
        }
        ++j;
    }
    return candidate;
}

// out[i] = f(re, im) of complex point i for i in [start, end).
template <class T, class F>
void format_points(const T *in, T *out, int start, int end, F f) {
    for (ptrdiff_t i = start; i < end; ++i) out[i] = f(in[2 * i], in[2 * i + 1]);
}

}  // namespace

template <class T>
int find_max(const T *x, int start, int end) {
    if (int64_t(start) + 1 >= end) return start;
    int best = start;
    T value = x[start];
    for (int j = start + 1; j < end; ++j)
        if (x[j] > value) {
            value = x[j];
            best = j;
        }
    return best;
}

template <class T>
int find_min(const T *x, int start, int end) {
    if (int64_t(start) + 1 >= end) return start;
    // The running minimum starts from the largest finite value, not from
    // x[start]: x[start] itself is never compared.
    int best = start;
    T value = std::numeric_limits<T>::max();
    for (int j = start + 1; j < end; ++j)
        if (x[j] < value) {
            value = x[j];
            best = j;
        }
    return best;
}

template <class T>
int find_max_skip(const T *x, int start, int end, int skip_start, int skip_end) {
    return find_skip(x, start, end, skip_start, skip_end, [](T a, T b) { return a > b; });
}

template <class T>
int find_min_skip(const T *x, int start, int end, int skip_start, int skip_end) {
    return find_skip(x, start, end, skip_start, skip_end, [](T a, T b) { return a < b; });
}

template <class T>
void expand_linear(T *x, int n, T a, T b) {
    if (n < 1) return;
    x[0] = a;
    if (n == 1) return;
    const T step = (b - a) / T(n - 1);
    for (int i = 1; i < n - 1; ++i) x[i] = a + step * T(i);
    x[n - 1] = b;
}

template <class T>
void expand_log(T *x, int n, T a, T b) {
    if (n <= 0 || a <= 0 || b <= 0) return;
    x[0] = a;
    if (n == 1) return;
    const double la = std::log10(double(a)), lb = std::log10(double(b));
    const double step = (lb - la) / double(n - 1);
    for (int i = 1; i < n - 1; ++i) x[i] = T(std::pow(10.0, la + step * i));
    x[n - 1] = b;
}

template <class T>
void unwrap_phase(const T *in, int start, int end, T *out) {
    if (start >= end) return;
    // A trace whose earlier part is already in out continues its wrap count.
    double k = start >= 2 ? std::trunc((double(out[start - 1]) - double(out[0])) / two_pi) : 0.0;
    for (ptrdiff_t i = start; i < end; ++i) {
        const double p = std::atan2(double(in[2 * i + 1]), double(in[2 * i])) + two_pi * k;
        double o = p;
        if (i > 0) {
            // At most one 2 pi step per point.
            const double d = p - double(out[i - 1]);
            if (d < -pi) {
                o = p + two_pi;
                k += 1;
            } else if (d > pi) {
                o = p - two_pi;
                k -= 1;
            }
        }
        out[i] = T(o);
    }
}

template <class T>
void format_buffer(int format, const T *in, T *out, int start, int end) {
    auto q = [](T re, T im) { return re * re + im * im; };
    switch (format) {
        case 0:  // log magnitude
            format_points(in, out, start, end,
                          [&](T re, T im) { return T(10) * rt::log10(q(re, im)); });
            break;
        case 1:  // linear magnitude
            format_points(in, out, start, end, [&](T re, T im) { return rt::sqrt(q(re, im)); });
            break;
        case 2:  // phase in degrees
            format_points(in, out, start, end,
                          [](T re, T im) { return rt::atan2(im, re) * T(degrees_per_radian); });
            break;
        case 3:  // standing-wave ratio, 1e6 for a reflection of magnitude ~1
            format_points(in, out, start, end, [&](T re, T im) {
                const double r = std::sqrt(double(q(re, im)));
                return r > 0.999998 ? T(1000000.0) : T((1 + r) / (1 - r));
            });
            break;
        case 4:  // return loss
            format_points(in, out, start, end,
                          [&](T re, T im) { return T(-10) * rt::log10(q(re, im)); });
            break;
        default:
            break;
    }
}

#define DSP_INSTANTIATE(T)                                        \
    template int find_max<T>(const T *, int, int);                \
    template int find_min<T>(const T *, int, int);                \
    template int find_max_skip<T>(const T *, int, int, int, int); \
    template int find_min_skip<T>(const T *, int, int, int, int); \
    template void expand_linear<T>(T *, int, T, T);               \
    template void expand_log<T>(T *, int, T, T);                  \
    template void unwrap_phase<T>(const T *, int, int, T *);      \
    template void format_buffer<T>(int, const T *, T *, int, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp::vfp
