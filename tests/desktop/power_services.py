# SPDX-License-Identifier: MIT
"""What keeps a desktop awake: a real logind on the session's system bus, and stand-ins for the
services of GNOME, Plasma, XFCE and the screen savers that behave as those do towards their clients.

As a program it is GNOME's session manager on the session bus of its environment, until it is ended.
"""

import os
import shutil
import subprocess

from gi.repository import Gio, GLib

from nimbo_desktop import Session, connect, wait_until

LOGIND = "/lib/systemd/systemd-logind"
LOGIN1 = ("org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager")


class Logind:
    """The real one. It keeps its state under /run, so it gets one of its own."""

    @staticmethod
    def missing():
        """Why it cannot run here; empty when it can."""
        if not os.access(LOGIND, os.X_OK):
            return "there is no systemd-logind"
        probe = ["unshare", *Logind.namespace(), "mount", "-t", "tmpfs", "tmpfs", "/run"]
        if shutil.which("unshare") is None or subprocess.run(probe, capture_output=True).returncode != 0:
            return "mount namespaces are not allowed"
        return ""

    @staticmethod
    def namespace():
        return ["--mount"] if os.geteuid() == 0 else ["--mount", "--map-root-user"]

    def __init__(self, session):
        self.session = session
        self.connection = session.system_bus.connect()
        self.start()

    def start(self):
        # What a process that has gone leaves in the folder is not gone with it, so the folder stays.
        state = self.session.folder / "logind"
        state.mkdir(exist_ok=True)
        prepare = f"mount --bind {state} /run && mkdir -p /run/systemd && exec {LOGIND}"
        self.daemon = self.session.start(
            ["unshare", *self.namespace(), "sh", "-c", prepare], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL
        )
        wait_until(self.answers, "logind")

    def answers(self):
        try:
            self.inhibitors()
        except GLib.Error:
            return False
        return True

    def stop(self):
        self.daemon.end()

    def inhibitors(self):
        """All that are held, as (what, who, why, mode), in alphabetical order."""
        held = self.session.call(*LOGIN1, "ListInhibitors", connection=self.connection)[0]
        return sorted((what, who, why, mode) for what, who, why, mode, _uid, _pid in held)


class CookieService:
    """A service that gives cookies, and forgets those of a client that leaves the bus."""

    def __init__(self, session, name, path, interface, take="Inhibit", arguments="ss", release="UnInhibit"):
        self.session, self.name, self.path = session, name, path
        parameters = "".join(f'<arg type="{letter}" direction="in"/>' for letter in arguments)
        self.description = Gio.DBusNodeInfo.new_for_xml(
            f'<node><interface name="{interface}"><method name="{take}">{parameters}'
            f'<arg type="u" direction="out"/></method><method name="{release}"><arg type="u" direction="in"/></method>'
            f"</interface></node>"
        ).interfaces[0]
        self.take = take
        self.last = 0
        self.start()

    def start(self):
        self.held = {}
        self.connection = self.session.bus.connect()
        self.connection.register_object(self.path, self.description, self._method, None, None)
        self.connection.signal_subscribe(
            "org.freedesktop.DBus", None, "NameOwnerChanged", None, None, Gio.DBusSignalFlags.NONE, self._owner_changed
        )
        own(self.session, self.connection, self.name)

    def stop(self):
        self.connection.flush_sync(None)  # closing alone drops answers that are not on their way yet
        self.connection.close_sync(None)
        self.held = {}

    def restart(self):
        self.stop()
        self.start()

    def reasons(self):
        """The last argument that is a text, of every cookie, in alphabetical order."""
        return sorted([value for value in arguments if isinstance(value, str)][-1] for _, arguments in self.held.values())

    def flags(self):
        return sorted(arguments[-1] for _, arguments in self.held.values())

    def _method(self, _connection, sender, _path, _interface, method, parameters, invocation):
        if method == self.take:
            self.last += 1
            self.held[self.last] = (sender, parameters.unpack())
            invocation.return_value(GLib.Variant("(u)", (self.last,)))
            return
        self.held.pop(parameters.unpack()[0], None)
        invocation.return_value(None)

    def _owner_changed(self, _connection, _sender, _path, _interface, _signal, parameters):
        name, _old, new = parameters.unpack()
        if not new:
            self.held = {cookie: entry for cookie, entry in self.held.items() if entry[0] != name}


def own(session, connection, name):
    parameters = GLib.Variant("(su)", (name, 4))
    bus = "org.freedesktop.DBus"
    session.call(bus, "/org/freedesktop/DBus", bus, "RequestName", parameters, connection)


def gnome_session(session):
    name = "org.gnome.SessionManager"
    return CookieService(session, name, "/org/gnome/SessionManager", name, arguments="susu", release="Uninhibit")


def power_management(session):
    name = "org.freedesktop.PowerManagement"
    return CookieService(session, name, "/org/freedesktop/PowerManagement/Inhibit", f"{name}.Inhibit")


def screen_saver(session):
    name = "org.freedesktop.ScreenSaver"
    return CookieService(session, name, "/org/freedesktop/ScreenSaver", name)


def plasma_policy_agent(session):
    """Its name is all that matters."""
    connection = session.bus.connect()
    own(session, connection, "org.kde.Solid.PowerManagement.PolicyAgent")
    return connection


class JoinedSession:
    """What the stand-ins need of a session that another process owns."""

    call = Session.call

    def __init__(self):
        self.bus = self
        self.connection = self.connect()

    def connect(self):
        return connect(os.environ["DBUS_SESSION_BUS_ADDRESS"])


if __name__ == "__main__":
    gnome_session(JoinedSession())
    GLib.MainLoop().run()
