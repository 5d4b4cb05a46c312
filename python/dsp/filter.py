"""FIR design and filtering, decimation and the half-band filter, one-shot and as streams.

A stream object keeps the library's history (or phase, or state) record between blocks, so
processing a signal block by block gives the samples of processing it whole. Its precision is
fixed by its first block (or `dtype`); later blocks are converted to it.
"""

import numpy as np

from . import _core
from ._core import ffi

FIR_KINDS = {
    "bandpass": 0, "bandstop": 1, "highpass": 2, "lowpass": 3, "sinh": 4, "delayed_lowpass": 5,
    "differentiator": 6, "gauss": 7, "quadrature": 8, "kaiser": 9, "weighted_lowpass": 10,
}


def fir_design(n, kind, a=0.0, b=0.0, dtype=np.float64):
    """The n coefficients of a linear-phase FIR filter in closed form (no window), frequencies
    in cycles per sample. `kind` is a name of FIR_KINDS or its number: bandpass (a centre, b
    bandwidth), bandstop (odd n), highpass (a cut-off, odd n), lowpass (a cut-off), sinh and
    kaiser smoothing kernels (a shape, 0 for the default of the length), delayed_lowpass (a
    cut-off, b delay), differentiator, gauss (a bandwidth), quadrature, weighted_lowpass.
    Low-pass equivalent: ``2 a numpy.sinc(2 a m)`` at the offsets m from the centre."""
    if n < 0:
        raise ValueError(f"n must not be negative, not {n}")
    fam = _core.family(dtype)
    h = _core.record(fam)
    h.n = n
    fam.call("dspfc_fir", h, FIR_KINDS.get(kind, kind), a, b,
             why=f"kind {kind!r} is unknown or needs an odd length")
    return _core.values(h, fam)


def fir_stored(code, dtype=np.float64):
    """One of the library's stored coefficient sets: code 100 (12 taps), 101 (20), 102 (5)."""
    fam = _core.family(dtype)
    h = _core.record(fam)
    fam.call("dspfc_fir2", h, code, why=f"no coefficient set has the code {code}")
    return _core.values(h, fam)


class _Stream:
    """A block processor whose carried record is made for the precision of its first block."""

    def __init__(self, dtype=None):
        self._fam = None if dtype is None else _core.family(dtype)
        self._carry = None

    def _block(self, block):
        x, self._fam = _core.vector(block, self._fam)
        if self._carry is None:
            self._carry = self._new_carry(self._fam)
        return x

    def _new_carry(self, fam):
        return _core.record(fam)

    def reset(self):
        """Forgets the carried samples: the next block starts from zeros."""
        self._carry = None


class FirFilter(_Stream):
    """Causal FIR filter h over a stream: y[k] = sum_j h[j] x[k - j], continued across blocks.

    ``FirFilter(h)(x)`` equals ``scipy.signal.lfilter(h, 1, x)``, and so does filtering x in
    pieces with one object. ``FirFilter.symmetric(half, odd, antisym)`` takes a linear-phase
    filter by its first half (2k - 1 taps when odd, else 2k; mirrored, negated when antisym).
    The library keeps the spectrum of the last long filter for one transform length and block
    kind and refuses a block that needs another; the binding then releases the library's
    caches (``dsp_free_internal``) and filters the block again, so any block lengths work. It
    also releases them when a filter used last on one block kind gets a block of the other, for
    which the library would take the spectrum of an earlier filter."""

    def __init__(self, h, dtype=None):
        super().__init__(dtype)
        self._h = np.asarray(h)
        self._sym = None

    @classmethod
    def symmetric(cls, half, odd=True, antisym=False, dtype=None):
        f = cls(half, dtype)
        f._sym = (int(bool(odd)), int(bool(antisym)))
        return f

    def __call__(self, block):
        x = self._block(block)
        return _fir(self._fam, x, self._h, self._sym, self._carry)


_LAST_FILTER = {}  # per family: the filter and block kind of the last call


def _fir(fam, x, h, sym, history):
    hh = _core.vector(h, fam, name="h")[0]
    # The library keys its cached filter spectra (one for real, one for complex blocks) by the
    # filter alone: the same filter on a block of the other kind would take the complex
    # spectrum of an earlier filter. Such a change of kind releases the cache first.
    key, cplx = (hh.tobytes(), hh.dtype, sym), x.dtype.kind == "c"
    if _LAST_FILTER.get(fam, (key, cplx)) != (key, cplx) and _LAST_FILTER[fam][0] == key:
        fam.fn("dspf_free_internal")()
    _LAST_FILTER[fam] = (key, cplx)
    y, rx, rh = _core.record(fam), _core.record(fam, x), _core.record(fam, hh)
    name, args = ("dspfd_fir", (rh,)) if sym is None else ("dspfd_sfir", (rh, *sym))
    try:
        fam.call(name, rx, y, *args, history, why="")
    except _core.DspError:
        # The cached spectrum of this filter was made for another transform length or block
        # kind: release the caches (the history is not advanced by a refused block) and retry.
        fam.fn("dspf_free_internal")()
        fam.call(name, rx, y, *args, history, why="the block could not be filtered")
    return _core.values(y, fam)


def fir(x, h):
    """x filtered by the FIR filter h from zeros: ``scipy.signal.lfilter(h, 1, x)``."""
    x, fam = _core.vector(x)
    return _fir(fam, x, h, None, ffi.NULL)


def sfir(x, half, odd=True, antisym=False):
    """x filtered by the linear-phase filter given by its first half (see FirFilter):
    ``scipy.signal.lfilter(numpy.r_[half, s * half[::-1][odd:]], 1, x)``, s = -1 if antisym."""
    x, fam = _core.vector(x)
    return _fir(fam, x, half, (int(bool(odd)), int(bool(antisym))), ffi.NULL)


class Decimator(_Stream):
    """Keeps every factor-th point of a stream, starting at index `phase` of the first block:
    ``x[phase::factor]`` of the whole signal."""

    def __init__(self, factor, phase=0, dtype=None):
        super().__init__(dtype)
        self.factor, self._start = int(factor), phase

    def _new_carry(self, fam):
        self._phase = np.array([self._start], fam.real)
        return _core.record(fam, self._phase)

    @property
    def phase(self):
        """The index, within the next block, of the next point kept."""
        return self._start if self._carry is None else int(self._carry.data[0])

    def __call__(self, block):
        x = self._block(block)
        return _core.produce("dspfd_deci", x, self.factor, self._carry, why="the result could not be stored")[0]


def decimate(x, factor, phase=0):
    """Every factor-th point from index `phase` (factor < 1 counts as 1): ``x[phase::factor]``."""
    return Decimator(factor, phase)(x)


class HalfBandFilter(_Stream):
    """The low-pass to run before a decimation by two: four cascaded stages
    H(z) = (0.25 + 0.5 z^-1 + 0.5 z^-2 + 0.25 z^-3) / (1 + 0.5 z^-2), unit gain at 0, zeros at
    the Nyquist frequency and a third of the rate, with the delays carried across blocks.
    scipy: ``lfilter`` with these coefficients four times (``sosfilt`` of four equal sections)."""

    def __call__(self, block):
        x = self._block(block)
        return _core.produce("dspfd_hwfilt", x, ffi.NULL, self._carry, why="the result could not be stored")[0]


def halfband(x):
    """x through the half-band filter from zero delays (see HalfBandFilter)."""
    return HalfBandFilter()(x)
