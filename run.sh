#!/usr/bin/env bash
# run.sh [FILE.ec ...]: shows EC programs: what each declares, and its Quarel text; --help tells more.
set -euo pipefail

usage() {
  cat <<'END'
usage: ./run.sh [FILE.ec ...]

Shows EC programs: what each declares, and its Quarel text. Without a file shows examples/thermostat.ec.
Installs what building needs and builds the library first; needs no display. Works from any folder, and
file names are relative to the caller's.

  -h, --help      print this

Exit status: 0 where all programs could be shown.
END
}

case ${1:-} in
  -h | --help)
    usage
    exit
    ;;
  --) shift ;;
  -*)
    echo "run.sh: there is no option $1; a file of that name is ./$1" >&2
    exit 2
    ;;
esac

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
(($# > 0)) || set -- "$root/examples/thermostat.ec"

"$root/scripts/setup.sh" build
"$root/scripts/build.sh" release dorvik

# The library beside its index, without Tk: what is shown needs no display.
exec env TAMSEL_TK=0 TCLLIBPATH="{$root/build/release}" tclsh8.6 "$root/scripts/show.tcl" "$@"
