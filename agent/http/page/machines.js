// The tree of machines, foldable. What just ran is lit up: machines that are new, whose attributes
// changed, or that stand for what was just published.

const kLit = 4000;                      // milliseconds
const kLargest = 8 * 1024 * 1024;       // characters of a tree that is asked for by itself

function isMachine(value) { return value !== null && typeof value === "object" && "attributes" in value; }
function isInput(value) {
    return value !== null && typeof value === "object" && "type" in value && "name" in value &&
        !("attributes" in value);
}
function shortType(type) { return type.split("::").pop(); }
function escapePart(part) { return part.replaceAll("%", "%25").replaceAll(":", "%3A"); }

/** The value of an attribute that is no machine, in words. */
function attributeText(value) {
    if (value === null) return "none";
    if (isInput(value)) return shortType(value.type) + (value.name === null ? "" : ` ${value.name}`);
    return typeof value === "string" ? value : JSON.stringify(value);
}

class MachineTree {
    constructor() {
        this.root = null;
        this.open = new Set();
        this.marks = new Map();     // attributes of each machine by path, as of the last answer
        this.byKey = new Map();     // paths of machines by key
        this.lit = new Map();       // path: until when
        this.search = "";
        this.isAsking = this.isShown = false;
        this.next = this.size = 0;
        this.list = new VirtualList(document.getElementById("machine-list"), {
            role: "tree", rowRole: "treeitem",
            id: (node) => node.path === null ? `${node.above}\u0000${node.text}` : node.path,
            stamp: (node) => `${node.isOpen} ${node.text} ${node.value} ${this.isLit(node.path)}`,
            draw: (node, row) => this.drawNode(node, row),
            key: (event, node) => this.handleKey(event, node),
            opened: (node) => this.toggle(node),
        });
        document.getElementById("machine-refresh").addEventListener("click", () => this.ask(true));
    }

    setShown(isShown) {
        this.isShown = isShown;
        if (isShown) this.ask(this.root === null);
    }

    async ask(isWanted) {
        if (this.isAsking || !this.isShown || (!isWanted && this.size > kLargest)) return;
        this.isAsking = true;
        const pause = isWanted ? 0 : this.next - performance.now();
        await new Promise((go) => setTimeout(go, Math.max(0, pause)));
        const begin = performance.now();
        try {
            const answer = await fetch("/api/machines");
            if (answer.ok) this.take(await answer.text());
        } catch (failure) {
            // The connection's status is told elsewhere.
        }
        const end = performance.now();
        this.next = end + Math.max(kLeastPause, kPauseFactor * (end - begin));
        this.isAsking = false;
    }

    take(text) {
        const isFirst = this.root === null;
        this.size = text.length;
        this.root = JSON.parse(text);
        const before = this.marks;
        this.marks = new Map();
        this.byKey = new Map();
        this.root.forEach((machine) => this.note(machine, ""));
        if (isFirst) for (const path of this.marks.keys())
            if (path.split("\u0000").length <= 4) this.open.add(path);
        if (!isFirst) for (const [path, mark] of this.marks)
            if (before.get(path) !== mark) this.light(path);
        this.show();
    }

    note(machine, above) {
        const path = `${above}\u0000${machine.type}\u0000${machine.key}`;
        const own = [];
        if (machine.key !== null)
            this.byKey.set(machine.key, [...(this.byKey.get(machine.key) || []), path]);
        for (const [label, value] of Object.entries(machine.attributes)) {
            if (isMachine(value)) this.note(value, path);
            else if (Array.isArray(value) && value.some(isMachine))
                value.forEach((each) => this.note(each, path));
            else own.push(label, value);
        }
        this.marks.set(path, JSON.stringify(own));
    }

    /** Lights a machine, and those above it, which may be folded. */
    light(path) {
        const until = performance.now() + kLit;
        const parts = path.split("\u0000");
        for (let end = parts.length; end > 1; end -= 2)
            this.lit.set(parts.slice(0, end).join("\u0000"), until);
        clearTimeout(this.timer);
        this.timer = setTimeout(() => { this.lit.clear(); this.show(); }, kLit);
    }

    isLit(path) { return (this.lit.get(path) || 0) > performance.now(); }

    changed(change) {
        if (!this.isShown) return;
        const classifier = escapePart(change.classifier);
        const keys = [change.classifier, `openconfig:${classifier}:`, `openconfig::${classifier}`];
        if (change.term !== null) keys.push(`openconfig:${classifier}:${escapePart(change.term)}`);
        for (const key of keys) (this.byKey.get(key) || []).forEach((path) => this.light(path));
        this.ask(false);
    }

    /** The rows that are not folded away. */
    nodes() {
        const nodes = [];
        const addAttribute = (label, value, level, above) => nodes.push(
            {path: null, above, level, text: label, value: attributeText(value), isOpen: null});
        const add = (machine, above, level) => {
            const path = `${above}\u0000${machine.type}\u0000${machine.key}`;
            const isOpen = this.open.has(path);
            nodes.push({path, level, text: shortType(machine.type), value: machine.key, isOpen});
            if (!isOpen) return;
            for (const [attribute, value] of Object.entries(machine.attributes)) {
                if (isMachine(value)) add(value, path, level + 1);
                else if (Array.isArray(value) && value.some(isMachine))
                    value.forEach((each) => add(each, path, level + 1));
                else addAttribute(attribute, value, level + 1, path);
            }
        };
        (this.root || []).forEach((machine) => add(machine, "", 1));
        return nodes;
    }

    /** Machines whose key or type is searched for, without their places in the tree. */
    found() {
        return [...this.marks.keys()].map((path) => path.split("\u0000"))
            .filter((parts) => matches(parts.at(-1), this.search) ||
                matches(parts.at(-2), this.search))
            .map((parts) => ({path: parts.join("\u0000"), level: 1, isOpen: null,
                text: shortType(parts.at(-2)), value: parts.at(-1) === "null" ? null : parts.at(-1)}));
    }

    show() {
        if (!this.isShown) return;
        this.list.show(this.search ? this.found() : this.nodes());
        document.getElementById("machine-note").textContent = this.root === null
            ? "Not known yet." : plural(this.marks.size, "machine") +
                (this.size > kLargest ? "; a tree of this size is read again only when asked for" : "");
    }

    drawNode(node, row) {
        const isLit = node.path !== null && this.isLit(node.path);
        row.setAttribute("aria-level", node.level);
        if (node.isOpen === null) row.removeAttribute("aria-expanded");
        else row.setAttribute("aria-expanded", String(node.isOpen));
        row.style.paddingLeft = `${0.5 + (node.level - 1) * 1.1}rem`;
        row.classList.toggle("lit", isLit);
        row.append(el("span", {className: "fold", "aria-hidden": "true",
            textContent: node.isOpen === null ? "" : node.isOpen ? "▾" : "▸"}),
        el("span", {className: node.path === null ? "attribute" : "machine", textContent: node.text}),
        node.value === null ? el("span") : name(node.value, node.path === null ? "quiet" : "name"),
        isLit ? el("span", {className: "ran", textContent: "● just ran"}) : el("span"));
    }

    toggle(node) {
        if (node.isOpen === null) return;
        if (node.isOpen) this.open.delete(node.path);
        else this.open.add(node.path);
        this.show();
    }

    handleKey(event, node) {
        if (event.key === "ArrowRight" && node.isOpen === false) this.toggle(node);
        else if (event.key === "ArrowLeft" && node.isOpen === true) this.toggle(node);
        else if (event.key === "ArrowLeft") {
            let at = this.list.active;
            while (at > 0 && this.list.items[at].level >= node.level) --at;
            this.list.moveTo(at);
        } else if (event.key === "ArrowRight" && node.isOpen === true)
            this.list.moveTo(this.list.active + 1);
        else return false;
        return true;
    }
}
