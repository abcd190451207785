"""Throw-away Wine prefixes, and kordiag.exe started in them."""
import json
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
BUILD = ROOT / "build"
WINE = ROOT / "wine" / "wine.sh"
WINESERVER = shutil.which("wineserver") or "/usr/lib/wine/wineserver"


class Prefix:
    """installation: a folder of wine/demo, or none for an empty prefix."""

    def __init__(self, program, *installation):
        self.program = program
        folder = BUILD / "test-prefixes"
        folder.mkdir(parents=True, exist_ok=True)
        self.path = Path(tempfile.mkdtemp(prefix="kordiag-", dir=folder))
        try:
            subprocess.run(["bash", Path(__file__).with_name("prefix.sh"), self.path, *installation], check=True)
        except BaseException:
            self.end_server()
            raise
        # Without a desktop that stays, each program that asks for the screen makes one: 1.2 s.
        self.desktop = self.start("/desktop", program="explorer.exe", stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL)

    def close(self):
        self.end_server()
        self.desktop.wait(timeout=30)

    def end_server(self):
        subprocess.run([WINESERVER, "-k"], env=self.environment(), check=False)
        shutil.rmtree(self.path, ignore_errors=True)

    def environment(self, **variables):
        return {**os.environ, "WINEPREFIX": str(self.path), "WINEDEBUG": "-all", "LC_ALL": "C.UTF-8",
                "WINEDLLOVERRIDES": "mscoree=d;winemenubuilder.exe=d",
                "HOME": str(BUILD / "scratch-home"), **variables}

    def start(self, *arguments, program=None, variables=None, **options):
        options.setdefault("stdout", subprocess.PIPE)
        options.setdefault("stderr", subprocess.PIPE)
        return subprocess.Popen([WINE, program or self.program, *arguments],
                                env=self.environment(**(variables or {})), **options)

    def run(self, *arguments, **options):
        """Exit code, standard output and standard error, as bytes."""
        process = self.start(*arguments, **options)
        out, err = process.communicate(timeout=120)
        return process.returncode, out, err

    def json(self, *arguments, **options):
        code, out, err = self.run(*arguments, "--json", **options)
        assert not err, err
        assert out.endswith(b"\n") and out.count(b"\n") == 1, "one document and nothing else"
        return code, json.loads(out.decode("utf-8"))

    def export_registry(self):
        """The library's part of the registry, as text."""
        exports = []
        for hive in ("HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER"):
            file = self.path / "export.reg"
            subprocess.run([WINE, "regedit", "/E", file, hive + "\\Software"], env=self.environment(), check=True)
            exports.append(file.read_text("utf-16"))
            file.unlink()
        return exports

    def import_registry(self, text):
        file = self.path / "import.reg"
        file.write_bytes(("\ufeffWindows Registry Editor Version 5.00\r\n\r\n" + text.replace("\n", "\r\n"))
                         .encode("utf-16-le", "surrogatepass"))
        subprocess.run([WINE, "regedit", "/S", file], env=self.environment(), check=True)
        file.unlink()
