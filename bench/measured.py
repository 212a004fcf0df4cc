# SPDX-License-Identifier: MIT
"""A program that is measured: it is started, left alone until it is at rest, and read from outside."""

import collections
import dataclasses
import pathlib
import re
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "desktop"))

from gi.repository import Gio, GLib  # noqa: E402

from nimbo_desktop import ITEM, TrayHost, turn_for  # noqa: E402
from program import children  # noqa: E402

SETTLE = 12  # seconds that a program gets to come to rest


def cpu_clock(pid):
    """Seconds of processor time, of ended threads, too; see clock_getcpuclockid(3)."""
    return time.clock_gettime((~pid << 3) | 2)


def family(pid):
    """A process and all that it has started."""
    return [pid, *(each for child in children(pid) for each in family(child))]


class Reading:
    """What processes have and have used by now: MiB, seconds, counts."""

    def __init__(self, *pids):
        self.private = self.resident = self.proportional = self.cpu = 0.0
        self.wakeups = self.descriptors = 0
        for pid in pids:
            proc = pathlib.Path(f"/proc/{pid}")
            sizes = dict(re.findall(r"^(\w+):\s+(\d+) kB$", (proc / "smaps_rollup").read_text(), re.M))
            self.private += (int(sizes["Anonymous"]) + int(sizes["Swap"])) / 1024
            self.resident += int(sizes["Rss"]) / 1024
            self.proportional += int(sizes["Pss"]) / 1024
            self.cpu += cpu_clock(pid)
            for task in (proc / "task").iterdir():
                self.wakeups += int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", (task / "status").read_text(), re.M)[1])
            self.descriptors += len(list((proc / "fd").iterdir()))


def where(field, *pids, most=8):
    """In words, in which mappings such memory of processes is, largest first; by the name in /proc/PID/smaps."""
    kilobytes = collections.Counter()
    for pid in pids:
        for line in pathlib.Path(f"/proc/{pid}/smaps").read_text().splitlines():
            words = line.split()
            if not words[0].endswith(":"):
                name = pathlib.Path(words[5]).name if len(words) > 5 else "unnamed"
            elif words[0] == f"{field}:" and words[1] != "0":
                kilobytes[name] += int(words[1])
    named = kilobytes.most_common(most)
    rest = sum(kilobytes.values()) - sum(size for _name, size in named)
    return "in " + "; ".join([f"{name} {size} KiB" for name, size in named] + ([f"the rest {rest} KiB"] if rest else []))


@dataclasses.dataclass
class Cost:
    private: float  # MiB that nobody else has: written by the program itself
    resident: float  # MiB
    proportional: float  # MiB, pages of several programs in equal parts
    cpu: float  # percent of one processor
    wakeups: float  # in a minute
    reasons: dict  # where the memory is


def costs(pids, seconds, settle=SETTLE):
    """What programs, each with all that it has started, cost at rest: all in the same time."""
    turn_for(settle)
    before = {name: Reading(*family(pid)) for name, pid in pids.items()}
    turn_for(seconds)
    found = {}
    for name, pid in pids.items():
        now, then = Reading(*family(pid)), before[name]
        cpu = (now.cpu - then.cpu) / seconds * 100
        reasons = {each: where(field, *family(pid)) for each, field in (("private", "Anonymous"), ("resident", "Rss"))}
        wakeups = (now.wakeups - then.wakeups) / seconds * 60
        found[name] = Cost(now.private, now.resident, now.proportional, cpu, wakeups, reasons)
    return found


class Panel(TrayHost):
    """A host that, as panels do, reads an item again that has told of a change."""

    def start(self):
        super().start()
        self.asked = set()
        self.connection.signal_subscribe(None, ITEM, None, None, None, Gio.DBusSignalFlags.NONE, self._changed)

    def _changed(self, connection, sender, *_signal):
        if sender in self.asked:
            return  # once for all that it has told at the same time
        self.asked.add(sender)
        interface = "org.freedesktop.DBus.Properties"
        read = (sender, "/StatusNotifierItem", interface, "GetAll", GLib.Variant("(s)", (ITEM,)), None)
        connection.call(*read, Gio.DBusCallFlags.NONE, -1, None, lambda *_answer: self.asked.discard(sender))
