"""One fault: a stretch of a source file and what takes its place.

Sources are read as Latin-1, which makes every byte one character: clang counts bytes.
"""
from typing import NamedTuple


class Fault(NamedTuple):
    path: str  # from the root of the tree, with slashes
    line: int
    start: int
    end: int
    new: str
    operator: str
    function: str  # the one it is in, or what it is declared in; may be empty

    @property
    def key(self):
        return f"{self.path}:{self.start}:{self.end}:{self.new}"

    def applied(self, text):
        return text[:self.start] + self.new + text[self.end:]

    def lines(self, text):
        """The whole lines that it touches, as they are and as it makes them."""
        first = text.rfind("\n", 0, self.start) + 1
        last = text.find("\n", self.end)
        last = len(text) if last < 0 else last
        return (text[first:last],
                text[first:self.start] + self.new + text[self.end:last])


def read_source(path):
    return path.read_bytes().decode("latin-1")


def write_source(path, text):
    path.write_bytes(text.encode("latin-1"))
