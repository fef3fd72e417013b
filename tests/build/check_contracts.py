#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks that each slot of each table has its contract above it, in the lines that apply.

usage: check_contracts.py DIRECTORY   checks the headers of DIRECTORY
       check_contracts.py --self-test checks that each kind of gap is seen

OrvConventions.h says what the lines are. Demanded are: some words on what the slot does; DN for a
parameter `dn`; In and Out for the pointers, each by its name; When; Codes for a slot that answers
with one. A line As stands for the lines of a slot with the same declaration. Besides, each header
names the conventions, each table has its identity beside it, and a reference to a section of a
header (OrvHostGuide.h, 5) leads to one that is there.
"""

import pathlib
import re
import sys
import tempfile

CONVENTIONS = "OrvConventions.h"
KEYS = ["DN", "In", "Out", "When", "Codes", "Why", "As"]

RECORD = re.compile(r"^struct (\w+) \{\n(.*?)^\};", re.MULTILINE | re.DOTALL)
SLOT = re.compile(
    r"(?P<comment>(?:^ *///[^\n]*\n)*)^ *(?P<answer>[\w ]+\**) ?\(\*(?P<name>\w+)\)"
    r"\((?P<parameters>[^;]*)\);", re.MULTILINE)
LINE = re.compile(r"^(\w+):(?: +(.*))?$")
SECTION_REFERENCE = re.compile(r"(\w+\.h), (\d+)(?: and (\d+))?")
PARAMETER = re.compile(r"^(?P<type>.*?)(?P<name>\w+)$", re.DOTALL)

# What an out parameter points at; of pointers to pointers the name decides.
OUT_TYPE = re.compile(r"^(bool|int|long long|unsigned long long|\w+Handle_4T|\w+Result_3) ?\*$")
OUT_NAMES = {"result", "iterator", "text"}


class Slot:
    def __init__(self, record, match):
        self.name = f"{record}::{match['name']}"
        self.answer = match["answer"].strip()
        self.parameters = [parameter(text) for text in match["parameters"].split(",")]
        self.what, self.lines = contract(match["comment"])

    def declaration(self):
        return (self.answer, self.parameters)

    def pointers(self):
        return [(kind, name) for kind, name in self.parameters if kind.endswith("*")]


def parameter(text):
    match = PARAMETER.match(" ".join(text.split()))
    return (match["type"].strip(), match["name"])


def contract(comment):
    """The words on what a slot does, and its lines as pairs of key and text."""
    what, lines = [], []
    for line in comment.splitlines():
        text = line.strip().removeprefix("///")
        found = LINE.match(text.strip()) if not text.startswith("  ") else None
        if found:
            lines.append((found[1], found[2] or ""))
        elif lines:
            lines[-1] = (lines[-1][0], f"{lines[-1][1]} {text.strip()}".strip())
        else:
            what.append(text.strip())
    return " ".join(what), lines


def is_out(kind, name):
    return bool(OUT_TYPE.match(kind)) or (kind.endswith("**") and name in OUT_NAMES)


def demanded(slot):
    """Each key that must be there, with the parameters that it must name."""
    keys = {}
    for kind, name in slot.pointers():
        key = "DN" if name == "dn" else "Out" if is_out(kind, name) else "In"
        keys.setdefault(key, []).append(name)
    if slot.answer.endswith("*"):
        keys.setdefault("Out", [])
    keys["When"] = []
    if slot.answer == "OrvReturnT":
        keys["Codes"] = []
    return keys


def problems_of_reference(slot, slots):
    if [key for key, _ in slot.lines] != ["As"]:
        yield "has other lines besides As"
    target = dict(slot.lines)["As"].rstrip(".")
    if target not in slots:
        yield f"is as {target}, which is no slot"
    elif slots[target].declaration() != slot.declaration():
        yield f"is as {target}, which is declared differently"
    elif any(key == "As" for key, _ in slots[target].lines):
        yield f"is as {target}, which has no lines of its own"


def problems_of(slot, slots):
    if len(slot.what.split()) < 3:
        yield "does not say what it does"
    keys = [key for key, _ in slot.lines]
    for key, text in slot.lines:
        if key not in KEYS:
            yield f"has a line {key}, which the conventions do not know"
        elif not text:
            yield f"has nothing in the line {key}"
    known = [key for key in keys if key in KEYS]
    if known != sorted(set(known), key=KEYS.index):
        yield "has its lines twice or in another order than " + ", ".join(KEYS)
    if "As" in keys:
        yield from problems_of_reference(slot, slots)
        return
    texts = dict(slot.lines)
    for key, names in demanded(slot).items():
        if key not in texts:
            yield f"has no line {key}"
            continue
        for name in names:
            if not re.search(rf"\\p {name}\b", texts[key]):
                yield f"does not name {name} in the line {key}"


def has_identity(record, text):
    common = re.sub("^(Orv|Vek)", "", record)
    return re.search(rf"^constexpr VekMgmtSpiInterface_1 (?:Orv|Vek){common}_\w*Id\b", text,
                     re.MULTILINE)


def problems_of_references(directory, text):
    comment = " ".join(line.strip().removeprefix("///").strip() for line in text.splitlines())
    for name, *sections in SECTION_REFERENCE.findall(comment):
        target = directory / name
        for section in filter(None, sections):
            if not target.exists() or f"\n/// {section}. " not in target.read_text():
                yield f"refers to {name}, {section}, which is not there"


def problems(directory):
    slots = {}
    for header in sorted(directory.glob("*.h")):
        text = header.read_text()
        for problem in problems_of_references(directory, text):
            yield f"{header.name} {problem}"
        if header.name != CONVENTIONS and CONVENTIONS not in text:
            yield f"{header.name} does not name {CONVENTIONS}"
        found = 0
        for record, body in RECORD.findall(text):
            if re.search(r"\bidentity;", body) and not has_identity(record, text):
                yield f"{record} has no identity beside it"
            for match in SLOT.finditer(body):
                slot = Slot(record, match)
                slots[slot.name] = slot
                found += 1
        code = re.sub(r"//.*", "", text)
        pointers = len(re.findall(r"\(\*", code)) - len(re.findall(r"^typedef .*\(\*", code, re.M))
        if pointers != found:
            yield f"{header.name} has {pointers} function pointers, of which {found} can be read"
    if not slots:
        yield f"{directory}: no slots"
    for slot in slots.values():
        for problem in problems_of(slot, slots):
            yield f"{slot.name} {problem}"


GOOD = r"""
/// \file
/// Conventions: OrvConventions.h. See OrvTable_1.h,
/// 1 and 2.
///
/// 1. One section
/// 2. Another section

typedef void (*Reserved)();

struct OrvTable_1 {
    OrvMgmtSpiInterface_1 identity;

    /// Slot 1. Reads one thing.
    /// DN:    \p dn, internal.
    /// In:    \p name.
    /// Out:   \p result, given; and
    ///        \p count.
    /// When:  started.
    /// Codes: common.
    /// Why:   it is odd.
    OrvReturnT (*get)(unsigned long txHandle, const char* dn, const char* name,
                      OrvMoAttributeValueResult_3* result, unsigned long long* count);
    Reserved reserved2;
    /// Slot 3. Finds a table.
    /// Out:   the table.
    /// When:  any time.
    void* (*find)(int number);
};

struct OrvOther_1 {
    /// Slot 1. Reads one thing.
    /// As:    OrvTable_1::get.
    OrvReturnT (*get)(unsigned long txHandle, const char* dn, const char* name,
                      OrvMoAttributeValueResult_3* result, unsigned long long* count);
};

constexpr VekMgmtSpiInterface_1 VekTable_1_RouterId = {"Component", "OrvTable", "1"};
"""

# Each change of the header above with the word that its report must hold.
GAPS = [
    ("OrvConventions.h", "there", "OrvConventions.h"),
    ("/// 1. One section", "/// One section", "OrvTable_1.h, 1, which is not there"),
    ("/// 2. Another section", "/// Another section", "OrvTable_1.h, 2, which is not there"),
    ("OrvTable_1.h,", "OrvTable_2.h,", "OrvTable_2.h, 1, which is not there"),
    ("VekTable_1_RouterId", "VekTable_2_RouterId", "OrvTable_1 has no identity"),
    ("Slot 1. Reads one thing.\n    /// DN", "Slot 1.\n    /// DN", "what it does"),
    ("    /// DN:    \\p dn, internal.\n", "", "no line DN"),
    ("\\p dn, internal", "internal", "dn in the line DN"),
    ("    /// In:    \\p name.\n", "", "no line In"),
    ("In:    \\p name.", "In:    \\p names.", "name in the line In"),
    ("\\p count.", "count.", "count in the line Out"),
    ("\\p result, given; and\n    ///        \\p count", "\\p count", "result in the line Out"),
    ("    /// Out:   the table.\n", "", "find has no line Out"),
    ("    /// When:  started.\n", "", "no line When"),
    ("When:  started.", "When:", "nothing in the line When"),
    ("    /// Codes: common.\n", "", "no line Codes"),
    ("Why:   it", "Because: it", "Because"),
    ("    /// When:  started.\n    /// Codes: common.\n",
     "    /// Codes: common.\n    /// When:  started.\n", "another order"),
    ("Codes: common.\n", "Codes: common.\n    /// Codes: common.\n", "twice"),
    ("As:    OrvTable_1::get.", "As:    OrvTable_1::got.", "no slot"),
    ("As:    OrvTable_1::get.", "As:    OrvTable_1::find.", "declared differently"),
    ("As:    OrvTable_1::get.", "As:    OrvOther_1::get.", "no lines of its own"),
    ("    /// As:    OrvTable_1::get.\n", "", "OrvOther_1::get has no line When"),
    ("    /// As:    OrvTable_1::get.\n", "    /// When:  started.\n    /// As:    OrvTable_1::get.\n",
     "besides As"),
    ("    Reserved reserved2;\n", "    unsigned (*array[2])();\n", "can be read"),
]


def report_on(text):
    with tempfile.TemporaryDirectory() as directory:
        (pathlib.Path(directory) / "OrvTable_1.h").write_text(text)
        return list(problems(pathlib.Path(directory)))


def self_test():
    reports = report_on(GOOD)
    if reports:
        yield "reported without a gap: " + "; ".join(reports)
    for old, new, word in GAPS:
        if GOOD.count(old) < 1:
            yield f"nothing to change: {old}"
        elif not any(word in report for report in report_on(GOOD.replace(old, new, 1))):
            yield f"not seen: {word}"


def main():
    found = self_test() if sys.argv[1] == "--self-test" else problems(pathlib.Path(sys.argv[1]))
    reports = list(found)
    print("\n".join(reports))
    sys.exit(1 if reports else 0)


main()
