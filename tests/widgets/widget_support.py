# SPDX-License-Identifier: MIT
"""What the widgets' tests share."""

import pathlib
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
WIDGETS = HERE.parent.parent / "widgets"
sys.path.insert(0, str(HERE.parent / "desktop"))

from gi.repository import Gio, GLib  # noqa: E402

from nimbo_desktop import wait_until  # noqa: E402

PYTHON = "/usr/bin/python3"
CARD = WIDGETS / "desktop/nimbo-desktop-widget"
NIMBO, PATH = "com.quellwerk.Nimbo", "/com/quellwerk/Nimbo"
PROPERTIES = "org.freedesktop.DBus.Properties"
XML = f"""
<node>
  <interface name="{PROPERTIES}">
    <method name="GetAll"><arg type="s" direction="in"/><arg type="a{{sv}}" direction="out"/></method>
    <method name="Get"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
    <signal name="PropertiesChanged"><arg type="s"/><arg type="a{{sv}}"/><arg type="as"/></signal>
  </interface>
  <interface name="{NIMBO}.Resources1"><method name="Watch"><arg type="as" direction="in"/></method></interface>
</node>
"""
INTERFACES = {
    f"{NIMBO}.Usage1": ("Codex", "Claude"),
    f"{NIMBO}.Resources1": ("Memory", "MemoryFailed", "Cpu", "Temperature"),
    f"{NIMBO}.Awake1": ("Active", "Own", "EndsAt", "KeepsDisplayOn", "Message", "Holders"),
}


def provider(*limits, enabled=True, message="", read=None):
    """As Usage1 has it; a limit is its title, the percentage used and, if known, when it resets."""
    read = int(time.time()) if read is None else read
    filled = [(*limit, 0)[:3] for limit in limits]
    return GLib.Variant("(bsxsa(sdx))", (enabled, message, read, "", filled))


OFF = provider(enabled=False, read=0)


def temperature(celsius):
    return GLib.Variant("d", celsius)


class Service:
    """A program that says on the bus whatever it is told, of any type; `watched` has what the card asked to be told."""

    def __init__(self, session, **values):
        self.session, self.connection, self.watched = session, session.bus.connect(), []
        self.values = {"Codex": OFF, "Claude": OFF, "Temperature": temperature(-1)} | values
        for interface in Gio.DBusNodeInfo.new_for_xml(XML).interfaces:
            self.connection.register_object(PATH, interface, self._method, None, None)
        name = GLib.Variant("(su)", (NIMBO, 4))
        bus = "org.freedesktop.DBus"
        session.call(bus, "/org/freedesktop/DBus", bus, "RequestName", name, self.connection)

    def _method(self, _connection, _sender, _path, _interface, method, parameters, invocation):
        asked = parameters.unpack()
        if method == "Watch":
            self.watched.append(asked[0])
            invocation.return_value(None)
        elif method == "Get":
            invocation.return_value(GLib.Variant("(v)", (self.values[asked[1]],)))
        else:
            values = {name: self.values[name] for name in INTERFACES[asked[0]] if name in self.values}
            invocation.return_value(GLib.Variant("(a{sv})", (values,)))

    def say(self, **values):
        self.values |= values
        for name, value in values.items():
            news = GLib.Variant("(sa{sv}as)", (_interface_of(name), {name: value}, []))
            self.connection.emit_signal(None, PATH, PROPERTIES, "PropertiesChanged", news)
        self.connection.flush_sync(None)

    def leave(self):
        self.connection.close_sync(None)


def _interface_of(name):
    return next(interface for interface, names in INTERFACES.items() if name in names)


def switches(pid):
    """How often the program's threads have woken up so far."""
    total = 0
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        for line in (task / "status").read_text().splitlines():
            if line.startswith("voluntary_ctxt_switches"):
                total += int(line.split()[1])
    return total


def written(pid):
    """Bytes so far, to the display too."""
    return int(next(line.split()[1] for line in pathlib.Path(f"/proc/{pid}/io").read_text().splitlines() if "wchar" in line))
