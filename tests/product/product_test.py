#!/usr/bin/env python3
"""product_test.py BUILD PROGRAM...: what must hold of the finished programs' files. The first one is
the launcher."""
import re
import shlex
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path
from xml.etree import ElementTree

from pe import Program

ROOT = Path(__file__).resolve().parents[2]
VERSION = re.search(r"VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text().split("project(")[1])[1]
BUILD = None
PROGRAMS = []

# Present in every Windows 7 and later, and never taken from the program's own folder: all are in
# the list of known DLLs but the common controls, which the manifest redirects.
SYSTEM_DLLS = {"advapi32.dll", "comctl32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll",
               "oleaut32.dll", "shell32.dll", "shlwapi.dll", "user32.dll"}
HIGH_ENTROPY_VA, DYNAMIC_BASE, NX_COMPAT = 0x20, 0x40, 0x100
RT_DIALOG, RT_GROUP_ICON, RT_VERSION, RT_HTML, RT_MANIFEST = 5, 14, 16, 23, 24


class EveryProgram(unittest.TestCase):
    def test_needs_only_windows(self):
        for path in PROGRAMS:
            with self.subTest(path.name):
                imports = Program(path).imports()
                self.assertTrue(imports)
                self.assertEqual(set(imports) - SYSTEM_DLLS, set())

    def test_is_hardened(self):
        for path in PROGRAMS:
            for flag in (HIGH_ENTROPY_VA, DYNAMIC_BASE, NX_COMPAT):
                with self.subTest(path.name, flag=hex(flag)):
                    self.assertTrue(Program(path).characteristics & flag)

    def test_is_made_for_windows_7_and_later(self):
        for path in PROGRAMS:
            with self.subTest(path.name):
                program = Program(path)
                self.assertEqual((program.os_version, program.subsystem_version), ((6, 1), (6, 1)))

    def test_is_stripped(self):
        for path in PROGRAMS:
            with self.subTest(path.name):
                program = Program(path)
                self.assertEqual(program.symbols, 0)
                self.assertFalse([name for name, *_ in program.sections if name.startswith(".debug")])

    def test_links_to_the_same_bytes_again(self):
        for path in PROGRAMS:
            with self.subTest(path.name):
                self.assertEqual(self.link_again(path), path.read_bytes())

    def link_again(self, path):
        target = path.relative_to(BUILD).as_posix()
        command = subprocess.run(["ninja", "-C", str(BUILD), "-t", "commands", "-s", target],
                                 check=True, capture_output=True, text=True).stdout.strip()
        self.assertIn(f"-o {target} ", command)
        with tempfile.TemporaryDirectory() as folder:
            again = Path(folder) / path.name
            command = command.replace(f"-o {target} ", f"-o {shlex.quote(str(again))} ")
            command = command.replace(f"--out-implib,{path.parent.relative_to(BUILD).as_posix()}/",
                                      f"--out-implib,{folder}/")
            subprocess.run(command, shell=True, check=True, cwd=BUILD, capture_output=True)
            return again.read_bytes()


class Launcher(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.path = PROGRAMS[0]
        cls.program = Program(cls.path)
        cls.resources = cls.program.resources()

    def test_is_small(self):
        self.assertLessEqual(self.path.stat().st_size, 450 * 1024)

    def test_is_a_64_bit_window_program(self):
        self.assertEqual((self.program.machine, self.program.subsystem), (0x8664, 2))

    def test_dialog_template(self):
        data = self.resources[RT_DIALOG, 102]
        version, signature, _, extended, style, controls, _, _, width, height = struct.unpack_from(
            "<HHIIIHhhhh", data)
        self.assertEqual((version, signature, controls, width, height), (1, 0xFFFF, 0, 603, 580))
        self.assertEqual(extended, 0x00040000)  # WS_EX_APPWINDOW
        popup, visible, caption, menu, frame, minimize = (
            0x80000000, 0x10000000, 0x00C00000, 0x00080000, 0x00040000, 0x00020000)
        setfont, fixedsys = 0x40, 0x08
        self.assertEqual(style, popup | visible | caption | menu | frame | minimize | setfont | fixedsys)
        # No menu, no class, then the caption's text, the font's size and its name.
        rest = data[26:].decode("utf-16-le")
        self.assertEqual(rest[:2], "\0\0")
        font = rest[rest.index("\0", 2) + 1:]
        self.assertEqual(ord(font[0]), 8)
        self.assertEqual(font[3:].split("\0")[0], "MS Shell Dlg")

    def test_page(self):
        page = self.resources[RT_HTML, 129]
        self.assertEqual(page, (ROOT / "res/korcontrolcenter.htm").read_bytes())
        self.assertEqual(page.count(b"\n"), page.count(b"\r\n"))
        self.assertRegex(page.decode("ascii"), r'<div id="?Sections"?></div>')

    def test_banner(self):
        self.assertEqual(self.resources["IMAGE", "CONTROLCENTER.JPG"],
                         (ROOT / "res/controlcenter.jpg").read_bytes())

    def test_banner_fits_beside_a_standing_scroll_bar(self):
        picture = self.resources["IMAGE", "CONTROLCENTER.JPG"]
        at = 2  # behind the mark of the start: segments up to the frame's header
        while picture[at + 1] != 0xC0:
            at += 2 + struct.unpack_from(">H", picture, at + 2)[0]
        width = struct.unpack_from(">H", picture, at + 7)[0]
        self.assertLessEqual(width, 600)

    def test_icon_has_all_sizes(self):
        group = self.resources[RT_GROUP_ICON, 134]
        sizes = [group[6 + 14 * i] or 256 for i in range(struct.unpack_from("<H", group, 4)[0])]
        self.assertEqual(sorted(sizes), [16, 20, 24, 32, 40, 48, 64, 128, 256])

    def test_manifest(self):
        # As Windows reads it: a name in another namespace is another name.
        assembly = ElementTree.fromstring(self.resources[RT_MANIFEST, 1])
        v1, v3 = "{urn:schemas-microsoft-com:asm.v1}", "{urn:schemas-microsoft-com:asm.v3}"
        compatibility = "{urn:schemas-microsoft-com:compatibility.v1}"
        settings = f"{v3}application/{v3}windowsSettings"
        self.assertEqual(assembly.tag, f"{v1}assembly")
        self.assertEqual(assembly.find(f"{v1}assemblyIdentity").get("version"), VERSION + ".0")
        controls = assembly.find(f"{v1}dependency/{v1}dependentAssembly/{v1}assemblyIdentity")
        self.assertEqual((controls.get("name"), controls.get("version")),
                         ("Microsoft.Windows.Common-Controls", "6.0.0.0"))
        level = assembly.find(f"{v3}trustInfo/{v3}security/{v3}requestedPrivileges/{v3}requestedExecutionLevel")
        self.assertEqual(level.attrib, {"level": "asInvoker", "uiAccess": "false"})
        self.assertEqual([(setting.tag, setting.text) for setting in assembly.find(settings)],
                         [("{http://schemas.microsoft.com/SMI/2005/WindowsSettings}dpiAware", "true")])
        steps = ("compatibility", "application", "supportedOS")
        systems = assembly.findall("/".join(compatibility + step for step in steps))
        self.assertEqual([system.get("Id") for system in systems], [
            "{35138b9a-5d96-4fbd-8e2d-a2440225f93a}", "{4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38}",
            "{1f676c76-80e1-4239-95bb-83d0f6d0da78}", "{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"])

    def test_version_information(self):
        text = self.resources[RT_VERSION, 1].decode("utf-16-le", "replace")
        self.assertIn("FileVersion", text)
        self.assertIn(f"\0{VERSION}\0", text)
        self.assertIn("Vantrel Imaging Library", text)


class Kordiag(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.path = next(path for path in PROGRAMS if path.name == "kordiag.exe")

    def test_is_a_small_64_bit_console_program(self):
        program = Program(self.path)
        self.assertEqual((program.machine, program.subsystem), (0x8664, 3))
        self.assertLessEqual(self.path.stat().st_size, 650 * 1024)

    def test_has_the_launchers_page_banner_and_manifest(self):
        resources, launcher = Program(self.path).resources(), Program(PROGRAMS[0]).resources()
        for name in ((RT_HTML, 129), ("IMAGE", "CONTROLCENTER.JPG"), (RT_MANIFEST, 1)):
            self.assertEqual(resources[name], launcher[name])


if __name__ == "__main__":
    BUILD = Path(sys.argv[1]).resolve()
    PROGRAMS = [Path(name).resolve() for name in sys.argv[2:]]
    unittest.main(argv=sys.argv[:1], verbosity=2)
