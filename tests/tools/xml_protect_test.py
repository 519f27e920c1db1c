"""mep xml, mep protect and mep unprotect."""
import xml.etree.ElementTree as ElementTree

import harness


class Xml(harness.MepTest):
    def parse(self, text, *arguments):
        path = self.write("t.mep", text)
        status, out, err = self.run_bytes("xml", path, *arguments)
        self.assertEqual((status, err), (0, b""))
        return ElementTree.fromstring(out)

    def test_elements_attributes_and_bodies(self):
        root = self.parse('NODE_TYPE "a<b & c" size: 5 bold mod: m: 1.5cm\n{ INNER x: "\u20ac\u00fc" }\n')
        self.assertEqual(root.tag, "definitions")
        node = root[0]
        self.assertEqual((node.tag, node.attrib), (
            "node-type", {"val": "a<b & c", "val-size": "5", "opt-bold": "true",
                          "modifier-mod": "m", "val-mod": "1.5cm"}))
        self.assertEqual((node[0].tag, node[0].attrib), ("inner", {"val-x": "\u20ac\u00fc"}))

    def test_the_document_as_it_is_written(self):
        self.assert_prints('<?xml version="1.0" encoding="UTF-8"?>\n<lib>\n<a val-x="1" />\n</lib>\n',
                           "xml", "-", "--root", "lib", stdin="A x: 1\n")
        self.assert_prints('<definitions>\n<a val="&#252;" />\n</definitions>\n',
                           "xml", "-", "--no-declaration", stdin='A "\u00fc"\n')

    def test_whatever_the_text_holds_the_document_is_well_formed(self):
        root = self.parse('x := 1 < 2;\nA a[1]: 5 \u00fc: 1 b: {C "]]>" }\n  c: "\\b\\a\n\\t"\n')
        self.assertEqual(len(root), 2)

    def test_the_examples_are_well_formed(self):
        for name in ("workshop.mep", "garden.mep"):
            status, out, _ = self.run_bytes("xml", str(harness.EXAMPLES / name))
            self.assertEqual(status, 0)
            self.assertGreater(len(ElementTree.fromstring(out)), 2)

    def test_an_empty_text_gives_an_empty_document(self):
        self.assertEqual(len(self.parse("")), 0)

    def test_an_error_in_the_text_is_reported_and_nothing_printed(self):
        path = self.write("t.mep", "A\n ! b\n")
        status, out, err = self.run_mep("xml", path)
        self.assertEqual((status, out), (1, ""))
        self.assertTrue(err.startswith(f"{path}:2:2: error: "), err)

    def test_a_root_that_is_no_name_is_a_usage_error(self):
        for name in ("a b", "1a", "<x>", "-a"):
            with self.subTest(name):
                self.assert_fails_with(2, "name of an XML element", "xml", "-", f"--root={name}")


class Protect(harness.MepTest):
    def protect(self, text):
        path = self.write("plain.mep", text)
        status, out, err = self.run_bytes("protect", path)
        self.assertEqual((status, err), (0, b""))
        return out

    def test_nothing_of_the_text_stays_readable(self):
        cipher = self.protect('SECRET "recipe" of: "success"\nLAST')
        for word in (b"SECRET", b"recipe", b"success", b"LAST"):
            self.assertNotIn(word, cipher)

    def test_unprotect_gives_the_text_back_up_to_blanks_at_its_end(self):
        for text in ("", "A", "A x: 1\n", 'A "Gr\u00fc\u00dfe \u20ac" ' + "b " * 1000 + "\n"):
            with self.subTest(text[:10]):
                path = self.write("cipher.mep", self.protect(text))
                status, out, err = self.run_mep("unprotect", path)
                self.assertEqual((status, err), (0, ""))
                self.assertTrue(out.startswith(text))
                self.assertEqual(out[len(text):].strip(" "), "")
                self.assertLess(len(out) - len(text), 8)

    def test_all_commands_read_a_protected_text(self):
        path = self.write("cipher.mep", self.protect('A "\u00fc" x: 5\n'))
        self.assert_prints('A string "\u00fc"\n  x: integer 5\n', "show", path)
        self.assert_prints("5\n", "query", path, "A/x")
        self.assert_prints("", "check", path)

    def test_an_error_in_a_protected_text_is_shown_at_its_place(self):
        path = self.write("cipher.mep", self.protect("A\n ! b\n"))
        _, err = self.assert_fails_with(1, f"{path}:2:2: error: ", "show", path)
        self.assertIn("     2 |  ! b", err)

    def test_the_result_goes_to_a_file_when_one_is_named(self):
        plain = self.write("plain.mep", "A x: 5 ")
        self.assert_prints("", "protect", plain, "-o", "cipher.mep")
        self.assert_prints("", "unprotect", "cipher.mep", "--output", "again.mep")
        self.assertEqual((self.folder / "again.mep").read_text().rstrip(" "), "A x: 5")
        self.assert_fails_with(2, "cannot write missing/out.mep", "protect", plain, "-o",
                               "missing/out.mep")

    def test_what_is_protected_or_not_already_is_refused(self):
        cipher = self.write("cipher.mep", self.protect("A\n"))
        self.assert_fails_with(1, "already", "protect", cipher)
        self.assert_fails_with(1, "not a protected text", "unprotect", self.write("p.mep", "A\n"))

    def test_standard_input_is_read(self):
        status, out, _ = self.run_bytes("protect", "-", stdin=b"A 5\n")
        self.assertEqual(status, 0)
        self.assertEqual(self.run_bytes("show", "-", stdin=out)[:2], (0, b"A integer 5\n"))


if __name__ == "__main__":
    harness.main()
