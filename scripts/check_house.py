#!/usr/bin/env python3
"""Checks the rules of the source tree that a compiler does not check.

Usage: check_house.py [ROOT]

Prints one line for each breach and exits with 1 when there is any. The rules:
  * folders of ixomep/ include each other only downwards (MAY_INCLUDE);
  * the core uses the standard library only (STANDARD), portable/ its two libraries besides,
    one file the instructions of a processor (INTRINSICS);
  * includes are spelled from the root, files include each other in no circle;
  * a public header (cmake/PublicHeaders.cmake) includes public headers only, and exists;
  * a source file has at most MAX_LINES lines and opens with a comment, which in an internal
    header begins with the word Internal; a header has #pragma once;
  * no type of ixomep/ is defined under one name in two headers, which no linker would notice;
  * docs/architecture.md names every file of ixomep/ and no other.
"""
import pathlib
import re
import sys

MAX_LINES = 500

# folder of ixomep/ -> folders that its files may include beside their own
MAY_INCLUDE = {
    "host": set(),
    "host/portable": {"host"},
    "values": {"host"},
    "expr": {"host", "values"},
    "builtins": {"host", "values", "expr"},
    "parser": {"host", "values", "expr"},
    "messages": {"host"},
}

STANDARD = set(
    """algorithm any array atomic bit bitset cassert cctype cerrno cfenv cfloat charconv chrono
    cinttypes climits clocale cmath compare concepts cstdarg cstddef cstdint cstdio cstdlib cstring
    ctime cwchar deque exception forward_list functional initializer_list iterator limits list map
    memory memory_resource new numbers numeric optional queue random ranges ratio set
    source_location span stack stdexcept string string_view system_error tuple type_traits
    typeindex typeinfo unordered_map unordered_set utility valarray variant vector version""".split()
)
# what the default host may use beside the standard library
PORTABLE = re.compile(r"pcre2\.h|nettle/\w+\.h|dirent\.h|fcntl\.h|unistd\.h|pthread\.h|sys/\w+\.h")

# instructions of a processor, in a file that does without them on others
INTRINSICS = {("ixomep/parser/byte_block.h", "emmintrin.h")}

# the one header above the folders that all of them may include
EXPORT_MARK = "ixomep/export.h"

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"\n]+)[>"]', re.MULTILINE)
# a type defined at the outermost level or directly in a namespace
TYPE = re.compile(r"^(?:template <[^>]*>\n?)?(?:struct|class|enum class|union) (?:IXOMEP_API )?(\w+)"
                  r"(?: final)?(?: : [^;{]*)? \{", re.MULTILINE)
SOURCE_FOLDERS = ("ixomep", "tools", "tests", "bench", "fuzz", "examples", "scripts")


class Tree:
    """The sources under one root, and the breaches found in them."""

    def __init__(self, root):
        self.root = root
        self.breaches = []
        self.public = self._public_headers()
        self.library = {}  # "ixomep/x/y.h" -> text
        self.sources = {}  # every C++ and Python source -> text
        for folder in SOURCE_FOLDERS:
            for path in sorted((root / folder).rglob("*")):
                if path.suffix in {".h", ".cpp", ".py"} and path.is_file():
                    name = path.relative_to(root).as_posix()
                    self.sources[name] = path.read_text(encoding="utf-8", errors="replace")
        for name, text in self.sources.items():
            if name.startswith("ixomep/"):
                self.library[name] = text

    def _public_headers(self):
        listing = self.root / "cmake" / "PublicHeaders.cmake"
        if not listing.exists():
            return set()
        return set(re.findall(r"ixomep/[\w/]+\.h", listing.read_text(encoding="utf-8")))

    def breach(self, name, text):
        self.breaches.append(f"{name}: {text}")


def folder_of(name):
    """ixomep/host/portable/x.cpp -> host/portable; ixomep/x.h -> the empty text."""
    return "/".join(name.split("/")[1:-1])


def check_size_and_opening(tree):
    for name, text in tree.sources.items():
        lines = text.count("\n")
        if lines > MAX_LINES:
            tree.breach(name, f"{lines} lines; a file has at most {MAX_LINES}")
        if name.endswith(".py"):
            if not re.match(r'(#![^\n]*\n)?(#|""")', text):
                tree.breach(name, "does not open by saying what it is")
        elif not text.startswith("//"):
            tree.breach(name, "does not open with a comment that says what lives here")
        if name.endswith(".h") and "#pragma once" not in text:
            tree.breach(name, "has no #pragma once")


def check_library_openings(tree):
    for name, text in tree.library.items():
        internal = name.endswith(".h") and name not in tree.public
        if internal and not re.match(r"//\s*Internal\b", text):
            tree.breach(name, "is internal; its first comment begins with the word Internal")


def check_system_include(tree, name, target):
    here = folder_of(name)
    if target in STANDARD:
        return
    if (name, target) in INTRINSICS:
        return
    if here == "host/portable" and PORTABLE.fullmatch(target):
        return
    tree.breach(name, f"<{target}> is not part of the standard library that the core may use")


def check_own_include(tree, name, target):
    if not target.startswith("ixomep/"):
        tree.breach(name, f'"{target}" is not spelled from the root ("ixomep/...")')
        return
    here, there = folder_of(name), folder_of(target)
    allowed = {here} | MAY_INCLUDE.get(here, set())
    if here and there not in allowed and target != EXPORT_MARK:
        tree.breach(name, f"{here} may not include {there or 'the umbrella'} ({target})")
    if name in tree.public and target not in tree.public:
        tree.breach(name, f"is public but includes the internal {target}")


def check_includes(tree):
    """Checks every include of the library and returns who includes whom."""
    graph = {}
    for name, text in tree.library.items():
        here = folder_of(name)
        if here and here not in MAY_INCLUDE:
            tree.breach(name, f"ixomep/{here} is not a folder of the library")
        graph[name] = []
        for quote, target in INCLUDE.findall(text):
            if quote == "<":
                check_system_include(tree, name, target)
            else:
                check_own_include(tree, name, target)
                graph[name].append(target)
    return graph


def check_tools_use_public_headers(tree):
    for name, text in tree.sources.items():
        if not name.startswith(("tools/", "examples/")):
            continue
        for _, target in INCLUDE.findall(text):
            if target.startswith("ixomep/") and target not in tree.public:
                tree.breach(name, f"uses the internal {target}")


def check_circles(tree, graph):
    done = set()
    for start in graph:
        trail, work = [], [(start, iter(graph.get(start, [])))]
        if start in done:
            continue
        trail.append(start)
        while work:
            node, rest = work[-1]
            target = next(rest, None)
            if target is None:
                done.add(node)
                work.pop()
                trail.pop()
            elif target in trail:
                circle = trail[trail.index(target):] + [target]
                tree.breaches.append("circle of includes: " + " -> ".join(circle))
            elif target not in done and target in graph:
                trail.append(target)
                work.append((target, iter(graph[target])))


def check_types_are_defined_once(tree):
    defined = {}
    for name, text in tree.library.items():
        if name.endswith(".h"):
            for type_name in TYPE.findall(text):
                if type_name in defined:
                    tree.breach(name, f"defines {type_name}, as {defined[type_name]} does")
                defined.setdefault(type_name, name)


def check_public_headers_exist(tree):
    for name in sorted(tree.public - set(tree.library)):
        tree.breach("cmake/PublicHeaders.cmake", f"names {name}, which does not exist")


def check_map(tree):
    page = tree.root / "docs" / "architecture.md"
    if not page.exists():
        tree.breach("docs/architecture.md", "does not exist")
        return
    told = set(re.findall(r"`(ixomep/[\w/]+\.(?:h|cpp))`", page.read_text(encoding="utf-8")))
    for name in sorted(set(tree.library) - told):
        tree.breach("docs/architecture.md", f"does not name {name}")
    for name in sorted(told - set(tree.library)):
        tree.breach("docs/architecture.md", f"names {name}, which does not exist")


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
    tree = Tree(root)
    if not tree.library:
        print(f"{root} has no ixomep/ with sources", file=sys.stderr)
        return 2
    check_size_and_opening(tree)
    check_library_openings(tree)
    graph = check_includes(tree)
    check_tools_use_public_headers(tree)
    check_circles(tree, graph)
    check_types_are_defined_once(tree)
    check_public_headers_exist(tree)
    check_map(tree)
    for line in tree.breaches:
        print(line)
    if not tree.breaches:
        print(f"{len(tree.sources)} files keep the rules of the house")
    return 1 if tree.breaches else 0


if __name__ == "__main__":
    sys.exit(main())
