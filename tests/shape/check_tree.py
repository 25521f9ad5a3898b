#!/usr/bin/env python3
"""Holds the source tree against its architecture: who may include whom, no cycles, short headers.

    check_tree.py ROOT

Prints one line for each fault, `FILE:LINE: what is wrong`, and exits with 1 if there is any.
"""

import re
import sys
from pathlib import Path

RUNTIME = ("platform/Orin/", "platform/OvSlab/", "platform/Ovk/", "platform/Vex/")
SERVICES = ("platform/Strata/", "platform/Plugin/", "platform/Agent/")

# A folder of the tree, and the folders besides itself from which it may include.
MAY_INCLUDE = {
    "platform/Orin/": (),
    "platform/OvSlab/": ("platform/Orin/",),
    "platform/Ovk/": ("platform/Orin/",),
    "platform/Vex/": RUNTIME,
    **{service: RUNTIME + SERVICES for service in SERVICES},
    **{schema: ("platform/",) for schema in ("platform/Qos/", "platform/Acl/", "platform/QosOc/")},
    "QosOpenConfig/": ("platform/",),
    "agent/": ("platform/",),
}
TREES = ("platform", "QosOpenConfig", "agent")

# Beside the headers of the language and of the system, which lie in no folder or in `sys`.
LIBRARIES = {"agent/": ("nlohmann/", "CLI/")}
SYSTEM = re.compile(r"(sys/)?\w+(\.h)?")

INCLUDE = re.compile(r"\s*#\s*include(?:_next)?\b\s*(.*)")
QUOTED = re.compile(r'"([^"]+)"')
ANGLED = re.compile(r"<([^>]+)>")

LONGEST_HEADER = 150
LONG_FOR_A_REASON = re.compile(r"// long: \S")


def includes(text):
    """Yields (line number, what stands behind #include) for each inclusion."""
    for number, line in enumerate(text.splitlines(), start=1):
        if match := INCLUDE.match(line):
            yield number, match.group(1)


def folder_of(path):
    return next((folder for folder in MAY_INCLUDE if path.startswith(folder)), None)


def fault_of_include(folder, files, operand):
    """What is wrong with including `operand` from `folder`; None if nothing is."""
    if match := QUOTED.match(operand):
        target = match.group(1)
        if not target.startswith((folder, *MAY_INCLUDE[folder])):
            return f"{folder} must not include {target}"
        if target not in files:
            return f"includes {target}, which is not in the tree"
        return None
    if match := ANGLED.match(operand):
        target = match.group(1)
        if SYSTEM.fullmatch(target) or target.startswith(LIBRARIES.get(folder, ())):
            return None
        return f"{folder} must not include <{target}>"
    return f"includes what cannot be read off: {operand}"


def faults_of_layers(files):
    for path, text in files.items():
        folder = folder_of(path)
        if folder is None:
            yield f"{path}:1: lies in a folder that has no place in the layers"
            continue
        for line, operand in includes(text):
            if fault := fault_of_include(folder, files, operand):
                yield f"{path}:{line}: {fault}"


def faults_of_cycles(files):
    """One fault for each inclusion that leads back to a file through which it was reached."""
    edges = {
        path: [(line, match.group(1)) for line, operand in includes(text)
               if (match := QUOTED.match(operand)) and match.group(1) in files]
        for path, text in files.items()
    }
    done = set()

    def visit(path, way):
        if path in done:
            return
        for line, target in edges[path]:
            if target in way + [path]:
                cycle = (way + [path])[(way + [path]).index(target):] + [target]
                yield f"{path}:{line}: includes itself: {' -> '.join(cycle)}"
            else:
                yield from visit(target, way + [path])
        done.add(path)

    for path in edges:
        yield from visit(path, [])


def faults_of_headers(files):
    for path, text in files.items():
        lines = text.count("\n")
        if path.endswith(".h") and lines > LONGEST_HEADER and not LONG_FOR_A_REASON.search(text):
            yield (f"{path}:{lines}: a header of over {LONGEST_HEADER} lines"
                   " without a comment `// long: REASON`")


def read_tree(root):
    paths = (path for tree in TREES for path in sorted((root / tree).rglob("*")))
    return {path.relative_to(root).as_posix(): path.read_text(encoding="utf-8")
            for path in paths if path.suffix in (".h", ".cpp")}


def faults(root):
    files = read_tree(Path(root))
    if not files:
        return [f"{root}: no sources here"]
    return [*faults_of_layers(files), *faults_of_cycles(files), *faults_of_headers(files)]


def main():
    found = faults(sys.argv[1])
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
