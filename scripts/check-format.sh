#!/usr/bin/env bash
# scripts/check-format.sh [--fix]: compares the layout of the C++ files with .clang-format.
#
# Looks at tracked and new files and prints what clang-format would change; with --fix, changes it.
set -euo pipefail

if (($# > 1)) || [[ ${1:---fix} != --fix ]]; then
  echo "usage: check-format.sh [--fix]" >&2
  exit 2
fi

cd "$(dirname "${BASH_SOURCE[0]}")/.."
for program in clang-format git; do
  if ! command -v "$program" >/dev/null; then
    echo "check-format: $program is not installed; run scripts/setup.sh ci" >&2
    exit 1
  fi
done

# Root may well check a folder that another user owns.
if ! listed=$(git -c safe.directory="$PWD" ls-files --cached --others --exclude-standard \
  --deduplicate -- '*.h' '*.cpp'); then
  echo "check-format: git cannot list the sources; this works in a clone only" >&2
  exit 1
fi
files=()
while read -r file; do
  [[ -e $file ]] && files+=("$file")
done <<<"$listed"
if ((${#files[@]} == 0)); then
  echo "check-format: git lists no C++ file in $PWD" >&2
  exit 1
fi

if [[ ${1:-} == --fix ]]; then
  clang-format -i "${files[@]}"
  exit 0
fi

failures=0
for file in "${files[@]}"; do
  clang-format "$file" | diff -u --label "$file" --label "$file as laid out" "$file" - ||
    failures=$((failures + 1))
done
if ((failures > 0)); then
  echo "check-format: $failures of ${#files[@]} files differ, as shown above;" \
    "scripts/check-format.sh --fix lays them out" >&2
  exit 1
fi
echo "check-format: ${#files[@]} files are laid out as .clang-format says"
