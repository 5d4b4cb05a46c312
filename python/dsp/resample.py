"""Polyphase resampling with a tabulated kernel, one-shot and as a stream, and the streaming
resampler (pre-filter, kernel, half-band filter and decimation by two in one object).

A kernel is a record of ``resampling_kernel`` (point 0 the width W, then W P + 1 values, P
phases per tap) or the number 0 .. 4 of one of the library's stored kernels (1024 phases per
tap, 256 for kernel 2), built once per process.
"""

import numpy as np

from . import _core
from ._core import ffi

_INT32_MAX = 2**31 - 1


def _resample(fam, x, step, kernel, mode, n, history):
    """One call of dspfd_rsmp (kernel an array) or dspfd_rsmp2 (a stored kernel's number)."""
    if n is None:
        if step == 0:
            raise ValueError("a step of 0 makes outputs without end: give the number n wanted")
        # At least as many as the block can make (the library trims this to its own bound),
        # so a block is never stopped early and a carried history stays whole.
        n = min(int((x.size + 2) / step) + 4, _INT32_MAX) if step > 0 else 0
    elif n < 0:
        raise ValueError(f"n must not be negative, not {n}")
    y = _core.record(fam)
    y.n = n
    if np.ndim(kernel) == 0:
        name, args = "dspfd_rsmp2", (mode, int(kernel))
        why = (f"needs mode 0 or 1, a stored kernel 0 .. 4 and a step >= 0 (mode {mode}, "
               f"kernel {kernel}, step {step})")
    else:
        k = _core.vector(kernel, fam, name="kernel")[0]
        name, args = "dspfd_rsmp", (mode, _core.record(fam, k))
        why = (f"needs mode 0 or 1, a step >= 0 and a real kernel of width W >= 1 and W P + 2 "
               f"points (mode {mode}, step {step})")
    fam.call(name, _core.record(fam, x), y, *args, step, history, why=why)
    return _core.values(y, fam)


def resample(x, step, kernel, mode=1, n=None):
    """x resampled by `step` input samples per output (0.5 doubles the rate) through `kernel`,
    from zeros before x; at most n outputs (by default all that x gives).

    With s = [0] * W + x and P = (len(kernel) - 2) // W phases per tap, output k reads the
    window s[m .. m + W - 1], m = ceil(k step), at phase f = (m - k step) P, i = floor(f):
    y[k] = sum_t s[m + t] c_t, c_t = kernel[1 + i + t P] (mode 0), plus
    (f - i) (kernel[2 + i + t P] - kernel[1 + i + t P]) in mode 1 (linear between phases).
    Outputs are made while m <= len(x): floor(len(x) / step) + 1 of them. numpy::

        k = numpy.arange(int(len(x) / step) + 1); m = numpy.ceil(k * step).astype(int)
        f = (m - k * step) * P; i = f.astype(int); t = numpy.arange(W) * P
        c = kernel[1 + i[:, None] + t] + (mode == 1) * (f - i)[:, None] * (
            kernel[2 + i[:, None] + t] - kernel[1 + i[:, None] + t])
        y = (s[m[:, None] + numpy.arange(W)] * c).sum(1)

    ``scipy.signal.resample_poly`` resamples by a rational factor with its own filter: a loose
    comparison only. A kernel of at most one point copies x."""
    x, fam = _core.vector(x)
    return _resample(fam, x, step, kernel, mode, n, ffi.NULL)


class Resampler:
    """The kernel resampler over a stream (see `resample`): the history record carries the
    last window's samples and the read position from block to block, so the blocks' outputs
    joined are the outputs of ``resample`` on the whole signal, bit for bit. The precision is
    fixed by the first block (or `dtype`)."""

    def __init__(self, step, kernel, mode=1, dtype=None):
        if step == 0:
            raise ValueError("a step of 0 makes outputs without end")
        self.step, self.kernel, self.mode = step, kernel, mode
        self._fam = None if dtype is None else _core.family(dtype)
        self._history = None

    def __call__(self, block):
        x, self._fam = _core.vector(block, self._fam)
        if self._history is None:
            self._history = _core.record(self._fam)  # zeros before the first block
        return _resample(self._fam, x, self.step, self.kernel, self.mode, None, self._history)

    def reset(self):
        """Forgets the carried samples and position: the next block starts from zeros."""
        self._history = None


class StreamingResampler:
    """The library's streaming resampler, block by block: the pre-filter (stored set 100, 23
    taps), the kernel resampler with stored kernel 4 (mode 1) at step 1/2, the half-band
    filter (stored set 101, 39 taps) and a decimation by two, with the first `skip` (54)
    outputs of the stream dropped. The chain runs at the ratio 1: a stream of n points gives
    n - 53 points (the kernel's n / step + 1 outputs halved, less the skip), flat within 0.1 dB
    up to 0.4 cycles per sample. Equivalent of one piece in this package's functions::

        v = dsp.sfir(x, dsp.fir_stored(100)); v = dsp.resample(v, 0.5, 4, mode=1)
        y = dsp.sfir(v, dsp.fir_stored(101))[::2][54:]

    With ``fine=False`` blocks pass unchanged. Joined blocks equal one piece to rounding;
    `reset` starts the stream again. The coefficient and state records are freed by `close`
    (or leaving a ``with`` block, or collection). The precision is fixed by the first block
    (or `dtype`)."""

    def __init__(self, fine=True, dtype=None):
        self.fine = bool(fine)
        self._fam = None
        self._coef = self._state = self._scratch = None
        self._closed = False
        if dtype is not None:
            self._open(_core.family(dtype))

    def _open(self, fam):
        self._fam = fam
        prefix = "dspfh_rsmp_" if fam.single else "dsph_rsmp_"
        coef = ffi.gc(ffi.new(prefix + "coef *"), fam.fn("dspfh_rsmp_coef_destroy"))
        fam.call("dspfh_rsmp_coef_init", coef, why="")
        fam.call("dspfh_rsmp_coef_alloc", coef, 0, why="the filters and kernel could not be stored")
        fam.call("dspfh_rsmp_coef_setup", coef, 1.0, int(self.fine), 0, why="needs reserved 0")
        state = ffi.gc(ffi.new(prefix + "state *"), fam.fn("dspfh_rsmp_state_destroy"))
        fam.call("dspfh_rsmp_state_init", state, why="")
        fam.call("dspfh_rsmp_state_alloc", coef, state, 0, why="the histories could not be stored")
        fam.call("dspfh_rsmp_state_reset", coef, state, why="")
        self._coef, self._state, self._scratch = coef, state, _core.record(fam)

    @property
    def skip(self):
        """The number of leading outputs of the stream dropped (54 with the fine stage); None
        before the records are made (first block or `dtype`) and after `close`."""
        return None if self._coef is None else self._coef.skip_out

    def __call__(self, block):
        if self._closed:
            raise ValueError("the resampler is closed")
        x, fam = _core.vector(block, self._fam)
        if self._coef is None:
            self._open(fam)
        y = _core.record(fam)
        y.n = x.size + 8  # above the n + 2 points a block can give: nothing is cut
        fam.call("dspfh_rsmp", _core.record(fam, x), y, self._scratch, self._coef, self._state,
                 why="the block could not be resampled")
        return _core.values(y, fam)

    def reset(self):
        """Zeros every history and phase and drops the first `skip` outputs again."""
        if self._coef is not None and not self._closed:
            self._fam.call("dspfh_rsmp_state_reset", self._coef, self._state, why="")

    def close(self):
        """Frees the library's records now; the object cannot be used afterwards."""
        if self._coef is not None:
            for rec in (self._state, self._coef, self._scratch):
                ffi.release(rec)
            self._coef = self._state = self._scratch = None
        self._closed = True

    def __enter__(self):
        return self

    def __exit__(self, *exc):
        self.close()
