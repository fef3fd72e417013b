#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
"""Counts the instructions of whole transactions, of the component and the host together.

usage: host_cost.py PROGRAM [ARGUMENT...]

PROGRAM is the built orv_host_bench, ARGUMENT what it takes ("--only W2"). Prints the instructions
for one thing, by workload and number of things. Needs valgrind; the counts do not depend on what
else the machine does."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile


def profiles(directory):
    """The parts that were measured: (workload, part, number of things, instructions for one)."""
    for path in directory.glob("profile.*"):
        text = path.read_text(errors="replace")
        trigger = re.search(r"Trigger: Client Request: (.+)\|(.+)\|(\d+)\|(\d+)$", text, re.M)
        total = re.search(r"^(?:totals|summary): (\d+)$", text, re.M)
        if trigger and total:
            workload, part, size, items = trigger.groups()
            yield workload, part, int(size), int(total[1]) / int(items)


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory() as directory:
        subprocess.run(
            ["valgrind", "--quiet", "--tool=callgrind", "--collect-atstart=no",
             f"--callgrind-out-file={directory}/profile", *sys.argv[1:]],
            check=True, stdout=subprocess.DEVNULL, env={**os.environ, "LD_BIND_NOW": "1"})
        for workload, part, size, cost in sorted(profiles(pathlib.Path(directory))):
            print(f"{workload + ': ' + part:70} {size:7,} {cost:12,.0f}")


if __name__ == "__main__":
    main()
