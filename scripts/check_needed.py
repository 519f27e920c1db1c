#!/usr/bin/env python3
"""Checks that a program or library needs nothing but the C and C++ run-time libraries.

Usage: check_needed.py BINARY

Reads the NEEDED entries of the binary; anything outside ALLOWED is named, exit 1. Sanitizer
run-times are allowed, since they come with the build and not with the code.
"""
import re
import subprocess
import sys

ALLOWED = re.compile(r"(libstdc\+\+|libm|libgcc_s|libc|libasan|libubsan|ld-linux[\w-]*|ld64)\.so\.\d+")


def main():
    listing = subprocess.run(["readelf", "-d", "-W", sys.argv[1]], check=True, capture_output=True,
                             text=True).stdout
    needed = re.findall(r"\(NEEDED\).*\[([^\]]+)\]", listing)
    if not needed:
        print(f"{sys.argv[1]} names no library at all")
        return 1
    strangers = [name for name in needed if not ALLOWED.fullmatch(name)]
    for name in strangers:
        print(f"needs {name}, which is not part of the C++ run-time")
    if not strangers:
        print("needs only " + ", ".join(needed))
    return 1 if strangers else 0


if __name__ == "__main__":
    sys.exit(main())
