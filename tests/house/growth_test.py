#!/usr/bin/env python3
"""Tests bench/growth.py on made-up results: exponents, bounds, failures, table and plot."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "bench" / "growth.py"
SIZES = [256, 1024, 4096, 16384, 65536]
SVG = "{http://www.w3.org/2000/svg}"


def entry(name, size, microseconds, bound=1.2, **more):
    return {"run_name": f"{name}/{size}", "run_type": "iteration", "cpu_time": microseconds,
            "time_unit": "us", "bound": bound, **more}


def entries(name, cost, bound=1.2):
    return [entry(name, size, cost(size), bound) for size in SIZES]


class Growth(unittest.TestCase):
    def run_script(self, *results):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder)
            paths = []
            for number, each in enumerate(results):
                paths.append(root / f"{number}.json")
                paths[-1].write_text(json.dumps({"benchmarks": each}), encoding="utf-8")
            done = subprocess.run(
                [sys.executable, SCRIPT, "--svg", root / "plot.svg", "--table", root / "t.md",
                 "--again", root / "again", *paths], capture_output=True, text=True)
            self.svg = self.table = None
            if (root / "plot.svg").exists():
                self.svg = xml.etree.ElementTree.parse(root / "plot.svg").getroot()
                self.table = (root / "t.md").read_text(encoding="utf-8")
                self.again = (root / "again").read_text(encoding="utf-8")
        return done

    def row(self, title):
        lines = [line for line in self.table.splitlines() if f"| {title} |" in line]
        self.assertEqual(len(lines), 1, self.table)
        return [cell.strip() for cell in lines[0].strip("|").split("|")]

    def test_exponents_of_powers_are_found(self):
        done = self.run_script(entries("f, flat", lambda n: 5.0)
                               + entries("f, linear", lambda n: 0.01 * n)
                               + entries("f, square", lambda n: 0.0001 * n * n, 2.2))
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual([self.row(title)[4] for title in ("flat", "linear", "square")],
                         ["0.00", "1.00", "2.00"])

    def test_a_time_and_its_size_are_shown(self):
        self.run_script(entries("f, linear", lambda n: 0.5 * n))
        self.assertEqual(self.row("linear")[2:4], ["65536", "32.8 ms"])

    def test_more_than_the_bound_fails_and_is_named(self):
        done = self.run_script(entries("f, good", lambda n: n)
                               + entries("f, bad", lambda n: 0.001 * n ** 1.3))
        self.assertEqual(done.returncode, 1)
        self.assertIn("f, bad", done.stderr)
        self.assertNotIn("f, good", done.stderr)
        self.assertEqual(self.row("good")[6], "")
        self.assertNotEqual(self.row("bad")[6], "")

    def test_an_operation_that_failed_fails(self):
        failed = entry("f, broken", 4096, 0, error_occurred=True, error_message="no memory")
        done = self.run_script(entries("f, good", lambda n: n)
                               + entries("f, broken", lambda n: n)[:2] + [failed])
        self.assertEqual(done.returncode, 1)
        self.assertIn("no memory", done.stderr)

    def test_constant_costs_of_small_sizes_do_not_hide_a_growth(self):
        done = self.run_script(entries("f, hidden", lambda n: 100.0 + 0.001 * n * n))
        self.assertEqual(done.returncode, 1)

    def test_the_least_of_several_repeats_counts(self):
        slow = entries("f, noisy", lambda n: 0.02 * n)[:4] + [entry("f, noisy", 65536, 10.0 ** 9)]
        done = self.run_script(slow, entries("f, noisy", lambda n: 0.01 * n))
        self.assertEqual(done.returncode, 0, done.stderr)

    def test_what_failed_is_selected_to_be_measured_again(self):
        self.run_script(entries("f, good", lambda n: n) + entries("f, b (x)", lambda n: n * n)
                        + entries("g, c", lambda n: n * n))
        self.assertEqual(self.again, r"^f, b \(x\)/|^g, c/")
        self.run_script(entries("f, good", lambda n: n))
        self.assertEqual(self.again, "")

    def test_aggregates_are_left_out(self):
        mean = dict(entry("f, linear", 65536, 1e-9), run_type="aggregate")
        self.run_script(entries("f, linear", lambda n: n) + [mean])
        self.assertEqual(self.row("linear")[4], "1.00")

    def test_the_plot_has_a_panel_for_each_family_and_a_curve_for_each_operation(self):
        self.run_script(entries("f, <one> & two", lambda n: n) + entries("f, flat", lambda n: 1.0)
                        + entries("g, square", lambda n: n * n, 2.2))
        self.assertEqual(len(self.svg.findall(f"{SVG}g")), 2)
        curves = self.svg.findall(f".//{SVG}polyline")
        self.assertEqual(len(curves), 3)
        for curve in curves:
            self.assertEqual(len(curve.get("points").split()), len(SIZES))
        words = [each.text for each in self.svg.iter(f"{SVG}text")]
        self.assertIn("<one> & two: 1.00", words)

    def test_both_axes_are_logarithmic(self):
        self.run_script(entries("f, linear", lambda n: n))
        points = [tuple(map(float, point.split(",")))
                  for point in self.svg.find(f".//{SVG}polyline").get("points").split()]
        for axis in (0, 1):
            steps = [b[axis] - a[axis] for a, b in zip(points, points[1:])]
            self.assertLess(max(steps) - min(steps), 0.3, steps)
        self.assertGreater(points[0][1], points[-1][1], "more time stands higher")

    def test_without_operations_it_fails(self):
        self.assertNotEqual(self.run_script([]).returncode, 0)


if __name__ == "__main__":
    unittest.main()
