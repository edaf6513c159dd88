"""Tokeniser for X.680 module text (X.680 clause 12).

Produces a flat list of Token(kind, text, line). Kinds: 'id' (identifiers and
references, hyphens included), 'num', 'field' (&name), 'cstring', 'bstring',
'hstring', and 'sym' for punctuation. Comments (-- ... -- or end of line, and
nested /* */) are dropped.
"""

import re

from .errors import CompileError


class Token:
    __slots__ = ("kind", "text", "line")

    def __init__(self, kind, text, line):
        self.kind = kind
        self.text = text
        self.line = line

    def __repr__(self):
        return f"Token({self.kind}, {self.text!r}, {self.line})"


# Longest symbols first so that '::=' wins over ':' and '...' over '..'.
_SYMBOLS = ["::=", "...", "..", "[[", "]]", "{", "}", "(", ")", "[", "]", ",", ";",
            "|", ".", "@", "<", ">", "^", "!", ":", "-", "*"]
_IDENT = re.compile(r"[A-Za-z][A-Za-z0-9]*(?:-[A-Za-z0-9]+)*")
_NUMBER = re.compile(r"[0-9]+")


def tokenize(text, filename):
    tokens = []
    i, line, n = 0, 1, len(text)
    while i < n:
        c = text[i]
        if c == "\n":
            line += 1
            i += 1
            continue
        if c in " \t\r\f\v":
            i += 1
            continue
        if text.startswith("--", i):
            # X.680 12.6.3: a comment ends at the next "--" or at the end of the line.
            j = i + 2
            while j < n and text[j] != "\n" and not text.startswith("--", j):
                j += 1
            i = j + 2 if text.startswith("--", j) else j
            continue
        if text.startswith("/*", i):
            depth, j, start = 1, i + 2, line
            while j < n and depth:
                if text.startswith("/*", j):
                    depth, j = depth + 1, j + 2
                elif text.startswith("*/", j):
                    depth, j = depth - 1, j + 2
                else:
                    if text[j] == "\n":
                        line += 1
                    j += 1
            if depth:
                raise CompileError(filename, start, "unterminated /* comment")
            i = j
            continue
        if c == '"':
            j, parts = i + 1, []
            start = line
            while True:
                if j >= n:
                    raise CompileError(filename, start, "unterminated character string")
                if text[j] == '"':
                    if j + 1 < n and text[j + 1] == '"':
                        parts.append('"')
                        j += 2
                        continue
                    break
                if text[j] == "\n":
                    line += 1
                parts.append(text[j])
                j += 1
            tokens.append(Token("cstring", "".join(parts), start))
            i = j + 1
            continue
        if c == "'":
            j = text.find("'", i + 1)
            if j < 0 or j + 1 >= n or text[j + 1] not in "BH":
                raise CompileError(filename, line, "malformed 'bstring'B or 'hstring'H")
            body = re.sub(r"\s", "", text[i + 1:j])
            kind = "bstring" if text[j + 1] == "B" else "hstring"
            if (kind == "bstring" and re.fullmatch(r"[01]*", body) is None) or (
                    kind == "hstring" and re.fullmatch(r"[0-9A-F]*", body) is None):
                raise CompileError(filename, line, f"invalid {kind} '{body}'")
            line += text.count("\n", i, j)
            tokens.append(Token(kind, body, line))
            i = j + 2
            continue
        if c == "&":
            m = _IDENT.match(text, i + 1)
            if not m:
                raise CompileError(filename, line, "'&' not followed by a field name")
            tokens.append(Token("field", m.group(0), line))
            i = m.end()
            continue
        m = _IDENT.match(text, i)
        if m:
            word = m.group(0)
            if text.startswith("--", m.end() - 1) and word.endswith("-"):
                word = word[:-1]
            tokens.append(Token("id", word, line))
            i += len(word)
            continue
        m = _NUMBER.match(text, i)
        if m:
            tokens.append(Token("num", m.group(0), line))
            i = m.end()
            continue
        for sym in _SYMBOLS:
            if text.startswith(sym, i):
                tokens.append(Token("sym", sym, line))
                i += len(sym)
                break
        else:
            raise CompileError(filename, line, f"unexpected character {c!r}")
    tokens.append(Token("eof", "", line))
    return tokens
