# SPDX-License-Identifier: MIT
"""Takes the pictures of the widgets: waybar and the card in sway, and the other bars one below the other.

Usage: widget_pictures.py FOLDER. Needs what the tests need, xterm and swaybg.
"""

import contextlib
import pathlib
import subprocess
import sys
import time

import bars
from widget_support import CARD, PYTHON, Service, provider, temperature

from gi.repository import GLib
from nimbo_desktop import Session, turn_for
from program import BINARY

GIB = 1 << 30
# Where in the picture each draws.
SHOWN = (bars.Polybar, "polybar", 0, 30), (bars.I3blocks, "i3blocks in i3’s bar", 37, 23), (bars.Xterm, "tmux", 0, 54)


def service(session):
    """A program with figures worth a picture."""
    now = int(time.time())
    commands = session.folder / "bin"
    commands.mkdir()
    (commands / "nimbo").symlink_to(pathlib.Path(BINARY).resolve())
    session.env["PATH"] = f"{commands}:{session.env['PATH']}"
    values = {
        "Codex": provider(("5-hour", 77, now + 5400), ("Weekly", 35, now + 3 * 86400)),
        "Claude": provider(("5-hour", 41, now + 2400), ("Weekly", 92, now + 5 * 86400)),
        "Temperature": temperature(54.4),
        "Memory": GLib.Variant("(ttttxs)", (32 * GIB, 13 * GIB, 2 * GIB, 0, 0, "Normal")),
        "MemoryFailed": GLib.Variant("b", False),
        "Cpu": GLib.Variant("d", 0.12),
        "Active": GLib.Variant("b", True),
        "Own": GLib.Variant("b", True),
        "EndsAt": GLib.Variant("x", now + 7200),
        "KeepsDisplayOn": GLib.Variant("b", False),
        "Message": GLib.Variant("s", ""),
        "Holders": GLib.Variant("as", []),
    }
    return Service(session, **values)


def card_and_waybar(picture):
    with contextlib.closing(Session(desktop="sway")) as session:
        said = service(session)
        bar = bars.Waybar(session, (960, 540), "#31506b")
        session.start([PYTHON, CARD], **bars.QUIET)
        turn_for(4)  # until both are drawn, which nobody announces
        bar.frame().save(picture)
        said.leave()


def others(picture):
    """Each below its name."""
    parts = []
    for kind, name, top, height in SHOWN:
        with contextlib.closing(Session(display=True, size="900x60x24")) as session:
            said = service(session)
            bar = kind(session)
            turn_for(7)
            part = picture.with_name(f"{kind.__name__}.png")
            bar.frame().cropped(0, top, 900, height).save(part)
            said.leave()
        parts += ["(", "-gravity", "west", f"label:{name}", "-bordercolor", "white", "-border", "0x5", part, "-append", ")"]
    look = ["-background", "white", "-fill", "#555555", "-font", "DejaVu-Sans", "-pointsize", "14"]
    subprocess.run(["convert", *look, *parts, "-append", "-bordercolor", "white", "-border", "10", picture], check=True)


if __name__ == "__main__":
    target = pathlib.Path(sys.argv[1])
    target.mkdir(exist_ok=True)
    card_and_waybar(target / "widgets.png")
    others(target / "bars.png")
