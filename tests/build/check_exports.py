#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks what a shared object shows and what it needs.

usage: check_exports.py component|helpers|recorder|sample SHARED-OBJECT

Needs nm and readelf.
"""

import re
import subprocess
import sys

ENTRIES = ["orvLCMinit", "orvLCMterminate"]

BASE = "OrvExtCmRouterService::MoInterceptorBase"
REPOSITORY = "OrvExtCmRouterService::ExtCmInterceptorRepository"

BASE_MEMBERS = [
    "MoInterceptorBase", "~MoInterceptorBase", "initialize", "getMoAttribute", "getMoAttributes",
    "setMoAttribute", "setMoAttributes", "newMoIterator", "nextMo", "createMo", "deleteMo",
    "action", "finalizeMoIterator", "existsMo", "countMoChildren",
]
REPOSITORY_MEMBERS = [
    "ExtCmInterceptorRepository", "~ExtCmInterceptorRepository", "registerClass",
    "deregisterClass", "getInterceptor",
]
COMPONENT_REQUIRED = (
    ENTRIES
    + [f"{BASE}::{member}(" for member in BASE_MEMBERS]
    + [f"{REPOSITORY}::{member}(" for member in REPOSITORY_MEMBERS]
    + [f"vtable for {BASE}", f"typeinfo for {BASE}", f"typeinfo name for {BASE}"]
)
COMPONENT_ALLOWED = re.compile(
    "|".join([
        *(f"{entry}$" for entry in ENTRIES),
        # Members themselves, and nothing of what stands inside them.
        rf"({BASE}|{REPOSITORY})::[~\w]+\([^()]*\)( const)?$",
        rf"(vtable|typeinfo|typeinfo name) for ({BASE}|{REPOSITORY})$",
    ])
)
# Instantiations of the standard library have default visibility of their own.
SAMPLE_ALLOWED = re.compile("|".join([*(f"{entry}$" for entry in ENTRIES), r".*\bstd::"]))

RUNTIME = r"lib(stdc\+\+|gcc_s|c|m|pthread|dl)\.so|ld-linux"
SANITIZERS = r"lib(asan|ubsan|tsan|lsan)\.so"
COMPONENT_NEEDED = re.compile(f"libPocoFoundation|liborv_common|{RUNTIME}|{SANITIZERS}")
HELPERS_NEEDED = re.compile(f"{RUNTIME}|{SANITIZERS}")
SAMPLE_NEEDED = re.compile(f"libext_cm|{COMPONENT_NEEDED.pattern}")


def output_of(*command):
    return subprocess.run(command, text=True, capture_output=True, check=True).stdout


def exported(library):
    lines = output_of("nm", "-D", "--defined-only", "--demangle", library).splitlines()
    return [line.split(" ", 2)[2] for line in lines]


def needed(library):
    return re.findall(r"\(NEEDED\).*\[(.+)\]", output_of("readelf", "-d", library))


def missing(symbols, required):
    for wanted in required:
        if not any(symbol == wanted or symbol.startswith(wanted) for symbol in symbols):
            yield f"not exported: {wanted}"


def surplus(names, allowed, what):
    for name in names:
        if not allowed.match(name):
            yield f"{what}: {name}"


def problems(kind, library):
    symbols = exported(library)
    if kind == "component":
        yield from missing(symbols, COMPONENT_REQUIRED)
        yield from surplus(symbols, COMPONENT_ALLOWED, "exported beyond the contract")
        yield from surplus(needed(library), COMPONENT_NEEDED, "needed beyond the contract")
    elif kind == "helpers":
        yield from surplus(needed(library), HELPERS_NEEDED, "needed beyond the contract")
    else:
        yield from missing(symbols, ENTRIES)
        yield from surplus(symbols, SAMPLE_ALLOWED, "exported beyond the entries")
        # The recorder opens the component that it is told, and needs none of its own.
        allowed = COMPONENT_NEEDED if kind == "recorder" else SAMPLE_NEEDED
        yield from surplus(needed(library), allowed, "needed beyond the contract")


def main():
    kind, library = sys.argv[1:]
    found = list(problems(kind, library))
    print("\n".join(found))
    sys.exit(1 if found else 0)


main()
