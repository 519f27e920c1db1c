"""mep query: paths, the text of what is found, JSON."""
import json

import harness

TEXT = """CLASS "One" title: "First" size: 1.5cm flag kind: odd
  parts: { PART "a" n: 1
           PART "b" n: 2 }
CLASS "Two" title: "Second \\"2\\"" area: (w * w)
  { METHOD "run" cost: 5s
    METHOD "2" cost: 6s }
CLASS "2"
"""


class Query(harness.MepTest):
    def setUp(self):
        super().setUp()
        self.path = self.write("t.mep", TEXT)

    def assert_finds(self, path, expected, *arguments):
        with self.subTest(path):
            self.assert_prints(expected, "query", self.path, path, *arguments)

    def test_an_attribute_is_printed_by_its_value(self):
        self.assert_finds("CLASS[One]/title", "First\n")
        self.assert_finds("CLASS[One]/size", "1.5cm\n")
        self.assert_finds("CLASS[Two]/title", 'Second "2"\n')

    def test_an_attribute_without_value_is_printed_by_its_modifier_or_as_true(self):
        self.assert_finds("CLASS[One]/kind", "odd\n")
        self.assert_finds("CLASS[One]/flag", "true\n")

    def test_without_a_choice_all_that_fit_are_printed(self):
        self.assert_finds("CLASS/title", 'First\nSecond "2"\n')

    def test_elements_are_chosen_by_number_by_value_or_by_string(self):
        self.assert_finds("CLASS[2]/title", 'Second "2"\n')
        self.assert_finds('CLASS["2"]', 'CLASS string "2"\n')
        self.assert_finds('CLASS[Two]/METHOD["2"]/cost', "00:000:00:00:06\n")

    def test_bodies_of_attributes_and_of_elements_are_entered(self):
        self.assert_finds("CLASS[One]/parts/PART[b]/n", "2\n")
        self.assert_finds("CLASS/parts/PART/n", "1\n2\n")
        self.assert_finds("CLASS[Two]/METHOD[1]", 'METHOD string "run"\n  cost: time 00:000:00:00:05\n')

    def test_a_body_is_printed_as_a_tree(self):
        self.assert_finds("CLASS[One]/parts",
                          'PART string "a"\n  n: integer 1\nPART string "b"\n  n: integer 2\n')

    def test_an_expression_is_printed_by_its_value_or_its_source(self):
        self.assert_finds("CLASS[Two]/area", "(w * w)\n")
        self.assert_finds("CLASS[Two]/area", "9\n", "-v", "w=3")

    def test_an_expression_that_fails_with_all_it_needs_is_an_error(self):
        path = self.write("e.mep", "A\n  x: (1 / w)\n")
        out, err = self.assert_fails_with(1, f"{path}:2: error: ", "query", path, "A/x", "-v", "w=0")
        self.assertEqual(out, "(1 / w)\n")
        self.assertIn("[18]", err)

    def test_statements_are_run_first(self):
        path = self.write("s.mep", "w := 4;\nA x: (w + 1)\n")
        self.assert_prints("5\n", "query", path, "A/x")

    def test_what_is_not_there_ends_with_1_and_is_named(self):
        for path, name in (("NOTHING", "element NOTHING"), ("CLASS/nothing", "attribute nothing"),
                           ("CLASS[9]", "element CLASS"), ("CLASS[One]/METHOD", "element METHOD"),
                           ("title", "attribute title"), ("CLASS/title/sub", "attribute sub")):
            with self.subTest(path):
                self.assert_fails_with(1, name, "query", self.path, path)

    def test_a_mistake_in_the_path_ends_with_2_and_is_shown(self):
        for path, column in (("", 1), ("CLASS[One", 7), ("CLASS//x", 7), ("CLASS[0]", 7),
                             ("CLASSx", 6), ('CLASS["a]', 10)):
            with self.subTest(path):
                self.assert_fails_with(2, f"<path>:1:{column}: error: ", "query", self.path, path)


class QueryJson(harness.MepTest):
    def json(self, text, path, *arguments):
        file = self.write("t.mep", text)
        status, out, err = self.run_mep("query", "--json", file, path, *arguments)
        self.assertEqual((status, err), (0, ""))
        self.assertTrue(out.isascii())
        return json.loads(out)

    def test_an_element_with_everything(self):
        self.assertEqual(
            self.json('\nA "v" f m: q: 1 b: { B }\n{ C x: 2 }\n', "A"),
            [{"keyword": "A", "line": 2, "value": "v",
              "attributes": [{"name": "f"}, {"name": "m", "modifier": "q", "value": 1},
                             {"name": "b", "body": [{"keyword": "B", "line": 2, "attributes": []}]}],
              "body": [{"keyword": "C", "line": 3, "attributes": [{"name": "x", "value": 2}]}]}])

    def test_every_type_of_value(self):
        for literal, value in [
            ('"a\\"\\\\\\té€"', 'a"\\\té€'), ("-5", -5), ("2.5", 2.5), ("0.1", 0.1),
            ("1.5cm", {"measure": 150, "text": "1.5cm"}),
            ("90s", {"time": 90, "text": "00:000:00:01:30"}),
            ('{1, "x", {2}}', [1, "x", [2]]),
            ('{"b": 1, "a": {2}}', {"map": [["a", [2]], ["b", 1]]}),
        ]:
            with self.subTest(literal):
                self.assertEqual(self.json(f"A x: {literal}\n", "A/x"), [{"name": "x", "value": value}])

    def test_an_expression_has_its_source_and_its_value_or_error(self):
        self.assertEqual(self.json("A x: (w * 2)\n", "A/x", "-v", "w=4")[0]["value"],
                         {"expression": "w * 2", "value": 8})
        open_value = self.json("A x: (w * 2)\n", "A/x")[0]["value"]
        self.assertEqual((open_value["expression"], open_value["error"]), ("w * 2", 20))

    def test_deeply_nested_bodies_are_written_to_their_end(self):
        depth = 5000
        path = self.write("deep.mep", "A { " * depth + "}" * depth)
        status, out, _ = self.run_mep("query", "--json", path, "A")
        self.assertEqual((status, out.count('"keyword"')), (0, depth))
        self.assertEqual(out.count("{"), out.count("}"))


if __name__ == "__main__":
    harness.main()
