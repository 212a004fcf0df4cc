# SPDX-License-Identifier: MIT
"""The modules for other bars, each in the real one: what it shows as the program comes, has news and goes."""

import contextlib
import json
import pathlib
import subprocess
import time
import unittest

import bars
from widget_support import WIDGETS

import claude_tool
from nimbo_desktop import BOUND, SLOW, wait_until
from power_services import Logind
from program import BINARY, DesktopTest

STILL = 0.7  # seconds without a change that count as standing still


@unittest.skipIf(Logind.missing(), Logind.missing())
class ShellTest(DesktopTest):
    """With `nimbo` in the path, and a machine that can be kept awake."""

    system_bus = True
    desktop = "sway"

    def setUp(self):
        super().setUp()
        Logind(self.session)
        self.nimbo_file = self.session.folder / "bin" / "nimbo"
        self.nimbo_file.parent.mkdir()
        self.nimbo_file.symlink_to(pathlib.Path(BINARY).resolve())
        self.session.env["PATH"] = f"{self.nimbo_file.parent}:{self.session.env['PATH']}"

    def nimbo(self, *words):
        done = subprocess.run([self.nimbo_file, *words], env=self.session.env, capture_output=True, text=True, check=True)
        return done.stdout.rstrip("\n")

    def launch(self, **settings):
        self.session.settings(refreshInterval=2, **settings)
        self.start()

    def watchers(self):
        """The commands that the bar has started and that still run."""
        home, found = f"HOME={self.session.folder}\0".encode(), []
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):
                if home in (process / "environ").read_bytes() and b"\0--watch\0" in (process / "cmdline").read_bytes():
                    found.append(int(process.name))
        return found


class BarTest:
    """Of every bar. `open_bar` shows the modules, `shown` has something that differs when they look different."""

    def still(self):
        value, since = self.shown(), time.monotonic()

        def stands():
            nonlocal value, since
            now = self.shown()
            if now != value:
                value, since = now, time.monotonic()
            return now is not None and time.monotonic() > since + STILL * SLOW

        wait_until(stands, "the bar to stand still")
        return value

    def after(self, before, what, text="", color=None):
        """What is shown once it is something else, and that text in that colour as far as can be told."""
        try:
            wait_until(lambda: self.shown() != before and self.shows(text, color), f"{what} to be shown", 3 * BOUND)
        except AssertionError:
            self.assertIn(text, repr(self.shown()), what)
            raise
        return self.still()

    def wait_for(self, expected, what):
        try:
            wait_until(lambda: self.shown() == expected, what)
        except AssertionError:
            self.assertEqual(self.shown(), expected, what)

    def use(self, percent):
        claude_tool.install(self.session, claude_tool.screen(percent, 23))

    def used(self):
        return json.loads(self.nimbo("usage", "--json"))["percentage"]

    def test_modules_follow_the_program(self):
        self.use(61)
        self.open_bar()
        wait_until(lambda: len(self.watchers()) >= 3, "the commands")
        empty = self.still()
        # Of the memory nothing is shown, because it would be another by itself; some monitor is always on.
        self.launch(usage__claude=True, monitorMemory=False, monitorCPU=True)
        wait_until(lambda: self.used() == 61, "the figures", 3 * BOUND)
        normal = self.after(empty, "what is used", self.nimbo("usage", "--short"))
        self.use(95)
        self.session.call("com.quellwerk.Nimbo", "/com/quellwerk/Nimbo", "com.quellwerk.Nimbo.Usage1", "Refresh")
        wait_until(lambda: self.used() == 95, "the new figures", 3 * BOUND)
        full = self.after(normal, "what is used by now", self.nimbo("usage", "--short"), bars.FULL)
        self.nimbo("awake", "on")
        self.after(full, "the session", self.nimbo("awake", "status", "--short"), bars.AWAKE)
        self.nimbo("awake", "off")
        self.wait_for(full, "the session's end")
        self.assertEqual(self.program.terminate(), 0)
        self.wait_for(empty, "nothing")
        self.launch()
        self.after(empty, "the memory")
        self.close_bar()
        wait_until(lambda: not self.watchers(), "the commands to end with the bar")

    def shows(self, text, color):
        """Where more can be told than that the picture is another."""
        return True


class PictureTest(BarTest):
    display = True

    def open_bar(self):
        self.bar = self.kind(self.session)
        wait_until(lambda: self.has(bars.GROUND), "the bar", 3 * BOUND)

    def has(self, color):
        return bytes.fromhex(color[1:])[::-1] in self.shown()

    def close_bar(self):
        self.bar.process.end()

    def shown(self):
        return self.bar.frame().pixels


class WaybarTest(PictureTest, ShellTest):
    kind = bars.Waybar
    display = False

    def shows(self, text, color):
        return color is None or self.has(color)


class PolybarTest(PictureTest, ShellTest):
    kind = bars.Polybar


class I3blocksTest(PictureTest, ShellTest):
    kind = bars.I3blocks


class TmuxTest(BarTest, ShellTest):
    def open_bar(self):
        self.command = bars.tmux(self.session)
        self.terminal = bars.Terminal(self.session, *self.command)

    def close_bar(self):
        subprocess.run([*self.command, "kill-server"], env=self.session.env, check=True)

    def shown(self):
        """Nothing while tmux says that a command has said nothing yet."""
        line = self.terminal.lines()[-1]
        return None if "not ready" in line else line

    def shows(self, text, color):
        return text in (self.shown() or "")


class PromptTest(ShellTest):
    """The prompt of a shell begins with the session."""

    def check(self, *shell):
        self.launch()
        terminal = bars.Terminal(self.session, *shell)
        terminal.type(f"PS1='> '; . {WIDGETS}/prompt.sh; clear")
        wait_until(lambda: terminal.lines()[:1] == [">"], "a prompt as it was")
        job = self.session.folder / "50% $(id)`id` %# \\w"  # its name is no business of the shell
        job.symlink_to("/bin/sleep")
        working = self.session.start([self.nimbo_file, "awake", "run", job, "600"])
        wait_until(lambda: self.nimbo("awake", "status", "--short"), "the session")
        terminal.type("clear; (exit 3)")
        wait_until(lambda: terminal.lines()[:1] == [f"Awake for {job.name} >"], "the session in the prompt")
        terminal.type("echo status $?")
        wait_until(lambda: "status 3" in terminal.lines(), "the status of the command before")
        working.end()
        terminal.type("clear")
        wait_until(lambda: terminal.lines()[:1] == [">"], "a prompt without the session")

    def test_bash(self):
        self.check("bash", "--norc")

    def test_zsh(self):
        self.check("zsh", "-f")


if __name__ == "__main__":
    unittest.main()
