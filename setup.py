# SPDX-License-Identifier: MIT
"""pip's entry to the Python package: the extension module is built by the
project's CMake (target fskit_python, which links the static library and
lays out build/python/fskit), then the package directory is copied into the
wheel. The version is the project's, read from CMakeLists.txt."""

from __future__ import annotations

import os
import pathlib
import re
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

SOURCE = pathlib.Path(__file__).resolve().parent


def project_version() -> str:
    text = (SOURCE / "CMakeLists.txt").read_text()
    return re.search(r"project\(fskit VERSION ([0-9.]+)", text).group(1)


class CMakeBuild(build_ext):
    """Builds fskit._fskit with CMake for the interpreter running pip."""

    def build_extension(self, ext: Extension) -> None:
        build = pathlib.Path(self.build_temp).resolve() / "cmake"
        configure = [
            "cmake", "-S", str(SOURCE), "-B", str(build), "-DCMAKE_BUILD_TYPE=Release",
            "-DFSKIT_PYTHON=ON", "-DFSKIT_BUILD_TESTS=OFF", "-DFSKIT_BUILD_BENCH=OFF",
            "-DFSKIT_BUILD_TOOL=OFF", f"-DPython3_EXECUTABLE={sys.executable}",
        ]
        subprocess.run(configure, check=True)
        jobs = os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL", str(os.cpu_count() or 1))
        subprocess.run(["cmake", "--build", str(build), "--target", "fskit_python",
                        "--parallel", jobs], check=True)
        built = build / "python" / "fskit"
        target = pathlib.Path(self.get_ext_fullpath(ext.name)).resolve()
        target.parent.mkdir(parents=True, exist_ok=True)
        module = next(built.glob("_fskit*.so"))
        shutil.copyfile(module, target)
        # The element table and the stubs travel with the module.
        for name in ("kw_elements.tbl", "_fskit.pyi", "py.typed"):
            shutil.copyfile(built / name, target.parent / name)


setup(
    version=project_version(),
    packages=["fskit"],
    package_dir={"": "python"},
    package_data={"fskit": ["*.pyi", "py.typed", "kw_elements.tbl"]},
    ext_modules=[Extension("fskit._fskit", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
    options={"build": {"build_base": "build-pip"}},
    zip_safe=False,
)
