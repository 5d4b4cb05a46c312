#include "frame/utility.hpp"

#include <cmath>
#include <cstring>

#include "elementwise/convert.hpp"
#include "frame/math.hpp"
#include "frame/prepare.hpp"
#include "frame/record.hpp"

namespace dsp {

template <class T>
int copy(signal_t<T> &dst, const signal_t<T> &src) {
    return util::subvec<T>(src, dst, 0, src.n);
}

template <class T>
int copy_at_most(signal_t<T> &dst, const signal_t<T> &src, int count) {
    return util::subvec<T>(src, dst, 0, count);
}

namespace util {

namespace {

// Where src's samples are once dst has been sized. When dst is src, an owned
// block is resized in place (its leading scalars kept), whereas storage the
// record did not own stays where it was and is read from the caller's array.
template <class T>
struct source {
    const T *data;
    bool owned;
    source(const signal_t<T> &src) : data(src.data), owned(src.alloc > 0) {}
    const T *after(const signal_t<T> &src, const signal_t<T> &dst) const {
        return (owned && &src == &dst) ? dst.data : data;
    }
};

// Sizes dst as a real record of src's points and spacing (through
// prepare_binary_result with a real view of src).
template <class T>
int size_real_result(const signal_t<T> &src, signal_t<T> &dst) {
    signal_t<T> view = src;
    view.cplx = 0;
    return prepare_binary_result<T>(view, view, dst);
}

}  // namespace

template <class T>
int subvec(const signal_t<T> &src, signal_t<T> &dst, int start, int count) {
    const int64_t n = src.n > 0 ? src.n : 0;
    const int64_t s = start < 0 ? 0 : (start > n ? n : start);
    int64_t c = count < 0 ? 0 : count;
    if (s + c > n) c = n - s;
    const source<T> before(src);
    const int32_t cplx = src.cplx;
    dst.cplx = cplx;
    dst.delta = src.delta;
    dst.n = int32_t(c);
    if (alloc<T>(dst) != 0) return -1;
    const T *from = before.after(src, dst);
    const int64_t width = cplx ? 2 : 1;
    if (c <= 0) return 0;
    if (dst.data == from) {
        if (s != 0) std::memmove(dst.data, from + s * width, size_t(c * width) * sizeof(T));
    } else {
        std::memmove(dst.data, from + s * width, size_t(c * width) * sizeof(T));
    }
    return 0;
}

template <class T>
int tof(const signal_t<T> &src, dspf_signal &dst) {
    if (static_cast<const void *>(&src) == static_cast<const void *>(&dst)) return -1;
    const T *from = src.data;  // dst is another record
    dst.delta = float(src.delta);
    dst.cplx = src.cplx;
    dst.n = src.n;
    if (alloc<float>(dst) != 0) return -1;
    const int64_t count = scalar_count<float>(dst);
    if constexpr (single<T>) {
        if (count > 0 && dst.data != from)
            std::memmove(dst.data, from, size_t(count) * sizeof(float));
    } else {
        // Forward: a float written at i never overtakes the double read at i.
        for (int64_t i = 0; i < count; ++i) dst.data[i] = float(from[i]);
    }
    return 0;
}

// A real record of one value per source point (magnitude or squared
// magnitude), sized like a binary result of the source with itself.
template <class T, class Cplx, class Real>
int real_per_point(const signal_t<T> &src, signal_t<T> &dst, Cplx of_point, Real of_value) {
    const int32_t cplx = src.cplx;
    const source<T> from(src);
    if (size_real_result<T>(src, dst) != 0) return -1;
    const T *x = from.after(src, dst);
    T *y = dst.data;
    const int64_t n = dst.n;
    if (cplx) {
        for (int64_t i = 0; i < n; ++i) y[i] = of_point(x[2 * i], x[2 * i + 1]);
    } else {
        for (int64_t i = 0; i < n; ++i) y[i] = of_value(x[i]);
    }
    return 0;
}

template <class T>
int mag(const signal_t<T> &src, signal_t<T> &dst) {
    return real_per_point<T>(
        src, dst, [](T re, T im) { return rt::hypot(re, im); }, [](T v) { return std::fabs(v); });
}

template <class T>
int magsq(const signal_t<T> &src, signal_t<T> &dst) {
    return real_per_point<T>(src, dst, clamped_magsq<T>, clamped_square<T>);
}

template <class T>
int sqrt(const signal_t<T> &src, signal_t<T> &dst) {
    constexpr T L = precision<T>::large;
    const source<T> from(src);
    if (prepare_binary_result<T>(src, src, dst) != 0) return -1;
    const T *x = from.after(src, dst);
    T *y = dst.data;
    const int64_t n = dst.n;
    if (!dst.cplx) {
        for (int64_t i = 0; i < n; ++i) y[i] = x[i] < T(0) ? T(0) : rt::sqrt(x[i]);
        return 0;
    }
    for (int64_t i = 0; i < n; ++i) {
        const T re = x[2 * i], im = x[2 * i + 1];
        const T m = (re > L || re < -L || im > L || im < -L) ? L : rt::sqrt(re * re + im * im);
        const T r = rt::sqrt(m);
        if (r <= T(0)) {
            y[2 * i] = T(0);
            y[2 * i + 1] = T(0);
        } else {
            const T h = rt::atan2(im, re) * T(0.5);
            y[2 * i] = r * rt::cos(h);
            y[2 * i + 1] = r * rt::sin(h);
        }
    }
    return 0;
}

}  // namespace util

#define DSP_INSTANTIATE(T)                                                          \
    template int copy<T>(signal_t<T> &, const signal_t<T> &);                       \
    template int copy_at_most<T>(signal_t<T> &, const signal_t<T> &, int);          \
    template int util::subvec<T>(const signal_t<T> &, signal_t<T> &, int, int);     \
    template int util::tof<T>(const signal_t<T> &, dspf_signal &);                  \
    template int util::mag<T>(const signal_t<T> &, signal_t<T> &);                  \
    template int util::magsq<T>(const signal_t<T> &, signal_t<T> &);                \
    template int util::sqrt<T>(const signal_t<T> &, signal_t<T> &);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
