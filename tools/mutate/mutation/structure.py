"""What the tokens of a file are: which brace opens a function body, a block of statements, a
lambda or a braced initializer, and where each statement inside code begins."""

from dataclasses import dataclass, field

OPENERS = {"(": ")", "[": "]", "{": "}"}
CODE_SCOPES = {"function", "block", "lambda"}
DECLARATION_KEYWORDS = {"class", "struct", "namespace", "enum", "union", "extern"}
ACCESS_SPECIFIERS = {"public", "private", "protected", "signals", "slots", "Q_SIGNALS", "Q_SLOTS"}
BODY_QUALIFIERS = {"const", "override", "final", "noexcept", "mutable"}
BLOCK_PREDECESSORS = {";", "{", "}", "else", "do", "try", ":"}


@dataclass
class FunctionBody:
    open_index: int  # the "{" token
    close_index: int
    declaration: list  # the tokens from the declaration's start up to the "{"


@dataclass
class Structure:
    tokens: list
    match: dict = field(default_factory=dict)  # index of a bracket -> index of its partner
    scope_of: list = field(default_factory=list)  # per token: kind of the innermost brace scope
    brace_kind: dict = field(default_factory=dict)  # index of "{" -> function/block/lambda/init/declarations
    functions: list = field(default_factory=list)


def match_brackets(tokens):
    match, stack = {}, []
    for index, token in enumerate(tokens):
        if token.kind != "punct":
            continue
        if token.text in OPENERS:
            stack.append(index)
        elif token.text in (")", "]", "}"):
            # Unbalanced text (a macro's half) is left unmatched rather than misread.
            while stack and OPENERS[tokens[stack[-1]].text] != token.text:
                stack.pop()
            if stack:
                opener = stack.pop()
                match[opener] = index
                match[index] = opener
    return match


class Analyzer:
    def __init__(self, tokens):
        self.tokens = tokens
        self.result = Structure(tokens, match=match_brackets(tokens))
        self.scopes = [("declarations", None)]  # (kind, index of its "{")
        self.statement_start = 0  # where the current declaration at namespace/class scope began

    def run(self):
        for index, token in enumerate(self.tokens):
            self.result.scope_of.append(self.scopes[-1][0])
            if token.kind == "punct" and token.text == "{":
                self._open(index)
            elif token.kind == "punct" and token.text == "}":
                self._close(index)
            elif self.scopes[-1][0] == "declarations":
                self._track_declaration(index, token)
        return self.result

    def _text(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def _track_declaration(self, index, token):
        if token.text == ";":
            self.statement_start = index + 1
        elif token.text == ":" and self._text(index - 1) in ACCESS_SPECIFIERS:
            self.statement_start = index + 1

    def _open(self, index):
        scope = self.scopes[-1][0]
        kind = self._classify_brace(index, scope)
        self.result.brace_kind[index] = kind
        if kind == "function":
            close = self.result.match.get(index, len(self.tokens) - 1)
            declaration = self.tokens[self.statement_start : index]
            self.result.functions.append(FunctionBody(index, close, declaration))
        if kind == "declarations":
            self.statement_start = index + 1
        self.scopes.append((kind, index))

    def _close(self, index):
        if len(self.scopes) > 1:
            kind, _ = self.scopes.pop()
            if self.scopes[-1][0] == "declarations" and kind != "init":
                self.statement_start = index + 1

    def _classify_brace(self, index, scope):
        previous = self._text(index - 1)
        if scope == "declarations":
            return self._classify_at_declaration_scope(index, previous)
        if previous in (")", "]", "mutable", "noexcept") or self._after_trailing_return(index):
            return "lambda" if self._is_lambda(index) else "block"
        if scope in CODE_SCOPES and previous in BLOCK_PREDECESSORS:
            return "block"
        return "init"

    def _classify_at_declaration_scope(self, index, previous):
        if previous in (")", "}") or previous in BODY_QUALIFIERS or self._after_trailing_return(index):
            return "function"
        if previous == "=":
            return "init"
        first = self._text(self.statement_start)
        if first in DECLARATION_KEYWORDS or first == "template" or previous in ("namespace", "") or previous.startswith('"'):
            return "declarations"
        # A member's braced initializer in a constructor's initializer list: "m_x{1}".
        if any(self.tokens[i].text == ":" for i in range(self.statement_start, index)):
            return "init"
        return "declarations"

    def _after_trailing_return(self, index):
        # "-> Type {": a lambda's or function's trailing return type.
        for back in range(index - 1, max(index - 10, -1), -1):
            text = self._text(back)
            if text == "->":
                return True
            if text in (";", "{", "}", "(", ")", "=", ","):
                return False
        return False

    def _is_lambda(self, index):
        back = index - 1
        while back >= 0 and self._text(back) not in (")", "]"):
            back -= 1
        if self._text(back) == "]":
            return True
        opener = self.result.match.get(back)
        return opener is not None and self._text(opener - 1) == "]"


def analyze(tokens):
    return Analyzer(tokens).run()


def statement_starts(structure):
    """Indexes of tokens that begin a statement inside code, with the token that precedes each."""
    tokens, match = structure.tokens, structure.match
    starts = []
    for index in range(1, len(tokens)):
        if structure.scope_of[index] not in CODE_SCOPES:
            continue
        previous = tokens[index - 1]
        text = previous.text
        if text in (";", "}", "else", "do"):
            starts.append(index)
        elif text == "{" and structure.brace_kind.get(index - 1) in CODE_SCOPES:
            starts.append(index)
        elif text == ":" and _ends_case_label(tokens, index - 1):
            starts.append(index)
        elif text == ")" and _closes_control_condition(tokens, match, index - 1):
            starts.append(index)
    return starts


def _ends_case_label(tokens, colon):
    back = colon - 1
    while back >= 0 and tokens[back].text not in (";", "{", "}", "case", "default", "?"):
        back -= 1
    return back >= 0 and tokens[back].text in ("case", "default")


def _closes_control_condition(tokens, match, close):
    opener = match.get(close)
    return opener is not None and opener > 0 and tokens[opener - 1].text in ("if", "for", "while")
