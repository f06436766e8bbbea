#!/usr/bin/env bash
# scripts/package.sh: makes the Debian packages tcl-tamsel and tcl-tamsel-dev in build/package, and has
# lintian look at them where it is installed. Prints their names.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/setup.sh build package

# Built as Debian builds, without what debuggers read. Taken at the first configuration.
buildflags=(env DEB_BUILD_MAINT_OPTIONS=hardening=+bindnow DEB_CXXFLAGS_MAINT_STRIP=-g dpkg-buildflags)
CXXFLAGS="$("${buildflags[@]}" --get CXXFLAGS) $("${buildflags[@]}" --get CPPFLAGS)"
LDFLAGS=$("${buildflags[@]}" --get LDFLAGS)
export CXXFLAGS LDFLAGS
scripts/build.sh package

cd build/package
rm -f ./*.deb
../../scripts/quietly.sh cpack
if command -v lintian >/dev/null; then
  lintian --allow-root --fail-on error,warning ./*.deb
fi
printf 'build/package/%s\n' *.deb
