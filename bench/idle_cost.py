# SPDX-License-Identifier: MIT
"""What the program costs while nobody looks at it, read from outside.

Usage: idle_cost.py BINARY [SECONDS]
"""

import pathlib
import re
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tests" / "desktop"))

import codex_service  # noqa: E402
import program  # noqa: E402
from nimbo_desktop import Session, TrayHost, turn_for, wait_until  # noqa: E402
from power_services import gnome_session  # noqa: E402

LIMITS = {"RssAnon": 1.0, "VmRSS": 8.0, "CPU": 0.02}
WITH_HTTPS = {"RssAnon": 3.0, "CPU": 0.02}


class Reading:
    def __init__(self, pid):
        proc = pathlib.Path("/proc") / str(pid)
        status = (proc / "status").read_text()
        self.memory = {
            name: int(re.search(rf"^{name}:\s+(\d+) kB", status, re.M)[1]) / 1024 for name in ("RssAnon", "VmRSS")
        }
        self.threads = int(re.search(r"^Threads:\s+(\d+)", status, re.M)[1])
        self.cpu = sum(int((task / "schedstat").read_text().split()[0]) for task in (proc / "task").iterdir()) / 1e9
        self.wakeups = int(re.search(r"^voluntary_ctxt_switches:\s+(\d+)", status, re.M)[1])


def verdict(value, limit):
    return f"(limit {limit}) " + ("ok" if value <= limit else "OVER")


def measure(nimbo, seconds, what, limits=LIMITS):
    before = Reading(nimbo.pid)
    turn_for(seconds)
    after = Reading(nimbo.pid)
    for name, value in after.memory.items():
        told = verdict(value, limits[name]) if name in limits else ""
        print(f"{what} {name}: {value:.2f} MiB {told}".rstrip())
    cpu = (after.cpu - before.cpu) / seconds * 100
    print(f"{what} CPU: {cpu:.4f} % of one core over {seconds:.0f} s {verdict(cpu, limits['CPU'])}")
    print(f"{what} wake-ups: {after.wakeups - before.wakeups} in {seconds:.0f} s at one tick in 5 s")
    print(f"{what} threads: {after.threads}")


def measure_bare(session, seconds):
    service = gnome_session(session)
    host = TrayHost(session)
    nimbo = program.Program(session)
    for item in host.wait_for_items(2):
        item.properties()
    turn_for(12)
    measure(nimbo, seconds, "idle")
    host.items[0].secondary_activate(0, 0)
    wait_until(lambda: service.held, "the session")
    turn_for(2)
    measure(nimbo, seconds, "keeping awake")
    nimbo.terminate()


def measure_with_codex(session, seconds):
    codex_service.sign_in(session, session.folder / "codex")
    service = codex_service.CodexService(session, codex_service.windows(61, 23))
    session.settings(usage__codex=True)
    host = TrayHost(session)
    nimbo = program.Program(session)
    item = host.item("nimbo-ai")
    wait_until(lambda: "77% remaining" in item.tooltip, "the allowances", 40)
    turn_for(12)
    measure(nimbo, seconds, "with Codex on", WITH_HTTPS)
    parts = (["awake", "status"], ["usage"], ["memory"])
    watchers = [session.start([program.BINARY, *part, "--watch"], stdout=subprocess.DEVNULL) for part in parts]
    turn_for(2)
    measure(nimbo, seconds, "watched by three commands", WITH_HTTPS)
    measure(watchers[1], seconds, "a watching command")
    nimbo.terminate()
    service.close()


def main(binary, seconds=60.0):
    program.BINARY = binary
    for measurement in (measure_bare, measure_with_codex):
        session = Session(desktop="GNOME")
        try:
            measurement(session, float(seconds))
        finally:
            session.close()


if __name__ == "__main__":
    main(*sys.argv[1:])
