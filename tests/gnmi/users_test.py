#!/usr/bin/python3
"""Holds the agent to what users of such servers ran into, and to its behaviour under load.

    users_test.py PROGRAM [unittest's arguments]

QOS_GNMI_CHANGES is how many changes a stalled reader misses; 4,000 unless it is set.
"""

import json
import os
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

import device
import rules
from agent import Agent, Client, path, stubs, text_of, value_of
from rules import C, DSCP, T, Code

CHANGES = int(os.environ.get("QOS_GNMI_CHANGES", "4000"))
READER = Path(__file__).parent / "reader.py"
DOCUMENT = device.configuration({"c": {"t": (46, "gold")}}, ["gold"])
MEMORY = 32 << 20  # bytes that a stalled reader may cost


def resident(pid):
    """The memory that a process has, in bytes."""
    with open(f"/proc/{pid}/statm", encoding="ascii") as statm:
        return int(statm.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


def rules_of(dscp):
    """A line that gives term t of classifier c another value."""
    return device.line("update", f"{device.ACL}/openconfig:c:t/aclSubConfig", {
        "ipRuleById": {str(dscp): {"filter": {"dscpValue": dscp, "dscpEnabled": True}}},
        "ruleIdBySequence": {"10": dscp}})


class Reads(rules.Case):
    def test_wildcard_queries_log_nothing(self):
        self.do(*device.make_term("c", "t", 46))
        before = self.agent.errors_text()
        self.client.subscribe("/...", mode="ONCE").until_sync()
        self.client.get("/qos/*/*")
        with self.fails(Code.NOT_FOUND):
            self.client.get("/qos/queues/queue[name=*]")
        self.assertEqual(self.agent.errors_text(), before)

    def test_malformed_paths_end_nothing_but_their_call(self):
        pb, _ = stubs()
        malformed = [pb.Path(elem=[pb.PathElem()]), pb.Path(element=["qos"]),
                     pb.Path(elem=[pb.PathElem(name="qos", key={"": ""})]),
                     pb.Path(elem=[pb.PathElem(name="\x00")]),
                     pb.Path(elem=[pb.PathElem(name="..."), pb.PathElem(name="", key={"a": "*"})])]
        for wrong in malformed:
            for call in (lambda: self.client.stub.Get(pb.GetRequest(path=[wrong])),
                         lambda: self.client.stub.Set(pb.SetRequest(delete=[wrong])),
                         lambda: next(self.client.stub.Subscribe(iter([pb.SubscribeRequest(
                             subscribe=pb.SubscriptionList(
                                 subscription=[pb.Subscription(path=wrong)]))])))):
                with self.fails(None):
                    call()
        self.assertEqual(len(self.client.get("/")), 1)

    def test_key_wildcards_are_not_refused(self):
        self.do(*device.make_term("c", "t", 46))
        for text in ("/qos/classifiers/classifier[name=*]/terms/term[id=*]/state/id",
                     "/qos/classifiers/classifier/terms/term/state/id"):
            self.assertEqual(self.client.get(text), [[(T + "/state/id", "t")]])

    def test_a_poll_of_an_absent_key_keeps_the_call(self):
        with self.client.subscribe(C, mode="POLL") as stream:
            self.assertEqual(stream.until_sync(), [])
            stream.poll()
            self.assertEqual(stream.until_sync(), [])
            self.do(*device.make_term("c", "t", 46))
            stream.poll()
            stream.until_sync()
            self.assertEqual(stream.tree[DSCP], 46)

    def test_an_empty_qos_message_in_a_subscription_is_taken(self):
        self.assertEqual(
            self.client.subscribe("/qos", mode="ONCE", qos={}).until_sync(), [])

    def test_the_sync_comes_behind_the_last_initial_value(self):
        terms = {f"t{at}": (at % 64, None) for at in range(1000)}
        self.do(json.dumps({"openconfig": device.configuration({"c": terms})}))
        with self.client.subscribe("/qos", encoding="PROTO") as stream:
            stream.until_sync()
            self.assertEqual(sum(text.endswith("/state/dscp") for text in stream.tree), 1000)
            self.do(*device.make_term("end", "end", 1))
            self.assertTrue(text_of(stream.next().update[0].path).startswith(
                "/qos/classifiers/classifier[name=end]"))


class Sets(rules.Case):
    def test_get_modify_set_of_the_same_is_equal_to_the_byte_and_tells_nobody(self):
        self.client.set(replace=[("/", json.dumps(DOCUMENT))])
        pb, _ = stubs()
        whole = pb.GetRequest(path=[path("/")], encoding="JSON_IETF")
        before = self.client.stub.Get(whole).notification[0].update
        (_, value), = self.client.get("/", type="CONFIG", encoding="JSON_IETF")[0]
        with self.client.subscribe("/qos", updates_only=True) as stream:
            self.assertEqual(stream.next(), "sync")
            self.client.set(replace=[("/", json.dumps(value))])
            self.client.set(update=[(T + "/conditions/ipv4/config/dscp", "1")])
            self.assertEqual({value_of(update.val) for update in stream.next().update}, {1})
            self.client.set(update=[(T + "/conditions/ipv4/config/dscp", "46")])
        self.assertEqual(self.client.stub.Get(whole).notification[0].update, before)

    def test_one_term_after_another_replaced_by_the_whole_disturbs_no_other(self):
        terms = {f"t{at}": (at, None) for at in range(14)}
        self.client.set(replace=[("/", json.dumps(device.configuration({"c": terms})))])
        with self.client.subscribe("/qos/classifiers", encoding="PROTO") as stream:
            stream.until_sync()
            for at in range(14):
                terms[f"t{at}"] = (at + 20, None)
                self.client.set(replace=[("/qos", json.dumps(
                    device.configuration({"c": terms})["openconfig-qos:qos"]))])
                term = f"{C}/terms/term[id=t{at}]"
                notification = stream.next()
                self.assertEqual(list(notification.delete), [])
                self.assertEqual({text_of(update.path): value_of(update.val)
                                  for update in notification.update},
                                 {f"{term}/conditions/ipv4/{side}/dscp": at + 20
                                  for side in ("config", "state")})

    def test_gets_and_streams_do_not_hold_sets_up(self):
        self.client.set(replace=[("/", json.dumps(DOCUMENT))])
        over = threading.Event()

        def read():
            with Client(self.agent.address) as client:
                while not over.is_set():
                    client.get("/qos")
                    client.subscribe("/qos", mode="ONCE").until_sync()

        readers = [threading.Thread(target=read) for _ in range(4)]
        for reader in readers:
            reader.start()
        try:
            longest = 0
            for at in range(20):
                begin = time.monotonic()
                self.client.set(update=[(T + "/conditions/ipv4/config/dscp", str(at))])
                longest = max(longest, time.monotonic() - begin)
        finally:
            over.set()
            for reader in readers:
                reader.join()
        self.assertLess(longest, 5)


class SlowReader(rules.Case):
    # Freed memory that the address sanitizer keeps to find later uses of it is not what a reader
    # costs.
    environment = {"ASAN_OPTIONS": "quarantine_size_mb=1:thread_local_quarantine_size_kb=16"}

    def test_it_costs_memory_for_its_leaves_only_and_misses_no_value(self):
        self.do(*device.make_term("c", "t", 0))
        lines = [rules_of(1), rules_of(2)] * 500
        self.do(*lines)
        with self.client.subscribe(DSCP, encoding="PROTO", patience=60 + CHANGES / 50) as stream:
            stream.until_sync()
            before = resident(self.agent.process.pid)
            most = 0
            for _ in range(CHANGES // len(lines)):
                self.do(*lines)
                begin = time.monotonic()
                with Client(self.agent.address) as other:
                    other.get(C + "/state/name")
                self.assertLess(time.monotonic() - begin, 5)
                most = max(most, resident(self.agent.process.pid) - before)
            self.assertLess(most, MEMORY)
            self.do(rules_of(63))
            counted = 0
            while stream.tree[DSCP] != 63:
                counted += sum(1 + update.duplicates for update in stream.next().update)
            self.assertEqual(counted, CHANGES // len(lines) * len(lines) + 1)


class Load(rules.Case):
    def test_64_streams_get_the_same(self):
        streams = [self.enterContext(self.client.subscribe("/qos", encoding="PROTO"))
                   for _ in range(64)]
        for stream in streams:
            stream.until_sync()
        for dscp in range(20):
            self.do(*device.make_term("c", "t", dscp))
        for stream in streams:
            stream.until(lambda tree: tree.get(DSCP) == 19)
            self.assertEqual(stream.tree, {**rules.CLASSIFIER_LEAVES, T + "/state/id": "t",
                                           DSCP: 19})
            self.assertEqual(stream.faults, [])

    def test_a_client_that_is_killed_in_mid_stream_takes_nothing_with_it(self):
        self.do(*device.make_term("c", "t", 0))
        with subprocess.Popen([sys.executable, "-B", READER, self.agent.address],
                              stdout=subprocess.PIPE, text=True) as reader:
            self.assertEqual(reader.stdout.readline(), "sync\n")
            self.do(*[rules_of(dscp) for dscp in (1, 2)] * 200)
            reader.send_signal(signal.SIGKILL)
            self.do(*[rules_of(dscp) for dscp in (3, 4)] * 200)
        self.assertEqual(self.client.get(DSCP), [[(DSCP, 4)]])

    def test_a_stop_ends_every_stream_with_a_status_and_frees_the_port_at_once(self):
        self.do(*device.make_term("c", "t", 0))
        streams = [self.client.subscribe("/qos") for _ in range(64)]
        for stream in streams:
            stream.until_sync()
        lines = self.agent.lines.file
        lines.write("".join(rules_of(dscp) + "\n" for dscp in (1, 2)) * 500)
        lines.flush()
        status, seconds = self.agent.stop()
        self.assertEqual(status, 0)
        self.assertLess(seconds, 1)
        for stream in streams:
            with self.fails(Code.UNAVAILABLE):
                while True:
                    stream.next()
        with Agent(rules.PROGRAM, address=self.agent.address) as second:
            self.assertEqual(second.address, self.agent.address)


if __name__ == "__main__":
    rules.main()
