#!/usr/bin/env bash
# screenshots.sh [FOLDER]: makes the pictures of the browser for the manual, in doc/pictures unless
# told otherwise.
#
# Needs a built library (run.sh builds it). The window is that of a server of its own, so that the
# pictures are the same wherever the fonts are.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(cd "$here/../.." && pwd)
folder=$(realpath -m "${1:-$root/doc/pictures}")
"$root/scripts/setup.sh" build pictures
mkdir -p "$folder"
scratch=$(mktemp -d)
trap 'rm -r "$scratch"' EXIT
# The paths in the pictures are to be short.
cd "$root/examples"

# Shows programs, runs a script, and takes the picture of the whole screen.
shoot() {  # NAME SCRIPT FILE...
  local shot=$scratch/shot.png
  XDG_STATE_HOME=$scratch xvfb-run -a -s "-screen 0 1280x800x24 -dpi 96" \
    tclsh8.6 /dev/stdin "$here" "$shot" "${@:2}" <<'TCL'
set files [lassign $argv here shot script]
source -encoding utf-8 [file join $here start.tcl]
proc settle {} {
  # Views answer what is typed after a while.
  after 400 {set ::rested 1}
  vwait ::rested
  while {[update; ::tamselbrowser::work::is_busy]} {after 1}
}
::tamselbrowser::main $files
update
wm geometry . 1280x[expr {800 - [winfo rooty .]}]+0+0
settle
eval $script
settle
exec import -window root $shot
exit
TCL
  convert "$shot" -strip +dither -colors 128 -define png:compression-level=9 -define png:exclude-chunks=date,time \
    "$folder/$1.png"
  echo "$folder/$1.png"
}

shoot browser '
  .body.left.programs.widget item p1 -open 1
  ::tamselbrowser::shown::choose pressure_doubt picture
' plant.ec elevator.ec watchdog.ec

shoot browser-source '
  # Paths differ from one reader to the other.
  ::tamselbrowser::view::log::clear
  ::tamselbrowser::window::look source
  ::tamselbrowser::shown::choose open_for table
  settle
  .body.right.tabs.source.bar.wanted insert 0 blocked
  ::tamselbrowser::view::source::search_soon
  .expression.line insert 0 "if blocked then 0 else pre open_for + 1"
  ::tamselbrowser::view::expression::answer_now
  ::tamselbrowser::window::look log
' elevator.ec plant.ec
