#!/usr/bin/env python3
"""endurance_test.py CLASS: what a program that stays open for days must not do: grow with every refresh."""
import re
import unittest
from pathlib import Path

from endtoend_test import EndToEnd
from session import BUILD, TITLE, wait_for


class Refreshes(EndToEnd):
    def test_two_hundred(self):
        session = self.session
        session.start()
        self.refresh(10)
        before = self.used()
        self.refresh(190)
        after = self.used()
        print("after 10 and after 200 refreshes:", before, after)
        # A page's markup is 20 kB, its elements are more: one of each kept would be 4 MB and more.
        self.assertLess(after["private kB"] - before["private kB"], 1024)
        # A font or a brush may be made once and kept; one a refresh may not.
        self.assertLess(after["GDI objects"] - before["GDI objects"], 10)
        self.assertEqual(after["COM objects"], before["COM objects"])
        self.assertEqual(after["files"], before["files"])
        self.end()

    def refresh(self, times):
        """In turns of ten; in between the pointer makes a link the hovered one, which dies with its page."""
        session = self.session
        for _ in range(times // 10):
            session.point_at("KOR_0")
            wait_for(lambda: self.color("KOR_0") == "#ff0000", "a link under the pointer")
            session.point_at_heading()
            wait_for(lambda: self.color("KOR_0") == "#0000ff", "the link left alone")
            writes = session.page()["writes"]
            session.xdotool("windowfocus", session.window, "key", "--delay", 1, *["F5"] * 10)
            session.wait_for_page(lambda page: page["writes"] == writes + 10, "ten refreshes")

    def color(self, item):
        return next(box for box in self.session.page()["boxes"] if box["id"] == item)["color"]

    def used(self):
        process = Path(f"/proc/{self.session.launcher.pid}")
        memory = (process / "smaps_rollup").read_text()
        objects = self.session.prefix.run(BUILD / "release/tests/endtoend/gdiobjects.exe", TITLE)
        return {"private kB": int(re.search(r"Private_Dirty: *(\d+)", memory)[1]),
                "GDI objects": int(objects), "COM objects": self.session.page()["objects"],
                "files": len(list((process / "fd").iterdir()))}


if __name__ == "__main__":
    unittest.main(verbosity=2)
