#!/usr/bin/env python3
"""The kit for Windows, as far as Wine can try it: unpacked, and run by Wine's command processor."""
import re
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path
from xml.etree import ElementTree

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "endtoend"))
from endtoend_test import DEVELOPMENT  # noqa: E402
from session import BUILD, ROOT, private_display, throw_away  # noqa: E402

sys.path.insert(0, str(ROOT))
from shipping import product  # noqa: E402

NAME = f"korcontrolcenter-{product.version()}-kit"
DRIVE = "KorKit"


class Kit(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # In a folder of its own: other tests look at what is in build/package.
        made = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        subprocess.run([sys.executable, "-m", "shipping", "--kit", "--out", made, BUILD], check=True, cwd=ROOT,
                       stdout=subprocess.DEVNULL)
        display = cls.enterClassContext(private_display("1600x1200"))
        cls.prefix = cls.enterClassContext(throw_away("kit", DISPLAY=display))
        with zipfile.ZipFile(made / f"{NAME}.zip") as packed:
            packed.extractall(cls.prefix.drive)
        cls.folder = (cls.prefix.drive / NAME).rename(cls.prefix.drive / DRIVE)

    def run_here(self, *command):
        """The exit code and what was printed, by way of a file: services that the first program starts would
        keep a pipe open."""
        file = self.prefix.path / "printed"
        with open(file, "wb") as printed:
            code = self.prefix.start(*command, stdout=printed, stderr=printed).wait(240)
        return code, file.read_text("utf-8", "replace")

    def run_tests(self, pattern):
        """The exit code of run-tests.cmd, what it printed, and its collected results."""
        code, printed = self.run_here("cmd", "/c", f"C:\\{DRIVE}\\run-tests.cmd", pattern)
        return code, printed, (self.folder / "results.txt").read_text("utf-8", "replace")

    def test_holds_every_test_program_that_can_run_on_windows(self):
        built = {path.name for path in (BUILD / "debug/tests").rglob("*_tests.exe")}
        self.assertGreater(len(built), 8)
        self.assertEqual({path.name for path in (self.folder / "tests").iterdir()},
                         built - {"registry_restart_tests.exe"} |
                         {"htmldocument.dll", "folder-settings.md", "kordiag.md"})

    def test_the_test_programs_name_no_file_of_the_builds_folder(self):
        for path in (self.folder / "tests").iterdir():
            for name in (str(ROOT), str(ROOT).replace("/", "\\")):
                for encoding in ("utf-8", "utf-16-le"):
                    self.assertNotIn(name.encode(encoding), path.read_bytes(), path.name)

    def test_the_test_programs_have_no_identity_that_depends_on_the_builds_folder(self):
        for path in (*(self.folder / "tests").glob("*.exe"), *(self.folder / "tests").glob("*.dll")):
            found = re.findall(rb"RSDS(.{8})LLD PDB\.", path.read_bytes(), re.DOTALL)
            self.assertEqual(found, [bytes(8)], path.name)

    def test_runs_its_test_programs_and_collects_what_they_print(self):
        code, printed, results = self.run_tests("base*")
        self.assertEqual(code, 0, printed)
        self.assertIn("passed  base_tests", printed)
        self.assertIn("SM_CXVSCROLL", results)
        self.assertRegex(results, r"\[  PASSED  \] \d+ tests")
        self.assertIn("All programs passed.", results)

    def test_says_which_program_failed(self):
        broken = self.folder / "tests/broken_tests.exe"
        broken.write_bytes(b"no program")
        self.addCleanup(broken.unlink)
        code, printed, results = self.run_tests("broken*")
        self.assertEqual(code, 1)
        self.assertIn("FAILED: broken_tests", printed)
        self.assertIn("may be Wine's", printed)
        self.assertIn("FAILED: broken_tests", results)

    def test_does_not_call_a_pattern_without_programs_passed(self):
        self.assertEqual(self.run_tests("nothing*")[0], 2)

    def test_a_test_program_refuses_when_nobody_told_it(self):
        code, printed = self.run_here(self.folder / "tests/base_tests.exe", "--gtest_list_tests")
        self.assertEqual(code, 2)
        self.assertIn("deletes", printed)
        self.assertNotIn("CTable1D", printed)

    def test_lays_the_demonstration_that_the_programs_then_show(self):
        self.assertEqual(self.run_here("cmd", "/c", f"C:\\{DRIVE}\\install-demo.cmd")[0], 0)
        page = self.prefix.run(self.folder / "programs/kordiag.exe", "page").decode()
        self.assertEqual(re.findall("<h2>(.*?)</h2>", page), [title for title, _ in DEVELOPMENT])
        for label in (label for _, labels in DEVELOPMENT for label in labels):
            self.assertIn(f">{label}<", page)

    def test_the_checklists_commands_answer_for_the_demonstration(self):
        self.assertEqual(self.run_here("cmd", "/c", f"C:\\{DRIVE}\\install-demo.cmd")[0], 0)
        commands = re.findall(r"`programs\\kordiag (\w+)(.*?)`", (self.folder / "checklist.md").read_text())
        self.assertEqual([command for command, _ in commands], ["check", "report", "open"])
        program = self.folder / "programs/kordiag.exe"
        # This Wine has no HTML engine of its own, which check rightly says. Windows has one.
        _, printed = self.run_here(program, "check")
        self.assertRegex(printed, r"(?m)^(sound|broken): \d+ errors, 0 warnings\s*$")
        self.assertLessEqual(set(re.findall(r"(?m)^(?:error|warning): (\S+)", printed)), {"no-html-engine"})
        self.prefix.run(program, "report", *commands[1][1].split(), cwd=self.folder)
        self.assertIn("Windows", (self.folder / "report.txt").read_text("utf-8"))
        opened = self.prefix.run(program, "open", *commands[2][1].split(), "--dry-run").decode()
        self.assertIn("call:", opened)

    def test_sandbox_file_maps_the_folder_and_starts_what_is_there(self):
        settings = ElementTree.parse(self.folder / "control-center.wsb").getroot()
        self.assertEqual(settings.findtext("MappedFolders/MappedFolder/SandboxFolder"), f"C:\\{DRIVE}")
        command = settings.findtext("LogonCommand/Command")
        script = command.split(f"C:\\{DRIVE}\\")[1]
        self.assertTrue((self.folder / script).exists(), script)
        called = re.findall(r"^call (\S+)", (self.folder / script).read_text(), re.MULTILINE)
        self.assertEqual([name for name in called if not (self.folder / name).exists()], [])


if __name__ == "__main__":
    unittest.main()
