# SPDX-License-Identifier: MIT
"""The console report against the system's own tools."""

import mmap
import os
import re
import subprocess
import unittest

from program import BINARY

LINES = [
    r"Total: \d+\.\d GB",
    r"Used: \d+\.\d GB \(\d+%\)",
    r"Available: \d+\.\d GB",
    r"App: \d+\.\d GB; wired: \d+\.\d GB; compressed: \d+\.\d GB",
    r"Pressure: (Normal|Elevated|High|Unavailable); swap: (\d+\.\d GB|unavailable)",
    r"CPU temperature: (\d+\.\d°C \(hottest available sensor\)|unavailable)",
    r"Process scan: \d+ readable, \d+ inaccessible/exited, \d+\.\d ms",
]


def report(*arguments, env=None):
    return subprocess.run([BINARY, *arguments], capture_output=True, text=True, timeout=60, env=env)


def processes():
    """What ps says of every process: its name and its resident KiB, by process id."""
    listing = subprocess.run(["ps", "-eo", "pid=,rss=,comm="], capture_output=True, text=True, check=True).stdout
    fields = (line.split(None, 2) for line in listing.splitlines())
    return {pid: (name, int(resident)) for pid, resident, name in fields}


def printable(name):
    """With one mark for what cannot be shown, of which each tool has its own."""
    return re.sub(r"[^ -~]+|\?+", "?", name)


def used_by_free():
    line = subprocess.run(["free", "-b"], capture_output=True, text=True, check=True).stdout.splitlines()[1]
    return int(line.split()[2]) / 2**30


class DiagnosticsTest(unittest.TestCase):
    def test_report_has_exactly_its_lines(self):
        run = report("--diagnostics")
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        lines = run.stdout.splitlines()
        for line, pattern in zip(lines, LINES):
            self.assertRegex(line, f"^{pattern}$")
        readable = int(re.match(r"Process scan: (\d+)", lines[6])[1])
        processes = lines[len(LINES) :]
        self.assertEqual(len(processes), min(10, readable))
        for line in processes:
            self.assertRegex(line, r"^\d+\t(\d+\.\d GB|\d+ MB)\t.+$")

    def test_largest_processes_agree_with_ps(self):
        memory = bytearray(300 << 20)  # makes this process one that must be listed
        memory[::4096] = b"x" * len(memory[::4096])
        before = processes()
        listed = {}
        for line in report("--diagnostics").stdout.splitlines()[len(LINES) :]:
            pid, _size, name = line.split("\t")
            listed[pid] = name
        after = processes()
        # A process that starts, ends or runs another program meanwhile may be shown either way.
        lasting = {pid for pid in before if pid in after and before[pid][0] == after[pid][0]}
        self.assertIn(str(os.getpid()), lasting & listed.keys())
        for pid in lasting & listed.keys():
            name = before[pid][0]
            if not name.startswith("memfd:"):  # of the memory that the program was started from
                self.assertEqual(printable(listed[pid][:15]), printable(name[:15]))
        self.assertIn(max(lasting, key=lambda pid: min(before[pid][1], after[pid][1])), listed)

    def test_shared_memory_is_the_processs_too(self):
        memory = mmap.mmap(-1, 300 << 20)
        memory[::4096] = b"x" * len(memory[::4096])
        sizes = re.search(rf"^{os.getpid()}\t(\d+) MB\t", report("--diagnostics").stdout, re.MULTILINE)
        self.assertGreaterEqual(int(sizes[1]), 300)

    def test_used_agrees_with_free(self):
        before = used_by_free()
        line = report("--diagnostics").stdout.splitlines()[1]
        after = used_by_free()
        used = float(re.match(r"Used: ([\d.]+) GB", line)[1])
        tolerance = 0.1 + 0.05  # the report is rounded
        self.assertGreater(used, min(before, after) - tolerance)
        self.assertLess(used, max(before, after) + tolerance)

    def test_needs_neither_bus_nor_display(self):
        run = report("--diagnostics", env={"PATH": "/usr/bin:/bin"})
        self.assertEqual((run.returncode, run.stderr), (0, ""))

    def test_claude_desktop_check_comes_before_the_report(self):
        run = report("--diagnostics", "--claude-desktop-check")
        self.assertEqual((run.returncode, run.stdout), (1, ""))
        self.assertEqual(run.stderr, "Desktop fallback: open Claude → Settings → Usage, then refresh.\n")

    def test_report_comes_before_the_profile(self):
        self.assertRegex(report("--profile", "--diagnostics").stdout, "^Total: ")

    def test_unknown_arguments_are_ignored(self):
        self.assertEqual(report("--verbose", "--diagnostics", "--diagnostics=no").returncode, 0)


if __name__ == "__main__":
    unittest.main()
