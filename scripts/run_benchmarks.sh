#!/usr/bin/env bash
# Runs the benchmark programs of a build directory, repeats interleaved, and prints one table.
#   scripts/run_benchmarks.sh BUILD_DIRECTORY [ARGUMENTS OF GOOGLE BENCHMARK]
# The results as they were stay in BUILD_DIRECTORY/bench/results.
set -euo pipefail
build=$1
shift
results=$build/bench/results
mkdir -p "$results"
rm -f "$results"/*.json
for program in "$build"/bench/bench_*; do
  [ -f "$program" ] && [ -x "$program" ] || continue
  name=$(basename "$program")
  echo "== $name"
  # What compares engines is summed up in the table; the rest is printed as it comes.
  case "$name" in
    bench_evaluate | bench_loops | bench_compile)
      "$program" --benchmark_enable_random_interleaving=true --benchmark_repetitions=5 \
        --benchmark_report_aggregates_only=true --benchmark_min_time=0.1 \
        --benchmark_out="$results/$name.json" --benchmark_out_format=json "$@" >/dev/null
      ;;
    *) "$program" "$@" ;;
  esac
done
if ! compgen -G "$results/*.json" >/dev/null; then
  echo "no benchmark programs in $build/bench" >&2
  exit 1
fi
python3 "$(dirname "$0")/benchmark_table.py" "$results"/*.json
