// Moving-average smoothing of traces: plain values, phases and complex points.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>
#include <vector>

#include "frame/math.hpp"
#include "vfp/trace.hpp"

namespace dsp::vfp {

namespace {

constexpr double pi = 3.141592653589793;
constexpr double two_pi = 6.283185307179586;

// Walks the outputs of a moving window of odd width over [first, end) of an
// array of n entries and calls emit(i, h, same) for each: h is the
// half-width at i, min(width / 2, i, n - 1 - i), so the window [i - h, i + h]
// shrinks symmetrically near both ends of the array; `same` is true when
// the window has the size of the previous output's. The walk stops where
// the window would reach past end - 1. Number of outputs, or -1 for a bad
// range (also one reaching past the array) or width.
template <class Emit>
int walk_windows(int n, int first, int end, int width, Emit emit) {
    if (first == end) return 0;
    const int64_t last = end > 0 ? int64_t(end) - 1 : end;
    if (first < 0 || last < 0 || last < first || width < 3 || width % 2 == 0 || end > n) return -1;
    int64_t i = first, previous = -1;
    for (; i <= last; ++i) {
        const int64_t h = std::min<int64_t>({width / 2, i, int64_t(n) - 1 - i});
        if (i + h > last) break;
        emit(ptrdiff_t(i), ptrdiff_t(h), 2 * h + 1 == previous);
        previous = 2 * h + 1;
    }
    return int(i - first);
}

// The input to read: `in` itself, or a copy of its `count` scalars when the
// output overlaps it (the window sums still need inputs already overwritten).
// Null when the copy cannot be made.
template <class T>
const T *unaliased(const T *in, const T *out, ptrdiff_t count, std::vector<T> &copy) {
    const auto a = reinterpret_cast<uintptr_t>(in), b = reinterpret_cast<uintptr_t>(out);
    const auto bytes = uintptr_t(std::max<ptrdiff_t>(count, 0)) * sizeof(T);
    if (a + bytes <= b || b + bytes <= a) return in;
    try {
        copy.assign(in, in + count);
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
    return copy.data();
}

}  // namespace

template <class T>
int smooth(const T *in, T *out, int n, int first, int end, int width, int phase) {
    std::vector<T> copy;
    if (first != end && !(in = unaliased(in, out, n, copy))) return -1;
    if (!phase) {
        double sum = 0;  // running window sum
        return walk_windows(n, first, end, width, [&](ptrdiff_t i, ptrdiff_t h, bool same) {
            if (same) {
                sum -= double(in[i - h - 1]);
                sum += double(in[i + h]);
            } else {
                sum = 0;
                for (ptrdiff_t j = i - h; j <= i + h; ++j) sum += double(in[j]);
            }
            out[i] = T(sum / double(2 * h + 1));
        });
    }
    // Phases: each window is unwrapped on its own, counting the 2 pi jumps
    // from the sample before it, and the mean is brought into [-pi, pi].
    return walk_windows(n, first, end, width, [&](ptrdiff_t i, ptrdiff_t h, bool) {
        double sum = 0, wraps = 0;
        for (ptrdiff_t j = i - h; j <= i + h; ++j) {
            if (j > 0) {
                const double d = double(in[j]) - double(in[j - 1]);
                if (d < -pi)
                    wraps += 1;
                else if (d > pi)
                    wraps -= 1;
            }
            sum += double(in[j]) + two_pi * wraps;
        }
        double mean = sum / double(2 * h + 1);
        if (mean > pi)
            mean -= (std::trunc((mean - pi) / two_pi) + 1) * two_pi;
        else if (mean < -pi)
            mean -= (std::trunc((mean + pi) / two_pi) - 1) * two_pi;
        out[i] = T(mean);
    });
}

template <class T>
int smooth_complex(const T *in, T *out, int n, int first, int end, int width) {
    std::vector<T> copy;
    if (first != end && !(in = unaliased(in, out, 2 * ptrdiff_t(n), copy))) return -1;
    // Magnitudes and phases (not unwrapped) are averaged separately.
    auto mag = [in](ptrdiff_t j) { return double(rt::hypot(in[2 * j], in[2 * j + 1])); };
    auto arg = [in](ptrdiff_t j) { return double(rt::atan2(in[2 * j + 1], in[2 * j])); };
    double mags = 0, args = 0;
    return walk_windows(n, first, end, width, [&](ptrdiff_t i, ptrdiff_t h, bool same) {
        if (same) {
            mags -= mag(i - h - 1);
            args -= arg(i - h - 1);
            mags += mag(i + h);
            args += arg(i + h);
        } else {
            mags = args = 0;
            for (ptrdiff_t j = i - h; j <= i + h; ++j) {
                mags += mag(j);
                args += arg(j);
            }
        }
        const double m = double(2 * h + 1), a = mags / m, p = args / m;
        out[2 * i] = T(a * std::cos(p));
        out[2 * i + 1] = T(a * std::sin(p));
    });
}

#define DSP_INSTANTIATE(T)                                           \
    template int smooth<T>(const T *, T *, int, int, int, int, int); \
    template int smooth_complex<T>(const T *, T *, int, int, int, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp::vfp
