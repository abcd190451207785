#!/usr/bin/env python3
"""clicks_test.py CLASS: points at every link of the demonstration page with a real pointer, clicks it
and compares what was started, to the blank, with the list in page.json. CTest runs one class at a time."""
import os
import re
import signal
import unittest
from pathlib import Path

from endtoend_test import EndToEnd, sections
from session import LINKS, wait_for

LIBRARY = "C:\\Program Files\\Vantrel Imaging\\"
FORGE30 = "C:\\Program Files\\Vantrel Flow Forge 3.0\\"


def program(path):
    return f'"{path}"'


def topic(text):
    return f'"C:\\windows\\hh.exe" {text}'


def plain(path):
    return re.sub(r"[\\/]+", r"\\", path)


def opened(path):
    """A document or a folder: in these prefixes the demonstration's viewer opens both. The shell gives it
    the path in one form, whatever slashes it was asked with."""
    return f'"C:\\windows\\kordemoviewer.exe" "{plain(path)}"'


def in_plain_form(command_line):
    """The same program as Wine 10 starts it: it brings the path into the one form first, a backslash for
    each slash and for several in a row. Wine 8 takes the path as it was given. The arguments stay as they
    are under both."""
    path, quote, arguments = command_line[1:].partition('"')
    return '"' + plain(path) + quote + arguments


BLUE, RED = "#0000ff", "#ff0000"


class Links(EndToEnd):
    """Programs, documents, help topics and folders. No link of the catalogue starts a program
    elevated; how such an item is started is tested without the page (tests/app)."""

    def test_every_link(self):
        session = self.session
        session.start()
        session.wait_for_layout()
        self.assertEqual([box["id"] for box in session.page()["boxes"] if box["class"] == "item"],
                         list(LINKS))
        self.open_with_explorer("FOLDERS_0", LIBRARY + "KOR")
        session.point_at_heading()
        session.xdotool("click", 1)  # the window is the active one again
        session.refresh()
        session.import_registry(Path(__file__).with_name("folders.reg"))
        before = None
        # One of the two must hold for all links: no Wine changes some paths and leaves others.
        readings = [LINKS, {item: in_plain_form(command_line) for item, command_line in LINKS.items()}]
        for item in LINKS:
            with self.subTest(item):
                self.assertEqual(self.look(item), (BLUE, ""))
                session.point_at(item)
                session.wait_for_page(lambda page: self.look(item, page) == (RED, "hand"), f"{item} under the pointer")
                if before is not None:
                    # Blue again; the cursor stays set.
                    self.assertEqual(self.look(before), (BLUE, "hand"))
                lines = len(session.log())
                session.xdotool("click", 1)
                started = wait_for(lambda: session.log()[lines:], f"what {item} starts")
                self.assertIn(started, [[links[item]] for links in readings])
                readings = [links for links in readings if started == [links[item]]]
            before = item
        session.point_at_heading()
        session.wait_for_page(lambda page: self.look(before, page) == (BLUE, "hand"), f"{before} left alone")
        # A click beside the links starts nothing.
        session.xdotool("click", 1)
        self.end()
        self.assertEqual(len(session.log()), len(LINKS))

    def look(self, item, page=None):
        box = next(box for box in (page or self.session.page())["boxes"] if box["id"] == item)
        return box["color"], box["cursor"]

    def open_with_explorer(self, item, folder):
        """As the shell comes: a window of the explorer, which is ended again."""
        self.session.click(item)
        self.session.wait_for_page(lambda page: self.look(item, page) == (RED, "hand"), f"{item} under the pointer")
        explorer = wait_for(lambda: self.explorer_of(folder), f"an explorer for {folder}")
        wait_for(lambda: self.session.xdotool("search", "--onlyvisible", "--name", "^KOR$"), "the explorer's window")
        os.kill(explorer, signal.SIGKILL)
        wait_for(lambda: not self.session.xdotool("search", "--onlyvisible", "--name", "^KOR$"),
                 "the explorer to go")

    def explorer_of(self, folder):
        """The process of this prefix's explorer that shows the folder; None if there is none."""
        ours = f"WINEPREFIX={self.session.prefix.path}".encode()
        for process in Path("/proc").glob("[0-9]*"):
            try:
                command = (process / "cmdline").read_bytes().split(b"\0")
                if command[0].endswith(b"explorer.exe") and folder.encode() in command and \
                        ours in (process / "environ").read_bytes().split(b"\0"):
                    return int(process.name)
            except (FileNotFoundError, ProcessLookupError):
                continue  # it ended meanwhile
        return None


class Changes(EndToEnd):
    """What is installed and taken away while the page is shown appears and goes with F5."""

    def test_refresh(self):
        session = self.session
        before = sections(session.start())
        versions = r"HKEY_LOCAL_MACHINE\Software\Vantrel\Vantrel Flow Forge\Installed Versions"
        session.import_registry(f"[{versions}\\4.0]\n"
                                '"InstallationPath"="C:\\\\Program Files\\\\Vantrel Flow Forge 3.0"\n')
        after = sections(session.refresh())
        # Without examples of its own: they are looked for in the install folder, where there are none.
        added = ("Flow Forge 4.0", ["Vantrel Flow Forge", "Vantrel Flow Forge User Guide", "Flow Forge Documentation",
                                    "Flow Forge Tools", "Flow Forge Runtime Manager"])
        at = [title for title, _ in before].index("Flow Forge 2.0 (32-bit)")
        self.assertEqual(after, before[:at] + [added] + before[at:])
        self.assertEqual(sections(session.refresh()), after)
        lines = len(session.log())
        session.click("FLOWFORGE-4.0_2")
        self.assertEqual(wait_for(lambda: session.log()[lines:], "the user guide"),
                         [opened(FORGE30 + "Documentation/FlowForgeHelp.chm")])

        size = session.size()
        library = r"HKEY_LOCAL_MACHINE\Software\Vantrel\Vantrel Imaging Library"
        session.import_registry(f'[{library}]\n"KorVersion"=-\n')
        page = session.refresh()
        message = "This KOR hasn't been installed by a valid install"
        self.assertEqual(sections(page), [(message, [])])
        self.assertEqual(page["innerHtml"]["Sections"], f"<div id=KORSection><h2>{message}</h2><ul></ul></div>")
        self.assertTrue(wait_for(lambda: session.size()[1] < size[1], "the window of the bare height"))
        session.wait_for_page(lambda page: page["contentHeight"] <= page["window"]["height"], "the whole message")

        session.import_registry(f'[{library}]\n"KorVersion"="11"\n')
        self.assertEqual(sections(session.refresh()), after)
        self.end()


if __name__ == "__main__":
    unittest.main(verbosity=2)
