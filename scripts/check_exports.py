#!/usr/bin/env python3
"""Checks that the shared library exports what its public headers mark, and nothing else.

Usage: check_exports.py LIBRARY ROOT

A class marked IXOMEP_API may export its members, its virtual table and its type information; a
function or an object marked so, itself. Weak copies of standard templates are everybody's.
"""
import pathlib
import re
import subprocess
import sys

MARKED_CLASS = re.compile(r"\b(?:class|struct)\s+IXOMEP_API\s+(\w+)")
MARKED_OTHER = re.compile(r"\bIXOMEP_API\s+(?:[\w:<>,*&\s]+?[\s*&])??(operator[^\s\w(]+|\w+)\s*[(;=]")
STANDARD = re.compile(r"((vtable|typeinfo|typeinfo name) for )?([\w:]+[\s&*]+)*(std|__gnu_cxx)::|decltype")
PREFIX = re.compile(r"^(vtable|typeinfo name|typeinfo|VTT|guard variable|(non-)?virtual thunk) (for |to )?")
# of a template member the listing shows the type of the result in front
TEMPLATE_MEMBER = re.compile(r"(?:^|\s)(\w+)::\w+<")


def marked_names(root):
    classes, others = set(), set()
    for path in (root / "ixomep").rglob("*.h"):
        text = path.read_text(encoding="utf-8")
        classes |= set(MARKED_CLASS.findall(text))
        others |= {name.strip() for name in MARKED_OTHER.findall(text)}
    return classes, others


def exported(library):
    listing = subprocess.run(["nm", "-D", "--defined-only", "-C", library], check=True,
                             capture_output=True, text=True).stdout
    for line in listing.splitlines():
        match = re.match(r"[0-9a-f]*\s*([A-Za-z])\s(.+)$", line)
        if match:
            yield match.group(1), match.group(2)


def is_marked(symbol, classes, others):
    bare = PREFIX.sub("", symbol).replace("ixomep::", "")
    head = re.match(r"(operator[^\s\w(]+|\w+)", bare)
    if head and (head.group(1) in classes or head.group(1) in others):
        return True
    member = TEMPLATE_MEMBER.search(bare)
    return bool(member) and member.group(1) in classes


def main():
    library, root = sys.argv[1], pathlib.Path(sys.argv[2])
    classes, others = marked_names(root)
    if not classes:
        print("no public header marks a class with IXOMEP_API")
        return 1
    seen, strays = set(), []
    for kind, symbol in exported(library):
        if is_marked(symbol, classes, others):
            seen.add(re.sub(r"ixomep::", "", symbol))
        elif not (kind in "WVu" and STANDARD.match(symbol)):
            strays.append(f"exported without a mark: {symbol}")
    missing = [f"marked, but exports nothing: {name}" for name in sorted(classes)
               if not any(re.search(rf"\b{name}\b", symbol) for symbol in seen)]
    for line in strays + missing:
        print(line)
    if not strays and not missing:
        print(f"{len(seen)} symbols exported, all marked")
    return 1 if strays or missing else 0


if __name__ == "__main__":
    sys.exit(main())
