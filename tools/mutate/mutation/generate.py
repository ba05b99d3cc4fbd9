"""The mutants of one source file.

A mutant is a list of text edits on the file plus what a person reads about it: the line, the
kind and the line before and after. Every edit keeps the number of lines, so that the lines of
the rest of the file, and the coverage measured on them, stay where they were.
"""

from dataclasses import dataclass, field

from .lexer import tokenize
from .structure import CODE_SCOPES, analyze, statement_starts

RELATION_FLIPS = {
    "<": ("<=", ">="),
    "<=": ("<", ">"),
    ">": (">=", "<="),
    ">=": (">", "<"),
    "==": ("!=",),
    "!=": ("==",),
}
# What may stand right beside a literal that is a comparison's whole operand.
OPERAND_BOUNDARIES = {"(", ")", "[", "]", "{", "}", ",", ";", "&&", "||", "?", ":", "!", "=", "return"}
KEYWORDS = set(
    """alignas alignof asm auto bool break case catch char class const const_cast constexpr continue
    co_await co_return co_yield decltype default delete do double dynamic_cast else enum explicit
    extern false float for friend goto if inline int long mutable namespace new noexcept nullptr
    operator private protected public register reinterpret_cast return short signed sizeof static
    static_assert static_cast struct switch template this thread_local throw true try typedef typeid
    typename union unsigned using virtual void volatile while""".split()
)
SPECIFIERS = {"static", "inline", "virtual", "explicit", "constexpr", "friend", "extern", "Q_INVOKABLE"}


@dataclass
class Mutant:
    path: str
    line: int  # first line the mutation touches
    reach: tuple  # the lines whose execution the mutation needs: (first, last)
    kind: str
    edits: list  # (start offset, end offset, replacement), in increasing order
    before: str = ""
    after: str = ""
    key: tuple = field(default=())

    def apply(self, source):
        for start, end, replacement in sorted(self.edits, reverse=True):
            source = source[:start] + replacement + source[end:]
        return source

    def describe(self):
        return f"{self.path}:{self.line} {self.kind}: {self.before} -> {self.after}"


class Generator:
    def __init__(self, path, source):
        self.path = path
        self.source = source
        self.tokens = tokenize(source)
        self.structure = analyze(self.tokens)
        self.mutants = []

    def run(self):
        self._relations_and_literals()
        self._logical_operators()
        self._negated_conditions()
        self._deleted_calls()
        self._early_returns()
        for mutant in self.mutants:
            self._describe(mutant)
        self.mutants.sort(key=lambda m: m.key)
        return self.mutants

    def _text(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def _add(self, kind, first_token, last_token, edits):
        line = self.tokens[first_token].line
        reach = (line, self.tokens[last_token].line)
        key = (self.path, edits[0][0], kind, tuple(e[2] for e in edits))
        self.mutants.append(Mutant(self.path, line, reach, kind, edits, key=key))

    def _replace(self, kind, index, text):
        token = self.tokens[index]
        self._add(kind, index, index, [(token.start, token.end, text)])

    # --- relations, literals beside them, && and ||

    def _is_binary_operator(self, index):
        # clang-format spaces binary operators ("a < b") and never template brackets ("QList<int>").
        token = self.tokens[index]
        spaced_before = token.space_before or token.first_on_line
        spaced_after = token.space_after or token.last_on_line
        return spaced_before and spaced_after and self._text(index - 1) not in ("operator", "template")

    def _relations_and_literals(self):
        for index, token in enumerate(self.tokens):
            if token.kind != "punct" or token.text not in RELATION_FLIPS or not self._is_binary_operator(index):
                continue
            for flipped in RELATION_FLIPS[token.text]:
                self._replace("relation", index, flipped)
            if self._text(index - 2) in OPERAND_BOUNDARIES:
                self._literal_beside(index - 1)
            after = index + 2 if self._text(index + 1) == "-" else index + 1
            if self._text(after + 1) in OPERAND_BOUNDARIES:
                self._literal_beside(after)

    def _literal_beside(self, index):
        # Only a literal that is the whole operand: "n < 5", not "n % 2 == 1".
        token = self.tokens[index] if 0 <= index < len(self.tokens) else None
        if token is None or token.kind != "number":
            return
        value = _integer_value(token.text)
        if value is None:
            return
        suffix = token.text[len(token.text.rstrip("uUlL")) :]
        for moved in (value + 1, value - 1):
            if moved >= 0:
                self._replace("literal", index, f"{moved}{suffix}")
            elif self._text(index - 1) not in ("-",):
                self._replace("literal", index, f"({moved})")

    def _logical_operators(self):
        for index, token in enumerate(self.tokens):
            if token.kind == "punct" and token.text in ("&&", "||") and self._is_binary_operator(index):
                self._replace("logical", index, "||" if token.text == "&&" else "&&")

    # --- if (x) -> if (!(x)), while too

    def _negated_conditions(self):
        for index, token in enumerate(self.tokens):
            if token.text not in ("if", "while") or self._text(index + 1) != "(":
                continue
            if self.structure.scope_of[index] not in CODE_SCOPES:
                continue
            opener = index + 1
            close = self.structure.match.get(opener)
            if close is None or close == opener + 1 or self._declares_or_initializes(opener, close):
                continue
            edits = [
                (self.tokens[opener].end, self.tokens[opener].end, "!("),
                (self.tokens[close].start, self.tokens[close].start, ")"),
            ]
            self._add("negation", index, close, edits)

    def _declares_or_initializes(self, opener, close):
        depth = 0
        for index in range(opener + 1, close):
            text = self._text(index)
            if text in ("(", "[", "{"):
                depth += 1
            elif text in (")", "]", "}"):
                depth -= 1
            elif depth == 0 and text in ("=", ";"):
                return True
        return False

    # --- a statement that is a call, deleted

    def _deleted_calls(self):
        for start in statement_starts(self.structure):
            end = self._call_statement_end(start)
            if end is None:
                continue
            first, last = self.tokens[start], self.tokens[end]
            if not first.first_on_line or not last.last_on_line:
                continue
            text = self.source[first.start : last.end]
            # A body without braces ("if (x) f();") keeps an empty statement in its place.
            keep = "" if self._text(start - 1) in (";", "{", "}", ":") else ";"
            self._add("deleted call", start, end, [(first.start, last.end, keep + "\n" * text.count("\n"))])

    def _call_statement_end(self, index):
        """The index of the ";" that ends a statement made of one call, or None."""
        if self._text(index) in ("emit", "Q_EMIT"):
            index += 1
        if self._text(index) == "::":
            index += 1
        token = self.tokens[index] if index < len(self.tokens) else None
        if token is None or token.kind != "ident" or _is_macro_name(token.text):
            return None
        if token.text in KEYWORDS and token.text != "this":
            return None
        index += 1
        ends_with_call = False
        while index < len(self.tokens):
            text = self._text(index)
            if text in ("::", ".", "->") and self.tokens[index + 1].kind == "ident":
                index += 2
                ends_with_call = False
            elif text in ("(", "[") or (text == "<" and not self._is_binary_operator(index)):
                close = self._closing(index)
                if close is None:
                    return None
                ends_with_call = text == "("
                index = close + 1
            elif text == ";":
                return index if ends_with_call else None
            else:
                return None
        return None

    def _closing(self, index):
        if self._text(index) != "<":
            return self.structure.match.get(index)
        depth = 0
        for ahead in range(index, min(index + 40, len(self.tokens))):
            text = self._text(ahead)
            depth += {"<": 1, ">": -1, ">>": -2}.get(text, 0)
            if depth <= 0:
                return ahead
            if text in (";", "{", "}"):
                return None
        return None

    # --- return at the top of a function

    def _early_returns(self):
        for body in self.structure.functions:
            first_inside = body.open_index + 1
            if first_inside >= body.close_index or self._text(first_inside) == "return":
                continue
            statement = self._early_return_statement(body.declaration)
            if statement is None:
                continue
            brace = self.tokens[body.open_index]
            self._add("early return", body.open_index, first_inside, [(brace.end, brace.end, f" {statement}")])
            self.mutants[-1].before = self._signature(body.declaration)

    def _early_return_statement(self, declaration):
        texts = _strip_leading_macros([t.text for t in declaration])
        if "operator" in texts:
            name_start = texts.index("operator")
        else:
            name_start = _name_before_parameters(texts)
            if name_start is None:
                return None
        while name_start >= 2 and texts[name_start - 1] == "::" and texts[name_start - 2] != ">":
            name_start -= 2
        if name_start > 0 and texts[name_start - 1] == "~":
            return "return;"
        return_type = [t for t in texts[:name_start] if t not in SPECIFIERS and not t.startswith("[[")]
        if not return_type or return_type == ["void"]:
            return "return;"
        if "auto" in return_type or return_type[-1] in ("&", "&&") or "template" in return_type:
            return None
        return "return {};"

    # --- what the report shows

    def _signature(self, declaration):
        # "bool FastTreeModel::hasChildren(...)": enough to find the function.
        texts = [t.text for t in declaration]
        end = declaration[texts.index("(")].start if "(" in texts else declaration[-1].end
        return " ".join(self.source[declaration[0].start : end].split()) + "(...)"

    def _describe(self, mutant):
        if mutant.kind == "early return":
            statement = mutant.edits[0][2].strip()
            mutant.before, mutant.after = f"{mutant.before} {{ ...", f"{mutant.before} {{ {statement} ..."
            return
        first_line = mutant.reach[0]
        before = self._line(first_line)
        mutated = mutant.apply(self.source)
        after = mutated.split("\n")[first_line - 1].strip()
        if mutant.kind == "deleted call":
            lines = mutant.reach[1] - mutant.reach[0] + 1
            before = before + (" ..." if lines > 1 else "")
            after = "(deleted)"
        mutant.before, mutant.after = before, after

    def _line(self, number):
        return self.source.split("\n")[number - 1].strip()


def _integer_value(text):
    digits = text.rstrip("uUlL").replace("'", "")
    try:
        return int(digits, 0)
    except ValueError:
        return None


def _is_macro_name(text):
    return len(text) > 1 and text.upper() == text and any(c.isalpha() for c in text)


def _strip_leading_macros(texts):
    # Q_OBJECT, Q_PROPERTY(...) and export macros before a member function's declaration.
    while texts and _is_macro_name(texts[0]):
        texts = texts[1:]
        if texts and texts[0] == "(":
            depth = 0
            for index, text in enumerate(texts):
                depth += {"(": 1, ")": -1}.get(text, 0)
                if depth == 0:
                    texts = texts[index + 1 :]
                    break
    return [t for t in texts if not _is_macro_name(t)]


def _name_before_parameters(texts):
    angle = 0
    for index, text in enumerate(texts):
        angle += {"<": 1, ">": -1, ">>": -2}.get(text, 0)
        if text == "(" and angle <= 0:
            return index - 1 if index > 0 else None
    return None


def mutants_of(path, source):
    return Generator(path, source).run()
