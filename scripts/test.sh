#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# The checks that must pass before a change is accepted.
#   scripts/test.sh        format, licences, a debug build and all its tests
#   scripts/test.sh all    then also all tests, but those of sources alone, and a short run of each
#                          fuzzer under AddressSanitizer and UndefinedBehaviorSanitizer, compiled
#                          with clang; the tests with
#                          threads under ThreadSanitizer; the linter on the parts that a host loads
#                          and on what changed; the site of the documents; the binary interface against
#                          its baseline; what calls of the component cost, against the kept
#                          numbers; the build of packagers, with g++
#                          (scripts/release-builds.sh has the other ones); the coverage of the
#                          component by its own tests
#
# ORV_LINT_BASE   the commit since which sources count as changed for the linter

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mode=${1:-plain}
case "$mode" in
  all | plain) ;;
  *)
    echo "usage: $0 [all]" >&2
    exit 2
    ;;
esac

# shellcheck source=steps.sh
. scripts/steps.sh

# The same result everywhere: no test waits for input, and standard input is never closed.
exec </dev/null

scripts/install-deps.sh

step "format"
git ls-files -z '*.h' '*.cpp' | xargs -0 clang-format --dry-run --Werror
step "licences"
reuse lint --quiet || { reuse lint >&2; exit 1; }
configure_and_build dev
run_tests dev

if [ "$mode" = all ]; then
  configure_and_build asan
  run_tests asan
  configure_and_build tsan
  run_tests tsan
  step "lint"
  build --preset asan --target tidy_component
  scripts/lint.py build/asan --changed "${ORV_LINT_BASE:-}"
  step "site of the documents, API reference"
  build --preset dev --target docs_site
  step "binary interface"
  quietly build/release/configure.log cmake --preset release
  build --preset release --target abi_check --target call_cost
  run_tests release -L cost --verbose
  scripts/release-builds.sh Release g++
  scripts/coverage.sh
fi
step "all green"
