#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# Writes to build/coverage which lines and branches of the component, its templates and its helper
# library their own tests reach. Fails if a line of src/ext_cm or src/common is not reached and not
# marked with a reason:
#   code; // GCOVR_EXCL_LINE: the reason

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# shellcheck source=steps.sh
. scripts/steps.sh

directory=build/coverage
exec </dev/null

scripts/install-deps.sh
configure_and_build coverage
find "$directory" -name '*.gcda' -delete # counts of earlier runs
# component_faults_test is left out: it unloads the component thousands of times, and all counters
# are written each time.
run_tests coverage -E '^component_faults_test'

# Branches that the compiler adds for exceptions say nothing about the tests.
gcovr --root . --object-directory "$directory" --exclude-throw-branches \
  --exclude-unreachable-branches --filter 'src/(ext_cm|common|orv_common)/' \
  --json "$directory/coverage.json" "$directory"

report() {
  gcovr --root . --add-tracefile "$directory/coverage.json" "$@"
}
step "coverage: report"
report --branches --output "$directory/branches.txt"
report --output "$directory/lines.txt"
echo "all files: $directory/lines.txt, $directory/branches.txt"
report --filter 'src/(ext_cm|common)/' --fail-under-line 100 --output "$directory/summary.txt" \
  --print-summary || {
  grep -v ' 100% *$' "$directory/summary.txt" >&2
  exit 1
}
