"""Limits, misuse, and what ends a run."""

import copy
import gc
import os
import pickle
import signal
import subprocess
import threading
import time

import numpy as np
import pytest
import torvane as tv

REFUSED = [
    (ValueError, "KP is limited to", lambda m: m.__setitem__("KP", 1e12)),
    (ValueError, "KP needs a number", lambda m: m.__setitem__("KP", "much")),
    (KeyError, "no constant 'kp'; did you mean 'KP'?", lambda m: m.__setitem__("kp", 1)),
    (KeyError, "no constant 'KPX'", lambda m: m.__setitem__("KPX", 1)),
    (KeyError, "no constant or signal 'Nothing'\"", lambda m: m["Nothing"]),
    (KeyError, "'Respons'; did you mean 'Response'?", lambda m: m["Respons"]),
    (ValueError, "model", lambda m: tv.Model("33-3")),
    (OSError, "nowhere.tvf", lambda m: tv.Model("nowhere.tvf")),
    (ValueError, "until must be above 0", lambda m: m.run(until=-1)),
    (ValueError, "signal", lambda m: m.run(until=1, every=0.1, record=["Commnd"])),
    (ValueError, "or setup", lambda m: m.bode()),
    (ValueError, "Maximum Order = 13", lambda m: m.bode("Command", "Response", order=99)),
    (ValueError, "tsample must be above 0",
     lambda m: m.bode("Command", "Response", tsample=0)),
    (TypeError, "integer", lambda m: m.bode("Command", "Response", average=1.5)),
    (ValueError, "with names the signal", lambda m: m.meter("Response", "correlation", until=1)),
    (ValueError, "one of them",
     lambda m: m.step_measures("Command", "Response", window=1, time_base=1)),
    (TypeError, "unexpected keyword",
     lambda m: tv.study(m, {"KP": [1]}, command="Command", response="Response", windw=1)),
    (ValueError, "Settling", lambda m: m.tune({"KP": (1, 2)}, command="Command",
                                            response="Response", best="Setling")),
    (tv.StoppedError, "meets", lambda m: m.tune({"KP": (1, 2)}, command="Command", runs=2,
                                                response="Response", require=["Rise<1e-9"])),
    (AttributeError, "freqency", lambda m: setattr(m.generator(), "freqency", 5)),
    (ValueError, "two arrays of one length", lambda m: m.generator().play([0, 1], [0])),
    (ValueError, "", lambda m: m.generator().play([1, 0], [0, 1])),
    (ValueError, "no result of a share", lambda m: tv.merge([])),
    (ValueError, "spectrum=False",
     lambda m: m.bode("Command", "Response", spectrum=True).margins()),
    (ValueError, "record needs every", lambda m: m.run(until=0.01, record=["Response"])),
    (ValueError, "seed needs sample", lambda m: m.study({"KP": [1]}, seed=3)),
    (TypeError, "'runs'", lambda m: m.study({"KP": [1]}, runs=3)),
    (TypeError, "'jobs'", lambda m: m.tune({"KP": (1, 2)}, best="Settling", jobs=2)),
    (ValueError, "a range is", lambda m: m.tune({"KP": (1, 2, 3)}, best="Settling")),
    (ValueError, "needs vary", lambda m: tv.study(m, {})),
]


def test_numbers_are_taken_as_the_settings_need_them():
    m = tv.Model("6-1")
    m["Feedback"] = 1
    m["Use Res?"] = True
    m.generator().waveform = 2
    m.generator().frequency = -5
    assert (m.constants["Feedback"].value, m.constants["Use Res?"].value) == (1, 1)
    assert m.generator().waveform == "Triangle" and m.generator().frequency == 5


def test_some_rows_of_a_study_are_not_taken_for_all():
    study = tv.Model("3-1").study({"KP": [0.4, 0.7, 1.4]}, require="Overshoot<30", best="Rise")
    for whole in (study, study.copy(), copy.copy(study), pickle.loads(pickle.dumps(study))):
        assert whole.best == 1 and whole.file == study.file
    for rows in (study[::-1], study[1:], study[study["KP"] > 1], np.sort(study, order="Rise")):
        assert rows.best is None and rows.units == study.units
        with pytest.raises(ValueError, match="not the study"):
            rows.write("rows.csv")
    assert list(study["Meets"]) == [int(row < 30) for row in study["Overshoot"]]


def test_what_was_measured_goes_to_another_process_without_its_model():
    m = tv.Model("3-1")
    screen, response = m.scope(until=0.1), m.bode("Command", "Response")
    for measured in (screen, response):
        gone = pickle.loads(pickle.dumps(measured))
        with pytest.raises(tv.StoppedError, match="process"):
            gone.picture()
        assert gone._repr_svg_() is None
    assert np.array_equal(gone.gain_db, response.gain_db)
    with pytest.raises(tv.StoppedError, match="process"):
        gone.margins()
    assert copy.copy(response).margins() == response.margins()


@pytest.mark.parametrize("kind,text,wrong", REFUSED)
def test_what_is_wrong_is_said_and_changes_nothing(kind, text, wrong):
    m = tv.Model("3-1")
    before = m.run(until=0.01, every=1e-4)
    with pytest.raises(kind) as told:
        wrong(m)
    assert text in str(told.value) and "--" not in str(told.value)
    after = m.run(until=0.01, every=1e-4)
    assert all(np.array_equal(before[one], after[one]) for one in before)


def test_an_overflow_ends_a_run_and_the_next_begins_anew():
    m = tv.Model("3-1")
    good = m.run(until=0.01, every=1e-4)["Response"]
    m.generator().amplitude = 1e308
    with pytest.raises(tv.StoppedError, match="verflow"):
        m.run(until=1000)
    m.generator().amplitude = 10
    assert np.array_equal(m.run(until=0.01, every=1e-4)["Response"], good)


def test_resuming_goes_on_where_it_was():
    m = tv.Model("3-1")
    whole = m.run(until=0.02, every=1e-4)["Response"]
    m.run(until=0.01)
    rest = m.run(until=0.02, every=1e-4, resume=True)["Response"]
    assert np.array_equal(rest, whole[-len(rest):])
    m.restart()
    assert m.time == 0


def test_arrays_outlive_their_model():
    r = tv.Model("3-1").run(until=0.01, every=1e-5)
    kept = r["Response"].copy()
    response = r["Response"]
    del r
    gc.collect()
    assert response.dtype == np.float64 and np.array_equal(response, kept)


def test_one_thread_at_a_time():
    m = tv.Model("3-1")
    begun, told = threading.Event(), []
    go_on = threading.Event()

    def end():
        if go_on.is_set():
            raise KeyError("enough")

    def run():
        with pytest.raises(KeyError, match="enough"):
            m.run(until=1e9, on_progress=lambda *_: begun.set() or end())
        told.append("ended")

    other = threading.Thread(target=run)
    other.start()
    assert begun.wait(60)
    for use in (lambda: m.run(until=1), lambda: m["KP"], lambda: m.copy()):
        with pytest.raises(RuntimeError, match="running"):
            use()
    child = os.fork()
    if child == 0:  # a copy of the process begins anew
        os._exit(0 if m["KP"] == tv.Model("3-1")["KP"] and m.time == 0 else 1)
    assert os.waitpid(child, 0)[1] == 0
    go_on.set()
    other.join()
    assert told == ["ended"] and m.run(until=0.01) is None


@pytest.mark.parametrize("work", [
    lambda: tv.Model("3-1").run(until=1e9),
    lambda: tv.study("6-1", {"KVP": np.linspace(0.4, 1, 100000)}, command="vC", response="vF"),
])
def test_an_interrupt_ends_it(work):
    threading.Timer(0.3, lambda: os.kill(os.getpid(), signal.SIGINT)).start()
    begun = time.monotonic()
    with pytest.raises(KeyboardInterrupt):
        work()
    assert time.monotonic() - begun < 60


@pytest.mark.parametrize("package,ask", [
    ("pandas", lambda m: m.run(until=0.01, every=0.001).to_pandas()),
    ("control", lambda m: m.bode("Command", "Response", order=9).to_control()),
])
def test_what_is_not_installed_is_said(package, ask, monkeypatch):
    import sys
    monkeypatch.setitem(sys.modules, package, None)
    with pytest.raises(ImportError, match=package):
        ask(tv.Model("3-1"))


def test_doubts_are_warnings():
    with pytest.warns(tv.TorvaneWarning) as told:
        tv.Model("13-1").bode("vC", "vF", order=9)
        tv.Model("4-1").study({"KVP": [1]}, bode=True, tsample=0.0005)
    assert {one.filename for one in told} == {__file__}  # the line that asked for it


def test_margins_beyond_what_the_sample_time_is_short_enough_for_are_warned_of():
    response = tv.Model("3-1").bode(setup="Open", tsample=0.001)
    with pytest.warns(tv.TorvaneWarning, match="short enough for what is read up to 125 Hz"):
        assert response.margins("open").gain_margin.frequency > 125


def test_its_types_agree_with_its_stubs():
    api = pytest.importorskip("mypy.api")
    told, wrong, status = api.run([os.path.dirname(tv.__file__), "--cache-dir", os.devnull])
    assert status == 0, told + wrong


def test_pictures_where_torvane_cli_draws_them():
    m = tv.Model("3-1")
    drawn = m._repr_svg_()
    if drawn is None:
        pytest.skip("torvane-cli draws no pictures here")
    pictures = [drawn, m.bode("Command", "Response", order=9)._repr_svg_(),
                m.sweep("Command", "Response", from_=50, to=100)._repr_svg_(),
                m.scope(0.1)._repr_svg_(), m.run(0.1, 0.01)._repr_svg_()]
    table = tv.study(m, {"KP": [0.5, 1], "KI": [50, 100]}, command="Command",
                     response="Response")
    pictures.append(table.map("Overshoot", levels=[20, 30])._repr_svg_())
    assert all("<svg" in picture for picture in pictures)
    with pytest.raises(ValueError, match="unknown measure"):
        table.map("Overshot")


def _commands_picture(folder, *arguments):
    subprocess.run([os.environ["TORVANE_CLI"], *map(str, arguments), "--picture", "p.svg", "--out",
                    "p.csv"], cwd=folder, check=True, capture_output=True,
                   env={**os.environ, "QT_QPA_PLATFORM": "offscreen"})
    return (folder / "p.svg").read_text(encoding="utf-8")


def test_pictures_are_those_of_the_command_in_every_format(tmp_path):
    m = tv.Model("3-1")
    if m._repr_svg_() is None:
        pytest.skip("torvane-cli draws no pictures here")
    m["KP"] = 1.1
    m.save(tmp_path / "m.tvf")
    file, pair = tmp_path / "m.tvf", ("--input", "Command", "--output", "Response", "--order", 9)
    response = m.bode("Command", "Response", order=9)
    m["KP"] = 0.6  # they are of the model as it was
    assert response.picture(theory=True).svg == _commands_picture(tmp_path, "bode", file, *pair,
                                                                  "--theory")
    response.picture().save(tmp_path / "b.PNG")
    assert (tmp_path / "b.PNG").read_bytes().startswith(b"\x89PNG")
    with pytest.raises(ValueError, match="svg"):
        response.picture().save(tmp_path / "b.bmp")

    ranges = ["--vary", "KVP=0.4:1.4:3", "--vary", "KVI=20:200:2", "--until", 0.1]
    table = tv.study("6-1", {"KVP": np.linspace(0.4, 1.4, 3), "KVI": [20, 200]}, until=0.1,
                     best="Settling")
    for drawn, chosen in ((table.picture(), ("--best", "Settling")),
                          (table.picture(chosen=4), ("--chosen", 4))):
        assert drawn.svg == _commands_picture(tmp_path, "study", "6-1", *ranges, *chosen)
    table.write(tmp_path / "t.csv")
    with pytest.raises(ValueError, match="made here"):
        tv.merge([tmp_path / "t.csv"]).picture()
    for rest in ({"sample": 3}, {"sample": 3, "shard": (2, 2)}):
        some = tv.study("6-1", {"KVP": (0.4, 1.4)}, until=0.1, **rest)
        assert f"{len(some)} run" in some.picture().svg


def test_the_speed_is_that_with_the_scope_as_set():
    m = tv.Model("3-1")
    assert m.speed(0.05, time_base=0.01, show=["Response"], scale={"Response": 2})["ratio"] > 0
    assert m.speed(0.05, meter={"variable": "Response", "kind": "rms"})["ratio"] > 0
    for wrong in ({"trig_mode": "Never"}, {"meter": {"variable": "Respons", "kind": "rms"}},
                  {"show": ["Respons"]}, {"shift": {"Response": np.inf}}):
        with pytest.raises(ValueError, match="Never|Respons|inf"):
            m.speed(0.05, **wrong)


def test_what_lies_behind_a_scopes_picture(tmp_path):
    m = tv.Model("3-1")
    if m._repr_svg_() is None:
        pytest.skip("torvane-cli draws no pictures here")
    (tmp_path / "o.csv").write_text("Time,Response\n0,0\n0.01,20\n")
    drawn = [m.scope(0.1, **behind)._repr_svg_() for behind in
             ({}, {"overlay": tmp_path / "o.csv"}, {"keep": {"KP": 0.5, "KI": 50}})]
    told = ["Thin" in drawn[0], "Thin: kept<" in drawn[1], "KP = 0.5 (now " in drawn[2]]
    assert told == [False, True, True]
    for wrong, fault in (({"overlay": "gone.csv"}, OSError), ({"keep": {"KX": 1}}, KeyError),
                         ({"overlay": tmp_path / "o.csv", "keep": {"KP": 1}}, ValueError)):
        with pytest.raises(fault):
            m.scope(0.1, **wrong)


def test_a_file_laid_over_a_response(tmp_path):
    b = tv.Model("3-1").bode("Command", "Response", order=8)
    rows = zip(b.frequency[1:9] * 2 * np.pi, 10 ** (b.gain_db[1:9] / 20), b.phase_deg[1:9])
    (tmp_path / "o.csv").write_text("".join(f"{w!r},{g!r},{p!r}\n" for w, g, p in rows))
    over = b.overlay(tmp_path / "o.csv", overlay_units="rad/s,abs,deg")
    np.testing.assert_allclose(over.gain_db[2:8], b.gain_db[2:8], atol=1e-9)
    assert np.isnan(over.phase_deg[20]) and over.margins.bandwidth is None
