// The window module's use of the statistics, binary and rearrangement
// operations.
#include "window/ops.hpp"

#include "binary/binary.hpp"
#include "elementwise/rearrange.hpp"
#include "frame/record.hpp"
#include "stats/stats.hpp"

namespace dsp::win {

namespace {

// Runs a statistic into a one-point record and returns its value.
template <class T, class F>
int statistic(const signal_t<T> &w, T &out, F f) {
    signal_t<T> r;
    init<T>(r);
    const int status = f(w, r);
    if (status == 0) out = r.data[0];
    destroy<T>(r);
    return status == 0 ? 0 : -1;
}

}  // namespace

template <class T>
int mean(const signal_t<T> &w, T &out) {
    return statistic<T>(w, out,
                        [](const signal_t<T> &in, signal_t<T> &r) { return dsp::mean<T>(in, r); });
}

template <class T>
int rms(const signal_t<T> &w, T &out) {
    return statistic<T>(w, out,
                        [](const signal_t<T> &in, signal_t<T> &r) { return dsp::rms<T>(in, r); });
}

template <class T>
int multiply(signal_t<T> &x, const signal_t<T> &w) {
    return mul<T>(x, w, x);
}

template <class T>
int rotate(signal_t<T> &x) {
    return swap_halves2<T>(x);
}

#define DSP_INSTANTIATE(T)                                        \
    template int mean<T>(const signal_t<T> &, T &);               \
    template int rms<T>(const signal_t<T> &, T &);                \
    template int multiply<T>(signal_t<T> &, const signal_t<T> &); \
    template int rotate<T>(signal_t<T> &);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp::win
