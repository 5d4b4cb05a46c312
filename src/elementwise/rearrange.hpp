// Sequence rearrangement of one record in place.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// Grows the record to m points; the new points are zero. m <= n: nothing.
template <class T> int zpad(signal_t<T> &x, int m);
// Sorts ascending: reals by value, complex points by squared magnitude, then
// real part, then imaginary part.
template <class T> int sort(signal_t<T> &x);

}  // namespace dsp
