#include "stats/peak.hpp"

#include <cstdint>

#include "elementwise/convert.hpp"
#include "frame/math.hpp"
#include "frame/record.hpp"
#include "frame/utility.hpp"

namespace dsp {

namespace {

// Gaussian interpolation constants of each family: the width divisor of the
// log ratio, the exponent factor of the value, the exponents used when the
// offset is clamped, and the correction term's factor.
template <class T>
struct gauss;

template <>
struct gauss<float> {
    static constexpr float divisor = 1.2622546f;
    static constexpr float factor = 0.31556365f;
    static constexpr float low_exponent = 0.07889091f;
    static constexpr float high_exponent = 0.71001816f;
    static constexpr double correction = double(0.02036f);  // 0.02036000043153763
};

template <>
struct gauss<double> {
    static constexpr double divisor = 1.262254596631336;
    static constexpr double factor = 0.315563649157834;
    static constexpr double low_exponent = 0.0788909122894585;
    static constexpr double high_exponent = 0.7100182106051266;
    static constexpr double correction = 0.02036;
};

template <class T>
int find_peak(const signal_t<T> &in, signal_t<T> &out, int flags, int index) {
    constexpr T L = precision<T>::large;
    out.n = 2;
    out.cplx = 0;
    if (alloc<T>(out) != 0) return -1;
    const int interp = flags & PEAK_INTERP_MASK;
    if (interp >= 0x400) return -1;
    const int64_t n = in.n;
    const T *x = in.data;
    const bool cplx = in.cplx != 0;
    auto y = [x, cplx](int64_t i) {
        return cplx ? x[2 * i] * x[2 * i] + x[2 * i + 1] * x[2 * i + 1] : x[i];
    };

    int64_t i = 0;
    if (flags & PEAK_AT_INDEX) {
        i = index < 0 ? 0 : (index > n - 1 ? n - 1 : index);
    } else {
        // The first sample strictly beyond the start value -L (+L for the
        // minimum), a complex one with a part outside [-L, L] counting as L.
        const bool minimum = flags & PEAK_MINIMUM;
        T best = minimum ? L : -L;
        for (int64_t k = 0; k < n; ++k) {
            const T v = cplx ? clamped_magsq(x[2 * k], x[2 * k + 1]) : x[k];
            if (minimum ? v < best : v > best) {
                best = v;
                i = k;
            }
        }
    }
    T *r = out.data;
    if (n < 1) {
        r[0] = r[1] = T(0);
        return 0;
    }
    r[0] = y(i);
    r[1] = T(i);
    if (interp == PEAK_PARABOLIC) {
        if (i > 0 && i < n - 1) {
            const T a = y(i - 1), b = y(i), c = y(i + 1);
            const T d = (c - a) / T(2), e = (a + c - T(2) * b) / T(2);
            r[0] = b + d * d / (T(-4) * e);
            r[1] = T(i) + d / (T(-2) * e);
        }
        return 0;
    }
    if (interp == 0 || n < 2) return 0;

    // Gaussian through the pair (left, left + 1) around the peak.
    using G = gauss<T>;
    int64_t left;
    if (i == n - 1)
        left = n - 2;
    else if (i == 0)
        left = 0;
    else
        left = y(i - 1) > y(i + 1) ? i - 1 : i;
    const T y0 = y(left), y1 = y(left + 1);
    T t = rt::log<T>(y1 / y0) / G::divisor;
    if (interp == PEAK_GAUSSIAN_CORRECTED) {
        const double td = double(t);
        t = T(td * (1.0 - (td * td - 0.25) * G::correction));
    }
    T p = t + T(0.5);
    if (p < T(-0.5)) {
        r[0] = y0 * rt::exp<T>(G::low_exponent);
        r[1] = T(left) + T(-0.5);
        return -1;
    }
    if (p > T(1.5)) {
        r[0] = y0 * rt::exp<T>(G::high_exponent);
        if constexpr (single<T>) {
            // The single family reports the offset as the exponent factor
            // 0.31556365 here, not as the clamp 1.5.
            r[1] = T(left) + G::factor;
        } else {
            r[1] = T(left) + T(1.5);
        }
        return -1;
    }
    r[0] = y0 * rt::exp<T>(G::factor * p * p);
    r[1] = T(left) + p;
    return 0;
}

}  // namespace

template <class T>
int peak(const signal_t<T> &in, signal_t<T> &out, int flags, int index) {
    const bool shared = &out == &in || (out.data != nullptr && out.data == in.data);
    if (!shared) return find_peak<T>(in, out, flags, index);
    // Built in a scratch record and copied into the input record, also
    // when the interpolation failed with a written result.
    signal_t<T> scratch;
    init<T>(scratch);
    int status = find_peak<T>(in, scratch, flags, index);
    const bool written = scratch.data != nullptr && (flags & PEAK_INTERP_MASK) < 0x400;
    if (written && copy<T>(out, scratch) != 0) status = -1;
    if (destroy<T>(scratch) != 0) status = -1;
    return status;
}

template int peak<float>(const signal_t<float> &, signal_t<float> &, int, int);
template int peak<double>(const signal_t<double> &, signal_t<double> &, int, int);

}  // namespace dsp
