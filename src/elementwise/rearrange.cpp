#include "elementwise/rearrange.hpp"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "frame/math.hpp"
#include "frame/record.hpp"
#include "frame/utility.hpp"

namespace dsp {

namespace {

// Point helpers over a block of points of w scalars each (1 real, 2 complex).

template <class T>
void swap_points(T *d, int64_t w, int64_t i, int64_t j) {
    for (int64_t k = 0; k < w; ++k) std::swap(d[i * w + k], d[j * w + k]);
}

template <class T>
void copy_point(T *d, int64_t w, int64_t to, int64_t from) {
    for (int64_t k = 0; k < w; ++k) d[to * w + k] = d[from * w + k];
}

// Moves count points from point `from` to point `to`; the ranges may overlap.
template <class T>
void move_points(T *d, int64_t w, int64_t to, int64_t from, int64_t count) {
    if (count > 0 && to != from)
        std::memmove(d + to * w, d + from * w, size_t(count * w) * sizeof(T));
}

template <class T>
void zero_points(T *d, int64_t w, int64_t from, int64_t count) {
    for (int64_t i = from * w; i < (from + count) * w; ++i) d[i] = T(0);
}

template <class T>
void scale_points(T *d, int64_t w, int64_t from, int64_t count, T f) {
    for (int64_t i = from * w; i < (from + count) * w; ++i) d[i] *= f;
}

// Offset of a short block centred in a long one: the middle point of the
// short block (index short / 2) lands on index long / 2.
inline int64_t centre_offset(int64_t longer, int64_t shorter) {
    return (longer - shorter) / 2 + (longer % 2 == 0 ? shorter % 2 : 0);
}

// Scale factor of a length change from n0 to m points. Returns false when the
// samples keep their values (no scaling asked, or one of the lengths empty).
template <class T>
bool length_scale(int mode, int64_t n0, int64_t m, T &f) {
    if (mode == ZPAD_SCALE_NONE || n0 <= 0 || m <= 0) return false;
    const T ratio = T(m) / T(n0);
    f = mode == ZPAD_SCALE_SQRT ? rt::sqrt(ratio) : ratio;
    return true;
}

inline bool valid_length_flags(int flags) {
    return (flags & ZPAD_SCALE_MASK) != 3 && (flags & ZPAD_PLACE_MASK) <= ZPAD_PLACE_SPLIT;
}

}  // namespace

template <class T>
int rev(signal_t<T> &x) {
    const int64_t n = x.n, w = x.cplx ? 2 : 1;
    for (int64_t i = 0; i < n / 2; ++i) swap_points(x.data, w, i, n - 1 - i);
    return 0;
}

template <class T>
int shift(signal_t<T> &x, int k) {
    // n - k in 64 bits, then clamped to the int range (subvec clamps further).
    int64_t count = int64_t(x.n) - k;
    if (count > INT32_MAX) count = INT32_MAX;
    if (count < INT32_MIN) count = INT32_MIN;
    return util::subvec<T>(x, x, k, int(count));
}

template <class T>
int swap_halves(signal_t<T> &x) {
    const int64_t n = x.n, w = x.cplx ? 2 : 1;
    if (n < 1) return 0;
    T *d = x.data;
    const int64_t m = n / 2;
    if (n % 2 == 0) {
        for (int64_t i = 0; i < m; ++i) swap_points(d, w, i, i + m);
        return 0;
    }
    // Odd: old points m+1..2m, then old 0..m.
    T saved[2] = {d[m * w], d[m * w + w - 1]};
    for (int64_t i = 0; i < m; ++i) {
        copy_point(d, w, m + i, i);
        copy_point(d, w, i, m + i + 1);
    }
    for (int64_t k = 0; k < w; ++k) d[2 * m * w + k] = saved[k];
    return 0;
}

template <class T>
int swap_halves2(signal_t<T> &x) {
    const int64_t n = x.n, w = x.cplx ? 2 : 1;
    if (n % 2 == 0) return swap_halves<T>(x);  // even: the same exchange of halves
    if (n < 1) return 0;
    T *d = x.data;
    const int64_t m = n / 2;
    // Odd: old points m..2m, then old 0..m-1.
    T saved[2] = {d[(n - 1) * w], d[(n - 1) * w + w - 1]};
    for (int64_t i = 0; i < m; ++i) {
        copy_point(d, w, n - 1 - i, m - 1 - i);
        copy_point(d, w, m - 1 - i, n - 2 - i);
    }
    for (int64_t k = 0; k < w; ++k) d[m * w + k] = saved[k];
    return 0;
}

template <class T>
int zero(signal_t<T> &x) {
    if (x.n < 1) return 0;
    // Nothing needs to survive: a previous length of 0 copies nothing, and
    // storage the record does not own is replaced rather than written.
    if (realloc<T>(x, 0, x.cplx) != 0) return -1;
    const int64_t count = scalar_count<T>(x);
    for (int64_t i = 0; i < count; ++i) x.data[i] = T(0);
    return 0;
}

template <class T>
int zpad(signal_t<T> &x, int m) {
    const int32_t n0 = x.n > 0 ? x.n : 0;
    if (m <= n0) return 0;
    x.n = m;
    if (realloc<T>(x, n0, x.cplx) != 0) return -1;
    const int64_t w = x.cplx ? 2 : 1;
    zero_points(x.data, w, n0, int64_t(m) - n0);
    return 0;
}

template <class T>
int zpad2(signal_t<T> &x, int m, int flags) {
    const int32_t n0 = x.n > 0 ? x.n : 0;
    if (m <= n0) return 0;
    x.n = m;
    if (realloc<T>(x, n0, x.cplx) != 0) return -1;
    const int64_t w = x.cplx ? 2 : 1;
    T *d = x.data;
    if (!valid_length_flags(flags)) {
        // The record keeps its new length; the added points are cleared.
        zero_points(d, w, n0, int64_t(m) - n0);
        return -1;
    }
    // The first `head` points stay; the other n0 - head points move to `to`.
    int64_t head = 0, to = m;
    switch (flags & ZPAD_PLACE_MASK) {
        case ZPAD_PLACE_END:
            head = n0;
            break;
        case ZPAD_PLACE_CENTRE:
            to = centre_offset(m, n0);
            break;
        case ZPAD_PLACE_START:
            to = int64_t(m) - n0;
            break;
        default:
            head = (int64_t(n0) + 1) / 2, to = int64_t(m) - n0 / 2;
            break;
    }
    const int64_t tail = n0 - head;
    move_points(d, w, to, head, tail);
    zero_points(d, w, head, to - head);
    zero_points(d, w, to + tail, m - to - tail);
    T f = T(1);
    if (length_scale<T>(flags & ZPAD_SCALE_MASK, n0, m, f)) {
        scale_points(d, w, 0, head, f);
        scale_points(d, w, to, tail, f);
    }
    return 0;
}

template <class T>
int unzpad(signal_t<T> &x, int m, int flags) {
    const int32_t n0 = x.n > 0 ? x.n : 0;
    if (m >= n0) return 0;
    if (!valid_length_flags(flags)) return -1;
    const int64_t w = x.cplx ? 2 : 1;
    const int64_t keep = m > 0 ? m : 0;
    // The first `head` points stay; `tail` points from `from` follow them.
    int64_t head = 0, tail = keep, from = 0;
    switch (flags & ZPAD_PLACE_MASK) {
        case ZPAD_PLACE_END:
            head = keep, tail = 0;
            break;
        case ZPAD_PLACE_CENTRE:
            from = centre_offset(n0, keep);
            break;
        case ZPAD_PLACE_START:
            from = n0 - keep;
            break;
        default:
            head = (keep + 1) / 2, tail = keep / 2, from = n0 - keep / 2;
            break;
    }
    T *d = x.data;
    move_points(d, w, head, from, tail);
    x.n = m;
    T f = T(1);
    if (length_scale<T>(flags & ZPAD_SCALE_MASK, n0, m, f)) scale_points(d, w, 0, keep, f);
    return 0;
}

template <class T>
int zinter(signal_t<T> &x) {
    const int64_t n0 = x.n;
    if (2 * n0 > INT32_MAX || 2 * n0 < INT32_MIN) return -1;
    x.n = int32_t(2 * n0);
    x.delta = x.delta * T(0.5);
    if (realloc<T>(x, int(n0), x.cplx) != 0) return -1;
    const int64_t w = x.cplx ? 2 : 1;
    T *d = x.data;
    // From the last point down, so that no point is overwritten unread.
    for (int64_t i = n0 - 1; i >= 0; --i) {
        zero_points(d, w, 2 * i + 1, 1);
        copy_point(d, w, 2 * i, i);
    }
    return 0;
}

namespace {

template <class T>
int compare_real(const void *pa, const void *pb) {
    const T a = *static_cast<const T *>(pa), b = *static_cast<const T *>(pb);
    return a > b ? 1 : (a < b ? -1 : 0);
}

// A component's share of the sort key: its square, or L^2 beyond [-L, L].
template <class T>
T key_square(T v) {
    constexpr T L = precision<T>::large;
    return (v > L || v < -L) ? precision<T>::large_sq : v * v;
}

template <class T>
int compare_complex(const void *pa, const void *pb) {
    const T *a = static_cast<const T *>(pa), *b = static_cast<const T *>(pb);
    const T ma = key_square(a[0]) + key_square(a[1]);
    const T mb = key_square(b[0]) + key_square(b[1]);
    if (ma != mb) return ma > mb ? 1 : (ma < mb ? -1 : 0);
    if (a[0] != b[0]) return a[0] > b[0] ? 1 : (a[0] < b[0] ? -1 : 0);
    return a[1] > b[1] ? 1 : (a[1] < b[1] ? -1 : 0);
}

}  // namespace

template <class T>
int sort(signal_t<T> &x) {
    if (x.n < 1) return 0;
    if (x.cplx)
        std::qsort(x.data, size_t(x.n), 2 * sizeof(T), compare_complex<T>);
    else
        std::qsort(x.data, size_t(x.n), sizeof(T), compare_real<T>);
    return 0;
}

#define DSP_INSTANTIATE(T)                           \
    template int rev<T>(signal_t<T> &);              \
    template int shift<T>(signal_t<T> &, int);       \
    template int swap_halves<T>(signal_t<T> &);      \
    template int swap_halves2<T>(signal_t<T> &);     \
    template int zero<T>(signal_t<T> &);             \
    template int zpad<T>(signal_t<T> &, int);        \
    template int zpad2<T>(signal_t<T> &, int, int);  \
    template int unzpad<T>(signal_t<T> &, int, int); \
    template int zinter<T>(signal_t<T> &);           \
    template int sort<T>(signal_t<T> &);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
