# SPDX-License-Identifier: MIT
"""What a session does to a machine that nobody uses: real idle daemons and a real logind, all of one ordinary user,
and a count of how often the machine would have been suspended."""

import pathlib
import subprocess
import unittest

from nimbo_desktop import SLOW, ordinary_user, wait_until
from power_services import Logind, Systemd
from program import DesktopTest

PATIENCE = 1  # seconds without input after which these machines are suspended
QUIET = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}


class IdleDaemon:
    """Steers through the tray. A mix-in, so that it is no test by itself."""

    system_bus = True
    desktop = "sway"
    identity = ordinary_user()
    systemd = "252.39-1"
    configuration = ""  # of logind

    def setUp(self):
        super().setUp()
        if Logind.missing():
            self.skipTest(Logind.missing())
        self.manager = Systemd(self.session, self.systemd)
        self.logind = Logind(self.session, self.configuration)

    def launch(self, **settings):
        self.session.settings(**settings)
        self.start()
        self.item = self.host.item("nimbo-memory")

    def choose(self, label):
        entries = {properties.get("label"): number for number, properties in self.item.open_menu()}
        self.item.close_menu()
        self.item.click_menu(entries[label])
        wait_until(lambda: label not in [entry[1].get("label") for entry in self.item.open_menu()], "the other entry")
        self.item.close_menu()

    def start_daemon(self):
        """Whatever suspends this machine, as if there had been input just now."""

    def suspended(self):
        # Logind looks at its own clock at least when it is spoken to; otherwise it takes half a minute more.
        self.logind.inhibitors()
        return self.manager.suspended

    def assert_suspends(self):
        self.manager.suspended = 0
        wait_until(self.suspended, "the machine to be suspended", 20 * SLOW)

    def assert_session_alone_prevents_it(self, **settings):
        self.start_daemon()
        self.assert_suspends()
        self.launch(**settings)
        self.choose("Keep awake until stopped")
        self.start_daemon()
        self.manager.suspended = 0
        with self.assertRaises(AssertionError):
            wait_until(self.suspended, "nothing", 3 * PATIENCE)
        self.choose("Stop awake session")
        self.assert_suspends()

    def test_display_may_sleep(self):
        self.assert_session_alone_prevents_it()

    def test_display_is_kept_on(self):
        self.assert_session_alone_prevents_it(awakeDisplayOn=True)


class IdleActionTest(IdleDaemon, DesktopTest):
    """Logind's own."""

    configuration = f"IdleAction=suspend\nIdleActionSec={PATIENCE}s\n"


class SwayidleTest(IdleDaemon, DesktopTest):
    # What `systemctl suspend` asks, which itself runs only where systemd is the first process.
    SUSPEND = "busctl call org.freedesktop.login1 /org/freedesktop/login1 org.freedesktop.login1.Manager Suspend b no"
    daemon = None

    def setUp(self):
        super().setUp()
        headless = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}
        self.session.env.update(headless, LIBSEAT_BACKEND="noop", XDG_SESSION_TYPE="wayland", SWAYSOCK="")
        runtime = pathlib.Path(self.session.env["XDG_RUNTIME_DIR"])
        self.session.start(["sway", "-c", "/dev/null"], **QUIET)
        socket = wait_until(lambda: next(runtime.glob("wayland-?"), None), "the compositor")
        self.session.env["WAYLAND_DISPLAY"] = socket.name

    def start_daemon(self):
        if self.daemon:
            self.daemon.end()
        self.daemon = self.session.start(["swayidle", "timeout", str(PATIENCE), self.SUSPEND], **QUIET)


if __name__ == "__main__":
    unittest.main()
