#!/usr/bin/env bash
# scripts/build.sh PRESET [TARGET...]: configures a preset of CMakePresets.json in build/PRESET, and builds
# the targets, or all of it.
#
# Prints nothing but the log of a step that fails. Where TAMSEL_WERROR is ON in the environment, the compiler's
# warnings are errors in every preset; else only in those of developers, as a newer compiler has new ones.
set -euo pipefail

if (($# == 0)); then
  echo "usage: build.sh PRESET [TARGET...]" >&2
  exit 2
fi
preset=$1
targets=("${@:2}")

fail() {
  echo "build: $1" >&2
  exit 1
}

cd "$(dirname "${BASH_SOURCE[0]}")/.."
presets=$(sed -n '/"configurePresets"/,/^  \]/s/.*"name": "\([^"]*\)".*/\1/p' CMakePresets.json)
grep -qxF -- "$preset" <<<"$presets" ||
  fail "there is no preset '$preset'; the presets are: $(paste -sd ' ' <<<"$presets")"
mkdir -p "build/$preset" 2>/dev/null && [[ -w build/$preset ]] ||
  fail "cannot write into $PWD/build/$preset, where products go; let this user write there, or work in a copy of the sources"
scripts/quietly.sh cmake --preset "$preset" ${TAMSEL_WERROR:+-D "TAMSEL_WERROR=$TAMSEL_WERROR"} ||
  fail "could not configure preset $preset, as said above; if the sources have moved or another compiler was here, remove build/$preset and try again"
scripts/quietly.sh cmake --build --preset "$preset" ${targets:+--target "${targets[@]}"} ||
  fail "preset $preset did not build, as said above"
