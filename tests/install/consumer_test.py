#!/usr/bin/env python3
"""The installed package, after it was moved: what is in it, and an application that finds it."""
import os
import pathlib
import re
import unittest

import harness
from harness import ROOT, SETTINGS, run


class Installation(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.prefix = harness.install()
        cls.libraries = harness.library_folder(cls.prefix)

    def dynamic_section(self, path):
        return run("readelf", "-dW", path)

    def test_the_headers_are_the_public_ones(self):
        listing = (ROOT / "cmake" / "PublicHeaders.cmake").read_text(encoding="utf-8")
        public = set(re.findall(r"ixomep/[\w/]+\.h", listing))
        include = self.prefix / "include"
        installed = {path.relative_to(include).as_posix()
                     for path in include.rglob("*") if path.is_file()}
        self.assertEqual(installed, public)

    def test_the_library_is_versioned(self):
        major = SETTINGS.version.split(".")[0]
        self.assertEqual(os.readlink(self.libraries / "libixomep.so"), f"libixomep.so.{major}")
        self.assertEqual(os.readlink(self.libraries / f"libixomep.so.{major}"),
                         f"libixomep.so.{SETTINGS.version}")
        self.assertIn(f"soname: [libixomep.so.{major}]",
                      self.dynamic_section(self.libraries / "libixomep.so"))

    def test_header_and_package_files_tell_the_same_version(self):
        header = (self.prefix / "include/ixomep/export.h").read_text(encoding="utf-8")
        self.assertIn(f'IXOMEP_VERSION_TEXT "{SETTINGS.version}"', header)
        parts = [re.search(rf"IXOMEP_VERSION_{part} (\d+)", header).group(1)
                 for part in ("MAJOR", "MINOR", "PATCH")]
        self.assertEqual(".".join(parts), SETTINGS.version)
        self.assertEqual(harness.pkg_config(self.prefix, "--modversion"), SETTINGS.version)

    def test_no_installed_text_names_a_folder_of_the_build(self):
        folders = (str(ROOT), SETTINGS.build, str(self.prefix.parent / "made"))
        texts = [path for path in self.prefix.rglob("*")
                 if path.is_file() and not path.read_bytes().startswith(b"\x7fELF")]
        self.assertGreater(len(texts), 30)
        guilty = [path for path in texts
                  if any(folder in path.read_text(encoding="utf-8") for folder in folders)]
        self.assertEqual(guilty, [])

    def test_pkg_config_needs_no_other_package(self):
        flags = harness.pkg_config(self.prefix, "--cflags", "--libs").split()
        include = next(flag[2:] for flag in flags if flag.startswith("-I"))
        folder = next(flag[2:] for flag in flags if flag.startswith("-L"))
        self.assertTrue(os.path.samefile(include, self.prefix / "include"))
        self.assertTrue(os.path.samefile(folder, self.libraries))
        self.assertEqual([flag for flag in flags if flag.startswith("-l")], ["-lixomep"])

    def test_the_exported_target_names_no_other_library(self):
        for path in (self.libraries / "cmake/ixomep").glob("*.cmake"):
            text = path.read_text(encoding="utf-8").lower()
            for word in ("pcre2", "nettle", "pkgconfig", "find_dependency"):
                self.assertNotIn(word, text, path.name)

    def test_another_major_version_is_refused(self):
        major = int(SETTINGS.version.split(".")[0])
        for wanted, status in ((f"{major}.0", 0), (f"{major + 1}.0", 1), (f"{major}.999", 1)):
            with self.subTest(wanted):
                source = harness.fresh("version")
                (source / "CMakeLists.txt").write_text(
                    "cmake_minimum_required(VERSION 3.25)\nproject(version LANGUAGES NONE)\n"
                    "set_property(GLOBAL PROPERTY TARGET_SUPPORTS_SHARED_LIBS TRUE)\n"
                    f"find_package(ixomep {wanted} REQUIRED)\n", encoding="utf-8")
                run(SETTINGS.cmake, "-S", source, "-B", source / "build", "-G", SETTINGS.generator,
                    f"-DCMAKE_MAKE_PROGRAM={SETTINGS.make_program}",
                    f"-DCMAKE_PREFIX_PATH={self.prefix}", expect=status)

    def test_the_command_finds_the_library_beside_it(self):
        mep = self.prefix / "bin" / "mep"
        self.assertEqual(run(mep, "eval", "2 + 3 * 4"), "14\n")
        self.assertIn("$ORIGIN/", self.dynamic_section(mep))
        found = re.search(r"libixomep\.so\S* => (\S+)", run("ldd", mep)).group(1)
        self.assertEqual(pathlib.Path(found).resolve().parent, self.libraries.resolve())

    def test_the_example_application_prints_what_is_expected(self):
        source = ROOT / "examples" / "host"
        bakery = harness.build_application(source, self.prefix) / "bakery"
        expected = (source / "expected_output.txt").read_text(encoding="utf-8")
        self.assertEqual(run(bakery, source / "library"), expected)
        needed = re.findall(r"NEEDED.*\[(\S+)\]", self.dynamic_section(bakery))
        self.assertIn(f"libixomep.so.{SETTINGS.version.split('.')[0]}", needed)
        self.assertFalse([name for name in needed if "pcre2" in name or "nettle" in name])
        # It prints the same again, and says what is wrong with a folder that has no library.
        self.assertEqual(run(bakery, source / "library"), expected)
        self.assertIn("bakery.mep cannot be read", run(bakery, source / "library/tasks", expect=1))
        self.assertIn("No such file", run(bakery, source / "nowhere", expect=1))


if __name__ == "__main__":
    harness.main()
