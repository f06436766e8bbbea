#!/usr/bin/env bash
# scripts/matrix.sh [PATTERN]: builds and tests these sources on the machines that users have, and prints a
# table: fresh Debians, odd paths and environments, both series of Tcl, fonts, sharp displays, window managers.
#
# Runs the cases whose line below fits the regular expression PATTERN, all of them unless given, each in a Debian
# that scripts/debian-root.sh makes. Logs go to build/matrix. The exit status is 1 where a case fails.
set -euo pipefail

# Release, whether the Debian is fresh or kept from case to case, what is tried, and by which functions below.
cases='
bookworm fresh | as it comes                                        | whole /home/tamsel
trixie   fresh | as it comes                                        | whole /home/tamsel
trixie   kept  | Tcl 9.0 beside 8.6, one package for both           | install tcl9; whole /home/tamsel; both
bookworm kept  | a b (x) é: path, TMPDIR; no HOME; LANG=tr_TR.UTF-8 | odd tr_TR.UTF-8; whole "/home/a b (x) é"
trixie   kept  | a b (x) é: path, TMPDIR; no HOME; no LANG          | odd; install tcl9; whole "/home/a b (x) é"
trixie   kept  | a tree that cannot be written, a preset unknown    | advice
bookworm kept  | browser, Noto fonts, 96 dpi, no window manager     | browser 96
bookworm kept  | browser, Noto fonts, 96 dpi, stacking (twm)        | browser 96 twm
bookworm kept  | browser, Noto fonts, 96 dpi, tiling (ratpoison)    | browser 96 ratpoison
bookworm kept  | browser, Noto fonts, 144 dpi, tiling (i3)          | browser 144 i3
bookworm kept  | browser, Noto fonts, 192 dpi, no window manager    | browser 192
bookworm kept  | browser, Noto fonts, 192 dpi, stacking (twm)       | browser 192 twm
bookworm kept  | browser, Noto fonts, 192 dpi, tiling (ratpoison)   | browser 192 ratpoison
trixie   kept  | browser, Tcl 9.0, Noto fonts, 96 dpi, tiling (i3)  | browser 96 i3 tcl9
trixie   kept  | browser, Tcl 9.0, Noto fonts, 192 dpi, stacking    | browser 192 twm tcl9
'

# ---- In the Debian: in /tamsel, whose sources as they are outside lie in build/sources.tar.

install() {  # SECTION...
  scripts/setup.sh "$@"
}

odd() {  # [LANG]
  export TMPDIR="/tmp/a b (x) é"
  mkdir "$TMPDIR"
  unset HOME LANG
  [[ -z ${1:-} ]] || export LANG=$1
}

# In a folder of its own, where a kept Debian keeps what it built.
whole() {  # FOLDER
  mkdir -p "$1"
  tar -C "$1" -xf build/sources.tar
  cd "$1"
  dpkg --purge tcl-tamsel 2>/dev/null || true
  ./run.sh
  ./test.sh
  readme
}

# The lines of README, as they stand there: those with a "$" print what is shown below them, and those that
# install lead to a package that works. Its session is played by tests/tcl/docs.test.
readme() (
  local scratch=${TMPDIR:-/tmp}/readme block shown said played=0
  mkdir "$scratch"
  awk -v RS= -v blocks="$scratch/block" '/^    \$ / {
    gsub(/(^|\n)    /, "\n")
    print substr($0, 2) >(blocks (++n))
  }' README.md
  for block in "$scratch"/block*; do
    # In this shell, as one sets a variable for those after it; and some find the faults that they show.
    . <(sed -n 's/^\$ //p' "$block") </dev/null >"$scratch/said" 2>&1 || true
    shown=$(sed '/^\$ /d' "$block")
    [[ $shown != %* ]] || continue
    said=$(<"$scratch/said")
    [[ $said == "$shown" || $shown == *... && $said == "${shown%...}"* ]] || {
      diff "$block" "$scratch/said"
      return 1
    }
    played=$((played + 1))
  done
  ((played > 0))
  printf 'APT::Get::Assume-Yes "true";\n' >/etc/apt/apt.conf.d/90yes
  sed -n '/^## Installing/,/^## Commands/s/^    //p' README.md >"$scratch/lines"
  bash -ec '
    sudo() { "$@"; }
    HOME=${HOME-$(echo ~)}
    . "$1"
    for TCLLIBPATH in "$TCLLIBPATH" ""; do TAMSEL_TK=0 tclsh8.6 <<<"puts [package require Tamsel]"; done
    ' - "$scratch/lines" | tee "$scratch/said"
  tail -n 2 "$scratch/said" | grep -cx 1.0 | grep -x 2
)

both() {
  local shell
  for shell in tclsh8.6 tclsh9.0; do
    TAMSEL_TK=0 $shell <<<'puts "$tcl_version has [package require Tamsel]"' | grep ' has 1.0'
  done
}

advice() {
  mkdir -p /nowhere
  cp -r scripts test.sh run.sh CMakePresets.json /nowhere
  mount --bind /nowhere /nowhere
  mount -o remount,ro,bind /nowhere
  ! /nowhere/run.sh >/tmp/said 2>&1
  grep 'cannot write into /nowhere/build/release' /tmp/said
  ! /nowhere/test.sh --preset nosuch >/tmp/said 2>&1
  grep "there is no preset 'nosuch'; the presets are: release " /tmp/said
}

browser() {  # DPI [WINDOW-MANAGER [PRESET]]
  local preset=${3:-release} display
  install build matrix
  [[ $preset != tcl9 ]] || install tcl9
  mkfifo /tmp/number
  Xvfb -displayfd 1 -dpi "$1" -nolisten tcp -ac -noreset -screen 0 1920x1200x24 >/tmp/number 2>/dev/null &
  server=$!
  trap 'kill $server' EXIT
  read -r display </tmp/number
  export TAMSEL_TEST_DISPLAY=:$display
  if [[ -n ${2:-} ]]; then
    # Where it would wait for a click.
    [[ $2 != twm ]] || cat /etc/X11/twm/system.twmrc - >~/.twmrc <<<RandomPlacement
    DISPLAY=:$display "$2" >/dev/null 2>&1 &
    sleep 2
    kill -0 $!
  fi
  ./test.sh --preset "$preset" -R tcl.browser
}

if [[ ${1:-} == --inside ]]; then
  eval "$2"
  exit
fi

# ---- Outside.

cd "$(dirname "${BASH_SOURCE[0]}")/.."
pattern=${1:-}
logs=build/matrix
rm -rf "$logs"
mkdir -p "$logs"
tar -cf "$logs/sources.tar" --null -T <(git -c safe.directory="$PWD" ls-files -z)

table=
failures=0
number=0
while IFS='|' read -r root title functions; do
  read -r release kind <<<"$root"
  title=$(sed 's/^ *//; s/ *$//' <<<"$title")
  [[ -n $release && "$release $kind $title" =~ $pattern ]] || continue
  number=$((number + 1))
  log=$logs/$(printf %02d $number).log
  mkdir -p "build/$release"
  cp "$logs/sources.tar" "build/$release"
  fresh=()
  [[ $kind == kept ]] || fresh=(--fresh)
  echo "matrix: $release, $kind: $title" >&2
  started=$SECONDS
  outcome=passed
  scripts/debian-root.sh "${fresh[@]}" "$release" bash scripts/matrix.sh --inside "set -e; $functions" \
    </dev/null >"$log" 2>&1 || outcome=FAILED
  [[ $outcome == passed ]] || failures=$((failures + 1))
  tests=$(awk '/% tests passed/ {bad += $4; all += $NF} END {if (all) print all - bad " of " all}' "$log")
  table+=$(printf '%-9s %-6s %-52s %-7s %-11s %5d s' \
    "$release" "$kind" "$title" "$outcome" "${tests:--}" $((SECONDS - started)))$'\n'
done <<<"$cases"

printf '%-9s %-6s %-52s %-7s %-11s %7s\n' Debian root what outcome tests time
printf '%s' "$table"
echo "matrix: $((number - failures)) of $number passed; logs are in $logs"
((failures == 0 && number > 0))
