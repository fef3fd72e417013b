#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Compiles each header of a directory alone, as the first and only thing in a source.

usage: check_headers.py COMPILER STANDARD DIRECTORY [-IDIRECTORY...]

DIRECTORY is on the include path as well. Each header is included twice, so that a missing include
guard shows. Warnings are errors.
"""

import pathlib
import subprocess
import sys

WARNINGS = [
    "-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Wnon-virtual-dtor",
    "-Wcast-qual", "-Wformat=2", "-Werror",
]


def compile_alone(compiler, standard, header, flags):
    source = f'#include "{header.name}"\n#include "{header.name}"\n'
    command = [compiler, f"-std={standard}", *WARNINGS, *flags, "-fsyntax-only", "-x", "c++", "-"]
    return subprocess.run(command, input=source, text=True, capture_output=True)


def main():
    compiler, standard, directory, *flags = sys.argv[1:]
    headers = sorted(pathlib.Path(directory).glob("*.h"))
    if not headers:
        sys.exit(f"{directory}: no headers")
    failed = 0
    for header in headers:
        result = compile_alone(compiler, standard, header, [f"-I{directory}", *flags])
        if result.returncode != 0:
            failed += 1
            print(f"{header.name} does not stand alone:\n{result.stderr}")
    print(f"{len(headers) - failed} of {len(headers)} headers compile alone as {standard}")
    sys.exit(1 if failed else 0)


main()
