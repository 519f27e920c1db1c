#!/usr/bin/env python3
"""Runs the console examples of documents and compares what they print.

Usage: check_docs.py MEP DOCUMENT...

An example is a block that opens with ```console. A line "$ mep ..." is run by the shell in the
root of the repository, with MEP as the mep command; the lines up to the next "$ " must be what it
prints, standard error included. A line "..." stands for any number of lines. Commands other than
mep are not run.
"""
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
BLOCK = re.compile(r"^```console\n(.*?)^```", re.MULTILINE | re.DOTALL)


def examples(text):
    """Yields (line number, command, expected lines)."""
    for block in BLOCK.finditer(text):
        number = text.count("\n", 0, block.start(1)) + 1
        command, expected, started = None, [], number
        for line in block.group(1).splitlines():
            if line.startswith("$ "):
                if command is not None:
                    yield started, command, expected
                command, expected, started = line[2:], [], number
            elif command is not None and command.endswith("\\"):
                command = command[:-1] + line.strip()
            elif command is not None:
                expected.append(line)
            number += 1
        if command is not None:
            yield started, command, expected


def agrees(expected, printed):
    """Whether the lines are the expected ones, "..." standing for any number of them."""
    if "..." not in expected:
        return expected == printed
    gap = expected.index("...")
    head, rest = expected[:gap], expected[gap + 1:]
    if printed[:gap] != head:
        return False
    printed = printed[gap:]
    return any(agrees(rest, printed[skip:]) for skip in range(len(printed) + 1))


def run(mep, command):
    environment = {**os.environ, "PATH": f"{mep.parent}:{os.environ['PATH']}"}
    result = subprocess.run(["bash", "-c", command], cwd=ROOT, env=environment, check=False,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
    return result.stdout.decode("utf-8", "replace").splitlines()


def main():
    mep, count, failures = pathlib.Path(sys.argv[1]).resolve(), 0, 0
    for name in sys.argv[2:]:
        text = (ROOT / name).read_text(encoding="utf-8")
        for line, command, expected in examples(text):
            if not re.search(r"(^|\| )mep ", command):
                continue
            count += 1
            printed = run(mep, command)
            if not agrees(expected, printed):
                failures += 1
                print(f"{name}:{line}: {command}\nprints:")
                print("\n".join(printed))
    print(f"{count} examples, {failures} of them wrong")
    return 1 if failures or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
