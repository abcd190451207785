"""Signatures: --sign's command is called with the name of a file, which it signs where it lies."""
import shlex
import struct
import tempfile
from pathlib import Path

from .tools import Failed, run

CERTIFICATES = 4
# The stream of a signed installer, as its directory writes the name.
SIGNATURE_STREAM = "\5DigitalSignature".encode("utf-16-le")


def sign_program(command, name, data):
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder) / name
        file.write_bytes(data)
        sign(command, file)
        return file.read_bytes()


def sign(command, file):
    """Signs the file; a command that succeeds and signs nothing has failed."""
    run(*shlex.split(command), file)
    if not is_signed(file.read_bytes()):
        raise Failed(f"{command} left {file.name} unsigned")


def is_signed(data):
    if not data.startswith(b"MZ"):
        return SIGNATURE_STREAM in data
    header = struct.unpack_from("<I", data, 0x3C)[0]
    return struct.unpack_from("<II", data, header + 24 + 112 + 8 * CERTIFICATES) != (0, 0)
