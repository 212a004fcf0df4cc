# SPDX-License-Identifier: MIT
"""The card on a real X11 desktop: what a screen reader finds in it, where it lies, what a click opens."""

import subprocess
import unittest

from widget_support import PYTHON, WIDGETS, Publisher, accessibility, limit, provider, record, switches

from nimbo_desktop import BOUND, Session, turn_for, wait_until, windows_of, xdotool

SCRIPT = WIDGETS / "desktop/nimbo-desktop-widget"
HANDLER = """[Desktop Entry]
Type=Application
Name=Links
Exec=/bin/sh -c "echo %u >> {folder}/links"
MimeType=x-scheme-handler/nimbo;
"""


class DesktopWidgetTest(unittest.TestCase):
    def setUp(self):
        self.session = Session(display=True, size="1000x700x24")
        self.addCleanup(self.session.close)
        del self.session.env["NO_AT_BRIDGE"]
        self.publisher = Publisher(self.session)
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

    def start(self, contents, *arguments):
        self.publisher.put(contents)
        self.widget = self.session.start([PYTHON, "-B", SCRIPT, *arguments])
        self.window = wait_until(lambda: windows_of(self.session, self.widget.pid), "the window", 3 * BOUND)

    def buttons(self):
        controls = accessibility.tree(self.session, self.widget.pid)
        return [control["name"] for control in controls if control["role"] == "push button"]

    def footer(self):
        controls = accessibility.tree(self.session, self.widget.pid)
        return [control["name"] for control in controls if control["role"] == "label"]

    def box(self):
        return next(iter(windows_of(self.session, self.widget.pid).values()), None)

    def links(self):
        file = self.session.folder / "links"
        return file.read_text().split() if file.exists() else []

    def test_card_names_every_figure(self):
        self.start(record(codex=provider(limit("5-hour", 77), limit("Weekly", 35)), claude=provider(message="Sign in.")))
        wait_until(self.buttons, "the buttons")
        self.assertEqual(
            self.buttons(),
            ["Codex, 5-hour 77% used, Weekly 35% used", "Claude, Sign in.", "CPU temperature, 54 °C"],
        )

    def test_news_changes_the_card_and_its_height(self):
        self.start(record(codex=provider(limit("5-hour", 77))))
        before = wait_until(self.box, "its place")
        self.publisher.publish(record(watched=False, codex=provider(limit("5-hour", 78))))
        wait_until(lambda: self.buttons() == ["Codex, 5-hour 78% used"], "the new figure")
        wait_until(lambda: self.box() and self.box()[3] < before[3], "a smaller card")
        right_edge = before[0] + before[2]
        wait_until(lambda: self.box()[0] + self.box()[2] == right_edge, "its corner")

    def test_damaged_missing_and_old_files_are_said_calmly(self):
        self.start("{")
        wait_until(lambda: "damaged" in "".join(self.buttons()), "the message")
        self.publisher.file.unlink()
        self.publisher.announce()
        wait_until(lambda: "No reading yet" in "".join(self.buttons()), "the other message")
        self.publisher.publish(record(date=1_700_000_000))
        wait_until(lambda: "Old: last reading" in "".join(self.footer()), "the age")
        self.assertEqual(self.buttons(), ["CPU temperature, 54 °C"])

    def test_card_lies_in_the_chosen_corner_below_all_windows(self):
        self.start(record(), "--corner", "bottom-left")
        x, y, _width, height = wait_until(self.box, "its place")
        wait_until(lambda: (self.box()[0], self.box()[1] + self.box()[3]) == (24, 700 - 24), "its corner")
        state = self._output(["xprop", "-id", str(next(iter(self.window))), "_NET_WM_STATE"])
        for word in ("BELOW", "STICKY", "SKIP_TASKBAR"):
            self.assertIn(f"_NET_WM_STATE_{word}", state)

    def test_click_opens_the_page_of_what_was_clicked(self):
        self.start(record(codex=provider(limit("5-hour", 77))))
        wait_until(lambda: len(self.buttons()) == 2, "the buttons")
        x, y, width, height = self.box()
        xdotool(self.session, "mousemove", x + 40, y + 30, "click", 1)
        wait_until(lambda: self.links() == ["nimbo://usage"], "the link")
        xdotool(self.session, "mousemove", x + 40, y + height - 55, "click", 1)
        wait_until(lambda: self.links() == ["nimbo://usage", "nimbo://resources"], "the other link")

    def test_nothing_wakes_it_while_there_is_no_news(self):
        self.session.env["NO_AT_BRIDGE"] = "1"
        self.start(record())
        turn_for(2)
        before = switches(self.widget.pid)
        turn_for(3)
        self.assertEqual(switches(self.widget.pid) - before, 0)

    def test_without_a_display_it_says_so_and_ends(self):
        del self.session.env["DISPLAY"]
        ended = subprocess.run([PYTHON, "-B", SCRIPT], env=self.session.env, capture_output=True, text=True)
        self.assertEqual((ended.returncode, ended.stderr), (1, "There is no display.\n"))


if __name__ == "__main__":
    unittest.main()
