// Window generators: each fills a real record of n points with a window
// centred at index n/2 (layout below) and normalises it by the mode in the
// low two flag bits.
//
// Layout: the centre is c = n/2. Periodic sampling puts distances 1 ..
// (n-1)/2 on both sides of c and, for even n, distance n/2 at index 0.
// Symmetric sampling (flag 4) with even n puts distances 0.5, 1.5, ...,
// (n-1)/2 on both sides of the point between c-1 and c; for odd n it is the
// same as periodic sampling.
#pragma once

#include "window/catalogue.hpp"

namespace dsp {

// The generator of a window kind (0 only with the explicit-width flag, 1 to
// 24) with the parameter p of the explicit width. -1 for a complex record,
// flags the kind does not take, or an unknown kind; n < 1 does nothing.
template <class T>
int generate_window(signal_t<T> &w, int kind, int flags, T p);

// Cosine sum a0 + a1 cos(x) + ... with x = 2 pi d / n (or 2 pi d / p with
// the explicit-width flag), no normalisation.
template <class T>
int cosine_sum_window(signal_t<T> &w, const T *a, int m, int flags, T p);

// The scale that makes a short (n < m, or n < 2m-1 for unit rms) cosine-sum
// window of a normalised coefficient set exact; 1 for long windows.
template <class T>
T short_cosine_correction(const cosine_set<T> &set, int mode, int n);

template <class T>
int gauss_window(signal_t<T> &w, T sigma, int flags);
template <class T>
int kaiser_window(signal_t<T> &w, T beta, int flags);
template <class T>
int sinc_window(signal_t<T> &w, T half_span, T power, int flags);
template <class T>
int tukey_window(signal_t<T> &w, T alpha, int flags);

}  // namespace dsp
