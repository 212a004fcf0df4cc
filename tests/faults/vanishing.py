# SPDX-License-Identifier: MIT
"""The parts of the program's world, which vanish, several at once, and come back."""

import contextlib
import os
import pathlib
import shutil
import signal

from gi.repository import GLib

from nimbo_desktop import turn_for
from power_services import LOGIN1, Systemd
from world import AWAKE, does, judge, wait_for


class Parts:
    """`stop` and `start` of each; a logind needs its bus."""

    def __init__(self, world):
        self.world, self.away = world, []
        session = world.session
        self.parts = {
            "panel": (world.host.stop, world.host.start),
            "logind": (world.logind.stop, self._start_logind),
            "system bus": (self._stop_system_bus, self._start_system_bus),
            "accessibility bus": (self._stop_accessibility, lambda: None),
            "network": (world.codex.close, world.codex.start),
            "data": (lambda: self._take_away("data"), lambda: self._bring_back("data")),
            "settings": (lambda: self._take_away("config"), lambda: self._bring_back("config")),
            "display": (lambda: session.display.server.end(signal.SIGKILL), session.display.restart),
        }

    def stop(self, part):
        self.away.append(part)
        self.parts[part][0]()

    def start(self, part):
        self.away.remove(part)
        self.parts[part][1]()

    def _start_logind(self):
        if not {"logind", "system bus"} & {*self.away}:
            self.world.logind.start()

    def _stop_system_bus(self):
        self.world.session.system_bus.stop()
        self.world.logind.stop()

    def _start_system_bus(self):
        self.world.session.system_bus.start()
        self.world.manager = Systemd(self.world.session, "252")
        self._start_logind()

    def _stop_accessibility(self):
        """Who asks for it starts it again."""
        daemon = "org.freedesktop.DBus"
        ask = lambda method: self.world.session.call(daemon, "/", daemon, method, GLib.Variant("(s)", ("org.a11y.Bus",)))  # noqa: E731
        with contextlib.suppress(GLib.Error, ProcessLookupError):
            os.kill(ask("GetConnectionUnixProcessID")[0], signal.SIGKILL)

    def _take_away(self, name):
        folder = self.world.session.folder
        (folder / name).rename(folder / f"{name}-away")

    def _bring_back(self, name):
        """The program may have made another one, and be writing there."""
        folder = self.world.session.folder
        while (folder / f"{name}-away").exists():
            with contextlib.suppress(OSError):
                shutil.rmtree(folder / name, ignore_errors=True)
                (folder / f"{name}-away").rename(folder / name)


def vanish(world, scenario, generator, tell):
    """One round. Some of the parts go in some order while the program is used, and come back in another."""
    parts = Parts(world)
    gone = generator.sample(list(parts.parts), generator.randint(1, len(parts.parts)))
    uses = {
        "begin": lambda: world.call(AWAKE, "Start", "(xb)", 0, generator.random() < 0.5),
        "end": lambda: world.call(AWAKE, "Stop"),
        "refresh": lambda: world.refresh(scenario.provider),
        "open": lambda: world.open_tab(generator.choice(("usage", "awake", "resources"))),
        "nothing": lambda: turn_for(generator.choice((0, 0.3, 3))),
    }
    steps = []
    held = False  # whether the session began before anything went

    def use():
        nonlocal held
        steps.append(generator.choice(list(uses)))
        does(uses[steps[-1]])
        if steps[-1] in ("begin", "end"):
            held = steps == ["begin"]

    for step, order in ((parts.stop, gone), (parts.start, generator.sample(gone, len(gone)))):
        for part in order:
            use()
            steps.append(f"{step.__name__} {part}")
            step(part)
        use()
    tell(", ".join(steps))
    # One that began without logind may be held by the X server alone.
    wait_for(lambda: (world.blocks() or not held) and world.get(AWAKE, "Active") >= world.blocks(), "the session's lock")
    world.call(AWAKE, "Stop")
    wait_for(lambda: [mode for *_, mode in world.logind.inhibitors()] == ["delay"], "one lock for sleep", 40)
    sleep_is_heard(world)
    judge(world, scenario, ())


def sleep_is_heard(world):
    """Logind sleeps, as it believes, and wakes. Who hears of that lets his lock go and takes another."""
    before = wait_for(lambda: locks(world), "a lock of the logind that runs now", 40)
    world.session.call(*LOGIN1, "Suspend", GLib.Variant("(b)", (False,)), world.logind.connection)
    wait_for(lambda: locks(world) and not before & locks(world), "the lock after a sleep")


def locks(world):
    """Those of a logind that has gone do not lie under /run any more."""
    opened = set()
    for descriptor in pathlib.Path(f"/proc/{world.program.pid}/fd").iterdir():
        with contextlib.suppress(OSError):
            opened.add(os.readlink(descriptor))
    return {name for name in opened if name.startswith("/run/systemd/inhibit/")}
