"""A copy of the tree in which faults are tried one after the other."""
import json
import re
import time

from build import Build
from draw import folder_of
from processes import Processes
from record import NOT_VIABLE, SURVIVED, Result
from tree import copy_tree

# What is seen only in the finished programs is asked of these, when no unit test notices.
FINISHED = re.compile(r"endtoend\.(Development|Links)|kordiag\.(page|reading)")
FOLDERS_SEEN_THERE = ("app", "page", "catalogue")
ASKED = "nor do the finished programs"


class Worker:
    def __init__(self, root, place, mark, processor):
        self.root = root
        self.tree = place
        self.mark = mark  # the fingerprint of the tree
        self.processes = Processes(processor)
        self.units = Build(place, "debug", self.processes, lambda test: not test.is_long)
        self.finished = Build(place, "release", self.processes,
                              lambda test: FINISHED.fullmatch(test.name))

    def prepare(self, build):
        """How long tests take is measured once for the same files."""
        file = self.tree / f"build/seconds-{self.mark}.json"
        known = json.loads(file.read_text()) if file.exists() else {}
        build.prepare(known)
        file.write_text(json.dumps(known))

    def start(self):
        copy_tree(self.root, self.tree)
        self.prepare(self.units)

    def judge(self, fault, place):
        return self.timed(self.units, fault, place)

    def judge_by_programs(self, fault, place):
        """For one that no unit test noticed."""
        self.prepare(self.finished)
        result = self.timed(self.finished, fault, place)
        # Optimization brings warnings, so errors, of its own.
        if result.verdict in (SURVIVED, NOT_VIABLE):
            return result._replace(verdict=SURVIVED, noticed=ASKED)
        return result

    @staticmethod
    def timed(build, fault, place):
        started = time.monotonic()
        verdict, noticed = build.try_fault(fault)
        return Result(fault, verdict, noticed, round(time.monotonic() - started, 1), place)


def is_left_to_programs(result):
    return (result.verdict == SURVIVED and result.noticed != ASKED
            and folder_of(result.fault) in FOLDERS_SEEN_THERE)
