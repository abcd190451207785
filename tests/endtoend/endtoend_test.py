#!/usr/bin/env python3
"""endtoend_test.py CLASS: starts the real launcher with a demonstration installation and looks at its
window, its page and what its links start. CTest runs one class at a time."""
import shutil
import unittest

from session import DEMO, DEVELOPMENT, LINKS, TITLE, Session, row_heights, wait_for, width_of


def sections(page):
    """The page's headings, each with the labels of its links, in document order."""
    found = []
    for box in page["boxes"]:
        if box["tag"] == "h2":
            found.append((box["text"], []))
        elif box["class"] == "item":
            found[-1][1].append(box["text"])
    return found


class EndToEnd(unittest.TestCase):
    dpi = 96
    installation = "development"
    screen = "1600x1800"
    maxDiff = None

    def setUp(self):
        self.session = Session(type(self).__name__, self.dpi, self.installation, self.screen)
        self.addCleanup(self.session.close)

    def base_height(self, metrics):
        return metrics["SM_CYMENU"] + 2 * metrics["SM_CXDLGFRAME"] + 234 + metrics["SM_CYHSCROLL"]

    def expect_size(self, width, height):
        """The window follows its page a moment later."""
        try:
            wait_for(lambda: self.session.alive() and self.session.size() == (width, height), "the size")
        except AssertionError:
            self.assertEqual(self.session.size(), (width, height))

    def end(self):
        self.assertEqual(self.session.end(), 0)


class Development(EndToEnd):
    def test_from_start_to_end(self):
        session = self.session
        metrics = session.metrics()
        page = session.start()
        self.assertEqual(session.xdotool("getwindowname", session.window).strip(), TITLE)
        self.assertEqual(sections(page), DEVELOPMENT)
        self.assertTrue(next(box for box in page["boxes"] if box["tag"] == "img")["loaded"])

        width = width_of(metrics)
        base = self.base_height(metrics)
        self.expect_size(width, base + sum(row_heights(DEVELOPMENT)))
        page = session.wait_for_layout()
        self.assertLessEqual(page["contentHeight"], page["window"]["height"])

        self.links_start_their_targets()
        self.refresh_shows_what_changed(width, base)
        self.end()

    def links_start_their_targets(self):
        for item in ("KOR_0", "KOR_2", "RT_0", "ACTIVEKOR_6"):
            with self.subTest(item):
                before = len(self.session.log())
                self.session.click(item)
                line = wait_for(lambda: self.session.log()[before:], f"what {item} starts")[0]
                # Slashes and blanks are the shell's: it may write a path in its own way.
                plain = lambda text: " ".join(text.replace("/", "\\").split())
                self.assertEqual(plain(line), plain(LINKS[item]))

    def refresh_shows_what_changed(self, width, base):
        session, library = self.session, self.session.drive / "Program Files/Vantrel Imaging"
        (library / "Tools/GrabStudio.exe").unlink()
        shutil.rmtree(library / "Tutorial videos")
        shutil.rmtree(session.drive / "Program Files (x86)/Vantrel Flow Forge 2.0")
        session.import_registry(
            "[-HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\RTX]\n\n"
            "[HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library]\n\"KORType\"=\"Runtime\"\n")
        page = session.refresh()
        changed = [(title, [label for label in labels if (title, label) not in {
            ("General Tools", "Vantrel Grab Studio"), ("General Tools", "Tutorials directory")}])
            for title, labels in DEVELOPMENT
            if title not in ("Quick Start", "Folders", "Flow Forge 2.0 (32-bit)", "KOR for RTOS")]
        self.assertEqual(sections(page), changed)
        # Two by two from the start: ActiveKOR stands beside the single Flow Forge.
        self.expect_size(width, base + sum(row_heights(changed)))


class Folders(EndToEnd):
    """The installation's four folders are those of the start."""

    def test_refresh_keeps_them_and_a_restart_does_not(self):
        session = self.session
        session.start()
        session.import_registry("[HKEY_LOCAL_MACHINE\\Software\\Vantrel\\Vantrel Imaging Library\\Runtime\\install]\n"
                                '"installdir"="C:\\\\elsewhere\\\\"\n')
        self.assertEqual(sections(session.refresh()), DEVELOPMENT)
        self.end()
        self.assertNotIn("General Tools", dict(sections(session.start())))
        self.end()


class Development120(EndToEnd):
    dpi = 120

    def test_size(self):
        metrics = self.session.metrics()
        self.assertEqual(sections(self.session.start()), DEVELOPMENT)
        # 45 and 20 pixels scaled: 56 a row and 25 an item.
        self.expect_size(1405, self.base_height(metrics) + sum(row_heights(DEVELOPMENT, 56, 25)))
        self.end()


class Development144(EndToEnd):
    dpi = 144

    def test_size(self):
        metrics = self.session.metrics()
        self.assertEqual(sections(self.session.start()), DEVELOPMENT)
        # 67 a row, 30 an item, and a width of one pixel less.
        self.expect_size(1404, self.base_height(metrics) + sum(row_heights(DEVELOPMENT, 67, 30)))
        self.end()


class Runtime(EndToEnd):
    installation = "runtime"

    def test_shows_what_is_there(self):
        metrics = self.session.metrics()
        page = self.session.start()
        self.assertEqual(sections(page), [("General Tools", ["KORConfig", "Vantrel Grab Studio"]),
                                          ("Processing Tools", ["Vantrel Symbol Decoder"])])
        self.expect_size(width_of(metrics), self.base_height(metrics) + 45 + 2 * 20)
        self.end()


class Damaged(EndToEnd):
    installation = "damaged"

    def test_gives_a_page(self):
        session = self.session
        page = session.start()
        self.assertEqual([title for title, _ in sections(page)][:2], ["General Tools", "Processing Tools"])
        # A folder of the program's name is there too: its other label shows it.
        self.assertEqual(dict(sections(page))["General Tools"], ["KORConfig", "KORTimeScope"])
        self.assertEqual(dict(sections(page))["Processing Tools"], ["Vantrel Symbol Decoder"])
        # The version's name goes into the page as it is: its markup is read as markup.
        self.assertIn('<h2>Flow Forge 9.1 "beta" <b>Ünï視覚</b></h2>', page["innerHtml"]["Sections"])

        session.import_registry(DEMO / "damaged/long-folder.reg")
        page = session.refresh()
        # The folder was read at the start and is kept: the same links.
        self.assertEqual(dict(sections(page))["Processing Tools"], ["Vantrel Symbol Decoder"])

        session.import_registry(DEMO / "damaged/not-installed.reg")
        page = session.refresh()
        self.assertEqual(sections(page), [("This KOR hasn't been installed by a valid install", [])])
        self.end()


class LongFolder(EndToEnd):
    """An install folder of 3000 characters: no link leads anywhere, the sections stay away."""
    installation = "damaged"

    def test_gives_a_page(self):
        self.session.import_registry(DEMO / "damaged/long-folder.reg")
        page = self.session.start()
        self.assertNotIn("General Tools", dict(sections(page)))
        self.assertIn("<h2>Flow Forge 9.1", page["innerHtml"]["Sections"])
        self.end()


if __name__ == "__main__":
    unittest.main(verbosity=2)
