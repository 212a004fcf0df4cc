# SPDX-License-Identifier: MIT
"""Takes pictures of the widgets: in waybar and on the desktop under sway, and on an X11 desktop.

Usage: widget_pictures.py FOLDER, not as root, because sway refuses to run then. Needs sway, swaybg, waybar,
grim, xfwm4 and imagemagick.
"""

import contextlib
import os
import pathlib
import subprocess
import sys
import time

from widget_support import PYTHON, WIDGETS, Publisher, limit, provider, record

from nimbo_desktop import Session, turn_for, wait_until, windows_of

SWAY = """
xwayland disable
output * resolution 960x540 background #31506b solid_color
"""
WAYBAR = """
{ "layer": "top", "position": "top", "height": 30,
  "modules-left": ["sway/workspaces"], "modules-right": ["custom/nimbo", "clock"],
  "custom/nimbo": { "exec": "%s", "return-type": "json", "tooltip": true } }
"""


def reading(**changes):
    now = time.time()
    return record(
        codex=provider(limit("5-hour", 77, now + 5400), limit("Weekly", 35, now + 3 * 86400)),
        claude=provider(limit("5-hour", 92, now + 2400), limit("Weekly", 12, now + 5 * 86400)),
        **changes,
    )


class Sway:
    """A Wayland session without a screen of glass, with waybar and the desktop widget."""

    def __init__(self, session):
        self.session = session
        folder = session.folder
        (folder / "sway.conf").write_text(SWAY)
        (folder / "config/waybar").mkdir(exist_ok=True)
        (folder / "config/waybar/config").write_text(WAYBAR % f"{PYTHON} {WIDGETS}/waybar/nimbo-waybar")
        (folder / "config/waybar/style.css").write_text((WIDGETS / "waybar/style.css").read_text())
        headless = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}
        session.env |= headless | {"XDG_SESSION_TYPE": "wayland", "LC_ALL": "C.UTF-8"}
        run = folder / "run"
        self._start(["sway", "-c", folder / "sway.conf"])
        socket = wait_until(lambda: [s for s in run.glob("wayland-*") if s.suffix != ".lock"], "sway")[0]
        session.env["WAYLAND_DISPLAY"] = socket.name
        session.env["SWAYSOCK"] = str(wait_until(lambda: list(run.glob("sway-ipc.*")), "sway's socket")[0])
        self._start(["waybar"])
        self._start([PYTHON, WIDGETS / "desktop/nimbo-desktop-widget"])

    def _start(self, arguments):
        self.session.start(arguments, stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL)

    def take(self, picture):
        subprocess.run(["grim", str(picture)], env=self.session.env, check=True)


def wayland(folder):
    with contextlib.closing(Session(desktop="sway")) as session:
        publisher = Publisher(session)
        publisher.put(reading())
        sway = Sway(session)
        turn_for(4)  # until bar and card are drawn, which nobody announces
        sway.take(folder / "sway.png")
        for name, contents in (
            ("sway-old", reading(date=time.time() - 3600)),
            ("sway-damaged", "{"),
        ):
            publisher.publish(contents)
            turn_for(1.5)
            sway.take(folder / f"{name}.png")


def x11(folder):
    with contextlib.closing(Session(display=True, size="960x540x24")) as session:
        session.env["LC_ALL"] = "C.UTF-8"
        publisher = Publisher(session)
        publisher.put(reading())
        session.start(["xfwm4", "--compositor=on"], stderr=subprocess.DEVNULL)
        session.start(["hsetroot", "-solid", "#31506b"])
        turn_for(1.5)
        widget = session.start([PYTHON, WIDGETS / "desktop/nimbo-desktop-widget"])
        wait_until(lambda: windows_of(session, widget.pid), "the widget")
        turn_for(1.5)
        subprocess.run(["import", "-window", "root", str(folder / "x11.png")], env=session.env, check=True)


if __name__ == "__main__":
    target = pathlib.Path(sys.argv[1])
    os.makedirs(target, exist_ok=True)
    wayland(target)
    x11(target)
