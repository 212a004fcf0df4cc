# SPDX-License-Identifier: MIT
"""The windows on a compositor where a dashboard can hang at the edge of a screen. Such windows are in no list of
windows, so the test looks at the screen."""

import unittest

from nimbo_desktop import SLOW, ordinary_user, wait_until
from program import DesktopTest
from sway import Sway

GAP = 4
WIDTH = 340
ITEM = 24  # as wide as a place that is reported is taken to be, around that place
BOUND = 10 * SLOW
AWAKE_TAB = 247, 29  # in the dashboard
SESSION_LIST = 89, 218
FIRST_LINE = 150, 222
SCREEN = 1280, 800


class WaylandTest(DesktopTest):
    desktop = "sway"
    identity = ordinary_user()
    bar = "top"
    scale = 1

    def setUp(self):
        super().setUp()
        self.sway = Sway(self.session, self.bar, self.scale, SCREEN)
        self.session.settings(menuAI=False)
        self.start()
        self.item = self.host.item("nimbo-memory")
        self.bar_middle = sum(self.sway.bar) // 2

    def open(self, x=600, y=None):
        self.item.activate(x, self.bar_middle if y is None else y)
        return self.wait_for_dashboard()

    def wait_for_dashboard(self):
        return wait_until(self.sway.dashboard, "the dashboard to open", BOUND)

    def wait_for_no_dashboard(self):
        wait_until(lambda: not self.sway.dashboard(), "the dashboard to close", BOUND)

    def assert_next_to_the_bar(self, card):
        _left, top, _right, bottom = card
        first, last = self.sway.bar
        distance = top - (last + 1) if self.bar == "top" else first - bottom
        self.assertAlmostEqual(distance, GAP, delta=1)  # there is a line around it

    def assert_at(self, place, card):
        left = min(place - ITEM / 2, SCREEN[0] - WIDTH)
        self.assertAlmostEqual(card[0], left, delta=1)
        self.assertAlmostEqual(card[2], left + WIDTH, delta=1)


class PlaceTest(WaylandTest):
    def test_hangs_from_the_item_clear_of_the_bar(self):
        card = self.open(600)
        self.assert_at(600, card)
        self.assert_next_to_the_bar(card)

    def test_is_kept_on_the_screen(self):
        self.assert_at(1200, self.open(1200))

    def test_place_in_the_item_is_made_good_by_the_pointer(self):
        self.sway.pointer.move(300, self.bar_middle)
        card = self.open(9, 9)
        self.assert_at(300, card)
        self.assert_next_to_the_bar(card)


class BottomPlaceTest(PlaceTest):
    bar = "bottom"


class ScaledPlaceTest(PlaceTest):
    scale = 2


class CornerTest(WaylandTest):
    def test_unknown_place_opens_at_the_right_end_of_the_top(self):
        card = self.open(600, 400)
        self.assert_at(SCREEN[0], card)
        self.assert_next_to_the_bar(card)


class ClosingTest(WaylandTest):
    def click(self, place, card=(0, 0)):
        self.sway.pointer.click(card[0] + place[0], card[1] + place[1])

    def test_escape(self):
        self.open()
        self.sway.key("Escape")
        self.wait_for_no_dashboard()

    def test_click_on_the_desktop(self):
        self.open()
        self.click((200, 400))
        self.wait_for_no_dashboard()

    def test_click_on_the_bar(self):
        self.open()
        self.click((200, self.bar_middle))
        self.wait_for_no_dashboard()

    def test_list_of_a_control_closes_alone(self):
        card = self.open()
        self.click(AWAKE_TAB, card)
        card = wait_until(lambda: self.another(card), "the other page", BOUND)
        self.click(SESSION_LIST, card)
        wait_until(lambda: self.list_is_open(card), "the list", BOUND)
        self.sway.key("Escape")
        wait_until(lambda: not self.list_is_open(card), "the list to close", BOUND)
        self.assertEqual(self.sway.dashboard(), card)
        self.sway.key("Escape")
        self.wait_for_no_dashboard()

    def another(self, card):
        now = self.sway.dashboard()
        return now if now and now != card else None

    def list_is_open(self, card):
        """Whether its first line, over the button, is marked."""
        x, y = (int(side + place) for side, place in zip(card, FIRST_LINE))
        return self.sway.picture().color(x, y).startswith("#00")


class OrdinaryWindowsTest(WaylandTest):
    def test_settings_window_floats_and_the_dashboard_is_no_window_and_opens_after_it(self):
        self.open()
        self.assertEqual(self.sway.windows(), {})
        self.item.choose("Settings…")
        self.wait_for_windows({"Nimbo Settings": True})
        self.sway.run("swaymsg", "kill")
        self.wait_for_windows({})
        self.open()

    def wait_for_windows(self, windows):
        wait_until(lambda: self.sway.windows() == windows, f"{windows}", BOUND)


if __name__ == "__main__":
    unittest.main()
