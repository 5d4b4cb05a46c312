#include "elementwise/rearrange.hpp"

#include <cstdlib>

#include "frame/record.hpp"

namespace dsp {

template <class T>
int zpad(signal_t<T> &x, int m) {
    const int32_t n0 = x.n > 0 ? x.n : 0;
    if (m <= n0) return 0;
    x.n = m;
    if (realloc<T>(x, n0, x.cplx) != 0) return -1;
    const int64_t w = x.cplx ? 2 : 1;
    for (int64_t i = n0 * w; i < int64_t(m) * w; ++i) x.data[i] = T(0);
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

#define DSP_INSTANTIATE(T)                    \
    template int zpad<T>(signal_t<T> &, int); \
    template int sort<T>(signal_t<T> &);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
