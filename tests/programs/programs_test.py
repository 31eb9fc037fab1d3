#!/usr/bin/env python3
"""Runs the programs as desktops and people do:  programs_test.py BIN_DIR DOCUMENTS_DIR EXAMPLES_DIR
DATA_DIR

Exit codes, one line on standard error, and an output path that is left absent or empty on failure.
"""
import base64
import json
import os
import pty
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

from program_support import png_texts, read, read_png, run

BIN, DOCUMENTS, EXAMPLES, DATA = (os.path.abspath(path) for path in sys.argv[1:5])
THUMBNAILER = os.path.join(BIN, "paint-thumbnailer")
PAINTDOC = os.path.join(BIN, "paintdoc")


def document(name):
    return os.path.join(DOCUMENTS, name + ".paintdoc")


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

    def assert_fails(self, status, path, *arguments, reason=""):
        """With an output that is absent, and with one that is there and empty."""
        for existing in (False, True):
            if existing:
                open(self.out, "wb").close()
            result = run(THUMBNAILER, *arguments, path, self.out)
            self.assertEqual(result.returncode, status, (path, result.stderr))
            self.assertEqual(result.stderr.count(b"\n"), 1, result.stderr)
            self.assertIn(reason.encode(), result.stderr)
            self.assertEqual(result.stdout, b"")
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
        for arguments in ([], ["one"], ["-s", "0", "a", "b"], ["-s", "x", "a", "b"], ["--frobnicate", "a", "b"]):
            self.assertEqual(run(THUMBNAILER, *arguments).returncode, 64, arguments)
        self.assertEqual(run(PAINTDOC).returncode, 64)
        version = run(THUMBNAILER, "--version")
        self.assertEqual(version.returncode, 0)
        self.assertTrue(version.stdout.startswith(b"paint-thumbnailer "))

    def test_no_environment_is_needed(self):
        self.assertEqual(run(THUMBNAILER, document("red"), self.out, env={}, cwd="/").returncode, 0)
        self.assertEqual(run(THUMBNAILER, document("red"), self.out, env={"LC_ALL": "de_DE.UTF-8"}).returncode, 0)

    def test_render(self):
        result = run(PAINTDOC, "render", document("red"), self.out)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(read_png(self.out)[:2], (100, 50))
        self.assertEqual(run(PAINTDOC, "render", document("version 23"), self.out + "2.png").returncode, 2)

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
        result = run(THUMBNAILER, "file://" + document("red") + "%00.png", self.out)
        self.assertEqual((result.returncode, os.path.exists(self.out)), (1, False))

    def test_an_arc_that_the_built_in_engine_refuses(self):
        text = (b'<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9">'
                b'<path d="M1 1A2 3 0 0 1 5 5" fill="#f00"/></svg>')
        path = self.write("a.svg", text)
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
        result = run(PAINTDOC, "render", "--json", document("red"), pattern, "80", "20", "400")
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
        result = run(PAINTDOC, "render", document("red"), os.path.join(self.folder.name, "%s", "a"), "30")
        self.assertEqual(read_png(os.path.join(self.folder.name, "30", "a"))[:2], (30, 15))

    def test_render_formats(self):
        starts = {"jpg": b"\xff\xd8\xff", "JPEG": b"\xff\xd8\xff", "webp": b"RIFF", "tif": (b"II*\0", b"MM\0*"), "png": b"\x89PNG"}
        for ending, start in starts.items():
            path = os.path.join(self.folder.name, "a." + ending)
            self.assertEqual(run(PAINTDOC, "render", document("half red"), path).returncode, 0, ending)
            self.assertTrue(read(path).startswith(start), ending)
        path = os.path.join(self.folder.name, "a.png")
        self.assertEqual(run(PAINTDOC, "render", "--format", "webp", document("red"), path).returncode, 0)
        self.assertTrue(read(path).startswith(b"RIFF"))
        for arguments in (["a.doc"], ["--format", "bmp", "a.png"], ["--quality", "2", "a.jpg"], ["-", "10", "20"],
                          ["--json", "-"], ["a.png", "0"]):
            result = run(PAINTDOC, "render", document("red"), *arguments, cwd=self.folder.name)
            self.assertEqual(result.returncode, 64, arguments)

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
        self.assertEqual(run(PAINTDOC, "render", document("half red"), self.out).returncode, 0)
        data = read(document("half red"))
        result = run(PAINTDOC, "render", "-", "-", input=data)
        self.assertEqual((result.returncode, result.stdout), (0, read(self.out)))
        with open(document("half red"), "rb") as file:
            self.assertEqual(run(PAINTDOC, "render", "-", "-", stdin=file).stdout, read(self.out))
        self.assertEqual(run(PAINTDOC, "info", "-", input=data).stdout,
                         run(PAINTDOC, "info", document("half red")).stdout)
        self.assertEqual(run(PAINTDOC, "check", "-", input=b"").returncode, 1)
        self.assertEqual(run(PAINTDOC, "render", "-", "-", stdin=subprocess.DEVNULL).returncode, 1)
        with open("/dev/full", "wb") as full:
            self.assertEqual(subprocess.run([PAINTDOC, "render", document("red"), "-"], stdout=full,
                                            stderr=subprocess.PIPE, timeout=120).returncode, 74)

    def test_progress_is_for_terminals(self):
        # A pipe gets nothing, a terminal a line that is removed again.
        paths = [document("all classes")] * 4000
        controller, terminal = pty.openpty()
        with subprocess.Popen([PAINTDOC, "check", "--json", *paths], stdout=subprocess.PIPE, stderr=terminal) as process:
            os.close(terminal)
            report = json.loads(process.stdout.read())
        self.assertEqual(len(report), 4000)
        shown = b""
        try:
            while part := os.read(controller, 65536):
                shown += part
        except OSError:
            pass  # How a terminal tells that nobody writes to it any more.
        os.close(controller)
        if shown:  # The run may have been shorter than the quiet second.
            self.assertRegex(shown, rb"paintdoc: \d+ of 4000")
            self.assertTrue(shown.endswith(b"\r\x1b[K"))
        self.assertEqual(run(PAINTDOC, "check", "--json", *paths).stderr, b"")

    def test_check_report(self):
        result = run(PAINTDOC, "check", "--json", document("red"), self.folder.name)
        self.assertEqual(result.returncode, 1)
        report = json.loads(result.stdout)
        self.assertEqual([entry["code"] for entry in report], [0, 1])
        self.assertEqual(report[1], {"file": self.folder.name, "code": 1, "result": "not a readable document",
                                     "reason": "Is a directory", "leftOut": []})

    def test_check(self):
        result = run(PAINTDOC, "check", document("red"), document("version 23"), document("no paint data"))
        self.assertEqual(result.returncode, 2)
        lines = result.stdout.decode().splitlines()
        self.assertEqual([line.rsplit(": ", 1)[1] for line in lines],
                         ["a readable document", "written by a newer version of the format",
                          "not a readable document"])
        self.assertEqual(run(PAINTDOC, "check", document("red"), document("too large canvas")).returncode, 3)

    def test_info(self):
        result = run(PAINTDOC, "info", "--json", document("background"))
        self.assertEqual(result.returncode, 0)
        info = json.loads(result.stdout)
        self.assertEqual((info["canvas"], info["version"], info["resolution"]), ([64, 64], 22, None))
        self.assertEqual([draw["class"] for draw in info["draws"]], ["DrawImage2", "DrawEllipse"])
        self.assertEqual(info["draws"][0]["flags"], ["background"])
        self.assertEqual(info["draws"][1]["bounds"], [8, 8, 16, 16])
        nested = json.loads(run(PAINTDOC, "info", "--json", document("nested groups")).stdout)
        self.assertEqual(nested["draws"][1]["draws"][1]["draws"][0]["name"], "deep")
        text = run(PAINTDOC, "info", document("nested groups")).stdout.decode()
        self.assertIn('\n      DrawImage "deep" bounds 0 0 8 8\n', text)

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
        self.assert_limited(b"memory", THUMBNAILER, "--limit-memory", "64", document("white largest canvas"), self.out)

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
        self.assert_limited(b"time limit", THUMBNAILER, "--limit-time", "1", document("hours of painting"), self.out)

    def test_elapsed_time_is_limited(self):
        # Somebody holds the pipe open and never writes.
        reading, writing = os.pipe()
        self.assert_limited(b"time limit", PAINTDOC, "--limit-time", "1", "render", "-", self.out, stdin=reading)
        os.close(reading)
        os.close(writing)

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
