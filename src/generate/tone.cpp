// Tone and ramp generators.
#include "generate/tone.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "elementwise/convert.hpp"
#include "frame/math.hpp"
#include "frame/record.hpp"

namespace dsp {

namespace {

// Writes cos (and, interleaved, sin when Both) of phase + w k for the n
// points of x, w = 2 pi freq delta. A rotation by w advances the oscillator
// from point to point; every 256 points it is re-anchored at the exact phase,
// which bounds the drift of the recurrence.
template <class T, bool Both>
void oscillate(signal_t<T> &x, T freq, T phase) {
    constexpr int64_t block = 256;
    const T w = (x.delta + x.delta) * precision<T>::pi * freq;
    const T cw = rt::cos(w), sw = rt::sin(w);
    const int64_t n = x.n;
    T *d = x.data;
    for (int64_t k = 0; k < n; k += block) {
        T p = phase + w * T(k);
        if constexpr (single<T>) {
            // The single family reduces the block-start phase modulo 2 pi
            // in double; the double family uses it as it is.
            p = T(std::fmod(double(p), 6.283185307179586));
        }
        T c = rt::cos(p), s = rt::sin(p);
        const int64_t end = std::min(n, k + block);
        for (int64_t i = k; i < end; ++i) {
            if constexpr (Both) {
                d[2 * i] = c;
                d[2 * i + 1] = s;
            } else {
                d[i] = c;
            }
            const T next = cw * c - sw * s;
            s = sw * c + cw * s;
            c = next;
        }
    }
}

}  // namespace

template <class T>
int tone_cos(signal_t<T> &x, T freq, T phase) {
    if (alloc<T>(x) != 0) return -1;
    oscillate<T, false>(x, freq, phase);
    if (!x.cplx) return 0;
    // n reals written from the start of the storage: widen them in place
    // (also when n < 1, which leaves an empty complex record).
    x.cplx = 0;
    return rtoc<T>(x);
}

template <class T>
int tone_cexp(signal_t<T> &x, T freq, T phase) {
    if (!x.cplx) return tone_cos<T>(x, freq, phase);
    if (alloc<T>(x) != 0) return -1;
    oscillate<T, true>(x, freq, phase);
    return 0;
}

template <class T>
int ramp(signal_t<T> &x, T slope, T start) {
    if (alloc<T>(x) != 0) return -1;
    const T step = slope * x.delta;
    T v = start;
    T *d = x.data;
    for (int64_t k = 0; k < x.n; ++k, v += step) {
        if (x.cplx) {
            d[2 * k] = v;
            d[2 * k + 1] = T(0);
        } else {
            d[k] = v;
        }
    }
    return 0;
}

#define DSP_INSTANTIATE(T)                          \
    template int tone_cos<T>(signal_t<T> &, T, T);  \
    template int tone_cexp<T>(signal_t<T> &, T, T); \
    template int ramp<T>(signal_t<T> &, T, T);
DSP_INSTANTIATE(float)
DSP_INSTANTIATE(double)
#undef DSP_INSTANTIATE

}  // namespace dsp
