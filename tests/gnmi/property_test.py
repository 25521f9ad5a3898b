#!/usr/bin/python3
"""Random lines and documents, after each of which one tree has to come out of everything: folded
from a stream, once, by Get, and as the agent prints it.

    property_test.py PROGRAM [SEED [STEPS]]
"""

import json
import random
import sys

import device
from agent import Agent, Client

KEYS = {"classifier": "name", "term": "id"}


def leaves(node, at=""):
    """The leaves of `state` in an RFC 7951 document, by their paths."""
    found = {}
    for member, value in node.items():
        name = member.split(":")[-1]
        if isinstance(value, dict):
            found |= leaves(value, f"{at}/{name}")
        elif isinstance(value, list) and value and isinstance(value[0], dict):
            for entry in value:
                found |= leaves(entry, f"{at}/{name}[{KEYS[name]}={entry[KEYS[name]]}]")
        elif at.endswith("/state"):
            found[f"{at}/{name}"] = value
    return found


class Play:
    def __init__(self, agent, client, seed):
        self.agent, self.client, self.random = agent, client, random.Random(seed)

    def line(self):
        classifier, term = self.random.choice("abc"), self.random.choice(["t", "u/v", "w~x"])
        what = self.random.randrange(10)
        if what < 4:
            values = [self.random.randrange(64) for _ in range(self.random.randrange(4))]
            return device.make_term(classifier, term.replace("/", "-"), *values)
        if what < 7:
            return device.remove_term(classifier, term.replace("/", "-"))
        if what < 9:
            terms = {name: (self.random.randrange(64), self.random.choice([None, "gold", "tin"]))
                     for name in self.random.sample("tuvw", self.random.randrange(4))}
            return [json.dumps({"openconfig": device.configuration(
                {name: terms for name in self.random.sample("abc", 2)}, ["gold", "tin"])})]
        return ['{"openconfig": {}}']

    def printed(self):
        return leaves(json.loads(self.agent.lines.do('{"print": "openconfig"}')[0]))

    def once(self):
        with self.client.subscribe("/qos", mode="ONCE", encoding="PROTO") as stream:
            stream.until_sync()
            return stream.tree

    def got(self):
        return dict(self.client.get("/", type="STATE", encoding="PROTO")[0])


def state_of(tree):
    return {text: value for text, value in tree.items() if "/state/" in text}


def main(program, seed=1, steps=60):
    with Agent(program) as agent, Client(agent.address) as client:
        play = Play(agent, client, int(seed))
        with client.subscribe("/qos", encoding="PROTO") as stream:
            stream.until_sync()
            for step in range(int(steps)):
                lines = play.line()
                agent.lines.do(*lines)
                expected = play.printed()
                # What the stream says last is what was true last.
                stream.until(lambda tree: state_of(tree) == expected)
                once = play.once()
                assert state_of(once) == expected, (seed, step, lines)
                assert play.got() == expected, (seed, step, lines)
                assert stream.tree == once, (seed, step, lines)
                assert stream.faults == [], stream.faults
    print(f"{steps} steps with seed {seed}")


if __name__ == "__main__":
    main(*sys.argv[1:])
