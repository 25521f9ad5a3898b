#!/usr/bin/env python3
"""Holds this project's own modules to the public ones: each node must be there, and be the same.

    yang_model_test.py OWN PUBLIC
"""

import posixpath
import re
import subprocess
import sys
import unittest
from pathlib import Path

OWN, PUBLIC = (Path(argument) for argument in sys.argv[1:])
MODULES = ("openconfig-qos", "openconfig-inet-types")
NODE = re.compile(r"(?P<indent>[ |]*)\+--(?P<access>r[wo]) (?P<name>[^ ?*]+)(?P<kind>[?*]?)(?P<type>.*)")


def absolute(kind, at):
    """A reference as the path of what it refers to, however it is written; else the type."""
    if not kind.startswith("-> "):
        return kind
    return "-> " + posixpath.normpath(posixpath.join("/", at, kind.removeprefix("-> ")))


def read_tree(folder):
    """The nodes of openconfig-qos by path: access, kind (optional, list) and key or type."""
    printed = subprocess.run(
        ["yanglint", "-p", folder, "-f", "tree", folder / "openconfig-qos.yang"],
        check=True, capture_output=True, text=True).stdout
    nodes, path = {}, []
    for match in map(NODE.fullmatch, printed.splitlines()):
        if match:
            del path[len(match["indent"]) // 3:]
            path.extend([""] * (len(match["indent"]) // 3 - len(path)) + [match["name"]])
            at = "/".join(path)
            nodes[at] = (match["access"], match["kind"], absolute(match["type"].strip(), at))
    return nodes


def statement(folder, module, keyword):
    text = (folder / f"{module}.yang").read_text(encoding="utf-8")
    return re.search(rf'^\s*{keyword}\s+"?([^";]+)"?;', text, re.MULTILINE)[1]


class YangModelTest(unittest.TestCase):
    maxDiff = None

    def test_has_only_nodes_of_the_public_model(self):
        own, public = read_tree(OWN), read_tree(PUBLIC)
        self.assertGreater(len(own), 50)
        self.assertEqual(own, {path: public.get(path) for path in own})

    def test_has_the_public_namespaces(self):
        for module in MODULES:
            for keyword in ("namespace", "prefix"):
                self.assertEqual(statement(OWN, module, keyword),
                                 statement(PUBLIC, module, keyword))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
