# SPDX-License-Identifier: MIT
"""A real sway without hardware, and somebody at its pointer and keyboard."""

import json
import os
import pathlib
import subprocess

import wayland_input
from nimbo_desktop import wait_until
from screen import Frame

QUIET = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}


def prepare(env, screens=1):
    """Before anything of the session starts."""
    headless = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}
    env.update(headless, LIBSEAT_BACKEND="noop", XDG_SESSION_TYPE="wayland", WLR_HEADLESS_OUTPUTS=str(screens))


class Sway(wayland_input.Hands):
    """With `screens` of `size` pixels beside each other, filled with `ground`. Places and sizes are pixels."""

    def __init__(self, session, lines, size, ground, scale=1, screens=1):
        self.session = session
        env, runtime = session.env, pathlib.Path(session.env["XDG_RUNTIME_DIR"])
        width, height = size
        tell = f"exec sh -c 'echo $DISPLAY, $SWAYSOCK > {runtime}/names.new; mv {runtime}/names.new {runtime}/names'"
        outputs = [
            f"output HEADLESS-{number + 1} resolution {width}x{height} scale {scale} position {round(number * width / scale)} 0 "
            f"bg {ground} solid_color"
            for number in range(screens)
        ]
        self.configuration = session.folder / "config" / "sway"
        self.own_lines = [tell, *outputs, "default_border none"]
        self.configure(lines)
        # It refuses to be root's.
        as_user = ["unshare", "--user", "--map-user=1000", "--map-group=1000"] if os.geteuid() == 0 else []
        session.start([*as_user, "sway", "-c", self.configuration], **QUIET)
        names = wait_until(lambda: (runtime / "names").exists() and (runtime / "names").read_text(), "the compositor")
        display, env["SWAYSOCK"] = names.strip().split(", ")
        if display:
            env["DISPLAY"] = display
        env["WAYLAND_DISPLAY"] = next(path.name for path in runtime.glob("wayland-?"))
        wait_until(lambda: self.frame().width == width * screens, "the screens")
        self.hands = wayland_input.WlrootsInput(env, (width * screens, height))

    def configure(self, lines):
        self.configuration.write_text("\n".join([*self.own_lines, *lines]) + "\n")

    def run(self, *command):
        return subprocess.run(command, env=self.session.env, capture_output=True, check=True, timeout=20).stdout

    def frame(self):
        return Frame.from_ppm(self.run("grim", "-t", "ppm", "-"))

    def windows(self):
        """Its nodes for all ordinary windows."""

        def walk(node):
            if node.get("pid"):
                yield node
            for child in node["nodes"] + node["floating_nodes"]:
                yield from walk(child)

        return list(walk(json.loads(self.run("swaymsg", "-t", "get_tree"))))
