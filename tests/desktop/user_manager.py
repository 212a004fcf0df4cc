# SPDX-License-Identifier: MIT
"""The service manager of an ordinary user, with a bus, in name spaces and a control group of its own."""

import contextlib
import os
import pathlib
import re
import shutil
import subprocess
import tempfile

from nimbo_desktop import BUS_CONFIGURATION, SLOW, Process, ordinary_user, wait_until
from program import BINARY

MANAGER = "/lib/systemd/systemd"
UNITS = {
    "dbus.socket": "[Socket]\nListenStream=%t/bus\n",
    "dbus.service": """[Unit]
Requires=dbus.socket
[Service]
Type=notify
ExecStart=/usr/bin/dbus-daemon --config-file=%h/bus.conf --address=systemd: --nofork --nopidfile --systemd-activation
""",
    # The log-in, as desktops have it.
    "session.target": "[Unit]\nBindsTo=graphical-session.target xdg-desktop-autostart.target\n",
}


def hierarchy():
    """Where the control groups of version 2 are; None where there are none."""
    found = re.search(r"^(?:\S+ ){4}(\S+) .* - cgroup2 ", pathlib.Path("/proc/self/mountinfo").read_text(), re.M)
    return found and pathlib.Path(found[1])


class UserManager:
    @staticmethod
    def missing():
        """Why there can be none; None when there can."""
        if os.geteuid() != 0:
            return "only root makes name spaces in which another user has control groups"
        if not pathlib.Path(MANAGER).exists() or hierarchy() is None:
            return "no systemd, or no control groups of version 2"
        if not os.access(hierarchy(), os.W_OK) or subprocess.run(["unshare", "--mount", "--cgroup", "true"]).returncode != 0:
            return "no control group or name space can be made"
        return None

    def __init__(self):
        self.stack = contextlib.ExitStack()
        self.home = pathlib.Path(tempfile.mkdtemp(prefix="nimbo-manager-"))
        self.stack.callback(shutil.rmtree, self.home, ignore_errors=True)
        self.config = self.home / ".config"
        run, services = self.home / "run", self.home / "services"
        for folder in (run, services, self.config / "systemd/user"):
            folder.mkdir(parents=True)
        (self.home / "bus.conf").write_text(BUS_CONFIGURATION.format(services=services, address=f"unix:dir={run}"))
        for name, text in UNITS.items():
            self.unit(name, text)
        # As in the session of a user who logged in, but for the bus of the system, which others share.
        self.env = {
            "HOME": str(self.home),
            "PATH": "/usr/bin:/bin",
            "XDG_RUNTIME_DIR": str(run),
            "XDG_CURRENT_DESKTOP": "GNOME",
            "XDG_CONFIG_DIRS": str(self.home / "none"),
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={run}/bus",
            "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nonexistent",
        }

    def unit(self, name, text):
        path = self.config / "systemd/user" / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)

    def start(self):
        user = ordinary_user()
        self.group = group = hierarchy() / f"nimbo-test-{os.getpid()}"
        group.mkdir()
        self.stack.callback(self.remove, group)
        for path in (group, *group.glob("cgroup.*"), self.home, *self.home.rglob("*")):
            os.chown(path, user["user"], user["group"])
        script = f"""echo $$ >{group}/cgroup.procs && exec unshare --mount --cgroup sh -ec '
            mount -t tmpfs none /run; mkdir -p /run/systemd/system; mount -t cgroup2 none /sys/fs/cgroup
            [ ! -d /etc/systemd/user ] || mount -t tmpfs none /etc/systemd/user  # what is enabled for all users
            exec setpriv --reuid {user["user"]} --regid {user["group"]} --clear-groups {MANAGER} --user --unit=basic.target'"""
        self.manager = Process(["sh", "-c", script], self.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.stack.callback(self.manager.end)
        wait_until(lambda: self.systemctl("is-active", "basic.target")[0] == 0, "the manager of services")
        self.systemctl("start", "dbus.service")

    @staticmethod
    def remove(group):
        (group / "cgroup.kill").write_text("1")  # of what was started in it alone
        wait_until(lambda: "populated 0" in (group / "cgroup.events").read_text(), "the end of all processes")
        for path in sorted((path for path in group.rglob("*") if path.is_dir()), reverse=True):
            path.rmdir()
        group.rmdir()

    def close(self):
        self.stack.close()

    def run(self, *words):
        """(exit status, output) of a command outside of all units."""
        done = subprocess.run([*map(str, words)], env=self.env, text=True, timeout=60 * SLOW,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, **ordinary_user())
        return done.returncode, done.stdout

    def systemctl(self, *words):
        return self.run("systemctl", "--user", *words)

    def properties(self, unit, *names):
        lines = self.systemctl("show", unit, *(f"--property={name}" for name in names))[1].splitlines()
        return dict(line.split("=", 1) for line in lines)
