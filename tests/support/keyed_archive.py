#!/usr/bin/env python3
"""Independent writer (and kind-preserving reader) of keyed archives.

Stdlib only.  Meant for tests: it builds binary property lists in the
NSKeyedArchiver layout without using any code of the engine under test, and it
reads archives back while keeping the *on-disk kind* of every scalar (bool,
int width, 4- or 8-byte real, data, string, UID), which plistlib hides.

    a = KeyedArchive()
    root = a.reserve()                          # becomes $objects[1]
    a.fill(root, ["Box", "NSObject"], {
        "Visible": True,                        # encodeBool:forKey:
        "Count": 3,                             # encodeInt / encodeInteger
        "Angle": Float32(12.5),                 # encodeFloat:forKey:
        "Width": 640.0,                         # encodeDouble:forKey:
        "Mask": b"\\1\\0\\1",                     # encodeBytes:length:forKey:
        "Origin": a.point(1, 2),                # encodePoint:forKey:
        "Name": a.add("hello"),                 # encodeObject:forKey:
        "Fill": a.color((1, 0, 0, 1)),          # an archived NSColor
        "Owner": None,                          # encodeObject: nil
    })
    data = a.to_bytes(root=root)

Run the file directly for its self test, which can leave its samples in a
folder, or to list an archive with the kinds it stores:

    keyed_archive.py [OUTPUT_DIR]
    keyed_archive.py --describe FILE
"""
import math
import os
import plistlib
import shutil
import struct
import subprocess
import sys
from plistlib import UID

__all__ = ["KeyedArchive", "Float32", "Wide", "UID", "RawPlist", "describe",
           "write_bplist", "run_info", "parse_run_info", "segments",
           "parse_segments", "tiff_rgba", "srgb_to_generic_rgb",
           "gray22_to_generic_gray", "point_string", "size_string",
           "rect_string", "transform_bytes"]


class Float32(float):
    """A number that goes to disk as a 4-byte real (encodeFloat:forKey:)."""


class Wide(int):
    """An integer forced to the 8-byte form (negative numbers get it anyway)."""


# --------------------------------------------------------------------------
# binary property list, writing

def _int_bytes(value):
    if value < 0 or isinstance(value, Wide):
        return b"\x13" + struct.pack(">q", value)
    if value <= 0xFF:
        return b"\x10" + struct.pack(">B", value)
    if value <= 0xFFFF:
        return b"\x11" + struct.pack(">H", value)
    if value <= 0xFFFFFFFF:
        return b"\x12" + struct.pack(">I", value)
    if value <= 0x7FFFFFFFFFFFFFFF:
        return b"\x13" + struct.pack(">q", value)
    return b"\x14" + value.to_bytes(16, "big")


def _counted(high, count):
    if count < 15:
        return bytes([high << 4 | count])
    return bytes([high << 4 | 15]) + _int_bytes(count)


def _width(value):
    for size in (1, 2, 4):
        if value < 1 << (8 * size):
            return size
    return 8


def _scalar_bytes(value):
    if value is True:
        return b"\x09"
    if value is False:
        return b"\x08"
    if isinstance(value, UID):
        size = _width(value.data)
        return bytes([0x80 | size - 1]) + value.data.to_bytes(size, "big")
    if isinstance(value, Float32):
        return b"\x22" + struct.pack(">f", value)
    if isinstance(value, float):
        return b"\x23" + struct.pack(">d", value)
    if isinstance(value, int):
        return _int_bytes(value)
    if isinstance(value, (bytes, bytearray)):
        return _counted(4, len(value)) + bytes(value)
    if isinstance(value, str):
        try:
            raw = value.encode("ascii")
            return _counted(5, len(raw)) + raw
        except UnicodeEncodeError:
            raw = value.encode("utf-16-be", "surrogatepass")
            return _counted(6, len(raw) // 2) + raw
    raise TypeError(f"not a property-list scalar: {value!r}")


def write_bplist(top, ref_size=None, offset_size=None, share_scalars=True):
    """bplist00 bytes of a tree of dicts, lists and scalars.

    ref_size and offset_size force larger field widths than needed, and
    share_scalars=False writes every scalar anew; both exist to exercise a
    reader, real files use the smallest power-of-two widths."""
    order, index = [], {}

    def visit(node):
        if isinstance(node, (dict, list, tuple)):
            key = ("container", id(node))
        else:
            key = (type(node).__name__, repr(node)) if share_scalars else ("one", len(order))
        if key in index:
            return index[key]
        number = index[key] = len(order)
        entry = [node, None]
        order.append(entry)
        if isinstance(node, dict):
            keys = [visit(k) for k in node]
            entry[1] = keys + [visit(v) for v in node.values()]
        elif isinstance(node, (list, tuple)):
            entry[1] = [visit(v) for v in node]
        return number

    visit(top)
    ref_size = ref_size or _width(len(order))
    out, offsets = bytearray(b"bplist00"), []
    for node, refs in order:
        offsets.append(len(out))
        if refs is None:
            out += _scalar_bytes(node)
            continue
        out += _counted(0xD, len(node)) if isinstance(node, dict) else _counted(0xA, len(node))
        for ref in refs:
            out += ref.to_bytes(ref_size, "big")
    table = len(out)
    offset_size = offset_size or _width(table)
    for offset in offsets:
        out += offset.to_bytes(offset_size, "big")
    out += struct.pack(">5xBBBQQQ", 0, offset_size, ref_size, len(order), 0, table)
    return bytes(out)


# --------------------------------------------------------------------------
# binary property list, reading with the kinds kept

class RawPlist:
    """Every object of a bplist as (kind, value); containers hold indices."""

    def __init__(self, data):
        if data[:7] != b"bplist0" or len(data) < 41:
            raise ValueError("not a binary property list")
        (self.offset_size, self.ref_size, self.count, self.top,
         self.table) = struct.unpack(">6xBBQQQ", data[-32:])
        if self.table + self.count * self.offset_size + 32 != len(data):
            raise ValueError("length does not match the trailer")
        self.data = data

    def _uint(self, pos, size):
        return int.from_bytes(self.data[pos:pos + size], "big")

    def _count(self, pos):
        low = self.data[pos] & 15
        if low < 15:
            return low, pos + 1
        size = 1 << (self.data[pos + 1] & 15)
        return self._uint(pos + 2, size), pos + 2 + size

    def object(self, number):
        pos = self._uint(self.table + number * self.offset_size, self.offset_size)
        marker = self.data[pos]
        high, low = marker >> 4, marker & 15
        if marker in (8, 9):
            return "bool", marker == 9
        if high == 1:
            size = 1 << low
            value = self._uint(pos + 1, size)
            if size == 8 and value >> 63:
                value -= 1 << 64
            return f"int{8 * size}", value
        if marker == 0x22:
            return "real32", struct.unpack(">f", self.data[pos + 1:pos + 5])[0]
        if marker == 0x23:
            return "real64", struct.unpack(">d", self.data[pos + 1:pos + 9])[0]
        if marker == 0x33:
            return "date", struct.unpack(">d", self.data[pos + 1:pos + 9])[0]
        if high == 8:
            return "uid", self._uint(pos + 1, low + 1)
        count, pos = self._count(pos)
        if high == 4:
            return "data", self.data[pos:pos + count]
        if high == 5:
            return "ascii", self.data[pos:pos + count].decode("ascii")
        if high == 6:
            return "utf16", self.data[pos:pos + 2 * count].decode("utf-16-be", "surrogatepass")
        refs = [self._uint(pos + i * self.ref_size, self.ref_size)
                for i in range(count * (2 if high == 13 else 1))]
        if high in (10, 12):
            return "array", refs
        if high == 13:
            return "dict", dict(zip(refs[:count], refs[count:]))
        raise ValueError(f"unknown marker {marker:#x}")

    def tree(self, number=None):
        """Object as (kind, value), containers resolved one level at a time."""
        kind, value = self.object(self.top if number is None else number)
        if kind == "array":
            return kind, [self.tree(i) for i in value]
        if kind == "dict":
            return kind, {self.object(k)[1]: self.tree(v) for k, v in value.items()}
        return kind, value

    def archive(self):
        """(top, objects) of a keyed archive, scalars as (kind, value)."""
        kind, plist = self.tree()
        if kind != "dict" or "$objects" not in plist or "$top" not in plist:
            raise ValueError("not a keyed archive")
        return plist["$top"][1], plist["$objects"][1]


def describe(data):
    """A listing of an archive that also shows the kinds."""
    top, objects = RawPlist(data).archive()

    def text(node):
        kind, value = node
        if kind == "dict":
            return "{" + ", ".join(f"{k}: {text(v)}" for k, v in value.items()) + "}"
        if kind == "array":
            return "[" + ", ".join(text(v) for v in value) + "]"
        if kind == "uid":
            return f"->{value}"
        if kind == "data":
            shown = value[:48].hex()
            return f"data({len(value)}) {shown}{'...' if len(value) > 48 else ''}"
        if kind in ("ascii", "utf16"):
            return f"{value!r}"
        return f"{kind} {value}"

    lines = ["$top " + text(("dict", top))]
    lines += [f"{i:3d} {text(o)}" for i, o in enumerate(objects)]
    return "\n".join(lines)


# --------------------------------------------------------------------------
# texts and blobs that appear inside archived objects

def _num(value):
    if value == int(value) and abs(value) < 1e16:
        return str(int(value))
    return "%.17g" % value


def point_string(x, y):
    return "{%s, %s}" % (_num(x), _num(y))


size_string = point_string


def rect_string(x, y, w, h):
    return "{%s, %s}" % (point_string(x, y), size_string(w, h))


def _components(values):
    return " ".join("%.10g" % v for v in values)


_SRGB_TO_GENERIC = ((0.97485259, 0.02730371, -0.00215159),
                    (-0.02000935, 1.05420210, -0.03421968),
                    (0.00168632, 0.00155485, 0.99675007))


def _srgb_linear(v):
    return v / 12.92 if v <= 0.04045 else ((v + 0.055) / 1.055) ** 2.4


def srgb_to_generic_rgb(r, g, b):
    """sRGB to the gamma-1.8 Generic RGB numbers that NSRGB holds in space 1."""
    linear = [_srgb_linear(v) for v in (r, g, b)]
    out = []
    for row in _SRGB_TO_GENERIC:
        v = min(1.0, max(0.0, sum(m * c for m, c in zip(row, linear))))
        out.append(v ** (1 / 1.8))
    return tuple(out)


def gray22_to_generic_gray(w):
    """Generic Gray Gamma 2.2 to the gamma-1.8 gray that NSWhite holds in space 3."""
    return _srgb_linear(w) ** (1 / 1.8)


MOVE, LINE, CURVE, CLOSE, QUAD = range(5)
_POINTS = {MOVE: 1, LINE: 1, CURVE: 3, CLOSE: 1, QUAD: 2}


def segments(elements, move_after_close=True):
    """NSSegments bytes.  elements: ("M", x, y) ("L", x, y)
    ("C", x1, y1, x2, y2, x, y) ("Q", cx, cy, x, y) ("Z",)."""
    code = {"M": MOVE, "L": LINE, "C": CURVE, "Z": CLOSE, "Q": QUAD}
    out, start = bytearray(), (0.0, 0.0)

    def put(kind, pairs):
        for x, y in pairs:
            out.extend(struct.pack(">Bff", kind, x, y))

    for element in elements:
        kind, numbers = code[element[0]], element[1:]
        pairs = list(zip(numbers[0::2], numbers[1::2]))
        if kind == MOVE:
            start = pairs[0]
        if kind == CLOSE:
            pairs = [start]
        if len(pairs) != _POINTS[kind]:
            raise ValueError(f"wrong number of points: {element!r}")
        put(kind, pairs)
        if kind == CLOSE and move_after_close:
            put(MOVE, [start])
    return bytes(out)


def parse_segments(data):
    """The elements of NSSegments bytes (inverse of segments, moves kept)."""
    out, pos = [], 0
    while pos + 9 <= len(data):
        kind = data[pos]
        numbers = []
        for _ in range(_POINTS[kind]):
            if pos + 9 > len(data):
                raise ValueError("truncated segment")
            numbers += struct.unpack(">ff", data[pos + 1:pos + 9])
            pos += 9
        out.append(("MLCZQ"[kind],) + (() if kind == CLOSE else tuple(numbers)))
    return out


def _varint(value):
    out = bytearray()
    while value > 127:
        out.append(128 | value & 127)
        value >>= 7
    out.append(value)
    return bytes(out)


def run_info(pairs):
    """NSAttributeInfo bytes of (length in UTF-16 units, attribute index) pairs."""
    return b"".join(_varint(length) + _varint(index) for length, index in pairs)


def parse_run_info(data):
    numbers, value, shift = [], 0, 0
    for byte in data:
        value |= (byte & 127) << shift
        shift += 7
        if byte < 128:
            numbers.append(value)
            value = shift = 0
    return list(zip(numbers[0::2], numbers[1::2]))


def transform_bytes(m11, m12, m21, m22, tx, ty):
    """NSTransformStruct bytes; None for the identity (the key is then absent)."""
    if m12 or m21:
        return struct.pack(">6f", m11, m12, m21, m22, tx, ty)
    if m11 != 1 or m22 != 1:
        if tx or ty:
            return struct.pack(">4f", m11, m22, tx, ty)
        return struct.pack(">Bff", 2, m11, m22)
    if tx or ty:
        return struct.pack(">Bff", 1, tx, ty)
    return None


def tiff_rgba(width, height, pixels, premultiplied=True, icc=None):
    """A one-strip uncompressed big-endian RGBA TIFF, the form that archived
    bitmap representations hold most often.  pixels: 4*w*h bytes, top row first."""
    if len(pixels) != 4 * width * height:
        raise ValueError("pixel data has the wrong length")
    short, long_ = 3, 4
    entries = [(256, short, 1, width), (257, short, 1, height), (258, short, 4, "bits"),
               (259, short, 1, 1), (262, short, 1, 2), (273, long_, 1, "strip"),
               (274, short, 1, 1), (277, short, 1, 4), (278, short, 1, height),
               (279, long_, 1, len(pixels)), (284, short, 1, 1),
               (338, short, 1, 1 if premultiplied else 2), (339, short, 4, "formats")]
    if icc:
        entries.append((34675, 7, len(icc), "icc"))
    strip = 8
    ifd = strip + len(pixels) + (len(pixels) & 1)
    after = ifd + 2 + 12 * len(entries) + 4
    places = {"strip": strip, "bits": after, "formats": after + 8, "icc": after + 16}
    out = bytearray(struct.pack(">2sHI", b"MM", 42, ifd)) + pixels
    out += b"\0" * (ifd - len(out))
    out += struct.pack(">H", len(entries))
    for tag, kind, count, value in entries:
        out += struct.pack(">HHI", tag, kind, count)
        if isinstance(value, str):
            out += struct.pack(">I", places[value])
        elif kind == short:
            out += struct.pack(">HH", value, 0)
        else:
            out += struct.pack(">I", value)
    out += struct.pack(">I", 0) + struct.pack(">4H", 8, 8, 8, 8) + struct.pack(">4H", 1, 1, 1, 1)
    return bytes(out + (icc or b""))


# --------------------------------------------------------------------------
# the archive

class KeyedArchive:
    """Collects $objects and $top; every helper answers the UID of its object."""

    NULL = UID(0)

    def __init__(self, archiver="NSKeyedArchiver", version=100000, wide_floats=True):
        self.archiver, self.version = archiver, version
        self.objects = ["$null"]
        self.top = {}
        self._classes, self._shared = {}, {}
        # 64-bit writers store CGFloat fields as 8-byte reals, 32-bit ones as 4-byte
        self.cgfloat = float if wide_floats else Float32

    # objects ---------------------------------------------------------------

    def reserve(self):
        """A slot to be filled later (root objects, cycles)."""
        self.objects.append(None)
        return UID(len(self.objects) - 1)

    def class_uid(self, chain, hints=None):
        key = (tuple(chain), tuple(hints or ()))
        if key not in self._classes:
            record = {"$classname": chain[0], "$classes": list(chain)}
            if hints:
                record["$classhints"] = list(hints)
            self.objects.append(record)
            self._classes[key] = UID(len(self.objects) - 1)
        return self._classes[key]

    def fill(self, slot, chain, fields, hints=None, raw=False):
        record = {}
        for key, value in fields.items():
            if key.startswith("$") and not raw:
                key = "$" + key
            record[key] = self._field(key, value, raw)
        record["$class"] = self.class_uid(chain, hints)
        self.objects[slot.data] = record
        return slot

    def obj(self, chain, fields, hints=None, raw=False):
        """An instance; chain is its class, superclass, ... , "NSObject"."""
        return self.fill(self.reserve(), chain, fields, hints, raw)

    @staticmethod
    def _field(key, value, raw):
        if value is None:
            return KeyedArchive.NULL
        if isinstance(value, str) and not raw:
            raise TypeError(f"{key}: texts are objects, use add({value!r})")
        if isinstance(value, (list, tuple)) and not raw:
            raise TypeError(f"{key}: arrays are objects, use add([...])")
        return value

    def add(self, value, share=True):
        """UID of a value as encodeObject:forKey: stores it."""
        if value is None:
            return self.NULL
        if isinstance(value, UID):
            return value
        if isinstance(value, (list, tuple)):
            return self.array(value)
        if isinstance(value, dict):
            return self.dictionary(value)
        if not isinstance(value, (bool, int, float, str, bytes)):
            raise TypeError(f"cannot archive {value!r}")
        key = (type(value).__name__, repr(value))
        if share and key in self._shared:
            return self._shared[key]
        self.objects.append(value)
        self._shared[key] = UID(len(self.objects) - 1)
        return self._shared[key]

    def bare(self, value):
        """A value put into $objects as it stands (for malformed input)."""
        self.objects.append(value)
        return UID(len(self.objects) - 1)

    # Foundation --------------------------------------------------------------

    def string(self, text):
        return self.add(text)

    def mutable_string(self, text):
        return self.obj(["NSMutableString", "NSString", "NSObject"], {"NS.string": text}, raw=True)

    def string_bytes(self, text):
        """The NS.bytes form that coders other than the keyed archiver produce."""
        return self.obj(["NSMutableString", "NSString", "NSObject"],
                        {"NS.bytes": text.encode("utf-8")}, raw=True)

    def data(self, blob):
        return self.add(bytes(blob), share=False)

    def mutable_data(self, blob):
        return self.obj(["NSMutableData", "NSData", "NSObject"], {"NS.data": bytes(blob)}, raw=True)

    def number(self, value):
        return self.add(value)

    def null(self):
        return self.obj(["NSNull", "NSObject"], {})

    def array(self, items, mutable=False):
        chain = (["NSMutableArray"] if mutable else []) + ["NSArray", "NSObject"]
        slot = self.reserve()
        return self.fill(slot, chain, {"NS.objects": [self.add(i) for i in items]}, raw=True)

    def set(self, items, mutable=False):
        chain = (["NSMutableSet"] if mutable else []) + ["NSSet", "NSObject"]
        slot = self.reserve()
        return self.fill(slot, chain, {"NS.objects": [self.add(i) for i in items]}, raw=True)

    def dictionary(self, mapping, mutable=False):
        chain = (["NSMutableDictionary"] if mutable else []) + ["NSDictionary", "NSObject"]
        slot = self.reserve()
        return self.fill(slot, chain, {"NS.keys": [self.add(k) for k in mapping],
                                       "NS.objects": [self.add(v) for v in mapping.values()]},
                         raw=True)

    def date(self, unix_seconds):
        return self.obj(["NSDate", "NSObject"], {"NS.time": float(unix_seconds) - 978307200.0})

    def url(self, text, base=None):
        return self.obj(["NSURL", "NSObject"], {"NS.base": base, "NS.relative": self.add(text)})

    def point(self, x, y):
        return self.add(point_string(x, y), share=False)

    def size(self, w, h):
        return self.add(size_string(w, h), share=False)

    def rect(self, x, y, w, h):
        return self.add(rect_string(x, y, w, h), share=False)

    def value_point(self, x, y):
        return self.obj(["NSValue", "NSObject"], {"NS.pointval": self.point(x, y), "NS.special": 1})

    def value_size(self, w, h):
        return self.obj(["NSValue", "NSObject"], {"NS.sizeval": self.size(w, h), "NS.special": 2})

    def value_rect(self, x, y, w, h):
        return self.obj(["NSValue", "NSObject"], {"NS.rectval": self.rect(x, y, w, h), "NS.special": 3})

    def value_range(self, location, length):
        return self.obj(["NSValue", "NSObject"], {"NS.rangeval.location": self.add(location),
                                                  "NS.rangeval.length": self.add(length),
                                                  "NS.special": 4})

    def affine_transform(self, m11, m12, m21, m22, tx, ty):
        blob = transform_bytes(m11, m12, m21, m22, tx, ty)
        return self.obj(["NSAffineTransform", "NSObject"],
                        {} if blob is None else {"NSTransformStruct": blob})

    # colours -----------------------------------------------------------------

    _COLOR = ["NSColor", "NSObject"]

    def color(self, rgba, space="calibrated", icc=None, exposure=None):
        """rgba: (r, g, b[, a]); space: calibrated, device, srgb, p3, generic,
        extended_srgb, adobe.  icc: profile bytes for the named spaces."""
        r, g, b = rgba[:3]
        alpha = rgba[3] if len(rgba) > 3 else 1
        tail = [] if alpha == 1 else [alpha]

        def text(values):
            return (_components(list(values) + tail) + "\0").encode("ascii")

        if space == "device":
            return self.obj(self._COLOR, {"NSRGB": text((r, g, b)), "NSColorSpace": 2})
        if space == "calibrated":
            return self.obj(self._COLOR, {"NSRGB": text((r, g, b)), "NSColorSpace": 1})
        slot = self.reserve()
        ids = {"srgb": {"NSID": 7}, "adobe": {"NSID": 8}, "generic": {"NSID": 1},
               "p3": {"NSSpaceID": 12}, "extended_srgb": {"NSSpaceID": 14}}[space]
        legacy = (r, g, b) if space == "generic" else srgb_to_generic_rgb(r, g, b)
        fields = {"NSColorSpace": 1, "NSRGB": text(legacy),
                  "NSCustomColorSpace": self.color_space(icc=icc, **ids)}
        if space != "generic":
            fields["NSComponents"] = _components((r, g, b, alpha)).encode("ascii")
            if exposure is not None:
                fields["NSLinearExposure"] = str(exposure).encode("ascii")
        return self.fill(slot, self._COLOR, fields)

    def gray(self, white, alpha=1, space="calibrated", icc=None):
        """space: calibrated (NSColorSpace 3), device (4) or gamma22 (3 + custom space)."""
        tail = [] if alpha == 1 else [alpha]
        if space in ("calibrated", "device"):
            return self.obj(self._COLOR, {
                "NSColorSpace": 3 if space == "calibrated" else 4,
                "NSWhite": (_components([white] + tail) + "\0").encode("ascii")})
        slot = self.reserve()
        legacy = gray22_to_generic_gray(white)
        return self.fill(slot, self._COLOR, {
            "NSColorSpace": 3, "NSWhite": (_components([legacy] + tail) + "\0").encode("ascii"),
            "NSComponents": _components((white, alpha)).encode("ascii"),
            "NSCustomColorSpace": self.color_space(icc=icc, NSID=9, NSModel=0),
            "NSLinearExposure": b"1"})

    def cmyk(self, c, m, y, k, alpha=1):
        values = [c, m, y, k] + ([] if alpha == 1 else [alpha])
        return self.obj(self._COLOR, {"NSColorSpace": 5,
                                      "NSCMYK": (_components(values) + "\0").encode("ascii")})

    def catalog_color(self, name, fallback, catalog="System"):
        return self.obj(self._COLOR, {"NSColorSpace": 6, "NSCatalogName": self.add(catalog),
                                      "NSColorName": self.add(name), "NSColor": fallback})

    def pattern_color(self, image):
        return self.obj(self._COLOR, {"NSColorSpace": 10, "NSImage": image})

    def color_space(self, icc=None, **fields):
        slot = self.reserve()
        if icc is not None:
            fields["NSICC"] = self.data(icc)
        return self.fill(slot, ["NSColorSpace", "NSObject"], fields)

    # drawing objects -----------------------------------------------------------

    GRADIENT_KEYS = ("NSColors", "NSLocations", "NSColorSpace")

    def gradient(self, stops, keys=GRADIENT_KEYS, locations="numbers", space="default"):
        """stops: (colour UID, location) pairs.  The key names of the real class are
        not certain, so they can be chosen; locations: numbers (array of NSNumber),
        data:>d data:<d data:>f data:<f (inline bytes), none."""
        slot = self.reserve()
        fields = {keys[0]: self.array([c for c, _ in stops])}
        if locations == "numbers":
            fields[keys[1]] = self.array([float(at) for _, at in stops])
        elif locations.startswith("data:"):
            order, letter = locations[5:]
            fields[keys[1]] = struct.pack(f"{order}{len(stops)}{letter}", *[at for _, at in stops])
        if space == "default":
            space = self.color_space(NSID=7)
        if space is not None:
            fields[keys[2]] = space
        return self.fill(slot, ["NSGradient", "NSObject"], fields)

    def shadow(self, dx=0.0, dy=0.0, blur=0.0, color=None):
        """dy is in the y-up sense: a shadow below its object has dy < 0."""
        slot, fields = self.reserve(), {}
        if dx:
            fields["NSShadowHoriz"] = self.cgfloat(dx)
        if dy:
            fields["NSShadowVert"] = self.cgfloat(dy)
        if blur:
            fields["NSShadowBlurRadius"] = self.cgfloat(blur)
        if color is not None:
            fields["NSShadowColor"] = color
        return self.fill(slot, ["NSShadow", "NSObject"], fields)

    PATH_KEYS = {"cap": "NSCapStyle", "join": "NSJoinStyle", "winding": "NSWindingRule",
                 "dash": "NSDashPatterns", "phase": "NSDashPhase"}
    PATH_KEYS_ALT = {"cap": "NSLineCapStyle", "join": "NSLineJoinStyle", "winding": "NSWindingRule",
                     "dash": "NSDashPatterns", "phase": "NSDashPhase"}

    def bezier_path(self, elements, line_width=1.0, cap=0, join=0, winding=0, miter=10.0,
                    flatness=0.6, dash=(), phase=0.0, keys=PATH_KEYS, write_defaults=False,
                    move_after_close=True):
        fields = {}
        blob = segments(elements, move_after_close)
        if blob:
            fields["NSSegments"] = blob
        if line_width != 1 or write_defaults:
            fields["NSLineWidth"] = self.cgfloat(line_width)
        if cap or write_defaults:
            fields[keys["cap"]] = cap
        if join or write_defaults:
            fields[keys["join"]] = join
        if winding or write_defaults:
            fields[keys["winding"]] = winding
        if miter != 10 or write_defaults:
            fields["NSMiterLimit"] = self.cgfloat(miter)
        if flatness != 0.6 or write_defaults:
            fields["NSFlatness"] = self.cgfloat(flatness)
        if dash:
            fields[keys["dash"]] = struct.pack(f">{len(dash)}f", *dash)
            fields[keys["phase"]] = self.cgfloat(phase)
        return self.obj(["NSBezierPath", "NSObject"], fields)

    def bitmap(self, tiff, layout_direction=None):
        slot = self.reserve()
        fields = {"NSTIFFRepresentation": self.data(tiff)}
        if layout_direction is not None:
            fields["NSInternalLayoutDirection"] = layout_direction
        return self.fill(slot, ["NSBitmapImageRep", "NSImageRep", "NSObject"], fields)

    def image(self, reps, size=None, flags=0x20C00000):
        slot, fields = self.reserve(), {"NSImageFlags": flags}
        if size is not None:
            fields["NSSize"] = self.size(*size)
        fields["NSReps"] = self.array([self.array([0, rep]) for rep in reps], mutable=True)
        fields["NSColor"] = self.gray(0, 0)
        return self.fill(slot, ["NSImage", "NSObject"], fields)

    # text ----------------------------------------------------------------------

    def font(self, name, size, flags=16):
        slot = self.reserve()
        return self.fill(slot, ["NSFont", "NSObject"], {
            "NSName": self.add(name), "NSSize": self.cgfloat(size), "NSfFlags": flags})

    def font_descriptor(self, attributes):
        slot = self.reserve()
        return self.fill(slot, ["NSFontDescriptor", "NSObject"], {
            "NSFontDescriptorAttributes": self.dictionary(attributes, mutable=True)})

    def text_tab(self, location, kind=0, alignment=None, options=None):
        fields = {}
        if alignment:
            fields["NSTextAlignment"] = alignment
        if options is not None:
            fields["NSTabOptions"] = options
        if kind:
            fields["NSType"] = kind
        fields["NSLocation"] = self.cgfloat(location)
        return self.obj(["NSTextTab", "NSObject"], fields)

    _PARAGRAPH_FLOATS = {"line_spacing": "NSLineSpacing", "paragraph_spacing": "NSParagraphSpacing",
                         "paragraph_spacing_before": "NSParagraphSpacingBefore",
                         "head_indent": "NSHeadIndent", "tail_indent": "NSTailIndent",
                         "first_line_head_indent": "NSFirstLineHeadIndent",
                         "min_line_height": "NSMinLineHeight", "max_line_height": "NSMaxLineHeight",
                         "line_height_multiple": "NSLineHeightMultiple",
                         "default_tab_interval": "NSDefaultTabInterval",
                         "hyphenation_factor": "NSHyphenationFactor"}

    def paragraph_style(self, alignment=4, line_break=0, tab_stops=None, writing_direction=None,
                        mutable=True, **floats):
        """alignment on disk: 0 left, 1 right, 2 centre, 3 justified, 4 natural."""
        slot, fields = self.reserve(), {}
        if alignment:
            fields["NSAlignment"] = alignment
        if line_break:
            fields["NSLineBreakMode"] = line_break
        for name, value in floats.items():
            if value:
                fields[self._PARAGRAPH_FLOATS[name]] = self.cgfloat(value)
        fields["NSTabStops"] = None if tab_stops is None else self.array(tab_stops)
        if writing_direction is not None:
            fields["NSWritingDirection"] = writing_direction + 1
        chain = (["NSMutableParagraphStyle"] if mutable else []) + ["NSParagraphStyle", "NSObject"]
        return self.fill(slot, chain, fields)

    _TEXT_CHAINS = {
        "NSAttributedString": ["NSAttributedString", "NSObject"],
        "NSMutableAttributedString": ["NSMutableAttributedString", "NSAttributedString", "NSObject"],
        "NSTextStorage": ["NSTextStorage", "NSMutableAttributedString", "NSAttributedString",
                          "NSObject"]}

    def attributed_string(self, text, runs=(), cls="NSAttributedString", info_as="mutable_data"):
        """runs: (length in UTF-16 units, {attribute: value}) pairs covering the text.
        info_as: mutable_data (NS.data object) or data (plain)."""
        chain = self._TEXT_CHAINS[cls]
        slot = self.reserve()
        mutable = cls != "NSAttributedString"
        fields = {"NSString": self.mutable_string(text) if mutable else self.add(text)}
        length = len(text.encode("utf-16-be", "surrogatepass")) // 2
        runs = list(runs) or [(length, {})]
        if sum(n for n, _ in runs) != length:
            raise ValueError("runs do not cover the text")
        if length and len(runs) == 1:
            fields["NSAttributes"] = self.dictionary(runs[0][1])
        elif length:
            tables, pairs = [], []
            for count, attributes in runs:
                if attributes not in tables:
                    tables.append(attributes)
                pairs.append((count, tables.index(attributes)))
            fields["NSAttributes"] = self.array([self.dictionary(t) for t in tables], mutable=True)
            fields["NSAttributeInfo"] = getattr(self, info_as)(run_info(pairs))
        if cls == "NSTextStorage":
            fields["NSDelegate"] = None
        return self.fill(slot, chain, fields)

    # output ----------------------------------------------------------------------

    def plist(self, root=None):
        if any(o is None for o in self.objects):
            raise ValueError("a reserved slot was never filled")
        top = dict(self.top)
        if root is not None:
            top["root"] = root
        for key, value in top.items():
            top[key] = self._field(key, value, False)
        return {"$version": self.version, "$archiver": self.archiver, "$top": top,
                "$objects": self.objects}

    def to_bytes(self, root=None, **widths):
        """Binary form; root sets $top.root (one-call archiving)."""
        return write_bplist(self.plist(root), **widths)

    def to_xml(self, root=None):
        """XML form: a UID becomes a dictionary holding CF$UID."""
        return self.xml_of(self.plist(root))

    @staticmethod
    def xml_of(tree):
        def plain(node):
            if isinstance(node, UID):
                return {"CF$UID": node.data}
            if isinstance(node, dict):
                return {k: plain(v) for k, v in node.items()}
            if isinstance(node, (list, tuple)):
                return [plain(v) for v in node]
            if isinstance(node, bool) or node is None:
                return node
            if isinstance(node, float):
                return float(node)
            if isinstance(node, int):
                return int(node)
            return node
        return plistlib.dumps(plain(tree), sort_keys=False)


# --------------------------------------------------------------------------
# self test

def _samples():
    a = KeyedArchive()
    red = a.reserve()
    a.fill(red, ["NSColor", "NSObject"], {"NSRGB": b"1 0 0\0", "NSColorSpace": 1})
    yield "red_color", a.to_bytes(root=red)

    a = KeyedArchive()
    yield "srgb_color", a.to_bytes(root=a.color((1, 0.5, 0.25, 0.75), "srgb", icc=b"ICC?"))

    a = KeyedArchive()
    yield "two_element_path", a.to_bytes(root=a.bezier_path([("M", 0, 0), ("L", 8, 3)],
                                                            line_width=2, cap=2, join=2))
    a = KeyedArchive()
    yield "full_path", a.to_bytes(root=a.bezier_path(
        [("M", 0, 0), ("L", 10, 0), ("C", 15, 0, 20, 5, 20, 10), ("Z",)], line_width=2.5, cap=1,
        join=2, winding=1, miter=4, flatness=0.3, dash=(3, 1), phase=0.5))

    a = KeyedArchive()
    plain, bold = a.font("Helvetica", 12), a.font("Helvetica-Bold", 12)
    yield "two_runs", a.to_bytes(root=a.attributed_string("Hello, world", [
        (7, {"NSFont": plain}),
        (5, {"NSFont": bold, "NSUnderline": 1, "NSColor": a.color((1, 0, 0))})]))

    a = KeyedArchive()
    stops = [(a.color((1, 0, 0)), 0.0), (a.color((0, 0, 1, 0.5)), 1.0)]
    yield "gradient", a.to_bytes(root=a.gradient(stops))

    a = KeyedArchive(wide_floats=False)
    yield "shadow_32bit", a.to_bytes(root=a.shadow(8, -8, 8, a.gray(0, 0.85)))

    a = KeyedArchive()
    pixels = bytes(range(4 * 2 * 2))
    yield "bitmap", a.to_bytes(root=a.bitmap(tiff_rgba(2, 2, pixels)))

    a = KeyedArchive()
    root = a.reserve()
    a.fill(root, ["Sample", "NSObject"], {
        "bool": True, "int": 7, "negative": -1, "float": Float32(0.1), "double": 0.1,
        "bytes": b"\1\0\1", "nil": None, "point": a.point(0.5, -2), "size": a.size(640, 480),
        "rect": a.rect(1, 2, 3.25, 842.5997125), "self": root, "unicode": a.add("na\u00efve \U0001F600"),
        "list": a.add([1, 2.5, True, "x", None]), "dict": a.add({"k": 1}), "data": a.data(b"abc"),
        "mdata": a.mutable_data(b"abc"), "date": a.date(0), "value": a.value_rect(0, 0, 1, 1),
        "style": a.paragraph_style(2, line_spacing=3, tab_stops=[a.text_tab(28)]),
        "storage": a.attributed_string("ab", [(1, {}), (1, {"NSKern": 0.5})], "NSTextStorage"),
        "image": a.image([a.bitmap(tiff_rgba(1, 1, b"\xff\0\0\xff"))], (1, 1)),
        "transform": a.affine_transform(1, 0, 0, 1, 5, 6), "$odd": 1})
    yield "everything", a.to_bytes(root=root)

    a = KeyedArchive()
    a.top = {"Payload": a.mutable_data(KeyedArchive().to_bytes(root=UID(0))), "Number": 22,
             "Size": a.size(640, 480), "Seconds": 1.5, "Missing": None}
    yield "several_top_keys", a.to_bytes()

    a = KeyedArchive()
    for i in range(300):
        a.add(f"string number {i}")
    yield "wide_references", a.to_bytes(root=a.array([f"string number {i}" for i in range(300)]))


def _same(a, b):
    if isinstance(a, dict) and isinstance(b, dict):
        return a.keys() == b.keys() and all(_same(a[k], b[k]) for k in a)
    if isinstance(a, list) and isinstance(b, list):
        return len(a) == len(b) and all(map(_same, a, b))
    if isinstance(a, float) and isinstance(b, float):
        return math.isclose(a, b, rel_tol=1e-6, abs_tol=1e-9)
    return type(a) is type(b) and a == b


def main(argv):
    if argv[1:2] == ["--describe"]:
        with open(argv[2], "rb") as f:
            print(describe(f.read()))
        return 0
    out_dir = argv[1] if len(argv) > 1 else None
    if out_dir:
        os.makedirs(out_dir, exist_ok=True)
    plistutil = shutil.which("plistutil")
    failures = 0
    for name, data in _samples():
        problems = []
        loaded = plistlib.loads(data)
        if loaded["$archiver"] != "NSKeyedArchiver" or loaded["$objects"][0] != "$null":
            problems.append("plistlib")
        top, objects = RawPlist(data).archive()
        if len(objects) != len(loaded["$objects"]):
            problems.append("raw reader")
        for widths in ({"ref_size": 4, "offset_size": 8}, {"share_scalars": False}):
            again = write_bplist(loaded, **widths)
            if plistlib.loads(again) != loaded:
                problems.append(f"rewrite {widths}")
        if plistutil:
            done = subprocess.run([plistutil, "-i", "-", "-o", "-", "-f", "xml"], input=data,
                                  capture_output=True)
            ours = plistlib.loads(KeyedArchive.xml_of(loaded))
            if done.returncode or not _same(plistlib.loads(done.stdout), ours):
                problems.append("plistutil")
        if out_dir:
            with open(f"{out_dir}/{name}.plist", "wb") as f:
                f.write(data)
        failures += bool(problems)
        print(f"{'FAIL' if problems else 'ok'} {name} ({len(data)} bytes) {' '.join(problems)}")
    path = [("M", 0, 0), ("L", 1, 2), ("C", 1, 1, 2, 2, 3, 3), ("Z",), ("Q", 1, 1, 2, 2)]
    if parse_segments(segments(path, False)) != path:
        failures += 1
        print("FAIL segments")
    pairs = [(1, 0), (127, 1), (128, 2), (16384, 3), (300000, 129)]
    if parse_run_info(run_info(pairs)) != pairs:
        failures += 1
        print("FAIL run info")
    real = bytes([1, 0, 1, 1, 4, 2, 2, 1, 1, 3, 1, 0])
    if run_info([(1, 0), (1, 1), (4, 2), (2, 1), (1, 3), (1, 0)]) != real:
        failures += 1
        print("FAIL run info against a recorded archive")
    recorded = bytes.fromhex("00 00000000 00000000 01 41000000 40400000 01 41000000 c0400000"
                             "03 00000000 00000000 00 00000000 00000000")
    if segments([("M", 0, 0), ("L", 8, 3), ("L", 8, -3), ("Z",)]) != recorded:
        failures += 1
        print("FAIL segments against a recorded archive")
    rgb = srgb_to_generic_rgb(0.7019607843, 0.2276691306, 0.1118822371)
    if max(abs(x - y) for x, y in zip(rgb, (0.6342175007, 0.1559312642, 0.08862620592))) > 1e-4:
        failures += 1
        print("FAIL colour conversion", rgb)
    if not math.isclose(gray22_to_generic_gray(2 / 3), 0.602715373, abs_tol=1e-6):
        failures += 1
        print("FAIL gray conversion")
    print("plistutil", "used" if plistutil else "not installed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
