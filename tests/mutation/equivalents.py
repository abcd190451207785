"""Faults that change nothing that anyone could see, each with the reason, from equivalent.json.

An entry names the file, the function, and the lines before and after the fault, blanks apart, so it
stays true when lines move.
"""
import json
from pathlib import Path

FILE = Path(__file__).with_name("equivalent.json")


def words(text):
    return " ".join(text.split())


def identity(fault, text):
    original, changed = fault.lines(text)
    return fault.path, fault.function, words(original), words(changed)


def as_entry(fault, text):
    """The fault in the form of the list, without its reason."""
    return dict(zip(("file", "function", "original", "changed"), identity(fault, text)))


class Equivalents:
    def __init__(self, file=FILE):
        self.reasons = {}
        for entry in json.loads(file.read_text()):
            if not entry["reason"].strip():
                raise ValueError(f"{file} gives no reason for {entry['changed']}")
            key = (entry["file"], entry["function"], words(entry["original"]),
                   words(entry["changed"]))
            self.reasons[key] = entry["reason"]

    def reason(self, fault, text):
        return self.reasons.get(identity(fault, text))
