#!/usr/bin/env python3
"""adversary_test.py CLASS: the real launcher with an HTML engine that behaves as badly as the real one's
documentation allows. The modes are told in wine/htmldocument/README.md."""
import json
import subprocess
import unittest

from clicks_test import topic
from endtoend_test import EndToEnd, sections
from session import BUILD, DEVELOPMENT, LINKS, TITLE, wait_for, width_of

GALLERY = LINKS["KOR_0"]
VERSIONS = r"HKEY_LOCAL_MACHINE\Software\Vantrel\Vantrel Flow Forge\Installed Versions"
# A page that is not ours, with an element as ours has them.
FOREIGN = "<h2>Foreign</h2><span class=item id=KOR_0>Not the gallery</span>"


class Adversary(EndToEnd):
    modes = ""

    def setUp(self):
        super().setUp()
        self.session.prefix.environment["KOR_HTML_MODES"] = self.modes

    def left(self):
        """What the engine's library counted when it went."""
        return json.loads(self.session.page_file.with_name("page.json.end").read_text())

    def end(self):
        super().end()
        self.assertEqual(self.left()["objects"], 0)

    def expect_nothing_started(self):
        """A program that was started is there before one that is started after it."""
        session = self.session
        session.prefix.run("C:\\windows\\hh.exe", "last")
        self.assertEqual(wait_for(session.log, "the last program's line"), [topic("last")])

    def expect_page(self, what):
        """The filled page, with links that start what they should."""
        session = self.session
        page = session.wait_for_page(lambda page: page["loaded"] and sections(page) == DEVELOPMENT, what)
        lines = len(session.log())
        session.click("KOR_0")
        self.wait_for_color("KOR_0", "#ff0000", "the link under the pointer")
        self.assertEqual(wait_for(lambda: session.log()[lines:], "what the link starts"), [GALLERY])
        # The page was seen to hear of the pointer's leaving: Wine says nothing of a pointer that goes
        # and comes back at once, and a page that was loaded meanwhile would not learn where it is.
        session.point_at_heading()
        self.wait_for_color("KOR_0", "#0000ff", "the link left alone")
        return page

    def wait_for_color(self, item, color, what):
        self.session.wait_for_page(lambda page: self.box(item, page)["color"] == color, what)

    def box(self, item, page=None):
        return next(box for box in (page or self.session.page())["boxes"] if box["id"] == item)

    def right_click(self):
        self.session.point_at_heading()
        self.session.xdotool("click", 3)


class Refresh(Adversary):
    """The engine loads the page again and says nothing but that a download began and ended."""
    modes = "silent-refresh,own-refresh-key,late-complete"

    def test_refresh_key_of_the_keyboard(self):
        session = self.session
        session.start()
        writes = self.expect_page("the page")["writes"]
        for _ in range(3):
            session.prefix.run(BUILD / "release/tests/endtoend/refreshkey.exe", TITLE)
            session.wait_for_page(lambda page: page["writes"] > writes, "the page filled after a refresh")
            writes = self.expect_page("the page after a refresh")["writes"]
        self.end()


class ContextMenu(Adversary):
    modes = "context-menu,silent-refresh"

    def test_there_is_none(self):
        session = self.session
        session.start()
        self.expect_page("the page")
        self.right_click()
        session.xdotool("key", "Menu")
        # What a menu would take from the pointer reaches the page.
        self.expect_page("the page after a right click")
        self.assertEqual(session.page()["menus"], 0)
        self.end()


class Keys(Adversary):
    """However the engine handles keys, F5 fills the page once and Alt+F4 ends the program."""

    def test_each_way(self):
        session = self.session
        for modes in ["", "no-key-ups", "asked-after-click", "own-refresh-key", "no-key-ups,own-refresh-key",
                      "asked-after-click,own-refresh-key,silent-refresh", "asked-after-click,no-key-ups", "worst"]:
            session.prefix.environment["KOR_HTML_MODES"] = modes
            for clicks in (False, True):
                with self.subTest(modes=modes, clicks=clicks):
                    try:
                        self.refresh_and_end(clicks)
                    finally:
                        session.kill()

    def refresh_and_end(self, clicks):
        session = self.session
        session.start()
        session.wait_for_page(lambda page: page["loaded"] and sections(page) == DEVELOPMENT, "the page")
        if clicks:
            session.point_at_heading()
            session.xdotool("click", 1)
        writes = session.page()["writes"]
        for presses in (1, 2, 3):
            session.refresh()
            # Whatever else was to come of the key has come when the pointer's way has been seen.
            self.move_over("KOR_1")
            self.assertEqual(session.page()["writes"], writes + presses)
        self.assertEqual(sections(session.page()), DEVELOPMENT)
        self.end()

    def move_over(self, item):
        session = self.session
        session.point_at_heading()
        session.point_at(item)
        self.wait_for_color(item, "#ff0000", "the link under the pointer")
        session.point_at_heading()
        self.wait_for_color(item, "#0000ff", "the link left alone")


class Drops(Adversary):
    modes = "drops"

    def test_a_file_does_not_replace_the_page(self):
        session = self.session
        (session.drive / "foreign.htm").write_text(FOREIGN)
        page = session.start()
        url = page["url"]
        dropper = session.prefix.start(BUILD / "release/tests/endtoend/dropper.exe", "C:\\foreign.htm",
                                       stdout=subprocess.PIPE)
        try:
            wait_for(lambda: session.xdotool("search", "--onlyvisible", "--name", "^Dropper$"), "the dropper")
            session.xdotool("mousemove", 1500, 1700, "mousedown", 1)
            for _ in range(3):
                session.point_at("KOR_0")
                session.point_at_heading()
            session.xdotool("mouseup", 1)
            effect = int(dropper.communicate(timeout=60)[0])
        finally:
            dropper.kill()
        self.assertEqual(effect, 0)
        self.expect_page("the page after a drop")
        self.assertEqual(session.page()["url"], url)
        self.end()


class Leaving(Adversary):
    """A version whose name is a link: texts of the registry go into the page as they are."""
    target = ""

    def start(self):
        session = self.session
        (session.drive / "foreign.htm").write_text(FOREIGN)
        session.import_registry(
            f'[{VERSIONS}\\5.0 <a id=away {self.target} href=file:///C:/foreign.htm>away</a>]\n'
            '"InstallationPath"="C:\\\\Program Files\\\\Vantrel Flow Forge 3.0"\n')
        page = session.start()
        self.assertIn("Flow Forge 5.0 away", dict(sections(page)))
        return page

    def expect_same_page(self, url):
        session = self.session
        session.click("KOR_0")
        self.assertEqual(wait_for(session.log, "what the link starts"), [GALLERY])
        page = session.page()
        self.assertEqual((page["url"], page["newWindows"]), (url, 0))
        self.assertIn("Flow Forge 5.0 away", dict(sections(page)))
        self.end()

    def test_the_page_stays(self):
        url = self.start()["url"]
        self.session.click("away")
        self.expect_same_page(url)


class NewWindow(Leaving):
    target = "target=_blank"


class ForeignPage(Leaving):
    """A navigation that nobody was asked about."""
    modes = "unasked-navigation"

    def test_the_page_stays(self):
        """It does not here; but its elements start nothing, and the program ends as ever."""
        session = self.session
        self.start()
        session.click("away")
        session.wait_for_page(lambda page: page["loaded"] and [title for title, _ in sections(page)] == ["Foreign"],
                              "the foreign page")
        session.click("KOR_0")
        session.point_at_heading()
        session.xdotool("key", "F5")
        session.click("KOR_0")
        self.end()
        self.expect_nothing_started()


class FailedNavigation(Adversary):
    modes = "navigation-fails"

    def test_no_error_page(self):
        session = self.session
        session.open()
        session.wait_for_page(lambda page: page["window"]["width"] > 0, "the engine's window")
        self.end()
        self.assertEqual(session.page()["boxes"], [])


class StaleSinks(Adversary):
    modes = "stale-sinks"

    def test_nothing_starts_at_the_end(self):
        session = self.session
        session.start()
        session.point_at("KOR_0")
        self.wait_for_color("KOR_0", "#ff0000", "the link under the pointer")
        self.end()
        self.expect_nothing_started()


class SmallScreen(Adversary):
    """A netbook's: the dialog's template is larger than it."""
    screen = "1024x600"
    modes = "late-complete"  # the window stands there for a while before it is filled

    def test_nothing_larger_is_shown(self):
        session = self.session
        session.open()
        unfilled = []

        def is_filled():
            geometry = session.geometry()
            page = session.alive() and session.page()
            if page and page["writes"] == 0:
                unfilled.append((geometry["WIDTH"], geometry["HEIGHT"]))
            return page and page["writes"] > 0
        wait_for(is_filled, "the page")
        self.assertTrue(unfilled, "the window was seen before its page was filled")
        self.assertLessEqual(max(width for width, _ in unfilled), 1024)
        self.assertLessEqual(max(height for _, height in unfilled), 600)
        self.expect_size(width_of(session.metrics()), 600)
        self.end()


class ClosedOnALink(Adversary):
    """Closed where an element of the page is held, and within an event of the page."""

    def hover(self):
        session = self.session
        session.start()
        session.point_at("KOR_0")
        session.wait_for_page(lambda page: self.box("KOR_0", page)["color"] == "#ff0000", "the link under the pointer")

    def test_with_the_mouse_on_it(self):
        self.hover()
        self.end()

    def test_in_the_middle_of_its_click(self):
        """The shell's message about a program that is gone meanwhile keeps the event from ending."""
        session = self.session
        self.hover()
        (session.drive / "Program Files/Vantrel Imaging/Tools/SampleGallery.exe").unlink()
        session.xdotool("click", 1)
        windows = "search", "--onlyvisible", "--name", "."
        wait_for(lambda: len(session.xdotool(*windows).split()) > 1, "the shell's message")
        # Asks every window of the program to close.
        session.prefix.run("taskkill", "/IM", "korcontrolcenter.exe")
        self.assertEqual(session.launcher.wait(60), 0)
        self.assertEqual(self.left()["objects"], 0)


class Questions(Adversary):
    modes = "asks-everything"

    def test_answered_by_the_rules(self):
        page = self.session.start()
        self.assertEqual(page["oddities"], "")
        # Pictures, no Java, no control loaded, none run.
        self.assertEqual(page["downloadControl"], 0x10 | 0x100 | 0x400 | 0x200)
        self.end()


class Focus(Adversary):
    def test_the_complete_page_has_it(self):
        self.session.start()
        self.session.wait_for_page(lambda page: page["focus"], "the focus in the page")
        self.end()


class FocusAtOnce(Focus):
    """The page is complete before the window is shown."""
    modes = "at-once"


class Refused(Adversary):
    """The document has no more than it must: nothing can be filled, and the program ends as ever."""
    modes = "refuses-optional"

    def test_it_starts_and_ends(self):
        session = self.session
        session.open()
        session.wait_for_page(lambda page: page["loaded"], "the engine's page")
        self.assertEqual(sections(session.page()), [])
        self.end()


class Failures(Adversary):
    """Each call that the start makes to the engine fails once, in order: the program shows its window, ends
    with 0 and leaves nothing behind. Where the failure does not matter, the page is there."""

    def test_each_call_of_the_start(self):
        session = self.session
        left = session.page_file.with_name("page.json.end")
        filled = 0
        failing = 1
        while True:
            session.prefix.environment["KOR_HTML_MODES"] = f"fail={failing}"
            left.unlink(missing_ok=True)
            with self.subTest(failing=failing):
                session.open()
                filled += self.is_filled()
                self.assertEqual(session.end(), 0)
                self.assertEqual(self.left()["objects"], 0)
            if self.left()["calls"] < failing:
                break
            failing += 1
        print(f"{failing - 1} calls, each failed once; the page was filled {filled} times")
        self.assertGreater(failing, 40)

    def is_filled(self):
        """Whether the page is there; where it does not come, some time must do."""
        try:
            wait_for(lambda: (page := self.session.page()) and sections(page) == DEVELOPMENT, "the page", 2)
        except AssertionError:
            return False
        return True


if __name__ == "__main__":
    unittest.main(verbosity=2)
