# SPDX-License-Identifier: MIT
"""The settings file as a user may leave it."""

import json
import stat
import unittest

from nimbo_desktop import wait_until
from program import DesktopTest, stored


class SettingsFileTest(DesktopTest):
    display = True

    def config(self, name="com.quellwerk.Nimbo.json"):
        return self.session.folder / "config" / name

    def store_a_setting(self):
        """Opening the dashboard stores the shown tab."""
        self.host.item("nimbo-memory").activate(1300, 10)
        self.program.wait_for_dashboard()

    def test_corrupt_file_is_set_aside_and_never_lost(self):
        self.config().write_text('{"refreshInterval": 2, oops')
        self.start()
        self.host.wait_for_items(2)
        self.store_a_setting()
        wait_until(lambda: stored(self.config(), "lastDashboardTab") == "memory", "the stored tab")
        aside = [path for path in self.config().parent.iterdir() if ".unreadable-" in path.name]
        self.assertEqual([path.read_text() for path in aside], ['{"refreshInterval": 2, oops'])

    def test_file_is_private_and_keeps_unknown_keys(self):
        self.config().write_text('{"somebodyElses": [1, 2]}')
        self.start()
        self.host.wait_for_items(2)
        self.store_a_setting()
        wait_until(lambda: stored(self.config(), "lastDashboardTab"), "the stored tab")
        self.assertEqual(json.loads(self.config().read_text())["somebodyElses"], [1, 2])
        self.assertEqual(stat.S_IMODE(self.config().stat().st_mode), 0o600)

    def test_previous_identity_is_migrated_once(self):
        self.config("com.quellwerk.Velarin.json").write_text('{"compactMenuBar": true, "refreshInterval": 10}')
        self.start()
        self.host.wait_for_items(1)
        self.assertEqual(self.host.items[0].identifier, "nimbo")
        wait_until(lambda: stored(self.config(), "didMigrateNimboIdentity"), "the note of the migration")
        self.assertEqual(stored(self.config(), "refreshInterval"), 10)
        self.assertEqual(
            json.loads(self.config("com.quellwerk.Velarin.json").read_text()),
            {"compactMenuBar": True, "refreshInterval": 10},
        )

    def test_nonsense_values_read_as_their_defaults(self):
        self.session.settings(refreshInterval=3, menuMemory="yes please", tabOrder=7, showChart={})
        self.start()
        self.host.wait_for_items(2)
        self.assertRegex(self.host.item("nimbo-memory").tooltip, "^Memory: ")

    def test_unwritable_folder_does_not_stop_the_program(self):
        self.config().mkdir()
        self.start()
        self.host.wait_for_items(2)
        self.store_a_setting()
        self.assertTrue(self.config().is_dir())


if __name__ == "__main__":
    unittest.main()
