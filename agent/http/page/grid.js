// The 64 DSCP values of a classifier, 8 by 8.

const kValues = 64;

/** For each value the claims on it, `{term, group}`; values above 63 stand behind them. */
function claimsOf(classifier) {
    const claims = Array.from({length: kValues}, () => []);
    for (const [id, term] of classifier.terms)
        for (const value of new Set(dscpOf(term)))
            (claims[value] = claims[value] || []).push({term: id, group: groupOf(term)});
    return claims;
}

function groupsIn(claims) { return [...new Set(claims.map((claim) => claim.group))].sort(compare); }

/** How many values go to which group, in ascending order of the groups. */
function shares(claims) {
    const counts = new Map();
    for (const list of claims)
        for (const group of groupsIn(list || [])) counts.set(group, (counts.get(group) || 0) + 1);
    return [...counts].sort((a, b) => compare(a[0], b[0]));
}

/** The grid as a small picture; the text beside it says the same. */
function drawSmallGrid(canvas, claims, colours) {
    const side = 5;
    const scale = Math.max(1, Math.ceil(devicePixelRatio));
    canvas.width = canvas.height = 8 * side * scale;
    const context = canvas.getContext("2d");
    context.scale(scale, scale);
    for (let value = 0; value < kValues; ++value) {
        const x = value % 8 * side;
        const y = Math.floor(value / 8) * side;
        const found = groupsIn(claims[value]);
        context.fillStyle = colours.empty;
        context.fillRect(x, y, side - 1, side - 1);
        found.slice(0, 2).forEach((group, at) => {
            context.fillStyle = colours.list[groups.colourNumber(group)];
            if (at === 0) context.fillRect(x, y, side - 1, side - 1);
            else context.fillRect(x + 2, y + 2, side - 3, side - 3);
        });
    }
}

function describeValue(value, claims) {
    const label = `DSCP ${data.dscp[value] || value}`;
    if (!claims.length) return `${label}: no term claims it`;
    const parts = claims.map(({term, group}) =>
        (group ? `group ${visible(group)}` : "no target group") + ` by term ${visible(term)}`);
    const several = claims.length > 1 ? `${claims.length} terms claim it: ` : "";
    return `${label}: ${several}${parts.join("; ")}`;
}

function drawCell(cell, value, claims) {
    const found = groupsIn(claims);
    cell.className = "cell";
    cell.style.removeProperty("--second");
    let mark = "";
    if (found.length) {
        cell.className += ` ${groups.className(found[0])}`;
        mark = found.map((group) => groups.mark(group)).join("+");
        if (claims.length > found.length) mark += `×${claims.length}`;
    }
    if (found.length > 1)
        cell.style.setProperty("--second", `var(--g${groups.colourNumber(found[1])})`);
    cell.classList.toggle("several", claims.length > 1);
    cell.setAttribute("aria-label", describeValue(value, claims));
    cell.dataset.claims = JSON.stringify(claims);
    cell.replaceChildren(el("span", {className: "value", textContent: value}),
        el("span", {className: "mark", textContent: mark}));
}

/** The grid of one classifier; the arrow keys move from value to value. */
class DscpGrid {
    constructor(box, info) {
        this.box = box;
        this.info = info;
        this.claims = claimsOf({terms: new Map()});
        this.at = 0;
        this.isTelling = false;
        this.cells = [];
        box.setAttribute("role", "grid");
        for (let row = 0; row < 8; ++row) {
            const line = box.appendChild(el("div", {className: "line", role: "row"}));
            for (let column = 0; column < 8; ++column)
                this.cells.push(line.appendChild(el("div", {role: "gridcell", tabIndex: -1})));
        }
        this.cells[0].tabIndex = 0;
        box.addEventListener("keydown", (event) => this.handleKey(event));
        box.addEventListener("focusin", (event) => this.tell(this.cells.indexOf(event.target)));
        box.addEventListener("pointerover", (event) => {
            const cell = event.target.closest(".cell");
            if (cell) this.tell(this.cells.indexOf(cell));
        });
    }

    show(claims) {
        this.claims = claims;
        this.cells.forEach((cell, value) => drawCell(cell, value, claims[value]));
        if (this.isTelling) this.tell(this.at);
        else this.info.textContent = "Point at a value, or reach it with the arrow keys.";
    }

    tell(value) {
        if (value < 0) return;
        this.isTelling = true;
        this.cells[this.at].tabIndex = -1;
        this.at = value;
        this.cells[value].tabIndex = 0;
        this.info.textContent = describeValue(value, this.claims[value]);
    }

    handleKey(event) {
        const moves = {ArrowRight: 1, ArrowLeft: -1, ArrowDown: 8, ArrowUp: -8};
        let to = this.at + (moves[event.key] || 0);
        if (event.key === "Home") to = this.at - this.at % 8;
        else if (event.key === "End") to = this.at - this.at % 8 + 7;
        else if (!(event.key in moves)) return;
        event.preventDefault();
        if (to >= 0 && to < kValues) this.cells[to].focus();
    }
}
