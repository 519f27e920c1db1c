#!/usr/bin/env python3
"""The man page and the shell completions know what the installed command knows: every sub-command
and every option that its help prints, and no other. The completion of bash is run.
"""
import re
import unittest

import harness
from harness import run

OPTION_LINE = re.compile(r"^  (?:(-\w),)?(--[\w-]+)|^  (-\w)\b")


def section(text, title):
    """The lines of a section of the help."""
    found = re.search(rf"^{title}:\n((?:  .*\n)+)", text, re.MULTILINE)
    return found.group(1).splitlines() if found else []


def options(text):
    """(short, long) of each option; either may be empty."""
    return {(match.group(1) or match.group(3) or "", match.group(2) or "")
            for match in map(OPTION_LINE.match, section(text, "Options")) if match}


class CommandFiles(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.prefix = harness.install()
        share = cls.prefix / "share"
        mep = cls.prefix / "bin/mep"
        cls.bash_file = share / "bash-completion/completions/mep"
        cls.man = (share / "man/man1/mep.1").read_text(encoding="utf-8")
        cls.bash = cls.bash_file.read_text(encoding="utf-8")
        cls.zsh = (share / "zsh/vendor-completions/_mep").read_text(encoding="utf-8")
        cls.fish = (share / "fish/vendor_completions.d/mep.fish").read_text(encoding="utf-8")
        summary = run(mep, "--help")
        cls.commands = [line.split()[0] for line in section(summary, "Subcommands")
                        if not line.startswith("   ")]
        cls.main_options = options(summary)
        cls.options = {name: options(run(mep, name, "--help")) for name in cls.commands}

    def all_options(self):
        return set().union(self.main_options, *self.options.values())

    def test_the_help_was_understood(self):
        self.assertIn("show", self.commands)
        self.assertIn(("-h", "--help"), self.main_options)
        self.assertIn(("-v", "--var"), self.options["show"])
        self.assertIn(("", "--include-root"), self.options["show"])

    # --- The man page -------------------------------------------------------------------------------

    def man_text(self):
        """Without the markup of fonts and escaped hyphens."""
        text = re.sub(r"\\f[BIRP]", "", self.man).replace("\\-", "-")
        return re.sub(r'^\.(?:BR|BI|IR|RB|B|I) ?', "", text, flags=re.MULTILINE).replace('"', "")

    def test_the_man_page_has_an_entry_for_every_command_and_no_other(self):
        entries = re.search(r"^\.SH COMMANDS\n(.*?)^\.SH", self.man,
                            re.MULTILINE | re.DOTALL).group(1)
        told = re.findall(r"^\.TP\n\.B (?:\\fB)?([a-z]+)", entries, re.MULTILINE)
        self.assertEqual(sorted(told), sorted(self.commands))

    def test_the_man_page_has_an_entry_for_every_option_and_no_other(self):
        told = set()
        for line in re.findall(r"^\.TP\n(.*-.*)$", self.man_text(), re.MULTILINE):
            found = re.match(r"(?:(-\w))?[ ,]*(--[\w-]+)?", line)
            told.add((found.group(1) or "", found.group(2) or ""))
        self.assertEqual(told, self.all_options())

    def takers(self, long):
        return {name for name in self.commands if long in {known for _, known in self.options[name]}}

    def test_the_man_page_tells_which_commands_take_an_option(self):
        entries = re.findall(r"^\.TP\n.*?(--[\w-]+).*\n((?:[a-z ,]+:)?)", self.man_text(),
                             re.MULTILINE)
        told = {long: set(re.findall(r"[a-z]+", names)) for long, names in entries}
        for _, long in self.all_options():
            if long not in {"--help", "--version", "--encoding"}:  # said in words
                self.assertEqual(told[long], self.takers(long), long)
        self.assertEqual(self.takers("--encoding"), set(self.commands))

    def test_the_man_page_names_the_version(self):
        self.assertIn(f'"ixomep {harness.SETTINGS.version}"', self.man)

    # --- Completion -----------------------------------------------------------------------------------

    def complete(self, *words):
        """What bash offers for the last of the words."""
        line = " ".join(f"'{word}'" for word in ("mep", *words))
        script = (f"source '{self.bash_file}'; COMP_WORDS=({line}); COMP_CWORD={len(words)}; "
                  '_mep; printf "%s\\n" "${COMPREPLY[@]}"')
        return set(run("bash", "-c", script, cwd=self.prefix).split())

    def test_bash_offers_the_commands_and_the_options_of_the_program(self):
        self.assertEqual(self.complete(""),
                         {*self.commands, *(long for _, long in self.main_options)})
        self.assertEqual(self.complete("sh"), {"show"})

    def test_bash_offers_the_options_of_each_command(self):
        for name in self.commands:
            with self.subTest(name):
                self.assertEqual(self.complete(name, "-"), {long for _, long in self.options[name]})

    def test_bash_offers_files_folders_and_words_where_they_are_wanted(self):
        self.assertEqual(self.complete("show", "bi"), {"bin"})
        self.assertEqual(self.complete("show", "--include-root", "sh"), {"share"})
        self.assertEqual(self.complete("eval", "-e", "w"), {"windows-1252"})
        self.assertEqual(self.complete("eval", "1 "), set())
        self.assertEqual(self.complete("show", "--var", "x"), set())

    def test_zsh_knows_every_command_and_option_and_no_other(self):
        told = re.findall(r"^    '([a-z]+):", self.zsh, re.MULTILINE)
        self.assertEqual(sorted(told), sorted(self.commands))
        named = set(re.findall(r"(?<![\w-])--[a-z][\w-]*", self.zsh))
        self.assertEqual(named, {long for _, long in self.all_options() if long})
        short = set(re.findall(r"\{(-\w),--", self.zsh))
        self.assertEqual(short, {short for short, _ in self.all_options() if short})

    def test_fish_knows_every_command_and_option_and_no_other(self):
        self.assertEqual(sorted(re.findall(r" -a ([a-z]+) -d", self.fish)), sorted(self.commands))
        listed = re.search(r"^set -l commands (.*)$", self.fish, re.MULTILINE).group(1)
        self.assertEqual(sorted(listed.split()), sorted(self.commands))
        told = {(f"-{short}" if short else "", f"--{long}") for short, long in
                re.findall(r"complete -c mep.*?(?: -s (\w))? -l ([\w-]+)", self.fish)}
        self.assertEqual(told, self.all_options())

    def test_fish_offers_an_option_behind_the_commands_that_take_it(self):
        checked = 0
        for names, long in re.findall(r"_from ([a-z ]+)'.* -l ([\w-]+)", self.fish):
            checked += 1
            self.assertEqual(set(names.split()), self.takers(f"--{long}"), long)
        self.assertEqual(checked, len(self.all_options()) - len(
            {"help", "version", "encoding", "max-steps", "max-memory", "timeout"}))


if __name__ == "__main__":
    harness.main()
