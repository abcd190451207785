#!/usr/bin/env python3
"""pack.py BUILD: packs the programs of BUILD/release and their documentation into one archive in BUILD.

Order, times and attributes are fixed, so the same files give the same bytes. SOURCE_DATE_EPOCH sets the
time of the entries, as other builders know it."""
import hashlib
import os
import re
import sys
import time
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
EARLIEST = 315532800  # 1980-01-01, where the times of an archive begin
REGULAR_FILE = 0o100644 << 16
UNIX = 3


def version():
    return re.search(r"project\([^)]*VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text())[1]


def contents(build):
    """Name in the archive and bytes, in the order of the names."""
    files = {name: build / "release" / folder / name
             for folder, name in (("app", "korcontrolcenter.exe"), ("diag", "kordiag.exe"))}
    files["README.md"] = ROOT / "README.md"
    files |= {f"docs/{path.name}": path for path in (ROOT / "docs").iterdir()}
    found = {name: path.read_bytes() for name, path in sorted(files.items())}
    found["SHA256SUMS"] = "".join(
        f"{hashlib.sha256(data).hexdigest()} *{name}\n" for name, data in found.items()).encode()
    return found


def pack(build):
    name = f"korcontrolcenter-{version()}-win64"
    moment = time.gmtime(max(EARLIEST, int(os.environ.get("SOURCE_DATE_EPOCH", EARLIEST))))[:6]
    archive = build / f"{name}.zip"
    unfinished = archive.with_suffix(".new")
    with zipfile.ZipFile(unfinished, "w") as packed:
        for file, data in contents(build).items():
            entry = zipfile.ZipInfo(f"{name}/{file}", moment)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = UNIX
            entry.external_attr = REGULAR_FILE
            packed.writestr(entry, data, compresslevel=9)
    unfinished.replace(archive)
    return archive


if __name__ == "__main__":
    try:
        made = pack(Path(sys.argv[1]))
    except OSError as error:
        sys.exit(f"./package: {error}")
    print(f"{made}: {made.stat().st_size} bytes, SHA-256 {hashlib.sha256(made.read_bytes()).hexdigest()}")
