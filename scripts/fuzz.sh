#!/usr/bin/env bash
# scripts/fuzz.sh [SECONDS [TARGET...]]: runs the fuzz targets, one on each processor.
#
# Each gets SECONDS (20) with its corpus in fuzz/corpus, the examples and a fixed seed, so a short
# run tries much the same twice. What is new goes to build/fuzz/corpus and is used by the next run;
# an input that breaks something goes to build/fuzz/finds, and makes the exit status 1.
set -euo pipefail

seconds=${1:-20}
targets=("${@:2}")
((${#targets[@]} > 0)) || targets=(calls file expression roundtrip commands)
if ! [[ $seconds =~ ^[1-9][0-9]*$ ]]; then
  echo "usage: fuzz.sh [SECONDS [TARGET...]]" >&2
  exit 2
fi

cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD
for target in "${targets[@]}"; do
  if [[ ! -e fuzz/${target}_fuzzer.cpp ]]; then
    echo "fuzz: there is no target $target" >&2
    exit 2
  fi
done
scripts/setup.sh build ci
scripts/build.sh fuzz

# In memory where there is such a folder: the commands write many small files.
scratch=$(mktemp -d -p "$([[ -w /dev/shm ]] && echo /dev/shm || echo "${TMPDIR:-/tmp}")")
trap 'rm -rf "$scratch"' EXIT
mkdir -p build/fuzz/finds

# Keeps an empty file beside the log where nothing is found.
run_target() {  # TARGET
  local target=$1 corpus=$root/build/fuzz/corpus/$1 log=$scratch/$1.log dictionary=$root/fuzz/ec.dict
  local kept=("$root/fuzz/corpus/$target") coverage runs
  mkdir -p "$corpus" "$scratch/$target"
  case $target in
    file | roundtrip) kept+=("$root/examples") ;;
    commands) dictionary=$root/fuzz/commands.dict ;;
  esac
  # Messages go nowhere: they are many. Leaks of the process's end are looked for after each input.
  if TMPDIR=$scratch/$target "build/fuzz/fuzz/${target}_fuzzer" -max_total_time="$seconds" -seed=20461 \
    -max_len=4096 -timeout=25 -rss_limit_mb=2048 -close_fd_mask=3 -print_final_stats=1 \
    -dict="$dictionary" -artifact_prefix="$root/build/fuzz/finds/$target-" \
    "$corpus" "${kept[@]}" >"$log" 2>&1; then
    coverage=$(sed -nE 's/.* cov: ([0-9]+) ft.*/\1/p' "$log" | tail -n 1)
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    echo "fuzz: $target: $runs inputs in $seconds s, $coverage edges, nothing found"
    touch "$scratch/$target.sound"
  else
    tail -n 60 "$log"
    echo "fuzz: $target: FOUND; the input is in build/fuzz/finds" >&2
  fi
}

running=0
for target in "${targets[@]}"; do
  if ((running == $(nproc))); then
    wait -n
    running=$((running - 1))
  fi
  run_target "$target" &
  running=$((running + 1))
done
wait
for target in "${targets[@]}"; do [[ -e $scratch/$target.sound ]] || exit 1; done
