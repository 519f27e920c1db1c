#!/usr/bin/env python3
"""Changes the library in small ways and looks whether the tests notice.

Usage: mutate.py [--mutants N] [--seed S] [--jobs J] [--work FOLDER] [--folders values,expr,...]
                 [--only ROWS]

A mutant is a source of ixomep/ with one operator, comparison, constant, condition or statement
changed. N of them are picked by the seed. Each is compiled alone, without optimisation, linked with
the other objects into a shared library, and the test programs of its folder run on that library, the
tests of its own file first, until one fails. Tests that take longer than SLOW in the good run at the
beginning are left out; that the others pass without these, and those of a file alone, is checked
before the first mutant. Everything happens in a copy of the tree under FOLDER;
a second run with the same FOLDER and unchanged sources does not build again.

Prints how many were killed (a test failed, or the process died), timed out (killed too: a loop did
not end), survived, or did not compile, and the survivors; writes all of them to FOLDER/mutants.txt
as they are judged.

With --only the mutants are not picked: they are those named by the rows of ROWS, a file with rows
of an earlier mutants.txt (their verdicts are not looked at, and rows may be left out), to try them
again after tests were added. A row whose line is no longer there is told and left out. The verdicts
then go to FOLDER/again.txt.
"""
import argparse
import json
import math
import os
import pathlib
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor

ROOT = pathlib.Path(__file__).resolve().parents[1]
# folder of ixomep/ -> test programs, the most fitting first
PROGRAMS = {
    "values": ["values", "expr", "language", "builtins", "parser", "faults"],
    "expr": ["expr", "language", "builtins", "docs", "values", "parser", "faults"],
    "builtins": ["builtins", "docs", "language", "expr", "faults"],
    "parser": ["parser", "values", "builtins", "language", "faults"],
}
MEASURING = "*Growth.*"  # tests that measure time, which other work on the machine disturbs
SLOW = 1.5  # seconds of the processor for one test in the good run
MEMORY = 6 << 30  # bytes of address space of a test program
MUTANT_LIBRARY = "libmutant.so"


# --- Mutants ---------------------------------------------------------------------------------------

SWAPS = [
    (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "),
    (r" == ", " != "), (r" != ", " == "), (r" && ", " || "), (r" \|\| ", " && "),
    (r" \+ ", " - "), (r" - ", " + "), (r" \* ", " / "), (r" / ", " * "), (r" % ", " / "),
    (r"\+\+", "--"), (r"--", "++"), (r" \+= ", " -= "), (r" -= ", " += "),
    (r"\btrue\b", "false"), (r"\bfalse\b", "true"),
    (r"(?<![\w.'])0(?![\w.'])", "1"), (r"(?<![\w.'])1(?![\w.'])", "0"),
    (r"(?<![\w.'])([2-9]|[1-9]\d+)(?![\w.'])", "\\1 + 1"),
    (r"\bif \(((?:(?! = )[^;{}])*)\) (?=\{|return|continue|break|\w)", r"if (!(\1)) "),
    (r"\bwhile \(([^;{}]*)\) \{", r"while (!(\1)) {"),
    (r"(?<=[ (])!(?=[\w(])", ""),
]
SKIPPED_LINE = re.compile(r"^\s*(//|#|static_assert|namespace|using|template|constexpr char|requires|class|struct|enum)")
STATEMENT = re.compile(r"^\s+(?!return|const|auto|static|case|default|delete|throw|using|else|if|for|while|do)"
                       r"[\w:.>\[\]()*&-]+(\(.*\)|( [-+*/|&]?=) .*);$")
STRING = re.compile(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)\'|//.*')


def blanked(line):
    """The line with strings, characters and comments as blanks, so that nothing is found there."""
    return STRING.sub(lambda m: "\0" * len(m.group()), line)


def is_balanced(text):
    depth = 0
    for c in text:
        depth += (c == "(") - (c == ")")
        if depth < 0:
            return False
    return depth == 0


def mutants_of(path):
    """Yields (line number, new line, what was done) for a source."""
    lines = path.read_text(encoding="utf-8").splitlines()
    for number, line in enumerate(lines):
        if SKIPPED_LINE.match(line) or not line.strip():
            continue
        code = blanked(line)
        for pattern, replacement in SWAPS:
            for found in re.finditer(pattern, code):
                if found.groups() and not is_balanced(found.group(1)):
                    continue
                original = line[found.start():found.end()]
                groups = [line[slice(*found.span(i + 1))] for i in range(len(found.groups()))]
                new = replacement.replace(r"\1", groups[0]) if groups else replacement
                yield number, line[:found.start()] + new + line[found.end():], f"{original.strip()} -> {new.strip()}"
        before = lines[number - 1].rstrip() if number else ""
        if STATEMENT.match(code) and is_balanced(code) and before.endswith((";", "{", "}")):
            yield number, ";", f"removed: {line.strip()}"
        if line.strip() in ("break;", "continue;"):
            yield number, ";", f"removed: {line.strip()}"


def all_mutants(tree, folders):
    for folder in folders:
        for path in sorted((tree / "ixomep" / folder).glob("*.cpp")):
            for number, line, what in mutants_of(path):
                yield path, number, line, what


def row_of(tree, mutant):
    source, number, line, what = mutant
    return f"{source.relative_to(tree)}:{number + 1}: {what} | {line.strip()}"


def named_mutants(tree, choices, rows):
    """The mutants of the rows. The line may have moved in its file, but not changed."""
    def without_number(row):
        return re.sub(r":\d+: ", ": ", row, count=1)
    by_row = {row_of(tree, choice): choice for choice in choices}
    by_text = {without_number(row): choice for row, choice in by_row.items()}
    named = []
    for row in rows.read_text(encoding="utf-8").splitlines():
        row = row.split(": ", 1)[-1]
        found = by_row.get(row) or by_text.get(without_number(row))
        if found:
            named.append(found)
        else:
            print(f"no longer there: {row}")
    return named


# --- Building and running ----------------------------------------------------------------------------

class Bench:
    """The copied tree, its objects and test programs."""

    def __init__(self, work, jobs):
        self.work = work
        self.tree = work / "tree"
        self.build = work / "build"
        self.jobs = jobs
        self.commands = {}  # source -> compile command
        self.library_objects = {}  # source -> object
        self.seconds = {}  # program -> seconds of a good run
        self.slow = {}  # program -> its slow tests

    def prepare(self):
        names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                               capture_output=True, text=True).stdout.split("\n")
        for name in filter(None, names):
            source, target = ROOT / name, self.tree / name
            if not source.is_file():
                continue
            target.parent.mkdir(parents=True, exist_ok=True)
            if not target.exists() or target.read_bytes() != source.read_bytes():
                shutil.copy(source, target)
        # So that test programs find the internals in a shared library.
        lists = self.tree / "CMakeLists.txt"
        text = lists.read_text(encoding="utf-8")
        text = text.replace("VISIBILITY_PRESET hidden", "VISIBILITY_PRESET default")
        lists.write_text(text.replace("VISIBILITY_INLINES_HIDDEN ON", "VISIBILITY_INLINES_HIDDEN OFF"),
                         encoding="utf-8")
        self.run(["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                  "-DCMAKE_CXX_FLAGS_DEBUG=-O1", "-DIXOMEP_WERROR=OFF", "-DIXOMEP_BUILD_TOOLS=OFF",
                  "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"])
        entries = json.loads((self.build / "compile_commands.json").read_text(encoding="utf-8"))
        wanted, self.test_objects = [], {}
        for entry in entries:
            name = os.path.relpath(entry["file"], self.tree)
            command = shlex.split(entry["command"])
            made = command[command.index("-o") + 1]
            folder = name.split("/")
            if folder[0] == "ixomep":
                self.library_objects[self.tree / name] = made
                self.commands[self.tree / name] = command
            elif folder[0] == "tests" and (folder[1] == "support" or folder[1] in sum(PROGRAMS.values(), [])):
                if name.endswith(".cpp"):
                    self.test_objects.setdefault(folder[1], []).append(made)
            else:
                continue
            wanted.append(made)
        self.run(["ninja", "-C", self.build, "-j", str(self.jobs), *wanted])
        self.link_library(self.work / MUTANT_LIBRARY, {})
        for program in self.programs():
            objects = self.test_objects[program] + self.test_objects["support"]
            extra = ["-lpugixml"] if program == "parser" else []
            self.run(["g++", "-o", self.work / program, *(self.build / o for o in objects),
                      self.work / MUTANT_LIBRARY, "-lgtest_main", "-lgtest", *extra])
        for program in self.programs():
            self.time_tests(program)

    def time_tests(self, program):
        """The good run: every test has to pass, and its time is noted."""
        report = self.work / f"{program}.json"
        command = [self.work / program, "--gtest_brief=1", f"--gtest_filter=-{MEASURING}",
                   f"--gtest_output=json:{report}"]
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        done = subprocess.run(command, cwd=self.tree, capture_output=True, text=True, check=False,
                              env={**os.environ, "LD_LIBRARY_PATH": str(self.work)})
        if done.returncode != 0:
            sys.exit(f"{program} fails without a mutant\n{done.stdout[-2000:]}")
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        used = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
        results = json.loads(report.read_text(encoding="utf-8"))
        # Seconds of the processor, whatever else the machine does.
        share = used / max(float(results["time"].removesuffix("s")), 0.001)
        self.seconds[program], self.slow[program] = 0.0, [MEASURING]
        for suite in results["testsuites"]:
            for test in suite["testsuite"]:
                seconds = float(test["time"].removesuffix("s")) * share
                if seconds > SLOW:
                    self.slow[program].append(f"{suite['name']}.{test['name']}")
                else:
                    self.seconds[program] += seconds

    def programs(self):
        return sorted(set(sum(PROGRAMS.values(), [])))

    @staticmethod
    def run(command):
        done = subprocess.run([str(c) for c in command], capture_output=True, text=True, check=False)
        if done.returncode != 0:
            sys.exit(f"{' '.join(map(str, command))[:300]}\n{done.stdout[-2000:]}{done.stderr[-2000:]}")

    def link_library(self, target, replaced):
        objects = [replaced.get(source) or self.build / made
                   for source, made in self.library_objects.items()]
        self.run(["g++", "-shared", f"-Wl,-soname,{MUTANT_LIBRARY}", "-o", target, *objects,
                  "-lpcre2-8", "-lnettle"])

    def test(self, program, folder, names, seconds):
        """Runs a program on the library in the folder, for so many seconds of the processor."""
        def limit():
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            resource.setrlimit(resource.RLIMIT_CPU, (math.ceil(seconds),) * 2)
        command = [str(self.work / program), "--gtest_brief=1", "--gtest_fail_fast"]
        command.append(f"--gtest_filter={names or '*'}-{':'.join(self.slow[program])}")
        try:
            done = subprocess.run(command, cwd=self.tree, preexec_fn=limit, timeout=20 * seconds, check=False,
                                  env={**os.environ, "LD_LIBRARY_PATH": str(folder)},
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        except subprocess.TimeoutExpired:
            return "timeout"
        if done.returncode in (-signal.SIGXCPU, -signal.SIGKILL):
            return "timeout"
        return "survived" if done.returncode == 0 else "killed"

    def tests_of(self, source):
        """A filter for the tests in the file that belongs to the source."""
        own = self.tree / "tests" / source.parent.name / f"{source.stem}_test.cpp"
        if not own.exists():
            return ""
        suites = set(re.findall(r"^(?:TEST|TEST_F|TEST_P)\((\w+),", own.read_text(encoding="utf-8"), re.M))
        return ":".join(f"{s}.*:*/{s}.*" for s in sorted(suites))

    def runs_of(self, source):
        """The programs, and which of their tests, in the order in which they look at a mutant."""
        programs = PROGRAMS[source.parent.name]
        names = self.tests_of(source)
        return ([(programs[0], names)] if names else []) + [(program, "") for program in programs]

    def check_good_runs(self, sources):
        """A test that needs the ones before it would kill every mutant."""
        for program, names in sorted({run for source in sources for run in self.runs_of(source)}):
            if self.test(program, self.work, names, 30 + 10 * self.seconds[program]) != "survived":
                sys.exit(f"{program} fails without a mutant when only a part of its tests runs: {names or '*'}")

    def judge(self, mutant, folder):
        """Compiles, links and tests one mutant in a folder of its own."""
        source, number, line, _ = mutant
        folder.mkdir(exist_ok=True)
        lines = source.read_text(encoding="utf-8").splitlines()
        lines[number] = line
        changed = folder / source.name
        changed.write_text("\n".join(lines) + "\n", encoding="utf-8")
        made = folder / "mutant.o"
        command = list(self.commands[source])
        command[command.index("-c") + 1] = str(changed)
        command[command.index("-o") + 1] = str(made)
        for flag, has_value in (("-MD", 0), ("-MT", 1), ("-MF", 1)):
            if flag in command:
                at = command.index(flag)
                del command[at:at + 1 + has_value]
        if subprocess.run([*command, "-w"], cwd=self.build, capture_output=True, check=False).returncode:
            return "does not compile"
        self.link_library(folder / MUTANT_LIBRARY, {source: made})
        for program, chosen in self.runs_of(source):
            verdict = self.test(program, folder, chosen, 3 + 4 * self.seconds[program])
            if verdict != "survived":
                return verdict
        return "survived"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--mutants", type=int, default=100)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=1)
    parser.add_argument("--work", type=pathlib.Path, default=pathlib.Path(tempfile.gettempdir()) / "ixomep-mutants")
    parser.add_argument("--only", type=pathlib.Path)
    parser.add_argument("--folders", default=",".join(PROGRAMS))
    arguments = parser.parse_args()
    work = arguments.work.resolve()
    work.mkdir(parents=True, exist_ok=True)
    bench = Bench(work, arguments.jobs)
    begin = time.monotonic()
    bench.prepare()
    prepared = time.monotonic()
    print(f"prepared in {prepared - begin:.0f} s; a good run takes {sum(bench.seconds.values()):.1f} s without "
          f"{sum(len(slow) - 1 for slow in bench.slow.values())} slow tests", flush=True)
    choices = list(all_mutants(bench.tree, arguments.folders.split(",")))
    if arguments.only:
        chosen = named_mutants(bench.tree, choices, arguments.only)
        print(f"{len(chosen)} mutants are tried again", flush=True)
    else:
        chosen = random.Random(arguments.seed).sample(choices, min(arguments.mutants, len(choices)))
        print(f"{len(choices)} mutants are possible, {len(chosen)} are tried with the seed {arguments.seed}",
              flush=True)

    bench.check_good_runs({mutant[0] for mutant in chosen})
    free = [work / f"worker{i}" for i in range(arguments.jobs)]

    def judged(mutant):
        folder = free.pop()
        try:
            return bench.judge(mutant, folder)
        finally:
            free.append(folder)

    counts = {}
    table = work / ("again.txt" if arguments.only else "mutants.txt")
    with ThreadPoolExecutor(arguments.jobs) as pool, table.open("w", encoding="utf-8") as told:
        for mutant, verdict in zip(chosen, pool.map(judged, chosen)):
            counts[verdict] = counts.get(verdict, 0) + 1
            row = f"{verdict}: {row_of(bench.tree, mutant)}"
            print(row, file=told, flush=True)
            if verdict == "survived":
                print(row, flush=True)
    seconds = time.monotonic() - prepared
    caught = counts.get("killed", 0) + counts.get("timeout", 0)
    tried = len(chosen) - counts.get("does not compile", 0)
    print(", ".join(f"{counts.get(k, 0)} {k}" for k in ("killed", "timeout", "survived", "does not compile"))
          + f"; {100 * caught / max(tried, 1):.1f} % of {tried} caught; "
          f"{seconds / max(len(chosen), 1):.1f} s a mutant")
    return 0


if __name__ == "__main__":
    sys.exit(main())
