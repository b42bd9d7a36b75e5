"""Fixtures of the tests of the module. CMake sets VXR_PROGRAM, the vxr of the same build. With VXR_NIGHT in the
environment there is more of everything."""

import os
import pathlib
import subprocess

import pytest
from hypothesis import HealthCheck, settings

PROJECT = pathlib.Path(__file__).resolve().parents[2]

settings.register_profile("change", max_examples=25, deadline=None, database=None, derandomize=True)
# The night finds new examples.
settings.register_profile(
    "night", max_examples=2000, deadline=None, database=None, suppress_health_check=[HealthCheck.too_slow]
)
NIGHT = "VXR_NIGHT" in os.environ
settings.load_profile("night" if NIGHT else "change")

# For further rows of a table, which take long under the sanitizers.
by_night = pytest.mark.skipif(not NIGHT, reason="runs in script/nightly python")


@pytest.fixture
def examples() -> pathlib.Path:
    return PROJECT / "examples"


@pytest.fixture
def vxr():
    """Runs vxr and returns its standard output."""

    def run(*arguments: object) -> str:
        # The runtime of a sanitizer is for the Python that loads the module.
        environment = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
        return subprocess.run(
            [os.environ["VXR_PROGRAM"], *map(str, arguments)], stdout=subprocess.PIPE, text=True, env=environment
        ).stdout

    return run


HEAD = b"""VORTAN XR COMPOSITION
RESOLUTION 640 360
FROM 3
TO 12
RANGE 10
FPS 24
"""


@pytest.fixture
def write(tmp_path):
    """Writes a file and returns its path."""

    def write_file(name: str, content: bytes) -> pathlib.Path:
        path = tmp_path / name
        path.write_bytes(content)
        return path

    return write_file
