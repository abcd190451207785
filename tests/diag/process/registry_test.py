#!/usr/bin/env python3
"""registry_test.py KORDIAG: the registry commands of the finished program."""
import json
import re
import subprocess
import sys
import time
import unittest
from pathlib import Path

from prefix import Prefix

PROGRAM = None
USER = r"HKEY_CURRENT_USER\Software\Vantrel"
MACHINE = r"HKEY_LOCAL_MACHINE\Software\Vantrel"
USER_RUNTIME = "M_KOR_HKEY_CURRENT_USER_RUNTIME"
VOLATILE = USER_RUNTIME + r"\volatile\state"
ODD = "a\"b\\\r\n\t\u00e9\u8996\U0001f600\x01"


def hexadecimal(text, kind):
    data = (text + "\0").encode("utf-16-le", "surrogatepass")
    return f"hex({kind}):" + ",".join(f"{byte:02x}" for byte in data)


class RegistryCommands(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.prefix = Prefix(PROGRAM)
        cls.addClassCleanup(cls.prefix.close)

    def setUp(self):
        self.prefix.import_registry(f"[-{USER}]\n\n[-{MACHINE}]\n\n[{USER}]\n")

    def kordiag(self, *arguments, **options):
        code, out, err = self.prefix.run("registry", *arguments, **options)
        return code, out.decode("utf-8"), err.decode("utf-8").replace("\r", "")

    def succeed(self, *arguments, **options):
        code, out, err = self.kordiag(*arguments, **options)
        self.assertEqual((code, err), (0, ""), arguments)
        return out

    def refuse(self, message, *arguments, code=1):
        result = self.kordiag(*arguments)
        self.assertEqual(result, (code, "", "kordiag: " + message + "\n"))

    def list(self, path, *options):
        code, answer = self.prefix.json("registry", "list", path, *options)
        self.assertEqual(code, 0)
        return answer

    def values(self, path):
        return {value["name"]: (value["type"], value["data"]) for value in self.list(path)["values"]}


class Reading(RegistryCommands):
    def fill(self):
        self.prefix.import_registry(
            f'[{USER}\\sub one]\n\n[{USER}]\n@="default"\n"d"=dword:fffffffe\n'
            '"q"=hex(b):ff,ff,ff,ff,ff,ff,ff,ff\n"b"=hex:00,0a,ff\n"none"=hex:\n'
            f'"e"={hexadecimal("%TEMP%", 2)}\n"m"={hexadecimal("a" + chr(0) + "b" + chr(0), 7)}\n'
            f'"u"=hex(5):01,02,03,04\n"short"=hex(4):01\n"s"={hexadecimal(ODD, 1)}\n'
            f'"half"={hexadecimal("x" + chr(0xD800) + "y" + chr(0) + "behind", 1)}\n')

    def test_every_type(self):
        self.fill()
        answer = self.list(USER)
        self.assertEqual(list(answer), ["key", "subkeys", "values"])
        self.assertEqual((answer["key"], answer["subkeys"]), (USER, ["sub one"]))
        self.assertEqual(list(answer["values"][0]), ["name", "type", "data"])
        self.assertEqual({v["name"]: (v["type"], v["data"]) for v in answer["values"]}, {
            "": ("string", "default"), "d": ("dword", 0xFFFFFFFE), "q": ("qword", 2**64 - 1),
            "b": ("binary", "000aff"), "none": ("binary", ""), "e": ("expand", "%TEMP%"),
            "m": ("multi", "<a> <b>"), "u": ("unknown", None), "short": ("dword", None),
            "s": ("string", ODD), "half": ("string", "x\ud800y")})

    def test_list_for_people(self):
        self.fill()
        lines = self.succeed("list", USER).splitlines()
        self.assertEqual(lines[:2], [USER, "  [sub one]"])
        self.assertEqual(set(lines[2:]), {
            '  "" string "default"', '  "d" dword "4294967294"', '  "q" qword "18446744073709551615"',
            '  "b" binary "000aff"', '  "none" binary ""', '  "e" expand "%TEMP%"', '  "m" multi "<a> <b>"',
            '  "u" unknown', '  "short" dword',
            '  "s" string "a"b\\\\u000d\\u000a\\u0009\u00e9\u8996\U0001f600\\u0001"',
            '  "half" string "x\\ud800y"'})

    def test_get(self):
        self.fill()
        self.assertEqual(self.succeed("get", USER, "s"), ODD + "\n")
        self.assertEqual(self.succeed("get", USER, ""), "default\n")
        self.assertEqual(self.succeed("get", USER, "d"), "4294967294\n")
        self.assertEqual(self.succeed("get", USER, "b"), "000aff\n")
        code, answer = self.prefix.json("registry", "get", USER, "s")
        self.assertEqual((code, list(answer.items())),
                         (0, [("key", USER), ("name", "s"), ("type", "string"), ("data", ODD)]))
        self.refuse(f'the value "x" of {USER} does not exist', "get", USER, "x")
        self.refuse('the library cannot read the type or the size of the value "u"', "get", USER, "u")
        self.refuse('the library cannot read the type or the size of the value "short"', "get", USER, "short")

    def test_type_and_name(self):
        self.fill()
        for name, kind in (("d", "dword"), ("q", "qword"), ("m", "multi"), ("e", "expand"), ("short", "dword")):
            self.assertEqual(self.succeed("type", USER, name), kind + "\n")
        self.refuse('the library cannot read the type or the size of the value "u"', "type", USER, "u")
        self.assertEqual(self.succeed("name", "M_KOR_HKEY_LOCAL_MACHINE_ROOT", "--create"),
                         r"HKEY_LOCAL_MACHINE\Software\Vantrel\Vantrel Imaging Library" + "\n")
        self.assertEqual(self.succeed("name", USER_RUNTIME + "\\a", "--rtx", "--create"),
                         r"HKEY_LOCAL_MACHINE\Software\Vantrel\Vantrel Imaging Library\RTXUser"
                         r"\Vantrel Imaging Library\Runtime\a" + "\n")

    def test_keys_that_cannot_be_opened(self):
        self.refuse(f"the key does not exist or cannot be read: {USER}\\x", "list", USER + "\\x")
        self.refuse(r"the path does not begin with a known root: HKCU\x", "list", r"HKCU\x")
        self.refuse('refused: the path contains "volatile" outside the volatile locations: HKEY_CURRENT_USER'
                    r"\Software\Vantrel\Vantrel Imaging Library\Runtime\a\volatile",
                    "list", USER_RUNTIME + r"\a\volatile")
        self.assertEqual(self.list(USER)["subkeys"], [], "nothing was created")

    def test_wrong_usage(self):
        code, out, err = self.kordiag("get", USER)
        self.assertEqual((code, out, err), (2, "", "kordiag registry get: missing operand\n"
                                                   "usage: kordiag registry get PATH NAME [--rtx] [--json]\n"))
        code, out, err = self.kordiag()
        self.assertEqual((code, out), (2, ""))
        self.assertEqual(err.count("\nusage: kordiag registry "), 13)
        code, out, err = self.kordiag("--help")
        self.assertEqual((code, err, out.count("usage: kordiag registry ")), (0, "", 13))


class Changes(RegistryCommands):
    def test_set(self):
        for name, kind, data, stored in (
                ("d", "dword", "5", ("dword", 5)), ("d-1", "dword", "-1", ("dword", 2**32 - 1)),
                ("dmin", "dword", "-2147483648", ("dword", 2**31)), ("dx", "dword", "0xffffFFFF", ("dword", 2**32 - 1)),
                ("q", "qword", "18446744073709551615", ("qword", 2**64 - 1)),
                ("qmin", "qword", "-9223372036854775808", ("qword", 2**63)),
                ("s", "string", ODD[:-1], ("string", ODD[:-1])), ("empty", "string", "", ("string", "")),
                ("e", "expand", "%TEMP%\\x", ("expand", "%TEMP%\\x")),
                ("b", "binary", "00 fF,a0", ("binary", "00ffa0")),
                ("b0", "binary", "", ("binary", "")), ("", "string", "default", ("string", "default"))):
            self.assertEqual(self.succeed("set", USER, name, kind, data), "")
            self.assertEqual(self.values(USER)[name], stored)

    def test_set_what_looks_like_an_option(self):
        self.succeed("set", USER, "--", "--name", "string", "--data")
        self.assertEqual(self.values(USER), {"--name": ("string", "--data")})

    def test_set_refuses_wrong_data(self):
        usage = ("kordiag: unknown type, or the data does not fit the type\nusage: kordiag registry set PATH NAME "
                 "dword|qword|string|expand|binary DATA [--rtx] [--create] [--anywhere]\n")
        for kind, data in (("dword", "4294967296"), ("dword", "-2147483649"), ("dword", ""), ("dword", "-"),
                           ("dword", "0x"), ("dword", "1x"), ("dword", " 1"), ("dword", "--1"),
                           ("qword", "18446744073709551616"), ("qword", "-9223372036854775809"),
                           ("binary", "0"), ("binary", "0g"), ("binary", "0 0"), ("multi", "x"), ("String", "x")):
            with self.subTest(kind, data=data):
                data = ("--", data) if data.startswith("--") else (data,)
                self.assertEqual(self.kordiag("set", USER, "n", kind, *data), (2, "", usage))
        self.assertEqual(self.values(USER), {})

    def test_the_writable_root_rule(self):
        self.prefix.import_registry(f"[{MACHINE}]\n")
        rule = ("refused by the writable-root rule: values are written only below {} unless --anywhere is given; "
                "this is {}")
        self.refuse(rule.format("HKEY_CURRENT_USER", MACHINE), "set", MACHINE, "n", "dword", "1")
        self.refuse(rule.format("HKEY_LOCAL_MACHINE in the RTX layout", r"HKEY_USERS\.Default"),
                    "set", r"HKEY_USERS\.Default", "n", "dword", "1", "--rtx")
        self.assertEqual(self.values(MACHINE), {})
        self.succeed("set", MACHINE, "n", "dword", "1", "--anywhere")
        self.succeed("set", MACHINE, "r", "dword", "1", "--rtx")
        self.assertEqual(set(self.values(MACHINE)), {"n", "r"})

    def test_create(self):
        path = USER + r"\new\key"
        self.refuse(f"the key does not exist or cannot be read: {path}", "set", path, "n", "dword", "1")
        self.succeed("set", path, "n", "dword", "1", "--create")
        self.assertEqual(self.values(path), {"n": ("dword", 1)})

    def test_keys_and_values(self):
        self.succeed("create-key", USER, "a")
        self.succeed("create-key", USER + "\\a", "b\\c")
        self.succeed("set", USER + r"\a\b", "n", "dword", "1")
        self.assertEqual(self.list(USER + "\\a")["subkeys"], ["b"])
        self.succeed("delete-tree", USER, "a")
        self.assertEqual(self.list(USER + "\\a")["subkeys"], [])
        self.succeed("create-key", USER + "\\a", "b\\c")
        self.succeed("delete-key", USER, "a\\b")
        self.assertEqual(self.list(USER + "\\a")["subkeys"], [])
        self.succeed("delete-key", USER, "a")
        self.assertEqual(self.list(USER)["subkeys"], [])
        self.succeed("set", USER, "n", "dword", "1")
        self.succeed("delete-value", USER, "n")
        self.assertEqual(self.values(USER), {})
        gone = "{} of " + USER + ": it does not exist, or the system refused"
        self.refuse(gone.format('could not delete the value "n"'), "delete-value", USER, "n")
        self.refuse(gone.format('could not delete the subkey "a"'), "delete-key", USER, "a")
        self.refuse(gone.format('could not empty the subkey "a"'), "delete-tree", USER, "a")

    def test_deleting_stays_below_the_key(self):
        self.succeed("set", USER + r"\a\b", "n", "dword", "1", "--create")
        self.succeed("create-key", USER, "keep")
        for command in ("delete-key", "delete-tree"):
            refusal = ("kordiag: SUBKEY must be a name, or a path, below the key\n"
                       f"usage: kordiag registry {command} PATH SUBKEY [--rtx]\n")
            for path in ("..", r"..\keep", r"b\..", r"b\..\..", "\\", r"\Software", ""):
                with self.subTest(command, path=path):
                    self.assertEqual(self.kordiag(command, USER + r"\a", path), (2, "", refusal))
        self.assertEqual(self.list(USER)["subkeys"], ["a", "keep"])
        self.assertEqual(self.values(USER + r"\a\b"), {"n": ("dword", 1)})
        self.succeed("create-key", USER + r"\a", "..b")
        self.succeed("delete-key", USER + r"\a", "..b")

    def test_copies(self):
        self.prefix.import_registry(f'[{USER}\\src]\n"d"=dword:1\n"s"="x"\n"q"=hex(b):01,00,00,00,00,00,00,00\n'
                                    f'"m"=hex(7):00,00\n\n[{USER}\\src\\sub]\n"t"="y"\n')
        self.succeed("copy-values", USER + "\\src", USER + "\\dst")
        copied = {"d": ("dword", 1), "s": ("string", "x"), "q": ("dword", 0)}
        self.assertEqual((self.values(USER + "\\dst"), self.list(USER + "\\dst")["subkeys"]), (copied, []))
        self.succeed("copy-tree", USER + "\\src", USER + "\\tree")
        self.assertEqual((self.values(USER + "\\tree"), self.values(USER + r"\tree\sub")),
                         (copied, {"t": ("string", "y")}))
        # A name that begins with the destination's is no reason to leave anything out.
        self.succeed("copy-tree", USER + r"\src\sub", USER + "\\sr")
        self.assertEqual(self.values(USER + "\\sr"), {"t": ("string", "y")})
        self.succeed("copy-tree", USER + r"\src\sub", USER + "\\src")
        self.assertEqual(self.values(USER + "\\src")["t"], ("string", "y"))

    def test_a_copy_into_itself_ends(self):
        for destination in (r"\a\In", r"\A\in", r"\a\IN\deep"):
            with self.subTest(destination):
                self.prefix.import_registry(f'[-{USER}]\n\n[{USER}\\a]\n"n"=dword:1\n\n[{USER}\\a\\b]\n"o"=dword:2\n\n'
                                            f"[{USER}\\a\\in]\n")
                self.succeed("copy-tree", USER + "\\a", USER + destination)
                self.assertEqual(self.values(USER + destination), {"n": ("dword", 1)})
                self.assertEqual(self.values(USER + destination + "\\b"), {"o": ("dword", 2)})
                # Not a copy of the copy.
                self.assertNotIn("deep" if "deep" in destination else "in",
                                 [name.lower() for name in self.list(USER + destination)["subkeys"]])

    def test_branches_that_a_copy_leaves_out(self):
        self.prefix.import_registry(
            "".join(f'[{USER}\\src{branch}]\n"n"=dword:1\n\n' for branch in
                    (r"\a", r"\My Volatile data\below", r"\b\nonvolatile", r"\b\c", r"\in\volatile")) +
            f"[{USER}\\src\\in]\n")
        note = 'kordiag: left out: the copy\'s path would contain "volatile" outside the volatile locations: {}\n'
        both = note.format(USER + r"\src\My Volatile data") + note.format(USER + r"\src\b\nonvolatile")
        for destination in (USER + "\\dst", USER + "\\dst\\", USER + r"\src\in"):
            with self.subTest(destination):
                expected = both if "src" in destination else both + note.format(USER + r"\src\in\volatile")
                self.assertEqual(self.kordiag("copy-tree", USER + "\\src", destination), (0, "", expected))
        copied = self.list(USER + "\\dst")
        self.assertEqual((copied["subkeys"], self.list(USER + r"\dst\b")["subkeys"]), (["a", "b", "in"], ["c"]))
        # Where the branch is there already, its values are copied; what is below it still cannot be made.
        self.prefix.import_registry(f"[{USER}\\dst\\My Volatile data]\n\n[{USER}\\dst\\b\\nonvolatile]\n")
        self.assertEqual(self.kordiag("copy-tree", USER + "\\src", USER + "\\dst"),
                         (0, "", note.format(USER + r"\src\in\volatile")
                          + note.format(USER + r"\src\My Volatile data\below")))
        self.assertEqual(self.values(USER + r"\dst\b\nonvolatile"), {"n": ("dword", 1)})
        # A volatile location is one place where such a name may be.
        self.succeed("copy-tree", USER + "\\src", VOLATILE)
        self.assertEqual(self.values(VOLATILE + r"\b\nonvolatile"), {"n": ("dword", 1)})

    def test_copies_that_the_rule_refuses(self):
        self.prefix.import_registry(f'[{USER}\\src]\n"d"=dword:1\n')
        note = ("kordiag: no value was copied because of the writable-root rule: values are written only below "
                f"HKEY_CURRENT_USER unless --anywhere is given; this is {MACHINE}\\dst\n")
        for command in ("copy-values", "copy-tree"):
            self.assertEqual(self.kordiag(command, USER + "\\src", MACHINE + "\\dst"), (0, "", note))
            self.assertEqual(self.values(MACHINE + "\\dst"), {})
        self.succeed("copy-values", USER + "\\src", MACHINE + "\\dst", "--anywhere")
        self.assertEqual(self.values(MACHINE + "\\dst"), {"d": ("dword", 1)})


class VolatileData(RegistryCommands):
    def test_stamps_and_clearing(self):
        self.succeed("set", VOLATILE, "n", "dword", "1", "--create")
        stamps = self.values(USER_RUNTIME + r"\volatile")
        self.assertEqual(set(stamps), {"Creation Time", "Process Name", "PathCreator", "ValueCreator"})
        self.assertEqual((stamps["Process Name"], stamps["PathCreator"], stamps["ValueCreator"]),
                         (("string", "kordiag.exe"), ("string", r"volatile\state"), ("string", "n")))
        self.succeed("clear-volatile")
        self.assertEqual(self.list(USER_RUNTIME + r"\volatile")["subkeys"], [])
        self.prefix.import_registry(f"[-{USER}]\n")
        self.succeed("clear-volatile")
        self.succeed("create-key", USER_RUNTIME, "a", "--create")
        self.refuse('the key "Volatile" of the current user does not exist, or not all of it could be deleted',
                    "clear-volatile")

    def test_reading_a_volatile_location_creates_nothing(self):
        self.succeed("create-key", USER_RUNTIME, "a", "--create")
        self.assertEqual(self.kordiag("list", VOLATILE)[0], 1)
        self.assertEqual(self.list(USER_RUNTIME)["subkeys"], ["a"])


class Locks(RegistryCommands):
    def lock(self, *command, path=VOLATILE, **options):
        return self.prefix.start("registry", "lock", path, "--create", "--", *command,
                                 stdin=subprocess.PIPE, **options)

    def hold(self):
        """A lock that is held until its standard input ends."""
        holder = self.lock("cmd", "/c", "echo held& set /p x=")
        self.addCleanup(self.release, holder)
        self.assertEqual(holder.stdout.readline().strip(), b"held")
        return holder

    def release(self, holder):
        holder.stdin.close()
        holder.wait(timeout=60)
        holder.stdout.close()
        holder.stderr.close()

    def wait_until_it_waits(self, process):
        """Until the process has slept for a second."""
        samples, before = 0, None
        deadline = time.monotonic() + 60
        while samples < 20:
            self.assertLess(time.monotonic(), deadline)
            self.assertIsNone(process.poll(), "the lock is held")
            fields = Path(f"/proc/{process.pid}/stat").read_text(encoding="ascii").rpartition(")")[2].split()
            now = (fields[11], fields[12])  # the time in its own code and in the system's
            samples = samples + 1 if fields[0] == "S" and now == before else 0
            before = now
            time.sleep(0.05)

    def test_the_commands_exit_code_and_output(self):
        for code in (0, 1, 2, 77):
            self.assertEqual(self.kordiag("lock", VOLATILE, "--create", "--", "cmd", "/c", f"echo out& exit {code}"),
                             (code, "out\r\n", ""))

    def test_the_commands_arguments_arrive(self):
        for name in ("a b", 'q"x"', "back\\", 'both\\"', 'two\\\\"x', "", "--json", "\u00e9\u8996"):
            code, out, _ = self.prefix.run(
                "registry", "lock", VOLATILE, "--create", "--", PROGRAM, "setting", "--", name)
            self.assertEqual((code, out.decode().splitlines()[0] if code else out), (1, name + " is not set"))

    def test_the_second_waits_for_the_first(self):
        holder = self.hold()
        second = self.lock("cmd", "/c", "echo second")
        self.wait_until_it_waits(second)
        other = self.lock("cmd", "/c", "echo other", path=r"M_KOR_HKEY_LOCAL_MACHINE_RUNTIME\volatile\x")
        self.assertEqual(other.communicate(timeout=60)[0], b"other\r\n")
        self.assertIsNone(second.poll(), "the lock is held")
        holder.stdin.close()
        self.assertEqual(second.communicate(timeout=60)[0], b"second\r\n")
        self.assertEqual(second.returncode, 0)

    def test_a_holder_that_was_ended(self):
        holder = self.hold()
        second = self.lock("cmd", "/c", "echo second")
        self.wait_until_it_waits(second)
        holder.kill()
        out, err = second.communicate(timeout=60)
        self.assertEqual((second.returncode, out), (1, b""))
        self.assertIn(b"ended without releasing it", err)
        self.assertEqual(self.lock("cmd", "/c", "echo third").communicate(timeout=60)[0], b"third\r\n")

    def test_refusals(self):
        no_lock = ("the lock could not be taken: only volatile locations of the runtime and development "
                   "roots have one, and the system may refuse it")
        self.refuse(no_lock, "lock", USER, "--", "cmd", "/c", "echo x")
        self.refuse(no_lock, "lock", r"M_KOR_HKEY_LOCAL_MACHINE_IMAGING_BOARD\volatile\x", "--create", "--", "cmd")
        self.refuse("the command could not be started: no such program", "lock", VOLATILE, "--create", "--",
                    "no such program")
        code, _, err = self.kordiag("lock", VOLATILE, "cmd")
        self.assertEqual((code, err.splitlines()[1]),
                         (2, "usage: kordiag registry lock PATH [--rtx] [--create] -- COMMAND..."))


class LongListings(RegistryCommands):
    COUNT = 100000

    def setUp(self):
        pass

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.prefix.import_registry(f'[{USER}\\few]\n"v"="x"\n\n[{USER}\\many]\n' + "".join(
            f'"v{i:06}"="value number {i}"\n' for i in range(cls.COUNT)))

    def peak(self, path):
        """The most memory that listing the key took, in KB, and the listing."""
        with open(self.prefix.path / "listing.json", "w+b") as file:
            process = self.prefix.start("registry", "list", path, "--json", stdout=file, stderr=None)
            peak = 0
            while process.poll() is None:
                with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
                    found = re.search(r"VmHWM:\s*(\d+) kB", status.read())
                peak = int(found[1]) if found else peak
                time.sleep(0.005)
            self.assertEqual(process.returncode, 0)
            file.seek(0)
            return peak, json.load(file)

    def test_memory_is_bounded(self):
        # Its run is short, so one sampling may miss its peak.
        few = max(self.peak(USER + "\\few")[0] for _ in range(5))
        many, listing = self.peak(USER + "\\many")
        self.assertEqual(len(listing["values"]), self.COUNT)
        self.assertEqual(listing["values"][4711], {"name": "v004711", "type": "string", "data": "value number 4711"})
        print(f"peak memory: {few} KB for 1 value, {many} KB for {self.COUNT}", file=sys.stderr)
        self.assertLess(many - few, 3000)

    def test_a_reader_that_has_enough(self):
        for options in ((), ("--json",)):
            process = self.prefix.start("registry", "list", USER + "\\many", *options)
            self.assertTrue(process.stdout.read(100))
            process.stdout.close()
            started = time.monotonic()
            self.assertEqual(process.wait(timeout=60), 0)
            # All of it takes more than five seconds here.
            self.assertLess(time.monotonic() - started, 1, "it goes on although nobody reads")
            self.assertEqual(process.stderr.read(), b"")
            process.stderr.close()


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main()
