#include "filter/decimate.hpp"

#include <cstdint>

#include "frame/prepare.hpp"
#include "frame/record.hpp"

namespace dsp {

template <class T>
int deci(const signal_t<T> &x, signal_t<T> &y, int factor, signal_t<T> *phase) {
    if (x.n < 0 || same_storage<T>(phase, &x) || same_storage<T>(phase, &y)) return -1;
    const int64_t D = factor < 1 ? 1 : factor;
    // Taken before sizing: y may be x wrapping a caller's array, which then
    // stays where it is while the record gets storage of its own.
    const T *src = x.data;
    const int64_t n = x.n;
    const int s = x.cplx ? 2 : 1;
    signal_t<T> *r = &y, *ph = phase;
    if (prepare_result<T>(x, &r, nullptr, &ph, 1, 0) != 0) return -1;
    r->delta = x.delta * T(D);
    int64_t o = 0;
    if (ph) {
        const double v = double(ph->data[0]) + 0.5;  // truncated; 0 when negative
        o = v >= 1.0 ? (v < 9.0e15 ? int64_t(v) : int64_t(9.0e15)) : 0;
    }
    int64_t count = 0, next = o - n;
    if (o < n) {
        count = (n + D - o - 1) / D;
        next = D - 1 - (n + D - o - 1) % D;
    }
    // Forward: output point i is read from point o + i D >= i.
    T *d = r->data;
    for (int64_t i = 0; i < count; ++i)
        for (int p = 0; p < s; ++p) d[s * i + p] = src[s * (o + i * D) + p];
    r->n = int32_t(count);
    if (ph) ph->data[0] = T(next);
    return finish_result<T>(*r);
}

template <class T>
int hwfilt(const signal_t<T> &x, signal_t<T> &y, const void *reserved, signal_t<T> *state) {
    if (reserved) return -1;
    if (x.n < 0 || same_storage<T>(state, &x) || same_storage<T>(state, &y)) return -1;
    const T *src = x.data;  // before sizing, as in deci
    const int64_t n = x.n;
    const int s = x.cplx ? 2 : 1;
    signal_t<T> *r = &y, *st = state;
    if (prepare_result<T>(x, &r, nullptr, &st, 12, PREP_INTERNAL_STATE) != 0) return -1;
    T *out = r->data, *delays = st->data;
    // Real and imaginary parts run separately through their own delays:
    // stage g keeps w[k-1], w[k-2], w[k-3] in state points 3g, 3g+1, 3g+2.
    for (int p = 0; p < s; ++p) {
        T z[4][3];
        for (int g = 0; g < 4; ++g)
            for (int t = 0; t < 3; ++t) z[g][t] = delays[s * (3 * g + t) + p];
        for (int64_t k = 0; k < n; ++k) {
            T v = src[s * k + p];
            for (int g = 0; g < 4; ++g) {
                const T w = T(double(v) - 0.5 * double(z[g][1]));
                v = T(0.25 * double(w) + 0.5 * double(z[g][0]) + 0.5 * double(z[g][1]) +
                      0.25 * double(z[g][2]));
                z[g][2] = z[g][1];
                z[g][1] = z[g][0];
                z[g][0] = w;
            }
            out[s * k + p] = v;
        }
        for (int g = 0; g < 4; ++g)
            for (int t = 0; t < 3; ++t) delays[s * (3 * g + t) + p] = z[g][t];
    }
    return finish_result<T>(*r);
}

#define DSP_INSTANTIATE(T)                                                        \
    template int deci<T>(const signal_t<T> &, signal_t<T> &, int, signal_t<T> *); \
    template int hwfilt<T>(const signal_t<T> &, signal_t<T> &, const void *, signal_t<T> *);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
