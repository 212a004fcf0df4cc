# SPDX-License-Identifier: MIT
"""The card on a real X11 desktop: what a screen reader finds in it, where it lies, what a click opens."""

import re
import subprocess
import time
import unittest

from widget_support import CARD, NIMBO, OFF, PATH, PYTHON, Service, provider, switches, temperature, written

import accessibility
import claude_tool
from gi.repository import GLib
from nimbo_desktop import BOUND, SLOW, Session, turn_for, wait_until, windows_of, xdotool
from program import DesktopTest
from screen import Screen

HANDLER = """[Desktop Entry]
Type=Application
Name=Links
Exec=/bin/sh -c "echo %u >> {folder}/links"
MimeType=x-scheme-handler/nimbo;
"""
# The toolkit's bridge to assistive technology complains where that asks for what is just being replaced; the second
# one comes as a warning of Python's, from the bridge's walk through all it knows.
BRIDGE = (
    r"\n\(.*:\d+\): Atk-CRITICAL \*\*: .*\n"
    r"|.*: Warning: g_object_unref: assertion 'G_IS_OBJECT \(object\)' failed\n  return _Gtk_main\(.*\n"
)
NOT_RUNNING = ["Nimbo, Nimbo is not running."]
WARM = "CPU temperature, 54 °C"


def buttons_of(session, widget):
    controls = accessibility.tree(session, widget.pid)
    return [control["name"] for control in controls if control["role"] == "push button"]


class DesktopWidgetTest(unittest.TestCase):
    maxDiff = None
    def setUp(self):
        self.session = Session(display=True, size="1000x700x24")
        self.addCleanup(self.session.close)
        del self.session.env["NO_AT_BRIDGE"]
        self._register_links()
        self.session.start(["xfwm4", "--compositor=on"], stderr=subprocess.DEVNULL)
        root = ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"]
        wait_until(lambda: "window id" in self._output(root), "the window manager", 3 * BOUND)

    def _register_links(self):
        applications = self.session.folder / "data/applications"
        applications.mkdir()
        (applications / "links.desktop").write_text(HANDLER.format(folder=self.session.folder))
        (applications / "mimeapps.list").write_text(
            "[Default Applications]\nx-scheme-handler/nimbo=links.desktop\n"
        )

    def _output(self, arguments):
        return subprocess.run(arguments, env=self.session.env, capture_output=True, text=True).stdout

    def start(self, *arguments, **values):
        """With a program that says these values; without any, nobody runs."""
        if values:
            self.service = Service(self.session, **values)
        self.errors = self.session.folder / "errors"
        with self.errors.open("w") as errors:
            self.widget = self.session.start([PYTHON, "-B", CARD, *arguments], stderr=errors)
        self.window = wait_until(lambda: windows_of(self.session, self.widget.pid), "the window", BOUND)

    def tearDown(self):
        if hasattr(self, "widget"):
            said = re.sub(BRIDGE, "", self.errors.read_text())
            self.assertEqual((self.widget.running, said), (True, ""))

    def buttons(self):
        return buttons_of(self.session, self.widget)

    def wait_for(self, *buttons):
        try:
            wait_until(lambda: self.buttons() == list(buttons), "the buttons")
        except AssertionError:
            self.assertEqual(self.buttons(), list(buttons))

    def box(self):
        return next(iter(windows_of(self.session, self.widget.pid).values()), None)

    def links(self):
        file = self.session.folder / "links"
        return file.read_text().split() if file.exists() else []

    def test_card_names_every_figure(self):
        codex = provider(("5-hour", 77.4), ("Weekly", 99.9))
        self.start(Codex=codex, Claude=provider(message="Sign in.", read=0), Temperature=temperature(54.4))
        self.wait_for("Codex, 5-hour 77% used, Weekly 99% used", "Claude, Sign in.", WARM)
        self.service.say(Claude=provider(read=0))
        self.wait_for("Codex, 5-hour 77% used, Weekly 99% used", "Claude, Not read yet", WARM)
        self.assertEqual(self.service.watched, [["Temperature"]])

    def test_times_name_the_day_when_it_is_another_or_the_figures_are_old(self):
        soon, later = time.time() + 1, time.time() + 3 * 86400
        day = "%a %d %b, %H:%M"
        times = [time.strftime(form, time.localtime(when)) for form, when in (("%H:%M", soon), (day, soon), (day, later))]
        limits = ("5-hour", 1, int(soon)), ("Weekly", 2, int(later))
        self.start(Codex=provider(*limits))
        self.wait_for(f"Codex, 5-hour 1% used · Resets {times[0]}, Weekly 2% used · Resets {times[2]}")
        read = int(time.time()) - 3600
        self.service.say(Codex=provider(limits[0], read=read, message="Sign-in expired."))
        known = f"Last known, {time.strftime(day, time.localtime(read))}"
        self.wait_for(f"Codex, 5-hour 1% used · Resets {times[1]}, {known}, Sign-in expired.")

    def test_news_changes_the_card_and_its_height(self):
        self.start(Codex=provider(("5-hour", 77)), Temperature=temperature(54))
        before = wait_until(self.box, "its place")
        self.service.say(Codex=provider(("5-hour", 78)), Temperature=temperature(-1))
        self.wait_for("Codex, 5-hour 78% used")
        wait_until(lambda: self.box() and self.box()[3] < before[3], "a smaller card")
        right_edge = before[0] + before[2]
        wait_until(lambda: self.box()[0] + self.box()[2] == right_edge, "its corner")
        self.service.say(Codex=OFF)
        self.wait_for("Nimbo, Switch on AI usage or the temperature in Nimbo’s settings.")

    def test_program_may_come_and_go_and_is_not_started(self):
        started = self.session.folder / "started"
        service = self.session.folder / "services" / "com.quellwerk.Nimbo.service"
        service.write_text(f"[D-BUS Service]\nName=com.quellwerk.Nimbo\nExec=/bin/touch {started}\n")
        self.session.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "ReloadConfig")
        self.start()
        self.wait_for(*NOT_RUNNING)
        for warmth, text in ((54.4, WARM), (60.6, "CPU temperature, 61 °C")):
            service = Service(self.session, Temperature=temperature(warmth))
            self.wait_for(text)
            wait_until(lambda: service.watched, "the wish to be told")
            service.leave()
            self.wait_for(*NOT_RUNNING)
        self.assertFalse(started.exists())

    def test_figures_grow_old_by_themselves(self):
        self.start(Codex=provider(("5-hour", 77), read=int(time.time()) - 900 + 4 * SLOW))
        self.wait_for("Codex, 5-hour 77% used")
        young = Screen(self.session.display.frame_buffer).settled()
        wait_until(lambda: "Last known" in self.buttons()[0], "the age")
        old = Screen(self.session.display.frame_buffer).settled()
        x, y, width, _height = self.box()
        brightest = [max(frame.cropped(x + 10, y + 10, width - 20, 20).pixels[::4]) for frame in (young, old)]
        self.assertGreater(brightest[0], 200)
        self.assertLess(brightest[1], 200)
        self.service.say(Codex=provider(("5-hour", 78)))
        self.wait_for("Codex, 5-hour 78% used")

    def test_odd_values_do_no_harm(self):
        codex, good = provider(("5-hour", 1)), "Codex, 5-hour 1% used"
        self.start(Codex=codex, Temperature=temperature(54))
        self.wait_for(good, WARM)
        width = self.box()[2]
        odd = [GLib.Variant("s", "hot"), GLib.Variant("x", 54), GLib.Variant("a{sv}", {}), GLib.Variant("as", [])]
        for value in odd:
            self.service.say(Codex=value, Temperature=value)
            self.wait_for("Nimbo, Switch on AI usage or the temperature in Nimbo’s settings.")
            self.service.say(Codex=codex)
            self.wait_for(good)
        for number in (float("nan"), float("inf"), -1e300, 1e300):
            self.service.say(Codex=provider(("none", number), ("5-hour", 1)), Temperature=temperature(number))
            self.wait_for(good)
        for seconds in (2**63 - 1, -(2**63), 1 << 40, -1):
            self.service.say(Codex=provider(("5-hour", 1, seconds), read=seconds))
            self.wait_for(good)
        limits = ("a\nb\x01c\u202e", 0), ("t" * 1_000_000, 100), *[("x", 3)] * 5000
        self.service.say(Codex=provider(*limits, message="<b>&\n" + "m" * 1_000_000))
        wait_until(lambda: "mmm" in self.buttons()[0], "the message")
        name = self.buttons()[0]
        self.assertTrue(name.startswith("Codex, a b c  0% used, ttt"), name[:40])
        self.assertIn("<b>& mmm", name)
        self.assertLess(len(name), 800)
        self.assertEqual(self.box()[2], width)

    def test_card_lies_in_the_chosen_corner_below_all_windows(self):
        self.start("--corner", "bottom-left")
        wait_until(lambda: (self.box()[0], self.box()[1] + self.box()[3]) == (24, 700 - 24), "its corner")
        state = self._output(["xprop", "-id", str(next(iter(self.window))), "_NET_WM_STATE"])
        for word in ("BELOW", "STICKY", "SKIP_TASKBAR"):
            self.assertIn(f"_NET_WM_STATE_{word}", state)

    def test_click_opens_the_page_of_what_was_clicked(self):
        self.start(Codex=provider(("5-hour", 77)), Temperature=temperature(54))
        self.wait_for("Codex, 5-hour 77% used", WARM)
        x, y, _width, height = self.box()
        xdotool(self.session, "mousemove", x + 40, y + 30, "click", 1)
        wait_until(lambda: self.links() == ["nimbo://usage"], "the link")
        xdotool(self.session, "mousemove", x + 40, y + height - 25, "click", 1)
        wait_until(lambda: self.links() == ["nimbo://usage", "nimbo://resources"], "the other link")

    def test_only_what_looks_different_is_drawn(self):
        self.session.env["NO_AT_BRIDGE"] = "1"
        self.start(Codex=provider(("5-hour", 77)), Temperature=temperature(54.4))
        turn_for(2)
        same, other = {"Codex": provider(("5-hour", 77.2)), "Temperature": temperature(54.3)}, {"Temperature": temperature(55)}
        for news, drawn in ((same, False), (other, True)):
            awake, before = switches(self.widget.pid), written(self.widget.pid)
            self.service.say(**news)
            wait_until(lambda: switches(self.widget.pid) > awake, "its attention")
            turn_for(1)
            self.assertEqual(written(self.widget.pid) - before > 300, drawn)

    def test_keyboard_stays_where_it_was(self):
        self.start(Codex=provider(("5-hour", 77)), Temperature=temperature(54))
        self.wait_for("Codex, 5-hour 77% used", WARM)
        xdotool(self.session, "windowfocus", "--sync", next(iter(self.window)), "key", "Tab")
        self.service.say(Codex=provider(("5-hour", 78)), Temperature=temperature(60))
        self.wait_for("Codex, 5-hour 78% used", "CPU temperature, 60 °C")
        xdotool(self.session, "key", "Return")
        wait_until(lambda: self.links() == ["nimbo://resources"], "the link")

    def test_nothing_wakes_it_while_there_is_no_news(self):
        self.session.env["NO_AT_BRIDGE"] = "1"
        self.start(Codex=provider(("5-hour", 77)), Temperature=temperature(54))
        turn_for(2)
        before = switches(self.widget.pid)
        turn_for(3)
        self.assertEqual(switches(self.widget.pid) - before, 0)

    def test_without_a_display_or_a_bus_it_says_so_and_ends(self):
        for variable, words in (("DBUS_SESSION_BUS_ADDRESS", "There is no session bus: "), ("DISPLAY", "There is no display.")):
            self.session.env[variable] = "unix:path=/nowhere"
            ended = subprocess.run([PYTHON, "-B", CARD], env=self.session.env, capture_output=True, text=True)
            self.assertEqual((ended.returncode, ended.stderr[: len(words)]), (1, words))


class RealProgramTest(DesktopTest):
    display = True

    def test_card_follows_the_real_program(self):
        del self.session.env["NO_AT_BRIDGE"]
        widget = self.session.start([PYTHON, "-B", CARD])
        claude_tool.install(self.session, claude_tool.screen(61, 23))
        self.session.settings(usage__claude=True, refreshInterval=2)

        def wait_for(part):
            wait_until(lambda: part in "".join(buttons_of(self.session, widget)), part, 3 * BOUND)

        wait_for("Nimbo is not running.")
        self.start()
        wait_for("Claude, 5-hour 61% used · Resets ")
        claude_tool.install(self.session, claude_tool.screen(95, 23))
        self.session.call(NIMBO, PATH, f"{NIMBO}.Usage1", "Refresh")
        wait_for("Claude, 5-hour 95% used · Resets ")
        self.program.terminate()
        wait_for("Nimbo is not running.")


if __name__ == "__main__":
    unittest.main()
