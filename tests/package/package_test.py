#!/usr/bin/env python3
"""What ./package makes: the same bytes every time, one version number, programs that run where they are
unpacked."""
import functools
import hashlib
import json
import os
import re
import struct
import subprocess
import sys
import unittest
import zipfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "endtoend"))
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "product"))
from pe import Program  # noqa: E402
from session import BUILD, ROOT, Session  # noqa: E402

sys.path.insert(0, str(ROOT))
from shipping import product  # noqa: E402

VERSION = product.version()
NAME = f"korcontrolcenter-{VERSION}-win64"
RT_VERSION, RT_MANIFEST = 16, 24


@functools.cache
def package():
    """Everything that ./package makes: {name: bytes}."""
    return make()


def make(**variables):
    printed = subprocess.run([ROOT / "package", "--no-build"], check=True, stdout=subprocess.PIPE, text=True,
                             env={**os.environ, **variables}, cwd="/").stdout
    files = [Path(line.split(": ")[0]) for line in printed.splitlines() if ": " in line]
    assert files and all(file.is_relative_to(BUILD / "package") for file in files), printed
    return {str(file.relative_to(BUILD / "package")): file.read_bytes() for file in files}


def unpacked(name):
    """The files of an archive, without the folder that holds them all."""
    with zipfile.ZipFile(BUILD / "package" / name) as packed:
        assert packed.testzip() is None
        parts = {entry.partition("/")[::2]: packed.read(entry) for entry in packed.namelist()}
    assert {folder for folder, _ in parts} == {name.removesuffix(".zip")}, parts.keys()
    return {file: data for (_, file), data in parts.items()}


def checksums(text):
    return dict(reversed(line.split(" *")) for line in text.decode().splitlines())


def hashes(files):
    return {name: hashlib.sha256(data).hexdigest() for name, data in files.items()}


class Packages(unittest.TestCase):
    def test_have_the_same_bytes_every_time(self):
        first = hashes(package())
        program = BUILD / "release/diag/kordiag.exe"
        before = program.stat()
        self.addCleanup(os.utime, program, ns=(before.st_atime_ns, before.st_mtime_ns))
        os.utime(program)
        later = hashes(make(SOURCE_DATE_EPOCH="1700000000"))
        self.assertEqual(later.keys(), first.keys())
        for name in (f"{NAME}.zip", f"{NAME}.msi"):
            self.assertNotEqual(later[name], first[name], name)
        self.assertEqual(hashes(make(TZ="Asia/Tokyo", LC_ALL="C")), first)

    def test_are_listed_with_their_checksums(self):
        made = dict(package())
        self.assertLessEqual({f"{NAME}.zip", f"{NAME}.msi", f"korcontrolcenter-{VERSION}-symbols.zip"}, made.keys())
        sums = checksums(made.pop("SHA256SUMS"))
        self.assertEqual(sums, hashes(made))


class Archive(unittest.TestCase):
    def test_holds_the_programs_and_their_documentation(self):
        package()
        files = unpacked(f"{NAME}.zip")
        sums = checksums(files.pop("SHA256SUMS"))
        self.assertEqual(sums, hashes(files))
        self.assertLessEqual({"korcontrolcenter.exe", "kordiag.exe", "README.md", "docs/kordiag.md"}, files.keys())
        for link in re.findall(r"\]\((?!https?:)([^)#]+)", files["README.md"].decode()):
            self.assertIn(link, files)


class WhatIsInside(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        package()
        cls.files = unpacked(f"{NAME}.zip")
        cls.bill = json.loads(cls.files["sbom.cdx.json"])
        cls.record = json.loads(cls.files["build-record.json"])

    def test_bill_of_materials_has_the_programs_and_the_packages(self):
        bill = self.bill
        self.assertEqual((bill["bomFormat"], bill["specVersion"]), ("CycloneDX", "1.5"))
        self.assertRegex(bill["serialNumber"], "^urn:uuid:[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}$")
        product_part = bill["metadata"]["component"]
        self.assertEqual(product_part["version"], VERSION)
        self.assertEqual(self.digests(product_part),
                         hashes({name: data for name, data in self.files.items() if name.endswith(".exe")}))
        versions = {library["name"]: library["version"] for library in bill["components"]}
        self.assertEqual({name.partition("-")[0] for name in versions}, {"g++", "gcc", "mingw"})
        for name, version in versions.items():
            installed = subprocess.run(["dpkg-query", "-Wf", "${Version}", name], check=True, stdout=subprocess.PIPE,
                                       text=True).stdout
            self.assertEqual(version, installed, name)
        references = [product_part["bom-ref"], *(library["bom-ref"] for library in bill["components"])]
        self.assertEqual([entry["ref"] for entry in bill["dependencies"]], references)
        self.assertEqual(bill["dependencies"][0]["dependsOn"], references[1:])

    def digests(self, component):
        return {part["name"]: value["content"] for part in component["components"] for value in part["hashes"]
                if value["alg"] == "SHA-256"}

    def test_bill_of_materials_has_what_the_linker_took(self):
        taken = {name: digest for library in self.bill["components"] for name, digest in self.digests(library).items()}
        self.assertLessEqual({"libstdc++.a", "libgcc.a", "libmingwex.a", "libpthread.a", "crt2.o"}, taken.keys())
        printed = subprocess.run(["x86_64-w64-mingw32-g++-posix", "-print-file-name=libstdc++.a"], check=True,
                                 stdout=subprocess.PIPE, text=True).stdout
        self.assertEqual(taken["libstdc++.a"], hashlib.sha256(Path(printed.strip()).read_bytes()).hexdigest())

    def test_notices_have_the_packages_own_words(self):
        notices = self.files["THIRD-PARTY-NOTICES.txt"].decode()
        for library in self.bill["components"]:
            words = Path(f"/usr/share/doc/{library['name']}/copyright").read_text("utf-8", "replace")
            for part in (f"{library['name']} {library['version']} ", words.strip()):
                self.assertTrue(part in notices, f"the notices lack {part[:100]}")
        for words in ("GCC RUNTIME LIBRARY EXCEPTION", "mingw-w64-libraries/winpthreads"):
            self.assertTrue(words in notices, words)

    def test_build_record_has_the_tools_and_the_flags(self):
        self.assertEqual(self.record["version"], VERSION)
        says = subprocess.run(["x86_64-w64-mingw32-g++-posix", "--version"], check=True, stdout=subprocess.PIPE,
                              text=True).stdout
        self.assertEqual(self.record["tools"]["compiler"]["says"], says.splitlines()[0])
        self.assertEqual(self.record["programs"].keys(), {"korcontrolcenter.exe", "kordiag.exe"})
        for program in self.record["programs"].values():
            self.assertIn("-Wl,--dynamicbase", program["link"].split())
            self.assertTrue(program["compile"])
            for flags in program["compile"]:
                self.assertIn("-O2", flags.split())

    def test_nothing_names_a_folder_of_this_machine(self):
        for name, data in self.files.items():
            self.assertNotIn(str(ROOT).encode(), data, name)


class Manifests(unittest.TestCase):
    def test_have_the_versions_hashes_and_codes_of_what_they_lead_to(self):
        made = package()
        files = {name: data.decode() for name, data in unpacked(f"korcontrolcenter-{VERSION}-manifests.zip").items()}
        digests = hashes(made)
        scoop = json.loads(files["scoop/vantrel-control-center.json"])
        program = scoop["architecture"]["64bit"]
        self.assertEqual((scoop["version"], program["hash"]), (VERSION, digests[f"{NAME}.zip"]))
        self.assertTrue(program["url"].endswith(f"/{VERSION}/{NAME}.zip"))
        self.assertEqual(program["extract_dir"], NAME)
        winget = {name: dict(re.findall(r"^ *-? ?(\w+): (.+)$", text, re.MULTILINE))
                  for name, text in files.items() if name.startswith("winget/")}
        self.assertEqual({values["ManifestType"] for values in winget.values()},
                         {"version", "defaultLocale", "installer"})
        for values in winget.values():
            self.assertEqual((values["PackageIdentifier"], values["PackageVersion"]),
                             ("Vantrel.ControlCenter", VERSION))
        installer = winget["winget/Vantrel.ControlCenter.installer.yaml"]
        self.assertEqual(installer["InstallerSha256"], digests[f"{NAME}.msi"].upper())
        self.assertTrue(installer["InstallerUrl"].endswith(f"/{VERSION}/{NAME}.msi"))
        properties = dict(line.split("\t") for line in exported("Property"))
        for code in ("ProductCode", "UpgradeCode"):
            self.assertEqual(installer[code].strip('"'), properties[code])


def exported(table):
    """The rows of a table of the installer."""
    return subprocess.run(["msiinfo", "export", BUILD / f"package/{NAME}.msi", table], check=True,
                          stdout=subprocess.PIPE, text=True).stdout.splitlines()[3:]


class Version(unittest.TestCase):
    """One number, in the project's CMakeLists.txt; everything else that bears one follows it."""

    def test_of_the_programs_files(self):
        for name in ("app/korcontrolcenter.exe", "diag/kordiag.exe"):
            resources = Program(BUILD / "release" / name).resources()
            data = resources[RT_VERSION, 1]
            texts = dict(re.findall("(FileVersion|ProductVersion)\0+([^\0]*)", data.decode("utf-16-le", "replace")))
            self.assertEqual(texts, {"FileVersion": VERSION, "ProductVersion": VERSION}, name)
            # The fixed part: its mark, its own version, the two versions as pairs of halves.
            numbers = struct.unpack_from("<8H", data, data.index(struct.pack("<I", 0xFEEF04BD)) + 8)
            shown = ".".join(str(numbers[i]) for i in (1, 0, 3, 2))
            self.assertEqual((shown, numbers[:4]), (f"{VERSION}.0", numbers[4:]), name)
            self.assertIn(f'version="{VERSION}.0"', resources[RT_MANIFEST, 1].decode())

    def test_of_the_newest_changes(self):
        released = re.findall(r"^## (\d\S*)", (ROOT / "CHANGELOG.md").read_text("utf-8"), re.MULTILINE)
        self.assertEqual(released[0], VERSION)

    def test_of_the_installer(self):
        package()
        self.assertIn(f"ProductVersion\t{VERSION}", exported("Property"))


class Unpacked(unittest.TestCase):
    def test_both_programs_run_and_name_the_version(self):
        package()
        session = Session("package", 96, "runtime")
        self.addCleanup(session.close)
        with zipfile.ZipFile(BUILD / f"package/{NAME}.zip") as packed:
            packed.extractall(session.drive / "Unpacked")
        folder = session.drive / "Unpacked" / NAME
        session.program = folder / "korcontrolcenter.exe"
        shown = session.start()["innerHtml"]["Sections"]
        self.assertEqual(session.prefix.run(folder / "kordiag.exe", "page").decode(), shown)
        self.assertEqual(session.prefix.run(folder / "kordiag.exe", "--version").decode(), f"kordiag {VERSION}\n")
        self.assertIn("<h2>General Tools</h2>", shown)
        self.assertEqual(session.end(), 0)


if __name__ == "__main__":
    unittest.main()
