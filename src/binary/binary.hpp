// Element-wise binary arithmetic: two records in, one record out. The result
// may be the same record as either input.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

// a + b and a - b; the shorter input counts as zero-padded to the longer.
template <class T>
int add(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r);
template <class T>
int sub(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r);
// Point-wise (complex) product, quotient and a * conj(b); equal lengths.
template <class T>
int mul(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r);
template <class T>
int div(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r);
template <class T>
int conj_mul(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r);
// Weighted running mean b + w (a - b).
template <class T>
int avg_add(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r, T w);
// Larger / smaller point (by magnitude for complex operands in the double
// family; the single family keeps its fixed choice of operand).
template <class T>
int max(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r);
template <class T>
int min(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r);
// Polynomial product (full linear convolution), any lengths.
template <class T>
int pmul(const signal_t<T> &a, const signal_t<T> &b, signal_t<T> &r);
// Complex record (re[i], im[i]) from two real records of equal length.
template <class T>
int ritoc(const signal_t<T> &re, const signal_t<T> &im, signal_t<T> &r);

}  // namespace dsp
