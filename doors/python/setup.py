# SPDX-License-Identifier: BSD-3-Clause
"""Builds the library by CMake, and puts it into the package.

What is built on the way lies in a folder of its own that is gone at the end: a tree that somebody
installs from stays as it was.
"""

import atexit
import pathlib
import re
import shutil
import subprocess
import tempfile

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py
from wheel.bdist_wheel import bdist_wheel

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRATCH = pathlib.Path(tempfile.mkdtemp(prefix="glimmerblur-"))
PACKAGES = SCRATCH / "packages"
PACKAGES.mkdir()
atexit.register(shutil.rmtree, SCRATCH, ignore_errors=True)


def project_version():
    found = re.search(r"^project\(\w+ VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text(), re.M)
    return found.group(1)


def build_library():
    """The file, which has every name that a loader asks for as its own."""
    options = ["-DCMAKE_BUILD_TYPE=Release", "-DLX_WITH_FFTW=OFF", "-DLX_BUILD_HOST=OFF"]
    if shutil.which("ninja"):
        options += ["-G", "Ninja"]
    subprocess.run(["cmake", "-S", ROOT, "-B", SCRATCH, *options], check=True)
    subprocess.run(["cmake", "--build", SCRATCH, "--parallel", "--target", "glimmerblur"], check=True)
    return next(SCRATCH.glob("lib*/**/libglimmerblur.so.0"))


class BuildWithLibrary(build_py):
    def run(self):
        super().run()
        # What the name stands for, and no link to it.
        target = pathlib.Path(self.build_lib) / "glimmerblur" / "libglimmerblur.so.0"
        shutil.copyfile(build_library(), target)


class HasLibrary(Distribution):
    def has_ext_modules(self):
        return True


class AnyPythonWheel(bdist_wheel):
    """For this kind of machine, and for any Python: the library knows nothing of it."""

    def get_tag(self):
        return ("py3", "none", super().get_tag()[2])


setup(
    version=project_version(),
    distclass=HasLibrary,
    cmdclass={"build_py": BuildWithLibrary, "bdist_wheel": AnyPythonWheel},
    options={
        "build": {"build_base": str(PACKAGES / "build")},
        "egg_info": {"egg_base": str(PACKAGES)},
    },
)
