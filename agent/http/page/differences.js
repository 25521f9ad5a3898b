// What is configured and is not so in the state, and why.

const kPoll = 5000;         // milliseconds: not every cause of a difference is a published change
const kLeastPause = 1000;   // between two questions
const kPauseFactor = 20;    // an answer that takes long is asked for less often

/** One entry for each member that differs, `{classifier, term, member, config, state}`, and one for
 * each finding, `{classifier, term, finding}`. */
function flatDifferences(tree) {
    const entries = [];
    const add = (classifier, term, object) => {
        for (const [member, value] of Object.entries(object)) {
            if (member === "findings")
                for (const finding of value) entries.push({classifier, term, finding});
            else if (member !== "terms")
                entries.push({classifier, term, member, config: value.config, state: value.state});
        }
    };
    for (const [classifier, object] of Object.entries(tree)) {
        add(classifier, null, object);
        for (const [term, differing] of Object.entries(object.terms || {}))
            add(classifier, term, differing);
    }
    return entries;
}

function sideText(value) {
    if (value === undefined) return "nothing";
    return Array.isArray(value) ? dscpText(value) || "no values" : visible(String(value));
}

function placeName(entry) {
    const parts = [name(entry.classifier)];
    if (entry.term !== null) parts.push(el("span", {className: "quiet", textContent: " term "}),
        name(entry.term));
    return el("span", {className: "place"}, ...parts);
}

function differenceText(entry) {
    if (entry.finding) {
        const finding = data.findings[entry.finding];
        return [el("span", {className: "sentence",
            textContent: finding ? finding.sentence : entry.finding}),
        el("span", {className: "advice", textContent: finding ? finding.advice : ""})];
    }
    return [el("span", {className: "sentence"}, `${entry.member}: configured `,
        el("b", {textContent: sideText(entry.config)}), ", in the state ",
        el("b", {textContent: sideText(entry.state)}))];
}

function differenceItem(entry) {
    return el("li", {"data-finding": entry.finding || ""},
        entry.term === null ? null : el("span", {className: "place"}, "term ", name(entry.term)),
        ...differenceText(entry));
}

class Differences {
    constructor(changed) {
        this.changed = changed;
        this.entries = [];
        this.counts = new Map();
        this.shown = null;
        this.isAsking = false;
        this.next = 0;
        this.search = "";
        setInterval(() => { if (!document.hidden) this.ask(); }, kPoll);
        this.list = new VirtualList(document.getElementById("difference-list"), {
            role: "list", rowRole: "listitem",
            stamp: (entry) => JSON.stringify(entry),
            draw: (entry, row) => {
                row.append(placeName(entry), ...differenceText(entry));
                row.title = row.textContent;
            },
        });
    }

    countOf(classifier) { return this.counts.get(classifier) || 0; }

    /** Asks the agent, soon, and not more often than that is cheap. */
    async ask() {
        if (this.isAsking) return;
        this.isAsking = true;
        await new Promise((go) => setTimeout(go, Math.max(0, this.next - performance.now())));
        const begin = performance.now();
        try {
            const answer = await fetch("/api/differences");
            if (answer.ok) this.take(await answer.text());
        } catch (failure) {
            // The connection's status is told elsewhere.
        }
        const end = performance.now();
        this.next = end + Math.max(kLeastPause, kPauseFactor * (end - begin));
        this.isAsking = false;
    }

    take(text) {
        if (text === this.shown) return;
        this.shown = text;
        this.entries = flatDifferences(JSON.parse(text));
        this.counts = new Map();
        for (const entry of this.entries)
            this.counts.set(entry.classifier, this.countOf(entry.classifier) + 1);
        this.changed();
    }

    show() {
        const wanted = this.entries.filter((entry) => !this.search ||
            matches(entry.classifier, this.search) || matches(entry.term || "", this.search));
        this.list.show(wanted);
        document.getElementById("difference-note").textContent = this.shown === null
            ? "Not known yet." : this.entries.length === 0
                ? "Everything that is configured is so in the state."
                : `${plural(this.entries.length, "difference")} between configuration and state`;
    }
}
