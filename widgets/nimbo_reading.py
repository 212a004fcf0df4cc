# SPDX-License-Identifier: MIT
"""What Nimbo shares with its widgets: the file, what it says, and when to look at it again.

Nimbo replaces the file when there is something new, at most every five minutes otherwise, and then sends
a signal on the session bus. A widget that uses `Watch` therefore sleeps until there is something new, or until what it shows has become old.
"""

import ctypes
import dataclasses
import json
import math
import os
import pathlib
import stat
import sys
import time

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

GROUP = "K3QX9TZ4WB.com.quellwerk.Nimbo"
OLD_AFTER = 900  # seconds: three readings that should have come and did not
HIGH, FULL = 75, 90  # percent, where Nimbo's own bars change colour
YEAR_2001 = 978307200
MAXIMUM_BYTES = 1 << 20


@dataclasses.dataclass(frozen=True)
class Window:
    """One limit of a subscription."""

    title: str
    used: float  # percent
    resets: float | None  # seconds since 1970, as all times here


@dataclasses.dataclass(frozen=True)
class Provider:
    name: str
    enabled: bool
    windows: tuple[Window, ...] = ()
    fetched: float | None = None
    message: str | None = None  # why the windows are not the latest


@dataclasses.dataclass(frozen=True)
class Reading:
    date: float
    temperature: float | None  # °C
    temperature_enabled: bool
    providers: tuple[Provider, ...]

    @property
    def tracked(self):
        return [provider for provider in self.providers if provider.enabled]

    @property
    def old_from(self):
        return self.date + OLD_AFTER

    def today(self, now):
        """The day that texts need not name; none for an old reading, whose texts may stand for days."""
        return None if now >= self.old_from else now


class NoReading(Exception):
    """Says why; `state` is "missing" or "unreadable"."""

    def __init__(self, state, text):
        super().__init__(text)
        self.state = state


# The file


def default_file():
    data = os.environ.get("XDG_DATA_HOME", "")
    folder = pathlib.Path(data) if data.startswith("/") else pathlib.Path.home() / ".local/share"
    return folder / _group() / "usage-snapshot.json"


def _group():
    """The group of the installation that this file is part of, or the usual one."""
    for folder in pathlib.Path(__file__).resolve().parents:
        try:
            return str(json.loads((folder / "nimbo" / "Info.json").read_text())["NimboAppGroup"])
        except (OSError, ValueError, LookupError, TypeError):
            continue
    return GROUP


def read(path):
    """The reading in the file; raises NoReading."""
    try:
        data = _bytes(path)
    except FileNotFoundError:
        raise NoReading("missing", "No reading yet. Nimbo brings one when it runs.") from None
    except OSError as error:
        raise NoReading("unreadable", f"Nimbo’s reading cannot be opened: {error.strerror}.") from None
    try:
        return decode(data)
    except (ValueError, LookupError, TypeError, OverflowError, RecursionError):
        raise NoReading("unreadable", "Nimbo’s reading is damaged. The next one replaces it.") from None


def _bytes(path):
    # Without waiting, should somebody have put a pipe there.
    descriptor = os.open(path, os.O_RDONLY | os.O_CLOEXEC | os.O_NONBLOCK)
    with open(descriptor, "rb") as file:
        if not stat.S_ISREG(os.fstat(descriptor).st_mode):
            raise OSError(0, "not a regular file")
        return file.read(MAXIMUM_BYTES)


def decode(data):
    """The reading that the bytes hold; raises something when they hold none."""
    record = _object(json.loads(data.decode("utf-8"), parse_constant=_refuse))
    temperature = record.get("temperature")
    return Reading(
        _date(record["date"]),
        None if temperature is None else _number(temperature),
        _boolean(record["temperatureEnabled"]),
        (_provider("Codex", record["codex"]), _provider("Claude", record["claude"])),
    )


def _provider(name, value):
    state = _object(value)
    message = state.get("message")
    snapshot = state.get("snapshot")
    if snapshot is not None:
        _object(snapshot)
    _boolean(state["isRefreshing"])
    return Provider(
        name,
        _boolean(state["enabled"]),
        tuple(_window(window) for window in snapshot["windows"]) if snapshot is not None else (),
        _date(snapshot["fetchedAt"]) if snapshot is not None else None,
        None if message is None else _text(message),
    )


def _window(value):
    window = _object(value)
    used = _number(window["usedPercent"])
    if not 0 <= used <= 100:
        raise ValueError(used)
    resets = window.get("resetsAt")
    return Window(_text(window["title"]), used, None if resets is None else _date(resets))


def _refuse(constant):
    raise ValueError(constant)


def _object(value):
    if not isinstance(value, dict):
        raise TypeError(value)
    return value


def _number(value):
    if isinstance(value, bool) or not isinstance(value, (int, float)) or not math.isfinite(value):
        raise TypeError(value)
    return float(value)


def _date(value):
    seconds = _number(value)
    if abs(seconds) > 8e9:
        raise ValueError(value)
    return YEAR_2001 + seconds


def _boolean(value):
    if not isinstance(value, bool):
        raise TypeError(value)
    return value


def _text(value):
    """One line that any toolkit can draw."""
    if not isinstance(value, str):
        raise TypeError(value)
    line = "".join(character if character.isprintable() else " " for character in value)
    return line if len(line) <= 200 else line[:199] + "…"


# What it says


@dataclasses.dataclass(frozen=True)
class Glance:
    """The shortest a reading can be put."""

    text: str
    state: str  # "normal", "high", "full", "old" or "off"
    percent: int  # of the fullest limit


def glance(reading, now):
    fullest = _fullest(reading)
    percent = 0 if fullest is None else percent_text(fullest)
    parts = []
    if reading.tracked:
        parts.append("AI –" if fullest is None else f"AI {percent}%")
    if reading.temperature_enabled and reading.temperature is not None:
        parts.append(f"{reading.temperature:.0f}°")
    return Glance(" · ".join(parts) or "Nimbo", _state(reading, now, percent), percent)


def percent_text(used):
    """A limit that is not quite reached must not look as if it were."""
    return 99 if 99 <= used < 100 else round(used)


def _fullest(reading):
    windows = [window for provider in reading.tracked for window in provider.windows]
    return max((window.used for window in windows), default=None)


def _state(reading, now, percent):
    if now >= reading.old_from:
        return "old"
    if not reading.tracked and not reading.temperature_enabled:
        return "off"
    return level(percent)


def level(percent):
    return "full" if percent >= FULL else "high" if percent >= HIGH else "normal"


def day_and_time(when):
    return time.strftime("%a %d %b, %H:%M", time.localtime(when))


def time_text(when, today):
    """The time of day, with the day when that is not today's."""
    same_day = today is not None and time.localtime(when)[:3] == time.localtime(today)[:3]
    return time.strftime("%H:%M", time.localtime(when)) if same_day else day_and_time(when)


def window_text(window, today):
    reset = "" if window.resets is None else f" · resets {time_text(window.resets, today)}"
    return f"{window.title} {percent_text(window.used)}% used{reset}"


def provider_texts(provider, today):
    """What there is to say of a provider, below its name."""
    texts = [window_text(window, today) for window in provider.windows]
    if provider.message:
        if provider.windows:
            texts.append(f"Last known, {time_text(provider.fetched, today)}")
        texts.append(provider.message)
    return texts or ["Not read yet"]


def age_text(reading, now):
    """When the reading is from."""
    when = time_text(reading.date, reading.today(now))
    return f"Old: last reading {when}" if now >= reading.old_from else f"Read {when}"


# When to look again


class Watch:
    """Calls `look()` whenever Nimbo has written, and at the time that the last call has returned, if any."""

    PATH = "/com/quellwerk/Nimbo"
    INTERFACE = "com.quellwerk.Nimbo.Widgets"

    def __init__(self, look):
        self._look = look
        self._pending = False
        self._alarm = Alarm(self.now)
        try:
            self._subscribe()
        except GLib.Error as error:
            print(f"No news from Nimbo without a session bus: {error.message}", file=sys.stderr)
        self.now()

    def _subscribe(self):
        self._connection = Gio.bus_get_sync(Gio.BusType.SESSION)
        self._connection.signal_subscribe(
            None, self.INTERFACE, "TimelinesReloaded", self.PATH, None, Gio.DBusSignalFlags.NONE, self._news
        )
        # Once the bus answers it has noted the subscription, and no news is lost between it and the first look.
        bus = "org.freedesktop.DBus"
        self._connection.call_sync(
            bus, "/org/freedesktop/DBus", bus, "GetId", None, None, Gio.DBusCallFlags.NONE, 5000, None
        )

    def now(self):
        self._pending = False
        self._alarm.set(self._look())
        return GLib.SOURCE_REMOVE

    def _news(self, *_signal):
        # Both kinds are announced one after the other; one look is enough for them.
        if not self._pending:
            self._pending = True
            GLib.idle_add(self.now)


class Alarm:
    """Rings at a time of the wall clock, also when the machine sleeps until then or the clock is set."""

    class _Times(ctypes.Structure):
        _fields_ = [(name, ctypes.c_long) for name in ("every", "every_ns", "first", "first_ns")]

    def __init__(self, ring):
        self._ring = ring
        self._libc = ctypes.CDLL(None, use_errno=True)
        flags = os.O_CLOEXEC | os.O_NONBLOCK
        self._descriptor = self._libc.timerfd_create(time.CLOCK_REALTIME, flags)
        if self._descriptor < 0:
            raise OSError(ctypes.get_errno(), "timerfd_create")
        GLib.unix_fd_add_full(GLib.PRIORITY_DEFAULT, self._descriptor, GLib.IOCondition.IN, self._rang)

    def set(self, when):
        """None for never."""
        absolute = 1
        first = 0 if when is None else max(1, math.ceil(when))
        self._libc.timerfd_settime(self._descriptor, absolute, ctypes.byref(self._Times(0, 0, first, 0)), None)

    def _rang(self, descriptor, _condition):
        try:
            os.read(descriptor, 8)
        except BlockingIOError:
            return GLib.SOURCE_CONTINUE  # set anew meanwhile
        self._ring()
        return GLib.SOURCE_CONTINUE
