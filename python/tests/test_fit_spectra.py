"""Any-length and averaged spectra, regression, polynomials and splines against numpy/scipy."""

import numpy as np
import pytest
import scipy.signal
import scipy.stats
from numpy.polynomial import polynomial as P
from scipy.interpolate import CubicSpline
from conftest import close, signal

import dsp

C = {np.float32: np.complex64, np.float64: np.complex128}


def wide(x):
    return x.astype(np.complex128 if x.dtype.kind == "c" else np.float64)


def test_dft_spectrum_any_length(any_kind):
    x, w = signal(100, any_kind), dsp.window("Hann", 100).astype(np.float64)
    for length, arg in ((100, 0), (150, 150)):  # 0: no padding
        want = np.fft.fft(wide(x) * w, length) / 100
        s = dsp.dft_spectrum(x, "Hann", form="complex", length=arg, delta=0.5, rotate=False)
        close(s.values, want if x.dtype.kind == "c" else want[: length // 2 + 1], any_kind)
        assert s.delta == pytest.approx(1 / (0.5 * length), rel=1e-6)


@pytest.mark.parametrize("segment,overlap,scaling,detrend", [
    (128, -1, "power", False), (100, 30, "density", True), (0, 0, "power", False)])
def test_welch_against_scipy(any_kind, segment, overlap, scaling, detrend):
    x = signal(1000, any_kind) + 0.3
    s = dsp.welch(x, segment, overlap, "hann", scaling, detrend, delta=1 / 48000)
    m = segment or len(x)
    f, want = scipy.signal.welch(wide(x), 48000, "hann", m, m // 2 if overlap < 0 else overlap,
                                 detrend="constant" if detrend else False,
                                 scaling="spectrum" if scaling == "power" else "density",
                                 return_onesided=x.dtype.kind != "c")
    close(s.values, want, any_kind)
    assert s.delta == pytest.approx(f[1], rel=1e-6) and s.onesided == (x.dtype.kind != "c")


def test_regression_and_polynomials(real):
    rng = np.random.default_rng(3)
    x = np.linspace(-2, 3, 30).astype(real)
    y = (1 - 2 * x + 0.5 * x**3 + 0.1 * rng.standard_normal(30)).astype(real)
    X, Y = wide(x), wide(y)
    close(np.array(dsp.lin_regres(y, 0.5)), scipy.stats.linregress(0.5 * np.arange(30), Y)[:3], real)
    close(np.array(dsp.lin_regres2(x, y)), scipy.stats.linregress(X, Y)[:3], real)
    c = dsp.psolve(x, y, 3)
    close(c, np.polyfit(X, Y, 3)[::-1], real)
    z = (y + 1j * y[::-1]).astype(C[real])
    close(dsp.pcsolve(x, z, 2), np.polyfit(X, wide(z), 2)[::-1], real)
    close(dsp.peval(c, x), P.polyval(X, wide(c)), real)
    close(dsp.peval(c, x * (1 + 1j)), P.polyval(X * (1 + 1j), wide(c)), real)
    close(dsp.proots(np.array([6, -5, 1, 0], real)), [2 + 0j, 3], real)  # zero high coefficient
    close(dsp.proots(np.array([0, 2, 0, 2], real)), [-1j, 0, 1j], real)
    close(dsp.pztoc(np.array([2, 3, -1], real)), np.poly([2, 3, -1])[::-1], real)
    close(dsp.pztoc(np.array([1j, -1j, 2], C[real])), np.poly([1j, -1j, 2])[::-1] + 0j, real)


def through(xk, values, mode):
    """scipy's function through the knots: linear, or the cubic spline of the mode."""
    if mode == "linear":
        return lambda at: np.interp(at, xk, values)
    return CubicSpline(wide(xk), wide(values), bc_type=mode)


@pytest.mark.parametrize("mode", list(dsp.MODES))
def test_interpolation_against_scipy(real, mode):
    x, grid = np.array([0, 0.4, 1.1, 1.5, 2.6, 3.0, 4.2], real), 0.5 * np.arange(7)
    pos = np.array([-0.3, 0.2, 1.3, 2.9, 4.5], real)
    for y in (np.cos(x), (np.cos(x) - 2j * x**2).astype(C[real])):
        close(dsp.inter(x, y, pos, mode), through(x, y, mode)(pos), real)
        close(dsp.interp(y, pos, mode, delta=0.5), through(grid, y, mode)(pos), real)
        if mode != "linear":
            close(dsp.cspline(y, mode, delta=0.5), through(grid, y, mode)(grid, 2), real)
            close(dsp.cspline_2d(x, y, mode), through(x, y, mode)(x, 2), real)


@pytest.mark.parametrize("call,function", [
    (lambda f: dsp.dft_spectrum(np.ones(10, f), length=5), "dspfh_dft"),
    (lambda f: dsp.welch(np.ones(10, f), 4, 4), "dspfh_avg"),
    (lambda f: dsp.lin_regres(np.ones(1, f)), "dspfs_lin_regres"),
    (lambda f: dsp.lin_regres2(np.ones(3, f), np.arange(3, dtype=f)), "dspfs_lin_regres2"),
    (lambda f: dsp.psolve(np.ones(5, f), np.arange(5, dtype=f), 2), "dspfs_psolve"),
    (lambda f: dsp.pcsolve(np.arange(3, dtype=f), np.ones(3, f), 3), "dspfs_pcsolve"),
    (lambda f: dsp.proots(np.array([0, np.nan], f)), "dspfi_proots"),
    (lambda f: dsp.interp(np.ones(3, f), np.ones(2, C[f])), "dspf_interp"),
    (lambda f: dsp.cspline(np.ones(3, f), "linear"), "dspf_cspline"),
    (lambda f: dsp.cspline_2d(np.array([0, 2, 1], f), np.ones(3, f)), "dspfb_cspline_2d"),
    (lambda f: dsp.inter(np.arange(3, dtype=f), np.ones(2, f), np.ones(2, f)), "dspfb_inter"),
])
def test_failures_name_the_function(real, call, function):
    with pytest.raises(dsp.DspError, match=f"^{function if real == np.float32 else function.replace('dspf', 'dsp', 1)} failed: .+"):
        call(real)
    with pytest.raises(ValueError, match="mode must be"):
        dsp.interp(np.ones(3, real), [1.0], "cubic")
