// The window catalogue: kinds, their text names and the cosine-sum
// coefficient sets.
#pragma once

#include <cstdint>

#include "dsp.h"
#include "frame/traits.hpp"

namespace dsp {

// Window flag bits.
enum : int {
    WINDOW_MODE = 3,        // normalisation mode: 0 unit mean, 1 unit rms, 2 unit peak
    WINDOW_SYMMETRIC = 4,   // symmetric sampling (centre between two samples for even n)
    WINDOW_WIDTH = 8,       // explicit width taken from the parameter
    WINDOW_ROTATE = 16,     // rotate even the uniform window
    WINDOW_NO_ROTATE = 32,  // leave the windowed record unrotated
};

// The kind without a name: a Tukey window with a tapered fraction of 0.25.
inline constexpr int WINDOW_TUKEY25 = 24;

// One row of the name table.
struct window_name {
    const char *name;
    dsp_window value;
};

// The 80 rows, in search order: 40 short names, then the 40 enumerator names.
inline constexpr int window_name_count = 80;
template <class T>
const window_name *window_names();

// A cosine-sum coefficient set: m terms a0 .. a(m-1).
template <class T>
struct cosine_set {
    int m;
    const T *a;
};

// True for the kinds generated as cosine sums (0 and 2 to 13).
inline bool is_cosine_kind(int kind) { return kind == 0 || (kind >= 2 && kind <= 13); }

// The coefficient set of a cosine-sum kind for normalisation mode 0, 1 or 2;
// {0, nullptr} for other kinds or mode 3.
template <class T>
cosine_set<T> cosine_coefficients(int kind, int mode);

// The fixed parameter of the Kaiser (beta), Gauss (sigma) kinds.
template <class T>
T kaiser_beta(int kind);
template <class T>
T gauss_sigma(int kind);

template <class T>
int window_from_str(const char *name, dsp_window *value);
template <class T>
int window_to_str(dsp_window code, char *buf, int len);

}  // namespace dsp
