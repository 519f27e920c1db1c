"""The examples of docs/definition-texts.md give what the page says.

An example is a block that opens with ```mep and the block behind it that opens with ```output:
what mep show prints for it, errors included. Options stand behind the word output. A ```mep block
with a name is a further file of the example that follows it.
"""
import re
import shlex

import harness

MANUAL = harness.ROOT / "docs" / "definition-texts.md"
BLOCK = re.compile(r"^```(\w+)[ ]*([^\n]*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)

BESIDE = re.compile(r"^ +\d* \||: note: ")


class Examples(harness.MepTest):
    def test_every_example_shows_what_is_printed(self):
        manual = MANUAL.read_text(encoding="utf-8")
        text, count = None, 0
        for block in BLOCK.finditer(manual):
            kind, argument, content = block.groups()
            line = manual.count("\n", 0, block.start()) + 1
            self.assertIn(kind, ("mep", "output"), f"line {line}")
            if kind == "mep" and argument:
                self.write(argument, content)
            elif kind == "mep":
                self.assertIsNone(text, f"line {line}: the text before has no output")
                text = content
            else:
                self.assertIsNotNone(text, f"line {line}: output without a text")
                with self.subTest(line=line):
                    self.assertEqual(self.shown(text, argument), content)
                text, count = None, count + 1
        self.assertIsNone(text, "the last text has no output")
        self.assertGreaterEqual(count, 30)

    def shown(self, text, options):
        self.write("text.mep", text)
        _, out, err = self.run_mep("show", *shlex.split(options, posix=True), "text.mep")
        # Excerpts and notes below an error are not part of the examples.
        errors = [line + "\n" for line in err.splitlines() if not BESIDE.search(line)]
        return out + "".join(errors)


if __name__ == "__main__":
    harness.main()
