#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# Builds the Debian packages and tries them out. For people: it takes two builds, and root for the
# fresh system, which comes from the mirror of this machine.
#   scripts/package.sh build        the packages, into build/packages
#   scripts/package.sh              then again in another directory, to compare every byte; lintian;
#                                   and in a fresh Debian 12: install, use, upgrade, remove, purge
#   scripts/package.sh try NEW FORMER   lintian and the fresh system alone, for the packages in two
#                                   directories
#
# The packages to upgrade from: those of the commit in ORV_FORMER, or else the present source with
# the version number 0.1.0.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# shellcheck source=steps.sh
. scripts/steps.sh

SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH LC_ALL=C.UTF-8 TZ=UTC
work=$PWD/build/packaging
out=$PWD/build/packages
jobs=${ORV_JOBS:-$(nproc)}

# The packages of a source tree, built without a trace of where that was.
#   make_packages SOURCE BUILD
make_packages() {
  local source=$1 build=$2 map
  map="-ffile-prefix-map=$build=build -ffile-prefix-map=$source=."
  quietly "$build/configure.log" cmake -G Ninja -S "$source" -B "$build" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG" -DORV_BUILD_TESTS=OFF \
    -DORV_BUILD_VALIDATOR=ON \
    -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_INSTALL_LIBDIR="lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)" \
    -DCMAKE_SKIP_RPATH=ON -DCMAKE_CXX_COMPILER=g++ \
    -DCMAKE_CXX_FLAGS="-D_FORTIFY_SOURCE=2 -fstack-protector-strong -fstack-clash-protection -fcf-protection $map" \
    -DCMAKE_EXE_LINKER_FLAGS="-pie -Wl,-z,relro,-z,now" \
    -DCMAKE_SHARED_LINKER_FLAGS="-Wl,-z,relro,-z,now" \
    -DCMAKE_MODULE_LINKER_FLAGS="-Wl,-z,relro,-z,now"
  cmake --build "$build" -j "$jobs" -- --quiet
  rm -rf "$build/packages"
  # What is not for all must not depend on who packs.
  (umask 022 && cd "$build" && quietly "$build/cpack.log" cpack)
}

# A tree of a commit, or of the files as they are, in a directory of its own.
#   copy_tree DIRECTORY [COMMIT]
copy_tree() {
  rm -rf "$1"
  mkdir -p "$1"
  if [ $# -gt 1 ]; then
    git archive "$2" | tar -x -C "$1"
  else
    git ls-files -z | xargs -0 tar -c | tar -x -C "$1"
  fi
}

# What Debian asks of packages, as far as it can be checked here.
#   check_with_lintian PACKAGES
check_with_lintian() {
  step "lintian"
  lintian --allow-root --fail-on error,warning --tag-display-limit 0 "$1"/*.deb
  echo "no errors, no warnings"
}

# Installs, uses, upgrades, removes and purges.
#   try_out NEW FORMER
try_out() {
  step "a fresh Debian 12"
  local root=$work/root mirror place
  rm -rf "$root"
  mkdir -p "$work"
  mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' | sed -n 1p)
  mmdebstrap --quiet --variant=apt bookworm "$root" "$mirror"
  for place in new former; do
    mkdir -p "$root/packages/$place"
  done
  cp "$1"/*.deb "$root/packages/new"
  cp "$2"/*.deb "$root/packages/former"
  cp /etc/resolv.conf "$root/etc/resolv.conf"
  cp scripts/try-packages.sh "$root/try-packages.sh"
  # Programs find what belongs to them by /proc.
  mount -t proc proc "$root/proc"
  local status=0
  # Nothing of how this machine builds.
  chroot "$root" /usr/bin/env -i /bin/bash /try-packages.sh || status=$?
  umount "$root/proc"
  return "$status"
}

if [ "${1:-}" = try ]; then
  check_with_lintian "$2"
  try_out "$2" "$3"
  exit 0
fi

step "build of the packages"
copy_tree "$work/first/source"
make_packages "$work/first/source" "$work/first/build"
rm -rf "$out"
cp -r "$work/first/build/packages" "$out"
(cd "$out" && sha256sum -- *.deb)
[ "${1:-}" != build ] || exit 0

step "the same again in another directory"
copy_tree "$work/second-with-a-longer-name/source"
make_packages "$work/second-with-a-longer-name/source" "$work/second-with-a-longer-name/build"
for package in "$out"/*.deb; do
  cmp "$package" "$work/second-with-a-longer-name/build/packages/${package##*/}"
  echo "equal: ${package##*/}"
done

check_with_lintian "$out"

step "the packages to upgrade from"
if [ -n "${ORV_FORMER:-}" ]; then
  former=$work/former
  copy_tree "$former/source" "$ORV_FORMER"
else
  echo "the present source, with the version 0.1.0"
  former=$work/first # most of it is built already
  sed -i 's/^\(project(orv_ext_cm VERSION\) [0-9.]*/\1 0.1.0/' "$former/source/CMakeLists.txt"
fi
make_packages "$former/source" "$former/build"

try_out "$out" "$former/build/packages"
