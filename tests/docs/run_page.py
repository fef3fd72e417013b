#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Does what a page of the documents shows, block by block, and compares what it prints.

usage: run_page.py PAGE --orvhost PROGRAM [--option OPTION]...
       run_page.py --self-test

A block is one of these:

- a file: `<!-- file NAME -->` stands before it;
- a session: its first line begins with "$ ". Each such line is run by bash in the folder of the
  page, with orvhost in PATH. What it prints must be the lines below it; "..." stands for any text in
  a line. Lines that begin with a prompt of orvhost are typed into the program of the last "$ " line;
- neither: `<!-- not run: REASON -->` stands before it. The reasons are printed.

Anything else is an error, so that no block is left out by mistake.
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile

LIMIT = 60  # seconds for one command
BLOCK = re.compile(r"(?:^<!-- ([^\n]*) -->\n\n?)?^```\w*\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PROMPT = re.compile(r"^orvhost(?:\[[^\]]*\])?> (.*)$")


class Wrong(Exception):
    """The page does not hold; the text says where."""


def fits(shown, printed):
    return re.fullmatch(".*".join(map(re.escape, shown.split("..."))), printed) is not None


def compare(place, shown, printed):
    wrong = next((at for at, (one, other) in enumerate(zip(shown, printed)) if not fits(one, other)),
                 min(len(shown), len(printed)))
    if wrong < max(len(shown), len(printed)):
        line = lambda lines: lines[wrong] if wrong < len(lines) else "(the end)"
        raise Wrong(f"{place}\n  shown:   {line(shown)}\n  printed: {line(printed)}\n"
                    "  all that it printed:\n    " + "\n    ".join(printed))


def run(command, typed, folder, environment):
    """What the command prints, as lines; at a prompt with the typed lines after their prompts."""
    if typed:
        command += " --echo --keep-going -f -"
    done = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, text=True,
                          input="\n".join(typed) + "\n", stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=LIMIT, check=False)
    # What is typed has no place in a script.
    return [re.sub(r"^stdin:\d+: ", "", line) if typed else line
            for line in done.stdout.splitlines()]


def run_session(text, folder, environment):
    for part in re.split(r"^\$ ", text, flags=re.MULTILINE)[1:]:
        command, *shown = part.splitlines()
        typed = [match.group(1) for line in shown if (match := PROMPT.match(line))]
        compare("$ " + command, shown, run(command, typed, folder, environment))


def run_page(text, folder, environment):
    """Runs all blocks; returns how many, and the reasons of those that are not run."""
    blocks = BLOCK.findall(text)
    if not blocks:
        raise Wrong("the page has no blocks")
    reasons = []
    for comment, block in blocks:
        kind, _, rest = comment.partition(" ")
        if kind == "file" and rest:
            (folder / rest).write_text(block)
        elif comment.startswith("not run: "):
            reasons.append(comment.removeprefix("not run: "))
        elif block.startswith("$ "):
            run_session(block, folder, environment)
        else:
            raise Wrong("a block that is no file, no session and has no reason not to be run:\n"
                        + block)
    return len(blocks), reasons


def self_test():
    """Each kind of mistake must be seen."""
    good = "<!-- file a -->\n```\nx\n```\n\n```\n$ cat a\nx\n$ echo one two\none ...\n```\n"
    bad = ["no block at all",
           "```\na block of no kind\n```\n",
           "```\n$ echo a\nb\n```\n",
           "```\n$ echo a\n```\n",
           "```\n$ true\nmore\n```\n"]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        if run_page(good, folder, os.environ) != (2, []):
            sys.exit("a good page is not run")
        if run_page("<!-- not run: no net -->\n```\n$ false\n```\n", folder, os.environ)[1] != ["no net"]:
            sys.exit("a reason is not kept")
        for page in bad:
            try:
                run_page(page, folder, os.environ)
            except Wrong:
                continue
            sys.exit("not seen: " + page)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("page", nargs="?", type=pathlib.Path)
    parser.add_argument("--orvhost", type=pathlib.Path, help="the program orvhost")
    parser.add_argument("--option", action="append", default=[], help="an option for orvhost")
    parser.add_argument("--self-test", action="store_true", help="check that mistakes are seen")
    options = parser.parse_args()
    if options.self_test:
        return self_test()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name, "page")
        programs = pathlib.Path(name, "bin")
        folder.mkdir()
        programs.mkdir()
        words = " ".join(f"'{word}'" for word in [options.orvhost, *options.option])
        (programs / "orvhost").write_text(f'#!/bin/sh\nexec {words} "$@"\n')
        (programs / "orvhost").chmod(0o755)
        environment = dict(os.environ, PATH=f"{programs}:{os.environ['PATH']}", HOME=name)
        try:
            count, reasons = run_page(options.page.read_text(), folder, environment)
        except Wrong as wrong:
            return f"{options.page}: {wrong}"
    print(f"{options.page.name}: {count} blocks, {len(reasons)} of them not run")
    for reason in reasons:
        print(f"  {reason}")
    return 0


sys.exit(main())
