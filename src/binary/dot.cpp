#include "binary/dot.hpp"

#include <cstdint>

#include "frame/record.hpp"

namespace dsp {

template <class T>
int dot(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r) {
    if (a.n != b.n) return -1;
    const int64_t n = a.n > 0 ? a.n : 0;
    const bool ac = a.cplx != 0, bc = b.cplx != 0;
    const T *x = a.data, *y = b.data;
    // Accumulated in point order in the working precision.
    T sr = T(0), si = T(0);
    if (!ac && !bc) {
        for (int64_t i = 0; i < n; ++i) sr += x[i] * y[i];
    } else if (ac && bc) {
        for (int64_t i = 0; i < n; ++i) {
            sr += x[2 * i] * y[2 * i] - x[2 * i + 1] * y[2 * i + 1];
            si += x[2 * i + 1] * y[2 * i] + x[2 * i] * y[2 * i + 1];
        }
    } else {
        const T *c = ac ? x : y, *re = ac ? y : x;
        for (int64_t i = 0; i < n; ++i) {
            sr += c[2 * i] * re[i];
            si += c[2 * i + 1] * re[i];
        }
    }
    // The sum is complete before r is sized and written, so r may be a or b
    // (even one wrapping a caller's array, which sizing moves away from).
    const int32_t old_cplx = r.cplx;
    const bool shared = r.data == a.data || r.data == b.data;
    r.n = 1;
    r.cplx = (ac || bc) ? 1 : 0;
    if ((shared ? realloc<T>(r, int(n), old_cplx) : alloc<T>(r)) != 0) return -1;
    r.data[0] = sr;
    if (r.cplx) r.data[1] = si;
    return 0;
}

template int dot<float>(const signal_t<float> &, const signal_t<float> &, signal_t<float> &);
template int dot<double>(const signal_t<double> &, const signal_t<double> &, signal_t<double> &);

}  // namespace dsp
