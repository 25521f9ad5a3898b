"""What is printed and kept of figures."""

import json

HEADER = ("figure", "size", "floor", "ours", "goal", "aim", "", "floor ns", "ours ns", "heap", "slab")


def shown(number, unit="instructions"):
    if number is None:
        return ""
    if unit == "ratio":
        return f"{number:.3f}"
    return f"{number:,.0f}" if number >= 1000 or number == int(number) else f"{number:.1f}"


def rows_of(figures):
    for figure in figures.all.values():
        unit = "ratio" if figure.unit == "ratio" else "instructions"
        yield (figure.name, f"{figure.size:,}" if figure.size else "",
               *(shown(figure.cost.get(side), unit) for side in ("floor", "ours")),
               *(shown(limit, unit) for limit in (figure.goal, figure.aim)), figure.mark(),
               *(shown(figure.nanoseconds.get(side), unit) for side in ("floor", "ours")),
               shown(figure.heap.get("ours")), shown(figure.slab.get("ours")))


def print_table(figures):
    rows = [HEADER, *rows_of(figures)]
    widths = [max(len(row[column]) for row in rows) for column in range(len(HEADER))]
    for row in rows:
        first, *rest = (cell.rjust(width) for cell, width in zip(row[1:], widths[1:]))
        print("  ".join([row[0].ljust(widths[0]), first, *rest]).rstrip())


def write_json(figures, path, commit):
    path.write_text(json.dumps(
        {"commit": commit,
         "figures": [{**vars(figure), "mark": figure.mark()} for figure in figures.all.values()]},
        indent=1) + "\n")
