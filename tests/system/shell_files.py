#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks the manual pages and the completions against what the programs themselves say. That for
bash is run; the other ones must name the same words.

shell_files.py ORVHOST GENERATOR SOURCE-DIRECTORY"""

import json
import re
import subprocess
import sys
from pathlib import Path


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def options_of(program):
    names = []
    for line in output(program, "--help").splitlines():
        if line.startswith("  -"):
            names += line.split()[0].split(",")
    assert len(names) > 4, names
    return names


def page_text(page):
    return page.read_text().replace("\\-", "-").replace("\\fB", "").replace("\\fR", "")


def missing_in_page(page, options):
    text = page_text(page)
    return [f"{page.name}: {name} is missing" for name in options
            if not re.search(rf"(^|[ ,]){re.escape(name)}([ ,]|$)", text, re.MULTILINE)]


def commands_of(program):
    return [command["name"] for command in json.loads(output(program, "--json", "help"))["commands"]]


def completed(script, program, *words):
    """What bash offers for the last of the words."""
    lines = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _orvhost; '
             'printf "%s\\n" "${COMPREPLY[@]}"')
    return output("bash", "-c", lines, "bash", str(script), program, *words).split()


# Words before the one to complete, and what is offered for it.
CASES = (
    (("--report-",), ["--report-file"]),
    (("tree", "--"), ["--depth", "--help", "--json"]),
    (("-m", "x", "tree", "--d"), ["--depth"]),
    (("check", "--report-"), ["--report-file"]),
    (("--report", "t"), ["text", "tap"]),
    (("--log-format", ""), ["text", "json"]),
    (("--me-id", ""), []),
    (("--project", "no such file"), []),
    (("ini",), ["init"]),
    (("tree", "ini"), []),
)


def words_of(script):
    """What a completion cannot ask the program for: words in place of a command, options whose
    value is a file."""
    text = script.read_text().replace("\\\n", " ")
    others = re.search(r"others[ =(\"]+(check [a-z ]*)", text)
    files = re.search(r"(--project[-a-zA-Z| ]*--connect)", text)
    assert others and files, script
    return others[1].split(), sorted(re.findall(r"-[-a-zA-Z]+", files[1]))


def main():
    orvhost, generator, source = sys.argv[1:]
    folder = Path(source) / "src/host/cli/install"
    options, commands = options_of(orvhost), commands_of(orvhost)
    problems = missing_in_page(folder / "orvhost.1", options)
    problems += missing_in_page(
        Path(source) / "examples/generator/orv-ran-generate.1", options_of(generator))
    page = page_text(folder / "orvhost.1")
    problems += [f"orvhost.1: the command {name} is missing" for name in commands
                 if not re.search(rf"^{name}( |$)", page, re.MULTILINE)]
    offered = completed(folder / "orvhost.bash", orvhost, "-")
    problems += [f"completion: {name} is not offered" for name in options if name not in offered]
    offered = completed(folder / "orvhost.bash", orvhost, "")
    problems += [f"completion: {name} is not offered"
                 for name in commands + ["check"] if name not in offered]
    for words, expected in CASES:
        offered = completed(folder / "orvhost.bash", orvhost, *words)
        if offered != expected:
            problems.append(f"completion of {words}: {offered} is offered, not {expected}")
    others, files = words_of(folder / "orvhost.bash")
    problems += [f"completion: {name} is no option" for name in files if name not in options]
    for shell in ("_orvhost", "orvhost.fish"):
        theirs = words_of(folder / shell)
        folders = {"-I", "--path"} if shell == "orvhost.fish" else set()
        if (theirs[0], sorted(set(theirs[1]) - folders)) != (others, files):
            problems.append(f"{shell}: has other words than the completion for bash: {theirs}")
    print("\n".join(problems) or f"{len(options)} options, {len(commands)} commands")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
