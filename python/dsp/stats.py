"""Descriptive statistics and the peak search.

Each statistic returns a numpy scalar of the data's precision (complex where the result keeps
the data's kind). Samples beyond +-L (1e15 float32, 1e100 float64) are guarded: they enter as
L. float32 real data keeps the single family's variance and skew, which come from the guard
constants rather than the samples (see the C header).
"""

from . import _core

_INTERP = {None: 0x000, "parabola": 0x100, "gauss": 0x200, "gauss2": 0x300}


def _stat(name, x, why="the result could not be stored"):
    return _core.produce(name, x, why=why)[0][0]


def sum(x):
    """Sum of the samples (per part). numpy: ``numpy.sum``."""
    return _stat("dspfs_sum", x)


def mean(x):
    """Mean of the samples, 0 for none. numpy: ``numpy.mean``."""
    return _stat("dspfs_mean", x)


def magsq_sum(x):
    """Sum of the squared magnitudes. numpy: ``numpy.sum(numpy.abs(x)**2)``."""
    return _stat("dspfs_magsq_sum", x)


def rms(x):
    """Root mean square. numpy: ``numpy.sqrt(numpy.mean(numpy.abs(x)**2))``."""
    return _stat("dspfs_rms", x)


def median(x):
    """Median, the mean of the two middle points for an even count (complex data sorted by
    magnitude). numpy (real): ``numpy.median``."""
    return _stat("dspfs_median", x)


def max(x):
    """Largest sample, the first of equal ones (complex: largest magnitude, returned whole).
    numpy: ``x.max()``, complex ``x[numpy.argmax(abs(x))]``."""
    return _stat("dspfs_max", x)


def min(x):
    """Smallest sample, as ``max``. numpy: ``x.min()``."""
    return _stat("dspfs_min", x)


def gmean(x):
    """Geometric mean, the principal n-th root of the product (0 when the product is below the
    smallest normal number). scipy: ``scipy.stats.gmean``."""
    return _stat("dspfs_gmean", x)


def hmean(x):
    """Harmonic mean, 0 when a sample is zero. scipy: ``scipy.stats.hmean``."""
    return _stat("dspfs_hmean", x)


def var(x, ddof=0):
    """Variance over n (ddof 0) or n - 1 (ddof 1), real. numpy: ``numpy.var(x, ddof=ddof)``."""
    return _stat("dspfs_samp_var" if ddof else "dspfs_pop_var", x)


def std(x, ddof=0):
    """Standard deviation over n or n - 1. numpy: ``numpy.std(x, ddof=ddof)``."""
    return _stat("dspfs_samp_stddev" if ddof else "dspfs_pop_stddev", x)


def skew(x):
    """Skewness of real data from the biased moments (L for zero variance, 0 when the third
    moment is 0 too). scipy: ``scipy.stats.skew``."""
    return _stat("dspfs_skew", x, why="needs real data")


def excess(x):
    """Excess kurtosis of real data from the biased moments (-3 for no data, L for zero
    variance). scipy: ``scipy.stats.kurtosis``."""
    return _stat("dspfs_excess", x, why="needs real data")


def hist(x, low, width, bins):
    """Counts of `bins` bins of `width` from `low` (complex data by magnitude); values up to
    bins * 1.0000012 widths past low still count in the last bin. numpy:
    ``numpy.histogram(x, bins, (low, low + bins * width))[0]``."""
    return _core.produce("dspfs_hist", x, low, width, bins, why="the bins could not be stored")[0]


def peak(x, interp="parabola", minimum=False, index=None):
    """Value and fractional position (in samples) of the largest sample, or the smallest with
    `minimum`, or of the sample at `index`; complex samples count by squared magnitude.

    `interp` refines both: None, "parabola" (through three samples), "gauss" (a Gaussian
    through the two samples next to the peak) or "gauss2" (with a correction term). A
    Gaussian offset outside -0.5 .. 1.5 raises DspError. numpy (parabola):
    ``i = numpy.argmax(x)``, then the vertex of the parabola through x[i-1], x[i], x[i+1]."""
    if interp not in _INTERP:
        raise ValueError(f"interp must be one of {', '.join(map(str, _INTERP))}, not {interp!r}")
    flags = _INTERP[interp] | (0x2000 if minimum else 0) | (0x1000 if index is not None else 0)
    out = _core.produce("dspfs_peak", x, flags, 0 if index is None else int(index),
                        why="the Gaussian offset left -0.5 .. 1.5")[0]
    return out[0], out[1]
