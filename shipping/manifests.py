"""The manifests for winget and Scoop: the templates in manifests/, with the version and the hashes."""
import hashlib
from pathlib import Path
from string import Template

from . import msi, product

TEMPLATES = Path(__file__).with_name("manifests")


def made(archive, installer):
    """{name: bytes}, for the archive and the installer as they are published."""
    version = product.version()
    values = {
        "version": version, "name": product.NAME, "maker": product.MAKER, "homepage": product.HOMEPAGE,
        "downloads": f"{product.HOMEPAGE}/{version}", "product_code": msi.product_code(version),
        "upgrade_code": msi.upgrade_code(), "archive": archive.name, "folder": archive.stem,
        "archive_sha256": digest(archive), "installer": installer.name,
        "installer_sha256": digest(installer).upper()}
    return {str(path.relative_to(TEMPLATES)): Template(path.read_text("utf-8")).substitute(values).encode()
            for path in TEMPLATES.rglob("*.*")}


def digest(file):
    return hashlib.sha256(file.read_bytes()).hexdigest()
