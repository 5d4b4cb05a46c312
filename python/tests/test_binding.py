"""Transforms, windows, spectra, element-wise math and statistics against numpy/scipy and the
C library called directly."""

import numpy as np
import pytest
import scipy.fft
import scipy.signal
import scipy.special
import scipy.stats
from conftest import ALL, REAL, close, signal

import dsp
from dsp import _core

C = [np.complex64, np.complex128]
TRANSFORMS = [  # function, numpy/scipy equivalent, length, input kinds
    (dsp.fft, lambda x: np.fft.fft(x) / len(x), 16, ALL),
    (dsp.ifft, lambda x: np.fft.ifft(x) * len(x), 16, ALL),
    (dsp.rfft, lambda x: np.fft.rfft(x) / len(x), 32, REAL),
    (dsp.irfft, lambda X: np.fft.irfft(X, 2 * len(X) - 2) * (2 * len(X) - 2), 9, C),
    (dsp.dft, lambda x: np.fft.fft(x) / len(x), 12, ALL),
    (lambda x: dsp.dft(x, True), lambda x: np.fft.ifft(x) * len(x), 15, ALL),
    (dsp.rdft, lambda x: np.fft.rfft(x) / len(x), 15, REAL),
    (lambda X: dsp.irdft(X, odd=True), lambda X: np.fft.irfft(X, 2 * len(X) - 1) * (2 * len(X) - 1), 7, C),
    (dsp.dct, lambda x: scipy.fft.dct(x, norm="ortho") * np.sqrt(2 / len(x)), 12, REAL),
    (dsp.hilbert, lambda x: scipy.signal.hilbert(x).imag, 16, REAL),
    (dsp.analytic, scipy.signal.hilbert, 16, REAL),
]


@pytest.mark.parametrize("fn,ref,n,kinds", TRANSFORMS)
def test_transforms_match_numpy_and_leave_input_alone(fn, ref, n, kinds):
    for dtype in kinds:
        x = signal(n, dtype)
        kept = x.copy()
        want = ref(x.astype(np.complex128 if x.dtype.kind == "c" else np.float64))
        close(fn(x), want, dtype)
        np.testing.assert_array_equal(x, kept)
    assert dsp.fft([1, 2, 3, 4]).dtype == np.complex128  # integers go through the double family


@pytest.mark.parametrize("name,args,dtype", [
    ("dspfi_db", (10.0,), np.float32), ("dspfi_recip", (), np.float32), ("dspfi_exp10", (), np.float32),
    ("dspfi_log10", (), np.complex64), ("dspfi_rfft", (), np.float64), ("dspfi_sqrt", (), np.complex128),
])
def test_wrapped_storage_gives_the_c_result_on_owned_storage(name, args, dtype):
    x = signal(16, dtype) * 10
    x[3] = 0
    fam = _core.family(dtype)
    rec = _core.record(fam)
    rec.n, rec.cplx = x.size, x.dtype.kind == "c"
    fam.fn("dspf_alloc")(rec)
    _core.ffi.memmove(rec.data, x, x.nbytes)
    fam.call(name, rec, *args, why="")
    np.testing.assert_array_equal(_core.inplace(name, x, *args, why="")[0], _core.values(rec, fam))


def test_windows_against_scipy(real):
    n = 64
    for name in ("hann", "hamming", "blackman", "boxcar"):
        w = scipy.signal.get_window(name, n)
        kind = "uniform" if name == "boxcar" else name
        close(dsp.window(kind, n, "peak", dtype=real), w, real)
        close(dsp.window(kind, n, "mean", dtype=real), w / w.mean(), real)
        np.testing.assert_allclose(dsp.window(kind, n, "rms", dtype=real), w / np.sqrt(np.mean(w**2)), atol=1e-6)
        close(dsp.window(kind, n, "mean", rotate=True, dtype=real), np.roll(w / w.mean(), -n // 2), real)
    assert dsp.window_scale("Hann", n, dtype=real) == 2 and abs(dsp.enbw(dsp.window_kind("HANN"), n) - 1.5) < 1e-6
    for kind in ("Blackman", "Kaiser90", "Gauss70", 24):  # (the flat-tops keep their design a0)
        w = dsp.window(kind, 1000, "peak").astype(np.float64)
        np.testing.assert_allclose(dsp.enbw(kind, 1000, dtype=real), 1000 * np.sum(w**2) / np.sum(w)**2, rtol=1e-5)
        np.testing.assert_allclose(dsp.window_scale(kind, 1000, "rms"), 1 / np.sqrt(np.mean(w**2)), rtol=1e-5)
    z = signal(n, np.complex128)
    close(dsp.apply_window(z, "Hann", "peak"), z * scipy.signal.get_window("hann", n), np.complex128)
    close(dsp.window("hann", 8, "peak", width=4), [0, 0, 0, 0.5, 1, 0.5, 0, 0], np.float64)


def test_spectrum_against_numpy(any_kind):
    x, n, length = signal(100, any_kind), 100, 256
    w = dsp.window("Hann", n).astype(np.float64)
    full = np.fft.fft(x * w, length) / n
    want = full if x.dtype.kind == "c" else full[: length // 2 + 1]
    s = dsp.spectrum(x, "Hann", form="complex", length=length, delta=0.5, rotate=False)
    close(s.values, want, any_kind)
    assert s.delta == 1 / (0.5 * length) and len(s.frequencies) == len(want)
    assert s.onesided == (x.dtype.kind != "c") and s.frequencies[-1] == (s.delta * (length // 2) if s.onesided else -s.delta)
    close(dsp.spectrum(x, "Hann", form="power", length=length).values, np.abs(want)**2, any_kind)
    close(dsp.spectrum(x, "Hann", form="magnitude").values[:3], np.abs(np.fft.fft(x * w, 128)[:3] / n), any_kind)


INF, NAN = np.inf, np.nan
MATH = [  # function, reference, sample values, kinds
    (dsp.recip, lambda x: 1 / x, [0.5, -4, 3e3], [np.float32, np.float64, np.complex128]),
    (dsp.sqrt, np.sqrt, [0.25, 2, 9], ALL),
    (dsp.square, np.square, [-3, 0.5, 7], ALL),
    (dsp.exp, np.exp, [-2, 0, 1.5], ALL),
    (dsp.exp10, lambda x: 10.0**x, [-2, 0, 1.5], ALL),
    (dsp.log, np.log, [0.1, 1, 30], ALL),
    (dsp.log10, np.log10, [0.1, 1, 30], [np.float32, np.float64, np.complex128]),
    (lambda x: dsp.db(x, 20), lambda x: 20 * np.log10(x), [0.1, 1, 30], [np.float64]),
    (dsp.sinh, np.sinh, [-2, 0, 3], REAL), (dsp.cosh, np.cosh, [-2, 0, 3], REAL),
    (dsp.asin, np.arcsin, [-1, 0.3, 1], REAL), (dsp.acos, np.arccos, [-1, 0.3, 1], REAL),
    (dsp.y0, scipy.special.y0, [0.5, 2, 10], REAL), (dsp.y1, scipy.special.y1, [0.5, 2, 10], REAL),
    (dsp.i0, scipy.special.i0, [-3, 0, 2], [np.float32]),
    (dsp.mag, np.abs, [-3, 0, 2], ALL), (dsp.magsq, lambda x: np.abs(x)**2, [-3, 0, 2], ALL),
    (dsp.phase, np.angle, [-3, 0, 2], ALL), (dsp.conj, np.conj, [-3, 0, 2], ALL),
    (lambda x: dsp.integ(x, 0.5), lambda x: np.cumsum(x) * 0.5, [-3, 1, 2], ALL),
    (lambda x: dsp.differ(x, 0.5), lambda x: np.diff(x, prepend=0) / 0.5, [-3, 1, 2], ALL),
    (dsp.unwrap, np.unwrap, [0, 3, -3, 0.5, -2.9], REAL),
]


@pytest.mark.parametrize("fn,ref,values,kinds", MATH)
def test_math_against_numpy(fn, ref, values, kinds):
    for dtype in kinds:
        x = np.array(values, dtype)
        if x.dtype.kind == "c":
            x = x * (1 - 0.5j)
        want = ref(x.astype(np.complex128 if x.dtype.kind == "c" else np.float64))
        close(fn(x), want, dtype)


@pytest.mark.parametrize("dtype,L", [(np.float32, np.float32(1e15)), (np.float64, 1e100)])
def test_substitutes(dtype, L):
    F = np.finfo(dtype).tiny
    x = np.array([1e300 if dtype == np.float64 else 1e30, -4, 0], dtype)
    assert list(dsp.sqrt(x)[1:]) == [0, 0] and dsp.exp(x)[0] == L and dsp.square(x)[0] == L
    assert dsp.log(x)[2] == dtype(np.log(np.float64(F))) and dsp.asin(x)[0] == 0 and dsp.y0(x)[2] == 0
    assert dsp.recip(np.array([0, 2], dtype))[0] == L and dsp.sinh(np.array([-1e3], dtype))[0] == -L
    y, clipped = dsp.limit(np.array([-5, 0.5, 5], dtype), 1, -1)
    assert clipped and list(y) == ([-1, 0.5, 1] if dtype == np.float64 else [-1, -1, 1])
    assert dsp.limit(np.array([0.5], dtype), -1, 1)[1] is False


def test_statistics_against_numpy(any_kind):
    x = signal(5001, any_kind)
    pos = np.abs(x[:50]) + 0.5  # the product behind gmean overflows on long records
    real = x.dtype.kind != "c"
    checks = [(dsp.sum, x, np.sum), (dsp.mean, x, np.mean), (dsp.rms, x, lambda v: np.sqrt(np.mean(np.abs(v)**2))),
              (dsp.magsq_sum, x, lambda v: np.sum(np.abs(v)**2)), (dsp.gmean, pos, scipy.stats.gmean),
              (dsp.hmean, pos, scipy.stats.hmean)]
    if real:
        checks += [(dsp.median, x, np.median), (dsp.max, x, np.max), (dsp.min, x, np.min),
                   (dsp.excess, x, scipy.stats.kurtosis)]
    if x.dtype != np.float32:  # the single family's real variance comes from its guard constants
        checks += [(dsp.var, x, np.var), (lambda v: dsp.std(v, 1), x, lambda v: np.std(v, ddof=1))]
        checks += [(dsp.skew, x, scipy.stats.skew)] if real else []
    for fn, v, ref in checks:
        want = ref(v.astype(np.complex128 if v.dtype.kind == "c" else np.float64))
        got = fn(v)
        assert got.dtype.kind == np.asarray(want).dtype.kind and got.dtype.itemsize in (4, 8, 16)
        np.testing.assert_allclose(got, want, rtol=1e-4 if any_kind in (np.float32, np.complex64) else 1e-10)
    if not real:
        assert dsp.max(x) == x[np.argmax(np.abs(x))]
    counts, _ = np.histogram(np.abs(x) if not real else x, 10, (-1, 1.5))
    close(dsp.hist(x, -1, 0.25, 10), counts, any_kind)


def test_peak():
    y = np.array([1, 3, 3, 2, 0.5, -7.0])
    assert dsp.peak(y) == (3.25, 1.5) and dsp.peak(y, None) == (3, 1)
    assert dsp.peak(y, minimum=True, interp=None) == (-7, 5) and dsp.peak(y, None, index=9) == (-7, 5)
    y = np.array([0.1, 0.5, 0.9, 0.8, 0.2])
    assert dsp.peak(y, "gauss")[1] == pytest.approx(2 + np.log(0.8 / 0.9) / 1.262254596631336 + 0.5)
    assert dsp.peak(np.array([1j, 3, 2], np.complex64), None) == (9, 1)
    with pytest.raises(dsp.DspError, match="dsps_peak"):
        dsp.peak([1.0, 10, 0.5], "gauss")


@pytest.mark.parametrize("call,function", [
    (lambda: dsp.rfft(np.ones(12, np.float32)), "dspfi_rfft"),
    (lambda: dsp.fft(np.ones(6)), "dspi_fft"),
    (lambda: dsp.sinh(np.ones(3, np.complex128)), "dspi_sinh"),
    (lambda: dsp.skew(np.ones(3, np.complex64)), "dspfs_skew"),
    (lambda: dsp.window_kind("Hanning"), "dsp_window_from_str"),
    (lambda: dsp.window("Kaiser90", 16, width=8), "dspi_window2"),
    (lambda: dsp.spectrum(np.ones(0)), "dsph_fft"),
    (lambda: dsp.spectrum(np.ones(10, np.float32), length=12), "dspfh_fft"),
])
def test_failures_name_the_function(call, function):
    with pytest.raises(dsp.DspError, match=f"^{function} failed: .+"):
        call()


def test_bad_arguments():
    for call, error in [(lambda: dsp.fft(np.ones((2, 4))), ValueError), (lambda: dsp.rms(["a"]), TypeError),
                        (lambda: dsp.i0(np.ones(2)), TypeError), (lambda: dsp.spectrum(np.ones(4), form="dB"), ValueError),
                        (lambda: dsp.window("hann", 8, norm="unit"), ValueError)]:
        with pytest.raises(error):
            call()
