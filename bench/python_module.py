"""What the Python module costs beside torvane-cli, as ratios of times in the same run.

    PYTHONPATH=build/unity/bin/python python3 bench/python_module.py build/unity/bin/torvane-cli

Each figure is the least of several alternating turns; the start of torvane-cli, as "models" takes
it, is taken off.
"""

import subprocess
import sys
import tempfile
import threading
import time

import numpy as np
import torvane as tv

CLI = sys.argv[1]
TURNS = 5


def seconds(work):
    begun = time.perf_counter()
    work()
    return time.perf_counter() - begun


def cli(*arguments):
    return lambda: subprocess.run([CLI, *map(str, arguments)], check=True,
                                  stdout=subprocess.DEVNULL)


def least(*works):
    turns = [[seconds(work) for work in works] for _ in range(TURNS)]
    return np.min(turns, axis=0)


def run():
    tv.Model("2-1").run(until=10, every=1e-3)


def two(in_threads):
    threads = [threading.Thread(target=run) for _ in range(2)]
    for thread in threads:
        thread.start()
        if not in_threads:
            thread.join()
    for thread in threads:
        thread.join()


with tempfile.TemporaryDirectory() as folder:
    rows, study = folder + "/rows.csv", folder + "/study.csv"
    start, ours, theirs = least(
        cli("models"), run, cli("run", "2-1", "--until", 10, "--every", 1e-3, "--out", rows))
    print(f"run of 2-1, 10 s, 10,001 rows: {ours / (theirs - start):.2f} of torvane-cli's time")

    values = np.linspace(0.4, 1.4, 1000)
    ours, theirs = least(
        lambda: tv.study("6-1", {"KVP": values}, command="vC", response="vF", until=0.02, jobs=2),
        cli("study", "6-1", "--vary", "KVP=0.4:1.4:1000", "--command", "vC", "--response", "vF",
            "--until", 0.02, "--jobs", 2, "--out", study))
    print(f"study of 1,000 short runs: {ours / theirs:.2f} of torvane-cli's time")

model = tv.Model("2-1")
model.run(until=1e-5)
calls = 10000
call, = least(lambda: [model.run(until=1e-9, resume=True) for _ in range(calls)])
print(f"a call of run without rows: {call / calls * 1e6:.1f} us")
one_by_one, together = least(lambda: two(False), lambda: two(True))
print(f"two models in two threads: {together / one_by_one:.2f} of one after the other")
