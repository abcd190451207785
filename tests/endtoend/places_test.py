#!/usr/bin/env python3
"""places_test.py CLASS: the real launcher in folders that are not its own choice."""
import shutil
import subprocess
import unittest

from endtoend_test import EndToEnd, sections
from session import BUILD, DEVELOPMENT

# Names that are loaded by name in programs of this kind, here or on Windows: by the shell, the
# window manager, COM's and the HTML engine's DLLs. What Wine's own DLLs load before the program's
# entry point (shcore, uxtheme, bcrypt, crypt32, version) is not among them: no program can help that.
PLANTED = """actxprxy cryptbase cryptsp dwmapi ieframe iertutil mlang mpr mshtml msimtf netapi32 profapi propsys
    rsaenh secur32 shdocvw sspicli urlmon userenv windowscodecs wininet winmm wtsapi32""".split()


class Places(EndToEnd):
    def start_in(self, name):
        """The page of a launcher that lies in the folder of drive C."""
        folder = self.session.drive / name
        folder.mkdir(exist_ok=True)
        self.session.program = folder / "korcontrolcenter.exe"
        shutil.copy(BUILD / "release/app/korcontrolcenter.exe", self.session.program)
        return self.session.start()


class FolderNames(Places):
    def test_do_not_matter(self):
        for folder in ("a%41b", "a%20b", "C#", "a b;c&d+e[f]'", "Ünï視覚"):
            with self.subTest(folder):
                page = self.start_in(folder)
                self.assertEqual(sections(page), DEVELOPMENT)
                self.assertTrue(next(box for box in page["boxes"] if box["tag"] == "img")["loaded"])
                self.end()
                self.session.page_file.unlink()


class PlantedDlls(Places):
    def test_are_not_loaded(self):
        folder = self.session.drive / "planted"
        folder.mkdir()
        for name in PLANTED:
            shutil.copy(BUILD / "release/tests/endtoend/planted.dll", folder / f"{name}.dll")
        # As Windows does: Wine would take its own before any other.
        self.session.prefix.environment["WINEDLLOVERRIDES"] += f";{','.join(PLANTED)}=n,b"
        with self.subTest("the launcher"):
            self.assertEqual(sections(self.start_in("planted")), DEVELOPMENT)
            self.end()
            self.expect_none_loaded()
        shutil.copy(BUILD / "release/diag/kordiag.exe", folder)
        # Wine registers the engine with its whole path; by its name alone it is looked for.
        self.session.import_registry(
            "[HKEY_LOCAL_MACHINE\\Software\\Classes\\CLSID\\{8856F961-340A-11D0-A96B-00C04FD705A2}"
            '\\InprocServer32]\n@="ieframe.dll"\n')
        for command, answer in (("report", "Vantrel Sample Gallery"), ("check", "0 warnings")):
            with self.subTest(f"kordiag {command}"):
                kordiag = self.session.prefix.start(folder / "kordiag.exe", command, cwd=folder,
                                                    stdout=subprocess.PIPE)
                self.assertIn(answer, kordiag.communicate()[0].decode())
                self.expect_none_loaded()

    def expect_none_loaded(self):
        log = self.session.drive / "planted.log"
        self.assertEqual(log.read_text("utf-16-le").splitlines() if log.exists() else [], [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
