# SPDX-License-Identifier: MIT
"""What a loss of power leaves of the program's files, by its calls as strace saw them, and what becomes of an edit by
hand in the middle of a write."""

import json
import pathlib
import re
import unittest

from faults import Fault, Tracer
from nimbo_desktop import wait_until
from power_services import Logind
from program import stored
from world import SCENARIOS, World

MISSING = Logind.missing() or Tracer.missing()
CALLS = r"(?:\d+ +)?(write|fsync)\(\d+<([^>]*)>|(?:\d+ +)?(rename)\(\"([^\"]*)\", \"([^\"]*)\""


class Disk:
    """What may be on it. Data is sure to be there after an fsync of the file, a name after one of its folder."""

    def __init__(self):
        self.unsynced = set()  # files with data that may be lost
        self.perhaps = {}  # by name: how many of its versions may be there
        self.torn = []  # names that may stand for a file without its data
        self.replaced = set()

    def does(self, line):
        found = re.match(CALLS, line)
        call, file, _rename, old, new = found.groups() if found else (None,) * 5
        if call == "write":
            self.unsynced.add(file)
        elif call == "fsync":
            self.unsynced.discard(file)
            self.perhaps = {name: n for name, n in self.perhaps.items() if str(pathlib.Path(name).parent) != file}
        elif new:
            self.torn += [new] if old in self.unsynced else []
            self.perhaps[new] = self.perhaps.get(new, 1) + 1
            self.replaced.add(new)


@unittest.skipIf(MISSING, MISSING)
class PowerCutTest(unittest.TestCase):
    def setUp(self):
        self.world = World()
        self.addCleanup(self.world.close)
        self.world.begin(provider="codex")
        wait_until(lambda: len(self.world.host.items) == 2, "the program to begin")

    def store(self):
        self.world.open_tab("usage")
        wait_until(lambda: stored(self.world.settings, "lastDashboardTab") == "ai", "the setting in its file")

    def test_old_or_new_version_is_on_disk_at_every_moment(self):
        tracer = Tracer(self.world.session.folder)
        with tracer.attached(self.world.program.pid):
            self.store()
            SCENARIOS["codex"].check(self.world)
        lines = tracer.log.read_text(errors="replace").splitlines()
        [snapshot] = (self.world.session.folder / "data").glob("*/usage-snapshot.json")
        names = {str(self.world.settings), str(snapshot)}
        disk = Disk()
        for line in lines:
            disk.does(line)
        self.assertLessEqual(names, disk.replaced)
        self.assertEqual(disk.torn, [])
        self.assertEqual(disk.perhaps, {})  # what was done at last is sure to stay

        careless = Disk()
        for line in lines:
            if "fsync(" not in line:
                careless.does(line)
        self.assertLessEqual(names, {*careless.torn})

    def test_edit_by_hand_in_the_middle_of_a_write_is_kept(self):
        tracer = Tracer(self.world.session.folder, [Fault("fsync", "delay", "1")])
        with tracer.attached(self.world.program.pid):
            self.world.open_tab("usage")
            wait_until(lambda: any(file.stat().st_size for file in self.world.settings.parent.glob(".com*")), "the write")
            self.world.settings.write_text(json.dumps({**json.loads(self.world.settings.read_text()), "byHand": 1}))
            wait_until(lambda: stored(self.world.settings, "lastDashboardTab") == "ai", "the setting in its file")
        self.assertEqual(stored(self.world.settings, "byHand"), 1)


if __name__ == "__main__":
    unittest.main()
