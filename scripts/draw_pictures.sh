#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# Draws the pictures of the example network that the documents show.
#   scripts/draw_pictures.sh BUILD [FOLDER]   with the orvhost of that build; default: docs/pictures

set -euo pipefail
if [ $# -lt 1 ] || [ $# -gt 2 ]; then
  echo "usage: $0 BUILD [FOLDER]" >&2
  exit 2
fi
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$(cd "$1" && pwd)
folder=${2:-$project/docs/pictures}
cd "$project"

equipment=ManagedElement=Harbour,Equipment=1
on_network() {
  "$build/bin/orvhost" --project '' -I examples/models -m ran-element -m ran-equipment \
    -m ran-function -d examples/data/harbour.json --me-id Harbour "$@"
}

on_network graph "$equipment" -o "$folder/equipment.svg"
# What the demo moves: before, and after.
on_network graph "$equipment,RadioUnit=1" -o "$folder/demo-before.svg"
on_network -c "set $equipment,RadioUnit=1 antennaRef=$equipment,AntennaUnit=2,Antenna=1" \
  -c "graph $equipment,RadioUnit=1 -o $folder/demo-after.svg"
