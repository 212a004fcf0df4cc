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
        for work in (self._to_client, self._to_server):
            threading.Thread(target=self._until_closed, args=(work,), daemon=True).start()

    def _until_closed(self, work):
        with contextlib.suppress(OSError):
            work()
        for end in (self.client, self.server):
            with contextlib.suppress(OSError):
                end.shutdown(socket.SHUT_RDWR)

    @staticmethod
    def _pass_on(to, data, descriptors):
        sent = socket.send_fds(to, [data], descriptors)
        for descriptor in descriptors:
            socket.close(descriptor)
        to.sendall(data[sent:])

    def _to_client(self):
        while True:
            data, descriptors, _flags, _address = socket.recv_fds(self.server, 65536, 16)
            if not data:
                return
            with self.sending:
                self._pass_on(self.client, data, descriptors)

    def _to_server(self):
        waiting, authenticated = b"", False
        while True:
            data, descriptors, _flags, _address = socket.recv_fds(self.client, 65536, 16)
            if not data:
                return
            waiting += data
            if not authenticated:
                authenticated = b"BEGIN\r\n" in waiting
                end = waiting.index(b"BEGIN\r\n") + 7 if authenticated else len(waiting)
                self._pass_on(self.server, waiting[:end], descriptors)
                waiting, descriptors = waiting[end:], []
            while (length := frame_length(waiting)) and len(waiting) >= length:
                frame, waiting = waiting[:length], waiting[length:]
                if self._lets_pass(frame):
                    self._pass_on(self.server, frame, descriptors)
                    descriptors = []

    def _lets_pass(self, frame):
        method_call = 1
        kind = self.faults.next(frame) if frame[1] == method_call else None
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


def frame_length(data):
    if len(data) < 16:
        return 0
    order = "<" if data[:1] == b"l" else ">"
    body, _serial, fields = struct.unpack(order + "III", data[4:16])
    return 16 + (fields + 7) // 8 * 8 + body
