"""Reads what the product's tests ask of a Windows program's file: header flags, imports, resources."""
import struct
from pathlib import Path


class Program:
    def __init__(self, path):
        self.data = Path(path).read_bytes()
        header = self.number(0x3C)
        assert self.data[header:header + 4] == b"PE\0\0", path
        self.machine, sections, _, symbol_table, self.symbols, optional_size, _ = struct.unpack_from(
            "<HHIIIHH", self.data, header + 4)
        optional = header + 24
        assert self.number(optional, "<H") == 0x20B, "not a 64-bit program"
        self.entry = self.number(optional + 16)
        self.timestamp = self.number(header + 8)
        self.os_version = struct.unpack_from("<HH", self.data, optional + 40)
        self.subsystem_version = struct.unpack_from("<HH", self.data, optional + 48)
        self.subsystem, self.characteristics = struct.unpack_from("<HH", self.data, optional + 68)
        self.directories = [struct.unpack_from("<II", self.data, optional + 112 + 8 * i)
                            for i in range(self.number(optional + 108))]
        self.sections = []
        for i in range(sections):
            at = optional + optional_size + 40 * i
            name, size, address, raw_size, raw = struct.unpack_from("<8sIIII", self.data, at)
            name = name.rstrip(b"\0").decode()
            if name.startswith("/"):
                # A long name stands behind the symbols.
                start = symbol_table + 18 * self.symbols + int(name[1:])
                name = self.data[start:self.data.index(b"\0", start)].decode()
            self.sections.append((name, address, max(size, raw_size), raw))

    def number(self, at, form="<I"):
        return struct.unpack_from(form, self.data, at)[0]

    def offset(self, address):
        for _, start, size, raw in self.sections:
            if start <= address < start + size:
                return raw + address - start
        raise ValueError(f"address {address:#x} lies in no section")

    def imports(self):
        """The names of the DLLs that the loader needs, lower case."""
        names, at = [], self.offset(self.directories[1][0])
        while self.number(at + 12):
            name = self.offset(self.number(at + 12))
            names.append(self.data[name:self.data.index(b"\0", name)].decode().lower())
            at += 20
        return names

    def resources(self):
        """{(type, name): bytes}; types and names are numbers or texts."""
        base = self.offset(self.directories[2][0])
        found = {}
        for kind, types in self.entries(base, 0):
            for name, languages in self.entries(base, types):
                for _, leaf in self.entries(base, languages):
                    address, size = struct.unpack_from("<II", self.data, base + leaf)
                    at = self.offset(address)
                    found[kind, name] = self.data[at:at + size]
        return found

    def entries(self, base, directory):
        at = base + directory
        named, numbered = struct.unpack_from("<HH", self.data, at + 12)
        for i in range(named + numbered):
            name, target = struct.unpack_from("<II", self.data, at + 16 + 8 * i)
            if name & 0x80000000:
                text = base + (name & 0x7FFFFFFF)
                length = self.number(text, "<H")
                name = self.data[text + 2:text + 2 + 2 * length].decode("utf-16-le")
            yield name, target & 0x7FFFFFFF
