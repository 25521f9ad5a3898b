#!/usr/bin/python3
"""Holds the HTTP door to the rules of HTTP and to its page, with raw sockets.

    http_test.py PROGRAM [unittest's arguments]
"""

import json
import re
import socket
import sys
import threading
import time
import unittest
from urllib.parse import quote

from agent import Agent, Events

PROGRAM = sys.argv.pop(1)
STATE = "qos/openconfig/state/classifiers/classifier/"
STRANGE = 'a/b~c "<b>&\u0001\u202e é'


def class_map(name):
    escaped = name.replace("~", "~0").replace("/", "~1")
    return json.dumps({"update": f"qos/status/cmapTypeStatus/mapQos/cmapStatus/{escaped}"
                                 "/match/matchIpAccessGroup", "value": ""}, ensure_ascii=False)


def no_class_map(name):
    escaped = name.replace("~", "~0").replace("/", "~1")
    return json.dumps({"delete": f"qos/status/cmapTypeStatus/mapQos/cmapStatus/{escaped}"},
                      ensure_ascii=False)


def access_list(classifier, term, *values):
    rules = {str(at): {"filter": {"dscpValue": value, "dscpEnabled": True}}
             for at, value in enumerate(values, 1)}
    return json.dumps({
        "update": f"acl/config/cli/aclTypeConfig/ipv4/aclConfig/openconfig:{classifier}:{term}"
                  "/aclSubConfig",
        "value": {"ipRuleById": rules, "ruleIdBySequence": {at: int(at) for at in rules}}})


def setUpModule():
    global agent
    agent = Agent(PROGRAM)
    agent.lines.do(class_map(STRANGE), class_map("web"), class_map("web-1"),
                   access_list("edge", "voice", 46), access_list("edge", "a~b", 8, 9),
                   access_list("edge", "a", 1))


def tearDownModule():
    agent.__exit__()


class Api(unittest.TestCase):
    def test_answers_what_print_writes(self):
        for what in ("state", "openconfig", "machines", "differences"):
            answer = agent.get(f"/api/{what}")
            self.assertEqual((answer.status, answer.headers["content-type"],
                              answer.headers["cache-control"]),
                             (200, "application/json", "no-store"))
            self.assertEqual(answer.text, agent.print(what) + "\n")

    def test_explains_a_classifier_or_a_term(self):
        for names in ({"classifier": "edge"}, {"classifier": "edge", "term": "a~b"},
                      {"classifier": STRANGE}, {"classifier": "a\0b&c=d +"}):
            query = "&".join(f"{key}={quote(value, safe='')}" for key, value in names.items())
            self.assertEqual(agent.get(f"/api/explain?{query}").text,
                             agent.print({"explain": names}) + "\n")

    def test_refuses_to_explain_nothing(self):
        for query in ("", "?", "?term=t", "?classifier=", "?classifier", "?classifier=c&term="):
            self.assertEqual(agent.get("/api/explain" + query).status, 400, query)

    def test_refuses_what_is_no_text(self):
        self.assertEqual(agent.get("/api/explain?classifier=%ff").status, 400)

    def test_says_that_all_is_well(self):
        answer = agent.get("/healthz")
        self.assertEqual((answer.status, answer.text), (200, "ok\n"))


class Metrics(unittest.TestCase):
    def metrics(self, of=None):
        answer = (of or agent).get("/metrics")
        self.assertEqual(answer.headers["content-type"],
                         "text/plain; version=0.0.4; charset=utf-8")
        values = {}
        for line in answer.text.splitlines():
            if not line.startswith("#"):
                self.assertRegex(line, r"^qos_agent_\w+(\{.*\})? \S+$")
                name, value = line.rsplit(" ", 1)
                values[name] = float(value)
        return values

    def test_counts_what_is_applied_refused_and_published(self):
        before = self.metrics()
        agent.lines.do(class_map("counted"), "{", no_class_map("counted"))
        after = self.metrics()
        grown = {name: after[name] - before.get(name, 0) for name in after
                 if after[name] != before.get(name)}
        # The lines of `do` end with an echo.
        self.assertEqual(grown['qos_agent_lines_total{door="socket",result="applied"}'], 3)
        self.assertEqual(grown['qos_agent_lines_total{door="socket",result="refused"}'], 1)
        self.assertEqual(grown["qos_agent_apply_seconds_count"], 4)
        self.assertEqual(grown['qos_agent_published_changes_total{kind="update"}'], 1)
        self.assertEqual(grown['qos_agent_published_changes_total{kind="delete"}'], 1)

    def test_knows_the_size_of_the_state(self):
        values = self.metrics()
        tree = json.loads(agent.print("state"))["classifier"]
        self.assertEqual(values["qos_agent_classifiers"], len(tree))
        self.assertEqual(values["qos_agent_terms"],
                         sum(len(each.get("terms", {}).get("term", {})) for each in tree.values()))
        machines = agent.print("machines")
        for kind in ("CmapStatusSm", "AclSubStateSm", "ClassifierStateSm"):
            self.assertEqual(values[f'qos_agent_machines{{type="QosOc::{kind}"}}'],
                             machines.count(f'"type":"QosOc::{kind}"'), kind)

    def test_counts_its_own_readers(self):
        with Agent(PROGRAM) as own:
            with Events(own) as events:
                events.next()
                values = self.metrics(own)
            self.assertEqual(values["qos_agent_http_event_streams"], 1)
            self.assertEqual(values["qos_agent_http_connections"], 2)
            while self.metrics(own)["qos_agent_http_event_streams"] != 0:
                time.sleep(0.01)
            self.assertEqual(values["qos_agent_subscribers"], 1)
            self.assertEqual(values["qos_agent_socket_connections"], 1)


class EventStreams(unittest.TestCase):
    def test_begin_with_the_state_and_go_on_with_each_change(self):
        with Events(agent) as events:
            self.assertEqual((events.status, events.headers["content-type"]),
                             (200, "text/event-stream"))
            kind, first, data = events.next()
            self.assertEqual((kind, data), ("snapshot", agent.print("state")))
            agent.lines.do(class_map("brief"), no_class_map("brief"), access_list("edge", "new", 7))
            told = [events.next() for _ in range(4)]
            self.assertEqual([kind for kind, _, _ in told], ["change"] * 4)
            self.assertEqual([data for _, _, data in told], [
                '{"update":"%sbrief/state","value":{"name":"brief","type":"IPV4"}}' % STATE,
                '{"delete":"%sbrief"}' % STATE,
                '{"update":"%sedge/terms/term/new","value":{"id":"new","stateId":"new"}}' % STATE,
                '{"update":"%sedge/terms/term/new","value":{"id":"new","stateId":"new",'
                '"conditions":{"ipv4":{"dscp":7},"ipv6":{}}}}' % STATE])
            run, number, _ = first.split("-")
            self.assertEqual([identity.split("-")[:2] for _, identity, _ in told],
                             [[run, str(int(number) + step)] for step in range(1, 5)])
            now = time.time() * 1000
            self.assertTrue(all(now - 60_000 < int(identity.split("-")[2]) < now + 1
                                for _, identity, _ in told))

    def test_resume_behind_the_last_id(self):
        with Events(agent) as events:
            events.next()
            agent.lines.do(class_map("one"), class_map("two"))
            one, two = events.next(), events.next()
        with Events(agent, f"Last-Event-ID: {one[1]}") as events:
            self.assertEqual(events.next(), two)
        with Events(agent, f"Last-Event-ID: {two[1]}") as events:
            agent.lines.do(no_class_map("one"), no_class_map("two"))
            self.assertEqual(events.next()[2], '{"delete":"%sone"}' % STATE)

    def test_start_over_when_the_id_is_of_no_use(self):
        with Events(agent) as events:
            run, number, milliseconds = events.next()[1].split("-")
        for identity in ("", "nonsense", f"{run}x-{number}-1", f"{run}-{int(number) + 1}-1", run,
                         f"{run}-{number}", f"{run}--{number}", "0" * 16 + f"-{number}-1"):
            with Events(agent, f"Last-Event-ID: {identity}") as events:
                self.assertEqual(events.next()[0], "snapshot", identity)

    def test_start_over_when_the_id_is_older_than_the_last_10000_changes(self):
        with Events(agent) as events:
            first = events.next()[1]
        flood = [class_map("flood"), no_class_map("flood")] * 500
        for _ in range(10):
            agent.lines.do(*flood)
        with Events(agent, f"Last-Event-ID: {first}") as events:
            for _ in range(10_000):
                self.assertEqual(events.next()[0], "change")
        agent.lines.do(class_map("flood"))
        with Events(agent, f"Last-Event-ID: {first}") as events:
            self.assertEqual(events.next()[::2], ("snapshot", agent.print("state")))
        agent.lines.do(no_class_map("flood"))

    def test_are_not_kept_waiting_by_a_reader_that_takes_nothing(self):
        with Events(agent) as stuck, Events(agent) as events:
            events.next()
            for at in range(20):
                agent.lines.do(*[class_map("n" * 1000), no_class_map("n" * 1000)] * 100)
                for _ in range(200):
                    self.assertEqual(events.next()[0], "change")
            self.assertEqual(stuck.next()[0], "snapshot")

    def test_end_with_the_service(self):
        with Agent(PROGRAM) as own:
            with Events(own) as events:
                events.next()
                status, seconds = own.stop()
                self.assertEqual(status, 0)
                self.assertLess(seconds, 5)
                self.assertEqual(list(events.parts), [])


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
        import subprocess
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
        import os
        import tempfile
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
