// Arithmetic and math functions applied to every sample of one record in
// place. Results that would overflow or leave the domain are replaced by
// fixed substitutes (the large value L, the logarithm of the smallest normal
// number F, or 0), so the output stays finite for finite input.
//
// The names shadow the runtime functions inside namespace dsp: always call
// those as std:: or rt::.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

template <class T>
int neg(signal_t<T> &x);
// d added to real samples, or to the real part of complex points.
template <class T>
int offset(signal_t<T> &x, T d);
template <class T>
int scale(signal_t<T> &x, T a);
// Multiplies by a + ib; a real record is widened to complex first.
template <class T>
int cscale(signal_t<T> &x, T a, T b);
template <class T>
int recip(signal_t<T> &x);
template <class T>
int sqrt(signal_t<T> &x);
template <class T>
int square(signal_t<T> &x);
template <class T>
int exp(signal_t<T> &x);
template <class T>
int exp10(signal_t<T> &x);
template <class T>
int log(signal_t<T> &x);
template <class T>
int log10(signal_t<T> &x);
// k log10 x (k = 10 for power, 20 for amplitude).
template <class T>
int db(signal_t<T> &x, T k);
// Real records only (-1 for complex, record untouched).
template <class T>
int sinh(signal_t<T> &x);
template <class T>
int cosh(signal_t<T> &x);
template <class T>
int asin(signal_t<T> &x);
template <class T>
int acos(signal_t<T> &x);
template <class T>
int besi0(signal_t<T> &x);  // single precision only
template <class T>
int besy0(signal_t<T> &x);
template <class T>
int besy1(signal_t<T> &x);
// Clips every scalar to the range spanned by a and b; *clipped (if not
// null) receives 1 when a scalar lay outside, else 0.
template <class T>
int limit(signal_t<T> &x, T a, T b, int *clipped);
// Adds amp cos(2 pi f delta i + phase); flags bit 0 on a complex record
// adds the complex exponential instead.
template <class T>
int addcos(signal_t<T> &x, int flags, T freq, T amp, T phase);

}  // namespace dsp
