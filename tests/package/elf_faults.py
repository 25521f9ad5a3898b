"""What a shipped file of machine code lacks of what keeps attackers and unload problems out."""

import re
import subprocess

# Each file is built with these; the debug information tells of every unit how it was compiled.
NEEDED_OPTIONS = ("-O2", "-fstack-protector-strong", "-fstack-clash-protection")
STACK_GUARD = "__stack_chk_fail"
FORTIFIED = re.compile(r"__\w+_chk")
LIBRARY_ASSERTION = "__glibcxx_assert_fail"

READABLE_TYPE = r"(?:typeinfo for |typeinfo name for |vtable for |guard variable for )?"


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def dynamic_symbols(file, which):
    """The names that the file offers (`--defined-only`) or asks for (`--undefined-only`)."""
    lines = output_of("nm", "-DC", which, file).splitlines()
    return [re.split(r" [A-Za-z] ", line, maxsplit=1)[1].split("@")[0] for line in lines]


def faults_of_layout(file):
    """Of what the program loader does with the file."""
    header = output_of("readelf", "-hW", file)
    segments = output_of("readelf", "-lW", file)
    dynamic = output_of("readelf", "-dW", file)
    if not re.search(r"Type:\s+DYN", header):
        yield "its place in memory is fixed"
    if "TEXTREL" in dynamic:
        yield "its code is changed when it is loaded"
    if "GNU_RELRO" not in segments:
        yield "its tables stay writable"
    if not re.search(r"\(FLAGS\).*BIND_NOW|\(FLAGS_1\).*NOW", dynamic):
        yield "it is bound late"
    if not re.search(r"GNU_STACK.* RW ", segments):
        yield "its stack is executable"
    if re.search(r"LOAD.* RWE ", segments):
        yield "its code is writable"
    for path in re.findall(r"\(R(?:UN)?PATH\).*\[(.*)\]", dynamic):
        for folder in path.split(":"):
            if not folder.startswith("$ORIGIN"):
                yield f"it looks for libraries in {folder}"


def faults_of_code(file):
    """Of how its code was made."""
    asked = dynamic_symbols(file, "--undefined-only")
    if STACK_GUARD not in asked:
        yield "no function guards its stack"
    if not any(FORTIFIED.fullmatch(name) for name in asked):
        yield "no call is fortified"
    if not any(LIBRARY_ASSERTION in name for name in asked):
        yield "no call of the library is checked"
    units = re.findall(r"DW_AT_producer\s*:\s*(?:\(.*?\):\s*)?(.*)",
                       output_of("readelf", "-W", "--debug-dump=info", "--dwarf-depth=1", file))
    if not units:
        yield "it does not tell how it was compiled"
    for option in NEEDED_OPTIONS:
        if any(option not in unit.split() for unit in units):
            yield f"a unit is compiled without {option}"


def faults_of_symbols(file, offers):
    """`offers`: what of its own it may offer to others, a regular expression from the start."""
    for name in dynamic_symbols(file, "--defined-only"):
        if not re.match(READABLE_TYPE + offers, name):
            yield f"it offers {name}"
    if " UNIQUE " in output_of("readelf", "-sW", "--dyn-syms", file):
        yield "a unique symbol keeps it loaded"


def faults_of_text(file, places):
    content = file.read_bytes()
    for place in places:
        if str(place).encode() in content:
            yield f"it tells of {place}"


def elf_faults(file, offers, places):
    """All faults of a file; `places` are folders that it must not know."""
    return [*faults_of_layout(file), *faults_of_code(file), *faults_of_symbols(file, offers),
            *faults_of_text(file, places)]
