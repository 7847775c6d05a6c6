"""Pictures by the painters of torvane-cli, where it is and has them."""

from __future__ import annotations

import os
import shutil
import subprocess
import tempfile
from pathlib import Path
from typing import Any, List, Mapping, Optional, Union

from ._reports import StoppedError


def options_of(settings: Mapping[str, Any]) -> List[str]:
    """Keyword arguments as options of torvane-cli."""
    options: List[str] = []
    for name, value in settings.items():
        option = "--" + name.strip("_").replace("_", "-")
        if value is True:
            options.append(option)
        elif isinstance(value, list):
            options += [part for one in value for part in (option, one)]
        elif value is not None and value is not False:
            options += [option, value if isinstance(value, str) else repr(value)]
    return options


class Picture:
    """A drawing, which a notebook shows; ``svg`` is its text."""

    def __init__(self, svg: str) -> None:
        self.svg = svg

    def save(self, path: Union[str, "os.PathLike[str]"]) -> None:
        """Writes it as an SVG file."""
        Path(path).write_text(self.svg, encoding="utf-8")

    def _repr_svg_(self) -> str:
        return self.svg


def _program() -> Optional[str]:
    """The one that TORVANE_CLI names, or else the one on the search path."""
    return os.environ.get("TORVANE_CLI") or shutil.which("torvane-cli")


def drawing_of_study(table: bytes, options: List[str]) -> str:
    """The map of a table. What torvane-cli says against it is a ValueError; that there is none, or
    that it draws no pictures, a StoppedError."""
    program = _program()
    if program is None:
        raise StoppedError("torvane-cli, which draws it, is not on the search path")
    with tempfile.TemporaryDirectory() as folder:
        file, picture = Path(folder) / "study.csv", Path(folder) / "map.svg"
        file.write_bytes(table)
        done = subprocess.run([program, "study", "--merge", str(file), *options, "--picture",
                               str(picture), "--out", str(Path(folder) / "rows.csv")],
                              env={**os.environ, "QT_QPA_PLATFORM": "offscreen"},
                              stdin=subprocess.DEVNULL, capture_output=True, check=False)
        if done.returncode == 0:
            return picture.read_text(encoding="utf-8")
        lines = done.stderr.decode("utf-8", "replace").splitlines() or ["torvane-cli failed"]
        reason = lines[-1].replace("Error: ", "", 1).replace("--", "")
        if "without pictures" in reason:
            raise StoppedError(reason)
        raise ValueError(reason)


def answer(arguments: List[str]) -> str:
    """What torvane-cli prints. What it says against it is a ValueError, that there is none a
    StoppedError."""
    program = _program()
    if program is None:
        raise StoppedError("torvane-cli is not on the search path")
    done = subprocess.run([program, *arguments], stdin=subprocess.DEVNULL, capture_output=True,
                          check=False)
    if done.returncode == 0:
        return done.stdout.decode("utf-8")
    lines = done.stderr.decode("utf-8", "replace").splitlines() or ["torvane-cli failed"]
    raise ValueError(lines[-1].replace("Error: ", "", 1).replace("--", ""))


def drawing_of_run(rows: str, title: str) -> Optional[str]:
    """The signals of a table on time; None where torvane-cli draws no pictures."""
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder) / "run.csv"
        file.write_bytes(rows.encode("utf-8"))
        return svg([str(file)], "draw", [f"--title={title}"])


def svg(arguments: List[str], command: str, options: List[str]) -> Optional[str]:
    """The picture that a command of torvane-cli draws; None where there is none."""
    program = _program()
    if program is None:
        return None
    with tempfile.TemporaryDirectory() as folder:
        picture = Path(folder) / "picture.svg"
        drawn = ["--out" if command == "diagram" else "--picture", str(picture)]
        makes_rows = command not in ("diagram", "draw")
        rows = ["--out", str(Path(folder) / "rows.csv")] if makes_rows else []
        done = subprocess.run([program, command, *arguments, *options, *drawn, *rows],
                              env={**os.environ, "QT_QPA_PLATFORM": "offscreen"},
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, check=False)
        if done.returncode != 0 or not picture.exists():
            return None
        return picture.read_text(encoding="utf-8")
