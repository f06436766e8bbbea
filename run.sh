#!/usr/bin/env bash
# run.sh [FILE.ec ...]: shows EC programs: what each declares, and its Quarel text.
#
# Installs what building needs, builds the library and loads it into Tcl, from any directory and without
# a display; file names are relative to the caller's. Without arguments it shows examples/thermostat.ec.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
(($# > 0)) || set -- "$root/examples/thermostat.ec"

"$root/scripts/setup.sh" build
"$root/scripts/build.sh" release dorvik

# The library beside its index, without Tk: what is shown needs no display.
exec env TAMSEL_TK=0 TCLLIBPATH="{$root/build/release}" tclsh8.6 "$root/scripts/show.tcl" "$@"
