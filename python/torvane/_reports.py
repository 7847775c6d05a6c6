"""What the engines report, as warnings and exceptions."""

import inspect
import logging
import warnings

_log = logging.getLogger("torvane")


class TorvaneWarning(UserWarning):
    """What makes a result less trustworthy."""


class StoppedError(RuntimeError):
    """Work that was ended: an overflow, a record that is not whole, a goal that nothing meets."""


def report(label: str, text: str) -> None:
    """Makes a warning of a report; notes go to the logger ``torvane``."""
    if label == "Note":
        _log.info(text)
    else:
        words = text if label in ("Warning", "Error") else f"{label}: {text}"
        warnings.warn(words, TorvaneWarning, stacklevel=_callers_level())


def _callers_level() -> int:
    """How far above ``report`` the line stands that called into this package."""
    level, frame = 1, inspect.currentframe()
    frame = frame and frame.f_back
    while frame is not None and frame.f_globals.get("__package__") == __package__:
        level, frame = level + 1, frame.f_back
    return level
