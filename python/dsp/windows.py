"""Spectral windows by name, their scale and noise bandwidth, and the windowed spectrum.

A window kind is a name of the library's table ("Hann", "Flattop", "Kaiser90", "P401",
"DSP_WINDOW_HANN", ... in any case) or its number 0-24. `norm` calibrates the window: "mean"
(coherent gain 1: a tone keeps its amplitude), "rms" (noise keeps its power) or "peak".
Windows are sampled periodically (scipy's ``sym=False``) unless `symmetric`; `width` gives
the explicit period of a cosine sum (zero outside) or the length of the uniform box.
"""

from typing import NamedTuple

import numpy as np

from . import _core
from ._core import DspError, ffi, lib

_NORMS = {"mean": 0, "rms": 1, "peak": 2}
_FORMS = {"complex": 0x000, "magnitude": 0x100, "power": 0x200}
_SCALINGS = {"power": 0x200, "density": 0x300}
_DETREND = 0x400
_SCRATCH = {}


def window_kind(kind):
    """The number of a window kind given by name (or already by number)."""
    if not isinstance(kind, str):
        return int(kind)
    value = ffi.new("dsp_window *")
    if lib.dsp_window_from_str(kind.encode(), value) != 0:
        raise DspError("dsp_window_from_str", f"no window is called {kind!r}")
    return value[0]


def _flags(norm, symmetric=False, rotate=False, width=None):
    if norm not in _NORMS:
        raise ValueError(f"norm must be one of {', '.join(_NORMS)}, not {norm!r}")
    flags = _NORMS[norm] | (4 if symmetric else 0) | (8 if width is not None else 0)
    return flags | (16 if rotate else 32)


def apply_window(x, kind, norm="mean", symmetric=False, rotate=False, width=None):
    """`x` (real or complex) times the window of `kind`, both parts of complex points.

    With `rotate` the windowed signal is rotated left by n/2 points, bringing the window's
    centre (index n/2) to index 0, as ``numpy.fft.ifftshift`` of the product for even n.
    Equivalent: ``x * window(kind, len(x), norm)``."""
    k, flags = window_kind(kind), _flags(norm, symmetric, rotate, width)
    why = f"window {kind!r} cannot be generated with these options"
    if width is None:
        return _core.inplace("dspfi_window", x, k, flags, why=why)[0]
    return _core.inplace("dspfi_window2", x, k, flags, width, why=why)[0]


def window(kind, n, norm="mean", symmetric=False, rotate=False, width=None, dtype=np.float64):
    """The n coefficients of a window, centred at index n/2.

    Equivalent (for the kinds scipy knows): ``scipy.signal.get_window('hann', n)``, which has
    unit peak, divided by its mean (norm "mean") or its rms (norm "rms")."""
    return apply_window(np.ones(n, dtype), kind, norm, symmetric, rotate, width)


def window_scale(kind, n, norm="mean", width=None, dtype=np.float64):
    """Peak of the n-point window normalised by `norm` (2 for Hann with unit mean, 1 with unit
    peak): ``window(kind, n, norm).max()`` for the closed forms."""
    fam = _core.family(dtype)
    out = fam.scalar_out()
    flags = _flags(norm, width=width) & 0xF
    why = f"window {kind!r} has no scale with these options"
    if width is None:
        fam.call("dspf_window_scale", out, window_kind(kind), flags, n, why=why)
    else:
        fam.call("dspf_window2_scale", out, window_kind(kind), flags, n, width, why=why)
    return fam.real.type(out[0])


def enbw(kind, n, width=None, dtype=np.float64):
    """Equivalent noise bandwidth in bins, mean square over squared mean of the window
    (1.5 for Hann): ``n * sum(w**2) / sum(w)**2``."""
    fam = _core.family(dtype)
    out = fam.scalar_out()
    why = f"window {kind!r} has no noise bandwidth"
    if width is None:
        fam.call("dspf_window_enbw", out, window_kind(kind), n, why=why)
    else:
        fam.call("dspf_window2_enbw", out, window_kind(kind), n, width, why=why)
    return fam.real.type(out[0])


class Spectrum(NamedTuple):
    """A spectrum's values and its bin spacing `delta` (1 / (delta of the signal * length))."""

    values: np.ndarray
    delta: float
    onesided: bool

    @property
    def frequencies(self):
        """The frequency of every bin; the upper half of a two-sided spectrum is negative."""
        n = len(self.values)
        if self.onesided:
            return np.arange(n) * self.delta
        return np.fft.fftfreq(n, 1.0 / (n * self.delta))


def _scratch(fam):
    """The working record kept between spectra so that repeated calls allocate nothing."""
    if fam not in _SCRATCH:
        _SCRATCH[fam] = _core.record(fam)
    return _SCRATCH[fam]


def _transform(export, x, window, norm, form, length, delta, rotate, symmetric, lengths):
    a, fam = _core.vector(x)
    if form not in _FORMS:
        raise ValueError(f"form must be one of {', '.join(_FORMS)}, not {form!r}")
    flags = _flags(norm, symmetric, rotate) | _FORMS[form]
    out = _core.record(fam)
    fam.call(export, _core.record(fam, a, delta), out, _scratch(fam), window_kind(window), flags,
             length, why=f"needs a non-empty signal, a length of 0 or {lengths} of at least "
             f"{len(a)}, and a window {window!r} that takes these options")
    return Spectrum(_core.values(out, fam), float(out.delta), a.dtype.kind != "c")


def spectrum(x, window="flattop", norm="mean", form="power", length=0, delta=1.0, rotate=True,
             symmetric=False):
    """The windowed, zero-padded spectrum of `x` with its bin spacing.

    A copy of x is windowed, zero-padded to `length` points (0: n rounded up to a power of
    two; else a power of two of at least n) and transformed; padding keeps the level of the
    unpadded transform. A real signal gives the half spectrum (length/2 + 1 points), a complex
    one the full spectrum. `form` is "complex", "magnitude" or "power" (|X|^2). With the unit
    mean window a real tone of amplitude A peaks at A/2 ("magnitude"). `delta` is the sample
    spacing; the result's delta is the bin spacing. With `rotate` (the default) the phases
    refer to the record's centre.

    Equivalent: ``numpy.fft.rfft(x * w, length) / len(x)`` with w the window, scaled by
    length / len(x) (and magnitude or power taken)."""
    return _transform("dspfh_fft", x, window, norm, form, length, delta, rotate, symmetric,
                      "a power of two")


def dft_spectrum(x, window="flattop", norm="mean", form="power", length=0, delta=1.0,
                 rotate=True, symmetric=False):
    """``spectrum`` for any length: the same arguments and result, except that `length` 0
    means len(x) (no padding) and any length of at least len(x) is taken (lengths that are
    not powers of two go through the DFT).

    Equivalent: ``numpy.fft.rfft(x * w, length) / len(x)`` (``numpy.fft.fft`` for complex x)
    with w the window, and the magnitude or power taken."""
    return _transform("dspfh_dft", x, window, norm, form, length, delta, rotate, symmetric,
                      "a length")


def welch(x, segment=0, overlap=-1, window="hann", scaling="power", detrend=False, delta=1.0,
          symmetric=False):
    """Welch's averaged power spectrum with its bin spacing: the mean of |X|^2 over segments
    of `segment` points (0: the whole record) starting every segment - `overlap` points
    (overlap < 0: half a segment), X the DFT of the segment (less its mean with `detrend`)
    times the window of `segment` points; divided by (sum w)^2 for the "power" `scaling` (a
    tone of amplitude A reads A^2/2) or by sum w^2 / delta for "density" (power per unit of
    frequency). Real x gives the one-sided spectrum (segment/2 + 1 bins, all but 0 Hz and
    Nyquist doubled), complex x the two-sided one. Points after the last whole segment are
    not used.

    Equivalent: ``scipy.signal.welch(x, 1 / delta, window=w, nperseg=segment,
    noverlap=overlap, detrend="constant" if detrend else False, scaling="spectrum" or
    "density", return_onesided=not complex)[1]`` with w the library's window (for even
    segments scipy's periodic window of the same name)."""
    a, fam = _core.vector(x)
    if scaling not in _SCALINGS:
        raise ValueError(f"scaling must be one of {', '.join(_SCALINGS)}, not {scaling!r}")
    flags = _flags("mean", symmetric) | _SCALINGS[scaling] | (_DETREND if detrend else 0)
    out = _core.record(fam)
    fam.call("dspfh_avg", _core.record(fam, a, delta), out, _scratch(fam), window_kind(window),
             flags, segment, overlap, why=f"needs a segment of 0 to {len(a)} points (at least "
             f"one), an overlap below it and a window {window!r} with a nonzero sum")
    return Spectrum(_core.values(out, fam), float(out.delta), a.dtype.kind != "c")


def averaged_spectrum(x, segments, window="flattop", norm="mean", length=0, delta=1.0,
                      symmetric=False):
    """The mean of the power spectra (see ``spectrum``) of `segments` consecutive segments of
    len(x) // segments points each (the remaining points are left out), with the bin spacing.

    Equivalent (one-sided, without the doubling): ``scipy.signal.welch(x, window=w,
    nperseg=m, noverlap=0, nfft=length, detrend=False, scaling="spectrum")`` with w the
    window and m the segment length. Each segment goes through the windowed spectrum of the
    library, zero-padded as ``spectrum`` pads, and the mean is taken here: the spectrum tool
    locates tones between bins on the padded segments, which ``welch`` (the library's own
    average, unpadded) does not give."""
    a, fam = _core.vector(x)
    if segments < 1 or a.size // segments < 1:
        raise ValueError(f"averaged_spectrum: {a.size} points do not make {segments} segments")
    m = a.size // segments
    parts = [spectrum(a[i * m:(i + 1) * m], window, norm, "power", length, delta,
                      symmetric=symmetric) for i in range(segments)]
    return Spectrum(np.mean([p.values for p in parts], axis=0, dtype=fam.real).astype(fam.real),
                    parts[0].delta, parts[0].onesided)
