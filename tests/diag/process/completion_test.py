#!/usr/bin/env python3
"""completion_test.py KORDIAG: the words that the scripts of kordiag completion offer are those that the usage
of each command names. The script for bash runs; PowerShell is not here, so the one for it is read."""
import re
import subprocess
import sys
import unittest

from prefix import Prefix

PROGRAM = None
# Sets what bash tells a completion function, and prints what that answers.
BASH = r"""
set -eu
source /dev/stdin
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
_kordiag kordiag "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf '%s\n' "${COMPREPLY[@]}"
complete -p kordiag kordiag.exe >&2
"""


class Completion(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.prefix = Prefix(PROGRAM)
        cls.addClassCleanup(cls.prefix.close)
        cls.bash, cls.powershell = (cls.text("completion", shell) for shell in ("bash", "powershell"))
        # Of each command its alternatives and options, as its usage names them.
        cls.words = {}
        commands = re.findall(r"^  (\S+)", cls.text("--help"), re.MULTILINE)
        for command in dict.fromkeys(commands):
            for usage in cls.text(command, "--help").splitlines():
                _, _, name, *rest = (word.strip("[]") for word in usage.split())
                if name == "registry":
                    name += " " + rest.pop(0)
                cls.words[name] = [part for word in rest if word.startswith("--") or "|" in word
                                   for part in word.split("|") if part != "--"] + ["--help"]
        groups = [name.partition(" ") for name in cls.words]
        cls.words["registry"] = [rest for group, _, rest in groups if group == "registry"] + ["--help"]
        cls.words[""] = [*dict.fromkeys(first for first, _, _ in groups), "--help", "--version"]

    @classmethod
    def text(cls, *arguments):
        code, out, err = cls.prefix.run(*arguments)
        assert (code, err) == (0, b""), (code, err)
        return out.decode()

    def offered(self, *words):
        """What bash would offer for the last of the words."""
        done = subprocess.run(["bash", "-c", BASH, "bash", "kordiag", *words], input=self.bash.encode(),
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=True)
        self.assertEqual(done.stderr.decode().splitlines(),
                         [f"complete -o default -F _kordiag {name}" for name in ("kordiag", "kordiag.exe")])
        return done.stdout.decode().split()

    def test_the_usages_are_understood(self):
        self.assertEqual(self.words["check"], ["--json", "--strict", "--help"])
        self.assertEqual(self.words["completion"], ["powershell", "bash", "--help"])
        self.assertEqual(self.words["registry set"], ["dword", "qword", "string", "expand", "binary", "--rtx",
                                                      "--create", "--anywhere", "--help"])
        self.assertEqual(self.words["registry lock"], ["--rtx", "--create", "--help"])
        self.assertEqual(self.words[""][-4:], ["completion", "registry", "--help", "--version"])

    def test_bash_offers_the_words_of_each_command(self):
        for command, words in self.words.items():
            with self.subTest(command):
                self.assertEqual(self.offered(*command.split(), ""), words)
                self.assertEqual(self.offered(*command.split(), "--"), [word for word in words if word[0] == "-"])

    def test_bash_offers_them_behind_operands_and_options(self):
        self.assertEqual(self.offered("registry", "set", r"C:\a * b", "--rtx", "q"), ["qword"])
        self.assertEqual(self.offered("re"), ["report", "registry"])
        self.assertEqual(self.offered("registry", "copy-"), ["copy-values", "copy-tree"])
        self.assertEqual(self.offered("nonsense", ""), [])
        self.assertEqual(self.offered("report", "--output", "C"), [])

    def test_the_script_for_powershell_has_the_same_cases(self):
        cases = re.findall(r"^        ' (.*)(?<= )(\*?)' \{ '([^']*)'; break \}$", self.powershell, re.MULTILINE)
        self.assertEqual({before.strip(): words.split() for before, _, words in cases}, self.words)
        # Behind a command anything may stand; behind a group and the program's name, nothing.
        self.assertEqual([before.strip() for before, more, _ in cases if not more], ["", "registry"])
        rest = re.sub(r"^        ' .*\n", "", self.powershell, flags=re.MULTILINE)
        self.assertIn("Register-ArgumentCompleter -Native -CommandName kordiag, kordiag.exe -ScriptBlock {\n", rest)
        for opening, closing in ("{}", "()", "[]"):
            self.assertEqual(rest.count(opening), rest.count(closing))

    def test_another_shell_is_wrong_usage(self):
        self.assertEqual(self.prefix.run("completion", "fish"), (2, b"", (
            b"kordiag completion: unknown shell: fish\nusage: kordiag completion powershell|bash\n")))


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main()
