"""Builds the Python package: `python3 -m pip install --no-build-isolation .` after `script/bootstrap python`."""

import sys

from skbuild import setup

setup(
    name="arbor",
    version="0.1.0",
    description="Decision trees with scikit-learn's manners",
    license="MIT",
    python_requires=">=3.9",
    install_requires=["numpy", "pandas>=1.5", "scikit-learn>=1.2"],
    package_dir={"": "python"},
    packages=["arbor"],
    package_data={"arbor": ["py.typed", "*.pyi"]},
    cmake_args=["-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_UNITY_BUILD=ON", "-DARBOR_PYTHON=ON", "-DARBOR_PROGRAM=OFF",
                "-DARBOR_TESTS=OFF", "-DARBOR_PYTHON_DESTINATION=python/arbor",
                f"-DPython3_EXECUTABLE={sys.executable}"],
    cmake_install_target="install_python",
)
