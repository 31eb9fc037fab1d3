#!/usr/bin/env python3
"""Plants faults in src/, one at a time, and counts which of them the tests notice:

    plant_faults.py [--seed N] [--count N] [--list FILE]     plants new faults and lists them
    plant_faults.py --replay FILE [--list FILE]              plants those of a list again

A fault is a changed constant, comparison, operator or index, a negated condition, or a call left
out (fault_places.py). The seed and the sources decide where. Each fault is planted in a copy of the
tree below --work, compiled with -O1 and the library's own assertions, and run against the tests of
its folder, those of documents, extension and programs; the first failure counts as noticed. The
unchanged copy passes the same tests before. Whatever does not compile with our warnings, or
compiles to the same object files, is no fault and gives way to the next place.

The list has one JSON object per line and grows with each fault. A run with the same seed and list
goes on after the last one. A fault is found again by its file, its line's text and, among equal
lines, by its number, also after code moved. --replay exits with 1 when something that was noticed
no longer is, and with 2 when none of the list could be planted any more.

One that no test noticed either wants a test or changes nothing that anybody can see, such as the
size of a reservation: somebody has to look.
"""
import argparse
import collections
import fcntl
import filecmp
import hashlib
import json
import os
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import time

import fault_places
from fault_places import Fault

ROOT = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", ".."))
FLAGS = ["-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_FLAGS=-O1 -D_GLIBCXX_ASSERTIONS",
         "-DPAINT_TESTS=ON", "-DPAINT_KDE=OFF", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"]
# What every fault has to pass besides the tests of its own folder.
DOCUMENT_FOLDERS = ["document", "extension"]
PROGRAMS = "programs"
PROGRAMS_TARGETS = ["paint-thumbnailer", "paintdoc", "paint_test_archives"]
# Nothing here changes what the programs do.
UNTESTED = ("docs/", "tests/architecture/")
# No more than this from one file.
PER_FILE = 3
MAX_FILE_BYTES = 4 << 30
BUILD_SECONDS = 3600

# caught: None when the fault was not planted, for the reason in `by`; otherwise `by` is the test.
Outcome = collections.namedtuple("Outcome", "caught by")


class Problem(Exception):
    """Something that ends the run."""


class FaultList:
    """The file with one fault per line."""

    def __init__(self, path):
        self.path, self.records = path, []
        if path and os.path.exists(path):
            with open(path, encoding="utf-8") as file:
                text = file.read()
            # A last line without its end was being written when the run ended.
            whole = text[:text.rfind("\n") + 1]
            self.records = [json.loads(line) for line in whole.splitlines()]
            if whole != text:
                os.truncate(path, len(whole.encode()))

    def add(self, record):
        self.records.append(record)
        if self.path:
            os.makedirs(os.path.dirname(os.path.abspath(self.path)), exist_ok=True)
            with open(self.path, "a", encoding="utf-8") as file:
                file.write(json.dumps(record, ensure_ascii=False) + "\n")

    def find(self, fault):
        return next((r for r in self.records if identity(r) == identity(fault._asdict())), None)


def identity(record):
    return tuple(record[key] for key in ("file", "before", "after", "occurrence"))


def fault_of(record):
    return Fault(**{key: record[key] for key in Fault._fields})


def try_fault(build, fault, text, say):
    """Plants it and returns what the list says of it, or None when it is no fault."""
    start = time.monotonic()
    folder, programs = build.tests_of(fault.file)
    outcome = build.run(fault.file, text, programs)
    if outcome.caught is None:
        say(f"  {fault.file}:{fault.line} {fault.kind}: {outcome.by}")
        return None
    record = dict(caught=outcome.caught, by=outcome.by, **fault._asdict(), tests=programs)
    if folder != os.path.relpath(os.path.dirname(fault.file), "src"):
        # The folder whose tests stand in, if any does.
        record["instead"] = folder
    record["seconds"] = round(time.monotonic() - start, 1)
    return record


def plant(build, faults, seed, count, say):
    """Goes on with the list until it has `count` faults."""
    if any(record["seed"] != seed for record in faults.records):
        raise Problem(f"{faults.path} is of another seed than {seed}")
    begin = max((record["place"] for record in faults.records), default=0)
    sources = build.sources()
    for place, fault in enumerate(fault_places.sequence(sources, seed)):
        if len(faults.records) >= count:
            break
        of_file = sum(record["file"] == fault.file for record in faults.records)
        if place < begin or of_file >= PER_FILE or faults.find(fault):
            continue
        text = fault_places.planted(sources[fault.file], fault)
        record = try_fault(build, fault, text, say)
        if record:
            faults.add(dict(record, seed=seed, place=place))
            say(f"{len(faults.records)}/{count} {line_about(record)}")
    return summary(faults.records, count, say)


def line_about(record):
    verdict = f"noticed by {record['by']}" if record["caught"] else "NOT NOTICED"
    return f"{record['file']}:{record['line']} {record['kind']}: {verdict} ({record['seconds']} s)"


def summary(records, count, say):
    missed = [record for record in records if not record["caught"]]
    for record in missed:
        say(f"not noticed: {record['file']}: {record['function']}\n"
            + "".join(f"  {sign} {line}\n" for sign, key in (("-", "before"), ("+", "after"))
                      for line in record[key].split("\n")).rstrip())
    say(f"{len(records) - len(missed)} of {len(records)} faults noticed")
    if len(records) < count:
        say(f"there are no places for {count} faults")
    return 0


def replay(build, old, new, say):
    """Plants the faults of one list again and writes another."""
    sources, lost, planted = build.sources(), [], 0
    for record in old.records:
        fault, text = fault_places.locate(sources, fault_of(record))
        if fault is None:
            say(f"  {record['file']}: gone: {record['before']}")
            continue
        again = new.find(fault)
        if again is None:
            again = try_fault(build, fault, text, say)
            if again is None:
                continue
            new.add(dict(again, seed=record["seed"], place=record["place"]))
        planted += 1
        say(line_about(again))
        if record["caught"] and not again["caught"]:
            lost.append(record)
    for record in lost:
        say(f"no longer noticed: {record['file']}: {record['before']} -> {record['after']}"
            f" (was noticed by {record['by']})")
    say(f"{planted} of {len(old.records)} faults planted again, {len(lost)} no longer noticed")
    return 1 if lost else 0 if planted else 2


def limit(memory):
    """For the child: what an endless loop may take, besides time."""
    for kind, most in ((resource.RLIMIT_AS, memory), (resource.RLIMIT_FSIZE, MAX_FILE_BYTES),
                       (resource.RLIMIT_CORE, 0)):
        resource.setrlimit(kind, (most, most))


def run(command, log, seconds, memory=None, **options):
    """The exit status, or None when the time was over. Kills what the command leaves behind."""
    with open(log, "wb") as output:
        process = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
            start_new_session=True, preexec_fn=memory and (lambda: limit(memory)), **options)
    try:
        return process.wait(seconds)
    except subprocess.TimeoutExpired:
        return None
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


def failed_test(log, status):
    """The test that a failed run ends with."""
    name, why = "", "" if status == 1 else f" (status {status})"
    if status is None:
        why = " (no end)"
    elif status < 0:
        why = f" ({signal.Signals(-status).name})"
    with open(log, encoding="utf-8", errors="replace") as text:
        for line in text:
            failed = re.match(r"\[  FAILED  \] ([^\s,]+)|(?:FAIL|ERROR): (\w+)", line)
            if failed:
                name = failed[1] or failed[2]
                break
            # The test that a crash ends has begun.
            begun = re.match(r"\[ RUN      \] (\S+)", line)
            if begun or line.startswith(("[       OK ]", "[  SKIPPED ]")):
                name = begun[1] if begun else ""
    return (name or "outside of a test") + why


def tail(log, lines=25):
    with open(log, encoding="utf-8", errors="replace") as text:
        return "".join(collections.deque(text, lines))


class Build:
    """A copy of the tree, its build, and its tests."""

    def __init__(self, work, jobs, memory, ignored, say):
        self.tree, self.folder = os.path.join(work, "tree"), os.path.join(work, "build")
        self.work, self.jobs, self.memory, self.say = work, jobs, memory, say
        os.makedirs(work, exist_ok=True)
        self.lock = open(os.path.join(work, "lock"), "w", encoding="utf-8")
        try:
            fcntl.flock(self.lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            raise Problem(f"another run uses {work}") from None
        signature = self.copy_tree(ignored)
        self.configure()
        self.baseline = self.remembered(signature)
        # What the object files of the unchanged tree hold, and the programs that have been built
        # from it in this run: an earlier one may have ended with a fault in the build.
        self.clean, self.prepared = {}, set()

    def copy_tree(self, ignored):
        """Copies what differs, so that the build stays incremental. Answers what the tree is."""
        listed = subprocess.run(
            ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=ROOT,
            check=True, capture_output=True, text=True).stdout
        names = {n for n in listed.split("\0") if os.path.isfile(os.path.join(ROOT, n))
                 and os.path.join(ROOT, n) not in ignored}
        signature = hashlib.sha256()
        for name in sorted(names):
            with open(os.path.join(ROOT, name), "rb") as file:
                content = file.read()
            if not name.endswith(".md") and not name.startswith(UNTESTED):
                signature.update(f"{name}\0{len(content)}\0".encode() + content)
            origin, target = os.path.join(ROOT, name), os.path.join(self.tree, name)
            if not os.path.exists(target) or not filecmp.cmp(origin, target, shallow=False):
                os.makedirs(os.path.dirname(target), exist_ok=True)
                shutil.copyfile(origin, target)
                shutil.copymode(origin, target)
        for folder, _, files in os.walk(self.tree):
            for file in files:
                path = os.path.join(folder, file)
                if os.path.relpath(path, self.tree) not in names and "__pycache__" not in path:
                    os.remove(path)
        return signature.hexdigest()

    def configure(self):
        log = self.log("configure")
        if run(["cmake", "-G", "Ninja", "-S", self.tree, "-B", self.folder] + FLAGS, log,
               BUILD_SECONDS) != 0:
            raise Problem("the build cannot be configured:\n" + tail(log))
        # The objects of each source, and the programs that each folder's tests are part of.
        self.objects_of, self.programs_of = {}, {}
        with open(os.path.join(self.folder, "compile_commands.json"), encoding="utf-8") as file:
            for entry in json.load(file):
                words = shlex.split(entry["command"])
                output = words[words.index("-o") + 1]
                path = os.path.relpath(entry["file"], self.tree)
                self.objects_of.setdefault(path, []).append(output)
                if path.startswith("tests/") and path.endswith("Test.cpp"):
                    target = re.search(r"CMakeFiles/(.+?)\.dir/", output)[1]
                    folder = os.path.relpath(os.path.dirname(path), "tests")
                    self.programs_of.setdefault(folder, set()).add(target)

    def remembered(self, signature):
        try:
            with open(os.path.join(self.work, "baseline.json"), encoding="utf-8") as file:
                baseline = json.load(file)
            return baseline if baseline["tree"] == signature else {"tree": signature}
        except (OSError, ValueError):
            return {"tree": signature}

    def log(self, name):
        os.makedirs(os.path.join(self.work, "logs"), exist_ok=True)
        return os.path.join(self.work, "logs", name + ".txt")

    def sources(self):
        found = {}
        for folder, _, names in os.walk(os.path.join(self.tree, "src")):
            for name in names:
                if name.endswith((".cpp", ".h")):
                    path = os.path.join(folder, name)
                    with open(path, encoding="utf-8") as file:
                        found[os.path.relpath(path, self.tree)] = file.read()
        return found

    def tests_of(self, path):
        """The folder whose tests a source has, and all programs that it has to pass."""
        folder, own = covering(self.programs_of, os.path.relpath(os.path.dirname(path), "src"))
        programs = sorted(own)
        for other in DOCUMENT_FOLDERS:
            programs += sorted(self.programs_of.get(other, set()) - set(programs))
        return folder, programs + [PROGRAMS]

    def make(self, targets, log):
        return run(["cmake", "--build", self.folder, "--parallel", str(self.jobs), "--target"]
                   + targets, log, BUILD_SECONDS) == 0

    def make_programs(self, programs, log):
        targets = [p for p in programs if p != PROGRAMS]
        return self.make(targets + (PROGRAMS_TARGETS if PROGRAMS in programs else []), log)

    def command(self, program):
        if program != PROGRAMS:
            return [os.path.join(self.folder, "bin", program), "--gtest_fail_fast",
                    "--gtest_color=no"]
        listed = subprocess.run(["ctest", "--show-only=json-v1", "-R", f"^{PROGRAMS}$"],
                                cwd=self.folder, check=True, capture_output=True, text=True)
        return json.loads(listed.stdout)["tests"][0]["command"]

    def check(self, program, seconds, log):
        """Runs a program; None, or the test that failed."""
        scratch = os.path.join(self.work, "scratch")
        shutil.rmtree(scratch, ignore_errors=True)
        os.makedirs(scratch)
        status = run(self.command(program), log, seconds, self.memory,
                     cwd=os.path.join(self.folder, "tests"), env=dict(os.environ, TMPDIR=scratch))
        return None if status == 0 else f"{program}: {failed_test(log, status)}"

    def prepare(self, programs):
        """Builds them from the unchanged tree, where they have to pass once."""
        if not set(programs) <= self.prepared:
            before, log = self.stamps(), self.log("baseline")
            if not self.make_programs(programs, log):
                raise Problem("the unchanged tree cannot be built:\n" + tail(log))
            self.note_clean(before)
            self.prepared.update(programs)
        for program in programs:
            if program not in self.baseline:
                self.pass_unchanged(program)

    def pass_unchanged(self, program):
        log, start = self.log("baseline_" + program), time.monotonic()
        failed = self.check(program, BUILD_SECONDS, log)
        if failed:
            raise Problem(f"the unchanged tree fails already: {failed}\n{tail(log)}")
        self.baseline[program] = round(time.monotonic() - start, 1)
        self.say(f"  unchanged: {program} passes in {self.baseline[program]} s")
        with open(os.path.join(self.work, "baseline.json"), "w", encoding="utf-8") as file:
            json.dump(self.baseline, file)

    def stamps(self):
        """When each object file was written."""
        found = {}
        for folder, _, names in os.walk(self.folder):
            for name in names:
                if name.endswith(".o"):
                    path = os.path.join(folder, name)
                    found[path] = os.stat(path).st_mtime_ns
        return found

    def note_clean(self, before):
        for path, stamp in self.stamps().items():
            if path not in self.clean or before.get(path) != stamp:
                self.clean[path] = digest(path)

    def differs(self, before):
        """Whether an object file written since is not as in the unchanged tree."""
        return any(before.get(path) != stamp and self.clean.get(path) != digest(path)
                   for path, stamp in self.stamps().items())

    def run(self, path, text, programs):
        self.prepare(programs)
        target = os.path.join(self.tree, path)
        with open(target, encoding="utf-8") as file:
            unchanged = file.read()
        try:
            with open(target, "w", encoding="utf-8") as file:
                file.write(text)
            return self.compile(path, programs) or self.test(programs)
        finally:
            with open(target, "w", encoding="utf-8") as file:
                file.write(unchanged)

    def compile(self, path, programs):
        """None, or why there is nothing to test. A source goes first: most of what gives way does
        so before anything is linked."""
        before, log = self.stamps(), self.log("build")
        objects = self.objects_of.get(path, [])
        if objects and not self.make(objects, log):
            return Outcome(None, "does not compile: " + self.first_error(log))
        if objects and not self.differs(before):
            return Outcome(None, "compiles to the same")
        if not self.make_programs(programs, log):
            return Outcome(None, "does not compile: " + self.first_error(log))
        return None if self.differs(before) else Outcome(None, "compiles to the same")

    def first_error(self, log):
        with open(log, encoding="utf-8", errors="replace") as text:
            found = next((line.strip() for line in text if "error:" in line), "see " + log)
        return found.replace(self.tree + os.sep, "")

    def test(self, programs):
        for program in programs:
            # So much longer than unchanged, on a loaded machine too, is without end.
            failed = self.check(program, 60 + 5 * self.baseline[program], self.log(program))
            if failed:
                return Outcome(True, failed)
        return Outcome(False, "")


def covering(programs_of, folder):
    """The nearest folder, upwards, that has tests, or whose parts have, and their programs."""
    while folder:
        if folder in programs_of:
            return folder, programs_of[folder]
        below = [programs for other, programs in programs_of.items()
                 if other.startswith(folder + "/")]
        if below:
            return folder, set().union(*below)
        folder = os.path.dirname(folder)
    return "", set()


def digest(path):
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).digest()


def interrupt(*_):
    raise KeyboardInterrupt


def arguments():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=40, help="faults in the whole list")
    parser.add_argument("--list", help="where the faults are listed; when planting, by default "
                        "tests/architecture/planted_faults.txt")
    parser.add_argument("--replay", metavar="FILE", help="a list of faults to plant again")
    parser.add_argument("--work", default=os.path.join(ROOT, "build", "faults"))
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--memory", type=int, default=8192, help="of a test program, in MB")
    return parser.parse_args()


def main():
    options = arguments()
    default = os.path.join(ROOT, "tests", "architecture", "planted_faults.txt")
    listed = options.list or (None if options.replay else default)
    paths = {os.path.abspath(path) for path in (default, listed, options.replay) if path}
    signal.signal(signal.SIGTERM, interrupt)

    def say(line):
        print(line, flush=True)

    try:
        if options.replay and not os.path.isfile(options.replay):
            raise Problem(f"no list {options.replay}")
        if options.replay and listed and os.path.abspath(listed) == os.path.abspath(options.replay):
            raise Problem("--list would mix with the list that --replay reads")
        build = Build(os.path.abspath(options.work), options.jobs, options.memory << 20, paths, say)
        if options.replay:
            return replay(build, FaultList(options.replay), FaultList(listed), say)
        return plant(build, FaultList(listed), options.seed, options.count, say)
    except Problem as problem:
        print(f"plant_faults: {problem}", file=sys.stderr)
        return 3
    except KeyboardInterrupt:
        print("interrupted; the list goes on with the next run", file=sys.stderr)
        return 130


if __name__ == "__main__":
    sys.exit(main())
