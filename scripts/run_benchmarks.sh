#!/usr/bin/env bash
# Runs every benchmark program of a build directory, one after the other.
#   scripts/run_benchmarks.sh BUILD_DIRECTORY [ARGUMENTS OF GOOGLE BENCHMARK]
set -euo pipefail
build=$1
shift
found=0
for program in "$build"/bench/bench_*; do
  [ -f "$program" ] && [ -x "$program" ] || continue
  found=1
  echo "== $(basename "$program")"
  "$program" "$@"
done
if [ "$found" -eq 0 ]; then
  echo "no benchmark programs in $build/bench" >&2
  exit 1
fi
