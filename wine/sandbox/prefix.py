"""A Wine prefix: what it is made from, its registry, and the programs that run in it."""
import contextlib
import fcntl
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

from . import regfile
from .places import BUILD, HOME, SYSTEM, TEMPLATE, TEMPLATE_READY, WINE, WINESERVER
from .say import say

# How long the server of a throw-away prefix stays without programs. It ends by itself where what
# was to end it was killed.
SERVER_SECONDS = 600
# They take a fifth of the processor time of a prefix's start, which each test pays.
UNUSED_SERVICES = ("Eventlog", "PlugPlay", "nsiproxy", "winebus", "winehid", "wineusb")
MARLETT = Path("/usr/share/wine/fonts/marlett.ttf")


class Prefix:
    def __init__(self, path, **variables):
        self.path = path
        self.drive = path / "drive_c"
        self.environment = {
            **os.environ, "WINEPREFIX": str(path), "HOME": str(HOME), "WINEARCH": "win64",
            # Where the user's X server is told who may use it, unless it is said.
            "XAUTHORITY": os.environ.get("XAUTHORITY") or str(Path.home() / ".Xauthority"),
            # The hint about the missing 32-bit part is of no use here.
            "WINEDEBUG": os.environ.get("WINEDEBUG") or "-all",
            # winemenubuilder would write into the desktop's menus.
            "WINEDLLOVERRIDES": "mscoree=d;winemenubuilder.exe=d",
            # File names beyond ASCII could not be reached without UTF-8.
            "LC_ALL": "C.UTF-8", **variables}

    def copy_template(self):
        """Makes the prefix anew, a copy of the template; files that nobody writes to are links."""
        make_template()
        shutil.rmtree(self.path, ignore_errors=True)
        subprocess.run(["cp", "-as", TEMPLATE, self.path], check=True)
        # The drives are links already; links to them would lead into the template.
        copied = *TEMPLATE.glob("*.reg"), TEMPLATE / ".update-timestamp", TEMPLATE / "dosdevices"
        subprocess.run(["cp", "-a", "--remove-destination", *copied, self.path], check=True)

    def start(self, *command, **options):
        """A program under Wine, with subprocess's options."""
        return subprocess.Popen([WINE, *map(str, command)], **{"env": self.environment, **options})

    def run(self, *command, **options):
        """What the program printed; an exception when it failed."""
        return subprocess.run([WINE, *map(str, command)], env=self.environment, check=True,
                              stdout=subprocess.PIPE, **options).stdout

    def server(self, *options, **more):
        subprocess.run([WINESERVER, *options], env=self.environment, check=False,
                       stderr=subprocess.DEVNULL, **more)

    def import_registry(self, *items):
        """Files with registry data, or their text below the first line; one start of the registry
        editor for all."""
        file = self.path / "import.reg"
        file.write_bytes(regfile.merged(items))
        self.run("regedit", "/S", file, stderr=subprocess.DEVNULL)
        file.unlink()


@contextlib.contextmanager
def throw_away(name, **variables):
    """A prefix whose server stays; both go with the context."""
    folder = BUILD / "test-prefixes"
    folder.mkdir(parents=True, exist_ok=True)
    prefix = Prefix(Path(tempfile.mkdtemp(prefix=name + "-", dir=folder)), **variables)
    try:
        prefix.copy_template()
        prefix.server(f"-p{SERVER_SECONDS}")
        yield prefix
    finally:
        prefix.server("-k")
        shutil.rmtree(prefix.path, ignore_errors=True)


def make_template():
    """The prefix that others are copied from, made once."""
    HOME.mkdir(parents=True, exist_ok=True)
    with open(BUILD / ".prefix-template.lock", "w", encoding="ascii") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        if TEMPLATE_READY.exists():
            return
        say("Making the Wine prefix template (about 10 s, once) ...")
        shutil.rmtree(TEMPLATE, ignore_errors=True)
        template = Prefix(TEMPLATE)
        template.run("wineboot", "-i", stderr=subprocess.DEVNULL)
        # A crash must not wait for a dialog; without a window manager a dialog closes at once.
        template.import_registry(
            '[HKEY_CURRENT_USER\\Software\\Wine\\WineDbg]\n"ShowCrashDialog"=dword:0\n\n'
            '[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]\n"Managed"="N"\n',
            *(f'[HKEY_LOCAL_MACHINE\\System\\CurrentControlSet\\Services\\{service}]\n"Start"=dword:4\n'
              for service in UNUSED_SERVICES))
        # This Wine does not look where Debian puts the symbols of a caption's buttons.
        marlett = template.drive / "windows/Fonts/marlett.ttf"
        if MARLETT.exists() and not marlett.exists():
            marlett.symlink_to(MARLETT)
        template.server("-w")
        # One link for each copy instead of hundreds; no test writes there.
        system = template.drive / "windows/system32"
        shutil.rmtree(SYSTEM, ignore_errors=True)
        system.rename(SYSTEM)
        system.symlink_to(SYSTEM)
        TEMPLATE_READY.touch()


if __name__ == "__main__":
    make_template()
