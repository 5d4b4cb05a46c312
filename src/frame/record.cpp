#include "frame/record.hpp"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "elementwise/convert.hpp"

namespace dsp {

namespace {

// A needed count the record's alloc field can hold, or -1.
int64_t representable(int64_t need) { return need > INT32_MAX ? -1 : need; }

// Releases the block the record owns (free hook if set, else free).
template <class T>
void release(signal_t<T> &x) {
    if (x.alloc <= 0) return;
    if (hooks<T>::free)
        hooks<T>::free(&x);
    else
        std::free(x.data);
}

}  // namespace

template <class T>
int init(signal_t<T> &x) {
    x.delta = T(1);
    x.data = nullptr;
    x.alloc = 0;
    x.n = 0;
    x.cplx = 0;
    x.reserved = 0;
    return 0;
}

template <class T>
int destroy(signal_t<T> &x) {
    release<T>(x);
    return init<T>(x);
}

template <class T>
int alloc(signal_t<T> &x) {
    const int64_t need = scalar_count<T>(x);
    if (need <= owned<T>(x)) return 0;
    if (representable(need) < 0) return -1;
    if (hooks<T>::alloc) {
        hooks<T>::alloc(&x);
    } else {
        if (x.alloc > 0) std::free(x.data);
        x.data = static_cast<T *>(std::malloc(size_t(need) * sizeof(T)));
    }
    if (!x.data) {
        x.alloc = 0;
        return -1;
    }
    x.alloc = int32_t(need);
    return 0;
}

template <class T>
int realloc(signal_t<T> &x, int prev_n, int prev_cplx) {
    const int64_t need = scalar_count<T>(x);
    if (need <= owned<T>(x)) return 0;
    if (representable(need) < 0) return -1;
    // Storage the record does not own is copied, never reallocated.
    T *old = nullptr;
    if (x.alloc <= 0 && x.data) {
        old = x.data;
        x.data = nullptr;
    }
    T *const before = x.data;
    if (hooks<T>::realloc) {
        hooks<T>::realloc(&x, prev_n, prev_cplx);
    } else {
        x.data = static_cast<T *>(std::realloc(x.data, size_t(need) * sizeof(T)));
    }
    if (!x.data) {
        // A failed reallocation keeps the old block; the record gives it up
        // rather than lose it.
        x.data = before;
        release<T>(x);
        x.data = nullptr;
        x.alloc = 0;
        return -1;
    }
    if (old) {
        int64_t keep = scalar_count(prev_n, prev_cplx);
        if (keep > need) keep = need;
        if (keep > 0) std::memcpy(x.data, old, size_t(keep) * sizeof(T));
    }
    x.alloc = int32_t(need);
    return 0;
}

template <class T>
int append(signal_t<T> &a, const signal_t<T> &b) {
    // b may be a itself, or share a's storage: take its shape first and
    // locate its samples again after a has been resized. A negative point
    // count counts as 0.
    const int32_t bn = b.n > 0 ? b.n : 0;
    const int32_t bcplx = b.cplx;
    const int32_t old = a.n > 0 ? a.n : 0;
    if (int64_t(old) + bn > INT32_MAX) return -1;
    if (bcplx && !a.cplx && rtoc<T>(a) != 0) return -1;
    // Only an owned block can move away; caller storage stays valid.
    const T *const before = a.data;
    const int64_t before_len = owned<T>(a);
    const T *src = b.data;
    a.n = old + bn;
    if (realloc<T>(a, old, a.cplx) != 0) return -1;
    if (bn <= 0) return 0;
    const auto at = reinterpret_cast<uintptr_t>(src), lo = reinterpret_cast<uintptr_t>(before);
    if (a.data != before && before_len > 0 && at >= lo && at < lo + before_len * sizeof(T))
        src = a.data + (at - lo) / sizeof(T);
    if (!a.cplx) {
        std::memmove(a.data + old, src, size_t(bn) * sizeof(T));
    } else if (bcplx) {
        std::memmove(a.data + 2 * int64_t(old), src, size_t(bn) * 2 * sizeof(T));
    } else {
        // Backwards, so that a real b sharing a's storage is read before
        // it is overwritten.
        T *dst = a.data + 2 * int64_t(old);
        for (int64_t i = bn - 1; i >= 0; --i) {
            const T v = src[i];
            dst[2 * i + 1] = T(0);
            dst[2 * i] = v;
        }
    }
    return 0;
}

template <class T>
int cmp(const signal_t<T> &a, const signal_t<T> &b, T tol, int *result) {
    if (a.n != b.n) return -1;
    auto decide = [&](T d) -> int { return d > tol ? 1 : (d < -tol ? -1 : 0); };
    int r = decide(a.delta - b.delta);
    const int64_t n = a.n;
    const T *x = a.data;
    const T *y = b.data;
    if (a.cplx && b.cplx) {
        for (int64_t i = 0; r == 0 && i < 2 * n; ++i) r = decide(x[i] - y[i]);
    } else if (!a.cplx && !b.cplx) {
        for (int64_t i = 0; r == 0 && i < n; ++i) r = decide(x[i] - y[i]);
    } else if (a.cplx) {
        for (int64_t i = 0; r == 0 && i < n; ++i) {
            r = decide(x[2 * i] - y[i]);
            if (r == 0) r = decide(x[2 * i + 1]);
        }
    } else {
        // The real a has imaginary part 0 against b's.
        for (int64_t i = 0; r == 0 && i < n; ++i) {
            r = decide(x[i] - y[2 * i]);
            if (r == 0) r = -decide(y[2 * i + 1]);
        }
    }
    *result = r;
    return 0;
}

#define DSP_INSTANTIATE(T)                                      \
    template int init<T>(signal_t<T> &);                        \
    template int destroy<T>(signal_t<T> &);                     \
    template int alloc<T>(signal_t<T> &);                       \
    template int realloc<T>(signal_t<T> &, int, int);           \
    template int append<T>(signal_t<T> &, const signal_t<T> &); \
    template int cmp<T>(const signal_t<T> &, const signal_t<T> &, T, int *);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
