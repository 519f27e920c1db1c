#!/usr/bin/env bash
# Measures how the time of operations grows with their size, and fails when one grows faster than
# it may. What seems to do so is measured again, twice at most: on a machine with other work a
# single time says little.
#   bench/run_growth.sh BUILD_DIRECTORY [ARGUMENTS OF GOOGLE BENCHMARK]
# Writes BUILD_DIRECTORY/growth.svg and growth.md; the results stay in BUILD_DIRECTORY/bench/results.
set -euo pipefail
build=$1
shift
results=$build/bench/results
mkdir -p "$results"
rm -f "$results"/growth_*.json
filter=.
for round in 1 2 3; do
  for name in growth_language growth_texts; do
    program=$build/bench/bench_$name
    if [ ! -x "$program" ]; then
      echo "there is no benchmark program $program" >&2
      exit 1
    fi
    echo "== $name, round $round" >&2
    "$program" --benchmark_enable_random_interleaving=true --benchmark_repetitions=3 \
      --benchmark_min_time=0.01 --benchmark_out="$results/$name.$round.json" \
      --benchmark_out_format=json --benchmark_filter="$filter" "$@" >/dev/null 2>&1
  done
  status=0
  python3 "$(dirname "$0")/growth.py" --svg "$build/growth.svg" --table "$build/growth.md" \
    --again "$results/again.txt" "$results"/growth_*.json >"$results/growth.txt" \
    2>"$results/breaches.txt" || status=$?
  filter=$(cat "$results/again.txt")
  if [ -z "$filter" ]; then break; fi
done
cat "$results/growth.txt" "$results/breaches.txt"
echo "plot: $build/growth.svg, table: $build/growth.md"
exit "$status"
