# SPDX-License-Identifier: MIT
"""Runs scenarios under faults, and tells what the judge finds."""

import collections
import contextlib
import pathlib
import random
import subprocess
import tempfile

from bus import KINDS
from faults import ERRORS, BusTracer, Fault, Tracer, let_go
from nimbo_desktop import wait_until
from vanishing import vanish
from world import SAID, SCENARIOS, World, judge, said


class Runs:
    """In one world, which is made anew after a finding."""

    def __init__(self, tell=print):
        self.world, self.tell = None, tell
        self.scenario = None  # which the program was started for
        self.injected = collections.Counter()  # by scenario
        self.rounds = 0
        self.findings = []
        self.cases = {}
        self.under = ()  # a command to be put before the program

    def close(self):
        if self.world:
            self.world.close()
        self.world = None

    def _ready(self, scenario):
        """The program as the scenario wants it; none where that starts it. Whether it is a new one."""
        if self.world and (self.world.bus_faults is not None) != scenario.on_bus:
            self.close()
        self.world = self.world or World(scenario.on_bus, self.under)
        if self.world.runs and not scenario.starts and self.scenario is scenario:
            return False
        self.world.end()
        self.scenario = scenario
        if scenario.starts:
            return True
        self.world.begin(provider=scenario.provider)
        wait_until(lambda: len(self.world.host.items) == 2, "the program to begin")
        if not ends(scenario):
            for _ in range(2):  # until it has all that it keeps
                scenario.act(self.world, lambda: False)
                judge(self.world, scenario, ())
            self.world.descriptors = None
            judge(self.world, scenario, ())
        return True

    def _tracer(self, scenario, faults=()):
        return BusTracer(self.world.bus_faults, faults) if scenario.on_bus else Tracer(self.world.session.folder, faults)

    def _act(self, scenario, tracer, text=None):
        """What is done, until the program has said that text."""
        world = self.world
        with contextlib.ExitStack() as stack:
            if scenario.starts:
                world.begin(tracer.command)
                stack.callback(let_go, world.program.pid)
            else:
                stack.enter_context(tracer.attached(world.program.pid))
            scenario.act(world, lambda: tracer.happened)
            if text:
                wait_until(lambda: text in said(world), f"the words: {text}")

    def count(self, name):
        """All faults that there are for a scenario."""
        if name not in self.cases:
            scenario = SCENARIOS[name]
            self._ready(scenario)
            tracer = self._tracer(scenario)
            self._act(scenario, tracer)
            self.cases[name] = tracer.cases(scenario.starts)
            judge(self.world, scenario, ())
        return self.cases[name]

    def case(self, name, *faults):
        scenario = SCENARIOS[name]
        words = " ".join([name, *map(str, faults)])
        try:
            self._ready(scenario)
            tracer = self._tracer(scenario, faults)
            try:
                self._act(scenario, tracer, SAID.get(words))
            finally:
                if not tracer.possible:
                    return self._give_up()
            self.injected[name] += tracer.happened
            if scenario.on_bus:
                self.world.bus_faults.arm(())
            judge(self.world, scenario, faults)
        except Exception as problem:  # whatever it is, it is a finding
            # But for what strace leaves of a call in whose middle it lets go.
            if self.world.program and "Function not implemented" in self.world.program.errors():
                return self._give_up()
            self.findings.append(words)
            self.tell(f"finding: {words}\n  {type(problem).__name__}: {problem}\n  repeat: scripts/soak --only '{words}'")
            self._give_up()

    def _give_up(self):
        if self.world:
            if self.world.runs:
                self.world.program.child.process.kill()
                self.world.program.child.process.wait()
            self.world.session.close()
        self.world = None

    def sweep(self, names, every=1, first=0, until=lambda: False):
        """One case in `every` of all there are."""
        for name in names:
            for fault in self.count(name)[first % every :: every]:
                if until():
                    return
                self.case(name, fault)

    def in_parts(self, names):
        """Each scenario, with reads and writes that do only a part of what is asked."""
        self.close()
        with tempfile.TemporaryDirectory() as folder:
            library = f"{folder}/parts.so"
            source = pathlib.Path(__file__).with_name("parts.c")
            subprocess.run(["cc", "-shared", "-fPIC", "-o", library, source], check=True)
            self.under = ("env", f"LD_PRELOAD={library}")
            for name in names:
                self.case(name)
                self.rounds += 1
            self.close()

    def vanish(self, rounds, seed, until=lambda: False):
        """Parts of the world vanish and come back, round after round in one life of the program."""
        generator, scenario = random.Random(seed), SCENARIOS["codex"]
        for number in range(1, rounds + 1):
            if until():
                return
            steps = []
            try:
                if self._ready(scenario):
                    self.world.open_tab("resources")  # whose descriptors come and go
                    wait_until(lambda: self.world.program.windows_pid, "the windows")
                    self.world.descriptors = None
                    judge(self.world, scenario, ())
                vanish(self.world, scenario, generator, steps.append)
                self.rounds += 1
            except Exception as problem:  # whatever it is, it is a finding
                self.findings.append(f"seed {seed}, round {number}")
                self.tell(f"finding: round {number} of seed {seed}: {' '.join(steps)}\n  {type(problem).__name__}: {problem}")
                self._give_up()

    def pair(self, names, generator=random):
        name = generator.choice(names)
        one, other = (generator.choice(self.count(name)) for _ in range(2))
        if one.call != other.call:  # strace knows one fault of a call at a time
            self.case(name, one, other)


def ends(scenario):
    return scenario is SCENARIOS["quit"]


def parsed(words):
    name, *faults = words.split()
    parts = [fault.split(":") for fault in faults]
    known = lambda call, error, _when: error in (KINDS if SCENARIOS[name].on_bus else ERRORS[call].split())  # noqa: E731
    if name not in SCENARIOS or not all(len(part) == 3 and known(*part) for part in parts):
        raise SystemExit(f"no such case: {words}")
    return name, [Fault(*part) for part in parts]
