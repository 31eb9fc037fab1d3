"""What the tests of the programs share: running them, and reading what they write."""
import ctypes
import os
import signal
import struct
import subprocess
import time
import zlib


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


def png_texts(path):
    data, texts, position = read(path), {}, 8
    while position < len(data):
        length, kind = struct.unpack(">I4s", data[position:position + 8])
        if kind == b"tEXt":
            key, _, text = data[position + 8:position + 8 + length].partition(b"\0")
            texts[key.decode("latin-1")] = text.decode("latin-1")
        position += length + 12
    return texts


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


# Processes that the programs start and do not wait for become children of the test, which so meets each of them
# and no one else's.

HELPER = "paint-picture-helper"
PR_SET_CHILD_SUBREAPER = 36


def adopt_orphans():
    if ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0:
        raise OSError("cannot adopt processes")


def children(parent):
    """{process: (its state, a letter, and its command)} of those that a process has, ended ones too."""
    found = {}
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            command, _, rest = read(f"/proc/{name}/stat").decode(errors="replace").partition("(")[2].rpartition(")")
        except OSError:
            continue  # It has ended meanwhile.
        state, its_parent = rest.split()[:2]
        if int(its_parent) == parent:
            found[int(name)] = state, command
    return found


def adopted_helpers():
    """{process: its state} of the helpers among the children of this process."""
    # The system keeps 15 characters of a name.
    return {process: state for process, (state, command) in children(os.getpid()).items() if command == HELPER[:15]}


def wait_until(found, what, seconds=20):
    """What a function finds as soon as it finds something."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if result := found():
            return result
        time.sleep(0.01)
    raise AssertionError(what)


def wait_for_helper():
    """The first helper of a program that was just started."""
    return next(iter(wait_until(adopted_helpers, "no helper was started")))


def end_helpers(seconds=5):
    """How many helpers ended by themselves in that time, and how many had to be ended."""
    end, ended, killed = time.monotonic() + seconds, 0, 0
    while helpers := adopted_helpers():
        for process, state in helpers.items():
            if state == "Z":
                os.waitpid(process, 0)
                ended += 1
            elif time.monotonic() > end:
                os.kill(process, signal.SIGKILL)
                os.waitpid(process, 0)
                killed += 1
        time.sleep(0.01)
    return ended, killed
