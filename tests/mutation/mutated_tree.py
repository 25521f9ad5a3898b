"""A copy of the tree with all mutants in it, built with its tests."""

import hashlib
import json
import os
import re
import subprocess
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from clang import cindex

import schemata
from schemata import Written
from sites import Sites

HERE = Path(__file__).resolve().parent
COMPILER = subprocess.run([HERE.parents[1] / "scripts/clang", "clang++"], check=True, capture_output=True,
                          text=True).stdout.strip()
FLAGS = ("-O0 -w -Wno-c++11-narrowing -ferror-limit=0 -ftemplate-backtrace-limit=0"
         " -fbracket-depth=2048 -mllvm -asan-globals=0")
DIAGNOSTIC = re.compile(r"^(\S+?):(\d+):(\d+): (fatal error|error|note): (.*)", re.MULTILINE)
# What the compiler says of a mutant in what it has to know itself.
QUESTION = "qosMutant"
# The numbers of a file's mutants stay as they are when other files change.
NUMBERS_PER_FILE = 1024


class BuildFailed(Exception):
    """What is wrong is not a mutant."""


class MutatedTree:
    """`source` mutated in `files` and built below `folder`."""

    def __init__(self, source, folder, files, planted=None):
        self.source, self.folder, self.files = source, folder, sorted(files)
        self.plain, self.tree, self.build = folder / "plain", folder / "tree", folder / "build"
        self.remembered = folder / "dropped.json"
        self.planted = planted or {}  # place in the tree -> file
        self.mutants = {}  # number -> Mutant
        self.written = {}

    def copy(self):
        """Copies what git knows or would add: once to be parsed, as it is, once to be mutated."""
        listed = subprocess.run(["git", "-C", self.source, "ls-files", "-co", "--exclude-standard"],
                                check=True, capture_output=True, text=True).stdout.split("\n")
        sources = {name: self.source / name for name in listed} | self.planted
        sources = {name: path for name, path in sources.items() if name and path.is_file()}
        for copy in (self.plain, self.tree):
            for old in [p for p in copy.rglob("*") if p.is_file()]:
                if old.relative_to(copy).as_posix() not in sources:
                    old.unlink()
            for name, path in sources.items():
                if copy == self.plain or name not in self.files or not (copy / name).exists():
                    place(copy / name, path.read_bytes())

    def compile(self, source, target):
        """Compiles a source that belongs to no target."""
        run([COMPILER, "-std=c++20", "-fsanitize=address", f"-I{self.plain}", "-c", source,
             "-o", target])

    def configure(self, *options):
        include = f"-include {self.tree}/tests/mutation/Mutant.h"
        run(["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
             f"-DCMAKE_CXX_COMPILER={COMPILER}", "-DCMAKE_CXX_FLAGS_DEBUG=",
             f"-DCMAKE_CXX_FLAGS={FLAGS} {include}", "-DQOS_WERROR=OFF",
             "-DQOS_SANITIZE=address", *options])

    def find(self):
        """Parses the files as they are, and numbers the mutants that are known to compile."""
        self.commands = {Path(c["file"]).relative_to(self.tree).as_posix():
                         arguments_of(c["command"].split())
                         for c in json.loads((self.build / "compile_commands.json").read_text())
                         if Path(c["file"]).is_relative_to(self.tree)}
        sites = Sites(self.plain, self.files)
        index = cindex.Index.create()
        resources = subprocess.run([COMPILER, "-print-resource-dir"], check=True,
                                   capture_output=True, text=True).stdout.strip()
        sources = [f for f in self.files if f.endswith(".cpp")]
        headers = [f for f in self.files if f.endswith(".h")]
        for source in [*sources, None]:
            arguments = [a.replace(str(self.tree), str(self.plain))
                         for a in self.commands[source or sources[0]][1:]]
            path, unsaved = str(self.plain / (source or "all.cpp")), None
            if source is None:
                unsaved = [(path, "".join(f'#include "{header}"\n' for header in headers))]
            unit = index.parse(path, [*arguments, "-resource-dir", resources], unsaved)
            faults = [d for d in unit.diagnostics if d.severity >= cindex.Diagnostic.Error]
            if faults:
                raise BuildFailed(f"{path}: {faults[0]}")
            sites.collect(unit, [source] if source else headers)
        self.number(sites.mutants())

    def number(self, mutants):
        known = json.loads(self.remembered.read_text()) if self.remembered.exists() else {}
        self.known = {f: k for f in self.files
                      if (k := known.get(f)) and k["of"] == self.digest(f)}
        count = dict.fromkeys(self.files, 0)
        for mutant in mutants:
            count[mutant.file] += 1
            number = self.files.index(mutant.file) * NUMBERS_PER_FILE + count[mutant.file]
            assert count[mutant.file] < NUMBERS_PER_FILE
            if mutant.key not in self.known.get(mutant.file, {}).get("dropped", ()):
                self.mutants[number] = mutant

    def digest(self, file):
        return hashlib.sha256((self.plain / file).read_bytes()).hexdigest()

    def write(self, files):
        for file in files:
            mutants = [(n, m) for n, m in self.mutants.items() if m.file == file]
            self.written[file] = schemata.write((self.plain / file).read_bytes(), mutants)
            place(self.tree / file, self.written[file].text.encode())

    def make(self, targets):
        """Builds; mutants that do not compile are dropped on the way."""
        self.write(self.files)
        sources = [f for f in self.files if f.endswith(".cpp")]
        # What the first ones show of headers the others need not.
        for at in range(0, len(sources), os.cpu_count()):
            while faults := self.checked(sources[at:at + os.cpu_count()]):
                self.drop_culprits(faults)
        while True:
            built = subprocess.run(["cmake", "--build", self.build, "-j", str(os.cpu_count()),
                                    "--target", *targets, "--", "-k", "0"],
                                   capture_output=True, text=True, check=False)
            if built.returncode == 0:
                return
            self.drop_culprits(built.stdout)

    def checked(self, sources):
        """What the compiler says of those sources that it does not accept; empty if of none."""
        def check(source):
            command = [*self.commands[source], "-fsyntax-only", str(self.tree / source)]
            return subprocess.run(command, cwd=self.build, capture_output=True, text=True,
                                  check=False)
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            done = list(pool.map(check, sources))
        return "".join(d.stderr for d in done if d.returncode != 0)

    def drop_culprits(self, log):
        """Drops what errors lie in, the surest first: other errors follow from those."""
        errors = []
        for match in DIAGNOSTIC.finditer(log):
            if match.group(4) != "note" or not errors:
                errors.append([])
            errors[-1].append(match.groups())
        for blame in (self.at_question, self.at_error, self.at_note, self.in_line):
            if dropped := {number for places in errors for number in blame(places)}:
                self.drop(dropped)
                return
        raise BuildFailed(log[-20000:])

    def at_error(self, places):
        return self.at(places[0])

    def at_question(self, places):
        return next((self.at(p) for p in places if QUESTION in p[4] and self.at(p)), [])

    def at_note(self, places):
        return next((self.at(p) for p in places if self.at(p)), [])

    def in_line(self, places):
        found = (self.at(place_, Written.in_line) for place_ in places)
        return next((numbers for numbers in found if numbers), [])

    def at(self, place_, which=Written.at):
        name, line, column, *_ = place_
        path = Path(os.path.normpath(self.build / name))
        if not path.is_relative_to(self.tree):
            return []
        written = self.written.get(path.relative_to(self.tree).as_posix())
        return which(written, int(line), int(column)) if written else []

    def drop(self, numbers):
        files = {self.mutants[n].file for n in numbers}
        for number in numbers:
            mutant = self.mutants.pop(number)
            entry = self.known.setdefault(mutant.file,
                                          {"of": self.digest(mutant.file), "dropped": []})
            entry["dropped"].append(mutant.key)
        self.remembered.write_text(json.dumps(self.known, indent=1))
        self.write(files)


def place(path, data):
    """Writes a file, unless it is so already."""
    if path.is_file() and path.read_bytes() == data:
        return
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(data)


def arguments_of(command):
    """What a compile command says of the language."""
    arguments = command[command.index(next(c for c in command if c.endswith(COMPILER))):]
    for option, count in (("-o", 2), ("-c", 2)):
        at = arguments.index(option)
        del arguments[at:at + count]
    return arguments


def run(command):
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        raise BuildFailed(f"{' '.join(map(str, command))}\n{done.stdout}{done.stderr}")
    return done.stdout
