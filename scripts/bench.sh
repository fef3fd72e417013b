#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# Measures what the component adds to calls of the router, and writes the tables and plots of
# docs/performance.md. Run it on a machine that does nothing else; it takes about ten minutes.
#   scripts/bench.sh          measure and write
#   scripts/bench.sh report   only write, from the latest measurements

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mode=${1:-all}
case "$mode" in
  all | report) ;;
  *)
    echo "usage: $0 [report]" >&2
    exit 2
    ;;
esac

# The directory in which to build, and to keep the measurements.
build=${ORV_BENCH_BUILD:-build/bench}
results="$build/results"

step() {
  printf '\n== %s\n' "$*"
}

if [ "$mode" = all ]; then
  scripts/install-deps.sh bench
  mkdir -p "$build"
  step "build"
  cmake --preset bench -B "$build" >"$build/configure.log" || {
    cat "$build/configure.log" >&2
    exit 1
  }
  cmake --build "$build" --target orv_bench
  rm -rf "$results"
  mkdir -p "$results"

  step "times and allocations"
  "$build/bin/orv_bench" --benchmark_min_time=0.1 --benchmark_repetitions=5 \
    --benchmark_report_aggregates_only=true --benchmark_out_format=json \
    --benchmark_out="$results/times.json"

  step "instructions"
  valgrind --quiet --tool=callgrind --instr-atstart=no --collect-atstart=no \
    --callgrind-out-file="$results/callgrind" "$build/bin/orv_bench" --instructions
fi

step "docs/performance.md"
scripts/bench_report.py "$results" docs/performance.md
