# SPDX-License-Identifier: MIT
"""sway without a screen, with waybar or with its own bar."""

import contextlib
import json
import os
import pathlib
import signal

import look
import sway
from desktop import QUIET, Desktop, Portal, descendants
from wayland_input import Hands

COLORS = {False: ("#eeeeee", "#111111"), True: ("#222222", "#eeeeee")}  # of the bar and of its texts


class SwayDesktop(Hands, Desktop):
    current = "sway"
    edges = ("top", "bottom")

    def session_options(self):
        return {"display": False}

    def install(self):
        super().install()
        sway.prepare(self.session.env, self.screens)

    def start_desktop(self):
        self.portal = Portal(self.session, self.dark)
        size = self.width, self.height
        self.sway = sway.Sway(self.session, self.configuration(self.dark), size, look.GROUND, self.scale, self.screens)
        self.hands = self.sway.hands

    def configuration(self, dark):
        return []

    def frame(self):
        return self.sway.frame()

    def active_window(self):
        window = next((node for node in self.sway.windows() if node["focused"]), {})
        application = window.get("app_id") or (window.get("window_properties") or {}).get("instance")
        return window.get("name"), application, True  # sway shows no icons


class Waybar(SwayDesktop):
    escape_closes_menus = False  # no key reaches them

    def files(self, dark):
        folder = self.session.folder / "config" / "waybar"
        folder.mkdir(exist_ok=True)
        background, text = COLORS[dark]
        (folder / "style.css").write_text(
            f'* {{ font-family: "DejaVu Sans"; font-size: 12px; }} window#waybar {{ background: {background}; color: {text}; }}'
        )
        bar = {
            "layer": "top", "position": self.edge, "height": 28, "modules-left": ["sway/workspaces"], "modules-right": ["tray"],
            "tray": {"icon-size": 18, "spacing": 6},
        }
        if self.screens == 2:
            bar["output"] = "HEADLESS-2"
        (folder / "config").write_text(json.dumps(bar))

    def screen_area(self):
        return (self.screens - 1) * self.width, 0, self.width, self.height

    def start_panel(self):
        self.files(self.dark)
        self.panel = self.session.start(["env", "GDK_BACKEND=wayland", "waybar"], **QUIET)

    def set_scheme(self, dark):
        self.files(dark)
        self.panel.process.send_signal(signal.SIGUSR2)
        self.portal.set(dark)


class Swaybar(SwayDesktop):
    item_gap = 2
    cannot = {
        "tooltip": "swaybar shows none.",
        "menu": "swaybar shows none; a right click opens the dashboard.",
        "live_menu": "swaybar shows none.",
    }

    def configuration(self, dark):
        background, text = COLORS[dark]
        return [f"bar {{\n position {self.edge}\n colors {{\n background {background}\n statusline {text}\n }}\n}}"]

    def start_panel(self):
        """It comes with the compositor, and comes again when that reads its settings."""
        self.sway.run("swaymsg", "reload")

    def set_scheme(self, dark):
        self.sway.configure(self.configuration(dark))
        self.sway.run("swaymsg", "reload")
        self.portal.set(dark)

    def stop_panel(self):
        for pid in descendants():
            with contextlib.suppress(OSError):
                if pathlib.Path(f"/proc/{pid}/comm").read_text() == "swaybar\n":
                    os.kill(pid, signal.SIGKILL)
