#!/usr/bin/env python3
"""thousands_test.py CLASS: ten thousand refreshes must leave nothing behind, neither with an engine that does
what it is told nor with the worst. Two late points are compared: what is made once is made long before."""
import re
import unittest
from pathlib import Path

from endtoend_test import EndToEnd
from session import BUILD, TITLE

REFRESHES = 10000
FIRST_POINT = REFRESHES // 2
TURN = 50
# What one page of memory may come and go by; 5,000 times the smallest block would be three times that.
PRIVATE_KB = 32
# Windows of Wine's own programs come and go in the meantime.
USER_OBJECTS = 100


class TenThousand(EndToEnd):
    modes = ""

    def test_nothing_grows(self):
        session = self.session
        session.prefix.environment["KOR_HTML_MODES"] = self.modes
        # Else the C library keeps the memory that a page was painted in: see docs/testing.md.
        session.prefix.environment["MALLOC_MMAP_THRESHOLD_"] = "131072"
        session.start()
        session.wait_for_page(lambda page: page["loaded"], "the complete page")
        before = self.used(self.refresh(FIRST_POINT))
        after = self.used(self.refresh(REFRESHES - FIRST_POINT))
        print(f"after {FIRST_POINT} and {REFRESHES} refreshes:", before, after)
        for name, slack in (("private kB", PRIVATE_KB), ("next-user-object", USER_OBJECTS)):
            self.assertLessEqual(after.pop(name) - before.pop(name), slack, name)
        self.assertEqual(after, before)
        self.end()

    def refresh(self, times):
        """In turns, each begun by a link that is pointed at and dies with its page. Gives back the least
        private memory after one of the last ten turns, in kB: in the middle of painting it is more."""
        session = self.session
        memory = []
        for turn in range(times // TURN):
            self.engine_refresh()
            # Another one each time: Wine says nothing of a pointer that goes and comes back at once.
            link = f"KOR_{turn % 2}"
            session.point_at(link)
            session.wait_for_page(lambda page: self.color(link, page) == "#ff0000", "a link under the pointer")
            writes = session.page()["writes"]
            session.xdotool("windowfocus", session.window, "key", "--delay", 1, *["F5"] * TURN)
            session.wait_for_page(lambda page: page["writes"] == writes + TURN, f"{TURN} refreshes")
            session.point_at_heading()
            memory.append(self.private_memory())
        return min(memory[-10:])

    def private_memory(self):
        """Without files and without the window's picture, which it shares with the display."""
        rollup = Path(f"/proc/{self.session.launcher.pid}/smaps_rollup").read_text()
        return int(re.search(r"Anonymous: *(\d+)", rollup)[1])

    def engine_refresh(self):
        """What the engine's own refresh would be, where it has one."""

    def color(self, item, page):
        return next((box["color"] for box in page["boxes"] if box["id"] == item), None)

    def used(self, memory):
        session = self.session
        files = Path(f"/proc/{session.launcher.pid}/fd").iterdir()
        tool = lambda name: session.prefix.run(BUILD / f"release/tests/endtoend/{name}.exe", TITLE).decode()
        return {"private kB": memory, "GDI objects": int(tool("gdiobjects")), "COM objects": session.page()["objects"],
                "files": len(list(files)),
                **{name: int(value) for name, value in (line.split() for line in tool("handles").splitlines())}}


class TenThousandWorst(TenThousand):
    modes = "worst"

    def engine_refresh(self):
        """One a turn: the page is loaded anew, told by its downloads only, and filled again."""
        session = self.session
        writes = session.page()["writes"]
        session.prefix.run(BUILD / "release/tests/endtoend/refreshkey.exe", TITLE)
        session.wait_for_page(lambda page: page["loaded"] and page["writes"] > writes, "the page loaded again")
        session.point_at_heading()


if __name__ == "__main__":
    unittest.main(verbosity=2)
