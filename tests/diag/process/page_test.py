#!/usr/bin/env python3
"""page_test.py KORDIAG: what kordiag says the page is, beside what the launcher hands to its
document in the same prefix."""
import json
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "endtoend"))
from session import Session, wait_for  # noqa: E402

PROGRAM = None


class PageTest(unittest.TestCase):
    def compare(self, installation, dpi):
        session = Session("kordiag-" + installation, dpi, installation)
        self.addCleanup(session.close)
        shown = session.start()["innerHtml"]["Sections"]
        self.assertIn("<h2>", shown)
        self.assertEqual(session.prefix.run(PROGRAM, "page"), shown.encode("utf-8"))
        sizes = json.loads(session.prefix.run(PROGRAM, "sizes", "--json"))
        self.assertEqual(sizes["dpi"], dpi)
        expected = sizes["windowWidth"], sizes["windowHeight"]
        wait_for(lambda: session.size() == expected, f"the window's size {expected}")
        self.assertEqual(session.end(), 0)

    def test_development(self):
        self.compare("development", 96)

    def test_development_at_a_high_resolution(self):
        self.compare("development", 144)

    def test_runtime(self):
        self.compare("runtime", 120)

    def test_damaged(self):
        self.compare("damaged", 96)


if __name__ == "__main__":
    PROGRAM = str(Path(sys.argv.pop(1)).resolve())
    unittest.main()
