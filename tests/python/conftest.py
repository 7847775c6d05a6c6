"""What the tests of the Python module share: torvane-cli, whose figures the module's have to be."""

import csv
import io
import os
import subprocess

import numpy as np
import pytest


def cli(*arguments):
    """The rows that a command prints, below their captions."""
    done = subprocess.run([os.environ["TORVANE_CLI"], *map(str, arguments)], capture_output=True,
                          text=True, check=False)
    assert done.returncode == 0, done.stderr
    captions, *rows = list(csv.reader(io.StringIO(done.stdout))) or [[]]
    return captions, rows


def same_columns(rows, *columns, kind=np.float64):
    """Whether the numbers of the rows are those of the columns to the bit."""
    told = np.array([[float(field) for field in row[:len(columns)]] for row in rows])
    return told.astype(kind).tobytes() == np.column_stack(columns).astype(kind).tobytes()


@pytest.fixture
def tools():
    return cli, same_columns
