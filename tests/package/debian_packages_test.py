#!/usr/bin/env python3
"""Makes the Debian packages of a build, installs them into a folder, and uses them there.

    debian_packages_test.py BUILD SOURCE
"""

import io
import os
import re
import shutil
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
NAMES = {"qos-agent", "qos-agent-gnmi", "libqosplatform0", "libqosplatform-dev"}
CONFIGURATION = SOURCE / "examples/openconfig/configuration.json"
ENABLED = "etc/systemd/system/sockets.target.wants/qos-agent.socket"
CMAPS = "qos/status/cmapTypeStatus/mapQos/cmapStatus"


def output_of(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, check=True, timeout=120,
                          **options).stdout


def dpkg(root, *arguments):
    as_root = [] if os.geteuid() == 0 else ["fakeroot"]
    return output_of(*as_root, "dpkg", f"--root={root}", "--log=/dev/null", "--force-not-root",
                     "--force-script-chrootless", "--force-depends", *arguments)


def new_root(folder, installed=None):
    (folder / "var/lib/dpkg/info").mkdir(parents=True)
    (folder / "var/lib/dpkg/updates").mkdir()
    (folder / "var/lib/dpkg/status").touch()
    dpkg(folder, "-i", *(installed or packages()))
    return folder


def packages():
    return [package for package in sorted(PACKAGES.glob("*.deb"))
            if "-dbgsym_" not in package.name]


def earlier_packages(folder):
    """The same packages, of the version before."""
    made = []
    for package in packages():
        tree = folder / package.stem
        output_of("dpkg-deb", "-R", package, tree)
        control = tree / "DEBIAN/control"
        version = re.search(r"(?m)^Version: (.*)$", control.read_text())[1]
        control.write_text(control.read_text().replace(f"Version: {version}", "Version: 0.0.9")
                           .replace(f"(= {version})", "(= 0.0.9)"))
        made.append(folder / f"{package.name.split('_')[0]}.deb")
        output_of("dpkg-deb", "--root-owner-group", "-b", tree, made[-1])
    return made


def files_in(root):
    return [path for path in root.rglob("*")
            if not path.is_dir() and not path.is_relative_to(root / "var/lib/dpkg")]


def configured_in(root):
    """What is left but the state of the tool that enables units."""
    return [path for path in files_in(root) if not path.is_relative_to(root / "var/lib/systemd")]


def setUpModule():
    output_of(SOURCE / "scripts/pack", BUILD, PACKAGES,
              env={**os.environ, "SOURCE_DATE_EPOCH": str(DATE)})


class DebianPackagesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.root = new_root(Path(cls.folder.name))
        cls.library = next(cls.root.glob("usr/lib/*/libqosplatform.so.0"))
        cls.environment = {**os.environ, "LD_LIBRARY_PATH": str(cls.library.parent)}

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def agent(self, *arguments):
        return output_of(self.root / "usr/bin/qos-agent", *arguments, stdin=subprocess.DEVNULL,
                         env=self.environment)

    def test_are_four_that_can_be_installed(self):
        listed = output_of("dpkg-query", f"--admindir={self.root}/var/lib/dpkg", "-W",
                           "-f=${Package} ${db:Status-Abbrev}\n")
        self.assertEqual(set(listed.splitlines()), {f"{name} ii " for name in NAMES})

    def test_hold_what_their_sums_say(self):
        self.assertEqual(dpkg(self.root, "--verify"), "")

    def test_depend_on_each_other_and_on_the_libraries_that_they_need(self):
        fields = {package.name.split("_")[0]: output_of("dpkg-deb", "-f", package, "Depends")
                  for package in packages()}
        self.assertRegex(fields["qos-agent"], r"libqosplatform0 \(= [\d.]+\), libc6 .*libstdc\+\+6")
        self.assertRegex(fields["qos-agent-gnmi"],
                         r"^qos-agent \(= [\d.]+\),.*libgrpc\+\+.*libqosplatform0")
        self.assertRegex(fields["libqosplatform-dev"], r"^libqosplatform0 \(= [\d.]+\)$")
        self.assertRegex(fields["libqosplatform0"], r"libc6 .*libstdc\+\+6")

    def test_tell_packages_of_plug_ins_what_to_depend_on(self):
        shlibs = next(self.root.glob("var/lib/dpkg/info/libqosplatform0*.shlibs"))
        self.assertRegex(shlibs.read_text(),
                         r"^libqosplatform 0 libqosplatform0 \(>= [\d.]+\)\n$")

    def test_have_stripped_binaries_that_look_nowhere_else_for_libraries(self):
        for binary in (self.root / "usr/bin/qos-agent", self.library,
                       self.root / "usr/lib/qos-agent/libQosOpenConfig.so",
                       self.root / "usr/lib/qos-agent/libqos-agent-gnmi.so"):
            with self.subTest(name=binary.name):
                self.assertNotRegex(output_of("readelf", "-SdW", binary),
                                    r"RUNPATH|RPATH|\.symtab|\.debug_")

    def test_have_the_debugging_information_in_packages_of_their_own(self):
        listed = {package.name.split("_")[0]: output_of("dpkg-deb", "-c", package)
                  for package in PACKAGES.glob("*-dbgsym_*.deb")}
        self.assertEqual(set(listed), {"qos-agent-dbgsym", "qos-agent-gnmi-dbgsym",
                                       "libqosplatform0-dbgsym"})
        for name, binary in (("qos-agent-dbgsym", self.root / "usr/bin/qos-agent"),
                             ("libqosplatform0-dbgsym", self.library)):
            identity = re.search(r"Build ID: (\w+)", output_of("readelf", "-n", binary))[1]
            self.assertIn(f"/.build-id/{identity[:2]}/{identity[2:]}.debug", listed[name])

    def test_can_be_installed_beside_those_of_another_architecture(self):
        architecture = output_of("dpkg-architecture", "-q", "DEB_HOST_MULTIARCH").strip()
        self.assertEqual(self.library.parent.name, architecture)
        said = {package.name.split("_")[0]: output_of("dpkg-deb", "-f", package, "Multi-Arch")
                for package in packages()}
        self.assertEqual(said, {"qos-agent": "foreign\n", "qos-agent-gnmi": "no\n",
                                "libqosplatform0": "same\n", "libqosplatform-dev": "same\n"})

    def test_carry_the_pages_and_the_examples_that_they_speak_of(self):
        documents = self.root / "usr/share/doc/qos-agent"
        for folder in ("docs", "examples"):
            for page in (SOURCE / folder).rglob("*.*"):
                copy = documents / page.relative_to(SOURCE)
                self.assertEqual(copy.read_bytes(), page.read_bytes())
        self.assertIn("--output table", (documents / "README.md").read_text())
        for page in ("man1/qos-agent.1.gz", "man5/qos-agent-stream.5.gz"):
            self.assertTrue((self.root / "usr/share/man" / page).exists())

    def test_set_no_argument_of_the_service_unasked(self):
        lines = (self.root / "etc/default/qos-agent").read_text().splitlines()
        self.assertEqual([line for line in lines if line and not line.startswith("#")], [])
        self.assertTrue(any(line.startswith("#QOS_AGENT_ARGUMENTS=") for line in lines))

    def test_hold_nothing_of_the_time_at_which_they_were_made(self):
        for package in packages():
            with self.subTest(package=package.name):
                listed = subprocess.run(["dpkg-deb", "--fsys-tarfile", package], check=True,
                                        capture_output=True).stdout
                with tarfile.open(fileobj=io.BytesIO(listed)) as archive:
                    self.assertEqual({member.mtime for member in archive}, {DATE})

    def test_run(self):
        table = self.agent("--output", "table", CONFIGURATION)
        self.assertRegex(table, r"(?m)^edge-in-4 +IPV4 +voice +dscp 46\(EF\) +voice$")

    def test_serve_gnmi_once_its_package_is_installed_and_until_it_is_removed(self):
        serve = [self.root / "usr/bin/qos-agent", "--gnmi", "127.0.0.1:0", "--gnmi-insecure"]
        options = {"stdin": subprocess.DEVNULL, "stderr": subprocess.PIPE, "text": True,
                   "env": self.environment}
        with subprocess.Popen(serve, **options) as agent:
            self.assertRegex(agent.stderr.readline(), r"^qos-agent: gnmi on 127\.0\.0\.1:\d+$")
            agent.send_signal(signal.SIGTERM)
            self.assertEqual(agent.wait(60), 0)
        dpkg(self.root, "--remove", "qos-agent-gnmi")
        self.addCleanup(dpkg, self.root, "-i", *packages())
        refused = subprocess.run(serve, check=False, timeout=60, **options)
        self.assertEqual((refused.returncode, refused.stderr), (
            2, "qos-agent: --gnmi needs the package qos-agent-gnmi, which is not installed\n"))

    def test_do_not_listen_unasked(self):
        for unit in self.root.rglob("systemd/system/qos-agent.*"):
            self.assertNotIn("--gnmi", unit.read_text())

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
        self.assertIn(f"QosPlatform_DIR:PATH={self.library.parent}/cmake/QosPlatform\n", cache)

    def test_keep_what_was_configured_until_they_are_purged(self):
        with tempfile.TemporaryDirectory() as folder:
            folder = Path(folder)
            root = new_root(folder / "root", earlier_packages(folder))
            configured = {root / "etc/qos-agent/QosOpenConfig.json": "{}",
                          root / "etc/default/qos-agent": "QOS_AGENT_ARGUMENTS=--strict\n"}
            for file, text in configured.items():
                file.write_text(text)
            dpkg(root, "-i", *packages())
            self.assertNotIn("0.0.9", output_of(
                "dpkg-query", f"--admindir={root}/var/lib/dpkg", "-W", "-f=${Version}\n"))
            self.assertEqual({file: file.read_text() for file in configured}, configured)
            dpkg(root, "--remove", *NAMES)
            self.assertEqual(set(configured_in(root)), set(configured))
            dpkg(root, "--purge", *NAMES)
            self.assertEqual(files_in(root), [])

    def test_leave_no_unit_enabled_when_they_are_purged(self):
        with tempfile.TemporaryDirectory() as folder:
            root = new_root(Path(folder))
            enabled = root / ENABLED
            self.assertFalse(enabled.is_symlink())
            enabled.parent.mkdir(parents=True)
            enabled.symlink_to("/lib/systemd/system/qos-agent.socket")
            dpkg(root, "-i", *packages())
            self.assertTrue(enabled.is_symlink())
            dpkg(root, "--purge", *NAMES)
            self.assertFalse(enabled.is_symlink())

    def test_say_that_an_upgrade_empties_a_service_that_runs(self):
        for answer, expected in (("true", "restarts with an empty database"), ("false", "")):
            with self.subTest(active=answer), tempfile.TemporaryDirectory() as folder:
                tools = {"systemctl": answer, "deb-systemd-helper": "true",
                         "deb-systemd-invoke": "true"}
                for name, tool in tools.items():
                    Path(folder, name).symlink_to(shutil.which(tool))
                done = subprocess.run(
                    [self.root / "var/lib/dpkg/info/qos-agent.postinst", "configure", "0.0.9"],
                    env={"PATH": f"{folder}:{os.environ['PATH']}"}, capture_output=True,
                    text=True, check=True)
                self.assertRegex(done.stderr, expected or "^$")

    def test_start_a_service_that_follows_its_pipe(self):
        unit = next(self.root.rglob("systemd/system/qos-agent.service")).read_text()
        command = re.search(r"(?m)^ExecStart=/usr/(.*)$", unit)[1].split()
        command.remove("$QOS_AGENT_ARGUMENTS")
        with tempfile.TemporaryDirectory() as folder:
            pipe = Path(folder, "changes")
            os.mkfifo(pipe)
            # As systemd opens it: a writer that goes away is not the end.
            with open(os.open(pipe, os.O_RDWR), "rb") as stream, subprocess.Popen(
                    [self.root / "usr" / command[0],
                     *(part.replace("/run/qos-agent/service", folder) for part in command[1:])],
                    stdin=stream,
                    stdout=subprocess.PIPE, text=True, env=self.environment) as service:
                for name in ("voice", "video"):
                    pipe.write_text(f'{{"update": "{CMAPS}/{name}/match/matchIpv6AccessGroup",'
                                    ' "value": ""}\n')
                    self.assertIn(f"/classifier/{name}/state", service.stdout.readline())
                service.send_signal(signal.SIGTERM)
                self.assertEqual(service.wait(60), 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
