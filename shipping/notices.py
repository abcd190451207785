"""THIRD-PARTY-NOTICES: the copyright files of what is linked into the programs, word for word."""

OPENING = """\
The programs of this product need no other files than Windows' own. Linked into them are parts of the
packages below, as Debian distributes them. Of GCC's libraries (libgcc, libstdc++, libssp) the GCC Runtime
Library Exception allows that under any terms; the run time of mingw-w64 and winpthreads ask for their
notices, which are here.
"""
RULE = "=" * 100


def text(packages):
    groups = {}
    for package in packages:
        groups.setdefault(package.copyright(), []).append(package)
    parts = [OPENING]
    for copyright_text, members in groups.items():
        parts += [RULE, *(f"{package.name} {package.version} (source: {package.source}): "
                          + ", ".join(path.rpartition("/")[2] for path in package.files) for package in members),
                  RULE, copyright_text.strip() + "\n"]
    return "\n".join(parts).encode()
