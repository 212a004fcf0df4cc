# SPDX-License-Identifier: MIT
"""The Keep Awake page in a real panel, used with the mouse and the keyboard."""

import datetime
import subprocess
import time
import unittest

from nimbo_desktop import SLOW, turn_for, wait_until, windows_of
from power_services import gnome_session
from program import DesktopTest
from xfce_panel import XfcePanel

BAD_MINUTES = "Enter a whole number from 1 to 10080 minutes."
ENDED = "Session ended. Normal sleep is allowed."
CUSTOM_MINUTES, DATE = 5, 6


class AwakePageTest(DesktopTest):
    display = True
    desktop = "GNOME"

    def setUp(self):
        super().setUp()
        self.service = gnome_session(self.session)
        self.session.settings(menuAI=False, menuMemory=False, menuAwake=True)
        self.panel = XfcePanel(self.session)
        before = self.panel.settled()
        self.start(host=False)
        x, y, width, height = wait_until(lambda: before.changed_box(self.panel.settled()), "the item in the panel")
        self.item = (x + width // 2, y + height // 2)

    def open(self):
        self.click_at(*self.item)
        self.program.wait_for_dashboard()

    def control(self, name):
        """The one that can be used, where a caption has the same name."""
        found = [control for control in self.program.controls() if control["name"] == name]
        return max(found, key=lambda control: control["role"] != "label")

    def click(self, name):
        x, y, width, height = self.control(name)["box"]
        self.click_at(x + width // 2, y + height // 2)

    def type(self, text):
        self.key("ctrl+a")
        self.key("Delete")
        if text:
            subprocess.run(["xdotool", "type", "--delay", "20", text], env=self.session.env, check=True)

    def choose_length(self, number):
        self.click("Session")
        turn_for(0.3)
        for key in ["Home"] + ["Down"] * number + ["Return"]:
            self.key(key)

    def wait_for(self, text):
        self.program.wait_for_text(lambda name: name == text, text)

    def held(self, count):
        wait_until(lambda: len(self.service.held) == count, f"{count} inhibitors, not {self.service.held}")

    def test_start_and_stop(self):
        self.open()
        self.wait_for("Keep AI jobs running while your display rests.")
        self.assertFalse(self.control("Turn display off now")["enabled"])
        self.click("Keep computer awake")
        self.wait_for("Your computer is staying awake")
        self.wait_for("Until you stop it. Display may sleep.")
        self.held(1)
        self.assertFalse(self.control("+30 min")["enabled"])
        self.assertFalse(self.control("Session")["enabled"])
        self.assertTrue(self.control("Turn display off now")["enabled"])
        self.click("Stop keeping awake")
        self.wait_for(ENDED)
        self.held(0)

    def test_display_switch_during_a_session(self):
        self.open()
        self.click("Keep computer awake")
        self.held(1)
        self.click("Keep display on too")
        self.held(2)
        self.wait_for("Until you stop it. Display stays on.")
        self.click("Keep display on too")
        self.held(1)

    def test_timed_session_is_extended_by_half_an_hour(self):
        self.open()
        self.choose_length(1)
        self.click("Keep computer awake")
        before = self.program.wait_for_text(lambda name: name.startswith("Until "), "the end")
        self.click("+30 min")
        after = self.program.wait_for_text(lambda name: name.startswith("Until ") and name != before, "the later end")
        ends = [datetime.datetime.strptime(text.split(".")[0], "Until %m/%d/%y, %H:%M") for text in (before, after)]
        self.assertEqual(ends[1] - ends[0], datetime.timedelta(minutes=30))

    def test_bad_minutes_are_refused_and_good_ones_start(self):
        self.open()
        self.choose_length(CUSTOM_MINUTES)
        self.click("Custom duration in minutes")
        for text in ("", "0", "10081", "ten", "1.5"):
            self.type(text)
            wait_until(lambda: BAD_MINUTES not in self.program.texts(), "the error to go with the next letter")
            self.program.press("Keep computer awake")
            self.wait_for(BAD_MINUTES)
            self.click("Custom duration in minutes")
        self.assertEqual(self.service.held, {})
        self.type(" 45 ")
        self.click("Keep computer awake")
        text = self.program.wait_for_text(lambda name: name.startswith("Until "), "the end")
        end = datetime.datetime.strptime(text.split(".")[0], "Until %m/%d/%y, %H:%M")
        expected = datetime.datetime.fromtimestamp(time.time(), datetime.timezone.utc) + datetime.timedelta(minutes=45)
        self.assertLess(abs(end - expected.replace(tzinfo=None)), datetime.timedelta(minutes=1.5))
        self.assertIn('"awakeCustomMinutes": 45', self.settings_text())

    def settings_text(self):
        return (self.session.folder / "config" / "com.quellwerk.Nimbo.json").read_text()

    def test_date_in_the_past_is_refused(self):
        self.open()
        self.choose_length(DATE)
        self.click("Session end date and time")
        turn_for(0.3)
        for _ in range(4):
            self.key("Left")
        for _ in range(2):  # the section that the click hit goes back far enough, whichever it is
            self.key("Down")
        for key in ("Home", "Down", "Down"):
            self.key(key)
        self.click("Keep computer awake")
        self.wait_for("Choose an end time in the future.")
        self.assertEqual(self.service.held, {})

    def test_suggested_date_starts_a_session_of_about_an_hour(self):
        self.open()
        self.choose_length(DATE)
        self.click("Keep computer awake")
        self.held(1)
        self.program.wait_for_text(lambda name: name.startswith("Until ") and name.endswith(" Display may sleep."), "end")

    def test_middle_click_starts_and_stops_without_a_window(self):
        self.click_at(*self.item, button=2)
        self.held(1)
        self.assertIsNone(self.program.dashboard())
        self.click_at(*self.item, button=2)
        self.held(0)

    def ask_to_quit(self):
        self.open()
        self.click("Keep computer awake")
        self.held(1)
        self.click("Quit Nimbo")
        self.wait_for("Keep Awake is running")
        self.wait_for("Quitting or installing an update ends this session. Your computer may sleep afterward.")
        self.program.wait_for_no_dashboard()

    def test_quitting_during_a_session_can_be_taken_back(self):
        self.ask_to_quit()
        self.click("Keep Running")
        wait_until(lambda: self.windows() == {}, "the question to go")
        turn_for(0.5)
        self.assertTrue(self.program.child.running)
        self.held(1)

    def test_quitting_during_a_session_ends_both(self):
        self.ask_to_quit()
        self.click("End Session & Quit")
        self.assertEqual(self.program.wait_for_exit(), 0)
        wait_until(lambda: not self.service.held, "no inhibitor", SLOW)
        self.assertEqual(self.program.errors(), "")

    def test_escape_keeps_running(self):
        self.ask_to_quit()
        self.key("Escape")
        wait_until(lambda: self.windows() == {}, "the question to go")
        self.held(1)

    def windows(self):
        return windows_of(self.session, self.program.windows_pid)

    def test_escape_closes_the_open_list_only(self):
        self.open()
        self.click("Session")
        turn_for(0.3)
        self.key("Escape")
        turn_for(0.3)
        self.assertIsNotNone(self.program.dashboard())
        self.key("Escape")
        self.program.wait_for_no_dashboard()

    def test_page_is_usable_by_keyboard_alone(self):
        self.open()
        self.wait_for("Ready for your next run")  # by then it has the keyboard, too
        boxes = ("Keep display on too", "Only while connected to power")
        for name in ("Awake", "Settings", "Keep computer awake", "Session", *boxes):
            self.key("Tab")
            wait_until(lambda: name in self.focused(), f"the focus on {name}")
        self.key("space")
        wait_until(lambda: self.control("Only while connected to power")["checked"], "the check mark")
        for _ in range(3):
            self.key("shift+Tab")
        wait_until(lambda: "Keep computer awake" in self.focused(), "the focus on the start button")
        self.key("space")
        self.held(1)

    def focused(self):
        """The current page tab counts as focused, too."""
        return [control["name"] for control in self.program.controls() if control["focused"]]


if __name__ == "__main__":
    unittest.main()
