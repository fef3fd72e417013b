#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks that the pictures of the example network show what it is now.

usage: check_pictures.py ROOT BUILD

Draws them again and compares each box with its texts, row by row, each line with what it leads from and
to, and how all of them look; not lengths and places, which depend on the fonts of the machine.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

# The picture itself, a box, a line or a frame, up to the next one: its name is the first title.
PART = re.compile(r'<g id="[^"]*" class="(graph|node|edge|cluster)".*?(?=<g id="[^"]*" class="|</svg>)', re.S)
TITLE = re.compile(r"<title>(.*?)</title>")
# What can be seen or read of a part. Places and lengths depend on the fonts.
SEEN = re.compile(r'>([^<]*)</text>| ((?!(?:d|points|x|y|id|width|height|viewBox|transform)=)[\w:-]+="[^"]*")|'
                  r'<(polygon|path|polyline)')


def contents(svg):
    """What can be seen, part by part, without places and lengths."""
    parts = [(part[1], TITLE.search(part[0])[1], SEEN.findall(part[0])) for part in PART.finditer(svg)]
    return sorted(parts)


def self_test(svg):
    """A picture that differs must not pass as the same."""
    bold = svg.replace('font-weight="bold"', "", 1)
    tooltip = re.sub('xlink:title="[^"]*"', 'xlink:title="another"', svg, count=1)
    dashes = re.sub(r'stroke-dasharray="[^"]*"', "", svg, count=1)
    hidden = svg.replace("<path ", '<path stroke-opacity="0" ', 1)
    texts = re.findall(r">([^<>]+)</text>", svg)
    one, two = texts[0], next(text for text in texts if text != texts[0])
    exchanged = svg.replace(f">{one}</text>", ">\0</text>", 1).replace(
        f">{two}</text>", f">{one}</text>", 1).replace(">\0</text>", f">{two}</text>", 1)
    for name, changed in (("bold", bold), ("tooltips", tooltip), ("dashes", dashes), ("hidden lines", hidden),
                          ("places of texts", exchanged)):
        if changed == svg or contents(changed) == contents(svg):
            sys.exit(f"the comparison does not see {name}")


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
            if not drawn_now or drawn_now != shown:
                wrong.append(f"{picture.name} is out of date: run scripts/draw_pictures.sh")
    self_test((root / "docs/pictures/demo-after.svg").read_text())
    print("\n".join(wrong))
    return 1 if wrong else 0


sys.exit(main())
