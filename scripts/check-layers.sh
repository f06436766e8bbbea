#!/usr/bin/env bash
# scripts/check-layers.sh: checks that no layer includes one above it.
#
# A header of the project is included by its path from the repository root, as "model/ecprg.h", and
# must exist. Only reader/ includes what Bison generates, and only tcl/ the headers of Tcl and Tk.
# Prints each line that breaks a rule, and the rule.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."

# Each layer with those that it may include beside itself.
layers='
  foundation
  model       foundation
  reader      foundation model
  writers     foundation model
  analysis    foundation model writers
  editing     foundation model reader writers analysis
  tcl         foundation model reader writers analysis editing
'

folders=$(awk 'NF {print $1}' <<<"$layers")
# shellcheck disable=SC2086  # one word a folder
mapfile -t files < <(find $folders -name '*.h' -o -name '*.cpp' -o -name '*.y' | sort)
if ((${#files[@]} == 0)); then
  echo "check-layers: there is no source file in the layers' folders in $PWD" >&2
  exit 1
fi

if ! awk -v layers="$layers" '
  function exists(path,  line, found) {
    found = (getline line < path) >= 0
    close(path)
    return found
  }

  # The rule that the inclusion of `header` from `layer` breaks; "" if it breaks none.
  function broken_rule(layer, header, quoted,  target) {
    target = header
    sub(/\/.*/, "", target)
    if (header ~ /^(tcl|tk)[A-Za-z]*\.h$/) return layer == "tcl" ? "" : "only tcl/ knows Tcl and Tk"
    if (header ~ /\.tab\.h/) return layer == "reader" ? "" : "only reader/ knows generated headers"
    if (!(target in known)) return quoted ? "not a path from the repository root" : ""
    if (!((layer, target) in allowed)) return layer "/ may not include " target "/"
    return exists(header) ? "" : "no such file"
  }

  BEGIN {
    rows = split(layers, row, "\n")
    for (i = 1; i <= rows; i++) {
      count = split(row[i], name, " ")
      if (count > 0) known[name[1]]
      for (j = 1; j <= count; j++) allowed[name[1], name[j]]
    }
  }

  /^[ \t]*#[ \t]*include[ \t]*[<"]/ {
    split($0, part, /[<">]/)
    layer = FILENAME
    sub(/\/.*/, "", layer)
    rule = broken_rule(layer, part[2], /^[^<]*"/)
    if (rule != "") {
      printf "%s:%d: %s  (%s)\n", FILENAME, FNR, $0, rule
      failures++
    }
  }

  END {exit failures > 0}' "${files[@]}"; then
  echo "check-layers: the lines above break the layering; let what they need move down, or move" \
    "the code that needs it up" >&2
  exit 1
fi
echo "check-layers: ${#files[@]} files include only what they may"
