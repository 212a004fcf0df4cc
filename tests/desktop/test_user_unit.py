# SPDX-License-Identifier: MIT
"""The unit that starts the program at log-in, in a real manager of the user's services."""

import json
import pathlib
import re
import signal
import subprocess
import tempfile
import unittest

from nimbo_desktop import Process, ordinary_user, wait_until
from program import BINARY, REPOSITORY
from user_manager import UserManager

UNIT = "nimbo.service"
AUTOSTART = "app-com.quellwerk.Nimbo@autostart.service"
ENTRY = f'[Desktop Entry]\nType=Application\nName=Nimbo\nExec="{BINARY}"\nTryExec={BINARY}\n'
# Two processes that have every page in common; the second one ends with the first.
TWINS = """import os, time
memory, (read, write) = b"x" * 200_000_000, os.pipe()
if os.fork(): time.sleep(600)
os.close(write), os.read(read, 1)"""


def installed(name):
    return (REPOSITORY / "data" / f"{name}.in").read_text().replace("@CMAKE_INSTALL_FULL_BINDIR@/nimbo", str(BINARY))


class UnitFileTest(unittest.TestCase):
    def test_unit_is_understood_whole(self):
        with tempfile.TemporaryDirectory() as folder:
            unit = pathlib.Path(folder, UNIT)
            unit.write_text(installed(UNIT))
            said = subprocess.run(
                ["systemd-analyze", "verify", "--user", "--man=no", "--recursive-errors=no", unit],
                env={"HOME": folder, "XDG_RUNTIME_DIR": folder}, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
            )
            self.assertEqual((said.returncode, said.stdout), (0, ""))


@unittest.skipIf(UserManager.missing(), UserManager.missing())
class UserUnitTest(unittest.TestCase):
    def setUp(self):
        self.manager = UserManager()
        self.addCleanup(self.manager.close)
        self.manager.unit(UNIT, installed(UNIT))
        self.manager.unit(f"{AUTOSTART}.d/nimbo.conf", installed("autostart.conf"))
        self.manager.start()

    def log_in(self, with_unit=True, with_entry=False):
        if with_entry:
            autostart = self.manager.config / "autostart"
            autostart.mkdir()
            (autostart / "com.quellwerk.Nimbo.desktop").write_text(ENTRY)
        if with_unit:
            self.assertEqual(self.manager.systemctl("enable", UNIT)[0], 0)
        self.assertEqual(self.manager.systemctl("daemon-reload"), (0, ""))
        self.assertEqual(self.manager.systemctl("start", "session.target"), (0, ""))

    def begin(self, *words):
        process = Process(words, self.manager.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **ordinary_user())
        self.addCleanup(process.end)
        return process

    def wait_for_answer(self):
        wait_until(lambda: self.manager.run(BINARY, "awake", "status")[0] == 0, "the running program")

    def main_process(self):
        return int(self.manager.properties(UNIT, "MainPID")["MainPID"])

    def assert_left_out(self, unit):
        wait_until(lambda: self.manager.properties(unit, "Result")["Result"] == "exec-condition", f"{unit} to be left out")
        self.assertEqual(self.manager.properties(unit, "ActiveState", "ExecMainPID"),
                         {"ActiveState": "inactive", "ExecMainPID": "0"})

    def within_unit(self, *words):
        """What the program says when it runs as the unit does."""
        output = self.manager.home / "run/output"
        words = f"ExecStart={' '.join(map(str, (BINARY, *words)))}\nStandardOutput=truncate:{output}"
        text = re.sub(r"(?m)^(BusName|ExecCondition|Restart)=.*\n", "", installed(UNIT))
        text = re.sub(r"(?m)^ExecStart=.*", words, text.replace("Type=dbus", "Type=oneshot"))
        self.manager.unit("probe.service", text)
        self.manager.systemctl("daemon-reload")
        self.assertEqual(self.manager.systemctl("start", "probe.service"), (0, ""))
        return output.read_text()

    def test_log_in_starts_it_and_log_out_ends_it(self):
        self.log_in()
        self.wait_for_answer()
        self.assertNotEqual(self.main_process(), 0)
        self.manager.systemctl("stop", "session.target")
        wait_until(lambda: self.main_process() == 0, "its end")
        self.assertEqual(self.manager.properties(UNIT, "Result"), {"Result": "success"})

    def test_figures_are_those_of_everybody(self):
        self.log_in()
        twins = self.begin("/usr/bin/python3", "-c", TWINS)
        # Before it has its twin it only grows, past half of what they will share.
        children = pathlib.Path(f"/proc/{twins.pid}/task/{twins.pid}/children")
        wait_until(children.read_text, "its twin")
        command = "processes", "-n", 1000, "--json"

        def size(text):
            sizes = {process["pid"]: process["bytes"] for process in json.loads(text)["processes"]}
            return sizes.get(twins.pid, 0)

        wait_until(lambda: 100e6 < size(self.manager.run(BINARY, *command)[1]) < 150e6, "half of what they share")
        self.assertTrue(100e6 < size(self.within_unit(*command)) < 150e6)
        texts = self.within_unit("memory", "--json"), self.manager.run(BINARY, "memory", "--json")[1]
        here, there = (json.loads(text)["memory"] for text in texts)
        self.assertEqual(here["totalBytes"], there["totalBytes"])
        self.assertEqual(here["cpuTemperatureCelsius"] is None, there["cpuTemperatureCelsius"] is None)

    def test_where_it_runs_already_the_unit_is_left_out(self):
        first = self.begin(BINARY)
        self.wait_for_answer()
        self.log_in()
        self.assert_left_out(UNIT)
        self.assertTrue(first.running)

    def test_entry_of_the_settings_is_left_out_where_the_unit_has_started_it(self):
        self.log_in(with_entry=True)
        self.assert_left_out(AUTOSTART)
        self.assertNotEqual(self.main_process(), 0)

    def test_entry_of_the_settings_starts_it_where_the_unit_does_not(self):
        self.log_in(with_unit=False, with_entry=True)
        self.wait_for_answer()
        self.assertEqual(self.main_process(), 0)

    def test_what_was_opened_from_it_outlives_it(self):
        self.log_in()
        self.wait_for_answer()
        opened = self.begin("sleep", "600")
        (self.manager.group / "app.slice" / UNIT / "cgroup.procs").write_text(str(opened.pid))
        self.manager.systemctl("stop", UNIT)
        self.assertEqual(self.main_process(), 0)
        self.assertTrue(opened.running)

    def test_crash_starts_it_again(self):
        self.log_in()
        self.wait_for_answer()
        self.manager.run("kill", f"-{signal.SIGKILL}", self.main_process())
        wait_until(lambda: self.manager.properties(UNIT, "NRestarts")["NRestarts"] == "1", "the next start")
        self.wait_for_answer()


if __name__ == "__main__":
    unittest.main()
