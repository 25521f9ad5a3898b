"""Finds where a source can be mutated, with libclang: templates and headers too."""

import bisect
import re

from clang import cindex

from mutants import INSERTED, SKIPPED, STATEMENT, TRUTH, VALUE, Mutant, flat

RELATIONAL = {"<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
              "==": ("!=",), "!=": ("==",)}
LOGICAL = {"&&": ("||",), "||": ("&&",)}
ARITHMETIC = {"+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "&": ("|",), "|": ("&",),
              "^": ("&",), "<<": (">>",), ">>": ("<<",), "+=": ("-=",), "-=": ("+=",)}
STEPS = {"++": "--", "--": "++"}
BINARY = re.compile(r"\s*(<<|>>|<=|>=|==|!=|&&|\|\||\+=|-=|[<>+\-*/&|^=])\s*")
STRING = re.compile(r'"(?:[^"\\]|\\.)+"')
FOLD = re.compile(r"(\|\||&&) \.\.\.\)$")

BODIES = ("FUNCTION_DECL", "CXX_METHOD", "FUNCTION_TEMPLATE", "CONSTRUCTOR", "DESTRUCTOR",
          "CONVERSION_FUNCTION", "LAMBDA_EXPR")
# What is settled when the program is compiled: no run could choose a mutant there.
SETTLED = re.compile(r"(?:template\s*<[^{;]*?>\s*)?(?:(?:static|inline|explicit|friend"
                     r"|\[\[[^]]*\]\])\s+)*(?:constexpr|consteval|constinit|concept|requires"
                     r"|static_assert|using|typedef|enum)\b")


class Sites:
    """The mutants of some files, collected from any number of parsed sources."""

    def __init__(self, root, files):
        self.root = root
        self.bytes = {file: (root / file).read_bytes() for file in files}
        self.lines = {file: [m.start() for m in re.finditer(b"\n", data)]
                      for file, data in self.bytes.items()}
        self.found = {}
        self.seen = set()
        self.body = None  # of the function that is visited

    def collect(self, unit, files):
        """Adds the mutants that a translation unit has in these files."""
        for cursor in unit.cursor.get_children():
            if self.file_of(cursor.extent) in files:
                self.visit(cursor, "")

    def mutants(self):
        """All mutants, in order of place; equal keys told apart by an ordinal."""
        ordered = sorted(self.found.values(), key=lambda m: (m.file, m.places, m.operator))
        count = {}
        for mutant in ordered:
            count[mutant.key] = count.get(mutant.key, 0) + 1
            yield Mutant(**{**vars(mutant), "ordinal": count[mutant.key]})

    def file_of(self, extent):
        file = extent.start.file
        if file is None or not file.name.startswith(f"{self.root}/"):
            return None
        name = file.name[len(f"{self.root}/"):]
        return name if name in self.bytes else None

    def text(self, file, start, end):
        return self.bytes[file][start:end].decode()

    # ---- visiting

    def visit(self, cursor, function):
        """Visits a declaration, statement or expression, and what is in it."""
        file = self.file_of(cursor.extent)
        if file is None:
            return
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        kind = kind_of(cursor)
        text = self.text(file, start, min(end, start + 300))
        is_array = kind == "FIELD_DECL" and "[" in text
        if SETTLED.match(text) or kind.startswith("TEMPLATE_") or is_array:
            return
        if kind in BODIES:
            if (file, start, end) in self.seen and kind != "LAMBDA_EXPR":
                return
            self.seen.add((file, start, end))
            function = function if kind == "LAMBDA_EXPR" else qualified(cursor)
            self.visit_function(cursor, file, function)
            return
        here = Here(self, file, function, start, end)
        getattr(self, f"at_{kind}", self.at_other)(cursor, here)

    def visit_function(self, cursor, file, function):
        children = list(cursor.get_children())
        body = next((c for c in children if kind_of(c) == "COMPOUND_STMT"), None)
        if body is None or self.text(file, *span(body))[:1] != "{":
            return
        outer, self.body = self.body, Body(cursor, body)
        # What stands in front of the name is the template's head; behind it come initialisers.
        for child in children:
            if child.extent.start.offset > cursor.location.offset and kind_of(child) != "PARM_DECL":
                self.visit(child, function)
        self.body = outer
        self.early_returns(cursor, body, Here(self, file, function, *span(body)))

    def early_returns(self, cursor, body, here):
        statements = list(body.get_children())
        if kind_of(cursor) == "LAMBDA_EXPR" or not statements:
            return
        returned = cursor.result_type.get_canonical()
        kind = returned.kind.name
        if kind_of(cursor) in ("CONSTRUCTOR", "DESTRUCTOR") or kind == "VOID":
            # A single statement is removed anyway.
            values = [] if len(statements) == 1 and statements[0].kind.is_expression() else [""]
        elif kind == "BOOL":
            values = [" true", " false"]
        elif kind == "POINTER":
            values = [" nullptr"]
        elif kind in ("LVALUEREFERENCE", "RVALUEREFERENCE", "AUTO"):
            values = []
        else:
            values = [" {}"]
        whole = flat(here.text(*span(body)).strip("{}"))
        for value in values:
            if whole not in (f"return{value};", "return none;"):
                here.add("return", INSERTED, "{", f"{{ return{value};",
                         [(here.start + 1, here.start + 1, f"return{value};")])

    def children(self, cursor, here):
        for child in cursor.get_children():
            self.visit(child, here.function)

    def at_other(self, cursor, here):
        self.children(cursor, here)

    def at_COMPOUND_STMT(self, cursor, here):
        statements = list(cursor.get_children())
        for child in statements:
            self.statement(child, here)
        for first, second in zip(statements, statements[1:]):
            self.order(first, second, here)

    def order(self, first, second, here):
        """Neighbouring statements that are expressions can change places."""
        if not all(c.kind.is_expression() and kind_of(c) != "CXX_THROW_EXPR"
                   and self.file_of(c.extent) == here.file for c in (first, second)):
            return
        before, after = here.text(*span(first)), here.text(*span(second))
        if before and after and before != after:
            here.add("order", STATEMENT, f"{before}; {after}", f"{after}; {before}",
                     [(*span(first), after), (*span(second), before)])

    def statement(self, cursor, here):
        """An expression that is a whole statement can be left out."""
        start, end = span(cursor)
        if self.file_of(cursor.extent) == here.file and cursor.kind.is_expression() and end > start:
            text = here.text(start, end)
            operator = "call" if re.match(r"[^=]*\(", text) and not assigns(text) else "store"
            if kind_of(cursor) == "CXX_THROW_EXPR":
                operator = "throw"
            if operator != "throw" or self.body.can_go_on_behind(cursor):
                here.add(operator, STATEMENT, text, "nothing", [(start, end, "void()")])
        self.visit(cursor, here.function)

    def skip(self, cursor, here):
        start, end = span(cursor)
        rest = re.match(r"\s*;", here.text(end, end + 20))
        if rest is None or self.file_of(cursor.extent) != here.file:
            return
        end += rest.end()
        here.add("skip", SKIPPED, here.text(start, end), "nothing", [(start, end, "")])

    def at_RETURN_STMT(self, cursor, here):
        if self.body.can_go_on_behind(cursor):
            self.skip(cursor, here)
        self.children(cursor, here)

    def at_BREAK_STMT(self, cursor, here):
        self.skip(cursor, here)

    at_CONTINUE_STMT = at_BREAK_STMT

    def at_STRING_LITERAL(self, _, here):
        text = here.text(here.start, here.end)
        if STRING.fullmatch(text) and not re.match(r"\w", here.text(here.end, here.end + 1)):
            here.add("string", VALUE, text, '""', [(here.start, here.end, '""')])

    def at_UNEXPOSED_STMT(self, cursor, here):
        for child in cursor.get_children():
            self.statement(child, here)

    at_DEFAULT_STMT = at_UNEXPOSED_STMT

    def at_CASE_STMT(self, cursor, here):
        for child in list(cursor.get_children())[1:]:
            self.statement(child, here)

    def loop(self, cursor, here):
        children = list(cursor.get_children())
        for child in children[:-1]:
            if not (kind_of(cursor) == "WHILE_STMT" and kind_of(child) == "DECL_REF_EXPR"):
                self.visit(child, here.function)
        if kind_of(cursor) == "WHILE_STMT" and kind_of(children[0]) != "VAR_DECL":
            here.condition(children[0], ("false",))
        self.statement(children[-1], here)

    at_FOR_STMT = at_WHILE_STMT = at_CXX_FOR_RANGE_STMT = loop

    def at_IF_STMT(self, cursor, here):
        close = closing_parenthesis(here.text(here.start, here.end)) + here.start
        settled = re.match(r"if\s+constexpr", here.text(here.start, here.end))
        head = [c for c in cursor.get_children() if c.extent.start.offset < close]
        for child in cursor.get_children():
            if child.extent.start.offset >= close:
                self.statement(child, here)
        if settled:
            return
        declared = next((c for c in head if kind_of(c) == "VAR_DECL"), None)
        if declared is None:
            here.condition(head[-1], ("true", "false"))
            self.visit(head[-1], here.function)
            return
        self.visit(declared, here.function)
        for value in ("true", "false"):
            here.add("condition", INSERTED, here.text(*span(declared)), value,
                     [(close, close, value, declared.spelling)])

    def at_CONDITIONAL_OPERATOR(self, cursor, here):
        here.condition(next(cursor.get_children()), ("true", "false"))
        self.children(cursor, here)

    def at_BINARY_OPERATOR(self, cursor, here):
        self.binary(cursor, here)
        self.children(cursor, here)

    at_COMPOUND_ASSIGNMENT_OPERATOR = at_BINARY_OPERATOR

    def at_UNARY_OPERATOR(self, cursor, here):
        text = here.text(here.start, here.end)
        if text.startswith("!") and not text.startswith("!="):
            here.add("logical", TRUTH, text, text[1:].strip(), [(here.start, here.end, text[1:])])
        for step, other in STEPS.items():
            if text.startswith(step) or text.endswith(step):
                changed = text.replace(step, other, 1)
                here.add("arithmetic", VALUE, text, changed, [(here.start, here.end, changed)])
        self.children(cursor, here)

    def at_UNEXPOSED_EXPR(self, cursor, here):
        text = here.text(here.start, here.end)
        if text.startswith("(") and (fold := FOLD.search(text)):
            changed = f"{text[:fold.start()]}{LOGICAL[fold.group(1)][0]} ...)"
            here.add("logical", TRUTH, text, changed, [(here.start, here.end, changed)])
        children = list(cursor.get_children())
        # A comparison that the compiler has rewritten to another.
        if [kind_of(c) for c in children] == ["UNARY_OPERATOR"] \
                and here.text(*span(children[0])).startswith("!="):
            comparison = next(children[0].get_children())
            self.binary(comparison, here)
            self.children(comparison, here)
            return
        self.children(cursor, here)

    def at_CALL_EXPR(self, cursor, here):
        self.binary(cursor, here)
        text = here.text(here.start, here.end)
        if text.startswith("!") and not text.startswith("!="):
            here.add("logical", TRUTH, text, text[1:].strip(), [(here.start, here.end, text[1:])])
        arguments = [a for a in cursor.get_arguments() if a and self.file_of(a.extent) == here.file
                     and here.start <= a.extent.start.offset < a.extent.end.offset <= here.end]
        is_infix = cursor.spelling.startswith("operator") and cursor.spelling != "operator()"
        if text.endswith(")") and not is_infix:
            self.swaps(arguments, here)
        self.children(cursor, here)

    def swaps(self, arguments, here):
        for a, b in zip(arguments, arguments[1:]):
            before, after = here.text(*span(a)), here.text(*span(b))
            if before == after or not same_type(a, b) or span(a)[1] > span(b)[0]:
                continue
            text = (here.text(here.start, span(a)[0]) + after + here.text(span(a)[1], span(b)[0]) +
                    before + here.text(span(b)[1], here.end))
            here.add("swap", VALUE, here.text(here.start, here.end), text,
                     [(here.start, here.end, text)])

    def at_INIT_LIST_EXPR(self, cursor, here):
        children = [c for c in cursor.get_children() if span(c)[0] < span(c)[1]]
        for a, b in zip(children, children[1:]):
            before, after = here.text(*span(a)), here.text(*span(b))
            if before != after and same_type(a, b) and span(a)[1] <= span(b)[0] \
                    and not before.startswith(("{", ".")):
                here.add("swap", VALUE, f"{before}, {after}", f"{after}, {before}",
                         [(*span(a), after), (*span(b), before)])
        self.children(cursor, here)

    def at_INTEGER_LITERAL(self, cursor, here):
        text = here.text(here.start, here.end)
        if not text[:1].isdigit():
            return
        for changed in (f"{text} + 1", f"{text} - 1")[:1 if text == "0" else 2]:
            here.add("constant", VALUE, text, changed, [(here.start, here.end, changed)])

    def at_CXX_BOOL_LITERAL_EXPR(self, cursor, here):
        text = here.text(here.start, here.end)
        if text in ("true", "false"):
            changed = "false" if text == "true" else "true"
            here.add("constant", VALUE, text, changed, [(here.start, here.end, changed)])

    def at_DECL_REF_EXPR(self, cursor, here):
        """An enumerator becomes the next of its enumeration."""
        target = cursor.referenced
        if target is None or kind_of(target) != "ENUM_CONSTANT_DECL":
            self.children(cursor, here)
            return
        names = [c.spelling for c in target.semantic_parent.get_children()
                 if kind_of(c) == "ENUM_CONSTANT_DECL"]
        other = names[(names.index(target.spelling) + 1) % len(names)]
        text = here.text(here.start, here.end)
        if other != target.spelling and text.endswith(target.spelling):
            changed = text[:-len(target.spelling)] + other
            here.add("constant", VALUE, text, changed, [(here.start, here.end, changed)])

    def binary(self, cursor, here):
        """The operator between the first operand and the last."""
        operands = sorted((span(c) for c in cursor.get_children()
                           if span(c)[0] >= here.start and span(c)[1] <= here.end))
        if len(operands) < 2 or operands[0][0] != here.start or operands[-1][1] != here.end:
            return
        (start, left), (right, end) = operands[0], operands[-1]
        match = BINARY.fullmatch(here.text(left, right)) if left <= right else None
        if match is None:
            return
        sign = match.group(1)
        first, last, whole = here.text(start, left), here.text(right, end), here.text(start, end)
        for table, operator, level in ((RELATIONAL, "relational", TRUTH),
                                       (LOGICAL, "logical", TRUTH),
                                       (ARITHMETIC, "arithmetic", VALUE)):
            if operator == "arithmetic" and cursor.spelling.startswith("operator"):
                continue
            for other in table.get(sign, ()):
                changed = f"{first} {other} {last}"
                if operator == "logical":
                    changed = f"({first}) {other} ({last})"
                here.add(operator, level, whole, changed, [(start, end, changed)])
        if sign in LOGICAL and "..." not in (first, last):
            for side in (first, last):
                here.add("logical", TRUTH, whole, side, [(start, end, side)])


class Body:
    """What is known of a function without looking into its statements."""

    def __init__(self, function, body):
        self.last = next(reversed(list(body.get_children())), None)
        self.gives_nothing = kind_of(function) in ("CONSTRUCTOR", "DESTRUCTOR") \
            or function.result_type.get_canonical().kind.name == "VOID"

    def can_go_on_behind(self, leaving):
        """Whether the function still ends well when it does not leave at this statement."""
        ends = kind_of(self.last) in ("RETURN_STMT", "CXX_THROW_EXPR")
        is_bare = kind_of(leaving) == "RETURN_STMT" and not list(leaving.get_children())
        return span(leaving) != span(self.last) and (ends or is_bare or self.gives_nothing)


class Here:
    """A place in a file, and the function that it is in."""

    def __init__(self, sites, file, function, start, end):
        self.sites, self.file, self.function, self.start, self.end = (sites, file, function, start,
                                                                     end)

    def text(self, start, end):
        return self.sites.text(self.file, start, end)

    def condition(self, cursor, values):
        start, end = span(cursor)
        text = self.text(start, end)
        for value in values:
            if text not in ("true", "false"):
                self.add("condition", TRUTH, text, value, [(start, end, value)])

    def add(self, operator, level, was, becomes, places):
        line = bisect.bisect_left(self.sites.lines[self.file], places[0][0]) + 1
        places = tuple((start, end, flat(text), *rest) for start, end, text, *rest in places)
        mutant = Mutant(self.file, self.function, operator, line, flat(was), flat(becomes), level,
                        places)
        self.sites.found.setdefault((self.file, level, places), mutant)


def kind_of(cursor):
    try:
        return cursor.kind.name
    except ValueError:  # of a newer language than the bindings know
        return "UNKNOWN"


def span(cursor):
    return cursor.extent.start.offset, cursor.extent.end.offset


def same_type(a, b):
    """Whether two arguments could be swapped; unknown of what depends on a template's."""
    bare_a, bare_b = (re.sub(r"\bconst\b|&|\s", "", c.type.get_canonical().spelling)
                      for c in (a, b))
    return bare_a == bare_b and bare_a not in ("", "<dependenttype>")


def assigns(text):
    """Whether the statement is an assignment or a step rather than a call."""
    depth = 0
    for match in re.finditer(r"[([{]|[)\]}]|<=|>=|==|!=|\+\+|--|=", text):
        sign = match.group()
        depth += (sign in "([{") - (sign in ")]}")
        if depth == 0 and sign in ("=", "++", "--"):
            return True
    return False


def closing_parenthesis(text):
    depth = 0
    for match in re.finditer(r"[()]|\"(?:[^\"\\]|\\.)*\"|'(?:[^'\\]|\\.)*'", text):
        depth += {"(": 1, ")": -1}.get(match.group(), 0)
        if depth == 0 and match.group() == ")":
            return match.start()
    raise ValueError(text)


def qualified(cursor):
    names = [re.sub(r"<.*", "", cursor.spelling) if "operator" not in cursor.spelling
             else cursor.spelling]
    parent = cursor.semantic_parent
    while parent is not None and kind_of(parent) in ("CLASS_DECL", "STRUCT_DECL", "CLASS_TEMPLATE",
                                                     "CLASS_TEMPLATE_PARTIAL_SPECIALIZATION"):
        names.append(parent.spelling)
        parent = parent.semantic_parent
    return "::".join(reversed(names))
