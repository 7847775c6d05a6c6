"""Pictures by the painters of torvane-cli, where it is and has them."""

from __future__ import annotations

import os
import shutil
import subprocess
import tempfile
from pathlib import Path
from typing import Any, Callable, Dict, List, Mapping, Optional, Union

from ._reports import StoppedError

#: Draws in a format, "svg", "png" or "pdf", with further options of torvane-cli.
Draw = Callable[[str, List[str]], bytes]
FORMATS = ("svg", "png", "pdf")


def options_of(settings: Mapping[str, Any]) -> List[str]:
    """Keyword arguments as options of torvane-cli. What is off, and may be on in a model file,
    has an option of its own."""
    off = {"spectrum": "no-spectrum", "ac": "dc", "db": "no-db"}
    options: List[str] = []
    for name, value in settings.items():
        option = "--" + name.strip("_").replace("_", "-")
        before, _, last = option.rpartition("-")
        if value is False and last in off:
            options.append(f"{before}-{off[last]}")
        elif value is True:
            options.append(option)
        elif isinstance(value, list):
            options += [part for one in value for part in (option, one)]
        elif value is not None and value is not False:
            options += [option, value if isinstance(value, str) else repr(_plain(value))]
    return options


def _plain(number: Any) -> Any:
    """A number of NumPy's as one of Python's own, whose text has nothing but digits."""
    return number.item() if hasattr(number, "item") else number


class Picture:
    """A drawing, which a notebook shows; ``svg`` is its text."""

    def __init__(self, draw: Draw, options: Optional[List[str]] = None) -> None:
        self._draw, self._options = draw, options or []
        self.svg: str = draw("svg", self._options).decode("utf-8")

    def save(self, path: Union[str, "os.PathLike[str]"]) -> None:
        """Writes a file, in the format in which its name ends: .svg, .png or .pdf."""
        format = Path(path).suffix.lower().lstrip(".")
        if format not in FORMATS:
            raise ValueError(f"a picture's name ends in .svg, .png or .pdf, not {str(path)!r}")
        svg = format == "svg"
        drawn = self.svg.encode("utf-8") if svg else self._draw(format, self._options)
        Path(path).write_bytes(drawn)

    def _repr_svg_(self) -> str:
        return self.svg


class Drawn:
    """What torvane-cli draws."""

    _draw: Draw

    def picture(self) -> Picture:
        """The drawing that a notebook shows; a StoppedError where torvane-cli is not on the search
        path or draws no pictures."""
        return Picture(self._draw)

    def _repr_svg_(self) -> Optional[str]:
        return svg_or_none(lambda: self.picture().svg)


def svg_or_none(draw: Callable[[], str]) -> Optional[str]:
    """What a notebook shows: nothing where it cannot be drawn."""
    try:
        return draw()
    except (StoppedError, ValueError, OSError):
        return None


def answer(arguments: List[str]) -> str:
    """What torvane-cli prints. What it says against it is a ValueError, that there is none a
    StoppedError."""
    # It is looked for where TORVANE_CLI says, or else on the search path.
    program = os.environ.get("TORVANE_CLI") or shutil.which("torvane-cli")
    if program is None:
        raise StoppedError("torvane-cli is not on the search path")
    done = subprocess.run([program, *arguments], env={**os.environ, "QT_QPA_PLATFORM": "offscreen"},
                          stdin=subprocess.DEVNULL, capture_output=True, check=False)
    if done.returncode == 0:
        return done.stdout.decode("utf-8")
    lines = done.stderr.decode("utf-8", "replace").splitlines() or ["torvane-cli failed"]
    reason = lines[-1].replace("Error: ", "", 1).replace("--", "")
    if "without pictures" in reason:
        raise StoppedError(reason)
    raise ValueError(reason)


def drawing(arguments: List[str], format: str, files: Optional[Dict[str, bytes]] = None,
            rows: bool = True) -> bytes:
    """The picture that a command of torvane-cli draws; an argument that names one of the files is
    a file with that in it. ``rows``: the command writes rows as well."""
    with tempfile.TemporaryDirectory() as folder:
        paths = {name: str(Path(folder) / name) for name in files or {}}
        for name, path in paths.items():
            Path(path).write_bytes((files or {})[name])
        picture = Path(folder) / f"picture.{format}"
        out = ["--out", str(Path(folder) / "rows.csv")] if rows else []
        answer([*(paths.get(one, one) for one in arguments), "--picture", str(picture), *out])
        return picture.read_bytes()
