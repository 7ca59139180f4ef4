"""Gives a wheel that carries the library its machine's name; everything else stands in pyproject.toml."""
import pathlib

from setuptools import setup
from wheel.bdist_wheel import bdist_wheel

HERE = pathlib.Path(__file__).resolve().parent
CARRIES_LIBRARY = any(HERE.glob("zyrsubtitle/lib/*.so.*"))


class Wheel(bdist_wheel):
    """Any Python 3 on this kind of machine: the library is called by its declarations."""

    def finalize_options(self):
        super().finalize_options()
        self.root_is_pure = not CARRIES_LIBRARY

    def get_tag(self):
        platform = super().get_tag()[2]
        return "py3", "none", platform


setup(cmdclass={"bdist_wheel": Wheel})
