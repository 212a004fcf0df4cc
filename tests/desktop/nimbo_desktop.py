# SPDX-License-Identifier: MIT
"""A private desktop for tests: buses, a display, a tray host and the program under test.

Everything lives in a temporary folder and ends with its owner; only processes started here are
ended, by their ids. Nothing sleeps to wait: `wait_until` turns the GLib main context until the
expected state is there, or fails after a bound.
"""

import contextlib
import itertools
import os
import pathlib
import pwd
import shutil
import signal
import subprocess
import tempfile
import time

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

SLOW = 4 if os.environ.get("NIMBO_SLOW") else 1
BOUND = 10 * SLOW  # seconds that anything may take


def wait_until(predicate, what, bound=BOUND):
    """Turns the main context until predicate() is true; returns its value."""
    context = GLib.MainContext.default()
    deadline = time.monotonic() + bound
    ticker = GLib.timeout_add(20, lambda: True)  # lets the context return now and then
    try:
        while True:
            value = predicate()
            if value:
                return value
            if time.monotonic() > deadline:
                raise AssertionError(f"waited {bound} s in vain for {what}")
            context.iteration(True)
    finally:
        GLib.source_remove(ticker)


def turn_for(seconds):
    """Turns the main context for a while, to show that nothing happens meanwhile."""
    deadline = time.monotonic() + seconds
    with contextlib.suppress(AssertionError):
        wait_until(lambda: time.monotonic() > deadline, "the end", seconds + 1)


class Process:
    """One child process, ended by its own id."""

    def __init__(self, arguments, env, **options):
        self.arguments = arguments
        self.process = subprocess.Popen(arguments, env=env, **options)

    @property
    def pid(self):
        return self.process.pid

    @property
    def running(self):
        return self.process.poll() is None

    def end(self, number=signal.SIGTERM):
        if self.running:
            self.process.send_signal(number)
            try:
                self.process.wait(5 * SLOW)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        for stream in (self.process.stdout, self.process.stderr):
            if stream:
                stream.close()


def ordinary_user():
    """Options that make a process one of an ordinary user, also where the tests are run by root."""
    if os.geteuid() != 0:
        return {}
    user = pwd.getpwnam("nobody")
    return {"user": user.pw_uid, "group": user.pw_gid, "extra_groups": []}


BUS_CONFIGURATION = """
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>{address}</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{services}</servicedir>
  <policy context="mandatory">
    <allow user="*"/><allow own="*"/><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/>
  </policy>
</busconfig>
"""
# What a bus may start. More would make tests depend on the desktops that are installed.
SERVICES = ["org.xfce.Xfconf", "org.a11y.Bus", "ca.desrt.dconf"]


class Bus:
    """A message bus of our own, for every user."""

    def __init__(self, env, system=False):
        services = pathlib.Path(env["HOME"]) / "services"
        services.mkdir(exist_ok=True)
        for file in (pathlib.Path("/usr/share/dbus-1/services", f"{name}.service") for name in SERVICES):
            if file.exists():
                shutil.copy(file, services)
        self.env = env
        self.variable = "DBUS_SYSTEM_BUS_ADDRESS" if system else "DBUS_SESSION_BUS_ADDRESS"
        self.socket = pathlib.Path(env["XDG_RUNTIME_DIR"]) / ("system-bus" if system else "session-bus")
        self.address = f"unix:path={self.socket}"
        self.configuration = self.socket.with_suffix(".conf")
        self.configuration.write_text(BUS_CONFIGURATION.format(services=services, address=self.address))
        self.start()

    def start(self):
        self.socket.unlink(missing_ok=True)
        read, write = os.pipe()
        self.daemon = Process(
            ["dbus-daemon", f"--config-file={self.configuration}", "--nofork", f"--print-address={write}"],
            self.env,
            pass_fds=[write],
            # What the bus starts would write to the terminal, too.
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        os.close(write)
        with os.fdopen(read) as stream:
            stream.readline()

    def stop(self):
        """Whoever is connected is cut off; it may start again at the same address."""
        self.daemon.end()

    def connect(self):
        return connect(self.address)


def connect(address):
    connection = Gio.DBusConnection.new_for_address_sync(
        address,
        Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION,
        None,
        None,
    )
    connection.set_exit_on_close(False)
    return connection


class Display:
    """An X server without a screen of glass, on a number that is free. A file has what it shows, without the pointer."""

    # Far from the lowest free one that others take, and never used again: a program whose display is gone must not
    # find that of another test under its name.
    numbers = itertools.count(1000 + os.getpid() % 3000 * 16)

    def __init__(self, env, size="1440x900x24", dpi=96):
        self.env = env
        self.options = ["-screen", "0", size, "-dpi", str(dpi), "-nolisten", "tcp", "-noreset", "-nocursor"]
        self.options += ["-fbdir", env["XDG_RUNTIME_DIR"]]
        self.frame_buffer = pathlib.Path(env["XDG_RUNTIME_DIR"]) / "Xvfb_screen0"
        while not self._start(next(self.numbers)):
            pass

    def _start(self, number):
        read, write = os.pipe()
        self.server = Process(
            ["Xvfb", f":{number}", "-displayfd", str(write), *self.options],
            self.env,
            pass_fds=[write],
            stderr=subprocess.DEVNULL,
        )
        os.close(write)
        with os.fdopen(read) as stream:
            self.name = f":{number}"
            return stream.readline().strip() == str(number)

    def restart(self):
        """Dies, and begins anew with nobody's windows under the same name."""
        self.server.end(signal.SIGKILL)
        self._start(int(self.name[1:]))


class Session:
    """Environment, session bus and, when asked for, a display and a system bus. What is started in it runs as
    `identity` says, which are options of Popen."""

    def __init__(self, display=False, system_bus=False, desktop="XFCE", size="1440x900x24", identity=None):
        self.stack = contextlib.ExitStack()
        self.identity = identity or {}
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="nimbo-desktop-"))
        self.stack.callback(shutil.rmtree, self.folder, ignore_errors=True)
        kept = {
            name: os.environ[name]
            for name in os.environ
            if name in ("PATH", "LANG", "QT_SCALE_FACTOR") or name.endswith("SAN_OPTIONS")
        }
        self.env = {
            **kept,
            "HOME": str(self.folder),
            "XDG_RUNTIME_DIR": str(self.folder / "run"),
            "XDG_CONFIG_HOME": str(self.folder / "config"),
            "XDG_DATA_HOME": str(self.folder / "data"),
            "XDG_CACHE_HOME": str(self.folder / "cache"),
            "XDG_CURRENT_DESKTOP": desktop,
            "XDG_SESSION_TYPE": "x11",
            "LC_ALL": "C.UTF-8",
            "NO_AT_BRIDGE": "1",
        }
        for name in ("run", "config", "data", "cache"):
            (self.folder / name).mkdir(mode=0o700)
        if self.identity:
            for folder in (self.folder, *self.folder.iterdir()):
                os.chown(folder, self.identity["user"], self.identity["group"])
        self.display = None
        if display:
            self.display = Display(self.env, size)
            self.stack.callback(lambda: self.display.server.end())
            self.env["DISPLAY"] = self.display.name
        self.bus = self._bus()
        # Without one of our own the program would talk to the machine's real system bus.
        self.env["DBUS_SYSTEM_BUS_ADDRESS"] = f"unix:path={self.folder}/no-system-bus"
        self.system_bus = self._bus(system=True) if system_bus else None
        self.connection = self.bus.connect()

    def _bus(self, system=False):
        bus = Bus(self.env, system)
        self.stack.callback(bus.stop)
        self.env[bus.variable] = bus.address
        return bus

    def start(self, arguments, **options):
        process = Process([str(argument) for argument in arguments], self.env, **{**self.identity, **options})
        self.stack.callback(process.end)
        return process

    def names(self):
        return self.call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "ListNames")[0]

    def call(self, name, path, interface, method, parameters=None, connection=None):
        """A method call; turns the main context meanwhile, because the callee may call back."""
        outcome = []

        def finished(source, result):
            try:
                outcome.append((source.call_finish(result), None))
            except GLib.Error as error:
                outcome.append((None, error))

        (connection or self.connection).call(
            name, path, interface, method, parameters, None, Gio.DBusCallFlags.NONE, BOUND * 1000, None, finished
        )
        wait_until(lambda: outcome, f"{interface}.{method}")
        value, error = outcome[0]
        if error:
            raise error
        return value.unpack()

    def settings(self, **values):
        """Writes the program's settings file."""
        import json

        path = self.folder / "config" / "com.quellwerk.Nimbo.json"
        path.write_text(json.dumps({key.replace("__", "."): value for key, value in values.items()}))
        return path

    def close(self):
        if not self.connection.is_closed():
            self.connection.close_sync(None)
        self.stack.close()


WATCHER_XML = """
<node><interface name="org.kde.StatusNotifierWatcher">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
  <signal name="StatusNotifierItemUnregistered"><arg type="s"/></signal>
  <signal name="StatusNotifierHostRegistered"/>
</interface></node>
"""

ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"


class TrayItem:
    """One registered item, as a host sees it."""

    def __init__(self, host, name):
        self.host = host
        self.name = name
        self.signals = []
        connection = host.connection
        self.subscription = connection.signal_subscribe(
            name, None, None, None, None, Gio.DBusSignalFlags.NONE, self._signal
        )

    def _signal(self, _connection, _sender, _path, interface, signal_name, parameters):
        self.signals.append((interface, signal_name, parameters.unpack()))

    def get(self, name, path="/StatusNotifierItem", interface=ITEM):
        parameters = GLib.Variant("(ss)", (interface, name))
        return self._call(path, "org.freedesktop.DBus.Properties", "Get", parameters)[0]

    def properties(self):
        parameters = GLib.Variant("(s)", (ITEM,))
        return self._call("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "GetAll", parameters)[0]

    @property
    def identifier(self):
        return self.get("Id")

    @property
    def tooltip(self):
        _icon, _pixmaps, title, text = self.get("ToolTip")
        return title + ("\n" + text if text else "")

    def activate(self, x, y):
        self._call("/StatusNotifierItem", ITEM, "Activate", GLib.Variant("(ii)", (x, y)))

    def secondary_activate(self, x, y):
        self._call("/StatusNotifierItem", ITEM, "SecondaryActivate", GLib.Variant("(ii)", (x, y)))

    def open_menu(self):
        """Opens the menu as a host does and returns its entries as (id, properties)."""
        path = self.get("Menu")
        self._call(path, MENU, "AboutToShow", GLib.Variant("(i)", (0,)))
        self._event(path, 0, "opened")
        _revision, (_id, _properties, children) = self._call(
            path, MENU, "GetLayout", GLib.Variant("(iias)", (0, -1, []))
        )
        return [(child[0], child[1]) for child in children]

    def close_menu(self):
        self._event(self.get("Menu"), 0, "closed")

    def choose(self, label):
        """Opens the menu and clicks the entry of that label."""
        entries = {properties.get("label"): number for number, properties in self.open_menu()}
        self.close_menu()
        self.click_menu(entries[label])

    def click_menu(self, identifier):
        self._event(self.get("Menu"), identifier, "clicked")

    def _event(self, path, identifier, kind):
        parameters = GLib.Variant("(isvu)", (identifier, kind, GLib.Variant("i", 0), 0))
        self._call(path, MENU, "Event", parameters)

    def _call(self, path, interface, method, parameters):
        return self.host.session.call(self.name, path, interface, method, parameters, self.host.connection)


class TrayHost:
    """A StatusNotifierWatcher and host in one, that the test owns."""

    def __init__(self, session):
        self.session = session
        self.items = []
        self.registrations = 0
        self.watcher = None
        self.start()

    def start(self):
        self.connection = self.session.bus.connect()
        info = Gio.DBusNodeInfo.new_for_xml(WATCHER_XML).interfaces[0]
        self.registration = self.connection.register_object(
            "/StatusNotifierWatcher", info, self._method, self._property, None
        )
        self.vanished = self.connection.signal_subscribe(
            "org.freedesktop.DBus",
            "org.freedesktop.DBus",
            "NameOwnerChanged",
            None,
            None,
            Gio.DBusSignalFlags.NONE,
            self._owner_changed,
        )
        self.session.call(
            "org.freedesktop.DBus",
            "/org/freedesktop/DBus",
            "org.freedesktop.DBus",
            "RequestName",
            GLib.Variant("(su)", ("org.kde.StatusNotifierWatcher", 4)),
            self.connection,
        )

    def stop(self):
        """The panel goes away, and the watcher with it."""
        self.connection.close_sync(None)
        self.items = []

    def restart(self):
        self.stop()
        self.start()

    def _method(self, _connection, sender, _path, _interface, method, parameters, invocation):
        if method == "RegisterStatusNotifierItem":
            self.registrations += 1
            name = parameters.unpack()[0]
            name = sender if name.startswith("/") else name
            if name not in [item.name for item in self.items]:
                self.items.append(TrayItem(self, name))
        invocation.return_value(None)

    def _property(self, _connection, _sender, _path, _interface, name):
        return {
            "RegisteredStatusNotifierItems": GLib.Variant("as", [item.name for item in self.items]),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
            "ProtocolVersion": GLib.Variant("i", 0),
        }[name]

    def _owner_changed(self, _connection, _sender, _path, _interface, _signal, parameters):
        name, _old, new = parameters.unpack()
        if not new:
            self.items = [item for item in self.items if item.name != name]

    def wait_for_items(self, count, bound=BOUND):
        wait_until(lambda: len(self.items) == count, f"{count} items, not {len(self.items)}", bound)
        return self.items

    def item(self, identifier):
        def find():
            for item in list(self.items):
                with contextlib.suppress(GLib.Error):
                    if item.identifier == identifier:
                        return item
            return None

        return wait_until(find, f"the item {identifier}")


NOTIFICATIONS_XML = """
<node><interface name="org.freedesktop.Notifications">
  <method name="Notify"><arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
    <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/></method>
</interface></node>
"""


class Notifications:
    """The desktop's notification service: keeps the titles and texts of what it was to show."""

    def __init__(self, session):
        self.shown = []
        name = "org.freedesktop.Notifications"
        self.connection = session.bus.connect()
        session.stack.callback(self.connection.close_sync, None)
        info = Gio.DBusNodeInfo.new_for_xml(NOTIFICATIONS_XML).interfaces[0]
        self.connection.register_object("/org/freedesktop/Notifications", info, self._notify, None, None)
        bus = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")
        session.call(*bus, "RequestName", GLib.Variant("(su)", (name, 4)), self.connection)

    def _notify(self, _connection, _sender, _path, _interface, _method, parameters, invocation):
        self.shown.append(parameters.unpack()[3:5])
        invocation.return_value(GLib.Variant("(u)", (len(self.shown),)))


def margins_of(session, window):
    """Left, right, top, bottom: what a window says is no part of it but its shadow."""
    ask = ["xprop", "-notype", "-id", str(window), "_GTK_FRAME_EXTENTS"]
    said = subprocess.run(ask, env=session.env, capture_output=True, text=True).stdout
    return tuple(map(int, said.split("=")[1].split(","))) if "=" in said else (0, 0, 0, 0)


def windows_of(session, pid):
    """Visible top-level windows of a process, if there is one, as {id: (x, y, width, height)}, without their shadows."""
    if pid is None:
        return {}
    found = subprocess.run(
        ["xdotool", "search", "--onlyvisible", "--pid", str(pid)], env=session.env, capture_output=True, text=True
    )
    windows = {}
    for identifier in found.stdout.split():
        shell = subprocess.run(
            ["xdotool", "getwindowgeometry", "--shell", identifier], env=session.env, capture_output=True, text=True
        )
        values = dict(line.split("=") for line in shell.stdout.split() if "=" in line)
        if {"X", "Y", "WIDTH", "HEIGHT"} <= values.keys():
            x, y, width, height = (int(values[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))
            left, right, top, bottom = margins_of(session, identifier)
            windows[int(identifier)] = (x + left, y + top, width - left - right, height - top - bottom)
    return windows


def xdotool(session, *arguments):
    subprocess.run(["xdotool", *map(str, arguments)], env=session.env, check=True)
