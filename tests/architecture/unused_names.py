#!/usr/bin/env python3
"""Lists the names that headers declare and nothing uses: unused_names.py SOURCE_ROOT [--only-tests]

Headers are those below src/ and apps/. Prints "file:line name" and exits 1 for each function, type,
enumerator, variable, field and macro that neither code (src, apps, kde, examples, bench) nor tests
(tests, fuzz) use. With --only-tests it prints those that tests alone use, and exits 0.

It reads tokens, not types. A declaration or definition is no use, nor is what stands inside the
definition itself (recursion, a type in its own members) or inside something unused. Namesakes hide
each other: one use keeps all of them, overloads and methods of other classes included, which is
also why an override needs no use of its own. A method counts as used where its name is called or
follows "::" (a static one anywhere in its class), an enumerator of an enum class after the name of
its enum, everything else wherever its name stands, as a local variable too. The name of an unscoped
enum says what its enumerators are and needs no use. Constructors, destructors and operators are
left out.
"""
import collections
import os
import re
import sys

CODE = ("src", "apps", "kde", "examples", "bench")
TESTS = ("tests", "fuzz")
HEADERS = ("src", "apps")

# Names that the language or a library uses, with who does.
EXEMPT = {
    "is_transparent": "lookup in std::unordered_map by another type than the key's",
    "do_allocate": "std::pmr::memory_resource",
    "do_deallocate": "std::pmr::memory_resource",
    "do_is_equal": "std::pmr::memory_resource",
}
# Enums whose numbers come from outside: every one of them may be asked for.
EXEMPT_ENUMS = {
    "NSCompositingOperation": "the host's operations; a context takes any of them",
}
# Macros whose first argument is the name of the function that they define.
DEFINING_MACROS = {"VECTOR_WIDTH_CLONES"}
# Macros whose arguments name a test.
TEST_MACROS = {"TEST", "TEST_F", "TEST_P", "INSTANTIATE_TEST_SUITE_P"}

TOKEN = re.compile(
    r"""//(?:[^\n\\]|\\.|\\\n)*|/\*.*?\*/          # comments
    |(?P<directive>^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*)
    |R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|"(?:[^"\\\n]|\\.)*"
    |(?P<number>\.?\d(?:[eEpP][+-]|'?\w|\.)*)
    |'(?:[^'\\\n]|\\.)+'
    |(?P<word>[A-Za-z_]\w*)|(?P<sign>::|->|[^\s\w])""", re.VERBOSE | re.DOTALL | re.MULTILINE)
WORD = re.compile(r"[A-Za-z_]\w*")
NOT_A_NAME = set("""__attribute__ alignas alignof auto bool catch char class const consteval
    constexpr constinit decltype default delete double enum explicit extern final float for if
    inline int long mutable noexcept operator override private protected public register requires
    return short signed sizeof static static_assert struct switch template this thread_local typedef
    typename union unsigned using virtual void volatile while""".split())
CLOSING = {"(": ")", "[": "]", "{": "}"}

# The scope of a static method is its class, that of an enumerator its enum class.
Declaration = collections.namedtuple("Declaration", "name kind scope file line")
# Where a word stands: the names being defined there, the words and marks around it.
Use = collections.namedtuple("Use", "owners before_mark before after")


class Source:
    """The declarations of one file, and the uses of every word in it."""

    def __init__(self, path, text, macros):
        self.path = path
        self.macros = macros
        self.declarations = []
        self.uses = []
        self.text = []
        self.lines = []
        self.unnamed_namespaces = 0
        self.tokenise(text)
        self.partner = self.brackets()
        end = len(self.text)
        # So that looking a little ahead needs no care.
        self.text += [";"] * 4
        self.scope(0, end, (), None)

    # ---- Tokens.
    def tokenise(self, text):
        line = at = 0
        for match in TOKEN.finditer(text):
            line += text.count("\n", at, match.start())
            at = match.start()
            if match["directive"]:
                self.directive(match["directive"].strip(), line + 1)
            elif match["word"] or match["sign"]:
                self.text.append(match[0])
                self.lines.append(line + 1)
            elif match["number"] or match[0][0] in "\"'R":
                self.text.append("0")
                self.lines.append(line + 1)

    def directive(self, text, line):
        words = WORD.findall(re.sub(r'//.*|/\*.*?\*/|"(?:[^"\\]|\\.)*"', " ", text))
        if words[0] == "define":
            self.declare(words[1], "macro", None, line)
            self.uses += [(word, Use((words[1],), "", "", "(")) for word in words[2:]]
        elif words[0] not in ("include", "pragma", "error"):
            self.uses += [(word, Use((), "", "", "")) for word in words[1:]]

    def brackets(self):
        """The place behind the bracket that closes each opening one."""
        partner, opened = {}, []
        for i, token in enumerate(self.text):
            if token in CLOSING:
                opened.append(i)
            elif token in (")", "]", "}"):
                while opened and CLOSING[self.text[opened[-1]]] != token:
                    opened.pop()
                if opened:
                    partner[opened.pop()] = i + 1
        return partner

    def behind(self, i):
        return self.partner.get(i, len(self.text))

    def behind_angles(self, i):
        """The place behind the ">" that closes the "<" at i; i + 1 when there is none."""
        depth, at = 0, i
        while at < len(self.text) and self.text[at] not in (";", "{", "}"):
            token = self.text[at]
            depth += (token == "<") - (token == ">")
            at = self.behind(at) if token in CLOSING else at + 1
            if depth == 0:
                return at
        return i + 1

    # ---- Findings.
    def within(self, owners, *names):
        """The owners of what stands inside a definition; names of a file's own are none."""
        return owners if self.unnamed_namespaces else owners + names

    def declare(self, name, kind, scope, line):
        self.declarations.append(Declaration(name, kind, scope, self.path, line))

    def use(self, first, end, owners, skipped=()):
        text = self.text
        for i in range(first, end):
            token = text[i]
            if (token[0].isalpha() or token[0] == "_") and i not in skipped:
                self.uses.append((token, Use(owners, text[i - 1], text[i - 2], text[i + 1])))

    # ---- Declarations.
    def scope(self, i, end, owners, class_name):
        """Reads the declarations of a namespace, or of the class of that name."""
        while i < end:
            i = self.declaration(i, end, owners, class_name)

    def declaration(self, i, end, owners, class_name):
        text = self.text
        start = i
        while i < end:
            token = text[i]
            if token in (";", "}", "{"):
                return i + 1
            if token == "template" and text[i + 1] == "<":
                past = self.behind_angles(i + 1)
                self.use(i + 2, past, owners)
                i = past
            elif token in ("public", "private", "protected") and text[i + 1] == ":":
                i += 2
            elif token == "namespace" or (token == "extern" and text[i + 2] == "{"):
                return self.namespace(i, end, owners)
            elif token in ("using", "typedef"):
                return self.alias(i, owners)
            elif token == "friend":
                return self.friend(i, end, owners)
            elif token == "enum":
                return self.enumeration(i, owners)
            elif token in ("class", "struct", "union"):
                return self.type(i, end, owners)
            else:
                return self.function_or_variable(i, end, owners, class_name)
        return max(i, start + 1)

    def statement_end(self, i):
        while i < len(self.text) and self.text[i] != ";":
            i = self.behind(i) if self.text[i] in CLOSING else i + 1
        return i + 1

    def namespace(self, i, end, owners):
        is_unnamed = self.text[i + 1] == "{"
        while self.text[i] not in ("{", ";"):
            i += 1
        if self.text[i] == ";":
            return i + 1
        past = self.behind(i)
        self.unnamed_namespaces += is_unnamed
        self.scope(i + 1, min(past - 1, end), owners, None)
        self.unnamed_namespaces -= is_unnamed
        return past

    def alias(self, i, owners):
        end = self.statement_end(i)
        if self.text[i] == "typedef":
            name = end - 2
        elif self.text[i + 2] in ("=", "["):
            name = i + 1
        else:
            self.use(i + 1, end, owners)
            return end
        self.declare(self.text[name], "type", None, self.lines[name])
        self.use(i + 1, end, self.within(owners, self.text[name]), (name,))
        return end

    def friend(self, i, end, owners):
        if self.text[i + 1] in ("class", "struct"):
            return self.statement_end(i)
        return self.declaration(i + 1, end, owners, None)

    def enumeration(self, i, owners):
        text = self.text
        scoped = text[i + 1] in ("class", "struct")
        name = i + 1 + scoped
        open_brace = name
        while text[open_brace] not in ("{", ";"):
            open_brace += 1
        self.use(name + 1, open_brace, owners)
        if text[open_brace] == ";":
            return open_brace + 1
        if scoped:
            self.declare(text[name], "type", None, self.lines[name])
        past = self.behind(open_brace)
        self.enumerators(open_brace + 1, past - 1, text[name] if scoped else None)
        return past

    def enumerators(self, i, end, scope):
        while i < end:
            name = self.text[i]
            self.declare(name, "enumerator", scope, self.lines[i])
            first = i + 1
            while i < end and self.text[i] != ",":
                i = self.behind(i) if self.text[i] in CLOSING else i + 1
            self.use(first, i, (name,))
            i += 1

    def type(self, i, end, owners):
        text = self.text
        at, name = i + 1, None
        while at < end and text[at] not in ("{", ";", ":", "(", "=", ")"):
            if text[at] == "[":
                at = self.behind(at)
            elif text[at] in ("__attribute__", "alignas"):
                at = self.behind(at + 1)
            elif text[at] == "<":
                past = self.behind_angles(at)
                self.use(at + 1, past, owners)
                at = past
            else:
                if WORD.match(text[at]) and text[at] not in self.macros and text[at] != "final":
                    if name is not None:  # struct Type variable
                        return self.function_or_variable(i + 1, end, owners, None)
                    name = at
                at += 1
        if at >= end or text[at] == ";":
            return at + 1
        inside = owners
        if name is not None:
            self.declare(text[name], "type", None, self.lines[name])
            inside = self.within(owners, text[name])
        bases = at
        while text[at] != "{":
            at = self.behind(at) if text[at] in CLOSING else at + 1
        self.use(bases, at, inside)
        past = self.behind(at)
        self.scope(at + 1, past - 1, inside, text[name] if name is not None else "")
        if WORD.match(text[past]) and text[past + 1] in (";", "[", "{", "="):
            self.declare(text[past], "variable", None, self.lines[past])
            return self.statement_end(past)
        return past

    def function_or_variable(self, i, end, owners, class_name):
        """A declaration with a declarator: the name before its parameters or its initial value."""
        text = self.text
        if text[i] in self.macros and text[i + 1] == "(":
            return self.macro_call(i, owners)
        at, name = i, None
        while at < end:
            token = text[at]
            if token == "operator":
                while text[at] != "(" or text[at + 1:at + 3] == [")", "("]:
                    at += 1
                return self.function(i, None, at, end, owners, class_name)
            if token == "(":
                if text[at + 1] in ("*", "&"):
                    name, at = at + 2, self.behind(at)
                    break
                if name is not None and name == at - 1:
                    return self.function(i, name, at, end, owners, class_name)
                at = self.behind(at)
            elif token == "<":
                at = self.behind_angles(at)
            elif token == "[" and text[at + 1] == "[":
                at = self.behind(at)
            elif token in ("=", ";", "{", "[", ",", "}") or (token == ":" and name is not None):
                break
            else:
                if WORD.match(token) and token not in NOT_A_NAME and token not in self.macros:
                    name = at
                at += 1
        return self.variable(i, name, at, end, owners)

    def macro_call(self, i, owners):
        past = self.behind(i + 1)
        if self.text[i] in TEST_MACROS:
            body = self.behind(past) if self.text[past] == "{" else past
            # The arguments are names of tests, or what an instantiation gives them.
            self.use(past if body > past else i + 2, body, owners)
            return body
        skipped = (i + 2,) if self.text[i] in DEFINING_MACROS else ()
        inside = self.within(owners, self.text[i + 2]) if skipped else owners
        self.use(i, past, inside, skipped)
        return past

    def qualifiers(self, name):
        """Where the name with its "A::B::" before it starts, and those names."""
        first, names = name, []
        while first >= 2 and self.text[first - 1] in ("::", "~"):
            first -= 1
            if self.text[first] == "~":
                continue
            before = first - 1
            if self.text[before] == ">":
                while self.text[before] != "<":
                    before -= 1
                before -= 1
            if not WORD.match(self.text[before]) or self.text[before] in NOT_A_NAME:
                break
            first = before
            names.append(self.text[before])
        return first, tuple(names)

    def variable(self, i, name, at, end, owners):
        past = min(self.statement_end(at), end)
        inside, skipped = owners, ()
        if name is not None and name > i:
            first, names = self.qualifiers(name)
            skipped = range(first, name + 1)
            inside = self.within(owners, *names, self.text[name])
            if not names:
                self.declare(self.text[name], "variable", None, self.lines[name])
        self.use(i, past, inside, skipped)
        return max(past, i + 1)

    def function(self, i, name, parameters, end, owners, class_name):
        text = self.text
        inside, skipped = owners, ()
        if name is not None:
            first, names = self.qualifiers(name)
            skipped = set(range(first, name + 1))
            inside = self.within(owners, *names, text[name])
            is_special = text[name - 1] == "~" or text[name] == class_name or text[name] in names
            if not is_special and not names:
                self.declare(text[name], "function" if class_name is None else "method",
                             class_name if "static" in text[i:name] else None, self.lines[name])
        else:
            first, names = self.qualifiers(text.index("operator", i))
            skipped = set(range(first, parameters))
            inside = self.within(owners, *names)
        at = self.behind(parameters)
        skipped = skipped | self.parameter_names(parameters + 1, at - 1)
        while at < end and text[at] not in ("{", ";", ":", "="):
            at = self.behind(at) if text[at] in CLOSING else at + 1
        if at < end and text[at] == ":":
            at = self.behind_initialisers(at + 1)
        past = self.behind(at) if at < end and text[at] == "{" else self.statement_end(at)
        self.use(i, min(past, end), inside, skipped)
        return past

    def parameter_names(self, i, end):
        found = set()
        for at in range(i + 1, end):
            if (WORD.match(self.text[at]) and self.text[at + 1] in (",", ")", "=") and
                    self.text[at - 1] not in ("(", ",", "const", "::", "=", "<", ".", "typename")):
                found.add(at)
        return found

    def behind_initialisers(self, at):
        text = self.text
        while at < len(text):
            while text[at] not in ("(", "{"):
                at = self.behind_angles(at) if text[at] == "<" else at + 1
            at = self.behind(at)
            if text[at] == ".":
                at += 3
            if text[at] != ",":
                return at
            at += 1
        return at


def counts(declaration, use):
    """Whether a word is a use of the declaration of that name."""
    if declaration.name in use.owners:
        return False
    if declaration.kind == "method":
        return (use.after in ("(", "<") or use.before_mark == "::" or
                declaration.scope in use.owners)
    if declaration.kind == "enumerator" and declaration.scope is not None:
        return use.before_mark == "::" and use.before == declaration.scope
    return True


def sources(root, folders):
    for folder in folders:
        for directory, _, names in os.walk(os.path.join(root, folder)):
            for name in sorted(names):
                if name.endswith((".h", ".cpp")):
                    path = os.path.join(directory, name)
                    with open(path, encoding="utf-8") as text:
                        yield os.path.relpath(path, root), text.read()


def unused(declarations, uses):
    """The declarations without a use outside those that have none themselves."""
    by_name = collections.defaultdict(list)
    for declaration in declarations:
        if declaration.name not in EXEMPT and declaration.scope not in EXEMPT_ENUMS:
            by_name[declaration.name].append(declaration)
    dead = set()
    while True:
        found = {d for same in by_name.values() for d in same
                 if not any(counts(d, use) and dead.isdisjoint(use.owners)
                            for use in uses.get(d.name, ()))}
        names = {name for name, same in by_name.items() if all(d in found for d in same)}
        if names == dead:
            return found
        dead = names


def read(root):
    """The declarations of the headers, and the uses by name in code and in tests."""
    files = {folders: list(sources(root, folders)) for folders in (CODE, TESTS)}
    macros = set(TEST_MACROS)
    for listed in files.values():
        for _, text in listed:
            macros.update(re.findall(r"^[ \t]*#[ \t]*define[ \t]+(\w+)", text, re.MULTILINE))
    declarations, uses = [], {}
    for folders, listed in files.items():
        uses[folders] = collections.defaultdict(list)
        for path, text in listed:
            source = Source(path, text, macros)
            if path.endswith(".h") and path.split(os.sep)[0] in HEADERS:
                declarations += source.declarations
            for word, use in source.uses:
                uses[folders][word].append(use)
    return declarations, uses[CODE], uses[TESTS]


def main():
    root = sys.argv[1]
    declarations, code, tests = read(root)
    everywhere = collections.defaultdict(list)
    for uses in (code, tests):
        for word, places in uses.items():
            everywhere[word] += places
    listed = unused(declarations, everywhere)
    only_tests = "--only-tests" in sys.argv[2:]
    if only_tests:
        listed = unused(declarations, code) - listed
    for d in sorted(listed, key=lambda d: (d.file, d.line)):
        print(f"{d.file}:{d.line} {d.name}")
    if not listed:
        print("every name of the headers is used" + (" by code" if only_tests else ""))
    return 1 if listed and not only_tests else 0


if __name__ == "__main__":
    sys.exit(main())
