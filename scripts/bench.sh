#!/usr/bin/env bash
# scripts/bench.sh [--check] [EQUATIONS...]: measures the library on generated programs of these sizes
# (100 to 1000000 unless given), prints tables of ratios, and draws how costs grow in
# build/bench/results/growth.svg.
#
# A ratio is against something run beside it on the same bytes, and each time is the median of five, in
# processor time. All runs under a machine stack of 8 MB. With --check the sizes are few and small, and
# the status is 1 where a cost grows faster than the program, or memory is beyond its goal; no time is
# judged.
set -euo pipefail

sizes=(100 1000 10000 100000 1000000)
repetitions=5
wide=(50000 100000 200000)
objects=100000
check=
if [[ ${1:-} == --check ]]; then
  check=--check
  sizes=(2000 100000)
  repetitions=3
  wide=(50000 200000)
  objects=5000
  shift
fi
(($# == 0)) || sizes=("$@")
largest=${sizes[-1]}
shape_size=$((largest < 100000 ? largest : 100000))

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh build bench
scripts/build.sh bench

products=build/bench
results=$products/results

generate() {  # NAME SIZE [SHAPE]
  $products/bench/generate "${@:2}" >"$results/$1.ec"
}
measure() {  # NAME SIZE FILTER
  # A repetition takes at least this long, in seconds; at the large sizes one run does.
  local least=0.1
  (($2 < 100000)) || least=0.01
  $products/bench/bench_core "$results/$1.ec" --benchmark_filter="$3" \
    --benchmark_repetitions=$repetitions --benchmark_report_aggregates_only=true \
    --benchmark_min_time=$least --benchmark_enable_random_interleaving=true \
    --benchmark_format=csv 2>/dev/null >"$results/$1.csv"
}
load_fresh() {  # NAME
  for ((i = 0; i < repetitions; ++i)); do
    $products/bench/bench_core "$results/$1.ec" --once
    $products/bench/plain "$results/$1.ec" || true  # a chain is too deep for it
  done >"$results/$1-once.csv" 2>/dev/null
}

measure_all() {
  local size shape inputs which
  rm -rf "$results"
  mkdir -p "$results"
  for size in "${sizes[@]}"; do
    generate "$size" "$size"
    generate "sound-$size" "$size" sound
    load_fresh "$size"
    measure "$size" "$size" .
  done
  if [[ -n $check ]]; then
    for size in "${sizes[@]}"; do
      generate "scattered-$size" "$size" scattered
      measure "scattered-$size" "$size" '^(load|interned)$'
    done
  fi
  for shape in ordinary colliding; do
    generate $shape "$shape_size" $shape
    measure $shape "$shape_size" '^(load|interned|tokens|bytes)$'
  done
  if [[ -z $check ]]; then
    for shape in small large long-names scattered; do
      generate $shape "$shape_size" $shape
      load_fresh $shape
      measure $shape "$shape_size" .
    done
    generate chain 1000000 chain
    load_fresh chain
    measure chain 1000000 .
  fi
  for inputs in "${wide[@]}"; do
    generate "wide-$inputs" "$inputs" wide
  done
  scripts/with-display.sh tclsh8.6 bench/commands.tcl $products/libdorvik.so \
    $products/bench/libminimal.so "$results" "${sizes[@]}" >"$results/commands.csv" 2>/dev/null
  for which in small loaded; do
    scripts/with-display.sh tclsh8.6 bench/objects.tcl $products/libdorvik.so "$results" "$objects" $which
  done >"$results/objects.csv" 2>/dev/null
  rm -f "$results"/*.ec
}
report() {
  tclsh8.6 bench/report.tcl $check "$results" "${sizes[@]}"
}

ulimit -s 8192
export QUAREL_INSTALL=${QUAREL_INSTALL:-$PWD}
measure_all
if [[ -n $check ]]; then
  report && exit
  echo "bench: once more, in case the machine was busy"
  measure_all
else
  tclsh8.6 bench/picture.tcl "$results" "${sizes[@]}" >"$results/growth.svg"
fi
report
