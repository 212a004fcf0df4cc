# SPDX-License-Identifier: MIT
"""The installed program on a desktop, reached in every way that the package promises.

Runs inside the system that clean-root-test makes; NIMBO_BINARY is the installed program.
"""

import os
import signal
import subprocess
import unittest

from gi.repository import GLib
from nimbo_desktop import wait_until
from program import DesktopTest, Program
from xfce_panel import XfcePanel

NAME = "com.quellwerk.Nimbo"
BUS = "org.freedesktop.DBus"


class ActivatedProgram(Program):
    """One that the bus has started, or something else that is not the test."""

    def __init__(self, session):
        self.session = session
        wait_until(lambda: NAME in session.names(), "the program's name on the bus")

    @property
    def pid(self):
        parameters = GLib.Variant("(s)", (NAME,))
        return self.session.call(BUS, "/org/freedesktop/DBus", BUS, "GetConnectionUnixProcessID", parameters)[0]

    def end(self):
        os.kill(self.pid, signal.SIGTERM)
        wait_until(lambda: NAME not in self.session.names(), "the program's end")


class InstalledProgramTest(DesktopTest):
    display = True

    def setUp(self):
        super().setUp()
        self.session.settings(refreshInterval=2)
        self.panel = XfcePanel(self.session)
        # A dashboard that opens while the panel still takes its place may be closed by that.
        self.before = self.panel.settled()

    def run_here(self, *arguments):
        finished = subprocess.Popen(arguments, env=self.session.env, stdout=subprocess.DEVNULL)
        wait_until(lambda: finished.poll() is not None, arguments[0])
        self.assertEqual(finished.returncode, 0, arguments)

    def activate(self, method, *arguments):
        self.run_here("dbus-update-activation-environment", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON")
        call = ["gdbus", "call", "--session", "--dest", NAME, "--object-path", "/com/quellwerk/Nimbo"]
        self.run_here(*call, "--method", f"org.freedesktop.Application.{method}", *arguments, "{}")
        activated = ActivatedProgram(self.session)
        self.addCleanup(activated.end)
        return activated

    def start_in_panel(self):
        self.start(host=False)
        return wait_until(lambda: self.before.changed_box(self.panel.settled()), "the item in the panel")

    def assert_awake_page(self, program):
        program.wait_for_dashboard()
        program.wait_for_text(lambda text: text == "Keep computer awake", "the Keep Awake page")

    def test_click_on_the_item_in_the_panel_opens_the_dashboard(self):
        x, y, width, height = self.start_in_panel()
        self.click_at(x + width // 2, y + height // 2)
        self.program.wait_for_dashboard()

    def test_second_start_opens_the_dashboard_of_the_first(self):
        self.start_in_panel()
        self.run_here("nimbo")
        self.program.wait_for_dashboard()

    def test_link_opens_its_page_in_the_running_program(self):
        self.start_in_panel()
        self.run_here("xdg-open", "nimbo://awake")
        self.assert_awake_page(self.program)

    def test_link_as_argument_opens_its_page_in_the_running_program(self):
        self.start_in_panel()
        self.run_here("nimbo", "nimbo://awake")
        self.assert_awake_page(self.program)

    def test_call_starts_the_program_and_opens_the_dashboard(self):
        self.activate("Activate").wait_for_dashboard()

    def test_link_in_a_call_starts_the_program_and_opens_its_page(self):
        self.assert_awake_page(self.activate("Open", "['nimbo://awake']"))

    def test_desktop_entry_starts_the_program(self):
        self.run_here("gio", "launch", f"/usr/share/applications/{NAME}.desktop")
        activated = ActivatedProgram(self.session)
        self.addCleanup(activated.end)


if __name__ == "__main__":
    unittest.main()
