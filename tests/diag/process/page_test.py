#!/usr/bin/env python3
"""page_test.py KORDIAG: what kordiag says the page is, beside what the launcher hands to its document in
the same prefix."""
import json
import subprocess
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "endtoend"))
from session import ROOT, Session, wait_for  # noqa: E402

PROGRAM = None


class PageTest(unittest.TestCase):
    def kordiag(self, session, *arguments):
        return subprocess.run(["bash", "-c", 'source wine/common.sh; exec "$kor_wine" "$@"', "bash", PROGRAM, *arguments],
                              cwd=ROOT, env=session.environment, check=True, stdout=subprocess.PIPE).stdout

    def compare(self, installation, dpi):
        session = Session("kordiag-" + installation, dpi, installation)
        self.addCleanup(session.close)
        shown = session.start()["innerHtml"]["Sections"]
        self.assertIn("<h2>", shown)
        self.assertEqual(self.kordiag(session, "page"), shown.encode("utf-8"))
        sizes = json.loads(self.kordiag(session, "sizes", "--json"))
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
