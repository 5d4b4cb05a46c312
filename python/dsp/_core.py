"""Loading of libdsp and the plumbing between numpy arrays and library records.

The C declarations come from the library's own header (``dsp.h`` beside this file), so a new
export is callable as soon as the header declares it: a wrapper only adds a thin function.
"""

import ctypes.util
import os
import pathlib
import re

import cffi
import numpy as np

_HERE = pathlib.Path(__file__).resolve().parent


def _declarations(header):
    """The header's declarations as cffi reads them: no comments, preprocessor lines, C++
    linkage braces or export attributes."""
    text = re.sub(r"/\*.*?\*/", "", header.read_text(), flags=re.S)
    keep = [
        line
        for line in text.splitlines()
        if not line.lstrip().startswith("#") and line.strip() not in ('extern "C" {', "}")
    ]
    return "\n".join(keep).replace("DSP_API ", "")


ffi = cffi.FFI()
ffi.cdef(_declarations(_HERE / "dsp.h"))


def _open():
    """libdsp from $DSP_LIBRARY, else the copy installed with the package, else the system's."""
    path = os.environ.get("DSP_LIBRARY")
    if path:
        return ffi.dlopen(path), path
    bundled = _HERE / "libdsp.so"
    if bundled.exists():
        return ffi.dlopen(str(bundled)), str(bundled)
    for name in ("libdsp.so.2", ctypes.util.find_library("dsp")):
        if name:
            try:
                return ffi.dlopen(name), name
            except OSError:
                pass
    raise ImportError(
        "libdsp.so not found: set DSP_LIBRARY to its path, install the package from a tree "
        "whose build/release holds it, or install the library into a system directory"
    )


lib, library_path = _open()


class DspError(ValueError):
    """A library call returned its failure status: ``function`` is the C function's name,
    ``reason`` what the call needs that it did not get."""

    def __init__(self, function, reason):
        super().__init__(f"{function} failed: {reason}")
        self.function = function
        self.reason = reason


class Family:
    """One precision of the library: its record type, numpy dtypes and export names."""

    def __init__(self, single):
        self.single = single
        self.real = np.dtype(np.float32 if single else np.float64)
        self.complex = np.dtype(np.complex64 if single else np.complex128)
        self.record = "dspf_signal" if single else "dsp_signal"
        self.scalar = "float" if single else "double"

    def name(self, single_name):
        """The export of this precision, given the single-precision spelling."""
        if self.single:
            return single_name
        return single_name.replace("dspf", "dsp", 1).replace("vfps", "vfpd", 1)

    def fn(self, single_name):
        return getattr(lib, self.name(single_name))

    def call(self, single_name, *args, why):
        """Calls an export that returns 0 or -1; -1 raises DspError with `why`."""
        if self.fn(single_name)(*args) != 0:
            raise DspError(self.name(single_name), why)

    def dtype(self, cplx):
        return self.complex if cplx else self.real

    def scalar_out(self):
        return ffi.new(self.scalar + " *")


SINGLE, DOUBLE = Family(True), Family(False)


def family(dtype):
    """float32 and complex64 select the single family, everything else the double one."""
    return SINGLE if np.dtype(dtype) in (np.float32, np.complex64) else DOUBLE


def vector(x, fam=None, cplx=None, name="x"):
    """`x` as a contiguous 1-D array of the family's real or complex dtype, and the family.

    The family is x's own unless given; `cplx` forces the kind. No copy is made when x
    already is such an array."""
    a = np.asarray(x)
    if a.dtype.kind not in "biufc":
        raise TypeError(f"{name}: numbers expected, not {a.dtype}")
    if a.ndim != 1:
        raise ValueError(f"{name}: a one-dimensional array expected, not {a.ndim} dimensions")
    fam = fam or family(a.dtype)
    kind = a.dtype.kind == "c" if cplx is None else cplx
    return np.ascontiguousarray(a, fam.dtype(kind)), fam


def pointer(fam, a):
    """A C pointer to the scalars of the contiguous array `a` (kept alive by the caller)."""
    return ffi.cast(fam.scalar + " *", ffi.from_buffer(a))


def record(fam, data=None, delta=1.0):
    """A record of the family, destroyed (with any storage the library gave it) when collected.

    With `data` the record wraps that array without owning it (alloc 0): the library reads and
    writes the caller's samples and takes storage of its own only when it must grow."""
    rec = ffi.gc(ffi.new(fam.record + " *"), fam.fn("dspf_destroy"))
    fam.fn("dspf_init")(rec)
    rec.delta = delta
    if data is not None:
        rec.data = pointer(fam, data)
        rec.n = data.size
        rec.cplx = data.dtype.kind == "c"
    return rec


def values(rec, fam, storage=None):
    """The record's samples as an array the library no longer holds: a view of `storage`
    when the record still points there, otherwise a copy of the library's block."""
    count = max(rec.n, 0) * (2 if rec.cplx else 1)
    if count and storage is not None and int(ffi.cast("uintptr_t", rec.data)) == storage.ctypes.data:
        flat = storage.view(fam.real)[:count]
    elif count:
        flat = np.frombuffer(ffi.buffer(rec.data, count * fam.real.itemsize), fam.real).copy()
    else:
        flat = np.empty(0, fam.real)
    return flat.view(fam.complex) if rec.cplx else flat


def inplace(single_name, x, *args, why, delta=1.0):
    """Runs an in-place export on a copy of `x`; returns the result and the record's delta."""
    a, fam = vector(x)
    a = a.copy()
    rec = record(fam, a, delta)
    fam.call(single_name, rec, *args, why=why)
    return values(rec, fam, a), rec.delta


def produce(single_name, x, *args, why, delta=1.0):
    """Runs an export of the form (in, out, ...) into a fresh result record."""
    a, fam = vector(x)
    out = record(fam)
    fam.call(single_name, record(fam, a, delta), out, *args, why=why)
    return values(out, fam), out.delta


def version():
    """The library's version number (205)."""
    return lib.dsp_version()
