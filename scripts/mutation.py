# SPDX-License-Identifier: Apache-2.0
"""Small changes to C++ sources, each of which a test should notice. For scripts/mutants."""
import dataclasses
import re

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
CONNECTIVES = {"&&": "||", "||": "&&"}
TRUTHS = {"true": "false", "false": "true"}

TOKEN = re.compile(
    r'//[^\n]*|/\*.*?\*/'                                   # comments
    r'|R"(?P<mark>[^()\\\s]*)\(.*?\)(?P=mark)"'             # raw strings
    r'|"(?:\\.|[^"\\\n])*"'                                 # strings
    r"|(?<![0-9A-Za-z_])'(?:\\.|[^'\\\n])+'",               # characters; not the 1'000 of a number
    re.S)
INTEGER = re.compile(r"(?<![\w.'])(\d[\d']*)(?=(?:[uUlL]+|ms|us|ns|s|min|h)?(?![\w.']))")
FRACTION = re.compile(r"(?<![\w.'])(\d+)(?=\.\d)")
CONDITION = re.compile(r"\b(?:if|while) \((?P<condition>.*)\) \{$")
ASSIGNMENT = re.compile(r"(?<![=!<>+*/|&^-])=(?!=)")
# An expression, or a jump out of the block; a declaration has a second name behind its first.
STATEMENT = re.compile(r"^\s*(?:(?:break|continue|return|throw\b.*)|"
                       r"(?:\*|\+\+|--)?[A-Za-z_][\w:]*\s*(?:\(|\.|->|\[|=|[-+|&]=|<<|\+\+|--).*);$")
NO_STATEMENT = re.compile(r"^\s*(?:return\b.+|using|case|default|else|delete|co_\w+)\b|= (?:default|delete);$")
PURE = re.compile(r"\)[\w\s]*= 0;$")
LOGS = re.compile(r"\b(?:log|NSLog|write)\(")


@dataclasses.dataclass(frozen=True, order=True)
class Mutant:
    """One line of a file, and what it becomes."""
    path: str
    line: int  # from 1
    kind: str
    before: str
    after: str

    def text_of(self, source):
        """The file's text with the change made."""
        lines = source.split("\n")
        lines[self.line - 1] = self.after
        return "\n".join(lines)


def masked(source):
    """The text with comments, strings and characters blanked, place by place; and the strings' places."""
    strings = []

    def blank(token):
        text = token.group()
        if text.startswith('"'):
            strings.append((token.start() + 1, token.end() - 1))
            return '"' + " " * (len(text) - 2) + '"'
        return re.sub(r"[^\n]", " ", text)

    return TOKEN.sub(blank, source), strings


def statement_start(code, place):
    """Where the statement begins that this place of the blanked code belongs to."""
    return max(code.rfind(end, 0, place) for end in ";{}") + 1


class Finder:
    """Finds every change of one file."""

    def __init__(self, path, source):
        self.path = path
        self.source = source
        self.lines = source.split("\n")
        self.code, self.strings = masked(source)
        self.last = ";"  # the last sign of the code above the line
        self.found = []

    def all(self):
        start = 0
        for number, code in enumerate(self.code.split("\n"), 1):
            if not code.lstrip().startswith(("#", "template", "static_assert", "using")):
                self.comparisons(number, code)
                self.conditions(number, code)
                self.constants(number, code)
                self.statements(number, code)
                self.texts(number, start, start + len(code))
            start += len(code) + 1
            self.last = code.rstrip()[-1:] or self.last
        return sorted(set(self.found))

    def add(self, number, kind, begin, end, text):
        """Replaces the part of the line between two columns."""
        line = self.lines[number - 1]
        self.found.append(Mutant(self.path, number, kind, line, line[:begin] + text + line[end:]))

    def comparisons(self, number, code):
        for match in re.finditer(r" (<=|>=|==|!=|<|>)(?= |$)", code):
            self.add(number, "comparison", match.start(1), match.end(1), COMPARISONS[match[1]])

    def conditions(self, number, code):
        for match in re.finditer(r" (&&|\|\|)(?= |$)", code):
            self.add(number, "condition", match.start(1), match.end(1), CONNECTIVES[match[1]])
        match = CONDITION.search(code)
        if match and not ASSIGNMENT.search(match["condition"]) and ";" not in match["condition"]:
            begin, end = match.span("condition")
            self.add(number, "condition", begin, end, f"!({self.lines[number - 1][begin:end]})")

    def constants(self, number, code):
        if PURE.search(code):
            return
        for match in list(INTEGER.finditer(code)) + list(FRACTION.finditer(code)):
            larger = str(int(match[1].replace("'", "")) + 1)
            self.add(number, "constant", match.start(1), match.end(1), larger)
        for match in re.finditer(r"\b(true|false)\b", code):
            self.add(number, "constant", match.start(), match.end(), TRUTHS[match[1]])

    def statements(self, number, code):
        whole = self.last in ";{}:"  # else it goes on with what the lines above have begun
        if whole and STATEMENT.match(code) and not NO_STATEMENT.search(code) and not LOGS.search(code):
            indent = len(code) - len(code.lstrip())
            self.add(number, "statement", indent, len(self.lines[number - 1]), "")

    def texts(self, number, start, end):
        for begin, stop in self.strings:
            if start <= begin <= end and not LOGS.search(self.code[statement_start(self.code, begin):begin]):
                self.add(number, "string", begin - start, begin - start, "~")


def mutants_of(path, source):
    """Every change of the file that is tried, in a fixed order."""
    return Finder(path, source).all()


def sample(mutants, count, random):
    """So many of them, each kind as often as the others as far as there are enough of it."""
    kinds = {}
    for mutant in mutants:
        kinds.setdefault(mutant.kind, []).append(mutant)
    for group in kinds.values():
        random.shuffle(group)
    chosen, lines = [], set()
    while len(chosen) < count and any(kinds.values()):
        for kind in sorted(kinds):
            if kinds[kind] and len(chosen) < count:
                mutant = kinds[kind].pop()
                if (mutant.path, mutant.line) not in lines:
                    lines.add((mutant.path, mutant.line))
                    chosen.append(mutant)
    return chosen
