#!/usr/bin/env bash
# scripts/setup.sh [--look] [SECTION...]: installs what is missing of scripts/packages.txt; with --look only
# says by its exit status whether all is there.
#
# Its sections say what they are for; "build" is the default. Where everything is there, this costs one
# look and needs no rights; otherwise apt-get runs as root or through a sudo that asks nothing.
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
list=$here/packages.txt
look=
if [[ ${1:-} == --look ]]; then
  look=yes
  shift
fi
(($# > 0)) || set -- build

fail() {
  printf 'setup: %s\n' "$@" >&2
  exit 1
}

# Prints column COLUMN of the given sections, without the lines that leave it empty.
column() {  # COLUMN SECTION...
  awk -v column="$1" -v sections="${*:2}" '
    BEGIN { split(sections, names); for (i in names) wanted["[" names[i] "]"] = 1 }
    { sub(/#.*/, "") }
    /^\[/ { open = $1 in wanted; next }
    open && $column != "" { print $column }' "$list"
}

for section; do
  grep -q "^\[$section\]" "$list" || fail "no section [$section] in $list"
done
mapfile -t packages < <(column 1 "$@")

if ! command -v apt-get >/dev/null; then
  absent=()
  for program in $(column 2 "$@"); do
    command -v "$program" >/dev/null || absent+=("$program")
  done
  ((${#absent[@]} == 0)) && exit 0
  [[ -z $look ]] || exit 1
  fail "there is no apt-get on this system, and these programs are missing: ${absent[*]}" \
    "install them, and what gives the Debian packages: ${packages[*]}"
fi

installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${packages[@]}" 2>/dev/null |
  sed -n 's/^installed //p') || true
mapfile -t missing < <(printf '%s\n' "${packages[@]}" | grep -vxF "$installed")
((${#missing[@]} == 0)) && exit 0
[[ -z $look ]] || exit 1

as_root=()
if ((EUID != 0)); then
  as_root=(sudo -n)
  sudo -n true 2>/dev/null || fail "these packages are missing: ${missing[*]}" \
    "install them as root, then try again: apt-get install ${missing[*]}"
fi
# Scripts of packages do not take every TMPDIR.
apt_get=("${as_root[@]}" env -u TMPDIR DEBIAN_FRONTEND=noninteractive
  apt-get -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3 -y)

echo "setup: installing ${missing[*]}"
"$here/quietly.sh" "${apt_get[@]}" update ||
  echo "setup: apt-get update failed; trying with the package lists of before" >&2
"$here/quietly.sh" "${apt_get[@]}" install --no-install-recommends "${missing[@]}" ||
  fail "apt-get could not install: ${missing[*]}" "mend what it says above, then try again"
