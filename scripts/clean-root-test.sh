#!/usr/bin/env bash
# scripts/clean-root-test.sh: installs the packages of build/package (see scripts/package.sh) in a fresh
# minimal Debian, has a first session there without a display, and removes them again.
#
# Needs root, and the package mirror that apt uses here. The Debian is of the release that runs here; it
# lives in a temporary folder. Prints a transcript. The exit status is 1 where a step fails, or removing leaves a file behind.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
debs=(build/package/*.deb)
if [[ ! -e ${debs[0]} ]]; then
  echo "clean-root-test: there is no package in build/package; run scripts/package.sh" >&2
  exit 1
fi
if ((EUID != 0)); then
  echo "clean-root-test: only root can make a root folder" >&2
  exit 1
fi
scripts/setup.sh package
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
mirror=$(apt-get indextargets --format '$(CODENAME) $(COMPONENT) $(SITE)' 'Created-By: Packages' |
  sed -n "s/^$release main //p;T;q")

folder=$(mktemp -d)
trap 'rm -rf --one-file-system "$folder"' EXIT
root=$folder/root
scripts/quietly.sh debootstrap --variant=minbase "$release" "$root" "$mirror"
mkdir "$root/packages"
cp "${debs[@]}" "$root/packages"

inside() {  # COMMAND...: runs it there, and shows it as a transcript does
  printf '\n# %s\n' "$*"
  chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 \
    DEBIAN_FRONTEND=noninteractive "$@" 2>&1
}
list_files() {  # all but what the package managers write for themselves
  (cd "$root" && find . -path ./var/cache -prune -o -path ./var/log -prune -o -path ./var/lib/apt -prune \
    -o ! -path './var/lib/dpkg/*-old' -printf '%p %l\n') | sort
}

list_files >"$folder/before"
inside apt-get update -q
inside apt-get install -q -y --no-install-recommends "${debs[@]/#build\/package/./packages}"
cat >"$root/packages/session.tcl" <<'END'
package require Tamsel
ecprg p
p load /usr/share/doc/tcl-tamsel/examples/watchdog.ec
puts [p profile]
puts [p exp-type {elapsed + 1 > deadline}]
END
inside cat /packages/session.tcl
inside bash -c 'time tclsh /packages/session.tcl' | tee "$folder/session"
inside dpkg -L tcl-tamsel tcl-tamsel-dev
rm "$root/packages/session.tcl"
inside apt-get purge -q -y --autoremove tcl-tamsel tcl-tamsel-dev
list_files >"$folder/after"

failures=0
grep -qxF 'watchdog bool bool bool : bool int int' "$folder/session" || {
  echo "clean-root-test: the session did not show the profile" >&2
  failures=1
}
diff "$folder/before" "$folder/after" || {
  echo "clean-root-test: removing the packages leaves the difference above" >&2
  failures=1
}
((failures == 0)) && printf '\nclean-root-test: installed, used and removed without a trace\n'
