#!/usr/bin/python3
"""Random lines, documents and Sets, after each of which one tree has to come out of everything: folded
from a stream, once, by Get, and as the agent prints it.

    property_test.py PROGRAM [SEED [STEPS]]
"""

import json
import random
import sys

import grpc

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
    """Makes random changes, by all ways in."""

    def __init__(self, agent, client, seed):
        self.agent, self.client, self.random = agent, client, random.Random(seed)

    def change(self):
        """Does one thing; returns it, to tell what went wrong."""
        way = self.random.choice([self.make_term, self.remove_term, self.configure, self.configure,
                                  self.set, self.set, self.set, self.clear])
        what = way()
        if what is not None:
            self.agent.lines.do(*what)
        return way.__name__, what

    def names(self):
        return self.random.choice("abc"), self.random.choice(["t", "u~v", "w x"])

    def make_term(self):
        values = [self.random.randrange(64) for _ in range(self.random.randrange(4))]
        return device.make_term(*self.names(), *values)

    def remove_term(self):
        return device.remove_term(*self.names())

    def clear(self):
        return ['{"openconfig": {}}']

    def terms(self):
        return {name: (self.random.randrange(64), self.random.choice([None, "gold", "tin"]))
                for name in self.random.sample("tuvw", self.random.randrange(4))}

    def document(self):
        return device.configuration(
            {name: self.terms() for name in self.random.sample("abc", 2)}, ["gold", "tin"])

    def configure(self):
        return [json.dumps({"openconfig": self.document()})]

    def set(self):
        """A Set that may be refused, which then changes nothing."""
        classifier = f"/qos/classifiers/classifier[name={self.random.choice('abc')}]"
        term = f"{classifier}/terms/term[id={self.random.choice('tuvw')}]"
        dscps = json.dumps(self.random.sample(range(64), 2))
        edits = {"delete": [classifier, term, term + "/actions", "/qos/.../term[id=t]", "/"],
                 "replace": [("/", json.dumps(self.document())),
                             (term + "/conditions/ipv4/config", '{"dscp-set": %s}' % dscps)],
                 "update": [(term + "/conditions/ipv4/config/dscp", dscps.split(",")[0][1:]),
                            (term + "/conditions/ipv4/config/dscp-set", dscps),
                            (term + "/actions/config/target-group", '"tin"')]}
        chosen = {name: self.random.sample(all_of, self.random.randrange(2))
                  for name, all_of in edits.items()}
        try:
            self.client.set(**chosen)
        except grpc.RpcError as error:
            assert error.code() == grpc.StatusCode.INVALID_ARGUMENT, (chosen, error)

    def printed(self):
        return leaves(json.loads(self.agent.lines.do('{"print": "openconfig"}')[0]))

    def once(self):
        with self.client.subscribe("/qos", mode="ONCE", encoding="PROTO") as stream:
            stream.until_sync()
            return stream.tree

    def got(self, kind):
        return {text: value for text, value
                in self.client.get("/", type=kind, encoding="PROTO")[0]
                if text.split("/")[-2] in ("config", "state")}


def state_of(tree):
    return {text: value for text, value in tree.items() if text.split("/")[-2] == "state"}


def main(program, seed=1, steps=100):
    with Agent(program) as agent, Client(agent.address) as client:
        play = Play(agent, client, int(seed))
        with client.subscribe("/qos", encoding="PROTO", patience=60) as stream:
            stream.until_sync()
            for step in range(int(steps)):
                where = seed, step, play.change()
                once = play.once()
                assert state_of(once) == play.printed(), where
                assert play.got("STATE") == state_of(once), where
                assert play.got("ALL") == once, where
                # What the stream says last is what was true last.
                stream.until(lambda tree: tree == once)
                assert stream.faults == [], (where, stream.faults)
    print(f"{steps} steps with seed {seed}")


if __name__ == "__main__":
    main(*sys.argv[1:])
