"""Finds what can be changed in a piece of code, from the compiler's syntax tree.

Left out is what is decided while compiling (static_assert, constexpr and static variables, template arguments, array
bounds, case labels, enumerators, consteval functions and what they are called with) and what comes from a macro: a choice
at run time cannot reach it.
"""
import re

from clang.cindex import CursorKind, TypeKind

from mutants import Swap, Wrap
from source import without_comments

BOUNDARY = {"<": "<=", "<=": "<", ">": ">=", ">=": ">"}
LOGIC = {"&&": "||", "||": "&&"}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "<<": ">>", ">>": "<<", "&": "|", "|": "&", "^": "&"}
EQUALITY = {"==": "!=", "!=": "=="}
NUMBER = re.compile(r"^(0[xX][0-9a-fA-F']+|0[bB][01']+|[0-9][0-9']*)[uUlLzZ]*$")

FUNCTIONS = {CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR,
             CursorKind.CONVERSION_FUNCTION, CursorKind.FUNCTION_TEMPLATE}
COMPILE_TIME = {CursorKind.STATIC_ASSERT, CursorKind.ENUM_DECL, CursorKind.TEMPLATE_NON_TYPE_PARAMETER,
                CursorKind.TEMPLATE_TYPE_PARAMETER, CursorKind.PARM_DECL, CursorKind.TYPE_ALIAS_DECL,
                CursorKind.TYPEDEF_DECL, CursorKind.CXX_UNARY_EXPR, CursorKind.FRIEND_DECL}
INTEGERS = {TypeKind.CHAR_U, TypeKind.UCHAR, TypeKind.USHORT, TypeKind.UINT, TypeKind.ULONG, TypeKind.ULONGLONG,
            TypeKind.CHAR_S, TypeKind.SCHAR, TypeKind.SHORT, TypeKind.INT, TypeKind.LONG, TypeKind.LONGLONG}
NUMBERS = INTEGERS | {TypeKind.FLOAT, TypeKind.DOUBLE, TypeKind.BOOL}
BINARY = {CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR}
CONDITIONAL = {CursorKind.IF_STMT, CursorKind.WHILE_STMT, CursorKind.DO_STMT, CursorKind.FOR_STMT}
STATEMENTS = CONDITIONAL | {CursorKind.COMPOUND_STMT, CursorKind.CXX_FOR_RANGE_STMT, CursorKind.CASE_STMT,
                            CursorKind.DEFAULT_STMT}
ASSIGNMENTS = re.compile(r"^operator(=|\+=|-=|\*=|/=|%=|<<=|>>=|&=|\|=|\^=|\+\+|--)$")


def kind_of(cursor):
    return cursor.type.get_canonical().kind


class Finder:
    """Walks one file's part of a translation unit, and collects the possible changes."""

    def __init__(self, source, immediate):
        self.source = source
        self.immediate = immediate  # names of functions that are called while compiling alone
        self.found = []  # (start, function, operator, change, edit)
        self.seen = set()
        self.function = ""

    # -- the walk

    def visit(self, cursor):
        if cursor.kind in COMPILE_TIME or self.is_decided_while_compiling(cursor):
            return
        outer = self.function
        parent = cursor.semantic_parent
        owner = parent.spelling if parent is not None and parent.kind != CursorKind.TRANSLATION_UNIT else ""
        if cursor.kind in FUNCTIONS:
            self.function = f"{owner}::{cursor.spelling}" if owner else cursor.spelling
        elif cursor.kind == CursorKind.FIELD_DECL:
            self.function = owner
        self.look_at(cursor)
        self.visit_children(cursor)
        self.function = outer

    def visit_children(self, cursor):
        children = list(cursor.get_children())
        if cursor.kind == CursorKind.CASE_STMT or self.is_if_constexpr(cursor):
            children = children[1:]
        for child in children:
            if not self.is_template_argument(cursor, child):
                self.visit(child)

    def look_at(self, cursor):
        children = list(cursor.get_children())
        if cursor.kind in BINARY and len(children) == 2:
            self.look_at_operator(cursor, *children)
        elif cursor.kind == CursorKind.CALL_EXPR and cursor.spelling in ("operator==", "operator!="):
            self.look_at_equality(cursor, children)
        elif cursor.kind == CursorKind.INTEGER_LITERAL:
            self.look_at_literal(cursor)
        elif cursor.kind == CursorKind.DECL_REF_EXPR:
            self.look_at_named_constant(cursor)
        elif cursor.kind == CursorKind.RETURN_STMT and len(children) == 1:
            self.look_at_return(children[0])
        elif cursor.kind == CursorKind.CONDITIONAL_OPERATOR and children:
            self.negate(children[0])
        if cursor.kind in STATEMENTS:
            self.look_at_statements(cursor, children)

    # -- what is left out

    def is_if_constexpr(self, cursor):
        return cursor.kind == CursorKind.IF_STMT and re.match(r"if\s+constexpr\b", self.source.text[cursor.extent.start.offset:])

    def is_decided_while_compiling(self, cursor):
        if cursor.kind == CursorKind.CALL_EXPR and cursor.spelling in self.immediate:
            return True
        head = self.head_of(cursor)
        if cursor.kind in FUNCTIONS:
            return re.search(r"\bconsteval\b", head) is not None
        if cursor.kind == CursorKind.FIELD_DECL:
            return cursor.is_bitfield()
        if cursor.kind != CursorKind.VAR_DECL:
            return False
        parent = cursor.semantic_parent
        is_local = parent is not None and (parent.kind in FUNCTIONS or parent.kind.is_statement())
        if re.search(r"\b(constexpr|constinit|static)\b", head) or not is_local:
            return True
        # The compiler evaluates it as a constant.
        return cursor.type.is_const_qualified() and kind_of(cursor) in NUMBERS and not self.is_known_when_running(cursor)

    def head_of(self, cursor):
        """A declaration's text up to its name."""
        start = cursor.extent.start.offset
        return self.source.text[start:max(start, cursor.location.offset)]

    def is_known_when_running(self, cursor):
        for child in cursor.get_children():
            if child.kind in (CursorKind.CALL_EXPR, CursorKind.MEMBER_REF_EXPR, CursorKind.CXX_THIS_EXPR):
                return True
            if child.kind == CursorKind.DECL_REF_EXPR and not self.is_constant(child.referenced):
                return True
            if self.is_known_when_running(child):
                return True
        return False

    @staticmethod
    def is_constant(declaration):
        if declaration is None or declaration.kind != CursorKind.VAR_DECL or kind_of(declaration) not in INTEGERS:
            return False
        return declaration.type.is_const_qualified() and re.match(r"k[A-Z]", declaration.spelling) is not None

    def is_template_argument(self, parent, child):
        """Template arguments and array bounds are children of the node that they belong to."""
        if parent.kind in (CursorKind.VAR_DECL, CursorKind.FIELD_DECL):
            return child.kind.is_expression() and child.extent.start.offset < parent.location.offset or (
                kind_of(parent) == TypeKind.CONSTANTARRAY and self.source.behind(child.extent.end.offset) == "]")
        if not child.kind.is_expression():
            return False
        if parent.kind in (CursorKind.DECL_REF_EXPR, CursorKind.TYPE_REF, CursorKind.TEMPLATE_REF):
            return True
        before, behind = (self.source.before(child.extent.start.offset), self.source.behind(child.extent.end.offset))
        has_template = any(one.kind in (CursorKind.TEMPLATE_REF, CursorKind.OVERLOADED_DECL_REF) for one in parent.get_children())
        return (has_template or parent.kind == CursorKind.MEMBER_REF_EXPR) and before in "<," and behind in ">,"

    # -- the operators

    def look_at_operator(self, cursor, left, right):
        between = without_comments(self.source.text[left.extent.end.offset:right.extent.start.offset])
        if between in EQUALITY:
            self.negate_equality(cursor, between)
        elif between in BOUNDARY:
            self.swap("boundary", cursor, left, right, between, BOUNDARY[between])
        elif between in LOGIC:
            self.swap("logic", cursor, left, right, between, LOGIC[between])
        elif kind_of(left) in NUMBERS and kind_of(right) in NUMBERS or kind_of(left) == TypeKind.POINTER and kind_of(
                right) in INTEGERS:
            assigns = between.endswith("=") and between[:-1] in ARITHMETIC
            other = ARITHMETIC.get(between[:-1], "") + "=" if assigns else ARITHMETIC.get(between)
            if other:
                self.swap("arithmetic", cursor, left, right, between, other)

    def look_at_equality(self, cursor, children):
        if len(children) >= 2:
            between = without_comments(self.source.text[children[0].extent.end.offset:children[-1].extent.start.offset])
            if between in EQUALITY:
                self.negate_equality(cursor, between)

    def negate_equality(self, cursor, operator):
        self.wrap("negation", cursor, f"{operator} -> {EQUALITY[operator]}", "(static_cast<bool>(", ") != mutate::on(NUMBER))")

    def negate(self, cursor):
        if not self.ends_in_equality(cursor):
            self.wrap("negation", cursor, "condition -> !condition", "(static_cast<bool>(", ") != mutate::on(NUMBER))")

    def ends_in_equality(self, cursor):
        """Whether the expression is a comparison, which is negated as such."""
        span = (cursor.extent.start.offset, cursor.extent.end.offset)
        inner = cursor
        while inner is not None:
            children = list(inner.get_children())
            if inner.kind == CursorKind.BINARY_OPERATOR or inner.spelling in ("operator==", "operator!="):
                between = self.source.text[children[0].extent.end.offset:children[-1].extent.start.offset]
                return len(children) >= 2 and without_comments(between) in EQUALITY
            same = [one for one in children if (one.extent.start.offset, one.extent.end.offset) == span]
            inner = same[0] if same else None
        return False

    def look_at_return(self, value):
        if kind_of(value) != TypeKind.BOOL or self.ends_in_equality(value):
            return
        text = self.source.text[value.extent.start.offset:value.extent.end.offset]
        change = {"true": "true -> false", "false": "false -> true"}.get(text, "value -> !value")
        self.wrap("return", value, change, "(static_cast<bool>(", ") != mutate::on(NUMBER))")

    def look_at_literal(self, cursor):
        text = self.source.text[cursor.extent.start.offset:cursor.extent.end.offset]
        if NUMBER.match(text):
            for sign in "+-":
                self.wrap("constant", cursor, f"{text} -> {text} {sign} 1", f"(mutate::on(NUMBER) ? ({text} {sign} 1) : ", ")")

    def look_at_named_constant(self, cursor):
        if not self.is_constant(cursor.referenced):
            return
        text = self.source.text[cursor.extent.start.offset:cursor.extent.end.offset]
        for sign in "+-":
            changed = f"static_cast<decltype({text})>({text} {sign} 1)"
            self.wrap("constant", cursor, f"{text} -> {text} {sign} 1", f"(mutate::on(NUMBER) ? {changed} : ", ")")

    def look_at_statements(self, cursor, children):
        if cursor.kind in CONDITIONAL:
            condition = None if self.is_if_constexpr(cursor) else self.condition_of(children)
            if condition is not None:
                self.negate(condition)
        for child in children:
            if self.is_statement(child):
                self.drop(child)

    def condition_of(self, children):
        """The child between the brackets; None for a declaration."""
        for child in children:
            start, end = child.extent.start.offset, child.extent.end.offset
            if child.kind.is_expression() and self.source.before(start) in "(;" and self.source.behind(end) in ");":
                return child if not self.is_statement(child) else None
        return None

    def is_statement(self, cursor):
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        is_behind = self.source.before(start) in "{};):" or self.source.text[:start].rstrip().endswith("else")
        return cursor.kind.is_expression() and is_behind and self.source.behind(end) == ";" and not self.is_in_head(start)

    def is_in_head(self, start):
        """Whether the position is in the head of a for statement."""
        line = self.source.text[self.source.text.rfind("\n", 0, start) + 1:start]
        return re.search(r"\bfor \([^{]*$", line) is not None and line.count("(") > line.count(")")

    def drop(self, cursor):
        inner = cursor
        while inner.kind == CursorKind.UNEXPOSED_EXPR and len(list(inner.get_children())) == 1:
            inner = next(inner.get_children())
        if inner.kind == CursorKind.CALL_EXPR:
            operator = "dropped assignment" if ASSIGNMENTS.match(inner.spelling) else "dropped call"
        elif inner.kind in BINARY or inner.kind == CursorKind.UNARY_OPERATOR:
            operator = "dropped assignment"
        else:
            return
        text = " ".join(self.source.text[cursor.extent.start.offset:cursor.extent.end.offset].split())
        name = text if len(text) <= 40 else text[:40] + "..."
        self.wrap(operator, cursor, f"no {name}", "(mutate::on(NUMBER) ? void() : static_cast<void>(", "))")

    # -- what was found

    def swap(self, operator, cursor, left, right, before, after):
        extent = cursor.extent
        self.keep(operator, f"{before} -> {after}", Swap(extent.start.offset, extent.end.offset, left.extent.end.offset,
                                                         right.extent.start.offset, after))

    def wrap(self, operator, cursor, change, before, behind):
        self.keep(operator, change, Wrap(cursor.extent.start.offset, cursor.extent.end.offset, before, behind))

    def keep(self, operator, change, edit):
        key = (edit, operator, change)
        if edit.end <= edit.start or key in self.seen or self.source.is_written_by_macro(edit.start, edit.end):
            return
        self.seen.add(key)
        self.found.append((edit.start, self.function, operator, change, edit))
