"""Two arrays in, one out: element-wise arithmetic, the dot product and the correlation.

The precision is that of ``numpy.result_type(a, b)`` (float32/complex64 the single family); the
result is complex when either input is, a real operand counting as having imaginary part 0.
"""

import numpy as np

from . import _core

_SAME = "needs inputs of one length"
_SCRATCH = {}


def _pair(a, b):
    fam = _core.family(np.result_type(np.asarray(a), np.asarray(b)))
    return _core.vector(a, fam, name="a")[0], _core.vector(b, fam, name="b")[0], fam


def _binary(name, a, b, *args, why=_SAME):
    a, b, fam = _pair(a, b)
    out = _core.record(fam)
    fam.call(name, _core.record(fam, a), _core.record(fam, b), out, *args, why=why)
    return _core.values(out, fam)


def add(a, b):
    """a + b, the shorter input zero-padded to the longer one."""
    return _binary("dspfb_add", a, b)


def sub(a, b):
    """a - b, the shorter input zero-padded to the longer one."""
    return _binary("dspfb_sub", a, b)


def mul(a, b):
    """Point-wise product a * b of inputs of one length."""
    return _binary("dspfb_mul", a, b)


def div(a, b):
    """a / b of inputs of one length; a zero divisor gives L (1e15 float32, 1e100 float64) in
    every part for a nonzero dividend and 0 for a zero one. numpy: ``a / b`` (inf, nan)."""
    return _binary("dspfb_div", a, b)


def conj_mul(a, b):
    """a * conj(b) of inputs of one length. numpy: ``a * numpy.conj(b)``."""
    return _binary("dspfb_conj_mul", a, b)


def avg_add(a, mean, w):
    """mean + w (a - mean): a folded into a running mean with weight w (1/k for the k-th)."""
    return _binary("dspfb_avg_add", a, mean, w)


def maximum(a, b):
    """The larger point of each pair (b on ties; complex by squared magnitude in the double
    family, the single family's own choice for complex data: see the C header).
    numpy (real): ``numpy.maximum``."""
    return _binary("dspfb_max", a, b)


def minimum(a, b):
    """The smaller point of each pair, as ``maximum``. numpy (real): ``numpy.minimum``."""
    return _binary("dspfb_min", a, b)


def pmul(a, b):
    """Polynomial product, the full linear convolution of len(a) + len(b) - 1 points (none if
    either is empty): ``numpy.convolve(a, b)``."""
    return _binary("dspfb_pmul", a, b)


def ritoc(re, im):
    """Complex array re + i im from two real arrays of one length."""
    return _binary("dspfb_ritoc", re, im, why="needs two real inputs of one length")


def dot(a, b):
    """Sum of a[i] b[i] (complex products not conjugated): ``numpy.dot(a, b)``."""
    return _binary("dspfbs_dot", a, b)[0]


def correlate(x, y, lags=None, half=False):
    """Linear cross-correlation r[k] = sum_i x[i + k] conj(y[i]) for k = 0 .. lags - 1 (all n
    lags by default) of inputs of one length n, through the FFT: ``numpy.correlate(x, y,
    "full")[n - 1:n - 1 + lags]``; `half` halves the result. A working record is kept between
    calls so that repeated correlations allocate nothing."""
    x, y, fam = _pair(x, y)
    if fam not in _SCRATCH:
        _SCRATCH[fam] = _core.record(fam)
    lags = x.size if lags is None else lags
    out = _core.record(fam)
    fam.call("dspfh_corr", _core.record(fam, x), _core.record(fam, y), out, _SCRATCH[fam], lags,
             int(bool(half)), why="needs inputs of one length n and 1 <= lags <= n")
    return _core.values(out, fam)
