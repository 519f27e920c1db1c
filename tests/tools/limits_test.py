"""The options --max-steps, --max-memory and --timeout of every command."""
import time

import harness

ENDLESS = "while(1, 0)"


class Limits(harness.MepTest):
    def test_too_many_steps_are_an_error_of_the_text(self):
        self.assert_fails(1, "<expression>: error: The limit of 1000 steps is exceeded. [38]\n",
                          "eval", "--max-steps", "1000", ENDLESS)

    def test_the_options_stand_in_front_of_the_command_or_behind_it(self):
        for arguments in [("--max-steps", "1000", "eval", ENDLESS),
                          ("--max-steps=1000", "eval", ENDLESS),
                          ("eval", "--max-steps=1000", ENDLESS),
                          ("eval", ENDLESS, "--max-steps", "1000")]:
            with self.subTest(arguments):
                self.assert_fails_with(1, "limit of 1000 steps", *arguments)

    def test_an_expression_that_begins_with_a_minus_is_no_option_behind_them(self):
        self.assert_prints("-3\n", "--max-steps", "9", "eval", "-5 + 2")
        self.assert_prints("-3\n", "eval", "--timeout", "9", "-5 + 2")

    def test_what_stays_within_the_limits_is_as_without(self):
        self.assert_prints("100\n", "eval", "--max-steps", "101", "--max-memory", "10M",
                           "--timeout", "60", "for(i, 1, 100, 0, i)")

    def test_too_much_memory_is_an_error_of_the_text(self):
        for size, count in [("3000000", 3000000), ("2M", 2 << 20), ("3000k", 3000 << 10)]:
            with self.subTest(size):
                self.assert_fails_with(1, f"The limit of {count} bytes of memory is exceeded. [38]",
                                       "eval", "--max-memory", size, 'LEN ("x" * 100000000)')
        self.assert_prints("100000000\n", "eval", "--max-memory", "1G", 'LEN ("x" * 100000000)')

    def test_a_timeout_ends_an_endless_loop(self):
        begin = time.monotonic()
        self.assert_fails(1, "<expression>: error: The limit of 0.2 seconds is exceeded. [38]\n",
                          "eval", "--timeout", "0.2", ENDLESS)
        self.assertLess(time.monotonic() - begin, 20)

    def test_expressions_of_variables_are_under_the_limits(self):
        self.assert_fails_with(1, "limit of 50 steps", "eval", "--max-steps", "50", "x", "-v",
                               "x=" + ENDLESS)

    def test_expressions_of_definition_texts_are_under_the_limits(self):
        path = self.write("endless.mep", 'BOX "a"\n  width: (n * while(1, 0))\n')
        for command in [("show", path), ("query", path, "BOX/width")]:
            with self.subTest(command):
                begin = time.monotonic()
                _, _, err = self.run_mep(*command, "--timeout", "0.3", "-v", "n=2")
                self.assertLess(time.monotonic() - begin, 20)
                self.assertIn("limit of 0.3 seconds", err)

    def test_a_timeout_ends_the_reading_and_printing_of_long_texts(self):
        path = self.write("long.mep", 'BOX "a" { INNER b: 12 c: {1, 2} }\n' * 300000)
        for command in [("check", path), ("show", path), ("xml", path),
                        ("query", "--json", path, "BOX")]:
            with self.subTest(command):
                begin = time.monotonic()
                status, _, err = self.run_mep(*command, "--timeout", "0.05")
                self.assertLess(time.monotonic() - begin, 20)
                self.assertEqual(status, 1)
                self.assertTrue(err.endswith(
                    "error: The limit of 0.05 seconds is exceeded. [38]\n"), err)

    def test_a_timeout_ends_a_check_that_finds_an_error_on_every_line(self):
        path = self.write("wrong.mep", "BOX a:: 1\n" * 300000)
        begin = time.monotonic()
        _, _, err = self.run_mep("check", path, "--timeout", "0.05")
        self.assertLess(time.monotonic() - begin, 20)
        self.assertTrue(err.endswith("The limit of 0.05 seconds is exceeded. [38]\n"), err)

    def test_too_little_memory_for_a_text_is_named_by_every_command(self):
        path = self.write("long.mep", 'BOX "a text that is not stored in place" {a: 1}\n' * 20000)
        for command in [("show", path), ("xml", path), ("query", path, "BOX/a"),
                        ("query", "--json", path, "BOX")]:
            for size in (1, 1500000, 2500000, 4000000):
                with self.subTest(command, size=size):
                    status, _, err = self.run_mep(*command, "--max-memory", str(size))
                    if status != 0:
                        self.assertEqual(status, 1)
                        self.assertIn(f"The limit of {size} bytes of memory is exceeded. [38]", err)
        status, _, err = self.run_mep("check", path, "--max-memory", "1")
        self.assertEqual(status, 1)
        self.assertIn("The limit of 1 bytes of memory is exceeded. [38]", err)

    def test_what_is_no_limit_is_refused(self):
        for option, values in [("--max-steps", ["0", "-1", "x", "1.5", "99999999999999999999"]),
                               ("--max-memory", ["0", "K", "1T", "1.5M", "99999999999999999G"]),
                               ("--timeout", ["0", "-1", "nan", "inf", "1s", "1e99"])]:
            for value in values:
                with self.subTest(option=option, value=value):
                    status, out, err = self.run_mep("eval", f"{option}={value}", "1")
                    self.assertEqual((status, out), (2, ""))
                    self.assertIn(option, err)


if __name__ == "__main__":
    harness.main()
