// Closed-form FIR design and the stored coefficient sets.
//
// Frequencies are in cycles per sample (the record's delta is not used). The
// coefficients of an n-point design sit at offsets m from the centre: for
// odd n the centre is index n/2 and m = k - (n-1)/2 is an integer, for even
// n the offsets are +-0.5, +-1.5, ... . Every kind except 5 computes one
// half and mirrors it; the antisymmetric kinds 6 and 8 write +v on the right,
// -v on the left and 0 at an odd-length centre.
#pragma once

#include <cstdint>

#include "frame/traits.hpp"

namespace dsp {

// Design kinds of fir_design (a and b as listed; "normalised" designs are
// scaled to unit sum).
enum : int {
    FIR_BANDPASS = 0,        // a centre, b bandwidth
    FIR_BANDSTOP = 1,        // a centre, b bandwidth; odd n only
    FIR_HIGHPASS = 2,        // a cut-off; odd n only
    FIR_LOWPASS = 3,         // a cut-off
    FIR_SINH_KERNEL = 4,     // a shape (0: default per length); normalised
    FIR_DELAYED = 5,         // a cut-off, b delay in samples; normalised
    FIR_DIFFERENTIATOR = 6,  // a cut-off; antisymmetric
    FIR_GAUSSIAN = 7,        // a bandwidth; normalised
    FIR_QUADRATURE = 8,      // a cut-off; antisymmetric
    FIR_KAISER_KERNEL = 9,   // a shape (0: default per length); normalised
    FIR_RAMP = 10,           // a cut-off; |f|-weighted low-pass
};

// Fills h (its n, and cplx, set by the caller) with the n coefficients of the
// design `kind`. The design is real: a complex h is cleared to real for the
// design and widened afterwards (zero imaginary parts). -1 for storage
// failure, a kind outside 0..10 or an even n for kinds 1 and 2; h is then
// left real (cplx 0) whatever it was.
template <class T>
int fir_design(signal_t<T> &h, int kind, T a, T b);

// A stored coefficient set: `n` values in index order, or null for an
// unknown code.
template <class T>
struct fir_set {
    const T *values;
    int32_t n;
};

// The stored sets 100 (12 points), 101 (20 points) and 102 (5 points), held
// as the decimal values in the precision of the family.
template <class T>
fir_set<T> fir_stored_set(int code);

// h becomes the stored set `code` as it stands (n set from the code; real,
// or complex with zero imaginary parts if h was complex). -1 for an unknown
// code before h is touched, or for storage failure.
template <class T>
int fir_stored(signal_t<T> &h, int code);

}  // namespace dsp
