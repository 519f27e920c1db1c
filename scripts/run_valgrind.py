#!/usr/bin/env python3
"""Runs the test programs of a build under valgrind's memcheck.

Usage: run_valgrind.py BUILD_DIRECTORY [PROGRAM...]

The build is one without sanitizers. Memcheck sees what they do not: reads of bytes that were never
written. An error or a block that is lost for good fails the run. What is left out for its time, as
one step costs about thirty there, stands in LEFT_OUT; the sanitized tests run it. Prints the seconds
and the outcome of each program.
"""
import pathlib
import re
import subprocess
import sys
import time

# tests that measure time
MEASURING = ["*Growth.*", "*under_a_second*", "*ends_soon*"]
# program -> names of tests that are left out
LEFT_OUT = {
    "expr": ["*illion*", "*andom*", "*eep*", "Memory.*", "LimitsOfMemory.*"],
    "values": ["*illion*", "*andom*", "Deep*"],
    "parser": ["*illion*", "*andom*", "RoundTrip.*", "*eep*", "*Memory*"],
    "builtins": ["*illion*", "*andom*"],
    "host": ["*illion*", "*andom*"],
    # a sweep repeats each text some fifty times
    "faults": ["Files/*", "Faults.*"],
}
SECONDS = 1200


def run(build, program):
    out = ":".join(MEASURING + LEFT_OUT.get(program, []))
    command = ["valgrind", "--quiet", "--error-exitcode=99", "--leak-check=full",
               "--errors-for-leak-kinds=definite", "--show-leak-kinds=definite",
               "--main-stacksize=8388608",
               # leaves a program its own operator new
               "--soname-synonyms=somalloc=nouserintercepts",
               f"--suppressions={pathlib.Path(__file__).with_name('valgrind.supp')}",
               str(build / "tests" / f"{program}_tests"), "--gtest_brief=1",
               f"--gtest_filter=-{out}"]
    begin = time.monotonic()
    try:
        done = subprocess.run(command, capture_output=True, text=True, errors="replace", check=False,
                              timeout=SECONDS)
    except subprocess.TimeoutExpired:
        return f"took more than {SECONDS} s", time.monotonic() - begin, ""
    ran = re.search(r"(\d+) tests? from", done.stdout)
    outcome = "clean" if done.returncode == 0 else f"FAILED with {done.returncode}"
    return (f"{ran.group(1) if ran else '?'} tests, {outcome}", time.monotonic() - begin,
            "" if done.returncode == 0 else done.stdout + done.stderr)


def main():
    if len(sys.argv) < 2:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    build = pathlib.Path(sys.argv[1]).resolve()
    programs = sys.argv[2:] or sorted(p.name.removesuffix("_tests") for p in (build / "tests").glob("*_tests"))
    failed = not programs
    for program in programs:
        outcome, seconds, log = run(build, program)
        print(f"{program:10} {seconds:6.0f} s  {outcome}", flush=True)
        if "clean" not in outcome:
            failed = True
            print(log[-6000:])
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
