"""Builds the package with the project's own CMake files: `pip install . --no-build-isolation`, in this directory.

The module holds the library, so that none has to be installed. It takes a C++ compiler, cmake, ninja-build, pybind11-dev
and Python's headers.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent.parent
VERSION = re.search(r"project\(vantel VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text())


class CMakeBuild(build_ext):
    def build_extension(self, extension: Extension) -> None:
        build = pathlib.Path(self.build_temp).resolve()
        settings = {"CMAKE_BUILD_TYPE": "Release", "VANTEL_TESTS": "OFF", "VANTEL_EXAMPLES": "OFF", "VANTEL_INSTALL": "OFF",
                    "VANTEL_PYTHON": "ON", "VANTEL_PYTHON_ALONE": "ON", "VANTEL_PYTHON_INTERPRETER": sys.executable}
        subprocess.run(["cmake", "-S", ROOT, "-B", build, "-G", "Ninja",
                        *(f"-D{name}={value}" for name, value in settings.items())], check=True)
        subprocess.run(["cmake", "--build", build, "--target", "vantel_python", "--parallel",
                        os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL", "2")], check=True)
        place = pathlib.Path(self.get_ext_fullpath(extension.name))
        place.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(build / "python" / "vantel" / place.name, place)


setup(
    name="vantel",
    version=VERSION[1],
    description="A simulator of qudits, quantum systems of 2 to 10 levels",
    packages=["vantel"],
    package_data={"vantel": ["py.typed", "*.pyi"]},
    ext_modules=[Extension("vantel._core", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
    install_requires=["numpy"],
    python_requires=">=3.11",
    zip_safe=False,
)
