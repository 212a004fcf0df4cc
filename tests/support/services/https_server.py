# SPDX-License-Identifier: MIT
"""An HTTPS server that behaves as the path asks, for tests of a client.

Usage: https_server.py server|proxy FOLDER CERTIFICATE KEY

Prints its port. The head of each request becomes FOLDER/requests/N; FOLDER/left/N appears when the
client of an unfinished answer has gone. The last part of a path names a file in FOLDER/answers,
whose bytes are sent as they are; the first part says what comes then:

  /answer/NAME   the end of the connection, announced as TLS wants it
  /cut/NAME      the end of the connection without a word
  /silence/NAME  nothing, until the client leaves
  /drip/NAME     a byte now and then, until the client leaves
  /flood/NAME    bytes without end
"""

import pathlib
import select
import socket
import ssl
import sys
import threading

DRIP_INTERVAL = 0.2


def read_head(connection):
    head = b""
    while b"\r\n\r\n" not in head:
        data = connection.recv(65536)
        if not data:
            return None
        head += data
    return head.decode("latin-1")


class Server:
    def __init__(self, folder, certificate, key):
        self.folder = folder
        self.lock = threading.Lock()
        self.count = 0
        self.context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self.context.load_cert_chain(certificate, key)
        for name in ("requests", "left"):
            (folder / name).mkdir()

    def aliases(self):
        """Other paths, one a line with what is served there."""
        file = self.folder / "aliases"
        return dict(line.split(" ") for line in file.read_text().splitlines()) if file.exists() else {}

    def record(self, head):
        with self.lock:
            self.count += 1
            number = self.count
        temporary = self.folder / f"request-{number}"
        temporary.write_text(head)
        temporary.rename(self.folder / "requests" / str(number))
        return number

    def serve(self, raw):
        try:
            with self.context.wrap_socket(raw, server_side=True) as connection:
                head = read_head(connection)
                if head is None:
                    return
                number = self.record(head)
                _, manner, name = self.aliases().get(head.split(" ")[1], head.split(" ")[1]).split("/")
                try:
                    connection.sendall((self.folder / "answers" / name).read_bytes())
                except OSError:
                    return self.leave(number)
                getattr(self, manner)(connection, number)
        except (OSError, ssl.SSLError):
            pass

    def answer(self, connection, number):
        connection.unwrap()

    def cut(self, connection, number):
        connection.shutdown(socket.SHUT_RDWR)

    def silence(self, connection, number):
        self.until_left(connection, number, None, b"")

    def drip(self, connection, number):
        self.until_left(connection, number, DRIP_INTERVAL, b"x")

    def flood(self, connection, number):
        self.until_left(connection, number, 0, b"x: y\r\n" * 1000)

    def until_left(self, connection, number, interval, data):
        try:
            while not select.select([connection], [], [], interval)[0] or connection.recv(1):
                connection.sendall(data)
        except OSError:
            pass
        self.leave(number)

    def leave(self, number):
        (self.folder / "left" / str(number)).touch()


class Proxy(Server):
    """Passes connections on, having recorded what it was asked in plain text."""

    def serve(self, raw):
        try:
            head = read_head(raw)
            self.record(head)
            host, port = head.split(" ")[1].split(":")
            with socket.create_connection((host, int(port))) as server:
                raw.sendall(b"HTTP/1.1 200 Connection established\r\nProxy-Agent: test\r\n\r\n")
                self.pass_on(raw, server)
        except OSError:
            pass
        finally:
            raw.close()

    def pass_on(self, client, server):
        other = {client: server, server: client}
        while True:
            for source in select.select([client, server], [], [])[0]:
                data = source.recv(65536)
                if not data:
                    return
                other[source].sendall(data)


def main(kind, folder, certificate, key):
    server = {"server": Server, "proxy": Proxy}[kind](pathlib.Path(folder), certificate, key)
    listener = socket.create_server(("127.0.0.1", 0))
    print(listener.getsockname()[1], flush=True)
    while True:
        connection, _ = listener.accept()
        threading.Thread(target=server.serve, args=(connection,), daemon=True).start()


if __name__ == "__main__":
    main(*sys.argv[1:])
