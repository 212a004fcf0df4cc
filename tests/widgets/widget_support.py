# SPDX-License-Identifier: MIT
"""What the widgets' tests share: readings as Nimbo writes them, and the news of them."""

import json
import os
import pathlib
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
WIDGETS = HERE.parent.parent / "widgets"
RECORDED = HERE / "usage-snapshot.json"
sys.path.insert(0, str(HERE.parent / "desktop"))
sys.path.insert(0, str(WIDGETS))

import accessibility  # noqa: E402, F401
import nimbo_reading  # noqa: E402
from gi.repository import GLib  # noqa: E402

PYTHON = "/usr/bin/python3"


def limit(title, used, resets=None):
    window = {"title": title, "usedPercent": used}
    return window if resets is None else {**window, "resetsAt": resets - nimbo_reading.YEAR_2001}


def provider(*windows, fetched=None, message=None, enabled=True):
    state = {"enabled": enabled, "isRefreshing": False}
    if windows:
        seconds = time.time() if fetched is None else fetched
        state["snapshot"] = {"windows": list(windows), "fetchedAt": seconds - nimbo_reading.YEAR_2001}
    return state if message is None else {**state, "message": message}


def record(date=None, temperature=54.4, codex=None, claude=None, watched=True):
    date = (time.time() if date is None else date) - nimbo_reading.YEAR_2001
    fields = {"date": date, "temperatureEnabled": watched}
    if temperature is not None:
        fields |= {"temperature": temperature, "temperatureDate": date}
    off = provider(enabled=False)
    return {**fields, "codex": codex or off, "claude": claude or off}


class Publisher:
    """Writes the file and tells of it as Nimbo does, on a session of the tests."""

    def __init__(self, session):
        self.session = session
        self.file = session.folder / "data" / nimbo_reading.GROUP / "usage-snapshot.json"
        self.file.parent.mkdir(mode=0o700)

    def put(self, contents):
        """Replaces the file and tells nobody."""
        text = contents if isinstance(contents, (str, bytes)) else json.dumps(contents, ensure_ascii=False)
        data = text if isinstance(text, bytes) else text.encode()
        temporary = self.file.with_name(".temporary")
        temporary.write_bytes(data)
        os.replace(temporary, self.file)

    def announce(self):
        for kind in ("usage", "temperature"):
            self.session.connection.emit_signal(
                None,
                "/com/quellwerk/Nimbo",
                "com.quellwerk.Nimbo.Widgets",
                "TimelinesReloaded",
                GLib.Variant("(s)", (f"com.quellwerk.Nimbo.{kind}",)),
            )
        self.session.connection.flush_sync(None)

    def publish(self, contents):
        self.put(contents)
        self.announce()


def switches(pid):
    """How often the program's threads have woken up so far."""
    total = 0
    for task in pathlib.Path(f"/proc/{pid}/task").iterdir():
        for line in (task / "status").read_text().splitlines():
            if line.startswith("voluntary_ctxt_switches"):
                total += int(line.split()[1])
    return total
