#!/usr/bin/env python3
"""Checks that includes point downwards only, and that libraries stay in the folders that own them:
check_includes.py SOURCE_DIR"""
import os
import re
import sys

# What a folder may include besides itself. The longest matching prefix decides.
ALLOWED = {
    "platform/foundation": [],
    "platform/graphics": ["platform/foundation", "platform"],
    "platform/text": ["platform/foundation", "platform/graphics", "platform"],
    "platform/filters": ["platform/foundation", "platform/graphics", "platform"],
    "platform/pdf": ["platform/foundation", "platform/graphics", "platform"],
    "platform/thumbnails": ["platform/foundation", "platform/graphics", "platform"],
    "svg": ["platform"],
    "draw/core": ["platform"],
    "draw/shapes": ["draw/core", "platform"],
    "draw/text": ["draw/core", "draw/shapes", "platform"],
    "draw/raster": ["draw/core", "draw/shapes", "draw/image", "platform"],
    "draw/image": ["draw/core", "draw/shapes", "draw/raster", "svg", "platform"],
    "document": ["draw", "platform"],
    "extension": ["document", "draw", "platform"],
}
OWNERS = {
    r"png\.h|jpeglib\.h|turbojpeg\.h|tiffio\.h|webp/.*|lcms2\.h": "platform/graphics",
    r"hb.*\.h|unicode/.*|fontconfig/.*|ft2build\.h": "platform/text",
    r"libxml/.*": "svg",
    r"poppler.*|glib.*|cairo.*": "platform/pdf",
}
# The library's one header, above all folders.
PUBLIC = "paintengine.h"
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)


def folder_of(path):
    matches = [f for f in ALLOWED if path.startswith(f + "/")]
    return max(matches, key=len) if matches else "platform" if path.startswith("platform/") else None


def faults(source):
    for directory, _, names in os.walk(source):
        for name in sorted(names):
            if not name.endswith((".h", ".cpp")):
                continue
            path = os.path.relpath(os.path.join(directory, name), source)
            if path == PUBLIC:
                continue
            folder = folder_of(path)
            with open(os.path.join(directory, name), encoding="utf-8") as text:
                for own, library in INCLUDE.findall(text.read()):
                    if own and not allowed(folder, own):
                        yield f"{path} includes {own}"
                    for pattern, owner in OWNERS.items():
                        if re.fullmatch(pattern, library or own) and not path.startswith(owner):
                            yield f"{path} includes {library or own}, which belongs to {owner}"


def allowed(folder, included):
    target = folder_of(included)
    if folder is None or target is None:
        return False
    return target == folder or any(target == f or target.startswith(f + "/")
                                   for f in ALLOWED.get(folder, []))


def main():
    found = list(faults(sys.argv[1]))
    print("\n".join(found) if found else "includes point downwards")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
