#!/usr/bin/env python3
"""Makes small faults in src/, one at a time, and tells which of them the tests catch.

Called by mutate.sh, which see. Faults are made in a copy of the sources, so that no fault can stay
behind in the tree. Of a changed file the one object is compiled and the folder's test program linked.
"""

import argparse
import collections
import dataclasses
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
FOLDERS = ["core", "library", "instruments", "kit", "models", "loops", "drawing", "linear", "study",
           "workbench", "cli", "plot", "ui"]
# Whose tests are run after the folder's own, if it has some, when those have noticed nothing.
USERS = {
    "core": ["models", "cli"],
    "library": ["models", "cli"],
    "instruments": ["models", "cli"],
    "kit": ["models", "cli"],
    "models": ["cli"],
    "loops": ["cli"],
    "drawing": ["plot", "cli"],
    "linear": ["cli"],
    "study": ["cli"],
    "workbench": ["study", "cli", "ui"],
    "plot": ["cli"],
}
# Models keep some memory a class for the life of the program, and a desktop the loops that it has
# opened: each of their tests has a program of its own.
ALONE = ["models", "ui"]


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
            # Tests that simulate take minutes without optimisation, and more of it compiles no faster.
            # Faults leave variables unused; that is no news here.
            "CMAKE_CXX_FLAGS_DEBUG": "-O1 -g0 -w",
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


@dataclasses.dataclass
class Limit:
    """How many seconds the tests may take, by the clock and of the processor."""

    wall: float = 600
    cpu: int = 600

    def apply(self):
        for number in (signal.SIGHUP, signal.SIGINT, signal.SIGTERM):
            signal.signal(number, signal.SIG_DFL)  # ignored in the background; tests send them
        resource.setrlimit(resource.RLIMIT_CPU, (self.cpu, self.cpu))
        resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 28, 1 << 28))
        resource.setrlimit(resource.RLIMIT_AS, (1 << 33, 1 << 33))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Run:
    """One process of a test program, with files of its own: a fault may write where it should not,
    and that shall not be the user's."""

    def __init__(self, program, part, limit):
        self.home = tempfile.TemporaryDirectory(prefix="torvane-mutation-", ignore_cleanup_errors=True)
        home = self.home.name
        environment = dict(
            os.environ, HOME=home, TMPDIR=home, XDG_CONFIG_HOME=f"{home}/config",
            XDG_DATA_HOME=f"{home}/data", XDG_STATE_HOME=f"{home}/state",
            XDG_CACHE_HOME=f"{home}/cache", QT_QPA_PLATFORM="offscreen", GTEST_FAIL_FAST="1", **part,
        )
        self.started = time.monotonic()
        self.deadline = self.started + limit.wall
        with open(f"{home}/output", "w") as output:
            self.process = subprocess.Popen(
                [program], cwd=home, env=environment, stdin=subprocess.DEVNULL, stdout=output,
                stderr=subprocess.STDOUT, start_new_session=True, preexec_fn=limit.apply,
            )

    def ended(self):
        return self.process.poll() is not None or time.monotonic() > self.deadline

    def end(self):
        """What tells of a fault: the test that failed, a crash, or that it took too long."""
        status = self.process.poll()
        try:
            os.killpg(self.process.pid, signal.SIGKILL)  # with what it started
        except ProcessLookupError:
            pass
        self.process.wait()
        output = pathlib.Path(self.home.name, "output").read_text(errors="replace")
        self.home.cleanup()
        failed = re.search(r"^\[  FAILED  \] (\S+?)[,\s]", output, re.MULTILINE)
        if status == 0:
            return None
        return failed.group(1) if failed else "too long" if status is None else f"status {status}"


class Tests:
    """The test program of one folder."""

    def __init__(self, build, folder, without):
        self.build = build
        self.folder = folder
        self.without = without
        self.program = build.objects / "bin" / f"test_{folder}"
        self.parts = []  # environments of the processes that are run, the quickest first
        self.took = {}
        self.limit = Limit()

    def make(self):
        return self.build.make(self.folder).returncode == 0

    def run(self):
        """What told of a fault, nothing when all tests pass. Two processes at a time."""
        running, waiting, reason = [], list(self.parts), None
        while (running or waiting) and not reason:
            while waiting and len(running) < 2:
                running.append((waiting[0], Run(self.program, waiting.pop(0), self.limit)))
            time.sleep(0.01)
            for part, run in [entry for entry in running if entry[1].ended()]:
                running.remove((part, run))
                told = run.end()
                reason = reason or told
                self.took[str(part)] = time.monotonic() - run.started
        for _, run in running:
            run.end()
        return reason

    def prepare(self):
        """Takes how long they need without a fault, on this machine as busy as it is."""
        if not self.make():
            sys.exit(f"The tests of {self.folder} do not build: cmake --build {self.build.objects}")
        self.parts = self.split()
        cpu = cpu_of_children()
        failed = self.run()
        if failed:
            sys.exit(f"The tests of {self.folder} fail without a fault: {failed}")
        self.parts.sort(key=lambda part: self.took[str(part)])
        self.limit = Limit(10 + 5 * max(self.took.values()), int(3 + 2 * (cpu_of_children() - cpu)))

    def split(self):
        without = f"-{self.without}" if self.without else "*"
        if self.folder not in ALONE:
            return [
                {"GTEST_FILTER": without, "GTEST_TOTAL_SHARDS": "2", "GTEST_SHARD_INDEX": str(shard)}
                for shard in range(2)
            ]
        listed = subprocess.run(
            [self.program, "--gtest_list_tests", f"--gtest_filter={without}"],
            check=True, capture_output=True, text=True,
        ).stdout.splitlines()
        parts, suite = [], ""
        for line in listed:
            if line.startswith("  "):
                parts.append({"GTEST_FILTER": suite + line.split()[0]})
            elif line.split("#")[0].strip().endswith("."):
                suite = line.split()[0]
        return parts


def cpu_of_children():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


class Trial:
    """The faults of one folder against its tests, and those of its users."""

    def __init__(self, build, folder, tests, without):
        self.build = build
        self.folder = folder
        own = [folder] if (ROOT / "tests" / folder).is_dir() else []
        self.tests = [Tests(build, name, without) for name in tests or own + USERS.get(folder, [])]
        self.results = []

    def prepare(self):
        for tests in self.tests:
            tests.prepare()

    def run(self, candidates, count):
        """Tries the first `count` faults that compile, those of one file together, since the file
        that was changed before has to be compiled again, too."""
        candidates = list(candidates)
        while len(self.results) < count and candidates:
            missing = count - len(self.results)
            batch, candidates = candidates[:missing], candidates[missing:]
            for fault in sorted(batch, key=lambda fault: (fault.file, fault.line)):
                self.attempt(fault)

    def attempt(self, fault):
        file = self.build.tree / fault.file
        source = file.read_text()
        file.write_text(fault.apply(source))
        try:
            reason = None
            for tests in self.tests:
                if not tests.make():
                    return
                reason = tests.run()
                if reason:
                    reason = f"{tests.folder}/{reason}"
                    break
        finally:
            file.write_text(source)
        self.results.append((fault, reason))
        said = f"caught by {reason}" if reason else "SURVIVED"
        print(f"  {said:<10.60}  {fault}", flush=True)

    def save(self, file):
        lines = [f"{'caught' if reason else 'survived'}  {fault}" for fault, reason in self.results]
        file.write_text("\n".join(sorted(lines)) + "\n")

    def report(self):
        caught = sum(1 for _, reason in self.results if reason)
        total = len(self.results)
        own = sum(1 for _, reason in self.results if reason and reason.startswith(f"{self.folder}/"))
        print(f"{self.folder}: {caught} of {total} faults caught, {own} of them by its own tests")
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
    """Those of a report that can still be made; of lines that are the same, where the nearest is."""
    present = collections.defaultdict(list)
    for fault in faults_of(folder, None):
        present[fault.key()].append(fault)
    chosen = []
    for line in pathlib.Path(file).read_text().splitlines():
        match = re.match(r"\s*(caught|survived)\s+(\S+):(\d+)  (.*)  ->  (.*)$", line)
        if not match or not match.group(2).startswith(f"src/{folder}/"):
            continue
        if only_survivors and match.group(1) != "survived":
            continue
        number = int(match.group(3))
        same = present.get((match.group(2), *match.groups()[3:]))
        if same:
            chosen.append(min(same, key=lambda fault: abs(fault.line - number)))
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
    parser.add_argument("--tests", nargs="+", metavar="FOLDER", help="run these folders' tests only")
    parser.add_argument("--without", metavar="FILTER", help="leave out tests, as --gtest_filter has them")
    parser.add_argument("--list", action="store_true", help="only tell which faults these are")
    chosen = parser.parse_args()
    for folder in chosen.folder + (chosen.tests or []):
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
        trial = Trial(build, folder, chosen.tests, chosen.without)
        trial.prepare()
        trial.run(candidates, count)
        if not chosen.again:
            trial.save(place / f"{folder}.faults")
        scores.append((folder, *trial.report()))
    if not chosen.list:
        print("\nscore:")
        for folder, caught, total in scores:
            print(f"  {folder:<12} {caught:4} of {total:4}  {100 * caught / max(total, 1):5.1f} %")


if __name__ == "__main__":
    main()
