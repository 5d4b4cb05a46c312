// Block FIR filtering with a carried history, direct or through the FFT, and
// the linear-phase form given by the first half of the filter.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// y[k] = sum_{j<m} h[j] x[k - j] for the n points of x (complex when x or h
// is), where x[-1], x[-2], ... are the last points of `history` (the m - 1
// samples before the block, oldest first; null: zeros and nothing kept),
// which then holds the m - 1 samples before the next block. Direct
// convolution for complex or short filters and for blocks shorter than the
// filter, otherwise through the FFT with the filter's spectrum cached. y may
// be x; an empty filter copies x. -1 when h or the history shares storage
// with the result, or the history with x.
template <class T>
int fir(const signal_t<T> &x, signal_t<T> &y, const signal_t<T> &h, signal_t<T> *history);

// fir with the filter of 2k - 1 (odd) or 2k taps whose first k are `half`,
// mirrored (negated when antisym) to the rest. Short real filters run
// directly, summing each pair of samples that share a coefficient.
template <class T>
int sfir(const signal_t<T> &x, signal_t<T> &y, const signal_t<T> &half, int odd, int antisym,
         signal_t<T> *history);

// Release steps of dspf_free_internal: the transform cache and working
// storage of fir, and the expanded filter of sfir.
template <class T>
int release_fir_scratch();
template <class T>
int release_sfir_scratch();

}  // namespace dsp
