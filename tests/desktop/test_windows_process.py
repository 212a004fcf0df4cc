# SPDX-License-Identifier: MIT
"""Windows are a process of their own, whose end in whatever way costs neither a session nor an item."""

import contextlib
import os
import pathlib
import random
import re
import signal
import unittest

from nimbo_desktop import SLOW, turn_for, wait_until, windows_of
from power_services import Logind
from program import NO_DISPLAY, DesktopTest
from test_keep_awake import DELAY, SLEEP_BLOCK

# After the third within a minute each one waits until windows can be had again.
KILLS = int(os.environ.get("NIMBO_KILLS", "3"))


def descriptors(pid):
    """Each with what it leads to."""
    found = []
    for link in pathlib.Path(f"/proc/{pid}/fd").iterdir():
        with contextlib.suppress(FileNotFoundError):  # closed since it was listed
            found.append((link.name, os.readlink(link)))
    return found


@unittest.skipIf(Logind.missing(), Logind.missing())
class WindowsProcessTest(DesktopTest):
    display = True
    system_bus = True
    desktop = "sway"
    display_dies = True

    def setUp(self):
        super().setUp()
        self.logind = Logind(self.session)
        self.start()
        self.item = self.host.item("nimbo-memory")

    def start_session(self):
        self.item.secondary_activate(1300, 10)
        self.wait_until_held()

    def wait_until_held(self):
        wait_until(self.held, "the inhibitor", 10 * SLOW)

    def held(self):
        return self.logind.inhibitors() == sorted([DELAY, SLEEP_BLOCK])

    def open(self):
        self.item.activate(1300, 10)
        self.program.wait_for_dashboard()

    def kill_windows(self):
        pid = self.program.windows_pid
        os.kill(pid, signal.SIGKILL)
        wait_until(lambda: not os.path.exists(f"/proc/{pid}"), "the end of the windows")

    def test_nothing_runs_for_windows_before_one_is_wanted(self):
        self.assertIsNone(self.program.windows_pid)

    def test_open_dashboard_comes_back_after_a_crash_once(self):
        self.open()
        first = self.program.windows_pid
        self.kill_windows()
        self.program.wait_for_dashboard()
        self.assertNotEqual(self.program.windows_pid, first)
        self.program.wait_for_text(lambda text: text == "Nimbo", "its title")
        self.kill_windows()
        self.program.wait_for_no_dashboard()
        self.assertIsNone(self.program.windows_pid)
        self.open()

    def test_session_and_items_outlive_deaths_at_any_moment(self):
        self.host.wait_for_items(2)
        self.start_session()
        locks = self.locks()
        self.assertEqual(len(locks), 2)
        chance = random.Random()
        for _ in range(KILLS):
            windows = wait_until(self.click, "windows", 90)
            turn_for(chance.uniform(0, 0.4))
            if chance.random() < 0.5:
                with contextlib.suppress(ProcessLookupError):  # those of a display that went may end only now
                    os.kill(windows, signal.SIGKILL)
            else:
                self.session.display.restart()
            turn_for(chance.uniform(0, 0.4))
            self.assertTrue(self.program.child.running, self.program.errors())
            self.assertTrue(self.held())
            self.assertEqual(self.locks(), locks, "the very same ones")
            self.assertEqual(len(self.host.items), 2)
            self.assertRegex(self.item.tooltip, "^Memory: ")

    def click(self):
        if self.program.dashboard() is None:
            self.item.activate(1300, 10)
        return self.program.windows_pid

    def locks(self):
        """The inhibitors' descriptors: another one means that a lock was let go meanwhile."""
        return sorted(link for link in descriptors(self.program.pid) if "/inhibit/" in link[1])

    def test_windows_are_given_none_of_the_programs_descriptors(self):
        self.start_session()
        self.open()
        own = [link for number, link in descriptors(self.program.pid) if int(number) > 2]
        private = {link for link in own if re.match("socket:|pipe:|.*/inhibit/", link)}
        self.assertGreater(len(private), 3)
        self.assertEqual(private & {link for _, link in descriptors(self.program.windows_pid)}, set())

    def test_question_that_dies_leaves_the_session_running(self):
        self.start_session()
        self.item.choose("Quit Nimbo")
        wait_until(lambda: windows_of(self.session, self.program.windows_pid), "the question")
        self.kill_windows()
        self.assertTrue(self.held())
        self.assertTrue(self.program.child.running)

    def test_display_that_vanishes_takes_the_windows_alone(self):
        self.start_session()
        self.open()
        windows = self.program.windows_pid
        self.session.display.server.end()
        wait_until(lambda: not os.path.exists(f"/proc/{windows}"), "the end of the windows")

        # The dashboard may have seen its focus go before the display went. Then it does not come back by itself, and
        # the first click counts as the one that has closed it.
        def click_tells():
            self.item.activate(1300, 10)
            return NO_DISPLAY in self.program.errors()

        # Qt may have crashed three times of the display that went: then no window can be had for a minute.
        wait_until(click_tells, "the word on the display", 90)
        self.assertTrue(self.held())
        self.assertRegex(self.item.tooltip, "^Memory: ")

    def test_windows_die_with_the_program(self):
        self.open()
        windows = self.program.windows_pid
        self.program.child.process.kill()
        self.program.wait_for_exit()
        wait_until(lambda: not os.path.exists(f"/proc/{windows}"), "the end of the windows")


if __name__ == "__main__":
    unittest.main()
