// Windowing a record in place: the generic operation with its cache, the
// parameterised families and the filter-design windows.
#pragma once

#include "window/catalogue.hpp"

namespace dsp {

template <class T>
int window(signal_t<T> &x, int kind, int flags);
template <class T>
int window2(signal_t<T> &x, int kind, int flags, T p);
template <class T>
int window_cos(signal_t<T> &x, const signal_t<T> &coef);
template <class T>
int window_gauss(signal_t<T> &x, T sigma, int flags);
template <class T>
int window_kaiser(signal_t<T> &x, T beta, int flags);
template <class T>
int window_sinc(signal_t<T> &x, T half_span, T power, int flags);
template <class T>
int window_tukey(signal_t<T> &x, T alpha, int flags);
template <class T>
int window_fir(signal_t<T> &x, int code, T p);

// Release step 8: destroys the cached window records and frees the cache
// block; the next windowing call builds a new one.
template <class T>
int release_window_cache();

// Cache inspection for tests: entries in use and the most recently filled.
template <class T>
int window_cache_used();
template <class T>
int window_cache_last();
template <class T>
const signal_t<T> *window_cache_entry(int index);

}  // namespace dsp
