// Elements and texts. Everything from the database passes through `name` or `textContent`: it is
// text, never markup.

const data = JSON.parse(document.getElementById("data").textContent);

/** Makes an element. A property that begins with `aria`, `data` or `role` becomes an attribute. */
function el(tag, properties, ...children) {
    const element = document.createElement(tag);
    for (const [key, value] of Object.entries(properties || {})) {
        if (/^(aria-|data-|role$|scope$)/.test(key)) element.setAttribute(key, value);
        else element[key] = value;
    }
    element.append(...children.filter((child) => child !== null));
    return element;
}

// What nobody sees, or what turns the text around it: control characters, line separators, marks
// and embeddings of bidirectional text, and what has no width.
const unseen = new RegExp(
    "[\\u0000-\\u001f\\u007f-\\u009f\\u00ad\\u061c\\u115f\\u1160\\u180e\\u200b\\u200e\\u200f" +
    "\\u2028-\\u202e\\u2060-\\u206f\\u3164\\ufeff\\ufff9-\\ufffb]", "g");

/** The text with unseen characters as `\u202e`. */
function visible(text) {
    return text.replace(unseen,
        (found) => "\\u" + found.charCodeAt(0).toString(16).padStart(4, "0"));
}

/** A name from the database, apart from the direction of the text around it. */
function name(text, className) {
    return el("bdi", {className: className || "name", title: visible(text),
        textContent: visible(text)});
}

function plural(count, word) {
    return `${count.toLocaleString("en")} ${word}${count === 1 ? "" : "s"}`;
}

/** The time of day, to the millisecond. */
function timeOfDay(milliseconds) {
    const time = new Date(milliseconds);
    const two = (number) => String(number).padStart(2, "0");
    return `${two(time.getHours())}:${two(time.getMinutes())}:${two(time.getSeconds())}.` +
        String(time.getMilliseconds()).padStart(3, "0");
}

/** DSCP values in words: `46(EF)`, three or more in a row as a range. */
function dscpText(values) {
    const parts = [];
    for (let at = 0; at < values.length;) {
        let end = at + 1;
        while (end < values.length && values[end] === values[end - 1] + 1) ++end;
        if (end - at < 3) end = at + 1;
        parts.push(end - at >= 3 ? `${values[at]}-${values[end - 1]}`
            : data.dscp[values[at]] || String(values[at]));
        at = end;
    }
    return parts.join(", ");
}

/** Calls the function at most once a frame, however often it is asked to. */
function onceAFrame(run) {
    let isAsked = false;
    return () => {
        if (isAsked) return;
        isAsked = true;
        requestAnimationFrame(() => { isAsked = false; run(); });
    };
}

function matches(text, wanted) {
    return text.toLowerCase().includes(wanted);
}
