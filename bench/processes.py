#!/usr/bin/env python3
"""Whole-process ratios, all measured in one run:  processes.py BIN_DIR

Processor time is the smallest of several runs, user and system together; peak memory is the largest
resident set.
"""
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
for folder in "tests/support", "examples":
    sys.path.insert(0, os.path.join(HERE, "..", folder))
from landscape import landscape  # noqa: E402
from paint_document import PaintDocument  # noqa: E402
from picture_documents import png  # noqa: E402

BIN = sys.argv[1]


def measure(command, runs):
    """(smallest CPU seconds, peak resident bytes) of a command whose output is dropped."""
    best, peak = float("inf"), 0
    # Spawned, not forked: the child does not pay for a copy of this process's page tables.
    dropped = [(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)]
    for _ in range(runs):
        child = os.posix_spawn(command[0], command, os.environ, file_actions=dropped)
        _, status, usage = os.wait4(child, 0)
        if status != 0:
            raise SystemExit(f"{command} failed: {status}")
        best = min(best, usage.ru_utime + usage.ru_stime)
        peak = max(peak, usage.ru_maxrss * 1024)
    return best, peak


def line(what, value, target):
    print(f"{what:<62} {value:>10}   {target}")


def shapes(scale=1):
    """The same picture of 20 shapes with gradients, dashes and two shadows, 800 x 600 times the
    scale: a document and SVG text."""
    pick = random.Random(7)
    width, height = 800 * scale, 600 * scale
    doc = PaintDocument(width, height, background=(1, 1, 1))
    defs, body = [], []
    hexed = lambda c: "#%02x%02x%02x" % tuple(round(v * 255) for v in c)
    for i in range(20):
        x, y, w, h = (scale * v for v in (pick.randint(20, 600), pick.randint(20, 400), pick.randint(60, 180),
                                          pick.randint(60, 160)))
        a, b = [tuple(pick.random() for _ in range(3)) for _ in range(2)]
        radial = i % 3 == 2
        dash = (12 * scale, 6 * scale) if i % 5 == 0 else ()
        shadow = doc.shadow(6 * scale, -6 * scale, 12 * scale) if i in (4, 9) else None
        outline = (doc.oval if i % 2 else doc.rectangle)(x, y, w, h, line_width=3 * scale, dash=dash)
        doc.add("DrawEllipse" if i % 2 else "DrawRectangle", outline=outline, stroke=(0.1, 0.1, 0.1), shadow=shadow,
                fill_gradient=(doc.gradient([(a, 0), (b, 1)]), {"degree": 0, "radial": radial}), opacity=85)
        kind = "radialGradient" if radial else "linearGradient"
        defs.append(f'<{kind} id="g{i}"><stop offset="0" stop-color="{hexed(a)}"/>'
                    f'<stop offset="1" stop-color="{hexed(b)}"/></{kind}>')
        style = (f'fill="url(#g{i})" stroke="#1a1a1a" stroke-width="{3 * scale}" opacity="0.85"'
                 + (f' stroke-dasharray="{dash[0]} {dash[1]}"' if dash else "") + (' filter="url(#s)"' if shadow else ""))
        top = height - y - h
        body.append(f'<ellipse cx="{x + w / 2}" cy="{top + h / 2}" rx="{w / 2}" ry="{h / 2}" {style}/>' if i % 2 else
                    f'<rect x="{x}" y="{top}" width="{w}" height="{h}" {style}/>')
    defs.append(f'<filter id="s" x="-20%" y="-20%" width="140%" height="140%"><feDropShadow dx="{6 * scale}" '
                f'dy="{6 * scale}" stdDeviation="{6 * scale}" flood-opacity="0.5"/></filter>')
    svg = (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" viewBox="0 0 {width} {height}">'
           f'<defs>{"".join(defs)}</defs><rect width="{width}" height="{height}" fill="white"/>{"".join(body)}</svg>')
    return doc.to_bytes(), svg.encode()


def with_picture(width, height, picture):
    """A document whose background is a picture, stretched."""
    doc = PaintDocument(width, height)
    doc.has_background = True
    doc.add("DrawImage2", outline=doc.rectangle(0, 0, width, height, line_width=0),
            ImageData=doc.archive.data(picture))
    return doc.to_bytes()


def background_pictures(folder, program):
    """The thumbnail of a document with a large PNG file as its background, against the desktop's
    thumbnailer for the bare file."""
    peer = shutil.which("gdk-pixbuf-thumbnailer")
    if peer is None:
        print("gdk-pixbuf-thumbnailer is not installed: its ratio is left out")
        return
    path, picture, out = (os.path.join(folder, name) for name in ("p.paintdoc", "p.png", "out.png"))
    with open(path, "wb") as file:
        file.write(with_picture(4000, 3000, png(landscape(800, 600), 800)))
    subprocess.run([program("paintdoc"), "render", path, picture], check=True)
    with open(path, "wb") as file, open(picture, "rb") as bare:
        file.write(with_picture(4000, 3000, bare.read()))
    ours, peak = measure([program("paint-thumbnailer"), "-s", "256", path, out], 7)
    theirs, theirs_peak = measure([peer, "-s", "256", picture, out], 7)
    line("4000 x 3000 PNG background to 256 / gdk-pixbuf-thumbnailer", f"{ours / theirs:.2f}", "at most 1")
    line("    peak memory / its peak memory", f"{peak / theirs_peak:.2f}", "")


def svg_text(body):
    return ('<svg xmlns="http://www.w3.org/2000/svg" width="1000" height="1000" viewBox="0 0 1000 1000">'
            f'{body}</svg>').encode()


def paths():
    """2,000 closed curves of some 100 units, half of them stroked too: what drawing programs export."""
    pick = random.Random(1)
    near = lambda: f"{pick.uniform(-60, 60):.2f},{pick.uniform(-60, 60):.2f}"
    body = []
    for i in range(2000):
        steps = "".join(f"c {near()} {near()} {near()}" if k % 2 == 0 else f"l {near()}" for k in range(8))
        stroke = ' stroke="#333" stroke-width="2"' if i % 2 == 0 else ""
        body.append(f'<path fill="#{pick.getrandbits(24):06x}"{stroke} '
                    f'd="M{pick.uniform(0, 1000):.2f} {pick.uniform(0, 1000):.2f}{steps}z"/>\n')
    return svg_text("".join(body))


def gradients():
    """200 large translucent shapes, each with a gradient of its own."""
    pick = random.Random(2)
    body = []
    for i in range(200):
        stops = "".join(f'<stop offset="{offset}" stop-color="#{pick.getrandbits(24):06x}" '
                        f'stop-opacity="{pick.uniform(0.5, 1):.2f}"/>' for offset in (0, 0.4, 1))
        x, y = pick.randint(0, 700), pick.randint(0, 700)
        body.append(f'<linearGradient x2=".7" y2="1" id="g{i}">{stops}</linearGradient>'
                    f'<rect width="300" height="200" x="{x}" y="{y}" fill="url(#g{i})"/>' if i % 2 == 0 else
                    f'<radialGradient fx=".3" id="g{i}">{stops}</radialGradient>'
                    f'<ellipse rx="150" ry="110" cx="{x}" cy="{y}" fill="url(#g{i})"/>')
    return svg_text("".join(body))


def first_text(folder, program):
    """What the first text box of a process costs, with the system's font caches in memory, and how often
    its font file is opened."""
    boxes = {"a text box": "Hello, world", "a page of text": "The quick brown fox jumps over the lazy dog. " * 60,
             "three scripts and an emoji": "Hello, \u5e9e\u7f8e, \u05d0\u05d1, \U0001F600"}
    paths = {}
    for name, string in {"no text": "", **boxes}.items():
        doc = PaintDocument(640, 480, background=(1, 1, 1))
        doc.add("DrawText", outline=doc.rectangle(20, 20, 600, 440), Text=doc.text((string, doc.style("Helvetica", 14))))
        paths[name] = os.path.join(folder, name + ".paintdoc")
        with open(paths[name], "wb") as file:
            file.write(doc.to_bytes())
    cost = {name: float("inf") for name in paths}
    command = lambda name: [program("paint-thumbnailer"), "-s", "256", paths[name], os.path.join(folder, "out.png")]
    for _ in range(10):  # in turns, so that all see the same machine
        for name in paths:
            cost[name] = min(cost[name], measure(command(name), 10)[0])
    for name in boxes:
        target = "at most 6" if name == "a text box" else ""
        line(f"{name} over the same document without, ms", f"{1e3 * (cost[name] - cost['no text']):.1f}", target)
    if shutil.which("strace") is None:
        print("strace is not installed: opened font files are left out")
        return
    trace = subprocess.run(["strace", "-f", "-e", "trace=openat"] + command("three scripts and an emoji"),
                           capture_output=True, text=True, check=True).stderr
    opened = re.findall(r'"([^"]*\.(?:ttf|otf|ttc))"', trace)
    most = max((opened.count(font) for font in opened), default=0)
    line(f"opens of one font file, at most ({len(set(opened))} files)", str(most), "at most 1")


def twenty_shapes(folder, thumbnailer, rsvg):
    """Thumbnails of 20 shapes on canvases of 0.5 to 192 megapixels."""
    document, svg, out = (os.path.join(folder, name) for name in ("shapes.paintdoc", "shapes.svg", "out.png"))
    for scale, limit in ((1, 0.38), (2, 0.7), (2.5, 0.95), (5, 0.6), (10, 0.6), (20, 0.6)):
        for path, data in zip((document, svg), shapes(scale)):
            with open(path, "wb") as file:
                file.write(data)
        ours, theirs, most = float("inf"), float("inf"), 0
        for _ in range(6):  # in turns, so that both see the same machine
            cpu, peak = measure([thumbnailer, "-s", "256", document, out], 20)
            ours, most = min(ours, cpu), max(most, peak)
            theirs = min(theirs, measure([rsvg, "-w", "256", "-o", out, svg], 10)[0])
        size = f"{800 * scale:.0f} x {600 * scale:.0f}"
        line(f"{size}, 20 shapes, to 256 / rsvg-convert", f"{ours / theirs:.3f}", f"at most {limit}")
        line("    peak memory, MB", f"{most / (1 << 20):.0f}", "at most 100")


def main():
    program = lambda name: os.path.join(BIN, name)
    thumbnailer = program("paint-thumbnailer")
    empty, _ = measure([program("EmptyProgram")], 200)
    start, _ = measure([thumbnailer, "--version"], 200)
    line("start of paint-thumbnailer / start of an empty program", f"{start / empty:.2f}", "at most 2")

    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out.png")
        fill, canvas_peak = measure([program("MemsetCanvas")], 3)
        for name, background in (("no background", None), ("a white background", (1, 1, 1))):
            path = os.path.join(folder, "canvas.paintdoc")
            with open(path, "wb") as file:
                file.write(PaintDocument(20000, 12500, background=background).to_bytes())
            cpu, peak = measure([thumbnailer, "-s", "256", path, out], 3)
            line(f"20000 x 12500 with {name} / memset of a canvas", f"{cpu / fill:.2f}", "at most 4")
            extra = (peak - 2 * 20000 * 12500 * 4) / (1 << 20)
            line("    peak memory beyond two canvas bitmaps, MB", f"{extra:.0f}", "at most 32")

        background_pictures(folder, program)
        first_text(folder, program)

        rsvg = shutil.which("rsvg-convert")
        if rsvg is None:
            print("rsvg-convert is not installed: its ratio is left out")
            return
        twenty_shapes(folder, thumbnailer, rsvg)
        svg = os.path.join(folder, "picture.svg")
        for name, data in (("2,000 paths", paths()), ("200 gradients", gradients())):
            with open(svg, "wb") as file:
                file.write(data)
            ours, _ = measure([program("paintdoc"), "render", svg, out], 10)
            theirs, _ = measure([rsvg, "-o", out, svg], 10)
            line(f"SVG of {name} at 1000 x 1000 / rsvg-convert", f"{ours / theirs:.2f}", "at most 0.7")


if __name__ == "__main__":
    main()
