#!/usr/bin/env python3
"""Holds the project's pages to the project: what they show is what happens.

usage: check_documents.py PROGRAM PROJECT_FOLDER

Prints each fault as PAGE:LINE: WHAT. Looked at are:
- a block ```console: what stands behind "$ " (and "> " on lines that go on) is run by bash in a copy
  of examples/, with PROGRAM as qos-agent; what it prints, on either stream, stands below it. "..."
  in a line stands for any text, alone on a line for any lines;
- a block ```LANGUAGE FILE: its lines stand in FILE, together;
- links within the project lead to a file, and to a heading where they name one.
"""

import difflib
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path
from typing import NamedTuple

FENCE = re.compile(r"^```(.*)\n((?:.*\n)*?)```$", re.M)
COMMAND = re.compile(r"^\$ (.*\n(?:> .*\n)*)((?:(?!\$ ).*\n)*)", re.M)
LINK = re.compile(r"\]\(([^)\s]+)\)")
HEADING = re.compile(r"^#+ (.*)$", re.M)


class Fault(NamedTuple):
    offset: int
    text: str


def pages(project):
    return sorted(page for page in project.rglob("*.md")
                  if page.relative_to(project).parts[0] != "build")


def pattern(expected):
    lines = [".*".join(map(re.escape, line.split("..."))) + "\n" if line != "..." else "(?:.*\n)*?"
             for line in expected.splitlines()]
    return "".join(lines)


def faults_of_command(offset, command, expected, run):
    printed = run(re.sub(r"^> ", "", command, flags=re.M))
    if re.fullmatch(pattern(expected), printed):
        return
    differences = difflib.unified_diff(expected.splitlines(), printed.splitlines(), "the page",
                                       "the program", lineterm="")
    yield Fault(offset, "\n".join([f"prints something else: {command.rstrip()}", *differences]))


def faults_of_commands(offset, block, run):
    commands = list(COMMAND.finditer(block))
    if not commands or commands[0].start() != 0:
        yield Fault(offset, "a console begins with a command")
    for found in commands:
        yield from faults_of_command(offset + found.start(), *found.groups(), run)


def faults_of_excerpt(offset, block, file):
    if not file.is_file():
        yield Fault(offset, f"no such file: {file.name}")
    elif "\n" + block not in "\n" + file.read_text(encoding="utf-8"):
        yield Fault(offset, f"is not in {file.name}:\n{block.rstrip()}")


def anchors(text):
    """The names that headings of a page go by in links."""
    headings = HEADING.findall(FENCE.sub("", text))
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def faults_of_link(offset, page, target):
    if re.match(r"\w+:", target):
        return
    path, _, anchor = target.partition("#")
    linked = page.parent / path if path else page
    if not linked.exists():
        yield Fault(offset, f"leads nowhere: {target}")
    elif anchor and anchor not in anchors(linked.read_text(encoding="utf-8")):
        yield Fault(offset, f"no such heading: {target}")


def faults_of_page(page, project, run):
    text = page.read_text(encoding="utf-8")
    for fence in FENCE.finditer(text):
        language, _, file = fence[1].partition(" ")
        if language == "console":
            yield from faults_of_commands(fence.start(2), fence[2], run)
        elif file:
            yield from faults_of_excerpt(fence.start(2), fence[2], project / file)
    prose = FENCE.sub(lambda fence: " " * len(fence[0]), text)
    for link in LINK.finditer(prose):
        yield from faults_of_link(link.start(), page, link[1])


def runner(program, folder):
    """Runs a command with PROGRAM as qos-agent and gives what it prints."""
    environment = dict(os.environ, PATH=f"{folder}/bin:{os.environ['PATH']}", LC_ALL="C.UTF-8")
    (folder / "bin").mkdir()
    (folder / "bin/qos-agent").symlink_to(program)

    def run(command):
        return subprocess.run(["bash", "-c", command], cwd=folder / "examples", env=environment,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, check=False).stdout
    return run


def faults(program, project):
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        shutil.copytree(project / "examples", folder / "examples")
        run = runner(Path(program).resolve(), folder)
        for page in pages(project):
            text = page.read_text(encoding="utf-8")
            for fault in faults_of_page(page, project, run):
                line = text.count("\n", 0, fault.offset) + 1
                yield f"{page.relative_to(project)}:{line}: {fault.text}"


def main():
    found = list(faults(sys.argv[1], Path(sys.argv[2])))
    print(*found, sep="\n", end="\n" if found else "")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
