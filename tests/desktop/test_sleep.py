# SPDX-License-Identifier: MIT
"""Sleep and wake, told by a mocked logind on a private system bus."""

import subprocess
import unittest

from gi.repository import GLib

from nimbo_desktop import wait_until
from program import DesktopTest, armed_timers

LOGIND = ("org.freedesktop.login1", "/org/freedesktop/login1")


class SleepTest(DesktopTest):
    display = True
    system_bus = True

    def setUp(self):
        super().setUp()
        self.session.settings(refreshInterval=5, monitorCPU=True)
        self.start_logind()
        self.start()
        self.item = self.host.item("nimbo-memory")

    def start_logind(self):
        self.system = self.session.system_bus.connect()
        self.logind = self.session.start(
            ["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"],
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )

        def owned():
            names = self.session.call(
                "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "ListNames", connection=self.system
            )[0]
            return LOGIND[0] in names

        wait_until(owned, "the mocked logind")

    def mock(self, method, signature, *values):
        return self.session.call(
            *LOGIND, "org.freedesktop.DBus.Mock", method, GLib.Variant(signature, values), self.system
        )

    def prepare_for_sleep(self, going):
        # A service that has just started may not have been seen by the program yet.
        wait_until(lambda: self.inhibit_calls() > 0, "the delay inhibitor")
        arguments = ("org.freedesktop.login1.Manager", "PrepareForSleep", "b", [GLib.Variant("b", going)])
        self.mock("EmitSignal", "(sssav)", *arguments)

    def inhibit_calls(self):
        calls = self.session.call(
            *LOGIND, "org.freedesktop.DBus.Mock", "GetMethodCalls", GLib.Variant("(s)", ("Inhibit",)), self.system
        )[0]
        return len(calls)

    def open(self):
        self.item.activate(1300, 10)
        self.program.wait_for_dashboard()

    def text(self, beginning):
        return next((text for text in self.program.texts() if text.startswith(beginning)), "")

    def test_takes_a_delay_inhibitor_for_sleep(self):
        wait_until(lambda: self.inhibit_calls() == 1, "the inhibitor")
        calls = self.session.call(
            *LOGIND, "org.freedesktop.DBus.Mock", "GetMethodCalls", GLib.Variant("(s)", ("Inhibit",)), self.system
        )[0]
        _time, (what, who, _why, mode) = calls[0]
        self.assertEqual((what, who, mode), ("sleep", "Nimbo", "delay"))

    def test_sleep_closes_the_dashboard(self):
        self.open()
        self.prepare_for_sleep(True)
        self.program.wait_for_no_dashboard()

    def test_wake_starts_with_empty_histories_and_a_fresh_cpu_delta(self):
        self.open()
        wait_until(lambda: self.text("RECENT USAGE · ") not in ("", "RECENT USAGE · 0s"), "a history")
        self.prepare_for_sleep(True)
        self.program.wait_for_no_dashboard()
        self.prepare_for_sleep(False)
        wait_until(lambda: self.inhibit_calls() == 2, "the next inhibitor")
        self.open()
        # One sample was taken at wake, and a CPU figure needs two.
        shown = self.program.texts()
        self.assertIn("RECENT USAGE · 0s", shown)
        self.assertIn("CPU  Measuring…", shown)
        wait_until(lambda: self.text("CPU  ").endswith("% utilized"), "the first CPU figure after wake")

    def test_no_timer_runs_while_asleep(self):
        wait_until(lambda: self.item.tooltip.startswith("Memory: "), "the first sample")
        wait_until(lambda: armed_timers(self.program.pid), "the timer of the ticks")
        self.prepare_for_sleep(True)
        wait_until(lambda: not armed_timers(self.program.pid), "no timer")
        self.prepare_for_sleep(False)
        wait_until(lambda: armed_timers(self.program.pid), "the timer of the ticks")

    def test_logind_that_restarts_is_picked_up(self):
        wait_until(lambda: self.inhibit_calls() == 1, "the inhibitor")
        self.logind.end()
        self.start_logind()
        wait_until(lambda: self.inhibit_calls() == 1, "the inhibitor of the new logind")
        self.open()
        self.prepare_for_sleep(True)
        self.program.wait_for_no_dashboard()

    def test_system_bus_that_comes_back_is_joined_again(self):
        wait_until(lambda: self.inhibit_calls() == 1, "the inhibitor")
        self.session.system_bus.stop()
        self.logind.end()
        self.session.system_bus.start()
        self.start_logind()
        wait_until(lambda: self.inhibit_calls() == 1, "the inhibitor of the new logind")
        self.open()
        self.prepare_for_sleep(True)
        self.program.wait_for_no_dashboard()


if __name__ == "__main__":
    unittest.main()
