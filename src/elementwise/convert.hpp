// Representation conversions of one record in place: complex to real,
// real to complex, rectangular and polar forms.
#pragma once

#include <cmath>

#include "frame/traits.hpp"

namespace dsp {

template <class T>
int real(signal_t<T> &x);
template <class T>
int imag(signal_t<T> &x);
template <class T>
int rtoc(signal_t<T> &x);
template <class T>
int rtop(signal_t<T> &x);
template <class T>
int ptor(signal_t<T> &x);
template <class T>
int mag(signal_t<T> &x);
template <class T>
int magsq(signal_t<T> &x);
template <class T>
int phase(signal_t<T> &x);
template <class T>
int conj(signal_t<T> &x);
template <class T>
int timesi(signal_t<T> &x);

// Squared magnitude of one value or point, L when a part lies outside
// [-L, L] (never overflows; NaN passes through unless the other part is
// out of range). Written as selects in which the square is also part of the
// condition, so that it is computed unconditionally and loops over these
// vectorise even with trapping math.
template <class T>
inline T clamped_square(T x) {
    constexpr T L = precision<T>::large;
    const T s = x * x;
    return ((std::fabs(x) <= L) | (s != s)) ? s : L;
}
template <class T>
inline T clamped_magsq(T re, T im) {
    constexpr T L = precision<T>::large;
    const T s = im * im + re * re;
    // Flags as ints, combined without branches so that the loops vectorise.
    const int in = int(std::fabs(re) <= L) & int(std::fabs(im) <= L);
    const int out = int(std::fabs(re) > L) | int(std::fabs(im) > L);
    return (in | (int(s != s) & (out ^ 1))) ? s : L;  // s is NaN only for a NaN part
}

}  // namespace dsp
