// Windowing in place, and the cache of generated windows.
#include "window/window.hpp"

#include <cstdlib>
#include <new>

#include "frame/math.hpp"
#include "frame/prepare.hpp"
#include "frame/record.hpp"
#include "window/generate.hpp"
#include "window/ops.hpp"

namespace dsp {

namespace {

constexpr int cache_size = 16;

// One cached window and its key. `keyed` is false only while an entry's
// storage could not be obtained, so that no lookup can match it.
template <class T>
struct cache_entry {
    signal_t<T> rec;
    int kind;
    int flags;  // bits 0-3 of the caller's flags
    T param;
    bool keyed;
};

// The process-wide ring of one precision: the block (allocated on first use),
// the number of entries in use and the most recently filled entry.
template <class T>
struct window_cache {
    static inline cache_entry<T> *entries = nullptr;
    static inline int used = 0;
    static inline int last = -1;
};

template <class T>
bool rotates(int kind, int flags) {
    // The uniform window rotates only on request; all others unless told not to.
    return kind == 0 ? (flags & WINDOW_ROTATE) != 0 : (flags & WINDOW_NO_ROTATE) == 0;
}

// Generates a window of x's length into a scratch record, multiplies x by it
// and rotates unless flag 32.
template <class T, class G>
int apply_generated(signal_t<T> &x, bool rotate, G generate) {
    signal_t<T> w;
    init<T>(w);
    w.n = x.n;
    int status = alloc<T>(w);
    if (status == 0) status = generate(w);
    if (status == 0) {
        w.delta = x.delta;
        status = win::multiply<T>(x, w);
    }
    if (status == 0 && rotate) status = win::rotate<T>(x);
    destroy<T>(w);
    return status == 0 ? 0 : -1;
}

}  // namespace

template <class T>
int window2(signal_t<T> &x, int kind, int flags, T p) {
    using C = window_cache<T>;
    if ((flags & WINDOW_MODE) == 3) return -1;
    if (kind == 0 && !(flags & WINDOW_WIDTH))
        return (flags & WINDOW_ROTATE) ? win::rotate<T>(x) : 0;
    if (!C::entries) {
        C::entries =
            static_cast<cache_entry<T> *>(std::malloc(cache_size * sizeof(cache_entry<T>)));
        if (!C::entries) return -1;
        C::used = 0;
        C::last = -1;
    }
    const int key_flags = flags & 15;
    cache_entry<T> *hit = nullptr;
    for (int i = 0; i < C::used && !hit; ++i) {
        cache_entry<T> &e = C::entries[i];
        if (e.keyed && e.rec.n == x.n && e.kind == kind && e.flags == key_flags &&
            (!(flags & WINDOW_WIDTH) || approx_equal<T>(e.param, p)))
            hit = &e;
    }
    if (!hit) {
        // First in, first out once all sixteen entries are in use.
        const int index = C::used < cache_size ? C::used : (C::last + 1) % cache_size;
        cache_entry<T> &e = C::entries[index];
        if (C::used < cache_size) {
            new (&e) cache_entry<T>{};
            init<T>(e.rec);
        }
        C::last = index;
        // The key goes in before the window is generated: a generation that
        // fails leaves a keyed entry, which a later identical call uses.
        e.kind = kind;
        e.flags = key_flags;
        e.param = p;
        e.keyed = false;
        e.rec.n = x.n;
        e.rec.cplx = 0;
        if (alloc<T>(e.rec) != 0) return -1;
        e.keyed = true;
        if (C::used < cache_size) ++C::used;
        for (int i = 0; i < e.rec.n; ++i) e.rec.data[i] = 0;
        hit = &e;
        if (generate_window<T>(e.rec, kind, flags, p) != 0) return -1;
    }
    hit->rec.delta = x.delta;
    if (win::multiply<T>(x, hit->rec) != 0) return -1;
    if (rotates<T>(kind, flags) && win::rotate<T>(x) != 0) return -1;
    return 0;
}

template <class T>
int window(signal_t<T> &x, int kind, int flags) {
    if (flags & WINDOW_WIDTH) return -1;
    return window2<T>(x, kind, flags, T(0));
}

template <class T>
int window_cos(signal_t<T> &x, const signal_t<T> &coef) {
    if (coef.cplx) return -1;
    return apply_generated<T>(x, true, [&](signal_t<T> &w) {
        return cosine_sum_window<T>(w, coef.data, coef.n, 0, T(0));
    });
}

template <class T>
int window_gauss(signal_t<T> &x, T sigma, int flags) {
    return apply_generated<T>(x, !(flags & WINDOW_NO_ROTATE),
                              [&](signal_t<T> &w) { return gauss_window<T>(w, sigma, flags); });
}

template <class T>
int window_kaiser(signal_t<T> &x, T beta, int flags) {
    return apply_generated<T>(x, !(flags & WINDOW_NO_ROTATE),
                              [&](signal_t<T> &w) { return kaiser_window<T>(w, beta, flags); });
}

template <class T>
int window_sinc(signal_t<T> &x, T half_span, T power, int flags) {
    return apply_generated<T>(x, !(flags & WINDOW_NO_ROTATE), [&](signal_t<T> &w) {
        return sinc_window<T>(w, half_span, power, flags);
    });
}

template <class T>
int window_tukey(signal_t<T> &x, T alpha, int flags) {
    return apply_generated<T>(x, !(flags & WINDOW_NO_ROTATE),
                              [&](signal_t<T> &w) { return tukey_window<T>(w, alpha, flags); });
}

template <class T>
int window_fir(signal_t<T> &x, int code, T p) {
    // Unit peak, symmetric sampling, no rotation.
    constexpr int flags = 38;
    const int n = x.n;
    const T pi = precision<T>::pi;
    switch (code) {
        case 100:
            if (n < 1 || p == T(0)) return 0;
            return window_gauss<T>(x, T(1) / (p * T(n) * pi), flags);
        case 101: {
            if (n < 1) return 0;
            const T a = T(7.95) + T(14.36) * T(n - 1) * p;
            T beta = 0;
            if (a >= T(21) && a <= T(50))
                beta = T(0.5842) * rt::pow(a - T(21), T(0.4)) + T(0.07886) * (a - T(21));
            else if (a > T(50))
                beta = T(0.1102) * (a - T(8.7));
            return window_kaiser<T>(x, beta, flags);
        }
        case 102:
            return window_sinc<T>(x, T(2.5335424), T(0.62) * p * T(n), flags);
        case 103: {
            const T v = T(1.12) * p * T(n);
            if (v == T(0)) return window_sinc<T>(x, T(1.5707963e-15), T(1e15), flags);
            T g;
            if (v <= T(1.25))
                g = T(0.386) / v + T(0.453);
            else if (v < T(5))
                g = T(0.774) - T(0.0251) * v;
            else
                g = T(0.648);
            return window_sinc<T>(x, (pi / T(2)) / g, v * g, flags);
        }
        default:
            return window<T>(x, code, flags);
    }
}

template <class T>
int release_window_cache() {
    using C = window_cache<T>;
    if (!C::entries) return 0;
    int status = 0;
    for (int i = 0; i < C::used; ++i)
        if (destroy<T>(C::entries[i].rec) != 0) status = -1;
    std::free(C::entries);
    C::entries = nullptr;
    C::used = 0;
    C::last = -1;
    return status;
}

template <class T>
int window_cache_used() {
    return window_cache<T>::used;
}
template <class T>
int window_cache_last() {
    return window_cache<T>::last;
}
template <class T>
const signal_t<T> *window_cache_entry(int index) {
    using C = window_cache<T>;
    return C::entries && index >= 0 && index < C::used ? &C::entries[index].rec : nullptr;
}

#define DSP_INSTANTIATE(T)                                          \
    template int window<T>(signal_t<T> &, int, int);                \
    template int window2<T>(signal_t<T> &, int, int, T);            \
    template int window_cos<T>(signal_t<T> &, const signal_t<T> &); \
    template int window_gauss<T>(signal_t<T> &, T, int);            \
    template int window_kaiser<T>(signal_t<T> &, T, int);           \
    template int window_sinc<T>(signal_t<T> &, T, T, int);          \
    template int window_tukey<T>(signal_t<T> &, T, int);            \
    template int window_fir<T>(signal_t<T> &, int, T);              \
    template int release_window_cache<T>();                         \
    template int window_cache_used<T>();                            \
    template int window_cache_last<T>();                            \
    template const signal_t<T> *window_cache_entry<T>(int);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
