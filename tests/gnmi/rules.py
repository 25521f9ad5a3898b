"""What the tests of the rules share: an agent and a client for each test."""

import sys
import unittest

import grpc

from agent import Agent, Client

Code = grpc.StatusCode

C = "/qos/classifiers/classifier[name=c]"
T = C + "/terms/term[id=t]"
DSCP = T + "/conditions/ipv4/state/dscp"
DSCP_SET = T + "/conditions/ipv4/state/dscp-set"
TARGET_GROUP = T + "/actions/state/target-group"
CLASSIFIER_LEAVES = {C + "/state/name": "c", C + "/state/type": "IPV4"}
TERM_LEAVES = {T + "/state/id": "t", DSCP: 46}

PROGRAM = None


def main():
    """Runs the tests of the calling module: PROGRAM [arguments of unittest]."""
    global PROGRAM
    PROGRAM = sys.argv.pop(1)
    unittest.main()


class Case(unittest.TestCase):
    """A test with an agent of its own: classifiers outlive what made them."""

    environment = {}

    def setUp(self):
        self.agent = self.enterContext(Agent(PROGRAM, environment=self.environment))
        self.client = self.enterContext(Client(self.agent.address))

    def do(self, *lines):
        """Applies change-stream lines, none of which may be refused."""
        self.assertEqual(self.agent.lines.do(*lines), [])

    def fails(self, code, *words):
        return Failure(self, code, words)


class Failure:
    """A `with` whose body must fail with a code (None: any), and a text that has the words."""

    def __init__(self, test, code, words):
        self.test, self.code, self.words = test, code, words

    def __enter__(self):
        return self

    def __exit__(self, kind, error, _):
        if error is not None and not isinstance(error, grpc.RpcError):
            return False
        self.test.assertIsNotNone(error, f"succeeded instead of {self.code}")
        if self.code is not None:
            self.test.assertEqual(error.code(), self.code, error.details())
        for word in self.words:
            self.test.assertIn(word, error.details())
        return True
