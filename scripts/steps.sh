# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# What the scripts that build and test have in common; they read it with `.` in the root of the
# project.

started=$SECONDS

# Says what begins, and how much time has gone.
step() {
  local gone=$((SECONDS - started))
  printf '\n== %s (%d:%02d)\n' "$*" $((gone / 60)) $((gone % 60))
}

# A command whose output counts only if it fails.
#   quietly LOG-FILE COMMAND...
quietly() {
  local log=$1
  shift
  mkdir -p "$(dirname "$log")"
  "$@" >"$log" 2>&1 || {
    cat "$log" >&2
    return 1
  }
}

# Builds; a line for each file is for people at a terminal only.
#   build DIRECTORY [ARGUMENT...]
build() {
  if [ -t 1 ]; then
    cmake --build "$@"
  else
    cmake --build "$@" -- --quiet
  fi
}

#   configure_and_build PRESET
configure_and_build() {
  step "$1: build"
  quietly "build/$1/configure.log" cmake --preset "$1"
  build --preset "$1"
}

# Runs the tests of a preset. Shows failures, what was not run, and the sums.
#   run_tests PRESET [ARGUMENT...]
run_tests() {
  local preset=$1
  shift
  step "$preset: test"
  ctest --preset "$preset" -j "$(nproc)" "$@" |
    grep -vE '^ +Start +[0-9]+: |^ *[0-9]+/[0-9]+ +Test +#.* Passed +'
}
