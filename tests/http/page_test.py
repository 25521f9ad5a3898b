#!/usr/bin/python3
"""Looks at the status page with a browser.

    page_test.py PROGRAM [unittest's arguments]

Pictures of the page are kept in the folder that QOS_SCREENSHOTS names, else in the present one.
"""

import json
import os
import time

from page import GROUPS, Case, classifier, configuration, main

PICTURES = os.environ.get("QOS_SCREENSHOTS", ".")


def example():
    shared = classifier("shared", [("one", [46, 47], "voice"), ("two", [46], "gold"),
                                   ("three", [47], "voice"), ("rest", [], "default"),
                                   ("loose", [1], None)])
    many = [classifier(f"site-{at:02}", [
        (f"t{term}", [(7 * at + 5 * term + step) % 64 for step in range(term + 1)],
         GROUPS[(at + term) % len(GROUPS)]) for term in range(1 + at % 5)],
        "IPV6" if at % 3 else "IPV4") for at in range(24)]
    edge = classifier("edge", [("voice", [46, 47], "voice"), ("video", [32, 34, 36, 38], "video"),
                               ("gold", [18, 20, 22], "gold"), ("silver", [10, 12, 14], "silver"),
                               ("bulk", [8], "bulk"), ("control", [48, 56], "control")])
    return configuration([edge, shared, *many], attached=["edge"])


class Page(Case):
    DOCUMENT = example()

    def test_shows_what_print_writes(self):
        for name in self.state():
            self.expect_as_printed(name)

    def test_shows_every_claim_on_a_value(self):
        shown = self.expect_as_printed("shared")
        marks = {group: self.browser.run(f"groups.mark({json.dumps(group)})")
                 for group in ("voice", "gold")}
        self.assertEqual(len(set(marks.values())), 2)
        cells = shown["cells"]
        self.assertEqual(cells[46]["mark"], f"{marks['gold']}+{marks['voice']}")
        self.assertEqual(cells[47]["mark"], f"{marks['voice']}×2")
        self.assertEqual(cells[1]["mark"], "–")
        self.assertEqual(cells[46]["label"], "DSCP 46(EF): 2 terms claim it: group voice by term one;"
                                             " group gold by term two")

    def test_shows_changes_as_they_come(self):
        self.browser.run("app.open('classifiers')")
        self.agent.lines.do(json.dumps({
            "update": "qos/status/cmapTypeStatus/mapQos/cmapStatus/fresh/match/matchIpAccessGroup",
            "value": ""}))
        self.browser.until("app.feed.classifiers.has('fresh')")
        self.settled()
        first = self.browser.run("document.querySelector('#change-list [aria-posinset=\"1\"]').innerText")
        self.assertRegex(first, r"^\d\d:\d\d:\d\d\.\d{3}\n\+\nfresh\ncreated: IPV4$")
        self.expect_as_printed("fresh")
        self.agent.lines.do(json.dumps({
            "delete": "qos/status/cmapTypeStatus/mapQos/cmapStatus/fresh"}))
        self.browser.until("!app.feed.classifiers.has('fresh')")
        self.settled()
        self.assertEqual(self.browser.run("document.getElementById('detail-none').textContent"),
                         "fresh is not in the state.")

    def test_shows_differences_with_the_sentences_of_the_findings(self):
        path = "qos/status/cmapTypeStatus/mapQos/cmapStatus/openconfig:site-00:t0"
        self.addCleanup(self.agent.lines.do, json.dumps({"openconfig": {}}),
                        json.dumps({"openconfig": self.DOCUMENT}))
        self.agent.lines.do(json.dumps({"delete": path}))
        wanted = json.loads(self.agent.print("differences"))
        self.assertEqual(list(wanted), ["site-00"])
        self.browser.until("app.differences.countOf('site-00') > 0")
        self.choose("site-00")
        texts = self.browser.run(
            "[...document.querySelectorAll('#detail-differences li')].map((item) => item.innerText)")
        findings = wanted["site-00"]["terms"]["t0"]["findings"]
        self.assertIn("no-class-map", findings)
        self.assertTrue(any("No class map was made from the term." in text for text in texts), texts)
        self.browser.run("app.open('differences')")
        self.settled()
        rows = self.browser.run("document.getElementById('difference-list').innerText")
        self.assertIn("No class map was made from the term.", rows)
        self.assertIn("site-00", rows)

    def test_lights_up_machines_that_just_ran(self):
        self.browser.run("app.open('machines')")
        self.browser.until("app.machines.root !== null")
        self.addCleanup(self.agent.lines.do, json.dumps({
            "delete": "acl/config/cli/aclTypeConfig/ipv4/aclConfig/openconfig:edge:bulk/aclSubConfig"
                      "/ruleIdBySequence/99"}))
        self.agent.lines.do(json.dumps({
            "update": "acl/config/cli/aclTypeConfig/ipv4/aclConfig/openconfig:edge:bulk/aclSubConfig",
            "value": {"ipRuleById": {"99": {"filter": {"dscpValue": 9, "dscpEnabled": True}}},
                      "ruleIdBySequence": {"99": 99}}}))
        self.browser.until("document.querySelectorAll('#machine-list .lit').length > 0")
        lit = self.browser.run("document.querySelector('#machine-list .lit').innerText")
        self.assertIn("just ran", lit)
        self.browser.run("document.getElementById('machine-list').focus()")
        self.browser.press("Home")
        before = self.browser.run("app.machines.list.items.length")
        self.browser.press("ArrowLeft")
        self.assertEqual(self.browser.run("app.machines.list.items.length"), 1)
        self.browser.press("ArrowRight")
        self.assertEqual(self.browser.run("app.machines.list.items.length"), before)

    def test_finds_by_name(self):
        self.browser.run("app.open('classifiers')")
        for wanted, names in (("SITE-1", [f"site-1{at}" for at in range(10)]), ("shar", ["shared"]),
                              ("loose", ["shared"]), ("nothing", [])):
            self.browser.run(f"""(() => {{ const box = document.getElementById("search");
                box.value = {json.dumps(wanted)}; box.dispatchEvent(new Event("input")); }})()""")
            self.settled()
            self.assertEqual(self.browser.run("app.list.list.items.map((item) => item.name)"), names)
        self.browser.run("""(() => { const box = document.getElementById("search");
            box.value = ""; box.dispatchEvent(new Event("input")); })()""")

    def test_works_by_keyboard(self):
        self.browser.run("app.open('classifiers'), "
                         "document.getElementById('classifier-list').focus()")
        self.browser.press("Home")
        self.browser.press("ArrowDown")
        self.settled()
        self.assertEqual(self.shown()["name"], sorted(self.state())[1])
        self.browser.press("End")
        self.settled()
        self.assertEqual(self.shown()["name"], sorted(self.state())[-1])
        self.browser.run("document.querySelector('#grid [tabindex=\"0\"]').focus()")
        for key in ("Home", "ArrowDown", "ArrowRight"):
            self.browser.press(key)
        self.assertRegex(self.browser.run("document.getElementById('grid-info').textContent"),
                         r"^DSCP \d+")
        self.browser.run("document.getElementById('tab-classifiers').focus()")
        self.browser.press("ArrowRight")
        self.assertEqual(self.browser.run("document.body.dataset.view"), "differences")

    def test_tells_what_everything_is(self):
        self.choose("edge")
        tree = self.browser.call("Accessibility.getFullAXTree")["nodes"]
        roles = {}
        for node in tree:
            if not node.get("ignored"):
                roles.setdefault(node["role"]["value"], []).append(
                    node.get("name", {}).get("value", ""))
        self.assertEqual(len(roles["gridcell"]), 64)
        for role in ("option", "gridcell", "tab", "button", "searchbox", "listbox", "grid", "heading"):
            self.assertTrue(all(roles[role]), f"{role} without a name: {roles[role]}")

    def test_has_enough_contrast(self):
        script = """(() => {
            const channels = (text) => text.match(/[0-9.]+/g).map(Number);
            const light = (colour) => {
                const [r, g, b] = colour.slice(0, 3).map((part) => {
                    const share = part / 255;
                    return share <= 0.04045 ? share / 12.92 : ((share + 0.055) / 1.055) ** 2.4;
                });
                return 0.2126 * r + 0.7152 * g + 0.0722 * b;
            };
            const back = (element) => {
                for (; element; element = element.parentElement) {
                    const colour = channels(getComputedStyle(element).backgroundColor);
                    if (colour.length < 4 || colour[3] > 0) return colour;
                }
                return [255, 255, 255];
            };
            const low = [];
            for (const element of document.querySelectorAll("body *")) {
                const isText = [...element.childNodes].some((node) => node.nodeType === 3 &&
                    node.textContent.trim());
                if (!isText || !element.checkVisibility() || element.closest("script, style, .none"))
                    continue;
                const [a, b] = [light(channels(getComputedStyle(element).color)),
                    light(back(element))].sort((x, y) => y - x);
                if ((a + 0.05) / (b + 0.05) < 4.5) low.push(element.outerHTML.slice(0, 120));
            }
            return low;
        })()"""
        self.choose("shared")
        for scheme in ("light", "dark"):
            self.browser.colour_scheme(scheme)
            time.sleep(0.5)  # until colours that change slowly have changed
            self.assertEqual(self.browser.run(script), [], scheme)

    def test_fits_every_width(self):
        self.choose("edge")
        for scheme in ("light", "dark"):
            self.browser.colour_scheme(scheme)
            for width in (360, 800, 1400):
                self.browser.resize(width)
                self.settled()
                self.assertEqual(self.browser.run("document.documentElement.scrollWidth"), width)
                self.browser.screenshot(os.path.join(PICTURES, f"page-{scheme}-{width}.png"))
        self.browser.resize(*self.SIZE)


if __name__ == "__main__":
    main()
