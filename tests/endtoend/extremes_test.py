#!/usr/bin/env python3
"""extremes_test.py CLASS: the real launcher with far more versions than anybody installs, and with names
that nobody expects."""
import unittest

from clicks_test import FORGE30, opened, program
from endtoend_test import EndToEnd, sections
from session import DEVELOPMENT, LINKS, wait_for, width_of

VERSIONS = r"HKEY_LOCAL_MACHINE\Software\Vantrel\Vantrel Flow Forge\Installed Versions"


def add_versions(session, names):
    """Further versions, all in the folder of version 3.0."""
    folder = FORGE30[:-1].replace("\\", "\\\\")
    session.import_registry("".join(
        f'[{VERSIONS}\\{name}]\n"InstallationPath"="{folder}"\n\n' for name in names))


class ManyVersions(EndToEnd):
    def test_window_stays_usable(self):
        session = self.session
        add_versions(session, [f"5.{minor}" for minor in range(1000)])
        screen = tuple(map(int, session.xdotool("getdisplaygeometry").split()))
        page = session.start()
        titles = [title for title, _ in sections(page)]
        self.assertEqual(sum(title.startswith("Flow Forge 5.") for title in titles), 1000)
        self.assertEqual(len(titles), 1000 + len(DEVELOPMENT))

        # 500 rows more: the window ends at the work area, which is the screen here.
        width = width_of(session.metrics())
        self.expect_size(width, screen[1])
        page = session.wait_for_page(lambda page: page["window"]["height"] < screen[1] < page["contentHeight"],
                                     "a page taller than its window")
        self.drag_border(0, -200)
        wait_for(lambda: session.size() == (width, screen[1] - 200), "a lower window")
        # Not narrower than it was made.
        self.drag_border(-150, 0)
        self.drag_border(0, -100)
        wait_for(lambda: session.size()[1] == screen[1] - 300, "a window that is lower still")
        self.assertEqual(session.size()[0], width)

        self.start_link("TOOLS_0", LINKS["TOOLS_0"])
        session.point_at_heading()
        for _ in range(5):
            page = session.turn_wheel()
        visible = [box for box in page["boxes"] if box["text"] == "Vantrel Flow Forge"
                   and 0 < box["y"] < page["window"]["height"] - 30]
        self.assertIn("FLOWFORGE-5.", visible[-1]["id"])
        self.start_link(visible[-1]["id"], program(FORGE30 + "FlowForge.exe"))
        self.end()

    def drag_border(self, x, y):
        """Moves the window's right or lower border with the pointer."""
        session = self.session
        place = session.geometry()
        left, top, width, height = (place[name] for name in ("X", "Y", "WIDTH", "HEIGHT"))
        at = (left + width - 2, top + height // 2) if x else (left + width // 2, top + height - 2)
        session.xdotool("mousemove", *at, "mousedown", 1)
        for part in (3, 2, 1):
            session.xdotool("mousemove", at[0] + x // part, at[1] + y // part)
        session.xdotool("mouseup", 1)

    def start_link(self, item, command_line):
        lines = len(self.session.log())
        self.session.click(item)
        self.assertEqual(wait_for(lambda: self.session.log()[lines:], f"what {item} starts"), [command_line])


class OddNames(EndToEnd):
    LONG = "7." + "9" * 253
    ODD = '8.1 beta "Ünï 視覚" & more'
    QUOTED = '8.2-"ÄÖ"-視覚'

    def test_links(self):
        session = self.session
        # One in each row: the long heading moves the right column out of sight.
        add_versions(session, [self.LONG, "8.0", self.ODD, "8.11", self.QUOTED])
        page = session.start()
        found = dict(sections(page))
        for name in (self.LONG, self.ODD, self.QUOTED):
            self.assertIn("Flow Forge " + name, found)
            self.assertEqual(len(found["Flow Forge " + name]), 5)

        ids = {name: "FLOWFORGE-" + name.replace(" ", "-") + "_0" for name in (self.LONG, self.ODD, self.QUOTED)}
        guide = opened(FORGE30 + "Documentation/FlowForgeHelp.chm")
        # An id has '-' for each blank and is then no version's key any more: the link is dead.
        session.click(ids[self.ODD])
        wait_for(lambda: self.box(ids[self.ODD])["color"] == "#ff0000", "the link under the pointer")
        for name in (self.LONG, self.QUOTED):
            session.scroll_to(ids[name])
            session.click(ids[name])
            wait_for(lambda: session.log(), f"what {name} starts")
            self.assertEqual(session.log(), [program(FORGE30 + "FlowForge.exe")])
            session.click(ids[name][:-1] + "2")
            wait_for(lambda: len(session.log()) > 1, f"what {name} starts")
            self.assertEqual(session.log()[1:], [guide])
            (session.drive / "stub.log").unlink()
        self.end()
        self.assertEqual(session.log(), [])

    def box(self, item):
        return next(box for box in self.session.page()["boxes"] if box["id"] == item)


if __name__ == "__main__":
    unittest.main(verbosity=2)
