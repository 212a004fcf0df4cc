# SPDX-License-Identifier: MIT
"""Draws an icon for macOS. Usage: make_icns.py RSVG_CONVERT DRAWING.svg ICON.icns"""
import struct
import subprocess
import sys

# The system's names for PNGs of these sides, in pixels. Some stand twice: as they are, and for half the side at two
# pixels a point. The names of 16 and 32 at one pixel a point take no PNG everywhere; larger ones are scaled for them.
ENTRIES = {
    b"ic11": 32, b"ic12": 64, b"ic07": 128, b"ic13": 256, b"ic08": 256, b"ic14": 512, b"ic09": 512, b"ic10": 1024,
}  # fmt: skip


def drawn(renderer, drawing, side):
    command = [renderer, "--width", str(side), "--height", str(side), drawing]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout


def block(name, contents):
    return name + struct.pack(">I", len(contents) + 8) + contents


def main(renderer, drawing, icon):
    images = {side: drawn(renderer, drawing, side) for side in set(ENTRIES.values())}
    contents = block(b"icns", b"".join(block(name, images[side]) for name, side in ENTRIES.items()))
    with open(icon, "wb") as file:
        file.write(contents)


main(*sys.argv[1:])
