// Precision traits: the record type and the constants that differ between
// the single- and the double-precision family.
#pragma once

#include <cstdint>
#include <type_traits>

#include "dsp.h"

namespace dsp {

template <class T>
struct precision;

template <>
struct precision<float> {
    using signal = dspf_signal;
    // Large substitute value L (1e15 as a float: 999999986991104) and its
    // square as the single-precision code stores it (the float below 1e30).
    static constexpr float large = 999999986991104.0f;
    static constexpr float large_sq = 9.99999944e29f;
    static constexpr float pi = 3.14159274f;  // 0x40490fdb
    // Thresholds and constants of the math functions: E = ln L, log10 L, the
    // smallest normal number F (the floor of the logarithms), ln 10,
    // log10 e, and the factor 1/L of the complex reciprocal beyond L.
    static constexpr float exp_max = 34.538776f;
    static constexpr float exp10_max = 15.0f;
    static constexpr float normal_min = 1.17549435e-38f;  // 0x00800000
    static constexpr float ln10 = 2.3025851f;
    static constexpr float log10e = 0.4342945f;
    static constexpr float recip_small = 1e-15f;  // 1.0000000036274937e-15
    // approx_equal / floor_index / ceil_index tolerances.
    static constexpr float tiny = 2.350988701644575e-37f;  // 1.25 * 2^-122
    static constexpr float tol_hi = 1.0000008344650269f;   // 1 + 7 * 2^-23
    static constexpr float tol_lo = 0.9999991655349731f;   // 1 - 7 * 2^-23
    static constexpr float tol_eps = 8.344650268554688e-07f;  // 7 * 2^-23
    static constexpr float index_big = 2147483648.0f;      // 2^31
};

template <>
struct precision<double> {
    using signal = dsp_signal;
    static constexpr double large = 1e100;
    static constexpr double large_sq = 1e200;
    static constexpr double pi = 3.141592653589793;
    static constexpr double exp_max = 230.25850929940458;
    static constexpr double exp10_max = 100.0;
    static constexpr double normal_min = 2.2250738585072014e-308;
    static constexpr double ln10 = 2.302585092994046;
    static constexpr double log10e = 0.4342944819032518;
    static constexpr double recip_small = 1e-100;
    static constexpr double tiny = 4.450147717014403e-307;  // 1.25 * 2^-1018
    static constexpr double tol_hi = 1.0000000000000044;    // 1 + 20 * 2^-52
    static constexpr double tol_lo = 0.9999999999999956;    // 1 - 20 * 2^-52
    static constexpr double tol_eps = 4.440892098500626e-15;  // 20 * 2^-52
    static constexpr double index_big = 2147483647.0;       // 2^31 - 1
};

// The record type of a precision: signal_t<float> is dspf_signal.
template <class T>
using signal_t = typename precision<T>::signal;

// True in the single-precision family; deliberate single-precision
// differences are written as `if constexpr (single<T>)` beside the shared
// algorithm.
template <class T>
inline constexpr bool single = std::is_same_v<T, float>;

}  // namespace dsp
