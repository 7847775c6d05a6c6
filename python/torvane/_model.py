"""Models, and what is measured of them."""

from __future__ import annotations

import csv
import difflib
import io
import itertools
import os
import tempfile
from pathlib import Path
from typing import (Any, Callable, Dict, Iterable, List, Mapping, NamedTuple, Optional, Sequence,
                    Tuple, Union)

import numpy as np

from . import _engine
from ._pictures import Draw, answer, drawing, options_of, svg_or_none
from ._results import (Array, Columns, Linear, Margins, Measures, Reading, Response, Run, Screen,
                       Study, Theory, measures_of, study_of)

Progress = Optional[Callable[[float, float], Any]]
Value = Union[float, str]


class Constant(NamedTuple):
    """A constant as it stands: its value is a number, of a list the index of a choice."""

    name: str
    unit: str
    value: float
    default: float
    lower: float
    upper: float
    choices: List[str]
    description: str


class Signal(NamedTuple):
    """A signal that instruments are offered; ``state`` says that it is integrated."""

    name: str
    unit: str
    state: bool
    description: str


class Pair(Tuple[str, str]):
    """Two signals, input and output; ``phase_add`` degrees are added to what is measured between
    them when the pair is chosen by its name."""

    phase_add: float = 0.0


class Meter(NamedTuple):
    """What a meter reads; the angle, degrees, is of a harmonic alone."""

    value: float
    angle_deg: Optional[float]


def _setting(key: str, what: str, signed: bool = True) -> Any:
    def get(self: "Generator") -> Any:
        return self._engine.generator_setting(f"{self.name}:{key}")

    def put(self: "Generator", value: Value) -> None:
        told = value if signed or isinstance(value, str) else abs(value)
        self._engine.set_generator(f"{self.name}:{key}", _text(told))

    return property(get, put, doc=what)


class Generator:
    """A waveform generator of a model: its settings are read and set as attributes."""

    __slots__ = ("_engine", "name")  # what is misspelt is no setting

    def __init__(self, engine: Any, name: str) -> None:
        self._engine = engine
        self.name = name

    waveform = _setting("Waveform", "the waveform's name; set by name or index")
    frequency = _setting("FreqHz", "Hz; stored without its sign", signed=False)
    amplitude = _setting("Amplitude", "in the command's unit")
    offset = _setting("Offset", "in the command's unit")
    phase = _setting("PhaseDeg", "degrees")
    duty_cycle = _setting("DutyCycle", "per cent, 0 to 100")

    def play(self, time: Sequence[float], value: Sequence[float], name: str = "array") -> None:
        """Plays values at times, seconds, joined by straight lines: arrays of shape (points,)."""
        plain = name.replace("=", " ").replace(":", " ")
        self._engine.play(self.name, time, value, f"{plain} {id(self):x}-{next(_played)}")

    def __repr__(self) -> str:
        return f"<Generator {self.name!r}: {self.waveform}, {self.frequency} Hz>"


_played = itertools.count(1)


class Model:
    """A simulated control loop.

    ``name`` is a model's name, a beginning that only one has ("3-1"), its index, or a model file
    (.tvf) or a loop of your own (.mo). ``model["KP"]`` is a constant, or the present value of a
    signal; ``model["KP"] = 1.2`` sets a constant, beyond its limits a ValueError.

    Every measurement is of a model of its own with these settings, from time 0: none depends on
    what was done before. ``run`` starts from time 0 too, unless it is to resume.

    One thread at a time may use a model; models in several threads run side by side.
    """

    def __init__(self, name: Union[str, int, "os.PathLike[str]"], yes: bool = False) -> None:
        self._source = os.fspath(name) if isinstance(name, os.PathLike) else str(name)
        self._engine = _engine.Model(self._source, yes)

    @property
    def name(self) -> str:
        """The model's name in the catalogue."""
        return self._engine.name

    @property
    def time(self) -> float:
        """The simulated time, seconds."""
        return self._engine.time

    @property
    def step(self) -> float:
        """The solver's step, seconds."""
        return self._engine.step

    @property
    def constants(self) -> Dict[str, Constant]:
        """All constants by name."""
        return {one[0]: Constant(*one) for one in self._engine.constants()}

    @property
    def signals(self) -> Dict[str, Signal]:
        """All signals that instruments are offered, by name."""
        return {one[0]: Signal(*one) for one in self._engine.signals()}

    def __getitem__(self, name: str) -> Value:
        value = self._engine.value(name)
        if value is None:
            known = self._ipython_key_completions_()
            raise KeyError(f"{self.name} has no constant or signal {name!r}{_near(name, known)}")
        return value

    def _ipython_key_completions_(self) -> List[str]:
        return [*self.constants, *self.signals]

    def __setitem__(self, name: str, value: Value) -> None:
        if name not in self.constants:
            raise KeyError(f"{self.name} has no constant {name!r}{_near(name, self.constants)}")
        self._engine.set_constant(name, _text(value))

    @property
    def pairs(self) -> Dict[str, Pair]:
        """The pairs of signals that the model offers its analysers, by name."""
        pairs = {}
        for name, input, output, phase_add in self._engine.pairs():
            pairs[name] = Pair((input, output))
            pairs[name].phase_add = phase_add
        return pairs

    @property
    def generators(self) -> List[str]:
        """The names of the waveform generators."""
        return self._engine.generators()

    def generator(self, name: Optional[str] = None) -> Generator:
        """A waveform generator, the model's first one without a name."""
        names = self.generators
        if name is None and names:
            return Generator(self._engine, names[0])
        if name not in names:
            raise KeyError(f"{self.name} has no generator {name!r}")
        return Generator(self._engine, str(name))

    def run(self, until: float, every: Optional[float] = None,
            record: Union[str, Iterable[str], None] = None, resume: bool = False,
            on_progress: Progress = None) -> Optional[Run]:
        """Simulates from time 0, or on from the present time, up to the time ``until``, seconds.

        With ``every`` a row is recorded every so many seconds, at the nearest step, of all signals
        or those of ``record``; without it nothing is, and None is returned. ``on_progress`` is
        called with the time and ``until`` ten times a second; an exception ends the run.
        """
        _above_zero(until=until, every=every)
        if record and every is None:
            raise ValueError("record needs every: without it nothing is recorded")
        listed = record if isinstance(record, str) else ",".join(record or ())
        rows = self._engine.run(until, every, listed, resume, on_progress)
        return None if rows is None else Run(*rows, title=self.name)

    def restart(self) -> None:
        """Goes back to time 0."""
        self._engine.restart()

    def step_measures(self, command: Optional[str] = None, response: Optional[str] = None, *,
                      until: Optional[float] = None, window: Optional[float] = None,
                      time_base: Optional[float] = None,
                      peak: Optional[str] = None, bode: bool = False, theory: bool = False,
                      loop: Optional[Tuple[str, str]] = None, order: Optional[int] = None,
                      start_delay: Optional[float] = None, end_delay: Optional[float] = None,
                      tsample: Optional[float] = None, amplitude: Optional[float] = None,
                      offset: Optional[float] = None, average: Optional[int] = None,
                      on_progress: Progress = None) -> Measures:
        """Measures how a signal follows a step of another one: overshoot (per cent), rise,
        settling and delay (seconds), errors; with ``bode`` or ``theory`` bandwidth (Hz), peaking
        and margins (dB, degrees) too. Without the two signals the model's closed loop is
        measured, as ``study`` and ``tune`` do. The options are those of ``torvane-cli measure``."""
        given = _given(locals(), "self", "on_progress")
        return measures_of(self._engine.step_measures(given, on_progress))

    def bode(self, input: Optional[str] = None, output: Optional[str] = None, *,
             average: Optional[int] = None, tsample: Optional[float] = None,
             amplitude: Optional[float] = None, offset: Optional[float] = None,
             order: Optional[int] = None, start_delay: Optional[float] = None,
             end_delay: Optional[float] = None, spectrum: Optional[bool] = None,
             between_samples: bool = False, setup: Optional[str] = None,
             on_progress: Progress = None) -> Response:
        """Measures a frequency response with the FFT analyser: a record of 2**order samples,
        ``tsample`` seconds apart, ``average`` records. ``setup`` names one of ``pairs`` in place
        of input and output. What is not given is the analyser's own."""
        given = _given(locals(), "self", "on_progress")
        return Response(self._engine.bode(given, on_progress), self._draws("bode", given))

    def sweep(self, input: Optional[str] = None, output: Optional[str] = None, *,
              from_: Optional[float] = None, to: Optional[float] = None,
              per_decade: Optional[int] = None, settle: Optional[float] = None,
              measure: Optional[float] = None, average: Optional[int] = None,
              tsample: Optional[float] = None, amplitude: Optional[float] = None,
              offset: Optional[float] = None, setup: Optional[str] = None,
              on_progress: Progress = None) -> Response:
        """Measures a frequency response with the swept-sine analyser, point by point between two
        frequencies, Hz. ``setup`` names one of ``pairs`` in place of input and output. What is
        not given is the analyser's own."""
        given = _given(locals(), "self", "on_progress")
        return Response(self._engine.sweep(given, on_progress), self._draws("sweep", given))

    def meter(self, variable: Optional[str] = None, kind: Optional[str] = None, *, until: float,
              with_: Optional[str] = None, harmonic: Optional[float] = None,
              window: Optional[float] = None, lpf: Optional[float] = None,
              hpf: Optional[float] = None, tsample: Optional[float] = None,
              ac: Optional[bool] = None, db: Optional[bool] = None,
              on_progress: Progress = None) -> Meter:
        """Reads a meter at the time ``until``, seconds: kind "rms", "average", "harmonic" (of
        ``harmonic`` Hz) or "correlation" (``with_`` another signal)."""
        given = _given(locals(), "self", "on_progress")
        return Meter(*self._engine.meter(given, on_progress))

    def scope(self, until: float, *, time_base: Optional[float] = None,
              show: Union[str, Iterable[str], None] = None, trig_mode: Optional[str] = None,
              trig_source: Optional[str] = None, trig_slope: Optional[str] = None,
              trig_level: Optional[float] = None, trig_position: Optional[float] = None,
              scale: Optional[Mapping[str, float]] = None,
              shift: Optional[Mapping[str, float]] = None,
              overlay: Optional[Union[str, "os.PathLike[str]"]] = None,
              keep: Optional[Mapping[str, Value]] = None,
              on_progress: Progress = None) -> Screen:
        """Runs the model with its scope to the time ``until``, seconds, and gives the last
        complete screen: ten divisions of ``time_base`` seconds. ``scale`` has the units a
        division of signals' traces, ``shift`` by how many units they are moved up. Behind the
        traces of its picture lie, as thin lines, those of the file ``overlay`` or those with
        other constants, ``keep``, which the legend then tells."""
        _above_zero(until=until)
        if overlay is not None and keep is not None:
            raise ValueError("overlay and keep both lie behind the picture: one of them")
        behind = {"overlay": os.fspath(Path(overlay).resolve(strict=True)) if overlay else None,
                  "keep": [f"{name}={_text(value)}" for name, value in (keep or {}).items()]}
        if not self.constants.keys() >= (keep or {}).keys():
            raise KeyError(f"{self.name} does not have all constants of {', '.join(keep or {})}")
        show, scale, shift = _listed(show), _each(scale), _each(shift)
        given = _given(locals(), "self", "on_progress", "overlay", "keep", "behind")
        draw = self._draws("scope", {**given, **behind})
        given.pop("until")
        return Screen(*self._engine.scope(until, given, on_progress), draw)

    def linearize(self, input: str, output: str) -> Linear:
        """The linear model from one signal to another, its poles and zeros."""
        A, B, C, D, Ts, poles, zeros, notes, stability = self._engine.linearize(input, output)
        return Linear(A, B, C, D, Ts, np.array(poles), np.array(zeros), notes, stability)

    def theory(self, input: str, output: str, frequency: Sequence[float],
               tsample: Optional[float] = None) -> Theory:
        """What the linearised equations say of a response at frequencies, Hz, of shape (points,);
        of a sampled loop as an analyser sees it whose samples are ``tsample`` seconds apart."""
        hz = [float(one) for one in np.asarray(frequency, dtype=float).ravel()]
        return Theory(*self._engine.theory(input, output, hz, tsample))

    def poles(self) -> Array:
        """The poles of everything that the command moves, complex, 1/s or in the z plane."""
        return np.array(self._engine.poles())

    def locus(self, constant: str, values: Iterable[Value]) -> List[Array]:
        """The poles for each value of a constant; the model stays as it is."""
        other = self.copy()
        ways = []
        for value in values:
            other[constant] = value
            ways.append(other.poles())
        return ways

    def loop_margins(self) -> Dict[str, Any]:
        """From theory: phase and gain margin and sensitivity peak of the model's own loop, each
        a ``Reading`` or None."""
        told = self._engine.loop_margins()
        for name in ("phase_margin", "gain_margin", "sensitivity"):
            told[name] = told[name] and Reading(*told[name])
        return told

    def tune(self, vary: Mapping[str, Any], *, command: Optional[str] = None,
             response: Optional[str] = None, require: Union[str, Sequence[str]] = (),
             best: Optional[str] = None, runs: Optional[int] = None, on_progress: Progress = None,
             **measure: Any) -> Dict[str, Union[float, str, None]]:
        """Looks for the constants with which the model meets requirements ("Overshoot<10").

        ``vary`` has a range for each: (from, to) or (from, to, "log"). The model stays as it is;
        what was found is given by captions, the values first. StoppedError when nothing does.
        """
        ranges = [f"{name}={_range(of)}" for name, of in vary.items()]
        given = _given({**_measure(measure), "command": command, "response": response,
                        "vary": ranges, "require": _requirements(require), "best": best,
                        "runs": runs})
        captions, fields = self._engine.tune(given, on_progress)
        return dict(zip(captions, map(_told, captions, fields)))

    def study(self, vary: Optional[Mapping[str, Any]] = None, **options: Any) -> Study:
        """As ``torvane.study`` of this model."""
        return study(self, vary, **options)

    def save(self, path: Union[str, "os.PathLike[str]"], *,
             scope: Optional[Mapping[str, Any]] = None, bode: Optional[Mapping[str, Any]] = None,
             sweep: Optional[Mapping[str, Any]] = None,
             meter: Optional[Mapping[str, Any]] = None) -> None:
        """Writes the model's set-up as a model file. What the scope, the analysers and the first
        meter are to be set to in it are the keywords of the calls of these names; torvane-cli sets
        them, without one they are a StoppedError."""
        if not (scope or bode or sweep or meter):
            return self._engine.save(os.fspath(path))
        told = dict(scope or {})
        told.update(show=_listed(told.get("show")), scale=_each(told.get("scale")),
                    shift=_each(told.get("shift")))
        for prefix, settings in (("bode", bode), ("sweep", sweep), ("meter", meter)):
            told.update({f"{prefix}_{name}": value for name, value in (settings or {}).items()})
        with tempfile.TemporaryDirectory() as folder:
            file = str(Path(folder) / "model.tvf")
            self._engine.save(file)
            answer(["convert", file, *options_of(told), os.fspath(path)])

    def copy(self) -> "Model":
        """Another model with the same settings, at time 0."""
        other = Model.__new__(Model)
        other.__setstate__(self.__getstate__())
        return other

    def diagram(self) -> Optional[str]:
        """The block diagram as SVG, drawn by torvane-cli; None where that cannot be had."""
        return svg_or_none(lambda: self._diagram([]))

    def diagram_dot(self) -> str:
        """The diagram of a loop of your own in the language DOT; a built-in model is a
        ValueError. torvane-cli writes it; without one a StoppedError."""
        return self._diagram(["--format", "dot"])

    def _diagram(self, options: List[str]) -> str:
        with tempfile.TemporaryDirectory() as folder:
            _, loop = _written(self._engine.freeze(), folder)
            return answer(["diagram", loop or self.name, *options])

    def speed(self, seconds: float = 3.0, instruments: bool = True, *,
              time_base: Optional[float] = None,
              show: Union[str, Iterable[str], None] = None, trig_mode: Optional[str] = None,
              trig_source: Optional[str] = None, trig_slope: Optional[str] = None,
              trig_level: Optional[float] = None, trig_position: Optional[float] = None,
              scale: Optional[Mapping[str, float]] = None,
              shift: Optional[Mapping[str, float]] = None,
              meter: Optional[Mapping[str, Any]] = None) -> Dict[str, float]:
        """How fast torvane-cli runs the model with these settings, for so many seconds of wall
        time: ``simulated_s``, ``wall_s``, their ``ratio`` and ``ns_per_step``; without
        ``instruments`` solver and model alone. The scope is set as for ``scope``; ``meter``, the
        keywords of that call, puts a meter beside it."""
        _above_zero(seconds=seconds)
        show, scale, shift = _listed(show), _each(scale), _each(shift)
        scope = options_of(_given(locals(), "self", "seconds", "instruments", "meter"))
        scope += options_of({f"meter_{name}": value for name, value in (meter or {}).items()})
        with tempfile.TemporaryDirectory() as folder:
            file, _ = _written(self._engine.freeze(), folder)
            alone = [] if instruments else ["--no-instruments"]
            told = answer(["speed", file, "--for", repr(float(seconds)), *alone, *scope])
        return {name: float(value) for name, value in (one.split("=") for one in told.split())}

    def _repr_svg_(self) -> Optional[str]:
        return self.diagram()

    def _draws(self, command: str, given: Mapping[str, Any],
               table: Optional[bytes] = None) -> Draw:
        """How a command draws the model as it is now; a study of its runs' table, if it has one."""
        frozen = self._engine.freeze()
        options = options_of(given)

        def draw(format: str, more: List[str]) -> bytes:
            with tempfile.TemporaryDirectory() as folder:
                file, _ = _written(frozen, folder)
                runs = {} if table is None else {"runs.csv": table}
                return drawing([command, *runs, file, *options, *more], format, runs)

        return draw

    def __getstate__(self) -> Tuple[str, Any]:
        return self._source, self._engine.freeze()

    def __setstate__(self, state: Tuple[str, Any]) -> None:
        self._source, frozen = state
        self._engine = _engine.thaw(*frozen)

    def __repr__(self) -> str:
        return f"<Model {self.name!r}>"


def study(model: Union[Model, str, int], vary: Optional[Mapping[str, Any]] = None, *,
          command: Optional[str] = None, response: Optional[str] = None,
          table: Optional[str] = None, sample: Optional[int] = None,
          seed: Optional[int] = None, jobs: Optional[int] = None,
          require: Union[str, Sequence[str]] = (), best: Optional[str] = None,
          shard: Optional[Tuple[int, int]] = None, on_progress: Progress = None,
          **measure: Any) -> Study:
    """Measures many runs of a model, in processes of their own, a row each.

    ``vary`` has values for each constant or generator setting, an array or a list, and the runs
    are all combinations, those of the last in turn first; with ``sample`` it has ranges, (from,
    to) or (from, to, "log"), of which so many samples are taken. ``table`` is a CSV file with a
    row for each run instead. ``measure``: as ``step_measures``. Values have twelve digits.
    ``shard``, as (3, 8), does each eighth run from the third on; ``write`` then writes what
    ``merge`` puts together.
    """
    model = model if isinstance(model, Model) else Model(model)
    names: List[str] = []
    runs: List[Tuple[str, ...]] = []
    given = _given({**_measure(measure), "command": command, "response": response, "table": table,
                    "sample": sample, "seed": seed, "jobs": jobs,
                    "require": _requirements(require), "best": best,
                    "shard": "{}/{}".format(*shard) if shard else None})
    if (vary is None) == (table is None) or (vary is not None and not vary):
        raise ValueError("a study needs vary, or a table")
    if seed is not None and sample is None:
        raise ValueError("seed needs sample")
    if vary is not None and sample is not None:
        given["vary"] = [f"{name}={_range(of)}" for name, of in vary.items()]
    elif vary is not None:
        names = list(vary)
        columns = [[_design(one) for one in np.atleast_1d(np.asarray(values, dtype=object))]
                   for values in vary.values()]
        runs = list(itertools.product(*columns))
        if not runs:
            raise ValueError("a study needs a value of each constant that it varies")
    made = study_of(*model._engine.study(names, runs, given, on_progress))
    if table is not None:
        design: Optional[bytes] = Path(table).read_bytes()
    else:
        design = _table(names, runs) if runs else None
    made._draw = model._draws("study", {**given, "table": None}, design)
    return made


def merge(paths: Iterable[Union[str, "os.PathLike[str]"]], best: Optional[str] = None) -> Study:
    """Puts the files of all shares of a study together, or reads the file of a whole one.

    Files of different studies, damaged rows and runs that are missing or there twice are a
    ValueError that names them.
    """
    return study_of(*_engine.merge([os.fspath(path) for path in paths], best or ""))


def _written(frozen: Tuple[str, Optional[str], str], folder: str) -> Tuple[str, Optional[str]]:
    """The model file, and that of an own loop, written for torvane-cli into a folder: a loop as it
    was read, whatever became of its file."""
    text, loop, path = frozen
    file, beside = Path(folder) / "model.tvf", Path(folder) / Path(path).name
    if loop is not None:
        beside.write_bytes(loop.encode("utf-8"))
        text = text.replace(f"Loop,{path}\n", f"Loop,{beside}\n", 1)
    file.write_bytes(text.encode("utf-8"))
    return str(file), None if loop is None else str(beside)


def _listed(names: Union[str, Iterable[str], None]) -> Optional[str]:
    return names if names is None or isinstance(names, str) else ",".join(names)


def _each(numbers: Any) -> Any:
    return numbers and [f"{name}={float(number)!r}" for name, number in numbers.items()]


def _text(value: Value) -> str:
    if isinstance(value, str):
        return value
    # A choice's index has no point.
    text = repr(float(value))
    return text[:-2] if text.endswith(".0") else text


def _design(value: Value) -> str:
    return value if isinstance(value, str) else _engine.Model.design_text(float(value))


def _range(of: Any) -> str:
    ends = list(of)
    if len(ends) != 2 and ends[2:] != ["log"]:
        raise ValueError('a range is (from, to) or (from, to, "log")')
    return ":".join(_text(one) for one in ends)


def _table(names: List[str], runs: List[Tuple[str, ...]]) -> bytes:
    text = io.StringIO(newline="")
    csv.writer(text, lineterminator="\n").writerows([names, *runs])
    return text.getvalue().encode("utf-8")


def _near(name: str, known: Iterable[str]) -> str:
    """The name that was likely meant, as the end of a message."""
    folded = {one.lower(): one for one in known}
    near = difflib.get_close_matches(str(name).lower(), folded, 1)
    return f"; did you mean {folded[near[0]]!r}?" if near else ""


def _told(caption: str, field: str) -> Union[float, str, None]:
    if caption == "Reason":
        return field
    return float(field) if field else None


def _above_zero(**numbers: Optional[float]) -> None:
    for name, value in numbers.items():
        if value is not None and not 0 < value < float("inf"):
            raise ValueError(f"{name} must be above 0, not {value}")


_MEASURE = frozenset(
    "until window time_base peak bode theory loop order start_delay end_delay tsample amplitude "
    "offset average".split())


def _measure(values: Mapping[str, Any]) -> Mapping[str, Any]:
    """Keyword arguments for what is measured of each run; others are a TypeError."""
    for name in values:
        if name not in _MEASURE:
            raise TypeError(f"unexpected keyword argument {name!r}")
    return values


def _requirements(require: Union[str, Sequence[str]]) -> List[str]:
    return [require] if isinstance(require, str) else list(require)


def _given(values: Mapping[str, Any], *without: str) -> Dict[str, Any]:
    """Keyword arguments that were given, under the engine's names."""
    given = {name.rstrip("_"): value for name, value in values.items()
             if name not in without and value is not None}
    if isinstance(given.get("loop"), tuple):
        given["loop"] = ":".join(given["loop"])
    return given
