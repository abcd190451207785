#!/usr/bin/env python3
"""compare_test.py KORDIAG: a report of the finished program beside another one and beside the computer."""
import json
import random
import sys
import unittest

from prefix import Prefix

PROGRAM = None
INSTALL = r"HKEY_LOCAL_MACHINE\SOFTWARE\Vantrel\Vantrel Imaging Library\Runtime\install\KOR"
EXAMPLES = r"C:\Users\Public\Documents\Vantrel Imaging\Examples\KOR"
SETS = ("queries", "installKeys", "sections", "items", "notBuilt", "roots", "rtxRoots", "settings")


def shuffled(value, name=""):
    """The same document with the entries of its sets and all members in another order, at another time."""
    if isinstance(value, list):
        entries = [shuffled(entry) for entry in value]
        return random.sample(entries, len(entries)) if name in SETS else entries
    if isinstance(value, dict):
        members = {key: shuffled(member, key) for key, member in value.items()}
        for time in {"date", "written"} & set(members):
            members[time] = "2001-02-03T04:05:06Z"
        return dict(random.sample(list(members.items()), len(members)))
    return value


class Comparing(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.prefix = Prefix(PROGRAM, "development")
        cls.addClassCleanup(cls.prefix.close)

    def report(self, name="a.json", *options):
        """Writes a report, and gives its file's name for Windows and its path."""
        file = f"C:\\{name}"
        self.assertEqual(self.prefix.run("report", "--json", "--force", "--output", file, *options), (0, b"", b""))
        return file, self.prefix.path / "drive_c" / name

    def differences(self, *files):
        """Path, value of A and value of B of each; "nothing" where there is none."""
        code, document = self.prefix.json("compare", *files)
        self.assertEqual((code, document["same"]), (1, False) if document["differences"] else (0, True))
        self.assertEqual((document["a"], document["b"]), (files[0], files[1] if len(files) > 1 else None))
        return {each["path"]: (each.get("a", "nothing"), each.get("b", "nothing"))
                for each in document["differences"]}

    def test_one_value_of_the_registry(self):
        file, _ = self.report()
        self.assertEqual(self.differences(file), {})
        value = f'"ExamplesRootPath"="{EXAMPLES}"\n'.replace("\\", "\\\\")
        self.addCleanup(self.prefix.import_registry, f"[{INSTALL}]\n{value}")
        code, _, _ = self.prefix.run("registry", "set", INSTALL, "ExamplesRootPath", "expand", EXAMPLES, "--anywhere")
        self.assertEqual(code, 0)
        self.assertEqual(self.differences(file), {'queries["KOR examples root"].type': ("string", "expand")})
        other, _ = self.report("b.json")
        self.assertEqual(self.differences(other, file), {'queries["KOR examples root"].type': ("expand", "string")})
        code, out, err = self.prefix.run("compare", file, other)
        self.assertEqual((code, err), (1, b""))
        self.assertEqual(out.decode().split("\n", 3)[3], 'queries["KOR examples root"].type\n'
                                                         '  A: "string"\n  B: "expand"\n\ndifferences: 1\n')
        self.prefix.import_registry(f"[{INSTALL}]\n{value}")
        self.assertEqual(self.differences(file), {})
        code, out, err = self.prefix.run("compare", file)
        self.assertEqual((code, err), (0, b""))
        self.assertTrue(out.decode().endswith("\nB: this computer, now\n\nno differences\n"), out)

    def test_a_tool_that_was_deleted(self):
        file, _ = self.report()
        tool = self.prefix.path / "drive_c/Program Files/Vantrel Imaging/Tools/GaugeBench.exe"
        content = tool.read_bytes()
        self.addCleanup(tool.write_bytes, content)
        tool.unlink()
        differences = self.differences(file)
        why = r"the file C:\Program Files\Vantrel Imaging\Tools/GaugeBench.exe does not exist"
        item = 'catalogue.sections["GUI"].items["GUI_4"]'
        self.assertEqual(differences.pop(item + ".shown"), (True, False))
        self.assertEqual(differences.pop(item + ".why"), ("", why))
        self.assertEqual(differences.pop('catalogue.sections["GUI"].shown'), (9, 8))
        page, without = differences.pop("page")
        self.assertIn("GaugeBench", page)
        self.assertNotIn("GaugeBench", without)
        self.assertLessEqual(set(differences), {"sizes.rows[1]", "sizes.windowHeight"})
        _, out, _ = self.prefix.run("compare", file)
        self.assertTrue(all(len(line) <= 180 for line in out.decode().splitlines()))

    def test_order_and_time_do_not_count(self):
        file, path = self.report()
        seed = random.randrange(1 << 32)
        random.seed(seed)
        report = json.loads(path.read_text("utf-8"))
        other = shuffled(report)
        self.assertNotEqual(json.dumps(other), json.dumps(report))
        (path.parent / "b.json").write_text(json.dumps(other, indent=2), "utf-8")
        self.assertEqual(self.differences(file, r"C:\b.json"), {}, f"seed {seed}")

    def test_names_are_left_out_on_both_sides(self):
        variables = {"TRACEFOLDER": f"C:\\users\\{self.user()}\\trace"}
        file = r"C:\redacted.json"
        self.prefix.run("report", "--json", "--redact", "--force", "--output", file, variables=variables)
        report = json.loads((self.prefix.path / "drive_c/redacted.json").read_text("utf-8"))
        self.assertIs(report["redacted"], True)
        self.assertEqual(report["settings"][1]["value"], r"%USERPROFILE%\trace")
        code, document = self.prefix.json("compare", file, variables=variables)
        self.assertEqual((code, document["differences"]), (0, []))

    def user(self):
        _, setting = self.prefix.json("setting", "USERPROFILE")
        return setting["value"].split("\\")[-1]

    def test_nothing_is_written(self):
        file, path = self.report()
        before, files = self.prefix.export_registry(), set(path.parent.rglob("*"))
        for options in ((file,), (file, file), (file, "--json")):
            self.assertEqual(self.prefix.run("compare", *options)[0], 0)
        self.assertEqual(self.prefix.export_registry(), before)
        self.assertEqual(set(path.parent.rglob("*")), files)

    def test_files_that_are_no_reports(self):
        file, path = self.report()
        report = path.read_bytes()
        bad = path.parent / "bad.json"
        seed = random.randrange(1 << 32)
        random.seed(seed)
        cases = [report[:random.randrange(len(report) - 2)] for _ in range(10)]
        cases += [report.decode().encode("utf-16"), report + b"{}", b"", b"[]", b"[" * 100000]
        for case in cases:
            bad.write_bytes(case)
            for files in ((r"C:\bad.json",), (file, r"C:\bad.json")):
                code, out, err = self.prefix.run("compare", *files)
                self.assertEqual((code, out, err.count(b"\n")), (3, b"", 1), (f"seed {seed}", case[-20:], err))
        indented = json.dumps(json.loads(report), indent="\t").replace("\n", "\r\n").encode("ascii")
        for good in (b"\xef\xbb\xbf" + report, report.rstrip(), indented):
            bad.write_bytes(good)
            self.assertEqual(self.differences(file, r"C:\bad.json"), {})


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main()
