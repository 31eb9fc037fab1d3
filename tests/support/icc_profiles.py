"""Small colour profiles (ICC version 2) made from nothing but their numbers."""
import struct


def _fixed(value):
    return struct.pack(">i", round(value * 65536))


def _xyz(x, y, z):
    return b"XYZ \0\0\0\0" + _fixed(x) + _fixed(y) + _fixed(z)


def _gamma(value):
    return b"curv\0\0\0\0" + struct.pack(">IH", 1, round(value * 256)) + b"\0\0"


def _profile(device_class, space, connection, tags):
    table, body = struct.pack(">I", len(tags)), b""
    start = 128 + 4 + 12 * len(tags)
    for name, data in tags.items():
        table += name + struct.pack(">II", start + len(body), len(data))
        body += data + b"\0" * (-len(data) % 4)
    header = struct.pack(">I4sI4s4s4s12s4s", start + len(body), b"\0" * 4, 0x02400000,
                         device_class, space, connection, b"\x07\xd0\0\1\0\1" + b"\0" * 6, b"acsp")
    header += b"\0" * (68 - len(header)) + _fixed(0.9642) + _fixed(1) + _fixed(0.8249)
    return header + b"\0" * (128 - len(header)) + table + body


def adobe_rgb():
    """Adobe RGB (1998) with the colorants, seen under D50, that its published profile holds."""
    curve = _gamma(563 / 256)
    return _profile(b"mntr", b"RGB ", b"XYZ ", {
        b"wtpt": _xyz(0.9505, 1, 1.0891),
        b"rXYZ": _xyz(0.60974, 0.31111, 0.01947), b"gXYZ": _xyz(0.20528, 0.62567, 0.06087),
        b"bXYZ": _xyz(0.14919, 0.06322, 0.74457),
        b"rTRC": curve, b"gTRC": curve, b"bTRC": curve})


def gray(gamma):
    return _profile(b"mntr", b"GRAY", b"XYZ ", {b"wtpt": _xyz(0.9642, 1, 0.8249),
                                                b"kTRC": _gamma(gamma)})


def cmyk():
    """Greys only: lightness 100 - 100 K, of which full C, M and Y take half together."""
    table = b""
    for corner in range(16):
        c, m, y, k = (corner >> bit & 1 for bit in (3, 2, 1, 0))
        table += bytes([round(255 * (1 - k) * (1 - (c + m + y) / 6)), 128, 128])
    identity = b"".join(_fixed(v) for v in (1, 0, 0, 0, 1, 0, 0, 0, 1))
    lut = b"mft1\0\0\0\0" + bytes([4, 3, 2, 0]) + identity + bytes(range(256)) * 4 + table
    return _profile(b"prtr", b"CMYK", b"Lab ", {b"A2B0": lut + bytes(range(256)) * 3})
