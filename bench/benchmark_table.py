#!/usr/bin/env python3
"""Prints a table from the results of benchmarks that are named "<what>/<engine>".

    bench/benchmark_table.py RESULT.json...

A cell is the median of the repeats, their coefficient of variation, and how many times as long as
this library it took. A second table, where the results hold the single repeats, has the fastest
repeat of each: what other work on the machine disturbs least. What was measured with a number of
bytes is shown as a rate in megabytes a second of processor time, everything else as time. Results
named otherwise are not shown.
"""
import json
import sys

FIRST = "Mep"
MEGABYTE = 1e6
SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def read(paths):
    """The cells by what was measured and by engine, in the order of the results."""
    cells = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            entries = json.load(file)["benchmarks"]
        for entry in sorted(entries, key=lambda entry: entry["run_name"]):
            what, slash, engine = entry["run_name"].partition("/")
            aggregate = entry.get("aggregate_name")
            is_repeat = entry.get("run_type") == "iteration"
            if not slash or engine.isdigit() or not (is_repeat or aggregate in ("median", "cv")):
                continue
            cell = cells.setdefault(what, {}).setdefault(engine, {})
            if is_repeat:
                if entry["cpu_time"] <= cell.get("best", entry["cpu_time"]):
                    cell["best"] = entry["cpu_time"]
                    cell["best rate"] = entry.get("bytes_per_second")
                continue
            cell[aggregate] = entry["cpu_time"]
            if aggregate == "median":
                cell["unit"] = entry["time_unit"]
                cell["rate"] = entry.get("bytes_per_second")
    return cells


def shown(cell, first, what):
    if what not in cell:
        return "-"
    rate = cell["rate" if what == "median" else "best rate"]
    text = f"{cell[what] if rate is None else rate / MEGABYTE:.4g}"
    if what == "median":
        text += f" ±{100 * cell.get('cv', 0):.0f}%"
    if cell is first:
        return text
    seconds = [each[what] * SECONDS[each["unit"]] for each in (cell, first)]
    return f"{text} ×{seconds[0] / seconds[1]:.2f}"


def unit(cell):
    return cell["unit"] if cell["rate"] is None else "MB/s"


def table(cells, measure):
    # In the order of their first appearance, this library's in front.
    seen = dict.fromkeys(engine for row in cells.values() for engine in row)
    engines = sorted(seen, key=lambda engine: engine != FIRST)
    lines = [["", *engines]]
    for what, row in cells.items():
        first = row.get(FIRST, {})
        if measure in first:
            lines.append([f"{what}, {unit(first)}",
                          *(shown(row.get(engine, {}), first, measure) for engine in engines)])
    # A column that nobody has an entry in says nothing.
    used = [i for i in range(len(lines[0])) if i == 0 or any(line[i] != "-" for line in lines[1:])]
    return [[line[i] for i in used] for line in lines]


def print_aligned(lines):
    widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
    for line in lines:
        print("  ".join(text.ljust(width) for text, width in zip(line, widths)).rstrip())


def main():
    cells = read(sys.argv[1:])
    print_aligned(table(cells, "median"))
    fastest = table(cells, "best")
    if len(fastest) > 1:
        print("\nThe fastest repeat of each:")
        print_aligned(fastest)
    print("\n±: spread of the repeats; ×: time taken, as a multiple of this library's")


if __name__ == "__main__":
    main()
