#!/usr/bin/env python3
"""./package --sign with a throw-away certificate: what is shipped carries signatures that hold."""
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT))
from shipping import signing  # noqa: E402
from shipping.tools import Failed  # noqa: E402

BUILD = ROOT / "build"
SIGN = """#!/bin/sh -e
osslsigncode sign -certs {folder}/certificate.pem -key {folder}/key.pem -in "$1" -out "$1.signed"
mv "$1.signed" "$1"
"""


def command(*words):
    return subprocess.run([str(word) for word in words], check=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, cwd=ROOT).stdout


class Signed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        command("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=Nobody",
                "-addext", "extendedKeyUsage=codeSigning", "-keyout", cls.folder / "key.pem",
                "-out", cls.folder / "certificate.pem")
        script = cls.folder / "sign"
        script.write_text(SIGN.format(folder=cls.folder))
        script.chmod(0o755)
        # In a folder of its own: the other tests look at what is in build/package.
        made = cls.folder / "made"
        cls.printed = command(sys.executable, "-m", "shipping", "--sign", script, "--out", made, BUILD)
        cls.archive, = made.glob("*-win64.zip")
        cls.installer, = made.glob("*.msi")

    def holds(self, file):
        done = subprocess.run(["osslsigncode", "verify", "-CAfile", self.folder / "certificate.pem", "-in", file],
                              check=False, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        return done.returncode == 0 and "Signature verification: ok" in done.stdout

    def test_the_programs_in_the_archive_and_in_the_installer(self):
        with zipfile.ZipFile(self.archive) as packed:
            packed.extractall(self.folder / "unpacked")
        command("msiextract", "--directory", self.folder / "installed", self.installer)
        for place in ("unpacked", "installed"):
            programs = sorted((self.folder / place).rglob("*.exe"))
            self.assertEqual([program.name for program in programs], ["korcontrolcenter.exe", "kordiag.exe"], place)
            for program in programs:
                self.assertTrue(self.holds(program), program)

    def test_the_installer(self):
        self.assertTrue(self.holds(self.installer))

    def test_a_changed_program_no_longer_holds(self):
        with zipfile.ZipFile(self.archive) as packed:
            name = next(name for name in packed.namelist() if name.endswith("kordiag.exe"))
            data = bytearray(packed.read(name))
        data[0x2000] ^= 1
        changed = self.folder / "changed.exe"
        changed.write_bytes(data)
        self.assertFalse(self.holds(changed))

    def test_nothing_is_said_to_be_unsigned(self):
        self.assertNotIn("Nothing is signed", self.printed)


class Refusals(unittest.TestCase):
    def test_a_command_that_signs_nothing_has_failed(self):
        program = (BUILD / "release/diag/kordiag.exe").read_bytes()
        with self.assertRaisesRegex(Failed, "unsigned"):
            signing.sign_program("true", "kordiag.exe", program)

    def test_a_command_that_fails_ends_it(self):
        with self.assertRaisesRegex(Failed, "failed"):
            signing.sign_program("false", "kordiag.exe", b"MZ")


if __name__ == "__main__":
    unittest.main()
