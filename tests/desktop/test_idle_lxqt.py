# SPDX-License-Identifier: MIT
"""Keep Awake against LXQt's idle daemon. Apart from the others because it takes a minute or two of real time."""

import pathlib
import unittest

from program import DesktopTest
from test_idle_suspend import QUIET, PowerManager


class LxqtTest(PowerManager, DesktopTest):
    """It heeds no inhibitor, only the X server's idle time, which a session begins anew within half a minute."""

    desktop = "LXQt"
    speed = 1.9  # so that its minute is a little longer than that
    SUSPEND = 4
    test_display_is_kept_on = None  # it is in any case

    def start_desktop(self):
        settings = pathlib.Path(self.session.env["XDG_CONFIG_HOME"], "lxqt", "lxqt-powermanagement.conf")
        settings.parent.mkdir()
        idle = f"idleness{{0}}Time=00:01:00\nidleness{{0}}Action={self.SUSPEND}\n"
        watchers = "enableIdlenessWatcher=true\nenableBatteryWatcher=false\nenableLidWatcher=false\n"
        settings.write_text(f"[General]\nrunCheckLevel=1\n{watchers}{idle.format('AC')}{idle.format('Battery')}")
        self.session.start(self.logind.beside("lxqt-powermanagement"), **QUIET, user=None, group=None, extra_groups=None)


if __name__ == "__main__":
    unittest.main()
