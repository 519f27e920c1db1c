#!/usr/bin/env python3
"""Writes the list of files in docs/architecture.md: one row a file, its opening sentence.

Usage: write_map.py ROOT

Everything from the heading "## Every file" to the end of the page is replaced. The sentence is the
first one of the comment that opens the file, so that the map says what the files say.
"""
import pathlib
import re
import sys

HEADING = "## Every file\n"
INTRODUCTION = """
One row a file, in the words of the file itself; `make map` writes them. Headers marked * are
public, all others internal.
"""
FOLDERS = {
    "ixomep": "The top",
    "ixomep/host": "`host`: what the language asks of its application",
    "ixomep/host/portable": "`host/portable`: the default answers",
    "ixomep/values": "`values`: the value and its services",
    "ixomep/expr": "`expr`: text, tokens, tree, result",
    "ixomep/builtins": "`builtins`: the function library",
    "ixomep/parser": "`parser`: definition texts",
    "ixomep/messages": "`messages`: message ports",
}


def opening_sentence(path):
    lines = []
    for line in path.read_text(encoding="utf-8").splitlines():
        if not line.startswith("//"):
            break
        lines.append(line[2:].strip())
    text = re.sub(r"^Internal: ", "", " ".join(lines))
    sentence = re.split(r"\.(?=\s+[A-Z]|\s*$)", text)[0].strip()
    return sentence[:1].upper() + sentence[1:]


def main():
    root = pathlib.Path(sys.argv[1])
    listing = (root / "cmake" / "PublicHeaders.cmake").read_text(encoding="utf-8")
    public = set(re.findall(r"ixomep/[\w/]+\.h", listing))
    parts = [HEADING, INTRODUCTION]
    for folder, title in FOLDERS.items():
        parts.append(f"\n### {title}\n\n| file | what lives there |\n|---|---|\n")
        for path in sorted((root / folder).iterdir()):
            if path.suffix in {".h", ".cpp"}:
                name = path.relative_to(root).as_posix()
                mark = " *" if name in public else ""
                sentence = opening_sentence(path).replace("|", "\\|")
                parts.append(f"| `{name}`{mark} | {sentence} |\n")
    page = root / "docs" / "architecture.md"
    text = page.read_text(encoding="utf-8")
    page.write_text(text[:text.index(HEADING)] + "".join(parts), encoding="utf-8")


if __name__ == "__main__":
    main()
