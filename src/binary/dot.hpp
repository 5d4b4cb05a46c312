// Dot product of two records into a one-point result record.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// r = sum of a[i] * b[i] (unconjugated complex products), one point, complex
// if either input is; r may be a or b. Unequal lengths give -1.
template <class T> int dot(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r);

}  // namespace dsp
