# SPDX-License-Identifier: MIT
"""Every control of the settings window, used as a screen reader and a keyboard would, and what becomes
of it in the settings file, the tray and the dashboard."""

import json
import subprocess
import unittest

from gi.repository import GLib

import claude_tool
from nimbo_desktop import SLOW, turn_for, wait_until, windows_of
from program import BINARY, DesktopTest, Program, stored

WIDTH, HEIGHT = 560, 680
BOUND = 10 * SLOW


class SettingsWindowTest(DesktopTest):
    display = True

    def setUp(self):
        super().setUp()
        self.session.start(["xfwm4", "--compositor=off"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        # Windows that are open while it starts change hands, which closes a dashboard.
        wait_until(self.has_window_manager, "the window manager")

    def has_window_manager(self):
        ask = ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"]
        return "window id" in subprocess.run(ask, env=self.session.env, capture_output=True, text=True).stdout

    def launch(self, page=None, **settings):
        self.path = self.session.settings(**settings)
        self.start()
        self.host.wait_for_items(1)
        self.open()
        if page:
            self.program.press(page)
            self.wait_for_control(page, "panel")

    def open(self):
        self.host.items[0].choose("Settings…")
        wait_until(self.is_open, "the settings window")

    def is_open(self):
        return any(frame[2:] == (WIDTH, HEIGHT) for frame in windows_of(self.session, self.program.windows_pid).values())

    def control(self, name, role=None):
        found = [
            control for control in self.program.controls() if control["name"] == name and role in (None, control["role"])
        ]
        return found[0] if found else None

    def wait_for_control(self, name, role):
        return wait_until(lambda: self.control(name, role), f"{name} on the screen", BOUND)

    def wait_for_stored(self, key, value):
        wait_until(lambda: stored(self.path, key) == value, f"{key} = {value} on disk", BOUND)

    def wait_for_tick(self, name, on):
        wait_until(lambda: self.control(name, "check box")["checked"] is on, f"{name} ticked: {on}", BOUND)

    def tick(self, name, key, on):
        """Presses the box and sees the file and the box follow."""
        self.program.press(name)
        self.wait_for_stored(key, on)
        self.wait_for_tick(name, on)

    def choose(self, name, number):
        """The item of that number, with the keyboard."""
        self.program.press(name)
        turn_for(0.3)
        for key in ["Home"] + ["Down"] * number + ["Return"]:
            self.key(key)

    def choose_each(self, name, key, values):
        self.choose(name, 0)  # perhaps what was chosen already, which is no choice
        for number, value in [*enumerate(values)][1:] + [(0, values[0])]:
            self.choose(name, number)
            self.wait_for_stored(key, value)

    def wait_for_items(self, *names):
        wait_until(lambda: self.identifiers() == set(names), f"the items {names}", BOUND)

    def identifiers(self):
        try:
            return {item.identifier for item in self.host.items}
        except GLib.Error:
            return None  # one has just gone

    def test_monitors(self):
        self.launch("Monitors")
        for name, key in (("CPU", "monitorCPU"), ("CPU temperature", "monitorTemperature")):
            self.tick(name, key, True)
            self.tick(name, key, False)
        self.tick("CPU", "monitorCPU", True)
        self.tick("Memory", "monitorMemory", False)
        self.tick("Memory", "monitorMemory", True)
        self.choose_each("Refresh interval", "refreshInterval", [2, 5, 10, 30])

    def test_monitor_switched_on_shows_on_the_dashboard(self):
        self.launch("Monitors")
        self.tick("CPU", "monitorCPU", True)
        self.host.item("nimbo-memory").activate(1300, 10)
        self.program.wait_for_dashboard()
        self.program.wait_for_text(lambda text: text.startswith("CPU"), "the line of the CPU")

    def test_categories_of_the_menu_bar(self):
        self.launch(compactMenuBar=True)
        self.wait_for_items("nimbo")
        for name, key in (("Awake", "menuAwake"), ("AI", "menuAI"), ("Mem", "menuMemory")):
            on = key != "menuAwake"
            self.tick(name, key, not on)
            self.wait_for_stored("compactMenuBar", False)
            self.tick(name, key, on)
        self.wait_for_tick("Single app icon (hide all readouts)", False)
        self.wait_for_items("nimbo-ai", "nimbo-memory")

    def test_showing_memory_switches_its_monitor_on(self):
        self.launch(menuMemory=False, monitorMemory=False, monitorCPU=True)
        self.tick("Mem", "menuMemory", True)
        self.wait_for_stored("monitorMemory", True)
        self.program.press("Monitors")
        self.wait_for_tick("Memory", True)

    def test_single_icon_and_rotation_exclude_each_other(self):
        single, rotation = "Single app icon (hide all readouts)", "Rotate selected readouts in one icon"
        self.launch()
        self.tick(single, "compactMenuBar", True)
        self.wait_for_items("nimbo")
        self.tick(rotation, "menuRotation", True)
        self.wait_for_tick(single, False)
        self.wait_for_stored("compactMenuBar", False)
        self.tick(single, "compactMenuBar", True)
        self.wait_for_tick(rotation, False)
        self.tick(single, "compactMenuBar", False)
        self.assertFalse(stored(self.path, "menuRotation"), "left as it was")
        self.wait_for_items("nimbo-ai", "nimbo-memory")

    def test_presets(self):
        self.launch()
        for number, items in enumerate([("ai", "memory", "awake"), ("ai",), ("memory",), ("awake",)]):
            self.choose("Show", number)
            self.wait_for_items(*(f"nimbo-{item}" for item in items))
        self.choose("Show", 4)  # what is shown is no choice of one's own, so nothing changes
        turn_for(0.5)
        self.wait_for_items("nimbo-awake")

    def test_choices_of_the_menu_bar(self):
        claude_tool.install(self.session, claude_tool.screen(61, 23))
        self.launch(usage__claude=True)
        tooltip = lambda: self.host.item("nimbo-ai").tooltip  # noqa: E731
        wait_until(lambda: "Weekly: 77% remaining" in tooltip(), "the weekly limit", BOUND)
        self.choose_each("AI tray quotas", "aiMenuWindows", [0, 1])
        self.choose("AI tray quotas", 0)
        wait_until(lambda: "5-hour: 39% remaining" in tooltip(), "the short limit", BOUND)
        self.choose_each("AI tray fill", "aiMenuRemaining", [True, False])
        self.choose("AI tray fill", 1)
        wait_until(lambda: "5-hour: 61% used" in tooltip(), "what is used", BOUND)
        self.choose_each("Subscription order", "claudeFirst", [False, True])
        self.choose_each("Memory icon", "showChart", [True, False])

    def test_rotation_intervals_and_tab_orders(self):
        self.launch()
        self.choose_each("Rotate every", "menuRotationInterval", [5, 10, 15, 30, 60, 120, 300, 600])
        ai, memory, awake = "ai", "memory", "awake"
        orders = [
            [ai, memory, awake],
            [ai, awake, memory],
            [memory, ai, awake],
            [memory, awake, ai],
            [awake, ai, memory],
            [awake, memory, ai],
        ]
        self.choose_each("Tab order", "tabOrder", orders)
        self.choose("Tab order", 5)
        self.wait_for_stored("tabOrder", orders[5])
        self.host.item("nimbo-memory-awake-memory-ai").activate(1300, 10)

        def tabs():
            shown = [control["name"] for control in self.program.controls() if control["role"] == "page tab"]
            return [tab for tab in shown if tab in ("AI", "Mem", "Awake")]

        wait_until(lambda: tabs() == ["Awake", "Mem", "AI"], "the dashboard's tabs in that order")

    def test_subscriptions(self):
        self.launch("AI Usage")
        for name, key in (("OpenAI · Codex", "usage.codex"), ("Anthropic · Claude", "usage.claude")):
            self.tick(name, key, True)
        tooltip = lambda: self.host.item("nimbo-ai").tooltip  # noqa: E731
        wait_until(lambda: "No Codex auth.json found." in tooltip(), "what Codex says", BOUND)
        for name, key in (("OpenAI · Codex", "usage.codex"), ("Anthropic · Claude", "usage.claude")):
            self.tick(name, key, False)
        wait_until(lambda: tooltip() == "AI usage · enable a subscription in Settings", "the empty item", BOUND)

    def test_desktop_application_that_is_missing_is_told(self):
        self.launch("AI Usage")
        self.program.press("Enable desktop fallback…")
        self.wait_for_control("Claude Desktop couldn’t be opened", "label")

    def test_keep_awake(self):
        self.launch("Keep Awake")
        for name, key in (
            ("Keep display on too", "awakeDisplayOn"),
            ("Only while connected to power", "awakeOnlyOnPower"),
        ):
            self.tick(name, key, True)
            self.tick(name, key, False)
        self.choose_each("Stop on battery at", "awakeBatteryFloor", [0, 10, 20, 30, 50])

    def test_launch_at_login(self):
        entry = self.session.folder / "config" / "autostart" / "com.quellwerk.Nimbo.desktop"
        self.launch()
        self.program.press("Launch at login")
        self.wait_for_tick("Launch at login", True)
        self.assertIn(f"Exec={BINARY}", entry.read_text())
        self.program.press("Launch at login")
        self.wait_for_tick("Launch at login", False)
        self.assertFalse(entry.exists())

    def test_login_entry_changed_by_another_program_shows_when_the_window_is_looked_at(self):
        entry = self.session.folder / "config" / "autostart" / "com.quellwerk.Nimbo.desktop"
        self.launch()
        self.program.press("Launch at login")
        self.wait_for_tick("Launch at login", True)
        entry.write_text(entry.read_text() + "Hidden=true\n")
        self.key("ctrl+w")
        wait_until(lambda: not self.is_open(), "the window to close")
        self.open()
        self.wait_for_tick("Launch at login", False)

    def test_login_entry_that_cannot_be_written_is_told(self):
        (self.session.folder / "config" / "autostart").write_text("in the way")
        self.launch()
        self.program.press("Launch at login")
        self.wait_for_control("Couldn’t update launch at login", "label")
        self.program.press("OK")
        self.wait_for_tick("Launch at login", False)

    def test_updates_of_a_build_without_a_feed(self):
        self.launch()
        box = self.control("Check for updates automatically")
        self.assertFalse(box["checked"] or box["enabled"])
        self.assertEqual(box["description"], "This build has no update feed.")
        self.assertTrue(self.control("This build has no update feed."), "beside it")
        self.program.press("Check for Updates…")
        self.wait_for_control("Updates aren’t connected yet", "label")
        self.wait_for_control("This development build has no signed update feed configured.", "label")
        self.program.press("OK")
        wait_until(lambda: self.control("Updates aren’t connected yet") is None, "the alert to go", BOUND)

    def test_keys_of_the_window(self):
        self.launch("Monitors")
        self.key("ctrl+w")
        wait_until(lambda: not self.is_open(), "the window to close")
        self.open()
        self.assertTrue(self.control("Monitors", "panel"), "the page of before is there again")
        self.key("ctrl+q")
        self.assertEqual(self.program.wait_for_exit(), 0)

    def test_dashboard_leads_to_the_page_of_the_subscriptions(self):
        self.path = self.session.settings()
        self.start()
        self.host.item("nimbo-ai").activate(1300, 10)
        self.program.wait_for_dashboard()
        self.program.press("Configure…")
        wait_until(self.is_open, "the settings window")
        self.wait_for_control("See your remaining allowance", "label")
        self.assertIsNone(self.control("Configure…"), "the dashboard is closed")

    def test_damaged_settings_are_set_aside_and_the_window_shows_the_defaults(self):
        path = self.session.folder / "config" / "com.quellwerk.Nimbo.json"
        path.write_text("{")
        self.start()
        self.path = path
        self.host.wait_for_items(2)
        self.open()
        self.wait_for_tick("AI", True)
        self.tick("Awake", "menuAwake", True)
        kept = [file for file in path.parent.glob("com.quellwerk.Nimbo*") if file.read_text() == "{"]
        self.assertEqual(len(kept), 1, "the damaged file")


class LinksTest(DesktopTest):
    display = True

    def launch_another(self, link):
        other = Program(self.session, link)
        self.assertEqual(other.wait_for_exit(), 0, other.errors())

    def test_link_opens_its_page_in_the_running_program(self):
        self.start()
        self.host.wait_for_items(2)
        for link, text in (
            ("nimbo://awake", "Ready for your next run"),
            ("NIMBO://usage/", "Updates every 5 minutes · hover for countdowns"),
        ):
            self.launch_another(link)
            self.program.wait_for_dashboard()
            self.program.wait_for_text(lambda name, text=text: name == text, text)

    def test_link_of_the_first_start_opens_after_launch(self):
        self.start("nimbo://usage", "nimbo://awake")
        self.program.wait_for_dashboard()
        self.program.wait_for_text(lambda name: name == "Ready for your next run", "the Keep Awake page")

    def test_link_that_leads_nowhere_opens_nothing(self):
        self.start()
        self.host.wait_for_items(2)
        self.launch_another("nimbo://memory")
        turn_for(1)
        self.assertIsNone(self.program.dashboard())


class WidgetFileTest(DesktopTest):
    display = True

    def test_allowances_reach_the_file_and_a_listener(self):
        claude_tool.install(self.session, claude_tool.screen(61, 23))
        self.session.settings(usage__claude=True)
        kinds = []
        self.session.connection.signal_subscribe(
            None, "com.quellwerk.Nimbo.Widgets", "TimelinesReloaded", "/com/quellwerk/Nimbo", None, 0,
            lambda *signal: kinds.append(signal[5].unpack()[0]),
        )  # fmt: skip
        self.start()
        file = self.session.folder / "data" / "K3QX9TZ4WB.com.quellwerk.Nimbo" / "usage-snapshot.json"
        wait_until(file.exists, f"the file {file}", 40 * SLOW)
        wait_until(lambda: "5-hour" in file.read_text(), "the allowances", 40 * SLOW)
        snapshot = json.loads(file.read_text())
        self.assertEqual([window["usedPercent"] for window in snapshot["claude"]["snapshot"]["windows"]][:2], [61, 23])
        self.assertNotIn("temperature", snapshot)
        self.assertEqual(file.stat().st_mode & 0o777, 0o600)
        wait_until(lambda: len(kinds) >= 4, "the signals", BOUND)
        self.assertEqual(kinds[:2], ["com.quellwerk.Nimbo.usage", "com.quellwerk.Nimbo.temperature"])


if __name__ == "__main__":
    unittest.main()
