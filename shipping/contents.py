"""What is shipped: the files of the installer and of the archive, and the symbols."""
from . import linked, notices, record, sbom, signing, symbols
from .product import ROOT

TARGETS = ("app/korcontrolcenter.exe", "diag/kordiag.exe")


def shipped(build, sign=None):
    """The installed files and, apart from them, the symbols. sign is the command that signs a file."""
    programs, rest, maps = {}, {}, []
    for target in TARGETS:
        files, link_map = symbols.shipped(build, target)
        name = target.rpartition("/")[2]
        programs[name] = files.pop(name)
        if sign:
            programs[name] = signing.sign_program(sign, name, programs[name])
        rest |= files
        maps.append(link_map)
    return {**programs, **documents(), **origin(build, programs, linked.packages(maps))}, rest


def documents():
    names = ["README.md", "CHANGELOG.md", *(f"docs/{path.name}" for path in (ROOT / "docs").iterdir())]
    return {name: (ROOT / name).read_bytes() for name in names}


def origin(build, programs, packages):
    return {"THIRD-PARTY-NOTICES.txt": notices.text(packages), "sbom.cdx.json": sbom.text(programs, packages),
            "build-record.json": record.text(build, TARGETS)}
