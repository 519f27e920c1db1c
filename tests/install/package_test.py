#!/usr/bin/env python3
"""The Debian package: made by cpack, unpacked, installed into a root of its own, removed again.

Nothing outside of the test's folder is touched, and the superuser is not needed: dpkg works on a
data base of the test's own, which knows the packages that ours depends on as they are installed
on this machine.
"""
import os
import pathlib
import re
import unittest

import harness
from harness import SETTINGS, run

STUB_FIELDS = ("Package", "Status", "Maintainer", "Architecture", "Multi-Arch", "Version",
               "Description")


def files_below(folder):
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*")
            if path.is_file() or path.is_symlink()}


class Package(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        folder = harness.fresh("cpack")
        cpack = pathlib.Path(SETTINGS.cmake).with_name("cpack")
        mask = os.umask(0o022)
        run(cpack, "-G", "DEB", "--config", f"{SETTINGS.build}/CPackConfig.cmake", "-B", folder,
            cwd=folder)
        os.umask(mask)
        packages = list(folder.glob("*.deb"))
        if len(packages) != 1:
            raise AssertionError(f"cpack made {packages}")
        cls.package = packages[0]
        cls.tree = harness.fresh("unpacked")
        run("dpkg-deb", "-x", cls.package, cls.tree)

    def field(self, name):
        return run("dpkg-deb", "-f", self.package, name).strip()

    def needed_packages(self):
        return [re.match(r"[\w.+-]+", entry.strip()).group() for entry in
                self.field("Depends").split(",")]

    def test_the_control_file_tells_what_the_package_is(self):
        self.assertEqual(self.field("Package"), "ixomep")
        self.assertEqual(self.field("Version"), SETTINGS.version)
        self.assertEqual(self.field("Architecture"), run("dpkg", "--print-architecture").strip())
        self.assertEqual(self.package.name,
                         f"ixomep_{SETTINGS.version}_{self.field('Architecture')}.deb")
        self.assertRegex(self.field("Maintainer"), r"^\S.* <\S+@\S+>$")
        self.assertGreater(int(self.field("Installed-Size")), 500)

    def test_it_depends_on_run_time_libraries_only(self):
        needed = self.needed_packages()
        for name in ("libc6", "libstdc++6", "libpcre2-8-0", "libnettle8"):
            self.assertIn(name, needed)
        self.assertFalse([name for name in needed if name.endswith("-dev")])
        for name in needed:
            self.assertIn("installed", run("dpkg-query", "-W", "-f", "${db:Status-Status}", name))

    def test_it_has_what_an_installation_has(self):
        self.assertEqual(files_below(self.tree / "usr"), files_below(harness.install()))
        self.assertEqual([path.name for path in self.tree.iterdir()], ["usr"])

    def test_everything_in_it_belongs_to_root_and_is_readable_by_all(self):
        for line in run("dpkg-deb", "-c", self.package).splitlines():
            mode, owner = line.split()[:2]
            self.assertEqual(owner, "root/root", line)
            self.assertRegex(mode, r"^(drwxr-xr-x|-rw-r--r--|-rwxr-xr-x|lrwxrwxrwx)$", line)

    def test_its_scripts_call_ldconfig_for_the_running_system_only(self):
        control = harness.fresh("control")
        run("dpkg-deb", "-e", self.package, control)
        shim = harness.fresh("shim") / "ldconfig"
        shim.write_text("#!/bin/sh\necho renewed\n", encoding="utf-8")
        shim.chmod(0o755)
        path = f"{shim.parent}:{os.environ['PATH']}"
        for script, action in (("postinst", "configure"), ("postrm", "remove")):
            with self.subTest(script):
                self.assertEqual(run(control / script, action, PATH=path), "renewed\n")
                self.assertEqual(run(control / script, action, PATH=path, DPKG_ROOT="/x"), "")
                self.assertEqual(run(control / script, "other", PATH=path), "")

    def test_it_installs_runs_and_leaves_nothing_when_it_is_removed(self):
        root = self.make_root()
        before = files_below(root / "usr") if (root / "usr").exists() else set()
        self.dpkg(root, "--install", self.package)
        self.assertEqual(self.status(root), "install ok installed")
        self.assertEqual(files_below(root / "usr"), files_below(self.tree / "usr"))
        self.assertEqual(run(root / "usr/bin/mep", "eval", "6 * 7"), "42\n")
        found = re.search(r"libixomep\.so\S* => (\S+)", run("ldd", root / "usr/bin/mep")).group(1)
        self.assertTrue(pathlib.Path(found).resolve().is_relative_to(root.resolve()), found)
        self.dpkg(root, "--install", self.package)  # once more, over itself
        self.dpkg(root, "--purge", "ixomep")
        self.assertEqual(files_below(root / "usr") if (root / "usr").exists() else set(), before)
        self.assertNotIn("ixomep", (root / "var/lib/dpkg/status").read_text(encoding="utf-8"))

    # --- A root with a data base that knows what the package depends on ---------------------------

    def make_root(self):
        root = harness.fresh("root")
        data = root / "var/lib/dpkg"
        for folder in ("info", "updates", "triggers"):
            (data / folder).mkdir(parents=True)
        (data / "available").touch()
        template = "".join(f"{field}: ${{{field}}}\n" for field in STUB_FIELDS)
        paragraphs = []
        for name in self.needed_packages():
            text = run("dpkg-query", "-W", "-f", template, f"{name}:{self.field('Architecture')}")
            paragraphs.append(re.sub(r"^Multi-Arch: \n", "", text, flags=re.MULTILINE))
            suffix = f":{self.field('Architecture')}" if "Multi-Arch: same" in text else ""
            (data / "info" / f"{name}{suffix}.list").touch()
        (data / "status").write_text("\n".join(paragraphs), encoding="utf-8")
        return root

    def dpkg(self, root, *action):
        return run("dpkg", f"--root={root}", f"--log={root}/dpkg.log", "--force-not-root",
                   "--force-script-chrootless", "--path-include=/*", *action,
                   PATH=os.environ["PATH"] + ":/usr/local/sbin:/usr/sbin:/sbin")

    def status(self, root):
        return run("dpkg-query", f"--admindir={root}/var/lib/dpkg", "-W", "-f", "${Status}",
                   "ixomep")


if __name__ == "__main__":
    harness.main()
