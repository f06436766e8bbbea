#!/usr/bin/env bash
# scripts/debian-root.sh [--fresh] RELEASE COMMAND...: runs the command in a Debian RELEASE (a codename), in
# this source tree, which is /tamsel there. What is built there lies in build/RELEASE.
#
# A minimal Debian is made once, by debootstrap from the package mirror that apt uses here, and a copy of it
# keeps what commands install. Both lie in TAMSEL_ROOTS, or else /var/cache/tamsel, and may be removed at any
# time. With --fresh the command has a copy of its own, which goes afterwards.
#
# Needs root. Where no such Debian can be made the exit status is 77. All mounts are in a mount namespace of the command's own, and end with its last process; so no
# folder here ever has anything mounted in it.
set -euo pipefail

fresh=
if [[ ${1:-} == --fresh ]]; then
  fresh=yes
  shift
fi
if (($# < 2)) || ! [[ $1 =~ ^[a-z]+$ ]]; then
  echo "usage: debian-root.sh [--fresh] RELEASE COMMAND..." >&2
  exit 2
fi
release=$1
shift
roots=${TAMSEL_ROOTS:-/var/cache/tamsel}
minimal=$roots/$release-minimal
root=$roots/$release

fail() {
  echo "debian-root: $1" >&2
  exit 77
}
((EUID == 0)) || fail "only root can make a root folder of Debian $release, and work in it"
unshare --mount true 2>/dev/null || fail "this system lets not even root mount anything"

cd "$(dirname "${BASH_SOURCE[0]}")/.."
tree=$PWD

# What is not whole has another name, so that an interrupted run leaves nothing that looks finished.
make_minimal() {
  local here mirror
  scripts/setup.sh package
  here=$(. /etc/os-release && echo "$VERSION_CODENAME")
  mirror=$(apt-get indextargets --format '$(CODENAME) $(COMPONENT) $(SITE)' 'Created-By: Packages' |
    sed -n "s/^$here main //p;T;q")
  [[ -n $mirror ]] || fail "apt has no source here for main of $here, and so there is no mirror to ask"
  echo "debian-root: making a minimal Debian $release in $minimal"
  rm -rf --one-file-system "$minimal.part"
  unshare --mount scripts/quietly.sh \
    debootstrap --variant=minbase "$release" "$minimal.part" "$mirror" || fail "debootstrap failed"
  # How apt reaches its mirror, and what it asks of it, is as here.
  apt-config dump | grep -E '^Acquire::(.*::Proxy|Check-)' >"$minimal.part/etc/apt/apt.conf.d/90outside" || true
  mkdir "$minimal.part/tamsel"
  mv "$minimal.part" "$minimal"
}
copy_minimal() {  # FOLDER
  rm -rf --one-file-system "$1.part"
  cp -a --reflink=auto "$minimal" "$1.part"
  mv "$1.part" "$1"
}

mkdir -p "$roots" "build/$release"
exec 9>"$roots/$release.lock"
flock 9
[[ -d $minimal ]] || make_minimal
if [[ -n $fresh ]]; then
  folder=$(mktemp -d -p "$roots")
  trap 'rm -rf --one-file-system "$folder"' EXIT
  trap 'exit 143' TERM
  trap 'exit 130' INT
  root=$folder/$release
fi
[[ -d $root ]] || copy_minimal "$root"
exec 9>&-
cp -L /etc/resolv.conf "$root/etc/resolv.conf"

enter='
  set -e
  root=$1 tree=$2 build=$3
  shift 3
  for folder in dev proc sys; do mount --rbind /$folder "$root/$folder"; done
  mount -t tmpfs tmpfs "$root/tmp"
  mount --bind "$tree" "$root/tamsel"
  mount --bind "$build" "$root/tamsel/build"
  exec chroot "$root" "$@"'
variables=(PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8)
for variable in CI TAMSEL_WERROR TERM http_proxy https_proxy no_proxy; do
  [[ -z ${!variable+set} ]] || variables+=("$variable=${!variable}")
done
unshare --mount bash -c "$enter" - "$root" "$tree" "$tree/build/$release" \
  env -i --chdir=/tamsel "${variables[@]}" "$@"
