#!/usr/bin/env bash
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
#
# Runs in the fresh system that scripts/package.sh makes, with the packages in /packages.

set -euo pipefail
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin
names=(liborv-common0 libext-cm orv-ext-cm-dev orv-host-dev orvhost orv-validate orv-ext-cm-doc)
network=(-I /usr/share/orv_ext_cm/models -m ran-element -m ran-equipment -m ran-function
  -d /usr/share/orv_ext_cm/data/harbour.json --me-id Harbour)

title() {
  printf '\n-- %s\n' "$*"
}

install_packages() {
  apt-get install -y --no-install-recommends "$@" >/tmp/apt.log 2>&1 || {
    cat /tmp/apt.log
    return 1
  }
}

# All files that a package could leave. What apt and dpkg note about any package is not among them.
list_files() {
  find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /tmp -o -path /var/cache \
    -o -path /var/log -o -path /var/lib/apt -o -path /var/lib/dpkg -o -path /packages \) -prune \
    -o -print | sort
}

try_out() {
  title "orvhost"
  orvhost --version
  orvhost "${network[@]}" tree --depth 1
  orvhost "${network[@]}" get ManagedElement=Harbour,GNBDUFunction=1,NRCellDU=1 userLabel
  orv-ran-generate --help | head -n 3
  local libraries
  libraries=$(dirname "$(dpkg -L libext-cm | grep '/libext_cm\.so$')")
  if [ -f "$libraries/orv-record.so" ]; then # the former version may lack it
    title "a recording"
    ORV_RECORD_FILE=/tmp/network.orvrec orvhost "${network[@]}" --ext-cm "$libraries/orv-record.so" \
      tree --depth 1
    orvhost replay /tmp/network.orvrec
    rm /tmp/network.orvrec
  fi
  if [ -d /usr/share/doc/orv_ext_cm/examples/models ]; then # the former version may lack it
    title "the demo of the README"
    (cd /usr/share/doc/orv_ext_cm && orvhost -I examples/models -m ran-element -m ran-equipment \
      -m ran-function -d examples/data/harbour.json --me-id Harbour --echo \
      -f examples/scenarios/demo.orv | tail -n 6)
  fi
  title "manual pages, completions, documents"
  man -w orvhost orv-ran-generate orv-validate
  bash -c '. /usr/share/bash-completion/completions/orvhost && complete -p orvhost'
  ls /usr/share/doc/orv_ext_cm /usr/share/doc/orvhost
  bash -c '. /usr/share/bash-completion/completions/orv-validate && complete -p orv-validate'
  title "orv-validate"
  orv-validate "$(dpkg -L libext-cm | grep '/libext_cm\.so$')" >/tmp/validate.log || {
    grep -v '^ok' /tmp/validate.log
    return 1
  }
  tail -n 1 /tmp/validate.log
  title "a build against the headers"
  pkg-config --print-requires orv_ext_cm
  for example in embedding interceptor host; do
    cmake -S "/usr/share/doc/orv_ext_cm/examples/$example" -B "/tmp/$example" >/tmp/cmake.log
    cmake --build "/tmp/$example" >>/tmp/cmake.log
  done
  /tmp/embedding/minimal_host "$(dpkg -L libext-cm | grep '/libext_cm\.so$')"
  # It ends with a refusal.
  local refused
  refused=$(/tmp/host/mast_host "$(dpkg -L libext-cm | grep '/libext_cm\.so$')" || echo "status $?")
  echo "$refused"
  grep -q '^refused: Attribute antennas' <<<"$refused"
  grep -qx 'status 1' <<<"$refused"
  orvhost "${network[@]}" -C /tmp/interceptor/libcell_state_interceptor.so \
    get ManagedElement=Harbour,GNBDUFunction=1,NRCellDU=1 operationalState
  orvhost "${network[@]}" -C /tmp/interceptor/libcell_state_interceptor.so --keep-going \
    -c 'cd ManagedElement=Harbour,GNBDUFunction=1,NRCellDU=1' \
    -c 'set . administrativeState=LOCKED' -c 'set . administrativeState=SHUTTINGDOWN' || true
}

# dpkg of this system leaves documents out of small images; here they are what is tried out.
rm -f /etc/dpkg/dpkg.cfg.d/docker
apt-get update >/dev/null
title "what others need: compilers, man"
install_packages g++ cmake make pkg-config libpoco-dev man-db bash-completion
# All that the packages need from others, so that only the packages themselves come and go.
install_packages /packages/new/*.deb
apt-get purge -y "${names[@]}" >/dev/null 2>&1
list_files >/tmp/before

title "install the former version"
install_packages /packages/former/*.deb
dpkg-query -W "${names[@]}"
try_out

title "upgrade"
install_packages /packages/new/*.deb
dpkg-query -W "${names[@]}"
try_out

title "remove and purge"
apt-get remove -y "${names[@]}" >/dev/null 2>&1
dpkg --purge "${names[@]}" >/dev/null 2>&1 # a package without settings is gone already, and apt knows it no more
list_files >/tmp/after
diff /tmp/before /tmp/after
if ldconfig -p | grep -E 'liborv_common|libext_cm'; then
  exit 1
fi
echo "no trace"
