#!/usr/bin/env bash
# scripts/coverage.sh: runs the suite and says which lines and branches of the library it reaches.
#
# Branches into exception handling do not count, and of the parser only what stands in the grammar.
# Ends with the figures, and fails below 97 % of lines or 90 % of branches.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/setup.sh build coverage
rm -rf build/coverage
./test.sh --preset coverage

for layer in foundation model reader writers analysis editing tcl; do filters+=(--filter "$layer/"); done
gcovr --root . --object-directory build/coverage "${filters[@]}" \
  --exclude-throw-branches --exclude-unreachable-branches --sort-percentage \
  --fail-under-line 97 --fail-under-branch 90 --print-summary "$@"
