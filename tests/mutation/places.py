# SPDX-License-Identifier: GPL-3.0-or-later
"""Where a source can be changed, and into what. Clang says where each expression and statement begins and ends; what has
to be known while compiling (constexpr, templates, case labels) is left as it is."""
import json
import pathlib
import re
import shlex
from dataclasses import dataclass

from clang import cindex
from clang.cindex import CursorKind as Kind

boundary = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
whole = re.compile(r"(0[xX][0-9a-fA-F']+|[0-9][0-9']*)([a-zA-Z_]\w*)?")
functions = {Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR, Kind.CONVERSION_FUNCTION}
left_out = {Kind.FUNCTION_TEMPLATE, Kind.CLASS_TEMPLATE, Kind.CLASS_TEMPLATE_PARTIAL_SPECIALIZATION, Kind.ENUM_DECL,
            Kind.STATIC_ASSERT, Kind.TYPE_ALIAS_DECL, Kind.TYPEDEF_DECL, Kind.PARM_DECL}
loops = {Kind.FOR_STMT, Kind.WHILE_STMT, Kind.CXX_FOR_RANGE_STMT, Kind.IF_STMT, Kind.CASE_STMT, Kind.DEFAULT_STMT,
         Kind.DO_STMT}
acts = {Kind.CALL_EXPR, Kind.BINARY_OPERATOR, Kind.COMPOUND_ASSIGNMENT_OPERATOR, Kind.UNARY_OPERATOR, Kind.UNEXPOSED_EXPR,
        Kind.CXX_DELETE_EXPR, Kind.CXX_THROW_EXPR, Kind.CXX_STATIC_CAST_EXPR, Kind.CSTYLE_CAST_EXPR, Kind.PAREN_EXPR}
leaves = {Kind.BREAK_STMT, Kind.CONTINUE_STMT}


@dataclass
class Mutant:
    """`pieces` of what stands there instead: text; (begin, end, True) of the original, with the mutants inside it; and
    (begin, end, False) without them. M stands for the question whether this is the mutant."""
    file: str
    begin: int
    end: int
    kind: str
    change: str
    pieces: list
    number: int = 0


def masked(text):
    """The text with everything in comments, strings and characters made blank, each byte where it was."""
    pattern = re.compile(rb'//[^\n]*|/\*.*?\*/|R"([^(\s]*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<![0-9a-fA-F])\'(?:\\.|[^\'\\\n])+\'', re.S)

    def blank(found):
        inner = b"_" if found[0][:1] in b"\"'R" else b" "
        return re.sub(rb"[^\n]", inner, found[0])
    return pattern.sub(blank, text)


class Source:
    def __init__(self, root, name, arguments):
        self.root, self.name = root, name
        self.text = (root / name).read_bytes()
        self.bare = masked(self.text)
        self.found = {}
        unit = cindex.Index.create().parse(str(root / name), args=arguments)
        worst = max((d.severity for d in unit.diagnostics), default=0)
        if worst >= cindex.Diagnostic.Error:
            raise RuntimeError(f"{name}: " + "; ".join(d.spelling for d in unit.diagnostics if d.severity >= 3))
        for cursor in unit.cursor.get_children():
            where = cursor.location.file
            if where and where.name == str(root / name):
                self.visit(cursor, None, inside=False)

    def span(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def said(self, begin, end):
        return self.text[begin:end].decode()

    def add(self, kind, begin, end, change, *pieces):
        self.found.setdefault((begin, end, kind, change), Mutant(self.name, begin, end, kind, change, list(pieces)))

    def visit(self, cursor, parent, inside):
        if cursor.kind in left_out or self.compile_time(cursor):
            return
        begin, end = self.span(cursor)
        children = list(cursor.get_children())
        if cursor.kind in functions or cursor.kind == Kind.LAMBDA_EXPR:
            inside = True
            self.early_return(cursor, children)
        if inside and begin < end:
            self.look(cursor, parent, children, begin, end)
        for child in children:
            if cursor.kind == Kind.CASE_STMT and child == children[0]:
                continue
            self.visit(child, cursor, inside)

    def compile_time(self, cursor):
        begin, end = self.span(cursor)
        if cursor.kind in functions or cursor.kind in (Kind.VAR_DECL, Kind.DECL_STMT):
            head = re.split(rb"[{=]", self.bare[begin:end], maxsplit=1)[0]
            return re.search(rb"\b(constexpr|consteval|constinit)\b", head)
        return cursor.kind == Kind.IF_STMT and re.match(rb"if\s+constexpr", self.bare[begin:end])

    def look(self, cursor, parent, children, begin, end):
        self.comparison(cursor, children, begin, end)
        self.constant(cursor, parent, begin, end)
        if cursor.kind == Kind.COMPOUND_STMT:
            self.statements(children)
        if cursor.kind in loops and children:
            body = children[0] if cursor.kind == Kind.DO_STMT else children[-1]
            self.statement(body, last=False)
        if cursor.kind in (Kind.IF_STMT, Kind.WHILE_STMT):
            self.condition(cursor, children, begin)

    def comparison(self, cursor, children, begin, end):
        calls = cursor.kind == Kind.CALL_EXPR and cursor.spelling.startswith("operator")
        if not (calls or cursor.kind == Kind.BINARY_OPERATOR) or len(children) < 2:
            return
        left, right = self.span(children[0]), self.span(children[-1])
        sign = self.bare[left[1]:right[0]].strip().decode()
        if sign not in boundary or left[0] != begin or right[1] != end:
            return
        other = boundary[sign]
        self.add("comparison", begin, end, f"{sign} to {other}", "(M ? static_cast<bool>(", (*left, False), f" {other} ",
                 (*right, False), ") : static_cast<bool>(", (begin, end, True), "))")
        if sign not in ("==", "!="):
            self.add("comparison", begin, end, "turned round", "(static_cast<bool>(", (begin, end, True), ") != M)")

    def constant(self, cursor, parent, begin, end):
        said = self.said(begin, end)
        if cursor.kind == Kind.CXX_BOOL_LITERAL_EXPR and said in ("true", "false"):
            self.add("constant", begin, end, f"not {said}", "(", (begin, end, True), " != M)")
        number = whole.fullmatch(said)
        if cursor.kind != Kind.INTEGER_LITERAL or not number or self.of_a_type(begin, end):
            return
        if parent is not None and parent.type.kind == cindex.TypeKind.POINTER:
            return
        value = int(number[1].replace("'", ""), 0 if number[1][:2] in ("0x", "0X") or number[1] == "0" else 8 if number[1][0] == "0" else 10)
        moved = f"{value + 1:#x}" if number[1][:2] in ("0x", "0X") else str(value + 1)
        moved += number[2] or ""
        self.add("constant", begin, end, f"{said} to {moved}", f"(M ? {moved} : {said})")

    def of_a_type(self, begin, end):
        before, after = self.bare[:begin].rstrip()[-1:], self.bare[end:end + 200].lstrip()[:1]
        return before in (b"<", b",") and after == b">"

    def statements(self, children):
        for number, child in enumerate(children):
            self.statement(child, last=number + 1 == len(children))
        for first, second in zip(children, children[1:]):
            a, b = self.act(first), self.act(second)
            if a and b and not self.independent(self.text[a[0]:a[1]], self.text[b[0]:b[1]]):
                self.add("order", a[0], b[1], "swapped", "if (M) { ", (*b, False), " ", (*a, False), " } else { ",
                         (a[0], b[1], True), " }")

    def independent(self, first, second):
        """The same, or two assignments of which neither reads what the other writes: their order is nobody's."""
        set_by = re.compile(rb"([\w.]+) [-+|]?= (?:static_cast<[\w:]+>\()?[\w.]+\)?;")
        a, b = set_by.fullmatch(first), set_by.fullmatch(second)
        return first == second or (a and b and a[1] not in second and b[1] not in first)

    def act(self, cursor):
        """Where a statement that does something, and declares nothing, begins and ends with its semicolon."""
        if cursor.kind not in acts:
            return None
        begin, end = self.span(cursor)
        rest = re.match(rb"\s*;", self.bare[end:])
        return (begin, end + rest.end()) if rest and self.bare[begin:end].strip() else None

    def statement(self, cursor, last):
        begin, end = self.span(cursor)
        place = self.act(cursor)
        if cursor.kind in leaves or (cursor.kind == Kind.RETURN_STMT and self.said(begin, end) == "return"):
            place = (begin, end + self.bare[end:].index(b";") + 1)
        thrown = cursor.kind == Kind.CXX_THROW_EXPR or self.bare[begin:begin + 5] == b"throw"
        if place and not (thrown and last):
            self.add("statement", *place, "dropped", "{ if (!M) ", (*place, True), " }")

    def condition(self, cursor, children, begin):
        opening = self.bare.index(b"(", begin)
        closing = self.closing(opening)
        heads = [child for child in children if opening < self.span(child)[0] < closing]
        if not heads or any(head.kind == Kind.VAR_DECL for head in heads) or not heads[-1].kind.is_expression():
            return
        place = self.span(heads[-1])
        if self.bare[place[1]:closing].strip():
            return
        text = self.bare[place[0]:place[1]]
        if not re.search(rb"==|!=|[<>]=?", text.replace(b"->", b"  ")):
            self.add("comparison", *place, "turned round", "(static_cast<bool>(", (*place, True), ") != M)")
        bodies = [child for child in children if self.span(child)[0] > closing]
        if cursor.kind == Kind.IF_STMT and bodies and bodies[0].kind in (Kind.RETURN_STMT, Kind.CONTINUE_STMT, Kind.BREAK_STMT):
            self.add("return", *place, "taken", "(static_cast<bool>(", (*place, True), ") || M)")

    def closing(self, opening):
        depth = 0
        for place in range(opening, len(self.bare)):
            depth += {40: 1, 41: -1}.get(self.bare[place], 0)
            if depth == 0:
                return place
        return opening

    def early_return(self, cursor, children):
        body = next((child for child in children if child.kind == Kind.COMPOUND_STMT), None)
        nothing = cursor.kind in (Kind.CONSTRUCTOR,) or cursor.result_type.spelling == "void"
        if body is None or not nothing or cursor.kind == Kind.LAMBDA_EXPR or len(list(body.get_children())) < 2:
            return
        begin, end = self.span(body)
        if self.bare[begin:begin + 1] == b"{":
            self.add("return", begin + 1, begin + 1, "at the start", " if (M) return;")


def arguments_of(build):
    """What clang has to know of each source, by its path."""
    kept = re.compile(r"-(I|D|U|isystem|std=|f(PIC|pic))")
    known = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        words = shlex.split(entry["command"])
        taken = [word for before, word in zip(words, words[1:]) if kept.match(word) or before == "-isystem"]
        known[pathlib.Path(entry["file"])] = [*taken, "-w"]
    return known


def places(root, name, arguments):
    try:
        return sorted(Source(root, name, arguments).found.values(), key=lambda m: (m.begin, -m.end, m.kind, m.change))
    except RuntimeError as failure:
        print(f"not understood: {failure}", flush=True)
        return []
