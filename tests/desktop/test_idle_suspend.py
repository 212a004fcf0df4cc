# SPDX-License-Identifier: MIT
"""What a session does to a machine that nobody uses: real idle daemons and a real logind, all of one ordinary user,
and a count of how often the machine would have been suspended."""

import os
import pathlib
import subprocess
import time
import unittest

from gi.repository import GLib

from nimbo_desktop import SLOW, Display, ordinary_user, wait_until, xdotool
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
    identifier = "nimbo-memory"  # of the item
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
        self.item = self.host.item(self.identifier)

    def choose(self, label):
        self.item.choose(label)
        wait_until(lambda: label not in [entry[1].get("label") for entry in self.item.open_menu()], "the other entry")
        self.item.close_menu()

    def input(self):
        """Makes the user's idle time begin now."""

    def wait_for_effect(self):
        """Of a session that has begun."""

    def suspended(self):
        # Logind looks at its own clock at least when it is spoken to; otherwise it takes half a minute more.
        self.logind.inhibitors()
        return self.manager.suspended

    def assert_suspends(self):
        self.manager.suspended = 0
        self.input()
        begin = time.monotonic()
        wait_until(self.suspended, "the machine to be suspended", 90 * SLOW)
        self.took = time.monotonic() - begin

    def assert_stays_awake(self):
        self.manager.suspended = 0
        self.input()
        with self.assertRaises(AssertionError):
            wait_until(self.suspended, "nothing", PATIENCE + 1.5 * self.took)

    def assert_session_alone_prevents_it(self, **settings):
        self.assert_suspends()
        self.launch(**settings)
        self.choose("Keep awake until stopped")
        self.wait_for_effect()
        self.assert_stays_awake()
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
        self.display_off = runtime / "display-off"

    def input(self):
        if self.daemon:
            self.daemon.end()
        self.display_off.unlink(missing_ok=True)
        timeouts = ["timeout", PATIENCE, f"touch {self.display_off}", "timeout", PATIENCE, self.SUSPEND]
        self.daemon = self.session.start(["swayidle", *timeouts], **QUIET, **ordinary_user())

    def assert_stays_awake(self):
        super().assert_stays_awake()
        self.assertFalse(self.display_off.exists())  # there is no other way


@unittest.skipIf(os.geteuid() != 0, "only root can be two users")
class NewSystemdTest(SwayidleTest):
    """From systemd 257 on locks bind the user who holds them. Here, where logind is older, they bind any other user, so
    the program is root's."""

    systemd = "257.2-3-arch"
    test_display_is_kept_on = None

    def launch(self, **settings):
        self.session.identity = {}
        super().launch(**settings)

    def assert_stays_awake(self):
        IdleDaemon.assert_stays_awake(self)
        self.assertTrue(self.display_off.exists())  # it may sleep


class PowerManager(IdleDaemon):
    """One of a desktop on X11. It counts in minutes, so the X server's clock runs faster."""

    speed = 60 / PATIENCE

    def setUp(self):
        super().setUp()
        fast = ["faketime", "-m", "-f", f"+0 x{self.speed}", "printenv", "LD_PRELOAD", "FAKETIME"]
        library, clock = subprocess.run(fast, capture_output=True, check=True, text=True).stdout.splitlines()
        display = Display({**self.session.env, "LD_PRELOAD": library, "FAKETIME": clock})
        self.session.stack.callback(display.server.end)
        self.session.env["DISPLAY"] = display.name
        self.session.start(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "upower"], **QUIET)
        self.wait_for_name("org.freedesktop.UPower", self.logind.connection)
        self.start_desktop()

    def start_service(self, name, *command):
        self.session.start(self.logind.beside(*command), **QUIET, user=None, group=None, extra_groups=None)
        self.wait_for_name(name, self.session.connection)

    def wait_for_name(self, name, connection):
        bus = ("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "ListNames")
        wait_until(lambda: name in self.session.call(*bus, connection=connection)[0], name, 20 * SLOW)

    def run_to_end(self, *command):
        self.assertEqual(self.session.start(command, **QUIET).process.wait(20 * SLOW), 0, command)

    def input(self):
        xdotool(self.session, "mousemove_relative", 1, 1)


class XfceTest(PowerManager, DesktopTest):
    desktop = "XFCE"

    def start_desktop(self):
        self.configure("inactivity-on-ac", "uint", "1")
        self.configure("inactivity-on-battery", "uint", "1")
        self.configure("lock-screen-suspend-hibernate", "bool", "false")
        self.start_service("org.freedesktop.PowerManagement", "xfce4-power-manager", "--debug")

    def configure(self, name, kind, value):
        where = ["-c", "xfce4-power-manager", "-p", f"/xfce4-power-manager/{name}"]
        self.run_to_end("xfconf-query", *where, "-n", "-t", kind, "-s", value)


class PlasmaTest(PowerManager, DesktopTest):
    desktop = "KDE"
    AGENT = "org.kde.Solid.PowerManagement.PolicyAgent"

    def start_desktop(self):
        settings = pathlib.Path(self.session.env["XDG_CONFIG_HOME"], "powermanagementprofilesrc")
        group = "[{}][SuspendSession]\nidleTime=60000\nsuspendType=1\n"
        settings.write_text("".join(group.format(profile) for profile in ("AC", "Battery", "LowBattery")))
        self.start_service(self.AGENT, next(pathlib.Path("/usr/lib").glob("*/libexec/org_kde_powerdevil")))
        self.wait_for_name("org.freedesktop.PowerManagement", self.session.connection)

    def wait_for_effect(self):
        # It lets five seconds pass.
        asked = (self.AGENT, "/org/kde/Solid/PowerManagement/PolicyAgent", self.AGENT, "HasInhibition")
        no_sleep = GLib.Variant("(u)", (1,))
        wait_until(lambda: self.session.call(*asked, no_sleep)[0], "the policy", 20 * SLOW)


class MateTest(PowerManager, DesktopTest):
    """With its session manager, and nothing else that this would start."""

    desktop = "MATE"
    identifier = "nimbo-2-memory"

    def start_desktop(self):
        nothing = self.session.folder / "nothing"
        nothing.mkdir()
        self.session.env.update(GSETTINGS_BACKEND="keyfile", XDG_CONFIG_DIRS=str(nothing))
        for key in ("default-session", "required-components-list", "gnome-compat-startup"):
            self.run_to_end("gsettings", "set", "org.mate.session", key, "[]")
        self.run_to_end("gsettings", "set", "org.mate.session", "idle-delay", 1)
        for supply in ("ac", "battery"):
            self.run_to_end("gsettings", "set", "org.mate.power-manager", f"sleep-computer-{supply}", PATIENCE)
        self.start_service("org.gnome.SessionManager", "mate-session")
        self.start_service("org.mate.PowerManager", "mate-power-manager", "--no-daemon")


if __name__ == "__main__":
    unittest.main()
