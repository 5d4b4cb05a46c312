// Sequence rearrangement of one record in place. Points are the unit: a
// complex point (two scalars) always moves as a whole.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// Length-change flags of zpad2 and unzpad.
enum : int {
    ZPAD_SCALE_MASK = 0x3,  // 0: times m/n, 1: times sqrt(m/n), 2: none, 3: invalid
    ZPAD_SCALE_RATIO = 0x0,
    ZPAD_SCALE_SQRT = 0x1,
    ZPAD_SCALE_NONE = 0x2,
    ZPAD_PLACE_MASK = 0x700,  // placement of the kept points
    ZPAD_PLACE_END = 0x000,   // pad after / keep the first m points
    ZPAD_PLACE_CENTRE = 0x100,
    ZPAD_PLACE_START = 0x200,  // pad before / keep the last m points
    ZPAD_PLACE_SPLIT = 0x300,  // first half at the start, second half at the end
};

// Reverses the order of the points.
template <class T>
int rev(signal_t<T> &x);
// Drops the first k points: util::subvec(x, x, k, n - k).
template <class T>
int shift(signal_t<T> &x, int k);
// Rotates left by (n + 1) / 2 points: the zero-frequency point moves to n / 2.
template <class T>
int swap_halves(signal_t<T> &x);
// Rotates left by n / 2 points: the inverse of swap_halves.
template <class T>
int swap_halves2(signal_t<T> &x);
// Sets the n points to zero, giving the record storage of its own if needed.
template <class T>
int zero(signal_t<T> &x);
// Grows the record to m points; the new points are zero. m <= n: nothing.
template <class T>
int zpad(signal_t<T> &x, int m);
// Grows the record to m points with placement and scaling (flags above).
template <class T>
int zpad2(signal_t<T> &x, int m, int flags);
// Shrinks the record to m points with placement and scaling (flags above).
template <class T>
int unzpad(signal_t<T> &x, int m, int flags);
// Inserts a zero point after every point: n doubles, delta halves.
template <class T>
int zinter(signal_t<T> &x);
// Sorts ascending: reals by value, complex points by squared magnitude, then
// real part, then imaginary part.
template <class T>
int sort(signal_t<T> &x);

}  // namespace dsp
