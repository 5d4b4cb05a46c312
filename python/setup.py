"""Installs the package with the library it wraps: $DSP_LIBRARY, or the Release build of the
surrounding source tree (build/release/libdsp.so), is copied into the package. Without either
the package loads libdsp from the system at run time."""

import os
import pathlib
import shutil

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py

HERE = pathlib.Path(__file__).resolve().parent


def library():
    path = os.environ.get("DSP_LIBRARY") or HERE.parent / "build" / "release" / "libdsp.so"
    return pathlib.Path(path) if pathlib.Path(path).is_file() else None


class BuildWithLibrary(build_py):
    def run(self):
        super().run()
        if library():
            shutil.copyfile(library(), pathlib.Path(self.build_lib) / "dsp" / "libdsp.so")


class PlatformDistribution(Distribution):
    def has_ext_modules(self):  # a wheel holding the library is built for this platform
        return library() is not None


setup(cmdclass={"build_py": BuildWithLibrary}, distclass=PlatformDistribution)
