#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
"""Runs the examples of docs/vendor-modules.md on public YANG modules, with the lines of that page.

ORV_PUBLIC_MODULES names the directory with the modules; without it the script ends with status 77,
which CTest shows as "not run".
"""

import argparse
import os
import pathlib
import re
import shlex
import subprocess
import sys

SKIPPED = 77
LIMIT = 120  # seconds for one line


def lines_of(page):
    """The lines of the page that run a script, with continuation lines joined."""
    text = page.read_text().replace("\\\n", " ")
    return re.findall(r"^orvhost .* -f \S+$", text, re.MULTILINE)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("orvhost", help="the program orvhost")
    parser.add_argument("--option", action="append", default=[], help="an option for orvhost")
    parser.add_argument("--expect", type=int, required=True, help="how many lines there are")
    options = parser.parse_args()
    root = os.environ.get("ORV_PUBLIC_MODULES")
    if not root:
        print("ORV_PUBLIC_MODULES does not name a directory of public YANG modules")
        return SKIPPED
    project = pathlib.Path(__file__).resolve().parents[2]
    lines = lines_of(project / "docs" / "vendor-modules.md")
    if len(lines) != options.expect:
        print(f"{len(lines)} lines, expected {options.expect}")
        return 1
    failed = 0
    for line in lines:
        words = shlex.split(line.replace("$MODULES", root))[1:]
        result = subprocess.run([options.orvhost, *options.option, *words], cwd=project,
                                capture_output=True, text=True, timeout=LIMIT,
                                stdin=subprocess.DEVNULL)
        if result.returncode != 0:
            failed += 1
            print(f"{line}\nended with {result.returncode}\n{result.stdout}{result.stderr}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
