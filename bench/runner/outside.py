"""Counts what the program itself spends on a line or on a term, with and without the plug-in.

The program runs under callgrind twice, the second time with more lines or more terms. What the
second run costs more is shared out, so that starting and ending the program is no part of it.
"""

import json
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

import hostile
from counting import SAME_HASHES

CLASSES = 8
LINES = {False: 100, True: 20}  # the fewer, quick
CMAPS = "qos/status/cmapTypeStatus/mapQos/cmapStatus/"
PMAPS = "qos/status/pmapTypeStatus/mapQos/pmapStatus/"
LISTS = "acl/config/cli/aclTypeConfig/ipv4/aclConfig/"
CONFIGURED = "qos/openconfig/config/classifiers/classifier/"
TOGGLE = "OCQosClassifierStatePath"


# The configuration: classifiers of eight terms of eight DSCP values, attached but for the last one

def term(number):
    identifier = f"term-{number}"
    return {"id": identifier, "config": {"id": identifier},
            "conditions": {"ipv4": {"config": {
                "dscp-set": [CLASSES * number + at for at in range(CLASSES)]}}},
            "actions": {"config": {"target-group": f"group-{number}"}}}


def attachment(number):
    return {"interface-id": f"eth{number}", "config": {"interface-id": f"eth{number}"},
            "input": {"classifiers": {"classifier": [
                {"type": "IPV4", "config": {"type": "IPV4", "name": f"classifier-{number}"}}]}}}


def configuration(classifiers):
    names = [f"classifier-{number}" for number in range(classifiers)]
    groups = [f"group-{number}" for number in range(2 * CLASSES)]
    return json.dumps({"openconfig-qos:qos": {
        "forwarding-groups": {"forwarding-group": [
            {"name": name, "config": {"name": name}} for name in groups]},
        "classifiers": {"classifier": [
            {"name": name, "config": {"name": name, "type": "IPV4"},
             "terms": {"term": [term(number) for number in range(CLASSES)]}} for name in names]},
        "interfaces": {"interface": [attachment(number) for number in range(classifiers - 1)]}}})


# The lines of each figure: a function of the line's number

def line(operation, path, *value):
    return json.dumps({operation: path, **({"value": value[0]} if value else {})})


def obj(classifier, number):
    return f"openconfig:classifier-{classifier}:term-{number}"


def raise_version(at):
    return [line("update", PMAPS + "openconfig:classifier-0:/version", 2 + at)]


def change_groups(at):
    shift = (at + 1) % 2 * CLASSES
    classes = {obj(0, number): {"action": {"4": number + shift}} for number in range(CLASSES)}
    return [line("update", PMAPS + "openconfig:classifier-0:",
                 {"version": 2 + at, "classes": classes})]


def renew_class_map(_):
    name = obj(0, 0)
    return [line("delete", CMAPS + name),
            line("update", CMAPS + name, {"match": {"matchIpAccessGroup": name}})]


def add_rule(at):
    """To another list each time."""
    rule = {"90": {"filter": {"dscpValue": 63, "dscpEnabled": True}}}
    return [line("update", LISTS + obj(at // CLASSES, at % CLASSES) + "/aclSubConfig",
                 {"ruleIdBySequence": {"90": 90}, "ipRuleById": rule})]


def change_configured_group(classifiers):
    path = f"{CONFIGURED}classifier-{classifiers - 1}/terms/term/term-0/actions/targetGroup"
    return lambda at: [line("update", path, f"group-{(at + 1) % 2}")]


# Counting

class Program:
    """Runs the program, and returns the instructions that it takes."""

    def __init__(self, programs, folder):
        self.program, self.folder = programs / "qos-agent", folder
        for state in (True, False):
            toggles = folder / str(state)
            toggles.mkdir()
            (toggles / "QosOpenConfig.json").write_text(json.dumps({TOGGLE: state}))

    def run(self, command, text):
        done = subprocess.run(command, input=text, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              text=True, env={**os.environ, **SAME_HASHES})
        if done.returncode != 0:
            sys.exit(f"bench: {' '.join(map(str, command))}: {done.stderr}")
        return done.stdout

    def instructions(self, *arguments, text="", has_plugin=True):
        counts = self.folder / "counts"
        self.run(["valgrind", "--tool=callgrind", f"--callgrind-out-file={counts}", self.program,
                  "--toggle-dir", self.folder / str(has_plugin), *arguments], text)
        return int(re.search(r"^(?:totals|summary): (\d+)", counts.read_text(), re.M)[1])

    def file(self, name, text):
        path = self.folder / name
        path.write_text(text)
        return path


def count_lines(program, document, lines_of, few, *options, has_plugin=True):
    """What a further line costs, or the few lines that belong together."""
    def spent(number):
        text = "".join(each + "\n" for at in range(number) for each in lines_of(at))
        return program.instructions("--output", "none", *options, document, "-", text=text,
                                    has_plugin=has_plugin)
    return (spent(3 * few) - spent(few)) / (2 * few)


def count_all_lines(figures, program, is_quick, has_both):
    few = LINES[is_quick]
    classifiers = 3 * few // CLASSES + 2
    document = program.file("lines.json", configuration(classifiers))

    def at(name):
        return figures.at("lines", name, classifiers)
    for name, lines_of in (
            ("line: version raised, 8 classes, nothing changed", raise_version),
            ("line: version raised, 8 classes, 8 groups changed", change_groups),
            ("line: class map removed and added, two lines", renew_class_map),
            ("line: rule added to an access list of 8", add_rule),
            ("line: configured term's group changed", change_configured_group(classifiers))):
        at(name).cost["ours"] = count_lines(program, document, lines_of, few)
        if has_both:
            at(name + ", no plug-in").cost["ours"] = count_lines(program, document, lines_of, few,
                                                                 has_plugin=False)
    followed = count_lines(program, document, change_groups, few, "--follow=json")
    at("line: followed on top, a term").cost["ours"] = (
        followed - at("line: version raised, 8 classes, 8 groups changed").cost["ours"]) / CLASSES


def count_documents(figures, program, is_quick):
    sizes = (8, 24) if is_quick else (125, 375)
    documents = [program.file(f"{size}.json", configuration(size)) for size in sizes]
    entities = ["--output", "entities"]
    states = [program.file(f"state{size}.json",
                           program.run([program.program, *entities, document], ""))
              for size, document in zip(sizes, documents)]
    terms = CLASSES * (sizes[1] - sizes[0])

    def a_term(options, inputs):
        few, many = (program.instructions(*options, each) for each in inputs)
        return (many - few) / terms
    costs = {
        "program: OpenConfig document, a term": a_term(["--output", "none"], documents),
        "program: state document, a term": a_term(["--output", "none"], states),
        "program: entities printed, a term": a_term(entities, documents)}
    costs["program: entities printed, a term"] -= costs["program: OpenConfig document, a term"]
    for name, cost in costs.items():
        figures.at("lines", name, CLASSES * sizes[1]).cost["ours"] = cost


def count_outside(figures, programs, is_quick, has_both):
    """Few lines and terms if `is_quick`; the lines also without the plug-in if `has_both`."""
    with tempfile.TemporaryDirectory() as name:
        program = Program(programs, Path(name))
        count_all_lines(figures, program, is_quick, has_both)
        count_documents(figures, program, is_quick)


def count_hostile(figures, programs):
    with tempfile.TemporaryDirectory() as name:
        hostile.count_hostile(figures, Program(programs, Path(name)))
