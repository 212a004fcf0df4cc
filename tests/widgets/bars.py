# SPDX-License-Identifier: MIT
"""Bars on private displays, with the modules as they are shipped, and the program whose figures they show."""

import json
from pathlib import Path
import shlex
import subprocess

from widget_support import WIDGETS

import sway
from nimbo_desktop import wait_until
from screen import Screen

QUIET = sway.QUIET
MODULES = "nimbo-usage", "nimbo-memory", "nimbo-awake"
GROUND, INK = "#1c1e26", "#eeeeee"
FULL, AWAKE = "#ff453a", "#40c8c4"  # as in the style sheet of waybar
FONT = "DejaVu Sans"


class Waybar:
    """In sway."""

    def __init__(self, session, size=(900, 30), ground="#000000"):
        sway.prepare(session.env)
        self.sway = sway.Sway(session, ["seat * hide_cursor 100"], size, ground)
        folder = session.folder / "config/waybar"
        folder.mkdir()
        bar = {"height": 30, "modules-right": [f"custom/{name}" for name in MODULES]}
        (folder / "config").write_text(json.dumps({**bar, "include": [str(WIDGETS / "waybar/nimbo.jsonc")]}))
        (folder / "style.css").write_text(
            f'@import url("{WIDGETS}/waybar/style.css"); * {{ font: 14px "{FONT}"; }}'
            f"window#waybar {{ background: {GROUND}; color: {INK}; }}"
        )
        self.process = session.start(["env", "GDK_BACKEND=wayland", "waybar"], **QUIET)

    def frame(self):
        return self.sway.frame()


class X11Bar:
    def frame(self):
        return Screen(self.session.display.frame_buffer).frame()


class Polybar(X11Bar):
    def __init__(self, session):
        self.session = session
        configuration = session.folder / "polybar.ini"
        configuration.write_text(
            f"include-file = {WIDGETS}/polybar.ini\n"
            f"[bar/test]\nwidth = 100%\nheight = 30\nbackground = {GROUND}\nforeground = {INK}\n"
            f"padding-right = 1\nfont-0 = {FONT}:size=10;2\nmodule-margin = 1\nmodules-right = {' '.join(MODULES)}\n"
        )
        self.process = session.start(["polybar", "-c", configuration, "test"], **QUIET)


class I3blocks(X11Bar):
    """In i3's bar."""

    def __init__(self, session):
        self.session = session
        configuration = session.folder / "i3"
        configuration.write_text(
            f"# i3 config file (v4)\nfont pango:{FONT} 10\n"
            f"bar {{\n status_command i3blocks -c {WIDGETS}/i3blocks.conf\n workspace_buttons no\n padding 0 8px\n"
            f" colors {{\n background {GROUND}\n statusline {INK}\n }}\n}}\n"
        )
        self.process = session.start(["i3", "-c", configuration], **QUIET)


def tmux(session):
    """The command that runs it with the module, and no server that is there already."""
    # A window is renamed some time after its command has begun.
    own = "set -g status-right ''\nset -g automatic-rename off\n"
    (session.folder / ".tmux.conf").write_text(f"{own}source-file {WIDGETS}/tmux.conf\n")
    command = ["tmux", "-u", "-S", str(session.folder / "tmux")]
    session.stack.callback(subprocess.run, [*command, "kill-server"], env=session.env, **QUIET)
    return command


class Xterm(X11Bar):
    """With tmux in it; for pictures."""

    def __init__(self, session):
        self.session = session
        look = ["-fa", f"{FONT} Mono", "-fs", "11", "-geometry", "100x3+0+0", "-b", "0", "-bg", GROUND, "-fg", INK]
        session.start(["xterm", *look, "-e", *tmux(session), "new", "env", "PS1=$ ", "sh"], **QUIET)


class Terminal:
    """A terminal of 100 columns and 6 rows in which a command runs, without a screen of glass."""

    def __init__(self, session, *command):
        self.session, self.socket = session, session.folder / f"terminal-{Path(command[0]).name}"
        start = ["new-session", "-d", "-x", "100", "-y", "6", shlex.join(map(str, command))]
        self._run("-f", "/dev/null", *start, ";", "set", "status", "off")
        session.stack.callback(self.close)

    def _run(self, *arguments, check=True):
        command = ["tmux", "-u", "-S", str(self.socket), *arguments]
        return subprocess.run(command, env=self.session.env, check=check, capture_output=True, text=True).stdout

    def close(self):
        self._run("kill-server", check=False)

    def type(self, line):
        self._run("send-keys", line, "Enter")

    def lines(self):
        return self._run("capture-pane", "-p").splitlines()
