"""Faults in expressions: negated conditions, shifted comparisons, other operators, swapped
arguments."""
import itertools

from clang.cindex import CursorKind, TypeKind

from cursors import children, is_call, plain, span, text_of

OTHER = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&",
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "|": "&", "&": "|", "<<": ">>", ">>": "<<",
    "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=", "|=": "&=", "&=": "|=",
}
NAMES = {"<": "comparison", "<=": "comparison", ">": "comparison", ">=": "comparison",
         "==": "comparison", "!=": "comparison", "&&": "logic", "||": "logic"}
# Their answer is the same whichever argument comes first.
SYMMETRIC = ("EqualIgnoringCase", "min", "max")
OPERATORS = (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR)


def binary(cursor, text):
    """The operands, and where the operator between them is; None when it is no such expression."""
    if cursor.kind not in OPERATORS and not is_call(cursor, "operator"):
        return None
    parts = children(cursor)
    if len(parts) < 2:
        return None
    left, right = parts[0], parts[-1]
    between = text[left.extent.end.offset:right.extent.start.offset]
    operator = between.strip()
    if operator not in OTHER:
        return None
    start = left.extent.end.offset + between.index(operator)
    return left, right, start, operator


def changed_operators(cursor, text):
    found = binary(cursor, text)
    if found is None:
        return
    left, right, start, operator = found
    if operator == "+" and is_call(cursor):
        yield (*span(cursor), text_of(right, text) + " + " + text_of(left, text), "operands")
    elif operator in NAMES or not is_call(cursor):
        # A class has no other arithmetic here than to put texts together.
        name = NAMES.get(operator, "arithmetic")
        yield start, start + len(operator), OTHER[operator], name


def stepped_the_other_way(cursor, text):
    if cursor.kind == CursorKind.UNARY_OPERATOR:
        whole = text_of(cursor, text)
        for step, other in (("++", "--"), ("--", "++")):
            if step in (whole[:2], whole[-2:]):
                yield (*span(cursor), whole.replace(step, other), "arithmetic")


def negation(cursor, text):
    """The fault that turns a truth value around; nothing where another one does the same."""
    inner = plain(cursor)
    found = binary(inner, text)
    if inner.kind == CursorKind.CXX_BOOL_LITERAL_EXPR or (found and found[3] in ("==", "!=")):
        return
    whole = text_of(cursor, text)
    if inner.kind == CursorKind.UNARY_OPERATOR and whole.startswith("!"):
        yield (*span(cursor), whole[1:], "negation")
    elif whole:
        yield (*span(cursor), f"!({whole})", "negation")


def is_bool(cursor):
    return cursor.kind.is_expression() and cursor.type.get_canonical().kind == TypeKind.BOOL


def conditions(cursor):
    """What the cursor's statement or expression decides by."""
    parts = children(cursor)
    if any(part.kind == CursorKind.VAR_DECL for part in parts):
        return []
    if cursor.kind in (CursorKind.IF_STMT, CursorKind.WHILE_STMT, CursorKind.CONDITIONAL_OPERATOR):
        return [part for part in parts if part.kind.is_expression()][:1]
    if cursor.kind == CursorKind.FOR_STMT:
        return [part for part in parts[:-1] if is_bool(part)][:1]
    if cursor.kind == CursorKind.DO_STMT:
        return parts[-1:]
    if cursor.kind in (CursorKind.RETURN_STMT, CursorKind.VAR_DECL):
        return [part for part in parts[-1:] if is_bool(part)]
    return []


def negated_conditions(cursor, text):
    for condition in conditions(cursor):
        yield from negation(condition, text)
    if cursor.kind == CursorKind.UNARY_OPERATOR and text_of(cursor, text).startswith("!"):
        yield from negation(cursor, text)


def parameter_types(cursor, arguments):
    function = cursor.referenced
    declared = list(function.get_arguments()) if function is not None else []
    types = [parameter.type for parameter in declared]
    types += [argument.type for argument in arguments[len(types):]]
    return [kind.get_canonical().spelling for kind in types]


def swapped(first, second, text, operator):
    start, end = first.extent.start.offset, second.extent.end.offset
    one, other = text_of(first, text), text_of(second, text)
    if one and other and one != other and first.extent.end.offset <= second.extent.start.offset:
        between = text[first.extent.end.offset:second.extent.start.offset]
        yield start, end, other + between + one, operator


def swapped_arguments(cursor, text):
    if (cursor.kind != CursorKind.CALL_EXPR or is_call(cursor, "operator")
            or cursor.spelling in SYMMETRIC):
        return
    arguments = list(cursor.get_arguments())
    types = parameter_types(cursor, arguments)
    for (one, its_type), (other, other_type) in itertools.combinations(zip(arguments, types), 2):
        if its_type == other_type:
            yield from swapped(one, other, text, "arguments")


def swapped_entries(cursor, text):
    if cursor.kind != CursorKind.INIT_LIST_EXPR:
        return
    entries = children(cursor)
    for one, other in zip(entries, entries[1:]):
        if one.type.get_canonical().spelling == other.type.get_canonical().spelling:
            yield from swapped(one, other, text, "entries")


FINDERS = (changed_operators, stepped_the_other_way, negated_conditions, swapped_arguments,
           swapped_entries)
