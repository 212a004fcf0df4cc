# SPDX-License-Identifier: MIT
"""The desktop in which the program meets its faults, what is done with it there, and the judge of how it bears them."""

import contextlib
import json
import os
import pathlib
import re
import subprocess
import time

import bus
import claude_tool
import codex_service
from faults import let_go
from gi.repository import GLib
from nimbo_desktop import SLOW, Session, TrayHost, wait_until
from power_services import Logind, Systemd
from program import BINARY, OWN_WORDS, Program, stored

NIMBO = ("com.quellwerk.Nimbo", "/com/quellwerk/Nimbo")
AWAKE = "com.quellwerk.Nimbo.Awake1"
USAGE = "com.quellwerk.Nimbo.Usage1"
TEXTS = pathlib.Path(__file__).parents[2] / "src" / "usage" / "usage_messages.h"
MESSAGES = [text.split("{")[0] for text in re.findall(r'"([^"]{9,}[.}])"', TEXTS.read_text())]
SOON = 4 * SLOW  # seconds in which the program answers, acts and ends
TICK = 2  # seconds, the shortest distance there is


class World:
    """Buses, a display, a tray, a real logind and both providers; and the program, as long as it lives."""

    def __init__(self, proxied=False, under=()):
        self.session = Session(display=True, system_bus=True, desktop="sway")
        self.manager = Systemd(self.session, "252")
        self.logind = Logind(self.session)
        self.host = TrayHost(self.session)
        codex_service.sign_in(self.session, self.session.folder / "elsewhere")
        self.codex = codex_service.CodexService(self.session, codex_service.windows(1, 1))
        self.session.stack.callback(self.codex.close)
        self.program = None
        self.settings = self.session.folder / "config" / "com.quellwerk.Nimbo.json"
        self.figure = 1
        self.under = under
        self.bus_faults = bus.Faults() if proxied else None
        for real in (self.session.bus, self.session.system_bus) if proxied else ():
            proxy = bus.Proxy(real.address, self.session.folder, self.bus_faults)
            self.session.stack.callback(proxy.close)
            self.session.env[real.variable] = proxy.address

    def close(self):
        self.end()
        self.session.close()

    def begin(self, command=(), provider=None):
        """Starts the program, by the command of a tracer or without."""
        self.codex.answer = codex_service.windows(1, 1)
        claude_tool.install(self.session, claude_tool.screen(1, 1))
        usage = {f"usage__{provider}": True} if provider else {}
        self.session.settings(refreshInterval=TICK, **usage)
        self.program = Program(self.session, under=(*command, *self.under))
        self.descriptors = None

    def end(self):
        if self.program and self.program.child.running:
            let_go(self.program.pid)
            self.program.child.end()
        self.program = None
        wait_until(lambda: not self.host.items, "the items to go")

    @property
    def runs(self):
        return self.program is not None and self.program.child.running

    def call(self, interface, method, signature="()", *arguments):
        return self.session.call(*NIMBO, interface, method, GLib.Variant(signature, arguments) if arguments else None)

    def get(self, interface, name):
        return self.call("org.freedesktop.DBus.Properties", "Get", "(ss)", interface, name)[0]

    def blocks(self):
        """Whether a lock holds the machine awake."""
        return any(mode == "block" for *_, mode in self.logind.inhibitors())

    def sleep_is_told(self):
        return any(mode == "delay" for *_, mode in self.logind.inhibitors())

    def open_tab(self, tab):
        """Which is a setting, too."""
        self.call("org.freedesktop.Application", "Open", "(asa{sv})", [f"nimbo://{tab}"], {})

    def refresh(self, provider):
        """Another figure, which is asked for: whether it came. Else there is a message."""
        self.figure = self.figure % 90 + 1
        self.codex.answer = codex_service.windows(self.figure, 1)
        claude_tool.install(self.session, claude_tool.screen(self.figure, 1))
        self.call(USAGE, "Refresh")

    def usage(self, provider):
        """The figure and the message."""
        _enabled, message, _when, _source, windows = self.get(USAGE, provider.capitalize())
        return (windows[0][1] if windows else None), message


def does(action):
    """What the user does, while it may fail: the program may refuse, or be gone."""
    with contextlib.suppress(GLib.Error):
        action()


def holds(predicate):
    """Nothing holds of a program that does not answer, or an item that has gone."""
    with contextlib.suppress(GLib.Error):
        return predicate()
    return False


def wait_for(predicate, what, bound=SOON):
    return wait_until(lambda: holds(predicate), what, bound)


def in_vain(predicate, bound):
    with contextlib.suppress(AssertionError):
        return not wait_for(predicate, "", bound)
    return True


class Scenario:
    """`act` is what is done under the fault, `check` what must hold when that is gone."""

    starts = False
    on_bus = False  # the faults are those of a bus
    provider = None

    def act(self, world, happened):
        raise NotImplementedError

    def check(self, world):
        pass


class Start(Scenario):
    """From the first call of the program until the items are there."""

    starts = True

    def act(self, world, happened):
        in_vain(lambda: len(world.host.items) == 2 or not world.runs, 3 * SOON)


class Tick(Scenario):
    def act(self, world, happened):
        in_vain(lambda: happened() or not world.runs, TICK + 1)


class KeepAwake(Scenario):
    """A session begins and ends. What is said of it is true meanwhile."""

    def act(self, world, happened):
        does(lambda: world.call(AWAKE, "Start", "(xb)", 0, True))
        wait_for(lambda: not world.runs or world.get(AWAKE, "Active") == world.blocks(), "a lock with the session")
        does(lambda: world.call(AWAKE, "Stop"))


class Store(Scenario):
    """A setting is written; the tab of the dashboard is one. The resources' page reads all processes, besides."""

    def act(self, world, happened):
        for tab, value in (("usage", "ai"), ("resources", "memory")):
            does(lambda: world.open_tab(tab))
            in_vain(lambda: stored(world.settings, "lastDashboardTab") == value or happened() or not world.runs, 1)

    def check(self, world):
        kept = lambda: stored(world.settings, "lastDashboardTab") == "awake"  # noqa: E731
        world.open_tab("awake")
        if in_vain(kept, SOON) and not world.program.windows_pid:
            in_vain(lambda: False, 60)  # windows that have died three times within a minute can be had again after it
            world.open_tab("awake")
        wait_for(kept, "the setting in its file")


class Refresh(Scenario):
    """A provider is read, and the widgets' file is written."""

    def act(self, world, happened):
        does(lambda: world.refresh(self.provider))
        in_vain(lambda: not world.runs or self.settled(world), 40 * SLOW)

    def settled(self, world):
        figure, message = world.usage(self.provider)
        return figure == world.figure or message

    def check(self, world):
        _figure, message = world.usage(self.provider)
        if message and not any(map(message.startswith, MESSAGES)):
            raise AssertionError(f"not among the messages: {message}")
        world.refresh(self.provider)
        if in_vain(lambda: world.usage(self.provider) == (world.figure, ""), 40 * SLOW):
            raise AssertionError(f"no {world.figure} but {world.usage(self.provider)}")
        [snapshot] = (world.session.folder / "data").glob("*/usage-snapshot.json")
        wait_for(lambda: f'"usedPercent":{world.figure}' in snapshot.read_text(), "the widgets' file")
        json.loads(snapshot.read_text())


class Codex(Refresh):
    provider = "codex"


class Claude(Refresh):
    provider = "claude"


class Quit(Scenario):
    """A log-out during a session."""

    def act(self, world, happened):
        does(lambda: world.call(AWAKE, "Start", "(xb)", 0, False))
        world.program.child.process.terminate()
        wait_for(lambda: not world.runs, "the end")

    def check(self, world):
        wait_for(lambda: not world.logind.inhibitors(), "the end of all locks")


class StartOnBus(Start):
    on_bus = True


class KeepAwakeOnBus(KeepAwake):
    on_bus = True


SCENARIOS = {
    "start": Start(),
    "tick": Tick(),
    "awake": KeepAwake(),
    "store": Store(),
    "codex": Codex(),
    "claude": Claude(),
    "quit": Quit(),
    "bus-start": StartOnBus(),
    "bus-awake": KeepAwakeOnBus(),
}


# What the program says under some faults: on an item, or before it ends.
SAID = {
    "start eventfd2:EMFILE:1": "nimbo: main loop: Too many open files\n",
    "start socket:EMFILE:1+": "nimbo: Nimbo needs a session bus, and none can be reached: Too many open files.\n",
    "codex brk:=0:1+ mmap:ENOMEM:1+": "nimbo: out of memory\n",
    "tick pread64:EIO:1+": "Memory unavailable; retrying",
    "codex connect:ECONNREFUSED:1+": "Couldn’t reach the provider. Check your connection and refresh.",
}


def said(world):
    with contextlib.suppress(GLib.Error):
        return world.program.errors() + "\n".join(item.tooltip for item in world.host.items)
    return ""


def judge(world, scenario, faults):
    """Raises what is wrong with the program, now that the faults are over."""
    errors = world.program.errors()
    for line in errors.splitlines():
        if OWN_WORDS.match(line) and not line.startswith("nimbo: "):
            raise AssertionError(f"on standard error: {line}")
    has_no_secret(world, errors)
    whole(world.settings)
    try:
        if world.runs:
            return judge_life(world, scenario)
    except Exception:
        # It may have lost the bus a moment ago.
        if in_vain(lambda: not world.runs, 1):
            raise
    return judge_end(world, scenario, faults, world.program.errors())


def judge_life(world, scenario):
    answers(world)
    if scenario.on_bus and len(world.host.items) < 2:
        world.host.restart()  # one that has refused an item, or has not heard of it, is not asked again
    identifiers = {"nimbo-ai", "nimbo-memory"}
    wait_for(lambda: {item.identifier for item in world.host.items} == identifiers, "both items", TICK + SOON)
    wait_for(lambda: "Memory: " in world.host.item("nimbo-memory").tooltip, "a figure", TICK + SOON)
    wait_for(world.sleep_is_told, "the lock for sleep", 30 + SOON)  # after a call that was not answered, too
    world.call(AWAKE, "Start", "(xb)", 0, False)
    wait_for(world.blocks, "a session's lock")
    world.call(AWAKE, "Stop")
    wait_for(lambda: not world.blocks(), "the lock's end")
    scenario.check(world)
    answers(world)
    keeps_no_descriptor(world)


def judge_end(world, scenario, faults, errors):
    """It may end when it is told to, when its session's bus is lost, and, with a word on why, when it cannot begin or
    has no memory."""
    status = world.program.child.process.returncode
    one_word = status == 1 and errors.count("\n") == 1
    ends = isinstance(scenario, Quit) and status == 0
    lost = status == 0 and not errors and any(fault.may_lose_bus for fault in faults)
    excused = one_word and (scenario.starts or any(fault.lacks_memory for fault in faults))
    if not (ends or lost or excused):
        raise AssertionError(f"it ended with {status}: {errors.strip()}")
    if ends:
        scenario.check(world)


def answers(world):
    begun = time.monotonic()
    done = subprocess.run([BINARY, "awake", "status"], env=world.session.env, capture_output=True, text=True, timeout=SOON)
    if done.returncode != 0 or not done.stdout.startswith("Off."):
        raise AssertionError(f"awake status: {done.returncode} {done.stdout}{done.stderr}")
    if time.monotonic() - begun > SOON:
        raise AssertionError("awake status took too long")


def whole(file):
    if not isinstance(json.loads(file.read_text()), dict):
        raise AssertionError("no settings in the settings file")


def has_no_secret(world, errors):
    written = [file for name in ("config", "data", "cache") for file in (world.session.folder / name).rglob("*")]
    texts = [file.read_bytes() for file in written if file.is_file()]
    if any(codex_service.TOKEN.encode() in text for text in [*texts, errors.encode()]):
        raise AssertionError("the token is written somewhere")


def keeps_no_descriptor(world):
    """More than it had the first time."""
    folder = f"/proc/{world.program.pid}/fd"
    if world.descriptors is None:
        world.descriptors = len(os.listdir(folder))
    if in_vain(lambda: len(os.listdir(folder)) <= world.descriptors, SOON):
        now = sorted(os.readlink(f"{folder}/{name}") for name in os.listdir(folder))
        raise AssertionError(f"{len(now)} descriptors, not {world.descriptors}: {now}")
