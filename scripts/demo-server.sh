#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# Starts the NETCONF server on the radio network of examples/ and drives it with ncclient: moves a
# sector to another antenna, shows the references that followed, breaks a cardinality and prints the
# errors. Keys and all other files are in a temporary folder, which goes at the end.
#   scripts/demo-server.sh          builds first
#   scripts/demo-server.sh BUILD    uses that build

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

if [ $# -gt 0 ]; then
  build=$1
else
  build=build/demo
  mkdir -p "$build"
  scripts/install-deps.sh build
  echo "Building (several minutes the first time) ..."
  { cmake --preset release -B "$build" -DORV_BUILD_TESTS=OFF &&
    cmake --build "$build" --target ext_cm orvhost; } >"$build/log.txt" 2>&1 || {
    cat "$build/log.txt" >&2
    exit 1
  }
fi

python=
for candidate in python3 /usr/bin/python3; do
  if "$candidate" -c "import ncclient" 2>/dev/null; then
    python=$candidate
    break
  fi
done
if [ -z "$python" ]; then
  echo "$0: ncclient is missing (Debian: python3-ncclient)" >&2
  exit 1
fi

folder=$(mktemp -d)
server=
finish() {
  if [ -n "$server" ]; then
    kill "$server" 2>/dev/null || true
    wait "$server" 2>/dev/null || true
  fi
  rm -rf "$folder"
}
trap finish EXIT

ssh-keygen -q -t ed25519 -N '' -f "$folder/key"
"$build/bin/orvhost" -I examples/models -m ran-element -m ran-equipment -m ran-function \
  -d examples/data/harbour.json --me-id Harbour --log-file "$folder/log" \
  serve --netconf-ssh 127.0.0.1:0 --netconf-user "alice=$folder/key.pub" \
  --host-key "$folder/host_key" >"$folder/out" &
server=$!
for _ in $(seq 100); do
  grep -q NETCONF "$folder/out" && break
  kill -0 "$server"
  sleep 0.1
done
cat "$folder/out"

"$python" -W ignore - "$folder/key" "$(sed -n 's/.*SSH at .*://p' "$folder/out")" <<'PYTHON'
import sys

from ncclient import manager
from ncclient.operations import RaiseMode

EQUIPMENT = "urn:orv:example:ran-equipment"
BASE = "urn:ietf:params:xml:ns:netconf:base:1.0"
ANTENNA = "ManagedElement=Harbour,Equipment=1,AntennaUnit={},Antenna={}"


def equipment(content):
    return (
        '<ManagedElement xmlns="urn:orv:example:ran-element"><managedElementId>Harbour'
        f'</managedElementId><Equipment xmlns="{EQUIPMENT}"><equipmentId>1</equipmentId>'
        f"{content}</Equipment></ManagedElement>"
    )


def edit(unit, content):
    text = equipment(f"<RadioUnit><radioUnitId>{unit}</radioUnitId>{content}</RadioUnit>")
    config = f'<config xmlns="{BASE}" xmlns:nc="{BASE}">{text}</config>'
    return client.edit_config(target="candidate", config=config)


def show_antennas():
    wanted = equipment("<AntennaUnit><Antenna><radioUnitRef/></Antenna></AntennaUnit>")
    found = client.get_config("candidate", filter=("subtree", wanted)).data_ele
    for unit in found.iter(f"{{{EQUIPMENT}}}AntennaUnit"):
        for antenna in unit.iter(f"{{{EQUIPMENT}}}Antenna"):
            units = [one.text for one in antenna.iter(f"{{{EQUIPMENT}}}radioUnitRef")]
            name = ANTENNA.format(unit[0].text, antenna[0].text)
            print(f"  {name}: {', '.join(units) or 'no radio unit'}")


client = manager.connect(
    host="127.0.0.1", port=int(sys.argv[2]), username="alice", key_filename=sys.argv[1],
    hostkey_verify=False, allow_agent=False, look_for_keys=False,
)
client.raise_mode = RaiseMode.NONE

print("\nThe radio units of the antennas:")
show_antennas()

print("\nRadio unit 1 moves to another antenna. Nobody writes to the antennas; they follow:")
old = "".join(
    f'<antennaRef nc:operation="delete">{ANTENNA.format(1, at)}</antennaRef>' for at in (1, 2)
)
edit(1, f"{old}<antennaRef>{ANTENNA.format(2, 1)}</antennaRef>")
show_antennas()
print("commit:", "ok" if client.commit().ok else "refused")

print("\nA third radio unit on that antenna is one too many:")
edit(3, f"<antennaRef>{ANTENNA.format(2, 1)}</antennaRef>")
for error in client.validate("candidate").errors:
    print(f"  {error.tag}, {error.app_tag}\n  {error.path}\n  {error.message}\n  {error.info}")
client.discard_changes()
client.close_session()
PYTHON
printf '\nWhat the server wrote into its log:\n'
cat "$folder/log"
