"""What of other people's work is linked into the programs: found in the linker's own list, and which Debian
packages it comes from."""
import functools
import hashlib
import re
from dataclasses import dataclass
from pathlib import Path

from .tools import Failed, run

# The members of archives that were taken, and the objects that were named.
FILES = re.compile(r"^(/\S+\.a)\(|^LOAD (/\S+\.o)$", re.MULTILINE)


@dataclass(frozen=True)
class Package:
    name: str
    version: str
    source: str
    files: tuple

    def copyright(self):
        return Path(f"/usr/share/doc/{self.name}/copyright").read_text("utf-8", "replace")

    def hashes(self):
        return {path: hashlib.sha256(Path(path).read_bytes()).hexdigest() for path in self.files}


def packages(maps):
    """The packages whose files the link maps name, in the order of their names."""
    found = {}
    for path in sorted({str(Path(path).resolve()) for text in maps for pair in FILES.findall(text)
                        for path in pair if path}):
        found.setdefault(owner(path), []).append(path)
    return [describe(name, tuple(files)) for name, files in sorted(found.items())]


def owner(path):
    """The package of a file; the system may know the file by a name that leads over links."""
    return run("dpkg", "--search", path).partition(":")[0]


@functools.cache
def describe(name, files=()):
    form = "${Version}\\t${source:Package}\\t${db:Status-Status}"
    version, source, status = run("dpkg-query", "--show", f"--showformat={form}", name).split("\t")
    if status != "installed":
        raise Failed(f"the package {name} is not installed")
    return Package(name, version, source, files)
