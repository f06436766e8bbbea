#!/usr/bin/env bash
# scripts/package.sh: makes the Debian packages tcl-tamsel and tcl-tamsel-dev in build/package, and has
# lintian look at them where it is installed. Prints their names. Where Tcl 9 is installed with what building
# for it needs, tcl-tamsel has the libraries for both series, beside one index.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/setup.sh build package

# Built as Debian builds, without what debuggers read. Taken at the first configuration.
buildflags=(env DEB_BUILD_MAINT_OPTIONS=hardening=+bindnow DEB_CXXFLAGS_MAINT_STRIP=-g dpkg-buildflags)
CXXFLAGS="$("${buildflags[@]}" --get CXXFLAGS) $("${buildflags[@]}" --get CPPFLAGS)"
LDFLAGS=$("${buildflags[@]}" --get LDFLAGS)
export CXXFLAGS LDFLAGS
scripts/build.sh package
packed=()
if scripts/setup.sh --look tcl9; then
  scripts/build.sh package-tcl9
  packed=(-D "CPACK_INSTALL_CMAKE_PROJECTS=$PWD/build/package;Tamsel;ALL;/;$PWD/build/package-tcl9;Tamsel;tcl;/"
    -D CPACK_COMPONENTS_TCL=tcl  # what "tcl" in the second project stands for
    -D "CPACK_DEBIAN_TCL_PACKAGE_DEPENDS=tcl8.6 | tcl9.0"
    -D "CPACK_DEBIAN_TCL_PACKAGE_RECOMMENDS=tk8.6 | tk9.0")
fi

cd build/package
rm -f ./*.deb
# Both read the names of files as texts, and lintian gives those of temporary ones to a shell.
export LC_ALL=C.UTF-8
../../scripts/quietly.sh cpack "${packed[@]}"
if command -v lintian >/dev/null; then
  TMPDIR=/tmp lintian --allow-root --fail-on error,warning ./*.deb
fi
printf 'build/package/%s\n' *.deb
