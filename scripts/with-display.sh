#!/usr/bin/env bash
# scripts/with-display.sh COMMAND...: runs the command with an X display.
#
# That is an Xvfb of its own, so that no window opens before the user, or the display that the environment
# variable TAMSEL_TEST_DISPLAY names. This script then becomes the command, so that signals, standard streams
# and exit status are the command's own. The server watches a pipe that the command and its children hold
# open, and ends when the last of them does, however it ends.
set -euo pipefail

if (($# == 0)); then
  echo "usage: with-display.sh COMMAND [ARGUMENT...]" >&2
  exit 2
fi

if [[ -n ${TAMSEL_TEST_DISPLAY:-} ]]; then
  DISPLAY=$TAMSEL_TEST_DISPLAY exec "$@"
fi

if ! command -v Xvfb >/dev/null; then
  echo "with-display: there is no Xvfb to start a display; run scripts/setup.sh, or let TAMSEL_TEST_DISPLAY" \
    "name a display" >&2
  exit 1
fi

# Runs in a session of its own, since a Ctrl-C in the terminal is the command's. Only Xvfb keeps
# the pipe that its number is read from: if it dies, the reader learns it. Without -noreset it would
# drop a client that arrives while the last one leaves.
serve='
  Xvfb -displayfd 1 -nolisten tcp -ac -noreset -screen 0 1600x1200x24 2>"$1" &
  exec >/dev/null 2>&1
  cat
  kill $!
  wait
  rm "$1"'

log=$(mktemp)
coproc server { exec setsid bash -c "$serve" - "$log"; }
if ! read -r number <&"${server[0]}"; then
  echo "with-display: Xvfb did not start:" >&2
  cat "$log" >&2
  exit 1
fi
# Opened anew, as bash closes the ends it made, and their duplicates, when it becomes the command.
exec 9>"/dev/fd/${server[1]}"
DISPLAY=:$number exec "$@"
