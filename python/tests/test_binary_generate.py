"""Binary arithmetic, dot product, correlation, generators and resampling kernels against numpy."""

import numpy as np
import pytest
from conftest import close, signal

import dsp

BINARY = [  # function, numpy equivalent
    (dsp.add, np.add), (dsp.sub, np.subtract), (dsp.mul, np.multiply), (dsp.div, np.divide),
    (dsp.conj_mul, lambda a, b: a * np.conj(b)), (dsp.pmul, np.convolve),
    (lambda a, b: dsp.avg_add(a, b, 0.25), lambda a, b: b + 0.25 * (a - b)),
    (lambda a, b: np.atleast_1d(dsp.dot(a, b)), lambda a, b: np.atleast_1d(np.dot(a, b))),
]


def wide(x):
    return x.astype(np.complex128 if x.dtype.kind == "c" else np.float64)


@pytest.mark.parametrize("fn,ref", BINARY)
def test_binary_against_numpy(any_kind, fn, ref):
    a, b = signal(9, any_kind), signal(9, np.float32, seed=2) + 3  # a real b widens to a's kind
    close(fn(a, b), ref(wide(a), wide(b).astype(wide(a).dtype)), any_kind)


def test_binary_substitutes_and_lengths(real):
    L = 1e15 if real == np.float32 else 1e100
    assert list(dsp.div(np.array([2, 0, -1], real), np.zeros(3, real))) == [real(L), 0, real(L)]
    close(dsp.add(np.ones(3, real), np.ones(1, real)), [2, 1, 1], real)
    close(dsp.maximum(np.array([1, 5], real), np.array([2, 3], real)), [2, 5], real)
    close(dsp.minimum(np.array([1, 5], real), np.array([2, 3], real)), [1, 3], real)
    close(dsp.ritoc(np.array([1, 2], real), np.array([3, 4], real)), [1 + 3j, 2 + 4j], real)
    for call in (lambda: dsp.mul(np.ones(3, real), np.ones(2, real)), lambda: dsp.ritoc(np.ones(1, real) * 1j, [1])):
        with pytest.raises(dsp.DspError, match="^dspf?b_"):
            call()


@pytest.mark.parametrize("n,lags", [(3, None), (100, 37), (64, 64)])
def test_correlate_against_numpy(any_kind, n, lags):
    x, y = signal(n, any_kind), signal(n, any_kind, seed=3)
    full = np.correlate(wide(x), wide(y), "full")[n - 1:n - 1 + (lags or n)]
    close(dsp.correlate(x, y, lags), full, any_kind)
    close(dsp.correlate(x, y, lags, half=True), full / 2, any_kind)
    with pytest.raises(dsp.DspError, match="^dspf?h_corr"):
        dsp.correlate(x, y, n + 1)


def test_generators(any_kind):
    k, cplx = np.arange(1000), np.dtype(any_kind).kind == "c"
    kind = lambda v: v + 0j if cplx else v
    close(dsp.cos(1000, 0.1, 0.3, 0.5, any_kind), kind(np.cos(0.3 + 2 * np.pi * 0.05 * k)), any_kind)
    want = np.exp(1j * (0.3 - 2 * np.pi * 0.2 * k)) if cplx else np.cos(0.3 - 2 * np.pi * 0.2 * k)
    close(dsp.cexp(1000, -0.1, 0.3, 2, any_kind), want, any_kind)
    close(dsp.line(5, 0.5, 1, 2, any_kind), kind(1.0 + k[:5]), any_kind)
    with pytest.raises(ValueError):
        dsp.cos(-1, 0.1)


def test_resampling_kernels(real):
    theta = 2 * np.pi * np.arange(5) / 8
    v = 1 + 0.5 * np.cos(theta) + 0.25 * np.cos(2 * theta)
    close(dsp.resampling_kernel(10, cos=[3, 1, 0.5, 0.25], dtype=real), np.r_[3, v[:0:-1], v], real)
    v = 1 + 0.5 * np.cos(theta) + 0.25 * np.cos(theta) ** 2
    close(dsp.resampling_kernel(10, pcos=[3, 1, 0.5, 0.25], dtype=real), np.r_[3, v[:0:-1], v], real)
    assert [dsp.resampling_kernel(10, mode=m, dtype=real)[0] for m in range(5)] == [8, 13, 8, 10, 13]
    with pytest.raises(dsp.DspError, match="^dspf?c_rsmp"):
        dsp.resampling_kernel(9, mode=5, dtype=real)
