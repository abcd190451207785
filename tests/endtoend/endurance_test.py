#!/usr/bin/env python3
"""endurance_test.py CLASS: what a program that stays open for days must not do: grow with every refresh."""
import re
import unittest
from pathlib import Path

from endtoend_test import EndToEnd
from session import BUILD, TITLE, wait_for


class Refreshes(EndToEnd):
    def test_keep_nothing(self):
        session = self.session
        # Else the C library keeps the memory that a page was painted in, 2.8 MB, for the next painting: from
        # the second on, and once more where a small block came to lie in it. See docs/testing.md.
        session.prefix.environment["MALLOC_MMAP_THRESHOLD_"] = "131072"
        session.start()
        # The first hundred fill what is kept for all others.
        self.refresh(50)
        before = self.used(self.refresh(50))
        self.refresh(150)
        after = self.used(self.refresh(50))
        print("after 100 and after 300 refreshes:", before, after)
        # A page's markup is 20 kB, its elements are more: one of each kept would be 4 MB and more.
        self.assertLess(after["private kB"] - before["private kB"], 512)
        # It may be painting just now, into a bitmap; one a refresh may not stay.
        self.assertLess(after["GDI objects"] - before["GDI objects"], 10)
        self.assertEqual(after["COM objects"], before["COM objects"])
        self.assertEqual(after["files"], before["files"])
        self.end()

    def refresh(self, times):
        """In turns of ten; in between the pointer makes a link the hovered one, which dies with its page.
        Gives back the least memory seen after a turn: in the middle of painting it is more."""
        session = self.session
        memory = []
        for _ in range(times // 10):
            session.point_at("KOR_0")
            wait_for(lambda: self.color("KOR_0") == "#ff0000", "a link under the pointer")
            session.point_at_heading()
            wait_for(lambda: self.color("KOR_0") == "#0000ff", "the link left alone")
            writes = session.page()["writes"]
            session.xdotool("windowfocus", session.window, "key", "--delay", 1, *["F5"] * 10)
            session.wait_for_page(lambda page: page["writes"] == writes + 10, "ten refreshes")
            memory.append(self.private_memory())
        return min(memory)

    def private_memory(self):
        """In kB, without files and without the window's picture, which it shares with the display."""
        rollup = Path(f"/proc/{self.session.launcher.pid}/smaps_rollup").read_text()
        return int(re.search(r"Anonymous: *(\d+)", rollup)[1])

    def color(self, item):
        return next(box for box in self.session.page()["boxes"] if box["id"] == item)["color"]

    def used(self, memory):
        objects = self.session.prefix.run(BUILD / "release/tests/endtoend/gdiobjects.exe", TITLE)
        files = Path(f"/proc/{self.session.launcher.pid}/fd").iterdir()
        return {"private kB": memory, "GDI objects": int(objects), "COM objects": self.session.page()["objects"],
                "files": len(list(files))}


if __name__ == "__main__":
    unittest.main(verbosity=2)
