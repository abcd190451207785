"""Puts faults into the product's sources one at a time and lists those that no test notices."""
import argparse
import json
import signal
import sys
import threading
import traceback
from collections import Counter

from draw import Chosen, Sample
from equivalents import Equivalents, as_entry, identity
from fault import read_source
from processes import Stopped
from record import NOT_VIABLE, SURVIVED, Record, Result
from report import report, unlisted_survivors
from tree import fingerprint, processors, root_of_the_project
from worker import Worker, is_left_to_programs

FOLDERS = ("app", "page", "catalogue", "registry", "env", "base")


class Run:
    def __init__(self, texts, sample, record, equivalents):
        self.texts = texts  # the sources as they were at the start, without any fault
        self.sample = sample
        self.record = record
        self.equivalents = equivalents
        self.lock = threading.Lock()
        self.drawn = {}
        self.failure = None

    def next(self):
        with self.lock:
            return None if self.failure else self.sample.next()

    def finish(self, result):
        fault = result.fault
        with self.lock:
            self.drawn[fault.key] = result
            if result.verdict == NOT_VIABLE:
                self.sample.replace(fault)
            print(f"{result.verdict:10} {result.seconds:6} s  {fault.path}:{fault.line} "
                  f"{fault.operator}  [{result.noticed}]", flush=True)

    def work(self, worker):
        """What each worker does, at the same time as the others."""
        worker.start()
        while (fault := self.next()) is not None:
            result = self.record.find(fault) or self.listed(fault)
            if result is None:
                result = worker.judge(fault, identity(fault, self.texts[fault.path]))
                self.record.keep(result)
            self.finish(result)

    def listed(self, fault):
        """For a fault that is listed as equivalent, which is not tried."""
        text = self.texts[fault.path]
        if not self.equivalents.reason(fault, text):
            return None
        return Result(fault, SURVIVED, "listed as equivalent", 0, identity(fault, text))

    def show_to_programs(self, worker):
        """What one worker does at the end, as few are left."""
        for result in unlisted_survivors(self.drawn.values(), self.equivalents, self.texts):
            if is_left_to_programs(result):
                later = worker.judge_by_programs(result.fault, result.place)
                self.record.keep(later)
                self.finish(later)

    def attempt(self, task, worker):
        try:
            task(worker)
        except Stopped:
            pass
        except BaseException as error:
            traceback.print_exc()
            self.failure = error


def survivors(texts, faults, place, equivalents):
    """Those of the faults that survived when they were last tried, wherever they stand now, and that
    a test could notice."""
    verdicts = {}
    for file in sorted(place.glob("results-*.jsonl"), key=lambda file: file.stat().st_mtime):
        for result in Record(file).results.values():
            verdicts[result.place] = result.verdict
    return [fault for fault in faults
            if verdicts.get(identity(fault, texts[fault.path])) == SURVIVED
            and not equivalents.reason(fault, texts[fault.path])]


def noticed_before(place):
    """How many faults of each file each test noticed in earlier runs."""
    return Counter((result.fault.path, result.noticed.split()[0])
                   for file in place.glob("results-*.jsonl")
                   for result in Record(file).results.values() if result.verdict == "killed")


def options():
    parser = argparse.ArgumentParser(prog="tests/mutation/run", description=__doc__)
    parser.add_argument("--sample", type=int, metavar="COUNT", help="how many faults")
    parser.add_argument("--seed", type=int, help="what the draw begins with")
    parser.add_argument("--survivors", action="store_true",
                        help="only those that survived before, without equivalent ones")
    chosen = parser.parse_args()
    if chosen.survivors == (chosen.sample is not None) or (chosen.sample is None) != (
            chosen.seed is None):
        parser.error("give --sample and --seed, or --survivors")
    return chosen


def main():
    chosen = options()
    root = root_of_the_project()
    place = root / "build/mutation"
    mark = fingerprint(root)
    # Only here is clang needed.
    from places import find_faults
    faults = find_faults(root, FOLDERS, place)
    texts = {path: read_source(root / path) for path in {fault.path for fault in faults}}
    equivalents = Equivalents()
    if chosen.survivors:
        sample = Chosen(survivors(texts, faults, place, equivalents))
        print(f"{len(sample.waiting)} survivors", flush=True)
    else:
        sample = Sample(faults, chosen.sample, chosen.seed)
        print(f"{len(faults)} possible faults; {chosen.sample} of them with seed {chosen.seed}: "
              + ", ".join(f"{count} in {name}" for name, count in sorted(sample.shares.items())),
              flush=True)
    run = Run(texts, sample, Record(place / f"results-{mark}.jsonl"), equivalents)
    workers = [Worker(root, place / f"copy-{number}", mark, processor)
               for number, processor in enumerate(processors()[:2])]
    for worker in workers:
        worker.units.noticed.update(noticed_before(place))
    threads = [threading.Thread(target=run.attempt, args=[run.work, worker]) for worker in workers]

    def stop(*_):
        for worker in workers:
            worker.processes.stop()
    signal.signal(signal.SIGTERM, stop)
    signal.signal(signal.SIGINT, stop)
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    if not run.failure:
        run.attempt(run.show_to_programs, workers[0])
    print("\n" + report(run.drawn.values(), run.equivalents, texts))
    entries = [{**as_entry(result.fault, texts[result.fault.path]), "reason": ""}
               for result in unlisted_survivors(run.drawn.values(), run.equivalents, texts)]
    (place / "survivors.json").write_text(json.dumps(entries, indent=2) + "\n")
    stopped = any(worker.processes.stopped.is_set() for worker in workers)
    if stopped:
        print("\nEnded before all were tried; the same command goes on from here.")
    return 1 if stopped or run.failure else 0


if __name__ == "__main__":
    sys.exit(main())
