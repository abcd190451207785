"""What became of each fault, a line each in a file, so that a run that was ended goes on."""
import json
import threading
from typing import NamedTuple

from fault import Fault

SURVIVED, NOT_VIABLE = "survived", "not viable"


class Result(NamedTuple):
    fault: Fault
    verdict: str
    noticed: str  # the test, or what the compiler says
    seconds: float
    place: tuple  # the fault's identity, which stays when lines move


class Record:
    def __init__(self, file):
        self.file = file
        self.lock = threading.Lock()
        self.results = {}
        # A line that was being written when the power went is no line.
        for line in file.read_text().splitlines() if file.exists() else []:
            try:
                fault, *rest, place = json.loads(line)
            except ValueError:
                continue
            self.add(Result(Fault(*fault), *rest, tuple(place)))

    def add(self, result):
        self.results[result.fault.key] = result

    def find(self, fault):
        return self.results.get(fault.key)

    def keep(self, result):
        with self.lock:
            self.add(result)
            self.file.parent.mkdir(parents=True, exist_ok=True)
            with self.file.open("a") as file:
                file.write(json.dumps(result) + "\n")
