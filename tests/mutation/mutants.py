# The small changes that can be made to a C++ source: each is one slip that a programmer could make.
#
# The source is read as text, in the spelling of clang-format: an operator between spaces is a binary one.

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


PAIRS = "< <=  > >=  == !=  && ||  + -  * /  += -=  *= /=  << >>  & |  |= &="
OPERATORS = {a: b for pair in PAIRS.split("  ") for a, b in (pair.split(), pair.split()[::-1])} | {"%": "/"}
OPERAND = r"[\w:]+(?:(?:\.|->)\w+|\[\w+\]|\(\w*\))*"
NO_CODE = re.compile(r'//[^\n]*|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'|^#[^\n]*(?:\\\n[^\n]*)*', re.M)
DECLARATION = re.compile(r"\s*(?:extern|template|static_assert|using|namespace|typedef|friend|return\b.+;|\}|public:|private:)")
RULES = [  # what is replaced, and by what
    (r"(?<= )(?:[<>=!&|+*/%-]=|&&|\|\||<<|>>|[<>+*/%&|-])(?= )", lambda m: [OPERATORS.get(m[0], m[0])]),
    (r"\+\+|--", lambda m: ["--" if m[0] == "++" else "++"]),
    (r"!(?=[\w(])", lambda m: [""]),
    (r"(?<![\w.])(?:0x[0-9A-Fa-f]+|\d+\.\d*|\d+)[uUlLfF]*\b", lambda m: [f"({m[0]} + 1)"]),
    (r"\b(?:true|false)\b", lambda m: ["false" if m[0] == "true" else "true"]),
    (r"(\b(?:if|while) (?:constexpr )?\()", lambda m: [m[1] + "true || ", m[1] + "false && "]),
    (rf"(?<![\w.>\])] [-+*/%] )(?<![\w.>:])({OPERAND}) (-|/|%|<|<=|>|>=|<<|>>) ({OPERAND})(?![\w.(\[])",
     lambda m: [f"{m[3]} {m[2]} {m[1]}"]),
    (rf"(?<!std::min\()(?<!std::max\()(?<=\()({OPERAND}), ({OPERAND})(?=\))", lambda m: [f"{m[2]}, {m[1]}"]),
]  # fmt: skip


# The spans of the whole statements that stand on lines of their own, blocks left out.
def statements(code):
    start, depth, offset, fresh = None, 0, 0, True
    for line in code.splitlines(keepends=True):
        text = line.strip()
        if fresh and text and not DECLARATION.match(line):
            start, depth = offset, 0
        if start is not None:
            depth += sum(map(text.count, "([")) - sum(map(text.count, ")]"))
            if "{" in text or "}" in text:
                start = None
            elif text.endswith(";") and depth == 0:
                yield start, offset + len(line.rstrip())
                start = None
        if text:
            fresh = text[-1] in ";{}:"
        offset += len(line)


def mutants_of(path, source):
    code = NO_CODE.sub(lambda match: re.sub(r"[^\n]", " ", match.group()), source)  # each character stays where it was
    changes = [(m.start(), m.end(), text) for rule, texts in RULES for m in re.finditer(rule, code) for text in texts(m)]
    changes += [(start, end, ";") for start, end in statements(code)]
    for start, end, text in changes:
        first, last = source.rfind("\n", 0, start) + 1, source.find("\n", end)
        before, after = (" ".join(s.split()) for s in (source[first:last], source[first:start] + text + source[end:last]))
        if before != after and not before.startswith(("template", "static_assert")):
            yield Mutant(path, start, end, text, source.count("\n", 0, start) + 1, before, after)
