#!/usr/bin/python3
"""Holds the agent to the rules of gNMI: what Set does, extensions, limits, and standard services.

    set_rules_test.py PROGRAM [unittest's arguments]

Each class is one subject of the rules.
"""

import json

import device
import rules
from agent import Client, path, stubs, text_of
from rules import C, DSCP, T, Code

DOCUMENT = device.configuration({"c": {"t": (46, "gold")}}, ["gold"])
CONFIGURED_DSCP = T + "/conditions/ipv4/config/dscp"
QUEUE = '{"name": "%s", "config": {"name": "%s"}}'


class Case(rules.Case):
    def setUp(self):
        super().setUp()
        self.client.set(replace=[("/", json.dumps(DOCUMENT))])

    def configured(self):
        (_, value), = self.client.get("/", type="CONFIG", encoding="JSON_IETF")[0]
        return value

    def leaf(self, text):
        (_, value), = self.client.get(text)[0]
        return value


class Set(Case):
    def test_it_takes_effect_before_its_answer(self):
        self.assertEqual(self.leaf(C + "/state/type"), "IPV4")
        self.assertEqual(self.leaf(rules.TARGET_GROUP), "gold")

    def test_operations_apply_and_are_answered_in_order(self):
        pb, _ = stubs()
        conditions = T + "/conditions/ipv4/config"
        response = self.client.set(update=[(conditions + "/dscp", "10")],
                                   replace=[(conditions, '{"dscp": 9}')], delete=[T + "/actions"])
        self.assertEqual([(text_of(result.path), pb.UpdateResult.Operation.Name(result.op))
                          for result in response.response],
                         [(T + "/actions", "DELETE"), (conditions, "REPLACE"),
                          (conditions + "/dscp", "UPDATE")])
        self.assertGreater(response.timestamp, 0)
        self.assertEqual(self.leaf(DSCP), 10)

    def test_what_breaks_the_model_is_invalid_and_nothing_is_applied(self):
        before = self.configured()
        with self.fails(Code.INVALID_ARGUMENT, CONFIGURED_DSCP):
            self.client.set(delete=[T + "/actions"], update=[(CONFIGURED_DSCP, "64")])
        self.assertEqual(self.configured(), before)

    def test_what_is_referred_to_stays_unless_the_same_set_removes_the_reference(self):
        group = "/qos/forwarding-groups/forwarding-group[name=gold]"
        with self.fails(Code.INVALID_ARGUMENT, "gold"):
            self.client.set(delete=[group])
        self.client.set(delete=[group, T + "/actions"])
        with self.fails(Code.NOT_FOUND):
            self.client.get(group)

    def test_deleting_what_is_absent_is_fine(self):
        before = self.configured()
        self.client.set(delete=["/qos/queues/queue[name=none]"])
        self.assertEqual(self.configured(), before)

    def test_wildcards_are_for_delete_only(self):
        for text in ("/qos/classifiers/classifier[name=*]", "/qos/classifiers/classifier",
                     "/qos/.../config", "/qos/*"):
            with self.subTest(text), self.fails(Code.INVALID_ARGUMENT, "wildcard"):
                self.client.set(update=[(text, '{"name": "c"}')])
        self.client.set(delete=["/qos/classifiers/classifier[name=*]/.../actions"])
        with self.fails(Code.NOT_FOUND):
            self.client.get(T + "/actions", type="CONFIG")
        self.client.set(delete=["/qos/*/classifier"])
        with self.fails(Code.NOT_FOUND):
            self.client.get(C, type="CONFIG")

    def test_a_wildcard_means_what_the_same_set_finds(self):
        """A delete with a wildcard sees what requests before it made, snapshots or not."""
        pb, _ = stubs()
        queues = [self.client.stub.Set.future(pb.SetRequest(update=[pb.Update(
            path=path(f"/qos/queues/queue[name=q{at}]"),
            val=pb.TypedValue(json_ietf_val=(QUEUE % (f"q{at}", f"q{at}")).encode()))]))
            for at in range(50)]
        delete = self.client.stub.Set.future(
            pb.SetRequest(delete=[path("/qos/queues/queue[name=*]")]))
        for request in (*queues, delete):
            request.result(30)
        self.client.set(delete=["/qos/queues/queue[name=*]"])
        self.assertNotIn("queues", self.configured()["openconfig-qos:qos"])

    def test_a_path_below_state_is_invalid(self):
        with self.fails(Code.INVALID_ARGUMENT, C + "/state"):
            self.client.set(delete=[C + "/state"])
        with self.fails(Code.INVALID_ARGUMENT, "state"):
            self.client.set(delete=["/qos/.../state"])
        with self.fails(Code.INVALID_ARGUMENT, DSCP):
            self.client.set(update=[(DSCP, "1")])

    def test_another_part_of_the_tree_is_unimplemented(self):
        with self.fails(Code.UNIMPLEMENTED, "/interfaces"):
            self.client.set(delete=["/interfaces"])

    def test_union_replace_stands_alone(self):
        with self.fails(Code.INVALID_ARGUMENT, "union_replace"):
            self.client.set(union=[("/qos", "{}")], delete=["/qos/queues"])

    def test_several_union_replaces_are_one_union(self):
        self.client.set(union=[(f"/qos/queues/queue[name={name}]", QUEUE % (name, name))
                               for name in "ab"])
        self.assertEqual(self.configured(), {"openconfig-qos:qos": {"queues": {"queue": [
            {"name": name, "config": {"name": name}} for name in "ab"]}}})

    def test_values_are_json_of_any_node_and_scalars_and_leaf_lists_of_leaves(self):
        pb, _ = stubs()
        conditions = T + "/conditions/ipv4/config"
        leaf_list = pb.ScalarArray(element=[pb.TypedValue(uint_val=one) for one in (1, 2)])
        for text, value, seen in (
                (conditions + "/dscp", pb.TypedValue(uint_val=5), {"dscp": 5}),
                (conditions + "/dscp", pb.TypedValue(json_val=b"6"), {"dscp": 6}),
                (conditions, pb.TypedValue(json_val=b'{"dscp": 7}'), {"dscp": 7}),
                (conditions, pb.TypedValue(json_ietf_val=b'{"openconfig-qos:dscp": 8}'),
                 {"dscp": 8}),
                (conditions + "/dscp-set", pb.TypedValue(leaflist_val=leaf_list),
                 {"dscp": 8, "dscp-set": [1, 2]})):
            self.client.stub.Set(pb.SetRequest(replace=[pb.Update(path=path(text), val=value)]))
            self.assertEqual(self.leaf(conditions), seen)
        with self.fails(Code.INVALID_ARGUMENT, conditions):
            self.client.stub.Set(pb.SetRequest(update=[pb.Update(
                path=path(conditions), val=pb.TypedValue(uint_val=5))]))

    def test_update_of_a_leaf_list_adds_and_replace_sets_it(self):
        leaf_list = T + "/conditions/ipv4/config/dscp-set"
        self.client.set(delete=[CONFIGURED_DSCP], update=[(leaf_list, "[1, 2]")])
        self.client.set(update=[(leaf_list, "[2, 3]")])
        self.assertEqual(self.leaf(leaf_list), [1, 2, 3])
        self.client.set(replace=[(leaf_list, "[3]")])
        self.assertEqual(self.leaf(leaf_list), [3])

    def test_it_is_one_request_for_everybody_else(self):
        with self.client.subscribe(DSCP, encoding="PROTO") as stream:
            stream.until_sync()
            self.client.set(update=[(CONFIGURED_DSCP, str(dscp)) for dscp in (1, 2, 3)])
            self.assertEqual([update.val.uint_val for update in stream.next().update], [3])

    def test_an_agent_that_records_says_where_it_came_from(self):
        record = self.agent.path("record")
        with rules.Agent(rules.PROGRAM, "--record", record) as agent, \
                Client(agent.address) as client:
            client.set(delete=["/qos/queues"])
            with open(record, encoding="utf-8") as file:
                origin, line = file.read().splitlines()[-2:]
        self.assertRegex(origin, r"^# .* gnmi$")
        self.assertEqual(json.loads(line), {"configure": [{"delete": "/qos/queues"}]})


class Extensions(Case):
    def set_dscp(self, dscp, commit=None):
        return self.client.set(update=[(CONFIGURED_DSCP, str(dscp))],
                               extension=[{"commit": commit}] if commit else [])

    def commit(self, **action):
        return self.client.set(extension=[{"commit": action}])

    def test_depth_limits_get_and_subscribe_and_is_not_for_set(self):
        extension = [{"depth": {"level": 1}}]
        self.assertEqual(self.client.get(C, extension=extension), [[(C, {"name": "c"})]])
        self.assertEqual(self.client.get(C, extension=[{"depth": {"level": 2}}], type="STATE"),
                         [[(C, {"state": {"name": "c", "type": "IPV4"}})]])
        with self.client.subscribe(C + "/state", mode="ONCE", extension=extension) as stream:
            stream.until_sync()
        self.assertEqual(stream.tree, rules.CLASSIFIER_LEAVES)
        with self.client.subscribe(C, mode="ONCE", extension=extension) as stream:
            self.assertEqual(stream.until_sync(), [])
        with self.fails(Code.INVALID_ARGUMENT, "depth"):
            self.client.set(extension=extension)

    def test_a_commit_that_is_not_confirmed_is_rolled_back(self):
        self.set_dscp(1, {"id": "a", "commit": {"rollback_duration": {"nanos": 300_000_000}}})
        self.assertEqual(self.leaf(DSCP), 1)
        with self.client.subscribe(DSCP, encoding="PROTO") as stream:
            stream.until(lambda tree: tree.get(DSCP) == 46)
        self.set_dscp(2)

    def test_while_a_commit_waits_every_other_edit_is_refused(self):
        self.set_dscp(1, {"id": "a", "commit": {}})
        for other in (lambda: self.set_dscp(2), lambda: self.set_dscp(2, {"id": "b", "commit": {}}),
                      lambda: self.client.set(delete=["/qos/queues"])):
            with self.fails(Code.FAILED_PRECONDITION, "a"):
                other()
        for line in ('{"openconfig": {}}', '{"configure": []}'):
            (answer,) = self.agent.lines.do(line)
            self.assertIn("refused", json.loads(answer))
        self.assertEqual(self.leaf(DSCP), 1)

    def test_a_confirmed_commit_stays(self):
        self.set_dscp(1, {"id": "a", "commit": {}})
        with self.fails(Code.INVALID_ARGUMENT):
            self.commit(id="b", confirm={})
        self.commit(id="a", confirm={})
        self.set_dscp(2)
        self.assertEqual(self.leaf(DSCP), 2)
        with self.fails(Code.FAILED_PRECONDITION):
            self.commit(id="a", confirm={})

    def test_a_cancelled_commit_is_rolled_back_at_once(self):
        self.set_dscp(1, {"id": "a", "commit": {}})
        self.commit(id="a", cancel={})
        self.assertEqual(self.leaf(DSCP), 46)

    def test_a_commit_can_be_given_more_time(self):
        self.set_dscp(1, {"id": "a", "commit": {"rollback_duration": {"seconds": 600}}})
        self.commit(id="a", set_rollback_duration={"rollback_duration": {"nanos": 100_000_000}})
        with self.client.subscribe(DSCP, encoding="PROTO") as stream:
            stream.until(lambda tree: tree.get(DSCP) == 46)

    def test_the_rollback_is_recorded_as_one_configure(self):
        record = self.agent.path("record")
        with rules.Agent(rules.PROGRAM, "--record", record) as agent, \
                Client(agent.address) as client:
            client.set(replace=[("/", json.dumps(DOCUMENT))])
            client.set(update=[(CONFIGURED_DSCP, "1")],
                       extension=[{"commit": {"id": "a", "commit": {}}}])
            client.set(extension=[{"commit": {"id": "a", "cancel": {}}}])
            with open(record, encoding="utf-8") as file:
                lines = [json.loads(line) for line in file if not line.startswith("#")]
        self.assertEqual([list(line) for line in lines], [["configure"]] * 3)
        self.do('{"openconfig": {}}', *map(json.dumps, lines))
        self.assertEqual(self.configured(), DOCUMENT)

    def test_arbitration_and_history_are_unimplemented(self):
        for extension in ({"master_arbitration": {}}, {"history": {}}):
            with self.fails(Code.UNIMPLEMENTED):
                self.client.get("/", extension=[extension])
            with self.fails(Code.UNIMPLEMENTED):
                self.client.set(extension=[extension])

    def test_unknown_registered_extensions_are_ignored(self):
        extension = [{"registered_ext": {"id": "EID_EXPERIMENTAL", "msg": b"x"}}]
        self.client.get("/", extension=extension)
        self.client.set(extension=extension)
        self.client.subscribe("/qos", mode="ONCE").until_sync()


class Limits(rules.Case):
    """At each limit, and one beyond. Those of connections and messages are tested in process."""

    def test_64_subscriptions_in_a_stream(self):
        self.client.subscribe(*["/qos"] * 64, mode="ONCE").until_sync()
        with self.fails(Code.INVALID_ARGUMENT, "64"):
            self.client.subscribe(*["/qos"] * 65, mode="ONCE").next()

    def test_32_elements_in_a_path(self):
        self.client.subscribe("/..." * 32, mode="ONCE").until_sync()
        with self.fails(Code.INVALID_ARGUMENT, "32"):
            self.client.get("/..." * 33)

    def test_1_kib_in_an_element(self):
        entry = "/qos/classifiers/classifier[name={}]"
        fits = 1024 - len("classifier") - len("name")
        with self.fails(Code.NOT_FOUND):
            self.client.get(entry.format("x" * fits))
        with self.fails(Code.INVALID_ARGUMENT, "1024"):
            self.client.get(entry.format("x" * (fits + 1)))

    def test_4_mib_in_a_request(self):
        pb, _ = stubs()
        def request(size):
            padding = size - pb.GetRequest(prefix=pb.Path(target="x" * size)).ByteSize()
            return pb.GetRequest(prefix=pb.Path(target="x" * (size + padding)))
        self.assertEqual(request(4 << 20).ByteSize(), 4 << 20)
        self.client.stub.Get(request(4 << 20))
        with self.fails(Code.RESOURCE_EXHAUSTED):
            self.client.stub.Get(request((4 << 20) + 1))

    def test_100_streams_on_a_connection(self):
        streams = [self.client.subscribe("/qos") for _ in range(100)]
        for stream in streams:
            stream.until_sync()
        with self.fails(Code.RESOURCE_EXHAUSTED, "100"):
            self.client.subscribe("/qos").until_sync()
        for stream in streams:
            stream.cancel()

    def test_64_connections(self):
        others = [self.enterContext(Client(self.agent.address)) for _ in range(63)]
        for client in (self.client, *others):
            client.get("/")
        with Client(self.agent.address) as one_more, self.fails(Code.RESOURCE_EXHAUSTED, "64"):
            one_more.get("/")


class StandardServices(rules.Case):
    def test_health_says_serving(self):
        check = self.client.channel.unary_unary("/grpc.health.v1.Health/Check")
        self.assertEqual(check(b"", timeout=10), b"\x08\x01")

    def test_reflection_names_the_services(self):
        info = self.client.channel.stream_stream(
            "/grpc.reflection.v1alpha.ServerReflection/ServerReflectionInfo")
        list_services = b"\x3a\x01*"
        answer = next(info(iter([list_services]), timeout=10))
        for service in (b"gnmi.gNMI", b"grpc.health.v1.Health"):
            self.assertIn(service, answer)


if __name__ == "__main__":
    rules.main()
