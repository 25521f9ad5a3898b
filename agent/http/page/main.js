// Brings the parts of the page together.

const kViews = ["classifiers", "differences", "machines", "changes"];
const kWide = matchMedia("(min-width: 1240px)");

class App {
    constructor() {
        this.feed = new Feed({
            status: (text, isLive) => this.tellStatus(text, isLive),
            begun: () => { this.differences.ask(); this.machines.ask(false); this.render(); },
            changed: (change) => {
                this.differences.ask();
                this.machines.changed(change);
                this.render();
            },
        });
        this.render = onceAFrame(() => this.draw());
        this.differences = new Differences(() => this.render());
        this.detail = new ClassifierDetail(this.feed, this.differences);
        this.list = new ClassifierList(this.feed, this.differences,
            (item) => this.choose(item.name));
        this.machines = new MachineTree();
        this.changes = new ChangeList(this.feed);
        this.watchTabs();
        this.watchSearch();
        this.watchTheme();
        document.getElementById("back").addEventListener("click", () => this.leaveDetail());
        kWide.addEventListener("change", () => this.open(this.view));
        this.open("classifiers");
    }

    tellStatus(text, isLive) {
        const status = document.getElementById("connection");
        status.textContent = text;
        status.classList.toggle("live", isLive);
    }

    draw() {
        const count = (id, number) => {
            document.querySelector(`#tab-${id} .count`).textContent = number.toLocaleString("en");
        };
        count("classifiers", this.feed.classifiers.size);
        count("differences", this.differences.entries.length);
        count("changes", this.feed.total);
        if (this.view === "classifiers") {
            this.list.show();
            this.detail.show();
        }
        if (this.view === "differences") this.differences.show();
        if (this.view === "machines") this.machines.show();
        if (this.view === "changes" || kWide.matches) this.changes.show();
    }

    choose(key) {
        document.body.classList.add("has-detail");
        this.detail.choose(key);
    }

    leaveDetail() {
        document.body.classList.remove("has-detail");
        document.getElementById("classifier-list").focus();
        this.render();
    }

    open(view) {
        this.view = view === "changes" && kWide.matches ? "classifiers" : view;
        for (const each of kViews) {
            const isOpen = each === this.view;
            const tab = document.getElementById(`tab-${each}`);
            tab.setAttribute("aria-selected", String(isOpen));
            tab.tabIndex = isOpen ? 0 : -1;
            document.getElementById(each).classList.toggle("off", !isOpen);
        }
        document.body.dataset.view = this.view;
        this.machines.setShown(this.view === "machines");
        this.render();
    }

    watchTabs() {
        const tabs = document.querySelector("[role=tablist]");
        tabs.addEventListener("click", (event) => {
            const tab = event.target.closest("[role=tab]");
            if (tab) this.open(tab.id.slice(4));
        });
        tabs.addEventListener("keydown", (event) => {
            const step = {ArrowRight: 1, ArrowLeft: -1}[event.key];
            if (!step) return;
            const views = kViews.filter((view) => view !== "changes" || !kWide.matches);
            const at = (views.indexOf(this.view) + step + views.length) % views.length;
            this.open(views[at]);
            document.getElementById(`tab-${views[at]}`).focus();
        });
    }

    watchSearch() {
        const box = document.getElementById("search");
        box.addEventListener("input", () => {
            for (const part of [this.list, this.differences, this.machines, this.changes])
                part.search = box.value.trim().toLowerCase();
            this.render();
        });
        document.addEventListener("keydown", (event) => {
            if (event.key !== "/" || /^(INPUT|TEXTAREA)$/.test(event.target.tagName)) return;
            event.preventDefault();
            box.focus();
        });
    }

    /** Light, dark, or as the system says. */
    watchTheme() {
        const button = document.getElementById("theme");
        const themes = ["auto", "light", "dark"];
        let theme = themes.includes(localStorage.getItem("theme"))
            ? localStorage.getItem("theme") : "auto";
        const set = () => {
            document.documentElement.dataset.theme = theme;
            button.textContent = {auto: "◐ Auto", light: "☀ Light", dark: "☾ Dark"}[theme];
            button.setAttribute("aria-label", `Colour scheme: ${theme}`);
            this.list.readColours();
            this.list.list.redraw();
        };
        button.addEventListener("click", () => {
            theme = themes[(themes.indexOf(theme) + 1) % themes.length];
            localStorage.setItem("theme", theme);
            set();
        });
        matchMedia("(prefers-color-scheme: dark)").addEventListener("change", set);
        set();
    }
}

window.app = new App();
