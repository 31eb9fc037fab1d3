"""The example of bucket fills."""
import math

from paint_document import PaintDocument


def _region(width, height, inside):
    """The mask of the pixels that satisfy inside(x, y), as rows from the top of their smallest rectangle, and
    where its lower left pixel lies."""
    pixels = [(x, y) for y in range(height) for x in range(width) if inside(x + 0.5, y + 0.5)]
    x0, x1 = min(x for x, _ in pixels), max(x for x, _ in pixels)
    y0, y1 = min(y for _, y in pixels), max(y for _, y in pixels)
    rows = [["."] * (x1 - x0 + 1) for _ in range(y1 - y0 + 1)]
    for x, y in pixels:
        rows[y1 - y][x - x0] = "#"
    return ["".join(row) for row in rows], x0, y0


def fills():
    """Line art whose parts were filled with the bucket: masks, one of them turned, a rectangle, and a
    cleared area."""
    doc = PaintDocument(240, 200, background=(1, 1, 1))
    circles = [(85, 120), (155, 120), (120, 62)]
    radius, line = 48, 3
    for x, y in circles:
        doc.add("DrawEllipse", outline=doc.oval(x - radius, y - radius, 2 * radius, 2 * radius, line_width=line),
                stroke=(0.15, 0.15, 0.2))

    def fill(inside, color, **attributes):
        rows, x, y = _region(doc.width, doc.height, inside)
        doc.add("DrawFill", outline=doc.rectangle(x, y, len(rows[0]), len(rows)), fill=color, FillType=0,
                Mask=doc.mask(rows, x, y), **attributes)

    def between(*which):
        """Inside these circles and outside the others, up to the lines."""
        def inside(x, y):
            for i, (cx, cy) in enumerate(circles):
                distance = math.hypot(x - cx, y - cy) - radius
                if abs(distance) < line / 2 - 0.7 or (distance < 0) != (i in which):
                    return False
            return True
        return inside

    parts = [((0,), (0.95, 0.35, 0.3)), ((1,), (0.3, 0.55, 0.95)), ((2,), (0.98, 0.85, 0.3)),
             ((0, 1), (0.65, 0.4, 0.85)), ((0, 2), (0.98, 0.6, 0.25)), ((1, 2), (0.35, 0.75, 0.45)),
             ((0, 1, 2), (0.35, 0.25, 0.2))]
    for which, color in parts:
        fill(between(*which), color)
    doc.add("DrawFill", outline=doc.rectangle(0, 0, 60, 30), fill=(0.2, 0.2, 0.3), FillType=1)
    star = lambda x, y: math.hypot(x - 210, y - 30) < 14 + 6 * math.cos(5 * math.atan2(y - 30, x - 210))
    fill(star, (0.9, 0.2, 0.5), rotation=36)
    fill(lambda x, y: abs(x - 210) + abs(y - 170) < 26, (0.1, 0.6, 0.6))
    doc.add("DrawClear", outline=doc.oval(10, 150, 40, 40), fill=(0, 0, 0, 0))
    return doc
