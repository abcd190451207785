"""Archives whose bytes depend on the names and the contents of their files only."""
import hashlib
import time
import zipfile

from .product import moment

REGULAR_FILE = 0o100644 << 16
FOLDER = 0o040755 << 16 | 0x10
UNIX = 3


def sums(files):
    """The text that sha256sum --check reads. files: {name: bytes}."""
    return "".join(f"{hashlib.sha256(data).hexdigest()} *{name}\n" for name, data in sorted(files.items())
                   if not name.endswith("/")).encode()


def pack(archive, folder, files):
    """Writes {name: bytes}, with their checksums, below one folder into a ZIP archive. A name that ends with a
    slash is an empty folder."""
    files = {**files, "SHA256SUMS": sums(files)}
    unfinished = archive.with_suffix(".new")
    with zipfile.ZipFile(unfinished, "w") as packed:
        for name, data in sorted(files.items()):
            entry = zipfile.ZipInfo(f"{folder}/{name}", time.gmtime(moment())[:6])
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = UNIX
            entry.external_attr = FOLDER if name.endswith("/") else REGULAR_FILE
            packed.writestr(entry, data, compresslevel=9)
    unfinished.replace(archive)
