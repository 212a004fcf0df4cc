# SPDX-License-Identifier: MIT
"""A real sway without hardware, with its own bar, and somebody at its pointer and keyboard."""

import json
import pathlib
import socket
import struct
import subprocess

from nimbo_desktop import SLOW, ordinary_user, wait_until
from screen import Frame

BACKGROUND = "#204060"
QUIET = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
LEFT = 272
# What of a picture is as bright as nothing but the light dashboard is.
BRIGHT = bytes(1 if value >= 0xE8 else 0 for value in range(256))
RUN = b"\1" * 4 * 100


class Sway:
    def __init__(self, session, bar="top", scale=1, size=(1280, 800)):
        self.session = session
        self.scale = scale
        headless = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1", "WLR_RENDERER": "pixman"}
        session.env.update(headless, LIBSEAT_BACKEND="noop", XDG_SESSION_TYPE="wayland")
        config = session.folder / "sway-config"
        width, height = (side * scale for side in size)
        config.write_text(
            f"xwayland disable\noutput HEADLESS-1 resolution {width}x{height} scale {scale} bg {BACKGROUND} solid_color\n"
            f"bar {{\n position {bar}\n tray_output none\n status_command echo .\n font monospace 10\n}}\n"
        )
        config.chmod(0o644)
        self.runtime = pathlib.Path(session.env["XDG_RUNTIME_DIR"])
        session.start(["sway", "-c", config], **QUIET)
        display = wait_until(lambda: next(self.runtime.glob("wayland-?"), None), "the compositor")
        session.env["WAYLAND_DISPLAY"] = display.name
        session.env["SWAYSOCK"] = str(wait_until(lambda: next(self.runtime.glob("sway-ipc.*"), None), "its socket"))
        self.pointer = Pointer(display, size)
        session.stack.callback(self.pointer.close)
        self.pointer.move(size[0] // 2, size[1] // 2)
        # A keyboard that stays, as real ones do: windows lose the focus with the last one.
        session.start(["wtype", "-s", 3600000, "-k", "Shift_L"], **QUIET)
        self.bar = wait_until(self.bar_rows, "the bar", 20 * SLOW)

    def bar_rows(self):
        """The first and the last row of the bar, in points; None before it is there."""
        frame = self.picture()
        rows = [y for y in range(frame.height) if frame.color(frame.width // 4, y) != BACKGROUND]
        return (rows[0] // self.scale, rows[-1] // self.scale) if rows and len(rows) < frame.height // 4 else None

    def run(self, *command):
        environment = {"env": self.session.env, **ordinary_user()}
        return subprocess.run(command, capture_output=True, check=True, **environment).stdout

    def picture(self):
        data = self.run("grim", "-t", "ppm", "-")
        header, size, _most, colors = data.split(b"\n", 3)
        assert header == b"P6"
        pixels = bytearray(b"\xff" * (len(colors) // 3 * 4))
        for index in range(3):
            pixels[index::4] = colors[2 - index :: 3]
        return Frame(*map(int, size.split()), bytes(pixels))

    def dashboard(self):
        """The card of the open dashboard in points, (left, top, right, bottom), or None."""
        frame = self.picture()
        rows = {y: frame.row(y).translate(BRIGHT) for y in range(frame.height)}
        rows = {y: row for y, row in rows.items() if RUN in row}
        if not rows:
            return None
        left = min(row.find(RUN) for row in rows.values()) // 4
        right = max(row.rfind(RUN) + len(RUN) for row in rows.values()) // 4
        return tuple(side / self.scale for side in (left, min(rows), right, max(rows) + 1))

    def windows(self):
        """Names of all ordinary windows, with whether they float."""

        def walk(node):
            if node.get("pid"):
                yield node["name"], node["type"] == "floating_con"
            for child in node["nodes"] + node["floating_nodes"]:
                yield from walk(child)

        return dict(walk(json.loads(self.run("swaymsg", "-t", "get_tree"))))

    def key(self, name):
        self.run("wtype", "-k", name)


class Pointer:
    """A virtual one (zwlr_virtual_pointer_v1), as the compositor has none of its own."""

    DISPLAY, REGISTRY, CALLBACK, SEAT, MANAGER, POINTER = range(1, 7)

    def __init__(self, display, size):
        self.size = size
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(str(display))
        self.buffer = b""
        self.time = 0
        self.globals = {}
        self._request(self.DISPLAY, 1, struct.pack("<I", self.REGISTRY))
        self._wait()
        self._bind(b"wl_seat\0", self.SEAT)
        self._bind(b"zwlr_virtual_pointer_manager_v1\0", self.MANAGER)
        self._request(self.MANAGER, 0, struct.pack("<II", self.SEAT, self.POINTER))
        self._wait()

    def close(self):
        self.socket.close()

    def move(self, x, y):
        self._act(1, int(x), int(y), *self.size)

    def click(self, x, y, button=LEFT):
        self.move(x, y)
        self._act(2, button, 1)
        self._act(2, button, 0)

    def _act(self, opcode, *arguments):
        self.time += 1
        self._request(self.POINTER, opcode, struct.pack(f"<{len(arguments) + 1}I", self.time, *arguments))
        self._request(self.POINTER, 4)  # frame
        self._wait()

    def _bind(self, interface, number):
        text = struct.pack("<I", len(interface)) + interface + b"\0" * (-len(interface) % 4)
        self._request(
            self.REGISTRY, 0, struct.pack("<I", self.globals[interface]) + text + struct.pack("<II", 1, number)
        )

    def _request(self, number, opcode, body=b""):
        self.socket.sendall(struct.pack("<IHH", number, opcode, 8 + len(body)) + body)

    def _wait(self):
        """Until the compositor has handled all that it was sent."""
        self._request(self.DISPLAY, 0, struct.pack("<I", self.CALLBACK))
        for number, opcode, body in self._events():
            assert (number, opcode) != (self.DISPLAY, 0), body  # an error
            if (number, opcode) == (self.REGISTRY, 0):
                name, length = struct.unpack_from("<II", body)
                self.globals[body[8 : 8 + length]] = name
            if number == self.CALLBACK:
                return

    def _events(self):
        while True:
            while len(self.buffer) >= 8:
                number, opcode, size = struct.unpack_from("<IHH", self.buffer)
                if len(self.buffer) < size:
                    break
                body, self.buffer = self.buffer[8:size], self.buffer[size:]
                yield number, opcode, body
            data = self.socket.recv(65536)
            assert data, "the compositor has hung up"
            self.buffer += data
