// The published state, kept true by the events of the agent.

const kStateRoot = "qos/openconfig/state/classifiers/";
const kMostChanges = 1000;

function unescapeKey(key) { return key.replaceAll("~1", "/").replaceAll("~0", "~"); }

/** The classifier and the term that a path is about; the term is null if it is about none. */
function placeOf(path) {
    const steps = path.slice(kStateRoot.length).split("/");
    return {classifier: unescapeKey(steps[1]), step: steps[2] || null,
        term: steps.length > 4 ? unescapeKey(steps[4]) : null};
}

function compare(a, b) { return a < b ? -1 : a > b ? 1 : 0; }

class Feed {
    /** `changed(change)` is called for each change, `begun()` for each snapshot, `status(text)`. */
    constructor(listener) {
        this.classifiers = new Map();
        this.changes = [];
        this.total = 0;
        this.listener = listener;
        this.sorted = null;
        this.connect();
    }

    connect() {
        const source = new EventSource("/api/events");
        source.addEventListener("snapshot", (event) => this.begin(JSON.parse(event.data)));
        source.addEventListener("change",
            (event) => this.apply(JSON.parse(event.data), Number(event.lastEventId.split("-")[2])));
        source.onopen = () => this.listener.status("live", true);
        source.onerror = () => {
            this.listener.status("connection lost, trying again", false);
            if (source.readyState !== EventSource.CLOSED) return;
            source.close();
            setTimeout(() => this.connect(), 3000);
        };
    }

    begin(tree) {
        this.classifiers = new Map();
        this.sorted = null;
        for (const [key, value] of Object.entries(tree.classifier || {}))
            this.classifiers.set(key, {
                name: key, type: value.state ? value.state.type : "", version: 0,
                terms: new Map(Object.entries(value.terms ? value.terms.term : {}))});
        groups.begin(tree);
        this.listener.begun();
    }

    classifier(key) {
        let found = this.classifiers.get(key);
        if (!found) {
            found = {name: key, type: "", version: 0, terms: new Map()};
            this.classifiers.set(key, found);
            this.sorted = null;
        }
        return found;
    }

    apply(line, time) {
        const path = line.update || line.delete;
        const place = placeOf(path);
        const change = {number: ++this.total, time, ...place, isDelete: "delete" in line,
            before: null, after: null};
        if (change.isDelete) this.remove(place, change);
        else this.update(place, line.value, change);
        this.changes.push(change);
        if (this.changes.length > 2 * kMostChanges) this.changes.splice(0, kMostChanges);
        this.listener.changed(change);
    }

    update(place, value, change) {
        const classifier = this.classifier(place.classifier);
        ++classifier.version;
        if (place.term === null) {
            change.before = classifier.type || null;
            change.after = classifier.type = value.type;
        } else {
            change.before = termText(classifier.terms.get(place.term));
            classifier.terms.set(place.term, value);
            change.after = termText(value);
        }
    }

    remove(place, change) {
        const classifier = this.classifiers.get(place.classifier);
        if (!classifier) return;
        ++classifier.version;
        if (place.term !== null) {
            change.before = termText(classifier.terms.get(place.term));
            classifier.terms.delete(place.term);
        } else if (place.step === "terms") {
            classifier.terms.clear();
        } else {
            this.classifiers.delete(place.classifier);
            this.sorted = null;
        }
    }

    /** All classifiers in ascending order of their names. */
    all() {
        if (!this.sorted)
            this.sorted = [...this.classifiers.values()].sort((a, b) => compare(a.name, b.name));
        return this.sorted;
    }
}

function groupOf(term) { return (term.actions && term.actions.targetGroup) || ""; }

/** The DSCP values of a term, in both families. */
function dscpOf(term) {
    const values = [];
    for (const family of Object.values(term.conditions || {})) {
        if (family.dscp !== undefined) values.push(family.dscp);
        values.push(...(family.dscpSet || []));
    }
    return values;
}

function termText(term) {
    if (!term) return null;
    const values = dscpOf(term);
    const group = groupOf(term);
    return `${values.length ? "dscp " + dscpText(values) : "no dscp"}, ` +
        (group ? `group ${visible(group)}` : "no group");
}
