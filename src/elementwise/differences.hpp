// Differences, integration, level crossings, phase unwrapping and the
// reconstruction of a full conjugate-symmetric spectrum, in place.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// Edge selection flags of edge().
enum : int {
    EDGE_RISING = 1,
    EDGE_FALLING = 2,
};

// Running sum times delta (complex: both parts separately).
template <class T>
int integ(signal_t<T> &x);
// Backward difference over delta (times L when delta is exactly 0); the
// first output is x[0] / delta.
template <class T>
int differ(signal_t<T> &x);
// Derivative of the polynomial whose coefficient of x^i is point i; n - 1
// points remain.
template <class T>
int pdiffer(signal_t<T> &x);
// Replaces a real record by the times (delta units from sample 0) at which
// it crosses `level` in the selected directions; delta becomes 1.
template <class T>
int edge(signal_t<T> &x, int flags, T level);
// Unwraps a real phase record against the previous output.
template <class T>
int unwrap(signal_t<T> &x);
// Unwraps a real phase record against the mean of up to w previous outputs
// (w = 0: every sample into [-pi, pi] on its own; w = 1: unwrap).
template <class T>
int unwrap_wnd(signal_t<T> &x, int w);
// Half spectrum of n points to the full spectrum of 2(n - 1) points.
template <class T>
int recon(signal_t<T> &x);
// Half spectrum of n points to the full spectrum of 2(n - 1) points (odd 0)
// or 2n - 1 points (odd nonzero): X[N - k] = conj X[k].
template <class T>
int orecon(signal_t<T> &x, int odd);

}  // namespace dsp
