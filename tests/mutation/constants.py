"""Faults in constants: other numbers, characters, texts, truth values and enumerators."""
import re

from clang.cindex import CursorKind

from cursors import children, span, text_of

NUMBER = re.compile(r"(0[xX])?([0-9a-fA-F]+?)([uUlLzZ]*)")
NAME = re.compile(r"[A-Za-z_]\w*")
TEXT = re.compile(r'((?:L|u8|u|U)?")((?:[^"\\\n]|\\.)*)(")')
# One character of a literal as it is written.
CHARACTER = re.compile(r"\\x[0-9a-fA-F]+|\\[0-7]{1,3}|\\.|.", re.S)


def numbers(cursor, text):
    if cursor.kind != CursorKind.INTEGER_LITERAL:
        return
    written = text_of(cursor, text)
    number = NUMBER.fullmatch(written)
    if number:
        prefix, digits, suffix = number[1] or "", number[2], number[3]
        value = int(digits, 16 if prefix else 10)
        for other in (value + 1, value - 1):
            if other >= 0:
                form = f"{other:0{len(digits)}X}" if prefix else str(other)
                yield (*span(cursor), prefix + form + suffix, "number")
    elif NAME.fullmatch(written):
        yield (*span(cursor), f"({written} + 1)", "number")


def other_character(character):
    if character.isalpha() and character.isascii():
        return "a" if character in "zZ" else chr(ord(character) + 1)
    return "x" if character != "x" else "y"


def characters(cursor, text):
    if cursor.kind == CursorKind.CHARACTER_LITERAL:
        literal = re.fullmatch(r"(\w*')(.+)'", text_of(cursor, text))
        if literal:
            changed = other_character(literal[2])
            yield (*span(cursor), f"{literal[1]}{changed}'", "character")


def changed_texts(written):
    """The text with one character in its middle changed, and without its last one."""
    units = CHARACTER.findall(written)
    if not units:
        return ["x"]
    middle = len(units) // 2
    changed = units[:middle] + [other_character(units[middle])] + units[middle + 1:]
    return ["".join(changed), "".join(units[:-1])]


def texts(cursor, text):
    if cursor.kind != CursorKind.STRING_LITERAL:
        return
    start = span(cursor)[0]
    for piece in TEXT.finditer(text_of(cursor, text)):
        for changed in changed_texts(piece[2]):
            yield start + piece.start(2), start + piece.end(2), changed, "text"


def truth_values(cursor, text):
    if cursor.kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
        other = {"true": "false", "false": "true"}.get(text_of(cursor, text))
        if other:
            yield (*span(cursor), other, "truth value")


def enumerators(cursor, text):
    """The next one of the same enumeration, the first one after the last."""
    constant = cursor.referenced if cursor.kind == CursorKind.DECL_REF_EXPR else None
    if constant is None or constant.kind != CursorKind.ENUM_CONSTANT_DECL:
        return
    names = [entry.spelling for entry in children(constant.semantic_parent)]
    written = text_of(cursor, text)
    if len(names) > 1 and written.split("::")[-1] == constant.spelling:
        other = names[(names.index(constant.spelling) + 1) % len(names)]
        start, end = span(cursor)
        yield end - len(constant.spelling), end, other, "enumerator"


FINDERS = (numbers, characters, texts, truth_values, enumerators)
