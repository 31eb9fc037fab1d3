#!/usr/bin/env python3
"""Runs the programs as desktops and people do:  programs_test.py BIN_DIR DOCUMENTS_DIR EXAMPLES_DIR
DATA_DIR

Exit codes, one line on standard error, and an output path that is left absent or empty on failure.
"""
import json
import os
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest
import zlib

BIN, DOCUMENTS, EXAMPLES, DATA = (os.path.abspath(path) for path in sys.argv[1:5])
THUMBNAILER = os.path.join(BIN, "paint-thumbnailer")
PAINTDOC = os.path.join(BIN, "paintdoc")


def document(name):
    return os.path.join(DOCUMENTS, name + ".paintdoc")


def read(path):
    with open(path, "rb") as file:
        return file.read()


def run(*command, **options):
    return subprocess.run(command, capture_output=True, timeout=120, **options)


def read_png(path):
    """Width, height, channels and rows of pixels of an 8-bit PNG without interlacing."""
    data = read(path)
    assert data[:8] == b"\x89PNG\r\n\x1a\n"
    width, height, bits, color = struct.unpack(">IIBB", data[16:26])
    assert bits == 8
    channels = {2: 3, 6: 4, 0: 1, 4: 2}[color]
    position, packed = 8, b""
    while position < len(data):
        length, kind = struct.unpack(">I4s", data[position:position + 8])
        if kind == b"IDAT":
            packed += data[position + 8:position + 8 + length]
        position += length + 12
    raw, rows, previous = zlib.decompress(packed), [], bytes(width * channels)
    for y in range(height):
        start = y * (width * channels + 1)
        row = unfilter(raw[start], bytearray(raw[start + 1:start + 1 + width * channels]), previous, channels)
        rows.append([tuple(row[x * channels:(x + 1) * channels]) for x in range(width)])
        previous = row
    return width, height, channels, rows


def unfilter(kind, row, above, step):
    for i in range(len(row)):
        left = row[i - step] if i >= step else 0
        corner = above[i - step] if i >= step else 0
        if kind == 1:
            row[i] = row[i] + left & 255
        elif kind == 2:
            row[i] = row[i] + above[i] & 255
        elif kind == 3:
            row[i] = row[i] + (left + above[i]) // 2 & 255
        elif kind == 4:
            p = left + above[i] - corner
            nearest = min((abs(p - left), 0, left), (abs(p - above[i]), 1, above[i]), (abs(p - corner), 2, corner))
            row[i] = row[i] + nearest[2] & 255
    return row


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
                              3: ["too large canvas"],
                              4: ["negative canvas", "nan canvas", "no canvas size", "huge numbers canvas"]}.items():
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
        self.assertEqual(run(PAINTDOC, "render", document("version 23"), self.out + "2").returncode, 2)

    def test_render_keeps_straight_alpha(self):
        self.assertEqual(run(PAINTDOC, "render", document("half red"), self.out).returncode, 0)
        _, _, channels, rows = read_png(self.out)
        self.assertEqual((channels, rows[0][0]), (4, (255, 0, 0, 128)))

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

    def test_limits(self):
        result = run(THUMBNAILER, "--limit-memory", "64", document("white largest canvas"), self.out)
        if "PAINT_SANITIZED" not in os.environ:
            self.assertEqual(result.returncode, 75, result.stderr)
            self.assertFalse(os.path.exists(self.out))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
