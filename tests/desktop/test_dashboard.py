# SPDX-License-Identifier: MIT
"""The dashboard on a display, opened through a tray host that the test owns."""

import re
import unittest

from nimbo_desktop import turn_for, wait_until
from program import NO_DISPLAY, DesktopTest, Program, stored

FIGURES = re.compile(r"\d+\.\d GB of \d+\.\d GB used")


class DashboardTest(DesktopTest):
    display = True

    def setUp(self):
        super().setUp()
        self.session.settings(refreshInterval=2)

    def open(self, identifier="nimbo-memory", x=1300, y=10):
        self.start()
        self.item = self.host.item(identifier)
        self.item.activate(x, y)
        return self.program.wait_for_dashboard()

    def test_activation_opens_and_closes(self):
        for _ in range(2):
            if self.program is None:
                self.open()
            else:
                self.item.activate(1300, 10)
                self.program.wait_for_dashboard()
            self.item.activate(1300, 10)
            self.program.wait_for_no_dashboard()

    def test_opens_on_the_tab_of_the_item_with_live_figures(self):
        self.open()
        names = self.program.texts()
        self.assertTrue(any(FIGURES.fullmatch(name) for name in names), names)
        for title in ("App memory", "Wired", "Compressed", "Available", "Swap used", "TOP 3 PROCESSES"):
            self.assertIn(title, names)
        self.program.wait_for_text(lambda text: re.fullmatch(r"RECENT USAGE · [1-9]\d*s", text), "a second sample")

    def test_resources_page_has_its_height(self):
        _x, _y, width, height = self.open()
        self.assertEqual((width, height), (340, 596 + 38))

    def test_process_list_grows_and_shrinks(self):
        _x, _y, _width, height = self.open()
        self.program.wait_for_text(lambda text: re.fullmatch(r"\d+ MB|\d+\.\d GB", text), "the process list")
        self.program.press("Show more")
        wait_until(lambda: self.program.dashboard()[3] == height + 87, "the taller page")
        self.program.wait_for_text(lambda text: re.fullmatch(r"TOP \d+ PROCESSES", text), "the heading")
        self.program.press("Show less")
        wait_until(lambda: self.program.dashboard()[3] == height, "the shorter page")
        self.assertIn("TOP 3 PROCESSES", self.program.texts())

    def test_empty_tabs_have_their_heights_and_nothing_of_the_resources_page(self):
        self.open("nimbo-ai")
        self.assertEqual(self.program.dashboard()[3], 496 + 38)
        self.assertNotIn("App memory", self.program.texts())
        self.assertIn("Quit Nimbo", self.program.texts())

    def test_shown_tab_is_remembered(self):
        self.open("nimbo-memory")
        path = self.session.folder / "config" / "com.quellwerk.Nimbo.json"
        wait_until(lambda: stored(path, "lastDashboardTab") == "memory", "the stored tab")

    def test_escape_closes(self):
        self.open()
        self.key("Escape")
        self.program.wait_for_no_dashboard()

    def test_click_elsewhere_closes(self):
        self.open()
        self.click_at(200, 700)
        self.program.wait_for_no_dashboard()

    def test_click_inside_does_not_close(self):
        x, y, width, _height = self.open()
        self.click_at(x + width // 2, y + 120)
        turn_for(0.5)
        self.assertIsNotNone(self.program.dashboard())

    def test_opening_a_menu_closes_it(self):
        self.open()
        self.item.open_menu()
        self.program.wait_for_no_dashboard()

    def test_hangs_at_the_point_the_host_reports(self):
        x, y, _width, _height = self.open(x=600, y=12)
        self.assertLess(abs(x - 600), 40)
        self.assertLess(y, 80)

    def test_stays_on_screen_at_the_right_edge(self):
        x, _y, width, _height = self.open(x=1435, y=12)
        self.assertEqual(x + width, 1440)

    def test_impossible_coordinates_lead_to_the_corner(self):
        x, y, width, _height = self.open(x=700, y=450)
        self.assertEqual(x + width, 1440)
        self.assertLess(y, 60)

    def test_quit_button_ends_the_program(self):
        self.open()
        self.program.press("Quit Nimbo")
        self.assertEqual(self.program.wait_for_exit(), 0)

    def test_control_q_ends_the_program(self):
        self.open()
        self.key("ctrl+q")
        self.assertEqual(self.program.wait_for_exit(), 0)

    def test_control_w_closes_it(self):
        self.open()
        self.key("ctrl+w")
        self.program.wait_for_no_dashboard()

    def test_control_comma_opens_the_settings(self):
        self.open()
        self.key("ctrl+comma")
        self.program.wait_for_text(lambda text: text == "Launch at login", "the settings")
        self.assertNotIn("Quit Nimbo", self.program.texts(), "the dashboard is closed")

    def test_second_start_opens_it(self):
        self.start()
        self.host.wait_for_items(2)
        self.assertEqual(Program(self.session).wait_for_exit(), 0)
        self.program.wait_for_dashboard()

    def test_every_control_has_a_name_and_buttons_take_the_keyboard(self):
        self.open()
        controls = self.program.controls()
        for control in controls:
            if control["role"] in ("push button", "page tab", "label", "progress bar"):
                self.assertTrue(control["name"], control)
        names = [control["name"] for control in controls if control["role"] == "push button"]
        self.assertIn("Show more", names)

    def test_termination_with_an_open_dashboard_is_clean(self):
        self.open()
        self.assertEqual(self.program.terminate(), 0)
        self.assertEqual(self.program.errors(), "")

    def test_ticks_go_on_while_it_is_open(self):
        self.open()
        self.program.wait_for_text(lambda text: re.fullmatch(r"RECENT USAGE · [4-9]s", text), "three samples")


class WithoutDisplayTest(DesktopTest):
    def test_click_tells_that_no_window_can_be_shown_and_the_item_lives_on(self):
        self.start()
        item = self.host.item("nimbo-memory")
        self.expected_errors = NO_DISPLAY
        for _ in range(2):
            item.activate(1300, 10)
            self.assertRegex(item.tooltip, "^Memory: ")
            wait_until(lambda: self.program.windows_pid is None, "the end of the windows")
            wait_until(lambda: self.program.errors() == self.expected_errors, "the message, once")


if __name__ == "__main__":
    unittest.main()
