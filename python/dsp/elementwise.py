"""Element-wise math with the library's substitutes for results out of range.

L is the large substitute (1e15 for float32 data, 1e100 for float64), F the smallest normal
number. Complex input is handled point by point as stated. float32 data goes through the single
family, which keeps a few behaviours of its own (see the C header): ``recip`` and ``db`` of real
data also write the sample after a zero or a valid value, ``exp10`` stops at the first sample
below -L, ``log10``/``db`` of complex data take the real part as L, ``limit`` sets every sample
not above the range to the lower bound.
"""

import numpy as np

from . import _core
from ._core import ffi

_REAL = "needs real data"


def _run(name, x, *args, why="the result could not be stored", delta=1.0):
    """The export on a copy of x; a scalar x gives a scalar."""
    y = _core.inplace(name, x if np.ndim(x) else np.ravel(x), *args, why=why, delta=delta)[0]
    return y if np.ndim(x) else y[0]


def recip(x):
    """1/x, L for 0; complex: conj(x) / |x|^2. numpy: ``1 / x`` (inf for 0)."""
    return _run("dspfi_recip", x)


def sqrt(x):
    """Square root, 0 for negative reals; principal root of complex data. numpy:
    ``numpy.sqrt(numpy.maximum(x, 0))`` (real), ``numpy.sqrt(x)`` (complex)."""
    return _run("dspfi_sqrt", x)


def square(x):
    """x^2, L outside [-L, L]; complex square with its parts clamped to +-L. numpy: ``x**2``."""
    return _run("dspfi_square", x)


def exp(x):
    """e^x, L above ln L; complex: magnitude e^re, phase im. numpy: ``numpy.exp(x)``."""
    return _run("dspfi_exp", x)


def exp10(x):
    """10^x, L above 15 (float32) or 100 (float64); complex: magnitude 10^re, phase im ln 10.
    numpy: ``10.0**x``."""
    return _run("dspfi_exp10", x)


def log(x):
    """ln x, ln F below F; complex logarithm. numpy: ``numpy.log(numpy.maximum(x, F))``."""
    return _run("dspfi_log", x)


def log10(x):
    """log10 x, log10 F below F; complex base-ten logarithm. numpy: ``numpy.log10``."""
    return _run("dspfi_log10", x)


def db(x, k=10.0):
    """k log10 x (k = 10 for power, 20 for amplitude), k log10 F below F.
    numpy: ``k * numpy.log10(numpy.maximum(x, F))``."""
    return _run("dspfi_db", x, k)


def sinh(x):
    """sinh x, +-L beyond +-ln L (real data only). numpy: ``numpy.sinh``."""
    return _run("dspfi_sinh", x, why=_REAL)


def cosh(x):
    """cosh x, L beyond +-ln L (real data only). numpy: ``numpy.cosh``."""
    return _run("dspfi_cosh", x, why=_REAL)


def asin(x):
    """arcsin x, 0 outside [-1, 1] (real data only). numpy: ``numpy.arcsin`` (NaN outside)."""
    return _run("dspfi_asin", x, why=_REAL)


def acos(x):
    """arccos x, 0 outside [-1, 1] (real data only). numpy: ``numpy.arccos`` (NaN outside)."""
    return _run("dspfi_acos", x, why=_REAL)


def i0(x):
    """Modified Bessel function I0, L beyond +-ln L; float32 real data only (the library has
    no double-precision I0). scipy: ``scipy.special.i0``."""
    if _core.vector(x)[1] is not _core.SINGLE:
        raise TypeError("i0: the library computes I0 in single precision only: pass float32")
    return _run("dspfi_besi0", x, why=_REAL)


def y0(x):
    """Bessel function of the second kind Y0, 0 for x <= 0 (real data only). scipy:
    ``scipy.special.y0`` (NaN or -inf there)."""
    return _run("dspfi_besy0", x, why=_REAL)


def y1(x):
    """Bessel function of the second kind Y1, 0 for x <= 0 (real data only). scipy:
    ``scipy.special.y1``."""
    return _run("dspfi_besy1", x, why=_REAL)


def limit(x, a, b):
    """Every scalar (both parts of complex points) clipped to [min(a, b), max(a, b)], and
    whether any lay outside. numpy: ``numpy.clip(x, min(a, b), max(a, b))``."""
    a_, fam = _core.vector(x)
    a_ = a_.copy()
    rec, clipped = _core.record(fam, a_), ffi.new("int *")
    args = (rec, 0, a, b, clipped) if fam.single else (rec, a, b, clipped)
    fam.call("dspfi_limit", *args, why="the result could not be stored")
    return _core.values(rec, fam, a_), bool(clipped[0])


def mag(x):
    """Magnitude |x| as real data. numpy: ``numpy.abs``."""
    return _run("dspfi_mag", x)


def magsq(x):
    """Squared magnitude re^2 + im^2 as real data, L beyond L. numpy: ``numpy.abs(x)**2``."""
    return _run("dspfi_magsq", x)


def phase(x):
    """Phase atan2(im, re) (pi for negative reals), 0 for 0. numpy: ``numpy.angle``."""
    return _run("dspfi_phase", x)


def conj(x):
    """Complex conjugate. numpy: ``numpy.conj``."""
    return _run("dspfi_conj", x)


def integ(x, delta=1.0):
    """Running sum times the sample spacing. numpy: ``numpy.cumsum(x) * delta``."""
    return _run("dspfi_integ", x, delta=delta)


def differ(x, delta=1.0):
    """Backward difference over the sample spacing, the first point x[0] / delta (times L for
    a spacing of exactly 0). numpy: ``numpy.diff(x, prepend=0) / delta``."""
    return _run("dspfi_differ", x, delta=delta)


def unwrap(x, w=1):
    """A real phase trace with each sample moved by a multiple of 2 pi to within pi of the
    mean of up to `w` previous outputs (w = 0 wraps every sample into [-pi, pi]). numpy (w = 1):
    ``numpy.unwrap(x)`` with the first sample also brought within pi of 0."""
    return _run("dspfi_unwrap_wnd", x, int(w), why="needs real data and w >= 0")

