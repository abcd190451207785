"""Checks the form and the habits of all sources, two tools for C++ and one each for the scripts.

lint.py BUILD: BUILD is a build folder of the preset "lint", which tells clang-tidy how each source
is compiled. A file that was found clean is not looked at again until it, a header that it includes,
or the tool changes. Prints each finding, and at the end what was checked; 1 if there was a finding.
"""
import concurrent.futures
import functools
import hashlib
import json
import os
import re
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
INCLUDE = re.compile(rb'^#include [<"]([^>"]+)[>"]', re.MULTILINE)
TIDY_ARGUMENTS = ["--target=x86_64-w64-mingw32", "-Wno-unknown-warning-option",
                  "-Wno-unused-command-line-argument",
                  "-Wno-deprecated-declarations",
                  "-Wno-microsoft-exception-spec"]


def run(command):
    return subprocess.run(command, cwd=ROOT, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, errors="replace")


def sources():
    """All files of the project that are not ignored, relative to its root."""
    listing = run(["git", "ls-files", "--cached", "--others", "--exclude-standard"])
    if listing.returncode == 0:
        found = listing.stdout.splitlines()
    else:
        found = [os.path.relpath(os.path.join(folder, name), ROOT)
                 for folder, folders, names in os.walk(ROOT) for name in names
                 if not os.path.relpath(folder, ROOT).startswith(("build", ".git"))]
    return sorted(name for name in found if os.path.isfile(os.path.join(ROOT, name)))


@functools.lru_cache(maxsize=None)
def content(path):
    with open(os.path.join(ROOT, path), "rb") as file:
        return file.read()


@functools.lru_cache(maxsize=None)
def includes(path):
    """The headers of the project that a source names: from the root, from beside itself, or, as those
    of mfc/, without a folder."""
    found = []
    for name in INCLUDE.findall(content(path)):
        name = name.decode()
        for candidate in (name, os.path.join(os.path.dirname(path), name), os.path.join("mfc", name)):
            if os.path.isfile(os.path.join(ROOT, candidate)):
                found.append(os.path.normpath(candidate))
                break
    return found


def with_headers(path):
    """The source and all of the project's headers behind it."""
    reached, waiting = set(), [path]
    while waiting:
        name = waiting.pop()
        if name not in reached:
            reached.add(name)
            waiting += includes(name)
    return sorted(reached)


class Check:
    """One run of a tool over one file. The key changes with all that its result depends on."""

    def __init__(self, tool, path, command, key_parts):
        self.tool, self.path, self.command = tool, path, command
        digest = hashlib.sha256(repr((command, version_of(command[0]))).encode())
        for part in key_parts:
            digest.update(content(part) if isinstance(part, str) else part)
        self.key = digest.hexdigest()


@functools.lru_cache(maxsize=None)
def version_of(tool):
    return run([tool, "--version"]).stdout


def compile_commands(build):
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as commands:
        return {os.path.relpath(entry["file"], ROOT): entry["command"]
                for entry in json.load(commands)}


def uncompiled(files, compiled):
    """Sources that no target has, which clang-tidy would never see. Examples are for others."""
    return [path for path in files if path.endswith(".cpp") and path not in compiled
            and not path.startswith("examples/")]


def checks(build, files, compiled):
    tidy = ["clang-tidy-19", "--quiet", "-p", build]
    tidy += ["--extra-arg=" + argument for argument in TIDY_ARGUMENTS]
    settings = [path for path in files if os.path.basename(path) == ".clang-tidy"]
    for path in files:
        extension = os.path.splitext(path)[1]
        first_line = content(path).split(b"\n", 1)[0]
        if extension in (".cpp", ".h"):
            yield Check("clang-format", path, ["clang-format-19", "--dry-run", "-Werror", path],
                        [".clang-format", path])
        if path in compiled and extension == ".cpp":
            yield Check("clang-tidy", path, tidy + [path],
                        settings + [compiled[path].encode()] + with_headers(path))
        if extension == ".sh" or (first_line.startswith(b"#!") and b"bash" in first_line):
            yield Check("shellcheck", path, ["shellcheck", path], [".shellcheckrc", path])
        if extension == ".py" or (first_line.startswith(b"#!") and b"python" in first_line):
            yield Check("flake8", path, ["flake8", path], [".flake8", path])


def main(build):
    clean_list = os.path.join(build, "clean")
    known = set()
    if os.path.exists(clean_list):
        with open(clean_list, encoding="utf-8") as file:
            known = set(file.read().split())
    files, compiled = sources(), compile_commands(build)
    everything = list(checks(build, files, compiled))
    still_clean = [check.key for check in everything if check.key in known]
    todo = [check for check in everything if check.key not in known]
    # The long ones first, so that no processor is idle at the end.
    todo.sort(key=lambda check: (check.tool != "clang-tidy", -len(content(check.path))))
    unseen = uncompiled(files, compiled)
    for path in unseen:
        print(f"{path}: no target compiles this file, so clang-tidy cannot read it")
    findings, said = len(unseen), time.monotonic()
    with open(clean_list, "w", encoding="utf-8") as clean, \
            concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        clean.write("\n".join(still_clean) + "\n")
        running = {pool.submit(run, check.command): check for check in todo}
        for count, done in enumerate(concurrent.futures.as_completed(running), start=1):
            check, result = running[done], done.result()
            if result.returncode == 0:
                clean.write(check.key + "\n")
                clean.flush()
            else:
                findings += 1
                print(f"{check.tool} finds in {check.path}:\n{result.stdout}", flush=True)
            if time.monotonic() - said > 10:
                said = time.monotonic()
                print(f"{count} of {len(todo)} checks done", file=sys.stderr, flush=True)
    for tool in sorted({check.tool for check in everything}):
        total = sum(check.tool == tool for check in everything)
        now = sum(check.tool == tool for check in todo)
        print(f"{tool}: {total} files, {now} of them looked at now, the rest unchanged since clean")
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main(os.path.abspath(sys.argv[1])))
