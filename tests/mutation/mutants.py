"""The small changes that can be made to a C++ source: each is one slip that a programmer could make.

The source is read as text, in the spelling that clang-format gives it: an operator between spaces is a binary one.
"""

import re
from typing import NamedTuple


class Mutant(NamedTuple):
    path: str
    start: int  # of the replaced text, in characters from the beginning of the file
    end: int
    text: str  # in its place
    line: int  # of the file, from 1
    before: str  # the lines that are changed, joined to one
    after: str

    def applied_to(self, source):
        return source[: self.start] + self.text + source[self.end :]


OPERATORS = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&", "+": "-", "-": "+",
    "*": "/", "/": "*", "%": "/", "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=", "<<": ">>", ">>": "<<", "&": "|",
    "|": "&", "|=": "&=", "&=": "|=",
}  # fmt: skip
UNORDERED = ("+", "*", "==", "!=", "&&", "||", "&", "|")
OPERATOR = re.compile(r"(?<= )(?:[<>=!&|+*/<>%-]=|&&|\|\||<<|>>|[<>+*/%&|-])(?= )")
STEP = re.compile(r"\+\+|--")
NEGATION = re.compile(r"!(?=[\w(])")
NUMBER = re.compile(r"(?<![\w.])(?:0x[0-9A-Fa-f]+|\d+\.\d*|\d+)[uUlLfF]*\b")
TRUTH = re.compile(r"\b(?:true|false)\b")
CONDITION = re.compile(r"\b(?:if|while) (?:constexpr )?\(")
OPERAND = r"[\w:]+(?:(?:\.|->)\w+|\[\w+\]|\(\w*\))*"
SWAP = re.compile(rf"(?<![\w.>\])] [-+*/%] )(?<![\w.>:])({OPERAND}) (-|/|%|<|<=|>|>=|<<|>>) ({OPERAND})(?![\w.(\[])")
ARGUMENTS = re.compile(rf"(?<!std::min\()(?<!std::max\()(?<=\()({OPERAND}), ({OPERAND})(?=\))")
NO_CODE = re.compile(r'//[^\n]*|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'|^#[^\n]*(?:\\\n[^\n]*)*', re.M)
DECLARATION = re.compile(r"\s*(?:extern\b|template\b|static_assert|using |namespace |typedef |friend |return\b.+;|\}|public:|private:)")


def without_text(source):
    """The source with blanks for comments, texts and preprocessor lines, each character where it was."""
    return NO_CODE.sub(lambda match: re.sub(r"[^\n]", " ", match.group()), source)


def statements(code):
    """The spans of the whole statements that stand on lines of their own, blocks left out."""
    start, span, depth = None, [], 0
    offset = 0
    fresh = True
    for line in code.splitlines(keepends=True):
        text = line.strip()
        if fresh and text and not DECLARATION.match(line):
            start, depth = offset, 0
        if start is not None:
            depth += sum(map(text.count, "([")) - sum(map(text.count, ")]"))
            if "{" in text or "}" in text:
                start = None
            elif text.endswith(";") and depth == 0:
                span.append((start, offset + len(line.rstrip())))
                start = None
        if text:
            fresh = text[-1] in ";{}:"
        offset += len(line)
    return span


def changes(code):
    """Yields (start, end, text) of every change."""
    for match in OPERATOR.finditer(code):
        if match.group() in OPERATORS:
            yield match.start(), match.end(), OPERATORS[match.group()]
    for match in STEP.finditer(code):
        yield match.start(), match.end(), "--" if match.group() == "++" else "++"
    for match in NEGATION.finditer(code):
        yield match.start(), match.end(), ""
    for match in NUMBER.finditer(code):
        yield match.start(), match.end(), f"({match.group()} + 1)"
    for match in TRUTH.finditer(code):
        yield match.start(), match.end(), "false" if match.group() == "true" else "true"
    for match in CONDITION.finditer(code):
        yield match.end(), match.end(), "true || "
        yield match.end(), match.end(), "false && "
    for match in SWAP.finditer(code):
        yield match.start(), match.end(), f"{match.group(3)} {match.group(2)} {match.group(1)}"
    for match in ARGUMENTS.finditer(code):
        yield match.start(), match.end(), f"{match.group(2)}, {match.group(1)}"
    for start, end in statements(code):
        yield start, end, ";" if code[start:end].lstrip().startswith(("if", "for", "while")) else ""


def mutants_of(path, source):
    code = without_text(source)
    for start, end, text in changes(code):
        first = source.rfind("\n", 0, start) + 1
        last = source.find("\n", end)
        line = source.count("\n", 0, start) + 1
        if re.match(r"\s*(?:template\b|static_assert)", source[first:last]):
            continue
        after = source[first:start] + text + source[end:last]
        before, after = (" ".join(lines.split()) for lines in (source[first:last], after))
        if before != after:
            yield Mutant(path, start, end, text, line, before, after)
