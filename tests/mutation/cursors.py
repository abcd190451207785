"""Small questions about clang's cursors, the nodes of its syntax tree."""
from clang.cindex import CursorKind

# What clang puts around an expression without a word in the source.
INVISIBLE = (CursorKind.UNEXPOSED_EXPR, CursorKind.PAREN_EXPR)


def children(cursor):
    return list(cursor.get_children())


def span(cursor):
    return cursor.extent.start.offset, cursor.extent.end.offset


def text_of(cursor, text):
    start, end = span(cursor)
    return text[start:end]


def plain(cursor):
    """The expression without parentheses and conversions around it."""
    while cursor.kind in INVISIBLE:
        parts = children(cursor)
        if len(parts) != 1:
            break
        cursor = parts[0]
    return cursor


def is_call(cursor, name=""):
    """A call of a function whose name begins so; operators of classes are such functions too."""
    return cursor.kind == CursorKind.CALL_EXPR and cursor.spelling.startswith(name)


def has_call(cursor):
    return any(inner.kind == CursorKind.CALL_EXPR for inner in cursor.walk_preorder())
