# SPDX-License-Identifier: MIT
"""The figures, one function for each occasion. A function gets the build's folder and yields rows."""

import contextlib
import dataclasses
import fcntl
import json
import os
import pathlib
import signal
import statistics
import struct
import subprocess
import tempfile
import termios

from gi.repository import GLib

import codex_service
import measured
import peers
import program
import sway
from measured import Panel, Reading, costs, cpu_clock, family
from nimbo_desktop import Session, TrayHost, turn_for, wait_until
from power_services import gnome_session
from program import Program

QUIET = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
COUNTED = 30  # seconds in which ticks are counted
FAST = 2  # seconds between ticks where only their number counts
SLEEPERS = 2000

# Found by profiles; told with goals that are not reached.
DRAWN = """a panel that reads an item again gets its picture in seven sizes, which are drawn for it each time. Without that,
  see the next row."""
TICKED = """a tick reads four files, tells each change of an item by two or three signals and sets its timer; two fifths
  of that is the kernel's. i3status reads two files and writes a line."""
SIGNALS = """five are the items' texts and pictures, made anew each time. The rest come with a change and are the bus library's, but for the
  text that is sent: a change is told by `NewToolTip` and `PropertiesChanged`, often by `NewIcon`, and it makes each from the heap."""
SCANNED = """the scan of the processes, on a thread of low priority, runs beside the window's opening until then."""
LISTED = """most is the kernel's on the thread that scans: one file of each process, which stays open, and page by page the exact
  memory, which `top` does not show, of the largest that share some; of all of them whenever a process is new."""
TOOLKIT = """. Of the heap 1.8 MB are in use by a profile, nearly all of it by the libraries of the toolkit, fonts first."""
GROWN = """it is where the heap has room, not what is in it. Of the program 478 KB were in use after 25 rounds and 474 KB after 100, by a
  heap profile; its private memory was 2268 KiB after 25 rounds, 2440 after 150, 2452 after 225 and 2480 after 275. The windows'
  process grew by 80 to 92 KiB in runs of 100 rounds and by 40 KiB in two of 300, so not with their number. In 2000 rounds
  after 500 the program shrank by 64 KiB and the windows' process grew by 20."""


@dataclasses.dataclass
class Row:
    what: str
    value: float
    unit: str = ""
    goal: float | None = None
    beside: tuple | None = None  # name and value of what it stands beside; the goal is then of the ratio
    reason: str = ""  # why the goal is not reached

    @property
    def ratio(self):
        return self.value / self.beside[1] if self.beside else None

    @property
    def verdict(self):
        if self.goal is None:
            return ""
        return "ok" if (self.value if self.ratio is None else self.ratio) <= self.goal else "OVER"


@contextlib.contextmanager
def session_of(build, **options):
    program.BINARY = build / "bin" / "nimbo"
    session = Session(**options)
    try:
        yield session
    finally:
        session.close()


def started(session, host=Panel, **options):
    """The program with its items in a panel, whose pictures have been drawn."""
    host = host(session)
    nimbo = Program(session, **options)
    for item in host.wait_for_items(2, 60):
        item.properties()
    return nimbo, host


def refresh(session):
    name = "com.quellwerk.Nimbo"
    session.call(name, "/com/quellwerk/Nimbo", f"{name}.Usage1", "Refresh")


def idle(build, seconds, beside=peers.PEERS):
    """Everything that is at rest, at the same time."""
    with contextlib.ExitStack() as stack:
        pids, wayland = {}, None
        seen = stack.enter_context(session_of(build, display=True))
        TrayHost(seen)
        for peer in beside:
            if peer.wayland and not wayland:
                wayland = stack.enter_context(session_of(build))
                sway.prepare(wayland.env)
                sway.Sway(wayland, [], (1280, 800), "#888888")
            pids[peer.name] = peers.start(wayland if peer.wayland else seen, peer, **QUIET).pid
        pids["Nimbo"] = started(stack.enter_context(session_of(build)))[0].pid
        pids["Nimbo, no panel reads"] = started(stack.enter_context(session_of(build)), TrayHost)[0].pid

        both = stack.enter_context(session_of(build))
        both.settings(monitorCPU=True)
        pids["Nimbo, with CPU on"] = started(both)[0].pid

        awake = stack.enter_context(session_of(build, desktop="GNOME"))
        service = gnome_session(awake)
        nimbo, host = started(awake)
        host.items[0].secondary_activate(0, 0)
        wait_until(lambda: service.held, "the session")
        pids["Nimbo, keeping awake"] = nimbo.pid

        signed_in = stack.enter_context(session_of(build))
        codex_service.sign_in(signed_in, signed_in.folder / "codex")
        codex = codex_service.CodexService(signed_in, codex_service.windows(61, 23))
        stack.callback(codex.close)
        signed_in.settings(usage__codex=True)
        nimbo, host = started(signed_in)
        for count in range(1, 11):
            wait_until(lambda count=count: len(codex.requests) >= count, "the allowances", 40)
            turn_for(0.5)
            refresh(signed_in)
        pids["Nimbo, with Codex on"] = nimbo.pid
        watcher = signed_in.start([program.BINARY, "memory", "--watch"], **QUIET)
        pids["nimbo memory --watch"] = watcher.pid
        return costs(pids, seconds)


def idle_rows(found):
    peer = found["i3status"]
    goals = (("private", "MiB", 0.6), ("resident", "MiB", 1), ("proportional", "MiB", None), ("cpu", "%", 1))
    for what, name, busy in (("at rest", "Nimbo", DRAWN), ("at rest, no panel reads", "Nimbo, no panel reads", TICKED)):
        cost = found[name]
        for each, unit, goal in goals:
            title = "processor" if each == "cpu" else each
            beside = ("i3status", getattr(peer, each))
            yield Row(f"{what}, {title}", getattr(cost, each), unit, goal, beside, cost.reasons.get(each, busy))
    codex = found["Nimbo, with Codex on"]
    what = "with Codex on, after ten refreshes, private"
    yield Row(what, codex.private, "MiB", 1.5, reason=codex.reasons["private"])


def counted(build, seconds):
    """What does not depend on time: a tick's calls, allocations and instructions, and those of a start."""
    with contextlib.ExitStack() as stack:
        folder = pathlib.Path(stack.enter_context(tempfile.TemporaryDirectory()))

        def run(under, host=TrayHost, **variables):
            session = stack.enter_context(session_of(build))
            session.settings(refreshInterval=FAST)
            session.env.update(variables)
            return started(session, host, under=under)

        traces = {"a tick, system calls": TrayHost, "a tick and a panel that reads the item again, system calls": Panel}
        for name, host in traces.items():
            run(["strace", "-D", "-f", "-y", "-o", folder / name], host)
        heaps = {"a tick, allocations": TrayHost, "a tick and a panel that reads the item again, allocations": Panel}
        for name, host in heaps.items():
            (folder / name).write_bytes(bytes(8))
            preload = str(measured.ROOT / "build/release/bench/count_allocations.so")
            run([], host, LD_PRELOAD=preload, NIMBO_ALLOCATIONS=str(folder / name))
        counter = ["valgrind", "-q", "--tool=callgrind", f"--callgrind-out-file={folder}/callgrind"]
        nimbo, _host = run(counter)

        def monitor(word):
            subprocess.run(["vgdb", f"--pid={nimbo.pid}", word], check=True, **QUIET)

        def instructions(number):
            monitor("dump")
            text = wait_until(lambda: total(folder / f"callgrind.{number}"), "the count")
            return int(text) / 1e6

        start = instructions(1)
        turn_for(10.5 * FAST)
        monitor("zero")
        traced = {name: (folder / name).read_text() for name in traces}
        allocated = {name: struct.unpack("Q", (folder / name).read_bytes())[0] for name in heaps}
        turn_for(seconds)
        for name in traces:
            calls = [line for line in (folder / name).read_text()[len(traced[name]):].splitlines() if "resumed>" not in line]
            ticks = sum("/proc/meminfo>" in line for line in calls)
            goal = 12 if traces[name] is TrayHost else None
            yield Row(name, len(calls) / ticks, "", goal)
        ticks = seconds / FAST
        for name in heaps:
            count = struct.unpack("Q", (folder / name).read_bytes())[0] - allocated[name]
            goal = 0 if heaps[name] is TrayHost else None
            yield Row(name, count / ticks, "", goal, reason=SIGNALS)
        yield Row("a tick, instructions in the program", instructions(2) / ticks, "million")
        yield Row("exec to all items registered, instructions in the program", start, "million")


def total(path):
    """Of a dump that is written whole, or nothing."""
    lines = path.read_text().splitlines() if path.exists() else []
    return next((line.split()[1] for line in lines if line.startswith("totals:")), None)


def start(build, times=20):
    spent = []
    with session_of(build) as session:
        host = TrayHost(session)
        for _ in range(times):
            nimbo = Program(session)
            host.wait_for_items(2)
            spent.append(cpu_clock(nimbo.pid) * 1000)
            nimbo.terminate()
            wait_until(lambda: not host.items, "the items to go")
    yield Row("exec to all items registered, CPU", statistics.median(spent), "ms", 15)


class Opener:
    """Clicks an item and hears of windows as the X server tells it."""

    def __init__(self, session, nimbo, item):
        self.nimbo, self.item = nimbo, item
        listener = session.start(["xev", "-root", "-event", "substructure"], stdout=subprocess.PIPE)
        self.word, self.heard, self.at_word = None, b"", None
        watch(os.dup(listener.process.stdout.fileno()), self._news)
        turn_for(1)  # it says nothing when it begins to listen

    def _spent(self):
        return sum(map(cpu_clock, family(self.nimbo.pid))) * 1000

    def _news(self, text):
        self.heard += text
        if self.word and self.word in self.heard and self.at_word is None:
            self.at_word = self._spent()

    def click(self, word):
        """CPU in milliseconds until the first of such events."""
        self.word, self.heard, self.at_word = word, b"", None
        before = self._spent()
        self.item.activate(1300, 10)
        wait_until(lambda: self.at_word is not None, word.decode(), 20)
        return self.at_word - before

    def open(self):
        return self.click(b"MapNotify")

    def close(self):
        self.click(b"UnmapNotify")
        turn_for(0.4)  # a click that comes at once counts as the one that has closed it


def windows(build, times=20):
    for what, identifier in (("AI page", "nimbo-ai"), ("memory page", "nimbo-memory")):
        with session_of(build, display=True) as session:
            nimbo, host = started(session)
            opener = Opener(session, nimbo, host.item(identifier))
            turn_for(2)
            first, later = opener.open(), []
            for _ in range(times):
                turn_for(0.5)
                opener.close()
                later.append(opener.open())
            turn_for(5)
            private = Reading(nimbo.windows_pid).private
            where = measured.where("Anonymous", nimbo.windows_pid) + TOOLKIT
            yield Row(f"first opening, {what}, CPU", first, "ms", 100)
            yield Row(f"later openings, {what}, CPU", statistics.median(later), "ms", 4, reason=SCANNED)
            yield Row(f"windows' process, {what}, private", private, "MiB", 3, reason=where)


def many_processes(build, seconds):
    with session_of(build, display=True) as session:
        # A group of its own, which ends as one.
        sleepers = subprocess.Popen(
            ["sh", "-c", f"for i in $(seq {SLEEPERS}); do sleep 3600 & done; wait"], process_group=0
        )
        try:
            wait_until(lambda: len(program.children(sleepers.pid)) >= SLEEPERS, "the processes", 60)
            nimbo, host = started(session)
            host.item("nimbo-memory").activate(1300, 10)
            nimbo.wait_for_dashboard()
            found = costs({"Nimbo": nimbo.pid, "top": top(session).pid}, seconds)
            name = f"list shown, {SLEEPERS} processes, CPU"
            yield Row(name, found["Nimbo"].cpu, "%", 0.2, ("top", found["top"].cpu), LISTED)
        finally:
            os.killpg(sleepers.pid, signal.SIGKILL)
            sleepers.wait()


def top(session):
    """In a terminal of the usual size, at the program's interval."""
    ours, its = os.openpty()
    fcntl.ioctl(its, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))
    session.env["TERM"] = "xterm"
    child = session.start(["top", "-d", "5"], stdin=its, stdout=its, stderr=its)
    os.close(its)

    watch(ours, lambda _text: None)
    return child


def watch(descriptor, heard):
    """Hears all that comes, while the main context turns, until its end; then closes it."""

    def come(*_):
        with contextlib.suppress(OSError):
            text = os.read(descriptor, 65536)
            heard(text)
            if text:
                return True
        os.close(descriptor)
        return False

    GLib.unix_fd_add_full(GLib.PRIORITY_HIGH, descriptor, GLib.IOCondition.IN | GLib.IOCondition.HUP, come)


def scan(build):
    command = [build / "bin" / "process_scan_bench", "--benchmark_min_time=2", "--benchmark_format=json"]
    report = json.loads(subprocess.run(command, capture_output=True, check=True).stdout)
    times = {run["name"]: run["cpu_time"] / 1000 for run in report["benchmarks"]}
    bare, loop = (times[f"bareLoop/{count}/real_time"] for count in (SLEEPERS, 100))
    for what, name in (("first scan", "firstScan"), ("later scans", "processScan")):
        ours, few = (times[f"{name}/{count}/real_time"] for count in (SLEEPERS, 100))
        reason = (
            f"with 100 sleeping processes it is {few:.1f} ms beside {loop:.1f} ms. That part is the exact memory of the largest, "
            f"which the kernel counts page by page; what each further process adds is {(ours - few) / (bare - loop):.2f} × of the loop's."
        )
        yield Row(f"{what} of {SLEEPERS} processes, CPU", ours, "ms", 0.4, ("a bare status loop", bare), reason)


def package(build):
    with tempfile.TemporaryDirectory() as folder:
        install = ["cmake", "--install", build, "--strip", "--prefix", folder]
        subprocess.run(install, check=True, stdout=subprocess.DEVNULL)
        files = [path for path in pathlib.Path(folder).rglob("*") if path.is_file() and not path.is_symlink()]
        size = sum(-(-path.stat().st_size // 1024) for path in files) / 1024  # as a package's control file counts
        largest = sorted(files, key=lambda path: -path.stat().st_size)[:6]
        reason = "in " + "; ".join(f"{path.name} {path.stat().st_size // 1024} KiB" for path in largest)
    yield Row("package, installed, without debug information", size, "MiB", 1.5, reason=reason)


def growth(build, rounds):
    """Ticks, refreshes and openings; the first fifth brings all that is loaded once."""
    with session_of(build, display=True) as session:
        codex_service.sign_in(session, session.folder / "codex")
        codex = codex_service.CodexService(session, codex_service.windows(61, 23))
        session.settings(usage__codex=True, refreshInterval=FAST)
        nimbo, host = started(session)
        opener = Opener(session, nimbo, host.item("nimbo-memory"))

        def pass_rounds(count):
            for _ in range(count):
                opener.open()
                refresh(session)
                turn_for(0.2)
                opener.close()
            turn_for(5)
            return Reading(nimbo.pid), Reading(nimbo.windows_pid)

        before = pass_rounds(rounds // 5)
        after = pass_rounds(rounds - rounds // 5)
        codex.close()
        assert len(codex.requests) >= rounds, "a refresh was not read"
        what = f"growth by {rounds} openings and refreshes"
        for who, old, new in zip(("program", "windows' process"), before, after):
            yield Row(f"{what}: {who}, private", (new.private - old.private) * 1024, "KiB", 64, reason=GROWN)
            yield Row(f"{what}: {who}, descriptors", new.descriptors - old.descriptors, "", 0)
