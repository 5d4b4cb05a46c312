// The DFT of lengths whose prime factors are 2, 3, 5 and 7 only, by a
// mixed-radix transform (the other lengths that are not powers of two take
// the chirp-z transform).
#pragma once

#include <cstdint>

#include "frame/traits.hpp"

namespace dsp {

// True when n >= 2 has no prime factor beyond 7.
bool smooth(int64_t n);

// The DFT of the n points of x (n smooth and not a power of two) in place,
// with the library's convention (forward: kernel e^(-2 pi i k m / n) and
// 1/n; inverse: e^(+2 pi i k m / n), unscaled). A real record is widened
// first. delta is left as found. -1 when storage or tables cannot be had.
template <class T>
int mixed_dft(signal_t<T> &x, int inverse);

// Releases the plan, its tables and scratch (part of the DFT's release step).
template <class T>
void release_mixed();

}  // namespace dsp
