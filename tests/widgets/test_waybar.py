# SPDX-License-Identifier: MIT
"""The module for waybar as waybar runs it: a program whose lines are read as they come."""

import json
import os
import subprocess
import time
import unittest

from widget_support import PYTHON, WIDGETS, Publisher, limit, provider, record, switches

from nimbo_desktop import SLOW, Session, turn_for, wait_until

SCRIPT = WIDGETS / "waybar/nimbo-waybar"


class WaybarTest(unittest.TestCase):
    def setUp(self):
        self.session = Session()
        self.addCleanup(self.session.close)
        self.publisher = Publisher(self.session)
        self.output = b""

    def start(self, *arguments):
        self.module = self.session.start(
            [PYTHON, "-B", SCRIPT, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE
        )
        os.set_blocking(self.module.process.stdout.fileno(), False)

    def lines(self):
        self.output += self.module.process.stdout.read() or b""
        return [json.loads(line) for line in self.output.splitlines(keepends=True) if line.endswith(b"\n")]

    def line(self, number, bound=10 * SLOW):
        wait_until(lambda: len(self.lines()) >= number, f"line {number}", bound)
        return self.lines()[number - 1]

    def test_first_line_shows_the_file_as_it_is(self):
        self.publisher.put(record(codex=provider(limit("5-hour", 77))))
        self.start()
        line = self.line(1)
        self.assertEqual((line["text"], line["class"], line["percentage"]), ("AI 77% · 54°", "high", 77))
        self.assertEqual(line["tooltip"].splitlines()[:2], ["<b>Codex</b>", "5-hour 77% used"])

    def test_new_file_is_a_new_line_within_a_second_of_the_news(self):
        self.publisher.put(record(codex=provider(limit("5-hour", 10))))
        self.start()
        self.line(1)
        self.publisher.publish(record(codex=provider(limit("5-hour", 95))))
        line = self.line(2, bound=1 * SLOW)
        self.assertEqual((line["text"], line["class"]), ("AI 95% · 54°", "full"))

    def test_both_news_of_one_write_are_one_line(self):
        self.publisher.put(record())
        self.start()
        self.line(1)
        self.publisher.publish(record(temperature=60))
        self.line(2)
        self.publisher.publish(record(temperature=70))
        self.line(3)
        turn_for(0.3)
        self.assertEqual([line["text"] for line in self.lines()], ["54°", "60°", "70°"])

    def test_file_that_is_old_from_the_start_says_so(self):
        self.publisher.put(record(date=time.time() - 3600, codex=provider(limit("5-hour", 95))))
        self.start()
        line = self.line(1)
        self.assertEqual((line["text"], line["class"]), ("AI 95% · 54°", "old"))
        self.assertIn("Old: last reading ", line["tooltip"])

    def test_reading_turns_old_by_itself(self):
        self.publisher.put(record(date=time.time() - 900 + 2 * SLOW))
        self.start()
        self.assertEqual(self.line(1)["class"], "normal")
        self.assertEqual(self.line(2)["class"], "old")
        self.publisher.publish(record())
        self.assertEqual(self.line(3)["class"], "normal")

    def test_missing_file_is_calm_until_there_is_one(self):
        self.start()
        line = self.line(1)
        self.assertEqual((line["text"], line["class"]), ("Nimbo", "missing"))
        self.publisher.publish(record())
        self.assertEqual(self.line(2)["text"], "54°")

    def test_damaged_file_is_calm_until_the_next(self):
        self.publisher.put(record())
        self.start()
        self.line(1)
        self.publisher.publish('{"date": 8000')
        line = self.line(2)
        self.assertEqual((line["text"], line["class"]), ("Nimbo", "unreadable"))
        self.publisher.publish(record())
        self.assertEqual(self.line(3)["text"], "54°")

    def test_texts_of_others_are_no_markup(self):
        odd = provider(limit("<b>&\n\u2028", 1), message="a < b & c")
        self.publisher.put(record(codex=odd))
        self.start()
        tooltip = self.line(1)["tooltip"].splitlines()
        self.assertEqual(tooltip[1], "&lt;b&gt;&amp;   1% used")
        self.assertEqual(tooltip[3], "a &lt; b &amp; c")

    def test_nothing_wakes_it_while_there_is_no_news(self):
        self.publisher.put(record())
        self.start()
        self.line(1)
        self.publisher.publish(record(temperature=60))
        self.line(2)
        turn_for(0.3)
        before = switches(self.module.pid)
        turn_for(3)
        self.assertEqual(switches(self.module.pid) - before, 0)
        self.assertEqual(len(self.lines()), 2)

    def test_it_ends_with_waybar(self):
        self.start()
        self.line(1)
        self.module.process.stdout.close()
        wait_until(lambda: not self.module.running, "its end")
        self.assertEqual((self.module.process.returncode, self.module.process.stderr.read()), (0, b""))

    def test_without_a_session_bus_it_shows_the_file(self):
        self.publisher.put(record())
        self.session.env["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.session.folder}/nobody"
        self.start()
        self.assertEqual(self.line(1)["text"], "54°")
        self.assertTrue(self.module.running)

    def test_another_file_can_be_named(self):
        other = self.session.folder / "other"
        other.write_text(json.dumps(record(temperature=33)))
        self.start("--file", other)
        self.assertEqual(self.line(1)["text"], "33°")


if __name__ == "__main__":
    unittest.main()
