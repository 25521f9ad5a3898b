#!/usr/bin/python3
"""Measures the agent's gNMI from outside, with Python's client.

    gnmi_bench.py PROGRAM

The client is slow: what a table shows is what this client sees, an upper bound of the agent's time.
"""

import json
import statistics
import sys
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
            "ruleIdBySequence": {"10": str(dscp)}}) for dscp in (1, 2)]
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
        with client.subscribe("/qos", encoding="PROTO") as stream:
            leaves = sum(len(notification.update) for notification in stream.until_sync())
        seconds = time.perf_counter() - begin
        print(f"initial sync of {leaves} leaves: {leaves / seconds:.0f} leaves a second")


def main(program):
    set_of_one_term(program)
    from_answer_to_update(program)
    for count in (1, 8, 64):
        changes_to_streams(program, count)
    initial_sync(program)


if __name__ == "__main__":
    main(sys.argv[1])
