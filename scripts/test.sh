#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# What must hold before a change lands: formatting, all tests and a short run of each fuzzer under
# AddressSanitizer and UndefinedBehaviorSanitizer, the tests with threads under ThreadSanitizer, the
# linter on what a host loads (on everything, the target `tidy`, it takes too long for each change).
# clang compiles the first, g++ the second.
#   scripts/test.sh          all of it
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

# The same wherever it runs: nothing is asked for, and standard input is never closed.
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
