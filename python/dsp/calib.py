"""Calibration: complex matrices, one-port error terms, circle fit and circular interpolation.

Complex values are complex128 (the circle fit also takes complex64, computed in single
precision); matrices are two-dimensional arrays.
"""

import numpy as np

from . import _core
from ._core import DOUBLE, DspError, lib, pointer


def _matrix(m, name):
    a = np.ascontiguousarray(m, np.complex128)
    if a.ndim != 2:
        raise ValueError(f"{name}: a two-dimensional array expected, not {a.ndim} dimensions")
    return a


def _points(name, *arrays, dtype=np.complex128):
    """The arrays as contiguous 1-D arrays of one length (scalars broadcast)."""
    out = [np.ascontiguousarray(a, dtype) for a in np.broadcast_arrays(*arrays)]
    if out[0].ndim != 1:
        raise ValueError(f"{name}: one-dimensional arrays expected")
    return out


def matmul(a, b):
    """The complex matrix product a b, products summed from zero: ``a @ b``. The library
    refuses a product whose inner size exceeds the row count of a (DspError)."""
    a, b = _matrix(a, "a"), _matrix(b, "b")
    (rows, inner), cols = a.shape, b.shape[1]
    if b.shape[0] != inner:
        raise ValueError(f"matmul: shapes {a.shape} and {b.shape} do not fit")
    c = np.zeros((rows, cols), np.complex128)
    if lib.MatrixMult(pointer(DOUBLE, a), pointer(DOUBLE, b), pointer(DOUBLE, c), rows, inner,
                      cols) < 0:
        raise DspError("MatrixMult", "refuses an inner size larger than the row count")
    return c


def inv(m):
    """Inverse of a square complex matrix by Gauss-Jordan elimination with partial pivoting:
    ``numpy.linalg.inv``. A pivot below 2.22e-12 in modulus (singular) raises DspError."""
    a = _matrix(m, "m").copy()
    if a.shape[0] != a.shape[1]:
        raise ValueError(f"inv: a square matrix expected, not {a.shape}")
    if lib.invert(pointer(DOUBLE, a), a.shape[0]) != 1:
        raise DspError("invert", "the matrix is singular")
    return a


def one_port_terms(m1, m2, m3, g1, g2, g3):
    """Error terms (e00, e11, e01e10) of the one-port model M = e00 + e01e10 G / (1 - e11 G)
    at every point, from the measured reflections m1, m2, m3 of three standards whose actual
    reflections are g1, g2, g3 (arrays or scalars). Equivalent: solving
    ``[[g, 1, -g m], ...] @ [e01e10 - e00 e11, e00, -e11] = [m, ...]`` per point."""
    m1, m2, m3, g1, g2, g3 = _points("one_port_terms", m1, m2, m3, g1, g2, g3)
    m1, m2, m3 = m1.copy(), m2.copy(), m3.copy()
    if lib.Compute1PortTerms(*(pointer(DOUBLE, v) for v in (m1, m2, m3, g1, g2, g3)), 0,
                             m1.size) != 0:
        raise DspError("Compute1PortTerms", "out of memory")
    return m1, m2, m3


def circle_fit(a, b, c, d):
    """Centre of the circle through the points a, b, c, d (complex) at every index, from the
    perpendicular bisectors of the two chords closest to perpendicular; d itself when those
    chords are less than 10 degrees apart."""
    fam = _core.family(np.result_type(*map(np.asarray, (a, b, c, d))))
    pts = _points("circle_fit", a, b, c, d, dtype=fam.complex)
    centre = np.zeros(pts[0].size, fam.complex)
    fam.fn("vfps_CircleFit")(*(pointer(fam, p) for p in pts), pointer(fam, centre), 0, centre.size)
    return centre


def circular_interpolation(freq, refl, at):
    """Reflections `refl` at the strictly increasing frequencies `freq` interpolated at `at`
    along the circle through the interval's ends and its neighbouring point (linear where the
    points are collinear: then ``numpy.interp`` of the real and imaginary parts). Queries
    outside the data's range raise DspError (no extrapolation)."""
    freq, refl = _points("circular_interpolation", freq, refl)
    freq = np.ascontiguousarray(freq.real)
    at = np.ascontiguousarray(np.atleast_1d(at), np.float64)
    out = np.zeros(at.size, np.complex128)
    if lib.CircularInterpolation(pointer(DOUBLE, freq), pointer(DOUBLE, refl), freq.size,
                                 pointer(DOUBLE, at), pointer(DOUBLE, out), at.size) != 0:
        raise DspError("CircularInterpolation",
                       "needs data, strictly increasing frequencies and queries within them")
    return out
