#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks that the C++ in a document is, to the letter, that of compiled sources.

usage: check_snippets.py ROOT DOCUMENT

Above each C++ block of the document stands a comment `<!-- from PATH [NAME] -->`. The text is what
stands in the file between the lines `// [NAME]` and `// [/NAME]`.
"""

import pathlib
import re
import sys

BLOCK = re.compile(r"(?:<!-- from (\S+) \[([\w-]+)\] -->\n\n?)?^```cpp\n(.*?)^```$",
                   re.MULTILINE | re.DOTALL)


def marked(text, name):
    match = re.search(rf"^ *// \[{name}\]\n(.*?)^ *// \[/{name}\]$", text, re.MULTILINE | re.DOTALL)
    return match.group(1) if match else None


def problem_of(root, path, name, block):
    if path is None:
        return "a C++ block without a source:\n" + block
    source = root / path
    if not source.is_file():
        return f"{path}: no such file"
    wanted = marked(source.read_text(), name)
    if wanted is None:
        return f"{path}: no part marked [{name}]"
    if wanted.strip("\n") != block.strip("\n"):
        return f"{path} [{name}] differs; it reads now:\n{wanted}"
    return None


def main():
    root, document = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    blocks = BLOCK.findall(document.read_text())
    if not blocks:
        sys.exit(f"{document.name}: no C++ blocks")
    problems = [
        problem
        for path, name, block in blocks
        if (problem := problem_of(root, path or None, name, block)) is not None
    ]
    print("\n".join(problems))
    sys.exit(1 if problems else 0)


main()
