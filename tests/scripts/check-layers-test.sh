#!/usr/bin/env bash
# tests/scripts/check-layers-test.sh: scripts/check-layers.sh refuses what breaks the layering, names
# the line and the rule, and lets everything else pass.
#
# Works on a tree of its own in a temporary folder, with one file of one inclusion a case.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
cd "$tree"
mkdir scripts foundation model reader writers tcl
cp "$root/scripts/check-layers.sh" scripts
for layer in foundation model reader writers tcl; do touch "$layer/here.h"; done

# The file, what it includes, and the rule that this breaks ("-": none).
cases='
  foundation/x.h   "foundation/here.h"  -
  foundation/x.h   "model/here.h"       foundation/ may not include model/
  model/x.cpp      "here.h"             not a path from the repository root
  model/x.cpp      "model/gone.h"       no such file
  model/x.cpp      "ecprg.tab.h"        only reader/ knows generated headers
  model/x.cpp      <tcl.h>              only tcl/ knows Tcl and Tk
  reader/x.y       "ecprg.tab.h"        -
  reader/x.y       "writers/here.h"     reader/ may not include writers/
'

failures=0
while read -r file header rule; do
  [[ -n $file ]] || continue
  printf '#pragma once\n#  include %s\n' "$header" >"$file"
  status=0
  said=$(scripts/check-layers.sh 2>&1) || status=$?
  rm "$file"

  expected="$file:2: #  include $header  ($rule)"
  if [[ $rule == - ]]; then
    ((status == 0)) && continue
    echo "refused, though it breaks no rule: $file with $header"
  else
    ((status != 0)) && [[ $said == *"$expected"* ]] && continue
    echo "expected a refusal with: $expected"
  fi
  printf 'got status %d and: %s\n' "$status" "$said"
  failures=$((failures + 1))
done <<<"$cases"

exit $((failures > 0))
