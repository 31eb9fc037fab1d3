"""PDF pages, SVG pictures and bitmaps that do harm to what reads them, and documents that show them. They
are the same every time; what takes megabytes is made when it is asked for.

Pages are 40 by 20 points and pictures 40 by 20 units, unless their function says otherwise.
"""
import zlib

from make_pdfs import RED_HALF, pdf
from picture_documents import Pictures, png

WIDTH, HEIGHT = 40, 20
BOX = f"/MediaBox [0 0 {WIDTH} {HEIGHT}]"
GREEN = '<rect width="40" height="20" fill="#0f0"/>'
DATA_KEYS = {"DrawPDF": "PDFData", "DrawSVG": "SVGData", "DrawImage2": "ImageData"}


# Pages -------------------------------------------------------------------------------------------------------

def stream(entries, body):
    return f"<< {entries} /Length {len(body)} >>\nstream\n".encode() + body + b"\nendstream"


def page(content, resources="", extra=()):
    return pdf(f"{BOX} /Resources << {resources} >>", content, extra)


def page_of_size(side):
    """A square, red in its left half."""
    return pdf(f"/MediaBox [0 0 {side} {side}]", b"1 0 0 rg 0 0 %d %d re f" % (side // 2, side))


def character_map_of_itself():
    """Text whose codes are mapped by a map that builds on itself."""
    system = "/CIDSystemInfo << /Registry (Adobe) /Ordering (Identity) /Supplement 0 >>"
    font = b"<< /Type /Font /Subtype /Type0 /BaseFont /Loop /Encoding 6 0 R /DescendantFonts [7 0 R] >>"
    character_map = stream(f"/Type /CMap /CMapName /Loop /UseCMap 6 0 R {system}",
                           b"begincmap 1 begincodespacerange <0000> <ffff> endcodespacerange endcmap")
    descendant = f"<< /Type /Font /Subtype /CIDFontType2 /BaseFont /Loop {system} >>".encode()
    return page(b"BT /F 12 Tf 2 4 Td <00410042> Tj ET", "/Font << /F 5 0 R >>", [font, character_map, descendant])


def function_in_braces(depth=200_000):
    """A spot colour whose function is a program of nested blocks."""
    function = stream("/FunctionType 4 /Domain [0 1] /Range [0 1 0 1 0 1]", b"{" * depth + b"}" * depth)
    return page(b"/Spot cs 1 scn 0 0 40 20 re f", "/ColorSpace << /Spot [/Separation /Spot /DeviceRGB 5 0 R] >>",
                [function])


def glyph_of_itself(unit):
    """Text in a font whose one glyph is text of the same font, in the same size, `unit` of its own units.
    With 1 the glyph waits for itself, with 1000 it starts again and again."""
    scale = 1 / unit
    font = (f"<< /Type /Font /Subtype /Type3 /FontBBox [0 0 {unit} {unit}] /FontMatrix [{scale} 0 0 {scale} 0 0] "
            f"/CharProcs << /a 6 0 R >> /Encoding << /Differences [97 /a] >> /FirstChar 97 /LastChar 97 "
            f"/Widths [{unit}] /Resources << /Font << /F 5 0 R >> >> >>").encode()
    glyph = stream("", b"%d 0 0 0 %d %d d1 BT /F %d Tf (a) Tj ET 0 0 %d %d re f" % ((unit,) * 6))
    return page(b"BT /F 20 Tf (a) Tj ET", "/Font << /F 5 0 R >>", [font, glyph])


def form(body, shown=None):
    """shown: number of the object that is /F in it."""
    resources = f"/Resources << /XObject << /F {shown} 0 R >> >>" if shown else ""
    return stream(f"/Type /XObject /Subtype /Form /BBox [0 0 40 20] {resources}", body)


def forms_in_a_ring():
    """Three forms, each of which shows the next one; the page is red in its left half afterwards."""
    return page(b"/F Do " + RED_HALF, "/XObject << /F 5 0 R >>", [form(b"/F Do", shown) for shown in (6, 7, 5)])


def forms_that_double(levels=40):
    """Forms, each of which shows the next one twice: 2^levels rectangles."""
    forms = [form(b"/F Do /F Do", 6 + level) for level in range(levels)]
    return page(b"/F Do", "/XObject << /F 5 0 R >>", [*forms, form(RED_HALF)])


def page_of_segments(count=10 ** 7):
    """One path, packed."""
    content = zlib.compress(b"0 0 m " + b"9 9 l 1 3 l " * (count // 2) + b"f", 1)
    return pdf(BOX, content).replace(b"/Length", b"/Filter /FlateDecode /Length", 1)


# SVG pictures ------------------------------------------------------------------------------------------------

def svg(content, width=WIDTH, height=HEIGHT, prolog=""):
    return (f'{prolog}<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" '
            f'width="{width}" height="{height}">{content}</svg>\n').encode()


def svg_of_size(side):
    """A square, red in its left half."""
    return svg(f'<rect width="{side // 2}" height="{side}" fill="#f00"/>', side, side)


def arc_with_two_radii():
    """Something that SVG allows and that the engine's own reader takes for impossible; then green."""
    return svg('<path d="M1 1A2 3 0 0 1 5 5"/>' + GREEN)


def svg_of_segments(count=10 ** 7, paths=1):
    """Texts of 4 bytes a segment."""
    path = '<path d="M0 0%s"/>' % ("l9 9-9-6" * (count // paths // 2))
    return svg(path * paths)


def segments_used_again(count=10 ** 7, times=10):
    """The same number of segments in a text of a tenth of the size."""
    path = '<path id="p" d="M0 0%s"/>' % ("l9 9-9-6" * (count // times // 2))
    return svg(path + '<use xlink:href="#p"/>' * (times - 1))


def nested_groups(depth=200_000):
    return svg("<g>" * depth + GREEN + "</g>" * depth)


def entities(names_and_values):
    return "<!DOCTYPE svg [%s]>" % "".join('<!ENTITY %s "%s">' % pair for pair in names_and_values)


def entities_of_entities(levels=10):
    """Each is ten of the one before."""
    pairs = [("e0", "ha")] + [(f"e{i}", f"&e{i - 1};" * 10) for i in range(1, levels)]
    return svg(f"<text>&e{levels - 1};</text>" + GREEN, prolog=entities(pairs))


def long_entity_often(length=30_000):
    return svg("<text>" + "&e;" * length + "</text>" + GREEN, prolog=entities([("e", "a" * length)]))


def uses_of_uses(levels=10):
    """Each group shows the one before ten times."""
    groups = [f'<g id="g{i}">%s</g>' % (f'<use xlink:href="#g{i - 1}"/>' * 10) for i in range(1, levels)]
    return svg(f'<defs><g id="g0">{GREEN}</g>{"".join(groups)}</defs><use xlink:href="#g{levels - 1}"/>')


def use_of_itself():
    return svg(f'<g id="g"><use xlink:href="#g"/>{GREEN}</g>')


def filtered(primitives, region):
    return svg(f'<filter id="f" {region} filterUnits="userSpaceOnUse">{primitives}</filter>'
               f'<g filter="url(#f)">{GREEN}</g>')


def filter_over_a_huge_region():
    return filtered('<feFlood flood-color="#f00"/>', 'x="-1e9" y="-1e9" width="2e9" height="2e9"')


def filter_of_endless_noise():
    return filtered('<feTurbulence baseFrequency="0.9" numOctaves="100000000"/>', 'width="40" height="20"')


def patterns_of_patterns(levels=40):
    """Each is painted with the next one, twice."""
    pattern = ('<pattern id="p{0}" width="1" height="1" patternUnits="userSpaceOnUse">'
               '<rect width="1" height="1" fill="url(#p{1})"/><rect width="1" height="1" fill="url(#p{1})"/></pattern>')
    patterns = "".join(pattern.format(level, level + 1) for level in range(levels))
    return svg(patterns + '<rect width="40" height="20" fill="url(#p0)"/>')


def images(url_of):
    """(name, picture) for each way to show the files secret.png and secret.svg over a green picture. url_of:
    the URL for a file's name."""
    over = 'width="40" height="20"'
    for attribute in ("href", "xlink:href"):
        for name in ("secret.png", "secret.svg"):
            url = url_of(name)
            yield f"image, {attribute} of {name}", svg(f'{GREEN}<image {over} {attribute}="{url}"/>')
            yield f"image of a filter, {attribute} of {name}", svg(
                f'{GREEN}<filter id="f" x="0" y="0" {over} filterUnits="userSpaceOnUse">'
                f'<feImage {attribute}="{url}"/></filter><rect {over} fill="none" filter="url(#f)"/>')


def references(url_of):
    """(name, picture) for other ways to name a file. They are green where they show nothing of secret_files()."""
    over = 'width="40" height="20"'
    included = 'xi:include xmlns:xi="http://www.w3.org/2001/XInclude"'
    drawing, style, text = (url_of("secret." + ending) for ending in ("svg", "css", "txt"))
    yield "used element", svg(f'{GREEN}<use xlink:href="{drawing}#s"/>')
    yield "gradient", svg(f'{GREEN}<rect {over} fill-opacity="0" style="fill:url({drawing}#g);fill-opacity:1"/>')
    yield "imported style", svg(f'<style>@import url("{style}");</style>{GREEN}')
    yield "style sheet", svg(GREEN, prolog=f'<?xml-stylesheet type="text/css" href="{style}"?>')
    yield "included element", svg(f'{GREEN}<{included} href="{drawing}"/>')
    yield "included text", svg(f'{GREEN}<text y="20" font-size="20"><{included} parse="text" href="{text}"/></text>')


def references_of_entities(url_of):
    """The same in the part that says what the text may hold; readers may refuse all of it."""
    url = url_of("secret.txt")
    yield "entity", svg(GREEN + "&x;", prolog=f'<!DOCTYPE svg [<!ENTITY x SYSTEM "{url}">]>')
    yield "entity of entities", svg(GREEN, prolog=f'<!DOCTYPE svg [<!ENTITY % x SYSTEM "{url}"> %x;]>')


def secret_files():
    """By name; all of them magenta."""
    magenta = (255, 0, 255)
    square = '<rect id="s" width="40" height="20" style="fill:#f0f"/>'
    gradient = '<linearGradient id="g"><stop stop-color="#f0f"/></linearGradient>'
    return {"secret.png": png([magenta] * 8, 4), "secret.svg": svg(square + gradient),
            "secret.css": b"rect { fill: #f0f !important }", "secret.txt": square.encode()}


# Documents ---------------------------------------------------------------------------------------------------

CANVAS = (100, 80)
GUILTY = (30, 5, WIDTH, HEIGHT)
# What else a document shows: by (x, y) from the upper left corner.
BLUE, RED, CLEAR = (0, 0, 255, 255), (255, 0, 0, 255), (0, 0, 0, 0)
RECTANGLE = {(1, 78): BLUE, (18, 62): BLUE, (25, 70): CLEAR}
INNOCENT_PAGE = {(31, 49): RED, (48, 31): RED, (52, 40): CLEAR}
INNOCENT_SVG = {(31, 24): RED, (48, 6): RED, (52, 15): CLEAR}
INNOCENT_BITMAP = {(1, 1): RED, (9, 18): RED, (10, 1): CLEAR}
INNOCENT = INNOCENT_PAGE | INNOCENT_SVG | INNOCENT_BITMAP


def innocent_svg():
    return svg('<rect width="20" height="20" fill="#f00"/>')


class HostileDocument(Pictures):
    """Shows a blue rectangle and what is added."""

    def __init__(self):
        super().__init__(*CANVAS)
        self.add("DrawRectangle", outline=self.rectangle(0, 0, 20, 20), fill=(0, 0, 1))

    def show(self, class_name, data, rect=GUILTY, title="guilty"):
        self.draws.append(self.picture(title, class_name, rect, **{DATA_KEYS[class_name]: self.archive.data(data)}))

    def show_innocent(self):
        self.show("DrawPDF", pdf(BOX), (30, 30, WIDTH, HEIGHT), "innocent page")
        self.show("DrawSVG", innocent_svg(), (30, 55, WIDTH, HEIGHT), "innocent drawing")
        self.show("DrawImage2", png(([RED] * 10 + [CLEAR] * 10) * 20, 20), (0, 60, 20, 20), "innocent bitmap")


def hostile_document(class_name, data, rect=GUILTY, innocent=True):
    """The guilty picture lies between the rectangle and the innocent ones."""
    document = HostileDocument()
    document.show(class_name, data, rect)
    if innocent:
        document.show_innocent()
    return document.to_bytes()
