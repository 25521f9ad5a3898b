// How target groups look: each has a colour and a mark. Colours repeat after eight groups, marks
// never do, so that nothing depends on colour alone.

const kColours = 8;

class Groups {
    constructor() { this.numbers = new Map(); }

    /** Marks the groups of a state in ascending order; later ones take the marks that follow. */
    begin(tree) {
        const all = new Set();
        for (const classifier of Object.values(tree.classifier || {}))
            for (const term of Object.values(classifier.terms ? classifier.terms.term : {}))
                if (groupOf(term)) all.add(groupOf(term));
        [...all].sort(compare).forEach((group) => this.number(group));
    }

    number(group) {
        if (!this.numbers.has(group)) this.numbers.set(group, this.numbers.size);
        return this.numbers.get(group);
    }

    /** A, B, ..., Z, AA, AB, ...; a dash for no group. */
    mark(group) {
        if (group === "") return "–";
        let mark = "";
        for (let rest = this.number(group) + 1; rest > 0; rest = Math.floor((rest - 1) / 26))
            mark = String.fromCharCode(65 + (rest - 1) % 26) + mark;
        return mark;
    }

    className(group) {
        return group === "" ? "group none" : `group g${this.number(group) % kColours}`;
    }

    /** The colours as they are in the present colour scheme; the last one is for no group. */
    colours() {
        const probe = document.body.appendChild(el("span", {className: "group"}));
        const colours = [];
        for (let number = 0; number < kColours; ++number) {
            probe.className = `group g${number}`;
            colours.push(getComputedStyle(probe).backgroundColor);
        }
        probe.className = "group none";
        colours.push(getComputedStyle(probe).color);
        probe.remove();
        return colours;
    }

    colourNumber(group) { return group === "" ? kColours : this.number(group) % kColours; }

    chip(group) {
        return el("span", {className: "chip"},
            el("span", {className: this.className(group), textContent: this.mark(group),
                "aria-hidden": "true"}),
            group === "" ? el("span", {className: "quiet", textContent: "no target group"})
                : name(group));
    }
}

const groups = new Groups();
