# SPDX-License-Identifier: MIT
"""What a journey needs of a desktop, and what all of them have in common."""

import contextlib
import ctypes
import os
import pathlib
import re
import shutil
import signal
import subprocess

from gi.repository import GLib

import look
from nimbo_desktop import Session, wait_until, xdotool
from power_services import Logind
from program import BINARY, REPOSITORY
from screen import Frame, Screen

QUIET = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
WATCHER = "org.kde.StatusNotifierWatcher"
BECOME_REAPER = 36  # of prctl
COME_UP = 60  # seconds that a desktop may take


class Portal:
    """The desktop portal's settings, for desktops whose own portal needs more than runs here."""

    XML = """
    <node><interface name="org.freedesktop.portal.Settings">
      <method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
      <method name="ReadOne"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
      <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
    </interface></node>"""
    PLACE = ("/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings")

    def __init__(self, session, dark):
        from gi.repository import Gio

        self.value = GLib.Variant("u", 1 if dark else 2)
        self.connection = session.bus.connect()
        session.stack.callback(self.connection.close_sync, None)
        description = Gio.DBusNodeInfo.new_for_xml(self.XML).interfaces[0]
        self.connection.register_object(self.PLACE[0], description, self._read, None, None)
        bus, name = "org.freedesktop.DBus", "org.freedesktop.portal.Desktop"
        session.call(bus, "/" + bus.replace(".", "/"), bus, "RequestName", GLib.Variant("(su)", (name, 4)), self.connection)

    def _read(self, _connection, _sender, _path, _interface, method, parameters, invocation):
        if parameters.unpack()[1] != "color-scheme":
            return invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "no such setting")
        value = GLib.Variant("v", self.value) if method == "Read" else self.value
        return invocation.return_value(GLib.Variant("(v)", (value,)))

    def set(self, dark):
        self.value = GLib.Variant("u", 1 if dark else 2)
        change = GLib.Variant("(ssv)", ("org.freedesktop.appearance", "color-scheme", self.value))
        self.connection.emit_signal(None, *self.PLACE, "SettingChanged", change)


class Desktop(Screen):
    """One desktop on a display of its own. Places and sizes are pixels of its picture; `edge` is where the panel is."""

    current = None  # XDG_CURRENT_DESKTOP
    edges = ("top", "bottom", "left", "right")
    has_tray = True
    left_click_opens_menu = False  # and a double click the dashboard
    item_gap = 3  # points, at least, between items, and more than within one
    item_least = 5  # points along the panel
    escape_closes_menus = True  # those of the panel
    tray_part = (0.0, 1.0)  # of the panel's length: where nothing but items changes
    empty_part = 0.3  # of the panel's length: a place with nothing in it
    panel_follows_scheme = True
    real_logind = True
    cannot = {}  # steps of the journey, each with the reason

    def __init__(self, edge="top", scale=1, screens=1, dark=False):
        self.edge, self.scale, self.screens, self.dark = edge, scale, screens, dark
        self.width, self.height = round(1280 * self.picture_scale()), round(800 * self.picture_scale())
        self.cannot = dict(type(self).cannot)

    def picture_scale(self):
        return self.scale

    # What a desktop overrides

    def start_desktop(self):
        raise NotImplementedError

    def start_panel(self):
        raise NotImplementedError

    def stop_panel(self):
        self.panel.end(signal.SIGKILL)

    def set_scheme(self, dark):
        raise NotImplementedError

    def held(self):
        """What keeps this machine awake, in the words of the service that this desktop's idle daemon heeds."""
        return [f"{what} {who} {why}" for what, who, why, mode in self.logind.inhibitors() if mode == "block"]

    def active_window(self):
        """(title, application, whether it has an icon) of the window that has the keyboard."""
        shown = subprocess.run(["xprop", "-root", "-notype", "_NET_ACTIVE_WINDOW"], env=self.session.env, capture_output=True, text=True)
        identifier = re.search("0x[0-9a-f]+", shown.stdout + " 0x0")[0]
        ask = ["xprop", "-id", identifier, "-notype", "_NET_WM_NAME", "WM_CLASS", "_NET_WM_ICON"]
        said = subprocess.run(ask, env=self.session.env, capture_output=True, text=True).stdout
        values = dict(line.split(" = ", 1) for line in said.splitlines() if " = " in line)
        application = values.get("WM_CLASS", "").split('"')[1:2]
        return values.get("_NET_WM_NAME", "").strip('"'), "".join(application), "_NET_WM_ICON" in values

    # Its life

    def session_options(self):
        size = f"{self.width}x{self.height}x24"
        return {"display": self.screens == 1, "size": size}

    def start(self):
        ctypes.CDLL(None).prctl(BECOME_REAPER, 1, 0, 0, 0)  # what the bus starts is ended, too
        self.session = Session(system_bus=True, desktop=self.current, **self.session_options())
        env = self.session.env
        env["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        env["XDG_DATA_DIRS"] = "/usr/local/share:/usr/share"
        env["PATH"] = f"{pathlib.Path(BINARY).parent}:{env['PATH']}"
        self.install()
        if self.session.display is None and env["XDG_SESSION_TYPE"] == "x11":
            self.start_screens()
        if self.real_logind and not Logind.missing():
            self.logind = Logind(self.session)
        else:
            self.session.start(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"], **QUIET)
        self.start_desktop()
        self.start_panel()
        if self.has_tray:
            self.wait_for_name(WATCHER)
        wait_until(self.shown, "the panel beside the ground", COME_UP)

    def install(self):
        """What a package puts where the desktop finds it."""
        data = pathlib.Path(self.session.env["XDG_DATA_HOME"])
        (data / "applications").mkdir()
        shutil.copy(REPOSITORY / "data" / "com.quellwerk.Nimbo.desktop", data / "applications")
        shutil.copytree(pathlib.Path(BINARY).parent.parent / "share" / "icons", data / "icons", dirs_exist_ok=True)

    def start_screens(self):
        """Two screens beside each other: a driver for none, instead of the server with one frame buffer."""
        configuration = self.session.folder / "xorg.conf"
        width, height = self.width, self.height
        clock = (width + 400) * (height + 31) * 60 / 1e6
        mode = f"{clock:.2f} {width} {width + 64} {width + 192} {width + 400} {height} {height + 3} {height + 9} {height + 31}"
        configuration.write_text(
            'Section "ServerFlags"\n Option "AutoAddDevices" "false"\n Option "AutoEnableDevices" "false"\nEndSection\n'
            f'Section "Monitor"\n Identifier "any"\n HorizSync 5-1000\n VertRefresh 5-200\n Modeline "wanted" {mode}\nEndSection\n'
            'Section "Device"\n Identifier "none"\n Driver "dummy"\n VideoRam 256000\nEndSection\n'
            'Section "Screen"\n Identifier "screen"\n Device "none"\n Monitor "any"\n DefaultDepth 24\n'
            f' SubSection "Display"\n Depth 24\n Modes "wanted"\n Virtual {2 * width} {height}\n EndSubSection\nEndSection\n'
        )
        read, write = os.pipe()
        options = ["-logfile", self.session.folder / "xorg.log", "-seat", "none", "-novtswitch", "-nolisten", "tcp", "-noreset"]
        self.session.start(
            ["/usr/lib/xorg/Xorg", "-displayfd", write, "-config", configuration, *options], pass_fds=[write], **QUIET
        )
        os.close(write)
        with os.fdopen(read) as stream:
            self.session.env["DISPLAY"] = ":" + stream.readline().strip()
        self.run("xrandr", "--output", "DUMMY0", "--mode", "wanted", "--pos", "0x0", "--primary")
        self.run("xrandr", "--addmode", "DUMMY1", "wanted")
        self.run("xrandr", "--output", "DUMMY1", "--mode", "wanted", "--pos", f"{width}x0")

    def run(self, *arguments):
        subprocess.run([str(value) for value in arguments], env=self.session.env, check=True, timeout=COME_UP, **QUIET)

    def set_dpi(self, scale):
        """Tells programs of the X server how large to draw."""
        resources = self.session.folder / "resources"
        resources.write_text(f"Xft.dpi: {int(96 * scale)}\n")
        self.run("xrdb", "-merge", resources)

    def allow(self, *patterns):
        """Lets the bus start these services."""
        for pattern in patterns:
            for file in pathlib.Path("/usr/share/dbus-1/services").glob(f"{pattern}.service"):
                kept = [line for line in file.read_text().splitlines() if not line.startswith("SystemdService=")]
                (self.session.folder / "services" / file.name).write_text("\n".join(kept) + "\n")
        bus = "org.freedesktop.DBus"
        self.session.call(bus, "/org/freedesktop/DBus", bus, "ReloadConfig")

    def wait_for_name(self, name):
        wait_until(lambda: name in self.session.names(), name, COME_UP)

    def stop(self):
        self.session.close()
        end_descendants()

    # Eyes and hands

    def frame(self):
        if self.session.display:
            self.path = self.session.display.frame_buffer
            return super().frame()
        picture = subprocess.run(
            ["import", "-window", "root", "-depth", "8", "bgra:-"], env=self.session.env, capture_output=True, check=True
        )
        return Frame(self.width * self.screens, self.height, picture.stdout)

    def pointer(self, x, y):
        xdotool(self.session, "mousemove", x, y)

    def click(self, x, y, button=1, times=1):
        self.pointer(x, y)
        xdotool(self.session, "click", "--repeat", times, "--delay", 60, button)

    def key(self, name):
        xdotool(self.session, "key", name)

    # Places

    def screen_area(self):
        """The screen with the panel."""
        return 0, 0, self.width, self.height

    def work_area(self):
        """That screen without its panel: the box of the ground."""
        frame = self.frame()
        return look.box(look.bare(frame), frame.width, self.screen_area(), self.width // 2)

    def shown(self):
        area = self.work_area()
        return area and area != self.screen_area() and area[2] * area[3] > 0.7 * self.width * self.height

    def panel_area(self):
        left, top, width, height = self.screen_area()
        x, y, across, down = self.work
        return {
            "top": (left, top, width, y - top),
            "bottom": (left, y + down, width, top + height - y - down),
            "left": (left, top, x - left, height),
            "right": (x + across, top, left + width - x - across, height),
        }[self.edge]

    @property
    def horizontal(self):
        return self.edge in ("top", "bottom")

    def panel_point(self, part):
        x, y, width, height = self.panel_area()
        return (x + int(width * part), y + height // 2) if self.horizontal else (x + width // 2, y + int(height * part))

    def item_extents(self):
        """Points along the panel: the least gap between items, the least extent of one. Pictures are wider than high."""
        return (self.item_gap, self.item_least) if self.horizontal else (6, 3)

    def tray_area(self):
        begin, end = self.tray_part
        x, y, width, height = self.panel_area()
        if self.horizontal:
            return x + int(width * begin), y, int(width * (end - begin)), height
        return x, y + int(height * begin), width, int(height * (end - begin))


def descendants():
    """What this process has started, directly or not, and runs."""
    parents, ended = {}, set()
    for entry in pathlib.Path("/proc").iterdir():
        with contextlib.suppress(OSError, ValueError):
            state, parent = (entry / "stat").read_text(errors="replace").rpartition(")")[2].split()[:2]
            parents[int(entry.name)] = int(parent)
            if state == "Z":
                ended.add(int(entry.name))
    ours = {os.getpid()}
    while more := {pid for pid, parent in parents.items() if parent in ours} - ours:
        ours |= more
    return ours - ended - {os.getpid()}


def end_descendants():
    while running := descendants():
        for pid in running:
            with contextlib.suppress(ProcessLookupError):
                os.kill(pid, signal.SIGKILL)
        with contextlib.suppress(ChildProcessError):
            while os.waitpid(-1, os.WNOHANG)[0]:
                pass
