# SPDX-License-Identifier: MIT
"""sway without a screen, with waybar or with its own bar."""

import contextlib
import json
import os
import pathlib
import signal
import subprocess

import look
from desktop import QUIET, Desktop, Portal, descendants
from nimbo_desktop import wait_until
from wayland_input import Hands, WlrootsInput

COLORS = {False: ("#eeeeee", "#111111"), True: ("#222222", "#eeeeee")}  # of the bar and of its texts


class Sway(Hands, Desktop):
    current = "sway"
    edges = ("top", "bottom")

    def session_options(self):
        return {"display": False}

    def install(self):
        super().install()
        headless = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}
        self.session.env.update(headless, LIBSEAT_BACKEND="noop", XDG_SESSION_TYPE="wayland")
        self.session.env["WLR_HEADLESS_OUTPUTS"] = str(self.screens)

    def start_desktop(self):
        env, runtime = self.session.env, pathlib.Path(self.session.env["XDG_RUNTIME_DIR"])
        self.portal = Portal(self.session, self.dark)
        lines = [f"exec sh -c 'echo $DISPLAY $SWAYSOCK > {runtime}/names.new; mv {runtime}/names.new {runtime}/names'"]
        for number in range(self.screens):
            place = f"resolution {self.width}x{self.height} scale {self.scale} position {round(number * self.width / self.scale)} 0"
            lines.append(f"output HEADLESS-{number + 1} {place} bg {look.GROUND} solid_color")
        lines.append('for_window [app_id="other-window"] border none')
        configuration = self.session.folder / "config" / "sway"
        configuration.write_text("\n".join([*lines, *self.bar(self.dark)]) + "\n")
        as_user = ["unshare", "--user", "--map-user=1000", "--map-group=1000"] if os.geteuid() == 0 else []
        self.session.start([*as_user, "sway", "-c", configuration], **QUIET)
        names = wait_until(lambda: (runtime / "names").exists() and (runtime / "names").read_text(), "the compositor")
        env["DISPLAY"], env["SWAYSOCK"] = names.split()
        env["WAYLAND_DISPLAY"] = next(path.name for path in runtime.glob("wayland-?"))
        wait_until(lambda: self.frame().width == self.width * self.screens, "the screens")
        self.hands = WlrootsInput(env, (self.width * self.screens, self.height))

    def bar(self, dark):
        return []

    def frame(self):
        grim = ["grim", "-t", "ppm", "-"]
        return look.from_ppm(subprocess.run(grim, env=self.session.env, capture_output=True, check=True, timeout=20).stdout)

    def active_window(self):
        asked = subprocess.run(["swaymsg", "-t", "get_tree"], env=self.session.env, capture_output=True, check=True)

        def focused(node):
            if node["focused"]:
                return node
            return next(filter(None, map(focused, node["nodes"] + node["floating_nodes"])), None)

        window = focused(json.loads(asked.stdout)) or {}
        application = window.get("app_id") or (window.get("window_properties") or {}).get("instance")
        return window.get("name"), application, True  # sway shows no icons


class Waybar(Sway):
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


class Swaybar(Sway):
    item_gap = 2
    cannot = {
        "tooltip": "swaybar shows none.",
        "menu": "swaybar shows none; a right click opens the dashboard.",
        "live_menu": "swaybar shows none.",
    }

    def bar(self, dark):
        background, text = COLORS[dark]
        return ["bar {", f" position {self.edge}", " swaybar_command swaybar", " colors {", f"  background {background}",
                f"  statusline {text}", " }", "}"]

    def start_panel(self):
        """It comes with the compositor, and comes again when that reads its settings."""
        self.run("swaymsg", "reload")

    def set_scheme(self, dark):
        configuration = self.session.folder / "config" / "sway"
        lines = configuration.read_text().splitlines()
        at = lines.index("bar {")
        configuration.write_text("\n".join([*lines[:at], *self.bar(dark)]) + "\n")
        self.run("swaymsg", "reload")
        self.portal.set(dark)

    def stop_panel(self):
        for pid in descendants():
            with contextlib.suppress(OSError):
                if pathlib.Path(f"/proc/{pid}/comm").read_text() == "swaybar\n":
                    os.kill(pid, signal.SIGKILL)
