#!/usr/bin/env python3
"""Tests scripts/check_house.py on small trees: a good one passes, each planted breach is named."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "check_house.py"

GOOD = {
    "cmake/PublicHeaders.cmake": "set(HEADERS ixomep/export.h ixomep/all.h ixomep/host/a.h ixomep/values/b.h)",
    "docs/architecture.md": "`ixomep/export.h` `ixomep/all.h` `ixomep/host/a.h` `ixomep/values/b.h` `ixomep/values/c.h`"
                            " `ixomep/values/c.cpp` `ixomep/host/portable/d.cpp`",
    "ixomep/export.h": "// The mark.\n#pragma once\n",
    "ixomep/all.h": '// All.\n#pragma once\n#include "ixomep/values/b.h"\n',
    "ixomep/host/a.h": '// A.\n#pragma once\n#include <string_view>\n#include "ixomep/export.h"\n',
    "ixomep/values/b.h": '// B.\n#pragma once\n#include "ixomep/host/a.h"\n',
    "ixomep/values/c.h": '// Internal: C.\n#pragma once\n#include "ixomep/values/b.h"\n',
    "ixomep/values/c.cpp": '// C.\n#include "ixomep/values/c.h"\n\n#include <vector>\n',
    "ixomep/host/portable/d.cpp": '// D.\n#include <pcre2.h>\n#include "ixomep/host/a.h"\n',
}


def check(changes):
    """Runs the script on the good tree with some files replaced; None leaves a file out."""
    with tempfile.TemporaryDirectory() as folder:
        for name, text in {**GOOD, **changes}.items():
            if text is not None:
                path = pathlib.Path(folder) / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
        run = subprocess.run([sys.executable, str(SCRIPT), folder], capture_output=True, text=True,
                             check=False)
        return run.returncode, run.stdout


class CheckHouse(unittest.TestCase):
    def assert_names(self, changes, expected):
        status, output = check(changes)
        self.assertEqual(status, 1, output)
        self.assertIn(expected, output)

    def test_a_good_tree_passes(self):
        status, output = check({})
        self.assertEqual((status, output), (0, "7 files keep the rules of the house\n"))

    def test_an_include_upwards_is_named(self):
        self.assert_names({"ixomep/host/a.h": '// A.\n#pragma once\n#include "ixomep/values/b.h"\n'},
                          "ixomep/host/a.h: host may not include values")

    def test_an_include_between_siblings_is_named(self):
        self.assert_names({"ixomep/parser/p.cpp": '// P.\n#include "ixomep/builtins/call.h"\n'},
                          "ixomep/parser/p.cpp: parser may not include builtins")

    def test_the_core_using_the_default_host_is_named(self):
        self.assert_names({"ixomep/host/x.cpp": '// X.\n#include "ixomep/host/portable/d.h"\n'},
                          "ixomep/host/x.cpp: host may not include host/portable")

    def test_a_foreign_library_in_the_core_is_named(self):
        self.assert_names({"ixomep/values/c.cpp": "// C.\n#include <pcre2.h>\n"},
                          "ixomep/values/c.cpp: <pcre2.h>")

    def test_a_system_header_in_the_core_is_named(self):
        self.assert_names({"ixomep/values/c.cpp": "// C.\n#include <unistd.h>\n"},
                          "ixomep/values/c.cpp: <unistd.h>")

    def test_instructions_of_a_processor_are_named_but_in_their_file(self):
        text = "#pragma once\n#include <emmintrin.h>\n"
        self.assert_names({"ixomep/values/c.h": "// Internal: C.\n" + text},
                          "ixomep/values/c.h: <emmintrin.h>")

    def test_a_stream_header_in_the_core_is_named(self):
        self.assert_names({"ixomep/values/c.cpp": "// C.\n#include <iostream>\n"}, "<iostream>")

    def test_a_spelling_not_from_the_root_is_named(self):
        self.assert_names({"ixomep/values/c.cpp": '// C.\n#include "c.h"\n'},
                          'ixomep/values/c.cpp: "c.h" is not spelled from the root')

    def test_a_circle_of_includes_is_named(self):
        self.assert_names(
            {"ixomep/values/b.h": '// B.\n#pragma once\n#include "ixomep/values/e.h"\n',
             "ixomep/values/e.h": '// Internal: E.\n#pragma once\n#include "ixomep/values/b.h"\n'},
            "circle of includes: ixomep/values/b.h -> ixomep/values/e.h -> ixomep/values/b.h")

    def test_a_file_of_500_lines_passes_and_one_of_501_is_named(self):
        text = "// C.\n" + "\n" * 499
        self.assertEqual(check({"ixomep/values/c.cpp": text})[0], 0)
        self.assert_names({"ixomep/values/c.cpp": text + "\n"}, "ixomep/values/c.cpp: 501 lines")

    def test_a_long_test_file_is_named(self):
        self.assert_names({"tests/values/c_test.cpp": "// C.\n" + "\n" * 500}, "501 lines")

    def test_a_missing_opening_comment_is_named(self):
        self.assert_names({"ixomep/values/c.cpp": "int x;\n"},
                          "ixomep/values/c.cpp: does not open with a comment")

    def test_an_internal_header_that_does_not_say_so_is_named(self):
        self.assert_names({"ixomep/values/c.h": "// C.\n#pragma once\n"},
                          "ixomep/values/c.h: is internal")

    def test_a_header_without_guard_is_named(self):
        self.assert_names({"ixomep/host/a.h": "// A.\n"}, "ixomep/host/a.h: has no #pragma once")

    def test_a_public_header_that_includes_an_internal_one_is_named(self):
        self.assert_names({"ixomep/all.h": '// All.\n#pragma once\n#include "ixomep/values/c.h"\n'},
                          "ixomep/all.h: is public but includes the internal ixomep/values/c.h")

    def test_a_listed_header_that_does_not_exist_is_named(self):
        self.assert_names({"ixomep/values/b.h": None}, "names ixomep/values/b.h, which does not exist")

    def test_a_type_defined_in_two_headers_is_named(self):
        self.assert_names(
            {"ixomep/values/b.h": "// B.\n#pragma once\nclass IXOMEP_API Node : public Base {\n};\n",
             "ixomep/values/c.h": "// Internal: C.\n#pragma once\nstruct Node {\n};\n"},
            "ixomep/values/c.h: defines Node, as ixomep/values/b.h does")

    def test_a_type_that_is_only_declared_again_passes(self):
        status, output = check(
            {"ixomep/values/b.h": "// B.\n#pragma once\nclass Node;\n",
             "ixomep/values/c.h": "// Internal: C.\n#pragma once\nstruct Node {\n};\n"})
        self.assertEqual(status, 0, output)

    def test_a_file_that_the_map_leaves_out_is_named(self):
        self.assert_names({"ixomep/values/f.cpp": "// F.\n"},
                          "docs/architecture.md: does not name ixomep/values/f.cpp")

    def test_a_file_that_only_the_map_knows_is_named(self):
        self.assert_names({"docs/architecture.md": GOOD["docs/architecture.md"] + " `ixomep/values/z.h`"},
                          "names ixomep/values/z.h, which does not exist")

    def test_the_command_using_an_internal_header_is_named(self):
        self.assert_names({"tools/mep/m.cpp": '// M.\n#include "ixomep/values/c.h"\n'},
                          "tools/mep/m.cpp: uses the internal ixomep/values/c.h")

    def test_a_folder_outside_the_layers_is_named(self):
        self.assert_names({"ixomep/misc/g.cpp": "// G.\n"}, "ixomep/misc is not a folder")


if __name__ == "__main__":
    unittest.main()
