#!/usr/bin/env bash
# Runs clang-tidy and cppcheck over the library and the command, or cppcheck alone.
#   scripts/lint.sh BUILD_DIRECTORY [JOBS]   (the build directory holds compile_commands.json)
#   scripts/lint.sh cppcheck [JOBS]
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
jobs=${2:-2}

if [ "$build" != cppcheck ]; then
  find ixomep tools -name '*.cpp' -print0 |
    xargs -0 -n 4 -P "$jobs" clang-tidy -p "$build" --quiet \
      --extra-arg=-Wno-unknown-warning-option
fi
# cppcheck 2.10 does not parse lambdas among template arguments (syntaxError), and does not see that
# an owner which is pushed to a list is released there (danglingLifetime).
cppcheck --quiet --std=c++20 --language=c++ -j "$jobs" -I . --inline-suppr \
  --enable=warning,performance,portability --error-exitcode=1 \
  --suppress=missingIncludeSystem --suppress=syntaxError --suppress=danglingLifetime ixomep tools
echo "lint: clean"
