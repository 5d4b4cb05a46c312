"""Fourier transforms, the DCT, the Hilbert transform and the analytic signal.

Forward transforms carry the factor 1/n, inverse ones are unscaled:
X[k] = (1/n) sum_m x[m] e^(-2 pi i k m / n) and x[m] = sum_k X[k] e^(+2 pi i k m / n).
So ``fft(x) == numpy.fft.fft(x) / n`` and ``ifft(X) == numpy.fft.ifft(X) * n``. A half
spectrum holds X[0] .. X[n/2] (n/2 + 1 points).
"""

from ._core import inplace

_POW2 = "needs a length that is a power of two"


def fft(x):
    """Complex FFT of 2^k points: ``numpy.fft.fft(x) / len(x)``."""
    return inplace("dspfi_fft", x, 0, why=_POW2)[0]


def ifft(X):
    """Unscaled inverse FFT of 2^k points: ``numpy.fft.ifft(X) * len(X)``."""
    return inplace("dspfi_fft", X, 1, why=_POW2)[0]


def rfft(x):
    """Half spectrum of a real signal of 2^k points: ``numpy.fft.rfft(x) / len(x)``."""
    return inplace("dspfi_rfft", x, why="needs a real signal whose length is a power of two")[0]


def irfft(X):
    """Real signal of m = 2(n - 1) points from a half spectrum of n points, unscaled
    (m a power of two): ``numpy.fft.irfft(X, m) * m``."""
    return inplace("dspfi_irfft", X, why="needs 2(n - 1), the signal's length, a power of two")[0]


def dft(x, inverse=False):
    """DFT of any length (powers of two through the FFT, others through the chirp-z
    transform): ``numpy.fft.fft(x) / n``, inverse ``numpy.fft.ifft(x) * n``. Fewer than two
    points come back unchanged."""
    return inplace("dspfi_dft", x, int(bool(inverse)), why="the transform could not be set up")[0]


def rdft(x):
    """Half spectrum of a real signal of any length: ``numpy.fft.rfft(x) / len(x)``."""
    return inplace("dspfi_rdft", x, why="needs a real signal")[0]


def irdft(X, odd=False):
    """Real signal of m = 2(n - 1) points (2n - 1 with `odd`) from a half spectrum of n
    points, unscaled: ``numpy.fft.irfft(X, m) * m``."""
    return inplace("dspfi_irdft", X, int(bool(odd)), why="needs a half spectrum")[0]


def dct(x, inverse=False):
    """DCT-II of a real signal, C[k] = (2/n) w[k] sum_m x[m] cos(pi k (2m + 1) / (2n)) with
    w[0] = sqrt(1/2), else 1: ``scipy.fft.dct(x, norm='ortho') * sqrt(2 / n)``. `inverse`
    applies its exact inverse (``scipy.fft.idct(C / sqrt(2 / n), norm='ortho')``)."""
    return inplace("dspfi_dct", x, int(bool(inverse)), why="needs a real signal")[0]


def hilbert(x):
    """Hilbert transform: positive frequencies times -i, negative ones times +i, 0 Hz and the
    Nyquist point removed; a real signal stays real: ``scipy.signal.hilbert(x).imag``."""
    return inplace("dspfi_hilbert", x, why="the transform could not be set up")[0]


def analytic(x):
    """Analytic signal: positive frequencies doubled, negative ones removed, so cos becomes
    e^(i w t): ``scipy.signal.hilbert(x)``."""
    return inplace("dspfi_analytic", x, why="the transform could not be set up")[0]
