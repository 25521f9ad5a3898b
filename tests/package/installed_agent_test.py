#!/usr/bin/env python3
"""Runs the installed qos-agent.

    installed_agent_test.py PREFIX CENSUS_PLUG_IN [--shipped]

With --shipped it is built as it is shipped; sanitizers want more address space than can be given.
"""

import json
import re
import resource
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PREFIX = Path(sys.argv[1])
CENSUS = Path(sys.argv[2])
TOGGLES = PREFIX / "etc/qos-agent/QosOpenConfig.json"
STATE = "qos/openconfig/state/classifiers"

CLASS_MAPS = {"qos/status": {"cmapTypeStatus": {
    "mapQos": {"cmapStatus": {
        "voice": {"match": {"matchIpAccessGroup": "voice4"}},
        "video": {"match": {"matchIpv6AccessGroup": "video6"}}}},
    "mapPbr": {"cmapStatus": {"detour": {}}}}}}
CHANGES = [
    {"update": "qos/status/cmapTypeStatus/mapQos/cmapStatus/bulk", "value": {}},
    {"delete": "qos/status/cmapTypeStatus/mapPbr/cmapStatus/detour"},
    {"update": "qos/status/cmapTypeStatus/mapCopp/cmapStatus/control", "value": {}},
]
#: Bytes: enough to start, and less than a document of 200,000 class maps takes.
MEMORY_LIMIT = 64 << 20
TRACE_LINE = re.compile(
    r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z ClassMapCensus/8 CensusSm\.cpp:\d+ (.*)")


class InstalledAgentTest(unittest.TestCase):
    def run_agent(self, *arguments):
        """Runs it on CLASS_MAPS and CHANGES; the lines on its standard output and error."""
        with tempfile.TemporaryDirectory() as folder:
            document, changes = Path(folder) / "maps.json", Path(folder) / "changes.jsonl"
            document.write_text(json.dumps(CLASS_MAPS), encoding="utf-8")
            changes.write_text("".join(json.dumps(change) + "\n" for change in CHANGES),
                               encoding="utf-8")
            done = subprocess.run(
                [PREFIX / "bin/qos-agent", *arguments, document, changes],
                capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout.splitlines(), done.stderr.splitlines()

    def test_runs_a_plug_in_built_out_of_tree(self):
        output, trace = self.run_agent("--plugin", CENSUS, "--trace", "ClassMapCensus/8",
                                       "--output", "none")
        self.assertEqual(output, [])
        counts = [TRACE_LINE.fullmatch(line).group(1) for line in trace]
        start = ["handleCmapStatus class maps of mapQos: 2",
                 "handleCmapStatus class maps of mapPbr: 1"]
        self.assertCountEqual(counts[:2], start)
        self.assertEqual(counts[2:], ["handleCmapStatus class maps of mapQos: 3",
                                      "handleCmapStatus class maps of mapPbr: 0",
                                      "handleCmapStatus class maps of mapCopp: 1"])

    def test_shows_the_machines_of_a_plug_in_built_out_of_tree(self):
        output, complaints = self.run_agent("--plugin", CENSUS, "--output", "none", "--machines")
        self.assertEqual(complaints, [])
        self.assertEqual(output[:3],
                         ["Census::CensusSm", "  status: Qos::Status qos/status", "  typeSm:"])
        machines = [line for line in output if "Census::TypeSm" in line]
        self.assertCountEqual(machines, [f"    Census::TypeSm {name}"
                                         for name in ("mapQos", "mapPbr", "mapCopp")])

    def test_finds_its_own_plug_in(self):
        output, complaints = self.run_agent("--output", "entities")
        self.assertEqual(complaints, [])
        classifiers = json.loads("\n".join(output))[STATE]["classifier"]
        self.assertEqual({name: entry["state"]["type"] for name, entry in classifiers.items()},
                         {"voice": "IPV4", "video": "IPV6"})

    def test_heeds_the_installed_toggles(self):
        self.addCleanup(TOGGLES.write_bytes, TOGGLES.read_bytes())
        TOGGLES.write_text('{"OCQosClassifierStatePath": false}', encoding="utf-8")
        output, complaints = self.run_agent("--output", "entities")
        self.assertEqual(complaints,
                         [f'{TOGGLES}: warning: the toggle "OCQosClassifierStatePath" is off: '
                          'what it enables does not run'])
        self.assertEqual(json.loads("\n".join(output))[STATE], {})

    @unittest.skipUnless("--shipped" in sys.argv, "not built as it is shipped")
    def test_ends_with_one_line_where_the_memory_is_limited(self):
        """At the limit of the unit, MemoryMax, the kernel ends it: that takes a service manager."""
        class_maps = {f"class-{number}": {} for number in range(200_000)}
        with tempfile.TemporaryDirectory() as folder:
            document = Path(folder) / "maps.json"
            document.write_text(json.dumps({"qos/status": {"cmapTypeStatus": {
                "mapQos": {"cmapStatus": class_maps}}}}), encoding="utf-8")
            done = subprocess.run(
                [PREFIX / "bin/qos-agent", "--output", "none", document], capture_output=True,
                text=True, timeout=60, check=False, preexec_fn=lambda: resource.setrlimit(
                    resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT)))
        self.assertEqual((done.returncode, done.stdout, done.stderr),
                         (2, "", "qos-agent: out of memory\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
