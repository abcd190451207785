"""The launcher in a prefix: its window, its page, and what a user does with them."""
import json
import subprocess
import time

from .installation import windows_path
from .places import LAUNCHER

TITLE = "Vantrel Imaging Library >> Control Center"
# For one step of the program on a machine that is busy with other tests.
PATIENCE = 60


def wait_for(question, what, patience=PATIENCE):
    """The first answer of question() that is true; polls until the deadline."""
    deadline = time.monotonic() + patience
    while True:
        answer = question()
        if answer:
            return answer
        if time.monotonic() > deadline:
            raise AssertionError(f"waited {patience} s for {what}")
        time.sleep(0.02)


class ControlCenter:
    """prefix: its environment names the display, too."""

    def __init__(self, prefix):
        self.prefix = prefix
        self.program = LAUNCHER
        self.page_file = prefix.path / "page.json"
        self.launcher = None
        self.window = None

    def open(self):
        """Starts the launcher and waits for its window."""
        self.page_file.unlink(missing_ok=True)
        # The HTML stand-in describes there what it shows.
        self.launcher = self.prefix.start(
            self.program, cwd=self.prefix.drive,
            env={**self.prefix.environment, "KOR_HTML_TRACE": windows_path(self.page_file)})
        search = "search", "--onlyvisible", "--name", f"^{TITLE}$"
        found = wait_for(lambda: self.alive() and self.xdotool(*search), "the window")
        self.window = found.split()[0]

    def start(self):
        """The launcher's page, once it is filled."""
        self.open()
        return self.wait_for_page(lambda page: page["writes"] >= 1, "the page")

    def alive(self):
        if self.launcher.poll() is not None:
            raise AssertionError(f"the launcher ended with {self.launcher.returncode}")
        return True

    def page(self):
        """What the HTML document shows now; None before it shows anything."""
        try:
            return json.loads(self.page_file.read_text(encoding="utf-8"))
        except FileNotFoundError:
            return None

    def wait_for_page(self, accepted, what):
        def answer():
            page = self.alive() and self.page()
            return page if page and accepted(page) else None
        return wait_for(answer, what)

    def geometry(self):
        """WIDTH, HEIGHT, X and Y of the window, and more."""
        lines = self.xdotool("getwindowgeometry", "--shell", self.window).split()
        return {name: int(value) for name, value in (line.split("=") for line in lines)}

    def size(self):
        geometry = self.geometry()
        return geometry["WIDTH"], geometry["HEIGHT"]

    def save_picture(self, file):
        """The window's picture, once two taken in a row are the same."""
        before = None

        def at_rest():
            nonlocal before
            self.tool("import", "-window", self.window, f"png:{file}")
            last, before = before, self.tool("convert", f"png:{file}", "rgb:-")
            # Before it is painted it is still, too, but has no banner.
            return before == last and len(set(zip(*[iter(before)] * 3))) > 1000
        self.xdotool("windowfocus", self.window)
        wait_for(at_rest, "the page to come to rest")

    def press_alt_f4(self):
        # F4 comes up before Alt: "key alt+F4" lets go of Alt first, and then it is none any more.
        self.xdotool("windowfocus", self.window, "keydown", "alt", "keydown", "F4",
                     "keyup", "F4", "keyup", "alt")

    def end(self, patience=PATIENCE):
        """Ends the launcher as a user does; its exit code."""
        self.press_alt_f4()
        return self.launcher.wait(patience)

    def kill(self):
        if self.launcher:
            self.launcher.kill()
            self.launcher.wait()

    def xdotool(self, *arguments):
        return self.tool("xdotool", *map(str, arguments), check=False,
                         stderr=subprocess.DEVNULL).decode()

    def tool(self, *command, check=True, **options):
        """What a program of the display printed."""
        return subprocess.run(command, env=self.prefix.environment, check=check, timeout=PATIENCE,
                              stdout=subprocess.PIPE, **options).stdout
