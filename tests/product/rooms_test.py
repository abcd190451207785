#!/usr/bin/env python3
"""rooms_test.py: no include goes against the arrows that docs/architecture.md draws, and docs/quirks.md
lists what the code points to it for."""
import re
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
ARROW = re.compile(r"^    ([\w/]+) +->(.*)$", re.MULTILINE)
INCLUDE = re.compile(r'^ *# *include ["<]([^">]+)', re.MULTILINE)
DRAWN = {room: set(rooms.split()) for room, rooms in
         ARROW.findall((ROOT / "docs/architecture.md").read_text(encoding="utf-8"))}


def folder_of(header, room):
    """The folder of the project that the header is in; the room itself for all others. The framework's
    headers are included without theirs."""
    folder = "mfc" if (ROOT / "mfc" / header).is_file() else str(Path(header).parent)
    return folder if folder != "." and (ROOT / folder).is_dir() else room


class Rooms(unittest.TestCase):
    def test_each_include_has_its_arrow(self):
        for room, reachable in DRAWN.items():
            sources = [file for file in (ROOT / room).iterdir() if file.suffix in (".cpp", ".h", ".rc")]
            self.assertTrue(sources, f"{room} is drawn but holds no source")
            for file in sources:
                for header in INCLUDE.findall(file.read_text(encoding="utf-8")):
                    self.assertIn(folder_of(header, room), {room, *reachable},
                                  f"{file.relative_to(ROOT)} includes {header}, and no arrow leads there")

    def test_each_room_is_drawn(self):
        self.assertLessEqual({file.parent.name for file in ROOT.glob("*/*.cpp")}, set(DRAWN))

    def test_each_quirk_has_its_line_and_its_paragraph(self):
        told = re.findall(r"^`(\S+)`:", (ROOT / "docs/quirks.md").read_text(encoding="utf-8"), re.MULTILINE)
        lines = [file.name for room in DRAWN for file in (ROOT / room).glob("*.*")
                 if file.suffix in (".cpp", ".h") for _ in re.findall("docs/quirks.md", file.read_text("utf-8"))]
        self.assertEqual(sorted(told), sorted(lines))


if __name__ == "__main__":
    unittest.main()
