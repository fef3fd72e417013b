#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# Installs the Debian packages that are missing on this machine.
#   scripts/install-deps.sh build    those for building and running
#   scripts/install-deps.sh bench    these, and those for the benchmarks
#   scripts/install-deps.sh          those for building, and those for the tests and checks

set -euo pipefail

build_packages=(
  g++ cmake ninja-build pkg-config
  libpoco-dev         # the component's mutexes, the host's library loader
  libyang2-dev        # reads YANG models and instance data
  libcli11-dev        # orvhost: options
  nlohmann-json3-dev  # orvhost: JSON output
  libsqlite3-dev libpq-dev # orvhost: stores in a file, and those that hosts share
  libedit-dev         # orvhost: line editing, history, completion
  libtomlplusplus-dev # orvhost: project files
  graphviz            # orvhost: pictures
  libmimalloc-dev     # orvhost: its allocator; without it that of the C library is used
  libnetconf2-dev libssh-dev # orvhost: its NETCONF server; without them it is built without one
)
test_packages=(
  libgtest-dev libgmock-dev
  librapidcheck-dev   # property tests
  clang clang-format clang-tidy
  libclang-rt-dev     # sanitizers and fuzzers of clang
  binutils python3
  gcovr               # coverage
  git reuse           # which files are ours, and their licences
  doxygen             # API reference
  mkdocs mkdocs-material # the site of the documents
  abigail-tools       # binary interface against the last release
  valgrind            # what calls of the component cost
  postgresql          # servers of the tests' own
  chromium            # looks at the page of orvhost's graph --html
  python3-ncclient python3-paramiko openssh-client openssl # clients of the server
  libyang2-tools      # yanglint checks the server's replies
  lintian mmdebstrap  # scripts/package.sh
)
bench_packages=(
  libbenchmark-dev
  valgrind            # counts instructions
  gnuplot-nox python3 # tables and plots
  postgresql          # a server of the store's benchmark
)

case "${1:-all}" in
  build) packages=("${build_packages[@]}") ;;
  bench) packages=("${build_packages[@]}" "${bench_packages[@]}") ;;
  all) packages=("${build_packages[@]}" "${test_packages[@]}") ;;
  *)
    echo "usage: $0 [build | bench]" >&2
    exit 2
    ;;
esac

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "$0: these packages are missing and installing them takes root: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

echo "Installing: ${missing[*]}"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { "${as_root[@]}" apt-get update &&
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
  tail -n 30 "$log" >&2
  echo "$0: apt-get could not install: ${missing[*]}" >&2
  exit 1
fi
