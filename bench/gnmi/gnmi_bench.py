#!/usr/bin/python3
"""Measures the agent's gNMI from outside, with Python's client.

    gnmi_bench.py PROGRAM [counts|times]

Times are what this client sees, an upper bound of the agent's; the client is slow. Instructions are
those of the project's own files, without gRPC's, counted by callgrind; they do not vary. A ratio that
exceeds its goal makes the status 1.
"""

import json
import os
import re
import statistics
import sys
import tempfile
import threading
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tests/gnmi"))
import device  # noqa: E402
from agent import Agent, Client  # noqa: E402

C = "/qos/classifiers/classifier[name=c]"
DSCP = C + "/terms/term[id=t{}]/conditions/ipv4/state/dscp"


def configure(agent, terms):
    document = device.configuration({"c": {f"t{at}": (at % 64, None) for at in range(terms)}})
    agent.lines.do(json.dumps({"openconfig": document}))


def set_dscp(client, term, dscp):
    client.set(update=[(f"{C}/terms/term[id=t{term}]/conditions/ipv4/config/dscp", str(dscp))])


def median_ms(action, rounds=200):
    times = []
    for round_ in range(rounds):
        begin = time.perf_counter()
        action(round_)
        times.append((time.perf_counter() - begin) * 1000)
    return statistics.median(times)


def resident_kib(agent):
    with open(f"/proc/{agent.process.pid}/statm") as statm:
        return int(statm.read().split()[1]) * 4


OURS = re.compile(r"qos-agent|libqosplatform|libQosOpenConfig")
GOAL = 1.2  # a Set of one term of 80,000 against one of 1,000


def own_instructions(dump):
    """The instructions of a dump of callgrind that were executed in the project's own files."""
    names, counted, is_ours, is_call = {}, 0, False, False
    for line in dump.read_text().splitlines():
        if line.startswith("ob="):
            number, _, name = line[3:].partition(" ")
            names.setdefault(number, name)
            is_ours = bool(OURS.search(names[number].rsplit("/", 1)[-1]))
        elif line.startswith("calls="):
            is_call = True  # what the callee took stands in the next line
        elif line[:1].isdigit() or line[:1] in "+-*":
            if is_ours and not is_call:
                counted += int(line.split()[1])
            is_call = False
    return counted


def instructions_of(program, terms, act, rounds):
    """Of the agent, from its start to its end, with `rounds` acts in between."""
    with tempfile.TemporaryDirectory() as folder:
        script = Path(folder, "counted")
        script.write_text(f"#!/bin/sh\nexec valgrind -q --tool=callgrind "
                          f"--callgrind-out-file={folder}/dump {os.path.abspath(program)} \"$@\"\n")
        script.chmod(0o755)
        with Agent(script) as agent, Client(agent.address) as client:
            configure(agent, terms)
            act(client, rounds)
            agent.stop()
        return own_instructions(Path(folder, "dump"))


def set_some(client, rounds):
    for round_ in range(rounds):
        set_dscp(client, 1, round_ % 2)


def publish_some(client, rounds):
    with client.subscribe(DSCP.format(1), encoding="PROTO") as stream:
        stream.until_sync()
        for round_ in range(rounds):
            set_dscp(client, 1, 40 + round_ % 2)
            stream.until(lambda tree: tree[DSCP.format(1)] == 40 + round_ % 2)


def once(client, rounds):
    for _ in range(rounds):
        client.subscribe("/qos", mode="ONCE", encoding="PROTO", patience=300).until_sync()


def count_one(program, terms, act, few, many):
    counts = [instructions_of(program, terms, act, rounds) for rounds in (few, many)]
    return (counts[1] - counts[0]) / (many - few)


def counts(program):
    sizes = (1000, 80_000)
    costs = [count_one(program, terms, set_some, 10, 110) for terms in sizes]
    for terms, cost in zip(sizes, costs):
        print(f"Set of one term of {terms:,}: {cost:,.0f} instructions")
    ratio = costs[1] / costs[0]
    print(f"ratio: {ratio:.2f}, goal {GOAL}")
    published = count_one(program, 1000, publish_some, 10, 110)
    print(f"the same with a subscriber: {published:,.0f} instructions")
    leaves = 4 * 1000 + 4
    print(f"initial sync, a leaf: {count_one(program, 1000, once, 1, 3) / leaves:,.0f} instructions")
    return 0 if ratio <= GOAL else 1


def set_of_one_term(program):
    medians = []
    for terms in (1000, 80_000):
        with Agent(program) as agent, Client(agent.address) as client:
            configure(agent, terms)
            set_dscp(client, 1, 0)
            medians.append(median_ms(lambda round_: set_dscp(client, 1, round_ % 2)))
            print(f"Set of one term of {terms}: {medians[-1]:.2f} ms")
    print(f"ratio: {medians[1] / medians[0]:.2f}")


def from_answer_to_update(program):
    with Agent(program) as agent, Client(agent.address) as client:
        configure(agent, 1000)
        with client.subscribe(DSCP.format(1), encoding="PROTO") as stream:
            stream.until_sync()
            delays = []
            for round_ in range(200):
                set_dscp(client, 1, 40 + round_ % 2)
                begin = time.perf_counter()
                while stream.tree[DSCP.format(1)] != 40 + round_ % 2:
                    stream.next()
                delays.append((time.perf_counter() - begin) * 1000)
        print(f"from a Set's answer to the update: {statistics.median(delays):.2f} ms")


def changes_to_streams(program, count, changes=2000):
    with Agent(program) as agent, Client(agent.address) as client:
        agent.lines.do(*device.make_term("c", "t1", 0))
        before = resident_kib(agent)
        streams = [client.subscribe(DSCP.format(1), encoding="PROTO") for _ in range(count)]
        for stream in streams:
            stream.until_sync()
        each = (resident_kib(agent) - before) / count
        readers = [threading.Thread(
            target=lambda stream=stream: stream.until(lambda tree: tree[DSCP.format(1)] == 63))
            for stream in streams]
        begin = time.perf_counter()
        for reader in readers:
            reader.start()
        rules = [device.line("update", f"{device.ACL}/openconfig:c:t1/aclSubConfig", {
            "ipRuleById": {str(dscp): {"filter": {"dscpValue": dscp, "dscpEnabled": True}}},
            "ruleIdBySequence": {"10": dscp}}) for dscp in (1, 2)]
        for _ in range(changes // 100):
            agent.lines.do(*(rules * 50))
        agent.lines.do(*device.make_term("c", "t1", 63))
        for reader in readers:
            reader.join()
        seconds = time.perf_counter() - begin
        print(f"{count} streams: {changes / seconds:.0f} changes a second, {each:.0f} KiB a stream")


def initial_sync(program, terms=80_000):
    with Agent(program) as agent, Client(agent.address) as client:
        configure(agent, terms)
        begin = time.perf_counter()
        with client.subscribe("/qos", encoding="PROTO", patience=300) as stream:
            leaves = sum(len(notification.update) for notification in stream.until_sync())
        seconds = time.perf_counter() - begin
        print(f"initial sync of {leaves} leaves: {leaves / seconds:.0f} leaves a second")


def times(program):
    set_of_one_term(program)
    from_answer_to_update(program)
    for count in (1, 8, 64):
        changes_to_streams(program, count)
    initial_sync(program)


def main(program, what="both"):
    status = counts(program) if what != "times" else 0
    if what != "counts":
        times(program)
    return status


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
