#!/usr/bin/env python3
"""Tests scripts/check_exports.py on small libraries: marked symbols pass, strays are named.

Usage: check_exports_test.py COMPILER
"""
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "check_exports.py"
COMPILER = sys.argv[1] if len(sys.argv) > 1 else "c++"
MARK = '#define IXOMEP_API __attribute__((visibility("default")))\n'
HEADER = """class IXOMEP_API Shape {
 public:
  virtual ~Shape();
  template <class T> T As() const;
};
IXOMEP_API int Count(const Shape& shape);
IXOMEP_API bool operator==(const Shape& a, const Shape& b);
"""
SOURCE = """#include "ixomep/shape.h"
Shape::~Shape() = default;
template <class T> T Shape::As() const { return T(); }
int Count(const Shape& shape) { return shape.As<int>(); }
bool operator==(const Shape&, const Shape&) { return true; }
int Hidden() { return 1; }
"""


def check(source):
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        (root / "ixomep").mkdir()
        (root / "ixomep" / "shape.h").write_text(HEADER, encoding="utf-8")
        (root / "shape.cpp").write_text(MARK + source, encoding="utf-8")
        subprocess.run([COMPILER, "-std=c++20", "-shared", "-fPIC", "-fvisibility=hidden", f"-I{root}",
                        str(root / "shape.cpp"), "-o", str(root / "shape.so")], check=True)
        run = subprocess.run([sys.executable, str(SCRIPT), str(root / "shape.so"), folder],
                             capture_output=True, text=True, check=False)
        return run.returncode, run.stdout


class CheckExports(unittest.TestCase):
    def test_marked_symbols_pass(self):
        status, output = check(SOURCE)
        self.assertEqual(status, 0, output)

    def test_an_unmarked_function_is_named(self):
        status, output = check(SOURCE + 'IXOMEP_API int Stray() { return 2; }\n')
        self.assertEqual((status, output), (1, "exported without a mark: Stray()\n"))

    def test_an_unmarked_class_is_named(self):
        status, output = check(SOURCE + "class IXOMEP_API Extra { public: void Run(); };\n"
                                        "void Extra::Run() {}\n")
        self.assertEqual((status, output), (1, "exported without a mark: Extra::Run()\n"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
