#!/usr/bin/env python3
"""Prints one table from the results of benchmarks that are named "<what>/<engine>".

    bench/benchmark_table.py RESULT.json...

A cell is the median of the repeats, their coefficient of variation, and how many times as long as
this library it took. What was measured with a number of bytes is shown as a rate in megabytes a
second of processor time, everything else as time. Results named otherwise are not shown.
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
            if not slash or engine.isdigit() or aggregate not in ("median", "cv"):
                continue
            cell = cells.setdefault(what, {}).setdefault(engine, {})
            cell[aggregate] = entry["cpu_time"]
            if aggregate == "median":
                cell["unit"] = entry["time_unit"]
                cell["rate"] = entry.get("bytes_per_second")
    return cells


def shown(cell, first):
    if "median" not in cell:
        return "-"
    value = cell["median"] if cell["rate"] is None else cell["rate"] / MEGABYTE
    text = f"{value:.4g} ±{100 * cell.get('cv', 0):.0f}%"
    if cell is first:
        return text
    seconds = [each["median"] * SECONDS[each["unit"]] for each in (cell, first)]
    return f"{text} ×{seconds[0] / seconds[1]:.2f}"


def unit(cell):
    return cell["unit"] if cell["rate"] is None else "MB/s"


def table(cells):
    # In the order of their first appearance, this library's in front.
    seen = dict.fromkeys(engine for row in cells.values() for engine in row)
    engines = sorted(seen, key=lambda engine: engine != FIRST)
    lines = [["", *engines]]
    for what, row in cells.items():
        first = row.get(FIRST, {})
        if "median" in first:
            lines.append([f"{what}, {unit(first)}",
                          *(shown(row.get(engine, {}), first) for engine in engines)])
    # A column that nobody has an entry in says nothing.
    used = [i for i in range(len(lines[0])) if i == 0 or any(line[i] != "-" for line in lines[1:])]
    return [[line[i] for i in used] for line in lines]


def main():
    lines = table(read(sys.argv[1:]))
    widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
    for line in lines:
        print("  ".join(text.ljust(width) for text, width in zip(line, widths)).rstrip())
    print("\n±: spread of the repeats; ×: time taken, as a multiple of this library's")


if __name__ == "__main__":
    main()
