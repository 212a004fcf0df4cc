# SPDX-License-Identifier: MIT
"""Nimbo from the shell, against a running program and without one, on a real logind."""

import contextlib
import json
import os
import pathlib
import re
import resource
import signal
import subprocess
import unittest

import codex_service
from gi.repository import GLib
from nimbo_desktop import SLOW, wait_until
from power_services import Logind
from program import BINARY, DesktopTest

BLOCK = "sleep:idle"
PROGRAM = ("com.quellwerk.Nimbo", "/com/quellwerk/Nimbo")


@unittest.skipIf(Logind.missing(), Logind.missing())
class CommandTest(DesktopTest):
    system_bus = True
    desktop = "sway"

    def setUp(self):
        super().setUp()
        self.logind = Logind(self.session)

    def nimbo(self, *words):
        """(exit status, output, errors)"""
        done = subprocess.run([BINARY, *map(str, words)], env=self.session.env, capture_output=True, text=True, timeout=60 * SLOW)
        return done.returncode, done.stdout, done.stderr

    def begin(self, *words):
        process = self.session.start([BINARY, *map(str, words)], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        self.addCleanup(process.process.stderr.close)
        return process

    def launch(self):
        self.start()
        self.host.item("nimbo-memory")

    def blocks(self):
        return [inhibitor[0] for inhibitor in self.logind.inhibitors() if inhibitor[3] == "block"]

    def wait_for_blocks(self, *what):
        wait_until(lambda: self.blocks() == list(what), f"blocks of {what}")

    def watch(self, *words):
        """The command's lines as they come: a function that waits for one for which `fits` holds."""
        process = self.session.start([BINARY, *words, "--watch"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.addCleanup(process.process.stdout.close)
        os.set_blocking(process.process.stdout.fileno(), False)
        lines = []

        def wait_for_line(fits, what):
            def read():
                lines.extend(process.process.stdout.readlines())
                return any(fits(line.decode()) for line in lines)

            wait_until(read, what)
            lines.clear()

        return process, wait_for_line

    def status(self):
        return json.loads(self.nimbo("awake", "status", "--json")[1])["awake"]


class RunningProgramTest(CommandTest):
    def setUp(self):
        super().setUp()
        self.session.settings(refreshInterval=2, monitorCPU=True)
        self.launch()

    def test_session_begins_and_ends(self):
        self.assertEqual(self.nimbo("awake", "status"), (0, "Off. Keep AI jobs running while your display rests.\n", ""))
        self.assertEqual(self.nimbo("awake", "on", "--for", "2h", "--display"), (0, "", ""))
        self.wait_for_blocks("idle", BLOCK)
        self.assertRegex(self.nimbo("awake", "status")[1], r"^On until [\d: -]+\. Display stays on\.\n$")
        end = self.status()["endsAt"]
        self.assertEqual(self.nimbo("awake", "extend", "30m"), (0, "", ""))
        self.assertNotEqual(self.status()["endsAt"], end)
        self.assertEqual(self.nimbo("awake", "off"), (0, "", ""))
        self.wait_for_blocks()
        self.assertEqual(self.nimbo("awake", "extend", "30m"), (1, "", "nimbo: No session with an end runs.\n"))

    def test_what_is_past_is_refused(self):
        refused = self.nimbo("awake", "on", "--until", "2020-01-01T00:00")
        self.assertEqual(refused, (1, "", "nimbo: Choose an end time in the future.\n"))

    def test_two_commands_hold_and_the_death_of_one_lets_go_its_own(self):
        first = self.begin("awake", "run", "--", "sleep", 600)
        second = self.begin("awake", "run", "--display", "sleep", 600)
        wait_until(lambda: self.status()["holders"] == ["sleep", "sleep"], "both")
        self.wait_for_blocks("idle", BLOCK)
        second.process.send_signal(signal.SIGKILL)
        wait_until(lambda: self.status()["holders"] == ["sleep"], "one to let go")
        self.wait_for_blocks(BLOCK)
        first.process.send_signal(signal.SIGKILL)
        self.wait_for_blocks()
        self.end_sleepers()

    def end_sleepers(self):
        """What the killed ones had started."""
        for entry in pathlib.Path("/proc").glob("[0-9]*/environ"):
            try:
                ours = f"XDG_RUNTIME_DIR={self.session.env['XDG_RUNTIME_DIR']}\0".encode() in entry.read_bytes()
                if ours and (entry.parent / "comm").read_text() == "sleep\n":
                    os.kill(int(entry.parent.name), signal.SIGKILL)
            except OSError:
                continue

    def test_command_is_run_as_it_is_and_its_status_returned(self):
        self.assertEqual(self.nimbo("awake", "run", "--", "printf", "%s|", "a b", "$HOME", "*")[:2], (0, "a b|$HOME|*|"))
        self.assertEqual(self.nimbo("awake", "run", "sh", "-c", "exit 7")[0], 7)
        self.assertEqual(self.nimbo("awake", "run", "sh", "-c", "kill -TERM $$")[0], 128 + signal.SIGTERM)
        status, _output, errors = self.nimbo("awake", "run", "no-such-program")
        self.assertEqual((status, errors), (1, "nimbo: no-such-program cannot be started: No such file or directory.\n"))
        self.wait_for_blocks()

    def test_termination_is_passed_on_to_the_command(self):
        ready = self.session.folder / "ready"
        script = "trap 'exit 5' TERM; : > \"$0\"; while :; do sleep 0.05; done"
        running = self.begin("awake", "run", "sh", "-c", script, ready)
        self.wait_for_blocks(BLOCK)
        wait_until(ready.exists, "the command")
        running.process.terminate()
        self.assertEqual(running.process.wait(10 * SLOW), 5)
        self.wait_for_blocks()

    def test_watched_session_is_told_when_it_changes(self):
        watching, wait_for_line = self.watch("awake", "status", "--json")
        wait_for_line(lambda line: json.loads(line)["class"] == "off", "its state")
        self.nimbo("awake", "on")
        wait_for_line(lambda line: json.loads(line)["text"] == "Awake", "the session")
        self.assertEqual(self.nimbo("quit")[0], 0)
        self.program.child.process.send_signal(signal.SIGTERM)  # the question whether to quit
        wait_for_line(lambda line: json.loads(line)["awake"] is None, "its end")
        self.start()
        wait_for_line(lambda line: json.loads(line)["class"] == "off", "its return")
        watching.process.stdout.close()
        wait_until(lambda: not watching.running, "the end with its reader")

    def test_watched_memory_brings_the_load_and_costs_little(self):
        watching, wait_for_line = self.watch("memory")
        wait_for_line(lambda line: re.fullmatch(r"Memory \d+% · CPU \d+%\n", line), "the figures")
        memory = pathlib.Path(f"/proc/{watching.pid}/smaps_rollup").read_text()
        own = sum(map(int, re.findall(r"^Private_(?:Clean|Dirty): +(\d+)", memory, re.M)))
        if SLOW == 1:  # sanitizers take their own
            self.assertLess(own, 3 * 1024)

    def test_processes_are_waited_for(self):
        build = self.session.start(["sleep", "600"])
        waiting = self.begin("awake", "while", build.process.pid)
        self.wait_for_blocks(BLOCK)
        self.assertEqual(self.status()["holders"], ["sleep"])
        build.end()
        self.assertEqual(waiting.process.wait(10 * SLOW), 0)
        self.wait_for_blocks()
        gone = self.nimbo("awake", "while", build.process.pid)
        self.assertEqual(gone, (1, "", f"nimbo: There is no process {build.process.pid}.\n"))

    def test_user_ends_it_for_all(self):
        self.begin("awake", "run", "sleep", 1)
        self.wait_for_blocks(BLOCK)
        self.assertEqual(self.nimbo("awake", "off")[0], 0)
        self.wait_for_blocks()

    def test_bus_shows_what_is_documented(self):
        shown = subprocess.run(
            ["busctl", f"--address={self.session.env['DBUS_SESSION_BUS_ADDRESS']}", "introspect", "--no-pager",
             "com.quellwerk.Nimbo", "/com/quellwerk/Nimbo"],
            capture_output=True, text=True, check=True).stdout
        found, interface = set(), ""
        for row in map(str.split, shown.splitlines()[1:]):
            if row[1] == "interface":
                interface = row[0]
            elif interface.startswith("com.quellwerk.Nimbo."):
                found.add(tuple(row[:3]))
        documented = re.findall(r"^\| `\.(\w+)` \| (method|property) \| `([a-z()-]+)` \|", DOCUMENT.read_text(), re.M)
        self.assertEqual({(f".{name}", kind, signature) for name, kind, signature in documented}, found)

    def test_quit(self):
        self.assertEqual(self.nimbo("quit"), (0, "", ""))
        self.assertEqual(self.program.wait_for_exit(), 0)


DOCUMENT = pathlib.Path(__file__).resolve().parents[2] / "docs" / "bus.md"


class NobodyRunsTest(CommandTest):
    def test_it_is_said(self):
        for words in (["awake", "on"], ["awake", "off"], ["awake", "extend", "1h"], ["awake", "status"], ["open"], ["quit"]):
            self.assertEqual(self.nimbo(*words), (3, "", "nimbo: Nimbo is not running.\n"), words)
        self.assertEqual(self.nimbo("awake", "sideways")[0], 2)

    def test_command_is_held_for_in_the_foreground(self):
        waiting = self.begin("awake", "run", "--display", "sleep", 2)
        self.wait_for_blocks("idle", BLOCK)
        self.assertEqual(waiting.process.wait(10 * SLOW), 0)
        self.wait_for_blocks()
        self.assertEqual(self.nimbo("awake", "run", "sh", "-c", "exit 9")[0], 9)

    def test_termination_is_passed_on_in_the_foreground(self):
        running = self.begin("awake", "run", "sleep", 600)
        self.wait_for_blocks(BLOCK)
        children = pathlib.Path(f"/proc/{running.pid}/task")
        wait_until(lambda: any((task / "children").read_text() for task in children.iterdir()), "the command")
        running.process.terminate()
        self.assertEqual(running.process.wait(10 * SLOW), 128 + signal.SIGTERM)
        self.wait_for_blocks()

    def test_interrupt_ends_the_wait_for_a_process(self):
        build = self.session.start(["sleep", "600"])
        waiting = self.begin("awake", "while", build.process.pid)
        self.wait_for_blocks(BLOCK)
        waiting.process.send_signal(signal.SIGINT)
        waiting.process.wait(10 * SLOW)
        self.wait_for_blocks()

    def test_figures_agree_with_the_systems(self):
        memory = json.loads(self.nimbo("memory", "--json")[1])["memory"]
        total = int(re.search(r"MemTotal: +(\d+)", pathlib.Path("/proc/meminfo").read_text())[1]) * 1024
        self.assertEqual(memory["totalBytes"], total)
        self.assertEqual(memory["usedBytes"] + memory["availableBytes"], total)
        large = self.session.start(["/usr/bin/python3", "-c", "import time; x = bytearray(900 << 20); time.sleep(600)"])
        rows = lambda: json.loads(self.nimbo("processes", "-n", 3, "--json")[1])["processes"]  # noqa: E731
        wait_until(lambda: rows()[0]["pid"] == large.process.pid and rows()[0]["bytes"] > 900 << 20, "the large one first")
        self.assertEqual(len(rows()), 3)
        self.assertRegex(self.nimbo("processes", "-n", 1)[1], rf"^ +\d+ MB +{large.process.pid}  python3[\d.]*\n$")

    def test_colours_are_for_terminals_whose_user_wants_them(self):
        def on_a_terminal(**environment):
            ours, theirs = os.openpty()
            env = {**self.session.env, "TERM": "xterm", **environment}
            subprocess.run([BINARY, "memory"], env=env, stdout=theirs, timeout=60 * SLOW, check=True)
            os.close(theirs)
            text = b""
            with open(ours, "rb", buffering=0) as terminal, contextlib.suppress(OSError):
                while part := terminal.read(4096):
                    text += part
            return text.decode()

        self.assertIn("\x1b[32m█", on_a_terminal())
        for unwanted in ({"NO_COLOR": "1"}, {"TERM": "dumb"}):
            self.assertNotIn("\x1b", on_a_terminal(**unwanted))
        self.assertNotIn("\x1b", self.nimbo("memory")[1])

    def test_answer_costs_next_to_nothing(self):
        self.launch()
        best = min(self.status_seconds() for _round in range(20))
        if SLOW == 1:  # sanitizers take their own
            self.assertLess(best, 0.010)

    def status_seconds(self):
        """Of the processors, which no other load lengthens."""
        seconds = lambda: sum(resource.getrusage(resource.RUSAGE_CHILDREN)[:2])  # noqa: E731
        begin = seconds()
        self.assertEqual(self.nimbo("awake", "status")[0], 0)
        return seconds() - begin


class UsageCommandTest(CommandTest):
    def setUp(self):
        super().setUp()
        codex_service.sign_in(self.session, self.session.folder / "elsewhere")
        self.service = codex_service.CodexService(self.session, codex_service.windows(61, 23))
        self.addCleanup(self.service.close)
        self.session.settings(usage__codex=True)

    def test_allowances_are_read_once_without_a_running_program(self):
        status, output, errors = self.nimbo("usage")
        self.assertEqual((status, errors), (0, ""))
        self.assertRegex(output, r"^Codex 5-hour  █{8}░{12}  39% left, resets [\d: -]+\nCodex Weekly  █{15}░{5}  77% left")
        self.assertEqual(len(self.service.requests), 1)

    def test_running_program_answers_with_what_it_has_read(self):
        self.start()
        item = self.host.item("nimbo-ai")
        wait_until(lambda: "77% remaining" in item.tooltip, "the figures", 40 * SLOW)
        shown = json.loads(self.nimbo("usage", "--json")[1])
        self.assertEqual((shown["text"], shown["class"], shown["percentage"]), ("AI 39% left", "normal", 61))
        windows = shown["usage"]["codex"]["windows"]
        self.assertEqual([(window["title"], window["usedPercent"]) for window in windows], [("5-hour", 61), ("Weekly", 23)])
        self.assertEqual(len(self.service.requests), 1, "asked only once")
        for interface in ("Usage1", "Resources1", "Awake1"):
            named = GLib.Variant("(s)", (f"{PROGRAM[0]}.{interface}",))
            told = str(self.session.call(*PROGRAM, "org.freedesktop.DBus.Properties", "GetAll", named))
            self.assertIn("'", told)
            self.assertNotIn(codex_service.TOKEN, told)
            self.assertNotIn("elsewhere", told)
        _watching, wait_for_line = self.watch("usage")
        wait_for_line(lambda line: line == "AI 39% left\n", "the line")
        self.service.answer = codex_service.windows(95, 23)
        self.session.call(*PROGRAM, "com.quellwerk.Nimbo.Usage1", "Refresh")
        wait_for_line(lambda line: line == "AI 5% left\n", "the new line")


if __name__ == "__main__":
    unittest.main()
