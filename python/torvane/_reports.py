"""What the engines report, as warnings and exceptions."""

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
        warnings.warn(words, TorvaneWarning, stacklevel=4)
