# SPDX-License-Identifier: MIT
"""The program in a real panel, used with the mouse."""

import unittest

from nimbo_desktop import turn_for, wait_until, xdotool
from program import DesktopTest
from xfce_panel import BOTTOM, TOP, XfcePanel


class PanelTest(DesktopTest):
    display = True
    edge = TOP
    items = 1

    def setUp(self):
        super().setUp()
        self.session.settings(menuAI=False)
        self.panel = XfcePanel(self.session, edge=self.edge)
        before = self.panel.settled()
        self.start(host=False)
        self.box = wait_until(lambda: before.changed_box(self.panel.settled()), "the item in the panel")

    def center(self):
        x, y, width, height = self.box
        return x + width // 2, y + height // 2

    def test_item_is_in_the_panel(self):
        x, y, width, height = self.box
        self.assertGreater(x, 1200)
        self.assertLessEqual(height, 32)
        self.assertGreater(width, 10)

    def test_click_drops_the_dashboard_next_to_the_panel(self):
        self.click_at(*self.center())
        x, y, width, height = self.program.wait_for_dashboard()
        if self.edge == TOP:
            self.assertTrue(32 <= y <= 40, y)
        else:
            self.assertTrue(860 <= y + height <= 868, y + height)
        self.assertLessEqual(x + width, 1440)
        self.assertLessEqual(x, self.center()[0])

    def test_second_click_on_the_item_closes(self):
        self.click_at(*self.center())
        self.program.wait_for_dashboard()
        self.click_at(*self.center())
        self.program.wait_for_no_dashboard()
        turn_for(1)
        self.assertIsNone(self.program.dashboard(), "the click that closed must not open again")
        self.click_at(*self.center())
        self.program.wait_for_dashboard()

    def test_slow_click_on_the_item_closes_for_good(self):
        self.click_at(*self.center())
        self.program.wait_for_dashboard()
        xdotool(self.session, "mousemove", *self.center(), "mousedown", 1)
        turn_for(0.6)
        xdotool(self.session, "mouseup", 1)
        self.program.wait_for_no_dashboard()
        turn_for(0.6)
        self.assertIsNone(self.program.dashboard(), "its release must not open it again")

    def test_click_on_the_desktop_closes(self):
        self.click_at(*self.center())
        self.program.wait_for_dashboard()
        self.program.controls()  # it has the pointer by the time it answers
        self.click_at(300, 500)
        self.program.wait_for_no_dashboard()

    def test_escape_closes(self):
        self.click_at(*self.center())
        self.program.wait_for_dashboard()
        self.key("Escape")
        self.program.wait_for_no_dashboard()

    def test_right_click_gives_the_menu(self):
        without = self.panel.settled()
        self.click_at(*self.center(), button=3)

        def menu():
            box = without.changed_box(self.panel.settled())
            return box if box and box[3] > 100 else None

        wait_until(menu, "the menu")
        self.key("Escape")


class BottomPanelTest(PanelTest):
    edge = BOTTOM


class OrderTest(DesktopTest):
    display = True

    def test_items_stand_in_the_order_of_the_tabs(self):
        self.session.settings(menuAI=False, menuAwake=True)
        panel = XfcePanel(self.session)
        before = panel.settled()
        self.start(host=False)
        wide = wait_until(lambda: (box := before.changed_box(panel.settled())) and box[2] > 40 and box, "both items")
        x, y, width, height = wide
        self.click_at(x + 8, y + height // 2)
        self.program.wait_for_dashboard()
        self.program.wait_for_text(lambda text: text.startswith("TOP"), "the page of the memory")
        self.key("Escape")
        self.program.wait_for_no_dashboard()
        self.click_at(x + width - 8, y + height // 2)
        self.program.wait_for_dashboard()
        self.program.wait_for_text(lambda text: text == "Ready for your next run", "the page of Keep Awake")


if __name__ == "__main__":
    unittest.main()
