#!/usr/bin/env python3
"""Tells how the time of operations grows with their size, from results of the growth benchmarks.

    bench/growth.py --svg PLOT.svg --table TABLE.md [--again FILE] RESULT.json...

An operation is measured at several sizes, "<family>, <operation>/<size>" with a counter "bound".
Its exponent is the slope of time against size, both logarithmic, over its largest sizes. Writes
one plot and one table, prints the table, and fails when an exponent is larger than its bound or an
operation could not be measured. Of several results of one size the least time counts, so that
operations which failed may be measured again on a machine that does other work as well: --again
writes the filter that selects them, nothing when there are none.
"""
import argparse
import html
import json
import math
import re
import sys

FITTED = 4  # so many of the largest sizes: at small ones constant costs hide the growth
SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


class Operation:
    def __init__(self, name):
        self.name = name
        self.family, _, self.title = name.partition(", ")
        self.times = {}  # seconds by size, the least of all repeats
        self.bound = None
        self.error = None

    def add(self, size, entry):
        if entry.get("error_occurred"):
            message = " ".join(entry.get("error_message", "failed").split())
            self.error = f"at {size}: {message}"
            return
        seconds = entry["cpu_time"] * SECONDS[entry["time_unit"]]
        self.times[size] = min(seconds, self.times.get(size, math.inf))
        self.bound = entry["bound"]

    def exponent(self):
        points = sorted(self.times.items())[-FITTED:]
        return slope([(math.log(size), math.log(seconds)) for size, seconds in points])

    def verdict(self):
        if self.error is not None:
            return self.error
        if len(self.times) < 2:
            return "too few sizes"
        return "" if self.exponent() <= self.bound else "grows too fast"


def slope(points):
    """Of the straight line that fits best."""
    mean_x = sum(x for x, _ in points) / len(points)
    mean_y = sum(y for _, y in points) / len(points)
    return (sum((x - mean_x) * (y - mean_y) for x, y in points)
            / sum((x - mean_x) ** 2 for x, _ in points))


def read(paths):
    operations = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            content = file.read()
        entries = json.loads(content)["benchmarks"] if content.strip() else []
        for entry in entries:
            name, _, size = entry["run_name"].rpartition("/")
            if entry.get("run_type", "iteration") != "iteration" or not size.isdigit():
                continue
            operations.setdefault(name, Operation(name)).add(int(size), entry)
    return sorted(operations.values(), key=lambda each: (each.family, each.title))


def selector(operation):
    """The regular expression of the operation's results."""
    return "^" + re.sub(r"([][.^$*+?(){}|\\])", r"\\\1", operation.name) + "/"


def shown_time(seconds):
    for unit in ("s", "ms", "us"):
        if seconds >= SECONDS[unit]:
            return f"{seconds / SECONDS[unit]:.3g} {unit}"
    return f"{seconds / SECONDS['ns']:.3g} ns"


def table(operations):
    lines = ["| family | operation | largest size | time | exponent | bound | |",
             "|---|---|---:|---:|---:|---:|---|"]
    for each in operations:
        row = [each.family, each.title, "", "", "", "", each.verdict()]
        if each.times:
            size = max(each.times)
            row[2:4] = [str(size), shown_time(each.times[size])]
            row[5] = f"{each.bound:.2f}"
        if len(each.times) > 1:
            row[4] = f"{each.exponent():.2f}"
        lines.append("| " + " | ".join(row) + " |")
    return "\n".join(lines) + "\n"


# --- The plot: one panel for each family ----------------------------------------------------------

WIDTH, HEIGHT, COLUMNS = 560, 360, 2
LEFT, TOP, PLOT_WIDTH, PLOT_HEIGHT = 60, 40, 270, 270
COLOURS = ("#1b6ca8", "#d1495b", "#2e8b57", "#b8860b", "#6a4c93", "#008b8b", "#8b4513", "#556b2f",
           "#c71585", "#4682b4")


def line(x1, y1, x2, y2, style):
    return f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" {style}/>'


def text(x, y, words, style=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" {style}>{html.escape(words)}</text>'


class Scale:
    """Numbers to places along an axis, logarithmic, from whole power of ten to whole power."""

    def __init__(self, values, start, length):
        self.low = math.floor(math.log10(min(values)))
        self.high = max(math.ceil(math.log10(max(values))), self.low + 1)
        self.start, self.length = start, length

    def place(self, value):
        return self.start + (math.log10(value) - self.low) / (self.high - self.low) * self.length

    def powers(self):
        return range(self.low, self.high + 1)


def panel(family, operations):
    out = [text(LEFT, 22, family, 'font-size="15" font-weight="bold"')]
    x = Scale([size for each in operations for size in each.times], LEFT, PLOT_WIDTH)
    y = Scale([time for each in operations for time in each.times.values()], TOP + PLOT_HEIGHT,
              -PLOT_HEIGHT)
    for power in x.powers():
        at = x.place(10.0 ** power)
        out.append(line(at, TOP, at, TOP + PLOT_HEIGHT, 'stroke="#ddd"'))
        out.append(text(at, TOP + PLOT_HEIGHT + 16, f"1e{power}", 'text-anchor="middle"'))
    for power in y.powers():
        at = y.place(10.0 ** power)
        out.append(line(LEFT, at, LEFT + PLOT_WIDTH, at, 'stroke="#ddd"'))
        out.append(text(LEFT - 6, at + 4, shown_time(1.0001 * 10.0 ** power),
                        'text-anchor="end"'))
    for number, each in enumerate(operations):
        colour = COLOURS[number % len(COLOURS)]
        dashes = "" if number < len(COLOURS) else ' stroke-dasharray="4 2"'
        places = " ".join(f"{x.place(size):.1f},{y.place(time):.1f}"
                          for size, time in sorted(each.times.items()))
        out.append(f'<polyline points="{places}" fill="none" stroke="{colour}"'
                   f' stroke-width="1.5"{dashes}/>')
        at = TOP + 8 + 13 * number
        out.append(line(345, at - 4, 360, at - 4, f'stroke="{colour}" stroke-width="2"{dashes}'))
        mark = "" if not each.verdict() else 'fill="#d00" font-weight="bold"'
        exponent = f"{each.exponent():.2f}" if len(each.times) > 1 else "?"
        out.append(text(365, at, f"{each.title}: {exponent}", mark))
    return "\n".join(out)


def plot(operations):
    families = {}
    for each in operations:
        if each.times:
            families.setdefault(each.family, []).append(each)
    rows = -(-len(families) // COLUMNS)
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH * COLUMNS}"'
           f' height="{HEIGHT * rows + 30}" font-family="sans-serif" font-size="11">',
           '<rect width="100%" height="100%" fill="white"/>',
           text(LEFT, 20, "Processor time against size, with the fitted exponents",
                'font-size="16"')]
    for number, (family, members) in enumerate(families.items()):
        across, down = number % COLUMNS * WIDTH, number // COLUMNS * HEIGHT + 30
        out.append(f'<g transform="translate({across},{down})">\n{panel(family, members)}\n</g>')
    return "\n".join(out) + "\n</svg>\n"


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("--svg", required=True)
    arguments.add_argument("--table", required=True)
    arguments.add_argument("--again")
    arguments.add_argument("results", nargs="+")
    chosen = arguments.parse_args()
    operations = read(chosen.results)
    if not operations:
        sys.exit("no operations in " + ", ".join(chosen.results))
    rows = table(operations)
    breaches = [each for each in operations if each.verdict()]
    files = [(chosen.svg, plot(operations)), (chosen.table, rows)]
    if chosen.again:
        files.append((chosen.again, "|".join(selector(each) for each in breaches)))
    for path, content in files:
        with open(path, "w", encoding="utf-8") as file:
            file.write(content)
    print(rows)
    for each in breaches:
        print(f"{each.family}, {each.title}: {each.verdict()}", file=sys.stderr)
    return 1 if breaches else 0


if __name__ == "__main__":
    sys.exit(main())
