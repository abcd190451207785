#!/usr/bin/env python3
"""open_test.py KORDIAG: what kordiag open starts, and what it says where the shell does not. A click on the
same link starts the same (endtoend.Links)."""
import re
import subprocess
import sys
import time
import unittest

from prefix import LINKS, ROOT, Prefix, private_display

PROGRAM = None


def in_plain_form(command_line):
    """The same program as Wine 10 starts it, which gives its path one form."""
    path, quote, arguments = command_line[1:].partition('"')
    return '"' + re.sub(r"[\\/]+", r"\\", path) + quote + arguments


class Open(unittest.TestCase):
    def setUp(self):
        # A key goes to whatever window is in front: none of another test's.
        self.display = self.enterContext(private_display("1024x768"))
        self.prefix = Prefix(PROGRAM, "development", viewers=True, DISPLAY=self.display)
        self.addCleanup(self.prefix.close)
        # Folders are opened by a program that notes its command line, too.
        self.prefix.import_registry(ROOT / "tests/endtoend/folders.reg")

    def log(self):
        file = self.prefix.path / "drive_c/stub.log"
        return file.read_text().splitlines() if file.exists() else []

    def open(self, item, *options):
        return self.prefix.json("open", item, *options, variables={"KOR_STUB_QUIET": "1"})

    def started_by(self, item):
        lines = len(self.log())
        code, document = self.open(item)
        self.assertEqual((code, document["answer"], document["error"]), (0, "started", 0))
        deadline = time.monotonic() + 60
        while len(self.log()) == lines:
            self.assertLess(time.monotonic(), deadline, f"{item} starts nothing")
            time.sleep(0.05)
        return self.log()[lines:]

    def test_each_link_starts_what_a_click_starts(self):
        readings = [LINKS, {item: in_plain_form(command_line) for item, command_line in LINKS.items()}]
        for item in LINKS:
            with self.subTest(item):
                code, document = self.open(item, "--dry-run")
                self.assertEqual((code, document["answer"]), (0, "not-asked"))
                self.assertNotIn("explorer", document["file"])
                started = self.started_by(item)
                self.assertIn(started, [[links[item]] for links in readings])
                readings = [links for links in readings if started == [links[item]]]
        self.assertEqual(len(self.log()), len(LINKS))

    def test_a_help_viewer_that_is_gone(self):
        for viewer in (self.prefix.path / "drive_c").glob("windows/**/hh.exe"):
            viewer.unlink()
        code, document = self.open("KOR_1")
        self.assertEqual((code, document["answer"], document["error"]), (1, "file-missing", 2))

    def test_a_type_without_a_program(self):
        self.prefix.import_registry(r"[-HKEY_LOCAL_MACHINE\Software\Classes\.pdf]" + "\n")
        code, document = self.open("FLOWFORGE_2")
        self.assertEqual((code, document["answer"], document["error"]), (1, "no-program-for-type", 1155))
        code, out, err = self.prefix.run("open", "FLOWFORGE_2")
        self.assertEqual((code, err), (1, b""))
        self.assertEqual(out.decode().splitlines()[-1],
                         "shell:      no program is registered for its type (error 1155)")

    def test_a_program_that_is_none(self):
        tool = self.prefix.path / "drive_c/Program Files/Vantrel Imaging/Tools/GaugeBench.exe"
        tool.unlink()
        tool.write_text("no program")
        code, document = self.prefix.json("open", "GUI_4", meanwhile=self.answer_message)
        self.assertEqual((code, document["answer"]), (1, "failed"))
        self.assertGreater(document["error"], 0)

    def answer_message(self):
        """The shell of Wine 10 tells the user and waits for the answer, as that of Windows does; Wine 8's does not."""
        subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^Error$", "key", "Return"], check=False,
                       stderr=subprocess.DEVNULL, env=self.prefix.prefix.environment)

    def test_nothing_to_open(self):
        (self.prefix.path / "drive_c/Program Files/Vantrel Imaging/Tools/GaugeBench.exe").unlink()
        for item, message in (
                ("NONE_1", "there is no item NONE_1; kordiag catalogue shows the ids"),
                ("GUI_4", r"the item GUI_4 is not shown: the file C:\Program Files\Vantrel Imaging"
                          r"\Tools/GaugeBench.exe does not exist")):
            self.assertEqual(self.prefix.run("open", item, "--json"),
                             (1, b"", f"kordiag open: {message}\n".encode()))
        self.assertEqual(self.log(), [])


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main()
