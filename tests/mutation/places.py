"""Every fault that can be put into the product's sources, from clang's syntax tree of each."""
import json
from pathlib import Path

from clang.cindex import CursorKind, Index, TranslationUnit, TranslationUnitLoadError

import constants
import expressions
import statements
from compilation import read_commands
from fault import Fault, read_source
from tree import fingerprint

COMMON = ("windows.h", "algorithm", "cstdint", "cwchar", "functional", "memory", "string")
FINDERS = (*expressions.FINDERS, *constants.FINDERS, *statements.FINDERS)


class Finder:
    """The faults of one translation unit in the files below root/folder, for each folder."""

    def __init__(self, root, folders):
        self.root = root
        self.folders = folders
        self.texts = {}
        self.faults = {}

    def product_path(self, cursor):
        file = cursor.extent.start.file
        if file is None:
            return None
        path = Path(file.name)
        if not path.is_relative_to(self.root):
            return None
        path = path.relative_to(self.root)
        return path if str(path.parent) in self.folders else None

    def text(self, path):
        if path not in self.texts:
            self.texts[path] = read_source(self.root / path)
        return self.texts[path]

    def visit(self, cursor, path, function):
        if cursor.kind == CursorKind.STATIC_ASSERT:
            return
        if cursor.kind in statements.FUNCTIONS:
            function = cursor.spelling
        text = self.text(path)
        for finder in FINDERS:
            for start, end, new, operator in finder(cursor, text):
                line = text.count("\n", 0, start) + 1
                fault = Fault(path.as_posix(), line, start, end, new, operator, function)
                if text[start:end] != new:
                    self.faults.setdefault(fault.key, fault)
        for child in cursor.get_children():
            # What a macro or an included file brings has its place elsewhere.
            if self.product_path(child) == path:
                self.visit(child, path, function)

    def visit_unit(self, unit):
        for cursor in unit.cursor.get_children():
            path = self.product_path(cursor)
            if path is not None:
                self.visit(cursor, path, "")


def parse(source, arguments, options=0):
    try:
        # Declarations that a precompiled header brings are not visited.
        unit = Index.create(excludeDecls=True).parse(str(source), args=arguments, options=options)
    except TranslationUnitLoadError as error:
        raise SystemExit(f"clang cannot read {source}") from error
    errors = [str(note) for note in unit.diagnostics if note.severity >= note.Error]
    if errors:
        raise SystemExit(f"clang does not understand {source}: {errors[0]}")
    return unit


def faults_of(source, arguments, root, folders):
    finder = Finder(root, folders)
    finder.visit_unit(parse(source, arguments))
    return finder.faults


def precompile(header, arguments):
    """What nearly every source includes, read once; gives the arguments with it."""
    header.write_text("".join(f"#include <{name}>\n" for name in COMMON))
    unit = parse(header, [*arguments, "-xc++-header"], TranslationUnit.PARSE_INCOMPLETE)
    result = str(header.with_suffix(".pch"))
    unit.save(result)
    return [*arguments, "-include-pch", result]


def search(root, folders, place):
    """All faults, each once, in the order of their places."""
    commands = read_commands(root / "build/lint/compile_commands.json")
    commands = {source: arguments for source, arguments in sorted(commands.items())
                if str(source.parent.relative_to(root)) in folders}
    common = {}
    for arguments in commands.values():
        if str(arguments) not in common:
            header = place / f"common-{len(common)}.hpp"
            common[str(arguments)] = precompile(header, arguments)
    found = {}
    for source, arguments in commands.items():
        found.update(faults_of(source, common[str(arguments)], root, folders))
    return sorted(found.values())


def find_faults(root, folders, place):
    """What search finds; the answer for the same sources is kept in the folder place."""
    mark = fingerprint(root, lambda name: name.startswith((*folders, "tests/mutation/", "cmake/")))
    file = place / f"faults-{mark}.json"
    if not file.exists():
        place.mkdir(parents=True, exist_ok=True)
        faults = search(root, folders, place)
        file.write_text(json.dumps(faults))
    return [Fault(*fields) for fields in json.loads(file.read_text())]
