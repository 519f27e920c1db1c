#!/usr/bin/env python3
"""Prints one table from the results of benchmarks that are named "<what>/<engine>".

    scripts/benchmark_table.py RESULT.json...

A cell is the median of the repeats, their coefficient of variation, and how many times as long as
this library it took. Results named otherwise are not shown.
"""
import json
import sys

FIRST = "Mep"


def read(paths):
    cells, units = {}, {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            entries = json.load(file)["benchmarks"]
        for entry in entries:
            what, slash, engine = entry["run_name"].partition("/")
            aggregate = entry.get("aggregate_name")
            if not slash or engine.isdigit() or aggregate not in ("median", "cv"):
                continue
            cell = cells.setdefault(what, {}).setdefault(engine, {})
            cell[aggregate] = entry["cpu_time"]
            if aggregate == "median":
                units[what] = entry["time_unit"]
    return cells, units


def shown(cell, first):
    if "median" not in cell:
        return "-"
    text = f"{cell['median']:.4g} ±{100 * cell.get('cv', 0):.0f}%"
    return text if cell is first else f"{text} ×{cell['median'] / first['median']:.2f}"


def main():
    cells, units = read(sys.argv[1:])
    engines = sorted({engine for row in cells.values() for engine in row},
                     key=lambda engine: (engine != FIRST, engine))
    table = [["", *engines]]
    for what, row in sorted(cells.items()):
        first = row.get(engines[0], {})
        if "median" in first:
            table.append([f"{what}, {units[what]}",
                          *(shown(row.get(engine, {}), first) for engine in engines)])
    widths = [max(len(line[i]) for line in table) for i in range(len(table[0]))]
    for line in table:
        print("  ".join(text.ljust(width) for text, width in zip(line, widths)).rstrip())


if __name__ == "__main__":
    main()
