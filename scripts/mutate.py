#!/usr/bin/env python3
"""Makes small faults in src/, one at a time, and tells which of them the tests catch.

Called by mutate.sh, which see. Faults are made in a copy of the sources, so that no fault can stay
behind in the tree. Of a changed file the one object is compiled and the folder's test program linked.
"""

import argparse
import collections
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

import faults

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ["core", "library", "instruments", "models", "cli", "plot", "ui"]
SHARDS = 2


class Build:
    """A copy of the sources with a build of its own."""

    def __init__(self, place):
        self.tree = place / "tree"
        self.objects = place / "build"
        self.tree.mkdir(parents=True, exist_ok=True)

    def refresh(self):
        """Makes the copy what the tree is. A file that is the same keeps its time."""
        listed = subprocess.run(
            ["git", "ls-files", "-z", "-co", "--exclude-standard"],
            cwd=ROOT, check=True, capture_output=True, text=True,
        ).stdout.split("\0")
        wanted = {self.tree / name for name in listed if name and (ROOT / name).is_file()}
        for copy in wanted:
            original = ROOT / copy.relative_to(self.tree)
            content = original.read_bytes()
            if not copy.exists() or copy.read_bytes() != content:
                copy.parent.mkdir(parents=True, exist_ok=True)
                copy.write_bytes(content)
                shutil.copymode(original, copy)
        for copy in [path for path in self.tree.rglob("*") if path.is_file()]:
            if copy not in wanted:
                copy.unlink()

    def configure(self):
        options = {
            "CMAKE_BUILD_TYPE": "Debug",
            # Faults leave variables unused; that is no news here.
            "CMAKE_CXX_FLAGS_DEBUG": "-O0 -g0 -w",
            "CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE": "PRE_TEST",
        }
        if shutil.which("ld.lld"):
            options["CMAKE_EXE_LINKER_FLAGS"] = "-fuse-ld=lld"
        command = ["cmake", "-G", "Ninja", "-S", self.tree, "-B", self.objects]
        subprocess.run(
            command + [f"-D{name}={value}" for name, value in options.items()],
            check=True, stdout=subprocess.DEVNULL,
        )

    def make(self, folder):
        command = ["cmake", "--build", self.objects, "--target", f"test_{folder}"]
        return subprocess.run(command, capture_output=True, text=True)


def limit_resources():
    resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 28, 1 << 28))
    resource.setrlimit(resource.RLIMIT_AS, (1 << 33, 1 << 33))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run_tests(program, limit):
    """Whether all tests pass within `limit` seconds, and what the first one that failed was."""
    with tempfile.TemporaryDirectory(prefix="torvane-mutation-", ignore_cleanup_errors=True) as home:
        shards = []
        for shard in range(SHARDS):
            own = pathlib.Path(home) / str(shard)
            own.mkdir()
            # A fault may write where it should not: it shall not be the user's files.
            environment = dict(
                os.environ, HOME=str(own), TMPDIR=str(own), XDG_CONFIG_HOME=str(own / "config"),
                XDG_DATA_HOME=str(own / "data"), XDG_CACHE_HOME=str(own / "cache"),
                QT_QPA_PLATFORM="offscreen", GTEST_TOTAL_SHARDS=str(SHARDS),
                GTEST_SHARD_INDEX=str(shard), GTEST_FAIL_FAST="1",
            )
            with open(own / "output", "w") as output:
                shards.append(subprocess.Popen(
                    [program], cwd=own, env=environment, stdin=subprocess.DEVNULL, stdout=output,
                    stderr=subprocess.STDOUT, start_new_session=True, preexec_fn=limit_resources,
                ))
        reason = watch(shards, time.monotonic() + limit)
        for shard in range(SHARDS):
            output = (pathlib.Path(home) / str(shard) / "output").read_text(errors="replace")
            failed = re.search(r"^\[  FAILED  \] (\S+?)[,\s]", output, re.MULTILINE)
            if failed and reason:
                reason = failed.group(1)
        return reason


def watch(shards, deadline):
    """Waits until all have passed, or one has failed or taken too long; then none is left running."""
    reason = None
    waiting = list(shards)
    while waiting and not reason:
        time.sleep(0.02)
        for process in list(waiting):
            status = process.poll()
            if status is None:
                continue
            waiting.remove(process)
            if status != 0:
                reason = f"status {status}"
        if not reason and time.monotonic() > deadline:
            reason = "too long"
    for process in shards:
        try:
            os.killpg(process.pid, signal.SIGKILL)  # with what it started
        except ProcessLookupError:
            pass
        process.wait()
    return reason


class Trial:
    """The faults of one folder against its tests."""

    def __init__(self, build, folder):
        self.build = build
        self.folder = folder
        self.program = build.objects / "bin" / f"test_{folder}"
        self.limit = 0.0
        self.results = []

    def prepare(self):
        built = self.build.make(self.folder)
        if built.returncode != 0:
            sys.exit(f"{self.folder} does not build:\n{built.stdout[-3000:]}")
        start = time.monotonic()
        failed = run_tests(self.program, 600)
        if failed:
            sys.exit(f"The tests of {self.folder} fail without a fault: {failed}")
        self.limit = 10 + 5 * (time.monotonic() - start)

    def run(self, candidates, count):
        """Tries the first `count` faults that compile, those of one file together, since the file
        that was changed before has to be compiled again, too."""
        candidates = list(candidates)
        while len(self.results) < count and candidates:
            missing = count - len(self.results)
            batch, candidates = candidates[:missing], candidates[missing:]
            for fault in sorted(batch, key=lambda fault: (fault.file, fault.line)):
                self.attempt(fault)
        if self.results:
            self.build.make(self.folder)

    def attempt(self, fault):
        file = self.build.tree / fault.file
        source = file.read_text()
        file.write_text(fault.apply(source))
        try:
            if self.build.make(self.folder).returncode != 0:
                return
            reason = run_tests(self.program, self.limit)
        finally:
            file.write_text(source)
        self.results.append((fault, reason))
        said = f"caught by {reason}" if reason else "SURVIVED"
        print(f"  {said:<10.60}  {fault}", flush=True)

    def report(self, place):
        caught = sum(1 for _, reason in self.results if reason)
        total = len(self.results)
        lines = [f"{'caught' if reason else 'survived'}  {fault}" for fault, reason in self.results]
        (place / f"{self.folder}.faults").write_text("\n".join(sorted(lines)) + "\n")
        print(f"{self.folder}: {caught} of {total} faults caught")
        kinds = collections.Counter(fault.kind for fault, _ in self.results)
        missed = collections.Counter(fault.kind for fault, reason in self.results if not reason)
        for kind in sorted(kinds):
            print(f"  {kind:<11} {kinds[kind] - missed[kind]:3} of {kinds[kind]:3}")
        for fault, reason in self.results:
            if not reason:
                print(f"  not caught: {fault}")
        sys.stdout.flush()
        return caught, total


def faults_of(folder, pattern):
    found = []
    for path in sorted((ROOT / "src" / folder).rglob("*")):
        name = path.relative_to(ROOT).as_posix()
        if path.suffix in (".cpp", ".h") and (not pattern or re.search(pattern, name)):
            found += faults.Finder(name, path.read_text()).find()
    return found


def saved_faults(folder, file, only_survivors):
    """Those of a report that can still be made."""
    present = {}
    for fault in faults_of(folder, None):
        present.setdefault(fault.key(), fault)
    chosen = []
    for line in pathlib.Path(file).read_text().splitlines():
        match = re.match(r"\s*(caught|survived)\s+(\S+):\d+  (.*)  ->  (.*)$", line)
        if not match or not match.group(2).startswith(f"src/{folder}/"):
            continue
        if only_survivors and match.group(1) != "survived":
            continue
        fault = present.get(match.groups()[1:])
        if fault:
            chosen.append(fault)
        else:
            print(f"  no longer there: {line}")
    return chosen


def arguments():
    parser = argparse.ArgumentParser(prog="scripts/mutate.sh", description=__doc__.splitlines()[0])
    parser.add_argument("folder", nargs="*", metavar="FOLDER", help="of src/; all when left out")
    parser.add_argument("--count", type=int, default=100, help="faults a folder (100)")
    parser.add_argument("--seed", type=int, default=1, help="another one gives other faults (1)")
    parser.add_argument("--files", metavar="PATTERN", help="only in files whose name matches")
    parser.add_argument("--again", metavar="REPORT", help="the faults of an earlier report")
    parser.add_argument("--survivors", action="store_true", help="of those, the ones not caught")
    parser.add_argument("--list", action="store_true", help="only tell which faults these are")
    chosen = parser.parse_args()
    for folder in chosen.folder:
        if folder not in FOLDERS:
            parser.error(f"no folder {folder}; there are {' '.join(FOLDERS)}")
    return chosen


def main():
    chosen = arguments()
    place = pathlib.Path(os.environ.get("TORVANE_MUTATION_BUILD", ROOT / "build" / "mutation"))
    build = Build(place.resolve())
    if not chosen.list:
        build.refresh()
        build.configure()
    scores = []
    for folder in chosen.folder or FOLDERS:
        if chosen.again:
            candidates = saved_faults(folder, chosen.again, chosen.survivors)
            count = len(candidates)
        else:
            candidates = faults.rank(faults_of(folder, chosen.files), chosen.seed)
            count = chosen.count
        if chosen.list:
            print(*candidates[:count], sep="\n")
            continue
        trial = Trial(build, folder)
        trial.prepare()
        trial.run(candidates, count)
        scores.append((folder, *trial.report(place)))
    if not chosen.list:
        print("\nscore:")
        for folder, caught, total in scores:
            print(f"  {folder:<12} {caught:4} of {total:4}  {100 * caught / max(total, 1):5.1f} %")


if __name__ == "__main__":
    main()
