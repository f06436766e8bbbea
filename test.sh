#!/usr/bin/env bash
# test.sh [--preset NAME] [CTEST ARGUMENT...]: builds a preset and runs its tests; --help tells more.
set -euo pipefail

usage() {
  cat <<'END'
usage: ./test.sh [--preset NAME] [CTEST ARGUMENT...]

Builds Tamsel and runs its tests, several at a time. Tells of the tests that fail, and at the end how many passed. Installs what building needs; opens no window.

  --preset NAME   what to build and test: release, debug, asan, clang, coverage, tcl9 or asan-tcl9. Without
                  it release, and then tcl9 where Tcl 9 is installed with what building for it needs
  -h, --help      print this

Other arguments are for ctest: -R REGEX runs the tests whose names match, -N lists them, -V shows all that
they print, -j1 runs them one by one.

Environment: TAMSEL_TEST_DISPLAY, an X display to test on, in place of displays that nobody sees.
Exit status: 0 where all tests passed.
END
}

names=()
case ${1:-} in
  -h | --help)
    usage
    exit
    ;;
  --preset)
    (($# > 1)) || { usage >&2 && exit 2; }
    names=("$2")
    shift 2
    ;;
  --preset=*)
    names=("${1#--preset=}")
    shift
    ;;
esac

cd "$(dirname "${BASH_SOURCE[0]}")"
if ((${#names[@]} == 0)); then
  names=(release)
  if scripts/setup.sh --look tcl9; then names+=(tcl9); fi
fi
sections=(build)
case ${names[0]} in
  clang) sections+=(ci) ;;
  *tcl9) sections+=(tcl9) ;;
esac
scripts/setup.sh "${sections[@]}"

# The library loads only where this names an existing path.
export QUAREL_INSTALL=${QUAREL_INSTALL:-$PWD}
# One more than there are cores, as some tests wait most of the time.
export CTEST_PARALLEL_LEVEL=${CTEST_PARALLEL_LEVEL:-$(($(nproc) + 1))}
# Windows on one display would take the focus from each other.
[[ -z ${TAMSEL_TEST_DISPLAY:-} ]] || CTEST_PARALLEL_LEVEL=1

# Drops ctest's lines on tests that begin and pass; on a terminal, one line counts them.
summary='
  function clear() { if (counted) { printf "\r%*s\r", 40, "" >"/dev/stderr"; counted = 0 } }
  /^ +Start +[0-9]+: / || /^Test project / { next }
  /^ *[0-9]+\/[0-9]+ Test +#[0-9]+: .* Passed +[0-9.]+ sec$/ {
    if (terminal) { printf "\r%s tests run", $1 >"/dev/stderr"; counted = 1 }
    next
  }
  { clear(); print; fflush() }'
terminal=0
[[ ! -t 2 ]] || terminal=1

failed=0
for name in "${names[@]}"; do
  scripts/build.sh "$name"
  echo "tests of preset $name:"
  ctest --preset "$name" --no-tests=error "$@" </dev/null 2>&1 | awk -v terminal=$terminal "$summary" || failed=1
done
exit $failed
