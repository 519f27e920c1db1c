#!/usr/bin/env python3
"""Tells how much of ixomep/ the tests have run, line by line and branch by branch.

Usage: coverage.py BUILD_DIRECTORY [--lines PERCENT] [--branches PERCENT]

The build is one of the preset "coverage" in which the tests have run. Reads what gcov says of every
object, the tests' own included, because the linker may have taken an inline function from there.
What several instances of a template have run counts together; that the preset takes the force out
of "always_inline" keeps functions from being counted once for each place that they are called from.

A branch is one way out of a condition. Ways that only an exception takes (gcov marks them "throw")
are left out: nearly every call has one, and what they lead to is tested by letting each allocation
fail (tests/faults). Lines listed in ALLOWED are left out too, with the reason that stands there.

Prints a table by folder, the lines and the branches that were never taken, and fails below the
percentages (97 and 90). What stays not run is, by kind: answers to a failure inside the answer to a
failure (no memory for the message either), answers to threads and hosts that no test has (a host
whose StackLimit throws), and defaults of switches over all values.
"""
import argparse
import collections
import gzip
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor

ROOT = pathlib.Path(__file__).resolve().parents[1]

# (file, text of the line) as regular expressions -> why no test reaches it; for a line that opens a
# catch block, the whole block
ALLOWED = [
    (r".*", r"^\} catch \(const std::length_error&\) \{$", "a text of more than two gigabytes"),
    (r"ixomep/parser/literal_reader\.cpp", r"IxoMepValue::Create(String|Expression|Array)\(|Run\(ixomep::Read(String|Expression|Array),",
     "private names that the class declares; what is behind them is run by Create"),
]


def gcov(objects, scratch):
    """What gcov says of some objects."""
    folder = tempfile.mkdtemp(dir=scratch)
    subprocess.run(["gcov", "--json-format", "--branch-probabilities", "--hash-filenames",
                    *map(str, objects)], cwd=folder, check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    for path in pathlib.Path(folder).glob("*.json.gz"):
        with gzip.open(path, "rt", encoding="utf-8") as file:
            yield json.load(file)


class Counts:
    """The runs of each line and each branch of the files under ixomep/."""

    def __init__(self):
        self.lines = collections.defaultdict(lambda: collections.defaultdict(int))
        # file -> line -> (branches of that instance, position) -> times taken
        self.branches = collections.defaultdict(lambda: collections.defaultdict(
            lambda: collections.defaultdict(int)))

    def add(self, report):
        for entry in report["files"]:
            path = os.path.normpath(os.path.join(report["current_working_directory"], entry["file"]))
            if not path.startswith(f"{ROOT}/ixomep/"):
                continue
            name = os.path.relpath(path, ROOT)
            for line in entry["lines"]:
                number = line["line_number"]
                self.lines[name][number] += line["count"]
                ways = [b["count"] for b in line["branches"] if not b["throw"]]
                for position, count in enumerate(ways):
                    self.branches[name][number][len(ways), position] += count


def read_sources(names):
    return {name: (ROOT / name).read_text(encoding="utf-8").splitlines() for name in names}


def allowed_lines(name, lines):
    """The numbers of the lines of a file that ALLOWED leaves out."""
    allowed, block = set(), None
    for number, line in enumerate(lines, 1):
        text, indent = line.strip(), len(line) - len(line.lstrip())
        if block is not None and indent <= block and text.startswith("}"):
            block = None
        if any(re.fullmatch(file, name) and re.search(pattern, text) for file, pattern, _ in ALLOWED):
            allowed.add(number)
            if text.endswith("{") and "catch" in text:
                block = indent
        elif block is not None:
            allowed.add(number)
    return allowed


def percent(part, whole):
    return 100.0 * part / whole if whole else 100.0


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("--lines", type=float, default=97.0)
    parser.add_argument("--branches", type=float, default=90.0)
    arguments = parser.parse_args()
    objects = sorted(arguments.build.resolve().rglob("*.gcda"))
    if not objects:
        print(f"{arguments.build} has no counts: run its tests first", file=sys.stderr)
        return 2
    counts = Counts()
    with tempfile.TemporaryDirectory() as scratch, ThreadPoolExecutor(os.cpu_count()) as pool:
        batches = [objects[i:i + 8] for i in range(0, len(objects), 8)]
        for reports in pool.map(lambda batch: list(gcov(batch, scratch)), batches):
            for report in reports:
                counts.add(report)

    sources = read_sources(counts.lines)
    totals = collections.defaultdict(lambda: [0, 0, 0, 0])  # lines, run, branches, taken
    missed = []
    for name in sorted(counts.lines):
        folder = os.path.dirname(name)
        allowed = allowed_lines(name, sources[name])
        for number in sorted(counts.lines[name]):
            text = sources[name][number - 1].strip()
            if number in allowed:
                continue
            run = counts.lines[name][number] > 0
            ways = counts.branches[name][number]
            taken = sum(1 for count in ways.values() if count > 0)
            if not run:
                missed.append(f"{name}:{number}: not run: {text}")
            elif taken < len(ways):
                missed.append(f"{name}:{number}: {taken} of {len(ways)} ways: {text}")
            for key in (folder, "all"):
                totals[key][0] += 1
                totals[key][1] += run
                totals[key][2] += len(ways)
                totals[key][3] += taken
    print("\n".join(missed))
    print(f"\n{'folder':24} {'lines':>7} {'run':>8} {'branches':>9} {'taken':>8}")
    for folder in sorted(totals, key=lambda key: (key == "all", key)):
        lines, run, branches, taken = totals[folder]
        print(f"{folder:24} {lines:7} {percent(run, lines):7.2f}% {branches:9} {percent(taken, branches):7.2f}%")
    lines, run, branches, taken = totals["all"]
    good = percent(run, lines) >= arguments.lines and percent(taken, branches) >= arguments.branches
    if not good:
        print(f"coverage: below {arguments.lines} % of the lines or {arguments.branches} % of the branches")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
