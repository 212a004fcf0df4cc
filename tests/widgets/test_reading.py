# SPDX-License-Identifier: MIT
"""What the widgets understand of the file, and the words they find for it."""

import json
import os
import pathlib
import runpy
import shutil
import tempfile
import time
import unittest

from widget_support import RECORDED, limit, nimbo_reading, provider, record

NOON = time.mktime((2026, 5, 12, 12, 0, 0, 0, 0, -1))


def reading(**fields):
    return nimbo_reading.decode(json.dumps(record(**fields)).encode())


class DecodingTest(unittest.TestCase):
    def test_file_as_nimbo_writes_it_is_understood_wholly(self):
        read = nimbo_reading.read(RECORDED)
        start = nimbo_reading.YEAR_2001
        self.assertEqual(read.date, start + 800000000.25)
        self.assertEqual((read.temperature, read.temperature_enabled), (54.5, True))
        codex, claude = read.providers
        self.assertEqual((codex.name, claude.name), ("Codex", "Claude"))
        self.assertEqual([window.title for window in codex.windows], ["5-hour", "Weekly"])
        self.assertEqual([window.used for window in codex.windows], [61.5, 12.0])
        self.assertEqual([window.resets for window in codex.windows], [start + 800003600, None])
        self.assertEqual(codex.fetched, start + 799999000)
        self.assertIsNone(codex.message)
        self.assertEqual(claude.message, "Couldn’t reach the provider. Check your connection and refresh.")

    def test_what_may_be_left_out_is_absent(self):
        read = reading(temperature=None)
        self.assertIsNone(read.temperature)
        self.assertEqual(read.tracked, [])
        self.assertEqual((read.providers[0].windows, read.providers[0].fetched), ((), None))

    def test_unknown_keys_do_not_matter(self):
        fields = record() | {"fan": 1200}
        self.assertEqual(nimbo_reading.decode(json.dumps(fields).encode()).temperature, 54.4)

    def test_texts_become_one_line_that_can_be_drawn(self):
        odd = provider(limit("a\nb\x00c\ud800\u202e", 1), message="x" * 300)
        read = reading(codex=odd).providers[0]
        self.assertEqual(read.windows[0].title, "a b c  ")
        self.assertEqual(read.message, "x" * 199 + "…")


class DamagedFileTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.file = pathlib.Path(folder.name) / "file"

    def state(self):
        with self.assertRaises(nimbo_reading.NoReading) as raised:
            nimbo_reading.read(self.file)
        return raised.exception.state

    def test_every_beginning_of_a_good_file_is_unreadable(self):
        whole = RECORDED.read_bytes()
        for length in range(len(whole)):
            self.file.write_bytes(whole[:length])
            self.assertEqual(self.state(), "unreadable", length)

    def test_other_shapes_are_unreadable(self):
        good = record(codex=provider(limit("5-hour", 50)))
        shapes = [[], 1, None, "text", {}, good | {"date": None}, good | {"date": True}, good | {"date": "today"}]
        shapes += [good | {"date": number} for number in (1e300, -1e300, float("nan"), float("inf"), 10**400)]
        shapes += [good | {"temperatureEnabled": 1}, good | {"temperature": "hot"}, good | {"codex": None}]
        shapes += [good | {"codex": provider(limit("5-hour", used))} for used in (-1, 101, float("nan"), "1", None)]
        shapes += [good | {"codex": provider(limit(None, 1))}, good | {"claude": {"enabled": True}}]
        shapes += [good | {"claude": {"enabled": True, "isRefreshing": False, "snapshot": []}}]
        for shape in shapes:
            self.file.write_text(json.dumps(shape))
            self.assertEqual(self.state(), "unreadable", shape)

    def test_hostile_texts_are_unreadable(self):
        for data in (b"\xff\xfe", b"[" * 100000, b'{"date":' + b"9" * 100000 + b"}", b"", b"\x00" * 10):
            self.file.write_bytes(data)
            self.assertEqual(self.state(), "unreadable", data[:20])

    def test_missing_file_and_folder_are_missing(self):
        self.assertEqual(self.state(), "missing")
        self.file = self.file / "below"
        self.assertEqual(self.state(), "missing")

    def test_pipe_and_folder_in_its_place_are_unreadable_at_once(self):
        os.mkfifo(self.file)
        self.assertEqual(self.state(), "unreadable")
        self.file = self.file.parent
        self.assertEqual(self.state(), "unreadable")


class TextTest(unittest.TestCase):
    def test_glance_names_the_fullest_limit_and_the_temperature(self):
        read = reading(
            date=NOON,
            codex=provider(limit("5-hour", 40), limit("Weekly", 76.6)),
            claude=provider(limit("5-hour", 12)),
        )
        self.assertEqual(nimbo_reading.glance(read, NOON), nimbo_reading.Glance("AI 77% · 54°", "high", 77))

    def test_provider_that_is_switched_off_does_not_count(self):
        read = reading(date=NOON, claude=provider(limit("5-hour", 99), enabled=False))
        self.assertEqual(nimbo_reading.glance(read, NOON).text, "54°")

    def test_nothing_switched_on_is_off(self):
        glance = nimbo_reading.glance(reading(date=NOON, watched=False), NOON)
        self.assertEqual((glance.text, glance.state), ("Nimbo", "off"))

    def test_provider_without_a_reading_has_a_dash(self):
        glance = nimbo_reading.glance(reading(date=NOON, watched=False, codex=provider()), NOON)
        self.assertEqual((glance.text, glance.state), ("AI –", "normal"))

    def test_state_follows_the_fullest_limit(self):
        for used, state in ((74.4, "normal"), (75, "high"), (89.4, "high"), (90, "full"), (100, "full")):
            read = reading(date=NOON, codex=provider(limit("5-hour", used)))
            self.assertEqual(nimbo_reading.glance(read, NOON).state, state, used)

    def test_limit_that_is_not_quite_reached_is_not_rounded_up(self):
        self.assertEqual([nimbo_reading.percent_text(used) for used in (0, 98.6, 99.9, 100)], [0, 99, 99, 100])

    def test_reading_is_old_after_fifteen_minutes(self):
        read = reading(date=NOON, codex=provider(limit("5-hour", 95)))
        self.assertEqual(nimbo_reading.glance(read, NOON + 899).state, "full")
        self.assertEqual(nimbo_reading.glance(read, NOON + 900).state, "old")
        self.assertEqual(nimbo_reading.age_text(read, NOON + 899), "Read 12:00")
        self.assertEqual(nimbo_reading.age_text(read, NOON + 900), "Old: last reading Tue 12 May, 12:00")

    def test_other_days_are_named(self):
        window = nimbo_reading.Window("Weekly", 35, NOON + 86400)
        self.assertEqual(nimbo_reading.window_text(window, NOON), "Weekly 35% used · resets Wed 13 May, 12:00")

    def test_old_reading_names_every_day(self):
        read = reading(date=NOON, codex=provider(limit("5-hour", 35, NOON + 3600)))
        for now, text in ((NOON + 1, "13:00"), (NOON + 900, "Tue 12 May, 13:00")):
            texts = nimbo_reading.provider_texts(read.providers[0], read.today(now))
            self.assertEqual(texts, [f"5-hour 35% used · resets {text}"])

    def test_figures_that_could_not_be_renewed_say_since_when(self):
        read = reading(date=NOON, codex=provider(limit("5-hour", 1), fetched=NOON - 3600, message="Sign-in expired."))
        texts = nimbo_reading.provider_texts(read.providers[0], NOON)
        self.assertEqual(texts, ["5-hour 1% used", "Last known, 11:00", "Sign-in expired."])


class FileTest(unittest.TestCase):
    def setUp(self):
        before = os.environ.get("XDG_DATA_HOME")
        restore = os.environ.pop if before is None else os.environ.__setitem__
        self.addCleanup(restore, "XDG_DATA_HOME", before)

    def test_file_is_in_the_group_of_the_data_folder(self):
        os.environ["XDG_DATA_HOME"] = "/data"
        self.assertEqual(
            str(nimbo_reading.default_file()), "/data/K3QX9TZ4WB.com.quellwerk.Nimbo/usage-snapshot.json"
        )

    def test_installed_widgets_follow_the_group_of_their_installation(self):
        os.environ["XDG_DATA_HOME"] = "/data"
        with tempfile.TemporaryDirectory() as share:
            widgets = pathlib.Path(share) / "doc" / "nimbo" / "examples" / "widgets"
            widgets.mkdir(parents=True)
            (pathlib.Path(share) / "nimbo").mkdir()
            copy = shutil.copy(nimbo_reading.__file__, widgets)
            for info, group in (('{"NimboAppGroup": "Other"}', "Other"), ("{}", nimbo_reading.GROUP)):
                (pathlib.Path(share) / "nimbo" / "Info.json").write_text(info)
                installed = runpy.run_path(copy)
                self.assertEqual(installed["default_file"]().parent, pathlib.Path("/data") / group)

    def test_relative_data_folder_does_not_count(self):
        os.environ["XDG_DATA_HOME"] = "data"
        self.assertEqual(nimbo_reading.default_file().parts[-4:-2], (".local", "share"))


if __name__ == "__main__":
    unittest.main()
