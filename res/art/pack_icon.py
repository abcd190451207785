#!/usr/bin/env python3
"""pack_icon.py OUT.ico IN.png...: packs square pictures into one Windows icon.

Sizes up to 48 are stored as 32-bit bitmaps, which every reader of icons takes; larger ones as PNG,
which keeps the file small.
"""
import struct
import subprocess
import sys


def pixels(png):
    """The picture's size and its rows, top first, as BGRA bytes."""
    size = struct.unpack(">II", open(png, "rb").read(24)[16:24])
    raw = subprocess.run(["convert", png, "-depth", "8", "bgra:-"], check=True, capture_output=True).stdout
    assert size[0] == size[1] and len(raw) == size[0] * size[0] * 4, png
    return size[0], [raw[i:i + size[0] * 4] for i in range(0, len(raw), size[0] * 4)]


def bitmap(size, rows):
    """A device-independent bitmap as icons hold it: colours bottom row first, then the 1-bit mask."""
    header = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    mask_stride = (size + 31) // 32 * 4
    mask = b""
    for row in reversed(rows):
        bits = "".join("1" if row[x * 4 + 3] == 0 else "0" for x in range(size)).ljust(mask_stride * 8, "0")
        mask += int(bits, 2).to_bytes(mask_stride, "big")
    return header + b"".join(reversed(rows)) + mask


def main(out, pngs):
    images = []
    for png in pngs:
        size, rows = pixels(png)
        images.append((size, bitmap(size, rows) if size <= 48 else open(png, "rb").read()))
    offset = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for size, data in images:
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(data), offset)
        offset += len(data)
    with open(out, "wb") as file:
        file.write(directory + b"".join(data for _, data in images))


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2:])
