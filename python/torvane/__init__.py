"""Simulated feedback control loops, their instruments and studies.

>>> import torvane as tv
>>> m = tv.Model("3-1 PI Controller")
>>> m["KP"] = 1.2
>>> m.generator().frequency = 5
>>> r = m.run(until=0.2, every=1e-5)
>>> r.time.shape
(20001,)
"""

from typing import List, Union
import os
import warnings as _warnings

from . import _engine
from ._model import Constant, Generator, Meter, Model, Pair, Signal, merge, study
from ._pictures import Picture
from ._reports import StoppedError, TorvaneWarning
from ._results import (Linear, Margins, Measures, Overlay, Reading, Response, Run, Screen, Study,
                       Theory)

__version__: str = _engine.version
__all__ = ["Constant", "Generator", "Linear", "Margins", "Measures", "Meter", "Model", "Overlay",
           "Pair", "Picture", "Reading", "Response", "Run", "Screen", "Signal", "StoppedError", "Study",
           "Theory", "TorvaneWarning", "check", "merge", "models", "study"]


def models() -> List[str]:
    """The names of the built-in models, by index."""
    return _engine.models()


def check(path: Union[str, "os.PathLike[str]"]) -> List[str]:
    """All that is wrong with a model file or a loop's text, a line each; nothing when it is good."""
    with _warnings.catch_warnings(record=True) as caught:
        _warnings.simplefilter("always")
        try:
            _engine.check(os.fspath(path))
        except OSError as fault:
            return [str(one.message) for one in caught] + [line for line in [str(fault)] if line]
    return [str(one.message) for one in caught]
