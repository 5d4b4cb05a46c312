// Window metrics.
#include "window/metrics.hpp"

#include "frame/math.hpp"
#include "frame/record.hpp"
#include "window/catalogue.hpp"
#include "window/generate.hpp"
#include "window/ops.hpp"

namespace dsp {

template <class T>
int window2_scale(T *out, int kind, int flags, int n, T p) {
    const int mode = flags & WINDOW_MODE;
    if (mode == 2 || n <= 0) {
        *out = T(1);
        return 0;
    }
    if (mode == 3) return -1;
    const bool width = flags & WINDOW_WIDTH;
    if (kind == 1 && !width) {
        const T nn = T(n) * T(n);
        if (mode == 1) {
            *out = rt::sqrt(T(3) * nn / (T(2) + nn));
        } else if (n % 2 == 0) {
            *out = T(2);
        } else {
            if constexpr (single<T>) {
                // The single family reports 4 for odd lengths, not the peak
                // of the generated unit-mean triangle.
                *out = T(4);
            } else {
                *out = T(2) * nn / (nn + T(1));
            }
        }
        return 0;
    }
    if (is_cosine_kind(kind) && !width) {
        const cosine_set<T> set = cosine_coefficients<T>(kind, mode);
        const cosine_set<T> peak = cosine_coefficients<T>(kind, 2);
        *out = set.a[0] / peak.a[0] * short_cosine_correction<T>(set, mode, n);
        return 0;
    }
    // Measure the unit-peak window.
    signal_t<T> w;
    init<T>(w);
    w.n = n;
    T v = 0;
    int status = alloc<T>(w);
    if (status == 0)
        status = generate_window<T>(w, kind, (flags & (WINDOW_WIDTH | WINDOW_SYMMETRIC)) | 2, p);
    if (status == 0) status = mode == 0 ? win::mean<T>(w, v) : win::rms<T>(w, v);
    destroy<T>(w);
    if (status != 0) return -1;
    if (mode == 0 && kind >= 8 && kind <= 13) {
        // Flat-top kinds: their unit-mean set starts slightly below 1.
        v /= cosine_coefficients<T>(kind, 0).a[0];
    }
    *out = v != T(0) ? T(1) / v : T(0);
    return 0;
}

template <class T>
int window_scale(T *out, int kind, int flags, int n) {
    if (flags & WINDOW_WIDTH) return -1;
    return window2_scale<T>(out, kind, flags, n, T(0));
}

template <class T>
int window_enbw(T *out, int kind, int n) {
    if (!out) return -1;
    T s0, s1;
    if (window_scale<T>(&s0, kind, 0, n) != 0 || window_scale<T>(&s1, kind, 1, n) != 0) return -1;
    const T r = s0 / s1;
    *out = r * r;
    return 0;
}

template <class T>
int window2_enbw(T *out, int kind, int n, T p) {
    if (!out) return -1;
    T s0, s1;
    if (window2_scale<T>(&s0, kind, 8, n, p) != 0 || window2_scale<T>(&s1, kind, 9, n, p) != 0)
        return -1;
    const T r = s0 / s1;
    *out = r * r;
    return 0;
}

#define DSP_INSTANTIATE(T)                                \
    template int window_scale<T>(T *, int, int, int);     \
    template int window2_scale<T>(T *, int, int, int, T); \
    template int window_enbw<T>(T *, int, int);           \
    template int window2_enbw<T>(T *, int, int, T);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
