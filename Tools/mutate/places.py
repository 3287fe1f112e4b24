"""Finds the places of a source file where a fault can be put, with the compiler's own tree."""
import bisect
import re
import sys
from dataclasses import dataclass, field

try:
    from clang import cindex
except ImportError:  # another Python than Debian's stands first in the path
    sys.path.append("/usr/lib/python3/dist-packages")
    from clang import cindex

K = cindex.CursorKind

KINDS = {
    "condition": "a condition turned",
    "bound": "a bound moved",
    "call": "a call dropped",
    "error": "an error ignored",
    "swap": "two statements swapped",
}

# Dropping these changes nothing that a caller relies on, or only words for people.
LEFT_OUT_CALLS = {
    "reserve", "squeeze", "shrink_to_fit", "setObjectName", "setAccessibleName", "setAccessibleDescription", "setToolTip",
    "setWhatsThis", "setStatusTip", "setPlaceholderText", "setWindowTitle", "prctl", "flush", "setProperty",
}
# What these do comes later, whichever stands first: repainting, what an event is answered with, what a signal will run.
VARIABLES = (K.VAR_DECL, K.PARM_DECL, K.FIELD_DECL)
# Values in memory: what their functions are called says nothing of disk, threads or processes. A timer goes off later, too.
CONTAINERS = re.compile(r"\b(QList|QHash|QMultiHash|QMap|QSet|QString|QByteArray|vector|deque|map|set|array|basic_string|QTimer|QBasicTimer)\b")
LATER = {"update", "accept", "ignore", "connect", "show", "hide", "raise", "lower", "setFocus", "setVisible", "setEnabled", "repaint"}
# What files one thing under one key, or gives one thing one property: two of them on different keys have no order.
KEYED = re.compile(r"^(insert|insert_or_assign|emplace|try_emplace|bind\w*|setValue|setObjectForKey|set[A-Z]\w*)$")
POSITIONED = re.compile(r"\b(QList|vector|deque|QString|QByteArray|basic_string|QJsonArray)\b")
# What reaches the disk, another thread or another process: its order is what faults are for, whoever it is called on.
ORDERED = re.compile(r"sync|flush|save|write|remove|unlink|rename|move|commit|begin|todisk|truncate|note|close|open|lock|wait|join|notify|stop|start|cancel"
                     r"|send|post|will|did|exec|^end|reset|^ask|terminate|kill|quit|spawn|migrat|mainloop|seek|finish|replac|recover|errno", re.I)
# How something looks, which is looked at and not tested: dropping or swapping calls on these is left out.
LOOKS = re.compile(r"\b(QPainter|QPalette|QPainterPath|Q\w*Layout|QPen|QFont|QPixmap)\b")
# What stands between their parentheses is text for people or for the log.
TEXT_CALLS = {"zqLocalized", "zqFormat", "tr", "zqTrace"}

# What cannot be switched at run time, or is not code.
NOT_INTO = {K.STATIC_ASSERT, K.ENUM_DECL, K.ENUM_CONSTANT_DECL, K.PARM_DECL, K.TEMPLATE_TYPE_PARAMETER,
            K.TEMPLATE_NON_TYPE_PARAMETER, K.CONCEPT_DECL if hasattr(K, "CONCEPT_DECL") else K.STATIC_ASSERT}
# What brings to the disk, wherever it stands in an expression, and what it answers when it worked.
FLUSHES = {"fsync": b"0", "fdatasync": b"0", "syncfs": b"0", "zqSyncFileSystem": b"true", "zqSyncToDisk": b"true", "zqSyncFolder": b"true"}
FUNCTIONS = {K.FUNCTION_DECL, K.CXX_METHOD, K.CONSTRUCTOR, K.DESTRUCTOR, K.CONVERSION_FUNCTION, K.FUNCTION_TEMPLATE}
MOVED = {b"<": b"<=", b"<=": b"<", b">": b">=", b">=": b">"}
TOKENS = re.compile(rb"""//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\d(?:'?[\w.])*|'(?:\\.|[^'\\\n])*'|\n""", re.S)
ERRONEOUS = re.compile(rb"^!|\b(error|failed|isNull)\b|< 0$|== -1$|[eE]rror")
FAILED_RESULT = re.compile(rb"return\s*(false|std::nullopt|nullptr|\{\}|-1|Q?String\(\)|.*[eE]rror.*|.*fail.*);\s*\}?$", re.S)


@dataclass
class Place:
    file: str
    kind: str
    start: int
    end: int
    line: int
    before: bytes  # the form with the fault off: "%" stands for the place's own text, "#" for the fault's number
    after: bytes
    faulty: bytes  # what a person reads as the fault
    children: list = field(default_factory=list)

    def end_line(self, text):
        return self.line + text[self.start:self.end].count(b"\n")


@dataclass
class Call:
    """A statement that is a call and nothing else."""
    start: int
    end: int  # with the semicolon
    name: str
    is_ordered: bool  # what it does reaches the disk, another thread or another process, as far as its name tells
    key: str  # what its first argument says, for one that is filed under it; "" for a setter, None for any other
    touched: "Touched"


@dataclass
class Touched:
    """The variables and members that are changed, and those that are looked at."""
    changed: set = field(default_factory=set)
    seen: set = field(default_factory=set)


def one_line(text):
    def replace(match):
        token = match.group()
        return b" " if token[:2] in (b"//", b"/*") or token == b"\n" else token
    return b" ".join(TOKENS.sub(replace, text).split(b"\n"))


def closing_parenthesis(text, opening):
    depth, at = 0, opening
    while at < len(text):
        match = TOKENS.match(text, at)
        if match and match.end() > at:
            at = match.end()
            continue
        depth += {40: 1, 41: -1}.get(text[at], 0)
        if depth == 0:
            return at
        at += 1
    return -1


class Finder:
    def __init__(self, path, name, arguments):
        self.name = name
        with open(path, "rb") as file:
            self.text = file.read()
        options = cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD
        self.unit = cindex.Index.create().parse(path, args=arguments, options=options)
        self.failure = next((str(d) for d in self.unit.diagnostics if d.severity >= cindex.Diagnostic.Fatal), None)
        self.lines = [0] + [match.end() for match in re.finditer(b"\n", self.text)]
        self.path = path
        self.places = {}
        self.macros = []

    def find(self):
        tops = [c for c in self.unit.cursor.get_children() if c.location.file and c.location.file.name == self.path]
        self.macros = sorted(self.extent(c) for c in tops if c.kind == K.MACRO_INSTANTIATION)
        for cursor in tops:
            if not cursor.kind.is_preprocessing():
                self.walk(cursor, False)
        return list(self.places.values())

    @staticmethod
    def extent(cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def is_in_macro(self, start, end):
        """Whether a macro holds the place, or begins or ends within it only in part."""
        first = max(0, bisect.bisect_left(self.macros, (start, 0)) - 3)
        for low, high in self.macros[first:]:
            if low >= end:
                return False
            if high > start and not (start <= low and high <= end and (low, high) != (start, end)):
                return True
        return False

    def add(self, kind, start, end, before, after, faulty):
        if start >= end or self.is_in_macro(start, end):
            return
        line = bisect.bisect_right(self.lines, start)
        self.places.setdefault((kind, start, end), Place(self.name, kind, start, end, line, before, after, faulty))

    def walk(self, cursor, in_body):
        kind = cursor.kind
        if kind in NOT_INTO or (in_body and self.is_left_alone(cursor)):
            return
        if kind in FUNCTIONS and re.search(rb"\b(constexpr|consteval)\b", self.text[cursor.extent.start.offset:][:120].split(b"(")[0]):
            return
        if kind == K.VAR_DECL and re.match(rb"(static |inline )*(constexpr|constinit)", self.text[cursor.extent.start.offset:][:40]):
            return
        children = list(cursor.get_children())
        if kind == K.COMPOUND_STMT:
            in_body = True
            self.statements(children)
        elif in_body:
            self.expression(cursor, kind, children)
        if kind == K.CASE_STMT:
            children = children[1:]
        for child in children:
            self.walk(child, in_body)

    def is_left_alone(self, cursor):
        if cursor.kind == K.CALL_EXPR and cursor.spelling in TEXT_CALLS:
            return True
        return cursor.kind == K.DECL_STMT and re.match(rb"(static |inline )*(constexpr|constinit)\b",
                                                       self.text[cursor.extent.start.offset:][:40]) is not None

    def expression(self, cursor, kind, children):
        if kind == K.CALL_EXPR and cursor.spelling in FLUSHES:
            start, end = self.extent(cursor)
            answer = FLUSHES[cursor.spelling]
            self.add("call", start, end, b"(zqMutant(#) ? " + answer + b" : (", b"))", answer)
        if kind == K.IF_STMT:
            self.if_statement(cursor, children)
        elif kind == K.CONDITIONAL_OPERATOR and len(children) == 3:
            self.condition(*self.extent(children[0]))
        elif kind == K.BINARY_OPERATOR and len(children) == 2:
            self.binary(cursor, children)
        elif kind == K.FOR_STMT:
            self.loop(children)
        elif kind == K.RETURN_STMT and children:
            self.result(children[0])

    def condition(self, start, end):
        self.add("condition", start, end, b"(zqMutant(#) != static_cast<bool>(", b"))", b"!(" + self.text[start:end] + b")")

    def if_statement(self, cursor, children):
        start, end = self.extent(cursor)
        opening = self.text.find(b"(", start)
        if self.text[start:opening].strip() != b"if":  # constexpr, or from a macro
            return
        closing = closing_parenthesis(self.text, opening)
        inside = [c for c in children if opening < c.extent.start.offset and c.extent.end.offset <= closing]
        if not inside:
            return
        low, high = self.extent(inside[-1])
        leading = re.split(b"[;(]", self.text[opening:low])[-1]
        if leading.strip() or self.text[high:closing].strip():
            return
        self.condition(low, high)
        branches = [c for c in children if c.extent.start.offset > closing]
        body = one_line(self.text[slice(*self.extent(branches[0]))]) if branches else b""
        returns = re.search(rb"\breturn\b[^;]*;\s*\}?$", body)
        if len(branches) != 1 or not returns or re.search(rb"\breturn\s*;", returns.group()):
            return
        if ERRONEOUS.search(self.text[low:high]) or FAILED_RESULT.search(returns.group()):
            self.add("error", low, high, b"(static_cast<bool>(", b") && !zqMutant(#))", b"(" + self.text[low:high] + b") && false")

    def result(self, value):
        """A function that hands on whether something worked."""
        call = self.peeled(value)
        if call.kind == K.CALL_EXPR and value.type.get_canonical().kind == cindex.TypeKind.BOOL and not call.spelling.startswith("operator"):
            start, end = self.extent(value)
            if not re.match(r"(is|has|can|contains|starts|ends|operator|should|are|was)", call.spelling):
                self.add("error", start, end, b"(static_cast<bool>(", b") || zqMutant(#))", b"(" + self.text[start:end] + b") || true")

    def binary(self, cursor, children):
        (low, middle), (after, high) = self.extent(children[0]), self.extent(children[1])
        operator = one_line(self.text[middle:after]).strip()
        if operator in (b"&&", b"||"):
            for child in children:
                if not self.is_logical(child):
                    self.condition(*self.extent(child))
        elif operator in MOVED:
            faulty = self.text[low:middle] + b" " + MOVED[operator] + b" " + self.text[after:high]
            self.add("bound", low, high, b"(zqMutant(#) ? (" + one_line(faulty) + b") : (", b"))", faulty)
        if operator in MOVED or operator in (b"+", b"-", b"==", b"!="):
            for child in children:
                self.number(child)

    def number(self, cursor):
        cursor = self.peeled(cursor)
        if cursor.kind == K.INTEGER_LITERAL:
            start, end = self.extent(cursor)
            self.add("bound", start, end, b"(", b" + (zqMutant(#) ? 1 : 0))", self.text[start:end] + b" + 1")

    def loop(self, children):
        first = children[0] if children else None
        if first is not None and first.kind == K.DECL_STMT:
            for variable in first.get_children():
                for value in variable.get_children():
                    self.number(value)

    def is_logical(self, cursor):
        cursor = self.peeled(cursor)
        if cursor.kind == K.PAREN_EXPR:
            return True  # its inside is looked at by itself
        children = list(cursor.get_children())
        if cursor.kind != K.BINARY_OPERATOR or len(children) != 2:
            return False
        return one_line(self.text[children[0].extent.end.offset:children[1].extent.start.offset]).strip() in (b"&&", b"||")

    @staticmethod
    def peeled(cursor):
        while cursor.kind == K.UNEXPOSED_EXPR:
            children = list(cursor.get_children())
            if len(children) != 1:
                break
            cursor = children[0]
        return cursor

    def statements(self, children):
        calls = [self.call_statement(child) for child in children]
        for call in calls:
            if call:
                self.add("call", call.start, call.end, b"{ if (!zqMutant(#)) { ", b" } }", b"")
        for one, two in zip(calls, calls[1:]):
            if one and two and not self.is_order_free(one, two):
                first, second = self.text[one.start:one.end], self.text[two.start:two.end]
                between = self.text[one.end:two.start]
                if first != second and not self.is_in_macro(one.start, one.end) and not self.is_in_macro(two.start, two.end):
                    before = b"{ if (zqMutant(#)) { " + one_line(second + b" " + first) + b" } else { "
                    spaces = re.search(rb"\n?[ \t]*$", between).group()
                    self.add("swap", one.start, two.end, before, b" } }", second + spaces + first)

    def call_statement(self, cursor):
        call = self.peeled(cursor)
        if call.kind != K.CALL_EXPR or call.spelling in LEFT_OUT_CALLS or call.spelling in TEXT_CALLS:
            return None
        start, end = self.extent(cursor)
        semicolon = re.match(rb"\s*;", self.text[end:end + 40])
        if not semicolon or self.text[start:end].startswith((b"delete ", b"qC", b"qDebug", b"qWarning")):
            return None
        receiver = self.receiver(call)
        of = receiver.type.get_canonical().spelling if receiver is not None else ""
        if LOOKS.search(of):
            return None
        touched = Touched()
        self.touch(call, touched, [])
        held = next(call.get_children()) if call.spelling == "operator()" else None  # a function that stands in a variable
        is_ordered = bool(ORDERED.search(held.spelling if held is not None else call.spelling)) and not CONTAINERS.search(of)
        return Call(start, end + semicolon.end(), call.spelling, is_ordered, self.key(call, of), touched)

    def key(self, call, of):
        if not KEYED.search(call.spelling) or (call.spelling in ("insert", "emplace") and POSITIONED.search(of)):
            return None
        arguments = list(call.get_arguments())
        return call.spelling + "(" + (self.text[slice(*self.extent(arguments[0]))].decode() if len(arguments) > 1 else "")

    def receiver(self, call):
        """The variable or member whose function is called, or None: a free function, or one of the object's own."""
        callee = next(iter(call.get_children()), None)
        if call.kind == K.CALL_EXPR and call.spelling.startswith("operator") and call.spelling != "operator()":
            return self.variable(callee)
        if call.kind != K.CALL_EXPR or callee is None or callee.kind != K.MEMBER_REF_EXPR:
            return None
        return self.variable(next(iter(callee.get_children()), None))

    def variable(self, target):
        """The variable or member that is named, or part of which is; or the function that is asked for it."""
        while target is not None:
            target = self.peeled(target)
            if self.is_getter(target):
                return target
            if target.kind in (K.DECL_REF_EXPR, K.MEMBER_REF_EXPR) and target.referenced is not None:
                return target if target.referenced.kind in VARIABLES else None
            inside = target.kind == K.CALL_EXPR and target.spelling in ("operator[]", "operator->", "operator*") or target.kind in (
                K.ARRAY_SUBSCRIPT_EXPR, K.UNARY_OPERATOR, K.PAREN_EXPR)
            target = next(iter(target.get_children()), None) if inside else None
        return None

    @staticmethod
    def is_getter(cursor):
        return (cursor.kind == K.CALL_EXPR and cursor.referenced is not None and cursor.referenced.kind in (K.CXX_METHOD, K.FUNCTION_DECL)
                and not cursor.spelling.startswith("operator") and not list(cursor.get_arguments()))

    def touch(self, cursor, touched, within):
        """Adds what the code at the cursor changes and looks at, and what those functions of this file do that it calls."""
        for each in cursor.walk_preorder():
            if each.kind in (K.DECL_REF_EXPR, K.MEMBER_REF_EXPR) and each.referenced is not None and each.referenced.kind in VARIABLES:
                touched.seen.add(each.referenced.get_usr())
            elif each.kind in (K.BINARY_OPERATOR, K.COMPOUND_ASSIGNMENT_OPERATOR, K.UNARY_OPERATOR):
                if self.is_changing(each):
                    self.note_changed(next(iter(each.get_children()), None), touched)
            elif each.kind == K.CALL_EXPR:
                self.touch_call(each, touched, within)

    def is_changing(self, cursor):
        children = list(cursor.get_children())
        if cursor.kind == K.UNARY_OPERATOR:
            start, end = self.extent(cursor)
            text = self.text[start:end]
            return text[:2] in (b"++", b"--") or text[-2:] in (b"++", b"--")
        if cursor.kind == K.COMPOUND_ASSIGNMENT_OPERATOR:
            return True
        return len(children) == 2 and one_line(self.text[children[0].extent.end.offset:children[1].extent.start.offset]).strip() == b"="

    def note_changed(self, target, touched):
        """A member of a local value changes that value, too; the object's own members are each by themselves."""
        variable = self.variable(target)
        while variable is not None:
            touched.changed.add(variable.referenced.get_usr())
            of = self.variable(next(iter(variable.get_children()), None)) if variable.kind == K.MEMBER_REF_EXPR else None
            variable = of if of is not None and of.kind == K.DECL_REF_EXPR else None

    def touch_call(self, call, touched, within):
        function = call.referenced
        if self.is_getter(call):
            touched.seen.add(function.get_usr())
        is_member = function is not None and function.kind in (K.CXX_METHOD, K.FUNCTION_TEMPLATE) and not function.is_static_method()
        if is_member and not function.is_const_method():
            self.note_changed(self.receiver(call), touched)
        type_of = function.type.get_canonical() if function is not None else None
        kinds = type_of.argument_types() if type_of is not None and type_of.kind == cindex.TypeKind.FUNCTIONPROTO else []
        for argument, kind in zip(call.get_arguments(), kinds):
            if kind.kind in (cindex.TypeKind.LVALUEREFERENCE, cindex.TypeKind.POINTER) and not kind.get_pointee().is_const_qualified():
                self.note_changed(argument, touched)
        body = function.get_definition() if function is not None else None
        if body is not None and body.location.file and body.location.file.name == self.path and body.get_usr() not in within and len(within) < 5:
            self.touch(body, touched, within + [body.get_usr()])
        elif call.spelling == "operator()":  # a function that stands in a variable
            held = next((c.referenced for c in call.walk_preorder() if c.kind == K.DECL_REF_EXPR and c.referenced is not None
                         and c.referenced.kind == K.VAR_DECL and "lambda" in c.referenced.type.get_canonical().spelling), None)
            if held is not None and held.get_usr() not in within and len(within) < 5:
                self.touch(held, touched, within + [held.get_usr()])

    @staticmethod
    def is_order_free(one, two):
        """Whether nobody can tell which of the two came first."""
        if one.name == two.name == "operator=" or one.name in LATER or two.name in LATER:
            return True
        if one.key is not None and two.key is not None and one.key != two.key:
            return True
        if one.is_ordered and two.is_ordered:
            return False
        a, b = one.touched, two.touched
        return not (a.changed & (b.seen | b.changed) or b.changed & a.seen)


def find_places(path, name, arguments):
    finder = Finder(path, name, arguments)
    if finder.failure:
        return [], f"{name}: {finder.failure}"
    return finder.find(), None
