"""FIR design and filtering, decimation and the half-band filter: one-shot against scipy, and
the stream objects block by block against one piece."""

import numpy as np
import pytest
import scipy.signal
from conftest import ALL, close, signal

import dsp

BLOCKS = [0, 5, 300, 303, 310, 900, 1000]  # split points: short, empty and unequal blocks


def blockwise(stream, x):
    return np.concatenate([stream(b) for b in np.split(x, BLOCKS)])


@pytest.mark.parametrize("taps", [9, 80])  # direct and through the FFT
def test_fir_and_its_stream_match_lfilter(any_kind, taps):
    x, h = signal(1200, any_kind), signal(taps, np.float64, seed=2)
    want = scipy.signal.lfilter(h, 1, x.astype(np.complex128 if x.dtype.kind == "c" else np.float64))
    close(dsp.fir(x, h), want, any_kind)
    close(blockwise(dsp.FirFilter(h), x), want, any_kind)
    half = h[: (taps + 1) // 2]
    odd = taps % 2 == 1
    full = np.r_[half, -half[::-1][odd:]]
    want = scipy.signal.lfilter(full, 1, x.astype(want.dtype))
    close(dsp.sfir(x, half, odd, antisym=True), want, any_kind)
    close(blockwise(dsp.FirFilter.symmetric(half, odd, True), x), want, any_kind)


def test_fir_after_another_filter_on_the_other_block_kind(any_kind):
    h0, h1, x = signal(80, np.float64), signal(80, np.float64, seed=2), signal(1000, any_kind)
    other = x.real.copy() if x.dtype.kind == "c" else x.astype(np.result_type(x, np.complex64))
    dsp.fir(x, h0), dsp.fir(other, h1)  # the library now holds h0's spectrum for x's kind
    close(dsp.fir(x, h1), scipy.signal.lfilter(h1, 1, x.astype(np.result_type(x, np.float64))), any_kind)


def test_fir_stream_keeps_its_first_precision():
    f = dsp.FirFilter(np.ones(3))
    assert f(np.ones(4, np.float32)).dtype == np.float32 and f(np.ones(2)).dtype == np.float32
    assert list(f(np.ones(2))) == [3, 3]
    f.reset()
    assert list(f(np.ones(2, np.float32))) == [1, 2]


def test_decimation(any_kind):
    x = signal(1000, any_kind)
    for factor, phase in [(3, 0), (7, 5), (1, 2)]:
        d = dsp.Decimator(factor, phase)
        np.testing.assert_array_equal(blockwise(d, x), x[phase::factor])
        assert d.phase == (phase - len(x)) % factor
        np.testing.assert_array_equal(dsp.decimate(x, factor, phase), x[phase::factor])


def test_halfband_filter(any_kind):
    x = signal(1000, any_kind)
    sos = np.tile([0.25, 0.5, 0.5, 0.25], (4, 1)), np.tile([1, 0, 0.5, 0], (4, 1))
    want = x.astype(np.complex128 if x.dtype.kind == "c" else np.float64)
    for b, a in zip(*sos):
        want = scipy.signal.lfilter(b, a, want)
    close(dsp.halfband(x), want, any_kind)
    close(blockwise(dsp.HalfBandFilter(), x), want, any_kind)
    assert dsp.halfband(np.ones(40))[-1] == pytest.approx(1, abs=1e-3)  # unit gain at 0 Hz


def test_fir_design(any_kind):
    m = np.arange(31) - 15
    close(dsp.fir_design(31, "lowpass", 0.1, dtype=any_kind), 0.2 * np.sinc(0.2 * m), any_kind)
    close(dsp.fir_design(31, 2, 0.1, dtype=any_kind), (m == 0) - 0.2 * np.sinc(0.2 * m), any_kind)
    assert dsp.fir_design(15, "gauss", 0.1).sum() == pytest.approx(1)
    assert len(dsp.fir_stored(101, np.float32)) == 20 and len(dsp.fir_design(0, 3, 0.1)) == 0
    for call in (lambda: dsp.fir_design(30, "highpass", 0.1), lambda: dsp.fir_design(9, 11),
                 lambda: dsp.fir_stored(7)):
        with pytest.raises(dsp.DspError, match="dspc_fir"):
            call()
