#!/usr/bin/env python3
"""The symbols of the shipped programs: an address leads to the function's name and line."""
import re
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT), str(ROOT / "tests/product")]
from pe import Program  # noqa: E402
from shipping import contents  # noqa: E402
from shipping.pdb import Streams  # noqa: E402

BUILD = ROOT / "build"
IMAGE_BASE, EXCEPTIONS, DEBUG = 0x140000000, 3, 6
CODEVIEW = 2


class Symbols(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        files, symbols = contents.shipped(BUILD)
        programs = {name: data for name, data in files.items() if name.endswith(".exe")}
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        for name, data in {**programs, **symbols}.items():
            (cls.folder / name).write_bytes(data)
        cls.programs = [cls.folder / name for name in programs]
        # Where each function of the program begins, as the system knows it for its exceptions.
        cls.functions = {path: cls.function_starts(Program(path)) for path in cls.programs}

    @staticmethod
    def function_starts(program):
        address, size = program.directories[EXCEPTIONS]
        at = program.offset(address)
        return [begin for begin, _, _ in struct.iter_unpack("<III", program.data[at:at + size]) if begin]

    def resolved(self, path):
        """The name and the place of each function: [(name, file:line)]."""
        addresses = "\n".join(hex(IMAGE_BASE + start) for start in self.functions[path])
        printed = subprocess.run(["x86_64-w64-mingw32-addr2line", "-Cfe", f"{path}.debug"], input=addresses, check=True,
                                 stdout=subprocess.PIPE, text=True).stdout.splitlines()
        return list(zip(printed[::2], printed[1::2]))

    def names(self, path):
        """{address: kind of the symbol and name} from the symbols' own list."""
        listed = subprocess.run(["x86_64-w64-mingw32-nm", f"{path}.debug"], check=True, stdout=subprocess.PIPE,
                                text=True).stdout
        return {int(address, 16) - IMAGE_BASE: (kind, name)
                for address, kind, name in re.findall(r"^(\w+) ([Tt]) (\S+)$", listed, re.MULTILINE)}

    def test_functions_have_names(self):
        for path in self.programs:
            with self.subTest(path.name):
                names = self.names(path)
                nameless = [start for start in self.functions[path] if start not in names]
                # Some of the C run time's are without.
                self.assertLess(len(nameless), len(self.functions[path]) / 10)

    def test_the_products_functions_have_their_lines(self):
        known = {"korcontrolcenter.exe": ("CkorcontrolcenterApp::InitInstance()", "app/CkorcontrolcenterApp.cpp"),
                 "kordiag.exe": ("RunCommandLine", "diag/CommandLine.cpp")}
        for path in self.programs:
            name, source = known[path.name]
            with self.subTest(path.name):
                places = [place for function, place in self.resolved(path) if function.startswith(name)]
                self.assertRegex(places[0], rf"(^|/){source}:[1-9]\d*")

    def test_the_pdb_names_the_same_functions(self):
        for path in self.programs:
            with self.subTest(path.name):
                publics = Streams(path.with_suffix(".pdb").read_bytes()).publics()
                sections = Program(path).sections
                names = {sections[section - 1][1] + offset: name for (section, offset), name in publics.items()
                         if 0 < section <= len(sections)}
                functions = {start: name for start, (kind, name) in self.names(path).items() if kind == "T"}
                starts = set(self.functions[path]) & functions.keys()
                self.assertGreater(len(starts), 200)
                self.assertEqual([functions[start] for start in starts if start not in names], [])
                self.assertIn("CRTStartup", names[Program(path).entry])

    def test_belong_to_the_program(self):
        for path in self.programs:
            with self.subTest(path.name):
                program = Program(path)
                at = program.offset(program.directories[DEBUG][0])
                kind, _, _, record = struct.unpack_from("<IIII", program.data, at + 12)
                self.assertEqual(kind, CODEVIEW)
                mark, identity, _, name = struct.unpack_from("<4s16sI20s", program.data, record)
                self.assertEqual((mark, name.split(b"\0")[0].decode()), (b"RSDS", f"{path.stem}.pdb"))
                streams = Streams(path.with_suffix(".pdb").read_bytes())
                self.assertEqual(streams[Streams.INFORMATION][12:28], identity)
                start = next(raw for name, _, _, raw in program.sections if name == ".gnu_debuglink")
                link = program.data[start:]
                debug = f"{path.name}.debug".encode()
                self.assertTrue(link.startswith(debug + b"\0"))
                checksum, = struct.unpack_from("<I", link, (len(debug) + 4) // 4 * 4)
                self.assertEqual(checksum, zlib.crc32(Path(f"{path}.debug").read_bytes()))

    def test_the_programs_have_no_symbols_left(self):
        for path in self.programs:
            self.assertEqual(self.file_header(path)[3], 0, path.name)
            self.assertFalse(any(name.startswith(".debug_") for name, *_ in Program(path).sections), path.name)

    def test_say_nothing_of_the_machine_and_the_time_that_they_were_made_at(self):
        for path in self.folder.iterdir():
            data = path.read_bytes()
            self.assertNotIn(str(ROOT).encode(), data, path.name)
            # The folder of the link, whose random part is taken out.
            self.assertEqual(set(re.findall(b"kor-symbols-(.{8})", data)) - {b"00000000"}, set(), path.name)
            if path.suffix != ".pdb":
                self.assertEqual(self.file_header(path)[1], 0, path.name)

    @staticmethod
    def file_header(path):
        """The machine and the number of sections in one, the time, where the symbols are, and how many."""
        data = path.read_bytes()
        return struct.unpack_from("<IIII", data, struct.unpack_from("<I", data, 0x3C)[0] + 4)


if __name__ == "__main__":
    unittest.main()
