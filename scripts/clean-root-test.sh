#!/usr/bin/env bash
# scripts/clean-root-test.sh [RELEASE]: installs the packages of build/package (see scripts/package.sh) in a
# fresh minimal Debian, has a first session there without a display, and removes them again.
#
# The Debian is of the release that runs here, or of RELEASE, whose packages are those of build/RELEASE/package;
# scripts/debian-root.sh makes it, and says what that needs. Prints a transcript. The exit status is 1 where a
# step fails, or removing leaves a file behind.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
if [[ ${1:-} != --inside ]]; then
  here=$(. /etc/os-release && echo "$VERSION_CODENAME")
  release=${1:-$here}
  made=build/$release/package
  if [[ $release == "$here" ]]; then
    mkdir -p "$made"
    rm -f "$made"/*.deb
    cp build/package/*.deb "$made" 2>/dev/null || true
  fi
  if [[ -z $(ls "$made"/*.deb 2>/dev/null) ]]; then
    echo "clean-root-test: there is no package for $release; run scripts/package.sh there" >&2
    exit 1
  fi
  exec scripts/debian-root.sh --fresh "$release" scripts/clean-root-test.sh --inside
fi

export DEBIAN_FRONTEND=noninteractive
shown() {  # COMMAND...: runs it, and shows it as a transcript does
  printf '\n# %s\n' "$*"
  "$@" 2>&1
}
list_files() {  # all but what is mounted here, and what the package managers write for themselves
  find / -xdev -path /tamsel -prune -o -path /var/cache -prune -o -path /var/log -prune \
    -o -path /var/lib/apt -prune -o ! -path '/var/lib/dpkg/*-old' -printf '%p %l\n' | sort
}

list_files >/tmp/before
shown apt-get update -q
shown apt-get install -q -y --no-install-recommends ./build/package/*.deb
cat >/tmp/session.tcl <<'END'
package require Tamsel
ecprg p
p load /usr/share/doc/tcl-tamsel/examples/watchdog.ec
puts [p profile]
puts [p exp-type {elapsed + 1 > deadline}]
END
shown cat /tmp/session.tcl
failures=0
others=()
# In each shell that the package has a library for.
for library in $(dpkg -L tcl-tamsel | grep '\.so$'); do
  case $library in
    */libtcl9dorvik.so) series=9.0 ;;
    *) series=8.6 ;;
  esac
  if ! command -v "tclsh$series" >/dev/null; then
    shown apt-get install -q -y --no-install-recommends "tcl$series"
    others+=("tcl$series")
  fi
  shown bash -c "time tclsh$series /tmp/session.tcl" | tee /tmp/session
  grep -qxF 'watchdog bool bool bool : bool int int' /tmp/session || {
    echo "clean-root-test: the session in tclsh$series did not show the profile" >&2
    failures=1
  }
done
shown dpkg -L tcl-tamsel tcl-tamsel-dev
shown apt-get purge -q -y --autoremove tcl-tamsel tcl-tamsel-dev "${others[@]}"
list_files >/tmp/after
diff /tmp/before /tmp/after || {
  echo "clean-root-test: removing the packages leaves the difference above" >&2
  failures=1
}
((failures == 0)) && printf '\nclean-root-test: installed, used and removed without a trace\n'
