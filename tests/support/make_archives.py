#!/usr/bin/env python3
"""Makes the archives that tests read:  make_archives.py OUTPUT_DIR

good/ holds archives as the platform and other tools write them, bad/ archives
with one thing wrong each, text/ texts and their styles; what a reader must make of
them stands in the tests.
"""
import base64
import os
import plistlib
import struct
import subprocess
import sys
import zlib

import icc_profiles
import keyed_archive
import text_archives
from keyed_archive import Float32, KeyedArchive, UID, Wide, write_bplist


def everything():
    """One object with a value of every kind under a key of its own."""
    a = KeyedArchive()
    root = a.reserve()
    a.fill(root, ["Sample", "NSObject"], {
        "true": True, "false": False, "int8": 200, "int16": 40000, "int32": 3000000000,
        "int64": 1 << 40, "negative": -1, "wide": Wide(7), "unsigned": (1 << 64) - 2,
        "float": Float32(0.1), "double": 0.1, "nan": float("nan"), "infinity": float("-inf"),
        "bytes": b"\1\0\1", "no bytes": b"", "nil": None, "point": a.point(0.5, -2),
        "size": a.size(640, 480), "rect": a.rect(1, 2, 3.25, 842.5997125), "self": root,
        "ascii": a.add("plain"), "unicode": a.add("na\u00efve \U0001F600"),
        "lone": a.add("a\ud800b\udc00"), "zeros": a.add("a\0b"),
        "mutable": a.mutable_string("m\u00e4h"), "bytes string": a.string_bytes("b\u00fc"),
        "data": a.data(b"abc"), "mutable data": a.mutable_data(bytes(range(256)) * 4),
        "list": a.array([1, 2.5, Float32(2.5), True, "x", -3, a.null()]),
        "empty list": a.array([], mutable=True), "dict": a.dictionary({"k": 1, "l": "two"}, True),
        "set": a.set(["a", "b", "a"]), "date": a.date(86400.5),
        "url": a.url("b%20c", a.url("file:///a/")),
        "vpoint": a.value_point(1, 2), "vsize": a.value_size(3, 4),
        "vrect": a.value_rect(1, 2, 3, 4), "vrange": a.value_range(5, 6), "$odd": 7})
    return a.to_bytes(root=root)


def historic():
    """Collections and numbers as coders other than the keyed archiver leave them."""
    a = KeyedArchive()
    items = {f"NS.object.{i}": a.add(f"item {i}") for i in range(12)}
    keys = {f"NS.key.{i}": a.add(f"key {i}") for i in range(12)}
    a.top = {
        "array": a.obj(["NSArray", "NSObject"], dict(items)),
        "gap": a.obj(["NSArray", "NSObject"], {"NS.object.0": a.add("x"), "NS.object.2": a.add("y")}),
        "dictionary": a.obj(["NSDictionary", "NSObject"], {**keys, **items}),
        "ordered set": a.obj(["NSOrderedSet", "NSObject"], dict(items)),
        "number": a.obj(["NSNumber", "NSValue", "NSObject"], {"NS.number": 1 << 60}),
        "int": a.obj(["NSNumber", "NSValue", "NSObject"], {"NS.intval": -5}),
        "double": a.obj(["NSNumber", "NSValue", "NSObject"], {"NS.dblval": 2.5}),
        "bool": a.obj(["NSNumber", "NSValue", "NSObject"], {"NS.boolval": True}),
        "data": a.obj(["NSMutableData", "NSData", "NSObject"], {"NS.bytes": b"xyz"}),
        "text of object": a.obj(["NSMutableString", "NSString", "NSObject"],
                                {"NS.string": a.add("by reference")}),
        "more keys": a.obj(["NSDictionary", "NSObject"], {
            "NS.keys": [a.add("a"), a.add("b")], "NS.objects": [a.add(1)]}, raw=True),
        "twice": a.obj(["NSDictionary", "NSObject"], {
            "NS.keys": [a.add("a"), a.mutable_string("a")],
            "NS.objects": [a.add(1), a.add(2)]}, raw=True)}
    return a.to_bytes()


def graph():
    """An object shared, cycles, conditional slots, hints, and nil elements."""
    a = KeyedArchive()
    shared = a.array(["s"])
    cycle, dictionary = a.reserve(), a.reserve()
    a.fill(cycle, ["NSMutableArray", "NSArray", "NSObject"],
           {"NS.objects": [a.add("first"), cycle, dictionary]}, raw=True)
    a.fill(dictionary, ["NSMutableDictionary", "NSDictionary", "NSObject"],
           {"NS.keys": [a.add("up"), a.add("self"), a.add("kept")],
            "NS.objects": [cycle, dictionary, a.add("value")]}, raw=True)
    url = a.reserve()
    a.fill(url, ["NSURL", "NSObject"], {"NS.base": url, "NS.relative": a.add("x")})
    a.top = {"one": shared, "two": shared, "cycle": cycle, "url": url,
             "unwanted": a.bare("$null"),
             "hinted": a.fill(a.reserve(), ["Unheard", "NSObject"],
                              {"NS.objects": []}, hints=["Unseen", "NSArray"], raw=True),
             "with nil": a.array(["x", None, "y"]),
             "with unwanted": a.array([a.bare("$null")]),
             "dictionary with nil": a.dictionary({"k": None})}
    return a.to_bytes()


def many_keys(shuffled):
    """A record with more keys than anyone would search one by one."""
    a = KeyedArchive()
    names = [f"key {i * 7919 % 1000 if shuffled else i}" for i in range(1000)]
    root = a.fill(a.reserve(), ["Sample", "NSObject"], {n: int(n[4:]) for n in names})
    return a.to_bytes(root=root, ref_size=5, offset_size=7)


def through_xml(data):
    """What is left of an archive after tools have turned it into XML and back."""
    xml = KeyedArchive.xml_of(plistlib.loads(data))
    return subprocess.run(["plistutil", "-i", "-", "-o", "-", "-f", "bin"], input=xml,
                          check=True, capture_output=True).stdout


# Two archives kept as they were recorded: a red calibrated colour and a path of two points.
RECORDED = {
    "recorded_color": """
YnBsaXN0MDDUAQIDBAUGBwpYJHZlcnNpb25ZJGFyY2hpdmVyVCR0b3BYJG9iamVjdHMSAAGGoF8QD05TS2V5ZWRBcmNoaXZlctEI
CVRyb290gAGjCwwTVSRudWxs0w0ODxARElVOU1JHQlxOU0NvbG9yU3BhY2VWJGNsYXNzRjEgMCAwABABgALSFBUWF1okY2xhc3Nu
YW1lWCRjbGFzc2VzV05TQ29sb3KiFhhYTlNPYmplY3QIERokKTI3SUxRU1ddZGp3foWHiY6ZoqqtAAAAAAAAAQEAAAAAAAAAGQAA
AAAAAAAAAAAAAAAAALY=""",
    "recorded_path": """
YnBsaXN0MDDUAQIDBAUGBwpYJHZlcnNpb25ZJGFyY2hpdmVyVCR0b3BYJG9iamVjdHMSAAGGoF8QD05TS2V5ZWRBcmNoaXZlctEI
CVRyb290gAGjCwwWVSRudWxs1Q0ODxAREhMUFBVaTlNTZWdtZW50c1tOU0xpbmVXaWR0aFpOU0NhcFN0eWxlW05TSm9pblN0eWxl
ViRjbGFzc08QEgAAAAAAAAAAAAFBAAAAQEAAACNAAAAAAAAAABACgALSFxgZGlokY2xhc3NuYW1lWCRjbGFzc2VzXE5TQmV6aWVy
UGF0aKIZG1hOU09iamVjdAgRGiQpMjdJTFFTV11oc3+Klp2yu72/xM/Y5egAAAAAAAABAQAAAAAAAAAcAAAAAAAAAAAAAAAAAAAA
8Q=="""}


def good():
    for name, text in RECORDED.items():
        yield name, base64.b64decode(text)
    yield "everything", everything()
    yield "historic", historic()
    yield "graph", graph()
    yield "many_keys", many_keys(False)
    yield "shuffled_keys", many_keys(True)
    a = KeyedArchive()
    a.top = {"color": a.color((1, 0, 0)), "list": a.array([1, "two"]), "nil": None, "n": 3}
    plain = a.to_bytes()
    yield "colors", colors()
    yield "paths", paths()
    yield "gradients", gradients()
    yield "pictures", pictures()
    yield "through_xml", through_xml(plain)
    yield "rewritten", subprocess.run(
        ["plistutil", "-i", "-", "-o", "-", "-f", "bin"], check=True, capture_output=True,
        input=subprocess.run(["plistutil", "-i", "-", "-o", "-", "-f", "xml"], input=everything_finite(),
                             check=True, capture_output=True).stdout).stdout
    yield "without_root", KeyedArchive().to_bytes()
    a = KeyedArchive(archiver="Other")
    yield "other_archiver", a.to_bytes(root=a.add("still read"))
    a = KeyedArchive()
    a.objects[0] = "not nil"
    yield "first_element", a.to_bytes(root=UID(0))


def colors():
    """Colours in every space and form, under keys that say which."""
    a = KeyedArchive()
    color = ["NSColor", "NSObject"]

    def raw(**fields):
        return a.obj(color, {k: v.encode() if isinstance(v, str) else v for k, v in fields.items()})

    def custom(components, legacy="1 0 1\0", **space):
        return raw(NSColorSpace=1, NSRGB=legacy, NSComponents=components,
                   NSCustomColorSpace=a.color_space(**space))

    adobe = icc_profiles.adobe_rgb()
    loop = a.reserve()
    a.fill(loop, color, {"NSColorSpace": 6, "NSColor": loop,
                         "NSColorName": a.add("textBackgroundColor")})
    a.top = {
        "calibrated": a.color((0.2784313858, 0.5, 1)),
        "calibrated alpha": a.color((0.25, 0.5, 0.75, 0.125)),
        "device": a.color((0.25, 0.5, 0.75), "device"),
        "generic": a.color((0.25, 0.5, 0.75), "generic"),
        "srgb": a.color((0.25, 0.5, 0.75, 0.5), "srgb"),
        "extended": a.color((1.5, 0.5, -0.5), "extended_srgb"),
        "p3": a.color((0.5, 0.4, 0.3), "p3"),
        "p3 red": a.color((1, 0, 0), "p3"),
        "dci": custom("0.5 0.4 0.3 1", NSSpaceID=13),
        "adobe": a.color((0.5, 0.4, 0.3), "adobe"),
        "linear": custom("0.5 0.25 0 1", NSSpaceID=16),
        "white": a.gray(2 / 3), "device white": a.gray(0.5, 0.25, "device"),
        "gamma22": a.gray(2 / 3, 0.75, "gamma22"), "clear": a.gray(0, 0),
        "generic gray": raw(NSColorSpace=3, NSWhite="0.5\0",
                            NSCustomColorSpace=a.color_space(NSID=2, NSModel=0)),
        "extended gray": custom("0.5 1", NSSpaceID=15, NSModel=0),
        "cmyk": a.cmyk(0.25, 0.5, 0, 0.5), "cymk": raw(NSColorSpace=5, NSCYMK="0 0 0 0.25 0.5"),
        "custom cmyk": custom("0 0 1 0 0.5", NSID=3, NSModel=2),
        "no nul": raw(NSColorSpace=1, NSRGB="1 0.5 0"),
        "plain object": raw(NSColorSpace=1, NSRGB=a.data(b"1 0.5 0\0")),
        "text object": raw(NSColorSpace=1, NSRGB=a.add("1 0.5 0")),
        "tiny": raw(NSColorSpace=1, NSRGB="7.043773371e-05 1e-400 1e400\0"),
        "junk": raw(NSColorSpace=1, NSRGB="0.5 abc 1\0"),
        "not numbers": raw(NSColorSpace=1, NSRGB="nan inf 0.5\0"),
        "many": raw(NSColorSpace=1, NSRGB=" ".join(["0.5"] * 1000)),
        "none": raw(NSColorSpace=1), "empty": raw(NSColorSpace=1, NSRGB="\0"),
        "nothing": raw(), "unknown space": raw(NSColorSpace=99, NSWhite="0.5\0"),
        "wrong key": raw(NSColorSpace=1, NSWhite="0.5\0"),
        "space is text": raw(NSColorSpace="1", NSRGB="0 1 0"),
        "wrong count": custom("0.1 0.2 0.3", legacy="0 1 0\0", NSID=7),
        "unknown custom": custom("0.1 0.2 0.3 1", legacy="0 1 0\0", NSID=77),
        "catalog": a.catalog_color("textColor", a.color((0, 1, 0))),
        "catalog alone": a.catalog_color("controlTextColor", None),
        "catalog light": a.catalog_color("textBackgroundColor", None),
        "catalog loop": loop,
        "pattern": a.pattern_color(a.array(["any object"])),
        "icc": custom("0.5 0.4 0.3 0.5", icc=adobe),
        "icc wrapped": raw(NSColorSpace=1, NSRGB="1 0 1\0", NSComponents="0.5 0.4 0.3 1",
                           NSCustomColorSpace=a.obj(["NSColorSpace", "NSObject"],
                                                    {"NSICC": a.mutable_data(adobe)})),
        "icc ignored": custom("0.5 0.4 0.3 1", icc=adobe, NSID=7),
        "icc gray": custom("0.5 1", icc=icc_profiles.gray(1.8), NSModel=0),
        "icc cmyk": custom("0 0 0 0.5 1", icc=icc_profiles.cmyk(), NSModel=2),
        "icc truncated": custom("0.5 0.4 0.3 1", legacy="0 1 0\0", icc=adobe[:200]),
        "icc header": custom("0.5 0.4 0.3 1", legacy="0 1 0\0", icc=adobe[:20]),
        "icc empty": custom("0.5 0.4 0.3 1", legacy="0 1 0\0", icc=b"")}
    return a.to_bytes()


SQUARE = [("M", 1, 2), ("L", 5, 2), ("L", 5, 6), ("L", 1, 6), ("Z",)]


def paths():
    """Paths, shadows and transforms of several writers, and such as none writes."""
    a = KeyedArchive()

    def raw(blob=b"", **fields):
        return a.obj(["NSBezierPath", "NSObject"], {"NSSegments": blob, **fields})

    def transform(blob):
        return a.obj(["NSAffineTransform", "NSObject"], {"NSTransformStruct": blob})

    floats = lambda *values: struct.pack(f">{len(values)}f", *values)
    move = b"\0" + floats(1, 2)
    line = b"\1" + floats(3, 4)
    curve = b"".join(b"\2" + floats(x, x + 1) for x in (5, 6, 7))
    quad = b"\4" + floats(4, 2) + b"\4" + floats(7, 5)
    a.top = {
        "plain": a.bezier_path([]),
        "square": a.bezier_path(SQUARE),
        "bare close": a.bezier_path(SQUARE, move_after_close=False),
        "everything": a.bezier_path(
            [("M", 0.1, -3), ("C", 1, 2, 3, 4, 5, 6)], line_width=2.5, cap=1, join=2, winding=1,
            miter=4.0, flatness=0.25, dash=(6, 3.5), phase=1.25),
        "defaults written": a.bezier_path(SQUARE, write_defaults=True, flatness=Float32(0.6)),
        "other names": a.bezier_path(SQUARE, cap=2, join=1, keys=KeyedArchive.PATH_KEYS_ALT),
        "any names": raw(move + line, MyEndCapKind=1, theJoin=Float32(2), FillWindingX=True,
                         LineDashes=a.array([4, 2.5])),
        "known names first": raw(move + line, aCap=2, NSCapStyle=1, NSDashPatterns=floats(7, 8),
                                 ADash=a.array([1])),
        "dash in an array": raw(move + line, NSDashPatterns=a.array([3, Float32(1.5), True]),
                                NSDashPhase=2),
        "dash data object": raw(move + line, NSDashPatterns=a.data(floats(2, 1))),
        "dash cut": raw(move + line, NSDashPatterns=floats(2, 1) + b"\x40"),
        "phase alone": raw(move + line, NSDashPhase=3.0),
        "styles out of range": raw(move + line, NSCapStyle=3, NSJoinStyle=-1, NSWindingRule=1 << 40),
        "quadratic": raw(move + quad),
        "segments in an object": raw(a.data(move + line)),
        "line first": raw(line + move + line),
        "curve first": raw(curve + line),
        "unknown kind": raw(move + line + b"\5" + floats(9, 9) + line),
        "short tail": raw(move + line + line[:8]),
        "curve cut": raw(move + line + curve[:18]),
        "curve of other kinds": raw(move + line + curve[:18] + line),
        "shadow": a.shadow(3, -4, 5, a.color((0, 1, 0, 0.25))),
        "shadow alone": a.shadow(),
        "shadow by size": a.obj(["NSShadow", "NSObject"], {"NSShadowOffset": a.size(6, -7)}),
        "shadow of nonsense": a.shadow(float("nan"), float("inf"), -3.0),
        "transform": transform(floats(1, 2, 3, 4, 5, 6)),
        "diagonal": transform(floats(2, 3, 5, 6)),
        "translation": transform(b"\1" + floats(7, 8)),
        "scale": transform(b"\2" + floats(7, 8)),
        "identity": a.obj(["NSAffineTransform", "NSObject"], {}),
        "transform cut": transform(floats(1, 2))}
    return a.to_bytes()


def gradients():
    """The same gradient, red at 0.25 to blue at 0.75, in every form that might be its own, and
    forms that leave something out."""
    a = KeyedArchive()
    red, blue, green = a.color((1, 0, 0)), a.color((0, 0, 1)), a.color((0, 1, 0))
    stops = [(red, 0.25), (blue, 0.75)]
    colors = a.array([red, blue])

    def raw(**fields):
        return a.obj(["NSGradient", "NSObject"], fields)

    def groups(code, count, before):
        """Locations among the components of their colours: grey, RGB or CMYK with alpha."""
        components = {3: ((1, 1), (0.25, 1)), 5: ((1, 0, 0, 1), (0, 0, 1, 1)),
                      6: ((0, 1, 1, 0, 1), (1, 1, 0, 0, 1))}[count]
        values = [v for (_, at), c in zip(stops, components)
                  for v in ((at, *c) if before else (*c, at))]
        return struct.pack(code[0] + str(len(values)) + code[1], *values)

    same = {
        "documented": a.gradient(stops),
        "unsorted": a.gradient(stops[::-1]),
        "current names": a.gradient(stops, ("colors", "locations", "space")),
        "any names": a.gradient(stops, ("x1", "x2", "x3")),
        "without space": a.gradient(stops, space=None),
        "numbered": raw(NSColor0=red, NSColor1=blue, NSLocation0=0.25, NSLocation1=0.75),
        "dotted": raw(**{"NSColor.0": red, "NSColor.1": blue, "NSLocation.0": a.number(0.25),
                         "NSLocation.1": 0.75}),
        "dictionaries": raw(stops=a.array([a.dictionary({"c": blue, "at": 0.75}),
                                           a.dictionary({"c": red, "at": 0.25})])),
        "other arrays beside": raw(names=a.array(["a", "b"]), numbers=a.array([1.0, 2.0, 3.0]),
                                   fields=colors, at=a.array([0.25, 0.75]))}
    for code in (">d", "<d", ">f", "<f"):
        same["data " + code] = a.gradient(stops, locations="data:" + code)
        # Locations after CMYK, and CMYK in floats, cannot be told from other readings.
        for count in (3, 5, 6) if code[1] == "d" else (3, 5):
            for before in (True, False)[:1 if count == 6 else 2]:
                same[f"groups of {count} {code} {before}"] = raw(
                    NSColors=colors, _componentArray=groups(code, count, before))
    a.top = {**{"same " + name: gradient for name, gradient in same.items()},
             "evenly": a.gradient([(red, 0), (blue, 0), (green, 0)], locations="none"),
             "components only": raw(NSColors=colors, data=struct.pack("<8d", *[9.0] * 8)),
             "locations too many": raw(NSColors=colors, NSLocations=a.array([0.1, 0.2, 0.3])),
             "outside": a.gradient([(red, -3), (blue, 7)]),
             "one": a.gradient([(green, 0.5)]),
             "colors and others": raw(NSColors=a.array([red, "text", blue])),
             "nothing": raw(), "no colors": raw(NSColors=a.array([1, 2]))}
    return a.to_bytes()


def pictures():
    """Bitmaps and pictures in the forms of several writers: one red pixel, or two blue ones."""
    a = KeyedArchive()
    red = keyed_archive.tiff_rgba(1, 1, b"\xff\0\0\xff")
    blue = keyed_archive.tiff_rgba(2, 1, b"\0\0\xff\xff" * 2, premultiplied=False)
    chunk = lambda name, body: (struct.pack(">I", len(body)) + name + body +
                                struct.pack(">I", zlib.crc32(name + body)))
    png = (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">2I5B", 1, 1, 8, 2, 0, 0, 0)) +
           chunk(b"IDAT", zlib.compress(b"\0\xff\0\0")) + chunk(b"IEND", b""))
    kind = lambda name: [name, "NSImageRep", "NSObject"]
    rep = lambda name, **fields: a.obj(kind(name), fields)
    a.top = {
        "bitmap": a.bitmap(red), "with direction": a.bitmap(blue, 0),
        "inline": rep("NSBitmapImageRep", NSTIFFRepresentation=red),
        "png": rep("NSBitmapImageRep", NSTIFFRepresentation=a.mutable_data(png)),
        "other key": rep("NSBitmapImageRep", Picture=a.data(red), Size=7),
        "cached": rep("NSCachedImageRep", NSTIFFRepresentation=a.data(red), NSCacheWindowBPS=8,
                      NSCacheWindowColorSpace=a.add("NSCalibratedRGBColorSpace")),
        "no picture": rep("NSBitmapImageRep", NSTIFFRepresentation=a.data(b"MM\0*nothing")),
        "cut": a.bitmap(red[:40]), "nothing": rep("NSBitmapImageRep"),
        "image": a.image([a.bitmap(red)], (1, 1)),
        "image of two": a.image([a.bitmap(red), a.bitmap(blue)], (1, 1)),
        "image, flat": a.obj(["NSImage", "NSObject"], {"NSReps": a.array([a.bitmap(blue)])}),
        "image with data": a.obj(["NSImage", "NSObject"], {"NSImageData": a.data(red)}),
        "image by name": a.obj(["NSImage", "NSObject"], {"NSName": a.add("NSUser")}),
        "image of a page": a.image([rep("NSPDFImageRep", NSPDFData=a.data(b"%PDF-1.4"))]),
        "image in itself": a.reserve(),
        "pattern": a.pattern_color(a.image([a.bitmap(red)], (1, 1)))}
    loop = a.top["image in itself"]
    a.fill(loop, ["NSImage", "NSObject"], {"NSReps": a.array([a.array([0, loop])])})
    return a.to_bytes()


def everything_finite():
    a = KeyedArchive()
    a.top = {"list": a.array(["na\u00efve", 7, -1, 0.25, True, b"bytes"]), "f": 0.5}
    return a.to_bytes()


def record(fields, chain=("NSArray", "NSObject")):
    a = KeyedArchive()
    return a.to_bytes(root=a.obj(list(chain), fields, raw=True))


def with_objects(objects, top=UID(1), **changes):
    plist = {"$version": 100000, "$archiver": "NSKeyedArchiver", "$top": {"root": top},
             "$objects": ["$null"] + objects}
    plist.update(changes)
    return write_bplist({k: v for k, v in plist.items() if v is not None})


NSARRAY = {"$classname": "NSArray", "$classes": ["NSArray", "NSObject"]}


def chain_of_arrays(count, inward):
    """Arrays each holding the next; inward: from the root, or all listed by the root too."""
    objects = [{"NS.objects": [UID(i + 2)], "$class": UID(count + 1)} for i in range(1, count)]
    objects.insert(0, {"NS.objects": [UID(2)] if inward else
                       [UID(i) for i in range(count, 1, -1)], "$class": UID(count + 1)})
    objects[-1] = {"NS.objects": [], "$class": UID(count + 1)}
    return with_objects(objects[:count] + [NSARRAY])


def chain_through_aliases(count):
    """Arrays, all listed by the root, that each hold the one before by another name, which they
    have looked up themselves while they were incomplete."""
    objects = [{"NS.objects": [UID(i) for i in range(2, count + 2)], "$class": UID(2 * count + 2)}]
    for i in range(count):
        names = [UID(count + 2 + i)] + ([UID(count + 1 + i)] if i else [])
        objects.append({"NS.objects": names, "$class": UID(2 * count + 2)})
    objects += [{"CF$UID": i + 2} for i in range(count)]
    return with_objects(objects + [NSARRAY])


def doubled(levels):
    """Arrays that each hold the next one twice: followed blindly, two to the power of levels."""
    objects = [{"NS.objects": [UID(i + 2)] * 2, "$class": UID(levels + 1)} for i in range(levels)]
    objects[-1]["NS.objects"] = []
    return with_objects(objects + [NSARRAY])


def bomb():
    """Many records that share one long list: little to read, a lot to hold."""
    items = [UID(1)] * 50000
    arrays = [{"NS.objects": items, "$class": UID(2)} for _ in range(5000)]
    root = {"NS.objects": [UID(i + 3) for i in range(5000)], "$class": UID(2)}
    return with_objects(["item", NSARRAY] + arrays + [root], top=UID(5003))


def bad():
    yield "version_missing", with_objects(["x"], **{"$version": None})
    yield "version_other", with_objects(["x"], **{"$version": 100001})
    yield "version_text", with_objects(["x"], **{"$version": "100000"})
    yield "version_real", with_objects(["x"], **{"$version": 100000.0})
    yield "top_missing", with_objects(["x"], **{"$top": None})
    yield "top_array", with_objects(["x"], **{"$top": [UID(1)]})
    yield "objects_missing", with_objects(["x"], **{"$objects": None})
    yield "objects_dictionary", with_objects(["x"], **{"$objects": {"0": "$null", "1": "x"}})
    yield "objects_empty", with_objects([], **{"$objects": []})
    yield "not_an_archive", write_bplist({"hello": 1})
    yield "top_level_array", write_bplist(["$version", 100000])
    yield "uid_out_of_range", with_objects(["x"], top=UID(2))
    yield "uid_far_out", with_objects(["x"], top=UID(0xFFFFFFFF))
    yield "class_missing", with_objects([{"NS.objects": []}])
    yield "class_nil", with_objects([{"NS.objects": [], "$class": UID(0)}])
    yield "class_inline", with_objects([{"NS.objects": [], "$class": "NSArray"}])
    yield "class_itself", with_objects([{"NS.objects": [], "$class": UID(1)}])
    yield "class_out_of_range", with_objects([{"NS.objects": [], "$class": UID(9)}])
    yield "class_string", with_objects([{"NS.objects": [], "$class": UID(2)}, "NSArray"])
    yield "class_name_number", with_objects([{"NS.objects": [], "$class": UID(2)},
                                             {"$classname": 1, "$classes": []}])
    yield "classes_empty", with_objects([{"NS.objects": [], "$class": UID(2)},
                                         {"$classname": "NSArray", "$classes": []}])
    yield "class_unknown", with_objects([{"$class": UID(2)},
                                         {"$classname": "NoSuch", "$classes": ["NoSuch", "NSArray"]}])
    yield "class_hints_wrong", with_objects([{"$class": UID(2)},
                                             {"$classname": "NoSuch", "$classhints": [1, "No"]}])
    yield "class_record_as_object", with_objects([NSARRAY])
    yield "element_array", with_objects([["x"]])
    yield "element_uid", with_objects([UID(2), "x"])
    yield "list_text", record({"NS.objects": "text"})
    yield "list_inline_text", record({"NS.objects": ["text"]})
    yield "list_out_of_range", record({"NS.objects": [UID(77)]})
    yield "keys_missing", record({"NS.objects": [UID(0)]}, ("NSDictionary", "NSObject"))
    yield "keys_nil", record({"NS.keys": [UID(0)], "NS.objects": [UID(0)]},
                             ("NSDictionary", "NSObject"))
    yield "string_number", record({"NS.string": 5}, ("NSMutableString", "NSString", "NSObject"))
    yield "date_text", record({"NS.time": "now"}, ("NSDate", "NSObject"))
    yield "data_number", record({"NS.data": 5}, ("NSMutableData", "NSData", "NSObject"))
    yield "number_text", record({"NS.number": "5"}, ("NSNumber", "NSObject"))
    yield "value_unknown", record({"NS.special": 77}, ("NSValue", "NSObject"))
    yield "value_special_text", record({"NS.special": "1"}, ("NSValue", "NSObject"))
    yield "url_nothing", record({}, ("NSURL", "NSObject"))
    yield "reference_loop", with_objects([{"CF$UID": 2}, {"CF$UID": 1}])
    yield "reference_negative", with_objects([{"CF$UID": -1}])
    yield "nested_255", chain_of_arrays(255, True)
    yield "nested_300", chain_of_arrays(300, True)
    yield "nested_60000", chain_of_arrays(60000, True)
    yield "built_upwards_60000", chain_of_arrays(60000, False)
    yield "aliases_200", chain_through_aliases(200)
    yield "aliases_60000", chain_through_aliases(60000)
    yield "doubled_200", doubled(200)
    yield "unused_300000", with_objects([{"NS.objects": [], "$class": UID(2)}, NSARRAY] +
                                        [[i] for i in range(150000)])
    yield "shared_list", bomb()
    a = KeyedArchive()
    yield "inside", a.to_bytes(root=a.obj(["Sample", "NSObject"], {
        "broken": a.obj(["NoSuch", "NSObject"], {}), "after": 9}))


def main(argv):
    for folder, samples in (("good", good), ("bad", bad), ("text", text_archives.samples)):
        path = os.path.join(argv[1], folder)
        os.makedirs(path, exist_ok=True)
        for name, data in samples():
            with open(os.path.join(path, name + ".plist"), "wb") as f:
                f.write(data)
    with open(os.devnull, "w") as quiet:
        stdout, sys.stdout = sys.stdout, quiet
        try:
            failures = keyed_archive.main(["", os.path.join(argv[1], "samples")])
        finally:
            sys.stdout = stdout
    return failures


if __name__ == "__main__":
    sys.exit(main(sys.argv))
