# SPDX-License-Identifier: MIT
"""The program under test inside a session, and the test case that owns both."""

import contextlib
import json
import os
import pathlib
import re
import signal
import subprocess
import tempfile
import unittest

import accessibility
from nimbo_desktop import BOUND, Session, TrayHost, wait_until, windows_of, xdotool

REPOSITORY = pathlib.Path(__file__).resolve().parent.parent.parent
BINARY = os.environ.get("NIMBO_BINARY", REPOSITORY / "build" / "release" / "bin" / "nimbo")
NO_DISPLAY = "nimbo: no window can be shown: no display can be reached\n"
# Begins what the program says, and what is said of its own mistakes. When its display dies while Qt begins, Qt crashes.
OWN_WORDS = re.compile(
    r"nimbo: |terminate called|  what\(\): |SUMMARY: .*/src/\S+:\d|.*/src/\S+: runtime error|.*(free\(\)|malloc\(\)|corrupt)"
)
DASHBOARD_WIDTH, DASHBOARD_HEIGHT = 340, 278  # at least


class Program:
    """Started as the last argument of the command `under`, if there is one, which then becomes the program."""

    def __init__(self, session, *arguments, under=()):
        self.session = session
        descriptor, self.stderr = tempfile.mkstemp(prefix="stderr-", dir=session.folder)
        with os.fdopen(descriptor) as stream:
            self.child = session.start([*under, BINARY, *arguments], stdout=subprocess.DEVNULL, stderr=stream)

    @property
    def pid(self):
        return self.child.pid

    @property
    def windows_pid(self):
        """Of the process that shows the windows; None while there is none."""
        return windows_process(self.pid)

    def errors(self):
        """All that was said, but for the leak sanitizer's remark on a thread that ended while it looked."""
        said = pathlib.Path(self.stderr).read_text()
        return re.sub(r"==\d+==Unable to get registers from thread \d+\.\n", "", said)

    def wait_for_exit(self):
        wait_until(lambda: not self.child.running, "the program's end")
        return self.child.process.returncode

    def terminate(self):
        self.child.process.send_signal(signal.SIGTERM)
        return self.wait_for_exit()

    def dashboard(self):
        """Frame of the open dashboard; None when there is none."""
        for frame in windows_of(self.session, self.windows_pid).values():
            if frame[2] >= DASHBOARD_WIDTH and frame[3] >= DASHBOARD_HEIGHT:
                return frame
        return None

    def wait_for_dashboard(self):
        return wait_until(self.dashboard, "the dashboard to open")

    def wait_for_no_dashboard(self):
        wait_until(lambda: self.dashboard() is None, "the dashboard to close")

    def controls(self):
        """What is in the open dashboard; assistive technology learns of a new window a moment later."""
        return wait_until(
            lambda: [control for control in accessibility.tree(self.session, self.windows_pid) if control["showing"]],
            "the dashboard in the accessibility tree",
        )

    def texts(self):
        return [control["name"] for control in self.controls() if control["name"]]

    def wait_for_text(self, matches, what):
        return wait_until(lambda: next((text for text in self.texts() if matches(text)), None), what, BOUND)

    def press(self, name):
        self.controls()
        accessibility.press(self.session, self.windows_pid, name)


def children(pid):
    """Of every thread of the process; a thread may end while it is read."""
    found = []
    for started in pathlib.Path(f"/proc/{pid}/task").glob("*/children"):
        with contextlib.suppress(OSError):
            found += map(int, started.read_text().split())
    return found


def windows_process(pid):
    """The child of a program that shows its windows, or None."""
    for child in children(pid):
        with contextlib.suppress(OSError):
            if pathlib.Path(f"/proc/{child}/comm").read_text() == "nimbo-windows\n":
                return child
    return None


def stored(settings, key):
    """The setting in that file; None as well while the file is not yet written, or still a damaged one."""
    with contextlib.suppress(FileNotFoundError, json.JSONDecodeError):
        return json.loads(settings.read_text()).get(key)


def armed_timers(pid):
    """Seconds until each of the kernel's timers that the process waits for."""
    remaining = []
    for descriptor in pathlib.Path(f"/proc/{pid}/fdinfo").iterdir():
        with contextlib.suppress(FileNotFoundError):
            found = re.search(r"it_value: \((\d+), (\d+)\)", descriptor.read_text())
            seconds = int(found[1]) + int(found[2]) / 1e9 if found else 0
            remaining += [seconds] if seconds else []
    return remaining


class DesktopTest(unittest.TestCase):
    """Starts a session for each test; the program must leave it without a word on standard error."""

    display = False
    system_bus = False
    desktop = "XFCE"
    identity = None  # of the program, see Session
    display_dies = False  # then the words of the windows' libraries do not count

    def setUp(self):
        self.session = Session(self.display, self.system_bus, self.desktop, identity=self.identity)
        self.addCleanup(self.session.close)
        self.session.env["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        self.host = None
        self.program = None
        self.expected_errors = ""

    def start(self, *arguments, host=True):
        if host and self.host is None:
            self.host = TrayHost(self.session)
        self.program = Program(self.session, *arguments)
        return self.program

    def tearDown(self):
        if self.program and self.program.child.running:
            self.assertEqual(self.program.terminate(), 0, self.program.errors())
            said = self.program.errors()
            if self.display_dies:
                own = filter(OWN_WORDS.match, said.splitlines(keepends=True))
                said = "".join(line for line in own if line != NO_DISPLAY)
            self.assertEqual(said, self.expected_errors)

    def key(self, name):
        xdotool(self.session, "key", name)

    def click_at(self, x, y, button=1):
        xdotool(self.session, "mousemove", x, y, "click", button)
