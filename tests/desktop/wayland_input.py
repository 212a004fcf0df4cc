# SPDX-License-Identifier: MIT
"""A pointer and a keyboard of a Wayland compositor, moved by a test, without any library in between."""

import os
import socket
import struct
import subprocess
import time

BUTTONS = {1: 0x110, 2: 0x112, 3: 0x111}
KEYS = {"Escape": 1, "Return": 28, "Down": 108, "ctrl": 29, "w": 17, "q": 16}
CONTROL = 4  # the modifier's bit


def _text(value):
    data = value.encode() + b"\0"
    return struct.pack("=I", len(data)) + data + b"\0" * (-len(data) % 4)


def _now():
    return int(time.monotonic() * 1000) & 0xFFFFFFFF


class Connection:
    """Identifiers: 1 is the display, 2 the registry, 3 the callback; those that `bind` gives follow."""

    def __init__(self, env):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(10)
        self.socket.connect(os.path.join(env["XDG_RUNTIME_DIR"], env["WAYLAND_DISPLAY"]))
        self.received = b""
        self.last = 3
        self.globals = {}
        self.send(1, 1, struct.pack("=I", 2))
        self.settle()

    def send(self, target, opcode, body=b"", descriptors=()):
        message = struct.pack("=II", target, (8 + len(body)) << 16 | opcode) + body
        if descriptors:
            socket.send_fds(self.socket, [message], list(descriptors))
        else:
            self.socket.sendall(message)

    def settle(self):
        """Waits until the compositor has taken everything that was sent."""
        self.send(1, 0, struct.pack("=I", 3))
        while True:
            while len(self.received) >= 8:
                target, word = struct.unpack_from("=II", self.received)
                size, opcode = word >> 16, word & 0xFFFF
                if len(self.received) < size:
                    break
                body, self.received = self.received[8:size], self.received[size:]
                if target == 1 and opcode == 0:
                    raise OSError(f"refused by the compositor: {body!r}")
                if target == 2 and opcode == 0:
                    number, length = struct.unpack_from("=II", body)
                    self.globals[body[8 : 7 + length].decode()] = number
                if target == 3:
                    return
            data = self.socket.recv(65536)
            if not data:
                raise OSError("the compositor has gone")
            self.received += data

    def new(self):
        self.last += 1
        return self.last

    def bind(self, interface, version):
        identifier = self.new()
        number = struct.pack("=I", self.globals[interface])
        self.send(2, 0, number + _text(interface) + struct.pack("=II", version, identifier))
        return identifier


class WlrootsInput:
    """What grim sees has `size` pixels; places are in these."""

    def __init__(self, env, size):
        self.size = size
        self.connection = Connection(env)
        seat = self.connection.bind("wl_seat", 4)
        pointers = self.connection.bind("zwlr_virtual_pointer_manager_v1", 1)
        keyboards = self.connection.bind("zwp_virtual_keyboard_manager_v1", 1)
        self.pointer, self.keyboard = self.connection.new(), self.connection.new()
        self.connection.send(pointers, 0, struct.pack("=II", seat, self.pointer))
        self.connection.send(keyboards, 0, struct.pack("=II", seat, self.keyboard))
        names = ("keycodes", "evdev+aliases(qwerty)"), ("types", "complete"), ("compat", "complete"), ("symbols", "pc+us")
        source = "xkb_keymap {" + "".join(f'xkb_{kind} {{ include "{name}" }};' for kind, name in names) + "};"
        compiler = ["xkbcomp", "-xkb", "-w0", "-", "-"]
        keymap = subprocess.run(compiler, input=source.encode(), capture_output=True, check=True).stdout + b"\0"
        descriptor = os.memfd_create("keymap")
        os.write(descriptor, keymap)
        self.connection.send(self.keyboard, 0, struct.pack("=II", 1, len(keymap)), [descriptor])
        self.connection.settle()
        os.close(descriptor)

    def move(self, x, y):
        self._pointer(1, struct.pack("=IIIII", _now(), int(x), int(y), *self.size))

    def button(self, number, pressed):
        self._pointer(2, struct.pack("=III", _now(), BUTTONS[number], pressed))

    def _pointer(self, opcode, body):
        self.connection.send(self.pointer, opcode, body)
        self.connection.send(self.pointer, 4)  # the frame
        self.connection.settle()

    def key(self, name, pressed):
        self.connection.send(self.keyboard, 1, struct.pack("=III", _now(), KEYS[name], pressed))
        if name == "ctrl":
            self.connection.send(self.keyboard, 2, struct.pack("=IIII", CONTROL if pressed else 0, 0, 0, 0))
        self.connection.settle()


class KWinInput:
    """Places are in logical pixels, `scale` of the picture's to one."""

    def __init__(self, env, scale):
        self.scale = scale
        self.connection = Connection(env)
        self.fake = self.connection.bind("org_kde_kwin_fake_input", 4)
        self.connection.send(self.fake, 0, _text("test") + _text("a desktop without a screen"))
        self.connection.settle()

    def _send(self, opcode, body):
        self.connection.send(self.fake, opcode, body)
        self.connection.settle()

    def move(self, x, y):
        self._send(9, struct.pack("=ii", int(x / self.scale * 256), int(y / self.scale * 256)))

    def button(self, number, pressed):
        self._send(2, struct.pack("=II", BUTTONS[number], pressed))

    def key(self, name, pressed):
        self._send(10, struct.pack("=II", KEYS[name], pressed))


class Hands:
    """What uses the `hands` of a desktop: their methods move, button and key."""

    def pointer(self, x, y):
        self.hands.move(x, y)

    def click(self, x, y, button=1, times=1):
        self.pointer(x, y)
        for pressed in (1, 0) * times:
            self.hands.button(button, pressed)

    def key(self, name):
        names = name.split("+")
        for pressed, order in ((1, names), (0, names[::-1])):
            for one in order:
                self.hands.key(one, pressed)
