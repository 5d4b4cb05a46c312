"""The kernel resampler against the polyphase sum of its definition, both resampler streams
block by block against one piece, and the streaming resampler against its chain of filters."""

import numpy as np
import pytest
from conftest import close, signal

import dsp

BLOCKS = [0, 1, 5, 300, 303, 310, 900, 1000]  # empty, one-point, short and unequal blocks
STORED_POINTS = [8194, 13314, 2050, 10242, 13314]


def polyphase(x, step, kernel, mode):
    W = int(kernel[0] + 0.5)
    P = (len(kernel) - 2) // W
    s = np.r_[np.zeros(W), x]
    k = np.arange(int(len(x) / step) + 1)
    m = np.ceil(k * step).astype(int)
    f = (m - k * step) * P
    i = f.astype(int)[:, None] + P * np.arange(W)
    c = kernel[1 + i] + mode * (f % 1)[:, None] * (kernel[2 + i] - kernel[1 + i])
    return (s[m[:, None] + np.arange(W)] * c).sum(1)


def test_resample_is_the_polyphase_sum(any_kind):
    x, real = signal(300, any_kind), np.dtype(any_kind).char.lower()
    wide = x.astype(np.complex128 if x.dtype.kind == "c" else np.float64)
    own = dsp.resampling_kernel(10 * 64 + 2, pcos=[10, 0.5, 0.3, -0.2, 0.1], dtype=real)
    for kernel, table in [(own, own), (4, dsp.resampling_kernel(13314, mode=4, dtype=real))]:
        for mode in (0, 1):
            for step in (0.625, 1.25):  # phases exact in both precisions
                close(dsp.resample(x, step, kernel, mode), polyphase(wide, step, table, mode), any_kind)
    close(dsp.resample(x, 0.5, own, n=7), polyphase(wide, 0.5, own, 1)[:7], any_kind)
    assert dsp.resample(x, 0.0, own, n=3).tolist() == [0, 0, 0]  # the window before x, thrice


def test_resampler_blocks_give_the_bits_of_one_piece(any_kind):
    x = signal(1200, any_kind)
    for kernel in (dsp.resampling_kernel(8 * 32 + 2, mode=0), 2):
        for step in (0.3, 1.7):
            want, r = dsp.resample(x, step, kernel), dsp.Resampler(step, kernel)
            got = [r(b) for b in np.split(x, BLOCKS)]
            np.testing.assert_array_equal(np.concatenate(got), want)


def test_streaming_resampler_is_its_chain(any_kind):
    x, real = signal(1200, any_kind), np.dtype(any_kind).char.lower()
    v = dsp.resample(dsp.sfir(x, dsp.fir_stored(100, real)), 0.5, 4, mode=1)
    want = dsp.sfir(v, dsp.fir_stored(101, real))[::2][54:]
    with dsp.StreamingResampler() as r:
        close(r(x), want, any_kind)
        assert r.skip == 54 and len(want) == len(x) - 53
        r.reset()
        close(np.concatenate([r(b) for b in np.split(x, BLOCKS)]), want, any_kind)
    with pytest.raises(ValueError, match="closed"):
        r(x)
    np.testing.assert_array_equal(dsp.StreamingResampler(fine=False)(x), x)


def test_resample_failures_name_the_export():
    k = dsp.resampling_kernel(8 * 32 + 2, mode=0)
    for call, name in [
        (lambda: dsp.resample(np.ones(9), 0.5, k, mode=2), "dspd_rsmp"),
        (lambda: dsp.resample(np.ones(9, np.float32), -1.0, k), "dspfd_rsmp"),
        (lambda: dsp.resample(np.ones(9), 0.5, k + 0j), "dspd_rsmp"),
        (lambda: dsp.resample(np.ones(9), 0.5, k[:-2]), "dspd_rsmp"),  # N - 2 not a multiple of W
        (lambda: dsp.Resampler(0.5, 5)(np.ones(9, np.float32)), "dspfd_rsmp2"),
    ]:
        with pytest.raises(dsp.DspError, match=name):
            call()
    with pytest.raises(ValueError, match="step of 0"):
        dsp.resample(np.ones(9), 0.0, k)
