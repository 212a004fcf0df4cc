# SPDX-License-Identifier: MIT
"""Some of the faults that scripts/soak tries, from all over each scenario."""

import unittest

from faults import Tracer
from power_services import Logind
from runs import Runs, parsed
from world import SAID

# One fault in so many. What takes seconds is left to scripts/soak: a turn of the readings, a read of a
# provider, and the start on a bus that is silent.
DISTANCE = {"start": 199, "awake": 99, "store": 399, "quit": 199, "bus-awake": 13}
# Each of these was a fault of the program.
FOUND = [
    "claude clone3:EAGAIN:1",
    "codex epoll_ctl:ENOSPC:1",
    "codex mmap:ENOMEM:101",
    "start connect:ECONNREFUSED:6",
    "start epoll_create1:EMFILE:1",
    "start recvmsg:ECONNRESET:41",
]
EVERYTHING = 9  # a seed by which all parts of the world are gone at once
MISSING = Logind.missing() or Tracer.missing()


@unittest.skipIf(MISSING, MISSING)
class FaultTest(unittest.TestCase):
    def setUp(self):
        self.problems = []
        self.runs = Runs(self.problems.append)
        self.addCleanup(self.runs.close)

    def tearDown(self):
        self.assertEqual(self.problems, [])
        self.assertGreater(sum(self.runs.injected.values()) + self.runs.rounds, 0)

    def test_what_was_found_once_is_mended(self):
        for words in FOUND:
            name, faults = parsed(words)
            self.runs.case(name, *faults)

    def test_what_is_missing_is_said(self):
        for name, faults in map(parsed, SAID):
            self.runs.case(name, *faults)

    def test_reads_and_writes_may_do_only_a_part(self):
        self.runs.in_parts(["start", "store", "codex", "claude"])

    def test_parts_of_the_world_may_vanish(self):
        self.runs.vanish(1, seed=EVERYTHING)


def sweep(name):
    return lambda test: test.runs.sweep([name], DISTANCE[name])


for scenario in DISTANCE:
    setattr(FaultTest, f"test_{scenario.replace('-', '_')}_bears_faults", sweep(scenario))


if __name__ == "__main__":
    unittest.main()
