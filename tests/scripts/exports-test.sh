#!/usr/bin/env bash
# tests/scripts/exports-test.sh LIBRARY: checks that the static library takes no name from the programs that
# link it but those of tests/data/global-names.txt, which are the ones that they are promised; everything else is
# in namespace tamsel. (What an operator works on is a class of the list.) Prints each name that is too many.
set -euo pipefail
export LC_ALL=C
library=$1
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

names=$(nm --demangle --defined-only --extern-only "$library" | sed -nE 's/^[0-9a-f]+ [A-Z] //p' |
  grep -vE '^[^(]*\b(std|tamsel|DW)\b|^operator|^__' |
  sed -E 's/^(vtable|typeinfo|typeinfo name|guard variable|TLS (wrapper|init) function) for //; s/[^A-Za-z_0-9].*//' | sort -u)
[[ -n $names ]]
extra=$(comm -23 - tests/data/global-names.txt <<<"$names")
if [[ -n $extra ]]; then
  echo "exports: not in namespace tamsel:" $extra >&2
  exit 1
fi
