# SPDX-License-Identifier: MIT
"""The tray items as a host on the session bus sees them."""

import re
import unittest

from nimbo_desktop import TrayHost, wait_until
from program import NO_DISPLAY, DesktopTest, Program, armed_timers

TOOLTIP = re.compile(
    r"Memory: \d+% · \d+\.\d GB used of \d+\.\d GB; \d+\.\d GB available; (normal|elevated|high|unavailable) pressure"
)
MENU = ["Keep awake until stopped", None, "Settings…", "Check for Updates…", None, "Quit Nimbo"]


# Which of the seven segments are lit: top, upper right, lower right, bottom, lower left, upper left, middle.
SEGMENTS = ["1111110", "0110000", "1101101", "1111001", "0110011", "1011011", "1011111", "1110000", "1111111", "1111011"]


def digits_on(picture, side, count):
    """The number of one or two digits on a picture of 18 points, as somebody sees it who looks at its pixels; "?" for
    a digit that cannot be made out."""

    def lit(x, y):
        column, row = int(x * side / 18), int((18 - y) * side / 18)
        alpha = picture[4 * (row * side + column)]
        return "1" if alpha > 200 else "0" if alpha < 55 else "?"

    text = ""
    for left in (1, 10) if count == 2 else (5.5,):
        right, middle = left + 6, left + 3.5
        points = [(middle, 15.5), (right, 13.2), (right, 8.7), (middle, 6.5)]
        points += [(left + 1, 8.7), (left + 1, 13.2), (middle, 11)]
        seen = "".join(lit(*point) for point in points)
        text += str(SEGMENTS.index(seen)) if seen in SEGMENTS else "?"
    return text


class TrayTest(DesktopTest):
    system_bus = True  # one that is not there would be waited for, with a timer

    def test_fresh_settings_show_the_ai_and_the_memory_item(self):
        self.start()
        self.host.wait_for_items(2)
        self.assertEqual({item.identifier for item in self.host.items}, {"nimbo-ai", "nimbo-memory"})

    def test_items_come_in_the_order_of_the_tabs(self):
        self.session.settings(menuAwake=True, tabOrder=["awake", "memory", "ai"])
        order = ["nimbo-awake", "nimbo-memory", "nimbo-ai"]
        # Xfce's panel puts each before the last one, unless it knows it from another order.
        on_xfce = [f"{name}-awake-memory-ai" for name in order[::-1]]
        for desktop, names in 3 * (("KDE", order), ("XFCE", on_xfce)):
            self.session.env["XDG_CURRENT_DESKTOP"] = desktop
            program = self.start()
            self.assertEqual([item.identifier for item in self.host.wait_for_items(3)], names)
            self.assertEqual(program.terminate(), 0)
            self.host.wait_for_items(0)

    def test_memory_item_shows_this_machines_figures(self):
        self.start()
        item = self.host.item("nimbo-memory")
        wait_until(lambda: TOOLTIP.fullmatch(item.tooltip), "the memory tooltip")
        self.assertNotIn("XAyatanaLabel", item.properties())
        sizes = [(width, height) for width, height, _data in item.get("IconPixmap")]
        self.assertEqual(sizes, [(side, side) for side in (16, 22, 24, 32, 44, 48, 64)])
        for width, height, data in item.get("IconPixmap"):
            self.assertEqual(len(bytes(data)), width * height * 4)
            self.assertTrue(any(bytes(data)), "the picture is not empty")

    def test_figure_can_be_read_off_the_picture(self):
        self.session.settings(showChart=False)
        self.start()
        item = self.host.item("nimbo-memory")
        wait_until(lambda: TOOLTIP.fullmatch(item.tooltip), "the memory tooltip")
        for side in (22, 44):

            def agrees():
                pictures = {width: bytes(data) for width, _height, data in item.get("IconPixmap")}
                percent = re.match(r"Memory: (\d+)%", item.tooltip)[1]
                return digits_on(pictures[side], side, len(percent)) == percent

            wait_until(agrees, f"the percentage in the picture of {side} pixels")

    def test_ai_item_says_that_nothing_is_connected(self):
        self.start()
        self.assertEqual(self.host.item("nimbo-ai").tooltip, "AI usage · enable a subscription in Settings")

    def test_every_item_switched_off_leaves_the_compact_one(self):
        self.session.settings(menuAI=False, menuMemory=False)
        self.start()
        self.host.wait_for_items(1)
        self.assertEqual(self.host.items[0].identifier, "nimbo")
        self.assertEqual(self.host.items[0].tooltip, "Nimbo · Resources, AI usage & Keep Awake")

    def test_all_items_are_there_when_all_are_on(self):
        self.session.settings(menuAwake=True)
        self.start()
        self.host.wait_for_items(3)
        self.assertEqual(
            self.host.item("nimbo-awake").tooltip, "Keep Awake is off · click for session controls"
        )

    def test_mandatory_properties_suit_every_host(self):
        self.start()
        properties = self.host.item("nimbo-memory").properties()
        self.assertEqual(properties["ItemIsMenu"], False)
        self.assertEqual(properties["Menu"], "/MenuBar")
        self.assertEqual(properties["IconName"], "")
        self.assertEqual(properties["Status"], "Active")
        self.assertEqual(properties["Category"], "SystemServices")

    def test_menu_has_its_entries_in_order(self):
        self.start()
        entries = self.host.item("nimbo-memory").open_menu()
        self.assertEqual([properties.get("label") for _id, properties in entries], MENU)
        separators = [properties.get("type") == "separator" for _id, properties in entries]
        self.assertEqual(separators, [text is None for text in MENU])

    def test_menu_entry_quits(self):
        program = self.start()
        item = self.host.item("nimbo-memory")
        entries = item.open_menu()
        item.close_menu()
        item.click_menu(next(key for key, properties in entries if properties.get("label") == "Quit Nimbo"))
        self.assertEqual(program.wait_for_exit(), 0)
        self.assertNotIn("com.quellwerk.Nimbo", self.session.names())

    def test_every_item_returns_when_the_watcher_restarts(self):
        self.start()
        self.host.wait_for_items(2)
        for _ in range(3):
            self.host.restart()
            self.host.wait_for_items(2)
        item = self.host.item("nimbo-memory")
        self.assertRegex(item.tooltip, TOOLTIP)

    def test_items_appear_when_the_tray_comes_late(self):
        self.start(host=False)
        wait_until(lambda: "com.quellwerk.Nimbo" in self.session.names(), "the program's name")
        self.host = TrayHost(self.session)
        self.host.wait_for_items(2)

    def test_nothing_is_sent_while_nothing_changes(self):
        self.session.settings(refreshInterval=2)
        self.start()
        item = self.host.item("nimbo-ai")
        self.wait_for_tick()
        item.signals.clear()
        self.wait_for_tick()
        self.wait_for_tick()
        self.assertEqual(item.identifier, "nimbo-ai")  # what was sent before this answer has come
        self.assertEqual(item.signals, [])

    def wait_for_tick(self):
        """The only timer that runs here counts down to a tick, and then from the start again."""
        before = None

        def restarted():
            nonlocal before
            now = max(armed_timers(self.program.pid), default=0)
            rose = before is not None and now > before
            before = now
            return rose

        wait_until(restarted, "a tick")

    def test_termination_leaves_nothing_on_the_bus(self):
        program = self.start()
        self.host.wait_for_items(2)
        before = set(self.session.names())
        self.assertEqual(program.terminate(), 0)
        self.assertNotIn("com.quellwerk.Nimbo", self.session.names())
        self.assertLess(len(self.session.names()), len(before))
        self.assertEqual(program.errors(), "")


class RotationTest(DesktopTest):
    def test_one_item_rotates_through_the_tabs(self):
        self.session.settings(menuRotation=True, menuRotationInterval=5)
        self.start()
        self.host.wait_for_items(1)
        item = self.host.items[0]
        self.assertRegex(item.tooltip, "^AI usage")
        wait_until(lambda: item.tooltip.startswith("Memory"), "the next tab's content", 12)
        self.assertEqual(self.host.items, [item])


class InstanceTest(DesktopTest):
    def test_second_start_hands_over_and_ends(self):
        self.start()
        self.host.wait_for_items(2)
        second = Program(self.session)
        self.assertEqual(second.wait_for_exit(), 0)
        self.assertTrue(self.program.child.running)
        self.assertEqual(len(self.host.items), 2)
        # Handing over opens the dashboard, for which there is no display here.
        self.expected_errors = NO_DISPLAY
        wait_until(lambda: self.program.errors() == self.expected_errors, "the message")

    def test_without_a_session_bus_it_says_so(self):
        self.session.env["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent/bus"
        program = self.start(host=False)
        self.assertEqual(program.wait_for_exit(), 1)
        self.assertIn("session bus", program.errors())
        self.assertEqual(program.errors().count("\n"), 1)

    def test_losing_the_session_bus_ends_it_cleanly(self):
        program = self.start()
        self.host.wait_for_items(2)
        self.host.stop()
        self.session.bus.stop()
        self.assertEqual(program.wait_for_exit(), 0)


if __name__ == "__main__":
    unittest.main()
