"""A display and a throw-away Wine prefix of a test's own, and the real launcher in them."""
import contextlib
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "wine"))
from sandbox.controlcenter import PATIENCE, TITLE, ControlCenter, wait_for  # noqa: E402, F401
from sandbox.demopage import DEVELOPMENT, LINKS, row_heights  # noqa: E402, F401
from sandbox.display import private_display  # noqa: E402
from sandbox.installation import install, windows_path  # noqa: E402, F401
from sandbox.places import BUILD, DEMO, ROOT  # noqa: E402, F401
from sandbox.prefix import throw_away  # noqa: E402


def width_of(metrics):
    """Of the window that a page gives itself at 96 DPI."""
    return metrics["SM_CXVSCROLL"] + 2 * (metrics["SM_CYDLGFRAME"] + 320)


class Session(ControlCenter):
    def __init__(self, name, dpi, installation, screen="1600x1800"):
        with contextlib.ExitStack() as stack:
            display = stack.enter_context(private_display(screen))
            super().__init__(stack.enter_context(
                throw_away(f"endtoend-{name}", DISPLAY=display, KOR_STUB_QUIET="1")))
            stack.callback(self.kill)
            self.drive = self.prefix.drive
            self.import_registry = self.prefix.import_registry
            install(self.prefix, installation, dpi)
            self.close = stack.pop_all().close

    def metrics(self):
        lines = self.prefix.run(BUILD / "release/tests/endtoend/metrics.exe").decode().splitlines()
        return {name: int(value) for name, value in (line.split() for line in lines if line.strip())}

    def wait_for_layout(self):
        """The page in the window that it gives itself at 96 DPI. Before, the window has the template's width."""
        width = width_of(self.metrics())
        return self.wait_for_page(lambda page: page["window"]["width"] < width, "the page in its window")

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
