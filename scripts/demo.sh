#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# Builds the component, the reference host and the sample interceptor, and runs them on the radio
# network of examples/. Installs missing packages first.
#   scripts/demo.sh          a transaction that is committed, and one that is not valid
#   scripts/demo.sh --more   then also reads, the interceptor, JSON, wrong names, a larger network

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

build=build/demo
network=(-I examples/models -m ran-element -m ran-equipment -m ran-function
  -d examples/data/harbour.json --me-id Harbour)
cell=ManagedElement=Harbour,GNBDUFunction=1,NRCellDU=1

title() {
  printf '\n\033[1m%s\033[0m\n' "$*"
}

# Shows a command as a user would type it at the prompt, then its output.
show() {
  local command=$1
  shift
  printf 'orvhost> %s\n' "$command"
  "$build/bin/orvhost" "${network[@]}" "$@" -c "$command"
}

quietly() {
  "$@" >"$build/log.txt" 2>&1 || {
    cat "$build/log.txt" >&2
    exit 1
  }
}

more() {
  title "A radio network, read through the component"
  show "tree --depth 2"
  show "get $cell"

  title "What the model repository says of a class and its associations"
  show "model NRSectorCarrier"

  title "The cell's state is in no data; the sample interceptor serves it"
  show "get $cell operationalState"
  echo "(with the interceptor)"
  show "get $cell operationalState" -C "$build/lib/libcell_state_interceptor.so"
  show "get $cell userLabel" -C "$build/lib/libcell_state_interceptor.so"

  title "Answers for programs"
  show "get $cell nRSectorCarrierRef" --json
  show "count ManagedElement=Harbour,GNBDUFunction=1" --json

  title "A wrong name is reported with what was expected"
  show "get $cell nRSectorCarierRef" || true
  show "get ManagedElement=Airport userLabel" || true

  title "A larger network from the generator"
  rm -rf "$build/network"
  "$build/bin/orv-ran-generate" --count 20000 --slice 10000 "$build/network"
  "$build/bin/orvhost" -I examples/models -m ran-element -m ran-equipment -m ran-function \
    -d "$build/network" -c "tree --depth 1"
}

mkdir -p "$build"
scripts/install-deps.sh build
echo "Building (several minutes the first time) ..."
quietly cmake --preset release -B "$build" -DORV_BUILD_TESTS=OFF
quietly cmake --build "$build" --target ext_cm orvhost cell_state_interceptor orv-ran-generate

title "A radio network: one change that goes well, and one that does not"
tail -n +4 examples/scenarios/demo.orv | "$build/bin/orvhost" "${network[@]}" --echo

if [ "${1:-}" = --more ]; then
  more
fi

title "Your turn"
echo "$build/bin/orvhost ${network[*]}"
echo "$build/bin/orvhost ${network[*]} check examples/scenarios/*.orv"
