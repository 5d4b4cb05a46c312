// Polyphase resampling with a kernel record, carrying the read position and
// the last input samples from block to block.
#pragma once

#include <cstdint>

#include "frame/traits.hpp"

namespace dsp {

// The width W of a kernel record: point 0 rounded half up, 0 for an empty
// kernel or a width that is not a number, at most 2^30.
template <class T>
int64_t rsmp_width(const signal_t<T> &kernel);

// Resamples x by `step` input samples per output with the kernel (point 0
// the width W, then W P + 1 values: tap t at phase i is kernel[1 + i + t P]):
// output = sum_t s[idx + t] c_t at the read position pos in (-1, 0], phase
// -pos P, c_t the nearest lower phase (mode 0) or interpolated linearly
// between the two neighbouring phases (mode 1). s[j] for j < 0 comes from
// the history (W + 2 points: the W samples the next window starts with, the
// carried position, and how many of them came from the last block; null:
// zeros before the block, nothing kept). y.n on entry is the most outputs
// wanted; on return the number made. y's delta is step times x's; y may be
// x. A kernel of at most one point copies x. -1 for a negative or NaN step,
// a width below 1, a complex kernel, N - 2 not a multiple of W, a mode
// other than 0 or 1, a carried position at or below -1, or the history
// sharing storage with x, y or the kernel (or the kernel with y).
template <class T>
int rsmp(const signal_t<T> &x, signal_t<T> &y, int mode, const signal_t<T> &kernel, T step,
         signal_t<T> *history);

// rsmp with stored kernel `kernel_mode` (0 .. 4) sampled at 1024 phases per
// tap (256 for kernel 2), built once per process; -1 for another kernel
// mode.
template <class T>
int rsmp2(const signal_t<T> &x, signal_t<T> &y, int mode, int kernel_mode, T step,
          signal_t<T> *history);

// Release of the kernel layouts and working storage above; part of the FIR
// filtering release step of dspf_free_internal.
template <class T>
int release_rsmp_cache();

}  // namespace dsp
