# SPDX-License-Identifier: MIT
"""Shows the program on a private virtual desktop with a real panel, and saves pictures.

Usage: demo.py BINARY FOLDER
"""

import pathlib
import subprocess
import sys

import claude_tool
import program
from nimbo_desktop import BOUND, Session, turn_for, wait_until
from power_services import Logind
from program import Program
from xfce_panel import XfcePanel

SETTINGS = {"refreshInterval": 2, "menuAwake": True, "monitorCPU": True, "monitorTemperature": True}
SUBSCRIPTIONS = {"usage.codex": True, "usage.claude": True}  # one signed in, by a stand-in for its tool
TABS = {"ai": "AI", "memory": "Mem", "awake": "Awake"}


def show(folder, dark, scale):
    name = ("dark" if dark else "light") + ("" if scale == 1 else f"@{scale}x")
    session = Session(display=True, system_bus=True, size=f"{1280 * scale}x{800 * scale}x24")
    try:
        session.env["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        if scale != 1:
            session.env["QT_SCALE_FACTOR"] = str(scale)
        claude_tool.install(session, claude_tool.screen(61, 23))
        session.settings(**SETTINGS, **SUBSCRIPTIONS)
        can_keep_awake = not Logind.missing()
        if can_keep_awake:
            Logind(session)
        panel = XfcePanel(session, dark=dark, scale=scale)
        before = panel.settled_picture(session.folder / "before.png")
        nimbo = Program(session)
        after = folder / f"tray-{name}.png"

        def items():
            box = panel.changed_box(before, panel.settled_picture(after))
            return box if box and box[2] > 70 * scale else None  # two alone are 52 wide

        x, y, width, height = wait_until(items, "three items in the panel")
        turn_for(5)  # a few samples, so that there is a history to see
        click(session, x + width // 2, y + height // 2)
        wait_until(nimbo.dashboard, "the dashboard")
        point_nowhere(session)  # so that no tooltip covers the picture
        for tab, label in TABS.items():
            nimbo.press(label)
            if tab == "ai":
                nimbo.wait_for_text(lambda text: text == "77% left", "the allowances")
            if tab == "memory":
                nimbo.wait_for_text(lambda text: text.endswith((" MB", " GB")), "the process list")
            panel.settled_picture(folder / f"{tab}-{name}.png")
        nimbo.press("Mem")
        nimbo.press("Show more")
        panel.settled_picture(folder / f"processes-{name}.png")
        session_key(session, "Escape")
        nimbo.wait_for_no_dashboard()
        click(session, x + width // 2, y + height // 2, button=3)
        point_nowhere(session)
        panel.settled_picture(folder / f"menu-{name}.png")
        session_key(session, "Escape")
        show_settings(session, panel, nimbo, folder, name, (x + width // 2, y + height // 2))
        if can_keep_awake:
            show_session(session, panel, nimbo, folder, name, (x + width // 2, y + height // 2))
        status = nimbo.terminate()
        if status != 0 or nimbo.errors():
            raise SystemExit(f"nimbo ended with status {status}: {nimbo.errors()}")
    finally:
        session.close()


def show_settings(session, panel, nimbo, folder, name, item):
    click(session, *item)
    nimbo.wait_for_dashboard()
    nimbo.press("Settings")
    for page in ("General", "Monitors", "AI Usage", "Keep Awake"):
        nimbo.press(page)
        wait_until(
            lambda page=page: any(
                control["name"] == page and control["role"] == "panel" for control in nimbo.controls()
            ),
            f"the page {page}",
        )
        point_nowhere(session)
        panel.settled_picture(folder / f"settings-{page.lower().replace(' ', '-')}-{name}.png")
    session_key(session, "ctrl+w")
    nimbo.wait_for_no_dashboard()


def show_session(session, panel, nimbo, folder, name, item):
    click(session, *item)
    nimbo.wait_for_dashboard()
    point_nowhere(session)
    nimbo.press("Awake")
    nimbo.press("Keep Mac awake")
    nimbo.wait_for_text(lambda text: text == "Your Mac is staying awake", "the session")
    panel.settled_picture(folder / f"running-{name}.png")
    nimbo.press("Quit Nimbo")
    nimbo.wait_for_text(lambda text: text == "Keep Awake is running", "the question")
    panel.settled_picture(folder / f"quit-{name}.png")
    nimbo.press("Keep Running")
    nimbo.wait_for_no_dashboard()


def click(session, x, y, button=1):
    subprocess.run(["xdotool", "mousemove", str(x), str(y), "click", str(button)], env=session.env, check=True)


def point_nowhere(session):
    subprocess.run(["xdotool", "mousemove", "40", "400"], env=session.env, check=True)


def session_key(session, name):
    subprocess.run(["xdotool", "key", name], env=session.env, check=True)


def main(binary, target):
    program.BINARY = binary
    folder = pathlib.Path(target)
    folder.mkdir(parents=True, exist_ok=True)
    for dark, scale in ((False, 1), (True, 1), (False, 2), (True, 2)):
        show(folder, dark, scale)
    for path in sorted(folder.glob("*.png")):
        print(path)
    print(flush=True)
    subprocess.run([binary, "--diagnostics"], check=True, timeout=BOUND)


if __name__ == "__main__":
    main(*sys.argv[1:])
