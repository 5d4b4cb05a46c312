"""Trace kernels: scaling, extremes, axes, smoothing, phase and display formats of traces.

The C kernels trust their arguments; these wrappers check every range against the array first,
so no call reads or writes outside it. Ranges are half-open [start, end), end None meaning the
end of the array. Complex traces are complex64/complex128 arrays.
"""

import numpy as np

from . import _core
from ._core import DspError, pointer

FORMATS = {"db": 0, "magnitude": 1, "phase": 2, "swr": 3, "return_loss": 4}


def _span(n, start, end):
    end = n if end is None else end
    if not 0 <= start <= end <= n:
        raise ValueError(f"range [{start}, {end}) does not lie within the {n} points")
    return start, end


def trace_mul(x, k, short_vector=False):
    """x times k (both parts of complex points): ``x * k``. `short_vector` takes vfpsbMul2,
    which runs 16 values at a time in the VFP short-vector mode on ARM cores that have it."""
    a, fam = _core.vector(x)
    out = a.copy()
    fam.fn("vfpsbMul2" if short_vector else "vfpsbMul1")(k, pointer(fam, out), out.view(fam.real).size)
    return out


def scale_to_int(x, lo, hi, ilo, ihi, rounded=False):
    """Screen coordinates ilo + k (x - lo), k = (ihi - ilo) / (hi - lo), as int32: truncated
    toward zero, or with `rounded` rounded to nearest (ties to even) and clamped to the int
    range (``numpy.clip(numpy.rint(v), min(ilo, ihi), max(ilo, ihi))``)."""
    a, fam = _core.vector(x, cplx=False)
    out = np.zeros(a.size, np.int32)
    args = (pointer(fam, a), a.size, lo, hi, _core.ffi.cast("int *", out.ctypes.data), ilo, ihi)
    if not rounded:
        fam.fn("vfpsb_ScaleToInt")(*args)
    elif fam.fn("vfpsb_ScaleToInt2")(*args) != 0:
        raise DspError(fam.name("vfpsb_ScaleToInt2"), "needs finite lo and hi with lo != hi")
    return out


def scale_to_fp(x, lo, hi, olo, ohi):
    """olo + k (x - lo), k = (ohi - olo) / (hi - lo), in the precision of x."""
    a, fam = _core.vector(x, cplx=False)
    out = np.empty_like(a)
    fam.fn("vfpsb_ScaleToFP")(pointer(fam, a), a.size, lo, hi, pointer(fam, out), olo, ohi)
    return out


def _find(which, x, start, end, skip):
    a, fam = _core.vector(x, cplx=False)
    start, end = _span(a.size, start, end)
    if skip is None:
        return fam.fn(f"vfps_Find{which}")(pointer(fam, a), start, end)
    i = fam.fn(f"vfps_Find{which}2")(pointer(fam, a), start, end, *skip)
    return None if i < 0 else i


def find_max(x, start=0, end=None, skip=None):
    """Index of the largest value in [start, end), the first of equal ones, leaving out the
    range `skip` = (skip_start, skip_end) when given (None when nothing is left to search
    from start). numpy: ``start + numpy.argmax(x[start:end])``."""
    return _find("Max", x, start, end, skip)


def find_min(x, start=0, end=None, skip=None):
    """Index of the smallest value, as find_max; without `skip`, x[start] only wins when no
    later value is smaller than the largest finite number."""
    return _find("Min", x, start, end, skip)


def expand_linear(n, a, b, dtype=np.float64):
    """n points from a to b, evenly spaced: ``numpy.linspace(a, b, n)``."""
    fam = _core.family(dtype)
    out = np.zeros(max(n, 0), fam.real)
    fam.fn("vfps_ExpandLinear")(pointer(fam, out), out.size, a, b)
    return out


def expand_log(n, a, b, dtype=np.float64):
    """n points from a to b, evenly spaced in log10 (a and b positive, else zeros):
    ``numpy.logspace(log10(a), log10(b), n)`` with the exact ends."""
    fam = _core.family(dtype)
    out = np.zeros(max(n, 0), fam.real)
    fam.fn("vfps_ExpandLog")(pointer(fam, out), out.size, a, b)
    return out


def smooth(x, width, first=0, end=None, phase=False):
    """Moving average of odd `width` >= 3 over the outputs [first, end); the window shrinks
    symmetrically near the ends of the array and the walk stops where it would reach past
    end - 1. With `phase` the samples are radians, each window unwrapped and its mean brought
    into [-pi, pi]; complex data averages magnitudes and phases. Returns the array, its other
    points as they were, and the number of outputs written."""
    a, fam = _core.vector(x)
    first, end = _span(a.size, first, end)
    out = a.copy()
    src, dst = pointer(fam, a), pointer(fam, out)
    if a.dtype.kind == "c":
        count = fam.fn("vfps_SmoothCpx")(src, dst, a.size, first, end, width)
    else:
        count = fam.fn("vfps_Smooth")(src, dst, a.size, first, end, width, int(bool(phase)))
    if count < 0:
        raise DspError(fam.name("vfps_Smooth"), "needs an odd width of at least 3")
    return out, count


def unwrap_phase(z):
    """Phase of each complex point, unwrapped: ``numpy.unwrap(numpy.angle(z))``."""
    a, fam = _core.vector(z, cplx=True)
    out = np.zeros(a.size, fam.real)
    fam.fn("vfps_UnwrapPhase")(pointer(fam, a), 0, a.size, pointer(fam, out))
    return out


def format_trace(z, fmt):
    """A display format of complex points, q = |z|^2: "db" 10 log10 q, "magnitude" sqrt q,
    "phase" in degrees, "swr" (1 + r) / (1 - r) with r = sqrt q (1e6 for r > 0.999998),
    "return_loss" -10 log10 q. numpy (db): ``10 * numpy.log10(abs(z)**2)``."""
    if fmt not in FORMATS:
        raise ValueError(f"fmt must be one of {', '.join(FORMATS)}, not {fmt!r}")
    a, fam = _core.vector(z, cplx=True)
    out = np.zeros(a.size, fam.real)
    fam.fn("vfps_FormatBuffer")(FORMATS[fmt], pointer(fam, a), pointer(fam, out), 0, a.size)
    return out
