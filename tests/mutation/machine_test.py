"""The draw, the dependence, the copies, the record, the list of equivalents and the report."""
import contextlib
import io
import json
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from build import Build, Test
from compilation import translate
from dependence import read_deps, read_graph
from draw import Chosen, Sample, by_line, folder_of, shares
from equivalents import Equivalents, as_entry, words
from fault import Fault
from mutate import Run, noticed_before, survivors
from processes import Processes
from record import Record, Result
from report import report
from tree import copy_tree, files_of, processors
from worker import ASKED

ROOT = Path(__file__).resolve().parents[2]


def fault(path="base/a.cpp", line=1, start=0, new="x", function="f"):
    return Fault(path, line, start, start + 1, new, "number", function)


class InAFolder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name).resolve()


class Draw(unittest.TestCase):
    FAULTS = [fault(f"{folder}/a.cpp", line, column) for folder, lines in (("a", 30), ("b", 10))
              for line in range(lines) for column in range(3)]

    def drawn(self, size, seed):
        sample = Sample(self.FAULTS, size, seed)
        return list(iter(sample.next, None))

    def test_the_same_seed_draws_the_same(self):
        self.assertEqual(self.drawn(20, 7), self.drawn(20, 7))
        self.assertNotEqual({one.line for one in self.drawn(20, 7)},
                            {one.line for one in self.drawn(20, 8)})

    def test_folders_have_their_shares(self):
        folders = [folder_of(one) for one in self.drawn(20, 7)]
        self.assertEqual((folders.count("a"), folders.count("b")), (15, 5))
        self.assertEqual(shares({"a": 1, "b": 1, "c": 1}, 5), {"a": 2, "b": 2, "c": 1})

    def test_a_line_gives_a_second_fault_after_all_gave_one(self):
        drawn = self.drawn(44, 7)
        self.assertEqual({len(line) for line in by_line(drawn).values()}, {1, 2})

    def test_one_that_cannot_be_compiled_is_replaced_in_its_folder(self):
        sample = Sample(self.FAULTS, 4, 7)
        drawn = list(iter(sample.next, None))
        sample.replace(drawn[-1])
        self.assertEqual(folder_of(sample.next()), folder_of(drawn[-1]))
        self.assertIsNone(sample.next())


class Dependences(unittest.TestCase):
    def test_of_a_graph(self):
        dot = ('digraph ninja {\n"0x1" [label="a.cpp"]\n"0x2" [label="a.obj"]\n'
               '"0x3" [label="link", shape=ellipse]\n"0x4" [label="a.exe"]\n"0x5" [label="b"]\n'
               '"0x1" -> "0x2" [label=" cxx"]\n"0x2" -> "0x3" [arrowhead=none]\n"0x3" -> "0x4"\n'
               '"0x5" -> "0x2" [label="cxx" style=dotted]\n}\n')
        self.assertEqual(read_graph(dot),
                         [("a.cpp", "a.obj"), ("a.obj", "0x3"), ("0x3", "a.exe")])

    def test_of_what_the_compiler_read(self):
        listing = "a.obj: #deps 2, deps mtime 5 (VALID)\n    /t/a.cpp\n    /t/a.h\n\n"
        self.assertEqual(read_deps(listing), [("/t/a.cpp", "a.obj"), ("/t/a.h", "a.obj")])


class Commands(unittest.TestCase):
    def test_only_what_gives_the_source_its_meaning_is_kept(self):
        self.assertEqual(translate("g++ -DA=1 -I/t -isystem /u -g -Wall -std=c++17 -o a -c a.cpp"),
                         ["-DA=1", "-I/t", "-isystem", "/u", "-std=c++17"])


class Running(InAFolder):
    def test_a_command_that_hangs_is_ended_with_what_it_started(self):
        started = time.monotonic()
        result, output = Processes(processors()[0]).run(
            ["sh", "-c", "sleep 600 & wait"], self.root, seconds=0.1)
        self.assertEqual((result, output), (None, ""))
        self.assertLess(time.monotonic() - started, 60)


class TryingFaults(InAFolder):
    """With a build of its own: the program is a copy of its source."""

    def setUp(self):
        super().setUp()
        folder = self.root / "build/debug"
        folder.mkdir(parents=True)
        (self.root / "base").mkdir()
        self.source = self.root / "base/a.cpp"
        self.source.write_text("one two\n")
        self.program = folder / "a.sh"
        (folder / "build.ninja").write_text(
            "rule copy\n  command = grep -v broken $in > $out\n"
            f"build a.sh: copy {self.source}\nbuild all: phony a.sh\n")
        self.build = Build(self.root, "debug", Processes(processors()[0]), lambda test: True)
        subprocess.run(["ninja", "-C", folder], check=True, stdout=subprocess.DEVNULL)
        (folder / "CTestTestfile.cmake").write_text(
            f'add_test(one "/usr/bin/grep" "one" "{self.program}")\n')
        self.build.prepare({})

    def try_with_script(self, lines):
        """What becomes of a fault that only this test may notice, and how the test was called."""
        script, calls = self.root / "script", self.root / "calls"
        script.write_text(f"echo $2 >>{calls}\nrun=$(wc -l <{calls})\n{lines}\n")
        self.build.tests.append(Test({"name": "script", "command": [
            "/bin/sh", str(script), str(self.program)]}))
        self.build.tests[-1].seconds = 0.1
        result = self.build.try_fault(Fault("base/a.cpp", 1, 4, 7, "", "text", ""))
        return result, calls.read_text().splitlines()

    def assert_as_before(self):
        self.assertEqual(self.source.read_text(), "one two\n")
        self.assertEqual(self.program.read_text(), "one two\n")
        state = subprocess.run(["ninja", "-C", self.program.parent, "-n"], check=True, text=True,
                               stdout=subprocess.PIPE).stdout
        self.assertIn("no work to do", state)

    def test_one_that_a_test_notices_is_killed(self):
        self.assertEqual(self.build.try_fault(Fault("base/a.cpp", 1, 0, 3, "", "text", "")),
                         ("killed", "one (exit code 1)"))
        self.assert_as_before()

    def test_one_that_no_test_notices_survives(self):
        self.assertEqual(self.build.try_fault(Fault("base/a.cpp", 1, 4, 7, "", "text", "")),
                         ("survived", ""))
        self.assert_as_before()

    def test_one_that_cannot_be_built_is_not_viable(self):
        verdict, _ = self.build.try_fault(Fault("base/a.cpp", 1, 0, 3, "broken", "text", ""))
        self.assertEqual(verdict, "not viable")
        self.assert_as_before()

    def test_a_failure_that_does_not_come_again_is_none(self):
        self.assertEqual(self.try_with_script("test $run -gt 1"), (("survived", ""), ["", ""]))

    def test_a_failure_that_comes_again_is_one(self):
        self.assertEqual(self.try_with_script("exit 3"),
                         (("killed", "script (exit code 3)"), ["", ""]))

    def test_only_the_case_that_failed_is_run_again(self):
        self.assertEqual(self.try_with_script("echo '[  FAILED  ] A.B'; false"),
                         (("killed", "script A.B"), ["", "--gtest_filter=A.B"]))

    def test_a_case_that_passes_alone_may_need_those_before_it(self):
        self.assertEqual(self.try_with_script("echo '[  FAILED  ] A.B'; test -n \"$2\""),
                         (("killed", "script A.B"), ["", "--gtest_filter=A.B", ""]))

    def test_the_test_that_noticed_most_faults_of_the_file_comes_first(self):
        self.build.tests.append(Test({"name": "two", "command": ["/bin/true", str(self.program)]}))

        def asked():
            order = self.build.noticing(fault(), {self.program})
            return [test.name for test, _ in order]
        self.assertEqual(asked(), ["one", "two"])
        self.build.noticed["base/a.cpp", "two"] = 2
        self.assertEqual(asked(), ["two", "one"])
        for _ in range(3):
            self.build.noticed["base/a.cpp", "two"] = 0
            self.build.try_fault(Fault("base/a.cpp", 1, 0, 3, "", "text", ""))
        self.build.noticed["base/a.cpp", "two"] = 2
        self.assertEqual(asked(), ["one", "two"])

    def test_a_test_that_starts_another_program_is_not_run(self):
        (self.root / "base/b.cpp").write_text("b")
        self.assertEqual(self.build.try_fault(Fault("base/b.cpp", 1, 0, 1, "", "text", "")),
                         ("survived", ""))
        self.assertEqual(self.build.noticing(fault("base/b.cpp"), set()), [])


class Tests(unittest.TestCase):
    def test_an_entry_of_ctest(self):
        test = Test({"name": "a", "command": ["b"], "properties": [
            {"name": "LABELS", "value": ["long"]}, {"name": "ENVIRONMENT", "value": ["C=d=e"]}]})
        self.assertTrue(test.is_long)
        self.assertEqual(test.environment, {"C": "d=e"})


class Copies(InAFolder):
    def test_follow_the_files_and_leave_the_same_alone(self):
        root, copy = self.root / "root", self.root / "copy"
        (root / "a").mkdir(parents=True)
        for name in ("a/same", "a/changed", "gone"):
            (root / name).write_text(name)
        copy_tree(root, copy)
        before = (copy / "a/same").stat().st_mtime_ns
        (root / "gone").unlink()
        (root / "a/changed").write_text("otherwise")
        copy_tree(root, copy)
        self.assertEqual(files_of(copy), ["a/changed", "a/same"])
        self.assertEqual((copy / "a/changed").read_text(), "otherwise")
        self.assertEqual((copy / "a/same").stat().st_mtime_ns, before)


class Records(InAFolder):
    def test_go_on_after_a_line_that_was_cut(self):
        file = self.root / "record"
        result = Result(fault(), "killed", "one", 1.5, ("a", "b"))
        Record(file).keep(result)
        with file.open("a") as stream:
            stream.write('[["base/a.cpp", 1')
        self.assertEqual(Record(file).find(fault()), result)
        self.assertIsNone(Record(file).find(fault(new="y")))


class Equivalence(InAFolder):
    TEXT = "a();\n  b(1);\n"

    def entries(self, reason):
        entry = {**as_entry(fault(start=9, new="2"), self.TEXT), "reason": reason}
        file = self.root / "list"
        file.write_text(json.dumps([entry]))
        return Equivalents(file)

    def test_holds_when_lines_move(self):
        known = self.entries("why")
        moved = "new();\n" + self.TEXT.replace("  b", "b")
        self.assertEqual(known.reason(fault(start=14, new="2"), moved), "why")
        self.assertIsNone(known.reason(fault(start=14, new="3"), moved))
        self.assertIsNone(known.reason(fault(start=14, new="2", function="g"), moved))

    def test_the_report_names_what_only_waited(self):
        results = [Result(fault(start=9, new="2"), "killed", "one (does not end)", 1, ()),
                   Result(fault(start=9, new="3"), "killed", "one", 1, ())]
        text = report(results, self.entries("why"), {"base/a.cpp": self.TEXT})
        self.assertIn("Killed since a test waited", text)
        self.assertEqual(text.count("+  b(2);"), 2)  # it is a listed one, too
        self.assertNotIn("+  b(3);", text)

    def test_needs_a_reason(self):
        with self.assertRaises(ValueError):
            self.entries(" ")

    def test_each_of_the_list_is_still_in_its_file(self):
        for file, _, original, _ in Equivalents().reasons:
            self.assertIn(original, words((ROOT / file).read_text(encoding="utf-8")), file)

    def test_the_report_counts_it_separately(self):
        results = [Result(fault(start=9, new="2"), "survived", "", 1, ()),
                   Result(fault(start=9, new="3"), "survived", "", 1, ()),
                   Result(fault(start=0, new="3"), "killed", "one", 1, ())]
        text = report(results, self.entries("why"), {"base/a.cpp": self.TEXT})
        self.assertRegex(text, r"base +1 +1 +1 +0 +33.3 %")
        self.assertIn("-  b(1);\n+  b(3);", text)
        self.assertNotIn("b(2)", text)


class Judge:
    """Instead of a worker: says what becomes of each fault by what it puts in."""

    def __init__(self, verdicts, later="survived", noticed=""):
        self.verdicts = verdicts
        self.noticed = noticed
        self.later = later
        self.asked = []

    def start(self):
        pass

    def judge(self, one, place):
        self.asked.append(one.new)
        return Result(one, self.verdicts[one.new], self.noticed, 1, place)

    def judge_by_programs(self, one, place):
        self.asked.append(f"programs: {one.new}")
        return Result(one, self.later, ASKED, 1, place)


class Runs(InAFolder):
    TEXTS = {"app/a.cpp": "abc\n", "base/a.cpp": "abc\n"}

    def setUp(self):
        super().setUp()
        self.file = self.root / "results-1.jsonl"
        (self.root / "list").write_text("[]")

    def run_with(self, sample, judge):
        # What it says of each fault is not looked at.
        with contextlib.redirect_stdout(io.StringIO()):
            run = Run(self.TEXTS, sample, Record(self.file), Equivalents(self.root / "list"))
            run.attempt(run.work, judge)
            run.attempt(run.show_to_programs, judge)
        self.assertIsNone(run.failure)
        return sorted((result.fault.new, result.verdict) for result in run.drawn.values())

    def test_go_on_with_what_was_not_tried(self):
        faults = [fault(new=new) for new in "xyz"]
        first = Judge({"x": "killed", "y": "survived"})
        self.run_with(Chosen(faults[:2]), first)
        second = Judge({"z": "killed"})
        self.assertEqual(self.run_with(Chosen(faults), second),
                         [("x", "killed"), ("y", "survived"), ("z", "killed")])
        self.assertEqual(second.asked, ["z"])

    def test_replace_what_cannot_be_compiled(self):
        faults = [fault(line=line, new=str(line)) for line in range(9)]
        judge = Judge(dict.fromkeys("01234567", "not viable") | {"8": "killed"})
        found = self.run_with(Sample(faults, 1, 7), judge)
        self.assertEqual([verdict for _, verdict in found if verdict != "not viable"], ["killed"])

    def test_show_the_finished_programs_only_what_they_can_show(self):
        faults = [fault("app/a.cpp", new="x"), fault("base/a.cpp", new="y"),
                  fault("app/a.cpp", new="z")]
        verdicts = {"x": "survived", "y": "survived", "z": "killed"}
        judge = Judge(verdicts, later="killed")
        self.assertEqual(self.run_with(Chosen(faults), judge),
                         [("x", "killed"), ("y", "survived"), ("z", "killed")])
        self.assertEqual(judge.asked, ["x", "z", "y", "programs: x"])

    def test_leave_out_what_is_listed_as_equivalent(self):
        one = fault("app/a.cpp", new="x")
        entry = {**as_entry(one, self.TEXTS[one.path]), "reason": "why"}
        (self.root / "list").write_text(json.dumps([entry]))
        judge = Judge({})
        self.assertEqual(self.run_with(Chosen([one]), judge), [("x", "survived")])
        self.assertEqual(judge.asked, [])

    def test_know_what_noticed_faults_before(self):
        self.run_with(Chosen([fault(new=new) for new in "xyz"]),
                      Judge({"x": "killed", "y": "survived", "z": "killed"}, noticed="one A.B"))
        self.assertEqual(noticed_before(self.root), {("base/a.cpp", "one"): 2})

    def test_show_it_to_them_once(self):
        self.run_with(Chosen([fault("app/a.cpp", new="x")]), Judge({"x": "survived"}))
        again = Judge({})
        self.run_with(Chosen([fault("app/a.cpp", new="x")]), again)
        self.assertEqual(again.asked, [])

    def test_the_survivors_are_found_where_they_stand_now(self):
        self.run_with(Chosen([fault(start=1, new="x"), fault(start=2, new="y")]),
                      Judge({"x": "survived", "y": "killed"}))
        moved = {"base/a.cpp": "// New.\nabc\n"}
        now = [fault(line=2, start=9, new="x"), fault(line=2, start=10, new="y")]
        listed = self.root / "list"
        self.assertEqual(survivors(moved, now, self.root, Equivalents(listed)), now[:1])
        listed.write_text(json.dumps([{**as_entry(now[0], moved["base/a.cpp"]), "reason": "why"}]))
        self.assertEqual(survivors(moved, now, self.root, Equivalents(listed)), [])


if __name__ == "__main__":
    unittest.main()
