#!/usr/bin/env python3
"""Plants names in small trees, used and unused ones, and looks for them in the list."""
import contextlib
import io
import os
import sys
import tempfile
import unittest
from unittest import mock

import unused_names

# A header, code that includes it, and the names to be listed.
CASES = {
    "function": ("int planted(int x);", "int planted(int x) { return x; }", {"planted"}),
    "called function": ("int planted(int x);", "int main() { return planted(1); }", set()),
    "function handed on": ("void planted();", "void (*call)() = planted;", set()),
    "inline function": ("inline int planted() { return 1; }", "", {"planted"}),
    "template": ("template <class T>\nT planted(const T& x) { return x; }", "", {"planted"}),
    "recursion": ("int planted(int x);", "int planted(int x) { return planted(x); }", {"planted"}),
    "chain": ("int first();\nint second();\n#define THIRD 3",
              "int first() { return second(); }\nint second() { return THIRD; }",
              {"first", "second", "THIRD"}),
    "mention": ("void planted();", '// planted()\nconst char* text = "planted()";\n'
                'const char* raw = R"x(planted() ")x";', {"planted"}),
    "behind digits": ("int planted();", "int main() { return 1'000 + planted(); }", set()),
    "method": ("struct Type { int planted() const; };",
               "int Type::planted() const { return 1; }\nint main() { Type planted; }",
               {"planted"}),
    "called method": ("struct Type { int planted() const; };",
                      "int main() { return Type().planted(); }", set()),
    "pointer to method": ("struct Type { int planted(); };",
                          "int main() { return use(&Type::planted); }", set()),
    "callback": ("struct Type { static int planted(); static void open(); };",
                 "void Type::open() { library(planted); }\nint main() { Type::open(); }", set()),
    "override": ("struct Base { virtual int drawn(); };\n"
                 "struct Type : Base { int drawn() override; };",
                 "int Type::drawn() { return 1; }\n"
                 "int main() { Base& base = *new Type; base.drawn(); }", set()),
    "override nobody calls": ("struct Base { virtual int drawn(); };\n"
                              "struct Type : Base { int drawn() override; };",
                              "int main() { new Type; }", {"drawn"}),
    "constructor and operators": (
        "class Type {\n public:\n  explicit Type(int x) : x_(x), y_{x} {}\n  ~Type();\n"
        "  bool operator==(const Type&) const = default;\n private:\n  int x_;\n  int y_;\n};",
        "int main() { Type(1); }", set()),
    "type": ("class Planted {\n public:\n  Planted(const Planted&);\n};",
             "class Planted;\nPlanted::Planted(const Planted&) {}", {"Planted"}),
    "base": ("struct Base {};\nstruct Type : public Base {};", "int main() { Type(); }", set()),
    "field": ("struct Type { int x = 0; int planted_[2] = {1, 2}; };",
              "int main() { return Type().x; }", {"planted_"}),
    "alias": ("using Planted = int;\nusing Used = int;", "Used x;", {"Planted"}),
    "enumerator": ("enum class Shade { dark, light = 2 };",
                   "int dark; int main() { return int(Shade::light) + int(Other::dark); }",
                   {"dark"}),
    "numbers from outside": ("enum class NSCompositingOperation { copy, screen };",
                             "NSCompositingOperation x = NSCompositingOperation(1);", set()),
    "unscoped": ("enum Number { kOne, kTwo };", "int main() { return kOne; }", {"kTwo"}),
    "constant": ("constexpr int kPlanted = 1;\nconstexpr int kUsed = 1;",
                 "int main() { return kUsed; }", {"kPlanted"}),
    "macro": ("#define PLANTED(x) \\\n  call(x)\n#define USED 1\n#define ASKED",
              "#ifdef ASKED\nint x = USED;\n#endif", {"PLANTED"}),
    "namesake in its file": ("int planted();\nint used();",
                             "namespace {\nint planted() { return used(); }\n}\n", {"planted"}),
    "test of that name": ("int planted();", "TEST(Suite, planted) { EXPECT_TRUE(true); }",
                          {"planted"}),
    "tested value": ("int planted();",
                     "INSTANTIATE_TEST_SUITE_P(All, Suite, testing::Values(planted()));", set()),
    "defined by a macro": ("void planted();\nvoid used();",
                           "#define VECTOR_WIDTH_CLONES(name, call) void name() { call; }\n"
                           "VECTOR_WIDTH_CLONES(planted, used())\nVECTOR_WIDTH_CLONES(open, used())", {"planted"}),
}


class UnusedNames(unittest.TestCase):
    def run_script(self, files, *options):
        printed = io.StringIO()
        with tempfile.TemporaryDirectory() as root:
            for path, text in files.items():
                path = os.path.join(root, path)
                os.makedirs(os.path.dirname(path), exist_ok=True)
                with open(path, "w", encoding="utf-8") as file:
                    file.write("#pragma once\n" + text + "\n")
            with mock.patch.object(sys, "argv", ["unused_names.py", root, *options]):
                with contextlib.redirect_stdout(printed):
                    status = unused_names.main()
        return status, printed.getvalue().splitlines()

    def test_planted_names(self):
        for name, (header, code, expected) in CASES.items():
            with self.subTest(name):
                status, lines = self.run_script({"src/planted.h": header, "src/planted.cpp": code})
                names = {line.split()[1] for line in lines} if status else set()
                self.assertEqual(names, expected, lines)

    def test_says_where(self):
        header = "/* two\nlines */\nvoid planted();"
        status, lines = self.run_script({"apps/tool/planted.h": header})
        self.assertEqual((status, lines), (1, ["apps/tool/planted.h:4 planted"]))

    def test_every_folder_with_code_counts(self):
        for folder in ("src", "apps", "kde", "examples", "bench", "tests", "fuzz"):
            with self.subTest(folder):
                files = {"src/planted.h": "void planted();",
                         f"{folder}/user.cpp": "void user() { planted(); }"}
                self.assertEqual(self.run_script(files)[0], 0)
                alone = ["src/planted.h:2 planted"] if folder in ("tests", "fuzz") else []
                status, lines = self.run_script(files, "--only-tests")
                self.assertEqual(status, 0)
                self.assertEqual([line for line in lines if "planted" in line], alone)


if __name__ == "__main__":
    unittest.main()
