"""The kit that tries everything on Windows: test programs, both programs, installer, demonstration."""
import re
import tempfile
from pathlib import Path

from . import product
from .symbols import settled
from .tools import Failed, run

PARTS = Path(__file__).with_name("kit")
DEMO = product.ROOT / "wine/demo/development"
TOOLS = ("tests/endtoend/metrics.exe", "tests/endtoend/planted.dll")
STUB = "wine/demo/demostub.exe"
# What test programs find beside them: the engine that stands in for the real one, pages that examples are
# taken from.
STAND_IN = "wine/htmldocument/htmldocument.dll"
PAGES = ("folder-settings.md", "kordiag.md")
# Two halves with a restart of the registry's server in between, which nobody can give it on Windows.
ONLY_UNDER_WINE = "registry_restart_tests.exe"


def contents(build, programs, installer):
    """{name: bytes}; programs are the shipped ones."""
    found = {path.name: windows_text(path) if path.suffix in (".cmd", ".md") else path.read_bytes()
             for path in PARTS.iterdir()}
    found |= {f"programs/{name}": data for name, data in programs.items()}
    found[installer.name] = installer.read_bytes()
    found |= {f"tools/{Path(name).name}": (build / "release" / name).read_bytes() for name in TOOLS}
    found |= {f"tests/{name}": data for name, data in test_programs(build / "debug")}
    found |= {f"tests/{name}": (product.ROOT / "docs" / name).read_bytes() for name in PAGES}
    found["demo/registry.reg"] = windows_text(DEMO / "registry.reg")
    found |= {f"demo/files/{name}": data for name, data in demonstration((build / "release" / STUB).read_bytes())}
    return found


def windows_text(path):
    """With the line ends that the command processor wants."""
    return path.read_bytes().replace(b"\r\n", b"\n").replace(b"\n", b"\r\n")


def test_programs(folder):
    """The unit tests and the stand-in, without what only a debugger reads, which is most of them."""
    paths = [path for path in sorted(folder.glob("tests/**/*_tests.exe")) if path.name != ONLY_UNDER_WINE]
    if not paths:
        raise Failed(f"there are no test programs in {folder}")
    with tempfile.TemporaryDirectory() as stage:
        for path in (*paths, folder / STAND_IN):
            stripped = Path(stage) / path.name
            run("x86_64-w64-mingw32-strip", "-o", stripped, path)
            yield path.name, settled(without_identity(stripped.read_bytes()))


def without_identity(program):
    """Without the number that the linker made from the symbols, in which the build's folder counts, too."""
    return re.sub(rb"RSDS.{8}(?=LLD PDB\.)", b"RSDS" + bytes(8), program, flags=re.DOTALL)


def demonstration(stub):
    """The files of the demonstration's list (its form: wine/demo/development/files.txt), from the root of
    the drive; a name that ends with a slash is an empty folder."""
    folder = ""
    for line in (DEMO / "files.txt").read_text("utf-8").splitlines():
        kind, _, path = line.strip().partition(" ")
        path = path.strip()
        if kind == "in":
            folder = path
        elif kind == "folder":
            yield f"{folder}/{path}/", b""
        elif kind == "program":
            yield f"{folder}/{path}", stub
        elif kind == "file":
            yield f"{folder}/{path}", f"Part of the demonstration installation: {path}\n".encode()
