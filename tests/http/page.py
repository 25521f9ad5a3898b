"""An agent whose status page is open in a browser, for the tests in this folder."""

import json
import sys
import unittest
from urllib.parse import urlsplit

import browser
from agent import Agent

PROGRAM = sys.argv.pop(1)  # of each test
GROUPS = ["voice", "video", "gold", "silver", "bulk", "control", "scavenger", "bronze", "default"]


def classifier(name, terms, family="IPV4"):
    key = family.lower()
    return {"name": name, "config": {"name": name, "type": family}, "terms": {"term": [
        {"id": term, "config": {"id": term},
         "conditions": {key: {"config": {"dscp-set": values}}} if values else {},
         "actions": {"config": {"target-group": group}} if group else {}}
        for term, values, group in terms]}}


def configuration(classifiers, attached=()):
    return {"openconfig-qos:qos": {
        "forwarding-groups": {"forwarding-group": [
            {"name": name, "config": {"name": name}} for name in GROUPS]},
        "classifiers": {"classifier": classifiers},
        "interfaces": {"interface": [
            {"interface-id": name, "config": {"interface-id": name},
             "input": {"classifiers": {"classifier": [
                 {"type": "IPV4", "config": {"type": "IPV4", "name": name}}]}}}
            for name in attached]}}}


class Case(unittest.TestCase):
    """An agent with a page that is open in a browser, for all tests of a class."""

    DOCUMENT = None
    SIZE = (1400, 900)

    @classmethod
    def setUpClass(cls):
        cls.agent = Agent(PROGRAM)
        cls.addClassCleanup(cls.agent.__exit__)
        cls.agent.lines.do(json.dumps({"openconfig": cls.DOCUMENT}))
        cls.browser = browser.Browser(*cls.SIZE)
        cls.addClassCleanup(cls.browser.__exit__)
        cls.browser.open(f"http://{cls.agent.address}/")
        cls.browser.until("window.app && app.feed.classifiers.size > 0")

    def tearDown(self):
        self.assertEqual(self.browser.complaints(), [])
        hosts = {urlsplit(url).netloc for url in self.browser.requests()
                 if not url.startswith("data:")}
        self.assertEqual(hosts, {self.agent.address})

    def state(self):
        return json.loads(self.agent.print("state")).get("classifier", {})

    def settled(self):
        """Lets the page draw."""
        self.browser.run("new Promise((go) => requestAnimationFrame(() => requestAnimationFrame(go)))")

    def choose(self, name):
        self.browser.run(f"app.open('classifiers'), app.choose({json.dumps(name)})")
        self.settled()

    def shown(self):
        """What the page shows of the chosen classifier."""
        return self.browser.run("""({
            name: document.getElementById("detail-name").textContent,
            type: document.getElementById("detail-type").textContent,
            cells: [...document.querySelectorAll("#grid .cell")].map((cell) =>
                ({value: cell.querySelector(".value").textContent,
                  claims: JSON.parse(cell.dataset.claims),
                  mark: cell.querySelector(".mark").textContent,
                  label: cell.getAttribute("aria-label")})),
            terms: [...document.querySelectorAll("#terms .row")]
                .sort((a, b) => a.ariaPosInSet - b.ariaPosInSet)
                .map((row) => [row.dataset.term, JSON.parse(row.dataset.dscp), row.dataset.group,
                               row.textContent]),
        })""")

    def expect_as_printed(self, name):
        entry = self.state()[name]
        terms = entry.get("terms", {}).get("term", {})
        self.choose(name)
        shown = self.shown()
        self.assertTrue(shown["type"].startswith(entry["state"]["type"] + " · "))
        wanted = []
        for identity, term in sorted(terms.items()):
            values = []
            for family in term.get("conditions", {}).values():
                values += [family["dscp"]] if "dscp" in family else []
                values += family.get("dscpSet", [])
            wanted.append([identity, values, term.get("actions", {}).get("targetGroup", "")])
        self.assertEqual([row[:3] for row in shown["terms"]], wanted)
        for value, cell in enumerate(shown["cells"]):
            self.assertEqual(cell["value"], str(value))
            self.assertEqual(cell["claims"], [{"term": identity, "group": group}
                                              for identity, values, group in wanted
                                              if value in values])
            self.assertEqual(bool(cell["mark"]), bool(cell["claims"]))
        return shown


def main():
    if browser.program() is None:
        print("no browser: chromium is not installed")
        sys.exit(77)
    unittest.main()
