# SPDX-License-Identifier: MIT
"""GNOME's shell and session manager, on X11 and on Wayland, with and without the extension that shows items."""

import subprocess

from gi.repository import GLib

import look
from desktop import QUIET, Desktop, Portal
from nimbo_desktop import wait_until
from screen import Frame
from wayland_input import Hands
from x11_desktops import session_manager_inhibitors

EXTENSION = "ubuntu-appindicators@ubuntu.com"
SESSION = "[GNOME Session]\nName=Test\nRequiredComponents=test-shell;\n"
SHELL = """[Desktop Entry]
Type=Application
Name=Test shell
Exec={command}
NoDisplay=true
X-GNOME-Autostart-Phase={phase}
X-GNOME-Provides=panel;windowmanager;
X-GNOME-Autostart-Notify=true
X-GNOME-AutoRestart=false
"""


class Gnome(Desktop):
    current = "GNOME"
    edges = ("top",)
    left_click_opens_menu = True
    item_gap = 8  # between a picture and its label are some
    tray_part = (0.6, 1.0)  # the clock is in the middle
    empty_part = 0.3
    panel_follows_scheme = False  # its bar is black
    real_logind = False
    cannot = {"tooltip": "GNOME’s shell shows none for items."}
    command, phase = "gnome-shell --x11 --unsafe-mode", "WindowManager"

    def __init__(self, extension=True, **options):
        super().__init__(**options)
        self.extension = extension
        self.has_tray = extension
        if not extension:
            without = "starts menu live_menu left middle place own_item awake schemes new_panel logout"
            self.cannot |= dict.fromkeys(without.split(), "GNOME’s shell shows no items without the extension.")

    def start_desktop(self):
        env, folder = self.session.env, self.session.folder
        data = folder / "data"
        (folder / "autostart").mkdir()
        env.update(
            GSETTINGS_BACKEND="keyfile", LIBGL_ALWAYS_SOFTWARE="1", DESKTOP_SESSION="gnome", XDG_SESSION_DESKTOP="gnome",
            XDG_SESSION_CLASS="user", GNOME_SHELL_SESSION_MODE="user", XDG_CONFIG_DIRS=str(folder),
            XDG_DATA_DIRS=f"{data}:/usr/local/share:/usr/share",
        )
        for schema, key, value in (
            ("org.gnome.desktop.interface", "enable-animations", "false"),
            ("org.gnome.shell", "welcome-dialog-last-shown-version", "99"),
            ("org.gnome.shell", "enabled-extensions", f"['{EXTENSION}']" if self.extension else "[]"),
            ("org.gnome.desktop.session", "idle-delay", "0"),
            ("org.gnome.desktop.screensaver", "lock-enabled", "false"),
            ("org.gnome.desktop.background", "picture-options", "none"),
            ("org.gnome.desktop.background", "primary-color", look.GROUND),
            ("org.gnome.desktop.interface", "color-scheme", self.scheme(self.dark)),
            ("org.gnome.desktop.interface", "text-scaling-factor", self.text_scale()),
        ):
            self.run("gsettings", "set", schema, key, value)
        self.portal = Portal(self.session, self.dark)
        (data / "gnome-session" / "sessions").mkdir(parents=True)
        (data / "gnome-session" / "sessions" / "test.session").write_text(SESSION)
        entry = SHELL.format(command=self.command, phase=self.phase)
        (data / "applications" / "test-shell.desktop").write_text(entry)
        self.session.start(["/usr/libexec/gnome-session-binary", "--builtin", "--session=test"], **QUIET)
        self.wait_for_name("org.gnome.Shell")
        wait_until(lambda: self.evaluate("!Main.layoutManager._startingUp") == "true", "the shell", 60)
        self.take_displays()
        if self.picture_scale() > 1:
            self.enlarge_screens()
        self.session.start(["/usr/libexec/gsd-xsettings"], **QUIET)  # tells programs how large to draw
        self.evaluate("Main.overview.hide(); for (const source of Main.messageTray.getSources()) source.destroy();")

    def picture_scale(self):
        return self.scale / self.text_scale()

    def text_scale(self):
        """A fraction makes texts larger, not the screen."""
        return 1 if self.scale == int(self.scale) else self.scale

    def take_displays(self):
        """Those that the shell has made."""

    def enlarge_screens(self):
        name, path = "org.gnome.Mutter.DisplayConfig", "/org/gnome/Mutter/DisplayConfig"
        serial, monitors, _logical, _properties = self.session.call(name, path, name, "GetCurrentState")
        scaled = [
            (number * self.width, 0, self.scale, 0, number == 0, [(identity[0], modes[0][0], {})])
            for number, (identity, modes, _monitor) in enumerate(monitors)
        ]
        parameters = GLib.Variant("(uua(iiduba(ssa{sv}))a{sv})", (serial, 1, scaled, {}))
        self.session.call(name, path, name, "ApplyMonitorsConfig", parameters)

    def evaluate(self, script):
        try:
            parameters = GLib.Variant("(s)", (script,))
            return self.session.call("org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell", "Eval", parameters)[1]
        except GLib.Error:
            return None  # it is only just coming

    @staticmethod
    def scheme(dark):
        return "prefer-dark" if dark else "default"

    def start_panel(self):
        """The shell itself; only its tray can be stopped without it."""
        if self.extension:
            self.switch("EnableExtension")

    def stop_panel(self):
        self.switch("DisableExtension")

    def switch(self, method):
        name, parameters = "org.gnome.Shell", GLib.Variant("(s)", (EXTENSION,))
        self.session.call(name, "/org/gnome/Shell", "org.gnome.Shell.Extensions", method, parameters)

    def set_scheme(self, dark):
        self.run("gsettings", "set", "org.gnome.desktop.interface", "color-scheme", self.scheme(dark))
        self.portal.set(dark)

    def held(self):
        return session_manager_inhibitors(self.session)

    def active_window(self):
        """As the shell matches windows with applications."""
        script = """(() => { const window = global.display.focus_window;
          const app = window && imports.gi.Shell.WindowTracker.get_default().get_window_app(window);
          return [window && window.title, app && app.get_id(), !!(app && app.get_icon().to_string().includes("Nimbo"))].join("|"); })()"""
        title, application, icon = self.evaluate(script).strip('"').split("|")
        return title, application.removesuffix(".desktop"), icon == "true"


class ShellInput:
    """A pointer and a keyboard that the shell makes itself."""

    DEVICES = """const seat = imports.gi.Clutter.get_default_backend().get_default_seat(), types = imports.gi.Clutter.InputDeviceType;
      if (!global.hands) global.hands = [types.POINTER_DEVICE, types.KEYBOARD_DEVICE].map(type => seat.create_virtual_device(type));
      const time = imports.gi.GLib.get_monotonic_time(); """
    KEYS = {"Escape": "Escape", "ctrl": "Control_L", "w": "w"}

    def __init__(self, evaluate):
        self.evaluate = evaluate

    def _use(self, script):
        self.evaluate("{" + self.DEVICES + script + "}")

    def move(self, x, y):
        self._use(f"global.hands[0].notify_absolute_motion(time, {x}, {y});")

    def button(self, number, pressed):
        self._use(f"global.hands[0].notify_button(time, {number}, {pressed});")

    def key(self, name, pressed):
        self._use(f"global.hands[1].notify_keyval(time, imports.gi.Clutter.KEY_{self.KEYS[name]}, {pressed});")


class GnomeWayland(Hands, Gnome):
    phase = "DisplayServer"

    def session_options(self):
        return {"display": False}

    def install(self):
        super().install()
        self.session.env["XDG_SESSION_TYPE"] = "wayland"
        monitors = " ".join([f"--virtual-monitor {self.width}x{self.height}"] * self.screens)
        self.command = f"gnome-shell --headless --unsafe-mode --wayland-display wayland-test {monitors}"

    def take_displays(self):
        self.session.env["WAYLAND_DISPLAY"] = "wayland-test"
        for variable in ("DISPLAY", "XAUTHORITY"):
            self.session.env[variable] = self.evaluate(f"imports.gi.GLib.getenv('{variable}')").strip('"')
        self.hands = ShellInput(self.evaluate)

    def frame(self):
        path = str(self.session.folder / "picture.png")
        name = "org.gnome.Shell.Screenshot"
        self.session.call(name, "/org/gnome/Shell/Screenshot", name, "Screenshot", GLib.Variant("(bbs)", (False, False, path)))
        return Frame.from_ppm(subprocess.run(["convert", path, "-depth", "8", "ppm:-"], capture_output=True, check=True).stdout)
