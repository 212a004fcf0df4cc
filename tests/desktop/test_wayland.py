# SPDX-License-Identifier: MIT
"""The windows on a compositor where a dashboard can hang at the edge of a screen. Such windows are in no list of
windows, so the test looks at the screen. What a user does there with panels is tried in tests/desktops."""

import unittest

from nimbo_desktop import SLOW, wait_until
from program import DesktopTest
from sway import Sway, prepare

GROUND = "#204060"
BAR = ["bar {\n position top\n tray_output none\n font monospace 10\n}"]
GAP = 4
WIDTH = 340
ITEM = 24  # as wide as a place that is reported is taken to be, around that place
BOUND = 10 * SLOW
AWAKE_TAB = 247, 29  # in the dashboard
SESSION_LIST = 89, 218
FIRST_LINE = 150, 222
SCREEN = 1280, 800
# What of a picture is as bright as nothing but the light dashboard is.
BRIGHT = bytes(1 if value >= 0xE8 else 0 for value in range(256))
RUN = b"\1" * 4 * 100


class WaylandTest(DesktopTest):
    desktop = "sway"

    def setUp(self):
        super().setUp()
        prepare(self.session.env)
        self.sway = Sway(self.session, BAR, SCREEN, GROUND)
        self.sway.pointer(*(side // 2 for side in SCREEN))
        self.bar = wait_until(self.bar_rows, "the bar", 20 * SLOW)
        self.session.settings(menuAI=False)
        self.start()
        self.item = self.host.item("nimbo-memory")

    def bar_rows(self):
        """How many rows it has; 0 before it is there."""
        frame = self.sway.frame()
        rows = [y for y in range(frame.height) if frame.color(frame.width // 4, y) != GROUND]
        return len(rows) if len(rows) < frame.height // 4 else 0

    def open(self, x, y):
        self.item.activate(x, y)
        return wait_until(self.dashboard, "the dashboard to open", BOUND)

    def dashboard(self):
        """The card of the open one, (left, top, right, bottom), or None."""
        frame = self.sway.frame()
        rows = {y: frame.row(y).translate(BRIGHT) for y in range(frame.height)}
        rows = {y: row for y, row in rows.items() if RUN in row}
        if not rows:
            return None
        left = min(row.find(RUN) for row in rows.values()) // 4
        right = max(row.rfind(RUN) + len(RUN) for row in rows.values()) // 4
        return left, min(rows), right, max(rows) + 1

    def assert_hangs(self, left, card):
        self.assertAlmostEqual(card[0], left, delta=1)
        self.assertAlmostEqual(card[2], left + WIDTH, delta=1)
        self.assertAlmostEqual(card[1], self.bar + GAP, delta=1)  # there is a line around it

    def test_hangs_from_the_item_clear_of_the_bar_and_on_the_screen(self):
        self.assert_hangs(600 - ITEM / 2, self.open(600, self.bar // 2))
        self.sway.key("Escape")
        wait_until(lambda: not self.dashboard(), "the dashboard to close", BOUND)
        self.assert_hangs(SCREEN[0] - WIDTH, self.open(1200, self.bar // 2))

    def test_place_in_the_item_is_made_good_by_the_pointer(self):
        self.sway.pointer(300, self.bar // 2)
        self.assert_hangs(300 - ITEM / 2, self.open(9, 9))

    def test_unknown_place_opens_at_the_right_end_of_the_top(self):
        self.assert_hangs(SCREEN[0] - WIDTH, self.open(600, 400))

    def test_list_of_a_control_closes_alone(self):
        card = self.open(600, self.bar // 2)
        self.click(AWAKE_TAB, card)
        card = wait_until(lambda: self.another(card), "the other page", BOUND)
        self.click(SESSION_LIST, card)
        wait_until(lambda: self.list_is_open(card), "the list", BOUND)
        self.sway.key("Escape")
        wait_until(lambda: not self.list_is_open(card), "the list to close", BOUND)
        self.assertEqual(self.dashboard(), card)
        self.sway.key("Escape")
        wait_until(lambda: not self.dashboard(), "the dashboard to close", BOUND)

    def click(self, place, card):
        self.sway.click(card[0] + place[0], card[1] + place[1])

    def another(self, card):
        now = self.dashboard()
        return now if now and now != card else None

    def list_is_open(self, card):
        """Whether its first line, over the button, is marked."""
        x, y = (int(side + place) for side, place in zip(card, FIRST_LINE))
        return self.sway.frame().color(x, y).startswith("#00")

    def test_settings_window_floats_and_the_dashboard_is_no_window_and_opens_after_it(self):
        self.open(600, self.bar // 2)
        self.assertEqual(self.sway.windows(), [])
        self.item.choose("Settings…")
        wait_until(lambda: self.kinds() == [("Nimbo Settings", "floating_con")], "the settings", BOUND)
        self.sway.run("swaymsg", "kill")
        wait_until(lambda: not self.sway.windows(), "the settings to close", BOUND)
        self.open(600, self.bar // 2)

    def kinds(self):
        return [(node["name"], node["type"]) for node in self.sway.windows()]


if __name__ == "__main__":
    unittest.main()
