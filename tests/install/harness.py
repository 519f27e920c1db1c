"""What the tests of the installation share: the settings of the build, commands that have to
succeed, and an installation in a fresh prefix that is moved away before anybody uses it.

A test program gets the settings as options; tests/install/CMakeLists.txt passes them.
"""
import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]


def settings():
    parser = argparse.ArgumentParser()
    for name in ("cmake", "build", "generator", "make-program", "compiler", "launcher", "sanitize",
                 "version", "work"):
        parser.add_argument("--" + name, default="")
    return parser.parse_args()


SETTINGS = settings()
WORK = pathlib.Path(SETTINGS.work) / pathlib.Path(sys.argv[0]).stem


def environment(**changes):
    """The environment without what would let something outside of the prefix be found."""
    kept = {name: value for name, value in os.environ.items()
            if not name.startswith(("CMAKE_", "PKG_CONFIG", "LD_LIBRARY", "CPATH", "LIBRARY_PATH"))}
    return {**kept, "LC_ALL": "C.UTF-8", **changes}


def run(*command, expect=0, cwd=None, shell=False, **changes):
    """Standard output of a command that has to end with the status `expect`."""
    arguments = command[0] if shell else [str(part) for part in command]
    result = subprocess.run(arguments, cwd=cwd, shell=shell, check=False, timeout=280,
                            env=environment(**changes), stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT)
    output = result.stdout.decode("utf-8", "replace")
    if result.returncode != expect:
        raise AssertionError(f"{command} ends with {result.returncode}:\n{output}")
    return output


def fresh(name):
    """An empty folder below the test's own working folder."""
    folder = WORK / name
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return folder


def install():
    """Installs into a fresh prefix, moves it, and returns where it is now."""
    made = fresh("made")
    moved = WORK / "prefix"
    shutil.rmtree(moved, ignore_errors=True)
    run(SETTINGS.cmake, "--install", SETTINGS.build, "--prefix", made)
    made.rename(moved)
    return moved


def sanitizer_flags():
    return f"-fsanitize={SETTINGS.sanitize} -fno-sanitize-recover=all" if SETTINGS.sanitize else ""


def build_application(source, prefix):
    """Configures and builds a project that finds the library in the prefix; its build folder."""
    build = fresh(pathlib.Path(source).name + "-build")
    run(SETTINGS.cmake, "-S", source, "-B", build, "-G", SETTINGS.generator,
        f"-DCMAKE_MAKE_PROGRAM={SETTINGS.make_program}", f"-DCMAKE_PREFIX_PATH={prefix}",
        f"-DCMAKE_CXX_COMPILER={SETTINGS.compiler}", "-DCMAKE_FIND_USE_PACKAGE_REGISTRY=OFF",
        f"-DCMAKE_CXX_COMPILER_LAUNCHER={SETTINGS.launcher}",
        f"-DCMAKE_CXX_FLAGS={sanitizer_flags()}")
    run(SETTINGS.cmake, "--build", build, "--parallel", 2)
    return build


def library_folder(prefix):
    """The folder of the library below the prefix: lib, or lib with an architecture in it."""
    return next(prefix.glob("lib*/**/libixomep.so")).parent


def pkg_config(prefix, *options):
    """Answers from the prefix alone: no other package can be seen."""
    return run("pkg-config", *options, "ixomep",
               PKG_CONFIG_LIBDIR=str(library_folder(prefix) / "pkgconfig")).strip()


def main():
    unittest.main(argv=sys.argv[:1], verbosity=2)
