// Descriptive statistics: each reduces a record to one (real or complex)
// point in a result record of its own, which may be the input record.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// Sums run over blocks of this many samples, each block from zero into its
// own partial sum that is then added to the running total.
inline constexpr int64_t stats_block = 2048;

template <class T>
int sum(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int mean(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int median(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int max(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int min(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int magsq_sum(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int rms(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int gmean(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int hmean(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int pop_var(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int samp_var(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int pop_stddev(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int samp_stddev(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int skew(const signal_t<T> &in, signal_t<T> &out);
template <class T>
int excess(const signal_t<T> &in, signal_t<T> &out);
// Histogram of bins bins of the given width from low; complex samples count
// by magnitude. A value just past the upper edge counts in the last bin.
template <class T>
int hist(const signal_t<T> &in, signal_t<T> &out, T low, T width, int bins);

}  // namespace dsp
