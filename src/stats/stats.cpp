#include "stats/stats.hpp"

#include <cstdint>

#include "elementwise/convert.hpp"
#include "frame/math.hpp"
#include "frame/record.hpp"
#include "stats/accumulate.hpp"

namespace dsp {

namespace {

// Writes the one-point result: n = 1 and the given kind, sized with alloc.
// Statistics are computed before this, so out may be the input record.
template <class T>
int put(signal_t<T> &out, bool cplx, T re, T im = T(0)) {
    out.n = 1;
    out.cplx = cplx ? 1 : 0;
    if (alloc<T>(out) != 0) return -1;
    out.data[0] = re;
    if (cplx) out.data[1] = im;
    return 0;
}

// Sum of the samples (per part for complex records), block accumulation.
template <class T>
void sample_sum(const signal_t<T> &in, T *total) {
    const T *x = in.data;
    const int64_t n = in.n > 0 ? in.n : 0;
    auto value = [x](int64_t i) { return x[i]; };
    if (in.cplx)
        acc::block_sum<2, T>(2 * n, value, total);
    else
        acc::block_sum<1, T>(n, value, total);
}

// Sum of squared magnitudes; a sample with a part outside [-L, L] adds L.
template <class T>
T square_sum(const signal_t<T> &in) {
    const T *x = in.data;
    const int64_t n = in.n > 0 ? in.n : 0;
    T total;
    if (in.cplx)
        acc::block_sum<1, T>(
            n, [x](int64_t i) { return clamped_magsq(x[2 * i], x[2 * i + 1]); }, &total);
    else
        acc::block_sum<1, T>(
            n, [x](int64_t i) { return clamped_square(x[i]); }, &total);
    return total;
}

}  // namespace

template <class T>
int sum(const signal_t<T> &in, signal_t<T> &out) {
    T total[2] = {T(0), T(0)};
    if (in.n > 0) sample_sum<T>(in, total);
    return put<T>(out, in.cplx, total[0], total[1]);
}

template <class T>
int mean(const signal_t<T> &in, signal_t<T> &out) {
    T total[2] = {T(0), T(0)};
    if (in.n > 0) {
        sample_sum<T>(in, total);
        total[0] /= T(in.n);
        total[1] /= T(in.n);
    }
    return put<T>(out, in.cplx, total[0], total[1]);
}

template <class T>
int magsq_sum(const signal_t<T> &in, signal_t<T> &out) {
    return put<T>(out, false, in.n > 0 ? square_sum<T>(in) : T(0));
}

template <class T>
int rms(const signal_t<T> &in, signal_t<T> &out) {
    return put<T>(out, false, in.n > 0 ? rt::sqrt<T>(square_sum<T>(in) / T(in.n)) : T(0));
}

#define DSP_STAT(T, name) template int name<T>(const signal_t<T> &, signal_t<T> &);
#define DSP_INSTANTIATE(T) \
    DSP_STAT(T, sum)       \
    DSP_STAT(T, mean)      \
    DSP_STAT(T, magsq_sum) \
    DSP_STAT(T, rms)
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE
#undef DSP_STAT

}  // namespace dsp
