#!/usr/bin/env python3
"""Runs ./run with scripts and a program in place of its own that only tell how they are called.

    run_test.py SOURCE
"""

import sys
import unittest
from pathlib import Path

from toy import Toy

TELL = '#!/bin/sh\necho "${0##*/} $*"\n'


class RunTest(Toy):
    source = Path(sys.argv[1])

    def setUp(self):
        super().setUp()
        for folder in ("build/release/bin", "agent/gnmi", "agent/http", "agent/lmdb",
                       "agent/redis"):
            (self.root / folder).mkdir(parents=True)
        for name in ("scripts/setup", "scripts/build", "build/release/bin/qos-agent"):
            program = self.root / name
            program.write_text(TELL)
            program.chmod(0o755)

    def expect_libraries(self, arguments, *libraries):
        sets = " ".join(("run", *libraries))
        targets = " ".join(("qos-agent QosOpenConfig",
                            *(f"qos-agent-{library}" for library in libraries)))
        self.assertEqual(
            self.run_script("run", *arguments),
            (0, f"setup {sets}\nbuild release {targets}\nqos-agent {' '.join(arguments)}\n", ""))

    def test_builds_the_program_and_the_plug_in_alone(self):
        self.expect_libraries(["--follow", "a.json"])
        self.expect_libraries(["--listen", "agent.sock"])

    def test_builds_what_serves_gnmi_if_asked_to(self):
        self.expect_libraries(["--gnmi", "127.0.0.1:0", "--gnmi-insecure"], "gnmi")
        self.expect_libraries(["--gnmi-insecure", "--gnmi=[::1]:0", "a.json"], "gnmi")

    def test_builds_what_serves_the_page_if_asked_to(self):
        self.expect_libraries(["--http-open", "--http", "0.0.0.0:0"], "http")
        self.expect_libraries(["--http=127.0.0.1:0"], "http")

    def test_builds_the_store_of_the_url(self):
        self.expect_libraries(["--store", "lmdb:/var/lib/qos"], "lmdb")
        self.expect_libraries(["--store=lmdb:redis"], "lmdb")
        self.expect_libraries(["--store", "redis://localhost/0?name=a"], "redis")
        self.expect_libraries(["--store=rediss://host/0?name=a"], "redis")
        self.expect_libraries(["--store", "redis+unix:///run/redis?name=a"], "redis")

    def test_builds_several_if_asked_to(self):
        self.expect_libraries(["--http", ":1", "--store", "lmdb:d", "--gnmi", ":2"],
                              "http", "lmdb", "gnmi")

    def test_leaves_a_library_that_there_is_not_to_the_program(self):
        (self.root / "agent/redis").rmdir()
        self.expect_libraries(["--store", "redis://localhost/0?name=a"])

    def test_tells_the_stories_without_arguments(self):
        (self.root / "examples").mkdir()
        status, printed, errors = self.run_script("run")
        self.assertEqual((status, errors), (0, ""))
        self.assertTrue(printed.startswith(
            "setup run\nbuild release qos-agent QosOpenConfig\n== openconfig/"), printed)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
