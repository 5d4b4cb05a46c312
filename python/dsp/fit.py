"""Regression, polynomials, interpolation and cubic splines.

Polynomial coefficients are in ascending order, c[i] multiplying x**i, as
``numpy.polynomial.polynomial`` lists them (``numpy.polyfit``, ``polyval``, ``roots`` and
``poly`` list them the other way round). The library computes these in double precision in both
families; float32 inputs give float32 results. Knots and positions are real; values may be
complex (interpolated part by part). A spline `mode` is "linear", "natural" or "not-a-knot".
"""

import numpy as np

from . import _core

MODES = {"linear": 0, "natural": 1, "not-a-knot": 2}


def _mode(mode):
    if mode not in MODES:
        raise ValueError(f"mode must be one of {', '.join(MODES)}, not {mode!r}")
    return MODES[mode]


def _call(export, arrays, *args, why, delta=1.0, values=None):
    """Runs an export of the form (in..., out, args) on the arrays, all in the family of the
    array `values` (by default of their common dtype), each keeping its real or complex kind;
    returns the result."""
    arrays = [np.asarray(a) for a in arrays]
    fam = _core.family(np.result_type(*arrays) if values is None else arrays[values].dtype)
    vectors = [_core.vector(a, fam, name=f"argument {i + 1}")[0] for i, a in enumerate(arrays)]
    out = _core.record(fam)
    fam.call(export, *(_core.record(fam, v, delta) for v in vectors), out, *args, why=why)
    return _core.values(out, fam)


def lin_regres(y, delta=1.0):
    """(slope, intercept, r) of the least-squares line through the points (k delta, y[k]), r the
    correlation coefficient (0 for constant y): ``scipy.stats.linregress(delta *
    numpy.arange(len(y)), y)[:3]``."""
    return tuple(_call("dspfs_lin_regres", [y], delta=delta,
                       why="needs at least two real points and a nonzero delta"))


def lin_regres2(x, y):
    """(slope, intercept, r) of the least-squares line through the points (x[k], y[k]):
    ``scipy.stats.linregress(x, y)[:3]``."""
    return tuple(_call("dspfs_lin_regres2", [x, y],
                       why="needs real x and y of one length (two points at least), not all x equal"))


def psolve(x, y, degree):
    """The degree + 1 real coefficients minimising sum (y[k] - p(x[k]))**2, by a QR decomposition
    of the column-scaled Vandermonde matrix: ``numpy.polyfit(x, y, degree)[::-1]``."""
    return _call("dspfs_psolve", [x, y], degree, why="needs real x and y of one length with at "
                 f"least degree + 1 distinct x, and a degree of at least 0 (not {degree})")


def pcsolve(x, y, degree):
    """``psolve`` for real or complex x and y; the coefficients are complex:
    ``numpy.polyfit(x, y, degree)[::-1]`` on complex arrays."""
    return _call("dspfs_pcsolve", [x, y], degree, why="needs x and y of one length with at least "
                 f"degree + 1 distinct x, and a degree of at least 0 (not {degree})")


def peval(coef, x):
    """sum coef[i] x**i at every point of x (Horner), complex when coef or x is; no coefficients
    give zeros: ``numpy.polynomial.polynomial.polyval(x, coef)``."""
    return _call("dspfs_peval", [coef, x], why="out of memory")


def proots(coef):
    """The complex roots of the polynomial, as many as its degree (the index of the last
    nonzero coefficient), sorted by real part, then imaginary part:
    ``numpy.sort_complex(numpy.roots(coef[::-1]))``."""
    return _core.inplace("dspfi_proots", coef, why="needs a nonzero, finite coefficient and "
                         "converging eigenvalues of the companion matrix")[0]


def pztoc(roots):
    """The len(roots) + 1 coefficients of the monic polynomial with these roots, real for real
    roots: ``numpy.poly(roots)[::-1]``."""
    return _core.inplace("dspfi_pztoc", roots, why="out of memory")[0]


def interp(y, pos, mode="linear", delta=1.0):
    """The function with values y[k] at the knots k delta, at the positions `pos` (in the units
    of delta): ``numpy.interp(pos, delta * numpy.arange(len(y)), y)`` when linear (the end values
    outside), ``scipy.interpolate.CubicSpline(delta * numpy.arange(len(y)), y, bc_type=mode)(pos)``
    for the splines (the end pieces continue outside)."""
    return _call("dspf_interp", [y, pos], _mode(mode), delta=delta, values=0,
                 why="needs values, real positions and a positive, finite delta")


def cspline(y, mode="natural", delta=1.0):
    """Second derivatives of the cubic spline through the values y[k] at the knots k delta:
    ``scipy.interpolate.CubicSpline(delta * numpy.arange(len(y)), y, bc_type=mode)(knots, 2)``."""
    return _call("dspf_cspline", [y], _mode(mode), delta=delta,
                 why="needs values, a spline mode and a positive, finite delta")


def cspline_2d(x, y, mode="natural"):
    """Second derivatives of the cubic spline through the points (x[k], y[k]):
    ``scipy.interpolate.CubicSpline(x, y, bc_type=mode)(x, 2)``."""
    return _call("dspfb_cspline_2d", [x, y], _mode(mode), values=1,
                 why="needs a spline mode, strictly increasing real x and y of its length")


def inter(x, y, pos, mode="linear"):
    """The function through the points (x[k], y[k]) at the positions `pos`: ``numpy.interp(pos,
    x, y)`` when linear, ``scipy.interpolate.CubicSpline(x, y, bc_type=mode)(pos)`` else."""
    return _call("dspfb_inter", [x, y, pos], _mode(mode), values=1,
                 why="needs strictly increasing real x, y of its length and real positions")
