"""A C++ tokenizer just precise enough for placing mutations.

Comments, preprocessor lines, string and character literals never become tokens that a mutation
could touch: strings and characters come out as single opaque tokens, comments and preprocessor
lines not at all. Each token keeps its offsets, its line and whether whitespace surrounds it;
the repository's clang-format style spaces binary operators and never template brackets, which
is what tells `a < b` from `QList<int>`.
"""

import re
from dataclasses import dataclass

# Longest first, so that "<<=" wins over "<<" and "<".
PUNCTUATORS = sorted(
    """>>= <<= <=> ->* ... :: -> ++ -- << >> <= >= == != && || += -= *= /= %= &= |= ^= ##
    { } [ ] ( ) ; : ? , . + - * / % ^ & | ~ ! = < > #""".split(),
    key=len,
    reverse=True,
)
STRING_PREFIXES = {"u8", "u", "U", "L"}
RAW_PREFIXES = {"R", "u8R", "uR", "UR", "LR"}
IDENT = re.compile(r"[A-Za-z_]\w*")
NUMBER = re.compile(r"\.?\d(?:[eEpP][+-]|[\w.']|)*")


@dataclass
class Token:
    kind: str  # ident, number, string, punct
    text: str
    start: int
    end: int
    line: int
    space_before: bool
    space_after: bool = False
    first_on_line: bool = False
    last_on_line: bool = False


class Lexer:
    def __init__(self, source):
        self.src = source
        self.pos = 0
        self.line = 1
        self.tokens = []
        self.at_line_start = True
        self.pending_space = True

    def run(self):
        while self.pos < len(self.src):
            self._step()
        self._mark_neighbours()
        return self.tokens

    def _advance_to(self, end):
        self.line += self.src.count("\n", self.pos, end)
        self.pos = end

    def _step(self):
        src, pos = self.src, self.pos
        ch = src[pos]
        if ch == "\n":
            self.at_line_start = True
            self.pending_space = True
            self._advance_to(pos + 1)
        elif ch.isspace():
            self.pending_space = True
            self._advance_to(pos + 1)
        elif src.startswith("//", pos):
            self._skip_line_comment()
        elif src.startswith("/*", pos):
            end = src.find("*/", pos + 2)
            self.pending_space = True
            self._advance_to(len(src) if end < 0 else end + 2)
        elif ch == "#" and self.at_line_start:
            self._skip_preprocessor_line()
        else:
            self.at_line_start = False
            self._token()

    def _skip_line_comment(self):
        end = self.src.find("\n", self.pos)
        self.pending_space = True
        self._advance_to(len(self.src) if end < 0 else end)

    def _skip_preprocessor_line(self):
        pos = self.pos
        while True:
            end = self.src.find("\n", pos)
            if end < 0:
                self._advance_to(len(self.src))
                return
            if self.src[end - 1] != "\\":
                self._advance_to(end)
                return
            pos = end + 1

    def _token(self):
        src, pos = self.src, self.pos
        ident = IDENT.match(src, pos)
        if ident:
            word = ident.group()
            following = src[ident.end() : ident.end() + 1]
            if word in RAW_PREFIXES and following == '"':
                return self._emit("string", self._raw_string_end(ident.end()))
            if word in STRING_PREFIXES and following in ('"', "'"):
                return self._emit("string", self._quoted_end(ident.end()))
            return self._emit("ident", ident.end())
        if src[pos] in "\"'":
            return self._emit("string", self._quoted_end(pos))
        number = NUMBER.match(src, pos)
        if number:
            return self._emit("number", number.end())
        for punct in PUNCTUATORS:
            if src.startswith(punct, pos):
                return self._emit("punct", pos + len(punct))
        return self._emit("punct", pos + 1)

    def _quoted_end(self, pos):
        quote, src = self.src[pos], self.src
        pos += 1
        while pos < len(src) and src[pos] != quote:
            if src[pos] == "\\":
                pos += 1
            elif src[pos] == "\n":
                break
            pos += 1
        return min(pos + 1, len(src))

    def _raw_string_end(self, pos):
        open_paren = self.src.find("(", pos)
        delimiter = self.src[pos + 1 : open_paren]
        close = self.src.find(")" + delimiter + '"', open_paren)
        return len(self.src) if close < 0 else close + len(delimiter) + 2

    def _emit(self, kind, end):
        token = Token(kind, self.src[self.pos : end], self.pos, end, self.line, self.pending_space)
        self.tokens.append(token)
        self.pending_space = False
        self._advance_to(end)

    def _mark_neighbours(self):
        previous = None
        for token in self.tokens:
            newline_between = previous is None or "\n" in self.src[previous.end : token.start]
            token.first_on_line = newline_between
            if previous is not None:
                previous.space_after = token.space_before
                previous.last_on_line = newline_between
            previous = token
        if previous is not None:
            previous.space_after = previous.last_on_line = True


def tokenize(source):
    return Lexer(source).run()
