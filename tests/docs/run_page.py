#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Does what a page of the documents shows, block by block, and compares what it prints.

usage: run_page.py PAGE --root ROOT --programs FOLDER [--needs NAME=VARIABLE]
       run_page.py --list ROOT
       run_page.py --self-test

The blocks of a page share one folder, which is empty but for links to what stands in ROOT, the
project, and to its build, FOLDER/.. as build/dev; so both "in an empty folder" and "in the root of
the project" hold, and nothing is written into the project. FOLDER stands first in PATH. A block is one of these:

- a session: its first line begins with "$ ". Each such line, with those that it continues in by a
  backslash, is run by bash. What it prints must be the lines below it. "..." stands for any text in
  a line, and alone for any lines. Lines that begin with a prompt of orvhost are typed into the
  program of the last "$ " line;
- `sh` after the first fence: a script for bash, which must succeed; what it prints is not compared;
- `mermaid` after the first fence: a picture, which the site must be able to draw;
- any other, with a comment before it that says what it is:
  `<!-- file NAME -->`         it is written into the folder
  `<!-- from PATH [NAME] -->`  the part of a file of ROOT between the lines "// [NAME]" and
                               "// [/NAME]", or "#" in place of "//"
  `<!-- from PATH -->`         lines of a file of ROOT that follow one another
  `<!-- prompt: COMMAND -->`   typed into COMMAND, with what it answers
  `<!-- output: COMMAND -->`   what COMMAND prints
  `<!-- not run: REASON -->`   none of these, or it cannot be run here. The reasons are printed.

Anything else is an error, so that no block is left out by mistake. --list prints all reasons of all
pages. With --needs NAME=VARIABLE the page has the value of the environment's VARIABLE as NAME; if
that is not set, the page is not run, and the status is 77.
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import textwrap

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
import sequence_picture  # noqa: E402

LIMIT = 120  # seconds for one command
SKIPPED = 77
BLOCK = re.compile(r"(?:^ *<!-- ([^\n]*) -->\n\n?)?^( *)```(\w*)\n(.*?)^ *```$",
                   re.MULTILINE | re.DOTALL)
PROMPT = re.compile(r"^orvhost(?:\[[^\]]*\])?(?: [^ >]+)?> (.*)$")


class Wrong(Exception):
    """The page does not hold; the text says where."""


def fits(shown, printed):
    return re.fullmatch(".*".join(map(re.escape, shown.split("..."))), printed) is not None


def first_difference(shown, printed):
    """The places of the first lines that differ, or None."""
    at = 0
    for number, line in enumerate(shown):
        if line == "...":
            rest = shown[number + 1:]
            ends = range(at, len(printed) + 1)
            return None if any(first_difference(rest, printed[end:]) is None for end in ends) \
                else (number, at)
        if at == len(printed) or not fits(line, printed[at]):
            return number, at
        at += 1
    return None if at == len(printed) else (len(shown), at)


def compare(place, shown, printed):
    wrong = first_difference(shown, printed)
    if wrong is not None:
        line = lambda lines, at: lines[at] if at < len(lines) else "(the end)"
        raise Wrong(f"{place}\n  shown:   {line(shown, wrong[0])}\n  printed: {line(printed, wrong[1])}\n"
                    "  all that it printed:\n    " + "\n    ".join(printed))


def run(command, typed, page):
    """What the command prints, as lines; at a prompt with the typed lines after their prompts."""
    if typed:
        command += " --echo --keep-going -f -"
    done = page.bash(command, "\n".join(typed) + "\n")
    # What is typed has no place in a script.
    return [re.sub(r"^stdin:\d+: ", "", line) if typed else line
            for line in done.stdout.splitlines()]


def run_typed(command, shown, page):
    typed = [match.group(1) for line in shown if (match := PROMPT.match(line))]
    compare("$ " + command, shown, run(command, typed, page))


def run_session(text, page):
    for part in re.split(r"^\$ ", text, flags=re.MULTILINE)[1:]:
        command, shown = re.fullmatch(r"((?:.*\\\n)*.*\n)((?:.*\n)*)", part).groups()
        run_typed(command.strip(), shown.splitlines(), page)


def part_of(path, name, root):
    text = (root / path).read_text()
    if not name:
        return text
    match = re.search(rf"^ *(//|#) \[{name}\]\n(.*?)^ *\1 \[/{name}\]$", text,
                      re.MULTILINE | re.DOTALL)
    if match is None:
        raise Wrong(f"{path}: no part marked [{name}]")
    return match.group(2)


def lines_of(text):
    """The lines without what all of them are indented by."""
    return textwrap.dedent(text.strip("\n")).splitlines()


def compare_with_source(block, path, name, root):
    if not (root / path).is_file():
        raise Wrong(f"{path}: no such file")
    wanted, shown = part_of(path, name, root).strip("\n").splitlines(), lines_of(block)
    starts = [0] if name else range(len(wanted))
    if not shown or all(
            lines_of("\n".join(wanted[start:None if name else start + len(shown)])) != shown
            for start in starts):
        raise Wrong(f"{path} {name or ''} differs from this block:\n{block}")


class Page:
    """Where the blocks of a page are run."""

    def __init__(self, root, folder, environment):
        self.root, self.folder, self.environment = root, folder, environment
        self.reasons = []

    def bash(self, command, text=""):
        return subprocess.run(["bash", "-c", command], cwd=self.folder, env=self.environment,
                              text=True, input=text, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, timeout=LIMIT, check=False)

    def script(self, block):
        done = self.bash("set -eo pipefail\n" + block)
        if done.returncode != 0:
            raise Wrong(f"ended with {done.returncode}:\n{block}  it printed:\n{done.stdout}")

    def block(self, comment, language, block):
        kind, _, rest = comment.partition(" ")
        if kind == "file" and rest:
            (self.folder / rest).write_text(block)
        elif source := re.fullmatch(r"from (\S+)(?: \[([\w-]+)\])?", comment):
            compare_with_source(block, source[1], source[2], self.root)
        elif kind == "prompt:" and rest and PROMPT.match(block.partition("\n")[0]):
            run_typed(rest, block.splitlines(), self)
        elif kind == "output:" and rest:
            compare("$ " + rest, block.splitlines(), run(rest, [], self))
        elif comment.startswith("not run: "):
            self.reasons.append(comment.removeprefix("not run: "))
        elif block.startswith("$ "):
            run_session(block, self)
        elif language == "sh":
            self.script(block)
        elif language == "mermaid":
            try:
                sequence_picture.draw(block)
            except ValueError as error:
                raise Wrong(f"a picture that cannot be drawn: {error}") from error
        else:
            raise Wrong("a block that is of no kind and has no reason not to be run:\n" + block)

    def run(self, text):
        """Runs all blocks; returns how many, and the reasons of those that are not run."""
        blocks = BLOCK.findall(text)
        if len(re.findall(r"^ *```", text, re.MULTILINE)) != 2 * len(blocks):
            raise Wrong("a fence that opens or closes no block")
        for comment, indent, language, block in blocks:
            if indent:
                block = textwrap.dedent(block)
            self.block(comment, language, block)
        return len(blocks), self.reasons


def link_all(root, programs, folder):
    """What a reader sees in the root of the project after the build with the preset `dev`."""
    for entry in root.iterdir():
        if entry.name not in ("build", ".git"):
            (folder / entry.name).symlink_to(entry)
    (folder / "build").mkdir()
    (folder / "build/dev").symlink_to(programs.parent)


def self_test():
    """Each kind of mistake must be seen."""
    good = ("<!-- file a -->\n```\nx\n```\n\n```\n$ cat a\nx\n$ echo one two\none ...\n"
            "$ echo one \\\n  two\none two\n$ printf '1\\n2\\n3\\n'\n1\n...\n3\n```\n"
            "```sh\ntest -f a\n```\n"
            "<!-- output: cat a -->\n```\nx\n```\n"
            "<!-- from source [part] -->\n```\nint part;\n```\n"
            "- <!-- from source -->\n  not this\n"
            "  <!-- from source -->\n  ```\n  if x:\n    y\n  ```\n"
            "<!-- prompt: sed 's/^/orvhost> /' # -->\n```\norvhost> x\n```\n"
            "```mermaid\nsequenceDiagram\n  participant A\n  A->>A: x\n```\n"
            "<!-- not run: no net -->\n```\n$ false\n```\n")
    bad = ["```\na block of no kind\n```\n",
           "```cpp\nint a;\n```\n",
           "<!-- unknown a -->\n```\na\n```\n",
           "<!-- prompt: cat -->\n```\nno prompt\n```\n",
           "<!-- prompt: true # -->\n```\norvhost> x\n```\n",
           "```\n$ true\n```\n```\n",
           "```\n$ echo a\nb\n```\n",
           "```\n$ echo a\n```\n",
           "```\n$ true\nmore\n```\n",
           "```\n$ printf '1\\n2\\n'\n...\n3\n```\n",
           "```sh\nfalse\ntrue\n```\n",
           "<!-- output: echo a -->\n```\nb\n```\n",
           "<!-- from nowhere -->\n```\na\n```\n",
           "<!-- from source -->\n```\nz\n```\n",
           "<!-- from source -->\n```\n```\n",
           "<!-- from source [none] -->\n```\nint part;\n```\n",
           "<!-- from source [part] -->\n```\nint\n```\n",
           "```mermaid\nsequenceDiagram\n  A what B\n```\n"]
    with tempfile.TemporaryDirectory() as name:
        root, folder = pathlib.Path(name, "root"), pathlib.Path(name, "folder")
        root.mkdir()
        folder.mkdir()
        (root / "source").write_text("// [part]\nint part;\n// [/part]\n  if x:\n    y\n")
        count, reasons = Page(root, folder, os.environ).run(good)
        if (count, reasons) != (9, ["no net"]):
            sys.exit(f"of a good page were run {count} blocks, not run: {reasons}")
        for text in bad:
            try:
                Page(root, folder, os.environ).run(text)
            except Wrong:
                continue
            sys.exit("not seen: " + text)


def list_reasons(root):
    pages = [page for place in ("*.md", "docs/*.md", "examples/*/*.md") for page in root.glob(place)]
    for page in sorted(pages):
        comments = [comment for comment, *_ in BLOCK.findall(page.read_text())]
        reasons = [comment for comment in comments if comment.startswith("not run: ")]
        print(f"{page.relative_to(root)}: {len(comments)} blocks, {len(reasons)} of them not run")
        for reason in reasons:
            print(f"  {reason.removeprefix('not run: ')}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("page", nargs="?", type=pathlib.Path)
    resolved = lambda name: pathlib.Path(name).resolve()
    parser.add_argument("--root", type=resolved, help="the project")
    parser.add_argument("--programs", type=resolved, help="the folder of orvhost")
    parser.add_argument("--needs", help="NAME=VARIABLE, without which the page cannot be run")
    parser.add_argument("--list", type=pathlib.Path, help="print what is not run in all pages")
    parser.add_argument("--self-test", action="store_true", help="check that mistakes are seen")
    options = parser.parse_args()
    if options.self_test:
        return self_test()
    if options.list:
        return list_reasons(options.list)
    environment = {name: value for name, value in os.environ.items()
                   if not name.startswith("ORVHOST_")}
    if options.needs:
        name, _, variable = options.needs.partition("=")
        if variable not in os.environ:
            print(f"{variable} is not set")
            return SKIPPED
        environment[name] = os.environ[variable]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name, "page")
        folder.mkdir()
        link_all(options.root, options.programs, folder)
        environment.update(HOME=name, PATH=f"{options.programs}:{environment['PATH']}")
        try:
            count, reasons = Page(options.root, folder, environment).run(options.page.read_text())
        except Wrong as wrong:
            return f"{options.page}: {wrong}"
    print(f"{options.page.name}: {count} blocks, {len(reasons)} of them not run")
    for reason in reasons:
        print(f"  {reason}")
    return 0


sys.exit(main())
