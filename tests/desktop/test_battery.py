# SPDX-License-Identifier: MIT
"""The battery rules on a machine whose power supplies are made up, with the kernel's own events.

Runs under umockdev-wrapper, because a test bed can only be made by a process with its library.
"""

import unittest

import gi

gi.require_version("UMockdev", "1.0")
from gi.repository import UMockdev  # noqa: E402

from nimbo_desktop import SLOW, TrayHost, wait_until
from power_services import gnome_session
from program import DesktopTest

PRELOAD = "libumockdev-preload.so.0"


class BatteryTest(DesktopTest):
    desktop = "GNOME"
    display = True

    def setUp(self):
        super().setUp()
        self.service = gnome_session(self.session)
        self.bed = UMockdev.Testbed.new()
        self.mains = self.bed.add_device("power_supply", "AC", None, ["type", "Mains", "online", "1"], [])
        self.battery = self.bed.add_device(
            "power_supply", "BAT0", None, ["type", "Battery", "present", "1", "status", "Charging", "capacity", "90"], []
        )
        self.session.env["UMOCKDEV_DIR"] = self.bed.get_root_dir()
        self.session.settings(menuAwake=True)

    def start(self):
        # Nothing else in the session is to see the made-up machine.
        self.host = TrayHost(self.session)
        self.session.env["LD_PRELOAD"] = PRELOAD
        super().start()
        del self.session.env["LD_PRELOAD"]
        self.item = self.host.item("nimbo-awake")

    def power(self, online, status, capacity):
        """The kernel reports a change, once: the test bed dies when nobody listens any more to a second one."""
        self.bed.set_attribute(self.mains, "online", str(online))
        self.bed.set_attribute(self.battery, "status", status)
        self.bed.set_attribute(self.battery, "capacity", str(capacity))
        self.bed.uevent(self.battery, "change")

    def toggle(self):
        self.item.secondary_activate(1300, 10)

    def sessions(self):
        return len(self.service.held)

    def detail(self, beginning):
        if not self.program.dashboard():
            self.item.activate(1300, 10)
            self.program.wait_for_dashboard()
        return self.program.wait_for_text(lambda text: text.startswith(beginning), beginning)

    def test_session_starts_at_21_percent(self):
        self.power(0, "Discharging", 21)
        self.start()
        self.toggle()
        wait_until(lambda: self.sessions() == 1, "the session")

    def test_session_is_refused_at_20_percent_naming_the_floor(self):
        self.power(0, "Discharging", 20)
        self.start()
        self.toggle()
        self.detail("Session stopped: battery is at or below 20%.")
        self.assertEqual(self.sessions(), 0)

    def test_draining_to_the_floor_ends_the_session(self):
        self.power(0, "Discharging", 21)
        self.start()
        self.toggle()
        wait_until(lambda: self.sessions() == 1, "the session")
        self.power(0, "Discharging", 20)
        wait_until(lambda: self.sessions() == 0, "the end of the session", SLOW)
        self.detail("Session stopped: battery is at or below 20%.")

    def test_charge_that_falls_without_an_event_ends_the_session(self):
        self.power(0, "Discharging", 21)
        self.start()
        self.toggle()
        wait_until(lambda: self.sessions() == 1, "the session")
        self.bed.set_attribute(self.battery, "capacity", "20")
        wait_until(lambda: self.sessions() == 0, "the end of the session", 40 + SLOW)
        self.detail("Session stopped: battery is at or below 20%.")

    def test_unplugging_ends_a_session_that_needs_power(self):
        self.session.settings(menuAwake=True, awakeOnlyOnPower=True)
        self.start()
        self.toggle()
        wait_until(lambda: self.sessions() == 1, "the session")
        self.power(0, "Discharging", 90)
        wait_until(lambda: self.sessions() == 0, "the end of the session", SLOW)
        self.detail("Connect the charger to keep this computer awake.")

    def test_battery_does_not_matter_without_rules(self):
        self.session.settings(menuAwake=True, awakeBatteryFloor=0)
        self.power(0, "Discharging", 3)
        self.start()
        self.toggle()
        wait_until(lambda: self.sessions() == 1, "the session")
        self.power(0, "Discharging", 2)
        self.detail("Until you stop it. Display may sleep.")
        self.assertEqual(self.sessions(), 1)

    def test_rule_edited_by_hand_ends_the_session(self):
        self.session.settings(menuAwake=True, refreshInterval=2)
        self.power(0, "Discharging", 45)
        self.start()
        self.toggle()
        wait_until(lambda: self.sessions() == 1, "the session")
        self.session.settings(menuAwake=True, refreshInterval=2, awakeBatteryFloor=50)
        wait_until(lambda: self.sessions() == 0, "the end of the session")
        self.detail("Session stopped: battery is at or below 50%.")

    def test_full_second_battery_makes_up_for_an_empty_first_one(self):
        second = ["type", "Battery", "present", "1", "status", "Not charging", "capacity", "95"]
        self.bed.add_device("power_supply", "BAT1", None, second, [])
        self.power(0, "Discharging", 15)
        self.start()
        self.toggle()
        wait_until(lambda: self.sessions() == 1, "the session")

    def test_mouse_with_an_empty_battery_ends_nothing(self):
        self.bed.add_device(
            "power_supply",
            "hidpp_battery_0",
            None,
            ["type", "Battery", "scope", "Device", "status", "Discharging", "capacity", "1"],
            [],
        )
        self.start()
        self.toggle()
        wait_until(lambda: self.sessions() == 1, "the session")


if __name__ == "__main__":
    unittest.main()
