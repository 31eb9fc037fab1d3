#!/usr/bin/env python3
"""Runs the programs as desktops and people do:  programs_test.py BIN_DIR DOCUMENTS_DIR EXAMPLES_DIR
DATA_DIR

Exit codes, one line on standard error, and an output path that is left absent or empty on failure.
"""
import base64
import json
import os
import pty
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

from paint_document import PaintDocument
from picture_documents import png
from program_support import adopt_orphans, children, png_texts, read, read_png, run, wait_until

BIN, DOCUMENTS, EXAMPLES, DATA = (os.path.abspath(path) for path in sys.argv[1:5])
THUMBNAILER = os.path.join(BIN, "paint-thumbnailer")
PAINTDOC = os.path.join(BIN, "paintdoc")


COMMANDS = "info, render, check, help"
FORMATS = "png, jpeg, jpg, webp, tiff, tif"
SVG_ARC = (b'<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9">'
           b'<path d="M1 1A2 3 0 0 1 5 5" fill="#f00"/></svg>')
ERASE = b"\r\x1b[K"


def document(name):
    return os.path.join(DOCUMENTS, name + ".paintdoc")


# Rectangles on a canvas of 40 x 20: x, y from below, width, height, colour. The last two are a group.
LEFT, RIGHT, TOP = (2, 0, 18, 18, (255, 0, 0)), (24, 4, 8, 8, (0, 0, 255)), (30, 10, 4, 4, (0, 255, 0))


def layers(**facts):
    doc = PaintDocument(40, 20)
    rectangle = lambda x, y, w, h, rgb, **more: doc.draw(
        "DrawRectangle", outline=doc.rectangle(x, y, w, h), fill=[c / 255 for c in rgb], **more)
    doc.draws = [rectangle(*LEFT, title="left"), rectangle(0, 0, 40, 20, (9, 9, 9), title="off", visible=False), doc.group(
        [rectangle(*RIGHT, title="blue"), rectangle(0, 0, 40, 20, (9, 9, 9), visible=False), rectangle(*TOP)])]
    return doc.to_bytes(**facts)


def painted(rectangles, scale=1, part=(0, 0, 40, 20), over=(0, 0, 0, 0)):
    """Rows of RGBA, as the picture of these rectangles is when all edges fall between pixels."""
    x0, y0, width, height = (round(v * scale) for v in part)
    rows = [[over] * width for _ in range(height)]
    for *place, color in rectangles:
        x, y, w, h = (round(v * scale) for v in place)
        for row in range(max(y, y0), min(y + h, y0 + height)):
            for column in range(max(x, x0), min(x + w, x0 + width)):
                rows[y0 + height - 1 - row][column - x0] = (*color, 255)
    return rows


def rgba(path):
    return [[(*pixel[:3], *(pixel[3:] or (255,))) for pixel in row] for row in read_png(path)[3]]


def density(path):
    """Pixels an inch as a PNG, JPEG or TIFF file says; None when it does not."""
    data = read(path)
    if data.startswith(b"\x89PNG"):
        at = data.find(b"pHYs")
        return None if at < 0 else round(struct.unpack_from(">II", data, at + 4)[0] * 0.0254, 1)
    if data.startswith(b"\xff\xd8"):
        unit, x, y = struct.unpack_from(">BHH", data, 13)
        return x if unit == 1 and x == y else None
    entries = {}
    start, = struct.unpack_from(">I", data, 4)
    for i in range(struct.unpack_from(">H", data, start)[0]):
        tag, _, _, value = struct.unpack_from(">HHII", data, start + 2 + 12 * i)
        entries[tag] = value
    if 282 not in entries:
        return None
    x, y = (struct.unpack_from(">II", data, entries[tag]) for tag in (282, 283))
    return x[0] / x[1] if x == y and entries[296] >> 16 == 2 else None


def shown_on(terminal):
    """Everything, until nobody has the other end of the terminal open any more."""
    shown = b""
    try:
        while part := os.read(terminal, 65536):
            shown += part
    except OSError:
        pass  # How a terminal tells that.
    os.close(terminal)
    return shown


class Programs(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.out = os.path.join(self.folder.name, "out.png")

    def tearDown(self):
        self.folder.cleanup()

    def write(self, name, data):
        path = os.path.join(self.folder.name, name)
        with open(path, "wb") as file:
            file.write(data)
        return path

    def pipe(self, name):
        """One that a program waits at until it is opened for writing."""
        path = os.path.join(self.folder.name, name)
        os.mkfifo(path)
        return path

    def assert_one_line(self, result, status, program, said):
        self.assertEqual(result.returncode, status, (result.args, result.stderr))
        self.assertRegex(result.stderr, rb"\A%s: [^\n]+\n\Z" % os.path.basename(program).encode(), result.args)
        self.assertIn(said, result.stderr.decode())
        self.assertEqual(result.stdout, b"", result.args)

    def assert_fails(self, status, path, *arguments, reason=""):
        """With an output that is absent, and with one that is there and empty."""
        for existing in (False, True):
            if existing:
                open(self.out, "wb").close()
            result = run(THUMBNAILER, *arguments, path, self.out)
            self.assert_one_line(result, status, THUMBNAILER, reason)
            self.assertEqual(os.path.exists(self.out), existing)
            if existing:
                self.assertEqual(os.path.getsize(self.out), 0)
                os.remove(self.out)

    def test_thumbnail(self):
        result = run(THUMBNAILER, "-s", "64", document("red"), self.out)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        width, height, channels, rows = read_png(self.out)
        self.assertEqual((width, height), (64, 32))
        self.assertEqual({pixel[:3] for row in rows for pixel in row}, {(255, 0, 0)})
        texts = png_texts(self.out)
        self.assertRegex(texts.pop("Software"), r"^paint-thumbnailer [0-9]")
        self.assertEqual(texts, {"Thumb::Image::Width": "100", "Thumb::Image::Height": "50"})

    def test_uri_and_default_size(self):
        odd = self.write("a b%41\n\xe9.paintdoc", read(document("tall")))
        uri = "file://" + "".join(c if c.isalnum() or c in "/._-" else "".join("%%%02X" % b for b in os.fsencode(c))
                                  for c in odd)
        for argument in (odd, uri, uri.replace("file://", "file://localhost"), uri.replace("file://", "file:")):
            self.assertEqual(run(THUMBNAILER, argument, self.out).returncode, 0, argument)
            # Taller than wide: a square context.
            self.assertEqual(read_png(self.out)[:2], (128, 128))

    def test_output_is_written_in_place(self):
        open(self.out, "wb").close()
        descriptor = os.open(self.out, os.O_RDONLY)
        self.assertEqual(run(THUMBNAILER, document("red"), self.out).returncode, 0)
        self.assertEqual(os.read(descriptor, 4), b"\x89PNG")
        os.close(descriptor)
        self.assertEqual(os.listdir(self.folder.name), ["out.png"])

    def test_bad_documents(self):
        for status, names in {1: ["no paint data", "inner is no archive", "inner root of another class", "version text",
                                  "inner root of an unknown class", "unknown draw", "group chain 10000"],
                              2: ["version 23", "version 23 and broken"],
                              3: ["too large canvas", "huge numbers canvas"],
                              4: ["negative canvas", "high negative canvas", "high empty canvas", "wide empty canvas",
                                  "nan canvas", "no canvas size"]}.items():
            for name in names:
                self.assert_fails(status, document(name))

    def test_bad_files(self):
        whole = read(os.path.join(EXAMPLES, "background.paintdoc"))
        huge = bytearray(whole)
        huge[-24:-16] = struct.pack(">Q", 1 << 60)  # number of objects
        outside = bytearray(whole)
        outside[-8:] = struct.pack(">Q", len(whole) + 1)  # offset of the table
        for name, data in {"empty": b"", "text": b"Dear reader,\n", "trailing": whole + b"\0", "huge": huge,
                           "outside": outside, "xml": b'<?xml version="1.0"?><plist version="1.0"/>'}.items():
            self.assert_fails(1, self.write(name, data), reason="not a readable document")

    def test_truncation(self):
        whole = read(os.path.join(EXAMPLES, "composition.paintdoc"))
        for length in range(0, len(whole), 16):
            result = run(THUMBNAILER, self.write("cut", whole[:length]), self.out)
            self.assertEqual(result.returncode, 1, length)
            self.assertFalse(os.path.exists(self.out))

    def test_unreadable_paths(self):
        self.assert_fails(1, os.path.join(self.folder.name, "missing"), reason="No such file")
        self.assert_fails(1, self.folder.name, reason="directory")
        self.assert_fails(1, "/dev/zero")
        locked = self.write("locked", b"x")
        os.chmod(locked, 0)
        if os.geteuid() != 0:
            self.assert_fails(1, locked, reason="Permission denied")

    def test_output_that_cannot_be_written(self):
        for output in (os.path.join(self.folder.name, "no", "such", "out.png"), self.folder.name, "/dev/full"):
            result = run(THUMBNAILER, document("red"), output)
            self.assertEqual(result.returncode, 74, (output, result.stderr))
            self.assertEqual(result.stderr.count(b"\n"), 1)

    def test_usage(self):
        red, number = document("red"), "is not a whole number from"
        for program, arguments, said in (
                (PAINTDOC, [], "a command is missing; known are " + COMMANDS),
                (PAINTDOC, ["--limit-time", "5"], "a command is missing"),
                (PAINTDOC, ["inf", red], f'unknown command "inf"; known are {COMMANDS}'),
                (PAINTDOC, ["in\n\x1b[31m"], 'unknown command "in??[31m"'),
                (PAINTDOC, ["help", "inf"], f'"inf" is unknown; known are {COMMANDS}'),
                (PAINTDOC, ["info"], "FILE is required"),
                (PAINTDOC, ["check", "--json"], "FILE is required"),
                (PAINTDOC, ["info", "--bo\ngus"], 'unknown option "--bo?gus"'),
                (PAINTDOC, ["info", red, "b"], 'one argument too many: "b"'),
                (PAINTDOC, ["info", red, "--json=so"], "--json = so"),
                (PAINTDOC, ["info", red, "--svg", "x\ny"], '"x?y" is unknown; known are system, built-in'),
                (PAINTDOC, ["info", red, "--limit-memory", "8"], f'"8" {number} 16 to'),
                (PAINTDOC, ["render", red], "OUT is required"),
                (PAINTDOC, ["render", red, "a.png", "0"], f'"0" {number} 1 to 16384'),
                (PAINTDOC, ["render", red, "a.png", "16385"], f'"16385" {number} 1 to 16384'),
                (PAINTDOC, ["render", red, "a.png", "-5"], f'"-5" {number}'),
                (PAINTDOC, ["render", red, red, "o.png"], f'"o.png" {number} 1 to 16384: render takes one FILE'),
                (PAINTDOC, ["render", red, "a.gif"], "known are " + FORMATS),
                (PAINTDOC, ["render", red, "a.png", "--format", "bmp"], f'"bmp" is unknown; known are {FORMATS}'),
                (PAINTDOC, ["render", red, "a.png", "--format"], "--format takes one value"),
                (PAINTDOC, ["render", red, "a.jpg", "--quality", "2"], '"2" is not a number from 0 to 1'),
                (PAINTDOC, ["render", red, "a.jpg", "--quality", "nan"], '"nan" is not a number from 0 to 1'),
                *((PAINTDOC, ["render", red, "a.png", *options.split(" ")], said) for options, said in (
                    *((f"--scale {text}", "is not a number from") for text in ("0", "-1", "nan", "1e308", "1e-7", "2x", "")),
                    ("--dpi 0", "is not a number from"), ("--dpi inf", "is not a number from"),
                    *((f"--size {text}", "is not two whole numbers") for text in ("5", "0x5", "5x-1", "5x16385", "1.5x2", "nanx1", "5x5x5")),
                    *((f"--part {text}", "is not four numbers") for text in ("1,2,3", "1,2,0,4", "1,2,3,nan", "1,2,3,1e308", "1,2,3,4,5")),
                    ("--part -5,-5,5,5", "outside of the canvas"), ("--part 100,0,5,5", "outside of the canvas"),
                    *((f"--background {text}", "is not #RGB") for text in ("#12", "red", "#12345g", "#-1-2-3", "ffffff")),
                    *((f"--draws {text}", "there is no draw") for text in ("9", "0", "1.1", "1,", "99999999999999999999", "\x1b[31m")),
                    ("--fit cover", "with --size only"), ("--enlarge", "with SIZE and --size only"), ("--scale 2 --dpi 3", "one of"),
                    ("--size 5x5 9", "one of"))),
                (PAINTDOC, ["render", red, "-", "10", "20"], "one picture only"),
                (PAINTDOC, ["render", red, "-", "--json"], "the picture and the report"),
                (THUMBNAILER, [], "INPUT is required"),
                (THUMBNAILER, ["one"], "OUTPUT is required"),
                (THUMBNAILER, ["a", "b", "c"], 'one argument too many: "c"'),
                (THUMBNAILER, ["-s", "0", "a", "b"], f'"0" {number} 1 to 16384'),
                (THUMBNAILER, ["a", "b", "-s", "x\x1b"], f'"x?" {number}'),
                (THUMBNAILER, ["a", "b", "-s"], "--size takes one value"),
                (THUMBNAILER, ["-5", "a", "b"], 'one argument too many'),
                (THUMBNAILER, ["--frobnicate", "a", "b"], 'unknown option "--frobnicate"')):
            self.assert_one_line(run(program, *arguments, cwd=self.folder.name), 64, program, said)
        self.assertEqual(os.listdir(self.folder.name), [])

    def test_help_and_version(self):
        whole, render, thumbnail = ("Usage: " + usage for usage in (
            "paintdoc [OPTIONS] [SUBCOMMAND]", "paintdoc render [OPTIONS] FILE OUT [SIZE...]",
            "paint-thumbnailer [OPTIONS] INPUT OUTPUT"))
        for program, asked, said in (
                (PAINTDOC, ["--help", "-h", "help"], whole),
                (PAINTDOC, ["help render", "render --help", "render -h", "render x -h", "-h render"], render),
                (PAINTDOC, ["--version", "-V", "info -V", "check --version x"], "paintdoc "),
                (THUMBNAILER, ["--help", "-h", "help"], thumbnail), (THUMBNAILER, ["--version", "-V"], "paint-thumbnailer ")):
            for arguments in asked:
                result = run(program, *arguments.split())
                self.assertEqual((result.returncode, result.stderr), (0, b""), arguments)
                self.assertIn(said, result.stdout.decode(), arguments)
        self.assertIn(b"--limit-time", run(PAINTDOC, "help", "info").stdout)
        self.assertEqual(run(THUMBNAILER, "help", self.out).returncode, 1)  # the file of that name
        with open("/dev/full", "wb") as full:
            self.assertEqual(subprocess.run([PAINTDOC, "help"], stdout=full, stderr=subprocess.PIPE).returncode, 74)

    def test_options_stand_anywhere(self):
        for command, first, options in (
                ((PAINTDOC, "info", document("red")), 1, ("--json",)),
                ((PAINTDOC, "check", document("red"), "missing"), 1, ("--json",)),
                ((PAINTDOC, "check", document("red"), "missing"), 1, ("--limit-time", "0")),
                ((PAINTDOC, "render", document("red"), "-"), 2, ("--format", "webp")),
                ((PAINTDOC, "render", document("red"), "-"), 2, ("--format=jpeg", "--quality", "0.1")),
                ((PAINTDOC, "render", self.write("a.svg", SVG_ARC), "-"), 1, ("--svg", "built-in")),
                ((THUMBNAILER, document("red"), "-"), 1, ("-s", "64")), ((THUMBNAILER, document("red"), "-"), 1, ("-s64",)),
                ((THUMBNAILER, document("red"), "-"), 1, ("--size=64", "--limit-time", "5"))):
            told = lambda result: (result.stdout, result.stderr)
            answers = {told(run(*command[:place], *options, *command[place:])) for place in range(first, len(command) + 1)}
            self.assertEqual(len(answers), 1, (command, answers))
            self.assertNotIn(told(run(*command)), answers, command)

    def test_names_are_taken_as_they_are(self):
        names = ["[a,b]", "{}", "[]", "info", "help", "a=b", "--", "-x"]
        lines = run(PAINTDOC, "check", *names, cwd=self.folder.name).stdout.decode().splitlines()
        self.assertEqual([line.rpartition(": ")[0] for line in lines], [name for name in names if name != "--"])

    def test_no_environment_is_needed(self):
        self.assertEqual(run(THUMBNAILER, document("red"), self.out, env={}, cwd="/").returncode, 0)
        self.assertEqual(run(THUMBNAILER, document("red"), self.out, env={"LC_ALL": "de_DE.UTF-8"}).returncode, 0)

    def test_render(self):
        result = run(PAINTDOC, "render", document("red"), self.out)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(read_png(self.out)[:2], (100, 50))
        for options in ([], ["--json"]):
            result = run(PAINTDOC, "render", document("version 23"), self.out, *options)
            self.assert_one_line(result, 2, PAINTDOC, "written by a newer version")

    def test_render_keeps_straight_alpha(self):
        self.assertEqual(run(PAINTDOC, "render", document("half red"), self.out).returncode, 0)
        _, _, channels, rows = read_png(self.out)
        self.assertEqual((channels, rows[0][0]), (4, (255, 0, 0, 128)))

    def test_render_svg(self):
        text = (b'<svg xmlns="http://www.w3.org/2000/svg" width="40" height="20">'
                b'<rect width="20" height="20" fill="#00f"/></svg>\n')
        for arguments, size in (([], (40, 20)), (["10"], (10, 5)), (["400"], (400, 200))):
            result = run(PAINTDOC, "render", self.write("a.svg", text), self.out, *arguments)
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            width, height, channels, rows = read_png(self.out)
            self.assertEqual((width, height, channels), size + (4,))
            self.assertEqual((rows[0][0], rows[height - 1][width - 1]), ((0, 0, 255, 255), (0, 0, 0, 0)))
        os.remove(self.out)
        for status, broken in ((4, b'<svg width="0" height="5"></svg>'), (4, b"no markup </svg>"),
                               (3, b'<svg width="100000" height="100000"></svg>')):
            result = run(PAINTDOC, "render", self.write("b.svg", broken), self.out)
            self.assertEqual((result.returncode, result.stderr.count(b"\n")), (status, 1), broken)
            self.assertFalse(os.path.exists(self.out))

    def test_documents_are_not_written_over(self):
        first, second = (self.write(name, read(document("red"))) for name in ("a", "b.paintdoc"))
        link = os.path.join(self.folder.name, "link")
        os.link(first, link)
        os.link(second, os.path.join(self.folder.name, "li9k"))
        before = read(second)
        for command in ((THUMBNAILER, first, second), (THUMBNAILER, first, first), (THUMBNAILER, first, link),
                        (THUMBNAILER, "file://" + first, link), (PAINTDOC, "render", "--format", "png", first, second),
                        (PAINTDOC, "render", "--format", "png", first, first),
                        (PAINTDOC, "render", "--format", "png", first, os.path.join(self.folder.name, "li%sk"), "8", "9")):
            result = run(*command)
            self.assertEqual((result.returncode, result.stderr.count(b"\n")), (64, 1), (command, result.stderr))
            self.assertEqual((read(first), read(second)), (before, before))
        for command in ((THUMBNAILER,), (PAINTDOC, "render")):
            for source, target in ((first, first), (first, link), (first, second), ("-", second), ("-", first)):
                with open(first, "rb") as reading, open(target, "r+b") as writing:
                    result = subprocess.run([*command, source, "-"], stdin=reading, stdout=writing, stderr=subprocess.PIPE)
                self.assertEqual((result.returncode, result.stderr.count(b"\n")), (64, 1), (command, source, target))
                self.assertEqual((read(first), read(second)), (before, before))
            # The shell has emptied it; nothing is put in the place of what was there.
            with open(self.write("c", before), "rb") as reading, open(reading.name, "wb") as writing:
                self.assertEqual(subprocess.run([*command, "-", "-"], stdin=reading, stdout=writing, stderr=subprocess.PIPE
                                                ).returncode, 64)
            self.assertEqual(read(reading.name), b"")

    def test_no_picture_goes_to_a_terminal(self):
        for command in ((THUMBNAILER,), (PAINTDOC, "render")):
            controller, terminal = pty.openpty()
            result = subprocess.run([*command, document("red"), "-"], stdout=terminal, stderr=subprocess.PIPE)
            os.close(terminal)
            self.assertEqual((result.returncode, shown_on(controller)), (64, b""))

    def test_a_failed_rewrite_leaves_the_picture(self):
        self.write("out.png", b"a good picture")
        noise = os.path.join(EXAMPLES, "pictures.paintdoc")
        limited = ("bash", "-c", 'ulimit -f 1; trap "" XFSZ; exec "$@"', "bash")
        for command in ((*limited, THUMBNAILER, "-s", "512", noise, self.out), (*limited, PAINTDOC, "render", noise, self.out)):
            result = run(*command)
            self.assertEqual((result.returncode, result.stderr.count(b"\n")), (75, 1), result.stderr)
            self.assertEqual(read(self.out), b"a good picture")
            self.assertEqual(os.listdir(self.folder.name), ["out.png"])

    def test_nothing_from_a_file_or_a_name_rules_the_terminal(self):
        evil = "a\x1b]0;t\x07\u009b1m\u202e\u2066\u2028\x7f\u061c.paintdoc"
        path = os.path.join(self.folder.name, evil).encode() + b"\xff"
        for command in ((THUMBNAILER, path, self.out), (PAINTDOC, "check", path), (PAINTDOC, "info", path),
                        (PAINTDOC, "render", path, self.out)):
            result = run(*command)
            shown = (result.stdout + result.stderr).decode()  # UTF-8 at least
            self.assertEqual(shown.count("\n"), 1)
            self.assertIn("a?]0;t??1m?????.paintdoc?", shown)
        shown = run(PAINTDOC, "check", "--json", path).stdout
        self.assertRegex(shown, rb"\A[ -~]+\n\Z")
        self.assertEqual(os.path.basename(json.loads(shown)["file"]), evil + "\ufffd")
        result = run(THUMBNAILER, "file://" + document("red") + "%00.png", self.out)
        self.assertEqual((result.returncode, os.path.exists(self.out)), (1, False))

    def test_an_arc_that_the_built_in_engine_refuses(self):
        path = self.write("a.svg", SVG_ARC)
        result = run(PAINTDOC, "render", path, self.out)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        self.assertIn((255, 0, 0, 255), read_png(self.out)[3][2])
        os.remove(self.out)
        result = run(PAINTDOC, "render", path, self.out, "--svg", "built-in")
        self.assertEqual((result.returncode, result.stderr.count(b"\n")), (75, 1))
        self.assertIn(b"paint-picture-helper ended while it drew it", result.stderr)
        self.assertFalse(os.path.exists(self.out))

    def test_render_sizes(self):
        pattern = os.path.join(self.folder.name, "out.png")
        result = run(PAINTDOC, "render", "--json", document("red"), pattern, "80", "20", "080", "400", "20")
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        report = json.loads(result.stdout)
        self.assertEqual(report["size"], [100, 50])
        expected = [("out-80.png", 80, 40), ("out-20.png", 20, 10), ("out-400.png", 100, 50)]
        for picture, (name, width, height) in zip(report["pictures"], expected, strict=True):
            self.assertEqual(picture, {"file": os.path.join(self.folder.name, name), "format": "png", "width": width,
                                       "height": height, "bytes": os.path.getsize(picture["file"])})
            self.assertEqual(read_png(picture["file"])[:2], (width, height))
        self.assertEqual(run(THUMBNAILER, "-s", "20", document("red"), self.out).returncode, 0)
        self.assertEqual(read_png(self.out), read_png(os.path.join(self.folder.name, "out-20.png")))
        os.makedirs(os.path.join(self.folder.name, "30"))
        for out, sizes, name, size in (("%s/a%s", ["30"], "30/a30", (30, 15)), ("b%s", [], "b100", (100, 50)),
                                       ("c.png", ["64", "64"], "c.png", (64, 32))):
            self.assertEqual(run(PAINTDOC, "render", document("red"), out, *sizes, cwd=self.folder.name).returncode, 0)
            self.assertEqual(read_png(os.path.join(self.folder.name, name))[:2], size)
        self.assertEqual(len(os.listdir(self.folder.name)), 7)
        result = run(PAINTDOC, "render", document("red"), os.path.join(self.folder.name, "d"), "1")
        self.assert_one_line(result, 4, PAINTDOC, "nothing to draw")

    def test_render_parts_and_scales(self):
        every, plain, fine = [LEFT, RIGHT, TOP], self.write("a", layers()), self.write("b", layers(Resolution=144.0))
        for options, expected in (
                ("--scale 3", painted(every, 3)), ("--scale 0.5", painted(every, 0.5)), ("--dpi 144", painted(every, 2)),
                ("--part 20,2,14,10", painted(every, 1, (20, 2, 14, 10))),
                ("--part 20,2,14,10 --scale 2", painted(every, 2, (20, 2, 14, 10))),
                ("--part -9,-9,20,12.5", painted(every, 1, (0, 0, 11, 4))),
                ("--part 20,2,14,10 28 --enlarge", painted(every, 2, (20, 2, 14, 10))),
                ("--trim", painted(every, 1, (2, 0, 32, 18))), ("--trim --part 0,12,40,8", painted(every, 1, (2, 12, 32, 6))),
                ("--draws left", painted([LEFT])), ("--draws 3", painted([RIGHT, TOP])), ("--draws 3.3,1", painted([TOP, LEFT])),
                ("--draws blue --draws 3.3", painted([RIGHT, TOP])), ("--draws off", painted([(0, 0, 40, 20, (9, 9, 9))])),
                ("--draws blue --trim --scale 2", painted([RIGHT], 2, RIGHT[:4])),
                ("--background #fe8", painted(every, over=(255, 238, 136, 255))),
                ("--background #0000ff80", painted(every, over=(0, 0, 255, 128))),
                ("--trim --background white", painted(every, 1, (2, 0, 32, 18), (255, 255, 255, 255))),
                ("--size 20x20", painted(every, 0.5)), ("--size 80x80", painted(every)), ("80", painted(every)),
                ("--size 80x80 --enlarge", painted(every, 2)), ("80 --enlarge", painted(every, 2)),
                ("--size 10x10 --fit cover", painted(every, 0.5, (10, 0, 20, 20))),
                ("--size 16x80 --fit cover --enlarge", painted(every, 4, (18, 0, 4, 20)))):
            result = run(PAINTDOC, "render", plain, self.out, *options.split())
            self.assertEqual((result.returncode, result.stderr), (0, b""), options)
            self.assertTrue(rgba(self.out) == expected, options)
        self.assertEqual(run(PAINTDOC, "render", fine, self.out, "--dpi", "288").returncode, 0)
        self.assertEqual(rgba(self.out), painted(every, 2))
        self.assertEqual(run(PAINTDOC, "render", plain, self.out, "--size", "80x10", "--fit=stretch", "--enlarge").returncode, 0)
        self.assertEqual(read_png(self.out)[:2], (80, 10))
        self.assertEqual([read_png(self.out)[3][y][x] for x, y in ((20, 5), (54, 6), (1, 5))],
                         [(255, 0, 0, 255), (0, 0, 255, 255), (0, 0, 0, 0)])

    def test_render_part_of_svg(self):
        path = self.write("a.svg", b'<svg xmlns="http://www.w3.org/2000/svg" width="40" height="20">'
                                   b'<rect x="2" y="2" width="18" height="18" fill="#f00"/></svg>')
        for options, expected in (("--scale 2 --part 10,12,20,8", painted([LEFT], 2, (10, 12, 20, 8))),
                                  ("--trim 80", painted([LEFT], 2, LEFT[:4])),
                                  ("--size 20x20 --fit cover", painted([LEFT], 1, (10, 0, 20, 20)))):
            self.assertEqual(run(PAINTDOC, "render", path, self.out, *options.split()).returncode, 0, options)
            self.assertEqual(rgba(self.out), expected, options)

    def test_render_density(self):
        plain, fine = self.write("a", layers()), self.write("b", layers(Resolution=144.0))
        odd = [self.write(f"c{i}", layers(Resolution=value)) for i, value in enumerate((float("nan"), -3.0, 1e300))]
        for path, options, expected in ((plain, [], None), (plain, ["--dpi", "300"], 300), (fine, [], 144),
                                        (fine, ["--scale", "2"], 288), (fine, ["20"], 72), (odd[0], [], None), (odd[1], [], None),
                                        (odd[2], [], None), (fine, ["--size", "9x9", "--fit", "stretch"], None)):
            for ending in ("png", "jpg", "tif"):
                out = os.path.join(self.folder.name, "out." + ending)
                self.assertEqual(run(PAINTDOC, "render", path, out, *options).returncode, 0, (path, options))
                self.assertEqual(density(out), expected, (path, options, ending))

    def test_names_of_outputs(self):
        path = self.write("a.%s.paintdoc", layers())
        for out, options, names in (("%n.png", [], ["a.%s.png"]), ("%n_%s.png", ["--scale=2"], ["a.%s_80.png"]),
                                    ("%n.png", ["9", "8", "9"], ["a.%s-8.png", "a.%s-9.png"]),
                                    ("%s%%n.png", ["--size", "9x8"], ["9x8%a.%s.png"])):
            folder = tempfile.mkdtemp(dir=self.folder.name)
            self.assertEqual(run(PAINTDOC, "render", path, out, *options, cwd=folder).returncode, 0)
            self.assertEqual(sorted(os.listdir(folder)), names)

    def test_options_are_described(self):
        """In the manual and in what shells complete, all of them and no others."""
        told = run(PAINTDOC, "render", "--help").stdout.decode() + run(PAINTDOC, "--help").stdout.decode()
        options = set(re.findall(r"^ +(?:-\w,)?--([a-z-]+)", told, re.M))
        self.assertIn("background", options)
        for name, pattern in (("man/paintdoc.1", r"^\.It Fl (?:\w , Fl )?-([a-z-]+)"), ("completions/_paintdoc", r"--([a-z]+[a-z-]*)"),
                              ("completions/paintdoc.bash", r"--([a-z]+(?:-[a-z]+)*)\b(?!-)"), ("completions/paintdoc.fish", r"^complete.* -l ([a-z-]+)")):
            text = re.sub(r"\(--[^)]*\)--", "--", read(os.path.join(DATA, name)).decode())
            self.assertEqual(set(re.findall(pattern, text, re.M)), options, name)

    def test_render_formats(self):
        starts = {"jpg": b"\xff\xd8\xff", "JPEG": b"\xff\xd8\xff", "webp": b"RIFF", "tif": (b"II*\0", b"MM\0*"), "png": b"\x89PNG"}
        for ending, start in starts.items():
            path = os.path.join(self.folder.name, "a." + ending)
            self.assertEqual(run(PAINTDOC, "render", document("half red"), path).returncode, 0, ending)
            self.assertTrue(read(path).startswith(start), ending)
        path = os.path.join(self.folder.name, "a.png")
        self.assertEqual(run(PAINTDOC, "render", "--format", "webp", document("red"), path).returncode, 0)
        self.assertTrue(read(path).startswith(b"RIFF"))

    def test_jpeg_shows_transparency_over_white(self):
        path = os.path.join(self.folder.name, "a.jpg")
        self.assertEqual(run(PAINTDOC, "render", document("half red"), path).returncode, 0)
        url = "data:image/jpeg;base64," + base64.b64encode(read(path)).decode()
        text = ('<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" width="8" height="8">'
                '<image width="8" height="8" xlink:href="%s"/></svg>' % url)
        self.assertEqual(run(PAINTDOC, "render", "-", self.out, input=text.encode()).returncode, 0)
        _, _, _, rows = read_png(self.out)
        for value, expected in zip(rows[4][4], (255, 127, 127)):
            self.assertAlmostEqual(value, expected, delta=3)

    def test_standard_input_and_output(self):
        data = read(document("half red"))
        for command in ((THUMBNAILER,), (PAINTDOC, "render")):
            self.assertEqual(run(*command, document("half red"), self.out).returncode, 0)
            result = run(*command, "-", "-", input=data)
            self.assertEqual((result.returncode, result.stdout, result.stderr), (0, read(self.out), b""))
            with open(document("half red"), "rb") as file:
                self.assertEqual(run(*command, "-", "-", stdin=file).stdout, read(self.out))
            self.assertEqual(run(*command, "-", "-", stdin=subprocess.DEVNULL).returncode, 1)
            with open("/dev/full", "wb") as full:
                self.assertEqual(subprocess.run([*command, document("red"), "-"], stdout=full, stderr=subprocess.PIPE,
                                                timeout=120).returncode, 74)
        self.assertEqual(run(PAINTDOC, "info", "-", input=data).stdout,
                         run(PAINTDOC, "info", document("half red")).stdout)
        # The first takes everything.
        self.assertEqual(run(PAINTDOC, "check", "-", "-", input=data).stdout,
                         b"-: a readable document\n-: not a readable document\n")

    def test_progress_is_for_terminals(self):
        for name, expected in (("xterm", ERASE + b"paintdoc: 1 of 2" + ERASE), ("dumb", b""), (None, b"")):
            path = self.pipe(f"of {name}")
            controller, terminal = pty.openpty()
            environment = {"TERM": name} if name else {}
            with subprocess.Popen([PAINTDOC, "check", path, document("red")], stdout=terminal, stderr=terminal, env=environment) as process:
                os.close(terminal)
                wait_until(lambda: children(process.pid), "no process checks the file")
                time.sleep(1.1)  # It is quiet in the first second.
                open(path, "wb").close()
                shown = shown_on(controller)
            lines = [path.encode() + b": not a readable document", document("red").encode() + b": a readable document", b""]
            self.assertEqual(shown, (b"\r\n" + expected).join(lines[:2]) + b"\r\n")

    def test_check(self):
        cases = {document("red"): (0, "a readable document", None), document("no paint data"): (1, "not a readable document", None),
                 self.folder.name: (1, "not a readable document", "Is a directory"),
                 document("version 23"): (2, "written by a newer version of the format", None),
                 document("too large canvas"): (3, "the canvas is too large", None)}
        plain, report = (run(PAINTDOC, "check", *option, *cases) for option in ([], ["--json"]))
        self.assertEqual((plain.returncode, report.returncode, plain.stderr, report.stderr), (3, 3, b"", b""))
        for line, text, (path, (code, result, reason)) in zip(
                report.stdout.splitlines(), plain.stdout.decode().splitlines(), cases.items(), strict=True):
            self.assertEqual(list(json.loads(line).items()), [("file", path), ("code", code), ("result", result),
                                                              ("reason", reason), ("leftOut", []), ("fonts", [])])
            self.assertEqual(text, f"{path}: {result}" + (f" ({reason})" if reason else ""))

    def test_files_are_checked_apart(self):
        # Each answer comes before the next file is read, and an ended process is an answer.
        adopt_orphans()
        paths = [self.pipe(name) for name in ("first", "second", "third")]
        with subprocess.Popen([PAINTDOC, "check", "--json", document("red"), *paths], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            child = lambda: wait_until(lambda: list(children(process.pid)), "no process checks the file")[0]
            self.assertEqual(json.loads(process.stdout.readline())["code"], 0)
            for path, number, code in ((paths[0], signal.SIGTERM, 1), (paths[1], signal.SIGKILL, 75)):
                os.kill(child(), number)
                answer = json.loads(process.stdout.readline())
                self.assertEqual((answer["file"], answer["code"]), (path, code))
                self.assertIn(f"ended by signal {number:d},", answer["reason"])
            last = child()
            process.terminate()
            self.assertEqual((process.wait(20), process.stdout.read(), process.stderr.read()), (-signal.SIGTERM, b"", b""))
        _, status = wait_until(lambda: any(ended := os.waitpid(last, os.WNOHANG)) and ended, "it goes on without its parent")
        # It may notice by itself, when its parent ended before it could ask to be ended with it.
        self.assertIn(status, (signal.SIGKILL, 0))

    def test_check_goes_on_after_a_limit(self):
        cases = {self.pipe("pipe"): (75, "the time limit was reached"), document("red"): (0, None)}
        options = ["--limit-time", "1"]
        if "PAINT_SANITIZED" not in os.environ:  # The sanitizers reserve terabytes.
            cases = {self.write("large", bytes(1 << 26)): (75, "the memory limit was reached"), **cases}
            options += ["--limit-memory", "50"]
        result = run(PAINTDOC, "check", *options, "--json", *cases)
        self.assertEqual((result.returncode, result.stderr), (75, b""))
        answers = [json.loads(line) for line in result.stdout.splitlines()]
        self.assertEqual({answer["file"]: (answer["code"], answer["reason"]) for answer in answers}, cases)

    def test_check_of_many_files(self):
        # Few descriptors, and a caller that ignores the ends of processes.
        few = 'ulimit -n 16; trap "" CHLD; exec "$@"'
        paths = [document("red"), document("no paint data")] * 50
        result = run("bash", "-c", few, "-", PAINTDOC, "check", *paths)
        self.assertEqual((result.returncode, result.stderr), (1, b""))
        self.assertEqual(result.stdout.count(b": a readable"), 50)
        with open("/dev/full", "wb") as full:
            # It would wait for the pipe.
            result = subprocess.run([PAINTDOC, "check", document("red"), self.pipe("pipe")], stdout=full,
                                    stderr=subprocess.PIPE, timeout=60)
        self.assertEqual((result.returncode, result.stderr.count(b"\n")), (74, 1))

    def test_fonts_are_listed(self):
        path = os.path.join(EXAMPLES, "text.paintdoc")
        info, rendered, checked = (json.loads(run(PAINTDOC, *command).stdout) for command in (
            ["info", "--json", path], ["render", "--json", path, self.out], ["check", "--json", path]))
        self.assertEqual(info["fonts"], rendered["fonts"])
        self.assertEqual(info["fonts"], checked["fonts"])
        fonts = {font["wanted"]: font["faces"] for font in info["fonts"]}
        self.assertIn("NotoColorEmoji", fonts["HelveticaNeue"])
        self.assertIn(f'font "HelveticaNeue" 22 drawn with {" ".join(fonts["HelveticaNeue"])}\n'.encode(),
                      run(PAINTDOC, "info", path).stdout)

    def test_info(self):
        result = run(PAINTDOC, "info", "--json", document("background"))
        self.assertEqual(result.returncode, 0)
        info = json.loads(result.stdout)
        self.assertEqual((info["canvas"], info["version"], info["resolution"]), ([64, 64], 22, None))
        self.assertEqual([draw["class"] for draw in info["draws"]], ["DrawImage2", "DrawEllipse"])
        self.assertEqual(info["draws"][0]["flags"], ["background"])
        self.assertEqual(info["draws"][1]["bounds"], [8, 8, 16, 16])
        self.assertIn(b'\n  "version": 22,\n', result.stdout)
        self.assert_one_line(run(PAINTDOC, "info", "--json", document("version 23")), 2, PAINTDOC, "newer version")
        nested = json.loads(run(PAINTDOC, "info", "--json", document("nested groups")).stdout)
        self.assertEqual(nested["draws"][1]["draws"][1]["draws"][0]["name"], "deep")
        text = run(PAINTDOC, "info", document("nested groups")).stdout.decode()
        self.assertIn('\n      2.2.1 DrawImage "deep" bounds 0 0 8 8 bitmap\n', text)

    def test_info_of_the_writer(self):
        path = self.write("a", layers(SavedDate=1e18, AppName="\x1b[31mA", BundleIdentifier=7, AppVersion=None))
        info = json.loads(run(PAINTDOC, "info", "--json", path).stdout)
        self.assertEqual(info["saved"], None)
        self.assertEqual(info["application"], {"name": "\x1b[31mA", "identifier": None, "version": "1.0", "build": None})
        text = run(PAINTDOC, "info", path).stdout
        self.assertIn(b'\napplication "?[31mA" version 1.0\n', text)
        self.assertNotIn(b"saved", text)
        self.assertIn(b'\n  3 DrawGroup bounds 24 4 10 10\n    3.1 DrawRectangle "blue" bounds 24 4 8 8\n', text)
        self.assertIn(b"\nsaved 2023-11-14T22:13:20Z\n", run(PAINTDOC, "info", self.write("b", layers())).stdout)

    def test_info_of_texts_and_pictures(self):
        doc, long = PaintDocument(64, 64), "Zwölf\x1b\n" + "ä" * 99
        style = doc.style("Nowhere-Bold", 12.5)
        doc.add("DrawText", outline=doc.rectangle(0, 0, 64, 64), Text=doc.text((long, style), ("b", doc.style("Nowhere-Bold", 8))))
        doc.add("DrawImage2", outline=doc.rectangle(0, 0, 9, 9), ImageData=doc.archive.mutable_data(png([(1, 2, 3)] * 15, 5)))
        doc.add("DrawSVG", outline=doc.rectangle(0, 0, 9, 9), SVGData=doc.archive.mutable_data(SVG_ARC.replace(b"3 0 0", b"2 0 0")))
        path = self.write("a", doc.to_bytes())
        text, bitmap, svg = json.loads(run(PAINTDOC, "info", "--json", path).stdout)["draws"]
        font, = text["text"]["fonts"]
        self.assertEqual((text["text"]["string"], font["wanted"], font["sizes"]), (long + "b", "Nowhere-Bold", [8, 12.5]))
        self.assertNotIn("Nowhere-Bold", font["faces"])
        self.assertEqual(bitmap["picture"], {"kind": "bitmap", "format": "PNG", "size": [5, 3], "leftOut": None})
        self.assertEqual(svg["picture"], {"kind": "SVG picture", "format": "SVG", "size": [9, 9], "leftOut": None})
        lines = run(PAINTDOC, "info", path).stdout.decode().splitlines()
        self.assertIn('text "Zwölf??%s...", font "Nowhere-Bold" 8 12.5 drawn with %s' % ("ä" * 26, " ".join(font["faces"])), lines[-3])
        self.assertTrue(lines[-2].endswith(" bitmap PNG 5 x 3"), lines[-2])

    @unittest.skipUnless(shutil.which("update-mime-database") and shutil.which("gio"),
                         "shared-mime-info or gio is not installed")
    def test_documents_are_recognised_by_content(self):
        packages = os.path.join(self.folder.name, "mime", "packages")
        os.makedirs(packages)
        shutil.copy(os.path.join(DATA, "paint-document.xml"), packages)
        run("update-mime-database", os.path.dirname(packages))
        environment = dict(os.environ, XDG_DATA_HOME=self.folder.name)
        plain_list = self.write("list", b"bplist00\xa0\x08\0\0\0\0\0\0\x01\x01" + b"\0" * 7 + b"\x01" + b"\0" * 15 + b"\x09")
        for path, expected in ((self.write("unnamed", read(document("all classes"))), True),
                               (self.write("empty.paintdoc", b"x"), True), (plain_list, False)):
            result = run("gio", "info", "-a", "standard::content-type", path, env=environment)
            self.assertEqual(b"application/x-paint-document" in result.stdout, expected, (path, result.stdout))

    def assert_limited(self, reason, *command, **options):
        result = run(*command, **options)
        self.assertEqual(result.returncode, 75, (command, result.stderr))
        self.assertEqual(result.stderr.count(b"\n"), 1, result.stderr)
        self.assertIn(reason, result.stderr)
        self.assertTrue(not os.path.exists(self.out) or os.path.getsize(self.out) == 0)

    @unittest.skipIf("PAINT_SANITIZED" in os.environ, "the sanitizers reserve terabytes")
    def test_memory_is_limited(self):
        # Only where the canvas is not much larger than the thumbnail it is composed whole.
        largest = document("white largest canvas")
        self.assert_limited(b"memory", THUMBNAILER, "--limit-memory", "64", "-s", "10000", largest, self.out)
        self.assertEqual(run(THUMBNAILER, "--limit-memory", "64", "-s", "512", largest, self.out).returncode, 0)

    @unittest.skipIf("PAINT_SANITIZED" in os.environ, "the sanitizers reserve terabytes")
    def test_no_lack_of_memory_is_a_crash(self):
        # From what the loader needs on: before main, while decoding, while fonts are looked for.
        for example, kilobytes in (("composition", range(8192, 13312, 32)), ("text", range(46080, 51200, 64))):
            path = os.path.join(EXAMPLES, example + ".paintdoc")
            ends = {run("bash", "-c", 'ulimit -v "$0"; exec "$@"', str(limit), THUMBNAILER, path, self.out).returncode
                    for limit in kilobytes}
            self.assertIn(75, ends)
            self.assertLessEqual(ends, {0, 75, 127}, example)  # 127 is the loader's

    def test_processor_time_is_limited(self):
        self.assert_limited(b"time limit", THUMBNAILER, "--limit-time", "1", "-s", "10000",
                            document("hours of painting"), self.out)

    def test_elapsed_time_is_limited(self):
        # Somebody holds the pipe open and never writes.
        reading, writing = os.pipe()
        self.assert_limited(b"time limit", PAINTDOC, "--limit-time", "1", "render", "-", self.out, stdin=reading)
        os.close(reading)
        os.close(writing)

    def test_too_large_a_picture(self):
        for options in (["--scale", "1000000"], ["--size", "16384x16384", "--fit=stretch", "--enlarge"]):
            self.assert_limited(b"too large a picture", PAINTDOC, "render", document("red"), self.out, *options)

    def test_output_is_limited(self):
        self.assert_limited(b"File too large", PAINTDOC, "--limit-output", "1", "render",
                            document("megabytes of colours"), self.out)
        self.assertEqual(run(PAINTDOC, "render", document("megabytes of colours"), self.out).returncode, 0)
        self.assertGreater(os.path.getsize(self.out), 1 << 20)

    @unittest.skipIf("PAINT_SANITIZED" in os.environ, "the sanitizers' checks open files")
    def test_open_files_are_limited(self):
        # A caller that leaks descriptors: every number below the limit is taken.
        leak = 'for ((n = 3; n < 64; n++)); do eval "exec $n</dev/null"; done; exec "$@"'
        self.assert_limited(b"open files", "bash", "-c", leak, "-", THUMBNAILER, document("red"), self.out)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
