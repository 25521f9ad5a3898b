// The list of classifiers and what there is to see of the chosen one.

class ClassifierList {
    constructor(feed, differences, chosen) {
        this.feed = feed;
        this.differences = differences;
        this.search = "";
        this.shares = new WeakMap();
        this.list = new VirtualList(document.getElementById("classifier-list"), {
            role: "listbox", rowRole: "option",
            stamp: (item) => `${item.version} ${this.differences.countOf(item.name)}`,
            draw: (item, row) => this.drawRow(item, row),
            chosen,
            opened: (item) => { chosen(item); document.getElementById("detail").focus(); },
        });
        this.readColours();
    }

    readColours() {
        this.colours = {list: groups.colours(),
            empty: getComputedStyle(document.documentElement).getPropertyValue("--unused")};
        const probe = document.body.appendChild(el("span", {className: "cell"}));
        this.colours.empty = getComputedStyle(probe).backgroundColor;
        probe.remove();
    }

    show() {
        const all = this.feed.all();
        const items = this.search ? all.filter((item) => this.isWanted(item)) : all;
        this.list.show(items);
        const note = document.getElementById("classifier-note");
        note.textContent = this.search
            ? `${items.length.toLocaleString("en")} of ${plural(all.length, "classifier")}`
            : plural(all.length, "classifier");
    }

    /** By its own name, or that of a term or target group. */
    isWanted(item) {
        if (matches(item.name, this.search)) return true;
        for (const [id, term] of item.terms)
            if (matches(id, this.search) || matches(groupOf(term), this.search)) return true;
        return false;
    }

    drawRow(item, row) {
        const claims = claimsOf(item);
        const canvas = el("canvas", {className: "small-grid", "aria-hidden": "true"});
        drawSmallGrid(canvas, claims, this.colours);
        const legend = el("span", {className: "legend"});
        for (const [group, count] of shares(claims).slice(0, 6))
            legend.append(el("span", {className: "share"}, groups.chip(group), ` ${count}`));
        if (!legend.childNodes.length) legend.append("no DSCP values");
        const count = this.differences.countOf(item.name);
        row.append(canvas, el("span", {className: "words"},
            el("span", {className: "first"}, name(item.name),
                el("span", {className: "type", textContent: item.type}),
                count ? el("span", {className: "badge", textContent: `≠ ${count}`,
                    title: plural(count, "difference")}) : null),
            legend));
        row.setAttribute("aria-label", `${visible(item.name)}, ${item.type}, ` +
            `${plural(item.terms.size, "term")}, ` +
            shares(claims).map(([group, values]) =>
                `${plural(values, "value")} to ${visible(group) || "no target group"}`).join(", ") +
            (count ? `, ${plural(count, "difference")}` : ""));
    }
}

class ClassifierDetail {
    constructor(feed, differences) {
        this.feed = feed;
        this.differences = differences;
        this.box = document.getElementById("detail");
        this.name = null;
        this.grid = new DscpGrid(document.getElementById("grid"),
            document.getElementById("grid-info"));
        this.terms = new VirtualList(document.getElementById("terms"), {
            role: "table", rowRole: "row",
            stamp: ({id, term}) => JSON.stringify([id, term]),
            draw: ({id, term}, row) => this.drawTerm(id, term, row),
        });
    }

    choose(key) {
        this.name = key;
        this.show();
    }

    show() {
        const item = this.name === null ? null : this.feed.classifiers.get(this.name);
        this.box.classList.toggle("empty", !item);
        document.getElementById("detail-none").textContent = this.name === null
            ? "Choose a classifier to see its DSCP values and terms."
            : `${visible(this.name)} is not in the state.`;
        this.showDifferences();
        if (!item) return;
        document.getElementById("detail-name").replaceChildren(name(item.name));
        document.getElementById("detail-type").textContent =
            `${item.type} · ${plural(item.terms.size, "term")}`;
        const claims = claimsOf(item);
        this.grid.show(claims);
        this.showLegend(claims);
        this.showTerms(item);
    }

    showLegend(claims) {
        const legend = document.getElementById("legend");
        legend.replaceChildren(...shares(claims).map(([group, count]) =>
            el("li", {}, groups.chip(group), ` ${plural(count, "value")}`)));
        const above = claims.length > kValues
            ? Object.keys(claims).filter((value) => value >= kValues) : [];
        document.getElementById("above").textContent = above.length
            ? `Values above 63, which no packet has: ${above.join(", ")}` : "";
    }

    showTerms(item) {
        const terms = [...item.terms].map(([id, term]) => ({id, term}))
            .sort((a, b) => compare(a.id, b.id));
        const box = document.getElementById("terms");
        box.style.height = `calc(${Math.min(terms.length, 12)} * var(--row) + 2px)`;
        box.setAttribute("aria-rowcount", terms.length);
        this.terms.show(terms);
        document.getElementById("no-terms").hidden = terms.length > 0;
    }

    drawTerm(id, term, row) {
        const values = dscpOf(term);
        const link = el("a", {textContent: "why", className: "why",
            href: `/api/explain?classifier=${encodeURIComponent(this.name)}` +
                `&term=${encodeURIComponent(id)}`,
            "aria-label": `Why term ${visible(id)} is so, as JSON`});
        row.append(el("span", {role: "cell"}, name(id)),
            el("span", {role: "cell", className: values.length ? "" : "quiet",
                textContent: values.length ? dscpText(values) : "no DSCP values",
                title: values.join(", ")}),
            el("span", {role: "cell"}, groups.chip(groupOf(term))),
            el("span", {role: "cell"}, link));
        row.dataset.term = id;
        row.dataset.dscp = JSON.stringify(values);
        row.dataset.group = groupOf(term);
    }

    showDifferences() {
        const box = document.getElementById("detail-differences");
        const entries = this.name === null ? []
            : this.differences.entries.filter((entry) => entry.classifier === this.name);
        box.hidden = entries.length === 0;
        box.querySelector("ul").replaceChildren(...entries.map((entry) => differenceItem(entry)));
    }
}
