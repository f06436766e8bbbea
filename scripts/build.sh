#!/usr/bin/env bash
# scripts/build.sh PRESET [TARGET...]: configures a preset of CMakePresets.json in build/PRESET, and builds
# the targets, or all of it.
#
# Prints nothing but the log of a step that fails.
set -euo pipefail

if (($# == 0)); then
  echo "usage: build.sh PRESET [TARGET...]" >&2
  exit 2
fi
preset=$1
targets=("${@:2}")

cd "$(dirname "${BASH_SOURCE[0]}")/.."
if ! scripts/quietly.sh cmake --preset "$preset"; then
  echo "build: could not configure preset $preset; if the sources have moved or another compiler" \
    "was here, remove build/$preset and try again" >&2
  exit 1
fi
if ! scripts/quietly.sh cmake --build --preset "$preset" ${targets:+--target "${targets[@]}"}; then
  echo "build: preset $preset did not build; the compiler says why above" >&2
  exit 1
fi
