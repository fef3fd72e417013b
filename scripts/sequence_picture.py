#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Draws the sequence pictures of the documents as SVG, for the site.

usage: sequence_picture.py <TEXT >PICTURE

TEXT is what stands in a block `mermaid` of a page. Of that language these lines are known; a forge
draws them itself:

  sequenceDiagram
    participant S as Some name
    S->>T: a call
    S-->>T: an answer
    Note over S: one participant, or two with a comma between
"""

import html
import re
import sys

GAP, STEP, MARGIN, LETTER = 170, 34, 20, 6.6
ARROW = re.compile(r"(\w+)(--?>>)(\w+): (.+)")
STYLE = """text{font:12px sans-serif;fill:#222}.line{stroke:#335;fill:none}
.life{stroke:#aab;stroke-dasharray:3 4}.box{fill:#eef2fa;stroke:#335}
.note{fill:#fff6d5;stroke:#b90}.answer{stroke-dasharray:5 4}"""


def parse(text):
    """The names of the participants by their letters, and what happens, line by line."""
    lines = [line.strip() for line in text.splitlines() if line.strip()]
    if not lines or lines[0] != "sequenceDiagram":
        raise ValueError("the first line must be sequenceDiagram")
    names, events = {}, []
    for line in lines[1:]:
        if re.search("[;#]", line):
            raise ValueError(f"; and # have a meaning of their own for a forge: {line}")
        if match := re.fullmatch(r"participant (\w+)(?: as (.+))?", line):
            names[match[1]] = match[2] or match[1]
        elif match := re.fullmatch(r"Note over (\w+)(?:,(\w+))?: (.+)", line):
            events.append(("note", match[1], match[2] or match[1], match[3]))
        elif match := ARROW.fullmatch(line):
            events.append(("answer" if match[2] == "-->>" else "call", match[1], match[3], match[4]))
        else:
            raise ValueError(f"not understood: {line}")
    unknown = {end for _, *ends, _ in events for end in ends} - names.keys()
    if unknown or not events:
        raise ValueError(f"not declared: {', '.join(sorted(unknown))}" if unknown
                         else "nothing happens")
    return names, events


def text_at(x, y, text, anchor="middle"):
    return f'<text x="{x:g}" y="{y:g}" text-anchor="{anchor}">{html.escape(text)}</text>'


def box(x, y, width, height, kind):
    return f'<rect x="{x:g}" y="{y:g}" width="{width:g}" height="{height:g}" rx="3" class="{kind}"/>'


def draw_event(kind, left, right, text, y):
    """The elements of one event between the places \\p left and \\p right."""
    if kind == "note":
        width = max(abs(right - left) + 60, len(text) * LETTER + 16)
        middle = (left + right) / 2
        return [box(middle - width / 2, y - 18, width, 24, "note"), text_at(middle, y - 2, text)]
    style = f'class="line {kind}" marker-end="url(#tip)"'
    if left == right:
        return [f'<path d="M{left:g} {y - 12:g} h26 v12 h-24" {style}/>',
                text_at(left + 32, y - 3, text, "start")]
    return [f'<path d="M{left:g} {y:g} H{right:g}" {style}/>',
            text_at((left + right) / 2, y - 5, text)]


def gaps(letters, events):
    """How far each participant stands from the one before it, so that texts have their place."""
    widths = [GAP] * len(letters)
    for kind, first, second, text in events:
        left, right = sorted((letters.index(first), letters.index(second)))
        need = len(text) * LETTER + 30
        if kind != "note" and left == right:
            right = min(left + 1, len(letters) - 1)
        have = sum(widths[left + 1:right + 1])
        if left != right and have < need:
            widths[right] += need - have
    return widths


def draw(text):
    """The picture as SVG. \\throws ValueError if the text is not understood."""
    names, events = parse(text)
    letters = list(names)
    places, x = {}, MARGIN + 70
    for letter, gap in zip(letters, gaps(letters, events)):
        x += gap if places else 0
        places[letter] = x
    bottom = 50 + STEP * (len(events) + 1)
    parts = []
    for letter, name in names.items():
        at, width = places[letter], max(100, len(name) * LETTER + 20)
        parts += [f'<path d="M{at:g} 40 V{bottom:g}" class="line life"/>',
                  box(at - width / 2, 12, width, 28, "box"), text_at(at, 30, name)]
    for number, (kind, left, right, words) in enumerate(events):
        parts += draw_event(kind, places[left], places[right], words, 50 + STEP * (number + 1))
    last = letters[-1]
    width = x + 90 + max([0] + [len(words) * LETTER for kind, left, right, words in events
                                if left == right == last])
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width:g} {bottom + 10:g}" '
            f'width="{width:g}" style="max-width:none" role="img"><style>{STYLE}</style>'
            '<defs><marker id="tip" viewBox="0 0 8 8" refX="8" refY="4" markerWidth="8" markerHeight="8" orient="auto">'
            '<path d="M0 0 L8 4 L0 8 z" fill="#335"/></marker></defs>' + "".join(parts) + "</svg>")


if __name__ == "__main__":
    print(draw(sys.stdin.read()))
