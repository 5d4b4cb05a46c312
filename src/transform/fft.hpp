// In-place complex FFT of one record, the bit-reversal permutation and the
// process-wide tables they share.
#pragma once

#include <cstdint>

#include "frame/traits.hpp"

namespace dsp {

// Complex FFT in place, natural order in and out. inverse == 0: forward,
// X[k] = (1/n) sum x[m] e^(-2 pi i k m / n); otherwise the unscaled inverse
// with e^(+2 pi i k m / n). n must be a power of two (else -1, record
// untouched); n = 1 only updates delta, larger records become complex.
// delta becomes 1 / (delta * n), or L when delta is 0.
template <class T>
int fft(signal_t<T> &x, int inverse);

// fft of a caller's array of n points (2n scalars when cplx) through a
// temporary record that does not own it. Complex data is transformed in the
// array; real data is widened into storage the temporary record takes for
// itself, which is neither returned nor released.
template <class T>
int raw_fft(T *data, int n, int cplx, int inverse);

// The circular convolution of the chirp-z transform of n points over
// N = 2^b points at d on the vector kernels (see fft_kernel::convolve; K is
// the kernel spectrum divided by N). 0 when done, 1 when no vector kernel
// serves N (the caller convolves through fft), -1 when a table cannot be
// built.
template <class T>
int chirp_convolve(T *d, int b, const T *chirp, const T *K, int64_t n, T scale);

// Bit-reversal permutation of the points (complex) or scalars (real) of a
// record of 2^b points; bitrev_scale also multiplies every scalar by 1/n.
template <class T>
int bitrev(signal_t<T> &x);
template <class T>
int bitrev_scale(signal_t<T> &x);

// Release steps of dspf_free_internal: the bit-reversal index tables and the
// twiddle tables of one precision. Harmless when nothing was built.
template <class T>
int release_bitrev_tables();
template <class T>
int release_twiddle_tables();

// log2 n when n is a power of two (1, 2, 4, ...), else -1 (also for n <= 0).
inline int log2_exact(int64_t n) {
    int64_t p = 1;
    int b = 0;
    while (p < n) {
        p *= 2;
        ++b;
    }
    return p == n ? b : -1;
}

}  // namespace dsp
