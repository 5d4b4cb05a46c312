"""numpy binding of the dsp signal-processing library.

float32 and complex64 arrays run through the library's single-precision family, float64 and
complex128 (and any other numbers) through the double one; complex arrays are complex records.
Results are new numpy arrays; inputs are read in place without copying where possible. A failing
call raises DspError, naming the C function and the reason.

    >>> import numpy as np, dsp
    >>> x = np.cos(2 * np.pi * 1000 * np.arange(4800) / 48000)
    >>> s = dsp.spectrum(x, window="Flattop", delta=1 / 48000)
    >>> s.frequencies[np.argmax(s.values)]      # 1000.0

``python -m dsp spectrum FILE`` measures the strongest tones of a recording.
"""

from ._core import DspError, library_path, version
from .binary import (add, avg_add, conj_mul, correlate, div, dot, maximum, minimum, mul, pmul,
                     ritoc, sub)
from .calib import circle_fit, circular_interpolation, inv, matmul, one_port_terms
from .elementwise import (acos, asin, conj, cosh, db, differ, exp, exp10, i0, integ, limit, log,
                          log10, mag, magsq, phase, recip, sinh, sqrt, square, unwrap, y0, y1)
from .fit import (MODES, cspline, cspline_2d, inter, interp, lin_regres, lin_regres2, pcsolve, peval,
                  proots, psolve, pztoc)
from .generate import cexp, cos, line, resampling_kernel
from .filter import (FIR_KINDS, Decimator, FirFilter, HalfBandFilter, decimate, fir, fir_design,
                     fir_stored, halfband, sfir)
from .stats import (excess, gmean, hist, hmean, magsq_sum, max, mean, median, min, peak, rms,
                    skew, std, sum, var)
from .trace import (expand_linear, expand_log, find_max, find_min, format_trace, trace_mul,
                    scale_to_fp, scale_to_int, smooth, unwrap_phase)
from .transform import analytic, dct, dft, fft, hilbert, ifft, irdft, irfft, rdft, rfft
from .windows import (Spectrum, apply_window, averaged_spectrum, dft_spectrum, enbw, spectrum, welch, window,
                      window_kind, window_scale)

__version__ = "2.5.0"
