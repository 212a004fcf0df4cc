# SPDX-License-Identifier: MIT
"""Writes docs/desktops.md and its pictures from the results of the last runs."""

import json
import re
import subprocess

from program import REPOSITORY

MARKS = {"passed": "✓", "failed": "✗", "cannot": "–"}
HEADINGS = {
    "starts": "items there, in order",
    "tooltip": "tooltip",
    "menu": "menu",
    "live_menu": "menu in a session",
    "left": "left click",
    "middle": "middle click",
    "place": "place",
    "escape": "Escape closes",
    "other_window": "click on a window closes",
    "ground": "on the desktop",
    "panel": "on the panel",
    "own_item": "on its item",
    "settings": "settings",
    "awake": "kept awake",
    "schemes": "dark and light",
    "new_panel": "new panel",
    "logout": "log-out",
}
HEAD = """# Desktops

What `scripts/desktops` saw: the same journey on real desktops, without a screen, with a real pointer and real keys. `scripts/desktops xfce`
runs those whose name begins so and writes this page anew; its pictures are in `build/desktops`. ✓ passed, ✗ failed, – the host
cannot (see below).

Debian 12 has no labwc, and its Budgie shows such items only with a plugin that is not part of it. A combination that is not in the table
was not run.

The desktop’s own services say what keeps the machine awake; sway, LXQt and Cinnamon have none here but logind. Where a desktop’s portal
needs more than runs here, the test answers for its colour scheme: on sway, GNOME, MATE, LXQt and Cinnamon. What MATE and LXQt draw in panels
at the left and right cannot be told from items, so those edges are left out. A new panel is the panel’s program killed and started again; on
GNOME, where that is the whole session, the extension switched off and on. A log-out is SIGTERM during a session. 1.25 on X11 and on GNOME
enlarges texts alone, as these desktops do.

Known, and not in the table: on MATE’s panels at the left and right a label lies over its picture. On sway, as on X11, the open dashboard has all keys
but the compositor’s own.
"""


def write(folder, cells):
    results = {}
    for cell in cells:
        file = folder / cell / "result.json"
        if file.exists():
            results[cell] = json.loads(file.read_text())
    lines = [HEAD, "| desktop | starts | " + " | ".join(HEADINGS.values()) + " |", "|---" * (len(HEADINGS) + 2) + "|"]
    for cell, result in results.items():
        marks = [MARKS[result["steps"].get(step, ["failed"])[0]] for step in HEADINGS]
        lines.append(f"| {cell} | {result['starts']} | " + " | ".join(marks) + " |")
    lines += ["", "## What failed", ""]
    lines += said(results, "failed") or ["Nothing."]
    lines += ["", "## What a host cannot do", ""]
    lines += said(results, "cannot")
    lines += ["", "## Pictures", ""]
    pictures = REPOSITORY / "docs" / "pictures" / "desktops"
    pictures.mkdir(exist_ok=True)
    for cell in results:
        source = folder / cell / "dashboard.png"
        if source.exists() and "-" not in cell.removeprefix("gnome-").removeprefix("plasma-"):
            small = ["convert", source, "-resize", "480x", "-strip", "-colors", "64", f"PNG8:{pictures / cell}.png"]
            subprocess.run(small, check=True)
            lines.append(f"![{cell}](pictures/desktops/{cell}.png)")
    (REPOSITORY / "docs" / "desktops.md").write_text("\n".join(lines) + "\n")


def said(results, outcome):
    """One line for each thing said, with the desktops and the steps that it was said of."""
    cells = {}
    for cell, result in results.items():
        if outcome == "failed" and "broken" in result:
            cells.setdefault(("start of the desktop", result["broken"]), []).append(cell)
        for step, (what, text) in result["steps"].items():
            if what == outcome:
                text = " ".join(re.sub(r" \([\d.]+ s\)$", "", text.removeprefix("AssertionError: ")).split())
                cells.setdefault((HEADINGS[step], text), []).append(cell)
    steps = {}
    for (heading, text), names in cells.items():
        steps.setdefault((", ".join(names), text), []).append(heading)
    return [f"- {names}: {', '.join(headings)}: {text}" for (names, text), headings in steps.items()]
