"""What runs and measurements give."""

from __future__ import annotations

import csv
import io
from pathlib import Path
from typing import (Any, Dict, Iterator, List, Mapping, NamedTuple, Optional, Sequence,
                    Tuple, Union)

import numpy as np

from . import _engine
from ._pictures import Draw, Drawn, Picture, drawing, options_of
from ._reports import StoppedError

Array = np.ndarray


class Columns(Mapping[str, Array]):
    """Signals over time, each a float64 array of shape (rows,) in the unit of its display.

    ``time`` is in seconds; ``columns["Response"]`` is a signal, ``units`` has their units.
    """

    def __init__(self, names: List[str], units: List[str], arrays: List[Array]) -> None:
        self.time: Array = arrays[0]
        self.units: Dict[str, str] = dict(zip(names[1:], units[1:]))
        self._columns = dict(zip(names[1:], arrays[1:]))

    def __getitem__(self, name: str) -> Array:
        if name == "Time":
            return self.time
        return self._columns[name]

    def __iter__(self) -> Iterator[str]:
        return iter(self._columns)

    def __len__(self) -> int:
        return len(self._columns)

    def _ipython_key_completions_(self) -> List[str]:
        return list(self._columns)

    def __repr__(self) -> str:
        return f"<{type(self).__name__}: {len(self.time)} rows of {', '.join(self)}>"

    def to_pandas(self) -> Any:
        """A ``pandas.DataFrame`` with the time as index; ImportError where pandas is missing."""
        pandas = _needed("pandas", "to_pandas()")
        return pandas.DataFrame(self._columns, index=pandas.Index(self.time, name="Time"))


class Run(Columns, Drawn):
    """What a run recorded: a row at the time 0 and then every so many seconds."""

    def __init__(self, names: List[str], units: List[str], arrays: List[Array],
                 title: str = "Run") -> None:
        super().__init__(names, units, arrays)
        self._title, self._time_unit = title, units[0]

    def _draw(self, format: str, options: List[str]) -> bytes:  # type: ignore[override]
        captions = [f"{name} ({self.units[name]})" if self.units[name] else name for name in self]
        rows = io.StringIO(newline="")
        writer = csv.writer(rows)
        writer.writerow([f"Time ({self._time_unit})", *captions])
        writer.writerows(zip(self.time.tolist(), *(self[name].tolist() for name in self)))
        return drawing(["draw", "run.csv", f"--title={self._title}", *options], format,
                       {"run.csv": rows.getvalue().encode("utf-8")}, rows=False)


def _drawn_elsewhere(format: str, options: List[str]) -> bytes:
    raise StoppedError("a picture is drawn in the process that made the measurement")


class _MeasuredElsewhere:
    """In place of the measurement, which stays in the process that made it."""

    def margins(self, *_: Any) -> Any:
        raise StoppedError("a response is read in the process that measured it")

    overlay = margins


class _Measured(Drawn):
    """What is drawn, and read further, in the process that measured it: pickled, it has its arrays
    alone."""

    def __getstate__(self) -> Dict[str, Any]:
        state: Dict[str, Any] = {**self.__dict__, "_draw": _drawn_elsewhere}
        if "_measured" in state:
            state["_measured"] = _MeasuredElsewhere()
        return state

    def __copy__(self) -> Any:
        copied = type(self).__new__(type(self))
        copied.__dict__.update(self.__dict__)
        return copied


class Screen(Columns, _Measured):
    """The last complete screen of a scope, whose samples are single-precision numbers."""

    def __init__(self, names: List[str], units: List[str], arrays: List[Array],
                 draw: Draw) -> None:
        super().__init__(names, units, arrays)
        self._draw = draw


class Reading(NamedTuple):
    """A value, and the frequency at which it was read."""

    frequency: float  #: Hz
    value: float  #: dB or degrees


class Margins(NamedTuple):
    """What is read off a response; what is not there is None, and ``missing`` says why."""

    bandwidth: Optional[float]  #: where the gain first falls through -3 dB, Hz
    phase_bandwidth: Optional[float]  #: where the phase first falls through -90 degrees, Hz
    peaking: Optional[Reading]  #: the greatest gain, dB
    phase_margins: List[Reading]  #: degrees, at each crossing of 0 dB
    gain_margins: List[Reading]  #: dB, at each crossing of an odd number of half turns
    sensitivity: Optional[Reading]  #: the greatest of 1 / abs(1 + open loop)
    missing: List[str]
    accurate_up_to: float  #: what the sample time is short enough for, Hz

    @property
    def phase_margin(self) -> Optional[Reading]:
        """The phase margin nearest to 0."""
        return _nearest_to_0(self.phase_margins)

    @property
    def gain_margin(self) -> Optional[Reading]:
        """The gain margin nearest to 0."""
        return _nearest_to_0(self.gain_margins)


def _nearest_to_0(readings: List[Reading]) -> Optional[Reading]:
    return min(readings, key=lambda one: abs(one.value)) if readings else None


def _margins_of(read: Dict[str, Any]) -> Margins:
    for name in ("peaking", "sensitivity"):
        read[name] = read[name] and Reading(*read[name])
    for name in ("phase_margins", "gain_margins"):
        read[name] = [Reading(*one) for one in read[name]]
    return Margins(**read)


class Overlay(NamedTuple):
    """A file's response: float64 arrays of shape (points,), NaN beyond its frequencies."""

    frequency: Array  #: Hz, of the response that it is laid over
    gain_db: Array
    phase_deg: Array
    margins: Margins  #: read off the file's own points


class Response(_Measured):
    """A frequency response; all arrays are float64 of shape (points,).

    ``frequency`` is in Hz, ``gain_db`` in dB, ``phase_deg`` in degrees, wrapped to (-270, 90];
    ``excited`` (bool) says where the excitation had power, elsewhere the rest is noise;
    ``coherence`` is None unless several measurements were averaged.
    """

    def __init__(self, measured: Any, draw: Draw) -> None:
        hz, gain, phase, excited, coherence = measured.columns()
        self.frequency: Array = hz
        self.gain_db: Array = gain
        self.phase_deg: Array = phase
        self.excited: Array = excited.view(bool)
        self.coherence: Optional[Array] = coherence
        self.input: str = measured.input
        self.output: str = measured.output
        self.doubts: List[str] = measured.doubts()
        self._measured = measured
        self._draw = draw

    @property
    def complex(self) -> Array:
        """Output over input as complex128 numbers, shape (points,)."""
        return 10.0 ** (self.gain_db / 20.0) * np.exp(1j * np.deg2rad(self.phase_deg))

    def margins(self, read_as: str = "auto") -> Margins:
        """Reads bandwidth, peaking and margins off the response.

        ``read_as``: "open" loop, "closed" loop, "unity" (closed, its output fed back), or "auto".
        """
        return _margins_of(self._measured.margins(read_as))

    def overlay(self, path: Union[str, Path], *, overlay_columns: str = "",
                overlay_units: str = "", read_as: str = "auto") -> "Overlay":
        """A file's response, from a bench or ``torvane-cli``, at the frequencies of this one.

        ``overlay_columns`` ("F,G,P", captions or numbers) says which are frequency, gain and
        phase, ``overlay_units`` ("Hz,dB,deg") theirs where the file does not.
        """
        gain, phase = self._measured.overlay(str(path), overlay_columns, overlay_units)
        return Overlay(self.frequency, gain, phase,
                       _margins_of(self._measured.margins(read_as, 1)))

    def to_control(self) -> Any:
        """An ``FRD`` of python-control, of the excited points; ImportError where it is missing."""
        control = _needed("control", "to_control()")
        points = self.excited & (self.frequency > 0)
        return control.FRD(self.complex[points], 2 * np.pi * self.frequency[points])

    def __len__(self) -> int:
        return len(self.frequency)

    def __repr__(self) -> str:
        return f"<Response: {self.output} to {self.input}, {len(self)} points>"

    def picture(self, *, theory: bool = False, overlay: Union[str, Path, None] = None,
                overlay_columns: Optional[str] = None,
                overlay_units: Optional[str] = None) -> Picture:
        """Gain and phase, and over them what theory says or the response of a file, as ``overlay``
        reads it; a StoppedError where torvane-cli, which draws it, is not on the search path or
        draws no pictures."""
        told = {"theory": theory, "overlay": overlay and str(overlay),
                "overlay_columns": overlay_columns, "overlay_units": overlay_units}
        return Picture(self._draw, options_of(told))


class Measures(Mapping[str, Optional[float]]):
    """Figures under their captions, "Overshoot"; None where one cannot be told.

    Each is an attribute too: ``measures.rms_error``. ``units`` has their units, ``reasons`` says
    why some are missing, ``warnings`` what makes some less trustworthy.
    """

    def __init__(self, names: List[str], values: List[Optional[float]], reasons: List[str],
                 warnings: List[str], units: List[str]) -> None:
        self._values = dict(zip(names, values))
        self.units = dict(zip(names, units))
        self.reasons = reasons
        self.warnings = warnings

    def __getitem__(self, name: str) -> Optional[float]:
        return self._values[name]

    def __getattr__(self, name: str) -> Optional[float]:
        if not name.startswith("_"):
            for caption, value in self._values.items():
                if caption.lower().replace(" ", "_") == name:
                    return value
        raise AttributeError(name)

    def __iter__(self) -> Iterator[str]:
        return iter(self._values)

    def __len__(self) -> int:
        return len(self._values)

    def _ipython_key_completions_(self) -> List[str]:
        return list(self._values)

    def __repr__(self) -> str:
        return f"Measures({self._values})"


class Linear(NamedTuple):
    """A linear model from one signal to another about the point at which the loop stands.

    ``A`` (n, n), ``B`` (n,), ``C`` (1, n), ``D`` (1,); ``Ts`` seconds, 0 of a continuous one;
    poles and zeros complex, in 1/s or in the z plane.
    """

    A: Array
    B: Array
    C: Array
    D: Array
    Ts: float
    poles: Array
    zeros: Array
    notes: List[str]
    stability: str


class Theory(NamedTuple):
    """What theory says of a response: float64 arrays of shape (points,)."""

    frequency: Array  #: Hz
    gain_db: Array
    phase_deg: Array

    @property
    def complex(self) -> Array:
        """Output over input as complex128 numbers."""
        return 10.0 ** (self.gain_db / 20.0) * np.exp(1j * np.deg2rad(self.phase_deg))


class Study(np.ndarray):
    """The rows of a study: a structured array with a field for each column.

    ``Run`` and ``Measures`` are integers, settings float64 (or texts, of choices), measures
    float64 with NaN for what a run has none of, ``Reason`` text. ``units`` has the units of
    settings and measures by their captions, but not a signal's where a file does not tell it;
    ``csv`` is the table as torvane-cli writes it, ``best`` the position of the best row, if one
    was asked for, and ``file`` what ``write`` writes: the table, or of a share its sealed rows.
    Some of the rows, or rows in another order, have fields and units alone.
    """

    csv: bytes = b""
    best: Optional[int] = None
    file: bytes = b""
    units: Mapping[str, str] = {}
    _draw: Optional[Draw] = None

    def __array_finalize__(self, other: Any) -> None:
        # Which rows these are is not known here: a slice and a copy look the same.
        self.units = getattr(other, "units", {})

    def copy(self, order: Any = "C") -> "Study":
        """All rows, with all that belongs to them."""
        copied: Study = super().copy(order)
        copied.csv, copied.best, copied.file = self.csv, self.best, self.file
        copied._draw = self._draw
        return copied

    def sort(self, *arguments: Any, **keywords: Any) -> None:
        """Sorts the rows in place: they are some rows from then on."""
        super().sort(*arguments, **keywords)
        self.csv, self.best, self.file, self._draw = b"", None, b"", None

    def __copy__(self) -> "Study":
        return self.copy()

    def __deepcopy__(self, memo: Any) -> "Study":
        return self.copy()

    def __reduce__(self) -> Any:
        array: Any = super().__reduce__()
        make, arguments, state = array
        return make, arguments, (state, self.csv, self.best, self.file, self.units)

    def __setstate__(self, state: Any) -> None:
        array, self.csv, self.best, self.file, self.units = state
        super().__setstate__(array)

    def write(self, path: Union[str, Path]) -> None:
        """Writes the whole table, or the share, as torvane-cli does, byte for byte."""
        self._needs_table()
        Path(path).write_bytes(self.file)

    def _needs_table(self) -> None:
        if not self.csv:
            raise ValueError("these are rows of a study, not the study")

    def map(self, measure: str, *, axes: Optional[Tuple[str, str]] = None,
            limits: Optional[Tuple[float, float]] = None, contours: bool = False,
            levels: Optional[Sequence[float]] = None, best: Optional[str] = None,
            chosen: Optional[int] = None) -> Picture:
        """A measure over two settings as a picture, which torvane-cli draws: a map for each
        value of the other settings. ``limits`` are the values at the ends of the colours,
        ``levels`` those of the contours; the run ``chosen``, or the one with the ``best`` of a
        measure, is set off."""
        self._needs_table()
        told = {"map": measure, "axes": axes and ",".join(axes), "contours": contours,
                "limits": limits and ":".join(repr(float(one)) for one in limits),
                "levels": levels and ",".join(repr(float(one)) for one in levels),
                "best": best, "chosen": chosen}

        def draw(format: str, options: List[str]) -> bytes:
            return drawing(["study", "--merge", "study.csv", *options], format,
                           {"study.csv": self.csv})

        return Picture(draw, options_of(told))

    def picture(self, *, chosen: Optional[int] = None) -> Picture:
        """The responses of all runs as thin lines, which torvane-cli draws: it makes all runs once
        more. The run ``chosen``, or else the best if one was asked for, is set off. A study that
        was put together of files has no model, and is a ValueError."""
        self._needs_table()
        if self._draw is None:
            raise ValueError("responses are drawn of a study that was made here; map() draws any")
        return Picture(self._draw, options_of({"chosen": chosen}))


def study_of(table: bytes, best: Optional[int], file: bytes, units: List[str]) -> Study:
    """The structured array of a table; a file of no share has no units of signals and settings."""
    captions, *rows = csv.reader(io.StringIO(table.decode("utf-8"), newline=""))
    mark = len(captions) - 1 - captions[::-1].index("Measures")
    fields = []
    for place, caption in enumerate(captions):
        values = [row[place] for row in rows]
        fields.append((caption, _type_of(place, mark, caption, values)))
    array = np.empty(len(rows), dtype=fields).view(Study)
    for place, (caption, kind) in enumerate(fields):
        array[caption] = [_number(row[place]) if kind == "f8" else row[place] for row in rows]
    array.csv, array.best, array.file = table, best, file
    named = [one for place, one in enumerate(captions[:-1]) if place not in (0, mark)]
    array.units = dict(zip(named, units or map(_engine.measure_unit, named)))
    return array


def _type_of(place: int, mark: int, caption: str, values: List[str]) -> Any:
    if place in (0, mark):
        return "i8"
    if caption == "Reason":
        return object
    numbers = all(_is_number(value) for value in values if value or place < mark)
    return "f8" if numbers else object


def _is_number(text: str) -> bool:
    try:
        float(text)
    except ValueError:
        return False
    return True


def _number(text: str) -> float:
    return float(text) if text else float("nan")


def measures_of(told: Tuple[List[str], List[Optional[float]], List[str], List[str],
                            List[str]]) -> Measures:
    """The figures that were told."""
    return Measures(*told)


def _needed(module: str, what: str) -> Any:
    try:
        return __import__(module)
    except ImportError as missing:
        raise ImportError(f"{what} needs the package {module}, which is not installed") from missing
