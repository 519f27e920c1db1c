#!/usr/bin/env python3
"""Runs the fuzz targets one after the other and prints what each did in one table.

Usage: run_fuzzers.py BUILD_DIRECTORY SECONDS [TARGET...]

The build is one for libFuzzer (the preset "fuzz"). What a target finds new is kept under
BUILD_DIRECTORY/fuzz/found/<target>, so that the next run goes on from there; the seeds in the tree
are only read. An input that fails is written beside it and named. Exits with 1 when there is any.
"""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
DICTIONARIES = {"definition": "definition", "include": "definition", "literal": "definition"}
LENGTH = 2048  # bytes of the longest input
SECONDS_AN_INPUT = 20


def targets_of(build):
    sources = (ROOT / "fuzz").glob("*.cpp")
    return sorted(s.stem for s in sources if (build / "fuzz" / f"fuzz_{s.stem}").exists())


# the columns behind the target's name, and where libFuzzer tells their numbers
COLUMNS = {
    "executions": re.compile(r"stat::number_of_executed_units:\s+(\d+)"),
    "a second": re.compile(r"stat::average_exec_per_sec:\s+(\d+)"),
    "edges": re.compile(r"cov: (\d+)"),
    "features": re.compile(r"ft: (\d+)"),
    "inputs": re.compile(r"corp: (\d+)/"),
    "MB": re.compile(r"stat::peak_rss_mb:\s+(\d+)"),
}


def last_number(pattern, text):
    found = pattern.findall(text)
    return f"{int(found[-1]):,}" if found else "-"


def run(build, target, seconds):
    """Runs one target; returns its row of the table and whether it failed."""
    found = build / "fuzz" / "found" / target
    found.mkdir(parents=True, exist_ok=True)
    dictionary = ROOT / "fuzz" / "dictionaries" / f"{DICTIONARIES.get(target, 'expression')}.dict"
    command = [str(build / "fuzz" / f"fuzz_{target}"), str(found), str(ROOT / "fuzz" / "corpus" / target),
               f"-max_total_time={seconds}", f"-max_len={LENGTH}", f"-timeout={SECONDS_AN_INPUT}",
               f"-dict={dictionary}", f"-artifact_prefix={found.parent}/{target}-", "-print_final_stats=1",
               "-reload=0"]
    done = subprocess.run(command, capture_output=True, text=True, errors="replace", check=False)
    log = found.parent / f"{target}.log"
    log.write_text(done.stderr, encoding="utf-8")
    failed = done.returncode != 0
    outcome = "clean"
    if failed:
        kept = re.findall(r"Test unit written to (\S+)", done.stderr)
        outcome = f"FAILED: {kept[-1] if kept else log}"
    return [target, *(last_number(p, done.stderr) for p in COLUMNS.values()), outcome], failed


def print_row(cells):
    print(cells[0].ljust(11), *(c.rjust(10) for c in cells[1:-1]), " " + cells[-1], flush=True)


def main():
    if len(sys.argv) < 3:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    build, seconds = pathlib.Path(sys.argv[1]).resolve(), int(sys.argv[2])
    targets = sys.argv[3:] or targets_of(build)
    if not targets:
        print(f"{build} has no fuzz targets", file=sys.stderr)
        return 2
    print_row(["target", *COLUMNS, "outcome"])
    any_failed = False
    for target in targets:
        row, failed = run(build, target, seconds)
        any_failed = any_failed or failed
        print_row(row)
    return 1 if any_failed else 0


if __name__ == "__main__":
    sys.exit(main())
