#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# Builds everything but the tests as those do who package or embed the project: without a preset, in
# each build type and with each compiler. A warning does not end such a build, but is an error here.
#   scripts/release-builds.sh                    four build types, two compilers
#   scripts/release-builds.sh TYPE [COMPILER]    one build type, with both compilers or one of them

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

types=(Debug Release RelWithDebInfo MinSizeRel)
compilers=(g++ clang++)
[ $# -lt 1 ] || types=("$1")
[ $# -lt 2 ] || compilers=("$2")

# shellcheck source=steps.sh
. scripts/steps.sh

for compiler in "${compilers[@]}"; do
  for type in "${types[@]}"; do
    step "$type with $compiler"
    directory="build/plain/$compiler-$type"
    quietly "$directory/configure.log" cmake -G Ninja -B "$directory" \
      -DCMAKE_BUILD_TYPE="$type" -DCMAKE_CXX_COMPILER="$compiler" -DORV_BUILD_TESTS=OFF \
      -DORV_BUILD_BENCHMARKS=ON
    # What was compiled before would not repeat its warnings.
    quietly "$directory/build.log" cmake --build "$directory" --clean-first
    if grep -n 'warning:' "$directory/build.log"; then
      echo "$directory: warnings" >&2
      exit 1
    fi
  done
done
