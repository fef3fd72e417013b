#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# Reports which lines and branches of the component, its templates and its helper library the tests
# reach. Fails if a line of src/ext_cm or src/common is not reached and not marked with a reason:
#   code; // GCOVR_EXCL_LINE: the reason
#   scripts/coverage.sh [DIRECTORY]   the build directory, build/coverage if none is given

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

directory=${1:-build/coverage}
exec </dev/null

mkdir -p "$directory"
scripts/install-deps.sh
cmake --preset coverage -B "$directory" >"$directory/configure.log" || {
  cat "$directory/configure.log" >&2
  exit 1
}
cmake --build "$directory"
find "$directory" -name '*.gcda' -delete # counts of earlier runs
# component_faults_test is left out: it unloads the component thousands of times, and all counters
# are written each time.
ctest --test-dir "$directory" --output-on-failure -j "$(nproc)" -E '^component_faults_test'

# Branches that the compiler adds for exceptions say nothing about the tests.
gcovr --root . --object-directory "$directory" --exclude-throw-branches \
  --exclude-unreachable-branches --filter 'src/(ext_cm|common|orv_common)/' \
  --json "$directory/coverage.json" "$directory"

report() {
  gcovr --root . --add-tracefile "$directory/coverage.json" "$@"
}
report --branches
report
report --filter 'src/(ext_cm|common)/' --fail-under-line 100 --output "$directory/summary.txt" \
  --print-summary
