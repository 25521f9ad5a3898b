#!/usr/bin/python3
"""Has a client of another make, of Node's packages, read and watch the agent.

    node_test.py PROGRAM

Skips, and says so, where npm or its registry is missing.
"""

import subprocess
import shutil
import sys
import tempfile
from pathlib import Path

import device
from agent import PROTO, Agent

SKIPPED = 77
PACKAGES = ("@grpc/grpc-js@1.9", "@grpc/proto-loader@0.7")
EXPECTED = """\
version 0.10.0 JSON,JSON_IETF,PROTO
get /qos/classifiers/classifier[name=c]/state {"openconfig-qos:name":"c","openconfig-qos:type":"IPV4"}
error UNIMPLEMENTED /interfaces: the served model, openconfig-qos, has no "interfaces"
set UPDATE /qos/queues/queue[name=q]
polled /qos/queues/queue[name=q]/config/name q
polled /qos/queues/queue[name=q]/config/name q
update /qos/classifiers/classifier[name=c]/state/name c
update /qos/classifiers/classifier[name=c]/state/type IPV4
sync
update /qos/classifiers/classifier[name=end]/state/name end
update /qos/classifiers/classifier[name=end]/state/type IPV4
"""


def install(folder):
    if shutil.which("npm") is None:
        return "npm is not installed"
    result = subprocess.run(["npm", "install", "--silent", "--no-audit", "--no-fund", *PACKAGES],
                            cwd=folder, capture_output=True, text=True, timeout=300)
    return None if result.returncode == 0 else "npm cannot install: " + result.stderr.strip()[-200:]


def main(program):
    with tempfile.TemporaryDirectory() as folder:
        if reason := install(folder):
            print("SKIPPED:", reason)
            return SKIPPED
        with Agent(program) as agent:
            agent.lines.do(*device.make_term("c", "t", 46))
            client = subprocess.Popen(
                ["node", str(Path(__file__).parent / "node/client.mjs"), agent.address, str(PROTO)],
                cwd=folder, stdout=subprocess.PIPE, text=True)
            seen = ""
            while (line := client.stdout.readline()):
                seen += line
                if line == "sync\n":
                    agent.lines.do(*device.make_term("end", "t", 1))
            client.wait(60)
    if seen != EXPECTED:
        print(f"expected:\n{EXPECTED}seen:\n{seen}")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
