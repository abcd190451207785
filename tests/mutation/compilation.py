"""How each source is compiled, in the form that libclang takes: the commands of the lint preset are
those of a GCC that compiles for Windows."""
import json
import re
import shlex
import subprocess
from pathlib import Path

# GCC's built-in headers call built-in functions of its own; clang's take their place.
CLANG_HEADERS = "/usr/lib/llvm-19/lib/clang/19/include"
TAKEN = re.compile(r"-D|-U|-I|-isystem|-std=|-include")


def translate(command):
    """The arguments that say what the source means, without those about warnings and output."""
    words = iter(shlex.split(command)[1:])
    taken = []
    for word in words:
        if TAKEN.match(word):
            taken.append(word)
            if word in ("-D", "-U", "-I", "-isystem", "-include"):
                taken.append(next(words))
    return taken


def implicit_folders(compiler):
    """Where the compiler looks for <headers>, without the folders of its built-in ones."""
    answer = subprocess.run([compiler, "-E", "-v", "-xc++", "/dev/null"], check=True, text=True,
                            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE).stderr
    own = subprocess.run([compiler, "-print-file-name=include"], check=True, text=True,
                         stdout=subprocess.PIPE).stdout.strip()
    built_in = {Path(own).resolve(), Path(own + "-fixed").resolve()}
    listed = answer.split("#include <...> search starts here:")[1].split("End of search list")[0]
    folders = [Path(line.strip()).resolve() for line in listed.strip().splitlines()]
    return [str(folder) for folder in folders if folder not in built_in]


def read_commands(database):
    """For each source its arguments, from the file compile_commands.json."""
    entries = json.loads(database.read_text())
    compiler = shlex.split(entries[0]["command"])[0]
    common = ["--target=x86_64-w64-mingw32", "-xc++", "-nostdinc", "-nostdinc++", "-w"]
    for folder in [CLANG_HEADERS, *implicit_folders(compiler)]:
        common += ["-isystem", folder]
    return {Path(entry["file"]): translate(entry["command"]) + common for entry in entries
            if entry["file"].endswith(".cpp")}
