#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# The checks that must pass before a change is accepted: formatting; all tests and a short run of
# each fuzzer under AddressSanitizer and UndefinedBehaviorSanitizer, compiled with clang; the tests
# with threads under ThreadSanitizer, compiled with g++; the linter on the parts that a host loads
# (on all sources it takes too long for each change: target `tidy`).
#   scripts/test.sh          all of these
#   scripts/test.sh quick    a debug build and its tests only

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mode=${1:-all}
case "$mode" in
  all | quick) ;;
  *)
    echo "usage: $0 [quick]" >&2
    exit 2
    ;;
esac

step() {
  printf '\n== %s\n' "$*"
}

run_preset() {
  step "$1: build"
  cmake --preset "$1" >"build/$1-configure.log" || {
    cat "build/$1-configure.log" >&2
    exit 1
  }
  cmake --build --preset "$1"
  step "$1: test"
  ctest --preset "$1" -j "$(nproc)"
}

# The same result everywhere: no test waits for input, and standard input is never closed.
exec </dev/null

mkdir -p build
scripts/install-deps.sh

if [ "$mode" = quick ]; then
  run_preset dev
else
  step "format"
  git ls-files -z '*.h' '*.cpp' | xargs -0 clang-format --dry-run --Werror
  run_preset asan
  run_preset tsan
  step "lint"
  cmake --build --preset asan --target tidy_component
fi
step "all green"
