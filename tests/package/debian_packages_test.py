#!/usr/bin/env python3
"""Makes the Debian packages of a build, installs them into a folder, and uses them there.

    debian_packages_test.py BUILD SOURCE
"""

import io
import os
import re
import signal
import subprocess
import sys
import tarfile
import tempfile
import unittest
from pathlib import Path

BUILD = Path(sys.argv[1])
SOURCE = Path(sys.argv[2])
PACKAGES = BUILD / "tests/packages"
DATE = 1_000_000_000
NAMES = {"qos-agent", "libqosplatform0", "libqosplatform-dev"}
CONFIGURATION = SOURCE / "examples/openconfig/configuration.json"
CMAPS = "qos/status/cmapTypeStatus/mapQos/cmapStatus"


def output_of(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, check=True, timeout=120,
                          **options).stdout


def dpkg(root, *arguments):
    as_root = [] if os.geteuid() == 0 else ["fakeroot"]
    return output_of(*as_root, "dpkg", f"--root={root}", "--log=/dev/null", "--force-not-root",
                     "--force-script-chrootless", "--force-depends", *arguments)


def new_root(folder):
    (folder / "var/lib/dpkg/info").mkdir(parents=True)
    (folder / "var/lib/dpkg/updates").mkdir()
    (folder / "var/lib/dpkg/status").touch()
    dpkg(folder, "-i", *packages())
    return folder


def packages():
    return sorted(PACKAGES.glob("*.deb"))


def files_in(root):
    return [path for path in root.rglob("*")
            if not path.is_dir() and not path.is_relative_to(root / "var/lib/dpkg")]


def setUpModule():
    for package in packages():
        package.unlink()
    output_of("cpack", "--config", BUILD / "CPackConfig.cmake", "-B", PACKAGES,
              env={**os.environ, "SOURCE_DATE_EPOCH": str(DATE)})


class DebianPackagesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.root = new_root(Path(cls.folder.name))
        cls.environment = {**os.environ, "LD_LIBRARY_PATH": str(cls.root / "usr/lib")}

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def agent(self, *arguments):
        return output_of(self.root / "usr/bin/qos-agent", *arguments, stdin=subprocess.DEVNULL,
                         env=self.environment)

    def test_are_three_that_can_be_installed(self):
        listed = output_of("dpkg-query", f"--admindir={self.root}/var/lib/dpkg", "-W",
                           "-f=${Package} ${db:Status-Abbrev}\n")
        self.assertEqual(set(listed.splitlines()), {f"{name} ii " for name in NAMES})

    def test_hold_what_their_sums_say(self):
        self.assertEqual(dpkg(self.root, "--verify"), "")

    def test_depend_on_each_other_and_on_the_libraries_that_they_need(self):
        fields = {package.name.split("_")[0]: output_of("dpkg-deb", "-f", package, "Depends")
                  for package in packages()}
        self.assertRegex(fields["qos-agent"], r"libqosplatform0 \(= [\d.]+\), libc6 .*libstdc\+\+6")
        self.assertRegex(fields["libqosplatform-dev"], r"^libqosplatform0 \(= [\d.]+\)$")
        self.assertRegex(fields["libqosplatform0"], r"libc6 .*libstdc\+\+6")

    def test_tell_packages_of_plug_ins_what_to_depend_on(self):
        shlibs = self.root / "var/lib/dpkg/info/libqosplatform0.shlibs"
        self.assertRegex(shlibs.read_text(),
                         r"^libqosplatform 0 libqosplatform0 \(>= [\d.]+\)\n$")

    def test_have_stripped_binaries_that_look_nowhere_else_for_libraries(self):
        for name in ("bin/qos-agent", "lib/libqosplatform.so.0", "lib/qos-agent/libQosOpenConfig.so"):
            with self.subTest(name=name):
                binary = self.root / "usr" / name
                self.assertNotRegex(output_of("readelf", "-SdW", binary),
                                    r"RUNPATH|RPATH|\.symtab|\.debug_")

    def test_hold_nothing_of_the_time_at_which_they_were_made(self):
        for package in packages():
            with self.subTest(package=package.name):
                listed = subprocess.run(["dpkg-deb", "--fsys-tarfile", package], check=True,
                                        capture_output=True).stdout
                with tarfile.open(fileobj=io.BytesIO(listed)) as archive:
                    self.assertEqual({member.mtime for member in archive}, {DATE})

    def test_run(self):
        table = self.agent("--output", "table", CONFIGURATION)
        self.assertRegex(table, r"(?m)^edge-in-4 +IPV4 +voice +dscp 46 +voice$")

    def test_heed_the_toggles_in_etc(self):
        toggles = self.root / "etc/qos-agent/QosOpenConfig.json"
        self.addCleanup(toggles.write_bytes, toggles.read_bytes())
        toggles.write_text('{"OCQosClassifierStatePath": false}')
        self.assertEqual(self.agent("--output", "openconfig", CONFIGURATION), "{}\n")

    def test_let_a_project_of_its_own_find_the_platform(self):
        with tempfile.TemporaryDirectory() as build:
            output_of("cmake", "-S", SOURCE / "examples/out-of-tree-plug-in", "-B", build,
                      f"-DCMAKE_PREFIX_PATH={self.root}/usr")
            cache = Path(build, "CMakeCache.txt").read_text()
        self.assertIn(f"QosPlatform_DIR:PATH={self.root}/usr/lib/cmake/QosPlatform\n", cache)

    def test_keep_what_was_configured_until_they_are_purged(self):
        with tempfile.TemporaryDirectory() as folder:
            root = new_root(Path(folder))
            toggles = root / "etc/qos-agent/QosOpenConfig.json"
            toggles.write_text("{}")
            dpkg(root, "-i", *packages())
            self.assertEqual(toggles.read_text(), "{}")
            dpkg(root, "--remove", *NAMES)
            self.assertEqual(files_in(root), [toggles])
            dpkg(root, "--purge", "qos-agent")
            self.assertEqual(files_in(root), [])

    def test_start_a_service_that_follows_its_pipe(self):
        unit = (self.root / "usr/lib/systemd/system/qos-agent.service").read_text()
        command = re.search(r"(?m)^ExecStart=/usr/(.*)$", unit)[1].split()
        command.remove("$QOS_AGENT_ARGUMENTS")
        with tempfile.TemporaryDirectory() as folder:
            pipe = Path(folder, "changes")
            os.mkfifo(pipe)
            # As systemd opens it: a writer that goes away is not the end.
            with open(os.open(pipe, os.O_RDWR), "rb") as stream, subprocess.Popen(
                    [self.root / "usr" / command[0], *command[1:]], stdin=stream,
                    stdout=subprocess.PIPE, text=True, env=self.environment) as service:
                for name in ("voice", "video"):
                    pipe.write_text(f'{{"update": "{CMAPS}/{name}/match/matchIpv6AccessGroup",'
                                    ' "value": ""}\n')
                    self.assertIn(f"/classifier/{name}/state", service.stdout.readline())
                service.send_signal(signal.SIGTERM)
                self.assertEqual(service.wait(60), 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
