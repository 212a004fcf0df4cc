# SPDX-License-Identifier: MIT
"""Desktops of an X server whose panel, window manager and services are programs of their own."""

import contextlib

from gi.repository import GLib

import look
from desktop import QUIET, Desktop, Portal
from xfce_panel import PANEL_XML, THEME_XML


class X11Desktop(Desktop):
    """Its ground is painted on the root window."""

    window_manager = ()
    has_portal = False

    def start_desktop(self):
        env = self.session.env
        if self.scale == 1.25:
            self.set_dpi(self.scale)
        elif self.scale != 1:
            env.update(GDK_SCALE=str(self.scale), QT_SCALE_FACTOR=str(self.scale))
        self.configure()
        if self.has_portal:
            self.portal = Portal(self.session, self.dark)
        self.start_services()
        self.session.start(self.window_manager, **QUIET)
        self.run("hsetroot", "-solid", look.GROUND)

    def picture_scale(self):
        return int(self.scale)  # a fraction makes texts larger, not the screen

    def configure(self):
        """Writes settings."""

    def start_services(self):
        """What keeps this desktop awake."""


class Xfce(X11Desktop):
    current = "XFCE"
    window_manager = ("xfwm4", "--compositor=on")
    EDGES = {"top": (6, 0), "bottom": (8, 0), "left": (5, 1), "right": (1, 1)}  # position and mode

    def configure(self):
        channels = self.session.folder / "config" / "xfce4" / "xfconf" / "xfce-perchannel-xml"
        channels.mkdir(parents=True)
        position, mode = self.EDGES[self.edge]
        panel = PANEL_XML.format(dark=str(self.dark).lower(), position=position, size=32)
        place = f'<property name="mode" type="uint" value="{mode}"/>'
        panel = panel.replace('<property name="length"', place + '<property name="length"')
        (channels / "xfce4-panel.xml").write_text(panel)
        (channels / "xsettings.xml").write_text(THEME_XML.format(theme=self.theme(self.dark)))

    @staticmethod
    def theme(dark):
        return "Adwaita-dark" if dark else "Adwaita"

    def start_services(self):
        self.session.start(["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "upower"], **QUIET)
        self.session.start(self.logind.beside("xfce4-power-manager", "--debug"), **QUIET)
        self.wait_for_name("org.freedesktop.PowerManagement")

    def start_panel(self):
        self.panel = self.session.start(["xfce4-panel", "--disable-wm-check"], **QUIET)

    def set_scheme(self, dark):
        for channel, name, value in (
            ("xfce4-panel", "/panels/dark-mode", str(dark).lower()),
            ("xsettings", "/Net/ThemeName", self.theme(dark)),
        ):
            self.run("xfconf-query", "-c", channel, "-p", name, "-s", value)

    def held(self):
        name, path = "org.freedesktop.PowerManagement", "/org/freedesktop/PowerManagement/Inhibit"
        return self.session.call(name, path, f"{name}.Inhibit", "GetInhibitors")[0]


class Mate(X11Desktop):
    current = "MATE"
    window_manager = ("marco", "--composite")
    has_portal = True
    edges = ("top", "bottom")
    item_gap = 5
    item_least = 18

    def configure(self):
        # Its items would touch each other, and a label be as wide as a picture.
        style = self.session.folder / "config" / "gtk-3.0" / "gtk.css"
        style.parent.mkdir()
        style.write_text("* { -NaTrayApplet-icon-padding: 6; } na-tray-applet label { font-size: 4pt; }")
        nothing = self.session.folder / "nothing"
        nothing.mkdir()
        self.session.env.update(GSETTINGS_BACKEND="keyfile", XDG_CONFIG_DIRS=str(nothing))
        self.set_theme(self.dark)
        for key in ("default-session", "required-components-list", "gnome-compat-startup"):
            self.run("gsettings", "set", "org.mate.session", key, "[]")
        panel = "org.mate.panel.toplevel:/org/mate/panel/toplevels/one/"
        self.run("gsettings", "set", panel, "orientation", self.edge)
        self.run("gsettings", "set", panel, "size", "28")
        tray = "org.mate.panel.object:/org/mate/panel/objects/tray/"
        for key, value in (
            ("object-type", "applet"), ("toplevel-id", "one"), ("panel-right-stick", "true"), ("position", "0"),
            ("applet-iid", "NotificationAreaAppletFactory::NotificationArea"),
        ):
            self.run("gsettings", "set", tray, key, value)
        self.run("gsettings", "set", "org.mate.panel", "toplevel-id-list", "['one']")
        self.run("gsettings", "set", "org.mate.panel", "object-id-list", "['tray']")

    def set_theme(self, dark):
        self.run("gsettings", "set", "org.mate.interface", "gtk-theme", "Adwaita-dark" if dark else "Adwaita")

    def start_services(self):
        self.allow("org.mate.panel.applet.*")
        self.session.start(self.logind.beside("mate-session"), **QUIET)
        self.wait_for_name("org.gnome.SessionManager")
        self.session.start(["mate-settings-daemon"], **QUIET)

    def start_panel(self):
        self.panel = self.session.start(["mate-panel"], **QUIET)

    def set_scheme(self, dark):
        self.set_theme(dark)
        self.portal.set(dark)

    def held(self):
        return session_manager_inhibitors(self.session)


def session_manager_inhibitors(session):
    """Those against suspending and against a dark screen."""
    name = "org.gnome.SessionManager"
    reasons = []
    for path in session.call(name, "/org/gnome/SessionManager", name, "GetInhibitors")[0]:
        with contextlib.suppress(GLib.Error):  # one that has gone meanwhile
            flags, application, reason = (
                session.call(name, path, f"{name}.Inhibitor", method)[0] for method in ("GetFlags", "GetAppId", "GetReason")
            )
            if flags & 12:
                reasons.append(f"{application} {reason}")
    return reasons


class Lxqt(X11Desktop):
    current = "LXQt"
    window_manager = ("openbox",)
    edges = ("top", "bottom")
    has_portal = True
    EDGES = {"top": "Top", "bottom": "Bottom", "left": "Left", "right": "Right"}

    def configure(self):
        folder = self.session.folder / "config" / "lxqt"
        folder.mkdir()
        self.write_theme(self.dark)
        (folder / "panel.conf").write_text(
            "panels=panel1\n[panel1]\nplugins=spacer, statusnotifier\nalignment=-1\nanimation-duration=0\n"
            f"desktop=0\nhidable=false\niconSize=22\nlineCount=1\npanelSize=32\nposition={self.EDGES[self.edge]}\n"
            "width=100\nwidth-percent=true\n"
            "[spacer]\ntype=spacer\nexpandable=true\n[statusnotifier]\ntype=statusnotifier\nalignment=Right\n"
        )

    def write_theme(self, dark):
        (self.session.folder / "config" / "lxqt" / "lxqt.conf").write_text(
            f"[General]\ntheme={'dark' if dark else 'light'}\nicon_theme=Adwaita\n[Qt]\nstyle=Fusion\n"
        )

    def start_panel(self):
        self.panel = self.session.start(["lxqt-panel"], **QUIET)

    def set_scheme(self, dark):
        self.write_theme(dark)
        self.portal.set(dark)


class Cinnamon(X11Desktop):
    current = "X-Cinnamon"
    window_manager = ("true",)  # the desktop is its own
    has_portal = True
    panel_follows_scheme = False  # its light and dark themes are packages of their own

    def configure(self):
        self.session.env["GSETTINGS_BACKEND"] = "keyfile"
        for key, value in (("picture-options", "none"), ("primary-color", look.GROUND), ("color-shading-type", "solid")):
            self.run("gsettings", "set", "org.cinnamon.desktop.background", key, value)
        applets = ["panel1:left:0:menu@cinnamon.org", "panel1:right:0:xapp-status@cinnamon.org"]
        self.run("gsettings", "set", "org.cinnamon", "enabled-applets", applets)

    def start_panel(self):
        self.allow("org.x.*")
        self.panel = self.session.start(["cinnamon"], **QUIET)

    def set_scheme(self, dark):
        self.portal.set(dark)
