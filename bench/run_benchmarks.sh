#!/usr/bin/env bash
# Runs the benchmark programs of a build directory that compare this library with its peers,
# repeats interleaved, and prints one table, of the medians and of the fastest repeats.
#   bench/run_benchmarks.sh BUILD_DIRECTORY [ARGUMENTS OF GOOGLE BENCHMARK]
# The results as they were stay in BUILD_DIRECTORY/bench/results.
set -euo pipefail
build=$1
shift
results=$build/bench/results
mkdir -p "$results"
files=()
for name in evaluate loops compile texts xml; do
  program=$build/bench/bench_$name
  if [ ! -x "$program" ]; then
    echo "there is no benchmark program $program" >&2
    exit 1
  fi
  echo "== $name" >&2
  # What takes nanoseconds is disturbed most, and is repeated most.
  repeats=5 least=0.1
  if [ "$name" = evaluate ]; then repeats=15 least=0.03; fi
  "$program" --benchmark_enable_random_interleaving=true --benchmark_repetitions=$repeats \
    --benchmark_min_time=$least \
    --benchmark_out="$results/$name.json" --benchmark_out_format=json "$@" >/dev/null
  files+=("$results/$name.json")
done
python3 "$(dirname "$0")/benchmark_table.py" "${files[@]}"
