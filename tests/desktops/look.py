# SPDX-License-Identifier: MIT
"""What can be told from a picture of a desktop whose ground is green and whose only other window is red."""

import collections

from screen import PIXEL

GROUND = "#006400"
WINDOW = "#c80000"
FAINT = 14  # green darkened by a shadow has no more red and blue than this, and more green
COLORED = bytes(value > FAINT for value in range(256))
BLACK = bytes(value <= FAINT for value in range(256))
DIFFERENT = bytes(value > 0 for value in range(256))
STRONG = bytes(value > 150 for value in range(256))


def _combined(operation, one, other):
    number = operation(int.from_bytes(one, "big"), int.from_bytes(other, "big"))
    return number.to_bytes(len(one), "big")


def covered(frame):
    """One byte for each pixel: 1 where something else than the ground is seen."""
    planes = [frame.pixels[channel::PIXEL].translate(table) for channel, table in enumerate((COLORED, BLACK, COLORED))]
    return _combined(int.__or__, _combined(int.__or__, *planes[:2]), planes[2])


def bare(frame):
    return _inverted(covered(frame))


def red(frame):
    """Where the other window is seen."""
    planes = [frame.pixels[channel::PIXEL] for channel in range(3)]
    return _combined(int.__and__, planes[2].translate(STRONG), _inverted(_combined(
        int.__or__, planes[0].translate(COLORED), planes[1].translate(COLORED))))


def _inverted(mask):
    return mask.translate(bytes([1, 0]) + bytes(254))


def changed(before, frame):
    different = _combined(int.__xor__, before.pixels, frame.pixels)
    planes = [different[channel::PIXEL].translate(DIFFERENT) for channel in range(3)]
    return _combined(int.__or__, _combined(int.__or__, planes[0], planes[1]), planes[2])


def appeared(before, frame):
    """What has changed and is neither the ground nor as red as the other window, so without shadows on these."""
    planes = [frame.pixels[channel::PIXEL].translate(COLORED) for channel in (0, 1)]
    seen = _combined(int.__and__, covered(frame), _combined(int.__or__, *planes))
    return _combined(int.__and__, changed(before, frame), seen)


def without_shadow(mask, before, frame, area):
    """Keeps in `area`, a panel, only what has become lighter."""
    kept = bytearray(mask)
    left, top, across, down = area
    for y in range(top, top + down):
        begin = y * frame.width + left
        place = slice(begin, begin + across)
        green = slice(begin * PIXEL + 1, (begin + across) * PIXEL, PIXEL)
        kept[place] = bytes(map(_lit, mask[place], frame.pixels[green], before.pixels[green]))
    return bytes(kept)


def _lit(seen, now, then):
    return seen and now > then


def box(mask, width, area, least):
    """(x, y, width, height) of the tallest stack of rows in `area` with `least` pixels each; None if there is none."""
    left, top, across, down = area
    rows = {}
    best = current = None
    for y in range(top, top + down):
        row = mask[y * width + left : y * width + left + across]
        if row.count(1) < least:
            current = None
            continue
        rows[y] = (row.find(1), row.rfind(1))
        current = (current[0], y) if current else (y, y)
        if not best or current[1] - current[0] >= best[1] - best[0]:
            best = current
    if not best:
        return None
    ends = [rows[y] for y in range(best[0], best[1] + 1)]
    first, last = (sorted(end[index] for end in ends)[len(ends) // 2] for index in (0, 1))
    return left + first, best[0], last - first + 1, best[1] - best[0] + 1


def clusters(mask, width, area, horizontal, gap):
    """Boxes in `area` that at least `gap` empty columns (rows, if not horizontal) keep apart, as the reader goes."""
    left, top, across, down = area
    lines = [mask[y * width + left : y * width + left + across] for y in range(top, top + down)]
    filled = [any(line[x] for line in lines) for x in range(across)] if horizontal else [1 in line for line in lines]
    spans = []
    for place, full in enumerate(filled):
        if full and spans and place - spans[-1][1] <= gap:
            spans[-1][1] = place
        elif full:
            spans.append([place, place])
    if horizontal:
        return [(left + begin, top, end - begin + 1, down) for begin, end in spans]
    return [(left, top + begin, across, end - begin + 1) for begin, end in spans]


def rows(mask, width, area):
    x, y, across, down = area
    return [mask[line * width + x : line * width + x + across] for line in range(y, y + down)]


def cropped(mask, width, area):
    return b"".join(rows(mask, width, area))


def _luminance(pixel):
    linear = [value / 255 / 12.92 if value <= 10 else ((value / 255 + 0.055) / 1.055) ** 2.4 for value in pixel]
    return 0.0722 * linear[0] + 0.7152 * linear[1] + 0.2126 * linear[2]


def contrast(frame, area):
    """(ratio, luminance of the ground): between the most frequent color in `area` and the one that differs most."""
    pixels = frame.cropped(*area).pixels
    counts = collections.Counter(pixels[at : at + 3] for at in range(0, len(pixels), PIXEL))
    ground = _luminance(counts.most_common(1)[0][0])
    others = [_luminance(pixel) for pixel in counts]
    return max((max(ground, other) + 0.05) / (min(ground, other) + 0.05) for other in others), ground
