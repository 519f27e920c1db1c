#!/usr/bin/env python3
"""Compiles each public header alone, so that an application may include it first or only it.

Usage: check_headers.py COMPILER ROOT

Each header is included twice in an otherwise empty source and checked with all warnings as
errors. The list is cmake/PublicHeaders.cmake.
"""
import concurrent.futures
import pathlib
import re
import subprocess
import sys

FLAGS = ["-std=c++20", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wshadow",
         "-Werror", "-x", "c++", "-"]


def compile_alone(compiler, root, header):
    source = f'#include <{header}>\n#include <{header}>\n'
    run = subprocess.run([compiler, f"-I{root}", *FLAGS], input=source, text=True,
                         capture_output=True, check=False)
    return header, run.returncode, run.stderr


def main():
    compiler, root = sys.argv[1], pathlib.Path(sys.argv[2])
    listing = (root / "cmake" / "PublicHeaders.cmake").read_text(encoding="utf-8")
    headers = re.findall(r"ixomep/[\w/]+\.h", listing)
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        results = list(pool.map(lambda header: compile_alone(compiler, root, header), headers))
    failed = [result for result in results if result[1] != 0]
    for header, _, text in failed:
        print(f"{header} does not compile alone:\n{text}")
    if not failed:
        print(f"{len(headers)} public headers compile alone")
    return 1 if failed or not headers else 0


if __name__ == "__main__":
    sys.exit(main())
