#!/usr/bin/env python3
"""Writes what qos-agent is built from, as an SPDX 2.3 document.

    write_spdx.py VERSION COMPILER FILE

VERSION is the program's, COMPILER the major version of GCC. parts.json lists the parts; their
versions are those of this machine's packages. Where each release of the distribution names a package
otherwise, a pattern stands for its name. What is used for tests and benches alone, and is not
installed, was not used. The document's date is that of the package's changelog, so that equal builds
give equal documents.
"""

import email.utils
import json
import subprocess
import sys
from datetime import timezone
from pathlib import Path

HERE = Path(__file__).resolve().parent
CHANGELOG = HERE.parents[1] / "debian/changelog"
SELF = "SPDXRef-qos-agent"
MAY_LACK = ("TEST_DEPENDENCY_OF", "DEV_DEPENDENCY_OF", "OPTIONAL_DEPENDENCY_OF")


def installed(pattern):
    """The first installed package whose name fits, and its version; without one, ""."""
    try:
        asked = subprocess.run(
            ["dpkg-query", "-W", "-f=${db:Status-Status} ${Package} ${source:Upstream-Version}\n",
             pattern], capture_output=True, text=True, check=False)
    except FileNotFoundError:
        return pattern, ""
    found = [line.split() for line in asked.stdout.splitlines() if line.startswith("installed ")]
    return (found[0][1], found[0][2]) if found else (pattern, "")


def changelog_date():
    lines = CHANGELOG.read_text(encoding="utf-8").splitlines()
    signature = next(line for line in lines if line.startswith(" -- "))
    date = email.utils.parsedate_to_datetime(signature.split(">  ", 1)[1])
    return date.astimezone(timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")


def package_of(name, version, license_name, **more):
    return {"SPDXID": f"SPDXRef-{name.replace('+', 'x').replace(' ', '-')}", "name": name,
            **({"versionInfo": version} if version else {}),
            "downloadLocation": "NOASSERTION", "filesAnalyzed": False,
            "licenseConcluded": "NOASSERTION", "licenseDeclared": license_name,
            "copyrightText": "NOASSERTION", **more}


def part_of(part):
    locator = f"pkg:deb/debian/{part['package'].replace('+', '%2B')}"
    return package_of(
        part["name"], part["version"], part["license"], comment=part["comment"],
        externalRefs=[{"referenceCategory": "PACKAGE-MANAGER", "referenceType": "purl",
                       "referenceLocator": locator}])


def relation_of(package, relation):
    # The kinds of dependency are said by the part, the kinds of linking by the program.
    ends = [package["SPDXID"], SELF] if relation.endswith("_OF") else [SELF, package["SPDXID"]]
    return {"spdxElementId": ends[0], "relationshipType": relation, "relatedSpdxElement": ends[1]}


def parts_of_build(compiler):
    parts = json.loads((HERE / "parts.json").read_text(encoding="utf-8"))
    for part in parts:
        part["package"], part["version"] = installed(part["package"].format(compiler=compiler))
    return [part for part in parts if part["version"] or part["relation"] not in MAY_LACK]


def document(version, parts):
    packages = [part_of(part) for part in parts]
    return {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"qos-agent-{version}",
        "documentNamespace": f"https://qos-agent.example/spdx/qos-agent-{version}",
        "creationInfo": {"created": changelog_date(), "creators": ["Tool: write_spdx.py"]},
        "packages": [package_of(
            "qos-agent", version, "NOASSERTION",
            comment="The owners of this work have not declared a licence for it."), *packages],
        "relationships": [
            {"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
             "relatedSpdxElement": SELF},
            *(relation_of(package, part["relation"]) for package, part in zip(packages, parts))],
    }


def main():
    version, compiler, file = sys.argv[1:]
    made = document(version, parts_of_build(compiler))
    Path(file).write_text(json.dumps(made, indent=2) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
