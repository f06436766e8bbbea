#!/usr/bin/env bash
# bench/batch.sh [FILES]: measures tamsel-batch on a tree of that many programs (10000 unless given), some
# of them corrupted, against a plain loop in one tclsh.
#
# Also looks that a run whose readers are killed, one that is stopped and one on two hosts, which are this
# machine, leave what the loop leaves; the exit status is 1 where one does not. The first three rows are
# medians of five rounds, in each of which they take turns. TMPDIR=/dev/shm keeps the disk out of it.
set -euo pipefail

files=${1:-10000}
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh build ci
scripts/build.sh release
with_hosts=$PWD/tests/batch/with-hosts.sh
tree=$PWD/build/release/tests/tree
export PATH=$PWD/apps/batch:$PATH TCLLIBPATH="{$PWD/build/release}" TAMSEL_TK=0

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
"$tree" tree "$files" | sort >corrupted

cat >loop.tcl <<'EOF'
package require Tamsel
ecprg p
foreach file [split [exec find tree -name *.ec] \n] {
    set target loop/[file rootname [string range $file 5 end]].quarel
    file mkdir [file dirname $target]
    if {[catch {p load $file; p dump $target}]} {puts [string range $file 5 end]}
}
EOF
loop() { rm -rf loop && tclsh8.6 loop.tcl 2>messages | sort >refused; }

batch() { tamsel-batch --no-progress --jsonl json --output batch "$@" tree >problems 2>said || (($? == 1)); }

on_hosts() { "$with_hosts" bash -c 'tamsel-batch --jsonl json --output batch --sshloginfile "$TAMSEL_HOSTS" tree' \
  >problems 2>said || (($? == 1)); }

# Kills a reader every half a second.
killed() {
  batch &
  local run=$! reader
  kills=0
  while sleep 0.5 && kill -0 "$run" 2>/dev/null; do
    reader=$(ps -eo pid,args | awk -v state="reader.tcl $PWD/batch/" 'index($0, state) && !/awk/ { print $1; exit }')
    if [[ $reader ]] && kill -9 "$reader"; then ((++kills)); fi
  done
  wait "$run"
}

# Stops the run every second, and goes on.
stopped() {
  local run status=143
  stops=-1
  while ((status == 143)); do
    stops=$((stops + 1))
    tamsel-batch --resume --jsonl json --output batch tree >problems 2>said &
    run=$!
    (sleep 1 && kill "$run" 2>/dev/null) &
    status=0
    wait "$run" || status=$?
  done
  ((status == 1))
}

# Runs COMMAND, notes what it costs and looks at what it leaves.
measure() {  # NAME COMMAND...
  rm -rf batch
  TIMEFORMAT='%R %U %S'
  { time "${@:2}" 2>&3; } 3>&2 2>>"times-$1"
  if [[ $1 == loop ]]; then
    cmp refused corrupted
  else
    sed -nE 's|^\{"file": "tree/(.*)", "status": "error".*|\1|p' json | sort | cmp - corrupted
    diff -rq loop batch
  fi || differences=yes
}

# Prints the medians of NAME.
row() {  # NAME TITLE
  local real cpu
  real=$(sort -n "times-$1" | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }')
  cpu=$(awk '{ print $2 + $3 }' "times-$1" | sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }')
  loop=${loop:-$real}
  awk -v title="$2" -v real="$real" -v cpu="$cpu" -v files="$files" -v loop="$loop" 'BEGIN {
    printf "%-32s %7.2f s %7.2f s CPU %7.0f files/s %5.2f x\n", title, real, cpu, files / real, loop / real }'
}

differences= loop=
for ((round = 0; round < 5; ++round)); do
  measure loop loop
  measure one batch --jobs 1
  measure batch batch
done
measure killed killed
measure stopped stopped
measure hosts on_hosts

echo "$files programs, $(wc -l <corrupted) corrupted; $(nproc) cores"
row loop "a plain loop in one tclsh"
row one "tamsel-batch --jobs 1"
row batch "tamsel-batch"
row killed "the same, $kills readers killed"
row stopped "the same, stopped $stops times"
row hosts "the same, on two hosts"
[[ -z $differences ]]
