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
FINISHED = re.compile(r"endtoend\.(Development|Links)|kordiag\.page")
FOLDERS_SEEN_THERE = ("app", "app/page", "page", "catalogue")


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

    def judge(self, fault, place, with_programs):
        started = time.monotonic()
        verdict, noticed = self.units.try_fault(fault)
        if verdict == SURVIVED and with_programs and folder_of(fault) in FOLDERS_SEEN_THERE:
            self.prepare(self.finished)
            later, noticed = self.finished.try_fault(fault)
            # Optimization brings warnings, so errors, of its own.
            verdict = SURVIVED if later == NOT_VIABLE else later
        seconds = round(time.monotonic() - started, 1)
        return Result(fault, verdict, noticed, seconds, place)
