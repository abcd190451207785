#!/usr/bin/env python3
"""The archive that ./package makes: the same bytes every time, and programs that run where it is unpacked."""
import hashlib
import os
import re
import subprocess
import sys
import unittest
import zipfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "endtoend"))
from session import BUILD, ROOT, Session  # noqa: E402


def package(**variables):
    output = subprocess.run([ROOT / "package", "--no-build"], check=True, stdout=subprocess.PIPE, text=True,
                            env={**os.environ, **variables}, cwd="/").stdout
    return Path(output.split(": ")[0])


class Archive(unittest.TestCase):
    def test_the_same_bytes_every_time(self):
        first = package().read_bytes()
        program = BUILD / "release/diag/kordiag.exe"
        before = program.stat()
        self.addCleanup(os.utime, program, ns=(before.st_atime_ns, before.st_mtime_ns))
        os.utime(program)
        self.assertEqual(package(TZ="Asia/Tokyo", LC_ALL="C").read_bytes(), first)
        self.assertNotEqual(package(SOURCE_DATE_EPOCH="1700000000").read_bytes(), first)
        self.assertEqual(package().read_bytes(), first)

    def test_holds_the_programs_and_their_documentation(self):
        archive = package()
        version = re.search(r"VERSION (\d+\.\d+\.\d+)", (ROOT / "CMakeLists.txt").read_text().split("project(")[1])[1]
        self.assertEqual(archive, BUILD / f"korcontrolcenter-{version}-win64.zip")
        folder = f"korcontrolcenter-{version}-win64/"
        with zipfile.ZipFile(archive) as packed:
            self.assertIsNone(packed.testzip())
            names = packed.namelist()
            files = {name.removeprefix(folder): packed.read(name) for name in names}
        self.assertTrue(all(name.startswith(folder) for name in names))
        self.assertLessEqual({"korcontrolcenter.exe", "kordiag.exe", "README.md", "docs/kordiag.md", "SHA256SUMS"},
                             set(files))
        sums = dict(reversed(line.split(" *")) for line in files.pop("SHA256SUMS").decode().splitlines())
        self.assertEqual(sums, {name: hashlib.sha256(data).hexdigest() for name, data in files.items()})
        for link in re.findall(r"\]\((docs/[^)#]+)", files["README.md"].decode()):
            self.assertIn(link, files)


class Unpacked(unittest.TestCase):
    def test_both_programs_run(self):
        session = Session("package", 96, "runtime")
        self.addCleanup(session.close)
        with zipfile.ZipFile(package()) as packed:
            packed.extractall(session.drive / "Unpacked")
        folder = next((session.drive / "Unpacked").iterdir())
        session.program = folder / "korcontrolcenter.exe"
        shown = session.start()["innerHtml"]["Sections"]
        self.assertEqual(session.prefix.run(folder / "kordiag.exe", "page").decode(), shown)
        self.assertIn("<h2>General Tools</h2>", shown)
        self.assertEqual(session.end(), 0)


if __name__ == "__main__":
    unittest.main()
