# SPDX-License-Identifier: MIT
"""A bus between the program and its own that answers the n-th method call with an error, or not at all, or by closing."""

import contextlib
import pathlib
import socket
import struct
import threading

from gi.repository import Gio

KINDS = ("error", "silence", "closed")


class Faults:
    """Of all the buses of a world; method calls are counted over all connections."""

    def __init__(self):
        self.lock = threading.Lock()
        self.arm(())

    def arm(self, faults):
        with self.lock:
            self.faults = {int(fault.when): fault.error for fault in faults}
            self.calls, self.injected = 0, []

    def next(self, frame):
        with self.lock:
            self.calls += 1
            kind = self.faults.get(self.calls)
            if kind:
                self.injected.append(frame)
            return kind


class Proxy:
    def __init__(self, address, folder, faults):
        self.real = dict(part.split("=", 1) for part in address.partition(":")[2].split(","))["path"]
        self.faults = faults
        self.path = pathlib.Path(folder) / f"proxy-{pathlib.Path(self.real).name}"
        self.listening = socket.socket(socket.AF_UNIX)
        self.listening.bind(str(self.path))
        self.listening.listen()
        self.address = f"unix:path={self.path}"
        threading.Thread(target=self._accept, daemon=True).start()

    def close(self):
        self.listening.shutdown(socket.SHUT_RDWR)
        self.listening.close()

    def _accept(self):
        with contextlib.suppress(OSError):
            while True:
                Connection(self.listening.accept()[0], self.real, self.faults)


class Connection:
    def __init__(self, client, real, faults):
        self.client, self.faults = client, faults
        self.server = socket.socket(socket.AF_UNIX)
        self.server.connect(real)
        self.sending = threading.Lock()  # to the client
        self.ended = 0
        for work in (self._to_client, self._to_server):
            threading.Thread(target=self._until_closed, args=(work,), daemon=True).start()

    def _until_closed(self, work):
        with contextlib.suppress(OSError):
            work()
        with self.sending:
            self.ended += 1
            for end in (self.client, self.server):
                with contextlib.suppress(OSError):
                    end.shutdown(socket.SHUT_RDWR)
                if self.ended == 2:
                    end.close()

    @staticmethod
    def _pass_on(to, data, descriptors):
        try:
            sent = socket.send_fds(to, [data], descriptors)
        finally:
            for descriptor in descriptors:
                socket.close(descriptor)
        to.sendall(data[sent:])

    def _to_client(self):
        for frame, descriptors in frames(self.server):
            with self.sending:
                self._pass_on(self.client, frame, descriptors)

    def _to_server(self):
        for frame, descriptors in frames(self.client):
            if self._lets_pass(frame):
                self._pass_on(self.server, frame, descriptors)

    def _lets_pass(self, frame):
        method_call = 1
        kind = self.faults.next(frame) if frame[:1] == b"l" and frame[1] == method_call else None
        if kind == "silence" and b"Hello\0" in frame:
            return True  # a bus that greets nobody is none
        if kind == "closed":
            raise OSError("as it was asked for")
        if kind == "error":
            call = Gio.DBusMessage.new_from_blob(frame, Gio.DBusCapabilityFlags.UNIX_FD_PASSING)
            reply = call.new_method_error_literal("org.freedesktop.DBus.Error.Failed", "It fails.")
            reply.set_serial(0x7FFF0000 + call.get_serial())
            reply.set_sender(call.get_destination())
            with self.sending:
                self.client.sendall(reply.to_blob(Gio.DBusCapabilityFlags.UNIX_FD_PASSING))
        return kind is None


def frames(end):
    """What comes: the lines of the greeting, then messages, each with the descriptors that came with its end."""
    waiting, held = b"", []
    while True:
        data, descriptors, _flags, _address = socket.recv_fds(end, 65536, 16)
        if not data:
            return
        waiting, held, found = waiting + data, held + descriptors, []
        while (length := frame_length(waiting)) and len(waiting) >= length:
            found.append(waiting[:length])
            waiting = waiting[length:]
        for frame in found[:-1]:
            yield frame, []
        if found:
            descriptors, held = held, []
            yield found[-1], descriptors


def frame_length(data):
    """Zero while that is not known."""
    if data[:1] not in (b"l", b"B") or data.startswith(b"BEGIN"):
        return data.find(b"\n") + 1
    if len(data) < 16:
        return 0
    order = "<" if data[:1] == b"l" else ">"
    body, _serial, fields = struct.unpack(order + "III", data[4:16])
    return 16 + (fields + 7) // 8 * 8 + body
