"""Runs the mep command as a user would and compares what it prints.

The path of the binary is the first argument of each test program.
"""
import pathlib
import subprocess
import sys
import tempfile
import unittest

MEP = sys.argv[1] if len(sys.argv) > 1 else "mep"
ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples" / "texts"


class MepTest(unittest.TestCase):
    """Offers run() and a folder of its own for each test."""

    maxDiff = None

    def setUp(self):
        self._folder = tempfile.TemporaryDirectory()
        self.addCleanup(self._folder.cleanup)
        self.folder = pathlib.Path(self._folder.name)

    def write(self, name, content):
        """Writes a file (text as UTF-8, bytes as they are) and returns its path as text."""
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content if isinstance(content, bytes) else content.encode("utf-8"))
        return str(path)

    def run_bytes(self, *arguments, stdin=b"", cwd=None):
        run = subprocess.run([MEP, *arguments], input=stdin, capture_output=True, check=False,
                             timeout=120, cwd=cwd or self.folder)
        self.assertIn(run.returncode, (0, 1, 2), run.stderr.decode("utf-8", "replace"))
        return run.returncode, run.stdout, run.stderr

    def run_mep(self, *arguments, stdin="", cwd=None):
        """Status, standard output and standard error, as text."""
        status, out, err = self.run_bytes(*arguments, stdin=stdin.encode("utf-8"), cwd=cwd)
        return status, out.decode("utf-8"), err.decode("utf-8")

    def assert_prints(self, expected, *arguments, **options):
        status, out, err = self.run_mep(*arguments, **options)
        self.assertEqual((status, out, err), (0, expected, ""))

    def assert_fails(self, expected_status, expected_error, *arguments, **options):
        """Standard error is the expected text, standard output empty."""
        status, out, err = self.run_mep(*arguments, **options)
        self.assertEqual((status, out, err), (expected_status, "", expected_error))

    def assert_fails_with(self, expected_status, part, *arguments, **options):
        status, out, err = self.run_mep(*arguments, **options)
        self.assertEqual(status, expected_status, err)
        self.assertIn(part, err)
        return out, err


def main():
    unittest.main(argv=sys.argv[:1])
