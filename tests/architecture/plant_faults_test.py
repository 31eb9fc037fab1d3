#!/usr/bin/env python3
"""Tests where faults are planted, what they are, and how the list of them is kept."""
import contextlib
import json
import os
import signal
import sys
import tempfile
import textwrap
import time
import unittest

import fault_places
import plant_faults
from fault_places import Fault, Source
from plant_faults import FaultList, Outcome


def body(statement):
    return f"void f() {{\n{statement}\n}}\n"


def faults(text, kind=None):
    """The changed lines that are offered, in order, of one kind or with their kinds."""
    source = Source(text)
    found = [source.fault("src/a.cpp", place) for place in source.places()]
    if kind:
        return [fault.after for fault in found if fault.kind == kind]
    return [(fault.kind, fault.after) for fault in found]


class Places(unittest.TestCase):
    def test_nothing_is_offered(self):
        for text in (
                "// if (a < 1) b();", "/* x = 1;\n y = 2; */", "// goes on \\\n x = 1;",
                'auto s = "a < 1 \\" + 1";', "char c = '1';", 'auto s = u8"1 + 2";',
                'auto s = R"(1 " < 2)";', 'auto s = R"x(1 )" < 2)x";',
                "#include <a/1.h>", "#define N 1 \\\n  + 2", "#if N < 1\n#endif", "  # define N 1",
                "#if 0\nint x = 1;\n#endif", "#if 0\n#if 1\nint x = 1;\n#endif\nint y = 1;\n#endif",
                "#if 1\n#else\nint x = 1;\n#endif",
                "static_assert(sizeof(int) == 4);", "using A = std::array<int, 4>;",
                "typedef int (*A)[4];", "std::array<int, 4> a;",
                "std::map<int, std::array<int, 4>> a;",
                "template <int N = 1> class A;", "template <typename T, int N = 2>\nvoid f();",
                "void f(int&& a, int* b, const int& c);", "std::vector<int> f(std::vector<int> a);",
                "bool operator<(const A& a);", "A operator+(A a);", "A operator()(A a) const;",
                "alignas(64) int a;", "struct alignas(64) A {};", "virtual void f() = 0;",
                "virtual void f() const = 0;", "float a[4];", "float* a[4][2];", "a::B a[4];",
                "[[gnu::aligned(16)]] int a;", "a = b<c;", "enum class A : int { a, b };", "A();",
                "f(a);",
                "class A {\n  A(int a);\n  void f();\n};", "namespace a {\nF(a);\n}"):
            self.assertEqual(faults(text), [], text)

    def test_no_call_is_offered(self):
        for statement in ("A a(b);", "A<int> a(b);", "a::A a(b);", "A* a(b);", "return f();",
                          "x = f();", "delete f();", "throw f();", "using A = decltype(f());",
                          "x++;", "static_cast<void>(x);", "c ? f() : g();", "do {\n} while (f());",
                          "for (f(); a; g());", "const auto a = [] {};", "new (a) A();",
                          "if (a) return f();", "A a{f()};", "co_return f();", "f() = g();"):
            self.assertEqual(faults(body(statement), "call"), [], statement)

    def test_one_fault(self):
        # Kind, line, line with the fault.
        for kind, before, after in (
                ("constant", "int a = 0;", "int a = 1;"),
                ("constant", "int a = 1;", "int a = 0;"),
                ("constant", "int a = 9u;", "int a = 10u;"),
                ("constant", "int a = 0xffUL;", "int a = 0x100UL;"),
                ("constant", "int a = 017;", "int a = 020;"),
                ("constant", "int a = 32'000;", "int a = 32001;"),
                ("constant", "double a = 0.0;", "double a = 1.0;"),
                ("constant", "double a = 1.0f;", "double a = 0.0f;"),
                ("constant", "double a = 1.5f;", "double a = 2.5f;"),
                ("constant", "double a = .5;", "double a = 1.5;"),
                ("constant", "double a = 1e-6;", "double a = 1e-5;"),
                ("constant", 'f("1", 1); // 1', 'f("1", 0); // 1'),
                ("constant", "#if A\nint a = 1;\n#endif", "int a = 0;"),
                ("constant", "#if 0\n#else\nint a = 1;\n#endif", "int a = 0;"),
                ("constant", "#if 0\n#elif A\nint a = 1;\n#endif", "int a = 0;"),
                ("constant", "enum A { a = 4 };", "enum A { a = 5 };"),
                ("comparison", "a = b < c;", "a = b <= c;"),
                ("comparison", "a = b <= c;", "a = b < c;"),
                ("comparison", "a = b > c;", "a = b >= c;"),
                ("comparison", "a = b >= c;", "a = b > c;"),
                ("comparison", "a = b == c;", "a = b != c;"),
                ("comparison", "a = b != c;", "a = b == c;"),
                ("comparison", "a = f<int>(b) < c;", "a = f<int>(b) <= c;"),
                ("operator", "a = b + c;", "a = b - c;"),
                ("operator", "a = -b - -c;", "a = -b + -c;"),
                ("operator", "a = b * *c;", "a = b / *c;"),
                ("operator", "a = b / c;", "a = b * c;"),
                ("operator", "a = b && c;", "a = b || c;"),
                ("operator", "a = b || c;", "a = b && c;"),
                ("operator", "a = b & c;", "a = b | c;"),
                ("operator", "a = b >> c;", "a = b << c;"),
                ("operator", "a += b;", "a -= b;"),
                ("bound", "a = b[i];", "a = b[i + 1];"),
                ("bound", "a = b[1];", "a = b[0];"),
                ("bound", "return a[f(i, j)];", "return a[(f(i, j)) + 1];"),
                ("bound", "a = f()[i];", "a = f()[i + 1];")):
            self.assertEqual(faults(before), [(kind, after)], before)

    def test_faults_of_a_kind(self):
        for kind, before, *after in (
                ("bound", "for (int i = a; i < n; ++i) {", "for (int i = a; i < n - 1; ++i) {"),
                ("bound", "for (int i = n; i > a; --i) {", "for (int i = n; i > a + 1; --i) {"),
                ("bound", "for (int a : b) {"),
                ("bound", "for (; i < n && c; ++i) {"),
                ("bound", "for (; i < n; ++i) {", "for (; i < n - 1; ++i) {"),
                ("bound", "for (auto i = b; i != e; ++i) {"),
                ("bound", "auto [a, b] = c;"),
                ("bound", "auto c = [a] {"),
                ("bound", "a = b[i][j];", "a = b[i + 1][j];", "a = b[i][j + 1];"),
                ("condition", "if (a) b = c;", "if (!(a)) b = c;"),
                ("condition", "while (f(a)) b = c;", "while (!(f(a))) b = c;"),
                ("condition", "if (auto a = b) c = d;"),
                ("condition", "if (f(); a) c = d;"),
                ("condition", "if constexpr (a) c = d;"),
                ("call", body("f();"), "{}"),
                ("call", body("a.b->f(c)(d);"), "{}"),
                ("call", body("a::f<int>(b);"), "{}"),
                ("call", body("a[i]->f(b);"), "{}"),
                ("call", body("if (a) f(b);"), "if (a) {}"),
                ("call", body("if (a) {\n} else f(b);"), "} else {}"),
                ("call", body("for (int a : b) f(a);"), "for (int a : b) {}"),
                ("call", body("switch (a) {\ncase 1: f(a);\n}"), "case 1: {}"),
                ("call", body("return [] { f(a); };"), "return [] { {} };"),
                ("call", body("f(a,\n  b);"), "{}"),
                ("call", "A::A() : a_(b), c_{d} { f(); }", "A::A() : a_(b), c_{d} { {} }"),
                ("call", "auto g() -> A<int> { f(); }", "auto g() -> A<int> { {} }"),
                ("call", "class A {\n  void g() const { f(); }\n};", "void g() const { {} }")):
            self.assertEqual(faults(before, kind), after, before)

    def test_faults_know_their_function(self):
        text = textwrap.dedent("""\
            int zero = 0;
            A::A() : a_(1) { a = 2; }
            namespace n {
            template <int N> int g() {
              const auto h = [](int x) { return x + 3; };
            }
            }
            """)
        source = Source(text)
        found = [source.fault("src/a.cpp", p) for p in source.places() if p.kind == "constant"]
        self.assertEqual([(f.line, f.function) for f in found],
                         [(1, ""), (2, ""), (2, "A::A"), (5, "g")])


class Planting(unittest.TestCase):
    TEXT = "a = b;\n  x = 1;\n\tx = 1;\nf(a,\n  b);\n"

    def fault(self, **changes):
        return Fault("constant", "src/a.cpp", "g", 2, 1, "x = 1;", "x = 0;")._replace(**changes)

    def test_text(self):
        for changes, expected in (
                ({}, "a = b;\n  x = 0;\n\tx = 1;\nf(a,\n  b);\n"),
                ({"occurrence": 2}, "a = b;\n  x = 1;\n\tx = 0;\nf(a,\n  b);\n"),
                ({"occurrence": 3}, None),
                ({"before": "x = 2;"}, None),
                ({"before": "f(a,\nb);", "after": "{}"}, "a = b;\n  x = 1;\n\tx = 1;\n{}\n")):
            self.assertEqual(fault_places.planted(self.TEXT, self.fault(**changes)), expected)

    def test_every_place_changes_what_it_says(self):
        text = body("  if (a < 1) f(b[i],\n    2);\n  if (a < 1) f(c);")
        source = Source(text)
        for place in source.places():
            expected = text[:place.start] + place.new + text[place.end:]
            planted = fault_places.planted(text, source.fault("src/a.cpp", place))
            self.assertEqual(planted.split(), expected.split(), place)

    def test_moved_code_is_found(self):
        text, other = "void g() {\n  x = 1;\n}\n", "void h() {\n  x = 1;\n}\n"
        for sources, expected in (
                ({"src/a.cpp": "\n" + text}, ("src/a.cpp", 3)),
                ({"src/b/a.cpp": other}, ("src/b/a.cpp", 2)),
                ({"src/a.cpp": "", "src/b.cpp": other, "src/c.cpp": "x = 1;\n" + text},
                 ("src/c.cpp", 3)),
                ({"src/b.cpp": text, "src/c.cpp": text}, None),
                ({"src/b.cpp": other}, None), ({"src/a.cpp": ""}, None)):
            fault, planted = fault_places.locate(sources, self.fault())
            self.assertEqual(fault and (fault.file, fault.line), expected, sources)
            if fault:
                before, after = (t.split("\n") for t in (sources[fault.file], planted))
                self.assertEqual([i + 1 for i in range(len(after)) if before[i] != after[i]],
                                 [fault.line])

    def test_sequence_depends_on_seed_and_file(self):
        sources = {f"src/{n}/{n}.cpp": body(f"{n} = 1;\nf({n}[i] + 2);\nif (a) g();")
                   for n in "abcde"}
        first = list(fault_places.sequence(sources, 1))
        self.assertEqual(first, list(fault_places.sequence(dict(reversed(sources.items())), 1)))
        self.assertNotEqual(first, list(fault_places.sequence(sources, 2)))
        self.assertCountEqual(first, list(fault_places.sequence(sources, 2)))
        self.assertEqual({f.file for f in first[:5]}, set(sources))
        lines = {fault.after for seed in range(20) for fault in
                 list(fault_places.sequence({"src/a/a.cpp": sources["src/a/a.cpp"]}, seed))[:1]}
        self.assertGreater(len(lines), 2)
        del sources["src/c/c.cpp"]
        self.assertEqual([f for f in first if f.file != "src/c/c.cpp"],
                         list(fault_places.sequence(sources, 1)))

    def test_longer_files_come_first(self):
        sources = {"src/long.cpp": "a = 1;\n" * 9, "src/short.cpp": "a = 1;\n"}
        first = [next(fault_places.sequence(sources, seed)).file for seed in range(200)]
        self.assertIn(first.count("src/short.cpp"), range(8, 40))  # 20 expected, of 200


class FakeBuild:
    """Notices what a function says it does."""

    def __init__(self, sources, outcome):
        self.files, self.outcome, self.runs = sources, outcome, []

    def sources(self):
        return self.files

    def tests_of(self, path):
        return os.path.relpath(os.path.dirname(path), "src").split("/")[0], ["test_a"]

    def run(self, path, text, programs):
        self.runs.append((path, text, programs))
        return self.outcome(path)


NOTICED, MISSED = Outcome(True, "test_a: A.a"), Outcome(False, "")
REJECTED = Outcome(None, "does not compile")


class Lists(unittest.TestCase):
    SOURCES = {f"src/{n}/x/{n}.cpp": body(f"{n} = 1;\n{n} += 2;") for n in "abcdef"}

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.path = os.path.join(folder.name, "list.txt")
        self.said = []

    def plant(self, build, count, seed=1):
        return plant_faults.plant(build, FaultList(self.path), seed, count, self.said.append)

    def replay(self, build, listed=None):
        return plant_faults.replay(build, FaultList(self.path), FaultList(listed), self.said.append)

    def records(self):
        with open(self.path, encoding="utf-8") as file:
            return [json.loads(line) for line in file]

    def test_list_has_what_was_planted(self):
        build = FakeBuild(self.SOURCES, lambda path: NOTICED if path < "src/d" else MISSED)
        self.assertEqual(self.plant(build, 6), 0)
        for record, (path, text, _) in zip(self.records(), build.runs, strict=True):
            self.assertEqual(record["file"], path)
            self.assertEqual(record["caught"], path < "src/d")
            self.assertEqual(record["by"], "test_a: A.a" if path < "src/d" else "")
            self.assertEqual(record["instead"], path.split("/")[1])
            self.assertIn(record["before"], self.SOURCES[path])
            self.assertEqual(self.SOURCES[path].replace(record["before"], record["after"]), text)
        self.assertEqual(self.said[-1], "3 of 6 faults noticed")

    def test_rejected_places_give_way(self):
        build = FakeBuild(self.SOURCES, lambda path: REJECTED if path > "src/c" else NOTICED)
        self.plant(build, 3)
        self.assertEqual(len(self.records()), 3)
        self.assertTrue(all(record["file"] < "src/c" for record in self.records()))
        self.assertGreater(len(build.runs), 3)
        # They do not come again before the last that was planted.
        again = FakeBuild(self.SOURCES, build.outcome)
        self.plant(again, 4)
        self.assertFalse([run for run in again.runs if run in build.runs])

    def test_no_more_than_a_few_in_a_file(self):
        build = FakeBuild({"src/a/a.cpp": body("a = 1;\n" * 9 + "b = 2;\n" * 9)}, lambda _: NOTICED)
        self.plant(build, 18)
        self.assertEqual(len(self.records()), plant_faults.PER_FILE)

    def test_goes_on_after_the_last(self):
        self.plant(FakeBuild(self.SOURCES, lambda _: NOTICED), 6)
        whole = self.records()
        os.remove(self.path)

        def interrupted(path):
            if len(first.runs) == 4:
                raise KeyboardInterrupt
            return NOTICED
        first = FakeBuild(self.SOURCES, interrupted)
        with self.assertRaises(KeyboardInterrupt):
            self.plant(first, 6)
        self.assertEqual(len(self.records()), 3)
        with open(self.path, "a", encoding="utf-8") as file:
            file.write('{"caught": tr')  # killed while it wrote
        second = FakeBuild(self.SOURCES, lambda _: NOTICED)
        self.plant(second, 6)
        self.assertEqual([plant_faults.identity(r) for r in self.records()],
                         [plant_faults.identity(r) for r in whole])
        self.assertEqual(second.runs[0], first.runs[3])
        self.assertEqual(len(second.runs), 3)

    def test_another_seed_needs_another_list(self):
        build = FakeBuild(self.SOURCES, lambda _: NOTICED)
        self.plant(build, 1)
        with self.assertRaises(plant_faults.Problem):
            self.plant(build, 2, seed=2)

    def test_replay(self):
        noticed_before_f = lambda path: NOTICED if path < "src/f" else MISSED
        self.plant(FakeBuild(self.SOURCES, noticed_before_f), 6)
        planted = {(r["file"], r["after"]) for r in self.records()}
        moved = {path.replace("/x/", "/y/"): "\n" + text for path, text in self.SOURCES.items()}
        for name, sources, outcome, expected, runs in (
                ("as before", self.SOURCES, noticed_before_f, 0, 6),
                ("moved", moved, noticed_before_f, 0, 6),
                ("all noticed", self.SOURCES, lambda _: NOTICED, 0, 6),
                ("one lost", self.SOURCES, lambda path: MISSED if "/b/" in path else NOTICED, 1, 6),
                ("refused now", self.SOURCES,
                 lambda path: REJECTED if "/b/" in path else NOTICED, 0, 6),
                ("one gone", dict(self.SOURCES, **{"src/b/x/b.cpp": ""}), noticed_before_f, 0, 5),
                ("all gone", {}, noticed_before_f, 2, 0)):
            build = FakeBuild(sources, outcome)
            self.assertEqual(self.replay(build), expected, name)
            self.assertEqual(len(build.runs), runs, name)
            for path, text, _ in build.runs:
                lines = [line for line in text.split("\n") if line not in sources[path].split("\n")]
                self.assertIn((path.replace("/y/", "/x/"), lines[0]), planted, name)
        self.assertIn("no longer noticed: src/b/x/b.cpp", "\n".join(self.said))

    def test_replay_goes_on(self):
        self.plant(FakeBuild(self.SOURCES, lambda _: NOTICED), 6)
        again = self.path + ".again"
        short = FakeBuild(dict(list(self.SOURCES.items())[:4]), lambda _: MISSED)
        self.assertEqual(self.replay(short, again), 1)
        rest = FakeBuild(self.SOURCES, lambda _: NOTICED)
        self.assertEqual(self.replay(rest, again), 1)  # what the first run found still counts
        self.assertEqual(len(rest.runs), 2)


class Running(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.log = os.path.join(folder.name, "log.txt")

    def run_python(self, script, seconds=20, memory=1 << 30):
        return plant_faults.run([sys.executable, "-c", script], self.log, seconds, memory)

    def test_end(self):
        self.assertEqual(self.run_python("print('x')"), 0)
        self.assertEqual(plant_faults.tail(self.log), "x\n")
        self.assertEqual(self.run_python("raise SystemExit(3)"), 3)
        self.assertEqual(self.run_python("import os; os.abort()"), -signal.SIGABRT)

    def test_endless_loop_and_its_children_end(self):
        script = ("import subprocess, sys\n"
                  "child = subprocess.Popen([sys.executable, '-c', 'while True: pass'])\n"
                  "print(child.pid, flush=True)\nwhile True: pass")
        self.assertIsNone(self.run_python(script, seconds=.4))
        pid = int(plant_faults.tail(self.log))
        for _ in range(100):
            with contextlib.suppress(FileNotFoundError):
                with open(f"/proc/{pid}/stat", encoding="utf-8") as file:
                    if file.read().split()[2] != "Z":
                        time.sleep(.01)
                        continue
            return
        self.fail("the child runs on")

    def test_memory_is_limited(self):
        self.assertEqual(self.run_python("bytearray(1 << 29)"), 0)
        self.assertEqual(self.run_python("bytearray(1 << 31)"), 1)
        self.assertIn("MemoryError", plant_faults.tail(self.log))

    def test_failed_test_is_named(self):
        passed = "[ RUN      ] A.a\n[       OK ] A.a (0 ms)\n"
        for text, status, expected in (
                (passed + "[ RUN      ] A.b\n[  FAILED  ] A.b (0 ms)\n", 1, "A.b"),
                (passed + "[ RUN      ] A.b\n[  FAILED  ] A.b, where x = 1 (0 ms)\n"
                 "[ RUN      ] A.c\n[  SKIPPED ] A.c (0 ms)\n", 1, "A.b"),
                (passed + "[ RUN      ] A.b\n[  SKIPPED ] A.b (0 ms)\n", -6,
                 "outside of a test (SIGABRT)"),
                (passed + "[ RUN      ] A.b\n", -11, "A.b (SIGSEGV)"),
                (passed + "[ RUN      ] A.b\n", None, "A.b (no end)"),
                (passed, -6, "outside of a test (SIGABRT)"),
                ("", 127, "outside of a test (status 127)"),
                ("..F\n===\nFAIL: test_a (__main__.A)\nFAIL: test_b (__main__.A)\n", 1, "test_a"),
                ("ERROR: test_a (__main__.A)\n", 1, "test_a")):
            with open(self.log, "w", encoding="utf-8") as file:
                file.write(text)
            self.assertEqual(plant_faults.failed_test(self.log, status), expected)

    def test_covering_folder(self):
        programs = {"a/b": {"test_a_b"}, "a/c/d": {"test_a"}, "a/c/e": {"test_a", "test_a_e"}}
        for folder, expected in (("a/b", ("a/b", {"test_a_b"})), ("a/b/f/g", ("a/b", {"test_a_b"})),
                                 ("a/c/f", ("a/c", {"test_a", "test_a_e"})), (".", ("", set())),
                                 ("b", ("", set()))):
            self.assertEqual(plant_faults.covering(programs, folder), expected)


if __name__ == "__main__":
    unittest.main()
