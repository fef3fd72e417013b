#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks that pictures of objects and classes can be read: no text lies on another text, a line, the
border of a frame or a box of something else, and no line leads through a box that it does not end at.
Checks also that they are true: that each box has the right name and border, that each reference of the
data is drawn or counted as often as it is there, by its attribute, in its direction and with the right
look, between the right objects (or classes, where something is folded), and that all numbers are right.

usage: picture_overlaps.py ORVHOST GENERATOR ROOT [--keep FOLDER]

Places are taken from the SVG that orvhost writes, and the widths of texts from what Graphviz, with
the fonts of this machine, gives them. With --keep, the pictures are kept in FOLDER.
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as tree

import picture_truth

SVG = "{http://www.w3.org/2000/svg}"
NUMBER = re.compile(r"-?\d+(?:\.\d+)?(?:e-?\d+)?")
# Letters do not fill the height of their line: what is above and below the base line, in font sizes.
ABOVE, BELOW = 0.72, 0.2
POINTS_OF_CURVE = 24
# More than that are folded.
BOXES = 100


class Box:
    def __init__(self, left, top, right, bottom):
        self.left, self.top, self.right, self.bottom = left, top, right, bottom

    def meets(self, other):
        return (self.left < other.right and other.left < self.right and
                self.top < other.bottom and other.top < self.bottom)

    def smaller(self, by):
        return Box(self.left + by, self.top + by, self.right - by, self.bottom - by)

    def is_crossed(self, start, end):
        """Whether the straight line from start to end has a point inside (Liang and Barsky)."""
        low, high = 0.0, 1.0
        for at, delta, least, most in (
                (start[0], end[0] - start[0], self.left, self.right),
                (start[1], end[1] - start[1], self.top, self.bottom)):
            if delta == 0:
                if not least < at < most:
                    return False
                continue
            first, last = sorted(((least - at) / delta, (most - at) / delta))
            low, high = max(low, first), min(high, last)
        return low < high


def pairs(text):
    numbers = [float(number) for number in NUMBER.findall(text)]
    return list(zip(numbers[::2], numbers[1::2]))


def box_around(points):
    return Box(min(x for x, _ in points), min(y for _, y in points),
               max(x for x, _ in points), max(y for _, y in points))


def along(points):
    """The points of a curve of third degree, or several one after the other."""
    result = [points[0]]
    for at in range(0, len(points) - 3, 3):
        a, b, c, d = points[at:at + 4]
        for step in range(1, POINTS_OF_CURVE + 1):
            t = step / POINTS_OF_CURVE
            factors = ((1 - t) ** 3, 3 * t * (1 - t) ** 2, 3 * t * t * (1 - t), t ** 3)
            result.append(tuple(sum(f * p[axis] for f, p in zip(factors, (a, b, c, d)))
                                for axis in (0, 1)))
    return result


def shown(text):
    return text.replace("\u00a0", " ")


class Widths:
    """How wide Graphviz takes each text to be, by text, size and boldness."""

    def __init__(self, dot):
        run = subprocess.run(["dot", "-Tjson"], input=dot, capture_output=True, text=True, check=True)
        self.widths = {}
        document = json.loads(run.stdout)
        for part in [document, *document.get("objects", []), *document.get("edges", [])]:
            size, bold = 0, False
            for operation in part.get("_ldraw_", []):
                if operation["op"] == "F":
                    size = operation["size"]
                elif operation["op"] == "t":
                    bold = bool(operation["fontchar"] & 1)
                elif operation["op"] == "T":
                    text = shown(operation["text"])
                    known = self.widths.get((text, size), 0)
                    self.widths[text, size] = max(known, operation["width"])

    def of(self, text, size):
        return self.widths[shown(text), size]


class Picture:
    def __init__(self, svg, dot):
        self.texts = []  # of (text, box, name of its part)
        self.lines = []  # of (name, straight pieces)
        self.boxes = []  # of (name, box)
        self.frames = []  # of (name, straight pieces)
        self.heads = []  # of (name, boxes around the arrowheads)
        self.dot = dot
        widths = Widths(dot)
        graph = tree.fromstring(svg).find(SVG + "g")
        self.read(graph, "", widths)
        for part in graph.iter(SVG + "g"):
            if part is not graph:
                self.read_part(part, widths)

    def read_part(self, part, widths):
        kind, name = part.get("class"), part.findtext(SVG + "title")
        if kind is None:  # the link of a tooltip
            return
        self.read(part, name, widths)
        if kind == "node":
            corners = [corner for polygon in part.iter(SVG + "polygon")
                       for corner in pairs(polygon.get("points"))]
            self.boxes.append((name, box_around(corners)))
        for path in part.iter(SVG + "path"):
            points = along(pairs(path.get("d")))
            pieces = list(zip(points, points[1:]))
            (self.frames if kind == "cluster" else self.lines).append((name, pieces))
        if kind == "edge":
            self.heads.append((name, [box_around(pairs(polygon.get("points")))
                                      for polygon in part.iter(SVG + "polygon")]))

    def read(self, part, name, widths):
        # Below a tooltip, or directly; not those of parts inside.
        own = [part, *part.findall(SVG + "g")] if name else [part]
        for text in (text for place in own for link in [place, *place.findall(SVG + "a")]
                     for text in link.findall(SVG + "text")):
            size, x, y = (float(text.get(key)) for key in ("font-size", "x", "y"))
            width = widths.of(text.text or "", size)
            left = {"start": x, "middle": x - width / 2, "end": x - width}[text.get("text-anchor")]
            if (text.text or "").strip():
                self.texts.append((text.text, Box(left, y - ABOVE * size, left + width,
                                                  y + BELOW * size), name))

    def wrong_heads(self):
        """Each line has a head at the box where it ends, and at no box else unless it has two."""
        boxes = dict(self.boxes)
        for name, heads in self.heads:
            start, end = (boxes[part.split(":")[0]] for part in name.split("->"))
            at_end = [head for head in heads if head.meets(end.smaller(-1))]
            at_start = [head for head in heads if head.meets(start.smaller(-1))]
            if len(at_end) != 1 or len(heads) != len(at_end) + len(at_start):
                yield f"the line {name} has no head where it ends, or one in the wrong place"

    def overlaps(self):
        for at, (text, box, _) in enumerate(self.texts):
            for other, other_box, _ in self.texts[at + 1:]:
                if box.meets(other_box):
                    yield f"the texts '{text}' and '{other}'"
        for text, box, name in self.texts:
            for other, other_box in self.boxes:
                if other != name and box.meets(other_box):
                    yield f"the text '{text}' and the box {other}"
            for other, pieces in self.lines + self.frames:
                if any(box.is_crossed(*piece) for piece in pieces):
                    yield f"the text '{text}' and the line or frame {other}"
        for name, pieces in self.lines:
            ends = {end.split(":")[0] for end in name.split("->")}
            for other, box in self.boxes:
                if other not in ends and any(box.smaller(1).is_crossed(*piece) for piece in pieces):
                    yield f"the line {name} and the box {other}"


class Check:
    def __init__(self, orvhost, keep):
        self.orvhost, self.keep, self.failures = orvhost, keep, 0

    def run(self, *words):
        run = subprocess.run([self.orvhost, "--project", "", *words], capture_output=True, text=True,
                             check=False)
        if run.returncode != 0:
            sys.exit(f"{' '.join(map(str, words))}: {run.stderr}")
        return run.stdout

    def picture(self, name, options, graph, commands=()):
        """Draws with the options of orvhost, after the commands, what follows the word graph."""
        begin = ["begin", *commands] if commands else []
        draw = f"graph {graph}".strip()
        def drawn(line):
            words = [word for command in [*begin, line] for word in ("-c", command)]
            return self.run(*options, *words)
        with tempfile.TemporaryDirectory() as folder:
            place = pathlib.Path(self.keep or folder)
            drawn(f"{draw} --dot -o {place / name}.dot")
            drawn(f"{draw} -o {place / name}.svg")
            dot, svg = (place / f"{name}.dot").read_text(), (place / f"{name}.svg").read_text()
            drawn(f"{draw} --dot -o {place / name}.dot")
            if (place / f"{name}.dot").read_text() != dot:
                self.fail(name, "drawn again, it is not the same")
        picture = Picture(svg, dot)
        if not picture.texts or not picture.boxes:
            self.fail(name, "there is nothing in it")
        overlaps = [*picture.overlaps(), *picture.wrong_heads()]
        for overlap in overlaps:
            self.fail(name, overlap)
        print(f"{name}: {len(picture.boxes)} boxes, {len(picture.lines)} lines, "
              f"{len(picture.texts)} texts, {len(overlaps)} overlaps")
        return picture

    def fail(self, name, text):
        self.failures += 1
        print(f"{name}: {text}", file=sys.stderr)


def expect_texts(check, name, picture, *texts):
    # Texts are wrapped after a blank or a comma.
    whole = shown("".join(text for text, _, _ in picture.texts)).replace(" ", "")
    for text in texts:
        if text.replace(" ", "") not in whole:
            check.fail(name, f"'{text}' is not in it")


def expect_compact_legend(check, name, picture):
    """Long texts above the legend do not widen its samples."""
    caption = [(text, box) for text, box, part in picture.texts if not part]
    begin = min(box.left for _, box in caption)
    meanings = [box.left for text, box in caption if text.startswith("an association with")]
    if not meanings or max(meanings) - begin > 60:
        check.fail(name, f"the samples of the legend take up to {max(meanings, default=0) - begin} "
                         "points, expected at most 60")


def expect_truth(check, name, dot, data, top="", depth=1000):
    """The picture of that part of the data says what the data says, and one that does not is found."""
    for error in picture_truth.errors(dot, data, top, depth):
        check.fail(name, error)


# What would be wrong in a picture, as changes of its text: each must be found in some picture.
LIES = {
    "titles exchanged": lambda dot: exchanged(dot, r"(?<=<B>)[^<(]*"),
    "a row has another attribute": lambda dot: re.sub(r'(PORT="p0"><FONT[^>]*>)\w+', r"\1wrongRef", dot, 1),
    "solid lines are dashed": lambda dot: dot.replace(' [style="solid"', ' [style="dashed"'),
    "dashed lines are solid": lambda dot: dot.replace(' [style="dashed"', ' [style="solid"'),
    "dashed lines are dotted": lambda dot: dot.replace(' [style="dashed"', ' [style="dotted"'),
    "a line is missing": lambda dot: re.sub(r' *n\d+:.*\n', "", dot, 1),
    "a line leads back": lambda dot: re.sub(r'(n\d+:p\d+) -> (n\d+:title)', r"\2 -> \1", dot, 1),
    "a line both ways leads one way": lambda dot: dot.replace(', dir="both"', "", 1),
    "a line ends elsewhere": lambda dot: re.sub(r"-> n\d+:title", "-> n0:title", dot),
    "more objects in a folded box": lambda dot: re.sub(
        r"× (\d+)</B>", lambda found: f"× {int(found[1]) + 7}</B>", dot, 1),
    "more references in a row": lambda dot: re.sub(
        r"×(\d+)", lambda found: f"×{int(found[1]) + 1}", dot, 1),
    "more objects below": lambda dot: re.sub(
        r"\((\d+) below", lambda found: f"({int(found[1]) + 3} below", dot, 1),
    "no thick border": lambda dot: dot.replace(' BORDER="2"', ' BORDER="1"'),
    "a thick border": lambda dot: re.sub(r' BORDER="1"( COLOR[^>]*><TR><TD ALIGN="LEFT" PORT)',
                                         r' BORDER="2"\1', dot, 1),
    "another number below": lambda dot: re.sub(
        r"(\d+) reference", lambda found: f"{int(found[1]) + 1} reference", dot, 1),
    "a box in another frame": lambda dot: moved(dot, r" *n\d+ \[label=<.*<B>Antenna=.*\n",
                                                r" *n0 \[label.*\n"),
    "no frames": lambda dot: re.sub(r"subgraph cluster_", "subgraph other_", dot),
    "the legend exchanged": lambda dot: dot.replace("an association with references both ways", "?").replace(
        "a reference of an association, one way", "an association with references both ways").replace(
        "?", "a reference of an association, one way"),
    "no legend": lambda dot: re.sub(r">a reference[^<]*<", "><", dot),
    "lines that cannot be seen": lambda dot: dot.replace('style="dashed"', 'style="dashed", color="#00000000"'),
    "another number of violations": lambda dot: dot.replace("0 violations", "5 violations"),
    "another title": lambda dot: re.sub(r">[^<]*: (\d+ object)", r">Elsewhere=1: \1", dot, 1),
    "lines to another of the class": lambda dot: exchanged(
        dot, r"(?<=tooltip=\")[^\"]*NRFrequency=[^\"]*(?=\")"),
    "dashed border inside": lambda dot: re.sub(r"(BORDER=.1. [^>]*)>", r'\1 STYLE="DASHED">', dot, 1),
}


def expect_red(check, name, dot, boxes, rows):
    """Exactly those boxes, by their DNs, and rows, by DN and text, are red."""
    found = picture_truth.Drawn(dot)
    red = {node.dn for node in found.nodes.values() if node.is_red}
    red_rows = {f"{node.dn} {row}" for node in found.nodes.values() for row in node.red_rows}
    if (red, red_rows) != (boxes, rows):
        check.fail(name, f"red are {sorted(red)} and {sorted(red_rows)}")


def expect_part(check, name, options, dot, data):
    """The part that a folded picture names is the largest one that is drawn without folding."""
    top = re.search("'graph ([^']*)' draws", dot)[1]
    part = check.run(*options, "-c", f"graph --dot {top}")
    if picture_truth.Drawn(part).is_folded:
        check.fail(name, f"'graph {top}' is folded, too")
    expect_truth(check, f"{name} {top}", part, data, top)
    size, largest = len(data.part(top, 1000)), data.largest_part(BOXES)
    if size != largest:
        check.fail(name, f"'graph {top}' has {size} objects, the largest part {largest}")


def exchanged(text, pattern):
    """The text with its first two different parts that fit the pattern exchanged."""
    first = re.search(pattern, text)
    second = next((part for part in re.finditer(pattern, text) if part[0] != first[0]), None)
    return text if not second else (text[:first.start()] + second[0] + text[first.end():second.start()] + first[0] +
            text[second.end():])


def moved(text, pattern, place):
    """The text with the first part that fits the pattern behind what fits the other one."""
    part, behind = re.search(pattern, text), re.search(place, text)
    if not part or not behind:
        return text
    return text[:behind.end()] + part[0] + text[behind.end():part.start()] + text[part.end():]


def expect_lies_found(check, pictures):
    """The pictures are (dot, data, top, depth)."""
    for name, lie in LIES.items():
        changed = [(lie(dot), *rest) for dot, *rest in pictures if lie(dot) != dot]
        if not changed:
            check.fail("lies", f"{name}: no picture has what this changes")
        for dot, *rest in changed:
            if not any(picture_truth.errors(dot, *rest)):
                check.fail("lies", f"{name}: not found")


def self_test():
    """A picture with one overlap of each kind must not pass."""
    dot = 'digraph { a [label="one" pos="0,0!"]; }'
    svg = ('<svg xmlns="http://www.w3.org/2000/svg"><g class="graph">'
           '<g class="node"><title>a</title><polygon points="0,0 50,0 50,20 0,20"/>'
           '<text text-anchor="start" x="2" y="12" font-size="14.00">one</text></g>'
           '<g class="node"><title>b</title><polygon points="10,5 60,5 60,25 10,25"/>'
           '<text text-anchor="start" x="12" y="16" font-size="14.00">one</text></g>'
           '<g class="edge"><title>c-&gt;d</title><path d="M-5,10C10,10 20,10 70,10"/></g>'
           '</g></svg>')
    found = " | ".join(Picture(svg, dot).overlaps())
    back = svg.replace("c-&gt;d", "a:p0-&gt;b:p0").replace(
        "</g></g></svg>", '<polygon points="0,4 2,4 1,6"/></g></g></svg>').replace(
        "10,5 60,5 60,25 10,25", "80,5 90,5 90,25 80,25")
    if not list(Picture(back, dot).wrong_heads()):
        sys.exit("the measurement does not see an arrowhead at the wrong end")
    for kind in ("the texts 'one' and 'one'", "the text 'one' and the box", "and the line or frame c",
                 "the line c->d and the box a"):
        if kind not in found:
            sys.exit(f"the measurement does not see {kind}: {found}")


def main():
    orvhost, generator, root = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    self_test()
    check = Check(orvhost, sys.argv[5] if len(sys.argv) > 5 else None)
    model = ["-I", str(root / "examples/models"), "-m", "ran-element", "-m", "ran-equipment",
             "-m", "ran-function"]
    harbour = [*model, "-d", str(root / "examples/data/harbour.json"), "--me-id", "Harbour"]
    equipment = "ManagedElement=Harbour,Equipment=1"
    radio_unit = f"{equipment},RadioUnit=1"
    antenna = f"{equipment},AntennaUnit=2,Antenna=1"

    check.picture("demo-before", harbour, radio_unit)
    check.picture("demo-after", harbour, radio_unit, [f"set {radio_unit} antennaRef={antenna}"])
    data = picture_truth.Data(root / "examples/data/harbour.json", root / "examples/models", "Harbour")
    pictures = []
    for name, top, depth in (("harbour", "", 1000), ("equipment", equipment, 1000), ("level", "", 2),
                             ("equipment-alone", equipment, 0)):
        graph = top + (f" --depth {depth}" if depth < 1000 else "")
        pictures.append((check.picture(name, harbour, graph).dot, data, top, depth))
        expect_truth(check, name, *pictures[-1])
    changes = [f"create {equipment},RadioUnit=3 antennaRef={antenna}",
               f"create {equipment},RadioUnit=4 antennaRef={antenna} "
               f"sectorRef={equipment},Sector=nowhere"]
    wrong = check.picture("violations", harbour, equipment, changes)
    expect_texts(check, "violations", wrong, "expected 0..2", "red:",
                 f"attribute sectorRef names {equipment},Sector=nowhere, which does not exist.",
                 f"{equipment},RadioUnit=4: attribute sectorRef")
    expect_compact_legend(check, "violations", wrong)
    expect_red(check, "violations", wrong.dot,
               {antenna, f"{equipment},RadioUnit=4", f"{equipment},Sector=nowhere"},
               {f"{equipment},RadioUnit=4 sectorRef", f"{antenna} radioUnitRef"})

    long_name = "long" * 50
    odd = ["R&D &amp 'too'", "Höhe 塔", "two  blanks", "{a|b}", long_name]
    names = check.picture("odd-names", harbour, equipment,
                          [f'create "{equipment},Cabinet={name}"' for name in odd])
    whole = shown("".join(text for text, _, _ in names.texts))
    for name in odd:
        if f"Cabinet={name}" not in whole:
            check.fail("odd-names", f"'{name}' is not in it")

    check.picture("classes", model, "--classes")
    check.picture("classes-part", model, "--classes Equipment")
    with tempfile.TemporaryDirectory() as folder:
        for count, options in ((15, ("",)), (60, ("",)), (140, ("", "--unfold")), (1000, ("",)),
                               (20000, ("",))):
            file = f"{folder}/{count}.json"
            subprocess.run([generator, "-n", str(count), file], check=True, capture_output=True)
            data = picture_truth.Data(file, root / "examples/models")
            for option in options:
                name = f"{count}{option}"
                picture = check.picture(name, [*model, "-d", file], option)
                dot = picture.dot
                expect_truth(check, name, dot, data)
                if count > 100 and not option:
                    expect_texts(check, name, picture, "NRCellRelation × ", "folded")
                    expect_part(check, name, [*model, "-d", file], dot, data)
                if count <= 140:
                    pictures.append((dot, data))
    expect_lies_found(check, pictures)
    return 1 if check.failures else 0


sys.exit(main())
