# SPDX-License-Identifier: MIT
"""Keep Awake against GNOME's idle daemon. Apart from the others because of what it takes: a session manager, and a
compositor that knows how long there was no input."""

import pathlib
import unittest

from program import DesktopTest
from test_idle_suspend import PATIENCE, QUIET, PowerManager

NO_COMPONENTS = "[GNOME Session]\nName=None\nRequiredComponents=\n"
POWER = "org.gnome.settings-daemon.plugins.power"


class GnomeTest(PowerManager, DesktopTest):
    desktop = "GNOME"
    speed = 1  # it counts in seconds

    def start_desktop(self):
        nothing = self.session.folder / "nothing"
        nothing.mkdir()
        self.session.env.update(GSETTINGS_BACKEND="keyfile", XDG_CONFIG_DIRS=str(nothing))
        sessions = pathlib.Path(self.session.env["XDG_DATA_HOME"], "gnome-session", "sessions")
        sessions.mkdir(parents=True)
        (sessions / "none.session").write_text(NO_COMPONENTS)
        for supply in ("ac", "battery"):
            self.run_to_end("gsettings", "set", POWER, f"sleep-inactive-{supply}-timeout", PATIENCE)
            self.run_to_end("gsettings", "set", POWER, f"sleep-inactive-{supply}-type", "suspend")
        self.run_to_end("gsettings", "set", "org.gnome.desktop.session", "idle-delay", 1)
        manager = ["/usr/libexec/gnome-session-binary", "--builtin", "--session=none"]
        self.start_service("org.gnome.SessionManager", *manager)
        self.start_service("org.gnome.Mutter.IdleMonitor", "mutter", "--x11")
        self.session.start(self.logind.beside("/usr/libexec/gsd-power"), **QUIET, user=None, group=None, extra_groups=None)


if __name__ == "__main__":
    unittest.main()
