"""Pictures by the painters of torvane-cli, where it is and has them."""

from __future__ import annotations

import os
import shutil
import subprocess
import tempfile
from pathlib import Path
from typing import Any, List, Mapping, Optional


def options_of(settings: Mapping[str, Any]) -> List[str]:
    """Keyword arguments as options of torvane-cli."""
    options: List[str] = []
    for name, value in settings.items():
        option = "--" + name.strip("_").replace("_", "-")
        if value is True:
            options.append(option)
        elif value is not None and value is not False:
            options += [option, value if isinstance(value, str) else repr(value)]
    return options


def svg(arguments: List[str], command: str, options: List[str]) -> Optional[str]:
    """The picture that a command of torvane-cli draws; None where there is none.

    The program is the one that TORVANE_CLI names, or else the one on the search path.
    """
    program = os.environ.get("TORVANE_CLI") or shutil.which("torvane-cli")
    if program is None:
        return None
    with tempfile.TemporaryDirectory() as folder:
        picture = Path(folder) / "picture.svg"
        drawn = ["--out" if command == "diagram" else "--picture", str(picture)]
        rows = [] if command == "diagram" else ["--out", str(Path(folder) / "rows.csv")]
        done = subprocess.run([program, command, *arguments, *options, *drawn, *rows],
                              env={**os.environ, "QT_QPA_PLATFORM": "offscreen"},
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, check=False)
        if done.returncode != 0 or not picture.exists():
            return None
        return picture.read_text(encoding="utf-8")
