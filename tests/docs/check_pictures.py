#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks that the pictures of the example network show what it is now.

usage: check_pictures.py ROOT BUILD

Draws them again and compares their texts, their boxes, and their lines with what they lead from and to
and how they look, in any order: lengths and places depend on the fonts of the machine.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

TEXT = re.compile(r"<text[^>]*>([^<]*)</text>")
# A box, line or frame: its name, and everything in it.
PART = re.compile(r'<g id="[^"]*" class="(node|edge|cluster)">(.*?)(?=<g id="[^"]*" class="(?:node|edge|cluster)">|</svg>)',
                  re.S)
TITLE = re.compile(r"<title>(.*?)</title>")
LOOK = re.compile(r' (?:fill|stroke|stroke-dasharray|stroke-width)="[^"]*"')


def contents(svg):
    """What can be seen, without places and lengths."""
    parts = [(kind, TITLE.search(part)[1], part.count("<polygon"), sorted(LOOK.findall(part)))
             for kind, part in PART.findall(svg)]
    return sorted(TEXT.findall(svg)), sorted(parts)


def main():
    root, build = pathlib.Path(sys.argv[1]), sys.argv[2]
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([root / "scripts/draw_pictures.sh", build, folder], check=True)
        drawn = sorted(pathlib.Path(folder).glob("*.svg"))
        kept = {path.name for path in (root / "docs/pictures").glob("*.svg")}
        wrong = [f"{name}: nothing draws it" for name in kept - {path.name for path in drawn}]
        for picture in drawn:
            shown = contents((root / "docs/pictures" / picture.name).read_text()) \
                if picture.name in kept else None
            drawn_now = contents(picture.read_text())
            if not all(drawn_now) or drawn_now != shown:
                wrong.append(f"{picture.name} is out of date: run scripts/draw_pictures.sh")
    print("\n".join(wrong))
    return 1 if wrong else 0


sys.exit(main())
