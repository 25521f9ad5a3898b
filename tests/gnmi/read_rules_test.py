#!/usr/bin/python3
"""Holds the agent to the rules of gNMI: what Capabilities and Get answer, and how paths are read.

    read_rules_test.py PROGRAM [unittest's arguments]

Each class is one subject of the rules.
"""

import json

import device
import rules
from agent import path, stubs, text_of
from rules import C, DSCP, DSCP_SET, T, Code

CONFIGURED = device.configuration({"c": {"t": (46, "gold")}}, ["gold"])


class Errors(rules.Case):
    def test_get_of_an_absent_path_is_not_found(self):
        with self.fails(Code.NOT_FOUND, "/qos/classifiers/classifier[name=no]"):
            self.client.get("/qos/classifiers/classifier[name=no]")

    def test_a_path_outside_the_model_is_unimplemented(self):
        with self.fails(Code.UNIMPLEMENTED, "/interfaces"):
            self.client.get("/interfaces")
        with self.fails(Code.UNIMPLEMENTED, "/qos/nonsense"):
            self.client.get("/qos/nonsense")
        with self.fails(Code.UNIMPLEMENTED, "/interfaces"):
            self.client.subscribe("/interfaces").next()

    def test_a_malformed_path_is_invalid(self):
        for text in ("/qos[name=x]", "/qos//classifiers", "/qos/classifiers/classifier[id=c]",
                     "/.../...[name=c]"):
            with self.subTest(text):
                with self.fails(Code.INVALID_ARGUMENT, text.split("[")[0].split("//")[0]):
                    self.client.get(text)
                with self.fails(Code.INVALID_ARGUMENT):
                    self.client.subscribe(text).next()

    def test_an_unsupported_encoding_is_unimplemented(self):
        for encoding in ("BYTES", "ASCII"):
            with self.fails(Code.UNIMPLEMENTED, encoding):
                self.client.get("/qos", encoding=encoding)
            with self.fails(Code.UNIMPLEMENTED, encoding):
                self.client.subscribe("/qos", encoding=encoding).next()


class CapabilitiesOfTheServer(rules.Case):
    def test_they_name_the_model_the_encodings_and_the_version(self):
        pb, _ = stubs()
        answer = self.client.stub.Capabilities(pb.CapabilityRequest())
        self.assertEqual([(model.name, model.organization, model.version)
                          for model in answer.supported_models],
                         [("openconfig-qos", "OpenConfig working group", "2.2.0")])
        self.assertEqual([pb.Encoding.Name(encoding) for encoding in answer.supported_encodings],
                         ["JSON", "JSON_IETF", "PROTO"])
        self.assertEqual(answer.gNMI_version, "0.10.0")


class Encoding(rules.Case):
    def setUp(self):
        super().setUp()
        self.do(*device.make_term("c", "t", 10, 12))

    def field(self, text, **fields):
        pb, _ = stubs()
        response = self.client.stub.Get(pb.GetRequest(path=[path(text)], **fields))
        return response.notification[0].update[0].val.WhichOneof("value")

    def test_json_is_used_when_none_is_named(self):
        self.assertEqual(self.field(C), "json_val")

    def test_the_field_tells_which_was_used(self):
        self.assertEqual(self.field(C, encoding="JSON_IETF"), "json_ietf_val")
        self.assertEqual(self.field(DSCP_SET, encoding="PROTO"), "leaflist_val")
        self.assertEqual(self.client.get(DSCP_SET, encoding="PROTO"), [[(DSCP_SET, [10, 12])]])

    def test_it_is_the_same_for_subscribe(self):
        for encoding, field in (("JSON", "json_val"), ("JSON_IETF", "json_ietf_val"),
                                ("PROTO", "leaflist_val")):
            with self.client.subscribe(DSCP_SET, mode="ONCE", encoding=encoding) as stream:
                (notification,) = stream.until_sync()
            self.assertEqual(notification.update[0].val.WhichOneof("value"), field)


class Path(rules.Case):
    def setUp(self):
        super().setUp()
        self.do(*device.make_term("c", "t", 46))

    def test_it_names_its_node_and_all_below(self):
        self.assertEqual(
            dict(self.client.get(T, type="STATE", encoding="PROTO")[0]), rules.TERM_LEAVES)

    def test_a_prefix_stands_before_each_path(self):
        self.assertEqual(self.client.get("/state/name", "/state/type", prefix=path(C)),
                         [[(C + "/state/name", "c")], [(C + "/state/type", "IPV4")]])

    def test_another_origin_is_unimplemented(self):
        with self.fails(Code.UNIMPLEMENTED, "cli"):
            self.client.get("/qos", prefix=path("", origin="cli"))
        with self.fails(Code.UNIMPLEMENTED, "cli"):
            self.client.subscribe("/qos", prefix=path("", origin="cli")).next()

    def test_the_origin_is_set_in_answers_and_not_in_both_prefix_and_path(self):
        pb, _ = stubs()
        for asked in ("", "openconfig"):
            response = self.client.stub.Get(pb.GetRequest(path=[path("/qos", origin=asked)]))
            notification = response.notification[0]
            self.assertEqual([notification.prefix.origin, notification.update[0].path.origin],
                             ["openconfig", ""])
        with self.fails(Code.INVALID_ARGUMENT, "origin"):
            self.client.stub.Get(pb.GetRequest(prefix=path("", origin="openconfig"),
                                               path=[path("/qos", origin="openconfig")]))

    def test_a_target_is_given_back_when_given_and_never_made_up(self):
        for target in ("", "box"):
            prefix = path("", target=target)
            with self.client.subscribe(C, mode="ONCE", prefix=prefix) as stream:
                targets = {notification.prefix.target for notification in stream.until_sync()}
            self.assertEqual(targets, {target})
            pb, _ = stubs()
            answer = self.client.stub.Get(pb.GetRequest(prefix=prefix, path=[path(C)]))
            self.assertEqual(answer.notification[0].prefix.target, target)

    def test_a_target_belongs_in_the_prefix_only(self):
        pb, _ = stubs()
        with self.fails(Code.INVALID_ARGUMENT, "target"):
            self.client.stub.Get(pb.GetRequest(path=[path(C, target="box")]))

    def test_module_prefixes_are_accepted_and_never_sent(self):
        self.assertEqual(
            self.client.get("/openconfig-qos:qos/classifiers/classifier[name=c]/state/name"),
            [[(C + "/state/name", "c")]])


class Wildcards(rules.Case):
    def setUp(self):
        super().setUp()
        self.do(*device.make_term("c", "t", 46), *device.make_term("d", "t", 46))

    def test_every_form_finds_all_and_is_never_in_answers(self):
        name = "/qos/classifiers/classifier[name={}]/state/name"
        expected = [(name.format("c"), "c"), (name.format("d"), "d")]
        for text in ("/qos/classifiers/classifier[name=*]/state/name",
                     "/qos/classifiers/classifier/state/name",
                     "/qos/*/*/state/name", "/.../classifiers/*/state/name",
                     "/qos/.../classifier/state/name"):
            with self.subTest(text):
                self.assertEqual(self.client.get(text), [expected])
                with self.client.subscribe(text, mode="ONCE") as stream:
                    stream.until_sync()
                self.assertEqual(list(stream.tree.items()), expected)

    def test_three_dots_stand_for_any_number_of_levels(self):
        (leaves,) = self.client.get("/.../state/id", encoding="PROTO")
        self.assertEqual(leaves, [(T + "/state/id", "t"),
                                  (T.replace("name=c", "name=d") + "/state/id", "t")])


class Get(rules.Case):
    def setUp(self):
        super().setUp()
        self.do(json.dumps({"openconfig": CONFIGURED}))

    def test_one_notification_for_each_path_in_order(self):
        name, kind = C + "/state/name", C + "/state/type"
        self.assertEqual(self.client.get(kind, name, kind),
                         [[(kind, "IPV4")], [(name, "c")], [(kind, "IPV4")]])

    def test_one_snapshot_and_its_time_for_all_paths(self):
        pb, _ = stubs()
        answer = self.client.stub.Get(pb.GetRequest(path=[path(C), path(T)]))
        stamps = {notification.timestamp for notification in answer.notification}
        self.assertEqual(len(stamps), 1)

    def test_types_select_leaves(self):
        def leaves(kind):
            return {text.removeprefix(T + "/")
                    for text, _ in self.client.get(T, type=kind, encoding="PROTO")[0]}
        state = {"state/id", "conditions/ipv4/state/dscp", "actions/state/target-group"}
        config = {"config/id", "conditions/ipv4/config/dscp", "actions/config/target-group"}
        self.assertEqual(leaves("STATE"), state)
        self.assertEqual(leaves("OPERATIONAL"), state)
        self.assertEqual(leaves("CONFIG") - {"id"}, config)
        self.assertEqual(leaves("ALL"), state | config | {"id"})

    def test_what_is_configured_comes_back(self):
        (_, value), = self.client.get("/", type="CONFIG", encoding="JSON_IETF")[0]
        self.assertEqual(value, CONFIGURED)

    def test_a_container_is_one_object_and_a_leaf_its_value(self):
        self.assertEqual(self.client.get(T + "/actions", type="STATE"),
                         [[(T + "/actions", {"state": {"target-group": "gold"}})]])
        self.assertEqual(self.client.get(DSCP), [[(DSCP, 46)]])

    def test_a_list_with_wildcards_is_one_update_for_each_entry(self):
        self.do(*device.make_term("d", "t", 1))
        (updates,) = self.client.get("/qos/classifiers/classifier[name=*]", type="STATE")
        self.assertEqual([text for text, _ in updates], [C, C.replace("name=c", "name=d")])

    def test_proto_is_one_update_for_each_leaf(self):
        self.assertEqual(self.client.get(C + "/state", encoding="PROTO"),
                         [list(rules.CLASSIFIER_LEAVES.items())])

    def test_json_ietf_qualifies_the_outermost_members_only(self):
        (_, value), = self.client.get("/qos/classifiers", encoding="JSON_IETF", type="STATE")[0]
        self.assertEqual(list(value), ["openconfig-qos:classifier"])
        self.assertEqual(list(value["openconfig-qos:classifier"][0]), ["state", "terms"])
        (_, value), = self.client.get("/qos/classifiers", encoding="JSON", type="STATE")[0]
        self.assertEqual(list(value), ["classifier"])


class LeavesOfState(rules.Case):
    """Each leaf of the table of state, in each encoding."""

    DOCUMENT = {"openconfig-qos:qos": {
        "forwarding-groups": {"forwarding-group": [{"name": "gold", "config": {"name": "gold"}}]},
        "classifiers": {"classifier": [
            {"name": "c", "config": {"name": "c", "type": "IPV4"}, "terms": {"term": [
                {"id": "t", "config": {"id": "t"},
                 "conditions": {"ipv4": {"config": {"dscp": 46}}},
                 "actions": {"config": {"target-group": "gold"}}}]}},
            {"name": "d", "config": {"name": "d", "type": "IPV6"}, "terms": {"term": [
                {"id": "t", "config": {"id": "t"},
                 "conditions": {"ipv6": {"config": {"dscp-set": [10, 12]}}}}]}}]},
        "interfaces": {"interface": [{
            "interface-id": "e1", "config": {"interface-id": "e1"},
            "input": {"classifiers": {"classifier": [
                {"type": "IPV4", "config": {"type": "IPV4", "name": "c"}}]}}}]}}}
    D_SET = ("/qos/classifiers/classifier[name=d]/terms/term[id=t]"
             "/conditions/ipv6/state/dscp-set")
    ATTACHED = "/qos/interfaces/interface[interface-id=e1]/input/classifiers/classifier[type=IPV4]"
    LEAVES = [(C + "/state/name", "string_val", "c"), (C + "/state/type", "string_val", "IPV4"),
              (T + "/state/id", "string_val", "t"), (DSCP, "uint_val", 46),
              (rules.TARGET_GROUP, "string_val", "gold"), (D_SET, "leaflist_val", [10, 12]),
              (ATTACHED + "/state/name", "string_val", "c"),
              (ATTACHED + "/state/type", "string_val", "IPV4")]

    def setUp(self):
        super().setUp()
        self.do(json.dumps({"openconfig": self.DOCUMENT}))

    def test_each_has_its_value_in_each_encoding(self):
        pb, _ = stubs()
        for text, field, value in self.LEAVES:
            for encoding in ("JSON", "JSON_IETF", "PROTO"):
                with self.subTest(text, encoding=encoding):
                    self.assertEqual(self.client.get(text, encoding=encoding), [[(text, value)]])
            answer = self.client.stub.Get(pb.GetRequest(path=[path(text)], encoding="PROTO"))
            self.assertEqual(answer.notification[0].update[0].val.WhichOneof("value"), field)

    def test_there_are_no_others(self):
        (leaves,) = self.client.get("/", type="STATE", encoding="PROTO")
        others = {C.replace("name=c", "name=d") + rest for rest in
                  ("/state/name", "/state/type", "/terms/term[id=t]/state/id")}
        self.assertEqual({text for text, _ in leaves},
                         {text for text, _, _ in self.LEAVES} | others)

    def test_those_of_an_attachment_are_there_while_its_policy_map_is(self):
        with self.client.subscribe(self.ATTACHED, encoding="PROTO") as stream:
            stream.until_sync()
            self.assertIn(self.ATTACHED + "/state/name", stream.tree)
            self.do(device.line(
                "delete", "qos/status/pmapTypeStatus/mapQos/pmapStatus/openconfig:c:"))
            stream.until(lambda tree: self.ATTACHED + "/state/name" not in tree)
        with self.fails(Code.NOT_FOUND):
            self.client.get(self.ATTACHED + "/state")

    def test_keys_are_for_get_only(self):
        self.assertEqual(self.client.get(T + "/id"), [[(T + "/id", "t")]])
        with self.client.subscribe("/qos", mode="ONCE") as stream:
            for notification in stream.until_sync():
                for update in notification.update:
                    parent = text_of(update.path).split("/")[-2]
                    self.assertIn(parent, ("state", "config"))


if __name__ == "__main__":
    rules.main()
