// The last published changes, the latest first.

class ChangeList {
    constructor(feed) {
        this.feed = feed;
        this.search = "";
        this.told = 0;
        this.list = new VirtualList(document.getElementById("change-list"), {
            role: "list", rowRole: "listitem",
            stamp: (change) => change.number,
            draw: (change, row) => this.drawRow(change, row),
        });
        // Said aloud at most every five seconds: not each change.
        setInterval(() => this.sayAloud(), 5000);
    }

    show() {
        const wanted = this.search
            ? this.feed.changes.filter((change) => matches(change.classifier, this.search) ||
                matches(change.term || "", this.search))
            : this.feed.changes;
        this.list.show(wanted.slice(-kMostChanges).reverse());
        document.getElementById("change-note").textContent = this.feed.total === 0
            ? "No change since this page was opened."
            : `${plural(this.feed.total, "change")} since this page was opened`;
    }

    sayAloud() {
        const count = this.feed.total - this.told;
        this.told = this.feed.total;
        if (count > 0) document.getElementById("spoken").textContent = plural(count, "new change");
    }

    drawRow(change, row) {
        const [sign, word] = change.isDelete ? ["−", "removed"]
            : change.before === null ? ["+", "created"] : ["~", "updated"];
        const what = change.term === null && change.step === "terms" ? "all terms" : change.term;
        row.classList.remove("created", "updated", "removed");
        row.classList.add(word);
        row.append(
            el("time", {textContent: timeOfDay(change.time),
                dateTime: new Date(change.time).toISOString()}),
            el("span", {className: "sign", textContent: sign, "aria-hidden": "true"}),
            el("span", {className: "place"}, name(change.classifier),
                what === null ? null : el("span", {className: "quiet", textContent: " / "}),
                what === null ? null : name(what)),
            el("span", {className: "what", textContent: `${word}` +
                (change.isDelete ? (change.before ? `, was ${change.before}` : "")
                    : change.before !== null && change.before !== change.after
                        ? `: ${change.before} → ${change.after}` : `: ${change.after}`)}));
        row.title = row.querySelector(".what").textContent;
    }
}
