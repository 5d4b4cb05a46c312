// Window generators.
#include "window/generate.hpp"

#include <algorithm>
#include <cmath>

#include "elementwise/bessel.hpp"
#include "frame/math.hpp"
#include "frame/prepare.hpp"
#include "window/ops.hpp"

namespace dsp {

namespace {

template <class T>
void scale_by(signal_t<T> &w, T s) {
    for (int i = 0; i < w.n; ++i) w.data[i] *= s;
}

// Mode 0: unit mean, mode 1: unit rms (a zero mean or rms scales by 0);
// other modes leave the window as it is.
template <class T>
int normalise(signal_t<T> &w, int mode) {
    if (mode != 0 && mode != 1) return 0;
    T v = 0;
    if ((mode == 0 ? win::mean<T>(w, v) : win::rms<T>(w, v)) != 0) return -1;
    scale_by<T>(w, v != T(0) ? T(1) / v : T(0));
    return 0;
}

// Fills the window from f(distance) in the layout of the sampling flag.
template <class T, class F>
void fill(signal_t<T> &w, int flags, F f) {
    const int n = w.n, c = n / 2;
    T *d = w.data;
    if ((flags & WINDOW_SYMMETRIC) && n % 2 == 0) {
        for (int k = 0; k < c; ++k) d[c + k] = d[c - 1 - k] = f(T(k) + T(0.5));
        return;
    }
    d[c] = f(T(0));
    for (int k = 1; k <= (n - 1) / 2; ++k) d[c + k] = d[c - k] = f(T(k));
    if (n % 2 == 0) d[0] = f(T(c));
}

template <class T>
int triangle_window(signal_t<T> &w, int flags) {
    if (flags & (WINDOW_SYMMETRIC | WINDOW_WIDTH)) return -1;
    const int n = w.n;
    const T nn = T(n) * T(n);
    T peak = 1;
    switch (flags & WINDOW_MODE) {
        case 0:
            peak = n % 2 ? T(2) * nn / (nn + T(1)) : T(2);
            break;
        case 1:
            peak = rt::sqrt(T(3) * nn / (T(2) + nn));
            break;
        default:
            break;
    }
    const T slope = T(2) * peak / T(n);
    fill<T>(w, 0, [&](T k) { return peak - k * slope; });
    if (n % 2 == 0) w.data[0] = 0;
    return 0;
}

template <class T>
int cosine_kind_window(signal_t<T> &w, int kind, int flags, T p) {
    if (flags & WINDOW_SYMMETRIC) return -1;
    const int mode = flags & WINDOW_MODE;
    const cosine_set<T> set = cosine_coefficients<T>(kind, mode);
    if (!set.a) return -1;
    const int n = w.n;
    if (kind == 0 && (flags & WINDOW_WIDTH)) {
        // A box of the given width at the start of the record.
        const int count = std::min(std::max(1, int(ceil_index<T>(p))), n);
        for (int i = 0; i < n; ++i) w.data[i] = i < count ? T(1) : T(0);
    } else if (cosine_sum_window<T>(w, set.a, set.m, flags & WINDOW_WIDTH, p) != 0) {
        return -1;
    }
    if (mode == 2) return 0;
    if (flags & WINDOW_WIDTH) {
        T v = 0;
        if ((mode == 0 ? win::mean<T>(w, v) : win::rms<T>(w, v)) != 0) return -1;
        const T a0 = mode == 0 ? set.a[0] : T(1);
        scale_by<T>(w, v != T(0) ? a0 / v : T(0));
        return 0;
    }
    const T s = short_cosine_correction<T>(set, mode, n);
    if (s != T(1)) scale_by<T>(w, s);
    return 0;
}

}  // namespace

template <class T>
T short_cosine_correction(const cosine_set<T> &set, int mode, int n) {
    const int m = set.m;
    if (n < 1 || !set.a) return T(1);
    const T *a = set.a;
    if (mode == 0 && n < m) {
        // Samples at multiples of 2 pi / n: only the terms j = 0 mod n keep
        // a nonzero mean.
        T sum = 0;
        for (int j = 0; j < m; ++j)
            if (j % n == 0) sum += a[j];
        return sum != T(0) ? a[0] / sum : T(0);
    }
    if (mode == 1 && n < 2 * m - 1) {
        // Exact mean square of the sampled window: aliased products survive.
        T s = 1;
        for (int j = 1; j < m; ++j)
            if ((2 * j) % n == 0) s += a[j] * a[j] / T(2);
        for (int j = 0; j < m; ++j)
            for (int k = j + 1; k < m; ++k)
                s += a[j] * a[k] * T(((k - j) % n == 0) + ((k + j) % n == 0));
        return s > T(0) ? T(1) / rt::sqrt(s) : T(0);
    }
    return T(1);
}

template <class T>
int cosine_sum_window(signal_t<T> &w, const T *a, int m, int flags, T p) {
    if (w.cplx) return -1;
    const int n = w.n;
    if (n < 1) return 0;
    T *d = w.data;
    if (m < 1) {
        std::fill(d, d + n, T(0));
        return 0;
    }
    const bool width = flags & WINDOW_WIDTH;
    const T two_pi = T(2) * precision<T>::pi;
    const T step = width ? (p == T(0) ? T(0) : two_pi / p) : two_pi / T(n);
    const int c = n / 2;
    const int h = width ? std::min(int(floor_index<T>(p)) / 2, (n - 1) / 2) : (n - 1) / 2;
    auto value = [&](T angle) {
        T v = a[0];
        for (int j = 1; j < m; ++j) v += a[j] * rt::cos(T(j) * angle);
        return v;
    };
    T centre = 0;
    for (int j = 0; j < m; ++j) centre += a[j];
    d[c] = centre;
    // The angle is accumulated, and recomputed as step * k every 1024
    // distances to bound the drift.
    T angle = 0;
    for (int k = 1; k <= h; ++k) {
        if ((k - 1) % 1024 == 0)
            angle = step * T(k);
        else
            angle += step;
        d[c + k] = d[c - k] = value(angle);
    }
    if (width && p < T(n) && !approx_equal<T>(T(n), p)) {
        // A window narrower than the record: zero outside, and an even width
        // ends with its zero on the right side.
        const T even = T(2) * std::floor(p / T(2) + T(0.5));
        if (approx_equal<T>(even, p)) d[c + h] = 0;
        for (int i = c + h + 1; i < n; ++i) d[i] = 0;
        for (int i = 0; i < c - h; ++i) d[i] = 0;
    } else if (n % 2 == 0) {
        d[0] = value(step * T(h + 1));
    }
    return 0;
}

template <class T>
int gauss_window(signal_t<T> &w, T sigma, int flags) {
    if (w.cplx || (flags & WINDOW_WIDTH)) return -1;
    const int n = w.n;
    if (n < 1) return 0;
    if (sigma == T(0)) {
        std::fill(w.data, w.data + n, T(0));
        w.data[n / 2] = 1;
        if ((flags & WINDOW_SYMMETRIC) && n % 2 == 0) w.data[n / 2 - 1] = 1;
    } else {
        const T den = T(2) * sigma * sigma * T(n) * T(n);
        fill<T>(w, flags, [&](T d) { return d == T(0) ? T(1) : rt::exp(-(d * d) / den); });
    }
    return normalise<T>(w, flags & WINDOW_MODE);
}

template <class T>
int kaiser_window(signal_t<T> &w, T beta, int flags) {
    if (w.cplx || (flags & WINDOW_WIDTH)) return -1;
    const int n = w.n;
    if (n < 1) return 0;
    if (n == 1) {
        w.data[0] = 1;
        return 0;
    }
    const int mode = flags & WINDOW_MODE;
    const T limit = mode == 1 ? T(34.538776) : T(69.07755);
    if (beta > limit || beta < -limit) beta = limit;
    const bool symmetric = flags & WINDOW_SYMMETRIC;
    const T span = symmetric ? T(n - 1) : T(n);
    const T den = span * span;
    const T centre = bessel_i0<T>(beta);
    fill<T>(w, flags, [&](T d) {
        if (d == T(0)) return centre;
        const T r = T(1) - T(4) * d * d / den;
        return bessel_i0<T>(beta * rt::sqrt(r > T(0) ? r : T(0)));
    });
    if (symmetric) {
        w.data[0] = w.data[n - 1] = 1;
    } else if (n % 2 == 0) {
        w.data[0] = 1;
    }
    if (mode == 2) {
        const T top = symmetric && n % 2 == 0 ? centre : w.data[n / 2];
        scale_by<T>(w, top != T(0) ? T(1) / top : T(0));
        return 0;
    }
    return normalise<T>(w, mode);
}

template <class T>
int sinc_window(signal_t<T> &w, T half_span, T power, int flags) {
    if (w.cplx || (flags & WINDOW_WIDTH)) return -1;
    const int n = w.n;
    if (n < 1) return 0;
    const T t = T(2) * half_span / T(n);
    fill<T>(w, flags, [&](T d) {
        const T u = d * t;
        if (u == T(0)) return T(1);
        T base;
        if constexpr (single<T>) {
            // The single family takes sin(u) itself as the base, not sin(u)/u.
            base = rt::sin(u);
        } else {
            base = rt::sin(u) / u;
        }
        if (base > T(0)) return rt::exp(power * rt::log(base));
        if (approx_equal<T>(T(1), power)) return base;
        return power == T(0) ? T(1) : T(0);
    });
    return normalise<T>(w, flags & WINDOW_MODE);
}

template <class T>
int tukey_window(signal_t<T> &w, T alpha, int flags) {
    if (w.cplx || (flags & WINDOW_WIDTH)) return -1;
    const int n = w.n;
    if (n < 1) return 0;
    const T flat = (T(1) - alpha) * T(n) / T(2);
    const T taper = alpha * T(n);
    const T step = taper == T(0) ? T(0) : T(2) * precision<T>::pi / taper;
    fill<T>(w, flags,
            [&](T d) { return d <= flat ? T(1) : T(0.5) + T(0.5) * rt::cos(step * (d - flat)); });
    if (!(flags & WINDOW_SYMMETRIC) && n % 2 == 0) w.data[0] = alpha <= T(0) ? T(1) : T(0);
    return normalise<T>(w, flags & WINDOW_MODE);
}

template <class T>
int generate_window(signal_t<T> &w, int kind, int flags, T p) {
    if (w.cplx) return -1;
    if (w.n < 1) return 0;
    if (is_cosine_kind(kind)) return cosine_kind_window<T>(w, kind, flags, p);
    if (kind == 1) return triangle_window<T>(w, flags);
    if (kind >= 14 && kind <= 19) return kaiser_window<T>(w, kaiser_beta<T>(kind), flags);
    if (kind >= 20 && kind <= 22) return gauss_window<T>(w, gauss_sigma<T>(kind), flags);
    if (kind == 23) return sinc_window<T>(w, precision<T>::pi, T(1), flags);
    if (kind == WINDOW_TUKEY25) return tukey_window<T>(w, T(0.25), flags);
    return -1;
}

#define DSP_INSTANTIATE(T)                                                    \
    template int generate_window<T>(signal_t<T> &, int, int, T);              \
    template int cosine_sum_window<T>(signal_t<T> &, const T *, int, int, T); \
    template T short_cosine_correction<T>(const cosine_set<T> &, int, int);   \
    template int gauss_window<T>(signal_t<T> &, T, int);                      \
    template int kaiser_window<T>(signal_t<T> &, T, int);                     \
    template int sinc_window<T>(signal_t<T> &, T, T, int);                    \
    template int tukey_window<T>(signal_t<T> &, T, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
