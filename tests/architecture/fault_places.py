"""Finds the places of C++ sources where a fault can be planted, and plants it.

The sources are taken to be formatted: blanks around `<`, `*` and `&&` tell a comparison, a product
and a conjunction from a bracket of a template, a pointer and a reference."""
import bisect
import collections
import os
import random
import re

TOKEN = re.compile(r"""
    (?P<blank>\s+|\\\n)
  | (?P<comment>//(?:\\\n|[^\n])*|/\*.*?\*/)
  | (?P<string>(?:u8|[uUL])?R"(?P<mark>[^()\\\s]*)\(.*?\)(?P=mark)"\w*
      |(?:u8|[uUL])?"(?:\\.|[^"\\\n])*"\w*|(?:u8|[uUL])?'(?:\\.|[^'\\\n])+'\w*)
  | (?P<number>\.?\d(?:[eEpP][+-]|'\w|[\w.])*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign><=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|\.\*|.)
""", re.VERBOSE | re.DOTALL)
DIRECTIVE = re.compile(r"#(?:\\\n|/\*.*?\*/|[^\n])*", re.DOTALL)
INTEGER = re.compile(r"(0[xX][\da-fA-F']+|0[bB][01']+|\d[\d']*)([uUlLzZ]*)")
DECIMAL = re.compile(r"(\d*)(\.\d*)?((?:[eE][+-]?\d+)?)([fFlL]?)")

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
OPERATORS = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "&&": "||", "||": "&&", "&": "|",
             "|": "&", "<<": ">>", ">>": "<<", "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=",
             "&=": "|=", "|=": "&="}
OPEN, CLOSE = {"(": ")", "[": "]", "{": "}"}, {")": "(", "]": "[", "}": "{"}
CONTROL = {"if", "for", "while", "switch"}
SCOPES = {"class", "struct", "union", "enum", "namespace", "extern"}
# Words that may stand before a class or a namespace.
PREFIXES = {"template", "inline", "static", "constexpr", "const", "typedef", "export"}
# A block may follow these; after any other word a brace begins an initialiser.
BEFORE_BLOCK = {")", "else", "do", "try", "const", "noexcept", "override", "final", "mutable"}
# Words that begin no call, and before a name make no declaration of it.
STATEMENTS = {"return", "throw", "delete", "new", "using", "goto", "break", "continue", "case",
              "default", "typedef", "static", "const", "constexpr", "auto", "else", "do", "try",
              "catch", "co_return", "co_await", "co_yield", "static_assert", "static_cast",
              "sizeof", "operator", "public", "private", "protected", "and", "or",
              "not"} | CONTROL | SCOPES
# What stands in their parentheses is no statement of the program.
COMPILE_TIME = {"static_assert", "alignas", "decltype", "noexcept", "requires", "__attribute__"}

Token = collections.namedtuple("Token", "kind text start end spaced")
# Replaces text[start:end] by new.
Place = collections.namedtuple("Place", "kind start end new")
# Lines are kept without their indentation, so that they are found again after code moved.
Fault = collections.namedtuple("Fault", "kind file function line occurrence before after")


def live_branch(directive, branches):
    """Follows #if 0 and #if 1. All other branches count as compiled: who builds with a fault in one
    that is not sees the same object file."""
    word = re.match(r"#\s*(\w*)\s*(\d*)\s*(?://.*|/\*.*)?$", directive, re.DOTALL)
    name = re.match(r"#\s*(\w*)", directive)[1]
    value = word[2] if word else ""
    if name in ("if", "ifdef", "ifndef"):
        branches.append([value != "0" or name != "if", value == "1" and name == "if"])
    elif name in ("elif", "else") and branches:
        branches[-1] = [not branches[-1][1] and value != "0", branches[-1][1] or value == "1"]
    elif name == "endif" and branches:
        branches.pop()
    return all(live for live, _ in branches)


def tokens_of(text):
    """Everything but blanks, comments, directives and what #if 0 leaves out."""
    tokens, branches, live, at = [], [], True, 0
    while at < len(text):
        if text[at] == "#":
            match = DIRECTIVE.match(text, at)
            live = live_branch(match[0], branches)
        else:
            match = TOKEN.match(text, at)
            if live and match.lastgroup not in ("blank", "comment"):
                spaced = text[at - 1:at].isspace(), text[match.end():match.end() + 1].isspace()
                tokens.append(Token(match.lastgroup, match[0], at, match.end(), spaced))
        at = match.end()
    return tokens


def next_number(text):
    """0 and 1 for each other, otherwise one more; None when the text is no number we know."""
    whole, decimal = INTEGER.fullmatch(text), DECIMAL.fullmatch(text)
    if whole:
        digits = whole[1].replace("'", "")
        if re.match("0[xXbB]", digits):
            return f"{int(digits, 0) + 1:#x}{whole[2]}"
        octal = len(digits) > 1 and digits[0] == "0"
        value = int(digits, 8 if octal else 10)
        value = 0 if value == 1 else value + 1
        return (f"0{value:o}" if octal else str(value)) + whole[2]
    if decimal and (decimal[1] or decimal[2]):
        one = int(decimal[1] or 0) == 1 and not (decimal[2] or "").strip(".0") and not decimal[3]
        if decimal[3]:
            return f"{decimal[1]}{decimal[2] or ''}e{int(decimal[3][1:]) + 1}{decimal[4]}"
        return f"{0 if one else int(decimal[1] or 0) + 1}{decimal[2] or ''}{decimal[4]}"
    return None


class Source:
    """The tokens of one file, how they nest, and what its braces are."""

    def __init__(self, text):
        self.text = text
        self.tokens = tokens_of(text)
        self.lines = [0] + [match.end() for match in re.finditer("\n", text)]
        # The other bracket of each bracket, and the innermost open bracket around each token.
        self.pairs, self.around = {}, []
        self.nest()
        self.angles = self.template_brackets()
        # What each `{` begins: a block of statements, a scope of declarations, or an initialiser.
        self.braces = {}
        for i, token in enumerate(self.tokens):
            if token.text == "{":
                self.braces[i] = self.brace(i)
        self.barred = self.barred_tokens()

    def nest(self):
        opened = []
        for i, token in enumerate(self.tokens):
            if token.text in CLOSE and opened and self.tokens[opened[-1]].text == CLOSE[token.text]:
                self.pairs[i] = opened.pop()
                self.pairs[self.pairs[i]] = i
            self.around.append(opened[-1] if opened else None)
            if token.text in OPEN:
                opened.append(i)

    def at(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def until(self, closing, i):
        """The tokens from i to the first `closing` at its level, or None."""
        j = i
        while j < len(self.tokens) and self.at(j) != closing:
            if self.at(j) in CLOSE or self.at(j) == ";":
                return None
            j = self.pairs.get(j, j) + 1
        return range(i, j) if j < len(self.tokens) else None

    def template_brackets(self):
        found = {}
        for i, token in enumerate(self.tokens):
            glued = not token.spaced[0] and i > 0 and self.tokens[i - 1].kind == "word"
            if token.text == "<" and (glued or self.at(i - 1) == "template"):
                end = self.closing_angle(i)
                if end is not None:
                    found[i] = end
        return found

    def closing_angle(self, i):
        depth, j = 0, i
        while j < len(self.tokens):
            token = self.tokens[j]
            if token.text in CLOSE or token.text == ";":
                return None
            if token.text == "<":
                depth += 1
            elif token.text in (">", ">>") and not all(token.spaced):
                depth -= len(token.text)
                if depth <= 0:
                    return j
            j = self.pairs.get(j, j) + 1
        return None

    def backwards(self, i):
        """The tokens before i at its level, back to the end of the statement before."""
        j = i - 1
        while j >= 0 and self.at(j) != ";" and self.at(j) not in OPEN:
            if self.at(j) == "}" and self.braces.get(self.pairs.get(j)) != "initialiser":
                return
            yield j
            if self.at(j) in CLOSE:
                j = self.pairs.get(j, j)
            j -= 1

    def brace(self, i):
        enclosing = self.braces.get(self.around[i]) if self.around[i] is not None else "scope"
        before, header = self.at(i - 1), list(self.backwards(i))
        first = self.first_word(reversed(header))
        if first in SCOPES and (first != "extern" or self.tokens[i - 1].kind == "string"):
            return "scope"
        if before == "]":
            return "initialiser" if self.is_index(self.pairs.get(i - 1)) else "block"
        if before in BEFORE_BLOCK or self.ends_return_type(i - 1):
            return "block"
        if before in ("", ";", "{", "}", ":") and enclosing == "block":
            return "block"
        # The last of a constructor's initialisers may be braced.
        return "block" if before == "}" and enclosing == "scope" and header else "initialiser"

    def first_word(self, header):
        """The first word of a header that may say what is declared."""
        end = -1
        for i in header:
            end = max(end, self.angles.get(i, -1))
            if i > end and self.at(i) not in PREFIXES:
                return self.at(i)
        return ""

    def ends_return_type(self, i):
        while i > 0 and (self.tokens[i].kind == "word" or self.at(i) in ("::", "*", "&", "<", ">")):
            i -= 1
        return self.at(i) == "->" and self.at(i - 1) in (")", "mutable", "noexcept", "const")

    def is_index(self, i):
        """Whether `[` at i follows a value, unlike a lambda's."""
        before = self.tokens[i - 1] if i else None
        return before is not None and not self.tokens[i].spaced[0] and (
            before.text in (")", "]") or before.kind == "word" and before.text not in STATEMENTS)

    def is_array_bound(self, i):
        """Whether `[` at i belongs to a declaration: in `T name[4]` a larger number is no fault."""
        while self.at(i - 1) == "]":
            i = self.pairs.get(i - 1, 0)
        name, before = i - 1, i - 2
        while self.at(before) == "::":
            before -= 2
        if self.tokens[name].kind != "word" or before < 0:
            return False
        token = self.tokens[before]
        if token.kind == "word":
            return token.text not in STATEMENTS
        return before in self.angles.values() or token.text in "*&" and not token.spaced[0]

    def barred_tokens(self):
        barred = set()
        for first, last in self.angles.items():
            barred.update(range(first, last + 1))
        for i, token in enumerate(self.tokens):
            if token.text in COMPILE_TIME and self.at(i + 1) == "(":
                barred.update(range(i, self.pairs.get(i + 1, i) + 1))
            elif token.text in ("using", "typedef"):
                barred.update(self.until(";", i) or ())
            elif token.text == "[" and (self.at(i + 1) == "[" or self.is_array_bound(i)):
                barred.update(range(i, self.pairs.get(i, i) + 1))
            elif token.text == "=" and self.at(i + 1) == "0" and self.at(i - 1) in BEFORE_BLOCK:
                barred.add(i + 1)  # a pure virtual function
        return barred

    def places(self):
        """All places, in the order of the text."""
        found = []
        for i, token in enumerate(self.tokens):
            if i in self.barred:
                continue
            between = all(token.spaced)
            if token.kind == "number" and not self.is_sole_index(i):
                new = next_number(token.text)
                if new:
                    found.append(Place("constant", token.start, token.end, new))
            elif between and token.text in COMPARISONS:
                found.append(Place("comparison", token.start, token.end, COMPARISONS[token.text]))
            elif between and token.text in OPERATORS:
                found.append(Place("operator", token.start, token.end, OPERATORS[token.text]))
            elif token.text == "[":
                found += self.index(i)
            elif token.text == "for":
                found += self.loop_bound(i)
            elif token.text == ";":
                found += self.call(i)
            if token.text in ("if", "while"):
                found += self.condition(i)
        return sorted(found, key=lambda place: place[1:])

    def is_sole_index(self, i):
        return self.at(i - 1) == "[" and self.at(i + 1) == "]" and self.is_index(i - 1)

    def index(self, i):
        """x[i] becomes x[i + 1]."""
        end = self.pairs.get(i)
        if end is None or end == i + 1 or not self.is_index(i):
            return
        if self.tokens[i + 1].kind == "string":
            return
        if end == i + 2:
            new = next_number(self.at(i + 1)) if self.tokens[i + 1].kind == "number" else None
            yield Place("bound", self.tokens[i + 1].start, self.tokens[i + 1].end,
                        new or f"{self.at(i + 1)} + 1")
        else:
            first, last = self.tokens[i].end, self.tokens[end].start
            yield Place("bound", first, last, f"({self.text[first:last]}) + 1")

    def loop_bound(self, i):
        """A loop that ends one step early."""
        first = self.until(";", i + 2)
        condition = self.until(";", first.stop + 1) if first is not None else None
        if not condition:
            return
        signs = [self.at(j) for j in condition if self.tokens[j].kind == "sign"
                 and all(self.tokens[j].spaced)]
        comparisons = [sign for sign in signs if sign in COMPARISONS]
        if len(comparisons) == 1 and comparisons[0] not in ("==", "!=") and not (
                set(signs) & {"&&", "||", "?"}):
            end = self.tokens[condition.stop - 1].end
            yield Place("bound", end, end, " - 1" if comparisons[0][0] == "<" else " + 1")

    def condition(self, i):
        """if (c) becomes if (!(c)), unless the condition declares something."""
        end = self.pairs.get(i + 1) if self.at(i + 1) == "(" else None
        if end is None or any(self.at(j) in (";", "=") for j in range(i + 2, end)
                              if self.around[j] == i + 1):
            return
        first, last = self.tokens[i + 1].end, self.tokens[end].start
        yield Place("condition", first, last, f"!({self.text[first:last]})")

    def call(self, end):
        """A statement that calls and ignores the answer becomes an empty one."""
        if self.braces.get(self.around[end]) != "block" or self.at(end - 1) != ")":
            return
        start, statement = end, list(self.backwards(end))
        if any(self.at(j) == "?" for j in statement):
            return
        for j in statement:
            if self.at(j) in ("else", "do", ":") or self.ends_control(j):
                break
            start = self.pairs.get(j, j) if self.at(j) in CLOSE else j
        if start < end and self.is_call(start, end):
            yield Place("call", self.tokens[start].start, self.tokens[end].end, "{}")

    def ends_control(self, i):
        """Whether `)` at i ends the head of an if or a loop."""
        before = self.pairs.get(i, 0) - 1
        if self.at(before) == "constexpr":
            before -= 1
        return self.at(i) == ")" and self.at(before) in CONTROL

    def is_call(self, start, end):
        if self.at(start) in STATEMENTS or self.at(start) == "[":
            return False
        i, word = start, False
        while i < end:
            token = self.tokens[i]
            if i in self.angles:
                i = self.angles[i]
                # A name after a template's arguments is declared.
                word = True
            elif token.kind == "word":
                if word or token.text in STATEMENTS:
                    return False
                word = True
            elif token.text in OPEN:
                i = self.pairs.get(i, end)
                word = True
            elif token.text in ("::", ".", "->"):
                word = False
            else:
                return False
            i += 1
        return self.at(start) != "(" or self.pairs.get(start) != end - 1

    def line_of(self, position):
        return bisect.bisect_right(self.lines, position) - 1

    def function_at(self, position):
        """The name of the function around a position, or "" outside of functions."""
        i = bisect.bisect_right([token.start for token in self.tokens], position) - 1
        name, brace = "", self.around[i] if i >= 0 else None
        while brace is not None:
            if self.braces.get(brace) == "block":
                name = self.function_name(brace) or name
            brace = self.around[brace]
        return name

    def function_name(self, brace):
        opened = [self.pairs.get(j) for j in self.backwards(brace) if self.at(j) == ")"]
        for i in reversed([j for j in opened if j]):
            if self.tokens[i - 1].kind == "word" and self.at(i - 1) not in STATEMENTS:
                first = i - 1
                while self.at(first - 1) in ("::", "~"):
                    first -= 2 if self.at(first - 1) == "::" else 1
                return "".join(self.at(j) for j in range(first, i))
        return ""

    def fault(self, path, place):
        """What the list says of a place."""
        first, last = self.line_of(place.start), self.line_of(max(place.start, place.end - 1))
        begin = self.lines[first]
        end = self.lines[last + 1] - 1 if last + 1 < len(self.lines) else len(self.text)
        before = self.text[begin:end]
        after = self.text[begin:place.start] + place.new + self.text[place.end:end]
        before, after = ("\n".join(line.strip() for line in part.split("\n"))
                         for part in (before, after))
        occurrence = matches(self.text, before).index(first) + 1
        return Fault(place.kind, path, self.function_at(place.start), first + 1, occurrence, before,
                     after)


def matches(text, block):
    """The numbers of the lines, from 0, where a block of stripped lines begins."""
    lines, wanted = [line.strip() for line in text.split("\n")], block.split("\n")
    return [i for i, line in enumerate(lines)
            if line == wanted[0] and lines[i:i + len(wanted)] == wanted]


def planted(text, fault):
    """The text with the fault, or None when its lines are gone."""
    found = matches(text, fault.before)
    if len(found) < fault.occurrence:
        return None
    lines, first = text.split("\n"), found[fault.occurrence - 1]
    indent = lines[first][:len(lines[first]) - len(lines[first].lstrip())]
    lines[first:first + fault.before.count("\n") + 1] = [
        indent + line if line else "" for line in fault.after.split("\n")]
    return "\n".join(lines)


def locate(sources, fault):
    """The fault where it is now, and the faulty text: in its file, in one of the same name, or in
    the only function of its name that has its lines. None twice when it is gone."""
    name = os.path.basename(fault.file)
    namesakes = [path for path in sorted(sources) if os.path.basename(path) == name]
    for path in [fault.file] + namesakes:
        found = matches(sources.get(path, ""), fault.before)
        if len(found) >= fault.occurrence:
            return at_path(sources, fault, path, fault.occurrence)
    moved = [(path, i + 1) for path, text in sorted(sources.items())
             for i in occurrences_in_function(text, fault)]
    return at_path(sources, fault, *moved[0]) if len(moved) == 1 else (None, None)


def at_path(sources, fault, path, occurrence):
    line = matches(sources[path], fault.before)[occurrence - 1] + 1
    fault = fault._replace(file=path, occurrence=occurrence, line=line)
    return fault, planted(sources[path], fault)


def occurrences_in_function(text, fault):
    """Which of the equal lines, from 0, stand in a function of the fault's name."""
    found = matches(text, fault.before) if fault.function else []
    source = Source(text) if found else None
    for i, line in enumerate(found):
        begin = source.lines[line]
        begin += len(text[begin:]) - len(text[begin:].lstrip())
        if source.function_at(begin) == fault.function:
            yield i


def in_turn(places, order):
    """All places in random order, the kinds taking turns: numbers would outweigh all others."""
    kinds = {}
    for place in places:
        kinds.setdefault(place.kind, []).append(place)
    rows = [order.sample(row, len(row)) for _, row in sorted(kinds.items())]
    order.shuffle(rows)
    turns = []
    while any(rows):
        turns += [row.pop() for row in rows if row]
    return turns


def sequence(sources, seed):
    """Faults in the seed's order: in each round every file once, sooner the more of its lines have
    places. The rank of a file depends on that file alone: a change elsewhere moves little."""
    files = {}
    for path, text in sorted(sources.items()):
        source = Source(text)
        places = source.places()
        if places:
            lines = len({source.line_of(place.start) for place in places})
            files[path] = source, in_turn(places, random.Random(f"{seed} {path}")), lines
    turn = 0
    while files:
        for path in sorted(files, key=lambda path: random.Random(
                f"{seed} {turn} {path}").expovariate(files[path][2])):
            source, turns, _ = files[path]
            yield source.fault(path, turns[turn])
        turn += 1
        files = {path: file for path, file in files.items() if turn < len(file[1])}
