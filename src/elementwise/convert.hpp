// Representation conversions of one record in place: complex to real,
// real to complex, rectangular and polar forms.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

template <class T> int real(signal_t<T> &x);
template <class T> int imag(signal_t<T> &x);
template <class T> int rtoc(signal_t<T> &x);
template <class T> int rtop(signal_t<T> &x);
template <class T> int ptor(signal_t<T> &x);
template <class T> int mag(signal_t<T> &x);
template <class T> int magsq(signal_t<T> &x);
template <class T> int phase(signal_t<T> &x);
template <class T> int conj(signal_t<T> &x);
template <class T> int timesi(signal_t<T> &x);

// Squared magnitude of one value or point, L when a part lies outside
// [-L, L] (never overflows; NaN passes through).
template <class T>
inline T clamped_square(T x) {
    constexpr T L = precision<T>::large;
    return (x > L || x < -L) ? L : x * x;
}
template <class T>
inline T clamped_magsq(T re, T im) {
    constexpr T L = precision<T>::large;
    return (re > L || re < -L || im > L || im < -L) ? L : im * im + re * re;
}

}  // namespace dsp
