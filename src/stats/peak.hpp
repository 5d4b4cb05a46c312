// Peak search with interpolation of the peak's value and position.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// Peak flag bits.
enum : int {
    PEAK_AT_INDEX = 0x1000,    // take the index argument instead of searching
    PEAK_MINIMUM = 0x2000,     // search the smallest sample
    PEAK_INTERP_MASK = 0x700,  // interpolation: one of the values below
    PEAK_PARABOLIC = 0x100,
    PEAK_GAUSSIAN = 0x200,
    PEAK_GAUSSIAN_CORRECTED = 0x300,
};

// out becomes {value, fractional position in samples} (real, 2 points; out
// may be in). Samples are values (real) or squared magnitudes (complex).
// -1 for invalid interpolation bits and when the Gaussian offset leaves
// -0.5 .. 1.5 (the clamped result is written all the same).
template <class T>
int peak(const signal_t<T> &in, signal_t<T> &out, int flags, int index);

}  // namespace dsp
