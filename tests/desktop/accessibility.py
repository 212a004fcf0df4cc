# SPDX-License-Identifier: MIT
"""Reads or presses the program's controls as a screen reader would.

Runs as a program of its own inside the session under test, because the accessibility library
connects once per process:  accessibility.py tree PID  |  accessibility.py press PID NAME
"""

import json
import subprocess
import sys
import tempfile

from nimbo_desktop import BOUND, wait_until


def _application(pid):
    import gi

    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi

    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        application = desktop.get_child_at_index(index)
        if application and application.get_process_id() == pid:
            return application
    return None


def _walk(element, visit, depth=0):
    if element is None or depth > 12:
        return
    visit(element)
    for index in range(min(element.get_child_count(), 200)):
        _walk(element.get_child_at_index(index), visit, depth + 1)


def _describe(element):
    from gi.repository import Atspi

    states = element.get_state_set()
    text = element.get_text_iface()
    value = element.get_value_iface()
    extents = element.get_component_iface()
    box = extents.get_extents(Atspi.CoordType.SCREEN) if extents else None
    return {
        "role": element.get_role_name(),
        "name": element.get_name() or "",
        "description": element.get_description() or "",
        "text": Atspi.Text.get_text(text, 0, -1) if text else "",
        "value": value.get_current_value() if value else None,
        "showing": states.contains(Atspi.StateType.SHOWING),
        "enabled": states.contains(Atspi.StateType.ENABLED),
        "checked": states.contains(Atspi.StateType.CHECKED),
        "focused": states.contains(Atspi.StateType.FOCUSED),
        "focusable": states.contains(Atspi.StateType.FOCUSABLE),
        "selected": states.contains(Atspi.StateType.SELECTED),
        "box": [box.x, box.y, box.width, box.height] if box else None,
    }


def _elements(pid):
    elements = []
    _walk(_application(pid), elements.append)
    return elements


def described(pid):
    """Every control of the program as dictionaries, for a process that lives in one session only."""
    return [_describe(element) for element in _elements(pid)]


def pressed(pid, name):
    """Whether a control of that name was there to press; for a process that lives in one session only."""
    for element in _elements(pid):
        actions = element.get_action_iface()
        if element.get_name() != name or not actions or element.get_role_name() == "label":
            continue  # a control's caption has its name
        if _describe(element)["showing"]:
            return actions.do_action(0)
    return False


def main(action, pid, *names):
    if action == "press":
        return 0 if pressed(int(pid), *names) else 1
    print(json.dumps(described(int(pid))))
    return 0


def _run(session, *arguments):
    """(status, output); turns the main context meanwhile, because services that the test plays may be asked."""
    with tempfile.TemporaryFile("w+") as output:
        child = subprocess.Popen(
            ["/usr/bin/python3", __file__, *arguments], env=session.env, stdout=output, stderr=subprocess.DEVNULL
        )
        try:
            wait_until(lambda: child.poll() is not None, "the screen reader", 6 * BOUND)
        finally:
            child.kill()
            child.wait()
        output.seek(0)
        return child.returncode, output.read()


def tree(session, pid):
    """Every control of the program as dictionaries; an empty list while it shows none."""
    status, output = _run(session, "tree", str(pid))
    return json.loads(output) if status == 0 and output else []


def press(session, pid, name):
    """Presses a control, which may only just be coming."""
    wait_until(lambda: _run(session, "press", str(pid), name)[0] == 0, f"a control named {name!r} to press")


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
