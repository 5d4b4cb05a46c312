// Runtime math functions for both precisions. Single-precision values are
// widened to double, passed to the double-precision runtime function and the
// result rounded back, so both families share one call site.
#pragma once

#include <math.h>  // y0, y1 (Bessel functions of the second kind)

#include <cmath>

#if defined(_WIN32)
// The Windows C runtime names the Bessel functions of the second kind _y0 and
// _y1 and declares them only outside strict standard mode.
extern "C" __declspec(dllimport) double __cdecl _y0(double);
extern "C" __declspec(dllimport) double __cdecl _y1(double);
#endif

namespace dsp::rt {

template <class T> inline T sqrt(T x) { return T(std::sqrt(double(x))); }
template <class T> inline T exp(T x) { return T(std::exp(double(x))); }
template <class T> inline T log(T x) { return T(std::log(double(x))); }
template <class T> inline T log10(T x) { return T(std::log10(double(x))); }
template <class T> inline T sin(T x) { return T(std::sin(double(x))); }
template <class T> inline T cos(T x) { return T(std::cos(double(x))); }
template <class T> inline T sinh(T x) { return T(std::sinh(double(x))); }
template <class T> inline T cosh(T x) { return T(std::cosh(double(x))); }
template <class T> inline T asin(T x) { return T(std::asin(double(x))); }
template <class T> inline T acos(T x) { return T(std::acos(double(x))); }
template <class T> inline T atan2(T y, T x) { return T(std::atan2(double(y), double(x))); }
template <class T> inline T hypot(T x, T y) { return T(std::hypot(double(x), double(y))); }
template <class T> inline T pow(T x, T y) { return T(std::pow(double(x), double(y))); }
#if defined(_WIN32)
template <class T> inline T y0(T x) { return T(::_y0(double(x))); }
template <class T> inline T y1(T x) { return T(::_y1(double(x))); }
#else
template <class T> inline T y0(T x) { return T(::y0(double(x))); }
template <class T> inline T y1(T x) { return T(::y1(double(x))); }
#endif

}  // namespace dsp::rt
