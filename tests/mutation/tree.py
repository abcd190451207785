"""The files of the project: which there are, what they hold, and copies of them."""
import hashlib
import os
import shutil
import subprocess
from pathlib import Path

# What decides nothing: a record stays valid when only these change.
WITHOUT_EFFECT = ("docs/", "tests/mutation/", "bench/", "README.md", "CHANGELOG.md")
LISTED = "build/files-of-the-copy"


def files_of(root):
    """Every file that belongs to the project, from the root."""
    if (root / ".git").exists():
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=root,
            check=True, stdout=subprocess.PIPE).stdout.decode().split("\0")
    else:
        listed = [str(path.relative_to(root)) for path in root.rglob("*")
                  if "build" != path.relative_to(root).parts[0] and "__pycache__" not in path.parts]
    return sorted({name for name in listed if name and (root / name).is_file()})


def decides(name):
    """Whether the file has a part in what becomes of a fault."""
    return not name.startswith(WITHOUT_EFFECT)


def fingerprint(root, chosen=decides):
    """A short name for what the files hold."""
    digest = hashlib.sha256()
    for name in files_of(root):
        if chosen(name):
            digest.update(f"{name}\0".encode() + (root / name).read_bytes() + b"\0")
    return digest.hexdigest()[:12]


def copy_tree(root, copy):
    """Makes the copy's files those of the root; one that is the same keeps its time."""
    names = files_of(root)
    listing = copy / LISTED
    before = listing.read_text().splitlines() if listing.exists() else []
    for name in set(before).difference(names):
        (copy / name).unlink(missing_ok=True)
    for name in names:
        source, target = root / name, copy / name
        if not target.exists() or source.read_bytes() != target.read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(source, target)
        shutil.copymode(source, target)
    listing.parent.mkdir(parents=True, exist_ok=True)
    listing.write_text("\n".join(names))


def processors():
    return sorted(os.sched_getaffinity(0))


def root_of_the_project():
    return Path(__file__).resolve().parents[2]
