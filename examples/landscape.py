"""A picture with what photographs have: soft shading, hard edges, fine texture, a light source and
a sensor's noise. All of it is computed; no photograph went into it."""
import math
import random


def _mix(a, b, t):
    return tuple(u + (v - u) * t for u, v in zip(a, b))


def _step(edge, x):
    """From 0 to 1 within a pixel."""
    return min(1.0, max(0.0, x - edge + 0.5))


def _ridge(x, seed, width):
    """Height of a range of hills above its base, -1 to 1."""
    u = x / width * 2 * math.pi
    return (math.sin(u * 1.3 + seed) + 0.5 * math.sin(u * 3.1 + 2 * seed) + 0.25 * math.sin(u * 7.7 + 3 * seed)
            + 0.12 * math.sin(u * 17 + 5 * seed)) / 1.87


def _scene(x, y, width, height, texture):
    """Red, green, blue, 0 to 1, of the picture without water; y counts from the top."""
    sky = _mix((0.16, 0.36, 0.72), (0.98, 0.80, 0.58), min(1.0, y / (0.62 * height)) ** 1.4)
    sun = math.hypot(x - 0.72 * width, y - 0.26 * height)
    glow = math.exp(-(sun / (0.16 * width)) ** 1.2)
    color = _mix(sky, (1.0, 0.93, 0.70), 0.75 * glow)
    color = _mix(color, (1.0, 0.98, 0.88), 1 - _step(0.055 * width, sun))
    for base, tall, seed, near, far in ((0.50, 0.10, 1.0, (0.36, 0.40, 0.58), (0.55, 0.52, 0.62)),
                                        (0.57, 0.08, 4.0, (0.20, 0.30, 0.34), (0.38, 0.42, 0.44)),
                                        (0.63, 0.045, 8.5, (0.10, 0.20, 0.10), (0.26, 0.36, 0.14))):
        top = (base - tall * _ridge(x, seed, width)) * height
        shade = min(1.0, max(0.0, (y - top) / (0.1 * height)))
        grain = 0.04 * texture if seed > 8 else 0.012 * texture
        color = _mix(color, tuple(v + grain for v in _mix(far, near, shade)), _step(top, y))
    # A red house with a lit side and a white tower.
    for left, right, top, bottom, paint in ((0.18, 0.30, 0.52, 0.67, (0.72, 0.16, 0.12)),
                                            (0.30, 0.34, 0.52, 0.67, (0.42, 0.08, 0.08)),
                                            (0.205, 0.235, 0.565, 0.61, (0.98, 0.85, 0.45)),
                                            (0.25, 0.28, 0.565, 0.61, (0.98, 0.85, 0.45)),
                                            (0.45, 0.475, 0.36, 0.66, (0.95, 0.94, 0.92)),
                                            (0.46, 0.475, 0.36, 0.66, (0.66, 0.66, 0.70)),
                                            (0.445, 0.48, 0.34, 0.365, (0.15, 0.15, 0.18))):
        inside = (_step(left * width, x) * (1 - _step(right * width, x)) * _step(top * height, y)
                  * (1 - _step(bottom * height, y)))
        color = _mix(color, paint, inside)
    roof = _step(abs(x - 0.26 * width) * 0.9 + 0.44 * height, y) * (1 - _step(0.525 * height, y))
    return _mix(color, (0.24, 0.20, 0.22), roof)


def landscape(width, height, seed=1):
    """Rows of (R, G, B, 255) from the top, as one list."""
    noise = random.Random(seed)
    shore = int(0.68 * height)
    pixels = []
    for y in range(height):
        for x in range(width):
            texture = noise.gauss(0, 1)
            if y < shore:
                color = _scene(x + 0.5, y + 0.5, width, height, texture)
            else:
                depth = (y - shore) / (height - shore)
                wave = math.sin(0.9 * (y - shore) / (0.15 + depth)) * (1 + 6 * depth)
                mirrored = shore - (y - shore) * 0.9
                color = _scene(x + wave, mirrored, width, height, 0)
                color = _mix(color, (0.06, 0.16, 0.24), 0.25 + 0.35 * depth)
                if noise.random() < 0.02 * (1 - depth):
                    color = _mix(color, (1, 1, 1), 0.5)
            pixels.append(tuple(min(255, max(0, round(255 * v + noise.gauss(0, 1.5)))) for v in color) + (255,))
    return pixels
