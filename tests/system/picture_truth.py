# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""What a picture of objects says, read from its text for Graphviz, beside what the data says, read from
the file of instance data and the YANG modules. Nothing of orvhost is used for the second."""

import collections
import html
import json
import pathlib
import re

NODE = re.compile(r'^ *(n\d+) \[label=<(.*)>, tooltip="(.*)"\]', re.M)
TITLE = re.compile(r'PORT="title"><FONT[^>]*><B>(.*?)</B>')
ROW = re.compile(r'PORT="(p\d+)"><FONT COLOR="([^"]*)"[^>]*>(.*?)</FONT>')
EDGE = re.compile(r'^ *(n\d+):(\w+) -> (n\d+):(\w+) \[style="(\w+)"(.*)\]', re.M)
FOLDED = re.compile(r"(\w+) × (\d+)")
SUMMARY = re.compile(r">([^<]*): (\d+) objects?(?: \(\d+ below\))?, (\d+) references?, (\d+) violations?<")
# A row of the legend with a line, and what lines look like.
LEGEND = re.compile(r'STYLE="(solid|dashed|dotted)" WIDTH="24" HEIGHT="6"></TD>.*?</TABLE></TD>'
                    r'<TD ALIGN="LEFT"[^>]*><FONT[^>]*>(.*?)</FONT>')
MEANINGS = {"solid": "an association with references both ways",
            "dashed": "a reference of an association, one way",
            "dotted": "a reference without an association"}
RED = "#d00000"


def ends_of(row):
    """The [(attribute, number of references)] of one end."""
    for part in row.split(", "):
        name, _, count = part.replace(" ↺", "").partition(" ×")
        yield name, int(count or 1)


def plain(markup, line_end=""):
    """The text. A line of it ends after a blank or a comma, or where it must."""
    return html.unescape(re.sub("<[^>]*>", line_end, markup))


def frames_of(dot):
    """For each node, the one that the frame around it belongs to."""
    owners, frames = [], {}
    for line in dot.split("\n"):
        opened = re.match(r" *subgraph cluster_(n\d+) \{", line)
        node = re.match(r" *(n\d+) \[label", line)
        if opened:
            owners.append(opened[1])
        elif line.strip() == "}" and owners:
            owners.pop()
        elif node:
            around = [owner for owner in owners if owner != node[1]]
            frames[node[1]] = around[-1] if around else None
    return frames


class Node:
    def __init__(self, label, tooltip):
        lines = [line for line in plain(TITLE.search(label)[1], "\n").split("\n") if line]
        self.is_missing = lines[-1] in ("is not there", "are not there")
        self.below = int(lines[-1].strip("(").split()[0]) if lines[-1].endswith(" below)") else 0
        # Long names are wrapped.
        self.title = "".join(lines[:-1] if self.is_missing or self.below else lines)
        folded = FOLDED.fullmatch(self.title)
        self.count = int(folded[2]) if folded else 1
        self.dn = tooltip.split("the first: ")[-1]
        self.class_name = folded[1] if folded else self.dn.split(",")[-1].split("=")[0]
        self.is_folded = bool(folded)
        self.is_thick = ' BORDER="2" ' in label
        self.is_dashed = ' STYLE="DASHED"' in label
        self.is_red = f' COLOR="{RED}" BGCOLOR' in label
        self.rows = {port: plain(row) for port, _, row in ROW.findall(label)}
        self.red_rows = {plain(row) for _, colour, row in ROW.findall(label) if colour == RED}


class Drawn:
    """What is drawn. References are (holder, attribute, target, look), each as often as it is told;
    holder and target are DNs, or of folded boxes their classes."""

    def __init__(self, dot):
        self.dot = dot
        self.nodes = {name: Node(label, html.unescape(tip)) for name, label, tip in NODE.findall(dot)}
        self.alone = {node.dn for node in self.nodes.values() if not node.is_folded}
        self.is_folded = any(node.is_folded for node in self.nodes.values())
        self.references = collections.Counter()
        self.odd = []
        self.frames = frames_of(dot)
        for node in self.nodes.values():
            for row in node.rows.values():
                if "↔" in row or "↺" in row:
                    for end in row.split(" ↔ "):
                        self.add(node, end, node, "↔" if "↔" in row else "↺")
        for start, start_port, end, end_port, look, rest in EDGE.findall(dot):
            start, end = self.nodes[start], self.nodes[end]
            self.add(start, start.rows.get(start_port, "no row"), end, look)
            if 'dir="both"' in rest:
                self.add(end, end.rows.get(end_port, "no row"), start, look)
            elif rest:
                self.odd.append(f"a line has also{rest}")
            elif end_port != "title":
                self.references[self.key(start), "ends at a row of", self.key(end), look] += 1

    def key(self, node):
        return node.class_name if node.is_folded else node.dn

    def key_of(self, dn):
        """The key of the box of an object: the boxes decide which are folded."""
        return dn if dn in self.alone else class_of(dn)

    def add(self, start, row, end, look):
        for attribute, count in ends_of(row):
            self.references[self.key(start), attribute, self.key(end), look] += count


class Data:
    """The objects and references of a file of instance data of the example models."""

    def __init__(self, path, models, identity="1"):
        self.identity = identity
        self.objects, self.references = [], []
        self.read(json.loads(pathlib.Path(path).read_text()), "", "")
        self.known = set(self.objects)
        self.opposites, self.associated = collections.defaultdict(set), set()
        for module in pathlib.Path(models).glob("ran-*.yang"):
            for name, body in re.findall(r"leaf(?:-list)? (\w+) \{([^{}]*type orv:reference[^{}]*)\}",
                                         module.read_text()):
                for kind, text in re.findall(r'orv:(bidirectional|unidirectional) "([^"]*)"', body):
                    self.associated.add(name)
                    if kind == "bidirectional":
                        self.opposites[name].add(tuple(text.split()[0].split(".")))

    def name(self, dn):
        return re.sub("^ManagedElement=1(?=,|$)", f"ManagedElement={self.identity}", dn)

    def read(self, value, holder, path):
        if isinstance(value, str):
            if value.startswith("ManagedElement=") and path:
                self.references.append((holder, path, self.name(value)))
        elif isinstance(value, list):
            for one in value:
                self.read(one, holder, path)
        elif isinstance(value, dict):
            for key, inner in value.items():
                name = key.split(":")[-1]
                naming = name[:1].lower() + name[1:] + "Id"
                for one in inner if isinstance(inner, list) else [inner]:
                    if name[:1].isupper() and isinstance(one, dict) and naming in one:
                        dn = self.name(f"{holder},{name}={one[naming]}".lstrip(","))
                        self.objects.append(dn)
                        self.read(one, dn, "")
                    else:
                        self.read(one, holder, f"{path}.{name}".lstrip("."))

    def part(self, top, depth):
        levels = top.count(",") + 1 if top else 0
        return [dn for dn in self.objects if (not top or dn == top or dn.startswith(top + ","))
                and dn.count(",") + 1 - levels <= depth]

    def back_references(self, holder, attribute, target, known):
        """The attributes of the target that refer back, for associations with both ends."""
        return {back for name, back in self.opposites[attribute]
                if name == class_of(target) and (target, back, holder) in known}

    def references_of(self, objects):
        """As those of Drawn, with DNs. A reference in a struct, "endA.unitRef", has no association."""
        inside, known = set(objects), set(self.references)
        for holder, attribute, target in self.references:
            if holder in inside:
                both = self.back_references(holder, attribute, target, known)
                look = "solid" if both else "dashed" if attribute in self.associated else "dotted"
                yield holder, attribute, target, look
                # What it leads back to, if that stands outside, is drawn as the other end.
                for back in sorted(both) if target not in inside else []:
                    yield target, back, holder, look

    def largest_part(self, boxes):
        """How many objects the largest part has that is drawn without folding."""
        below, outside = collections.Counter(), collections.defaultdict(set)
        def tops(dn):
            steps = dn.split(",")
            return [",".join(steps[:count]) for count in range(1, len(steps) + 1)]
        for dn in self.objects:
            below.update(tops(dn))
        for holder, _, target in self.references:
            for top in tops(holder):
                if below[top] <= boxes and target != top and not target.startswith(top + ","):
                    outside[top].add(target)
        return max((size for top, size in below.items()
                    if size > 1 and size + len(outside[top]) <= boxes), default=0)


def class_of(dn):
    return dn.split(",")[-1].split("=")[0]


def errors(dot, data, top="", depth=1000):
    """What the picture of that part of the data, without violations, says that is not so."""
    drawn = Drawn(dot)
    objects = data.part(top, depth)
    inside = set(objects)
    references = list(data.references_of(objects))
    summary = SUMMARY.search(dot)
    roots = [dn for dn in objects if "," not in dn]
    title = top or (roots[0] if len(roots) == 1 else "/")
    told = (title, str(len(objects)), str(len(references)), "0")
    if not summary or summary.groups() != told:
        yield f"what stands below is not {told}"
    yield from drawn.odd
    if any(node.is_red for node in drawn.nodes.values()) or RED in dot:
        yield "something is red"
    yield from wrong_references(drawn, references)
    yield from wrong_frames(drawn, inside)
    yield from wrong_legend(drawn)
    yield from wrong_boxes(drawn, data, inside, {target for _, _, target, _ in references} - inside)


def wrong_references(drawn, references):
    """Between objects of a folded box there are no lines: its row tells whether both refer to each
    other. Which objects are in a box, the boxes decide."""
    expected = collections.Counter()
    for holder, attribute, target, look in references:
        start, end = drawn.key_of(holder), drawn.key_of(target)
        both = look == "solid" and holder != target
        is_row = start == end and holder in drawn.alone
        expected[start, attribute, end, ("↔" if both else "↺") if is_row else look] += 1
    found = drawn.references
    within = {key[:3] for key in [*expected, *found] if key[0] == key[2] and key[0] not in drawn.alone}
    for key in sorted({(*key[:3], "both") if key[:3] in within and key[3] in ("solid", "↔") else
                       (*key[:3], "one") if key[:3] in within else key for key in [*expected, *found]}):
        looks = {"both": ("solid", "↔"), "one": ("dashed", "dotted", "↺")}.get(key[3], (key[3],))
        counts = [sum(counter[(*key[:3], look)] for look in looks) for counter in (expected, found)]
        if counts[0] != counts[1]:
            yield f"{' '.join(key)}: {counts[1]} drawn, the data has {counts[0]}"


def wrong_frames(drawn, inside):
    for name, owner in drawn.frames.items():
        node = drawn.nodes[name]
        parent = node.dn.rpartition(",")[0]
        expected = drawn.key_of(parent) if node.dn in inside and parent in inside else None
        found = drawn.key(drawn.nodes[owner]) if owner else None
        if found != expected:
            yield f"{node.dn} stands in the frame of {found}, not of {expected}"


def wrong_legend(drawn):
    expected = {(look, MEANINGS[look]) for _, _, _, look in drawn.references if look in MEANINGS}
    found = set(LEGEND.findall(drawn.dot))
    if found != expected:
        yield f"the legend has {found}, and there are {expected}"


def wrong_boxes(drawn, data, inside, outside):
    boxes, places = collections.Counter(), collections.Counter(class_of(dn) for dn in inside | outside)
    parents = {dn.rpartition(",")[0] for dn in inside}
    for name, node in drawn.nodes.items():
        boxes[node.class_name] += node.count
        if node.is_folded:
            continue
        if node.dn not in inside | outside:
            yield f"the box {name} is of {node.dn}, which is not in this part of the data"
        if node.is_dashed != (node.dn in outside):
            yield f"the border of {node.dn} is dashed, or should be"
        if node.title != (node.dn.split(",")[-1] if node.dn in inside else node.dn):
            yield f"the box of {node.dn} has the title {node.title}"
        if node.is_missing != (node.dn not in data.known):
            yield f"{node.dn} is there, or not, and the picture says the opposite"
        if node.is_thick != (node.dn in parents):
            yield f"the border of {node.dn} is thick, or should be"
        hidden = sum(dn.startswith(node.dn + ",") for dn in data.known - inside) \
            if node.dn in inside - parents else 0
        if node.below != hidden:
            yield f"below {node.dn} there are {hidden}, not {node.below}"
    if boxes != places:
        yield f"the boxes are {dict(boxes)}, the data has {dict(places)}"
