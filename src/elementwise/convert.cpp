#include "elementwise/convert.hpp"

#include "elementwise/vmath.hpp"
#include "frame/math.hpp"
#include "frame/record.hpp"

namespace dsp {

namespace {

// Makes a real record complex: sets cplx first, then grows the storage
// keeping the n real scalars at the front. Returns -1 (cplx left set) when
// the storage cannot grow.
template <class T>
int widen(signal_t<T> &x) {
    x.cplx = 1;
    return realloc<T>(x, x.n, 0);
}

template <class T>
inline T sign_phase(T x) {
    return x < T(0) ? precision<T>::pi : T(0);
}

}  // namespace

template <class T>
int real(signal_t<T> &x) {
    if (!x.cplx) return 0;
    x.cplx = 0;
    T *d = x.data;
    for (int64_t i = 0; i < x.n; ++i) d[i] = d[2 * i];
    return 0;
}

template <class T>
int imag(signal_t<T> &x) {
    T *d = x.data;
    if (x.cplx) {
        x.cplx = 0;
        for (int64_t i = 0; i < x.n; ++i) d[i] = d[2 * i + 1];
    } else {
        for (int64_t i = 0; i < x.n; ++i) d[i] = T(0);
    }
    return 0;
}

template <class T>
int rtoc(signal_t<T> &x) {
    if (x.cplx) return 0;
    if (widen<T>(x) != 0) return -1;
    T *d = x.data;
    for (int64_t i = int64_t(x.n) - 1; i >= 0; --i) {
        d[2 * i + 1] = T(0);
        d[2 * i] = d[i];
    }
    return 0;
}

template <class T>
int rtop(signal_t<T> &x) {
    if (x.cplx) {
        T *d = x.data;
        for (int64_t i = 0; i < x.n; ++i) {
            const T re = d[2 * i], im = d[2 * i + 1];
            d[2 * i] = rt::hypot(re, im);
            d[2 * i + 1] = (re != T(0) || im != T(0)) ? rt::atan2(im, re) : T(0);
        }
        return 0;
    }
    if (widen<T>(x) != 0) return -1;
    T *d = x.data;
    for (int64_t i = int64_t(x.n) - 1; i >= 0; --i) {
        const T v = d[i];
        d[2 * i + 1] = sign_phase(v);
        d[2 * i] = std::fabs(v);
    }
    return 0;
}

template <class T>
int ptor(signal_t<T> &x) {
    if (!x.cplx) return 0;
    T *d = x.data;
    for (int64_t i = 0; i < x.n; ++i) {
        const T m = d[2 * i], p = d[2 * i + 1];
        d[2 * i] = m * rt::cos(p);
        d[2 * i + 1] = m * rt::sin(p);
    }
    return 0;
}

template <class T>
int mag(signal_t<T> &x) {
    T *d = x.data;
    if (x.cplx) {
        x.cplx = 0;
        vmath::magnitude<T>(d, x.n);
    } else {
        for (int64_t i = 0; i < x.n; ++i) d[i] = std::fabs(d[i]);
    }
    return 0;
}

template <class T>
int magsq(signal_t<T> &x) {
    T *d = x.data;
    const int64_t n = x.n;
    if (x.cplx) {
        x.cplx = 0;
        // Point i is written to scalar i after scalars 2i and 2i+1 are read;
        // the write never lands on a scalar still to be read, so the loop
        // carries no dependence and may run in vector blocks.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC ivdep
#endif
        for (int64_t i = 0; i < n; ++i) d[i] = clamped_magsq(d[2 * i], d[2 * i + 1]);
    } else {
        T *__restrict r = d;
        for (int64_t i = 0; i < n; ++i) r[i] = clamped_square(r[i]);
    }
    return 0;
}

template <class T>
int phase(signal_t<T> &x) {
    T *d = x.data;
    if (x.cplx) {
        x.cplx = 0;
        for (int64_t i = 0; i < x.n; ++i) {
            const T re = d[2 * i], im = d[2 * i + 1];
            d[i] = (re != T(0) || im != T(0)) ? rt::atan2(im, re) : T(0);
        }
    } else {
        for (int64_t i = 0; i < x.n; ++i) d[i] = sign_phase(d[i]);
    }
    return 0;
}

template <class T>
int conj(signal_t<T> &x) {
    if (!x.cplx) return 0;
    T *d = x.data;
    for (int64_t i = 0; i < x.n; ++i) d[2 * i + 1] = -d[2 * i + 1];
    return 0;
}

template <class T>
int timesi(signal_t<T> &x) {
    if (x.n < 1) return 0;  // an empty real record stays real
    if (x.cplx) {
        T *d = x.data;
        for (int64_t i = 0; i < x.n; ++i) {
            const T re = d[2 * i], im = d[2 * i + 1];
            d[2 * i] = -im;
            d[2 * i + 1] = re;
        }
        return 0;
    }
    if (widen<T>(x) != 0) return -1;
    T *d = x.data;
    for (int64_t i = int64_t(x.n) - 1; i >= 0; --i) {
        d[2 * i + 1] = d[i];
        d[2 * i] = T(0);
    }
    return 0;
}

#define DSP_INSTANTIATE(T)                 \
    template int real<T>(signal_t<T> &);   \
    template int imag<T>(signal_t<T> &);   \
    template int rtoc<T>(signal_t<T> &);   \
    template int rtop<T>(signal_t<T> &);   \
    template int ptor<T>(signal_t<T> &);   \
    template int mag<T>(signal_t<T> &);    \
    template int magsq<T>(signal_t<T> &);  \
    template int phase<T>(signal_t<T> &);  \
    template int conj<T>(signal_t<T> &);   \
    template int timesi<T>(signal_t<T> &);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
