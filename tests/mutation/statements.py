"""Faults in statements: removed ones, swapped neighbours, returns that come too early."""
from clang.cindex import CursorKind, TypeKind

from cursors import children, has_call, plain, span, text_of

FUNCTIONS = (CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR,
             CursorKind.DESTRUCTOR, CursorKind.FUNCTION_TEMPLATE, CursorKind.CONVERSION_FUNCTION)
JUMPS = (CursorKind.RETURN_STMT, CursorKind.BREAK_STMT, CursorKind.CONTINUE_STMT)
REMOVED = {CursorKind.CALL_EXPR: "removed call", CursorKind.BINARY_OPERATOR: "removed assignment",
           CursorKind.COMPOUND_ASSIGNMENT_OPERATOR: "removed assignment",
           CursorKind.UNARY_OPERATOR: "removed step", CursorKind.CXX_DELETE_EXPR: "removed call"}
# What a function of this type returns at once.
EARLY = {TypeKind.VOID: ("return;",), TypeKind.BOOL: ("return true;", "return false;"),
         TypeKind.POINTER: ("return nullptr;",), TypeKind.RECORD: ("return {};",),
         TypeKind.ENUM: ("return {};",), TypeKind.LVALUEREFERENCE: (), TypeKind.RVALUEREFERENCE: ()}


def removed_statements(cursor, text):
    if cursor.kind != CursorKind.COMPOUND_STMT:
        return
    for statement in children(cursor):
        operator = REMOVED.get(plain(statement).kind)
        if operator is not None:
            yield (*span(statement), "", operator)


def removed_jumps(cursor, text):
    """Not the last one of a function: nothing would be left to come back with."""
    if cursor.kind in FUNCTIONS or cursor.kind == CursorKind.LAMBDA_EXPR:
        return
    for block in children(cursor):
        if block.kind == CursorKind.COMPOUND_STMT:
            for statement in children(block):
                if statement.kind in JUMPS:
                    yield (*span(statement), "", "removed jump")


def removed_else(cursor, text):
    if cursor.kind == CursorKind.IF_STMT:
        then, other = children(cursor)[-2:]
        start, end = then.extent.end.offset, other.extent.end.offset
        if text[start:end].lstrip().startswith("else"):
            yield start, end, "", "removed else"


def with_semicolon(statement, text):
    start, end = span(statement)
    return start, end + (text[end:end + 1] == ";")


def needs(statement, earlier):
    """Whether the statement names a variable that the earlier one declares."""
    declared = {part.spelling for part in earlier.get_children()
                if earlier.kind == CursorKind.DECL_STMT}
    return any(inner.spelling in declared for inner in statement.walk_preorder()
               if inner.kind == CursorKind.DECL_REF_EXPR)


def swapped_statements(cursor, text):
    """Neighbours that both call something: of others the order seldom means anything."""
    if cursor.kind != CursorKind.COMPOUND_STMT:
        return
    statements = children(cursor)
    for one, other in zip(statements, statements[1:]):
        if one.kind in JUMPS or other.kind in JUMPS or not has_call(one) or not has_call(other):
            continue
        if needs(other, one):
            continue
        start, middle = with_semicolon(one, text)
        next_start, end = with_semicolon(other, text)
        if middle <= next_start:
            yield (start, end, text[next_start:end] + text[middle:next_start] + text[start:middle],
                   "swapped statements")


def early_returns(cursor, text):
    if cursor.kind not in FUNCTIONS or not cursor.is_definition():
        return
    body = children(cursor)[-1:]
    if not body or body[0].kind != CursorKind.COMPOUND_STMT:
        return
    kind = cursor.result_type.get_canonical().kind
    if cursor.kind in (CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR):
        kind = TypeKind.VOID
    start = body[0].extent.start.offset + 1
    inside = text_of(body[0], text)[1:-1].strip()
    for statement in EARLY.get(kind, ("return 0;",)):
        if inside and not inside.startswith(statement):
            yield start, start, " " + statement, "early return"


FINDERS = (removed_statements, removed_jumps, removed_else, swapped_statements, early_returns)
