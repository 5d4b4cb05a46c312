// The record operations the window module builds on: mean and rms of a
// generated window, the point-wise product with a window, and the rotation
// that moves the window centre to index 0.
#pragma once

#include "frame/traits.hpp"

namespace dsp::win {

// Mean and rms of a real window record (statistics module, one-point result).
template <class T>
int mean(const signal_t<T> &w, T &out);
template <class T>
int rms(const signal_t<T> &w, T &out);
// x = x * w point by point (a complex x has both parts multiplied).
template <class T>
int multiply(signal_t<T> &x, const signal_t<T> &w);
// Rotates left by n/2 points (swap_halves2).
template <class T>
int rotate(signal_t<T> &x);

}  // namespace dsp::win
