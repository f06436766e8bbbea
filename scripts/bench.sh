#!/usr/bin/env bash
# scripts/bench.sh [--check] [EQUATIONS...]: measures the library on generated programs of these sizes
# (10000 and 100000 unless given; each in a process of its own) and prints a table of ratios.
#
# A ratio is against something run beside it on the same bytes, and each time is the median of five. With
# --check the sizes are few and small, and the status is 1 where a cost does not grow linearly; no time is
# judged.
set -euo pipefail

check=
repetitions=5
if [[ ${1:-} == --check ]]; then
  check=--check
  repetitions=3
  shift
fi
sizes=("$@")
((${#sizes[@]})) || sizes=(10000 100000)

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh build bench
scripts/build.sh bench

products=build/bench
results=$products/results
mkdir -p "$results"
measure() {  # NAME FILE FILTER
  $products/bench/bench_core "$2" --benchmark_filter="$3" --benchmark_repetitions=$repetitions \
    --benchmark_report_aggregates_only=true --benchmark_format=csv 2>/dev/null >"$results/$1.csv"
}
for size in "${sizes[@]}"; do
  $products/bench/generate "$size" >"$results/$size.ec"
  measure "$size" "$results/$size.ec" .
  $products/bench/generate "$size" colliding >"$results/colliding.ec"
  measure "$size-colliding" "$results/colliding.ec" load
  $products/bench/generate "$size" ordinary >"$results/ordinary.ec"
  measure "$size-ordinary" "$results/ordinary.ec" load
done
export QUAREL_INSTALL=${QUAREL_INSTALL:-$PWD}
scripts/with-display.sh tclsh8.6 bench/commands.tcl $products/libdorvik.so \
  $products/bench/libminimal.so "$results" "${sizes[@]}" >"$results/commands.csv" 2>/dev/null
exec tclsh8.6 bench/report.tcl $check "$results" "${sizes[@]}"
