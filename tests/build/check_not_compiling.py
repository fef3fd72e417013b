#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks that a source compiles, and that the mistake in it does not.

usage: check_not_compiling.py COMPILER STANDARD SOURCE [FLAG...]

The source must compile as it is, and must not with MISTAKE defined; then the compiler must say what
the source announces in a line `// expect: TEXT`.
"""

import pathlib
import re
import subprocess
import sys


def compile_source(compiler, standard, source, flags):
    command = [compiler, f"-std={standard}", "-fsyntax-only", *flags, source]
    return subprocess.run(command, text=True, capture_output=True)


def main():
    compiler, standard, source, *flags = sys.argv[1:]
    announced = re.search(r"^// expect: (.+)$", pathlib.Path(source).read_text(), re.MULTILINE)
    if announced is None:
        sys.exit(f"{source}: does not say what to expect")
    sound = compile_source(compiler, standard, source, flags)
    if sound.returncode != 0:
        sys.exit(f"does not compile without the mistake:\n{sound.stderr}")
    mistaken = compile_source(compiler, standard, source, [*flags, "-DMISTAKE"])
    if mistaken.returncode == 0:
        sys.exit("compiles with the mistake")
    if announced.group(1) not in mistaken.stderr:
        sys.exit(f"fails without saying '{announced.group(1)}':\n{mistaken.stderr}")


main()
