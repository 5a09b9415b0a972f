"""Builds the library and the Python package ravik with it: pip install ."""
import importlib.util
import os
import shutil
import subprocess
import sys
from pathlib import Path

from setuptools import setup
from setuptools.command.build_ext import build_ext

ROOT = Path(__file__).resolve().parent


def refuse_without_tools():
    """pip gets them from its index, unless it has none or builds with what is installed."""
    missing = [name for name in ("cffi", "numpy") if importlib.util.find_spec(name) is None]
    missing += [name for name in ("cmake",) if shutil.which(name) is None]
    if missing:
        raise SystemExit(f"ravik is built with {', '.join(missing)}, which {sys.executable} does not find. On Debian: "
                         "apt-get install python3-cffi python3-numpy cmake, and a virtual environment that sees them "
                         "(python3 -m venv --system-site-packages).")


refuse_without_tools()
sys.path.insert(0, str(ROOT / "python" / "module"))
import buildRavik  # noqa: E402


class BuildWithLibrary(build_ext):
    """Links the C module with the archive of the library, and puts beside it what Python reads of the headers."""

    def run(self):
        build = ROOT / "build" / "python"
        generator = ["-G", "Ninja"] if shutil.which("ninja") else []
        subprocess.check_call(["cmake", "-S", str(ROOT), "-B", str(build), *generator, "-DCMAKE_BUILD_TYPE=Release",
                               "-DRAVIK_BUILD_TESTS=OFF", "-DRAVIK_BUILD_BENCH=OFF", "-DRAVIK_BUILD_EXAMPLES=OFF",
                               "-DRAVIK_TEST_DATA=OFF", *os.environ.get("RAVIK_CMAKE_ARGS", "").split()])
        subprocess.check_call(["cmake", "--build", str(build), "--target", "ravikStatic", "-j", str(os.cpu_count())])
        for extension in self.extensions:
            extension.extra_objects = [str(build / "libravik.a")]
            extension.depends = extension.extra_objects
        super().run()
        package = Path(self.get_ext_fullpath("ravik._ravik")).parent
        buildRavik.write_declarations(package)
        subprocess.check_call([sys.executable, str(ROOT / "python" / "module" / "makeStubs.py"), str(package)],
                              env={**os.environ, "PYTHONPATH": os.pathsep.join(
                                  [str(package.parent), *filter(None, [os.environ.get("PYTHONPATH")])])})


setup(
    name="ravik",
    version=buildRavik.version(),
    description="Computer vision on NumPy arrays",
    python_requires=">=3.9",
    packages=["ravik"],
    package_dir={"ravik": "python/package"},
    package_data={"ravik": ["*.txt", "py.typed"]},
    install_requires=["numpy", "cffi>=1.15"],
    cffi_modules=["python/module/buildRavik.py:ffi"],
    cmdclass={"build_ext": BuildWithLibrary},
    zip_safe=False,
)
