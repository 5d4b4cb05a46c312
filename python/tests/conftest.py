import os
import pathlib
import sys

import numpy as np
import pytest

# The tests exercise the package of this tree, over the library named by DSP_LIBRARY (CTest sets
# it to the build's libdsp.so; by hand it defaults to the Release build).
ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "python"))
os.environ.setdefault("DSP_LIBRARY", str(ROOT / "build" / "release" / "libdsp.so"))

REAL = [np.float32, np.float64]
ALL = REAL + [np.complex64, np.complex128]


def tol(dtype):
    """Relative tolerance of a precision."""
    return 2e-5 if np.dtype(dtype) in (np.float32, np.complex64) else 1e-12


def signal(n, dtype, seed=1):
    rng = np.random.default_rng(seed)
    x = rng.standard_normal(n)
    if np.dtype(dtype).kind == "c":
        x = x + 1j * rng.standard_normal(n)
    return x.astype(dtype)


def close(got, want, like):
    """got equals want to the precision of `like`, the input's dtype: the same precision as the
    input, complex where want is, values within the precision's rounding."""
    want = np.asarray(want)
    single = np.dtype(like) in (np.float32, np.complex64)
    kind = (np.complex64 if single else np.complex128) if want.dtype.kind == "c" else (np.float32 if single else np.float64)
    assert got.dtype == kind, f"{got.dtype} returned for {np.dtype(like)} input"
    assert got.shape == want.shape
    scale = max(np.max(np.abs(want), initial=0.0), 1.0)
    np.testing.assert_allclose(got, want, rtol=0, atol=tol(like) * scale * 10)


@pytest.fixture(params=REAL, ids=lambda d: np.dtype(d).name)
def real(request):
    return request.param


@pytest.fixture(params=ALL, ids=lambda d: np.dtype(d).name)
def any_kind(request):
    return request.param
