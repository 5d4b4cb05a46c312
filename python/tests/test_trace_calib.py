"""Trace kernels and calibration functions against numpy, and their range checks."""

import numpy as np
import pytest
from conftest import REAL, close, signal

import dsp


def test_trace_kernels(real):
    x = signal(40, real) * 3
    close(dsp.trace_mul(x, 2.5), x * real(2.5), real)
    close(dsp.trace_mul(x, 2.5, short_vector=True), x * real(2.5), real)
    v = (real(-4) + real(500 / 6) * (x - real(-3))).astype(real)
    np.testing.assert_array_equal(dsp.scale_to_int(x, -3, 3, -4, 496, rounded=True), np.clip(np.rint(v), -4, 496))
    np.testing.assert_array_equal(dsp.scale_to_int(x, -3, 3, -4, 496), np.trunc(v))
    close(dsp.scale_to_fp(x, -3, 3, 0, 1), (x + 3) / 6, real)
    assert dsp.find_max(x) == np.argmax(x) and dsp.find_max(x, 5, 9) == 5 + np.argmax(x[5:9])
    assert dsp.find_min(x, 1) == 1 + np.argmin(x[1:]) and dsp.find_max(x, 0, 10, skip=(0, 10)) is None
    assert dsp.find_min(x, 0, 40, skip=(3, 30)) == min([*range(3), *range(30, 40)], key=lambda i: x[i])
    close(dsp.expand_linear(7, -1, 2, real), np.linspace(-1, 2, 7), real)
    close(dsp.expand_log(5, 1e-3, 10, real), np.logspace(-3, 1, 5), real)
    y, count = dsp.smooth(x, 5)
    assert count == 40
    close(y[2:-2], np.convolve(x.astype(np.float64), np.ones(5) / 5, "valid"), real)
    assert y[0] == x[0] and y[1] == pytest.approx(x[:3].mean(), rel=1e-6)
    z = np.exp(1j * np.cumsum(np.full(50, 0.9))).astype(np.result_type(real, np.complex64)) * 0.5
    close(dsp.unwrap_phase(z), np.unwrap(np.angle(z.astype(np.complex128))), real)
    q = np.abs(z.astype(np.complex128))**2
    for fmt, want in [("db", 10 * np.log10(q)), ("magnitude", np.sqrt(q)), ("return_loss", -10 * np.log10(q)),
                      ("phase", np.degrees(np.angle(z.astype(np.complex128)))), ("swr", (1 + np.sqrt(q)) / (1 - np.sqrt(q)))]:
        close(dsp.format_trace(z, fmt), want, real)


def test_trace_failures():
    for call, error in [(lambda: dsp.find_max(np.ones(4), 2, 5), ValueError), (lambda: dsp.smooth(np.ones(4), 3, 3, 2), ValueError),
                        (lambda: dsp.smooth(np.ones(9), 4), dsp.DspError), (lambda: dsp.format_trace([1j], "dB"), ValueError),
                        (lambda: dsp.scale_to_int(np.ones(3), 1, 1, 0, 10, rounded=True), dsp.DspError)]:
        with pytest.raises(error):
            call()


def test_matrix_product_and_inverse():
    rng = np.random.default_rng(3)
    a, b = rng.standard_normal((4, 3)) + 1j * rng.standard_normal((4, 3)), rng.standard_normal((3, 2)) * 1j
    np.testing.assert_allclose(dsp.matmul(a, b), a @ b, atol=1e-14)
    m = a[:3] + 2 * np.eye(3)
    np.testing.assert_allclose(dsp.inv(m), np.linalg.inv(m), atol=1e-13)
    with pytest.raises(dsp.DspError, match="^MatrixMult"):
        dsp.matmul(a[:2], b)  # inner size 3 > 2 rows: refused
    with pytest.raises(dsp.DspError, match="^invert"):
        dsp.inv([[1, 2], [2, 4]])


def test_one_port_terms_recover_the_model():
    rng = np.random.default_rng(4)
    e00, e11, t = (0.05 * (rng.standard_normal(6) + 1j * rng.standard_normal(6)) for _ in range(3))
    t = t + 0.9
    g = np.array([-1, 1, 0])[:, None] * np.ones(6)
    m = e00 + t * g / (1 - e11 * g)
    for got, want in zip(dsp.one_port_terms(*m, -1, 1, 0), (e00, e11, t)):
        np.testing.assert_allclose(got, want, atol=1e-12)


def test_circles():
    centre, r = 0.2 - 0.1j, 0.7
    pts = [centre + r * np.exp(1j * (np.array([0.3, 1.1, 2.9, 4.4]) + k)) for k in range(4)]
    for dtype in (np.complex64, np.complex128):
        got = dsp.circle_fit(*[p.astype(dtype) for p in pts])
        assert got.dtype == dtype
        np.testing.assert_allclose(got, np.full(4, centre), atol=1e-5 if dtype == np.complex64 else 1e-12)
    freq = np.array([1.0, 2, 3, 4])
    refl = centre + r * np.exp(1j * freq)
    at = np.array([1.5, 3.25, 4.0])
    np.testing.assert_allclose(dsp.circular_interpolation(freq, refl, at), centre + r * np.exp(1j * at), atol=1e-12)
    line = freq * (1 + 1j)
    np.testing.assert_allclose(dsp.circular_interpolation(freq, line, at), at * (1 + 1j))
    for bad in ([0.5], [np.nan]):
        with pytest.raises(dsp.DspError, match="^CircularInterpolation"):
            dsp.circular_interpolation(freq, refl, bad)
