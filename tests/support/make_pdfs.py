#!/usr/bin/env python3
"""Makes the small PDF files that tests read:  make_pdfs.py OUTPUT_DIR

Pages are red in a part of them, and otherwise bare paper.
"""
import hashlib
import os
import sys

RED_HALF = b"1 0 0 rg 0 0 20 20 re f"


def pdf(page, content=RED_HALF, extra=(), trailer="", kids="[3 0 R]", encode=lambda n, data: data):
    """A file of one page. page: entries of the page's dictionary. extra: further objects, from 5.
    encode: what becomes of the content, given its object's number."""
    body = encode(4, content)
    objects = ["<< /Type /Catalog /Pages 2 0 R >>".encode(),
               f"<< /Type /Pages /Kids {kids} /Count {1 if 'R' in kids else 0} >>".encode(),
               f"<< /Type /Page /Parent 2 0 R /Contents 4 0 R {page} >>".encode(),
               f"<< /Length {len(body)} >>\nstream\n".encode() + body + b"\nendstream", *extra]
    out, offsets = bytearray(b"%PDF-1.4\n"), []
    for number, text in enumerate(objects, 1):
        offsets.append(len(out))
        out += b"%d 0 obj\n" % number + text + b"\nendobj\n"
    table = len(out)
    out += b"xref\n0 %d\n0000000000 65535 f \n" % (len(objects) + 1)
    out += b"".join(b"%010d 00000 n \n" % at for at in offsets)
    out += f"trailer\n<< /Size {len(objects) + 1} /Root 1 0 R {trailer} >>\n".encode()
    return bytes(out + b"startxref\n%d\n%%%%EOF\n" % table)


PADDING = bytes.fromhex("28bf4e5e4e758a4164004e56fffa01082e2e00b6d0683e802f0ca9fe6453697a")


def rc4(key, data):
    state, j, out = list(range(256)), 0, bytearray()
    for i in range(256):
        j = (j + state[i] + key[i % len(key)]) & 255
        state[i], state[j] = state[j], state[i]
    i = j = 0
    for byte in data:
        i = (i + 1) & 255
        j = (j + state[i]) & 255
        state[i], state[j] = state[j], state[i]
        out.append(byte ^ state[(state[i] + state[j]) & 255])
    return bytes(out)


def encrypted(password):
    """With the 40-bit cipher of the format's first encrypted version."""
    padded = (password + PADDING)[:32]
    md5 = lambda data: hashlib.md5(data).digest()
    owner = rc4(md5(padded)[:5], padded)
    identifier, permissions = b"0123456789abcdef", b"\xfc\xff\xff\xff"
    key = md5(padded + owner + permissions + identifier)[:5]
    encode = lambda number, data: rc4(md5(key + number.to_bytes(3, "little") + b"\0\0")[:10], data)
    dictionary = (f"<< /Filter /Standard /V 1 /R 2 /P -4 /O <{owner.hex()}> "
                  f"/U <{rc4(key, PADDING).hex()}> >>").encode()
    return pdf("/MediaBox [0 0 40 20]", encode=encode, extra=[dictionary],
               trailer=f"/Encrypt 5 0 R /ID [<{identifier.hex()}> <{identifier.hex()}>]")


def files():
    plain = pdf("/MediaBox [0 0 40 20]")
    form = lambda name: (f"<< /Type /XObject /Subtype /Form /BBox [0 0 40 20] "
                         f"/Resources << /XObject << /{name} 5 0 R >> >> /Length {len(name) + 4} >>\n"
                         f"stream\n/{name} Do\nendstream").encode()
    yield "plain", plain
    yield "rotated", pdf("/MediaBox [0 0 40 20] /Rotate 90")
    yield "cropped", pdf("/MediaBox [0 0 100 100] /CropBox [10 5 40 25]")
    yield "cropped and rotated", pdf("/MediaBox [0 0 100 100] /CropBox [10 5 40 25] /Rotate 270")
    yield "translucent", pdf("/MediaBox [0 0 40 20] /Resources << /ExtGState << /A << /ca 0.5 >> >> >>",
                             b"/A gs " + RED_HALF)
    yield "after other bytes", b"\n" * 100 + plain
    yield "no table", plain[:plain.rindex(b"startxref")]
    yield "no trailer", plain[:plain.index(b"xref")]
    yield "encrypted without password", encrypted(b"")
    yield "encrypted", encrypted(b"secret")
    yield "no pages", pdf("", kids="[]")
    yield "page missing", plain.replace(b"3 0 obj", b"9 0 obj")
    yield "page is a number", plain.replace(b"3 0 obj\n", b"3 0 obj 7 endobj\n")
    yield "mark only", b"%PDF-1.4\n"
    yield "mark and noise", b"%PDF-1.4\n" + bytes(range(256)) * 8
    yield "content noise", pdf("/MediaBox [0 0 40 20]", bytes(range(256)) * 4)
    yield "empty page", pdf("/MediaBox [0 0 0 0]")
    yield "endless page", pdf("/MediaBox [0 0 1e300 1e300]")
    yield "huge page", pdf("/MediaBox [0 0 100000 100000]")
    yield "form in itself", pdf("/MediaBox [0 0 40 20] /Resources << /XObject << /F 5 0 R >> >>",
                                b"/F Do " + RED_HALF, [form("F")])


def main(folder):
    os.makedirs(folder, exist_ok=True)
    for name, data in files():
        with open(os.path.join(folder, name + ".pdf"), "wb") as out:
            out.write(data)


if __name__ == "__main__":
    main(sys.argv[1])
