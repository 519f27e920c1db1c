#!/usr/bin/env python3
"""docs/embedding.md is true: its blocks are files that build against the installed package, and
the programs print what the page says they print.

A block opens with its language and what it is: file=NAME appends to that file, output and
output=NAME append to what the main program or NAME prints, run is a command. Every block of C++ or
CMake has to belong to a file.
"""
import os
import re
import unittest

import harness
from harness import ROOT, SETTINGS, run

PAGE = ROOT / "docs" / "embedding.md"
BLOCK = re.compile(r"^```(\w*)[ ]?(\S*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def blocks():
    return BLOCK.findall(PAGE.read_text(encoding="utf-8"))


def files():
    """Name -> text of every file of the page."""
    texts = {}
    for _, role, text in blocks():
        if role.startswith("file="):
            name = role.removeprefix("file=")
            texts[name] = texts.get(name, "") + text
    return texts


def output(role):
    return "".join(text for _, block_role, text in blocks() if block_role == role)


class Embedding(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.prefix = harness.install()
        cls.source = harness.fresh("shelves")
        for name, text in files().items():
            path = cls.source / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")

    def test_every_block_of_code_belongs_to_a_file(self):
        seen = 0
        for language, role, text in blocks():
            if language in {"cpp", "cmake", "c", ""}:
                seen += 1
                self.assertTrue(role.startswith("file="), text)
        self.assertGreater(seen, 12)

    def test_the_page_has_its_ten_steps_in_order(self):
        steps = re.findall(r"^## (\d+)\. ", PAGE.read_text(encoding="utf-8"), re.MULTILINE)
        self.assertEqual(steps, [str(number) for number in range(1, 11)])

    def test_the_ten_steps_are_a_program_that_prints_what_the_page_says(self):
        shelves = harness.build_application(self.source, self.prefix) / "shelves"
        self.assertEqual(run(shelves, self.source / "texts"), output("output"))

    def test_the_notes_build_with_pkg_config_and_print_what_the_page_says(self):
        compiler = f"{SETTINGS.launcher} {SETTINGS.compiler} {harness.sanitizer_flags()}".strip()
        libraries = harness.library_folder(self.prefix)
        commands = output("run").splitlines()
        self.assertEqual(len(commands), 1)
        run(commands[0], shell=True, cwd=self.source, CXX=compiler,
            PKG_CONFIG_LIBDIR=os.fspath(libraries / "pkgconfig"))
        printed = run(self.source / "notes", LD_LIBRARY_PATH=os.fspath(libraries))
        self.assertEqual(printed, output("output=notes"))


if __name__ == "__main__":
    harness.main()
