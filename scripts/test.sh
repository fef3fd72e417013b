#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# What must hold before a change lands: formatting, all tests in a debug build and under
# AddressSanitizer and UndefinedBehaviorSanitizer, the tests with threads under ThreadSanitizer.
# The linter is run by hand: cmake --build --preset dev --target tidy
#   scripts/test.sh          all of it
#   scripts/test.sh quick    the debug build and its tests only

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

# The same wherever it runs: nothing is asked for, and standard input is never closed.
exec </dev/null

mkdir -p build
scripts/install-deps.sh

if [ "$mode" = all ]; then
  step "format"
  git ls-files -z '*.h' '*.cpp' | xargs -0 clang-format --dry-run --Werror
fi
run_preset dev
if [ "$mode" = all ]; then
  run_preset asan
  run_preset tsan
fi
step "all green"
