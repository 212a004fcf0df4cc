# SPDX-License-Identifier: MIT
"""The figure "Used" beside free's and beside MemTotal − MemAvailable, in the same second.

Usage: used_beside_free.py BINARY
"""

import re
import subprocess
import sys


def main(binary):
    report = subprocess.run([binary, "--diagnostics"], capture_output=True, text=True, check=True).stdout
    free = subprocess.run(["free", "-b"], capture_output=True, text=True, check=True).stdout.splitlines()[1].split()
    with open("/proc/meminfo") as file:
        fields = {line.split(":")[0]: int(line.split()[1]) * 1024 for line in file}
    total = fields["MemTotal"]
    ours = float(re.search(r"Used: ([\d.]+) GB", report)[1]) * 2**30  # to a tenth of a gigabyte
    for name, value in (("free", int(free[2])), ("MemTotal − MemAvailable", total - fields["MemAvailable"])):
        difference = abs(ours - value) / 2**30
        print(f"used: {ours / 2**30:.1f} GB, {name}: {value / 2**30:.2f} GB, {difference:.2f} GB apart (limit 0.1)")


if __name__ == "__main__":
    main(*sys.argv[1:])
