// Decimation with a carried phase, and the four-stage half-band low-pass
// run before a decimation by two.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// Keeps every factor-th point of x (factor below 1 counts as 1), starting at
// the index held in `phase` (one point, rounded; null or negative: 0), which
// then holds the index of the next kept point in the following block. y's
// delta is x's times the factor; y may be x. -1 when the phase record shares
// storage with x or y.
template <class T>
int deci(const signal_t<T> &x, signal_t<T> &y, int factor, signal_t<T> *phase);

// Four cascaded stages H(z) = (0.25 + 0.5 z^-1 + 0.5 z^-2 + 0.25 z^-3) /
// (1 + 0.5 z^-2), each computed in double precision and rounded to T after
// its internal value and its output. `state` holds the three delays of each
// stage (12 points, of x's kind); null lends the library's internal state
// record, which then carries the delays from call to call. `reserved` must be
// null (else -1, nothing touched). y may be x. -1 when the state shares
// storage with x or y.
template <class T>
int hwfilt(const signal_t<T> &x, signal_t<T> &y, const void *reserved, signal_t<T> *state);

}  // namespace dsp
