#!/usr/bin/env python3
"""Runs the programs on documents with pictures that do harm:  pictures_test.py BIN_DIR LIBEXEC_DIR EXAMPLES_DIR

What cannot be drawn is left out and told, the rest of the document is drawn, and no process stays behind.
LIBEXEC_DIR holds the folder paintengine with the program that draws pictures.
"""
import base64
import collections
import glob
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

BIN, LIBEXEC, EXAMPLES = (os.path.abspath(path) for path in sys.argv[1:4])
PREFIX = os.path.dirname(BIN)
sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))

import hostile_pictures as hostile
from hostile_pictures import CLEAR, GUILTY, HEIGHT, INNOCENT, RECTANGLE, RED, WIDTH, HostileDocument, hostile_document
from make_pdfs import pdf
from picture_documents import claiming, png
from program_support import HELPER, adopt_orphans, adopted_helpers, end_helpers, read, read_png, run, wait_for_helper

SANITIZED = "PAINT_SANITIZED" in os.environ

DRAWN = None
UNREADABLE = "it cannot be read"
TOO_LARGE = "it is too large"
TIME = "it takes too much time"
STUCK = "it does not come to an end"
MEMORY = "it takes too much memory"
CRASHED = "paint-picture-helper ended while it drew it"
NONSENSE = "paint-picture-helper answered nonsense"
BUDGET = "the pictures before it took all the time"
MISSING = "paint-picture-helper is not installed"
NOT_STARTED = "paint-picture-helper cannot be started"
OUTDATED = "paint-picture-helper is of another version"

KINDS = {"DrawPDF": "PDF page", "DrawSVG": "SVG picture", "DrawImage2": "bitmap", "DrawImage": "bitmap"}
GREEN = (0, 255, 0, 255)
LEFT, RIGHT = (35, 65), (65, 65)  # in the halves of the guilty picture
BUILT_IN = ("--svg", "built-in")

# ends: what may become of the picture. shown: colours of its halves if it is drawn; None for anything.
Case = collections.namedtuple("Case", "name class_name picture ends shown rect options",
                              defaults=(None, GUILTY, ()))


def page(name, picture, *ends, **more):
    return Case(name, "DrawPDF", picture, ends, **more)


def drawing(name, picture, *ends, **more):
    return Case(name, "DrawSVG", picture, ends, **more)


LARGE = (30, 5, 30_000, 30_000)
QUICK = [
    page("character map of itself", hostile.character_map_of_itself, CRASHED),
    # The sanitizers take their time to look at a deep stack.
    page("function in braces", hostile.function_in_braces, CRASHED, *[TIME] * SANITIZED),
    page("glyph of itself", lambda: hostile.glyph_of_itself(1000), CRASHED),
    page("forms in a ring", hostile.forms_in_a_ring, DRAWN, shown=(RED, CLEAR)),
    page("large page, small", lambda: hostile.page_of_size(30_000), DRAWN, shown=(RED, CLEAR)),
    page("large page", lambda: hostile.page_of_size(30_000), TOO_LARGE, rect=LARGE),
    page("no page", lambda: b"%PDF-1.4\nnothing", UNREADABLE),
    page("no mark of a page", lambda: b"nothing", UNREADABLE),
    drawing("arc with two radii", hostile.arc_with_two_radii, DRAWN, shown=(GREEN, GREEN)),
    drawing("arc with two radii, built in", hostile.arc_with_two_radii, CRASHED, options=BUILT_IN),
    drawing("large drawing, small", lambda: hostile.svg_of_size(30_000), DRAWN, shown=(RED, CLEAR)),
    drawing("large drawing", lambda: hostile.svg_of_size(30_000), TOO_LARGE, rect=LARGE),
    drawing("large drawing, built in", lambda: hostile.svg_of_size(30_000), TOO_LARGE, rect=LARGE, options=BUILT_IN),
    drawing("nested groups", hostile.nested_groups, UNREADABLE),
    drawing("entities of entities", hostile.entities_of_entities, UNREADABLE),
    drawing("use of itself", hostile.use_of_itself, DRAWN, shown=(GREEN, GREEN)),
    drawing("use of itself, built in", hostile.use_of_itself, DRAWN, shown=(GREEN, GREEN), options=BUILT_IN),
    drawing("uses of uses, built in", hostile.uses_of_uses, DRAWN, TIME, shown=(GREEN, GREEN), options=BUILT_IN),
    drawing("filter over a huge region", hostile.filter_over_a_huge_region, DRAWN, shown=(RED, RED)),
    drawing("no drawing", lambda: b"nothing </svg>", UNREADABLE),
    drawing("no drawing, built in", lambda: b"nothing </svg>", UNREADABLE, options=BUILT_IN),
]
# Seconds each. What takes little less than it may take can take too much on another machine.
SLOW = [
    page("forms that double", hostile.forms_that_double, TIME),
    drawing("segments used again", hostile.segments_used_again, DRAWN, TIME),
    drawing("many segments", lambda: hostile.svg_of_segments(paths=10), UNREADABLE),
    drawing("many segments, built in", lambda: hostile.svg_of_segments(paths=10), DRAWN, TIME, options=BUILT_IN),
    drawing("uses of uses", hostile.uses_of_uses, UNREADABLE, TIME),
    drawing("endless noise", hostile.filter_of_endless_noise, TIME),
    drawing("patterns of patterns", hostile.patterns_of_patterns, DRAWN, TIME),
]
LARGE_IN_MEMORY = [
    page("many segments", hostile.page_of_segments, MEMORY, TIME),
    drawing("long entity, often", hostile.long_entity_often, MEMORY, TIME),
]


def tell(pictures):
    """What the programs say of left out pictures, (title, kind, reason) each."""
    named = ", ".join(f'"{title}" ({kind}: {reason})' for title, kind, reason in pictures)
    return f"{len(pictures)} picture{'s' * (len(pictures) > 1)} left out: {named}"


def copied_programs(folder):
    """The programs with what they load, but without the program that draws pictures."""
    places = [BIN, *glob.glob(os.path.join(PREFIX, "share", "paintengine"))]
    places += [place for pattern in ("lib*/paintengine", "lib*/*/paintengine")
               for place in glob.glob(os.path.join(PREFIX, pattern)) if not place.startswith(LIBEXEC + os.sep)]
    for place in places:
        copy = os.path.join(folder, os.path.relpath(place, PREFIX))
        os.makedirs(copy)
        for file in os.scandir(place):
            if place != BIN or file.name in ("paintdoc", "paint-thumbnailer"):
                shutil.copy(file.path, copy)
    helper = os.path.join(folder, os.path.relpath(LIBEXEC, PREFIX), "paintengine", HELPER)
    os.makedirs(os.path.dirname(helper))
    return helper


class PictureTest(unittest.TestCase):
    paintdoc, thumbnailer = os.path.join(BIN, "paintdoc"), os.path.join(BIN, "paint-thumbnailer")

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.addCleanup(end_helpers, 0)
        self.out = os.path.join(self.folder.name, "out.png")

    def write(self, name, data):
        path = os.path.join(self.folder.name, name)
        with open(path, "wb") as file:
            file.write(data)
        return path

    def use_programs_in(self, folder):
        self.paintdoc, self.thumbnailer = (os.path.join(folder, os.path.basename(BIN), name)
                                           for name in ("paintdoc", "paint-thumbnailer"))

    def assert_no_helper_is_left(self, least=1, most=None):
        """And that so many ended by themselves."""
        ended, killed = end_helpers()
        self.assertEqual(killed, 0)
        self.assertGreaterEqual(ended, least)
        if most is not None:
            self.assertLessEqual(ended, most)

    def assert_pixels(self, expected):
        rows = read_png(self.out)[3]
        self.assertEqual({place: rows[place[1]][place[0]] for place in expected}, expected)

    def rendered(self, path, *options, status=0):
        """What `render` tells of left out pictures, after its way to say of which file."""
        result = run(self.paintdoc, *options, "render", path, self.out)
        self.assertEqual((result.returncode, result.stdout), (status, b""), result.stderr)
        return self.told(result, path)

    def told(self, result, path):
        text, start = result.stderr.decode(), f"paintdoc: {path}: "
        if not text:
            return ""
        self.assertTrue(text.startswith(start) and text.count("\n") == 1 and text.endswith("\n"), text)
        return text[len(start):-1]

    def end_of(self, case, told):
        """The one end of a case's picture that was told."""
        for end in case.ends:
            if told == ("" if end is DRAWN else tell([("guilty", KINDS[case.class_name], end)])):
                return end
        self.fail(f"{told!r}, not {case.ends}")

    def assert_guilty_pixels(self, case, end):
        if end is not DRAWN:
            self.assert_pixels({LEFT: CLEAR, RIGHT: CLEAR})
        elif case.shown is not None:
            self.assert_pixels(dict(zip((LEFT, RIGHT), case.shown)))

    def assert_thumbnail(self, path):
        result = run(self.thumbnailer, path, self.out + ".small.png")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, b"", b""))
        self.assertEqual(read_png(self.out + ".small.png")[:2], hostile.CANVAS)

    def assert_checked(self, case, path):
        result = run(self.paintdoc, *case.options, "check", path)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        start, _, told = result.stdout.decode().rstrip("\n").partition(": a readable document")
        self.assertEqual(start, path)
        self.end_of(case, told.removeprefix(", "))
        result = run(self.paintdoc, *case.options, "check", "--json", path)
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        self.assertIn(json.loads(result.stdout)["leftOut"], [
            [] if end is DRAWN else [{"title": "guilty", "kind": KINDS[case.class_name], "reason": end}]
            for end in case.ends])

    def assert_info(self, case, path):
        text = run(self.paintdoc, *case.options, "info", path)
        whole = run(self.paintdoc, *case.options, "info", "--json", path)
        self.assertEqual((text.returncode, text.stderr, whole.returncode, whole.stderr), (0, b"", 0, b""))
        kind = KINDS[case.class_name]
        line = next(line for line in text.stdout.decode().splitlines() if '"guilty"' in line)
        told = re.fullmatch(f'  2 {case.class_name} "guilty" bounds {" ".join(map(str, case.rect))} {kind}'
                            r"( [A-Z]+)?( \d+ x \d+)?( left out: (?P<end>.*))?", line)
        self.assertIsNotNone(told, line)
        self.assertIn(told["end"] or DRAWN, case.ends)
        rectangle, guilty, *innocent = json.loads(whole.stdout)["draws"]
        self.assertNotIn("picture", rectangle)
        self.assertEqual(guilty["picture"]["kind"], kind)
        self.assertIn(guilty["picture"]["leftOut"], case.ends)
        self.assertEqual([(draw["picture"]["kind"], draw["picture"]["leftOut"]) for draw in innocent],
                         [(kind, None) for kind in ("PDF page", "SVG picture", "bitmap")])


class HostilePictures(PictureTest):
    def test_every_program_goes_on(self):
        for case in QUICK:
            with self.subTest(case.name):
                path = self.write("a.paintdoc", hostile_document(case.class_name, case.picture(), case.rect))
                end = self.end_of(case, self.rendered(path, *case.options))
                self.assert_guilty_pixels(case, end)
                self.assert_pixels(RECTANGLE | INNOCENT if case.shown or case.rect == GUILTY else RECTANGLE)
                self.assert_no_helper_is_left()
                self.assert_thumbnail(path)
                self.assert_checked(case, path)
                self.assert_info(case, path)
                self.assert_no_helper_is_left(least=5)

    def assert_slow(self, cases):
        for case in cases:
            with self.subTest(case.name):
                path = self.write("a.paintdoc", hostile_document(case.class_name, case.picture(), case.rect))
                small = self.out + ".small.png"
                with subprocess.Popen([self.thumbnailer, path, small], stdout=subprocess.PIPE,
                                      stderr=subprocess.PIPE) as thumbnailer:
                    told = self.rendered(path, *case.options)
                    self.assertEqual((*thumbnailer.communicate(timeout=120), thumbnailer.returncode), (b"", b"", 0))
                self.assertEqual(read_png(small)[:2], hostile.CANVAS)
                self.assert_no_helper_is_left(least=2)
                self.assert_guilty_pixels(case, self.end_of(case, told))
                self.assert_pixels(RECTANGLE | INNOCENT)

    def test_what_comes_after_an_unreadable_picture_is_itself(self):
        # Whatever the sizes: pixels go through memory that one picture leaves to the next.
        sizes = (WIDTH, HEIGHT), (300, 300), (1500, 1500)
        broken, green = b"nothing </svg>", hostile.svg(hostile.GREEN)
        for first in (None, *sizes):
            for second in sizes:
                with self.subTest(first=first, second=second):
                    document = HostileDocument()
                    if first is not None:
                        document.show("DrawPDF", pdf(hostile.BOX, b"1 0 0 rg 0 0 40 20 re f"), (30, 5, *first), "first")
                    document.show("DrawSVG", broken, (30, 5, *second))
                    document.show("DrawSVG", green, GUILTY, "last")
                    path = self.write("a.paintdoc", document.to_bytes())
                    self.assertEqual(self.rendered(path), tell([("guilty", "SVG picture", UNREADABLE)]))
                    self.assert_pixels({LEFT: GREEN, RIGHT: GREEN})

    def test_slow_pictures_are_given_up(self):
        self.assert_slow(SLOW)

    @unittest.skipIf(SANITIZED, "the sanitizers reserve terabytes")
    def test_large_pictures_are_given_up(self):
        self.assert_slow(LARGE_IN_MEMORY)

    def test_what_waits_for_itself_is_given_up_and_nothing_after_it_is_tried(self):
        path = self.write("a.paintdoc", hostile_document("DrawPDF", hostile.glyph_of_itself(1)))
        commands = {"render": ["render", path, self.out], "check": ["check", "--json", path],
                    "info": ["info", "--json", path]}
        processes = {name: subprocess.Popen([self.paintdoc, *command], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                     for name, command in commands.items()}
        processes["thumbnail"] = subprocess.Popen([self.thumbnailer, path, self.out + ".small.png"],
                                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        written = {}
        for name, process in processes.items():
            written[name] = process.communicate(timeout=240)
            self.assertEqual(process.returncode, 0, (name, written[name]))
        left_out = [("guilty", "PDF page", STUCK), ("innocent page", "PDF page", BUDGET),
                    ("innocent drawing", "SVG picture", BUDGET)]
        self.assertEqual(written["render"], (b"", f"paintdoc: {path}: {tell(left_out)}\n".encode()))
        self.assertEqual(written["thumbnail"], (b"", b""))
        self.assertEqual(json.loads(written["check"][0])["leftOut"],
                         [dict(zip(("title", "kind", "reason"), picture)) for picture in left_out])
        pictures = [draw["picture"]["leftOut"] for draw in json.loads(written["info"][0])["draws"][1:]]
        self.assertEqual(pictures, [STUCK, BUDGET, BUDGET, None])
        self.assert_pixels(RECTANGLE | hostile.INNOCENT_BITMAP | {LEFT: CLEAR, RIGHT: CLEAR})
        self.assert_no_helper_is_left(least=4)

    def test_no_helper_outlives_a_program_that_is_killed(self):
        for name, data in (("busy", hostile.forms_that_double()), ("waiting", hostile.glyph_of_itself(1))):
            path = self.write(name, hostile_document("DrawPDF", data))
            for command in ([self.paintdoc, "render", path, self.out], [self.thumbnailer, path, self.out]):
                with self.subTest(name, command=command[0]):
                    with subprocess.Popen(command) as process:
                        helper = wait_for_helper()
                        time.sleep(0.5)
                        # Still in the middle of it.
                        self.assertIn(adopted_helpers()[helper], "RS")
                        process.kill()
                    self.assert_no_helper_is_left(least=1, most=1)

    def test_no_helper_outlives_a_program_that_reaches_its_limit(self):
        path = self.write("a.paintdoc", hostile_document("DrawPDF", hostile.glyph_of_itself(1)))
        self.assertEqual(self.rendered(path, "--limit-time", "1", status=75), "the time limit was reached")
        self.assertFalse(os.path.exists(self.out))
        self.assert_no_helper_is_left(least=1, most=1)

    def test_files_that_a_picture_names_are_not_read(self):
        # Beside the programs, where the helper may read.
        copied = os.path.join(self.folder.name, "programs")
        helper = copied_programs(copied)
        shutil.copy(os.path.join(LIBEXEC, "paintengine", HELPER), helper)
        self.use_programs_in(copied)
        files = hostile.secret_files()
        folders = [os.path.dirname(helper), self.folder.name]
        for folder in folders:
            for name, data in files.items():
                with open(os.path.join(folder, name), "wb") as file:
                    file.write(data)

        def render(picture, options):
            path = self.write("a.paintdoc", hostile_document("DrawSVG", picture, innocent=False))
            return self.rendered(path, *options), read(self.out)

        inside = lambda name: "data:image/%s;base64,%s" % (
            {"png": "png", "svg": "svg+xml"}[name[-3:]], base64.b64encode(files[name]).decode())
        for options in ((), BUILT_IN):
            green = render(hostile.svg(hostile.GREEN), options)
            self.assertEqual(green[0], "")
            self.assert_pixels({LEFT: GREEN, RIGHT: GREEN})
            nothing = render(b"</svg>", options)[1]
            for form in ("file://%s/%s", "%s/%s", "file:%s/%s"):
                for folder in folders:
                    url_of = lambda name: form % (folder, name)
                    for name, picture in [*hostile.images(url_of), *hostile.references(url_of)]:
                        self.assertEqual(render(picture, options), green, (options, url_of(name), name))
                    for name, picture in hostile.references_of_entities(url_of):
                        told, pixels = render(picture, options)
                        self.assertIn(pixels, (green[1], nothing), (options, url_of(name), name))
                        self.assertEqual(told == "", pixels == green[1], told)
        # The same pictures do show what they bring along.
        for name, picture in hostile.images(inside):
            self.assertNotEqual(render(picture, ()), green, name)
        self.assert_no_helper_is_left()


class Reports(PictureTest):
    def test_bitmaps_that_cannot_be_decoded(self):
        good = png([RED] * 400, 20)
        for name, class_name, key, data, end in (
                ("garbage", "DrawImage2", "ImageData", b"garbage", UNREADABLE),
                ("start of a PNG only", "DrawImage2", "ImageData", good[:20], UNREADABLE),
                ("start of a JPEG only", "DrawImage2", "ImageData", b"\xff\xd8\xff\xe0", UNREADABLE),
                ("large sides", "DrawImage2", "ImageData", claiming(65535, 65535, good), TOO_LARGE),
                ("object with a broken TIFF", "DrawImage2", "Image", b"II*\0garbage", UNREADABLE),
                ("old class with a broken TIFF", "DrawImage", "Image", b"II*\0garbage", UNREADABLE),
                ("old class with no TIFF", "DrawImage", "Image", b"", UNREADABLE)):
            with self.subTest(name):
                document = HostileDocument()
                archive = document.archive
                value = archive.bitmap(data) if key == "Image" else archive.data(data)
                document.draws.append(document.picture("guilty", class_name, GUILTY, **{key: value}))
                document.show_innocent()
                path = self.write("a.paintdoc", document.to_bytes())
                case = Case(name, class_name, None, (end,))
                self.assertEqual(self.end_of(case, self.rendered(path)), end)
                self.assert_pixels(RECTANGLE | INNOCENT | {LEFT: CLEAR, RIGHT: CLEAR})
                self.assert_thumbnail(path)
                self.assert_checked(case, path)
                case = case._replace(class_name="DrawImage2") if class_name == "DrawImage" else case
                self.assert_info(case, path)

    def test_one_line_whatever_the_titles(self):
        document = HostileDocument()
        for title in ("two\nlines", "\x1b[31mred", "a \"quoted\" one", "é", None):
            document.show("DrawPDF", b"nothing", title=title)
        told = self.rendered(self.write("five", document.to_bytes()))
        self.assertTrue(told.startswith("5 pictures left out: "), told)
        self.assertNotIn("others", told)
        self.assertIn('"é" (PDF page: it cannot be read)', told)
        self.assertNotIn("\x1b", told)
        for title in ("sixth", "seventh"):
            document.show("DrawPDF", b"nothing", title=title)
        path = self.write("seven", document.to_bytes())
        told = self.rendered(path)
        self.assertEqual((told.count("it cannot be read"), told.endswith(", and others")), (5, True), told)
        checked = json.loads(run(self.paintdoc, "check", "--json", path).stdout)["leftOut"]
        self.assertEqual([picture["title"] for picture in checked][::3], ["two\nlines", "é", "seventh"])
        report = json.loads(run(self.paintdoc, "render", "--json", path, self.out).stdout)
        self.assertEqual(report["leftOut"], checked)
        # What lacks the mark of its format needs no helper.
        self.assert_no_helper_is_left(least=0, most=0)

    def test_only_pictures_that_should_be_seen_are_told(self):
        document = HostileDocument()
        broken = document.archive.data(b"nothing")
        hidden = document.picture("hidden", "DrawPDF", GUILTY, PDFData=broken, visible=False)
        inner = document.picture("guilty", "DrawPDF", GUILTY, PDFData=broken)
        hidden_group = document.group([document.picture("in a hidden group", "DrawPDF", GUILTY, PDFData=broken)],
                                      visible=False)
        document.draws += [hidden, document.group([document.group([inner])]), hidden_group]
        path = self.write("a.paintdoc", document.to_bytes())
        expected = tell([("guilty", "PDF page", UNREADABLE)])
        self.assertEqual(self.rendered(path), expected)
        self.assertEqual(run(self.paintdoc, "check", path).stdout.decode(),
                         f"{path}: a readable document, {expected}\n")

    def test_several_sizes_tell_once(self):
        path = self.write("a.paintdoc", hostile_document("DrawSVG", b"nothing </svg>"))
        result = run(self.paintdoc, "render", path, self.out, "20", "40", "60")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(self.told(result, path), tell([("guilty", "SVG picture", UNREADABLE)]))


# Speaks to the engine as the helper does; tests replace parts of it.
HONEST_HELPER = '''
import fcntl, os, socket, struct

def shared(size, seals, content=b""):
    memory = os.memfd_create("", os.MFD_ALLOW_SEALING)
    os.ftruncate(memory, size)
    os.pwrite(memory, content, 0)
    fcntl.fcntl(memory, 1033, seals)
    return memory

SEAL, SHRINK, GROW, WRITE = 1, 2, 4, 8
FIXED, SEALED = SHRINK | GROW, SEAL | SHRINK | GROW | WRITE
version, greeted, magic, result, size, excess = VERSION, 0x50504831, 0x50504831, 1, (40, 20), 0

def greet():
    engine.send(struct.pack("=I28s", greeted, version))

def reply(memory=None):
    message = struct.pack("=2I2dQ", magic, result, *size, 0)
    socket.send_fds(engine, [message], [memory] if memory is not None else [])

def box(length):
    return max(65536, length)

def make_inbox(length):
    reply(shared(box(length) + excess, FIXED))

def measure():
    reply()

def draw(length):
    red = b"\\xff\\0\\0\\xff" * (length // 4)
    reply(shared(length, SEALED, red) if length > 4 << 20 else shared(box(length), FIXED, red))

def serve():
    greet()
    while request := engine.recv(256):
        order = struct.unpack_from("=I", request, 4)[0]
        length, width, height = struct.unpack_from("=Q2q", request, 32)
        if order == 2:
            make_inbox(length)
        elif order == 3:
            measure()
        else:
            draw(width * height * 4)

if os.fork():
    os._exit(0)
engine = socket.socket(fileno=3)
'''


class OtherHelpers(PictureTest):
    """Programs in a folder of their own, with another file for the helper or none."""

    @classmethod
    def setUpClass(cls):
        cls.programs = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.programs.cleanup)
        cls.helper = copied_programs(cls.programs.name)
        version = run(os.path.join(BIN, "paintdoc"), "--version").stdout.split()[1]
        cls.honest = HONEST_HELPER.replace("VERSION", repr(version))

    def setUp(self):
        super().setUp()
        self.use_programs_in(self.programs.name)
        self.install(None)

    def install(self, content, mode=0o755):
        if os.path.isdir(self.helper):
            os.rmdir(self.helper)
        elif os.path.exists(self.helper):
            os.remove(self.helper)
        if content is not None:
            with open(self.helper, "wb") as file:
                file.write(content)
            os.chmod(self.helper, mode)

    def install_script(self, changes=""):
        text = f"#!{sys.executable} -IS\n{self.honest}{changes}\nserve()\n"
        self.install(text.encode())

    def test_documents_without_pages_and_drawings_need_no_helper(self):
        with_helper = {"pictures", "poster"}
        examples = sorted(glob.glob(os.path.join(EXAMPLES, "*.paintdoc")))
        self.assertGreater(len(examples), 4)
        for example in examples:
            name, pictures = os.path.splitext(os.path.basename(example))[0], []
            for folder in (BIN, os.path.dirname(self.paintdoc)):
                for command in (["paintdoc", "info"], ["paintdoc", "check"], ["paintdoc", "render"],
                                ["paint-thumbnailer", "-s", "256"]):
                    writes = command[-1] not in ("info", "check")
                    result = run(os.path.join(folder, command[0]), *command[1:], example, *[self.out] * writes)
                    self.assertEqual(result.returncode, 0, (command, result.stderr))
                    if writes:
                        pictures.append((result.stderr, read(self.out)))
                    count = 1 if name in with_helper and folder == BIN else 0
                    self.assert_no_helper_is_left(least=count, most=count)
            if name in with_helper:
                self.assertIn(MISSING.encode(), pictures[2][0])
                self.assertNotEqual(pictures[:2], pictures[2:])
            else:
                self.assertEqual(pictures[:2], pictures[2:], name)
                self.assertEqual({told for told, _ in pictures}, {b""})

    def test_files_that_are_no_helper(self):
        left_out = lambda reason: tell([("guilty", "SVG picture", reason), ("innocent page", "PDF page", reason),
                                        ("innocent drawing", "SVG picture", reason)])
        path = self.write("a.paintdoc", hostile_document("DrawSVG", hostile.innocent_svg()))
        for name, content, mode, reason in (
                ("no file", None, 0, MISSING), ("not executable", b"#!/bin/sh\n", 0o644, MISSING),
                ("text", b"paint-picture-helper\n", 0o755, NOT_STARTED), ("empty", b"", 0o755, NOT_STARTED),
                ("of another machine", b"\x7fELF\1\1\1" + bytes(100), 0o755, NOT_STARTED),
                ("ends at once", read(shutil.which("true")), 0o755, NOT_STARTED)):
            with self.subTest(name):
                self.install(content, mode)
                self.assertEqual(self.rendered(path), left_out(reason))
                self.assert_pixels(RECTANGLE | hostile.INNOCENT_BITMAP | {LEFT: CLEAR})
                self.assert_thumbnail(path)
        self.install(None)
        os.mkdir(self.helper)
        self.assertEqual(self.rendered(path), left_out(NOT_STARTED))

    def test_a_helper_that_never_greets_is_given_up(self):
        # And does not become a process of its own either.
        path = self.write("a.paintdoc", hostile_document("DrawPDF", pdf(hostile.BOX), innocent=False))
        self.install(f"#!{sys.executable} -IS\nimport os\nos.read(3, 1)\n".encode())
        with subprocess.Popen([self.paintdoc, "render", path, self.out], stderr=subprocess.PIPE) as process:
            try:
                told = process.communicate(timeout=30)[1]
            except subprocess.TimeoutExpired:
                process.kill()
                self.fail("the program waits and waits")
        self.assertEqual((process.returncode, told.count(NOT_STARTED.encode())), (0, 1), told)
        self.assertEqual(adopted_helpers(), {})

    def test_helpers_that_answer_something_else(self):
        path, large = (self.write(name, hostile_document("DrawPDF", pdf(hostile.BOX), rect, innocent=False))
                       for name, rect in (("small", GUILTY), ("large", (30, 5, 2000, 1000))))
        self.install_script()
        for whole in (path, large):
            self.assertEqual(self.rendered(whole), "")
            self.assert_pixels(RECTANGLE | {LEFT: RED, RIGHT: RED})
        for name, changes, reason in (
                ("another version", "version = b'0.0.1'", OUTDATED),
                ("version that only starts alike", "version += b'.1'", OUTDATED),
                ("version without end", "version = b'9' * 28", OUTDATED),
                ("another mark", "greeted = 1", OUTDATED),
                ("short greeting", "def greet(): engine.send(b'hello')", OUTDATED),
                ("long greeting", "def greet(): engine.send(bytes(33))", OUTDATED),
                ("end instead of a greeting", "def greet(): os._exit(0)", NOT_STARTED),
                ("another mark in replies", "magic = 1", NONSENSE),
                ("no result", "result = 0", NONSENSE),
                ("an unknown result", "result = 99", NONSENSE),
                ("short reply", "def reply(memory=None): engine.send(b'done')", NONSENSE),
                ("no inbox", "def make_inbox(length): reply()", NONSENSE),
                ("large inbox", "excess = 1", NONSENSE),
                ("small inbox", "excess = -1", NONSENSE),
                ("inbox that can shrink", "def make_inbox(length): reply(shared(box(length), GROW))", NONSENSE),
                ("a file for inbox", "def make_inbox(length): reply(os.open('/dev/zero', os.O_RDWR))", NONSENSE),
                ("end instead of an inbox", "def make_inbox(length): os._exit(0)", CRASHED),
                ("size that is no number", "size = (float('nan'), 20)", NONSENSE),
                ("size without end", "size = (float('inf'), 20)", NONSENSE),
                ("negative size", "size = (40, -20)", NONSENSE),
                ("end instead of a size", "def measure(): os._exit(0)", CRASHED),
                ("no outbox", "def draw(length): reply()", NONSENSE),
                ("small outbox", "def draw(length): reply(shared(box(length) - 1, FIXED))", NONSENSE),
                ("large outbox", "def draw(length): reply(shared(box(length) + 1, FIXED))", NONSENSE),
                ("outbox that can shrink", "def draw(length): reply(shared(box(length), GROW))", NONSENSE),
                ("a file for outbox", "def draw(length): reply(os.open('/dev/zero', os.O_RDWR))", NONSENSE),
                ("end instead of pixels", "def draw(length): os._exit(0)", CRASHED)):
            self.assert_answers(path, name, changes, reason)
        for name, changes in (
                ("no pixels", "def draw(length): reply()"),
                ("pixels that can change", "def draw(length): reply(shared(length, FIXED))"),
                ("pixels that can be let change", "def draw(length): reply(shared(length, FIXED | WRITE))"),
                ("too few pixels", "def draw(length): reply(shared(length - 4, SEALED))"),
                ("too many pixels", "def draw(length): reply(shared(length + 4, SEALED))")):
            self.assert_answers(large, name, changes, NONSENSE)

    def assert_answers(self, path, name, changes, reason):
        with self.subTest(name):
            self.install_script(changes)
            self.assertEqual(self.rendered(path), tell([("guilty", "PDF page", reason)]))
            self.assert_pixels(RECTANGLE | {LEFT: CLEAR, RIGHT: CLEAR})
            self.assert_no_helper_is_left()


if __name__ == "__main__":
    adopt_orphans()
    unittest.main(argv=sys.argv[:1])
