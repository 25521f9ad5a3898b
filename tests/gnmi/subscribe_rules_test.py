#!/usr/bin/python3
"""Holds the agent to the rules of gNMI: what streams of Subscribe bring.

    subscribe_rules_test.py PROGRAM [unittest's arguments]

Each class is one subject of the rules.
"""

import json
import time

import device
import rules
from agent import path, stubs, text_of, value_of
from rules import C, DSCP, DSCP_SET, T, Code

LEAST_INTERVAL = 100_000_000  # nanoseconds
END = "/qos/classifiers/classifier[name=end]"


def configured(**leaves):
    """A document of classifier c with term t, whose conditions have these leaves."""
    document = device.configuration({"c": {"t": (0, None)}})
    term = document["openconfig-qos:qos"]["classifiers"]["classifier"][0]["terms"]["term"][0]
    term["conditions"]["ipv4"]["config"] = {
        name.replace("_", "-"): value for name, value in leaves.items()}
    return json.dumps({"openconfig": document})


class Case(rules.Case):
    def notifications_of(self, stream, *lines):
        """Applies lines; returns what the stream brings of them."""
        self.do(*lines)
        self.do(*device.make_term("end", "end", 1))
        taken = []
        while END + "/state/name" not in stream.tree:
            taken.append(stream.next())
        self.assertEqual(stream.faults, [])
        return [one for one in taken
                if not any(text_of(update.path).startswith(END) for update in one.update)]


def texts(notification):
    """The deletes of a notification, and its updates with their values."""
    return ([text_of(gone) for gone in notification.delete],
            {text_of(update.path): value_of(update.val) for update in notification.update})


class Errors(Case):
    def test_an_absent_path_is_no_error_and_is_watched(self):
        with self.client.subscribe(C, mode="ONCE") as stream:
            self.assertEqual(stream.until_sync(), [])
        with self.client.subscribe(C, encoding="PROTO") as stream:
            self.assertEqual(stream.until_sync(), [])
            self.do(*device.make_term("c", "t", 46))
            stream.until(lambda tree: DSCP in tree)

    def test_a_second_subscribe_is_invalid(self):
        pb, _ = stubs()
        with self.client.subscribe("/qos") as stream:
            stream.until_sync()
            stream.send(pb.SubscribeRequest(subscribe=pb.SubscriptionList(
                subscription=[pb.Subscription(path=path("/qos"))])))
            with self.fails(Code.INVALID_ARGUMENT):
                stream.next()

    def test_a_first_message_that_does_not_subscribe_is_invalid(self):
        pb, _ = stubs()
        for request in (pb.SubscribeRequest(), pb.SubscribeRequest(poll=pb.Poll())):
            with self.fails(Code.INVALID_ARGUMENT):
                next(self.client.stub.Subscribe(iter([request]), timeout=20))

    def test_a_poll_on_a_stream_that_is_not_poll_is_invalid(self):
        with self.client.subscribe("/qos") as stream:
            stream.until_sync()
            stream.poll()
            with self.fails(Code.INVALID_ARGUMENT):
                stream.next()

    def test_an_interval_that_cannot_be_done_is_invalid(self):
        for wrong in ({"mode": "SAMPLE", "sample_interval": LEAST_INTERVAL - 1},
                      {"mode": "ON_CHANGE", "heartbeat_interval": LEAST_INTERVAL - 1}):
            with self.fails(Code.INVALID_ARGUMENT, "_interval", "100 ms"):
                self.client.subscribe("/qos", subscription=wrong).next()


class GranularityOfSubscribe(Case):
    def test_one_leaf_for_each_update_in_every_encoding(self):
        self.do(*device.make_term("c", "t", 46))
        for encoding in ("JSON", "JSON_IETF", "PROTO"):
            with self.client.subscribe("/qos", mode="ONCE", encoding=encoding) as stream:
                stream.until_sync()
            self.assertEqual(stream.tree, {**rules.CLASSIFIER_LEAVES, **rules.TERM_LEAVES})

    def test_leaves_that_change_together_share_a_notification(self):
        with self.client.subscribe("/qos", encoding="PROTO") as stream:
            stream.until_sync()
            first, second = self.notifications_of(
                stream, configured(dscp=46))
        config = {C + "/config/name": "c", C + "/config/type": "IPV4"}
        self.assertEqual(texts(first), ([], {**config, **rules.CLASSIFIER_LEAVES}))
        self.assertEqual(texts(second), ([], {
            T + "/config/id": "t", T + "/conditions/ipv4/config/dscp": 46, **rules.TERM_LEAVES}))

    def test_state_and_configuration_are_both_sent_and_keys_are_not(self):
        self.do(configured(dscp=46))
        with self.client.subscribe(T, mode="ONCE", encoding="PROTO") as stream:
            stream.until_sync()
        self.assertEqual(stream.tree, {
            T + "/config/id": "t", T + "/conditions/ipv4/config/dscp": 46, **rules.TERM_LEAVES})

    def test_a_request_arrives_as_its_outcome(self):
        self.do(configured(dscp=46))
        with self.client.subscribe(DSCP, encoding="PROTO") as stream:
            stream.until_sync()
            edits = [{"update": T + "/conditions/ipv4/config/dscp", "value": dscp}
                     for dscp in (1, 2, 3)]
            self.do(json.dumps({"configure": edits}))
            self.assertEqual(texts(stream.next()), ([], {DSCP: 3}))


class StreamOnChange(Case):
    def test_values_then_one_sync_then_changes(self):
        self.do(*device.make_term("c", "t", 46))
        with self.client.subscribe("/qos", encoding="PROTO",
                                   subscription={"mode": "ON_CHANGE"}) as stream:
            stream.until_sync()
            self.assertEqual(stream.tree, {**rules.CLASSIFIER_LEAVES, **rules.TERM_LEAVES})
            self.assertNotIn("sync", self.notifications_of(
                stream, *device.make_term("c", "u", 1, 2)))
            self.assertEqual(
                stream.tree[C + "/terms/term[id=u]/conditions/ipv4/state/dscp-set"], [1, 2])

    def test_a_change_of_another_path_is_not_sent(self):
        self.do(*device.make_term("c", "t", 46), *device.make_term("c", "u", 46))
        with self.client.subscribe(T, C + "/terms/term[id=end]") as stream:
            stream.until_sync()
            self.do(*device.make_term("c", "u", 47), *device.make_term("c", "end", 1))
            self.assertIn("id=end", text_of(stream.next().update[0].path))

    def test_a_heartbeat_sends_everything_again(self):
        self.do(*device.make_term("c", "t", 46))
        with self.client.subscribe("/qos", subscription={
                "mode": "ON_CHANGE", "heartbeat_interval": LEAST_INTERVAL}) as stream:
            stream.until_sync()
            seen = [texts(stream.next())[1] for _ in range(4)]
            self.assertEqual(seen, [rules.CLASSIFIER_LEAVES, rules.TERM_LEAVES] * 2)


class Sample(Case):
    def test_all_values_at_each_interval(self):
        self.do(*device.make_term("c", "t", 46))
        for interval in (0, LEAST_INTERVAL):
            with self.client.subscribe(C + "/state/name", subscription={
                    "mode": "SAMPLE", "sample_interval": interval}) as stream:
                stream.until_sync()
                begin = time.monotonic()
                for _ in range(3):
                    self.assertEqual(texts(stream.next()), ([], {C + "/state/name": "c"}))
                self.assertGreater(time.monotonic() - begin, 0.15)

    def test_suppress_redundant_sends_only_what_changed(self):
        self.do(*device.make_term("c", "t", 46))
        with self.client.subscribe(T, encoding="PROTO", subscription={
                "mode": "SAMPLE", "suppress_redundant": True}) as stream:
            stream.until_sync()
            self.do(*device.make_term("c", "t", 1))
            self.do(*device.make_term("c", "t", 2))
            stream.until(lambda tree: tree[DSCP] == 2)
            self.assertEqual(stream.faults, [])
            self.do(*device.make_term("c", "t", 3))
            self.assertEqual(texts(stream.next()), ([], {DSCP: 3}))

    def test_a_heartbeat_overrides_suppression(self):
        self.do(*device.make_term("c", "t", 46))
        with self.client.subscribe(DSCP, encoding="PROTO", subscription={
                "mode": "SAMPLE", "suppress_redundant": True,
                "heartbeat_interval": 2 * LEAST_INTERVAL}) as stream:
            stream.until_sync()
            self.assertEqual([texts(stream.next())[1] for _ in range(2)], [{DSCP: 46}] * 2)


class TargetDefined(Case):
    def test_it_means_on_change(self):
        with self.client.subscribe("/qos", subscription={"mode": "TARGET_DEFINED"}) as stream:
            stream.until_sync()
            self.notifications_of(stream, *device.make_term("c", "t", 46))
            self.assertEqual(stream.tree[DSCP], 46)

    def test_a_sample_interval_with_it_is_invalid(self):
        with self.fails(Code.INVALID_ARGUMENT, "sample_interval"):
            self.client.subscribe("/qos", subscription={
                "mode": "TARGET_DEFINED", "sample_interval": 1_000_000_000}).next()


class OnceAndPoll(Case):
    def test_once_brings_values_and_sync_and_closes(self):
        self.do(*device.make_term("c", "t", 46))
        with self.client.subscribe("/qos", mode="ONCE") as stream:
            stream.until_sync()
            self.assertEqual(list(stream.call), [])
            self.assertEqual(stream.call.code(), Code.OK)

    def test_each_poll_brings_the_values_and_one_sync(self):
        with self.client.subscribe("/qos", mode="POLL") as stream:
            self.assertEqual(stream.until_sync(), [])
            self.do(*device.make_term("c", "t", 46))
            for _ in range(2):
                stream.poll()
                seen = [texts(one)[1] for one in stream.until_sync()]
                self.assertEqual(seen, [rules.CLASSIFIER_LEAVES, rules.TERM_LEAVES])


class HalfClosedStream(Case):
    def test_it_goes_on(self):
        with self.client.subscribe("/qos") as stream:
            stream.half_close()
            stream.until_sync()
            self.do(*device.make_term("c", "t", 46))
            stream.until(lambda tree: T + "/state/id" in tree)


class UpdatesOnly(Case):
    def test_the_sync_comes_first_and_no_initial_values(self):
        self.do(*device.make_term("c", "t", 46))
        with self.client.subscribe("/qos", updates_only=True, encoding="PROTO") as stream:
            self.assertEqual(stream.next(), "sync")
            self.notifications_of(stream, *device.make_term("c", "t", 47))
            self.assertEqual(stream.tree[DSCP], 47)
            self.assertNotIn(C + "/state/name", stream.tree)

    def test_it_holds_for_once_and_poll(self):
        self.do(*device.make_term("c", "t", 46))
        for mode in ("ONCE", "POLL"):
            with self.client.subscribe("/qos", mode=mode, updates_only=True) as stream:
                self.assertEqual(stream.next(), "sync")


class SeveralSubscriptions(Case):
    def test_one_sync_for_all_and_each_leaf_once(self):
        self.do(*device.make_term("c", "t", 46))
        with self.client.subscribe("/qos", C, DSCP, encoding="PROTO") as stream:
            seen = [texts(one)[1] for one in stream.until_sync()]
            self.assertEqual(seen, [rules.CLASSIFIER_LEAVES, rules.TERM_LEAVES])
            seen = self.notifications_of(stream, *device.make_term("c", "t", 1))
            self.assertEqual([one for one in map(texts, seen) if one[1].get(DSCP) == 1],
                             [([], {DSCP: 1})])


class Delete(Case):
    def deleted(self, *lines, subscribed="/qos"):
        with self.client.subscribe(subscribed, END, encoding="PROTO") as stream:
            stream.until_sync()
            return [gone for one in self.notifications_of(stream, *lines) for gone in texts(one)[0]]

    def test_a_term_goes_as_one_delete(self):
        self.do(*device.make_term("c", "t", 46), *device.make_term("c", "u", 1))
        self.assertEqual(self.deleted(device.remove_term("c", "t")[1]), [T])

    def test_the_last_term_takes_terms_with_it(self):
        self.do(*device.make_term("c", "t", 46))
        self.assertEqual(self.deleted(device.remove_term("c", "t")[1]), [C + "/terms"])

    def test_it_may_stand_above_the_subscribed_path(self):
        self.do(*device.make_term("c", "t", 46), *device.make_term("c", "u", 1))
        self.assertEqual(
            self.deleted(device.remove_term("c", "t")[1], subscribed=T + "/state/id"), [T])

    def test_it_never_takes_what_stays(self):
        self.do(configured(dscp=46))
        self.assertEqual(self.deleted('{"openconfig": {}}'), [C + "/config", C + "/terms"])

    def test_a_leaf_goes_in_the_notification_of_what_takes_its_place(self):
        self.do(configured(dscp=46))
        with self.client.subscribe(T + "/conditions/ipv4/state", encoding="PROTO") as stream:
            stream.until_sync()
            self.do(configured(dscp_set=[1, 2]))
            self.assertEqual(texts(stream.next()), ([DSCP], {DSCP_SET: [1, 2]}))

    def test_a_target_group_that_is_cleared_is_a_delete_of_the_leaf(self):
        self.do(json.dumps({"openconfig": device.configuration({"c": {"t": (46, "g")}}, ["g"])}))
        with self.client.subscribe(T, encoding="PROTO") as stream:
            stream.until_sync()
            self.assertEqual(stream.tree[rules.TARGET_GROUP], "g")
            self.do(json.dumps({"openconfig": device.configuration({"c": {"t": (46, None)}})}))
            gone = set()
            while rules.TARGET_GROUP in stream.tree:
                gone |= set(texts(stream.next())[0])
            self.assertEqual(gone, {rules.TARGET_GROUP, T + "/actions/config/target-group"})

    def test_an_empty_target_group_is_never_sent(self):
        self.do(configured(dscp=46))
        with self.client.subscribe("/qos", mode="ONCE") as stream:
            stream.until_sync()
        self.assertNotIn(rules.TARGET_GROUP, stream.tree)


class LeafList(Case):
    def test_its_value_is_whole(self):
        self.do(configured(dscp_set=[10, 12]))
        with self.client.subscribe(DSCP_SET, encoding="PROTO") as stream:
            stream.until_sync()
            self.do(configured(dscp_set=[10, 12, 14]))
            self.assertEqual(texts(stream.next()), ([], {DSCP_SET: [10, 12, 14]}))

    def test_it_is_not_addressable_by_element(self):
        with self.fails(Code.INVALID_ARGUMENT, "dscp-set"):
            self.client.get(DSCP_SET + "[dscp-set=10]")


class Atomic(Case):
    def test_it_is_false(self):
        self.do(configured(dscp=46))
        with self.client.subscribe("/qos", mode="ONCE") as stream:
            self.assertEqual({one.atomic for one in stream.until_sync()}, {False})


class Timestamp(Case):
    def test_it_tells_when_the_state_changed_and_never_decreases(self):
        with self.client.subscribe(DSCP, encoding="PROTO") as stream:
            stream.until_sync()
            stamps = []
            before = time.time_ns()
            for dscp in range(1, 6):
                self.do(*device.make_term("c", "t", dscp))
            after = time.time_ns()
            while stream.tree.get(DSCP) != 5:
                stamps.append(stream.next().timestamp)
            self.assertEqual(stamps, sorted(stamps))
            self.assertTrue(before <= stamps[0] and stamps[-1] <= after)

    def test_it_is_not_when_the_message_was_sent(self):
        self.do(*device.make_term("c", "t", 46))
        after = time.time_ns()
        with self.client.subscribe(DSCP, mode="ONCE") as stream:
            (notification,) = stream.until_sync()
        self.assertLess(notification.timestamp, after)


class QosMarkingAliasesUseModels(Case):
    def test_a_marking_is_ignored(self):
        with self.client.subscribe("/qos", mode="ONCE", qos={"marking": 46}) as stream:
            stream.until_sync()

    def test_another_model_is_unimplemented(self):
        for name in ("openconfig-qos", "openconfig-interfaces"):
            models = [{"name": name}]
            if name == "openconfig-qos":
                self.client.get("/", use_models=models)
                self.client.subscribe("/qos", mode="ONCE", use_models=models).until_sync()
                continue
            with self.fails(Code.UNIMPLEMENTED, name):
                self.client.get("/", use_models=models)
            with self.fails(Code.UNIMPLEMENTED, name):
                self.client.subscribe("/qos", use_models=models).next()


if __name__ == "__main__":
    rules.main()
