#!/usr/bin/python3
"""Holds the HTTP door to the rules of HTTP, with raw sockets.

    http_test.py PROGRAM [unittest's arguments]
"""

import os
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

from agent import Agent
from lines import access_list

PROGRAM = sys.argv.pop(1)


def setUpModule():
    global agent
    agent = Agent(PROGRAM)
    agent.lines.do(access_list("edge", "voice", 46))


def tearDownModule():
    agent.__exit__()


class Http(unittest.TestCase):
    def status(self, data):
        """The status of the answer to these bytes."""
        with agent.connect() as connection:
            connection.send(data)
            return connection.head()[0]

    def test_serves_the_page_to_be_kept_by_its_tag(self):
        page = agent.get("/")
        self.assertEqual((page.status, page.headers["content-type"]),
                         (200, "text/html; charset=utf-8"))
        tag = page.headers["etag"]
        for tags in (tag, f"W/{tag}", f'"other", {tag}', "*"):
            answer = agent.get("/", f"If-None-Match: {tags}")
            self.assertEqual((answer.status, answer.body, answer.headers["etag"]), (304, b"", tag))
        self.assertEqual(agent.get("/", 'If-None-Match: "other"').status, 200)

    def test_lets_the_page_load_nothing(self):
        policy = agent.get("/").headers["content-security-policy"]
        rules = dict(rule.strip().split(" ", 1) for rule in policy.split(";"))
        self.assertEqual(rules["default-src"], "'none'")
        self.assertEqual(rules["connect-src"], "'self'")
        self.assertRegex(rules["script-src"], r"^'sha256-[A-Za-z0-9+/]{43}='$")
        self.assertRegex(rules["style-src"], r"^'sha256-[A-Za-z0-9+/]{43}='$")
        self.assertEqual(agent.get("/nothing").headers["content-security-policy"],
                         "default-src 'none'; frame-ancestors 'none'")

    def test_answers_head_as_get_without_the_body(self):
        for path in ("/", "/api/state", "/api/events", "/metrics", "/healthz", "/nothing"):
            with agent.connect() as connection:
                head = connection.ask(path, method="HEAD")
                # Nothing follows the head but the next answer, if any.
                if path == "/api/events":
                    self.assertTrue(connection.is_closed())
                else:
                    self.assertEqual(connection.ask("/healthz").text, "ok\n", path)
            if path not in ("/api/events", "/metrics"):
                body = agent.get(path)
                self.assertEqual((head.status, head.headers["content-length"]),
                                 (body.status, str(len(body.body))), path)

    def test_knows_no_other_path(self):
        for path in ("/nothing", "/api", "/api/", "/api/state/", "//", "/index.html", "/%2e"):
            self.assertEqual(agent.get(path).status, 404, path)
        self.assertEqual(agent.get("/%68ealthz?x=y").status, 200)

    def test_knows_no_other_method(self):
        for method in ("POST", "PUT", "DELETE", "OPTIONS", "PATCH", "BREW"):
            for path in ("/", "/nothing"):
                answer = agent.get(path, method=method)
                self.assertEqual((answer.status, answer.headers["allow"]), (405, "GET, HEAD"))

    def test_passes_over_a_small_content_and_refuses_a_large_one(self):
        with agent.connect() as connection:
            connection.send(b"POST / HTTP/1.1\r\nHost: localhost\r\nContent-Length: 5\r\n\r\nhello")
            self.assertEqual(connection.answer().status, 405)
            connection.send(b"GET /healthz HTTP/1.1\r\nHost: localhost\r\nContent-Length: 2\r\n\r\nhi")
            self.assertEqual(connection.answer().status, 200)
            connection.send(b"GET /healthz HTTP/1.1\r\nHost: localhost\r\n"
                            b"Content-Length: 65537\r\n\r\n")
            self.assertEqual(connection.answer().status, 413)
        with agent.connect() as connection:
            connection.send(b"GET / HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n")
            try:
                for _ in range(100):
                    connection.send(b"1000\r\n" + b"x" * 0x1000 + b"\r\n")
            except (BrokenPipeError, ConnectionResetError):
                return
            self.assertTrue(connection.is_closed())

    def test_refuses_what_is_no_request(self):
        for data in (b"GET / HTTP/1.1\r\n\r\n", b"* * *\r\n\r\n", b"GET / FOO\r\nHost: localhost\r\n\r\n",
                     b"GET / HTTP/1.1\r\nbad\r\n\r\n",
                     b"GET / HTTP/1.1\r\nHost: localhost\r\nHost: localhost\r\n\r\n",
                     b"GET / HTTP/1.1\r\nHost: localhost\r\nContent-Length: x\r\n\r\n"):
            self.assertEqual(self.status(data), 400, data)

    def test_closes_a_connection_on_which_no_http_is_spoken(self):
        for data in (b"nonsense\r\n\r\n", b"GET\r\n\r\n", b"\x16\x03\x01\x02\x00\x01\r\n\r\n"):
            with agent.connect() as connection:
                connection.send(data)
                self.assertTrue(connection.is_closed())
        self.assertEqual(self.status(b"GET / HTTP/2.0\r\nHost: localhost\r\n\r\n"), 505)

    def test_limits_the_head_of_a_request(self):
        host = b"Host: localhost\r\n"
        self.assertEqual(self.status(b"GET /healthz HTTP/1.1\r\n" + host + b"X: " + b"x" * 8000 +
                                     b"\r\n\r\n"), 200)
        for data in (b"GET / HTTP/1.1\r\n" + host + b"X: " + b"x" * 100_000 + b"\r\n\r\n",
                     b"GET / HTTP/1.1\r\n" + host + b"X: x\r\n" * 50_000 + b"\r\n",
                     b"GET /" + b"x" * 100_000 + b" HTTP/1.1\r\n" + host + b"\r\n"):
            with agent.connect() as connection:
                try:
                    connection.send(data)
                    self.assertIn(connection.head()[0], (413, 414, 431))
                except (BrokenPipeError, ConnectionResetError):
                    pass  # The answer was lost because the rest of the head was not read.

    def test_serves_http_1_0_with_and_without_a_host(self):
        for data in (b"GET /healthz HTTP/1.0\r\n\r\n",
                     b"GET /healthz HTTP/1.0\r\nHost: localhost\r\n\r\n"):
            with agent.connect() as connection:
                connection.send(data)
                self.assertEqual(connection.answer().text, "ok\n")
                self.assertTrue(connection.is_closed())

    def test_serves_events_over_http_1_0(self):
        with agent.connect() as connection:
            connection.send(b"GET /api/events HTTP/1.0\r\n\r\n")
            self.assertEqual(connection.head()[0], 200)
            self.assertEqual(connection.file.readline(), b"event: snapshot\n")

    def test_keeps_a_connection_and_answers_what_was_sent_ahead(self):
        with agent.connect() as connection:
            connection.send(b"GET /healthz HTTP/1.1\r\nHost: localhost\r\n\r\n" * 20)
            for _ in range(20):
                self.assertEqual(connection.answer().text, "ok\n")

    def test_serves_no_other_host_on_loopback(self):
        for host in ("localhost", "LOCALHOST", "localhost:1", "127.0.0.1", "127.0.0.1:80", "[::1]",
                     "[::1]:9"):
            self.assertEqual(agent.get("/healthz", f"Host: {host}").status, 200, host)
        for host in ("example.org", "localhost.example.org", "127.0.0.1.example.org", "127.0.0.2",
                     "::1", "localhost:x", "localhostx", "[::1]x", "xlocalhost", "0.0.0.0"):
            for method in ("GET", "POST"):
                self.assertEqual(agent.get("/healthz", f"Host: {host}", method=method).status, 421)
        self.assertEqual(self.status(b"GET / HTTP/1.0\r\nHost: example.org\r\n\r\n"), 421)

    def test_takes_the_host_of_a_whole_url(self):
        self.assertEqual(agent.get("http://localhost/healthz", "Host: example.org").status, 200)
        self.assertEqual(agent.get("http://example.org/healthz").status, 421)

    def test_serves_others_while_many_are_slow(self):
        with Agent(PROGRAM) as own:
            slow = [own.connect() for _ in range(50)]
            for connection in slow:
                connection.send(b"GET / HTTP/1.1\r\nHost: loc")
            self.assertEqual(own.get("/healthz").status, 200)
            for connection in slow:
                connection.close()

    def test_serves_256_connections_and_tells_the_next_one(self):
        with Agent(PROGRAM) as own:
            many = [own.connect() for _ in range(256)]
            for connection in many:
                self.assertEqual(connection.ask("/healthz").status, 200)
            with own.connect() as late:
                answer = late.ask("/healthz")
                self.assertEqual((answer.status, answer.headers["connection"].lower()),
                                 (503, "close"))
                self.assertTrue(late.is_closed())
            many.pop().close()
            deadline = time.monotonic() + 20
            while own.get("/healthz").status != 200:
                self.assertLess(time.monotonic(), deadline)
            for connection in many:
                connection.close()

    def test_answers_many_at_once(self):
        failures = []

        def ask():
            with agent.connect() as connection:
                for path in ("/api/state", "/metrics", "/api/machines") * 10:
                    if connection.ask(path).status != 200:
                        failures.append(path)
        threads = [threading.Thread(target=ask) for _ in range(20)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(failures, [])


class Addresses(unittest.TestCase):
    def refusal(self, *options):
        ended = subprocess.run([PROGRAM, *options], stdin=subprocess.DEVNULL,
                               capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual(ended.returncode, 2)
        return ended.stderr

    def test_a_port_alone_is_on_loopback(self):
        with Agent(PROGRAM, address=":0") as own:
            self.assertRegex(own.address, r"^127\.0\.0\.1:\d+$")
            self.assertEqual(own.get("/healthz").status, 200)

    def test_ipv6_and_names(self):
        if not socket.has_ipv6:
            self.skipTest("no IPv6 here")
        with Agent(PROGRAM, address="[::1]:0") as own:
            self.assertEqual(own.get("/healthz", "Host: [::1]").status, 200)

    def test_a_unix_socket_is_served_under_any_name(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "http")
            with Agent(PROGRAM, address=f"unix:{path}") as own:
                self.assertEqual(os.stat(path).st_mode & 0o777, 0o600)
                self.assertEqual(own.get("/healthz", "Host: example.org").status, 200)
            self.assertEqual(os.listdir(folder), [])

    def test_others_must_be_asked_for(self):
        self.assertEqual(self.refusal("--http", "0.0.0.0:0"),
                         "qos-agent: 0.0.0.0:0: other addresses than loopback and unix: "
                         "need --http-open\n")
        with Agent(PROGRAM, "--http-open", address="0.0.0.0:0") as own:
            self.assertEqual(own.get("/healthz", "Host: example.org").status, 200)

    def test_what_cannot_be_had_is_refused(self):
        self.assertEqual(self.refusal("--http", agent.address),
                         f"qos-agent: {agent.address}: Address already in use\n")
        self.assertRegex(self.refusal("--http", "nonsense"), "not of the form")

if __name__ == "__main__":
    unittest.main()
