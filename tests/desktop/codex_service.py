# SPDX-License-Identifier: MIT
"""The Codex usage service as the program meets it behind a proxy: with a certificate of an authority
that only the session's programs trust."""

import http.server
import json
import ssl
import subprocess
import threading
import time

HOST = "chatgpt.com"
TOKEN = "very-secret-token"


def windows(five_hours, weekly):
    """An answer with so much used of both limits, in percent."""
    now = int(time.time())
    return {
        "rate_limit": {
            "primary_window": {"used_percent": five_hours, "limit_window_seconds": 18000, "reset_at": now + 9030},
            "secondary_window": {"used_percent": weekly, "limit_window_seconds": 604800, "reset_at": now + 90030},
        }
    }


def sign_in(session, folder):
    """Puts a sign-in into `folder`, which CODEX_HOME then names."""
    folder.mkdir()
    (folder / "auth.json").write_text(json.dumps({"tokens": {"access_token": TOKEN, "account_id": "account"}}))
    session.env["CODEX_HOME"] = str(folder)


class CodexService:
    """Listens until `close`; `requests` has the path and the headers of each request."""

    def __init__(self, session, answer):
        self.answer, self.requests = answer, []
        self._make_certificates(session.folder)
        self.port = 0
        self.start()
        session.env["https_proxy"] = f"http://127.0.0.1:{self.port}"
        session.env["SSL_CERT_FILE"] = str(session.folder / "authority.pem")

    def start(self):
        """After `close`, at the same port."""
        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", self.port), self._handler())
        self.port = self.server.server_port
        self.server.daemon_threads = True
        self.server.handle_error = lambda *_: None  # of clients that go in the middle
        threading.Thread(target=self.server.serve_forever, args=(0.05,), daemon=True).start()

    def close(self):
        self.server.shutdown()
        self.server.server_close()

    def _make_certificates(self, folder):
        key = ["openssl", "req", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2"]
        authority = ["-x509", "-subj", "/CN=Test authority", "-keyout", "authority.key", "-out", "authority.pem"]
        server = ["-x509", "-subj", f"/CN={HOST}", "-addext", f"subjectAltName=DNS:{HOST}"]
        server += ["-addext", "basicConstraints=CA:FALSE", "-CA", "authority.pem", "-CAkey", "authority.key"]
        server += ["-keyout", "server.key", "-out", "server.pem"]
        for arguments in (authority, server):
            subprocess.run(key + arguments, cwd=folder, check=True, capture_output=True)
        self.tls = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self.tls.load_cert_chain(folder / "server.pem", folder / "server.key")

    def _handler(service):
        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_CONNECT(self):
                self.send_response(200)
                self.end_headers()
                self.connection = service.tls.wrap_socket(self.connection, server_side=True)
                self.rfile, self.wfile = self.connection.makefile("rb"), self.connection.makefile("wb")

            def do_GET(self):
                service.requests.append((self.path, dict(self.headers)))
                body = json.dumps(service.answer).encode()
                self.send_response(200)
                self.send_header("Content-Type", "application/json")
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)
                self.wfile.flush()
                self.close_connection = True

            def finish(self):
                super().finish()
                self.connection.close()

            def log_message(self, *_):
                pass

        return Handler
