#!/usr/bin/env python3
"""Checks the source tree against its architecture: which folder may include which, no include cycles,
short headers, files and functions.

    check_tree.py ROOT

Prints one line for each fault, `FILE:LINE: what is wrong`, and exits with 1 if there is any.
"""

import ast
import re
import sys
from pathlib import Path

RUNTIME = ("platform/Orin/", "platform/OvSlab/", "platform/Ovk/", "platform/Vex/")
SERVICES = ("platform/Strata/", "platform/Plugin/", "platform/Agent/")

# All that a door, which is a library of its own, sees of the program.
SEEN_BY_DOORS = ("agent/service/Service.h", "agent/service/Door.h", "agent/feed/StateMap.h",
                 "agent/feed/StateValue.h", "agent/feed/Snapshot.h", "agent/feed/ChangeSet.h",
                 "agent/feed/PolicyMapNames.h", "agent/feed/Subscription.h",
                 "agent/feed/FeedStatistics.h", "agent/service/Statistics.h", "agent/configuration/", "agent/json/",
                 "agent/host/ListeningSocket.h")

# And a store, which is one, too.
SEEN_BY_STORES = ("agent/store/Store.h", "agent/store/Record.h", "agent/feed/ChangeLine.h")

# The rooms of the program that know no door, and what they know of loop and service.
CORE = tuple(f"agent/{room}/" for room in (
    "configuration", "database", "documents", "explain", "host", "openconfig", "options", "output",
    "streams", "trace"))
KNOWN_TO_CORE = ("platform/", *CORE, "agent/json/", "agent/feed/", "agent/loop/Loop.h",
                 "agent/service/Service.h", "agent/service/Door.h", "agent/service/DoorTable.h")

# A folder of the tree, and the folders besides itself from which it may include. Of folders within
# each other the inner one stands first.
MAY_INCLUDE = {
    "platform/Orin/": (),
    "platform/OvSlab/": ("platform/Orin/",),
    "platform/Ovk/": ("platform/Orin/",),
    "platform/Vex/": RUNTIME,
    **{service: RUNTIME + SERVICES for service in SERVICES},
    **{schema: ("platform/",) for schema in ("platform/Qos/", "platform/Acl/", "platform/QosOc/")},
    "QosOpenConfig/": ("platform/",),
    "agent/loop/": (),
    "agent/json/": ("platform/Vex/Escape.h",),
    "agent/configuration/": ("agent/json/",),
    "agent/feed/": ("platform/", "agent/database/", "agent/configuration/", "agent/json/"),
    "agent/explain/": ("platform/", "agent/openconfig/", "agent/database/", "agent/json/"),
    "agent/gnmi/": SEEN_BY_DOORS,
    # The page says in words what findings and DSCP values mean.
    "agent/http/": (*SEEN_BY_DOORS, "agent/explain/Finding.h", "agent/output/Dscp.h"),
    "agent/service/Service.h": ("agent/feed/", "agent/service/Statistics.h"),
    "agent/service/Statistics.h": ("agent/feed/",),
    "agent/service/Door.h": ("agent/service/Service.h",),
    "agent/service/": (*KNOWN_TO_CORE, "agent/store/"),
    "agent/store/Record.h": ("agent/feed/ChangeLine.h",),
    "agent/store/Store.h": ("agent/store/Record.h",),
    "agent/store/": KNOWN_TO_CORE,
    **{store: SEEN_BY_STORES for store in ("agent/lmdb/", "agent/redis/")},
    "agent/socket/": ("agent/service/Service.h", "agent/feed/", "agent/host/", "agent/json/",
                      "agent/loop/Loop.h", "agent/streams/LineBuffer.h"),
    "agent/connect/": KNOWN_TO_CORE,
    **{room: KNOWN_TO_CORE for room in CORE},
    "agent/": ("platform/",),
    "tests/support/": ("platform/",),
    "tests/platform/": ("platform/", "tests/support/"),
    "tests/QosOpenConfig/": ("platform/", "QosOpenConfig/", "tests/support/"),
    **{door: ("agent/", "tests/agent/") for door in ("tests/agent/gnmi/", "tests/agent/http/")},
    "tests/agent/lmdb/": ("agent/", "tests/agent/", "QosOpenConfig/"),
    "tests/agent/": ("platform/", "agent/", "QosOpenConfig/", "tests/support/"),
    "tests/plugin/": ("platform/", "agent/", "tests/agent/", "tests/support/"),
    "tests/fuzz/": ("platform/", "agent/", "tests/agent/", "tests/support/"),
    "tests/model/": ("platform/", "agent/"),
    "tests/mutation/": ("tests/support/",),
    **{alone: ("platform/",) for alone in ("tests/codegen/", "tests/coverage/", "tests/memory/")},
    "bench/floor/": ("platform/", "bench/platform/"),
    "bench/platform/": ("platform/", "bench/Event.h"),
    "bench/": ("platform/", "QosOpenConfig/", "agent/"),
}
TREES = ("platform", "QosOpenConfig", "agent", "tests", "bench")
SCRIPTS = ("run", "test", ".ci/run")
SCRIPT_TREES = ("scripts", "packaging", "tests")

# Beside the headers of the language and of the system, which lie in no folder or in `sys`.
LIBRARIES = {"platform/OvSlab/": ("sanitizer/",), "agent/loop/": ("systemd/",),
             "agent/lmdb/": ("openssl/",),
             "agent/gnmi/": ("grpc/", "grpcpp/", "google/protobuf/", "openssl/"),
             "agent/http/": ("prometheus/",),
             "agent/": ("nlohmann/", "CLI/"),
             "tests/agent/gnmi/": ("gtest/", "gmock/", "grpcpp/", "google/protobuf/"),
             "tests/": ("gtest/", "gmock/", "CLI/"),
             "bench/": ("benchmark/", "valgrind/")}
# The messages of the services, which are generated.
SYSTEM = re.compile(r"((sys|netinet)/)?\w+(\.h)?|\w+(\.grpc)?\.pb\.h")

INCLUDE = re.compile(r"\s*#\s*include(?:_next)?\b\s*(.*)")
QUOTED = re.compile(r'"([^"]+)"')
ANGLED = re.compile(r"<([^>]+)>")

LONGEST_HEADER = 150
LONGEST_FILE = 300
LONGEST_FUNCTION = 40
LONGEST_TEST = 50
# A comment of a whole file begins its line; one of a function stands inside of it.
LONG_FILE_FOR_A_REASON = re.compile(r"^(//|#) long: \S", re.M)
LONG_FUNCTION_FOR_A_REASON = re.compile(r"^ +(//|#) long: \S", re.M)

# Files that are still longer. Split one by what it holds when you change it, and remove its line.
LONG_FILES = {
    "tests/agent/database/EditorTest.cpp",
    "tests/agent/feed/FeedTest.cpp",
    "tests/agent/openconfig/OpenConfigReaderTest.cpp",
    "tests/agent/openconfig/OpenConfigTranslatorTest.cpp",
    "tests/agent/openconfig/OwnershipTest.cpp",
    "tests/agent/openconfig/ValidationTest.cpp",
    "tests/agent/program/ServiceTest.cpp",
    "tests/gnmi/set_rules_test.py",
    "tests/gnmi/subscribe_rules_test.py",
    "tests/mutation/sites.py",
}


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
        libraries = next((names for tree, names in LIBRARIES.items() if folder.startswith(tree)), ())
        if SYSTEM.fullmatch(target) or target.startswith(libraries):
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


def faults_of_lengths(files):
    for path, text in files.items():
        lines = text.count("\n")
        is_header = path.endswith(".h")
        longest = LONGEST_HEADER if is_header else LONGEST_FILE
        if lines > longest and path not in LONG_FILES and not LONG_FILE_FOR_A_REASON.search(text):
            yield (f"{path}:{lines}: a {'header' if is_header else 'file'} of over {longest} lines"
                   " without a comment `long: REASON`")


def python_functions(text):
    """Yields (name, first line number, number of lines) for each function."""
    for node in ast.walk(ast.parse(text)):
        if isinstance(node, (ast.FunctionDef, ast.AsyncFunctionDef)):
            yield node.name, node.lineno, node.end_lineno - node.lineno + 1


def braced_blocks(text):
    """The same for what a brace alone on its line ends: functions of C++ and of the shell, and the
    blocks within them, which are shorter. As the formatter leaves them, all lines between the first
    and the last are empty or stand deeper."""
    lines = text.splitlines()
    for end, line in enumerate(lines):
        if match := re.fullmatch(r"( *)}", line):
            begin = end - 1
            while begin > 0 and (not lines[begin] or lines[begin].startswith(match[1] + " ")):
                begin -= 1
            yield lines[begin].strip(), begin + 1, end - begin + 1


def faults_of_functions(files):
    for path, text in files.items():
        lines = text.splitlines()
        is_python = path.endswith(".py") or text.startswith("#!/usr/bin/env python3")
        longest = LONGEST_TEST if path.startswith("tests/") else LONGEST_FUNCTION
        for name, line, length in (python_functions if is_python else braced_blocks)(text):
            block = "\n".join(lines[line - 1:line - 1 + length])
            if length > longest and not LONG_FUNCTION_FOR_A_REASON.search(block):
                yield (f"{path}:{line}: a function of over {longest} lines without a comment"
                       f" `long: REASON`: {name}")


def read_files(root, paths):
    return {path.relative_to(root).as_posix(): path.read_text(encoding="utf-8") for path in paths}


def read_tree(root):
    return read_files(root, (path for tree in TREES for path in sorted((root / tree).rglob("*"))
                             if path.suffix in (".h", ".cpp")))


def is_script(path):
    return path.is_file() and (path.suffix == ".py" or path.read_bytes().startswith(b"#!"))


def read_scripts(root):
    paths = [root / name for name in SCRIPTS]
    for tree in SCRIPT_TREES:
        paths += sorted((root / tree).rglob("*"))
    return read_files(root, filter(is_script, paths))


def faults(root):
    root = Path(root)
    files = read_tree(root)
    if not files:
        return [f"{root}: no sources here"]
    all_files = {**files, **read_scripts(root)}
    return [*faults_of_layers(files), *faults_of_cycles(files), *faults_of_lengths(all_files),
            *faults_of_functions(all_files)]


def main():
    found = faults(sys.argv[1])
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
