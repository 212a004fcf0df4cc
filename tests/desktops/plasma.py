# SPDX-License-Identifier: MIT
"""Plasma 5 on X11 and on Wayland: KWin, its services and plasmashell."""

import os
import pathlib
import shutil
import threading

from gi.repository import Gio, GLib

import look
from desktop import QUIET, Desktop
from nimbo_desktop import wait_until
from screen import Frame
from wayland_input import Hands, KWinInput

LIBRARIES = next(pathlib.Path("/usr/lib").glob("*/libexec/org_kde_powerdevil"), pathlib.Path("/usr/libexec/none")).parent
LAYOUT = """
  panels().forEach(panel => panel.remove());
  const panel = new Panel; panel.location = "%s"; panel.height = gridUnit * 2;
  panel.addWidget("org.kde.plasma.kickoff"); panel.addWidget("org.kde.plasma.panelspacer");
  const tray = desktopById(panel.addWidget("org.kde.plasma.systemtray").readConfig("SystrayContainmentId"));
  tray.currentConfigGroup = ["General"];
  tray.writeConfig("knownItems", knownWidgetTypes); tray.writeConfig("extraItems", ["none"]); tray.reloadConfig();
  for (const desktop of desktops()) {
    desktop.wallpaperPlugin = "org.kde.color"; desktop.currentConfigGroup = ["Wallpaper", "org.kde.color", "General"];
    desktop.writeConfig("Color", "%s");
  }
"""


class Plasma(Desktop):
    current = "KDE"
    real_logind = False
    empty_part = 0.5
    tray_part = (0.6, 1.0)

    def start_desktop(self):
        env, folder = self.session.env, self.session.folder
        config = folder / "config"
        env.update(
            KDE_FULL_SESSION="true", KDE_SESSION_VERSION="5", XDG_SESSION_DESKTOP="KDE", DESKTOP_SESSION="plasma",
            LIBGL_ALWAYS_SOFTWARE="1", QT_LOGGING_RULES="*.debug=false", XDG_SESSION_ID="c1", XDG_SEAT="seat0", KWIN_COMPOSE="O2",
            XDG_CONFIG_DIRS=f"{config}/kdedefaults:/etc/xdg", KDE_DEBUG="1",
        )
        name = self.scheme(self.dark)
        colors = pathlib.Path(f"/usr/share/color-schemes/{name}.colors").read_text()
        colors = colors[colors.index("[Colors:") :]
        head = f"[General]\nColorScheme={name}\n\n[KDE]\nAnimationDurationFactor=0\n\n"
        groups = [group for group in colors.split("\n\n") if not group.startswith(("[General]", "[KDE]"))]
        (config / "kdeglobals").write_text(head + "\n\n".join(groups))
        (config / "kscreenlockerrc").write_text("[Daemon]\nAutolock=false\nLockOnResume=false\n")
        (config / "ksmserverrc").write_text("[General]\nloginMode=emptySession\n")
        (config / "kwinrc").write_text(f"[Compositing]\nAnimationSpeed=0\n[Plugins]\nslidingpopupsEnabled=false\n[Xwayland]\nScale={self.scale}\n")
        self.allow("org.kde.*")
        self.session.start(
            ["/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "upower", "-p", '{"OnBattery": false}'], **QUIET
        )
        self.start_compositor()
        self.wait_for_name("org.kde.KWin")
        self.session.start(["kglobalaccel5"], **QUIET)
        self.session.start([LIBRARIES / "kactivitymanagerd"], **QUIET)
        self.session.start(["kded5"], **QUIET)
        self.wait_for_name("org.kde.kded5")
        self.session.start(["ksmserver"], **QUIET)
        self.wait_for_name("org.freedesktop.ScreenSaver")
        self.session.start([LIBRARIES / "org_kde_powerdevil"], **QUIET)
        self.wait_for_name("org.kde.Solid.PowerManagement.PolicyAgent")

    def start_compositor(self):
        if self.scale != 1:
            env, scale = self.session.env, self.scale
            env.update(QT_SCREEN_SCALE_FACTORS=f"screen={scale};", QT_AUTO_SCREEN_SCALE_FACTOR="0")
            self.set_dpi(scale)
        self.session.start(["kwin_x11"], **QUIET)

    @staticmethod
    def scheme(dark):
        return "BreezeDark" if dark else "BreezeLight"

    def start_panel(self):
        first = not hasattr(self, "panel")
        self.panel = self.session.start(["plasmashell", "--no-respawn"], **QUIET)
        self.wait_for_name("org.kde.plasmashell")
        if first:
            wait_until(self.shown_by_default, "the default panel", 60)
            script = LAYOUT % (self.edge, ",".join(str(int(look.GROUND[at : at + 2], 16)) for at in (1, 3, 5)))
            parameters = GLib.Variant("(s)", (script,))
            self.said = self.session.call("org.kde.plasmashell", "/PlasmaShell", "org.kde.PlasmaShell", "evaluateScript", parameters)

    def shown_by_default(self):
        try:
            parameters = GLib.Variant("(s)", ("print(panels().length)",))
            said = self.session.call("org.kde.plasmashell", "/PlasmaShell", "org.kde.PlasmaShell", "evaluateScript", parameters)
        except GLib.Error:
            return False
        return said[0].strip() not in ("", "0")

    def set_scheme(self, dark):
        self.run("plasma-apply-colorscheme", self.scheme(dark))

    def held(self):
        name = "org.kde.Solid.PowerManagement.PolicyAgent"
        return [" ".join(one) for one in self.session.call(name, "/" + name.replace(".", "/"), name, "ListInhibitions")[0]]


class PlasmaWayland(Hands, Plasma):
    def session_options(self):
        return {"display": False}

    def install(self):
        super().install()
        self.session.env["XDG_SESSION_TYPE"] = "wayland"

    def start_compositor(self):
        env, folder = self.session.env, self.session.folder
        env.update(
            KWIN_WAYLAND_NO_PERMISSION_CHECKS="1", KWIN_SCREENSHOT_NO_PERMISSION_CHECKS="1", QT_AUTO_SCREEN_SCALE_FACTOR="0",
            PLASMA_USE_QT_SCALING="1",
        )
        # A copy has not the capability that containers may not grant.
        shutil.copy("/usr/bin/kwin_wayland", folder)
        options = ["--width", round(self.width / self.scale), "--height", round(self.height / self.scale), "--scale", self.scale]
        tell = folder / "tell"
        tell.write_text(f"#!/bin/sh\necho $DISPLAY $XAUTHORITY > {folder}/names.new; mv {folder}/names.new {folder}/names\n")
        tell.chmod(0o755)
        self.session.start(
            [folder / "kwin_wayland", "--virtual", *options, "--output-count", self.screens, "--xwayland", "--socket", "wayland-test", tell], **QUIET
        )
        names = wait_until(lambda: (folder / "names").exists() and (folder / "names").read_text().split(), "Xwayland", 60)
        env["DISPLAY"], env["WAYLAND_DISPLAY"] = names[0], "wayland-test"
        if names[1:]:
            env["XAUTHORITY"] = names[1]
        if self.scale != 1:
            self.set_dpi(self.scale)
        self.hands = KWinInput(env, self.scale)

    def active_window(self):
        """The only window that bears the program's name; whether it has the keyboard, keys show."""
        name = GLib.Variant("(s)", ("Nimbo",))
        matches = self.session.call("org.kde.KWin", "/WindowsRunner", "org.kde.krunner1", "Match", name)[0]
        _identifier, title, icon, *_rest = matches[0] if matches else ("", "", "")
        return title, icon, bool(icon)

    def frame(self):
        read, write = os.pipe()
        parts = []

        def drain():
            with os.fdopen(read, "rb") as stream:
                parts.append(stream.read())

        thread = threading.Thread(target=drain)
        thread.start()
        name = "org.kde.KWin.ScreenShot2"
        options = GLib.Variant("(a{sv}h)", ({"native-resolution": GLib.Variant("b", True)}, 0))
        result, _none = self.session.connection.call_with_unix_fd_list_sync(
            name, "/org/kde/KWin/ScreenShot2", name, "CaptureWorkspace", options, GLib.VariantType("(a{sv})"),
            Gio.DBusCallFlags.NONE, 15000, Gio.UnixFDList.new_from_array([write]), None,
        )
        thread.join(15)
        said = result.unpack()[0]
        assert said["stride"] == 4 * said["width"], said
        return Frame(said["width"], said["height"], parts[0])
