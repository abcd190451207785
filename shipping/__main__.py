"""python3 -m shipping BUILD: what ./package does once the programs are built in BUILD/release."""
import argparse
import hashlib
import sys
from pathlib import Path

from . import archive, contents, kit, manifests, msi, product, signing
from .tools import Failed


def make(build, out, sign, with_kit):
    """Makes every package in the folder out; gives back their files."""
    version = product.version()
    name = f"korcontrolcenter-{version}"
    files, symbols = contents.shipped(build, sign)
    unpacked = pack(out / f"{name}-win64.zip", files)
    installer = out / f"{name}-win64.msi"
    msi.make(installer, files, version)
    if sign:
        signing.sign(sign, installer)
    made = [unpacked, installer, pack(out / f"{name}-symbols.zip", symbols),
            pack(out / f"{name}-manifests.zip", manifests.made(unpacked, installer))]
    if with_kit:
        programs = {name: data for name, data in files.items() if name.endswith(".exe")}
        made.append(pack(out / f"{name}-kit.zip", kit.contents(build, programs, installer)))
    sums = out / "SHA256SUMS"
    sums.write_bytes(archive.sums({file.name: file.read_bytes() for file in made}))
    return [*made, sums]


def pack(file, files):
    archive.pack(file, file.stem, files)
    return file


def main():
    parser = argparse.ArgumentParser(prog="./package")
    parser.add_argument("--sign", metavar="COMMAND")
    parser.add_argument("--kit", action="store_true")
    parser.add_argument("--out", type=Path)
    parser.add_argument("build", type=Path)
    options = parser.parse_args()
    out = options.out or options.build / "package"
    out.mkdir(parents=True, exist_ok=True)
    for file in make(options.build, out, options.sign, options.kit):
        data = file.read_bytes()
        print(f"{file}: {len(data)} bytes, SHA-256 {hashlib.sha256(data).hexdigest()}")
    if not options.sign:
        print("Nothing is signed (./package --sign COMMAND signs the programs and the installer).")


if __name__ == "__main__":
    try:
        main()
    except (Failed, OSError) as error:
        sys.exit(f"./package: {error}")
