// Interpolation of tabulated functions: linear (as numpy.interp) and cubic
// splines with natural or not-a-knot ends (as scipy's CubicSpline), on the
// uniform grid of a record (x[k] = k delta) or at the abscissae of an x
// record. Complex ordinates are interpolated part by part. The knots are
// worked in double precision in both families.
#pragma once

#include "frame/traits.hpp"

namespace dsp {

enum : int {
    INTERP_LINEAR = 0,      // straight lines; the end values outside the knots
    INTERP_NATURAL = 1,     // cubic spline, zero second derivative at both ends
    INTERP_NOT_A_KNOT = 2,  // cubic spline, third derivative continuous at x[1], x[n-2]
};

// in evaluated at the positions pos (real, in delta units from in's first
// point) into out: pos.n points of in's kind, pos.delta.
template <class T>
int interp(const signal_t<T> &in, const signal_t<T> &pos, signal_t<T> &out, int mode);
// The spline's second derivatives at the knots of in's uniform grid.
template <class T>
int cspline(const signal_t<T> &in, signal_t<T> &out, int mode);
// The same at the knots of (x, y), x strictly increasing.
template <class T>
int cspline_2d(const signal_t<T> &x, const signal_t<T> &y, signal_t<T> &out, int mode);
// The function tabulated by (x, y) evaluated at the positions pos.
template <class T>
int inter(const signal_t<T> &x, const signal_t<T> &y, const signal_t<T> &pos, signal_t<T> &out,
          int mode);

}  // namespace dsp
