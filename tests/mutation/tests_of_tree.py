"""Runs tests with a mutant: those that come to its place, the most specific first."""

import os
import queue
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path
from tempfile import TemporaryDirectory

# Not fewer than in Mutant.h.
MOST_MUTANTS = 1 << 17
# Enough to have the likely killers run first, few enough to be done soon.
FIRST_TESTS = 12
MOST_TESTS_AT_ONCE = 500
SECONDS_MORE = 5
SLOWDOWN = 8
SANITIZER = "detect_leaks=1:max_allocation_size_mb=1024:handle_abort=0:symbolize=0"


class BaselineFailed(Exception):
    """A test fails without any mutant."""


class Tests:
    """The tests of some executables, run in `folder`; mutants by number."""

    def __init__(self, executables, folder):
        self.executables, self.folder = executables, folder
        self.environment = {**os.environ, "ASAN_OPTIONS": SANITIZER, "GTEST_BRIEF": "1"}
        self.seconds = {}  # (executable, test) -> seconds without a mutant
        self.reached = {}  # (executable, test) -> numbers of mutants
        self.idle = {executable: queue.SimpleQueue() for executable in executables}

    def record(self):
        """Runs all tests without a mutant, and notes to which mutants each comes."""
        with TemporaryDirectory() as folder, ThreadPoolExecutor(os.cpu_count()) as pool:
            def run(executable):
                path = Path(folder) / executable.name
                marks = path.with_suffix(".marks")
                marks.write_bytes(bytes(MOST_MUTANTS))
                environment = {**self.environment, "QOS_RECORD_MUTANTS": str(path),
                               "QOS_MUTANT_MARKS": str(marks)}
                done = subprocess.run([executable], cwd=self.folder, env=environment,
                                      capture_output=True, text=True, errors="replace", check=False)
                if done.returncode != 0:
                    raise BaselineFailed(done.stdout + done.stderr)
                return path.read_text(encoding="utf-8")

            for executable, text in zip(self.executables, pool.map(run, self.executables)):
                for line in text.splitlines():
                    name, milliseconds, *numbers = line.split()
                    self.seconds[executable, name] = int(milliseconds) / 1000
                    self.reached[executable, name] = frozenset(map(int, numbers))

    def order(self, near, number):
        """The tests that come to a mutant, in groups to be run at once."""
        for executable in sorted(self.executables, key=lambda e: e.name not in near):
            names = [name for e, name in self.reached
                     if e == executable and number in self.reached[e, name]]
            names.sort(key=lambda name: len(self.reached[executable, name]))
            starts = [0, *range(FIRST_TESTS, len(names), MOST_TESTS_AT_ONCE)]
            for start, end in zip(starts, [*starts[1:], len(names)]):
                if group := names[start:end]:
                    yield executable, group

    def fate(self, near, number):
        """What became of a mutant: killed, survived, or not even reached."""
        fate = "unreached"
        for executable, names in self.order(near, number):
            usual = sum(self.seconds[executable, name] for name in names)
            if self.ends_ill(executable, number, SECONDS_MORE + int(SLOWDOWN * usual), names):
                return "killed"
            fate = "survived"
        return fate

    def ends_ill(self, executable, number, seconds, names):
        """Has a server of the executable, an idle one if there is any, fork and run the tests."""
        try:
            server = self.idle[executable].get_nowait()
        except queue.Empty:
            server = subprocess.Popen([executable], cwd=self.folder, stdin=subprocess.PIPE,
                                      stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                                      env={**self.environment, "QOS_SERVE_MUTANTS": "1"})
        server.stdin.write(f"{number} {seconds} {':'.join(names)}\n")
        server.stdin.flush()
        status = int(server.stdout.readline())
        self.idle[executable].put(server)
        return status != 0

    def close(self):
        for servers in self.idle.values():
            while not servers.empty():
                with servers.get() as server:
                    server.stdin.close()
