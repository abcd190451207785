"""One build folder of a worker's copy: tries faults in it and finds out which test notices."""
import json
import os
import re
import time
from collections import Counter
from pathlib import Path
from typing import NamedTuple

from dependence import Dependence
from fault import read_source, write_source

FAILED_TEST = re.compile(r"^\[  FAILED  \] (\S+)", re.M)
STARTED_TEST = re.compile(r"^\[ RUN      \] (\S+)", re.M)
FAILED_CASE = re.compile(r"^(?:FAIL|ERROR): (\S+)", re.M)
# Runs one case of a test program.
ONE_CASE = "--gtest_filter="
# A test that takes this many times as long as without a fault, and these seconds, does not end.
SLOWNESS, PATIENCE = 3, 60
# CTest's own, in seconds, for a test that names none.
LIMIT = 1500
HANGS = "(does not end)"


class Unsound(Exception):
    """Without any fault the build or a test fails."""


class Failure(NamedTuple):
    what: str  # the test and its case that noticed
    again: tuple = ()  # the arguments with which the test runs only what failed


class Test:
    """An entry of CTest."""

    def __init__(self, entry):
        properties = {pair["name"]: pair["value"] for pair in entry.get("properties", ())}
        self.name = entry["name"]
        self.command = entry.get("command", [])
        # Labels mark the long ones.
        self.is_long = bool(properties.get("LABELS"))
        self.folder = properties.get("WORKING_DIRECTORY")
        self.environment = dict(pair.split("=", 1) for pair in properties.get("ENVIRONMENT", ()))
        self.limit = properties.get("TIMEOUT", LIMIT)
        self.seconds = None


class Build:
    """chosen(test): whether the entry of CTest is one to run."""

    def __init__(self, tree, preset, processes, chosen):
        self.tree = tree
        self.preset = preset
        self.folder = tree / "build" / preset
        self.processes = processes
        self.chosen = chosen
        self.tests = None
        self.dependence = None
        # How many faults of a file each test noticed.
        self.noticed = Counter()

    def run(self, *command):
        result, output = self.processes.run(command, self.tree)
        if result != 0:
            raise Unsound(f"{' '.join(map(str, command))} failed:\n{output[-4000:]}")
        return output

    def prepare(self, known_seconds):
        """Builds everything and runs each test once; known_seconds has those that ran before."""
        if self.tests is not None:
            return
        if not (self.folder / "build.ninja").exists():
            self.run("cmake", "--preset", self.preset)
        self.run("ninja", "-C", self.folder)
        listed = json.loads(self.run("ctest", "--test-dir", self.folder, "--show-only=json-v1"))
        tests = [test for test in map(Test, listed["tests"]) if self.chosen(test)]
        for test in tests:
            test.seconds = known_seconds.get(test.name) or self.measure(test)
            known_seconds[test.name] = test.seconds
        self.dependence = Dependence(self.folder)
        self.tests = sorted(tests, key=lambda test: test.seconds)

    def measure(self, test):
        started = time.monotonic()
        failure = self.run_test(test, test.limit)
        if failure is not None:
            raise Unsound(f"without a fault there is {failure.what}")
        return time.monotonic() - started

    def run_test(self, test, seconds, again=()):
        """The failure; None when it passes."""
        environment = {**test.environment, "GTEST_FAIL_FAST": "1"}
        result, output = self.processes.run([*test.command, *again], test.folder, environment,
                                            seconds)
        if result == 0:
            return None
        if result is None:
            started = STARTED_TEST.findall(output)
            return Failure(f"{test.name} {HANGS}",
                           (ONE_CASE + started[-1],) if started else ())
        if first := FAILED_TEST.search(output):
            return Failure(f"{test.name} {first[1]}", (ONE_CASE + first[1],))
        if first := FAILED_CASE.search(output):
            return Failure(f"{test.name} {first[1]}")
        return Failure(f"{test.name} (exit code {result})")

    def notices(self, test):
        """What of the test notices the fault. A failure counts when it comes twice: once may be the
        doing of a machine that does much else."""
        seconds = min(test.limit, SLOWNESS * test.seconds + PATIENCE)
        failure = self.run_test(test, seconds)
        if failure and failure.again and self.run_test(test, seconds, failure.again):
            return failure.what
        # The case may need those before it.
        failure = failure and self.run_test(test, seconds)
        return failure and failure.what

    def noticing(self, fault, made):
        """Tests and what to build for each: those that start a program that is made from the
        fault's file, and those that do not say what they start. First those that noticed most of
        the file's faults, then those of its own folder."""
        files = {str(path) for path in made}
        tests = []
        for test in self.tests:
            programs = [word for word in test.command if word.startswith(f"{self.folder}/")]
            needed = files.intersection(programs) if programs else {"all"}
            if needed:
                tests.append((test, [os.path.relpath(name, self.folder) if programs else name
                                     for name in needed]))
        own = f"tests/{Path(fault.path).parent.name}/"
        return sorted(tests, key=lambda pair: (-self.noticed[fault.path, pair[0].name],
                                               not any(own in target for target in pair[1])))

    def try_fault(self, fault):
        """What becomes of the fault: ("not viable" | "killed" | "survived", what noticed)."""
        source = self.tree / fault.path
        text, times = read_source(source), source.stat()
        made = self.dependence.made_from(source)
        hidden = self.hide(made)
        try:
            write_source(source, fault.applied(text))
            return self.first_to_notice(fault, made)
        finally:
            write_source(source, text)
            self.bring_back(hidden, source, times)

    def first_to_notice(self, fault, made):
        for test, programs in self.noticing(fault, made):
            result, output = self.processes.run(["ninja", "-C", self.folder, *programs], self.tree)
            if result != 0:
                if "FAILED: " not in output:
                    raise Unsound(f"ninja cannot make {programs}:\n{output[-4000:]}")
                return "not viable", first_error(output)
            noticed = self.notices(test)
            if noticed is not None:
                self.noticed[fault.path, test.name] += 1
                return "killed", noticed
        return "survived", ""

    # What was made without the fault is put aside, so that nothing has to be made again later.
    def hide(self, made):
        hidden = {path: path.with_name(path.name + ".sound") for path in made}
        for path, aside in hidden.items():
            path.rename(aside)
        return hidden

    def bring_back(self, hidden, source, times):
        for path, aside in hidden.items():
            aside.replace(path)
        os.utime(source, ns=(times.st_atime_ns, times.st_mtime_ns))


def first_error(output):
    errors = [line for line in output.splitlines() if "error:" in line]
    return errors[0].split("error:")[1].strip() if errors else output.strip()[-200:]
