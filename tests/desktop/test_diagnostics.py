# SPDX-License-Identifier: MIT
"""The console report against the system's own tools."""

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
        lines = report("--diagnostics").stdout.splitlines()[len(LINES) :]
        ps = subprocess.run(
            ["ps", "-eo", "pid=,rss=,comm=", "--sort=-rss"], capture_output=True, text=True, check=True
        ).stdout.splitlines()
        names = {line.split(None, 2)[0]: line.split(None, 2)[2] for line in ps}
        for line in lines:
            pid, _size, name = line.split("\t")
            if pid in names:  # the report's own process has ended meanwhile
                self.assertEqual(name[:15], names[pid][:15])
        largest_by_ps = ps[0].split(None, 2)[0]
        self.assertIn(largest_by_ps, [line.split("\t")[0] for line in lines])

    def test_used_agrees_with_free(self):
        def used_by_report():
            line = report("--diagnostics").stdout.splitlines()[1]
            return float(re.match(r"Used: ([\d.]+) GB", line)[1])

        free = subprocess.run(["free", "-b"], capture_output=True, text=True, check=True).stdout.splitlines()[1]
        total, used = (int(value) / 2**30 for value in free.split()[1:3])
        self.assertAlmostEqual(used_by_report(), used, delta=total * 0.03 + 0.05)

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
