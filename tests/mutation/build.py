"""One build folder of a worker's copy: tries faults in it and finds out which test notices."""
import json
import os
import re
import time
from pathlib import Path

from dependence import Dependence
from fault import read_source, write_source

FAILED_TEST = re.compile(r"^\[  FAILED  \] (\S+)", re.M)
FAILED_CASE = re.compile(r"^(?:FAIL|ERROR): (\S+)", re.M)
# A test that computes for this many times as long as it takes without a fault, and these seconds,
# does not end. One that waits has CTest's limit: what else the machine does must not look like it.
SLOWNESS, PATIENCE = 10, 30


HANGS = "(does not end)"


class Unsound(Exception):
    """Without any fault the build or a test fails."""


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
        self.limit = properties.get("TIMEOUT")
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
        if self.run_test(test) is not None:
            raise Unsound(f"{test.name} fails without a fault")
        return time.monotonic() - started

    def run_test(self, test, computing=None):
        """None when it passes, else what noticed."""
        environment = {**test.environment, "GTEST_FAIL_FAST": "1"}
        result, output = self.processes.run(test.command, test.folder, environment, test.limit,
                                            computing)
        if result == 0:
            return None
        if result is None:
            return f"{test.name} {HANGS}"
        first = FAILED_TEST.search(output) or FAILED_CASE.search(output)
        return f"{test.name} {first[1]}" if first else f"{test.name} (exit code {result})"

    def noticing(self, fault, made):
        """Tests and what to build for each: those that start a program that is made from the
        fault's file, of the file's own folder first, and those that do not say what they start."""
        files = {str(path) for path in made}
        tests = []
        for test in self.tests:
            programs = [word for word in test.command if word.startswith(f"{self.folder}/")]
            needed = files.intersection(programs) if programs else {"all"}
            if needed:
                tests.append((test, [os.path.relpath(name, self.folder) if programs else name
                                     for name in needed]))
        own = f"tests/{Path(fault.path).parent.name}/"
        return sorted(tests, key=lambda pair: not any(own in target for target in pair[1]))

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
            noticed = self.run_test(test, int(SLOWNESS * test.seconds) + PATIENCE)
            if noticed is not None:
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
