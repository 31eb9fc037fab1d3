#!/usr/bin/env python3
"""The thumbnailer inside the sandbox of GNOME's thumbnail factory: no home, no /etc, no network.
sandbox_test.py EXAMPLES_DIR, with the programs installed below /usr.

The same bytes come out as outside, so text looks the same too, and nothing stays behind in /tmp."""
import glob
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

EXAMPLES = sys.argv[1]
for tests in ("support", "programs"):
    sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", tests))

from make_pdfs import pdf
from picture_documents import Pictures
from program_support import read_png

PROGRAM = "/usr/local/bin/paint-thumbnailer"
# What the desktop library of GNOME 43 runs, but for its filter of system calls.
SANDBOX = ["bwrap", "--ro-bind", "/usr", "/usr", "--ro-bind-try", "/etc/ld.so.cache", "/etc/ld.so.cache",
           *[word for name in ("bin", "lib64", "lib", "sbin") for word in ("--symlink", "/usr//" + name, "/" + name)],
           "--ro-bind-try", "/var/cache/fontconfig", "/var/cache/fontconfig",
           "--ro-bind-try", "/etc/alternatives", "/etc/alternatives",
           "--proc", "/proc", "--dev", "/dev", "--chdir", "/", "--setenv", "GIO_USE_VFS", "local",
           "--unshare-all", "--die-with-parent"]


OTHER_FONTS = """<?xml version="1.0"?>
<fontconfig><match target="pattern"><edit name="family" mode="assign" binding="strong">
<string>DejaVu Sans Mono</string></edit></match></fontconfig>
"""


def foreign_fonts():
    """A document whose page and SVG picture name fonts that they do not bring along."""
    latin = b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"
    chinese = (b"<< /Type /Font /Subtype /Type0 /BaseFont /STSong-Light /Encoding /UniGB-UCS2-H "
               b"/DescendantFonts [<< /Type /Font /Subtype /CIDFontType0 /BaseFont /STSong-Light "
               b"/CIDSystemInfo << /Registry (Adobe) /Ordering (GB1) /Supplement 2 >> >>] >>")
    page = pdf("/MediaBox [0 0 160 60] /Resources << /Font << /L 5 0 R /C 6 0 R >> >>",
               b"BT /L 20 Tf 5 35 Td (Helvetica) Tj ET BT /C 20 Tf 5 8 Td <6587673A5B574F53> Tj ET", [latin, chinese])
    lines = "".join(f'<text y="{y}" font-size="20" font-family="{family}">{text}</text>' for y, family, text in (
        (20, "serif", "Serif"), (40, "Georgia, sans-serif", "Georgia"), (60, "monospace", "\u6587\u6863 \u0416")))
    svg = f'<svg xmlns="http://www.w3.org/2000/svg" width="160" height="60">{lines}</svg>'.encode()
    document = Pictures(160, 120, background=(1, 1, 1))
    document.draws = [document.picture("page", "DrawPDF", (0, 60, 160, 60), PDFData=document.archive.data(page)),
                      document.picture("drawing", "DrawSVG", (0, 0, 160, 60), SVGData=document.archive.data(svg))]
    return document.to_bytes()


def in_sandbox(folder, document, *command):
    inside = "/tmp/gnome-desktop-file-to-thumbnail" + os.path.splitext(document)[1]
    return subprocess.run([*SANDBOX, "--bind", folder, "/tmp", "--ro-bind", document, inside,
                           *[inside if word is None else word for word in command]],
                          capture_output=True, timeout=120, env=dict(os.environ, HOME="/missing"))


class Sandbox(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def same_inside_and_outside(self, document, size, home=None):
        """The path of a picture that comes out alike. home: the home folder outside, if not the usual one."""
        for name in os.listdir(self.folder.name):
            os.remove(os.path.join(self.folder.name, name))
        result = in_sandbox(self.folder.name, document, PROGRAM, "-s", size, None, "/tmp/inside.png")
        self.assertEqual((result.returncode, result.stderr), (0, b""), document)
        # The factory complains about a folder that it cannot remove. The bound file leaves its mount point.
        left = {name for name in os.listdir(self.folder.name) if not name.startswith("gnome-desktop-file")}
        self.assertEqual(left, {"inside.png"}, document)
        outside = os.path.join(self.folder.name, "outside.png")
        environment = dict(os.environ, HOME=home) if home else None
        subprocess.run([PROGRAM, "-s", size, document, outside], check=True, timeout=120, env=environment)
        with open(outside, "rb") as a, open(os.path.join(self.folder.name, "inside.png"), "rb") as b:
            self.assertEqual(a.read(), b.read(), (document, size))
        return outside

    def test_same_bytes_as_outside(self):
        documents = sorted(glob.glob(os.path.join(EXAMPLES, "*.paintdoc")))
        self.assertGreater(len(documents), 3)
        for document in documents:
            for size in ("128", "256", "512", "1024"):
                self.same_inside_and_outside(document, size)

    def test_same_fonts_in_pictures_as_outside(self):
        with tempfile.TemporaryDirectory() as folder:
            document = os.path.join(folder, "a.paintdoc")
            with open(document, "wb") as file:
                file.write(foreign_fonts())
            self.same_inside_and_outside(document, "80")
            # Outside, somebody prefers other fonts than the system does.
            settings = os.path.join(folder, ".config", "fontconfig")
            os.makedirs(settings)
            with open(os.path.join(settings, "fonts.conf"), "w", encoding="utf-8") as file:
                file.write(OTHER_FONTS)
            rows = read_png(self.same_inside_and_outside(document, "512", folder))[3]
        # Every line but the page's second one, whose font may be missing altogether.
        for top in (5, 60, 80, 100):
            dark = sum(max(pixel[:3]) < 128 for row in rows[top:top + 20] for pixel in row)
            self.assertGreater(dark, 20, top)

    def test_failure_leaves_nothing(self):
        broken = os.path.join(EXAMPLES, "make_examples.py")
        result = in_sandbox(self.folder.name, broken, PROGRAM, None, "/tmp/out.png")
        self.assertEqual(result.returncode, 1)
        self.assertFalse(os.path.exists(os.path.join(self.folder.name, "out.png")))


def main():
    if shutil.which("bwrap") is None or subprocess.run([*SANDBOX, "--tmpfs", "/tmp", "true"],
                                                        capture_output=True).returncode != 0:
        print("NOT TESTED: bubblewrap is not installed or may not make sandboxes here")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])


if __name__ == "__main__":
    main()
