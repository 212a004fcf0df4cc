# SPDX-License-Identifier: MIT
"""What a private display shows, read from the frame buffer that its X server keeps in a file."""

import contextlib
import os
import pathlib
import struct
import time
import zlib

from nimbo_desktop import wait_until

STILL = 0.25  # seconds without a change that count as standing still
PIXEL = 4  # bytes: blue, green, red and one unused


class Frame:
    """What was on the display at one moment."""

    def __init__(self, width, height, pixels):
        self.width = width
        self.height = height
        self.pixels = pixels

    @classmethod
    def from_ppm(cls, data):
        _kind, width, height, _most = data.split(maxsplit=4)[:4]
        width, height = int(width), int(height)
        colors = data[-3 * width * height :]
        pixels = bytearray(b"\xff" * (PIXEL * width * height))
        for channel in range(3):
            pixels[channel::PIXEL] = colors[2 - channel :: 3]
        return cls(width, height, bytes(pixels))

    def row(self, y):
        stride = self.width * PIXEL
        return self.pixels[y * stride : (y + 1) * stride]

    def color(self, x, y):
        """As #rrggbb; a negative y counts from the bottom."""
        blue, green, red = self.row(y % self.height)[x * PIXEL : x * PIXEL + 3]
        return f"#{red:02x}{green:02x}{blue:02x}"

    def changed_box(self, after):
        """Bounding box (x, y, width, height) of what differs in a later one; None if nothing does."""
        rows = [y for y in range(self.height) if self.row(y) != after.row(y)]
        if not rows:
            return None
        changed = 0  # the bits of a row, the left end first
        for y in rows:
            changed |= int.from_bytes(self.row(y), "big") ^ int.from_bytes(after.row(y), "big")
        bits = 8 * PIXEL
        left = self.width - 1 - (changed.bit_length() - 1) // bits
        right = self.width - 1 - ((changed & -changed).bit_length() - 1) // bits
        return left, rows[0], right - left + 1, rows[-1] - rows[0] + 1

    def cropped(self, x, y, width, height):
        rows = (self.row(line)[x * PIXEL : (x + width) * PIXEL] for line in range(y, y + height))
        return Frame(width, height, b"".join(rows))

    def save(self, path):
        """As PNG."""
        colors = bytearray(self.width * self.height * 3)
        for index in range(3):
            colors[index::3] = self.pixels[2 - index :: PIXEL]
        stride = self.width * 3
        # Each row begins with the number of its filter: none.
        rows = b"".join(b"\0" + colors[y * stride : (y + 1) * stride] for y in range(self.height))
        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        path.write_bytes(
            b"\x89PNG\r\n\x1a\n" + _chunk(b"IHDR", header) + _chunk(b"IDAT", zlib.compress(rows)) + _chunk(b"IEND", b"")
        )


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


class Screen:
    def __init__(self, path):
        """`path`: the X server's frame buffer, in the format of xwd."""
        self.path = path

    def frame(self):
        data = self.path.read_bytes()
        fields = struct.unpack_from(">25I", data)
        header, width, height, colors = fields[0], fields[4], fields[5], fields[19]
        begin = header + colors * 12
        return Frame(width, height, data[begin : begin + width * height * PIXEL])

    def settled(self, bound=10):
        """What is shown once it stands still and nobody here has work left, or at the end of the bound."""
        frame, since = self.frame(), time.monotonic()

        def still():
            nonlocal frame, since
            now = self.frame()
            if at_work() or now.pixels != frame.pixels:
                frame, since = now, time.monotonic()
            return time.monotonic() > since + STILL

        with contextlib.suppress(AssertionError):
            wait_until(still, "the display to stand still", bound)
        return frame


def at_work():
    """Whether anything that this process has started runs, or waits for a processor or a disk.

    On a machine under load a display also stands still while what draws on it waits for its turn.
    """
    parents, busy = {}, []
    for entry in pathlib.Path("/proc").iterdir():
        if not entry.name.isdigit():
            continue
        with contextlib.suppress(OSError):
            state, parent = (entry / "stat").read_text(errors="replace").rpartition(")")[2].split()[:2]
            parents[int(entry.name)] = int(parent)
            if state in "RD":
                busy.append(int(entry.name))
    return any(os.getpid() in _ancestors(pid, parents) for pid in busy)


def _ancestors(pid, parents):
    pid = parents.get(pid)
    while pid:
        yield pid
        pid = parents.get(pid)
