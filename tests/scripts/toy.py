"""A project of a few lines that has this project's scripts."""

import json
import os
import pty
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path


class Toy(unittest.TestCase):
    """Gives each test a folder with the scripts, and removes it afterwards."""

    source = None  # the project whose scripts are tried

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.root.chmod(0o755)
        shutil.copytree(self.source / "scripts", self.root / "scripts")
        for command in ("run", "test"):
            shutil.copy(self.source / command, self.root / command)

    def write_project(self, presets, cmake):
        """A project without a language, so that a build takes no time."""
        (self.root / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.25)\nproject(Toy LANGUAGES NONE)\n" + cmake)
        kinds = {
            "configurePresets": [{"name": name, "generator": "Ninja",
                                  "binaryDir": "${sourceDir}/build/${presetName}"}
                                 for name in presets],
            "testPresets": [{"name": name, "configurePreset": name} for name in presets]}
        (self.root / "CMakePresets.json").write_text(json.dumps({"version": 6, **kinds}))

    def run_script(self, name, *arguments, **options):
        """(status, standard output, standard error)"""
        done = subprocess.run([self.root / name, *arguments], capture_output=True, text=True,
                              check=False, timeout=60, **options)
        return done.returncode, done.stdout, done.stderr

    def run_on_terminal(self, name, *arguments):
        """What a terminal shows of the script's standard error."""
        ours, theirs = pty.openpty()
        with subprocess.Popen([self.root / name, *arguments], stderr=theirs) as script:
            os.close(theirs)
            shown = b""
            try:
                while read := os.read(ours, 4096):
                    shown += read
            except OSError:  # how a terminal says that nobody has it open
                pass
            os.close(ours)
            script.wait(60)
        return shown.decode()
