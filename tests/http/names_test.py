#!/usr/bin/python3
"""Looks at the status page where names are hostile, and where there are many.

    names_test.py PROGRAM [unittest's arguments]
"""

from page import GROUPS, Case, classifier, configuration, main

STRANGE = ["<img src=x onerror=alert(1)>", "\"'&quot;</script>", "tab\there\u0000\u0007",
           "safe\u202egnp.exe", "\u05d0\u05d1\u05d2", "a/b~c%:", " ", "__proto__", "constructor"]


class HostileNames(Case):
    DOCUMENT = configuration([classifier(name, [(name, [46], "voice")]) for name in STRANGE])

    def test_stay_text(self):
        self.assertEqual(sorted(self.state()), sorted(STRANGE))
        for name in STRANGE:
            shown = self.expect_as_printed(name)
            self.assertNotRegex(shown["name"], "[\u0000-\u001f\u202a-\u202e]")
            if name.isprintable():
                self.assertEqual(shown["name"], name)
        self.assertEqual(self.browser.run("document.querySelectorAll('img').length"), 0)
        self.choose("safe\u202egnp.exe")
        self.assertEqual(self.shown()["name"], "safe\\u202egnp.exe")


class ManyClassifiers(Case):
    COUNT = 10_000
    DOCUMENT = configuration([classifier(f"customer-{at:05}", [("t", [at % 64], GROUPS[at % 9])])
                              for at in range(COUNT)])

    def test_are_drawn_only_as_far_as_they_are_seen(self):
        self.browser.until(f"app.feed.classifiers.size === {self.COUNT}")
        self.settled()
        self.assertLess(self.browser.run("document.querySelectorAll('#classifier-list .row').length"),
                        40)
        self.browser.run("document.getElementById('classifier-list').focus()")
        self.browser.press("End")
        self.settled()
        self.assertEqual(self.shown()["name"], f"customer-{self.COUNT - 1:05}")
        self.assertLess(self.browser.run("document.querySelectorAll('*').length"), 1500)

    def test_do_not_make_the_page_stall(self):
        longest = self.browser.run("""new Promise((done) => {
            const box = document.getElementById("classifier-list");
            let longest = 0, last = performance.now(), left = 60;
            const step = (now) => {
                longest = Math.max(longest, now - last);
                last = now;
                box.scrollTop += 4000;
                if (--left) requestAnimationFrame(step);
                else done(longest);
            };
            requestAnimationFrame(step);
        })""")
        # On a busy machine, too, somebody who scrolls must not wait for a second.
        self.assertLess(longest, 1000)


if __name__ == "__main__":
    main()
