# SPDX-License-Identifier: MIT
"""The performance probe against what the kernel says of its processes at the same moments."""

import contextlib
import os
import re
import select
import subprocess
import unittest

from nimbo_desktop import SLOW, Session, wait_until
from power_services import gnome_session
from program import BINARY, windows_process

MEMORY = r"^{}: footprint (\d+\.\d\d) MiB; RSS (\d+\.\d\d) MiB$"
LINES = [
    MEMORY.format("Idle, dashboard unopened"),
    r"^Idle CPU: (\d+\.\d{3})% of one core over (\d+\.\d)s$",
    MEMORY.format("Dashboard and process list loaded offscreen"),
    MEMORY.format("Background awake session active"),
]
TICK = os.sysconf("SC_CLK_TCK")
RECENT = 15  # looks, which are some 20 ms apart


def memory(pid):
    """(private and swapped, resident) in MiB."""
    with open(f"/proc/{pid}/status") as status:
        fields = dict(line.split(":", 1) for line in status)
    kilobytes = {name: int(fields[name].split()[0]) for name in ("RssAnon", "VmSwap", "VmRSS")}
    return (kilobytes["RssAnon"] + kilobytes["VmSwap"]) / 1024, kilobytes["VmRSS"] / 1024


def cpu_seconds(pid):
    with open(f"/proc/{pid}/stat") as stat:
        fields = stat.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / TICK


class ProfileTest(unittest.TestCase):
    def session(self, **options):
        session = Session(**options)
        self.addCleanup(session.close)
        return session

    def probe(self, session):
        child = session.start([BINARY, "--profile"], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        return child.process

    def check(self, lines, last=LINES[-1]):
        self.assertEqual(len(lines), len(LINES), lines)
        return [re.match(pattern, line) or self.fail(line) for pattern, line in zip([*LINES[:-1], last], lines)]

    def test_figures_agree_with_the_kernels_at_each_stage(self):
        session = self.session(display=True, desktop="GNOME")
        service = gnome_session(session)
        process = self.probe(session)
        lines, around, cpu, reasons = [], [], [], set()

        def look():
            windows = windows_process(process.pid)
            with contextlib.suppress(OSError, KeyError):  # either may just have ended
                ours = memory(process.pid)
                theirs = memory(windows) if windows else (0, 0)
                seen.append((ours[0] + theirs[0], ours[1] + theirs[1]))
            reasons.update(service.reasons())

        for _ in LINES:
            seen = []
            lines.append(read_line(process, look))
            cpu.append(cpu_seconds(process.pid))
            look()
            around.append(seen[-RECENT:])
        self.assertEqual(process.wait(10 * SLOW), 0)
        self.assertEqual(process.stderr.read(), "")
        matches = self.check(lines)
        for stage in (0, 2, 3):
            printed = [float(value) for value in matches[stage].groups()]
            for figure, name in enumerate(("footprint", "resident")):
                seen = [sample[figure] for sample in around[stage]]
                # A process that is busy loading may have grown from one look to the next.
                self.assertGreater(printed[figure], min(seen) - 0.2 * SLOW, name)
                self.assertLess(printed[figure], max(seen) + 0.2 * SLOW, name)
        percent, span = (float(value) for value in matches[1].groups())
        self.assertAlmostEqual(span, 6.0, delta=0.2 * SLOW)
        used = cpu[1] - cpu[0]
        self.assertAlmostEqual(percent * span / 100, used, delta=4 / TICK)
        self.assertEqual(reasons, {"Nimbo — keep computer awake while work continues"})

    def test_works_without_display_and_bus(self):
        session = self.session()
        del session.env["DBUS_SESSION_BUS_ADDRESS"]
        process = self.probe(session)
        output, errors = process.communicate(timeout=30 * SLOW)
        self.assertEqual(process.returncode, 1, errors)
        self.check(output.splitlines(), MEMORY.format("Background awake session could not be held"))
        # Windows are made in memory; only the session has nobody to ask.
        self.assertRegex(errors, r"^nimbo: no awake session could be started: .*\(error \d+\)\. Please try again\.\n$")

    def test_two_at_once_leave_the_users_settings_and_nothing_else(self):
        session = self.session(desktop="GNOME")
        service = gnome_session(session)
        path = session.settings(refreshInterval=30, awakeDuration=1800)
        before = path.read_bytes(), path.stat().st_mtime_ns
        processes = [self.probe(session), self.probe(session)]
        most = 0

        def ended():
            nonlocal most
            most = max(most, len(service.held))
            return all(process.poll() is not None for process in processes)

        wait_until(ended, "both to end", 30 * SLOW)
        self.assertEqual([process.returncode for process in processes], [0, 0])
        for process in processes:
            self.check(process.stdout.read().splitlines())
        self.assertEqual((path.read_bytes(), path.stat().st_mtime_ns), before)
        self.assertEqual([entry.name for entry in path.parent.iterdir()], [path.name])
        self.assertEqual(most, 2)
        wait_until(lambda: not service.held, "the last call to be read")


def read_line(process, look):
    """The next line; meanwhile turns the main context for the services that the test plays, and looks."""

    def ready():
        look()
        return select.select([process.stdout], [], [], 0)[0]

    wait_until(ready, "a line", 30 * SLOW)
    return process.stdout.readline().rstrip("\n")


if __name__ == "__main__":
    unittest.main()
