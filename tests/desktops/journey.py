# SPDX-License-Identifier: MIT
"""What a user does with the program on any desktop, and looks at: by pointer, keys and pictures."""

import re
import subprocess
import time

from gi.repository import GLib

import look
from nimbo_desktop import BOUND, TrayItem, turn_for, wait_until
from desktop import QUIET, WATCHER
from program import DASHBOARD_WIDTH, Program

TABS = ["ai", "memory", "awake"]
SETTINGS = {"refreshInterval": 2, "menuAwake": True, "tabOrder": TABS, "awakeDisplayOn": True}
START, STOP = "Keep awake until stopped", "Stop awake session"
ENTRIES = [None, "Settings…", "Check for Updates…", None, "Quit Nimbo"]
SIGNS = {"awake": "Ready for your next run", "memory": "App memory"}  # texts that only one tab has
NEAR = 8  # points
STILL = 0.4  # seconds without a change
GEAR = (307, 30)  # points from the dashboard's corner
MENU = (60, 80)  # points, at least
FAINT = 1.5  # contrast of what panels draw between items
READABLE = 3  # contrast
OTHER_WINDOW = """
import gi
gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, GLib, Gtk
GLib.set_prgname("other-window")
style = Gtk.CssProvider()
style.load_from_data(b"window { background: %s; } decoration { box-shadow: none; }")
Gtk.StyleContext.add_provider_for_screen(Gdk.Screen.get_default(), style, 800)
window = Gtk.Window(title="Other window", default_width=560, default_height=420)
window.set_titlebar(Gtk.Box())  # so that nobody draws one, which would change with the focus
window.show_all()
window.present()
Gtk.main()
""" % look.WINDOW


class Journey:
    """Steps are methods named step_…, in this order; each begins with the program running and nothing open, and fails
    by an AssertionError."""

    def __init__(self, desktop, starts, folder):
        self.desktop, self.starts, self.folder = desktop, starts, folder
        self.session, self.connection = desktop.session, desktop.session.connection  # for TrayItem
        self.program = self.other = None
        self.scale = desktop.scale
        self.still(3 * BOUND)  # panels slide in
        desktop.work = desktop.work_area()
        self.session.settings(**SETTINGS)
        self.park()

    @classmethod
    def steps(cls):
        return [name.removeprefix("step_") for name in vars(cls) if name.startswith("step_")]

    def run(self):
        """Yields (step, what happened) with "passed", or the reason why it failed or cannot be done here."""
        unprepared = None
        for step in self.steps():
            if step in self.desktop.cannot:
                yield step, "cannot", self.desktop.cannot[step]
                continue
            if unprepared:
                yield step, "failed", unprepared
                continue
            begin = time.monotonic()
            try:
                if step != "starts":
                    unprepared = "could not begin, as the step before"
                    self.prepare()
                    unprepared = None
                said = getattr(self, f"step_{step}")() or ""
                outcome = "passed"
            except (AssertionError, GLib.Error, OSError, subprocess.SubprocessError) as error:
                said, outcome = f"{type(error).__name__}: {error}", "failed"
                self.picture(f"failed-{step}")
                self.forget()
            yield step, outcome, f"{said} ({time.monotonic() - begin:.1f} s)"
        self.forget()

    # Beginnings and ends

    def launch(self):
        self.program = Program(self.session)

    def prepare(self):
        self.close_other()
        if not self.program or not self.program.child.running:
            wait_until(lambda: not self.registered(), "the items to go")
            self.empty_frame()
            self.launch()
            self.wait_for_items()
        self.park()
        if self.opened(*MENU, base=self.empty):
            self.desktop.key("Escape")
            wait_until(lambda: self.opened(*MENU, base=self.empty) is None, "what the step before left open to close")
        self.base = self.still()

    def forget(self):
        """Begins anew after a failure."""
        self.desktop.key("Escape")
        self.desktop.click(*self.parking())
        if self.program:
            self.program.child.end()
            self.program = None
        self.close_other()

    def end(self):
        code = self.program.terminate()
        errors = self.program.errors()
        self.program = None
        assert (code, errors) == (0, ""), f"ended with {code}; {errors}"

    def open_other(self):
        backend = "wayland" if "WAYLAND_DISPLAY" in self.session.env else "x11"
        self.other = self.session.start(["env", f"GDK_BACKEND={backend}", "/usr/bin/python3", "-c", OTHER_WINDOW], **QUIET)
        wait_until(lambda: look.red(self.desktop.frame()).count(1) > 20000, "the other window")
        self.base = self.still()

    def close_other(self):
        if self.other:
            self.other.end()
            self.other = None
            wait_until(lambda: look.red(self.desktop.frame()).count(1) < 20000, "the other window to close")

    # Looking

    def still(self, bound=BOUND):
        """The picture once it has not changed for a while but for the figures in the panel."""
        frame, since = self.desktop.frame(), time.monotonic()

        def unchanged():
            nonlocal frame, since
            now = self.desktop.frame()
            if look.changed(frame, now).count(1) > 100 * self.scale**2:
                frame, since = now, time.monotonic()
            return time.monotonic() > since + STILL

        wait_until(unchanged, "the picture to stand still", bound)
        return frame

    def picture(self, name):
        self.desktop.frame().save(self.folder / f"{name}.png")

    def empty_frame(self):
        self.park()
        self.empty = self.still()

    def area(self):
        frame = self.desktop.frame()
        return 0, 0, frame.width, frame.height

    def opened(self, width=200, height=100, base=None, seen=look.appeared):
        """Frame of what has opened since then and is at least that large, in points."""
        frame, before = self.desktop.frame(), base or self.base
        mask = look.without_shadow(seen(before, frame), before, frame, self.desktop.panel_area())
        found = look.box(mask, frame.width, (0, 0, frame.width, frame.height), width * self.scale)
        return found if found and found[3] >= height * self.scale else None

    def steady(self, what, *size, **options):
        """The same, once it is there and keeps its place."""
        before = None

        def there():
            nonlocal before
            now, last = self.opened(*size, **options), before
            before = now
            return now if now == last else None

        return wait_until(there, what)

    def wait_for_nothing(self, what):
        """Tooltips do not count."""
        wait_until(lambda: self.opened(*MENU) is None, what)

    def found_items(self):
        frame = self.desktop.frame()
        mask = look.changed(self.empty, frame)
        across, scale = self.desktop.horizontal, self.desktop.picture_scale()
        gap, least = (points * scale for points in self.desktop.item_extents())
        boxes = look.clusters(mask, frame.width, self.desktop.tray_area(), across, gap)
        large = [box for box in boxes if box[2 if across else 3] >= least]
        return frame, mask, [box for box in large if look.contrast(frame, box)[0] > FAINT]

    def wait_for_items(self):
        """What the three items look like once they stand still; their boxes are kept."""
        if not self.desktop.has_tray:
            self.steady("the dashboard, which opens by itself", base=self.empty)
            return []
        before, since = [], time.monotonic()

        def three():
            nonlocal before, since
            found = self.found_items()
            if found[2] != before:
                before, since = found[2], time.monotonic()
            return found if len(before) == 3 and time.monotonic() > since + STILL else None

        try:
            frame, mask, boxes = wait_until(three, "three items in the panel", 2 * BOUND)
        except AssertionError as error:
            registered = self.registered()
            raise AssertionError(f"{error}; the panel shows {len(before)}: {before}; registered: {registered}") from error
        self.boxes = boxes
        return [look.rows(mask, frame.width, box) for box in boxes]

    def registered(self):
        if WATCHER not in self.session.names():
            return []
        parameters = GLib.Variant("(ss)", (WATCHER, "RegisteredStatusNotifierItems"))
        return self.session.call(WATCHER, "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties", "Get", parameters)[0]

    def center(self, tab="memory"):
        x, y, width, height = self.boxes[TABS.index(tab)]
        return x + width // 2, y + height // 2

    def park(self):
        """Puts the pointer where it touches nothing."""
        self.desktop.pointer(*self.parking())

    def parking(self):
        x, y, width, height = self.desktop.work
        return x + width // 4, y + height // 2

    def open_dashboard(self, tab="memory"):
        if not self.desktop.has_tray:
            assert Program(self.session).wait_for_exit() == 0, "a second start failed"
            return self.steady("the dashboard")
        self.desktop.click(*self.center(tab), times=2 if self.desktop.left_click_opens_menu else 1)
        return self.steady("the dashboard")

    def open_menu(self):
        self.desktop.click(*self.center(), button=3)
        return self.steady("the menu", *MENU)

    def close_menu(self):
        if self.desktop.escape_closes_menus:
            self.desktop.key("Escape")
        else:
            self.park()
            self.desktop.click(*self.parking())
        self.wait_for_nothing("the menu to close")

    def choose(self, number):
        """Clicks an entry of the open menu; its two separators are thin."""
        x, y, width, height = self.steady("the menu", *MENU)
        first = 1 if self.desktop.left_click_opens_menu else 0
        heights = [1] * first + [1, 0.3, 1, 1, 0.3, 1]
        entries = [index for index, one in enumerate(heights) if one == 1]
        at = entries[number + first]
        self.desktop.click(x + width // 3, y + int(height * (sum(heights[:at]) + 0.5) / sum(heights)))

    def menu_items(self):
        """What the program's items offer, over the bus."""
        items = []
        for name in self.registered():
            item = TrayItem(self, re.split("[@/]", name)[0])
            labels = [properties.get("label") for _identifier, properties in item.open_menu()]
            item.close_menu()
            items.append((item.identifier, labels))
        return items

    def held(self):
        return [text for text in self.desktop.held() if "nimbo" in text.lower()]

    def wait_for_session(self, running):
        wait_until(lambda: bool(self.held()) == running, f"{'an' if running else 'no'} inhibitor, not {self.desktop.held()}")

    def toggle_session(self, running):
        self.desktop.click(*self.center(), button=2)
        self.wait_for_session(running)
        self.still()  # so that the next is no double click

    # The journey

    def step_starts(self):
        signs = None
        for count in range(self.starts):
            self.empty_frame()
            self.launch()
            seen = self.wait_for_items()
            if signs is None:
                self.base = self.still()
                self.picture("items")
                order = [self.tab_of(index) for index in range(3)]
                assert order == TABS, f"the items are in the order {order}"
                signs = seen
            else:
                order = [max(range(3), key=lambda index: alike(signs[index], one)) for one in seen]
                assert order == [0, 1, 2], f"start {count + 1}: the items are in the order {order}"
            self.end()
            wait_until(lambda: not self.found_items()[2], "the items to go")
        return f"{self.starts} starts"

    def tab_of(self, index):
        self.open_dashboard(TABS[index])
        texts = wait_until(lambda: "Quit Nimbo" in (found := self.program.texts()) and found, "the dashboard's texts")
        self.desktop.key("Escape")
        self.wait_for_nothing("the dashboard to close")
        self.park()
        self.still()
        return next((tab for tab, sign in SIGNS.items() if sign in texts), "ai")

    def step_tooltip(self):
        x, y = self.center()
        self.desktop.pointer(x, y)
        self.desktop.pointer(x + 1, y)
        box = self.steady("the tooltip", 60, 12, seen=look.changed)
        self.picture("tooltip")
        self.park()
        wait_until(lambda: self.opened(60, 12, seen=look.changed) is None, "the tooltip to go")
        return f"{box[2]} × {box[3]}"

    def step_menu(self):
        first = ["Open Nimbo"] if self.desktop.left_click_opens_menu else []
        for identifier, labels in self.menu_items():
            assert labels == [*first, START, *ENTRIES], f"{identifier}: {labels}"
        box = self.open_menu()
        self.picture("menu")
        assert box[2] < DASHBOARD_WIDTH * self.scale, "the dashboard has opened instead"
        self.close_menu()
        return f"{box[2]} × {box[3]}"

    def step_live_menu(self):
        """The host may keep what it has once read."""
        before = self.open_menu()
        without = self.still()
        self.choose(0)
        self.wait_for_session(True)
        for identifier, labels in self.menu_items():
            assert STOP in labels, f"{identifier}: {labels}"
        self.park()
        self.base = self.still()
        after = self.open_menu()
        frame = self.still()
        self.picture("menu-in-a-session")
        row = lambda picture, box: picture.cropped(box[0], box[1], min(before[2], after[2]), box[3] // 4).pixels  # noqa: E731
        shown = row(without, before) != row(frame, after)
        self.choose(0)
        self.wait_for_session(False)
        assert shown, "the menu looks as it did without a session"

    def step_left(self):
        if not self.desktop.left_click_opens_menu:
            self.open_dashboard()
            return "opens the dashboard"
        self.desktop.click(*self.center())
        self.steady("the menu", *MENU)
        self.close_menu()
        self.open_other()
        for _ in range(self.starts):
            self.open_from_menu()
        self.open_dashboard()
        return "opens the menu; a double click the dashboard"

    def open_from_menu(self):
        """As the menu closes, the focus goes back to the other window."""
        self.desktop.click(*self.center())
        self.choose(-1)
        self.steady("the dashboard", 300)
        turn_for(1)
        assert self.opened(300), "the dashboard has closed again"
        self.desktop.key("Escape")
        self.wait_for_nothing("the dashboard to close")
        self.still()  # so that the next is no double click

    def step_middle(self):
        self.toggle_session(True)
        self.toggle_session(False)

    def step_place(self):
        self.open_dashboard()
        self.park()
        self.still()  # a tooltip may lie over it
        box = self.opened()
        self.picture("dashboard")
        item = self.boxes[1]
        work = self.desktop.work
        ends = lambda area, axis: (area[axis], area[axis] + area[axis + 2])  # noqa: E731
        for axis in (0, 1):
            low, high = ends(box, axis)
            begin, end = ends(work, axis)
            assert begin - 1 <= low and high <= end + 1, f"the dashboard {box} is not inside the work area {work}"
        along, across = (0, 1) if self.desktop.horizontal else (1, 0)
        low, high = ends(box, along)
        begin, end = ends(item, along)
        beside = max(0, low - end, begin - high)
        panel = {"top": box[1] - work[1], "left": box[0] - work[0]}.get(
            self.desktop.edge, ends(work, across)[1] - ends(box, across)[1]
        )
        assert max(beside, panel) <= NEAR * self.scale, (
            f"the dashboard {box} is {beside} beside its item {item} and {panel} from the panel's edge"
        )
        return f"{panel} pixels from the panel"

    def step_escape(self):
        self.open_dashboard()
        self.desktop.key("Escape")
        self.wait_for_nothing("the dashboard to close")

    def step_other_window(self):
        self.open_other()
        box = self.open_dashboard()
        x, y = self.point_of(look.red(self.desktop.frame()), box)
        self.desktop.click(x, y)
        self.wait_for_nothing("the dashboard to close")

    def step_ground(self):
        box = self.open_dashboard()
        self.desktop.click(*self.point_of(look.bare(self.desktop.frame()), box))
        self.wait_for_nothing("the dashboard to close")

    def point_of(self, mask, avoided):
        """A place in the work area, in the middle of such pixels and apart from what is open."""
        x, y, width, height = self.desktop.work
        across = self.area()[2]
        x0, y0, w0, h0 = avoided
        margin = int(40 * self.scale)
        for py in range(y + margin, y + height - margin, margin):
            for px in range(x + margin, x + width - margin, margin):
                if x0 - margin < px < x0 + w0 + margin and y0 - margin < py < y0 + h0 + margin:
                    continue
                if all(mask[(py + dy) * across + px + dx] for dx in (-9, 0, 9) for dy in (-9, 0, 9)):
                    return px, py
        raise AssertionError("there is no such place")

    def step_panel(self):
        self.open_dashboard()
        self.desktop.click(*self.desktop.panel_point(self.desktop.empty_part))
        self.wait_for_nothing("the dashboard to close")

    def step_own_item(self):
        self.open_dashboard()
        self.desktop.click(*self.center(), times=2 if self.desktop.left_click_opens_menu else 1)
        self.wait_for_nothing("the dashboard to close")
        turn_for(1)
        assert self.opened() is None, "the click that closed it has opened it again"

    def step_settings(self):
        self.open_other()
        x, y, *_size = self.open_dashboard()
        self.desktop.click(*(int(place + distance * self.scale) for place, distance in ((x, GEAR[0]), (y, GEAR[1]))))
        wait_until(lambda: "Launch at login" in self.program.texts(), "the settings")
        x, y, width, height = self.steady("the settings window", 300, 200)
        self.picture("settings")
        frame = self.desktop.frame()
        inner = (x + width // 8, y + height // 8, width * 3 // 4, height * 3 // 4)
        hidden = look.cropped(look.red(frame), frame.width, inner).count(1)
        assert hidden < inner[2] * inner[3] // 100, "the other window is over the settings"
        title, application, icon = self.desktop.active_window()
        assert application in ("nimbo", "com.quellwerk.Nimbo"), f"the keyboard is with {title!r} of {application!r}"
        assert icon, "the window has no icon"
        self.desktop.key("ctrl+w")
        wait_until(lambda: self.opened(300) is None, "the settings to close")
        return f"{title!r} of {application}"

    def step_awake(self):
        self.toggle_session(True)
        held = self.held()
        self.toggle_session(False)
        return "; ".join(held)

    def colors(self):
        """(the least contrast of an item, luminance of the panel)."""
        frame = self.desktop.frame()
        x, y, width, height = self.desktop.panel_area()
        measured = []
        for bx, by, bw, bh in self.boxes:
            cell = (bx - 2, y, bw + 4, height) if self.desktop.horizontal else (x, by - 2, width, bh + 4)
            measured.append(look.contrast(frame, cell))
        return min(ratio for ratio, _ground in measured), measured[0][1]

    def readable(self):
        last = None

        def seen():
            nonlocal last
            last = self.colors()
            return last if last[0] >= READABLE else None

        try:
            return wait_until(seen, "items that can be seen")
        except AssertionError as error:
            raise AssertionError(f"{error}; contrast {last[0]:.1f} on a panel of luminance {last[1]:.2f}") from error

    def step_schemes(self):
        """Changed while it runs, and found at its start."""
        said = []
        self.session.settings(**SETTINGS, showChart=False)  # which on a machine with free memory is hardly filled
        for dark in (not self.desktop.dark, self.desktop.dark):
            before = self.colors()[1]
            self.desktop.set_scheme(dark)
            if self.desktop.panel_follows_scheme:
                wait_until(lambda: abs(self.colors()[1] - before) > 0.1, "the panel to change")  # noqa: B023
            self.still()
            said.append(f"{'dark' if dark else 'light'}, live: {self.readable()[0]:.1f}")
            self.picture("dark" if dark else "light")
            self.end()
            wait_until(lambda: not self.registered(), "the items to go")
            self.empty_frame()
            self.launch()
            self.wait_for_items()
            said.append(f"at start: {self.readable()[0]:.1f}")
        self.session.settings(**SETTINGS)
        return ", ".join(said)

    def step_new_panel(self):
        self.desktop.stop_panel()
        wait_until(lambda: not self.desktop.shown() or not self.found_items()[2], "the panel or its items to go")
        self.desktop.start_panel()
        wait_until(self.desktop.shown, "the new panel", 4 * BOUND)
        self.wait_for_items()
        self.picture("new-panel")
        self.base = self.still()
        self.open_dashboard()

    def step_logout(self):
        self.toggle_session(True)
        self.end()
        self.wait_for_session(False)


def alike(one, other):
    """How much two masks of items have in common, from 0 to 1; a faint edge may be seen in one of them only."""
    height, width = max(len(one), len(other)), max(len(one[0]), len(other[0]))
    return sum(a == b for rows in zip(one, other, strict=False) for a, b in zip(*rows, strict=False)) / (height * width)
