// Transforms built on the complex FFT: the real-input FFT and its inverse,
// the DFT of any length (chirp-z for lengths that are not powers of two),
// the real DFT of any length, the DCT, the Hilbert transform and the
// analytic signal. All work in place on one record with the library's
// convention: forward X[k] = (1/n) sum x[m] e^(-2 pi i k m / n), inverse
// unscaled with e^(+2 pi i k m / n), and delta = 1 / (delta * n) afterwards
// (L when delta is exactly 0).
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// Real record of n = 2^b points to its half spectrum X[0] .. X[n/2]
// (n/2 + 1 complex points). Complex input or n not a power of two: -1.
template <class T>
int rfft(signal_t<T> &x);
// Half spectrum of n points to the real signal of 2(n - 1) points.
template <class T>
int irfft(signal_t<T> &x);
// Complex DFT of any length in either direction (inverse != 0: inverse).
template <class T>
int dft(signal_t<T> &x, int inverse);
// Real record of any length to its half spectrum of n/2 + 1 points.
template <class T>
int rdft(signal_t<T> &x);
// Half spectrum to the real signal of 2(n - 1) (odd == 0) or 2n - 1 points.
template <class T>
int irdft(signal_t<T> &x, int odd);
// DCT-II of a real record (inverse != 0: its exact inverse, a DCT-III):
// C[k] = (2/n) w[k] sum x[m] cos(pi k (2m + 1) / (2n)), w[0] = sqrt(1/2),
// w[k] = 1 otherwise.
template <class T>
int dct(signal_t<T> &x, int inverse);
// Hilbert transform (positive frequencies times -i, negative times +i,
// DC and the Nyquist point removed); a real input stays real.
template <class T>
int hilbert(signal_t<T> &x);
// Analytic signal: negative frequencies removed, positive ones doubled.
template <class T>
int analytic(signal_t<T> &x);

// Release steps of dspf_free_internal. Harmless when nothing was built.
template <class T>
int release_dct_cache();
template <class T>
int release_dft_scratch();

// Spacing of the other domain after a transform of length n: 1 / (delta * n),
// or L when delta is exactly 0.
template <class T>
inline T transformed_spacing(T delta, T n) {
    return delta == T(0) ? precision<T>::large : T(1) / (delta * n);
}

}  // namespace dsp
