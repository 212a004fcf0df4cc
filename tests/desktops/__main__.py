# SPDX-License-Identifier: MIT
"""The same journey on every desktop: python3 -m desktops [--short] [--document] [NAME…]

Results and pictures go to build/desktops, and with --document to docs/desktops.md. A name chooses every cell that
begins with it, no name all of them. The short form has fewer starts, and only the cells that are named so.
"""

import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(ROOT), str(ROOT.parent / "desktop")]

import document  # noqa: E402
import gnome  # noqa: E402
import journey  # noqa: E402
import plasma  # noqa: E402
import sway_bars  # noqa: E402
import x11_desktops as x11  # noqa: E402
from program import REPOSITORY  # noqa: E402

RESULTS = REPOSITORY / "build" / "desktops"
LONGEST = 1500  # seconds for a cell


def variations(name, maker, first="top", scales=(1.25, 2), screens=True):
    cells = {name: (maker, {"edge": first})}
    cells |= {f"{name}-{edge}": (maker, {"edge": edge}) for edge in maker.edges if edge != first}
    cells |= {f"{name}-{scale}x": (maker, {"edge": first, "scale": scale}) for scale in scales}
    if screens:
        cells[f"{name}-two-screens"] = (maker, {"edge": first, "screens": 2})
    return cells


CELLS = {
    **variations("xfce", x11.Xfce),
    **variations("waybar", sway_bars.Waybar),
    **variations("swaybar", sway_bars.Swaybar),
    **variations("gnome-x11", gnome.Gnome),
    **variations("gnome-wayland", gnome.GnomeWayland),
    "gnome-x11-without-tray": (gnome.Gnome, {"extension": False}),
    "gnome-wayland-without-tray": (gnome.GnomeWayland, {"extension": False}),
    **variations("plasma-x11", plasma.Plasma, "bottom"),
    **variations("plasma-wayland", plasma.PlasmaWayland, "bottom"),
    **variations("mate", x11.Mate, scales=(2,)),
    **variations("lxqt", x11.Lxqt, "bottom"),
    "cinnamon": (x11.Cinnamon, {"edge": "bottom"}),
}


def run_cell(name, starts):
    """In this process, which has nothing else to do."""
    folder = RESULTS / name
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    maker, options = CELLS[name]
    desktop = maker(**options)
    steps = {}
    result = {"starts": starts, "steps": steps}
    signal.signal(signal.SIGTERM, lambda *_: (desktop.stop(), os._exit(1)))
    try:
        desktop.start()
        for step, outcome, said in journey.Journey(desktop, starts, folder).run():
            steps[step] = [outcome, said]
            print(f"{name:20} {step:14} {outcome:7} {said}", flush=True)
    except Exception as error:  # whatever keeps a desktop from coming up
        result["broken"] = f"{type(error).__name__}: {error}"
        print(f"{name:20} {result['broken']}", flush=True)
        if os.environ.get("NIMBO_TRACE"):
            raise
    finally:
        if "broken" in result:
            try:
                desktop.frame().save(folder / "broken.png")
            except Exception as error:
                print(f"{name:20} no picture: {error}", flush=True)
        (folder / "result.json").write_text(json.dumps(result, indent=1, ensure_ascii=False))
        desktop.stop()
    return "broken" not in result and all(outcome != "failed" for outcome, _said in steps.values())


def main(arguments):
    options = {argument for argument in arguments if argument.startswith("--")}
    names = [argument for argument in arguments if not argument.startswith("--")]
    starts = 3 if "--short" in options else 20
    if "--cell" in options:
        return 0 if run_cell(names[0], starts) else 1
    exact = "--short" in options
    chosen = [cell for cell in CELLS if not names or any(cell == name or not exact and cell.startswith(name) for name in names)]
    failed = []
    for cell in chosen:
        command = [sys.executable, "-B", "-m", ROOT.name, "--cell", cell, *sorted(options & {"--short"})]
        child = subprocess.Popen(command, cwd=ROOT.parent, env={**os.environ, "PYTHONPATH": ""})
        try:
            ended = child.wait(LONGEST)
        except subprocess.TimeoutExpired:
            child.terminate()
            ended = child.wait()
        failed += [cell] * (ended != 0)
    if "--document" in options:
        document.write(RESULTS, CELLS)
    print(f"{len(chosen) - len(failed)} of {len(chosen)} desktops passed" + "".join(f"\n  failed: {cell}" for cell in failed))
    return 1 if failed or not chosen else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
