# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# The mutants of the sources, for scripts/mutate: which small errors there are, and the text of a
# source with all of its errors in it, each behind its number (mutants.h).

import bisect
import collections
import hashlib
import pathlib
import re
import sys

FOLDERS = ("driver", "address", "cache", "plan", "protocol", "tools/link", "tools/library",
           "tools/exchange", "tools/tags", "tools/fxsim/line", "tools/fxsim/plc")
ONLY_BY_HAND = "tools/fxgate"
BY_HAND = "tests/mutation/by_hand.txt"
NO_EFFECT = "tests/mutation/no_effect.txt"
MUTANTS_A_FILE = 1000  # numbers of one file's mutants do not move those of another's

# What is no code, a constant expression, or declares no value.
BLANK = re.compile(r'//[^\n]*|R"\((?s:.)*?\)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])\'|'
                   r'^#(?:[^\n]*\\\n)*[^\n]*|^template <[^\n]*|\bstatic_assert\((?s:.)*?\);|'
                   r'(?<=\)) (?:const |override |noexcept )*= 0;|^ *enum [^;]*;|'
                   r'^ *(?:static )?constexpr [^\n(]* = [^;]*;', re.M)
OPERATORS = {"<=": "LessEqual", "<": "Less", ">=": "GreaterEqual", ">": "GreaterThan", "==": "Equal",
             "!=": "Unequal", "+": "Plus", "-": "Minus", "%": "Remainder", "/": "Quotient",
             "<<": "LeftShift", "|": "BitOr", "&": "BitAnd"}
OPERATOR = re.compile(r"(?<= )(<=?|>=?|==|!=|\+|-|%|/|<<|\||&)(?=\s)")
LOGICAL = re.compile(r"(?<= )(&&|\|\|)\s+")
NUMBER = re.compile(r"(?<![\w.'])(?:0x[0-9A-Fa-f]+|\d+)(?![\w.'])")
STATEMENT = re.compile(r"(?:[;{})]|\belse|(?:case .*|default):)\s*\n +((?:emit )?[*(]?"
                       r"(?:(?![A-Z]\w*\(|decltype)[A-Za-z_](?:[\w.:]|->|\[[^\]\n]*\])*)"
                       r"(?: [-+*/|&^<>]*= |\())")
SIZE = re.compile(r"\bstd::array<|if constexpr|^ +[\w:<>, ]+ \w+\[[^\]\n]+\](?: = .*)?; *$", re.M)
CONSTANT_FUNCTION = re.compile(r"constexpr (?!std::array)[^;{=]*\([^;{]*\)[^;{]*\{")
PREFIXES = ((re.compile(r"(?<![\w)\]+])\+\+(?=[\w(*])"), "++ -> --", "mutants::Step{{{}}}->*"),
            (re.compile(r"(?<=[(\s])!(?=[\w(])"), "! dropped", "mutants::Not{{{}}}->*"),
            (re.compile(r"\b(?:qMin|std::min)(?=\((?!\{))"), "min -> max", "mutants::Lesser{{{}}}"),
            (re.compile(r"\b(?:qMax|std::max)(?=\((?!\{))"), "max -> min", "mutants::Greater{{{}}}"))
CONSTANT = re.compile(r"^(?: *static |inline )?constexpr (?:unsigned |signed )?"
                      r"(?:int|char|double|size_t|std::size_t|qint64|quint32|Cost) (\w+) = ", re.M)

# number: as the environment variable gives it; key: for what is kept about the mutant until its file
# is changed; text: the line, with a mark before the place.
Mutant = collections.namedtuple("Mutant", "name number key text")
# What becomes of the text from start to end, for a mutant of a line; nested is smaller for what
# must stand more to the left at one place. at_run_time: for what may be a constant expression.
Edit = collections.namedtuple("Edit", "start nested end new line at_run_time")

# Lines that do not compile with a mutant in them are told from others by their file and text.
Line = collections.namedtuple("Line", "file text")


def blanked(text):
    return BLANK.sub(lambda match: re.sub(r"[^\n]", '"' if match.group()[0] in "\"'R" else " ",
                                          match.group()), text)


def end_of_operand(code, start, operator):
    """Where the right side of && or || ends, or a statement."""
    depth = 0
    for at in range(start, len(code)):
        if code[at] in "([{":
            depth += 1
        elif code[at] in ")]}":
            depth -= 1
        if depth < 0 or depth == 0 and (operator != "}" and (code[at] == ";" or operator != ";" and (
                code[at] in ",?" or code[at:at + 3] == " : " or code[at:at + 2] == "||" or
                code[at:at + 2] == "&&" == operator))):
            return len(code[:at].rstrip())
    return len(code)


class Source:
    """One file, its mutants, and the file with all of them in it."""

    def __init__(self, path, first_number):
        self.path, self.number = path, first_number
        self.text = path.read_text()
        self.digest = hashlib.sha256(self.text.encode()).hexdigest()[:8]
        self.code = blanked(self.text)
        self.starts = [0] + [match.end() for match in re.finditer("\n", self.text)]
        self.mutants, self.edits = [], []
        # Lines of what may be constant expressions.
        self.constant = {self.line(match.start()) for match in SIZE.finditer(self.code)}
        for match in CONSTANT_FUNCTION.finditer(self.code):
            end = end_of_operand(self.code, match.end(), "}")
            self.constant.update(range(self.line(match.start()), self.line(end) + 1))

    def line(self, at):
        return bisect.bisect(self.starts, at)

    def add(self, at, change):
        line = self.line(at)
        start = self.starts[line - 1]
        name = f"{self.path}:{line}:{at - start + 1}: {change}"
        marked = self.text[start:at] + "»" + self.text[at:].split("\n")[0]
        self.mutants.append(Mutant(name, self.number, f"{self.digest} {name}", marked.strip()))
        self.number += 1
        return self.number - 1

    def edit(self, start, end, new, at_run_time=None):
        self.edits.append(Edit(start, 1, end, new, self.line(start), at_run_time))

    def put_around(self, start, end, before, after, inner=0):
        self.edits.append(Edit(start, inner, start, before, self.line(start), None))
        self.edits.append(Edit(end, -start - inner, end, after, self.line(start), None))

    def find_mutants(self):
        for match in OPERATOR.finditer(self.code):
            name = OPERATORS[match.group()]
            number = self.add(match.start(), name)
            self.edit(match.end(), match.end(), f" mutants::{name}{{{number}}} {match.group()}")
        for match in LOGICAL.finditer(self.code):
            operator = match.group(1)
            name = "And" if operator == "&&" else "Or"
            number = self.add(match.start(), name)
            self.put_around(match.end(), end_of_operand(self.code, match.end(), operator),
                            f"mutants::{name}{{{number}}} {operator} "
                            "[&]() -> bool { return static_cast<bool>(", "); }")
        for match in NUMBER.finditer(self.code):
            self.edit_value(match, self.add(match.start(), f"{match.group()} + 1"))
        for match in re.finditer(r"\b(true|false)\b", self.code):
            number = self.add(match.start(), f"not {match.group()}")
            self.edit(*match.span(), f"mutants::flipped({number}, {match.group()})", match.group())
        for pattern, change, new in PREFIXES:
            for match in pattern.finditer(self.code):
                self.edit(*match.span(), new.format(self.add(match.start(), change)))
        for match in STATEMENT.finditer(self.code):
            line_above = self.code[:match.start(1)].rstrip().rpartition("\n")[2]
            if (not self.code.startswith(";", end_of_operand(self.code, match.start(1), ";")) or
                    line_above.lstrip().startswith("for (") and line_above[-1] == ";"):
                continue  # a value in a list, or what a loop begins with
            number = self.add(match.start(1), "statement dropped")
            self.edit(match.start(1), match.start(1), f"switch (mutants::on({number})) case false: ")

    def edit_value(self, match, number):
        at_run_time = f"mutants::moreAtRunTime({number}, {match.group()})"
        self.edit(*match.span(), at_run_time if self.line(match.start()) in self.constant else
                  f"mutants::more({number}, {match.group()})", at_run_time)

    def use_constant(self, name, number):
        for match in re.finditer(rf"(?<![\w.>:]){name}\b(?! ?[({{=]|\w| = )", self.code):
            self.edit_value(match, number)

    def mutated(self, left_out, at_run_time):
        """The text with its mutants, but none in the lines `left_out`. Numbers of the lines
        `at_run_time` stand in what may be a constant expression."""
        text, at, lines = [], 0, self.text.split("\n")
        for edit in sorted(self.edits, key=lambda edit: edit[:4]):
            line = Line(str(self.path), lines[edit.line - 1])
            if line in left_out:
                continue
            new = edit.new
            if edit.at_run_time and line in at_run_time:
                new = edit.at_run_time
            text += [self.text[at:edit.start], new]
            at = edit.end
        text = "".join(text) + self.text[at:]
        # The table of register types is filled when the program starts.
        text = re.sub(r"inline constexpr (\w+ \w+\[\])|constexpr (std::array<)", r"const \1\2", text)
        text = re.sub(r"\bstatic_assert\((?s:.)*?\);", lambda match: "\n" * match.group().count("\n"), text)
        return '#include "tests/mutation/mutants.h"  ' + text


def read_sources():
    sources = {}
    for folder in FOLDERS:
        for path in sorted(pathlib.Path(folder).iterdir()):
            if path.suffix in (".cpp", ".h"):
                sources[str(path)] = Source(path, MUTANTS_A_FILE * len(sources))
    for source in sources.values():
        if source.path.name not in ("intf.h", "address_services.h"):
            source.find_mutants()
    for source in sources.values():
        for match in CONSTANT.finditer(source.text):
            number = source.add(match.start(1), "constant + 1")
            for user in users(sources, source):
                user.use_constant(match.group(1), number)
    for path in sorted(pathlib.Path(ONLY_BY_HAND).rglob("*.[ch]*")):
        sources[str(path)] = Source(path, MUTANTS_A_FILE * len(sources))
    find_hand_made(sources)
    return sources


def users(sources, header):
    """The sources that see what `header` says."""
    seen, open_ends = {str(header.path): header}, [header]
    while open_ends:
        include = re.compile(rf'#include "(?:[\w/]+/)?{open_ends.pop().path.name}"')
        for other in sources.values():
            if str(other.path) not in seen and include.search(other.text):
                seen[str(other.path)] = other
                open_ends.append(other)
    return seen.values()


def find_hand_made(sources):
    for entry in pathlib.Path(BY_HAND).read_text().split("\n\n", 1)[1].split("====\n"):
        name, change = entry.split("\n", 1)
        old, new = change.strip("\n").split("\n----\n")
        source = sources[name]
        if source.text.count(old) != 1:
            sys.exit(f"{BY_HAND}: {name} has this {source.text.count(old)} times:\n{old}")
        start = source.text.index(old)
        short = " ".join(new.split())
        number = source.add(start, f"by hand: {' '.join(old.split())} -> {short}")
        around = ((f"if (mutants::on({number})) {{ {short} }} else {{ ", " }") if old[-1] in ";}" else
                  (f"(mutants::on({number}) ? {short} : ", ")"))
        source.put_around(start, start + len(old), *around, inner=0.5)


def no_effects(sources):
    """The mutants that are listed as without effect."""
    found = set()
    for line in pathlib.Path(NO_EFFECT).read_text().split("\n\n", 1)[1].split("\n"):
        name, _, piece = line.strip().partition(": ")
        if not line.startswith("    "):
            continue
        same = {mutant for mutant in sources[name].mutants
                if piece in (mutant.text if "»" in piece else mutant.text.replace("»", ""))}
        if not same:
            sys.exit(f"{NO_EFFECT}: {name} has no mutant like this:\n{piece}")
        found |= same
    return found
