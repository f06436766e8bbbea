#!/usr/bin/env bash
# scripts/quietly.sh COMMAND...: runs the command and shows what it printed only if it fails.
#
# The command finds an empty standard input. Its exit status is passed on.
set -euo pipefail

log=$(mktemp)
trap 'rm -f "$log"' EXIT

status=0
"$@" </dev/null >"$log" 2>&1 || status=$?
if ((status != 0)); then
  cat "$log" >&2
  echo "failed with status $status: $*" >&2
fi
exit "$status"
