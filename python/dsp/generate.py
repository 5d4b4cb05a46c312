"""Signal generators and the resampling kernels.

Frequencies are in cycles per unit of `delta`, the sample spacing of the generated record
(returned with it where it matters). The oscillator advances by rotation and is re-anchored at
the exact phase every 256 points, so long records keep their phase.
"""

import numpy as np

from . import _core

_STORAGE = "the storage could not be had"


def _generate(name, n, dtype, cplx, delta, *args, why=_STORAGE):
    if n < 0:
        raise ValueError(f"n must not be negative, not {n}")
    fam = _core.family(dtype)
    rec = _core.record(fam, delta=delta)
    rec.n, rec.cplx = n, cplx
    fam.call(name, rec, *args, why=why)
    return _core.values(rec, fam)


def cos(n, freq, phase=0.0, delta=1.0, dtype=np.float64):
    """cos(phase + 2 pi freq delta k), k = 0 .. n-1; a complex dtype gets zero imaginary
    parts. numpy: ``numpy.cos(phase + 2 * numpy.pi * freq * delta * numpy.arange(n))``."""
    return _generate("dspfc_cos", n, dtype, np.dtype(dtype).kind == "c", delta, freq, phase)


def cexp(n, freq, phase=0.0, delta=1.0, dtype=np.complex128):
    """exp(i (phase + 2 pi freq delta k)), complex64 or complex128 (a real dtype gives cos).
    numpy: ``numpy.exp(1j * (phase + 2 * numpy.pi * freq * delta * numpy.arange(n)))``."""
    return _generate("dspfc_cexp", n, dtype, np.dtype(dtype).kind == "c", delta, freq, phase)


def line(n, slope, start=0.0, delta=1.0, dtype=np.float64):
    """start + k slope delta, accumulated by repeated addition of slope delta (so float32
    records drift like a float32 running sum). numpy: ``start + slope * delta * arange(n)``."""
    return _generate("dspfc_line", n, dtype, np.dtype(dtype).kind == "c", delta, slope, start)


def resampling_kernel(n, mode=None, cos=None, pcos=None, dtype=np.float64):
    """A tabulated resampling kernel of n points (n even): its width at point 0 and v(theta)
    at points n/2 +- j, theta = 2 pi j / (n - 2). Give exactly one of `mode` (a stored kernel,
    0 .. 4, widths 8, 13, 8, 10, 13), `cos` = [width, c1, c2, ...] for
    v = c1 + sum c_i cos((i - 1) theta), or `pcos` = [width, c1, c2, ...] for
    v = sum c_i cos(theta)^(i - 1)."""
    if (mode is None) + (cos is None) + (pcos is None) != 2:
        raise ValueError("resampling_kernel: give one of mode, cos and pcos")
    fam = _core.family(dtype)
    kernel = _core.record(fam)
    kernel.n = n
    if mode is not None:
        fam.call("dspfc_rsmp", kernel, mode, why=f"needs a stored mode 0 .. 4, not {mode}")
    else:
        desc = _core.vector(cos if pcos is None else pcos, fam, cplx=False, name="desc")[0]
        fam.call("dspfc_rsmp_cos" if pcos is None else "dspfc_rsmp_pcos", kernel,
                 _core.record(fam, desc), why="needs an even length")
    return _core.values(kernel, fam)
