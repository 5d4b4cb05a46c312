// Window metrics: the peak of the normalised window (its scale) and the
// equivalent noise bandwidth in bins.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

template <class T>
int window_scale(T *out, int kind, int flags, int n);
template <class T>
int window2_scale(T *out, int kind, int flags, int n, T p);
template <class T>
int window_enbw(T *out, int kind, int n);
template <class T>
int window2_enbw(T *out, int kind, int n, T p);

}  // namespace dsp
