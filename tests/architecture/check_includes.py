#!/usr/bin/env python3
"""Checks that every folder includes only what its layer allows, that libraries stay in the folders
that own them, and that headers and sources are named as the house rules say:
check_includes.py ROOT

Nothing here matches prefixes: a folder that is not listed is a fault, and so is a permission that
no file uses."""
import collections
import os
import re
import sys

# Folders below src, and the folders that each may include besides itself. "" is the public header.
ROOMS = {
    "": "document extension platform/foundation/values platform/graphics/bitmap svg",
    "extension": """document platform/foundation platform/foundation/values
        platform/graphics/bitmap platform/graphics/context platform/thumbnails""",
    "document": """draw/core draw/image draw/raster draw/shapes draw/text
        platform/foundation platform/foundation/archive platform/foundation/collections
        platform/foundation/values platform/graphics platform/graphics/bitmap
        platform/graphics/color platform/graphics/context platform/graphics/path
        platform/graphics/record platform/pictures platform/text/fonts platform/text/host
        platform/text/layout""",
    "draw/core": """platform/foundation platform/foundation/archive
        platform/foundation/collections platform/foundation/values platform/graphics/color
        platform/graphics/context platform/graphics/gradient platform/graphics/path
        platform/graphics/pixels/coverage platform/pictures platform/text/fonts""",
    "draw/shapes": """draw/core platform/foundation platform/foundation/collections
        platform/foundation/values platform/graphics/color platform/graphics/gradient
        platform/graphics/path platform/graphics/pixels/outline""",
    "draw/text": """draw/core draw/shapes platform/foundation platform/foundation/values
        platform/graphics/bitmap platform/graphics/codecs platform/graphics/color
        platform/graphics/context platform/graphics/gradient platform/text
        platform/text/drawing platform/text/fonts
        platform/text/host platform/text/layout""",
    "draw/raster": """draw/core draw/shapes platform/foundation platform/foundation/values
        platform/graphics/bitmap platform/graphics/color platform/graphics/context
        platform/graphics/gradient platform/graphics/path platform/graphics/pixels/paint
        platform/machine""",
    "draw/image": """draw/core draw/raster draw/shapes platform/filters platform/foundation
        platform/foundation/collections platform/foundation/values platform/graphics/bitmap
        platform/graphics/codecs platform/graphics/color platform/graphics/context
        platform/graphics/path platform/graphics/pixels platform/pictures svg""",

    "helper": """platform/foundation platform/graphics/pixels platform/machine
        platform/pictures""",
    "helper/libraries": "helper",
    "helper/libraries/builtin": """helper platform/foundation platform/graphics/bitmap
        platform/graphics/context svg/draw svg/tree""",
    "helper/libraries/pdf": "helper/libraries",
    "helper/libraries/svg": "helper/libraries",

    "svg": """platform/foundation platform/foundation/values platform/graphics/bitmap
        platform/graphics/context platform/pictures svg/draw svg/tree""",
    "svg/tree": "platform/foundation svg/draw svg/parse",
    "svg/parse": "platform/machine svg/draw",
    "svg/draw": """platform/foundation platform/graphics/bitmap platform/graphics/context
        platform/graphics/gradient platform/graphics/path platform/graphics/pixels/outline""",
    "svg/libraries": "platform/foundation svg/parse",

    "platform/thumbnails": """platform/foundation platform/foundation/values
        platform/graphics/bitmap platform/graphics/context""",
    "platform/pictures": """platform/foundation platform/foundation/values
        platform/graphics/bitmap platform/graphics/codecs platform/graphics/context
        platform/machine""",

    "platform/filters": """platform/filters/color platform/filters/image
        platform/filters/spatial platform/foundation platform/foundation/values
        platform/graphics/path""",
    "platform/filters/color": """platform/filters/image platform/filters/light
        platform/foundation platform/machine""",
    "platform/filters/spatial": """platform/filters/image platform/filters/light
        platform/foundation platform/machine""",
    "platform/filters/image": """platform/filters/light platform/graphics/bitmap
        platform/machine""",
    "platform/filters/light": "platform/foundation platform/machine",

    "platform/text/host": """platform/foundation platform/foundation/collections
        platform/foundation/values platform/graphics/bitmap platform/graphics/color
        platform/graphics/context platform/text platform/text/drawing platform/text/fonts
        platform/text/layout""",
    "platform/text/drawing": """platform/foundation platform/graphics/bitmap
        platform/graphics/color platform/graphics/context platform/graphics/pixels
        platform/graphics/pixels/coverage platform/graphics/pixels/outline
        platform/graphics/pixels/paint platform/machine platform/text platform/text/layout""",
    "platform/text/layout": """platform/foundation platform/foundation/collections
        platform/foundation/values platform/text platform/text/fonts""",
    "platform/text/fonts": """platform/foundation platform/foundation/collections
        platform/foundation/values platform/graphics/pixels/outline platform/machine
        platform/text""",
    "platform/text": "platform/graphics/pixels/outline platform/machine",
    "platform/text/libraries": "platform/foundation platform/machine platform/text",

    "platform/graphics": """platform/graphics/bitmap platform/graphics/color
        platform/graphics/context platform/graphics/gradient platform/graphics/path""",
    "platform/graphics/record": "platform/foundation platform/graphics/context",
    "platform/graphics/context": """platform/foundation platform/foundation/values
        platform/graphics/bitmap platform/graphics/color platform/graphics/gradient
        platform/graphics/path platform/graphics/pixels platform/graphics/pixels/blur
        platform/graphics/pixels/coverage platform/graphics/pixels/outline
        platform/graphics/pixels/paint platform/graphics/resample""",
    "platform/graphics/resample": """platform/foundation platform/graphics/bitmap
        platform/graphics/pixels platform/graphics/pixels/paint platform/machine""",
    "platform/graphics/bitmap": """platform/foundation platform/foundation/collections
        platform/foundation/values platform/graphics/codecs platform/graphics/pixels
        platform/machine""",
    "platform/graphics/codecs": """platform/foundation platform/graphics/color
        platform/graphics/pixels platform/machine""",
    "platform/graphics/color/libraries": "platform/graphics/color platform/machine",
    "platform/graphics/codecs/libraries/jpeg": "platform/graphics/codecs",
    "platform/graphics/codecs/libraries/tiff": "platform/graphics/codecs",
    "platform/graphics/codecs/libraries/webp": "platform/graphics/codecs",
    "platform/graphics/gradient": """platform/foundation platform/foundation/collections
        platform/foundation/values platform/graphics/color platform/graphics/pixels/paint""",
    "platform/graphics/color": """platform/foundation platform/foundation/values
        platform/graphics/pixels/paint platform/machine""",
    "platform/graphics/path": """platform/foundation platform/foundation/collections
        platform/foundation/values platform/graphics/pixels/outline""",

    "platform/graphics/pixels/blur": """platform/graphics/pixels
        platform/graphics/pixels/coverage platform/graphics/pixels/paint platform/machine""",
    "platform/graphics/pixels/paint": """platform/foundation platform/graphics/pixels
        platform/graphics/pixels/coverage platform/machine""",
    "platform/graphics/pixels/coverage": """platform/foundation platform/graphics/pixels
        platform/graphics/pixels/outline platform/machine""",
    "platform/graphics/pixels/outline": "platform/foundation platform/graphics/pixels",
    "platform/graphics/pixels": "platform/foundation platform/machine",

    "platform/foundation/archive": """platform/foundation platform/foundation/collections
        platform/foundation/values""",
    "platform/foundation/collections": "platform/foundation platform/foundation/values",
    "platform/foundation/values": "platform/foundation platform/foundation/files",
    "platform/foundation/files": "platform/foundation platform/machine",
    "platform/foundation": "",
    "platform/machine": "",
}
# Chief headers stand at the top of their folder and belong to a layer below it.
CHIEF = {
    "svg/SVGDocumentImpl": "svg/tree",
    "svg/SVGStringParser": "svg/parse",
    "svg/SVGParserArcToCurve": "svg/parse",
    "svg/CGSVGRenderer": "svg/draw",
}
# Programs and plugins: what they include of src, and of each other.
PROGRAMS = {
    "apps/common": """document platform/foundation platform/foundation/files
        platform/foundation/values platform/machine""",
    "apps/paint-thumbnailer": "apps/common extension platform/graphics/bitmap",
    "apps/paint-picture-helper": "helper platform/machine platform/pictures",
    "apps/paintdoc": """apps/common document draw/image extension platform/foundation
        platform/graphics/bitmap platform/graphics/color platform/graphics/context
        platform/machine platform/pictures svg""",
    "kde": "extension platform/graphics/bitmap",
}
# A test includes the folder it mirrors, everything that stands below that, and the support folder.
# What else it stands on:
TESTS = {
    "draw/core": "document draw/image draw/raster draw/shapes draw/text",
    "draw/image": "document",
    "draw/raster": "document",
    "draw/shapes": "document",
    "draw/text": "document",
    "platform/filters/color": "platform/filters",
    "platform/filters/spatial": "platform/filters",
    "platform/graphics": "platform/foundation/archive",
    "platform/graphics/bitmap": """platform/foundation/archive platform/graphics
        platform/graphics/color""",
    "platform/graphics/codecs": "platform/graphics/bitmap platform/graphics/context",
    "platform/graphics/color": """platform/foundation/archive platform/foundation/collections
        platform/graphics""",
    "platform/graphics/pixels/outline": "platform/graphics/pixels/coverage",
    "platform/text": "platform/text/fonts platform/text/layout",
    "platform/text/drawing": "platform/text/host",
    "platform/text/fonts": "platform/foundation/archive platform/text/layout",
    "platform/text/host": "platform/foundation/archive platform/graphics",
}
SUPPORT = """document draw/core draw/image draw/raster draw/shapes draw/text platform/filters
    platform/foundation platform/foundation/values platform/graphics/bitmap
    platform/graphics/color platform/graphics/context platform/graphics/gradient
    platform/graphics/pixels/paint platform/text/host"""
# Libraries, and the folders that own them with all below.
OWNERS = {
    r"png\.h": "src/platform/graphics/codecs",
    r"jpeglib\.h|turbojpeg\.h": "src/platform/graphics/codecs/libraries/jpeg",
    r"tiffio\.h": "src/platform/graphics/codecs/libraries/tiff",
    r"webp/.*": "src/platform/graphics/codecs/libraries/webp",
    r"lcms2.*": "src/platform/graphics/color/libraries",
    r"hb.*\.h|unicode/.*|fontconfig/.*|ft2build\.h": "src/platform/text/libraries",
    r"libxml/.*": "src/svg/libraries",
    r"poppler.*": "src/helper/libraries/pdf",
    r"librsvg/.*": "src/helper/libraries/svg",
    r"glib.*|cairo.*": "src/helper/libraries",
    r"seccomp\.h|linux/landlock\.h": "src/helper",
    r"CLI/.*": "apps",
    r"nlohmann/.*": "apps/paintdoc",
    r"Q[A-Z].*|KIO/.*|KPlugin.*|kio/.*": "kde",
}
# Sources that implement a class of another header of their folder. Elsewhere a source is declared
# in the header of its name.
FAMILIES = {
    "draw/image": "ImageFilterCatalogue:ImageFilterMembers",
    "draw/raster": """DrawAirbrush:DrawBrushes DrawPen:DrawBrushes
        DrawMagicSelection:DrawSelections""",
    "draw/shapes": "DrawPresetShapes:DrawRectShape",
    "svg/parse": """SVGColorParser:SVGStringParser SVGNumberParser:SVGStringParser
        SVGPathParser:SVGStringParser SVGTransformParser:SVGStringParser""",
}
# Folders where large classes have sources of their own for their aspects (DrawBaseCoding.cpp).
ASPECTS = {"document", "draw/core", "draw/image", "draw/raster", "draw/text"}
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)
TYPE = re.compile(r"^(?:template <[^>]*>\n)?(?:class|struct|enum class|enum) (?:PAINT_API |alignas\(\d+\) )?"
                  r"(\w+)(?: final)?(?: : [^;{]*)?\s*\{", re.MULTILINE)


def split(table):
    return {folder: set(text.split()) for folder, text in table.items()}


class Check:
    def __init__(self, root):
        self.root = root
        self.rooms = split(ROOMS)
        self.used = collections.defaultdict(set)
        self.faults = []

    def files(self, *tops):
        for top in tops:
            for directory, folders, names in os.walk(os.path.join(self.root, top)):
                folders.sort()
                for name in sorted(names):
                    if name.endswith((".h", ".cpp")):
                        yield os.path.relpath(os.path.join(directory, name), self.root)

    def read(self, path):
        with open(os.path.join(self.root, path), encoding="utf-8") as text:
            return text.read()

    def fault(self, text):
        self.faults.append(text)

    def below(self, room):
        """The room and everything that it may reach."""
        reached, todo = set(), [room]
        while todo:
            for other in self.rooms.get(todo.pop(), ()):
                if other not in reached:
                    reached.add(other)
                    todo.append(other)
        return reached | {room}

    def room_of_header(self, included):
        return CHIEF.get(included.rpartition(".")[0], os.path.dirname(included))

    def check_table(self):
        for room, allowed in self.rooms.items():
            for other in sorted(allowed - set(self.rooms)):
                self.fault(f"the table of rooms allows {room} to include {other}, which it lacks")
            if any(room in self.below(other) for other in allowed):
                self.fault(f"the table of rooms leads from {room} back to it")

    def check_includes(self, path, who, allowed, where):
        """`allowed` are folders as `where` tells them from what is included."""
        for own, library in INCLUDE.findall(self.read(path)):
            if own and not own.endswith(".moc"):
                target = where(own)
                if target not in allowed:
                    self.fault(f"{path} includes {own}")
                self.used[who].add(target)
            for pattern, owners in OWNERS.items():
                if library and re.fullmatch(pattern, library) and path.split("/")[0] in (
                        "src", "apps", "kde"):
                    if not any(path.startswith(owner + "/") for owner in owners.split()):
                        self.fault(f"{path} includes {library}, which belongs to {owners}")

    def check_source(self):
        for path in self.files("src"):
            room = self.room_of_header(path[len("src/"):])
            if room not in self.rooms:
                self.fault(f"{path} is in a folder that the table of rooms lacks")
                continue
            self.check_includes(path, room, self.rooms[room] | {room}, self.room_of_header)
        for room, allowed in self.rooms.items():
            for other in sorted(allowed - self.used[room]):
                self.fault(f"{room or 'src'} may include {other} and does not")

    def check_programs(self):
        programs = split(PROGRAMS)

        def where(own):
            local = "apps/" + own.partition("/")[0]
            return local if local in programs else self.room_of_header(own)

        for path in self.files("apps", "kde"):
            folder = os.path.dirname(path)
            if folder not in programs:
                self.fault(f"{path} is in a folder that the table of programs lacks")
                continue
            self.check_includes(path, folder, programs[folder] | {folder}, where)
        for folder, allowed in programs.items():
            for other in sorted(allowed - self.used[folder]):
                self.fault(f"{folder} may include {other} and does not")

    def check_tests(self):
        extra = split(TESTS)
        folders = set()
        for path in self.files("tests"):
            folder = os.path.dirname(path)[len("tests/"):]
            if folder in ("desktop", "programs"):
                continue
            folders.add(folder)
            if folder == "support":
                allowed = set(SUPPORT.split())
            elif folder in self.rooms:
                allowed = self.below(folder) | extra.get(folder, set())
            else:
                self.fault(f"{path} mirrors no folder of src")
                continue
            self.check_includes(path, "tests/" + folder, allowed | {folder, "support"},
                                self.room_of_header)
        for folder, allowed in extra.items():
            for other in sorted(allowed - self.used["tests/" + folder]):
                self.fault(f"tests/{folder} may include {other} and does not")

    def check_names(self):
        """One header of a name, one type of a name, and a header for each source."""
        headers, types = collections.defaultdict(list), collections.defaultdict(list)
        for path in self.files("src"):
            folder, name = os.path.split(path[len("src/"):])
            stem, ending = os.path.splitext(name)
            for found in TYPE.findall(self.read(path)):
                types[found].append(path)
            if ending == ".h":
                headers[name].append(path)
            elif stem != "Module" and not self.header_of(folder, stem):
                self.fault(f"{path} has no header of its name")
        for name, paths in [*headers.items(), *types.items()]:
            if len(paths) > 1:
                self.fault(f"{name} is the name of several: {' '.join(paths)}")

    def header_of(self, folder, stem):
        def exists(name, place=folder):
            return os.path.exists(os.path.join(self.root, "src", place, name + ".h"))
        family = dict(pair.split(":") for pair in FAMILIES.get(folder, "").split())
        if stem in family:
            return exists(family[stem]) or exists(family[stem], os.path.dirname(folder))
        if exists(stem):
            return True
        # A class and its aspect.
        ends = [m.start() for m in re.finditer("[A-Z]", stem) if m.start() > 0]
        return folder in ASPECTS and any(exists(stem[:end]) for end in ends)

    def run(self):
        self.check_table()
        self.check_source()
        self.check_programs()
        self.check_tests()
        self.check_names()
        return self.faults


def main():
    found = Check(sys.argv[1]).run()
    print("\n".join(found) if found else "every folder includes what its layer allows")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
