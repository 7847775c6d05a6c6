"""The examples of docs/python.md, run as they stand there."""

import re
from pathlib import Path

import pytest

PAGE = Path(__file__).parents[2] / "docs" / "python.md"
BLOCKS = re.findall(r"^```python\n(.*?)^```", PAGE.read_text(encoding="utf-8"), re.M | re.S)


def test_every_block_of_the_page_runs(tmp_path, monkeypatch):
    pytest.importorskip("scipy")
    pytest.importorskip("matplotlib")
    monkeypatch.chdir(tmp_path)
    names = {}
    for block in BLOCKS:
        exec(compile(block, str(PAGE), "exec"), names)  # pylint: disable=exec-used
    assert len(BLOCKS) >= 7 and (tmp_path / "tuning.png").stat().st_size > 10000
