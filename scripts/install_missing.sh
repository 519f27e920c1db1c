#!/usr/bin/env bash
# Installs the Debian packages that a purpose needs and that are missing, and says which.
# Does nothing, and touches no network, when everything is there.
#   scripts/install_missing.sh build|lint|bench|fuzz|valgrind
set -euo pipefail

# package, and how its presence shows: a command, a header written as <name>, or a file as +path
build_needs="g++:g++ cmake:cmake ninja-build:ninja ccache:ccache pkg-config:pkg-config
  binutils:readelf dpkg-dev:dpkg-shlibdeps file:file python3:python3
  libpcre2-dev:<pcre2.h> nettle-dev:<nettle/des.h>
  libgtest-dev:<gtest/gtest.h> libpugixml-dev:<pugixml.hpp> libcli11-dev:<CLI/CLI.hpp>"
lint_needs="clang-format:clang-format clang-tidy:clang-tidy cppcheck:cppcheck git:git"
bench_needs="libbenchmark-dev:<benchmark/benchmark.h> liblua5.4-dev:<lua5.4/lua.h>
  libluajit-5.1-dev:<luajit-2.1/lua.h> duktape-dev:<duktape.h>
  libmuparserx-dev:<muparserx/mpParser.h> librapidxml-dev:<rapidxml/rapidxml.hpp>
  rapidjson-dev:<rapidjson/document.h> libsimdjson-dev:<simdjson.h>"
# the engine's library has no command and no header that the compiler finds
fuzz_needs="clang-14:clang++-14 libclang-rt-14-dev:+/usr/lib/llvm-14/lib/clang/*/lib/linux/libclang_rt.fuzzer-*.a"
valgrind_needs="valgrind:valgrind"

case "${1:-}" in
  build) needs=$build_needs ;;
  lint) needs=$lint_needs ;;
  bench) needs=$bench_needs ;;
  fuzz) needs=$fuzz_needs ;;
  valgrind) needs=$valgrind_needs ;;
  *) echo "usage: $0 build|lint|bench|fuzz|valgrind" >&2; exit 2 ;;
esac

present() {
  case "$1" in
    \<*) printf '#define PCRE2_CODE_UNIT_WIDTH 8\n#if !__has_include(%s)\n#error\n#endif\n' "$1" |
           g++ -E -x c++ - >/dev/null 2>&1 ;;
    +*) compgen -G "${1#+}" >/dev/null ;;
    *) command -v "$1" >/dev/null 2>&1 ;;
  esac
}

missing=()
set -f
for need in $needs; do
  present "${need#*:}" || missing+=("${need%%:*}")
done
set +f
if [ ${#missing[@]} -eq 0 ]; then exit 0; fi

echo "installing what is missing: ${missing[*]}"
if ! command -v apt-get >/dev/null 2>&1; then
  echo "$0: this is not a Debian system; please install these packages yourself" >&2
  exit 1
fi
as_root=()
if [ "$(id -u)" -ne 0 ]; then as_root=(sudo); fi
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
