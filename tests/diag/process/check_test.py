#!/usr/bin/env python3
"""check_test.py KORDIAG LAUNCHER: the verdicts of kordiag check. Findings are written by hand; each fault is
made in a sound installation, gives just its finding, and what the remedy says mends it."""
import re
import shutil
import sys
import unittest
from pathlib import Path

from prefix import DEMO, Prefix

PROGRAM, LAUNCHER = None, None
LIBRARY = r"HKEY_LOCAL_MACHINE\SOFTWARE\Vantrel\Vantrel Imaging Library"
INSTALL = r"HKEY_LOCAL_MACHINE\Software\Vantrel\Vantrel Imaging Library\Runtime\install"
FLOW_FORGE = r"HKEY_LOCAL_MACHINE\SOFTWARE\Vantrel\Vantrel Flow Forge"
HTML_SERVER = r"HKEY_LOCAL_MACHINE\Software\Classes\CLSID\{25336920-03F9-11CF-8FD0-00AA00686F13}\InprocServer32"
FOLDER = "C:\\Program Files\\Vantrel & Söhne 'Imaging'\\"
VERSION = "C:\\Flow 'Forge' 視覚\\"
VERSION_ID = 'FLOWFORGE-9.1-"beta"-<b>Ünï視覚</b>'


class Check(unittest.TestCase):
    maxDiff = None

    def check(self, *options, program=None):
        code, document = self.prefix.json("check", *options, program=program)
        self.assertEqual(code, {"sound": 0, "broken": 1}[document["verdict"]])
        for severity in ("error", "warning"):
            self.assertEqual(document[severity + "s"],
                             sum(f["severity"] == severity for f in document["findings"]))
        return document

    def findings(self):
        return [(f["severity"], f["code"], f["subjects"], f["found"]) for f in self.check()["findings"]]

    def check_writes_nothing(self):
        def now():
            files = (self.prefix.path / "drive_c").rglob("*")
            return self.prefix.export_registry(), sorted((str(file), file.lstat().st_mtime_ns) for file in files)
        before = now()
        self.prefix.run("check")
        self.assertEqual(now(), before)


class EachFault(Check):
    """Beside these: keys that may not be read, and help files from elsewhere (tests/diag/FindingsTest.cpp)."""

    @classmethod
    def setUpClass(cls):
        cls.prefix = Prefix(PROGRAM, "development", viewers=True)
        cls.addClassCleanup(cls.prefix.close)
        cls.drive = cls.prefix.path / "drive_c"
        cls.library = cls.drive / "Program Files/Vantrel Imaging"

    def tearDown(self):
        self.assertEqual(self.check("--strict"), {"schema": 1, "verdict": "sound", "errors": 0, "warnings": 0,
                                                  "findings": []})

    def set(self, key, line):
        self.prefix.import_registry(f"[{key}]\n{line}\n")

    def finding(self, code, subjects, severity="error"):
        """The only finding, of this code."""
        document = self.check()
        self.assertEqual([(f["severity"], f["code"], f["subjects"]) for f in document["findings"]],
                         [(severity, code, subjects)])
        self.assertEqual(self.check("--strict")["verdict"], "broken")
        text = self.prefix.run("check")[1].decode()
        self.assertTrue(text.startswith(f"{severity}: {code}\n"), text)
        self.assertEqual(text.splitlines()[-1], "broken: 1 errors, 0 warnings" if severity == "error"
                         else "sound: 0 errors, 1 warnings")
        return document["findings"][0]

    def mend(self, finding, text=None):
        """Does what the remedy's command says, or the one in its words, with the text in place of TEXT."""
        command = finding["command"]
        if text is not None:
            words = re.findall(r'"([^"]*)"|(\S+)', finding["remedy"].partition("in place of TEXT: ")[2])
            command = [text if word == "TEXT" else word for word in (a or b for a, b in words)]
        self.assertEqual(command[0], "kordiag")
        self.assertEqual(self.prefix.run(*command[1:]), (0, b"", b""))

    def test_a_missing_version(self):
        self.set(LIBRARY, '"KorVersion"=-')
        finding = self.finding("value-missing", ["valid installation"])
        self.assertEqual(finding["found"], f'the value "KorVersion" of {LIBRARY} does not exist')
        self.assertIn(f'kordiag registry set "{LIBRARY}" KorVersion string TEXT --create --anywhere',
                      finding["remedy"])
        self.mend(finding, "10")

    def test_a_missing_examples_root(self):
        self.set(INSTALL + r"\ActiveKor", '"ExamplesRootPath"=-')
        finding = self.finding("value-missing", ["ACTIVEKOR_2", "ActiveKOR: Sample Gallery"])
        self.mend(finding, r"C:\Users\Public\Documents\Vantrel Imaging\Examples\ActiveKor")

    def test_an_empty_folder_value(self):
        self.set(FLOW_FORGE + r"\Install", '"InstallationPath"=""')
        finding = self.finding("value-empty", ["Flow Forge"])
        self.assertEqual(finding["found"], f'the Flow Forge install folder is empty: the value "InstallationPath" of '
                                           f"{FLOW_FORGE}\\Install is empty")
        self.mend(finding, r"C:\Program Files\Vantrel Flow Forge 3.0")

    def test_a_value_of_the_wrong_type(self):
        for name, severity, subject, good in (("KorVersion", "error", "valid installation", "10.50"),
                                              ("KORType", "warning", "development installation", "Development")):
            self.set(LIBRARY, f'"{name}"=dword:00000001')
            finding = self.finding("value-of-wrong-type", [subject], severity)
            self.assertEqual(finding["found"], f'the value "{name}" of {LIBRARY} is not a text')
            self.mend(finding, good)

    def test_a_value_in_the_other_view(self):
        other = LIBRARY.replace("SOFTWARE", r"SOFTWARE\Wow6432Node")
        self.prefix.import_registry(f'[{LIBRARY}]\n"KorVersion"=-\n\n[{other}]\n"KorVersion"="10.5 \\"b\\""\n')
        finding = self.finding("value-in-other-view", ["valid installation"])
        self.assertEqual(finding["found"], f'the value "KorVersion" of {LIBRARY} does not exist, but the 32-bit view '
                                           f'of the registry has it: "10.5 "b"" in {other}')
        self.mend(finding)
        self.prefix.import_registry(f"[-{other}]\n")

    def test_an_install_folder_without_its_backslash(self):
        self.set(INSTALL, r'"installdir"="C:\\Program Files\\Vantrel Imaging"')
        finding = self.finding("base-without-backslash", [
            "KOR_0", "KOR_1", "KOR_2", "FOLDERS_0", "FOLDERS_2", "FOLDERS_3", "TOOLS_0", "TOOLS_1", "TOOLS_3",
            *(f"GUI_{i}" for i in range(9)), "RT_0", "ActiveKOR"])
        self.mend(finding)

    def test_a_tool_that_was_deleted(self):
        tool = self.library / "Tools/GaugeBench.exe"
        tool.unlink()
        self.finding("target-missing", ["GUI_4"])
        tool.write_bytes(b"")

    def test_a_folder_that_was_deleted_is_one_finding(self):
        (self.library / "Tools").rename(self.library / "Gone")
        document = self.check()
        self.assertEqual(len(document["findings"]), 1)
        self.assertEqual(document["findings"][0]["subjects"], [
            "KOR_0", "TOOLS_0", "TOOLS_2", "TOOLS_3", *(f"GUI_{i}" for i in range(1, 8)), "ACTIVEKOR_0", "RT_0"])
        (self.library / "Gone").rename(self.library / "Tools")

    def test_no_runtime_manager(self):
        managers = list(self.drive.glob("Program Files*/*/Tools/FlowForgeRuntimeManager.exe"))
        self.assertEqual(len(managers), 3)
        for manager in managers:
            manager.rename(manager.with_suffix(".gone"))
        self.finding("manager-missing", ["FLOWFORGE-2.1_5", "FLOWFORGE-3.0_5", "FLOWFORGE-2.0_5"])
        for manager in managers:
            manager.with_suffix(".gone").rename(manager)

    def test_an_empty_folder(self):
        (self.library / "Tutorial videos").rename(self.library / "Gone")
        (self.library / "Tutorial videos").mkdir()
        self.finding("folder-empty", ["General Tools: Tutorials directory"], "warning")
        (self.library / "Tutorial videos").rmdir()
        (self.library / "Gone").rename(self.library / "Tutorial videos")

    def test_no_help_viewer(self):
        viewers = [path for path in self.drive.glob("windows/**/hh.exe") if "winsxs" not in path.parts]
        self.assertTrue(viewers)
        for viewer in viewers:
            viewer.rename(viewer.with_suffix(".gone"))
        self.finding("help-viewer-missing", ["KOR_1", "KOR_2"], "warning")
        for viewer in viewers:
            viewer.with_suffix(".gone").rename(viewer)

    def test_no_program_for_a_type(self):
        key = r"HKEY_LOCAL_MACHINE\Software\Classes\.pdf"
        self.prefix.import_registry(f"[-{key}]\n")
        self.finding("no-program-for-type", ["FLOWFORGE_2"], "warning")
        self.set(key, '@="KORDemonstration.Document"')

    def test_no_html_engine(self):
        before = (self.prefix.path / "system.reg").read_text(errors="replace")
        self.assertNotIn("missing.dll", before)
        self.set(HTML_SERVER, r'@="C:\\missing.dll"')
        self.finding("no-html-engine", ["window"])
        self.prefix.install(None)

    def test_a_damaged_launcher_beside_it(self):
        folder = self.drive / "copied"
        folder.mkdir()
        self.addCleanup(shutil.rmtree, folder)
        shutil.copy(PROGRAM, folder)
        (folder / "korcontrolcenter.exe").write_bytes(b"MZ")
        program = folder / "kordiag.exe"
        document = self.check(program=program)
        self.assertEqual([(f["severity"], f["code"], f["subjects"]) for f in document["findings"]],
                         [("error", "page-not-loadable", ["window"])])
        shutil.copy(LAUNCHER, folder / "korcontrolcenter.exe")
        self.assertEqual(self.check("--strict", program=program)["findings"], [])

    def test_nothing_is_written(self):
        self.check_writes_nothing()

    def test_the_calls_are_no_more_than_twice_those_of_the_catalogue(self):
        catalogue, check = self.calls("catalogue"), self.calls("check")
        print(f"calls of Windows: {catalogue} for catalogue, {check} for check", file=sys.stderr)
        self.assertGreater(check, catalogue)
        self.assertLessEqual(check, 2 * catalogue)

    def calls(self, command):
        """How often the program calls Windows, its C library and its windows left out."""
        code, _, trace = self.prefix.run(command, "--json", variables={"WINEDEBUG": "+pid,+relay"})
        self.assertEqual(code, 0)
        # Other programs are called from the same places.
        calls = re.findall(rb"^(\w+):\w+:Call (\w+)\.(\S+?)\(.* ret=0*14\w{7}$", trace, re.MULTILINE)
        ours = {process for process, _, function in calls if function == b"PathFileExistsW"}
        self.assertEqual(len(ours), 1)
        return sum(process in ours and library.lower() in (b"advapi32", b"kernel32", b"ole32", b"combase", b"shlwapi")
                   for process, library, _ in calls)


class NothingInstalled(Check):
    def test_is_one_finding(self):
        self.prefix = Prefix(PROGRAM)
        self.addCleanup(self.prefix.close)
        self.assertEqual(self.findings(), [("error", "nothing-installed", ["library"],
                                            "the registry has neither a library version nor an install folder")])
        self.check_writes_nothing()
        self.prefix.install("development")
        self.assertEqual(self.check("--strict")["findings"], [])


def missing(found, *subjects, severity="error", kind="folder"):
    return severity, "target-missing", list(subjects), f"the {kind} {found} does not exist"


WRONG_TYPE = ("warning", "value-of-wrong-type", ["development installation"],
              f'the value "KORType" of {LIBRARY} is not a text')
OF_VERSION = [
    missing(VERSION + "/Example HMI", VERSION_ID + "_1"),
    ("error", "target-missing", [VERSION_ID + "_2"], f"this is a file, not a folder: {VERSION}Documentation")]
NOT_BUILT = [
    ("error", "value-missing", ["Flow Forge 0.9"],
     f'the value "InstallationPath" of {FLOW_FORGE}\\Installed Versions\\0.9 does not exist'),
    ("error", "value-of-wrong-type", ["Flow Forge 1.0"],
     f'the value "InstallationPath" of {FLOW_FORGE}\\Installed Versions\\1.0 is not a text'),
    missing('C:\\<b>"no" folder<', "Flow Forge 1.1")]
NO_FLOW_FORGE = ("error", "value-empty", ["Flow Forge"],
                 f'the Flow Forge install folder is empty: the value "InstallationPath" of {FLOW_FORGE}\\Install is '
                 "empty")
DAMAGED = [
    WRONG_TYPE,
    missing(FOLDER + "Framewright", "TOOLS_1"),
    missing(FOLDER + "Tools\\GrabStudio.exe", "TOOLS_3", kind="file"),
    missing(FOLDER + "KOR Wingman", "GUI_0"),
    *(missing(f"{FOLDER}Tools/{tool}.exe", f"GUI_{index}", kind="file") for index, tool in (
        (2, "HueSurvey"), (3, "ContourTracer"), (4, "GaugeBench"), (5, "ShapeLocator"), (6, "GlyphScanner"),
        (7, "TextSpotter"))),
    missing(FOLDER + "Lookout", "GUI_8"),
    *OF_VERSION,
    missing(FOLDER + "ActiveKOR/Help", "ACTIVEKOR_0"),
    missing("<C:>", "ACTIVEKOR_2", "ActiveKOR: Sample Gallery"),
    missing(FOLDER + "ActiveKOR/Demos", "ACTIVEKOR_3", "ACTIVEKOR_4"),
    missing(FOLDER + "ActiveKOR/ReadMe.html", "ACTIVEKOR_5", kind="file"),
    ("warning", "target-missing", ["General Tools: Tutorials directory"],
     f"this is a file, not a folder: {FOLDER}Tutorial videos"),
    *NOT_BUILT, NO_FLOW_FORGE]
LONG_FOLDER = [
    WRONG_TYPE,
    missing("C:\\Vantrel Imaging 000", "TOOLS_0", "TOOLS_1", "TOOLS_2", "TOOLS_3", *(f"GUI_{i}" for i in range(9)),
            "General Tools: Tutorials directory", "ActiveKOR"),
    *OF_VERSION, *NOT_BUILT, NO_FLOW_FORGE]
NOT_VALID = [("error", "value-of-wrong-type", ["valid installation"],
              f'the value "KorVersion" of {LIBRARY} is not a text'), *DAMAGED]


class DamagedInstallations(Check):
    def verdict_of(self, *more):
        self.prefix = Prefix(PROGRAM, "damaged", viewers=True)
        self.addCleanup(self.prefix.close)
        for name in more:
            self.prefix.import_registry(DEMO / "damaged" / name)
        return self.findings()

    def test_damaged(self):
        self.assertEqual(self.verdict_of(), DAMAGED)
        self.check_writes_nothing()

    def test_a_long_folder(self):
        self.assertEqual(self.verdict_of("long-folder.reg"), LONG_FOLDER)

    def test_not_installed(self):
        self.assertEqual(self.verdict_of("not-installed.reg"), NOT_VALID)


if __name__ == "__main__":
    PROGRAM, LAUNCHER = (str(Path(sys.argv.pop(1)).resolve()) for _ in range(2))
    unittest.main()
