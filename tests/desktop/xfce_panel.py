# SPDX-License-Identifier: MIT
"""A real panel with a real tray: xfce4-panel and xfwm4 on the session's display."""

import subprocess

from nimbo_desktop import wait_until
from screen import Screen

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
        self.screen = Screen(session.display.frame_buffer)
        wait_until(lambda: "org.kde.StatusNotifierWatcher" in session.names(), "the panel's tray", 40)
        wait_until(lambda: self.painted(2 if edge == TOP else -3), "the panel on its background", 40)

    def painted(self, row):
        """Whether the background is there, and the panel over that row of it."""
        frame = self.screen.frame()
        return frame.color(2, frame.height // 2) == self.background != frame.color(2, row)

    def settled(self):
        return self.screen.settled()
