# SPDX-License-Identifier: MIT
"""A real panel with a real tray: xfce4-panel and xfwm4 on the session's display."""

import contextlib
import subprocess

from nimbo_desktop import screenshot, turn_for, wait_until

PANEL_XML = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="{dark}"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p={position};x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="icon-size" type="uint" value="0"/>
      <property name="size" type="uint" value="{size}"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/><value type="int" value="2"/><value type="int" value="3"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-2" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
    <property name="plugin-3" type="string" value="separator">
      <property name="style" type="uint" value="0"/>
    </property>
  </property>
</channel>
"""

THEME_XML = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xsettings" version="1.0">
  <property name="Net" type="empty"><property name="ThemeName" type="string" value="{theme}"/></property>
</channel>
"""

TOP, BOTTOM = 6, 8  # xfce4-panel's names for the edges of the screen


class XfcePanel:
    def __init__(self, session, dark=True, edge=TOP, size=32, scale=1):
        self.session = session
        self.height = size * scale
        channels = session.folder / "config" / "xfce4" / "xfconf" / "xfce-perchannel-xml"
        channels.mkdir(parents=True, exist_ok=True)
        panel = PANEL_XML.format(dark=str(dark).lower(), position=edge, size=size)
        (channels / "xfce4-panel.xml").write_text(panel)
        (channels / "xsettings.xml").write_text(THEME_XML.format(theme="Adwaita-dark" if dark else "Adwaita"))
        quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        if scale != 1:
            session.env["GDK_SCALE"] = str(scale)
        self.background = "#3a5a78" if dark else "#8fb3cf"
        session.start(["xfwm4", "--compositor=on"], **quiet)
        # The compositor paints the picture that this leaves on the root window.
        subprocess.run(["hsetroot", "-solid", self.background], env=session.env, check=True, **quiet)
        self.panel = session.start(["xfce4-panel", "--disable-wm-check"], **quiet)
        wait_until(lambda: "org.kde.StatusNotifierWatcher" in session.names(), "the panel's tray", 40)
        wait_until(lambda: self.painted("2" if edge == TOP else "h-3"), "the panel on its background", 40)

    def picture(self, path):
        screenshot(self.session, path)
        return path

    def painted(self, row):
        """Whether the background is there, and the panel over that row of it."""
        picture = self.picture(self.session.folder / "painted.png")
        pixels = f"%[pixel:p{{2,h/2}}] %[pixel:p{{2,{row}}}] %[pixel:{self.background}]"
        told = subprocess.run(["convert", str(picture), "-format", pixels, "info:"], capture_output=True, text=True)
        middle, panel, background = told.stdout.split()
        return middle == background != panel

    def settled_picture(self, path):
        """A picture of the desktop once two in a row are the same."""
        previous = None
        for _ in range(20):
            turn_for(0.25)
            with contextlib.suppress(FileNotFoundError):
                self.picture(path)
            current = path.read_bytes()
            if current == previous:
                return path
            previous = current
        return path

    def changed_box(self, before, after):
        """Bounding box (x, y, width, height) of what differs between two pictures; None if nothing does."""
        trim = subprocess.run(
            ["convert", str(before), str(after), "-compose", "difference", "-composite"]
            + ["-colorspace", "gray", "-threshold", "2%", "-format", "%@", "info:"],
            env=self.session.env,
            capture_output=True,
            text=True,
        ).stdout.strip()
        if not trim or trim.startswith("0x0"):
            return None
        size, x, y = trim.replace("+", " ").split()
        width, height = size.split("x")
        return int(x), int(y), int(width), int(height)
