#include "elementwise/differences.hpp"

#include <cmath>
#include <cstdint>

#include "frame/record.hpp"

namespace dsp {

template <class T>
int integ(signal_t<T> &x) {
    const T delta = x.delta;
    T *d = x.data;
    if (x.cplx) {
        T re = T(0), im = T(0);
        for (int64_t i = 0; i < x.n; ++i) {
            re += delta * d[2 * i];
            im += delta * d[2 * i + 1];
            d[2 * i] = re;
            d[2 * i + 1] = im;
        }
    } else {
        T s = T(0);
        for (int64_t i = 0; i < x.n; ++i) {
            s += delta * d[i];
            d[i] = s;
        }
    }
    return 0;
}

template <class T>
int differ(signal_t<T> &x) {
    const T r = x.delta == T(0) ? precision<T>::large : T(1) / x.delta;
    const int64_t count = x.n > 0 ? scalar_count<T>(x) : 0;
    const int64_t w = x.cplx ? 2 : 1;
    T *d = x.data;
    // Each part differs from the same part of the previous point.
    T prev[2] = {T(0), T(0)};
    for (int64_t i = 0; i < count; ++i) {
        const T v = d[i];
        d[i] = r * (v - prev[i % w]);
        prev[i % w] = v;
    }
    return 0;
}

template <class T>
int pdiffer(signal_t<T> &x) {
    if (x.n < 1) return 0;
    const int64_t w = x.cplx ? 2 : 1;
    T *d = x.data;
    for (int64_t i = 1; i < x.n; ++i) {
        const T k = T(i);
        for (int64_t c = 0; c < w; ++c) d[(i - 1) * w + c] = k * d[i * w + c];
    }
    x.n -= 1;
    return 0;
}

template <class T>
int edge(signal_t<T> &x, int flags, T level) {
    if (x.cplx) return -1;
    if (x.n < 1) return 0;
    const bool rising = flags & EDGE_RISING, falling = flags & EDGE_FALLING;
    const T delta = x.delta;
    T *d = x.data;
    // Crossing i is written to slot <= i - 1, so the output never overtakes
    // the samples still to be read.
    int32_t found = 0;
    T p = d[0];
    for (int64_t i = 1; i < x.n; ++i) {
        const T q = d[i];
        if ((rising && p <= level && level < q) || (falling && p >= level && level > q))
            d[found++] = delta * (T(i - 1) + (level - p) / (q - p));
        p = q;
    }
    x.n = found;
    x.delta = T(1);
    return 0;
}

namespace {

// Brings d = x - ref into [-pi, pi] when it lies outside. The remainder is
// taken by the double-precision fmod against 2 pi of the record's precision.
template <class T>
inline T wrap(T d) {
    constexpr T pi = precision<T>::pi;
    constexpr T two_pi = T(2) * pi;
    if (!(d > pi || d < -pi)) return d;
    T r = T(std::fmod(double(d), double(two_pi)));
    if (r > pi)
        r -= two_pi;
    else if (r < -pi)
        r += two_pi;
    return r;
}

}  // namespace

template <class T>
int unwrap(signal_t<T> &x) {
    if (x.cplx) return -1;
    T *d = x.data;
    T prev = T(0);
    for (int64_t i = 0; i < x.n; ++i) {
        d[i] = wrap(d[i] - prev) + prev;
        prev = d[i];
    }
    return 0;
}

template <class T>
int unwrap_wnd(signal_t<T> &x, int w) {
    if (x.cplx || w < 0) return -1;
    if (w == 1) return unwrap<T>(x);
    T *d = x.data;
    if (w == 0) {
        for (int64_t i = 0; i < x.n; ++i) d[i] = wrap(d[i]);
        return 0;
    }
    // s: the sum of all previous outputs while fewer than w exist, then the
    // running sum of the last w outputs.
    T s = T(0);
    for (int64_t i = 0; i < x.n; ++i) {
        const T ref = i == 0 ? T(0) : s / T(i < w ? i : w);
        const T y = wrap(d[i] - ref) + ref;
        s += y - (i >= w ? d[i - w] : T(0));
        d[i] = y;
    }
    return 0;
}

template <class T>
int orecon(signal_t<T> &x, int odd) {
    const int64_t n = x.n;
    if (n < 2 || (!odd && n == 2)) return 0;
    const int64_t total = 2 * (n - 1) + (odd ? 1 : 0);
    if (total > INT32_MAX) return -1;
    x.n = int32_t(total);
    if (realloc<T>(x, int(n), x.cplx) != 0) return -1;
    T *d = x.data;
    const int64_t c = odd ? n - 1 : n - 2;
    if (x.cplx) {
        for (int64_t j = 0; j < c; ++j) {
            d[2 * (n + j)] = d[2 * (c - j)];
            d[2 * (n + j) + 1] = -d[2 * (c - j) + 1];
        }
    } else {
        for (int64_t j = 0; j < c; ++j) d[n + j] = d[c - j];
    }
    return 0;
}

template <class T>
int recon(signal_t<T> &x) {
    if (x.n < 3) return 0;
    return orecon<T>(x, 0);
}

#define DSP_INSTANTIATE(T)                          \
    template int integ<T>(signal_t<T> &);           \
    template int differ<T>(signal_t<T> &);          \
    template int pdiffer<T>(signal_t<T> &);         \
    template int edge<T>(signal_t<T> &, int, T);    \
    template int unwrap<T>(signal_t<T> &);          \
    template int unwrap_wnd<T>(signal_t<T> &, int); \
    template int recon<T>(signal_t<T> &);           \
    template int orecon<T>(signal_t<T> &, int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
