#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
"""Compares what calls of the component cost with the numbers that are kept.

  check_cost.py --compiler NAME --valgrind PROGRAM KEPT CALL_COST LIBEXT_CM [--keep]
  check_cost.py --self-test

KEPT is a JSON file: for each platform (compiler, C library, processor), operation and length of DN
the instructions and allocations of one call. Fails if one of them has grown by more than 5 %. Ends
with 77, as a test that did not run, if no numbers are kept for this platform. With --keep what is
measured is written to KEPT.

The cost of a call is what all shared objects of the process execute for it, the C library included.
What the program CALL_COST itself executes is the host's.
"""

import argparse
import collections
import json
import os
import pathlib
import platform
import re
import subprocess
import sys
import tempfile

TOLERANCE = 0.05
NOT_RUN = 77
ALLOCATORS = {"malloc", "calloc", "realloc", "posix_memalign", "aligned_alloc"}


def read_profile(lines, program):
    """The name of a profile of callgrind, with its instructions outside `program` and its calls of
    allocators. Names in the profile are not compressed."""
    name = None
    own = 0
    allocations = 0
    caller_object = caller = callee_object = callee = None
    calls = None  # the next line has the cost of a call
    for line in lines:
        key, _, value = line.rstrip("\n").partition("=")
        if line.startswith("desc: Trigger: Client Request: "):
            name = line.rstrip("\n").removeprefix("desc: Trigger: Client Request: ")
        elif key == "ob":
            caller_object = value
        elif key == "fn":
            caller = value
        elif key == "cob":
            callee_object = value
        elif key == "cfn":
            callee = value
        elif key == "calls":
            calls = int(value.split()[0])
        elif line[:1] in "+-*0123456789" and line.strip():
            if calls is not None:
                if callee in ALLOCATORS and caller not in ALLOCATORS:
                    allocations += calls
                calls = None
            # Code of the standard library that the program happens to define for all is not its own.
            elif caller_object != program or caller.startswith("std::"):
                own += int(line.split()[1])
    return name, own, allocations


def environment():
    """That of the measured program: what would make the C library choose other code is taken out.

    It has string functions for several generations of processors, of different lengths.
    """
    kept = {name: value for name, value in os.environ.items() if not name.startswith("MALLOC_")}
    return {**kept, "LD_BIND_NOW": "1",
            "GLIBC_TUNABLES": "glibc.cpu.hwcaps=-AVX512F,-AVX512VL,-AVX512BW,-AVX2,-AVX,-BMI2,"
                              "-ERMS,-FSRM,-SSE4_2,-SSE4_1,-SSSE3"}


def measure(valgrind, program, component):
    """Operation -> length of DN -> [instructions, allocations] of one call."""
    costs = collections.defaultdict(dict)
    with tempfile.TemporaryDirectory() as directory:
        done = subprocess.run(
            [valgrind, "--quiet", "--tool=callgrind", "--compress-strings=no", "--compress-pos=no",
             f"--callgrind-out-file={directory}/profile", program, component],
            env=environment(), stdin=subprocess.DEVNULL, text=True,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        if done.returncode != 0:
            sys.exit(f"{program} ended with {done.returncode}:\n{done.stdout}")
        for path in pathlib.Path(directory).iterdir():
            with path.open(errors="replace") as lines:
                name, own, allocations = read_profile(lines, os.path.realpath(program))
            measured = re.fullmatch(r"(.+)/(\w+) (\d+)", name or "")
            if measured:
                operation, length, calls = measured.groups()
                costs[operation][length] = [
                    round(own / int(calls)), round(allocations / int(calls))]
    return costs


def growth(kept, measured):
    """Lines about all that has become dearer, and about all that is in one of the two only."""
    lines = []
    for operation in sorted(kept.keys() | measured.keys()):
        lengths = (kept.get(operation, {}), measured.get(operation, {}))
        for length in sorted(lengths[0].keys() | lengths[1].keys()):
            before, now = (costs.get(length) for costs in lengths)
            what = f"{operation}, {length} DN"
            if before is None:
                lines.append(f"{what}: no number is kept")
            elif now is None:
                lines.append(f"{what}: not measured any more")
            else:
                for unit, old, new in zip(("instructions", "allocations"), before, now):
                    if new > old * (1 + TOLERANCE):
                        lines.append(f"{what}: {new} {unit}, {old} are kept")
    return lines


def cheaper(kept, measured):
    """How many numbers lie so far below the kept ones that these allow too much."""
    return sum(
        new < old * (1 - TOLERANCE)
        for operation, lengths in measured.items()
        for length, now in lengths.items()
        for old, new in zip(kept[operation][length], now))


def write_kept(path, kept):
    path.write_text(json.dumps(kept, indent=1, sort_keys=True).replace("[\n    ", "[")
                    .replace(",\n    ", ", ").replace("\n   ]", "]") + "\n")


def self_test():
    profile = """desc: Trigger: Client Request: look/short 10
ob=/p
fn=stub()
5 100
fn=std::moved()
6 20
ob=/lib
fn=look()
7 3000
cob=/libc
cfn=malloc
calls=20 0
7 900
ob=/libc
fn=malloc
* 900
cfn=malloc
calls=3 0
9 9
""".splitlines(keepends=True)
    assert read_profile(profile, "/p") == ("look/short 10", 3920, 20)
    kept = {"look": {"short": [100, 2], "long": [200, 2]}}
    assert growth(kept, {"look": {"short": [105, 2], "long": [200, 2]}}) == []
    assert growth(kept, {"look": {"short": [106, 2], "long": [200, 3]}}) == [
        "look, long DN: 3 allocations, 2 are kept",
        "look, short DN: 106 instructions, 100 are kept"]
    assert growth(kept, {"look": {"short": [1, 0]}, "go": {"short": [1, 0]}}) == [
        "go, short DN: no number is kept", "look, long DN: not measured any more"]
    assert growth({"next": {"short": [9, 0]}}, {"next": {"short": [9, 1]}}) == [
        "next, short DN: 1 allocations, 0 are kept"]
    assert cheaper(kept, {"look": {"short": [94, 2], "long": [199, 1]}}) == 2


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("--compiler")
    parser.add_argument("--valgrind")
    parser.add_argument("--keep", action="store_true")
    parser.add_argument("kept", nargs="?", type=pathlib.Path)
    parser.add_argument("call_cost", nargs="?")
    parser.add_argument("component", nargs="?")
    arguments = parser.parse_args()
    if arguments.self_test:
        self_test()
        return
    libc = os.confstr("CS_GNU_LIBC_VERSION")
    here = f"{arguments.compiler}, {libc}, {platform.machine()}"
    all_kept = json.loads(arguments.kept.read_text())
    if here not in all_kept and not arguments.keep:
        print(f"not run: no costs are kept for {here}, only for: {'; '.join(sorted(all_kept))}. "
              "To keep what calls cost now: cmake --build --preset release --target cost_baseline")
        sys.exit(NOT_RUN)
    measured = measure(arguments.valgrind, arguments.call_cost, arguments.component)
    if not measured:
        sys.exit("callgrind has written no profile")
    if arguments.keep:
        all_kept[here] = measured
        write_kept(arguments.kept, all_kept)
        return
    dearer = growth(all_kept[here], measured)
    if dearer:
        print("\n".join(dearer))
        print("If that must be: cmake --build --preset release --target cost_baseline")
        sys.exit(1)
    print(f"{len(measured)} operations cost no more than 5 % above what is kept for {here}")
    if cheaper(all_kept[here], measured):
        print("Some cost 5 % less and more: keep that, so that it stays "
              "(cmake --build --preset release --target cost_baseline)")


main()
