#!/usr/bin/python3
"""Holds the agent to the rules of gNMI, with a client that knows nothing of its code.

    rules_test.py PROGRAM [unittest's arguments]

Each class is one subject of the rules.
"""

import json
import sys
import time
import unittest

import grpc

import device
from agent import Agent, Client, path, stubs, text_of, value_of

PROGRAM = sys.argv.pop(1)
C = "/qos/classifiers/classifier[name=c]"
T = C + "/terms/term[id=t]"
STATE = [(C + "/state/name", "c"), (C + "/state/type", "IPV4")]


def setUpModule():
    global agent, client
    agent = Agent(PROGRAM)
    client = Client(agent.address)


def tearDownModule():
    client.channel.close()
    agent.__exit__()


class Case(unittest.TestCase):
    def setUp(self):
        self.addCleanup(self.clean)

    def clean(self):
        agent.lines.do('{"openconfig": {}}')
        state = json.loads(agent.lines.do('{"print": "state"}')[0])
        for classifier, entry in state.get("classifier", {}).items():
            for term in entry.get("terms", {}).get("term", {}):
                agent.lines.do(*device.remove_term(classifier, term))

    def fails(self, code, *words):
        return Failure(self, code, words)


class Failure:
    """A `with` whose body must fail with a code, and a text that has the words."""

    def __init__(self, test, code, words):
        self.test, self.code, self.words = test, code, words

    def __enter__(self):
        return self

    def __exit__(self, kind, error, _):
        self.test.assertIsInstance(error, grpc.RpcError)
        self.test.assertEqual(error.code(), self.code, error.details())
        for word in self.words:
            self.test.assertIn(word, error.details())
        return True


class Errors(Case):
    def test_get_of_an_absent_path_is_not_found(self):
        with self.fails(grpc.StatusCode.NOT_FOUND, "/qos/classifiers/classifier[name=no]"):
            client.get("/qos/classifiers/classifier[name=no]")

    def test_get_outside_the_model_is_unimplemented(self):
        with self.fails(grpc.StatusCode.UNIMPLEMENTED, "/interfaces"):
            client.get("/interfaces")

    def test_get_of_a_malformed_path_is_invalid(self):
        with self.fails(grpc.StatusCode.INVALID_ARGUMENT, "/qos[name=x]"):
            client.get("/qos[name=x]")

    def test_subscribe_to_an_absent_path_stays_open_and_watches(self):
        with client.subscribe(C, encoding="PROTO") as stream:
            self.assertEqual(stream.until_sync(), [])
            agent.lines.do(*device.make_term("c", "t", 46))
            stream.until(lambda tree: T + "/conditions/ipv4/state/dscp" in tree)

    def test_unsupported_encodings_are_unimplemented(self):
        for encoding in ("BYTES", "ASCII"):
            with self.fails(grpc.StatusCode.UNIMPLEMENTED, encoding):
                client.get("/qos", encoding=encoding)
            with self.fails(grpc.StatusCode.UNIMPLEMENTED, encoding):
                client.subscribe("/qos", encoding=encoding).next()

    def test_a_second_subscribe_is_invalid(self):
        with client.subscribe("/qos") as stream:
            stream.until_sync()
            pb, _ = stubs()
            stream.send(pb.SubscribeRequest(subscribe=pb.SubscriptionList(
                subscription=[pb.Subscription(path=path("/qos"))])))
            with self.fails(grpc.StatusCode.INVALID_ARGUMENT):
                stream.next()

    def test_a_poll_on_a_stream_that_does_not_poll_is_invalid(self):
        with client.subscribe("/qos") as stream:
            stream.until_sync()
            stream.poll()
            with self.fails(grpc.StatusCode.INVALID_ARGUMENT):
                stream.next()

    def test_a_sample_interval_that_cannot_be_done_is_invalid(self):
        with self.fails(grpc.StatusCode.INVALID_ARGUMENT, "sample_interval"):
            client.subscribe("/qos", subscription={"mode": "SAMPLE", "sample_interval": 1}).next()


class Encodings(Case):
    def setUp(self):
        super().setUp()
        agent.lines.do(*device.make_term("c", "t", 10, 12))

    def field(self, text, **fields):
        pb, _ = stubs()
        response = client.stub.Get(pb.GetRequest(path=[path(text)], **fields))
        return response.notification[0].update[0].val.WhichOneof("value")

    def test_json_is_used_when_none_is_named(self):
        self.assertEqual(self.field(C), "json_val")

    def test_the_field_tells_the_encoding(self):
        self.assertEqual(self.field(C, encoding="JSON_IETF"), "json_ietf_val")
        dscps = T + "/conditions/ipv4/state/dscp-set"
        self.assertEqual(self.field(dscps, encoding="PROTO"), "leaflist_val")
        self.assertEqual(client.get(dscps, encoding="PROTO"), [[(dscps, [10, 12])]])

    def test_json_ietf_qualifies_the_outermost_members(self):
        (_, value), = client.get("/qos/classifiers", encoding="JSON_IETF", type="STATE")[0]
        self.assertEqual(list(value), ["openconfig-qos:classifier"])
        self.assertEqual(list(value["openconfig-qos:classifier"][0]), ["state", "terms"])


class Paths(Case):
    def setUp(self):
        super().setUp()
        agent.lines.do(*device.make_term("c", "t", 46))

    def test_a_prefix_stands_before_each_path(self):
        pb, _ = stubs()
        self.assertEqual(client.get("/state/name", prefix=path(C)), [[(C + "/state/name", "c")]])

    def test_another_origin_is_unimplemented(self):
        with self.fails(grpc.StatusCode.UNIMPLEMENTED, "cli"):
            client.get("/qos", prefix=path("", origin="cli"))

    def test_the_origin_is_set_in_answers(self):
        pb, _ = stubs()
        response = client.stub.Get(pb.GetRequest(path=[path("/qos", origin="openconfig")]))
        notification = response.notification[0]
        self.assertEqual(
            [notification.prefix.origin, notification.update[0].path.origin], ["openconfig", ""])

    def test_a_target_is_given_back_and_never_made_up(self):
        pb, _ = stubs()
        for target in ("", "box"):
            with client.subscribe(C, mode="ONCE", prefix=path("", target=target)) as stream:
                targets = {notification.prefix.target for notification in stream.until_sync()}
            self.assertEqual(targets, {target})

    def test_module_prefixes_are_accepted_and_never_sent(self):
        self.assertEqual(
            client.get("/openconfig-qos:qos/classifiers/classifier[name=c]/state/name"),
            [[(C + "/state/name", "c")]])


class Wildcards(Case):
    def setUp(self):
        super().setUp()
        agent.lines.do(*device.make_term("c", "t", 46), *device.make_term("d", "t", 46))

    def test_every_form_of_a_wildcard_finds_all_and_is_never_in_answers(self):
        name = "/qos/classifiers/classifier[name={}]/state/name"
        expected = [(name.format("c"), "c"), (name.format("d"), "d")]
        for text in ("/qos/classifiers/classifier[name=*]/state/name",
                     "/qos/classifiers/classifier/state/name",
                     "/qos/*/*/state/name", "/.../state/name",
                     "/qos/.../classifier/state/name"):
            self.assertEqual(client.get(text), [expected], text)


class Gets(Case):
    def setUp(self):
        super().setUp()
        agent.lines.do(json.dumps({"openconfig": device.configuration({"c": {"t": (46, None)}})}))

    def test_one_notification_for_each_path_in_order(self):
        answers = client.get(C + "/state/type", C + "/state/name", C + "/state/type")
        self.assertEqual(answers, [[STATE[1]], [STATE[0]], [STATE[1]]])

    def test_types_select_leaves(self):
        def leaves(kind):
            return {text.rsplit("]/", 1)[-1] for text, _ in client.get(T, type=kind, encoding="PROTO")[0]}
        state = {"state/id", "conditions/ipv4/state/dscp"}
        config = {"config/id", "conditions/ipv4/config/dscp"}
        self.assertEqual(leaves("STATE"), state)
        self.assertEqual(leaves("OPERATIONAL"), state)
        self.assertEqual(leaves("CONFIG") - {"id"}, config)
        self.assertEqual(leaves("ALL"), state | config | {"id"})

    def test_what_is_configured_comes_back(self):
        (_, value), = client.get("/", type="CONFIG", encoding="JSON_IETF")[0]
        self.assertEqual(value, device.configuration({"c": {"t": (46, None)}}))


class Streams(Case):
    def test_values_then_one_sync_then_changes(self):
        agent.lines.do(*device.make_term("c", "t", 46))
        with client.subscribe("/qos", C, encoding="PROTO") as stream:
            stream.until_sync()
            self.assertEqual(stream.tree, {
                **dict(STATE), T + "/state/id": "t", T + "/conditions/ipv4/state/dscp": 46})
            agent.lines.do(*device.make_term("c", "u", 1, 2))
            stream.until(lambda tree: C + "/terms/term[id=u]/conditions/ipv4/state/dscp-set" in tree)
            self.assertEqual(stream.faults, [])

    def test_the_initial_leaves_of_a_term_share_a_notification(self):
        agent.lines.do(*device.make_term("c", "t", 46))
        with client.subscribe("/qos", mode="ONCE") as stream:
            self.assertEqual(len(stream.until_sync()), 2)

    def test_a_heartbeat_sends_everything_again(self):
        agent.lines.do(*device.make_term("c", "t", 46))
        with client.subscribe("/qos", subscription={
                "mode": "ON_CHANGE", "heartbeat_interval": 100_000_000}) as stream:
            stream.until_sync()
            for _ in range(4):
                self.assertNotEqual(stream.next(), "sync")

    def test_target_defined_means_on_change(self):
        with client.subscribe("/qos", subscription={"mode": "TARGET_DEFINED"}) as stream:
            stream.until_sync()
            agent.lines.do(*device.make_term("c", "t", 46))
            stream.until(lambda tree: T + "/state/id" in tree)
        with self.fails(grpc.StatusCode.INVALID_ARGUMENT, "sample_interval"):
            client.subscribe("/qos", subscription={
                "mode": "TARGET_DEFINED", "sample_interval": 1_000_000_000}).next()

    def test_samples_come_at_each_interval(self):
        agent.lines.do(*device.make_term("c", "t", 46))
        with client.subscribe(C + "/state/name", subscription={"mode": "SAMPLE"}) as stream:
            stream.until_sync()
            begin = time.monotonic()
            for _ in range(3):
                stream.next()
            self.assertGreater(time.monotonic() - begin, 0.15)

    def test_updates_only_begins_with_the_sync(self):
        agent.lines.do(*device.make_term("c", "t", 46))
        with client.subscribe("/qos", updates_only=True) as stream:
            self.assertEqual(stream.next(), "sync")
            agent.lines.do(*device.make_term("c", "t", 47))
            stream.until(lambda tree: tree.get(T + "/conditions/ipv4/state/dscp") == 47)
            self.assertNotIn(C + "/state/name", stream.tree)

    def test_poll_brings_values_and_one_sync_each_time(self):
        with client.subscribe("/qos", mode="POLL") as stream:
            self.assertEqual(stream.until_sync(), [])
            agent.lines.do(*device.make_term("c", "t", 46))
            for _ in range(2):
                stream.poll()
                self.assertEqual(len(stream.until_sync()), 2)

    def test_a_stream_goes_on_when_the_client_has_closed_its_side(self):
        with client.subscribe("/qos") as stream:
            stream.half_close()
            stream.until_sync()
            agent.lines.do(*device.make_term("c", "t", 46))
            stream.until(lambda tree: T + "/state/id" in tree)

    def test_timestamps_tell_when_the_state_changed_and_never_decrease(self):
        with client.subscribe("/qos") as stream:
            stream.until_sync()
            stamps = []
            before = time.time_ns()
            for dscp in range(1, 6):
                agent.lines.do(*device.make_term("c", "t", dscp))
            after = time.time_ns()
            while stream.tree.get(T + "/conditions/ipv4/state/dscp") != 5:
                stamps.append(stream.next().timestamp)
            self.assertEqual(stamps, sorted(stamps))
            self.assertTrue(before <= stamps[0] and stamps[-1] <= after)


class Deletes(Case):
    def deleted(self, *lines):
        """The deletes and updates that the lines lead to."""
        with client.subscribe("/qos", encoding="PROTO") as stream:
            stream.until_sync()
            agent.lines.do(*lines)
            agent.lines.do(*device.make_term("end", "end", 1))
            taken = []
            while "/qos/classifiers/classifier[name=end]/state/name" not in stream.tree:
                taken.append(stream.next())
            self.assertEqual(stream.faults, [])
            return [text_of(gone) for notification in taken for gone in notification.delete]

    def test_a_term_goes_as_one_delete(self):
        agent.lines.do(*device.make_term("c", "t", 46), *device.make_term("c", "u", 1))
        self.assertEqual(self.deleted(*device.remove_term("c", "t"))[-1], T)

    def test_a_delete_may_stand_above_the_subscribed_path(self):
        agent.lines.do(*device.make_term("c", "t", 46), *device.make_term("c", "u", 1))
        with client.subscribe(T + "/state/id") as stream:
            stream.until_sync()
            agent.lines.do(*device.remove_term("c", "t"))
            self.assertEqual([text_of(gone) for gone in stream.next().delete], [T])

    def test_a_leaf_goes_in_the_notification_of_what_takes_its_place(self):
        agent.lines.do(json.dumps({"openconfig": device.configuration({"c": {"t": (46, None)}})}))
        with client.subscribe(T + "/conditions/ipv4/state", encoding="PROTO") as stream:
            stream.until_sync()
            document = device.configuration({"c": {"t": (46, None)}})
            conditions = document["openconfig-qos:qos"]["classifiers"]["classifier"][0][
                "terms"]["term"][0]["conditions"]["ipv4"]
            conditions["config"] = {"dscp-set": [1, 2]}
            agent.lines.do(json.dumps({"openconfig": document}))
            notification = stream.next()
            self.assertEqual([text_of(gone) for gone in notification.delete],
                             [T + "/conditions/ipv4/state/dscp"])
            self.assertEqual([(text_of(update.path), value_of(update.val))
                              for update in notification.update],
                             [(T + "/conditions/ipv4/state/dscp-set", [1, 2])])


class Sets(Case):
    document = device.configuration({"c": {"t": (46, "gold")}}, ["gold"])

    def setUp(self):
        super().setUp()
        client.set(replace=[("/", json.dumps(self.document))])

    def test_a_set_takes_effect_before_its_answer(self):
        self.assertEqual(client.get(C + "/state/type"), [[STATE[1]]])
        self.assertEqual(client.get(T + "/actions/state/target-group"),
                         [[(T + "/actions/state/target-group", "gold")]])

    def test_operations_are_answered_in_order(self):
        pb, _ = stubs()
        response = client.set(delete=[T + "/actions"],
                              update=[(T + "/conditions/ipv4/config/dscp", "10")])
        self.assertEqual([(text_of(result.path), pb.UpdateResult.Operation.Name(result.op))
                          for result in response.response],
                         [(T + "/actions", "DELETE"), (T + "/conditions/ipv4/config/dscp", "UPDATE")])
        self.assertEqual(client.get(T + "/conditions/ipv4/state/dscp")[0][0][1], 10)

    def test_what_breaks_the_model_is_refused_whole(self):
        before = client.get("/", type="CONFIG")
        with self.fails(grpc.StatusCode.INVALID_ARGUMENT, T + "/conditions/ipv4/config/dscp"):
            client.set(update=[(T + "/config/id", '"t"'), (T + "/conditions/ipv4/config/dscp", "64")])
        self.assertEqual(client.get("/", type="CONFIG"), before)

    def test_what_is_referred_to_stays_unless_the_reference_goes(self):
        group = "/qos/forwarding-groups/forwarding-group[name=gold]"
        with self.fails(grpc.StatusCode.INVALID_ARGUMENT, "gold"):
            client.set(delete=[group])
        client.set(delete=[group, T + "/actions"])

    def test_deleting_what_is_absent_is_fine(self):
        client.set(delete=["/qos/queues/queue[name=none]"])

    def test_wildcards_are_for_delete(self):
        with self.fails(grpc.StatusCode.INVALID_ARGUMENT, "wildcard"):
            client.set(update=[("/qos/classifiers/classifier[name=*]", '{"name": "c"}')])
        client.set(delete=["/qos/classifiers/classifier[name=*]"])
        with self.fails(grpc.StatusCode.NOT_FOUND):
            client.get(C)

    def test_a_state_path_is_invalid_and_another_tree_unimplemented(self):
        with self.fails(grpc.StatusCode.INVALID_ARGUMENT, "state"):
            client.set(delete=[C + "/state"])
        with self.fails(grpc.StatusCode.UNIMPLEMENTED, "/interfaces"):
            client.set(delete=["/interfaces"])

    def test_union_replace_stands_alone(self):
        with self.fails(grpc.StatusCode.INVALID_ARGUMENT, "union_replace"):
            client.set(union=[("/qos", "{}")], delete=["/qos/queues"])
        client.set(union=[("/qos/queues/queue[name=a]", '{"name": "a", "config": {"name": "a"}}'),
                          ("/qos/queues/queue[name=b]", '{"name": "b", "config": {"name": "b"}}')])
        (_, value), = client.get("/", type="CONFIG")[0]
        self.assertEqual([queue["name"] for queue in value["qos"]["queues"]["queue"]], ["a", "b"])
        self.assertNotIn("classifiers", value["qos"])


class Extensions(Case):
    def setUp(self):
        super().setUp()
        client.set(replace=[("/", json.dumps(Sets.document))])

    def dscp(self):
        return client.get(T + "/conditions/ipv4/state/dscp")[0][0][1]

    def set_dscp(self, dscp, commit=None):
        return client.set(update=[(T + "/conditions/ipv4/config/dscp", str(dscp))],
                          extension=[{"commit": commit}] if commit else [])

    def test_depth_limits_get_and_subscribe(self):
        extension = [{"depth": {"level": 1}}]
        self.assertEqual(client.get(C, extension=extension), [[(C, {"name": "c"})]])
        with self.fails(grpc.StatusCode.INVALID_ARGUMENT, "depth"):
            client.set(extension=extension)

    def test_a_commit_that_is_not_confirmed_is_taken_back(self):
        self.set_dscp(1, {"id": "a", "commit": {"rollback_duration": {"nanos": 300_000_000}}})
        self.assertEqual(self.dscp(), 1)
        with client.subscribe(T + "/conditions/ipv4/state/dscp", encoding="PROTO") as stream:
            stream.until(lambda tree: tree.get(T + "/conditions/ipv4/state/dscp") == 46)

    def test_a_confirmed_commit_stays_and_nothing_else_edits_before(self):
        self.set_dscp(1, {"id": "a", "commit": {}})
        with self.fails(grpc.StatusCode.FAILED_PRECONDITION, "a"):
            self.set_dscp(2)
        self.assertIn("refused", agent.lines.do('{"openconfig": {}}')[0])
        with self.fails(grpc.StatusCode.INVALID_ARGUMENT):
            client.set(extension=[{"commit": {"id": "b", "confirm": {}}}])
        client.set(extension=[{"commit": {"id": "a", "confirm": {}}}])
        self.set_dscp(2)
        self.assertEqual(self.dscp(), 2)
        with self.fails(grpc.StatusCode.FAILED_PRECONDITION):
            client.set(extension=[{"commit": {"id": "a", "confirm": {}}}])

    def test_a_cancelled_commit_is_taken_back_at_once(self):
        self.set_dscp(1, {"id": "a", "commit": {}})
        client.set(extension=[{"commit": {"id": "a", "cancel": {}}}])
        self.assertEqual(self.dscp(), 46)

    def test_arbitration_and_history_are_unimplemented_and_unknown_ones_ignored(self):
        for extension in ({"master_arbitration": {}}, {"history": {}}):
            with self.fails(grpc.StatusCode.UNIMPLEMENTED):
                client.get("/", extension=[extension])
        client.get("/", extension=[{"registered_ext": {"id": "EID_EXPERIMENTAL"}}])


class StandardServices(Case):
    def test_health_says_serving(self):
        check = client.channel.unary_unary("/grpc.health.v1.Health/Check")
        self.assertEqual(check(b"", timeout=10), b"\x08\x01")

    def test_reflection_names_the_services(self):
        info = client.channel.stream_stream(
            "/grpc.reflection.v1alpha.ServerReflection/ServerReflectionInfo")
        list_services = b"\x3a\x01*"
        answer = next(info(iter([list_services]), timeout=10))
        for service in (b"gnmi.gNMI", b"grpc.health.v1.Health"):
            self.assertIn(service, answer)


def resident(pid):
    """The memory that a process has, in bytes."""
    with open(f"/proc/{pid}/statm") as statm:
        return int(statm.read().split()[1]) * 4096


class Users(Case):
    """What users of such servers ran into."""

    def test_get_modify_set_of_the_same_changes_nothing(self):
        client.set(replace=[("/", json.dumps(Sets.document))])
        before = client.get("/", encoding="JSON_IETF")
        (_, value), = client.get("/", type="CONFIG", encoding="JSON_IETF")[0]
        with client.subscribe("/qos", updates_only=True) as stream:
            self.assertEqual(stream.next(), "sync")
            client.set(replace=[("/", json.dumps(value))])
            client.set(update=[(T + "/conditions/ipv4/config/dscp", "1")])
            first = stream.next()
            self.assertEqual({value_of(update.val) for update in first.update}, {1})
            client.set(update=[(T + "/conditions/ipv4/config/dscp", "46")])
        self.assertEqual(client.get("/", encoding="JSON_IETF"), before)

    def test_a_poll_of_an_absent_key_keeps_the_call(self):
        with client.subscribe(C, mode="POLL") as stream:
            self.assertEqual(stream.until_sync(), [])
            stream.poll()
            self.assertEqual(stream.until_sync(), [])

    def test_one_term_after_another_replaced_by_the_whole_disturbs_no_other(self):
        terms = {f"t{at}": (at, None) for at in range(14)}
        client.set(replace=[("/", json.dumps(device.configuration({"c": terms})))])
        with client.subscribe("/qos/classifiers", encoding="PROTO") as stream:
            stream.until_sync()
            for at in range(14):
                terms[f"t{at}"] = (at + 20, None)
                client.set(replace=[("/qos", json.dumps(
                    device.configuration({"c": terms})["openconfig-qos:qos"]))])
                touched = set()
                leaf = f"{C}/terms/term[id=t{at}]/conditions/ipv4/state/dscp"
                while stream.tree[leaf] != at + 20:
                    notification = stream.next()
                    self.assertEqual(list(notification.delete), [])
                    touched |= {text_of(update.path) for update in notification.update}
                self.assertEqual({text.split("/terms/term[id=")[1].split("]")[0]
                                  for text in touched}, {f"t{at}"})

    def test_a_killed_client_takes_nothing_with_it(self):
        with Client(agent.address) as other:
            stream = other.subscribe("/qos")
            stream.until_sync()
        agent.lines.do(*device.make_term("c", "t", 46))
        self.assertEqual(client.get(C + "/state/name"), [[STATE[0]]])

    def test_a_stalled_reader_costs_memory_for_leaves_only_and_misses_nothing(self):
        changes = 20_000
        agent.lines.do(*device.make_term("c", "t", 0))
        with client.subscribe(T + "/conditions/ipv4/state/dscp", encoding="PROTO") as stream:
            stream.until_sync()
            before = resident(agent.process.pid)
            rules = [device.line("update", f"{device.ACL}/openconfig:c:t/aclSubConfig", {
                "ipRuleById": {str(dscp): {"filter": {"dscpValue": dscp, "dscpEnabled": True}}},
                "ruleIdBySequence": {"10": str(dscp)}}) for dscp in (1, 2)]
            for _ in range(changes // 1000):
                agent.lines.do(*(rules * 500))
            self.assertLess(resident(agent.process.pid) - before, 32 << 20)
            # Others are served meanwhile.
            client.get(C + "/state/name")
            agent.lines.do(*device.make_term("c", "t", 63))
            counted = 0
            while stream.tree[T + "/conditions/ipv4/state/dscp"] != 63:
                counted += sum(1 + update.duplicates for update in stream.next().update)
            self.assertGreaterEqual(counted, changes)

    def test_the_port_is_free_at_once_after_a_stop_under_load(self):
        with Agent(PROGRAM) as first, Client(first.address) as other:
            with other.subscribe("/qos") as stream:
                stream.until_sync()
                status, seconds = first.stop()
                self.assertEqual(status, 0)
                self.assertLess(seconds, 5)
                with self.fails(grpc.StatusCode.UNAVAILABLE):
                    while True:
                        stream.next()
            with Agent(PROGRAM, address=first.address) as second:
                self.assertEqual(second.address, first.address)


if __name__ == "__main__":
    unittest.main()
