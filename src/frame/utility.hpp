// Record-to-record utilities: sub-ranges, copies, precision conversion,
// magnitudes and square roots.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// dst = src (delta, cplx, n, samples); subvec(src, dst, 0, src.n).
template <class T> int copy(signal_t<T> &dst, const signal_t<T> &src);
// The first min(max(count, 0), src.n) points; subvec(src, dst, 0, count).
template <class T> int copy_at_most(signal_t<T> &dst, const signal_t<T> &src, int count);

namespace util {

template <class T> int subvec(const signal_t<T> &src, signal_t<T> &dst, int start, int count);
template <class T> int tof(const signal_t<T> &src, dspf_signal &dst);
template <class T> int mag(const signal_t<T> &src, signal_t<T> &dst);
template <class T> int magsq(const signal_t<T> &src, signal_t<T> &dst);
template <class T> int sqrt(const signal_t<T> &src, signal_t<T> &dst);

}  // namespace util
}  // namespace dsp
