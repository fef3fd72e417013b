#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Compiles public headers as their users include them: alone, and as <orv/NAME.h>.

usage: check_headers.py COMPILER STANDARD DIRECTORY [NAME...]

DIRECTORY, which has the folder `orv`, is the only directory of ours on the include path. Without
names all headers of the folder are compiled. Each header is included twice, so that a missing
include guard shows. Warnings are errors.
"""

import pathlib
import subprocess
import sys

# The headers are not taken as those of the system, so the compiler reports warnings in them.
WARNINGS = [
    "-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wnon-virtual-dtor",
    "-Wcast-qual", "-Wformat=2", "-Werror",
]


def compile_alone(compiler, standard, directory, name):
    source = f"#include <orv/{name}>\n" * 2
    command = [compiler, f"-std={standard}", *WARNINGS, f"-I{directory}", "-fsyntax-only", "-x",
               "c++", "-"]
    return subprocess.run(command, input=source, text=True, capture_output=True)


def main():
    compiler, standard, directory, *names = sys.argv[1:]
    names = names or sorted(path.name for path in (pathlib.Path(directory) / "orv").glob("*.h"))
    if not names:
        sys.exit(f"{directory}: no headers")
    failed = 0
    for name in names:
        result = compile_alone(compiler, standard, directory, name)
        if result.returncode != 0:
            failed += 1
            print(f"{name} does not stand alone:\n{result.stderr}")
    print(f"{len(names) - failed} of {len(names)} headers compile alone as {standard}")
    sys.exit(1 if failed else 0)


main()
