#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks that the links of the documents lead to files and headings that exist.

usage: check_links.py ROOT        checks every document below ROOT, and that README.md of a folder of
                                  decisions lists each of its pages
       check_links.py --self-test checks that each kind of broken link is seen

Links to other hosts are not looked at.
"""

import pathlib
import re
import sys
import tempfile

LINK = re.compile(r"\]\(([^)\s]+)\)")
HEADING = re.compile(r"^#+ +(.+?) *$", re.MULTILINE)
BLOCK = re.compile(r"^```.*?^```", re.MULTILINE | re.DOTALL)


def anchor(heading):
    """The name under which a forge lets a heading be linked to."""
    words = re.sub(r"[^\w\- ]", "", heading.lower())
    return words.replace(" ", "-")


def anchors(document):
    return {anchor(heading) for heading in HEADING.findall(BLOCK.sub("", document.read_text()))}


def documents(root):
    hidden = re.compile(r"^(build|\.(?!github))")
    for path in sorted(root.rglob("*.md")):
        if not hidden.match(path.relative_to(root).as_posix()):
            yield path


def problems_of(document):
    text = BLOCK.sub("", document.read_text())
    for link in LINK.findall(text):
        if re.match(r"^[a-z]+:", link):
            continue
        name, _, fragment = link.partition("#")
        target = (document.parent / name) if name else document
        if not target.exists():
            yield f"{link}: no such file"
        elif fragment and target.suffix == ".md" and fragment not in anchors(target):
            yield f"{link}: no such heading"
    if document.name == "README.md" and document.parent.name == "decisions":
        for page in sorted(document.parent.glob("*.md")):
            if page != document and f"({page.name})" not in text:
                yield f"{page.name} is not listed"


def problems(root):
    found = list(documents(root))
    if not found:
        yield f"{root}: no documents"
    for document in found:
        for problem in problems_of(document):
            yield f"{document.relative_to(root)}: {problem}"


SELF_TEST = {
    "README.md": "[a](docs/page.md) [b](docs/page.md#two-words-it-s) [c](https://example.org/x)\n"
                 "[d](docs) [e](#top)\n# Top\n```\n[not a link](nowhere)\n```\n",
    "docs/page.md": "# Page\n## Two words: `it-s`\n",
    "docs/decisions/README.md": "[one](one.md)\n",
    "docs/decisions/one.md": "# One\n",
    "build/page.md": "[x](nowhere.md)\n",
}
# Each change of a file with the word that its report must hold.
FAULTS = [
    ("README.md", "docs/page.md)", "docs/pages.md)", "docs/pages.md: no such file"),
    ("README.md", "#two-words", "#three-words", "no such heading"),
    ("README.md", "#top", "#bottom", "no such heading"),
    ("docs/page.md", "Two words", "Two other words", "no such heading"),
    ("docs/decisions/README.md", "[one](one.md)", "none", "one.md is not listed"),
]


def report_on(files):
    with tempfile.TemporaryDirectory() as directory:
        root = pathlib.Path(directory)
        for name, text in files.items():
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).write_text(text)
        return list(problems(root))


def self_test():
    for report in report_on(SELF_TEST):
        yield f"reported without a fault: {report}"
    for name, old, new, word in FAULTS:
        changed = {**SELF_TEST, name: SELF_TEST[name].replace(old, new, 1)}
        if not any(word in report for report in report_on(changed)):
            yield f"not seen: {word}"


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    found = self_test() if sys.argv[1] == "--self-test" else problems(pathlib.Path(sys.argv[1]))
    reports = list(found)
    print("\n".join(reports))
    sys.exit(1 if reports else 0)


main()
