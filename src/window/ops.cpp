#include "window/ops.hpp"

#include "frame/math.hpp"
#include "frame/prepare.hpp"
#include "frame/record.hpp"

namespace dsp::win {

// Block sums of 2048 samples, as the statistics module forms them.
template <class T>
int mean(const signal_t<T> &w, T &out) {
    T total = 0;
    for (int i = 0; i < w.n; i += 2048) {
        T part = 0;
        for (int j = i; j < w.n && j < i + 2048; ++j) part += w.data[j];
        total += part;
    }
    out = w.n > 0 ? total / T(w.n) : T(0);
    return 0;
}

template <class T>
int rms(const signal_t<T> &w, T &out) {
    const T L = precision<T>::large;
    T total = 0;
    for (int i = 0; i < w.n; i += 2048) {
        T part = 0;
        for (int j = i; j < w.n && j < i + 2048; ++j) {
            const T v = w.data[j];
            part += (v > L || v < -L) ? L : v * v;
        }
        total += part;
    }
    out = w.n > 0 ? rt::sqrt(total / T(w.n)) : T(0);
    return 0;
}

template <class T>
int multiply(signal_t<T> &x, const signal_t<T> &w) {
    if (prepare_binary_result<T>(x, w, x) != 0) return -1;
    if (x.cplx) {
        for (int i = 0; i < x.n; ++i) {
            x.data[2 * i] *= w.data[i];
            x.data[2 * i + 1] *= w.data[i];
        }
    } else {
        for (int i = 0; i < x.n; ++i) x.data[i] *= w.data[i];
    }
    return 0;
}

template <class T>
int rotate(signal_t<T> &x) {
    if (x.n < 1) return 0;
    const int s = x.cplx ? 2 : 1;
    const int n = x.n, m = n / 2;
    T *d = x.data;
    auto swap_points = [&](int i, int j) {
        for (int q = 0; q < s; ++q) {
            const T t = d[s * i + q];
            d[s * i + q] = d[s * j + q];
            d[s * j + q] = t;
        }
    };
    if (n % 2 == 0) {
        for (int i = 0; i < m; ++i) swap_points(i, i + m);
        return 0;
    }
    T saved[2] = {d[s * (n - 1)], s == 2 ? d[s * (n - 1) + 1] : T(0)};
    for (int i = 0; i < m; ++i) {
        for (int q = 0; q < s; ++q) d[s * (n - 1 - i) + q] = d[s * (m - 1 - i) + q];
        for (int q = 0; q < s; ++q) d[s * (m - 1 - i) + q] = d[s * (n - 2 - i) + q];
    }
    for (int q = 0; q < s; ++q) d[s * m + q] = saved[q];
    return 0;
}

#define DSP_INSTANTIATE(T)                                        \
    template int mean<T>(const signal_t<T> &, T &);               \
    template int rms<T>(const signal_t<T> &, T &);                \
    template int multiply<T>(signal_t<T> &, const signal_t<T> &); \
    template int rotate<T>(signal_t<T> &);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp::win
