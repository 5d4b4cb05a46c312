// Tone and ramp generators: fill a record whose n, cplx and delta the caller
// has set (frequencies and slopes in physical units, converted with delta).
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// cos(phase + 2 pi freq delta k), k = 0 .. n-1. A complex record receives
// the values as real parts with zero imaginary parts (written as reals, then
// widened in place).
template <class T>
int tone_cos(signal_t<T> &x, T freq, T phase);
// exp(i (phase + 2 pi freq delta k)) on a complex record; tone_cos on a real
// one.
template <class T>
int tone_cexp(signal_t<T> &x, T freq, T phase);
// start + k slope delta, accumulated by repeated addition; zero imaginary
// parts on a complex record.
template <class T>
int ramp(signal_t<T> &x, T slope, T start);

}  // namespace dsp
