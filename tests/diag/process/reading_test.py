#!/usr/bin/env python3
"""reading_test.py KORDIAG: the reading commands of the finished program, in a whole, a damaged and an
empty installation."""
import base64
import getpass
import re
import socket
import sys
import unittest
from datetime import datetime, timezone

from prefix import DEVELOPMENT, LINKS, ROOT, SECTIONS, Prefix, row_heights

PROGRAM = None
LIBRARY = r"HKEY_LOCAL_MACHINE\SOFTWARE\Vantrel\Vantrel Imaging Library"
RUNTIME = r"HKEY_LOCAL_MACHINE\Software\Vantrel\Vantrel Imaging Library\Runtime"
NOT_INSTALLED = ("<div id=KORSection><h2>This KOR hasn't been installed by a valid install</h2>"
                 "<ul></ul></div>")


def texts(document):
    """All texts of a JSON document but the names of its members."""
    if isinstance(document, str):
        return [document]
    parts = document.values() if isinstance(document, dict) else document if isinstance(document, list) else ()
    return [text for part in parts for text in texts(part)]


class Reading(unittest.TestCase):
    INSTALLATION = ()

    @classmethod
    def setUpClass(cls):
        cls.prefix = Prefix(PROGRAM, *cls.INSTALLATION)
        cls.addClassCleanup(cls.prefix.close)

    def answer(self, *arguments, **options):
        code, answer = self.prefix.json(*arguments, **options)
        self.assertEqual(code, 0)
        return answer

    def text(self, *arguments):
        code, out, err = self.prefix.run(*arguments)
        self.assertEqual((code, err), (0, b""))
        return out.decode("utf-8")

    def items(self):
        return {item["id"]: item for section in self.answer("catalogue")["sections"] for item in section["items"]}


class WholeInstallation(Reading):
    INSTALLATION = ("development",)

    def test_catalogue(self):
        sections = self.answer("catalogue")["sections"]
        self.assertEqual([(s["key"], s["title"], s["row"], s["column"], s["shown"],
                           [(item["id"], item["label"], item["type"]) for item in s["items"]])
                          for s in sections],
                         [(s["key"], s["title"], at // 2, at % 2, len(s["links"]),
                           [(link["id"], link["label"], link["type"]) for link in s["links"]])
                          for at, s in enumerate(SECTIONS)])
        self.assertEqual(list(sections[0]), ["key", "title", "row", "column", "shown", "items"])
        self.assertEqual(sections[0]["items"][0],
                         {"id": "KOR_0", "label": "Vantrel Sample Gallery", "type": "program",
                          "path": r"C:\Program Files\Vantrel Imaging\Tools\SampleGallery.exe",
                          "arguments": " /KOR", "shown": True, "why": ""})
        self.assertEqual(list(sections[0]["items"][0]),
                         ["id", "label", "type", "path", "arguments", "shown", "why"])
        items = [item for section in sections for item in section["items"]]
        self.assertTrue(all(item["shown"] and item["why"] == "" for item in items))
        self.assertEqual(self.answer("catalogue")["notBuilt"], [])
        self.assertNotIn("Not built", self.text("catalogue"))

    def test_queries(self):
        queries = self.answer("queries")
        self.assertEqual(list(queries[0]), ["query", "key", "value", "found", "type", "result"])
        self.assertEqual([tuple(q.values()) for q in queries], [
            ("install folder", RUNTIME + r"\install", "installdir", True, "string",
             "C:\\Program Files\\Vantrel Imaging\\"),
            ("ActiveKor examples root", RUNTIME + r"\install\ActiveKor", "ExamplesRootPath", True, "string",
             r"C:\Users\Public\Documents\Vantrel Imaging\Examples\ActiveKor"),
            ("KOR examples root", RUNTIME + r"\install\KOR", "ExamplesRootPath", True, "string",
             r"C:\Users\Public\Documents\Vantrel Imaging\Examples\KOR"),
            ("Flow Forge install folder", r"HKEY_LOCAL_MACHINE\SOFTWARE\Vantrel\Vantrel Flow Forge\Install",
             "InstallationPath", True, "string", "C:\\Program Files\\Vantrel Flow Forge 3.0\\"),
            ("development installation", LIBRARY, "KORType", True, "string", True),
            ("valid installation", LIBRARY, "KorVersion", True, "string", True)])

    def test_sizes(self):
        sizes = self.answer("sizes")
        self.assertEqual(list(sizes), ["dpi", "sectionBaseHeight", "itemHeight", "baseWidth", "baseHeight",
                                       "windowWidth", "windowHeight", "rows"])
        self.assertEqual((sizes["dpi"], sizes["sectionBaseHeight"], sizes["itemHeight"]), (96, 45, 20))
        self.assertEqual(sizes["rows"], row_heights(DEVELOPMENT))
        self.assertEqual(sizes["windowHeight"], sizes["baseHeight"] + sum(sizes["rows"]))
        for dpi, section, item, width in ((96, 45, 20, sizes["windowWidth"]), (120, 56, 25, 1405),
                                          (144, 67, 30, 1404), (145, 67, 30, 1405)):
            other = self.answer("sizes", "--dpi", str(dpi))
            self.assertEqual((other["dpi"], other["sectionBaseHeight"], other["itemHeight"],
                              other["windowWidth"]), (dpi, section, item, width))
            self.assertEqual(other["rows"], row_heights(DEVELOPMENT, section, item))

    def test_roots(self):
        plain = {root["id"]: root for root in self.answer("roots")}
        self.assertEqual(list(plain[1]), ["id", "name", "root", "subkey", "exists", "volatileClass"])
        self.assertEqual(list(plain), list(range(1, 9)))
        self.assertEqual([root["volatileClass"] for root in plain.values()], [1, 2, 3, 4, 5, 0, 3, 7])
        self.assertEqual([id for id, root in plain.items() if root["exists"]], [1, 8])
        self.assertIsNone(plain[6]["name"])
        self.assertEqual((plain[2]["name"], plain[2]["root"], plain[2]["subkey"]),
                         ("M_KOR_HKEY_CURRENT_USER_RUNTIME", "HKEY_CURRENT_USER",
                          r"Software\Vantrel\Vantrel Imaging Library\Runtime"))
        rtx = {root["id"]: root for root in self.answer("roots", "--rtx")}
        self.assertEqual({root["root"] for root in rtx.values()}, {"HKEY_LOCAL_MACHINE"})
        self.assertEqual(rtx[7]["subkey"],
                         r"Software\Wow6432Node\Vantrel\Vantrel Imaging Library\RTX\Vantrel Imaging Tools")
        self.assertEqual([id for id, root in rtx.items() if root["exists"]], [])

    def test_page_is_bytes_of_the_markup_alone(self):
        code, page, err = self.prefix.run("page")
        self.assertEqual((code, err), (0, b""))
        self.assertTrue(page.startswith(b"<table class=\"innertable\" width=\"100%\">\n<tr>\n\n<td class =\"column\""))
        self.assertTrue(page.endswith(b"</tr></table>"))
        self.assertNotIn(b"\r", page)
        self.assertEqual(page.count(b"<SPAN class=item "), len(LINKS))

    def test_document_is_the_template_with_everything_in_it(self):
        _, page, _ = self.prefix.run("page")
        code, document, err = self.prefix.run("page", "--document")
        self.assertEqual((code, err), (0, b""))
        template = (ROOT / "res" / "korcontrolcenter.htm").read_bytes()
        banner = base64.b64encode((ROOT / "res" / "controlcenter.jpg").read_bytes())
        expected = template.replace(b"res:/IMAGE/CONTROLCENTER.JPG", b"data:image/jpeg;base64," + banner)
        expected = expected.replace(b'<div id="Sections">', b'<div id="Sections">' + page)
        expected = expected.replace(b"<style>", b'<meta charset="utf-8">\r\n<style>')
        self.assertEqual(document, expected)
        self.assertNotIn(b"res:", document)

    def test_settings(self):
        answer = self.answer("setting", "TEMP", variables={"TRACEFOLDER": "C:\\trace"})
        self.assertEqual(list(answer), ["name", "found", "value", "source"])
        self.assertEqual(answer["source"], "environment TEMP")
        trace = self.answer("setting", "tracefolder", variables={"TRACEFOLDER": "C:\\trace"})
        self.assertEqual(trace, {"name": "tracefolder", "found": True, "value": "C:\\trace",
                                 "source": "environment tracefolder"})
        path = self.answer("setting", "KOR_PATH", variables={"KOR_PATH64": "C:\\64", "KOR_PATH": "C:\\32"})
        self.assertEqual((path["value"], path["source"]), ("C:\\64", "environment KOR_PATH64"))
        code, missing = self.prefix.json("setting", "KOR_PATH")
        self.assertEqual((code, missing), (1, {"name": "KOR_PATH", "found": False, "value": "", "source": ""}))
        code, out, _ = self.prefix.run("setting", "KOR_PATH")
        self.assertEqual((code, out), (1, b"KOR_PATH is not set\n  environment KOR_PATH64: not set\n"
                                          b"  environment KOR_PATH: not set\n"))

    def test_debug_settings(self):
        debug = r"\Software\Vantrel\Vantrel Imaging Library\Runtime\Settings\Debug]"
        self.addCleanup(self.prefix.import_registry, "[-HKEY_CURRENT_USER\\Software\\Vantrel]\n"
                                                     f"[-HKEY_LOCAL_MACHINE{debug}\n")
        self.prefix.import_registry(f'[HKEY_LOCAL_MACHINE{debug}\n"TempFolder"="C:\\\\windows"\n')
        self.assertEqual(self.answer("setting", "TEMP"),
                         {"name": "TEMP", "found": True, "value": r"C:\windows", "source": "debug-machine"})
        self.prefix.import_registry(f'[HKEY_CURRENT_USER{debug}\n"TempFolder"="C:\\\\"\n')
        self.assertEqual(self.answer("setting", "TEMP")["source"], "debug-user")
        self.prefix.import_registry(f'[HKEY_CURRENT_USER{debug}\n"TempFolder"="C:\\\\gone"\n')
        self.assertEqual(self.answer("setting", "TEMP")["source"], "environment TEMP")
        text = self.text("setting", "TEMP")
        self.assertIn("\n  debug-user TempFolder: not an existing folder: C:\\gone\n  environment TEMP: ", text)
        self.assertNotIn("debug-machine", text)

    def test_report_has_the_answers_of_all(self):
        report = self.answer("report")
        self.assertEqual(list(report), ["schema", "version", "redacted", "system", "facts", "dpi", "date", "queries",
                                        "installKeys", "catalogue", "sizes", "roots", "rtxRoots", "settings", "page"])
        self.assertIs(report["redacted"], False)
        version = re.search(r"VERSION (\S+) ", (ROOT / "CMakeLists.txt").read_text().split("project(")[1])[1]
        self.assertEqual(report["version"], version)
        self.assertEqual(self.text("--version"), f"kordiag {version}\n")
        self.assertRegex(report["date"], r"^20\d\d-\d\d-\d\dT\d\d:\d\d:\d\dZ$")
        self.assertEqual(report["queries"], self.answer("queries"))
        self.assertEqual(report["catalogue"], self.answer("catalogue"))
        self.assertEqual(report["sizes"], self.answer("sizes"))
        self.assertEqual(report["roots"], self.answer("roots"))
        self.assertEqual(report["rtxRoots"], self.answer("roots", "--rtx"))
        self.assertEqual([s["name"] for s in report["settings"]],
                         ["TEMP", "TRACEFOLDER", "KOR_PATH", "KOR_PATH64"])
        self.assertEqual(report["page"], self.text("page"))
        text = self.text("report")
        for command in ("queries", "catalogue", "sizes", "roots", "page"):
            self.assertIn(self.text(command), text)

    def test_the_report_knows_the_system(self):
        system = r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows NT\CurrentVersion"
        names = ("ProductName", "CurrentBuild", "DisplayVersion", "UBR", "InstallationType")
        values = [self.prefix.run("registry", "get", system, name)[1].decode().strip() for name in names]
        before = "\n".join(f'"{name}"="{value}"' if value else f'"{name}"=-' for name, value in zip(names, values))
        self.addCleanup(self.prefix.import_registry, f"[{system}]\n{before}\n")
        self.prefix.import_registry(
            f'[{system}]\n"ProductName"="Windows 10 Pro"\n"CurrentBuild"="26100"\n"DisplayVersion"="24H2"\n'
            '"UBR"=dword:00000b74\n"InstallationType"="Client"\n')
        report = self.answer("report")
        self.assertEqual(report["system"], "Windows 11 Pro, 24H2, build 26100.2932")
        facts = report["facts"]
        self.assertEqual({name: facts[name] for name in list(facts)[:5]}, {
            "windows": "Windows 11 Pro", "displayVersion": "24H2", "build": 26100, "revision": 2932,
            "installationType": "Client"})
        self.assertEqual({name: facts[name] for name in ("remoteDesktop", "highContrast", "longPaths")},
                         {"remoteDesktop": False, "highContrast": False, "longPaths": False})
        # Wine 8 elevates each program, Wine 10 none.
        self.assertIn(facts["elevated"], (True, False))
        self.assertGreater(facts["workArea"]["width"], 0)
        text = self.text("report").split("\n\n")
        self.assertEqual(text[0].splitlines()[1], "Windows 11 Pro, 24H2, build 26100.2932, 96 DPI")
        lines = text[text.index("System") + 1].splitlines()
        self.assertEqual(lines[:5], ["name: Windows 11 Pro", "version: 24H2", "build: 26100", "update revision: 2932",
                                     "kind: Client"])
        self.assertEqual(len(lines), len(facts))

    def test_the_report_says_when_the_keys_were_written(self):
        key = r"HKEY_LOCAL_MACHINE\SOFTWARE\Vantrel\Vantrel Flow Forge\Install"
        before = datetime.now(timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
        self.prefix.import_registry(f'[{key}]\n"Written"="now"\n')
        self.addCleanup(self.prefix.import_registry, f'[{key}]\n"Written"=-\n')
        after = datetime.now(timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")
        keys = {entry["key"]: entry for entry in self.answer("report")["installKeys"]}
        install = RUNTIME + r"\install"
        self.assertEqual(list(keys), [install, install + r"\ActiveKor", install + r"\KOR", key, LIBRARY])
        self.assertEqual({entry["exists"] for entry in keys.values()}, {True})
        self.assertTrue(before <= keys[key]["written"] <= after, keys[key])
        self.assertIn(f"{key}\n  last written {keys[key]['written']}\n", self.text("report"))

    def test_a_report_without_names(self):
        user, computer = getpass.getuser(), socket.gethostname().split(".")[0]
        variables = {"TRACEFOLDER": f"c:/USERS//{user.upper()}/traces of {user} on {computer}",
                     "KOR_PATH": "C:\\Übung  視覚"}
        code, report = self.prefix.json("report", "--redact", variables=variables)
        self.assertEqual(code, 0)
        temp, traces, path = [setting["value"] for setting in report["settings"]][:3]
        # Wine 10 has the folder where Windows has it, Wine 8 does not.
        self.assertIn(temp, ("%USERPROFILE%\\Temp", "%USERPROFILE%\\AppData\\Local\\Temp"))
        self.assertEqual((traces, path), ("%USERPROFILE%/traces of <user> on <computer>", "C:\\Übung  視覚"))
        text = self.prefix.run("report", "--redact", variables=variables)[1].decode()
        self.assertIn("%USERPROFILE%/traces of <user> on <computer>", text)
        for name in (user, computer):
            for value in (text, *texts(report)):
                self.assertNotIn(name.lower(), value.lower())

    def test_a_tool_that_was_deleted(self):
        tool = self.prefix.path / "drive_c/Program Files/Vantrel Imaging/Tools/GaugeBench.exe"
        tool.unlink()
        self.addCleanup(tool.write_bytes, b"")
        item = self.items()["GUI_4"]
        self.assertEqual((item["label"], item["shown"], item["why"]),
                         ("Vantrel GaugeBench", False, r"the file C:\Program Files\Vantrel Imaging"
                                                       r"\Tools/GaugeBench.exe does not exist"))
        self.assertIn("  MISSING  Vantrel GaugeBench (GUI_4)\n           program C:\\Program Files\\Vantrel Imaging"
                      "\\Tools/GaugeBench.exe\n           why: the file C:\\", self.text("catalogue"))

    def test_nothing_is_written(self):
        before = self.prefix.export_registry()
        for command in ("page", "sizes", "catalogue", "check", "queries", "roots", "report"):
            self.prefix.run(command)
        self.assertEqual(self.prefix.export_registry(), before)


class RuntimeInstallation(Reading):
    INSTALLATION = ("runtime",)

    def test_what_was_not_built(self):
        catalogue = self.answer("catalogue")
        self.assertEqual(list(catalogue), ["sections", "notBuilt"])
        not_built = self.text("catalogue").split("Not built:\n")[1]
        reason = (f'this is not a development installation: the value "KORType" of {LIBRARY} is "Runtime"')
        library = r"C:\Program Files\Vantrel Imaging"
        flow_forge = r"HKEY_LOCAL_MACHINE\SOFTWARE\{}Vantrel\Vantrel Flow Forge\{}"
        self.assertEqual(not_built.replace("\n           why: ", " | ").splitlines(), [
            f"  Quick Start | {reason}",
            f"  Folders | {reason}",
            f'  General Tools, item "Tutorials directory" | the folder is missing or empty: '
            rf"{library}\Tutorial videos",
            "  Flow Forge versions | the registry key does not exist or cannot be read: " +
            flow_forge.format("", "Installed Versions"),
            "  Flow Forge versions (32-bit) | the registry key does not exist or cannot be read: " +
            flow_forge.format("Wow6432Node\\", "Installed Versions"),
            rf"  ActiveKOR | the control file does not exist: the folder {library}\ActiveKOR does not exist",
            "  Flow Forge | the program does not exist: the Flow Forge install folder is empty: the value "
            f'"InstallationPath" of {flow_forge.format("", "Install")} does not exist',
            rf"  KOR for RTOS | the registry key does not exist or cannot be read: {LIBRARY}\RTX"])
        self.assertEqual(not_built, "".join(
            "  " + note["section"] + (f', item "{note["item"]}"' if note["item"] else "") +
            f"\n           why: {note['why']}\n" for note in catalogue["notBuilt"]))

    def test_an_install_folder_without_its_backslash(self):
        key = f"[{RUNTIME}\\install]\n"
        self.prefix.import_registry(key + '"installdir"="C:\\\\Program Files\\\\Vantrel Imaging"\n')
        self.addCleanup(self.prefix.import_registry,
                        key + '"installdir"="C:\\\\Program Files\\\\Vantrel Imaging\\\\"\n')
        items = self.items()
        self.assertEqual(items["TOOLS_2"]["why"], "the file C:\\Program Files\\Vantrel Imaging\\Tools"
                                                  "\\TimeScope.exe does not exist", "this path is joined with one")
        self.assertEqual(items["TOOLS_0"]["why"],
                         r"the folder C:\Program Files\Vantrel ImagingTools does not exist; the install folder "
                         r'does not end in a backslash: the value "installdir" of ' + RUNTIME +
                         r'\install is "C:\Program Files\Vantrel Imaging"')


class DamagedInstallation(Reading):
    INSTALLATION = ("damaged",)
    FOLDER = "C:\\Program Files\\Vantrel & Söhne 'Imaging'\\"

    def test_why(self):
        items = self.items()
        version = 'FLOWFORGE-9.1-"beta"-<b>Ünï視覚</b>'
        self.assertEqual({id: item["why"] for id, item in items.items() if id.startswith(("TOOLS", "FLOW", "ACT"))}, {
            "TOOLS_0": "",
            "TOOLS_1": f"the folder {self.FOLDER}Framewright does not exist",
            "TOOLS_2": "",
            "TOOLS_3": f"the file {self.FOLDER}Tools\\GrabStudio.exe does not exist",
            version + "_0": "",
            version + "_1": "the folder C:\\Flow 'Forge' 視覚\\/Example HMI does not exist",
            version + "_2": "this is a file, not a folder: C:\\Flow 'Forge' 視覚\\Documentation",
            version + "_3": "",
            version + "_4": "",
            version + "_5": "",
            "ACTIVEKOR_0": f"the folder {self.FOLDER}ActiveKOR/Help does not exist",
            "ACTIVEKOR_1": "",
            "ACTIVEKOR_2": "the folder <C:> does not exist",
            "ACTIVEKOR_3": f"the folder {self.FOLDER}ActiveKOR/Demos does not exist",
            "ACTIVEKOR_4": f"the folder {self.FOLDER}ActiveKOR/Demos does not exist",
            "ACTIVEKOR_5": f"the file {self.FOLDER}ActiveKOR/ReadMe.html does not exist"})
        self.assertEqual({id for id, item in items.items() if item["shown"] != (item["why"] == "")}, set())

    def test_a_version_without_the_runtime_manager(self):
        manager = next((self.prefix.path / "drive_c").glob("Flow*/Tools/FlowForgeRuntimeManager.exe"))
        manager.rmdir()
        self.addCleanup(manager.mkdir)
        item = next(item for item in self.items().values() if item["label"] == "Flow Forge Runtime Manager")
        self.assertEqual((item["path"], item["why"]),
                         ("", "no installed version has the file Tools/FlowForgeRuntimeManager.exe"))

    def test_types_of_values(self):
        self.assertEqual([(q["found"], q["type"], q["result"]) for q in self.answer("queries")], [
            (True, "string", self.FOLDER), (True, "multi", "<C:>"), (True, "binary", ""), (True, "string", "\\"),
            (True, "dword", False), (True, "string", True)])

    def test_the_sections_of_a_page_that_shows_only_the_message(self):
        self.prefix.import_registry(f'[{LIBRARY}]\n"KorVersion"=dword:0000000a\n')
        self.addCleanup(self.prefix.import_registry, f'[{LIBRARY}]\n"KorVersion"=""\n')
        invalid = f'this is not a valid installation: the value "KorVersion" of {LIBRARY} is not a text'
        items = self.items()
        self.assertEqual((items["TOOLS_0"]["shown"], items["TOOLS_0"]["why"]), (False, invalid))
        self.assertEqual(items["TOOLS_1"]["why"],
                         f"{invalid}; the folder {self.FOLDER}Framewright does not exist")
        self.assertEqual({section["shown"] for section in self.answer("catalogue")["sections"]}, {0})
        self.assertEqual(self.text("page"), NOT_INSTALLED)


class EmptyInstallation(Reading):
    def test_page_and_sizes(self):
        self.assertEqual(self.text("page"), NOT_INSTALLED)
        sizes = self.answer("sizes")
        self.assertEqual((sizes["rows"], sizes["windowHeight"]), ([], sizes["baseHeight"]))

    def test_queries(self):
        self.assertEqual([(q["found"], q["type"], q["result"]) for q in self.answer("queries")],
                         [(False, "", "")] * 4 + [(False, "", False)] * 2)

    def test_why(self):
        items = self.items()
        # The folder of videos has a condition.
        self.assertEqual(list(items), [id for id in LINKS if id.startswith(("TOOLS", "GUI")) and id != "TOOLS_4"])
        self.assertEqual({item["why"] for item in items.values()}, {
            f'this is not a valid installation: the value "KorVersion" of {LIBRARY} does not exist; the install '
            f'folder is empty: the value "installdir" of {RUNTIME}\\install does not exist'})

    def test_roots_do_not_exist(self):
        self.assertEqual({root["exists"] for root in self.answer("roots")}, {False})

    def test_names_that_are_half_a_pair(self):
        key = r"HKEY_LOCAL_MACHINE\SOFTWARE\Vantrel"
        self.addCleanup(self.prefix.import_registry, f"[-{key}]\n")
        self.prefix.import_registry(
            f'[{LIBRARY}]\n"KorVersion"="1"\n\n'
            f'[{key}\\Vantrel Flow Forge\\Installed Versions\\a\ud800"b]\n"InstallationPath"="C:\\\\windows"\n\n'
            f'[{RUNTIME}\\install]\n"installdir"=hex(1):22,00,0a,00,00,d8,41,00,00,00,42,00,00,00\n')
        (self.prefix.path / "drive_c/windows/FlowForge.exe").write_bytes(b"")
        sections = self.answer("catalogue")["sections"]
        self.assertEqual(sections[2]["title"], 'Flow Forge a\ud800"b')
        self.assertEqual(self.answer("queries")[0]["result"], '"\n\ud800A')
        _, out, _ = self.prefix.run("catalogue", "--json")
        self.assertIn(b'a\\ud800\\"b', out)
        self.assertIn('Flow Forge a\\ud800"b (', self.text("catalogue"))
        self.assertIn('<h2>Flow Forge a\ufffd"b</h2>', self.text("page"))


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main()
