"""A running agent with an HTTP door, and clients of it by raw sockets, for the tests here."""

import json
import os
import re
import signal
import socket
import subprocess
import tempfile
import time
from pathlib import Path

PATIENCE = 60  # seconds until something that should happen counts as not happening


class Agent:
    """The program, until the end of a `with`."""

    def __init__(self, program, *options, address="127.0.0.1:0"):
        self.folder = tempfile.TemporaryDirectory()
        self.socket_path = os.path.join(self.folder.name, "agent.sock")
        self.errors = open(os.path.join(self.folder.name, "stderr"), "w+")
        self.process = subprocess.Popen(
            [program, "--http", address, "--listen", self.socket_path, *map(str, options)],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=self.errors)
        self.wait_for_line("qos-agent: listening on ")
        self.address = self.wait_for_line("qos-agent: http on ")
        self.lines = Lines(self.socket_path)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.lines.close()
        if self.process.poll() is None:
            self.stop()
        self.errors.close()
        self.folder.cleanup()

    def wait_for_line(self, beginning):
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline:
            for line in Path(self.errors.name).read_text().splitlines():
                if line.startswith(beginning):
                    return line[len(beginning):]
            if self.process.poll() is not None:
                break
            time.sleep(0.02)
        raise AssertionError(f"no line {beginning!r}: {Path(self.errors.name).read_text()}")

    def stop(self):
        """Ends the program as a service manager does; returns its status and the seconds it took."""
        begin = time.monotonic()
        self.process.send_signal(signal.SIGTERM)
        status = self.process.wait(PATIENCE)
        return status, time.monotonic() - begin

    def connect(self):
        if self.address.startswith("unix:"):
            client = socket.socket(socket.AF_UNIX)
            client.connect(self.address[len("unix:"):])
        else:
            host, port = self.address.rsplit(":", 1)
            client = socket.create_connection((host.strip("[]"), int(port)))
        client.settimeout(PATIENCE)
        return Connection(client)

    def get(self, target, *headers, method="GET"):
        """The answer to one request on a connection of its own."""
        with self.connect() as connection:
            return connection.ask(target, *headers, method=method)

    def print(self, what):
        return self.lines.do(json.dumps({"print": what}))[0]


class Lines:
    """A change stream to the agent's socket."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(path)
        self.file = self.socket.makefile("rw", encoding="utf-8", newline="\n")
        self.echoes = 0

    def close(self):
        self.file.close()
        self.socket.close()

    def do(self, *lines):
        """Sends lines, waits until they are applied, and returns what the agent wrote."""
        self.echoes += 1
        end = f"done {self.echoes}"
        self.file.write("".join(line + "\n" for line in lines) + '{"echo": "%s"}\n' % end)
        self.file.flush()
        answers = []
        for answer in self.file:
            if answer.rstrip("\n") == f"# {end}":
                return answers
            answers.append(answer.rstrip("\n"))
        raise AssertionError("the agent closed the stream")


class Answer:
    def __init__(self, status, headers, body):
        self.status, self.headers, self.body = status, headers, body

    @property
    def text(self):
        return self.body.decode()

    def __repr__(self):
        return f"{self.status} {self.headers} {self.body[:200]}"


class Connection:
    """A client's connection: bytes out, answers in."""

    def __init__(self, client):
        self.socket = client
        self.file = client.makefile("rb")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        self.file.close()
        self.socket.close()

    def send(self, data):
        self.socket.sendall(data)

    def ask(self, target, *headers, method="GET"):
        if not any(header.lower().startswith("host:") for header in headers):
            headers = ("Host: localhost", *headers)
        self.send("\r\n".join([f"{method} {target} HTTP/1.1", *headers, "", ""]).encode())
        return self.answer(has_body=method != "HEAD")

    def answer(self, has_body=True):
        status, headers = self.head()
        body = b""
        if has_body and status not in (204, 304):
            if "content-length" in headers:
                body = self.file.read(int(headers["content-length"]))
            elif headers.get("transfer-encoding") == "chunked":
                body = b"".join(self.chunks())
            else:
                body = self.file.read()
        return Answer(status, headers, body)

    def head(self):
        """The status and the headers, by their names in small letters."""
        first = self.file.readline()
        match = re.fullmatch(rb"HTTP/1\.[01] (\d{3}) .*\r\n", first)
        if not match:
            raise AssertionError(f"no answer: {first!r}")
        headers = {}
        while (line := self.file.readline().decode()) != "\r\n":
            key, value = line.rstrip("\r\n").split(": ", 1)
            headers[key.lower()] = value
        return int(match[1]), headers

    def chunks(self):
        while size := int(self.file.readline(), 16):
            yield self.file.read(size)
            self.file.read(2)
        self.file.readline()

    def is_closed(self):
        """Whether the agent closes the connection without another byte."""
        try:
            return self.file.read(1) == b""
        except ConnectionResetError:
            return True


class Events:
    """A reader of /api/events."""

    def __init__(self, agent, *headers):
        self.connection = agent.connect()
        self.connection.send("\r\n".join(
            ["GET /api/events HTTP/1.1", "Host: localhost", *headers, "", ""]).encode())
        self.status, self.headers = self.connection.head()
        self.parts = self.connection.chunks()
        self.waiting = b""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.connection.close()

    def next(self):
        """The next event as (kind, id, data)."""
        while True:
            while b"\n\n" not in self.waiting:
                self.waiting += next(self.parts)
            block, self.waiting = self.waiting.split(b"\n\n", 1)
            fields = dict(line.split(": ", 1) for line in block.decode().split("\n")
                          if not line.startswith(":"))
            if fields:
                return fields["event"], fields["id"], fields["data"]
