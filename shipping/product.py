"""What the product is called, its one version number, and the identities that stay the same for ever."""
import os
import re
import uuid
from pathlib import Path

ROOT = Path(__file__).resolve().parents[1]
NAME = "Vantrel Imaging Library Control Center"
MAKER = "Vantrel"
# Where the packages are published. The manifests name it; nothing is fetched from there.
HOMEPAGE = "https://vantrel.example/control-center"
FOLDERS = ("Vantrel Imaging", "Control Center")  # below Program Files

# Windows knows by it which packages replace each other. It never changes.
UPGRADE_CODE = uuid.UUID("5b6a2f0e-8c1d-4f57-9a3e-2d7c40b1e865")
EARLIEST = 315532800  # 1980-01-01, where the times of archives begin


def version():
    return re.search(r"project\([^)]*VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text("utf-8"))[1]


def moment():
    """The time that everything packed gets, in seconds since 1970: SOURCE_DATE_EPOCH, as other builders
    know it, or the earliest one."""
    return max(EARLIEST, int(os.environ.get("SOURCE_DATE_EPOCH", EARLIEST)))


def identity(*words):
    """A GUID that depends on the words only, as Windows Installer writes it."""
    return "{" + str(uuid.uuid5(UPGRADE_CODE, " ".join(words))).upper() + "}"
