"""The streams of a PDB file, which lie in it in blocks, and the public names in them."""
import struct

MAGIC = b"Microsoft C/C++ MSF 7.00\r\n\x1aDS\0\0\0"
NO_STREAM = 0xFFFFFFFF
PUBLIC, RECORDS_OF_DEBUG = 0x110E, 20


class Streams:
    """streams[n] is the content of stream n; what is put in its place has the same length."""
    INFORMATION, DEBUG = 1, 3

    def __init__(self, data):
        if not data.startswith(MAGIC):
            raise ValueError("this is no PDB file")
        self.data = bytearray(data)
        self.block_size, _, _, length, _, blocks_of_directory = struct.unpack_from("<6I", data, len(MAGIC))
        count = -(-length // self.block_size)
        blocks = struct.unpack_from(f"<{count}I", data, blocks_of_directory * self.block_size)
        directory = b"".join(self.block(number) for number in blocks)[:length]
        number, = struct.unpack_from("<I", directory)
        sizes = [0 if size == NO_STREAM else size for size in struct.unpack_from(f"<{number}I", directory, 4)]
        at, self.streams = 4 + 4 * number, []
        for size in sizes:
            count = -(-size // self.block_size)
            self.streams.append((size, struct.unpack_from(f"<{count}I", directory, at)))
            at += 4 * count

    def __len__(self):
        return len(self.streams)

    def block(self, number):
        return self.data[number * self.block_size:(number + 1) * self.block_size]

    def __getitem__(self, number):
        size, blocks = self.streams[number]
        return bytes(b"".join(self.block(block) for block in blocks)[:size])

    def __setitem__(self, number, content):
        size, blocks = self.streams[number]
        if len(content) != size:
            raise ValueError("a stream keeps its length")
        for i, block in enumerate(blocks):
            part = content[i * self.block_size:(i + 1) * self.block_size]
            self.data[block * self.block_size:block * self.block_size + len(part)] = part

    def file(self):
        return bytes(self.data)

    def publics(self):
        """{(number of the section from 1, offset in it): name}"""
        records, = struct.unpack_from("<H", self[self.DEBUG], RECORDS_OF_DEBUG)
        data, at, found = self[records], 0, {}
        while at < len(data):
            length, kind = struct.unpack_from("<HH", data, at)
            if kind == PUBLIC:
                _, offset, section = struct.unpack_from("<IIH", data, at + 4)
                found[section, offset] = data[at + 14:data.index(b"\0", at + 14)].decode()
            at += 2 + length
        return found
