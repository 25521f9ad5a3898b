"""Names, numbers and shapes chosen so that they cost as much as they can: ten times as much of
them must not cost much more than ten times as much."""

import json
import random

WORD = (1 << 64) - 1
FACTOR = 0x9E3779B97F4A7C15  # of multiplicative hashing
SMALL, LARGE = 1000, 10000


def colliding_names(number):
    """Names of 16 bytes that a hash which multiplies words by a known factor cannot tell apart."""
    draw = random.Random(20)
    names = set()
    while len(names) < number:
        first = draw.getrandbits(64) & 0x7F7F7F7F7F7F7F7F
        state = ((16 * FACTOR & WORD) ^ first) * FACTOR & WORD
        second = state ^ state >> 32
        if second & 0x8080808080808080 == 0:
            # The rest of a text is read as two halves, the first one above.
            names.add(first.to_bytes(8, "little") + (second >> 32).to_bytes(4, "little") +
                      (second & 0xFFFFFFFF).to_bytes(4, "little"))
    return sorted(name.decode() for name in names)


def class_maps(names):
    return json.dumps({"qos/status": {"cmapTypeStatus": {"mapQos": {"cmapStatus": {
        name: {"match": {"matchIpAccessGroup": ""}} for name in names}}}}})


def groups(pairs):
    return json.dumps({"qos/input/config/cli": {"forwardingGroupNameToTcMap": {
        "tc": dict(pairs)}}})


def rules(identifiers):
    return json.dumps({"acl/config/cli": {"aclTypeConfig": {"ipv4": {"aclConfig": {"list": {
        "aclSubConfig": {
            "ruleIdBySequence": {str(at + 1): identifier
                                 for at, identifier in enumerate(identifiers)},
            "ipRuleById": {str(identifier): {} for identifier in identifiers}}}}}}}})


def openconfig(members):
    return json.dumps({"openconfig-qos:qos": members})


def classifiers(names):
    return openconfig({"classifiers": {"classifier": [
        {"name": name, "config": {"name": name, "type": "IPV4"}} for name in names]}})


# Each makes a document of that many things.
CASES = {
    "class maps whose names collide": lambda number: class_maps(colliding_names(number)),
    "forwarding groups whose names collide":
        lambda number: groups((name, 1) for name in colliding_names(number)),
    "classifiers whose names collide": lambda number: classifiers(colliding_names(number)),
    "traffic classes that descend": lambda number: groups(
        (f"group-{at}", number - at) for at in range(number)),
    "rules in descending order": lambda number: rules(range(number, 0, -1)),
    "members with the module's prefix": lambda number: openconfig(
        {f"openconfig-qos:unknown-{at}": 1 for at in range(number)}),
    "members that are unknown": lambda number: openconfig(
        {f"unknown-{at}": 1 for at in range(number)}),
    "members in descending order": lambda number: class_maps(
        f"name-{at:06}" for at in range(number, 0, -1)),
    "lists in lists": lambda number: '{"openconfig-qos:qos":{"unknown":['
                                     + ",".join(["[]"] * number) + "]}}",
    "escapes in a text": lambda number: class_maps(["\n" * number]),
}


def count_hostile(figures, program):
    """The growth of what a document costs, for each case."""
    empty = program.instructions("--output", "none", program.file("empty.json", "{}"))
    for name, document in CASES.items():
        costs = [program.instructions("--output", "none", program.file("hostile.json",
                                                                       document(number))) - empty
                 for number in (SMALL, LARGE)]
        figures.at("hostile", f"hostile: {name}", LARGE, unit="ratio").cost["ours"] = (
            costs[1] / costs[0])
