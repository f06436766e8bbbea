#!/usr/bin/env bash
# tests/scripts/install-test.sh BUILD TCLSH COMPILER FLAGS [PRELOAD]: what `cmake --install` puts into a folder is
# enough to build the example C++ program, by find_package and by pkg-config, and to run an example script.
#
# The example is compiled like the library, with COMPILER and FLAGS; PRELOAD is what the shell TCLSH has to
# load before a sanitized library.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
build=$1
tclsh=$2
export CXX=$3 CXXFLAGS=$4
preload=${5:-}

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
prefix=$folder/prefix
"$root/scripts/quietly.sh" cmake --install "$build" --prefix "$prefix"

check() {  # PROGRAM: it shows the example as is kept, and refuses an empty file
  "$1" "$root/examples/thermostat.ec" | diff "$root/examples/expected/ecshow.out" -
  [[ $("$1" /dev/null 2>&1) == "/dev/null: no program" ]] || {
    echo "$1 takes an empty file for a program"
    exit 1
  }
}

"$root/scripts/quietly.sh" cmake -G Ninja -S "$root/examples/cpp" -B "$folder/build" \
  -DCMAKE_PREFIX_PATH="$prefix"
"$root/scripts/quietly.sh" cmake --build "$folder/build"
check "$folder/build/ecshow"

pkgconfig=$(dirname "$(find "$prefix" -name tamsel.pc)")
# shellcheck disable=SC2086  # one word an option
PKG_CONFIG_PATH=$pkgconfig pkg-config --cflags --libs tamsel |
  xargs $CXX $CXXFLAGS -std=c++17 -o "$folder/ecshow" "$root/examples/cpp/ecshow.cpp"
check "$folder/ecshow"

# No installed header includes one that is not.
(cd "$prefix/include/tamsel" && find . -name '*.h' -printf '#include "%P"\n') |
  $CXX -std=c++17 -fsyntax-only -I "$prefix/include/tamsel" -x c++ -

examples=$prefix/share/doc/tcl-tamsel/examples
env -u DISPLAY -u QUAREL_INSTALL TCLLIBPATH="{$prefix/lib/tcltk}" LD_PRELOAD="$preload" \
  "$tclsh" "$examples/extend-node.tcl" | diff "$examples/expected/extend-node.out" -
