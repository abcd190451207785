"""The programs as they are shipped, and their symbols: linked once more from the objects of the build, in a
folder whose name is taken out again, so that neither depends on the machine."""
import array
import re
import shlex
import shutil
import struct
import tempfile
from pathlib import Path

from .pdb import Streams
from .product import moment
from .tools import Failed, run

TOOL = "x86_64-w64-mingw32-objcopy"
# A folder name of this length stands in the symbols; the random part becomes noughts.
FOLDER_PREFIX, RANDOM_LENGTH = "kor-symbols-", 8


def shipped(build, target):
    """The program of a target (folder/name.exe) of the release build and its symbols, {name: bytes}, and the
    linker's list of what it took from where."""
    with tempfile.TemporaryDirectory(prefix=FOLDER_PREFIX, dir="/tmp") as folder:
        program = link(build / "release", target, Path(folder))
        return split(program, Path(folder)), program.with_suffix(".map").read_text("utf-8")


def link(build, target, folder):
    """Links with all symbols, and a PDB beside the program."""
    command = run("ninja", "-C", build, "-t", "commands", "-s", target).strip().splitlines()[-1]
    words = [word for word in shlex.split(command) if word not in (":", "&&", "-s")]
    for word in words:
        if (build / word).is_file() and not Path(word).is_absolute():
            (folder / word).parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(build / word, folder / word)
    if f"-o {target} " not in command:
        raise Failed(f"the build links {target} in another way than expected: {command}")
    program = folder / target
    program.parent.mkdir(parents=True, exist_ok=True)
    extra = [f"-Wl,--pdb={program.with_suffix('.pdb').relative_to(folder)}", f"-Wl,-Map,{program.with_suffix('.map')}"]
    run(*words, *extra, cwd=folder)
    return program


def split(program, folder):
    debug, pdb = program.with_name(program.name + ".debug"), program.with_suffix(".pdb")
    run(TOOL, "--only-keep-debug", program, debug)
    debug.write_bytes(settled(debug.read_bytes()))
    # The program names the file and its checksum.
    run(TOOL, "--strip-all", f"--add-gnu-debuglink={debug.name}", program.name, cwd=program.parent)
    program.write_bytes(settled(program.read_bytes()))
    return {program.name: program.read_bytes(), debug.name: debug.read_bytes(),
            pdb.name: without_traces(pdb.read_bytes(), str(folder))}


def settled(program):
    """The program without the time that objcopy puts in, and with the checksum that then belongs to it."""
    data = bytearray(program)
    header = struct.unpack_from("<I", data, 0x3C)[0]
    struct.pack_into("<I", data, header + 8, 0)
    checksum = header + 24 + 64
    struct.pack_into("<I", data, checksum, 0)
    total = sum(array.array("H", bytes(data) + bytes(len(data) % 2)))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    struct.pack_into("<I", data, checksum, total + len(data))
    return bytes(data)


def without_traces(pdb, folder):
    """The symbols without the name of the folder and the time of the link."""
    assert re.fullmatch(rf"/tmp/{FOLDER_PREFIX}.{{{RANDOM_LENGTH}}}", folder), folder
    streams = Streams(pdb)
    plain = folder[:-RANDOM_LENGTH] + "0" * RANDOM_LENGTH
    for number in range(len(streams)):
        streams[number] = streams[number].replace(folder.encode(), plain.encode())
    information = bytearray(streams[streams.INFORMATION])
    struct.pack_into("<I", information, 4, moment())
    streams[streams.INFORMATION] = bytes(information)
    return streams.file()
