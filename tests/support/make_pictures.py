#!/usr/bin/env python3
"""Makes picture files that tests decode:  make_pictures.py OUTPUT_DIR

Each picture NAME comes with NAME.rgba: width and height as little-endian 32-bit
numbers, then the premultiplied pixels that a reader must make of it. Both are
worked out here from the same samples, without any picture library. What stands
in a folder called "near" may differ by two levels (colour profiles).
"""
import os
import struct
import sys
import zlib

import icc_profiles

W, H = 21, 13


# Samples: one list for each pixel, rows from the top.

def ramp(samples, bits, width=W, height=H):
    """Different values everywhere, the ends of the range among them."""
    top = (1 << bits) - 1
    pixels = [[(x * (37 + 11 * s) + y * (101 + 7 * s) + s * 5) * (top // 255 or 1) & top
               for s in range(samples)] for y in range(height) for x in range(width)]
    pixels[0] = [0] * samples
    pixels[1] = [top] * samples
    return pixels


def scaled(value, bits):
    """A sample as a byte, rounded."""
    top = (1 << bits) - 1
    return (value * 255 * 2 + top) // (2 * top)


def premultiplied(r, g, b, a):
    return [(c * a * 2 + 255) // 510 for c in (r, g, b)] + [a]


def expected(path, pixels, width=W, height=H):
    with open(path + ".rgba", "wb") as out:
        out.write(struct.pack("<II", width, height) + bytes(v for p in pixels for v in p))


def save(folder, name, data, pixels, width=W, height=H):
    path = os.path.join(folder, name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as out:
        out.write(data)
    expected(path, pixels, width, height)


def packed(pixels, bits, width, big=True):
    """Rows of samples, each row filled up to whole bytes. Floating point has 0.5 bits more."""
    rows = []
    for start in range(0, len(pixels), width):
        samples = [s for p in pixels[start:start + width] for s in p]
        kind = {16: "H", 32: "I", 16.5: "e", 32.5: "f", 64.5: "d"}.get(bits)
        if kind:
            rows.append(struct.pack((">" if big else "<") + "%d" % len(samples) + kind, *samples))
            continue
        text = "".join(format(s, "0%db" % bits) for s in samples)
        text += "0" * (-len(text) % 8)
        rows.append(bytes(int(text[i:i + 8], 2) for i in range(0, len(text), 8)))
    return rows


# PNG.

def png_chunk(name, data):
    return (struct.pack(">I", len(data)) + name + data +
            struct.pack(">I", zlib.crc32(name + data)))


def png_filtered(rows, step):
    """A different filter for each row."""
    out, above = b"", None
    for y, row in enumerate(rows):
        kind = y % 5
        above = above or bytes(len(row))
        line = bytearray()
        for i, value in enumerate(row):
            a = row[i - step] if i >= step else 0
            b, c = above[i], above[i - step] if i >= step else 0
            p = a + b - c
            paeth = min((a, b, c), key=lambda v: (abs(p - v), [a, b, c].index(v)))
            line.append(value - [0, a, b, (a + b) // 2, paeth][kind] & 255)
        out += bytes([kind]) + bytes(line)
        above = row
    return out


ADAM7 = ((0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2),
         (0, 1, 1, 2))


def png(pixels, color, bits, extra=(), interlaced=False, width=W, height=H):
    step = max(1, len(pixels[0]) * bits // 8)
    if interlaced:
        raw = b""
        for x0, y0, dx, dy in ADAM7:
            part = [pixels[y * width + x] for y in range(y0, height, dy)
                    for x in range(x0, width, dx)]
            columns = len(range(x0, width, dx))
            if part:
                raw += png_filtered(packed(part, bits, columns), step)
    else:
        raw = png_filtered(packed(pixels, bits, width), step)
    header = struct.pack(">IIBBBBB", width, height, bits, color, 0, 0, interlaced)
    return (b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", header) +
            b"".join(png_chunk(*e) for e in extra) +
            png_chunk(b"tEXt", b"Comment\0" + b"x" * 300) +
            png_chunk(b"IDAT", zlib.compress(raw)) + png_chunk(b"IEND", b""))


def iccp(profile):
    return b"iCCP", b"test\0\0" + zlib.compress(profile)


def gray_pixels(pixels, bits):
    return [premultiplied(*[scaled(p[0], bits)] * 3, scaled(p[1], bits) if len(p) > 1 else 255)
            for p in pixels]


def rgb_pixels(pixels, bits):
    return [premultiplied(*[scaled(s, bits) for s in p[:3]],
                          scaled(p[3], bits) if len(p) > 3 else 255) for p in pixels]


def make_png(folder):
    for bits in (1, 2, 4, 8, 16):
        for interlaced in (False, True):
            kind = "%d%s.png" % (bits, " interlaced" if interlaced else "")
            pixels = ramp(1, bits)
            save(folder, "grey " + kind, png(pixels, 0, bits, interlaced=interlaced),
                 gray_pixels(pixels, bits))
            if bits < 16:
                colors = [[i * 40 & 255, i * 3 & 255, 255 - i & 255] for i in range(1 << bits)]
                alphas = [0, 80, 255][:len(colors)]
                extra = [(b"PLTE", bytes(sum(colors, []))), (b"tRNS", bytes(alphas))]
                alphas = alphas + [255] * 256
                save(folder, "palette " + kind, png(pixels, 3, bits, extra, interlaced),
                     [premultiplied(*colors[p[0]], alphas[p[0]]) for p in pixels])
            if bits >= 8:
                pixels = ramp(2, bits)
                save(folder, "grey alpha " + kind, png(pixels, 4, bits, interlaced=interlaced),
                     gray_pixels(pixels, bits))
                for samples, color in ((3, 2), (4, 6)):
                    pixels = ramp(samples, bits)
                    save(folder, "rgb%s %s" % ("a"[:samples - 3], kind),
                         png(pixels, color, bits, interlaced=interlaced), rgb_pixels(pixels, bits))
    pixels = ramp(3, 8)
    key = pixels[30]
    save(folder, "rgb key.png", png(pixels, 2, 8, [(b"tRNS", struct.pack(">HHH", *key))]),
         [[0] * 4 if p == key else p + [255] for p in pixels])
    make_png_orientation(folder)


def make_png_orientation(folder):
    pixels = ramp(4, 8)
    block = exif(6)
    save(folder, "rgba turned.png", png(pixels, 6, 8, [(b"eXIf", block)]),
         oriented(rgb_pixels(pixels, 8), 6), H, W)


def exif(orientation, order="<"):
    mark = b"II*\0" if order == "<" else b"MM\0*"
    return (mark + struct.pack(order + "IH", 8, 2) +
            struct.pack(order + "HHII", 0x10f, 2, 1, 0) +
            struct.pack(order + "HHIHH", 0x112, 3, 1, orientation, 0) + b"\0\0\0\0")


def oriented(pixels, orientation, width=W, height=H):
    """Where TIFF 6.0 says that the first row and the first column are, set upright."""
    rows = [pixels[i:i + width] for i in range(0, len(pixels), width)]
    row_edge = {1: "top", 2: "top", 3: "bottom", 4: "bottom",
                5: "left", 6: "right", 7: "right", 8: "left"}[orientation]
    column_edge = {1: "left", 2: "right", 3: "right", 4: "left",
                   5: "top", 6: "top", 7: "bottom", 8: "bottom"}[orientation]
    swapped = row_edge in ("left", "right")
    out_width, out_height = (height, width) if swapped else (width, height)
    result = [None] * len(pixels)
    for y, row in enumerate(rows):
        for x, pixel in enumerate(row):
            along = {"top": ("y", y), "bottom": ("y", height - 1 - y), "left": ("x", y),
                     "right": ("x", height - 1 - y)}[row_edge]
            across = {"left": ("x", x), "right": ("x", width - 1 - x), "top": ("y", x),
                      "bottom": ("y", width - 1 - x)}[column_edge]
            at = dict([along, across])
            result[at["y"] * out_width + at["x"]] = pixel
    return result


# TIFF.

def lzw(data):
    """Literals only, the table cleared before codes grow to 10 bits."""
    text = ""
    for start in range(0, len(data), 200):
        codes = [256] + list(data[start:start + 200])
        text += "".join(format(c, "09b") for c in codes)
    text += format(257, "09b")
    text += "0" * (-len(text) % 8)
    return bytes(int(text[i:i + 8], 2) for i in range(0, len(text), 8))


def packbits(data):
    out = b""
    for start in range(0, len(data), 100):
        part = data[start:start + 100]
        if len(set(part)) == 1 and len(part) > 1:
            out += bytes([257 - len(part)]) + part[:1]
        else:
            out += bytes([len(part) - 1]) + part
    return out


COMPRESSIONS = {1: bytes, 5: lzw, 8: zlib.compress, 32773: packbits}


def differences(row, samples):
    """Horizontal prediction of bytes."""
    return bytes(row[i] - (row[i - samples] if i >= samples else 0) & 255 for i in range(len(row)))


def tiff(chunks, tags, big=True):
    """A file of one picture: chunks of data, then the directory."""
    order = ">" if big else "<"
    data, offsets = b"", []
    for chunk in chunks:
        offsets.append(8 + len(data))
        data += chunk + b"\0" * (len(chunk) % 2)
    tiled = 322 in tags
    tags = dict(tags)
    tags[324 if tiled else 273] = ("I", offsets)
    tags[325 if tiled else 279] = ("I", [len(c) for c in chunks])
    directory_at = 8 + len(data)
    extra_at = directory_at + 2 + 12 * len(tags) + 4
    directory, extra = struct.pack(order + "H", len(tags)), b""
    types = {"H": 3, "I": 4, "B": 7}
    for tag in sorted(tags):
        kind, values = tags[tag]
        body = bytes(values) if kind == "B" else struct.pack(order + str(len(values)) + kind,
                                                             *values)
        directory += struct.pack(order + "HHI", tag, types[kind], len(values))
        if len(body) <= 4:
            directory += body + b"\0" * (4 - len(body))
        else:
            directory += struct.pack(order + "I", extra_at + len(extra))
            extra += body + b"\0" * (len(body) % 2)
    mark = b"MM\0*" if big else b"II*\0"
    return (mark + struct.pack(order + "I", directory_at) + data + directory +
            struct.pack(order + "I", 0) + extra)


def tiff_tags(samples, bits, photometric, compression=1, **more):
    if bits != int(bits):
        more["t339"] = ("H", [3] * samples)
    tags = {256: ("H", [W]), 257: ("H", [H]), 258: ("H", [int(bits)] * samples),
            259: ("H", [compression]), 262: ("H", [photometric]), 277: ("H", [samples])}
    tags.update({int(key[1:]): value for key, value in more.items()})
    return tags


def strips(pixels, bits, samples, compression=1, rows_each=5, predict=False, big=True):
    rows = packed(pixels, bits, W, big)
    if predict:
        rows = [differences(r, samples) for r in rows]
    if compression == 32773:  # runs end with their row
        return [b"".join(packbits(r) for r in rows[i:i + rows_each])
                for i in range(0, H, rows_each)]
    return [COMPRESSIONS[compression](b"".join(rows[i:i + rows_each]))
            for i in range(0, H, rows_each)]


def tiles(pixels, samples, compression):
    result = []
    for top in range(0, H, 16):
        for left in range(0, W, 16):
            tile = [pixels[y * W + x] if y < H and x < W else [9] * samples
                    for y in range(top, top + 16) for x in range(left, left + 16)]
            result.append(COMPRESSIONS[compression](b"".join(packed(tile, 8, 16))))
    return result


def cmyk_pixels(pixels, bits=8):
    result = []
    for p in pixels:
        c, m, y, k = (255 - scaled(v, bits) for v in p[:4])
        result.append([(v * k * 2 + 255) // 510 for v in (c, m, y)] + [255])
    return result


def make_tiff(folder):
    rows = {"r278": ("H", [5])}
    for bits in (1, 2, 4, 6, 8, 12, 16):
        for big in (True, False):
            pixels = ramp(1, bits)
            kind = "%d %s.tif" % (bits, "big" if big else "little")
            data = strips(pixels, bits, 1, big=big)
            save(folder, "grey " + kind, tiff(data, tiff_tags(1, bits, 1, **rows), big),
                 gray_pixels(pixels, bits))
            top = (1 << bits) - 1
            save(folder, "white is zero " + kind, tiff(data, tiff_tags(1, bits, 0, **rows), big),
                 gray_pixels([[top - p[0]] for p in pixels], bits))
    for bits in (8, 16):
        pixels = ramp(3, bits)
        save(folder, "rgb %d.tif" % bits,
             tiff(strips(pixels, bits, 3), tiff_tags(3, bits, 2, **rows)), rgb_pixels(pixels, bits))
        pixels = ramp(4, bits)
        save(folder, "rgb straight alpha %d.tif" % bits,
             tiff(strips(pixels, bits, 4), tiff_tags(4, bits, 2, t338=("H", [2]), **rows)),
             rgb_pixels(pixels, bits))
        save(folder, "cmyk %d.tif" % bits,
             tiff(strips(pixels, bits, 4), tiff_tags(4, bits, 5, **rows)),
             cmyk_pixels(pixels, bits))
        pixels = ramp(2, bits)
        save(folder, "grey straight alpha %d.tif" % bits,
             tiff(strips(pixels, bits, 2), tiff_tags(2, bits, 1, t338=("H", [2]), **rows)),
             gray_pixels(pixels, bits))
    for bits in (1, 4, 8):
        pixels = ramp(1, bits)
        colors = [[i * 40 & 255, i * 3 & 255, 255 - i & 255] for i in range(1 << bits)]
        table = [c[channel] * 257 for channel in range(3) for c in colors]
        save(folder, "palette %d.tif" % bits,
             tiff(strips(pixels, bits, 1), tiff_tags(1, bits, 3, t320=("H", table), **rows)),
             [colors[p[0]] + [255] for p in pixels])
    make_tiff_forms(folder, rows)
    make_wide_tiff(folder, rows)
    make_translucent_cmyk(folder, rows)


def make_wide_tiff(folder, rows):
    """Samples of more than 16 bits and floating point: each is a byte's worth, and some are none."""
    odd = {-0.5: 0, 1.5: 255, float("inf"): 255, float("-inf"): 0, float("nan"): 0, 1e-7: 0}
    for big in (True, False):
        kind = "%s.tif" % ("big" if big else "little")
        for bits in (32, 16.5, 32.5, 64.5):
            name = "float %d " % bits if bits != 32 else "32 "
            for samples, color, alpha in ((1, 1, 0), (1, 0, 0), (3, 2, 0), (4, 2, 2), (4, 5, 0)):
                shown = ramp(samples, 8)
                if bits == 32:
                    stored = [[v * 0x01010101 for v in p] for p in shown]
                else:
                    stored = [[v / 255 for v in p] for p in shown]
                    for i, value in enumerate(odd):
                        stored[i + 2][0], shown[i + 2][0] = value, odd[value]
                tags = tiff_tags(samples, bits, color, **rows)
                if alpha:
                    tags[338] = ("H", [alpha])
                data = tiff(strips(stored, bits, samples, big=big), tags, big)
                if color == 0:
                    shown = [[255 - p[0]] for p in shown]
                pixels = {0: gray_pixels, 1: gray_pixels, 2: rgb_pixels,
                          5: cmyk_pixels}[color](shown, 8)
                what = ["white is zero ", "grey ", "rgb ", "", "", "cmyk "][color]
                what += "alpha " * (alpha > 0)
                save(folder, what + name + kind, data, pixels)
                if samples > 2 or color == 0:
                    planes = [b"".join(packed([[p[c]] for p in stored], bits, W, big))
                              for c in range(samples)]
                    tags.update({284: ("H", [2]), 278: ("H", [H])})
                    save(folder, what + name + "planes " + kind, tiff(planes, tags, big), pixels)


def make_translucent_cmyk(folder, rows):
    pixels = ramp(5, 8)
    pixels[2][4] = 0
    shown = [premultiplied(*c[:3], p[4]) for c, p in zip(cmyk_pixels(pixels), pixels)]
    tags = tiff_tags(5, 8, 5, t338=("H", [2]), **rows)
    save(folder, "cmyk straight alpha 8.tif", tiff(strips(pixels, 8, 5), tags), shown)
    tiled = tiff_tags(5, 8, 5, t338=("H", [2]), t322=("H", [16]), t323=("H", [16]))
    save(folder, "cmyk straight alpha tiled.tif", tiff(tiles(pixels, 5, 1), tiled), shown)
    mixed = [[(v * p[4] * 2 + 255) // 510 for v in p[:4]] + p[4:] for p in pixels]
    straight = [[min(255, (v * 255 + p[4] // 2) // p[4]) if p[4] else v for v in p[:4]]
                for p in mixed]
    shown = [premultiplied(*c[:3], p[4]) for c, p in zip(cmyk_pixels(straight), mixed)]
    tags[338] = ("H", [1])
    save(folder, "cmyk premultiplied 8.tif", tiff(strips(mixed, 8, 5), tags), shown)


def make_tiff_forms(folder, rows):
    pixels = [premultiplied(*p) for p in ramp(4, 8)]
    alpha = {"t338": ("H", [1])}
    for name, compression in (("none", 1), ("lzw", 5), ("deflate", 8), ("packbits", 32773)):
        tags = tiff_tags(4, 8, 2, compression, **alpha, **rows)
        save(folder, "premultiplied %s.tif" % name,
             tiff(strips(pixels, 8, 4, compression), tags), pixels)
        tags = tiff_tags(4, 8, 2, compression, t322=("H", [16]), t323=("H", [16]), **alpha)
        save(folder, "tiled %s.tif" % name, tiff(tiles(pixels, 4, compression), tags), pixels)
    tags = tiff_tags(4, 8, 2, 5, t317=("H", [2]), **alpha, **rows)
    save(folder, "premultiplied predicted.tif", tiff(strips(pixels, 8, 4, 5, predict=True), tags),
         pixels)
    save(folder, "unnamed fourth sample.tif",
         tiff(strips(pixels, 8, 4), tiff_tags(4, 8, 2, **rows)), pixels)
    opaque = ramp(5, 8)
    save(folder, "unknown samples.tif",
         tiff(strips(opaque, 8, 5), tiff_tags(5, 8, 2, t338=("H", [0, 0]), **rows)),
         [p[:3] + [255] for p in opaque])
    planes = ramp(3, 8)
    save(folder, "planes.tif",
         tiff([bytes(p[c] for p in planes) for c in range(3)],
              tiff_tags(3, 8, 2, t284=("H", [2]), t278=("H", [H]))), rgb_pixels(planes, 8))
    for orientation in range(1, 9):
        turned = orientation > 4
        save(folder, "orientation %d.tif" % orientation,
             tiff(strips(planes, 8, 3), tiff_tags(3, 8, 2, t274=("H", [orientation]), **rows)),
             oriented(rgb_pixels(planes, 8), orientation), *((H, W) if turned else (W, H)))


# Colour profiles.

def srgb_byte(linear):
    linear = min(max(linear, 0), 1)
    v = 12.92 * linear if linear <= 0.0031308 else 1.055 * linear ** (1 / 2.4) - 0.055
    return round(255 * v)


def invert(m):
    det = sum(m[0][i] * (m[1][(i + 1) % 3] * m[2][(i + 2) % 3] -
                         m[1][(i + 2) % 3] * m[2][(i + 1) % 3]) for i in range(3))
    return [[(m[(j + 1) % 3][(i + 1) % 3] * m[(j + 2) % 3][(i + 2) % 3] -
              m[(j + 1) % 3][(i + 2) % 3] * m[(j + 2) % 3][(i + 1) % 3]) / det
             for j in range(3)] for i in range(3)]


# Colorants seen under D50, columns red, green and blue, as the published profiles hold them.
ADOBE = [[0.60974, 0.20528, 0.14919], [0.31111, 0.62567, 0.06322], [0.01947, 0.06087, 0.74457]]
SRGB = [[0.43607, 0.38515, 0.14307], [0.22249, 0.71687, 0.06061], [0.01392, 0.09708, 0.71410]]


def from_adobe(rgb):
    linear = [(v / 255) ** (563 / 256) for v in rgb]
    xyz = [sum(ADOBE[i][j] * linear[j] for j in range(3)) for i in range(3)]
    back = invert(SRGB)
    return [srgb_byte(sum(back[i][j] * xyz[j] for j in range(3))) for i in range(3)]


def from_lightness(lightness):
    y = ((lightness + 16) / 116) ** 3 if lightness > 8 else lightness * 27 / 24389
    return [srgb_byte(y)] * 3


def lab_of(rgb):
    linear = [v / 255 / 12.92 if v <= 10 else ((v / 255 + 0.055) / 1.055) ** 2.4 for v in rgb]
    white = [sum(row) for row in SRGB]
    x, y, z = (sum(SRGB[i][j] * linear[j] for j in range(3)) / white[i] for i in range(3))
    x, y, z = (v ** (1 / 3) if v > 216 / 24389 else (24389 / 27 * v + 16) / 116 for v in (x, y, z))
    return 116 * y - 16, 500 * (x - y), 200 * (y - z)


def make_lab(folder, rows):
    """With 16 bits every colour comes back; with 8, L*a*b* is coarse, so that colours are grey."""
    shown = ramp(4, 8)
    shades = [[p[0]] * 3 + p[3:] for p in shown]
    for bits, pixels in ((8, shades), (16, shown)):
        top, unit = (1 << bits) - 1, 1 << bits - 8
        for kind, photometric in (("cie", 8), ("icc", 9)):
            lightest = 65280 if photometric == 9 and bits == 16 else top
            shift = 128 * unit if photometric == 9 else 0
            stored = []
            for p in pixels:
                lightness, a, b = lab_of(p[:3])
                stored.append([round(lightness * lightest / 100), round(a * unit) + shift & top,
                               round(b * unit) + shift & top, p[3] * (top // 255)])
            tags = tiff_tags(4, bits, photometric, t338=("H", [2]), **rows)
            save(folder, "%s lab %d.tif" % (kind, bits), tiff(strips(stored, bits, 4), tags),
                 rgb_pixels(pixels, 8))


def make_profiles(folder):
    gray, adobe, cmyk = icc_profiles.gray(1.8), icc_profiles.adobe_rgb(), icc_profiles.cmyk()
    # Colours that sRGB has too: what lies outside is clipped, by every reader a little differently.
    inside = [[100 + v // 4 for v in p] for p in ramp(3, 8)]
    greys = ramp(1, 8)
    rows = {"r278": ("H", [5])}
    shown = [from_adobe(p) + [255] for p in inside]
    save(folder, "rgb.png", png(inside, 2, 8, [iccp(adobe)]), shown)
    save(folder, "rgb.tif", tiff(strips(inside, 8, 3), tiff_tags(3, 8, 2, t34675=("B", adobe),
                                                                 **rows)), shown)
    translucent = [p + [40 + i % 200] for i, p in enumerate(inside)]
    shown = [premultiplied(*from_adobe(p[:3]), p[3]) for p in translucent]
    save(folder, "rgba.png", png(translucent, 6, 8, [iccp(adobe)]), shown)
    alpha = {"t338": ("H", [1])}
    solid = [premultiplied(*p[:3], 250) for p in translucent]
    save(folder, "premultiplied.tif",
         tiff(strips(solid, 8, 4), tiff_tags(4, 8, 2, t34675=("B", adobe), **alpha, **rows)),
         [premultiplied(*from_adobe(p[:3]), 250) for p in translucent])
    shown = [[srgb_byte((p[0] / 255) ** 1.8)] * 3 + [255] for p in greys]
    save(folder, "grey.png", png(greys, 0, 8, [iccp(gray)]), shown)
    save(folder, "grey.tif", tiff(strips(greys, 8, 1), tiff_tags(1, 8, 1, t34675=("B", gray),
                                                                 **rows)), shown)
    blacks = [[0, 0, 0, p[0]] for p in greys]
    save(folder, "cmyk.tif", tiff(strips(blacks, 8, 4), tiff_tags(4, 8, 5, t34675=("B", cmyk),
                                                                  **rows)),
         [from_lightness(100 * (255 - p[3]) / 255) + [255] for p in blacks])
    make_lab(folder, rows)
    # Profiles that do not fit are as good as none.
    plain = rgb_pixels(inside, 8)
    save(folder, "grey profile.png", png(inside, 2, 8, [iccp(gray)]), plain)
    save(folder, "damaged profile.png", png(inside, 2, 8, [iccp(adobe[:200])]), plain)
    for name, profile in (("adobe.icc", adobe), ("grey.icc", gray), ("cmyk.icc", cmyk)):
        with open(os.path.join(folder, name), "wb") as out:
            out.write(profile)


def main():
    root = sys.argv[1]
    make_png(os.path.join(root, "exact", "png"))
    make_tiff(os.path.join(root, "exact", "tiff"))
    make_profiles(os.path.join(root, "near"))


main()
