# SPDX-License-Identifier: MIT
"""Quitting while a sensor hangs."""

import contextlib
import os
import pathlib
import time
import unittest

from nimbo_desktop import SLOW, wait_until
from program import DesktopTest

NAME = "com.quellwerk.Nimbo"


def sensor_hangs(pid):
    for name in pathlib.Path(f"/proc/{pid}/task").glob("*/comm"):
        with contextlib.suppress(FileNotFoundError):
            if name.read_text() == "hangs\n":
                return True
    return False


class QuittingTest(DesktopTest):
    def setUp(self):
        super().setUp()
        self.session.env["LD_PRELOAD"] = os.environ["NIMBO_HANGING_SENSOR"]
        self.session.settings(menuMemory=True, monitorTemperature=True)

    def test_hung_sensor_holds_up_neither_the_end_nor_the_next_start(self):
        first = self.start()
        menu = self.host.item("nimbo-memory").open_menu()
        wait_until(lambda: sensor_hangs(first.pid), "a sensor that hangs")
        quit_entry = next(entry for entry, properties in menu if properties.get("label") == "Quit Nimbo")
        self.host.item("nimbo-memory").click_menu(quit_entry)
        began = time.monotonic()
        wait_until(lambda: NAME not in self.session.names(), "the name to be given back")
        self.assertTrue(first.child.running, "it still waits a moment for the sensor")
        second = self.start()
        self.assertEqual(first.wait_for_exit(), 0)
        self.assertLess(time.monotonic() - began, 2 * SLOW)
        self.assertEqual(first.errors(), "")
        self.host.item("nimbo-memory")
        self.assertTrue(second.child.running)


if __name__ == "__main__":
    unittest.main()
