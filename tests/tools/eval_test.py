"""mep eval: values, variables, exit status, reports with a caret, encodings, standard input."""
import harness


class Eval(harness.MepTest):
    def test_a_value_is_printed_as_the_language_writes_it(self):
        for expression, text in [
            ("1 + 2 * 3", "7"),
            ("6 / 4", "1.5"),
            ("6 / 3", "2.0"),
            ('"a\\tb" + "c"', '"a\\tbc"'),
            ("{1, \"x\", 2.5}", '{1, "x", 2.5}'),
            ('{"k": 1}', '{"k": 1}'),
            ("1.5cm + 3mm", "1.8cm"),
            ("2 > 1", "1"),
        ]:
            with self.subTest(expression):
                self.assert_prints(text + "\n", "eval", expression)

    def test_an_expression_that_begins_with_a_minus_is_no_option(self):
        self.assert_prints("-3\n", "eval", "-5 + 2")
        self.assert_prints("-5\n", "eval", "-(2 + 3)")
        self.assert_prints("-4\n", "eval", "-v", "x=4", "--", "-x")

    def test_variables_are_set_in_order_each_seeing_those_before(self):
        self.assert_prints("42\n", "eval", "b * 2", "-v", "a=20", "-v", "b=a + 1")

    def test_the_last_setting_of_a_variable_counts(self):
        self.assert_prints("2\n", "eval", "a", "-v", "a=1", "-v", "a=2")

    def test_a_variable_may_hold_any_value(self):
        self.assert_prints('"Ada"\n', "eval", 'm["name"]', "-v", 'm={"name": "Ada"}')
        self.assert_prints("9\n", "eval", "sq(3)", "-v", "sq=lambda(x, x * x)")

    def test_assignments_and_sequences_work(self):
        self.assert_prints("3\n", "eval", "x := 1, y := 2, x + y")

    def test_strict_refuses_unknown_variables_and_assignments(self):
        self.assert_fails_with(1, "[20]", "eval", "--strict", "nobody")
        self.assert_fails_with(1, "[20]", "eval", "--strict", "x := 1")

    def test_raw_prints_a_string_without_quotes(self):
        self.assert_prints("a\tb\n", "eval", "--raw", '"a\\tb"')
        self.assert_prints("5\n", "eval", "--raw", "5")

    def test_type_prints_the_type_in_front(self):
        self.assert_prints("measure 1cm\n", "eval", "--type", "10mm")

    def test_minus_reads_the_expression_from_standard_input(self):
        self.assert_prints("3\n", "eval", "-", stdin="1 +\n  2\n")


class EvalErrors(harness.MepTest):
    def test_a_syntax_error_shows_its_place(self):
        status, out, err = self.run_mep("eval", "1 + * 2")
        self.assertEqual((status, out), (1, ""))
        lines = err.splitlines()
        self.assertRegex(lines[0], r"^<expression>:1:5: error: .+ \[13\]$")
        self.assertEqual(lines[1:], ["     1 | 1 + * 2", "       |     ^"])

    def test_the_place_counts_lines_and_characters(self):
        _, _, err = self.run_mep("eval", "-", stdin='"über" +\n\t(x ! y)')
        self.assertRegex(err, r"^<standard input>:2:5: error: .+ \[17\]\n")
        self.assertTrue(err.endswith("     2 | \t(x ! y)\n       | \t   ^\n"), err)

    def test_characters_beyond_ascii_count_one(self):
        _, _, err = self.run_mep("eval", '"äöü" ! 1')
        self.assertIn("<expression>:1:7: error:", err)
        self.assertTrue(err.endswith('     1 | "äöü" ! 1\n       |       ^\n'), err)

    def test_an_unexpected_end_points_behind_the_text(self):
        _, _, err = self.run_mep("eval", "(1 + 2")
        self.assertRegex(err, r"^<expression>:1:7: error: .+ \[14\]\n")

    def test_an_empty_expression_is_an_error(self):
        self.assert_fails_with(1, "[13]", "eval", "")
        self.assert_fails_with(1, "[13]", "eval", "-", stdin="")

    def test_an_evaluation_error_is_reported_with_its_code(self):
        self.assert_fails_with(1, "[18]", "eval", "1 / 0")
        self.assert_fails_with(1, "[22]", "eval", "nobody()")

    def test_an_error_in_a_variable_names_the_variable(self):
        status, _, err = self.run_mep("eval", "w", "-v", "w=(1")
        self.assertEqual(status, 1)
        self.assertRegex(err, r"^-v w:1:3: error: .+ \[14\]\n     1 \| \(1\n       \|   \^\n$")

    def test_a_variable_without_a_proper_name_is_a_usage_error(self):
        for definition in ("5", "=5", "X=5", "1x=5", "a b=5"):
            with self.subTest(definition):
                self.assert_fails_with(2, "name=EXPR", "eval", "1", "-v", definition)

    def test_wrong_calls_end_with_2(self):
        for arguments in ([], ["nonsense"], ["eval"], ["eval", "1", "2"], ["eval", "--nonsense", "1"],
                          ["eval", "1", "-e", "ebcdic"], ["eval", "1", "-v"]):
            with self.subTest(arguments):
                status, out, err = self.run_mep(*arguments)
                self.assertEqual((status, out), (2, ""))
                self.assertNotEqual(err, "")

    def test_help_and_version_end_with_0(self):
        status, out, err = self.run_mep("--help")
        self.assertEqual((status, err), (0, ""))
        self.assertIn("eval", out)
        self.assert_prints("mep 1.0.0\n", "--version")

    def test_a_zero_byte_is_an_unknown_character(self):
        status, out, err = self.run_bytes("eval", "-", stdin=b"1 + \0 2")
        self.assertEqual((status, out), (1, b""))
        self.assertIn(b"<standard input>:1:5: error:", err)
        self.assertIn(b"[17]", err)
        self.assertNotIn(b"\0", err)

    def test_a_very_long_line_is_cut_around_the_place(self):
        _, _, err = self.run_mep("eval", "-", stdin="1 + " * 50000 + "! " + "+ 1" * 50000)
        excerpt = err.splitlines()[1]
        self.assertLess(len(excerpt), 140)
        self.assertTrue(excerpt.startswith("     1 | ...") and excerpt.endswith("..."), excerpt)
        self.assertEqual(excerpt[err.splitlines()[2].index("^")], "!")

    def test_deep_nesting_ends_with_a_code(self):
        self.assert_fails_with(1, "[38]", "eval", "-", stdin="(" * 1000000)


class EvalEncodings(harness.MepTest):
    def test_utf_8_goes_in_and_out(self):
        self.assert_prints('"Grüße für 5 €"\n', "eval", '"Grüße" + " für 5 €"')
        self.assert_prints("2\n", "eval", 'LEN "é€"')

    def test_another_encoding_is_read_and_written(self):
        status, out, _ = self.run_bytes("eval", "-e", "windows-1252", "-", stdin=b'"\x80\xfc" + "!"')
        self.assertEqual((status, out), (0, b'"\x80\xfc!"\n'))
        status, out, _ = self.run_bytes("eval", "-e", "latin-1", "-", stdin=b'"\xfc"')
        self.assertEqual((status, out), (0, b'"\xfc"\n'))
        status, out, _ = self.run_bytes("eval", "-e", "oem", "-", stdin=b'"\x81" + STR ASC "\x81"')
        self.assertEqual((status, out), (0, b'"\x81252"\n'))

    def test_what_latin_1_does_not_have_becomes_a_question_mark(self):
        status, out, _ = self.run_bytes("eval", "-e", "latin-1", "CHR(128)")
        self.assertEqual((status, out), (0, b'"?"\n'))

    def test_malformed_utf_8_is_an_error_at_its_place(self):
        for bad in (b"\xfc", b"\xc0\x80", b"\xed\xa0\x80", b"\xf4\x90\x80\x80", b"\xe2\x82", b"\x80"):
            with self.subTest(bad):
                status, out, err = self.run_bytes("eval", "-", stdin=b'\n"a' + bad + b'"')
                self.assertEqual((status, out), (1, b""))
                self.assertTrue(err.startswith(b"<standard input>:2:3: error: this is not UTF-8"), err)

    def test_a_character_that_the_host_does_not_have_is_named(self):
        status, out, err = self.run_mep("eval", '"?" + "aλ"')
        self.assertEqual((status, out), (0, '"?a?"\n'))
        self.assertTrue(err.startswith("<expression>:1:9: warning:"), err)

    def test_a_byte_order_mark_is_dropped(self):
        self.assert_prints("3\n", "eval", "-", stdin="\ufeff1 + 2")


if __name__ == "__main__":
    harness.main()
