// A list of any length of which only the rows in sight are drawn. All rows have one height.

class VirtualList {
    /**
     * `box` scrolls. Options: `role` of the box and `rowRole`, `draw(item, row)` fills a row,
     * `stamp(item)` differs whenever the item is to be drawn again, `chosen(item, index)` is called
     * for the row that the reader moves to, `opened` for one that is clicked or confirmed, `id(item)`
     * is equal for the same item in another list, `key(event, item)` may handle a key and return true.
     */
    constructor(box, options) {
        this.box = box;
        this.options = options;
        this.items = [];
        this.rows = new Map();
        this.active = -1;
        this.space = box.appendChild(el("div", {className: "space", role: "presentation"}));
        box.tabIndex = 0;
        box.setAttribute("role", options.role);
        const draw = onceAFrame(() => this.draw());
        box.addEventListener("scroll", draw, {passive: true});
        new ResizeObserver(draw).observe(box);
        box.addEventListener("keydown", (event) => this.handleKey(event));
        box.addEventListener("click", (event) => this.handleClick(event));
    }

    rowHeight() {
        return parseFloat(getComputedStyle(this.box).getPropertyValue("--row")) || 32;
    }

    show(items) {
        const id = this.options.id || ((item) => item);
        const chosen = this.active < 0 ? null : id(this.items[this.active]);
        this.items = items;
        const isThere = this.active >= 0 && this.active < items.length &&
            id(items[this.active]) === chosen;
        if (chosen !== null && !isThere)
            this.active = items.findIndex((item) => id(item) === chosen);
        this.draw();
    }

    draw() {
        const height = this.rowHeight();
        this.space.style.height = `${this.items.length * height}px`;
        const first = Math.max(0, Math.floor(this.box.scrollTop / height) - 2);
        const last = Math.min(this.items.length,
            Math.ceil((this.box.scrollTop + this.box.clientHeight) / height) + 2);
        for (const [index, row] of this.rows)
            if (index < first || index >= last) { row.remove(); this.rows.delete(index); }
        for (let index = first; index < last; ++index) this.drawRow(index, height);
        if (this.rows.has(this.active))
            this.box.setAttribute("aria-activedescendant", this.rows.get(this.active).id);
        else this.box.removeAttribute("aria-activedescendant");
    }

    drawRow(index, height) {
        let row = this.rows.get(index);
        if (!row) {
            row = el("div", {className: "row", id: `${this.box.id}-${index}`,
                role: this.options.rowRole});
            this.rows.set(index, row);
            this.space.append(row);
        }
        const item = this.items[index];
        const stamp = this.options.stamp(item);
        row.style.transform = `translateY(${index * height}px)`;
        row.setAttribute("aria-posinset", index + 1);
        row.setAttribute("aria-setsize", this.items.length);
        if (this.options.rowRole === "option" || this.options.rowRole === "treeitem")
            row.setAttribute("aria-selected", String(index === this.active));
        row.classList.toggle("active", index === this.active);
        if (row.item === item && row.stamp === stamp) return;
        row.item = item;
        row.stamp = stamp;
        row.replaceChildren();
        this.options.draw(item, row);
    }

    /** Draws all rows in sight anew. */
    redraw() {
        for (const row of this.rows.values()) row.stamp = undefined;
        this.draw();
    }

    moveTo(index, isSilent) {
        if (!this.items.length) return;
        this.active = Math.max(0, Math.min(index, this.items.length - 1));
        const height = this.rowHeight();
        const top = this.active * height;
        if (top < this.box.scrollTop) this.box.scrollTop = top;
        else if (top + height > this.box.scrollTop + this.box.clientHeight)
            this.box.scrollTop = top + height - this.box.clientHeight;
        this.draw();
        if (!isSilent && this.options.chosen) this.options.chosen(this.items[this.active], this.active);
    }

    handleKey(event) {
        if (event.target !== this.box || event.ctrlKey || event.altKey || event.metaKey) return;
        const page = Math.max(1, Math.floor(this.box.clientHeight / this.rowHeight()) - 1);
        const moves = {ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page};
        const item = this.items[this.active];
        if (item && this.options.key && this.options.key(event, item)) event.preventDefault();
        else if (event.key in moves) {
            event.preventDefault();
            this.moveTo(this.active + moves[event.key]);
        } else if (event.key === "Home" || event.key === "End") {
            event.preventDefault();
            this.moveTo(event.key === "Home" ? 0 : this.items.length - 1);
        } else if (event.key === "Enter" && item && this.options.opened) {
            event.preventDefault();
            this.options.opened(item, this.active);
        }
    }

    handleClick(event) {
        const row = event.target.closest(".row");
        if (!row || event.target.closest("a, button")) return;
        this.moveTo([...this.rows].find(([, each]) => each === row)[0]);
        if (this.options.opened) this.options.opened(row.item, this.active);
    }
}
