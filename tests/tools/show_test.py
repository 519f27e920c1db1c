"""mep show: the tree, variables, statements, includes and their confinement, encodings."""
import os

import harness


class Show(harness.MepTest):
    def show(self, text, *arguments):
        """What show prints for a text of its own file, which must be free of errors."""
        path = self.write("text.mep", text)
        status, out, err = self.run_mep("show", path, *arguments)
        self.assertEqual((status, err), (0, ""))
        return out

    def test_elements_attributes_modifiers_and_values_with_their_types(self):
        self.assertEqual(
            self.show('NOTE "a" flag n: 5 r: 2.5 m: 1.5cm t: 5s\n'
                      '  s: "x\\ty" a: {1, 2} k: {"k": 1} mod: mine v: yes: -3\n'
                      "LEAF\n"),
            'NOTE string "a"\n'
            "  flag\n"
            "  n: integer 5\n"
            "  r: real 2.5\n"
            "  m: measure 1.5cm\n"
            "  t: time 00:000:00:00:05\n"
            '  s: string "x\\ty"\n'
            "  a: array {1, 2}\n"
            '  k: map {"k": 1}\n'
            "  mod: mine\n"
            "  v: yes: integer -3\n"
            "LEAF\n")

    def test_bodies_of_attributes_and_elements_stand_in_braces(self):
        self.assertEqual(
            self.show("A x: { B y: 1\n C { D } } z: 2\n{ E }\n"),
            "A\n"
            "  x: {\n"
            "    B\n"
            "      y: integer 1\n"
            "    C\n"
            "      {\n"
            "        D\n"
            "      }\n"
            "  }\n"
            "  z: integer 2\n"
            "  {\n"
            "    E\n"
            "  }\n")

    def test_an_expression_shows_what_it_needs_until_the_variables_are_set(self):
        text = "NOTE size: (w * 2) label: (name + STR w)\n"
        self.assertEqual(self.show(text),
                         "NOTE\n"
                         "  size: expression (w * 2) -> needs w\n"
                         "  label: expression (name + STR w) -> needs name, w\n")
        self.assertEqual(self.show(text, "-v", "w=5", "-v", 'name="n"'),
                         "NOTE\n"
                         "  size: expression (w * 2) -> integer 10\n"
                         '  label: expression (name + STR w) -> string "n5"\n')

    def test_names_that_the_expression_makes_itself_are_not_needed(self):
        self.assertEqual(
            self.show("A x: (s := start, for(i, 1, 3, (s := s + i), s))\n", "-v", "start=10"),
            "A\n  x: expression (s := start, for(i, 1, 3, (s := s + i), s)) -> integer 16\n")
        self.assertIn("-> needs start\n",
                      self.show("A x: (s := start, for(i, 1, 3, (s := s + i), s))\n"))

    def test_an_unknown_function_leaves_an_expression_open(self):
        out = self.show("A x: (mystery(1))\n")
        self.assertRegex(out, r'^A\n  x: expression \(mystery\(1\)\) -> failed: .*mystery.*\n$')

    def test_statements_set_variables_for_what_follows(self):
        self.assertEqual(
            self.show("step := 5;\nA x: (step * 2)\nstep := step + 1;\nB x: (step)\n"),
            "step := 5; -> integer 5\n"
            "A\n"
            "  x: expression (step * 2) -> integer 10\n"
            "step := step + 1; -> integer 6\n"
            "B\n"
            "  x: expression (step) -> integer 6\n")

    def test_an_expression_leaves_no_variable_behind(self):
        self.assertEqual(self.show("A x: (n := k)\nB x: (n)\n", "-v", "k=1"),
                         "A\n  x: expression (n := k) -> integer 1\nB\n  x: expression (n) -> needs n\n")

    def test_a_text_without_elements_prints_nothing(self):
        self.assertEqual(self.show(""), "")
        self.assertEqual(self.show("# only a comment\n"), "")

    def test_minus_reads_standard_input(self):
        self.assert_prints("A integer 5\n", "show", "-", stdin="A 5\n")

    def test_a_deeply_nested_text_is_shown_to_its_end(self):
        depth = 20000
        status, out, err = self.run_mep("show", "-", stdin="A { " * depth + "}" * depth)
        self.assertEqual((status, err), (0, ""))
        self.assertEqual(out.count("A\n"), depth)

    def test_the_shipped_examples_are_free_of_errors(self):
        for name in ("workshop.mep", "garden.mep"):
            with self.subTest(name):
                status, out, err = self.run_mep("show", str(harness.EXAMPLES / name))
                self.assertEqual((status, err), (0, ""))
                self.assertIn("LIBRARY string ", out)
                self.assertNotIn("failed", out)


class ShowErrors(harness.MepTest):
    def assert_reports(self, text, place, code, excerpt, *arguments):
        path = self.write("bad.mep", text)
        status, out, err = self.run_mep("show", path, *arguments)
        self.assertEqual((status, out), (1, ""))
        lines = err.splitlines()
        self.assertTrue(lines[0].startswith(f"{path}:{place}: error: "), err)
        self.assertTrue(lines[0].endswith(f" [{code}]"), err)
        self.assertEqual(lines[1:], excerpt)

    def test_an_unexpected_character_is_shown_at_its_place(self):
        self.assert_reports("A x: 1\n  B y: 2\n   ! z\n", "3:4", 3,
                            ["     3 |    ! z", "       |    ^"])

    def test_an_error_in_a_body_has_the_line_of_the_file(self):
        self.assert_reports("A x: {\n  B y: 1\n  C ! }\n", "3:5", 3,
                            ["     3 |   C ! }", "       |     ^"])

    def test_a_line_of_a_windows_text_is_shown_without_its_carriage_return(self):
        self.assert_reports("A x: 1\r\n  ! z\r\n", "2:3", 3, ["     2 |   ! z", "       |   ^"])

    def test_an_evaluation_error_is_reported_beside_the_tree(self):
        path = self.write("bad.mep", "A\n  x: (1 / n)\n  y: 2\n")
        status, out, err = self.run_mep("show", path, "-v", "n=0")
        self.assertEqual(status, 1)
        self.assertIn("  x: expression (1 / n) -> failed: ", out)
        self.assertIn("  y: integer 2\n", out)
        self.assertRegex(err, rf"^{path}:2: error: .+ \[18\]\n$")

    def test_a_zero_byte_is_an_unexpected_character(self):
        path = self.write("zero.mep", b"A x: 1\n \0 B\n")
        status, out, err = self.run_bytes("show", path)
        self.assertEqual((status, out), (1, b""))
        self.assertIn(b"zero.mep:2:2: error: ", err)
        self.assertNotIn(b"\0", err)

    def test_escape_sequences_never_reach_the_terminal(self):
        _, _, err = self.run_bytes("show", "-", stdin=b"A \x1b[31m\n")
        self.assertNotIn(b"\x1b", err)

    def test_a_file_that_cannot_be_read_ends_with_2(self):
        self.assert_fails_with(2, "missing.mep: error: cannot be read: No such file", "show",
                               "missing.mep")
        self.assert_fails_with(2, ": error: cannot be read: it is a directory", "show",
                               str(self.folder))

    def test_a_closed_output_ends_with_2(self):
        path = self.write("a.mep", "A 5\n")
        with open("/dev/full", "wb") as full:
            run = harness.subprocess.run([harness.MEP, "show", path], stdout=full, check=False,
                                         stderr=harness.subprocess.PIPE)
        self.assertEqual(run.returncode, 2)
        self.assertIn(b"cannot write the output", run.stderr)


class ShowIncludes(harness.MepTest):
    def test_an_included_text_stands_in_the_place_of_its_directive(self):
        self.write("parts/inner.mep", 'B "in"\n@INCLUDE "more.mep"\n')
        self.write("parts/more.mep", "C\n")
        path = self.write("main.mep", 'A\n@INCLUDE "parts/inner.mep"\nD\n')
        self.assert_prints('A\nB string "in"\nC\nD\n', "show", path)
        self.assert_prints('A\nB string "in"\nC\nD\n', "show", "main.mep")

    def test_an_error_in_an_included_text_names_that_file_and_its_line(self):
        inner = self.write("parts/inner.mep", "B\nC ! x\n")
        path = self.write("main.mep", 'A\n\n\n@INCLUDE "parts/inner.mep"\n')
        status, out, err = self.run_mep("show", path)
        self.assertEqual((status, out), (1, ""))
        self.assertTrue(err.startswith(f"{inner}:2:3: error: "), err)
        self.assertTrue(err.endswith("     2 | C ! x\n       |   ^\n"), err)

    def test_a_missing_file_is_named_with_the_reason(self):
        path = self.write("main.mep", 'A\n@INCLUDE "nothing.mep"\n')
        _, err = self.assert_fails_with(1, f"{path}:2:1: error: ", "show", path)
        self.assertIn("nothing.mep", err.splitlines()[0])
        self.assertIn("[43]", err.splitlines()[0])
        self.assertRegex(err, r"note: .*nothing\.mep: No such file or directory\n$")

    def test_a_file_outside_the_folder_is_refused(self):
        secret = self.write("secret.mep", "SECRET\n")
        for name in ("../secret.mep", secret, "..\\\\secret.mep", "/dev/null"):
            with self.subTest(name):
                path = self.write("sub/main.mep", f'@INCLUDE "{name}"\n')
                _, err = self.assert_fails_with(1, "[43]", "show", path)
                self.assertIn("note: ", err)

    def test_a_symbolic_link_leads_nowhere_else(self):
        secret = self.write("secret.mep", "SECRET\n")
        path = self.write("sub/main.mep", '@INCLUDE "link.mep"\n')
        os.symlink(secret, self.folder / "sub" / "link.mep")
        self.assert_fails_with(1, "outside", "show", path)

    def test_include_root_widens_the_folder(self):
        self.write("shared.mep", "S\n")
        path = self.write("sub/main.mep", '@INCLUDE "../shared.mep"\n')
        self.assert_prints("S\n", "show", path, "--include-root", str(self.folder))

    def test_a_cycle_of_includes_ends_with_43(self):
        path = self.write("main.mep", '@INCLUDE "main2.mep"\n')
        self.write("main2.mep", '@INCLUDE "main2.mep"\n')
        self.assert_fails_with(1, "[43]", "show", path)

    def test_included_files_have_the_encoding_that_was_named(self):
        self.write("inner.mep", 'B "\u00fc"\n'.encode("latin-1"))
        path = self.write("main.mep", '@INCLUDE "inner.mep"\n')
        self.assert_fails_with(1, "inner.mep:1:4: error: this is not UTF-8", "show", path)
        status, out, _ = self.run_bytes("show", "-e", "latin-1", path)
        self.assertEqual((status, out), (0, b'B string "\xfc"\n'))


if __name__ == "__main__":
    harness.main()
