# SPDX-License-Identifier: MIT
"""What keeps a desktop awake: a real logind on the session's system bus, and stand-ins for the
services of GNOME, Plasma, XFCE and the screen savers that behave as those do towards their clients.

As a program it is GNOME's session manager on the session bus of its environment, until it is ended.
"""

import os
import shutil
import subprocess

from gi.repository import Gio, GLib

from nimbo_desktop import Process, Session, connect, wait_until

LOGIND = "/lib/systemd/systemd-logind"
LOGIN1 = ("org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager")


class Logind:
    """The real one. It keeps its state under /run, so it gets one of its own; and a kernel that can suspend."""

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

    def __init__(self, session, configuration=""):
        self.session = session
        # What a process that has gone leaves in the folder is not gone with it, so the folder stays.
        self.state = session.folder / "logind"
        settings = self.state / "systemd" / "logind.conf.d" / "test.conf"
        settings.parent.mkdir(parents=True)
        settings.write_text("[Login]\n" + configuration)
        self.kernel = session.folder / "power"
        self.kernel.mkdir()
        (self.kernel / "state").write_text("freeze mem\n")
        (self.kernel / "mem_sleep").write_text("[s2idle]\n")
        self.start()

    def start(self):
        self.connection = self.session.system_bus.connect()
        prepare = f"mount --bind {self.kernel} /sys/power; mount --bind {self.state} /run && exec {LOGIND}"
        arguments = ["unshare", *self.namespace(), "sh", "-c", prepare]
        self.daemon = Process(arguments, self.session.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.session.stack.callback(self.daemon.end)
        wait_until(self.answers, "logind")

    def beside(self, *arguments):
        """The command line of a program that is to find this logind's files, too; to be started as the one who tests."""
        user = self.session.identity
        drop = ["setpriv", f"--reuid={user['user']}", f"--regid={user['group']}", "--clear-groups"] if user else []
        prepare = f'mount --bind {self.state} /run && exec "$@"'
        return ["unshare", *self.namespace(), "sh", "-c", prepare, "sh", *drop, *map(str, arguments)]

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


class Systemd:
    """Stands in for the service manager, which logind asks to suspend, and for polkit, which lets a user suspend but
    not against somebody's lock. `suspended` counts."""

    XML = """
    <node><interface name="org.freedesktop.systemd1.Manager">
      <method name="StartUnit"><arg type="s" direction="in"/><arg type="s" direction="in"/>
        <arg type="o" direction="out"/></method>
      <method name="Subscribe"/>
      <property name="Version" type="s" access="read"/>
      <signal name="JobRemoved"><arg type="u"/><arg type="o"/><arg type="s"/><arg type="s"/></signal>
    </interface><interface name="org.freedesktop.systemd1.Unit">
      <property name="LoadState" type="s" access="read"/>
    </interface><interface name="org.freedesktop.PolicyKit1.Authority">
      <method name="CheckAuthorization"><arg type="(sa{sv})" direction="in"/><arg type="s" direction="in"/>
        <arg type="a{ss}" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
        <arg type="(bba{ss})" direction="out"/></method>
    </interface></node>
    """
    MANAGER = ("/org/freedesktop/systemd1", "org.freedesktop.systemd1.Manager")
    AUTHORITY = "/org/freedesktop/PolicyKit1/Authority"

    def __init__(self, session, version):
        self.suspended = 0
        self.connection = session.system_bus.connect()
        manager, unit, authority = Gio.DBusNodeInfo.new_for_xml(self.XML).interfaces
        values = {"Version": version, "LoadState": "loaded"}
        value = lambda *arguments: GLib.Variant("s", values[arguments[-1]])  # noqa: E731
        self.connection.register_object(self.MANAGER[0], manager, self._manage, value, None)
        self.connection.register_object(self.MANAGER[0] + "/unit/suspend_2etarget", unit, None, value, None)
        self.connection.register_object(self.AUTHORITY, authority, self._authorize, None, None)
        for name in ("org.freedesktop.systemd1", "org.freedesktop.PolicyKit1"):
            own(session, self.connection, name)

    def _manage(self, connection, _sender, _path, _interface, method, parameters, invocation):
        if method != "StartUnit":
            return invocation.return_value(None)
        unit = parameters.unpack()[0]
        self.suspended += unit == "suspend.target"
        job = f"{self.MANAGER[0]}/job/1"
        invocation.return_value(GLib.Variant("(o)", (job,)))
        ended = GLib.Variant("(uoss)", (1, job, unit, "done"))
        return connection.emit_signal(None, *self.MANAGER, "JobRemoved", ended)

    def _authorize(self, _connection, _sender, _path, _interface, _method, parameters, invocation):
        granted = not parameters.unpack()[1].endswith("-ignore-inhibit")
        invocation.return_value(GLib.Variant("((bba{ss}))", ((granted, False, {}),)))


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
