#!/usr/bin/env python3
"""Tests bench/benchmark_table.py on made-up results: cells, rates, ratios, what is left out."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parents[2] / "bench" / "benchmark_table.py"


def cell(what, engine, time, cv=0.01, unit="ms", rate=None):
    name = f"{what}/{engine}"
    median = {"run_name": name, "aggregate_name": "median", "cpu_time": time, "time_unit": unit}
    if rate is not None:
        median["bytes_per_second"] = rate
    return [median, {"run_name": name, "aggregate_name": "cv", "cpu_time": cv, "time_unit": unit}]


class Table(unittest.TestCase):
    def lines(self, *files):
        with tempfile.TemporaryDirectory() as folder:
            paths = []
            for number, entries in enumerate(files):
                paths.append(pathlib.Path(folder) / f"{number}.json")
                paths[-1].write_text(json.dumps({"benchmarks": entries}), encoding="utf-8")
            return subprocess.run([sys.executable, SCRIPT, *paths], capture_output=True, text=True,
                                  check=True).stdout.splitlines()

    def test_a_peers_time_is_a_multiple_of_this_librarys(self):
        lines = self.lines(cell("a sum", "Other", 30.0, 0.02) + cell("a sum", "Mep", 20.0))
        self.assertEqual(lines[0].split(), ["Mep", "Other"])
        self.assertEqual(lines[1].split(), ["a", "sum,", "ms", "20", "±1%", "30", "±2%", "×1.50"])

    def test_bytes_are_shown_as_a_rate_and_the_ratio_is_still_that_of_times(self):
        lines = self.lines(cell("text", "Mep", 100.0, rate=50e6) + cell("text", "X", 10.0, rate=5e8))
        self.assertEqual(lines[1].split(), ["text,", "MB/s", "50", "±1%", "500", "±1%", "×0.10"])

    def test_files_follow_each_other_in_one_table(self):
        lines = self.lines(cell("z", "Mep", 1.0), cell("a", "Mep", 1.0) + cell("a", "P", 2.0))
        self.assertEqual([line.split(",")[0] for line in lines[1:3]], ["z", "a"])
        self.assertIn(" - ", lines[1] + " ")

    def test_the_fastest_repeats_have_a_table_of_their_own(self):
        repeats = [{"run_name": f"a/{engine}", "run_type": "iteration", "cpu_time": time}
                   for engine, time in (("Mep", 3.0), ("Mep", 2.0), ("X", 5.0), ("X", 9.0))]
        lines = self.lines(repeats + cell("a", "Mep", 2.5) + cell("a", "X", 7.0))
        fastest = lines.index("The fastest repeat of each:")
        self.assertEqual(lines[1].split(), ["a,", "ms", "2.5", "±1%", "7", "±1%", "×2.80"])
        self.assertEqual(lines[fastest + 2].split(), ["a,", "ms", "2", "5", "×2.50"])

    def test_what_this_library_did_not_measure_is_left_out(self):
        lines = self.lines(cell("a", "Mep", 1.0) + cell("b", "Other", 1.0))
        self.assertEqual(lines[0].split(), ["Mep"])
        self.assertFalse([line for line in lines if line.startswith("b")])


if __name__ == "__main__":
    unittest.main()
