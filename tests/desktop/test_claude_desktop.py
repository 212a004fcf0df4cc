# SPDX-License-Identifier: MIT
"""The usage page of a desktop application that is built on a web engine, read over accessibility.

Chromium plays the application: its program runs from a folder and under the name that the real one
has, and shows a page of our own. What the real application puts on its page is not tested here.
"""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import time
import unittest

from gi.repository import GLib

from nimbo_desktop import SLOW, Session, wait_until, windows_of
from program import BINARY

HERE = pathlib.Path(__file__).resolve().parent
PAGE = HERE / "claude_usage_page.html"
SCREEN = HERE / "claude_usage_screen.txt"
CHROMIUM = pathlib.Path("/usr/lib/chromium")

FIGURES = [("5-hour", 61), ("Weekly", 12.5), ("Sonnet weekly", 0), ("Opus weekly", 23)]

NOT_RUNNING = "Desktop fallback: open Claude → Settings → Usage, then refresh.\n"
NOT_TRUSTED = "Desktop fallback needs the accessibility bus. Enable it in Nimbo Settings → AI Usage.\n"
NOT_SHOWN = "Desktop fallback: leave Claude → Settings → Usage open, then refresh.\n"
SILENT = "Desktop fallback: restart Claude and open Settings → Usage.\n"


def install(folder, name):
    """Chromium in a folder of its own, under another name."""
    folder.mkdir()
    for file in CHROMIUM.iterdir():
        if file.name != "chromium":
            (folder / file.name).symlink_to(file)
    try:
        os.link(CHROMIUM / "chromium", folder / name)
    except OSError:  # another file system, or not ours to link
        shutil.copy2(CHROMIUM / "chromium", folder / name)
    return folder / name


class ClaudeDesktopTest(unittest.TestCase):
    def setUp(self):
        self.session = Session(display=True)
        self.addCleanup(self.session.close)
        del self.session.env["NO_AT_BRIDGE"]

    def status(self, method, *parameters):
        arguments = GLib.Variant(
            "(ss" + ("v" if parameters else "") + ")", ("org.a11y.Status", "IsEnabled", *parameters)
        )
        return self.session.call("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", method, arguments)

    def enable(self):
        self.status("Set", GLib.Variant("b", True))

    def show(self, page=PAGE, program="claude-desktop"):
        folder = self.session.folder / f"engine-{program}"
        executable = folder / program if folder.exists() else install(folder, program)
        browser = self.session.start(
            [
                executable,
                "--no-sandbox",  # root may not have one
                "--disable-gpu",
                "--no-first-run",
                f"--user-data-dir={self.session.folder}/profile",
                f"--app=file://{page}",
            ],
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        wait_until(lambda: windows_of(self.session, browser.pid), "the window", 60 * SLOW)
        return browser

    def check(self, **env):
        run = subprocess.run(
            [BINARY, "--claude-desktop-check"],
            env={**self.session.env, **env},
            capture_output=True,
            text=True,
            timeout=60,
        )
        return run.returncode, run.stdout, run.stderr

    def snapshot(self):
        """The first one that is read: the page may still be loading when its window is there."""

        def read():
            status, output, _errors = self.check()
            return output if status == 0 else None

        return json.loads(wait_until(read, "the usage page", 30 * SLOW))

    def figures(self, snapshot):
        return [(window["title"], window["usedPercent"]) for window in snapshot["windows"]]

    def waits(self, snapshot):
        """In how many seconds each window resets; None where that is not told."""
        return [window.get("resetsAt") and window["resetsAt"] - snapshot["fetchedAt"] for window in snapshot["windows"]]

    def test_page_gives_the_same_windows_as_the_same_text_on_a_terminal(self):
        self.enable()
        self.show()
        snapshot = self.snapshot()
        screen = subprocess.run(
            [os.environ["NIMBO_SCREEN_WINDOWS"]], input=SCREEN.read_text(), capture_output=True, text=True, check=True
        )
        terminal = json.loads(screen.stdout)
        self.assertEqual(self.figures(snapshot), FIGURES)
        self.assertEqual(self.figures(snapshot), self.figures(terminal))
        for here, there in zip(self.waits(snapshot), self.waits(terminal), strict=True):
            self.assertEqual(here is None, there is None)
            if here is not None:
                self.assertAlmostEqual(here, there, delta=60)  # the two were not read at the same moment
        self.assertAlmostEqual(self.waits(snapshot)[0], 134 * 60, delta=1)
        self.assertEqual(snapshot["source"], "Claude Desktop")
        self.assertEqual(list(snapshot), ["windows", "fetchedAt", "source"])

    def test_page_without_limits_asks_to_leave_the_usage_page_open(self):
        self.enable()
        page = self.session.folder / "chat.html"
        page.write_text("<!doctype html><title>Claude</title><p>Current session</p><p>61% used</p>")
        self.show(page)
        # An engine's window is there some moments before it is on the accessibility bus.
        wait_until(lambda: self.check() != (1, "", SILENT), "the application on the bus", 30 * SLOW)
        self.assertEqual(self.check(), (1, "", NOT_SHOWN))

    def test_without_the_application_the_user_is_asked_to_open_it(self):
        self.assertEqual(self.check(), (1, "", NOT_RUNNING))

    def test_browser_that_shows_the_same_page_is_not_the_application(self):
        self.enable()
        self.show(program="chromium")
        self.assertEqual(self.check(), (1, "", NOT_RUNNING))

    def test_application_started_too_early_is_read_when_it_starts_anew(self):
        browser = self.show()
        self.assertEqual(self.check(), (1, "", SILENT))
        self.assertEqual(self.status("Get"), (True,))
        browser.end()
        self.show()
        self.assertEqual(len(self.snapshot()["windows"]), len(FIGURES))

    def test_stopped_application_is_left_soon(self):
        self.enable()
        browser = self.show()
        self.snapshot()
        browser.process.send_signal(signal.SIGSTOP)
        self.addCleanup(browser.process.send_signal, signal.SIGCONT)
        before = time.monotonic()
        self.assertEqual(self.check(), (1, "", SILENT))
        self.assertLess(time.monotonic() - before, 2 * SLOW)

    def test_without_a_bus_access_is_asked_for(self):
        self.show()
        nowhere = f"unix:path={self.session.folder}/nowhere"
        self.assertEqual(self.check(DBUS_SESSION_BUS_ADDRESS=nowhere), (1, "", NOT_TRUSTED))


if __name__ == "__main__":
    unittest.main()
