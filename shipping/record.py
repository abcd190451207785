"""The build record: with which tools and flags the programs were made."""
import json
import shlex

from . import product
from .linked import describe
from .tools import run

TOOLS = {
    "compiler": ("x86_64-w64-mingw32-g++-posix", "g++-mingw-w64-x86-64-posix"),
    "linker": ("x86_64-w64-mingw32-ld", "binutils-mingw-w64-x86-64"),
    "resource compiler": ("x86_64-w64-mingw32-windres", "binutils-mingw-w64-x86-64"),
    "C run time": (None, "mingw-w64-x86-64-dev"),
    "installer": ("wixl", "wixl"),
}


def text(build, targets):
    record = {"product": product.NAME, "version": product.version(),
              "tools": {use: tool(*names) for use, names in TOOLS.items()},
              "programs": {target.rpartition("/")[2]: commands(build, target) for target in targets}}
    return (json.dumps(record, indent=2) + "\n").encode()


def tool(program, package):
    found = {"package": package, "version": describe(package).version}
    return {**found, "says": run(program, "--version").splitlines()[0]} if program else found


def commands(build, target):
    """The flags of all compilations of a program, and those of its link."""
    lines = run("ninja", "-C", build / "release", "-t", "commands", target).strip().splitlines()
    compiled = [line for line in lines if " -c " in line and "windres" not in line]
    return {"compile": sorted({flags(line) for line in compiled}),
            "link": flags(lines[-1])}


def flags(line):
    """The options of a command that do not name a file of this build."""
    words = shlex.split(line.replace(str(product.ROOT), "."))
    return " ".join(word for word in words if word.startswith("-") and not word.startswith(
        ("-I", "-o", "-c", "-MD", "-MT", "-MF", "-Wl,--out-implib")))
