#!/usr/bin/python3
"""What the HTTP door serves to programs: answers, metrics and events, with raw sockets.

    api_test.py PROGRAM [unittest's arguments]
"""

import json
import sys
import time
import unittest
from urllib.parse import quote

from agent import Agent, Events
from lines import STATE, access_list, class_map, no_class_map

PROGRAM = sys.argv.pop(1)
STRANGE = 'a/b~c "<b>&\u0001\u202e é'


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

if __name__ == "__main__":
    unittest.main()
