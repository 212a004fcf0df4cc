# SPDX-License-Identifier: MIT
"""Shows the program on a private virtual desktop with a real panel, saves pictures and a page with them.

Usage: demo.py BINARY FOLDER [--all]   (--all: also at scale 2)
"""

import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import time

from gi.repository import GLib

import accessibility
import claude_tool
import demo_page
import power_services
import program
from nimbo_desktop import BOUND, Session, wait_until, xdotool
from power_services import Logind
from program import Program
from screen import Screen
from xfce_panel import XfcePanel

SETTINGS = {"refreshInterval": 2, "menuAwake": True, "monitorCPU": True, "monitorTemperature": True}
SUBSCRIPTIONS = {"usage.codex": True, "usage.claude": True}  # one signed in, by a stand-in for its tool
PAGES = {
    "settings-general": "General",
    "settings-monitors": "Monitors",
    "settings-ai-usage": "AI Usage",
    "settings-keep-awake": "Keep Awake",
}
AGAIN = 5  # seconds after which a click or a key counts as lost
MIN_WIDTH = 420  # of a picture
HISTORY = 8  # seconds of readings that make a history to see
RUNNING = "Your computer is staying awake"
STARTED = time.monotonic()
FAILURES = (AssertionError, GLib.Error, OSError, subprocess.SubprocessError)


class Ended(AssertionError):
    """The program has ended although nobody asked it to."""


class WatchedProgram(Program):
    """Read and pressed by this very process, which has one session only; its end is noticed at once."""

    def check(self):
        if not self.child.running:
            raise Ended(f"the program ended with {self.status()}")

    def status(self):
        code = self.child.process.returncode
        how = f"status {code}" if code >= 0 else signal.Signals(-code).name
        return f"{how}; on its standard error: {self.errors().strip() or 'nothing'}"

    def dashboard(self):
        self.check()
        return super().dashboard()

    def ask(self, question, *arguments):
        """None for what came or went meanwhile, which shows in more than one way."""
        self.check()
        try:
            return question(self.windows_pid, *arguments)
        except (GLib.Error, AttributeError, TypeError):
            return None

    def controls(self):
        return [control for control in self.ask(accessibility.described) or [] if control["showing"]]

    def press(self, name):
        wait_until(lambda: self.ask(accessibility.pressed, name), f"a control named {name!r} to press")

    def wait_for_control(self, matches, what):
        wait_until(lambda: any(matches(control) for control in self.controls()), what)

    def wait_for_text(self, matches, what):
        self.wait_for_control(lambda control: matches(control["name"]), what)


class Demonstration:
    """One pass over everything that there is to see, in one colour scheme at one scale.

    It has its process for itself, because what reads the controls connects to one session only.
    """

    def __init__(self, folder, scheme, scale, problems):
        self.folder = folder
        self.scheme = scheme
        self.scale = scale
        self.problems = problems  # a file that gets a line for each
        self.column = demo_page.column(scheme, scale)
        self.nimbo = None  # while it does not run
        self.open = None  # the dashboard, the settings, the menu or the question
        self.steps = {
            "tray": self.close,
            "menu": self.menu,
            **{picture: lambda page=page: self.settings(page) for picture, page in PAGES.items()},
            "ai": self.allowances,
            "awake": self.keep_awake,
            "memory": self.memory,
            "processes": self.processes,
            "running": self.running,
            "quit": self.quit,
        }

    def run(self):
        self.say("starting a desktop")
        size = f"{1280 * self.scale}x{800 * self.scale}x24"
        self.session = Session(display=True, system_bus=True, size=size)
        signal.signal(signal.SIGTERM, self.stop)
        try:
            self.prepare()
            for picture in self.steps:
                self.say(picture)
                self.take(picture)
            self.end()
        except FAILURES as error:
            self.report("end", str(error))
        finally:
            self.session.close()

    def stop(self, *_signal):
        """At once, because what is raised inside the main loop would be lost there."""
        self.session.close()
        os._exit(1)

    def prepare(self):
        self.session.env["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        if self.scale != 1:
            self.session.env["QT_SCALE_FACTOR"] = str(self.scale)
        os.environ.update(self.session.env)  # for what reads and presses the controls
        claude_tool.install(self.session, claude_tool.screen(61, 23))
        self.session.settings(**SETTINGS, **SUBSCRIPTIONS)
        if Logind.missing():
            # In a process of its own: while the program asks it, this one may be waiting for the program.
            self.session.start([sys.executable, "-B", power_services.__file__])
            wait_until(lambda: "org.gnome.SessionManager" in self.session.names(), "the session manager")
        else:
            self.logind = Logind(self.session)
        self.panel = XfcePanel(self.session, dark=self.scheme == "dark", scale=self.scale)
        self.empty = self.panel.settled()

    def start(self):
        self.open = None
        self.nimbo = WatchedProgram(self.session)

        def items():
            self.nimbo.check()
            box = self.empty.changed_box(self.panel.settled())
            return box if box and box[2] > 70 * self.scale else None  # two alone are 52 wide

        x, y, width, height = wait_until(items, "three items in the panel")
        self.item = (x + width // 2, y + height // 2)

    def take(self, picture):
        """Saves a picture of what its steps lead to. A program that ends is started again, for a second try."""
        for _ in range(2):
            try:
                if not self.nimbo:
                    self.start()
                self.steps[picture]()
                frame = self.panel.settled()
                self.nimbo.check()
                self.cropped(frame).save(self.folder / f"{picture}-{self.column}.png")
                return
            except FAILURES as error:
                self.report(picture, str(error))
                self.nimbo.child.end()
                self.nimbo = None
                if not isinstance(error, Ended):
                    return

    def cropped(self, frame):
        """Without the empty part of the desktop, but from the panel to what hangs from it."""
        x, y, width, height = self.empty.changed_box(frame) or (0, 0, frame.width, frame.height)
        margin = 24 * self.scale
        left = max(0, min(x - margin, frame.width - MIN_WIDTH * self.scale))
        return frame.cropped(left, 0, frame.width - left, min(frame.height, y + height + margin))

    def end(self):
        if not self.nimbo:
            return  # and it is known why
        self.close()
        self.nimbo.terminate()
        if self.nimbo.child.process.returncode != 0 or self.nimbo.errors():
            self.report("end", f"the program ended with {self.nimbo.status()}")

    def report(self, picture, reason):
        """`picture` is "end" for what has to do with none."""
        screen = f"failed-{picture}-{self.column}.png"
        try:
            Screen(self.session.display.frame_buffer).frame().save(self.folder / screen)
        except OSError as error:
            screen, reason = None, f"{reason}; no screen: {error}"
        with self.problems.open("a") as stream:
            print(json.dumps([self.column, picture, reason, screen]), file=stream)
        self.say(f"{picture}: {reason}")

    def say(self, text):
        say(self.column, text)

    # What is open, and how one gets there

    def do_until(self, act, reached, what):
        """Acts again after a while, because a click or a key is lost on a window that is only just coming."""
        acted = None

        def there():
            nonlocal acted
            if reached():
                return True
            if acted is None or time.monotonic() > acted + AGAIN:
                act()
                acted = time.monotonic()
            return False

        wait_until(there, what)

    def click(self, button=1):
        xdotool(self.session, "mousemove", *self.item, "click", button)
        xdotool(self.session, "mousemove", 40, 400)  # so that no tooltip covers the picture

    def key(self, name):
        xdotool(self.session, "key", name)

    def close(self):
        if self.open == "question":
            self.nimbo.press("Keep Running")
            self.nimbo.wait_for_no_dashboard()
        elif self.open == "menu":
            self.do_until(lambda: self.key("Escape"), lambda: not self.menu_shown(), "the menu to close")
        elif self.open:
            key = "Escape" if self.open == "dashboard" else "ctrl+w"
            self.do_until(lambda: self.key(key), lambda: not self.nimbo.dashboard(), f"the {self.open} to close")
        self.open = None

    def to_dashboard(self):
        if self.open != "dashboard":
            self.close()
            self.do_until(self.click, self.nimbo.dashboard, "the dashboard")
            self.open = "dashboard"

    def to_page(self, tab, shown, what):
        self.to_dashboard()
        self.nimbo.press(tab)
        self.nimbo.wait_for_text(shown, what)

    # The pictures

    def menu(self):
        self.close()
        self.do_until(lambda: self.click(button=3), self.menu_shown, "the menu")
        self.open = "menu"

    def menu_shown(self):
        box = self.empty.changed_box(self.panel.settled())
        return box is not None and box[3] > 100 * self.scale

    def settings(self, page):
        if self.open != "settings":
            self.to_dashboard()
            self.nimbo.press("Settings")
            self.open = "settings"
        self.nimbo.press(page)
        self.nimbo.wait_for_control(
            lambda control: control["name"] == page and control["role"] == "panel", f"the page {page}"
        )

    def allowances(self):
        self.to_page("AI", lambda text: text == "77% left", "the allowances")

    def keep_awake(self):
        self.to_page("Awake", lambda text: text == "Keep computer awake", "the page")

    def memory(self):
        self.to_page("Mem", lambda text: text.endswith((" MB", " GB")), "the process list")

        def long_enough(text):
            history = re.match(r"RECENT USAGE · (\d+)s", text)
            return history and int(history[1]) >= HISTORY

        self.nimbo.wait_for_text(long_enough, "a history")

    def processes(self):
        self.to_page("Mem", lambda text: text in ("Show more", "Show less"), "the process list")
        if "Show less" not in self.nimbo.texts():
            self.nimbo.press("Show more")
        self.nimbo.wait_for_text(lambda text: text == "Show less", "more processes")

    def running(self):
        self.to_page("Awake", lambda text: text in ("Keep computer awake", RUNNING), "the page")
        if RUNNING not in self.nimbo.texts():
            self.nimbo.press("Keep computer awake")
        self.nimbo.wait_for_text(lambda text: text == RUNNING, "the session")

    def quit(self):
        self.running()
        self.nimbo.press("Quit Nimbo")
        self.nimbo.wait_for_text(lambda text: text == "Keep Awake is running", "the question")
        self.open = "question"


def say(who, text):
    print(f"{time.monotonic() - STARTED:3.0f} s  {who:8} {text}", flush=True)


def passes(binary, folder, scale):
    """Light and dark beside each other; returns what went wrong as [column, picture, reason, screen]."""
    problems = []
    with tempfile.TemporaryDirectory(prefix="nimbo-demo-") as reports:
        running = []
        try:
            for scheme in demo_page.SCHEMES:
                report = pathlib.Path(reports) / scheme
                command = [sys.executable, "-B", __file__, binary, folder, scheme, str(scale), report]
                # What is slow on a machine under load has not failed. Ctrl-C comes here only, where both are ended.
                child = subprocess.Popen(command, env={**os.environ, "NIMBO_SLOW": "1"}, start_new_session=True)
                running.append((child, scheme, report))
            for child, scheme, report in running:
                if child.wait() != 0:
                    column = demo_page.column(scheme, scale)
                    problems.append([column, "end", f"ended with status {child.returncode}", None])
                if report.exists():
                    problems += map(json.loads, report.read_text().splitlines())
        finally:
            for child, _scheme, _report in running:
                child.terminate()
                child.wait()
    return problems


def main(binary, target, scales):
    folder = pathlib.Path(target)
    folder.mkdir(parents=True, exist_ok=True)
    for old in [*folder.glob("*.png"), *folder.glob("index.html")]:
        old.unlink()
    problems = []
    try:
        subprocess.run([binary, "--diagnostics"], check=True, timeout=BOUND)
    except subprocess.SubprocessError as error:
        problems.append(["report", "end", str(error), None])
    print("\nTaking pictures on a virtual desktop, in light and dark:", flush=True)
    for scale in scales:
        problems += passes(binary, folder, scale)
    page, missing = demo_page.write(folder, scales, problems)
    print("\nWhat went wrong:" if problems or missing else "\nEvery picture is there.")
    for column, picture, reason, screen in problems:
        print(f"  {column}, {picture}: {reason}" + (f"\n    on the screen then: {folder / screen}" if screen else ""))
    for name in missing:
        print(f"  missing: {name}")
    print(f"\n{page}", flush=True)
    return 1 if problems or missing else 0


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    try:
        if len(sys.argv) == 6:
            program.BINARY, _folder, _scheme, _scale, _problems = sys.argv[1:]
            Demonstration(pathlib.Path(_folder), _scheme, int(_scale), pathlib.Path(_problems)).run()
        else:
            sys.exit(main(*sys.argv[1:3], (1, 2) if "--all" in sys.argv[3:] else (1,)))
    except KeyboardInterrupt:
        sys.exit(128 + signal.SIGINT)
