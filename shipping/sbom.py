"""The bill of materials: what the product consists of, in CycloneDX's JSON form."""
import hashlib
import json

from . import product

# By Debian's source package. mingw-w64's run time has many authors and terms: the notices have them.
LICENSES = {
    "gcc-mingw-w64": [{"expression": "GPL-3.0-or-later WITH GCC-exception-3.1"}],
    "mingw-w64": [{"license": {"name": "mingw-w64 run time and winpthreads, see THIRD-PARTY-NOTICES.txt"}}],
}


def text(programs, packages):
    version = product.version()
    root = {"type": "application", "bom-ref": "product", "name": product.NAME, "version": version,
            "supplier": {"name": product.MAKER},
            "components": [file(name, hashlib.sha256(data).hexdigest()) for name, data in sorted(programs.items())]}
    libraries = [library(package) for package in packages]
    document = {
        "bomFormat": "CycloneDX", "specVersion": "1.5", "version": 1,
        "serialNumber": "urn:uuid:" + product.identity("bill", json.dumps([root, libraries])).strip("{}").lower(),
        "metadata": {"component": root},
        "components": libraries,
        "dependencies": [{"ref": "product", "dependsOn": [package["bom-ref"] for package in libraries]},
                         *({"ref": package["bom-ref"]} for package in libraries)],
    }
    return (json.dumps(document, indent=2) + "\n").encode()


def library(package):
    link = f"pkg:deb/debian/{package.name.replace('+', '%2B')}@{package.version.replace('+', '%2B')}"
    return {"type": "library", "bom-ref": link, "name": package.name, "version": package.version, "purl": link,
            "licenses": LICENSES[package.source],
            "components": [file(path.rpartition("/")[2], digest) for path, digest in package.hashes().items()]}


def file(name, digest):
    return {"type": "file", "name": name, "hashes": [{"alg": "SHA-256", "content": digest}]}
