"""A display and a throw-away Wine prefix of a test's own, and the real launcher in them."""
import json
import os
import shutil
import subprocess
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
DEMO = ROOT / "wine/demo"
BUILD = ROOT / "build"
TITLE = "Vantrel Imaging Library >> Control Center"
# For one step of the program on a machine that is busy with other tests.
PATIENCE = 60


def wait_for(question, what):
    """The first answer of question() that is true; polls until the deadline."""
    deadline = time.monotonic() + PATIENCE
    while True:
        answer = question()
        if answer:
            return answer
        if time.monotonic() > deadline:
            raise AssertionError(f"waited {PATIENCE} s for {what}")
        time.sleep(0.02)


def reg_file(session, text):
    """A file to import into the session's registry."""
    file = session.prefix / "change.reg"
    file.write_text("Windows Registry Editor Version 5.00\n\n" + text)
    return file


class Session:
    def __init__(self, name, dpi, installation):
        self.prefix = BUILD / "test-prefixes" / f"endtoend-{name}-{os.getpid()}"
        self.drive = self.prefix / "drive_c"
        self.page_file = self.prefix / "page.json"
        # Without -noreset it throws its clients out when the last one goes, and a next one that just comes.
        self.display = subprocess.Popen(
            ["Xvfb", "-displayfd", "1", "-screen", "0", "1600x1800x24", "-nolisten", "tcp", "-noreset"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        number = self.display.stdout.readline().decode().strip()
        assert number, "Xvfb did not start"
        self.environment = dict(
            os.environ, DISPLAY=f":{number}", WINEPREFIX=str(self.prefix), HOME=str(BUILD / "scratch-home"),
            KOR_HTML_TRACE="Z:" + str(self.page_file).replace("/", "\\"), KOR_STUB_QUIET="1")
        self.program = BUILD / "release/app/korcontrolcenter.exe"
        self.launcher = None
        try:
            self.script("kor_install_into", self.prefix, dpi, "picture", "",
                        DEMO / "viewers.txt", DEMO / installation / "files.txt",
                        DEMO / "viewers.reg", DEMO / installation / "registry.reg")
        except BaseException:
            self.close()
            raise

    def close(self):
        if self.launcher and self.launcher.poll() is None:
            self.launcher.kill()
        self.script('"$kor_wineserver"', "-k", check=False)
        self.display.terminate()
        self.display.wait()
        self.display.stdout.close()
        shutil.rmtree(self.prefix, ignore_errors=True)

    def script(self, command, *arguments, check=True):
        """Runs a command of the scripts under wine/ and gives back what it printed."""
        return subprocess.run(
            ["bash", "-c", f'source wine/common.sh; source wine/installation.sh; {command} "$@"', "bash",
             *map(str, arguments)],
            cwd=ROOT, env=self.environment, check=check, timeout=2 * PATIENCE, stdout=subprocess.PIPE,
            text=True).stdout

    def import_registry(self, *files):
        self.script("kor_import", *files)

    def metrics(self):
        lines = self.script('"$kor_wine"', BUILD / "release/tests/endtoend/metrics.exe").split("\n")
        return {name: int(value) for name, value in (line.split() for line in lines if line.strip())}

    def start(self):
        self.launcher = subprocess.Popen(
            ["bash", "-c", 'source wine/common.sh; cd "$WINEPREFIX/drive_c" && exec "$kor_wine" "$1"', "bash",
             str(self.program)], cwd=ROOT, env=self.environment)
        self.window = wait_for(lambda: self.alive() and self.xdotool("search", "--onlyvisible", "--name", f"^{TITLE}$"),
                               "the window").split()[0]
        return self.wait_for_page(lambda page: page["writes"] >= 1, "the page")

    def alive(self):
        assert self.launcher.poll() is None, f"the launcher ended with {self.launcher.returncode}"
        return True

    def page(self):
        """What the HTML document shows now; None before it shows anything."""
        try:
            return json.loads(self.page_file.read_text())
        except FileNotFoundError:
            return None

    def wait_for_page(self, accepted, what):
        return wait_for(lambda: self.alive() and (page := self.page()) and accepted(page) and page, what)

    def refresh(self):
        """Presses F5 and gives back the page that was written for it. The window gets its size after that."""
        before = self.page()["writes"]
        self.xdotool("windowfocus", self.window, "key", "F5")
        return self.wait_for_page(lambda page: page["writes"] > before, "the page after F5")

    def point_into(self, box):
        """Near its upper left corner: between the lines of a label that was wrapped there is no link."""
        window = self.page()["window"]
        self.xdotool("mousemove", window["x"] + box["x"] + 5, window["y"] + box["y"] + 6)

    def point_at(self, item_id):
        self.point_into(next(box for box in self.page()["boxes"] if box["id"] == item_id))

    def point_at_heading(self):
        self.point_into(next(box for box in self.page()["boxes"] if box["tag"] == "h2"))

    def click(self, item_id):
        self.point_at(item_id)
        self.xdotool("click", 1)

    def turn_wheel(self):
        """One notch down; the page that has scrolled."""
        before = self.page()["scrollTop"]
        self.xdotool("click", 5)
        return self.wait_for_page(lambda page: page["scrollTop"] > before, "the page to scroll")

    def scroll_to(self, item_id):
        """Turns the wheel until the item is in sight."""
        page = self.page()
        while next(box for box in page["boxes"] if box["id"] == item_id)["y"] + 40 > page["window"]["height"]:
            page = self.turn_wheel()

    def log(self):
        """The command lines of the programs that were started."""
        file = self.drive / "stub.log"
        return file.read_text().splitlines() if file.exists() else []

    def size(self):
        shell = dict(line.split("=") for line in self.xdotool("getwindowgeometry", "--shell", self.window).split())
        return int(shell["WIDTH"]), int(shell["HEIGHT"])

    def save_picture(self, file):
        """The window's picture, once the banner's many colours are in it."""
        def taken():
            subprocess.run(["import", "-window", self.window, file], env=self.environment, check=True)
            return int(subprocess.run(["identify", "-format", "%k", file], check=True, stdout=subprocess.PIPE,
                                      text=True).stdout) > 1000
        wait_for(taken, "the painted page")

    def end(self):
        """Ends the launcher as a user does; its exit code."""
        # F4 comes up before Alt: "key alt+F4" lets go of Alt first, and then it is no Alt+F4 any more.
        self.xdotool("windowfocus", self.window, "keydown", "alt", "keydown", "F4", "keyup", "F4", "keyup", "alt")
        return self.launcher.wait(PATIENCE)

    def xdotool(self, *arguments):
        return subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, timeout=PATIENCE,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout
