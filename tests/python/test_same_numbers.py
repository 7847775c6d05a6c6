"""What the module tells is what torvane-cli tells, to the bit."""

import multiprocessing
import pickle
import threading

import numpy as np
import pytest
import torvane as tv

EVERY_MODEL = tv.models()


@pytest.mark.parametrize("name", EVERY_MODEL)
def test_every_measurement_of_every_model(name, tools):
    cli, same = tools
    m = tv.Model(name)
    m.run(until=0.003)  # what was done before is no matter
    signals = list(m.signals)
    a, b = next(iter(m.pairs.values()), (signals[0], signals[-1]))
    pair = ("--input", a, "--output", b)

    captions, rows = cli("run", name, "--until", 0.05, "--every", 7e-5)
    r = m.run(until=0.05, every=7e-5)
    assert captions == ["Time", *r] and same(rows, r.time, *r.values())

    assert [[name, *pair, str(int(pair.phase_add))] for name, pair in m.pairs.items()] == cli(
        "pairs", name)[1]
    if m.pairs:
        _, rows = cli("bode", name, *pair, "--order", 9, "--average", 2,
                      "--end-delay", 0.02)
        f = m.bode(a, b, order=9, average=2, end_delay=0.02)
        excited = f.excited.astype(float)
        assert same([row[1:] for row in rows], f.frequency, f.gain_db, f.phase_deg, excited,
                    f.coherence)
        by_name = m.bode(setup=next(iter(m.pairs)), order=9, average=2, end_delay=0.02)
        assert (by_name.input, by_name.output) == (a, b)
        assert np.array_equal(by_name.gain_db, f.gain_db)

        _, rows = cli("sweep", name, *pair, "--from", 50, "--to", 200, "--per-decade", 3, "--settle",
                      0.02, "--measure", 1)
        s = m.sweep(a, b, from_=50, to=200, per_decade=3, settle=0.02, measure=1)
        assert same(rows, s.frequency, s.gain_db, s.phase_deg)

    _, rows = cli("scope", name, "--until", 0.3, "--time-base", 0.001, "--trig-mode", "Auto")
    screen = m.scope(0.3, time_base=0.001, trig_mode="Auto")
    assert same([row[:1] for row in rows], screen.time)
    assert same([row[1:] for row in rows], *screen.values(), kind=np.float32)

    done = cli("meter", name, "--variable", b, "--kind", "harmonic", "--harmonic", 50, "--until",
               0.1, "--window", 0.05)[0][0]
    read = m.meter(b, "harmonic", harmonic=50, until=0.1, window=0.05)
    assert [float(one) for one in done.split()] == [read.value, read.angle_deg]

    captions, rows = cli("measure", name, "--command", a, "--response", b)
    told = m.step_measures(a, b)
    assert captions[:-1] == list(told)
    assert [float(one) if one else None for one in rows[0][:-1]] == list(told.values())

    ours = pickle.loads(pickle.dumps(m)).run(until=0.01, every=1e-4)
    assert all(np.array_equal(ours[one], m.run(until=0.01, every=1e-4)[one]) for one in ours)


def test_a_study_has_the_bytes_of_the_commands(tools, tmp_path):
    cli, _ = tools
    file = tmp_path / "cli.csv"
    cli("study", "6-1", "--vary", "KVP=0.4:1.4:7", "--vary", "MainWaveGen:Waveform=0:1:2",
        "--command", "vC", "--response", "vF", "--until", 0.05, "--require", "Overshoot<20",
        "--out", file)
    table = tv.study("6-1", vary={"KVP": np.linspace(0.4, 1.4, 7),
                                  "MainWaveGen:Waveform": [0, 1]},
                     command="vC", response="vF", until=0.05, require=["Overshoot<20"],
                     best="Overshoot", jobs=2)
    table.write(tmp_path / "module.csv")
    assert (tmp_path / "module.csv").read_bytes() == file.read_bytes()
    assert len(table) == 14 and table.best is not None
    assert np.isnan(table["Overshoot"][table["Measures"] == 0]).all()
    carried = pickle.loads(pickle.dumps(table))
    assert (carried.csv, carried.best) == (table.csv, table.best) and carried["KVP"][1] == 0.4


def test_a_loop_needs_no_signals_where_the_model_names_it(tools):
    cli, _ = tools
    table = tv.study("6-1 PID Controller", vary={"KVP": np.linspace(.4, 1.4, 20)}, jobs=2)
    for told, command in ((table, ("study", "6-1", "--vary", "KVP=1:1:1")),
                          (tv.Model("6-1").step_measures(peak="iC", theory=True),
                           ("measure", "6-1", "--peak", "iC", "--theory"))):
        captions = [f"{name} ({unit})" if unit else name for name, unit in told.units.items()]
        assert captions == [one for one in cli(*command, "--units")[0]
                            if one not in ("Run", "Measures", "Reason")]
    captions, rows = cli("study", "6-1", "--vary", "KVP=0.4:1.4:20", "--command", "vC",
                         "--response", "vF")
    assert table.csv.decode() == "".join(",".join(row) + "\n" for row in [captions, *rows])
    m = tv.Model("3-1")
    assert dict(m.step_measures()) == dict(m.step_measures("Command", "Response"))
    assert m.tune({"KP": (1, 2)}, best="Rise", runs=2)["KP"] >= 1
    with pytest.raises(ValueError, match="command is required"):
        tv.Model("5-1").step_measures()


def test_shares_make_the_whole_and_differ_where_studies_do(tools, tmp_path):
    def share(k, until=0.05):
        path = tmp_path / f"{k}.{until}"
        tv.study("6-1", vary={"KVP": np.linspace(0.4, 1.4, 5)}, command="vC", response="vF",
                 until=until, shard=(k, 2)).write(path)
        return path

    whole = tv.merge([share(2), share(1)], best="Rise")
    alone = tv.study("6-1", vary={"KVP": np.linspace(0.4, 1.4, 5)}, command="vC", response="vF",
                     until=0.05)
    assert whole.csv == alone.csv and whole.best == np.nanargmin(whole["Rise"])
    captions, rows = tools[0]("study", "--merge", share(1), share(2))
    assert captions == list(whole.dtype.names) and len(rows) == 5
    assert (whole.units["RMS Error"], alone.units["RMS Error"]) == ("RPM", "RPM")
    alone.write(tmp_path / "alone.csv")  # which tells no units of signals
    assert tv.merge([tmp_path / "alone.csv"]).units["Rise"] == "s"
    with pytest.raises(ValueError, match="another study.*until"):
        tv.merge([share(1), share(2, 0.06)])


def test_generators_files_and_loops(tools, tmp_path):
    cli, same = tools
    wave = tmp_path / "wave.csv"
    wave.write_text("0 0\n0.01 2\n0.02 -1\n")
    m = tv.Model("3-1")
    m.generator().play([0, 0.01, 0.02], [0, 2, -1])
    m["KP"] = 0.5
    _, rows = cli("run", "3-1", "--set", "KP=0.5", "--wave", wave, "--until", 0.03, "--every", 1e-4)
    for one in (m, m.copy()):
        r = one.run(until=0.03, every=1e-4)
        assert same(rows, r.time, *r.values())
    m.generator().waveform = "Sine"
    m.generator().frequency = 7
    m.save(tmp_path / "x.tvf")
    assert tv.Model(tmp_path / "x.tvf").generator().frequency == 7
    assert tv.check(str(tmp_path / "x.tvf")) == []

    loop = tmp_path / "Own.mo"
    loop.write_text('model Own "a lag"\n  parameter Real T = 0.01;\n  Real y(start = 0);\n'
                    "equation\n  der(y) = (1 - y) / T;\nend Own;\n")
    own = tv.Model(loop)
    own["T"] = 0.02
    frozen = pickle.dumps(own)
    loop.unlink()  # the loop goes along
    thawed = pickle.loads(frozen)
    assert "digraph" in thawed.diagram_dot()
    assert thawed.speed(0.05)["ratio"] > 0
    assert thawed.run(until=0.02, every=0.01)["y"][-1] == pytest.approx(1 - np.exp(-1), abs=1e-6)


def test_what_is_saved_of_instruments_is_what_convert_saves(tools, tmp_path):
    m = tv.Model("3-1")
    m["KP"] = 1.1
    m.save(tmp_path / "m.tvf", scope={"show": ["Response"], "scale": {"Response": 2}},
           bode={"setup": "Open", "order": 10, "spectrum": False}, sweep={"from_": 5, "average": 2},
           meter={"variable": "Response", "kind": "harmonic", "with_": "Command", "ac": False,
                  "db": False})
    tools[0]("convert", "3-1", "--set", "KP=1.1", "--show", "Response", "--scale", "Response=2",
             "--bode-setup", "Open", "--bode-order", 10, "--bode-no-spectrum", "--sweep-from", 5,
             "--sweep-average", 2, "--meter-variable", "Response", "--meter-kind", "harmonic",
             "--meter-with", "Command", "--meter-dc", "--meter-no-db", tmp_path / "c.tvf")
    assert (tmp_path / "m.tvf").read_bytes() == (tmp_path / "c.tvf").read_bytes()
    assert len(tv.Model(tmp_path / "m.tvf").bode().frequency) == 513
    for wrong in ({"bode": {"ordr": 9}}, {"scope": {"show": "Respons"}}):
        with pytest.raises(ValueError, match="ordr|Respons"):
            m.save(tmp_path / "no.tvf", **wrong)
    assert not (tmp_path / "no.tvf").exists()


def _last(name):
    return tv.Model(name).run(until=0.05, every=1e-4, record="vC")["vC"].tobytes()


def test_threads_and_processes_give_the_bits_of_one_after_the_other():
    names = ["6-1", "7-1", "6-1", "9-2"]
    alone = [_last(name) for name in names]
    together = {}
    threads = [threading.Thread(target=lambda k=k: together.update({k: _last(names[k])}))
               for k in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert [together[k] for k in range(4)] == alone
    with multiprocessing.get_context("fork").Pool(2) as pool:
        assert pool.map(_last, names) == alone
