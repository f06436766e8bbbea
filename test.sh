#!/usr/bin/env bash
# test.sh [--preset NAME] [CTEST ARGUMENT...]: builds a preset and runs its tests.
#
# Installs what building needs. The preset is release, or one of debug, asan, coverage and clang;
# the exit status is that of ctest.
set -euo pipefail

preset=release
if [[ ${1:-} == --preset ]]; then
  if (($# == 1)); then
    echo "usage: test.sh [--preset NAME] [CTEST ARGUMENT...]" >&2
    exit 2
  fi
  preset=$2
  shift 2
fi

cd "$(dirname "${BASH_SOURCE[0]}")"
sections=(build)
[[ $preset == clang ]] && sections+=(ci)
scripts/setup.sh "${sections[@]}"
scripts/build.sh "$preset"

# The library loads only where this names an existing path.
export QUAREL_INSTALL=${QUAREL_INSTALL:-$PWD}
exec scripts/with-display.sh ctest --preset "$preset" --no-tests=error "$@" </dev/null
