#!/usr/bin/env bash
# run.sh [FILE.ec ...]: shows EC programs: what each declares, and its Quarel text.
#
# Installs what building needs, builds the library and loads it into Tcl, from any directory; file
# names are relative to the caller's. Without arguments it shows examples/thermostat.ec.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
(($# > 0)) || set -- "$root/examples/thermostat.ec"

"$root/scripts/setup.sh" build
"$root/scripts/build.sh" release

# The library loads only where this names an existing path.
export QUAREL_INSTALL=${QUAREL_INSTALL:-$root}
exec "$root/scripts/with-display.sh" \
  tclsh8.6 "$root/scripts/show.tcl" "$root/build/release/libdorvik.so" "$@"
