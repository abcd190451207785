#!/usr/bin/env python3
"""The installer under Wine's Windows Installer: what it puts on the machine, what it replaces, refuses and
removes, all without a question."""
import re
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "endtoend"))
from session import BUILD, ROOT, Session, private_display, throw_away, windows_path  # noqa: E402

sys.path.insert(0, str(ROOT))
from shipping import contents, msi, product  # noqa: E402

VERSION = product.version()
OLDER = "0.9.0"
INSTALLED, _ = contents.shipped(BUILD)
UNINSTALL = r"HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\Uninstall"
MAKER_FOLDER, PRODUCT_FOLDER = product.FOLDERS
# Only the low eight bits of an exit code arrive from Wine.
REFUSED = 1603 & 0xFF


class Installer(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.new, cls.old = folder / "new.msi", folder / "old.msi"
        cls.display = cls.enterClassContext(private_display("1600x1200"))
        msi.make(cls.new, INSTALLED, VERSION)
        msi.make(cls.old, {**INSTALLED, "docs/dropped.md": b"The next version is without it."}, OLDER)

    def setUp(self):
        self.use(self.enterContext(throw_away("msi", DISPLAY=self.display)))

    def use(self, prefix):
        self.prefix, self.drive = prefix, prefix.drive
        self.target = self.drive / "Program Files" / MAKER_FOLDER / PRODUCT_FOLDER

    def msiexec(self, *arguments):
        """The exit code; services that it starts would keep a pipe open."""
        silent = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        return self.prefix.start("msiexec", *arguments, "/qn", **silent).wait(120)

    def files(self):
        """All files and folders of the drive but the installer's own store."""
        found = {str(path.relative_to(self.drive)) for path in self.drive.rglob("*")}
        # It is a link, into which rglob does not go.
        found |= {f"windows/system32/{path.name}" for path in (self.drive / "windows/system32").iterdir()}
        return {path for path in found if not path.startswith("windows/Installer")}

    def registry(self):
        """The keys of the machine's software, without Windows Installer's own book-keeping."""
        file = self.drive / "keys.reg"
        self.prefix.run("regedit", "/E", r"C:\keys.reg", r"HKEY_LOCAL_MACHINE\Software")
        keys = set(re.findall(r"^\[(.*)\]", file.read_text("utf-16"), re.MULTILINE))
        file.unlink()
        return {key for key in keys if "\\Installer" not in key}

    def entry(self, version):
        """What the list of installed programs knows of a version."""
        key = f"{UNINSTALL}\\{msi.product_code(version)}"
        file = self.drive / "entry.reg"
        self.prefix.run("regedit", "/E", r"C:\entry.reg", UNINSTALL)
        text = file.read_text("utf-16")
        file.unlink()
        if f"[{key}]" not in text:
            return None
        values = text.split(f"[{key}]")[1].split("\n[")[0]
        return dict(re.findall(r'^"(\w+)"="(.*)"', values, re.MULTILINE))

    def assert_installed(self, version=VERSION, target=None, files=INSTALLED):
        target = target or self.target
        there = {str(path.relative_to(target)): path.read_bytes() for path in target.rglob("*") if path.is_file()}
        self.assertEqual(there.keys(), files.keys())
        self.assertEqual([name for name in files if there[name] != files[name]], [])
        entry = self.entry(version)
        self.assertEqual({name: entry[name] for name in ("DisplayName", "DisplayVersion", "Publisher")},
                         {"DisplayName": product.NAME, "DisplayVersion": version, "Publisher": product.MAKER})
        self.assertTrue(entry["InstallLocation"].endswith(f"{target.name}\\\\"), entry["InstallLocation"])

    def machine(self):
        return self.files(), self.registry()

    def shortcuts(self):
        return [path for path in self.drive.rglob("*.lnk") if path.stem == product.NAME]

    def test_installs_every_file_with_an_entry_and_a_shortcut(self):
        self.assertEqual(self.msiexec("/i", windows_path(self.new)), 0)
        self.assert_installed()
        shortcut, = self.shortcuts()
        self.assertIn("Start Menu", str(shortcut))
        self.assertIn(f"{PRODUCT_FOLDER}\\korcontrolcenter.exe".encode(), shortcut.read_bytes())
        icons = [path for path in (self.drive / "windows/Installer").rglob("product.ico")]
        self.assertEqual([icon.read_bytes() for icon in icons], [msi.ICON.read_bytes()])

    def test_both_programs_start_from_where_they_were_installed(self):
        session = Session("msi", 96, "runtime")
        self.addCleanup(session.close)
        self.use(session.prefix)
        self.assertEqual(self.msiexec("/i", windows_path(self.new)), 0)
        session.program = self.target / "korcontrolcenter.exe"
        page = session.start()["innerHtml"]["Sections"]
        self.assertEqual(session.prefix.run(self.target / "kordiag.exe", "page").decode(), page)
        self.assertEqual(session.end(), 0)

    def test_a_removal_leaves_nothing(self):
        files, registry = self.machine()
        self.assertEqual(self.msiexec("/i", windows_path(self.new)), 0)
        self.assertIn(rf"HKEY_LOCAL_MACHINE\{msi.FOLDER_KEY}", self.registry() - registry)
        self.assertEqual(self.msiexec("/x", msi.product_code(VERSION)), 0)
        self.assertEqual(self.machine(), (files, registry))

    def test_a_removal_leaves_what_others_put_beside_it(self):
        self.assertEqual(self.msiexec("/i", windows_path(self.new)), 0)
        other = self.target.parent / "Tools/GrabStudio.exe"
        other.parent.mkdir()
        other.touch()
        self.assertEqual(self.msiexec("/x", msi.product_code(VERSION)), 0)
        self.assertTrue(other.exists())
        self.assertFalse(self.target.exists())

    def test_an_upgrade_replaces_the_older_version_where_it_was_put(self):
        chosen = self.drive / "Own Folder/Center"
        # The quotes belong around the value, which only a command line written out can say.
        (self.drive / "install.cmd").write_text(
            f'msiexec /i {windows_path(self.old)} INSTALLDIR="C:\\Own Folder\\Center" /qn\n')
        self.prefix.run("cmd", "/c", r"C:\install.cmd")
        self.assertTrue((chosen / "docs/dropped.md").exists())
        self.assertEqual(self.msiexec("/i", windows_path(self.new)), 0)
        self.assert_installed(target=chosen)
        self.assertIsNone(self.entry(OLDER))
        self.assertFalse(self.target.exists())
        self.assertEqual(len(self.shortcuts()), 1)

    def test_a_downgrade_is_refused_and_changes_nothing(self):
        self.assertEqual(self.msiexec("/i", windows_path(self.new)), 0)
        before = self.machine()
        self.assertEqual(self.msiexec("/i", windows_path(self.old)), REFUSED)
        self.assertEqual(self.machine(), before)
        self.assert_installed()

    def test_a_repair_puts_back_what_was_deleted_or_spoilt(self):
        self.assertEqual(self.msiexec("/i", windows_path(self.new)), 0)
        (self.target / "kordiag.exe").unlink()
        (self.target / "docs/kordiag.md").write_text("spoilt")
        # Wine does not know msiexec /f with a product code, which asks for the same.
        self.assertEqual(self.msiexec("/i", windows_path(self.new), "REINSTALL=ALL", "REINSTALLMODE=amus"), 0)
        self.assert_installed()

    def test_a_file_that_cannot_be_written_takes_everything_back(self):
        # A folder stands where the program belongs.
        (self.target / "kordiag.exe/kept").mkdir(parents=True)
        before = self.machine()
        self.assertEqual(self.msiexec("/i", windows_path(self.new)), REFUSED)
        self.assertEqual(self.machine(), before)
        self.assertIsNone(self.entry(VERSION))


class Bytes(unittest.TestCase):
    def test_are_the_same_wherever_and_whenever_it_is_made(self):
        with tempfile.TemporaryDirectory() as folder:
            first, again, other = (Path(folder) / name for name in ("first", "deeper/again", "other"))
            again.parent.mkdir()
            msi.make(first, INSTALLED, VERSION)
            msi.make(other, {**INSTALLED, "README.md": b"x"}, VERSION)
            # The times in a cabinet count by two seconds.
            time.sleep(2.1)
            msi.make(again, INSTALLED, VERSION)
            self.assertTrue(again.read_bytes() == first.read_bytes())
            # The package's code tells what else is not the same.
            codes = [subprocess.run(["msiinfo", "suminfo", file], check=True, capture_output=True, text=True).stdout
                     for file in (first, other)]
            self.assertNotEqual(*codes)


if __name__ == "__main__":
    unittest.main()
