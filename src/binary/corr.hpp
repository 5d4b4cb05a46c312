// Cross-correlation of two records through the FFT.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// r[k] = sum_i x[i + k] conj(y[i]) for the lags k = 0 .. lags - 1 (the linear
// correlation: x counts as zero beyond its end), times 0.5 when option is
// nonzero. x and y must have the same n and 1 <= lags <= n. r is complex if
// either input is, its delta the mean of theirs; r may be x or y. scratch is
// a working record the caller keeps between calls (null, or one sharing
// storage with x, y or r: a temporary record is used).
template <class T>
int corr(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &r, signal_t<T> *scratch, int lags,
         int option);

}  // namespace dsp
