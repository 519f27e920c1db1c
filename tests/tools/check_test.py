"""mep check: one line for each error, several errors in one text, exit status over several files."""
import harness


class Check(harness.MepTest):
    def assert_errors(self, text, expected):
        """expected: (place, code) of each line."""
        path = self.write("t.mep", text)
        status, out, err = self.run_mep("check", path)
        lines = err.splitlines()
        self.assertEqual(out, "")
        self.assertEqual(len(lines), len(expected), err)
        for line, (place, code) in zip(lines, expected):
            self.assertRegex(line, rf"^{path}:{place}: error: .+ \[{code}\]$")
        self.assertEqual(status, 1 if expected else 0)

    def test_a_good_text_is_silent(self):
        self.assert_errors("A x: 1\n{ B }\n", [])

    def test_the_examples_are_good(self):
        for name in ("workshop.mep", "garden.mep"):
            self.assert_prints("", "check", str(harness.EXAMPLES / name))

    def test_errors_in_separate_elements_are_all_reported(self):
        self.assert_errors("A ! x\nB y: 1\nC ! z\n  w: 5\nD\n  v: 5km\n",
                           [("1:3", 3), ("3:3", 3), ("6:6", 6)])

    def test_what_follows_from_an_error_is_not_reported(self):
        self.assert_errors("A ! x\n  y: 1\n  ? ? ?\nB\n", [("1:3", 3)])

    def test_reading_goes_on_inside_the_body_of_the_error(self):
        self.assert_errors("A x: {\n  B ! 1\n  C\n  D ! 2\n} y: 3\nE ! 3\n",
                           [("2:5", 3), ("4:5", 3), ("6:3", 3)])

    def test_words_in_values_are_no_elements(self):
        self.assert_errors('A x: (1 +\nNOT !\nNOT 2)\nB y: {"k",\nVAL ! "1"}\nC ! 1\n',
                           [("2:5", 17), ("5:5", 17), ("6:3", 3)])

    def test_words_in_comments_and_strings_are_no_elements(self):
        self.assert_errors('A ! 1\n(* comment\nB ! 2\n*)\n# C ! 3\nD x: "\nE ! 4\n"\nF ! 5\n',
                           [("1:3", 3), ("9:3", 3)])

    def test_behind_a_bracket_that_does_not_match_nothing_is_certain(self):
        self.assert_errors("A x: (1))\nB ! 2\n", [("1:9", 16)])
        self.assert_errors("A x: {\nB ! 2\n", [("1:6", 14)])
        self.assert_errors('A ! 1\nB x: "open\nC ! 2\n', [("1:3", 3)])

    def test_at_most_a_hundred_errors_are_reported_for_a_file(self):
        path = self.write("t.mep", "A !\n" * 300)
        _, _, err = self.run_mep("check", path)
        self.assertEqual(len(err.splitlines()), 100)

    def test_every_file_is_checked_and_the_worst_status_counts(self):
        good = self.write("good.mep", "A\n")
        bad = self.write("bad.mep", "A !\n")
        worse = self.write("worse.mep", "A 5x\n")
        status, _, err = self.run_mep("check", bad, good, worse)
        self.assertEqual(status, 1)
        self.assertEqual([line.split(":")[0] for line in err.splitlines()], [bad, worse])
        status, _, err = self.run_mep("check", bad, "missing.mep", good)
        self.assertEqual(status, 2)
        self.assertEqual(len(err.splitlines()), 2)

    def test_an_error_in_an_included_file_is_reported_there_and_ends_the_check(self):
        self.write("inner.mep", "\nB !\n")
        path = self.write("t.mep", 'A\n@INCLUDE "inner.mep"\nC !\n')
        status, _, err = self.run_mep("check", path)
        self.assertEqual(status, 1)
        self.assertEqual([line.split(": error")[0] for line in err.splitlines()],
                         [str(self.folder / "inner.mep") + ":2:3"])

    def test_standard_input_is_read(self):
        status, _, err = self.run_mep("check", "-", stdin="A !\n")
        self.assertEqual(status, 1)
        self.assertTrue(err.startswith("<standard input>:1:3: error: "), err)

    def test_a_text_that_is_not_utf_8_is_reported_on_one_line(self):
        path = self.write("t.mep", b'A "\xfc"\n')
        status, _, err = self.run_mep("check", path)
        self.assertEqual((status, len(err.splitlines())), (1, 1))


if __name__ == "__main__":
    harness.main()
