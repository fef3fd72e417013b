#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks the manual pages and the completion for shells against what the programs themselves say.

shell_files.py ORVHOST GENERATOR SOURCE-DIRECTORY"""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
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


def completed_by_bash(script, program, *words):
    """What bash offers for the last of the words."""
    lines = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _orvhost; '
             'printf "%s\\n" "${COMPREPLY[@]}"')
    return output("bash", "-c", lines, "bash", str(script), program, *words).split()


def completed_by_zsh(script, program, *words):
    """The same of zsh, without its own choice among what it is offered."""
    lines = ("compadd() { shift; print -l -- $@ }; compset() { }; _files() { print -l -- *(N) }; "
             'complete_it() { source "$script" }; script=$1; shift; words=("$@"); CURRENT=$#; complete_it')
    offered = output("zsh", "-f", "-c", lines, "zsh", str(script), program, *words).split()
    return [word for word in offered if word.startswith(words[-1].rpartition("=")[2])]


def completed_by_fish(script, program, *words):
    lines = "source $argv[1]; complete -C (string join ' ' -- $argv[2..-1])"
    offered = output("fish", "--no-config", "-c", lines, str(script), program, *words)
    return [line.split("\t")[0].rpartition("=")[2] for line in offered.splitlines()]


# The shell, its file, and how it is asked; all are asked that are there.
SHELLS = [("bash", "orvhost.bash", completed_by_bash),
          ("zsh", "_orvhost", completed_by_zsh),
          ("fish", "orvhost.fish", completed_by_fish)]
IN_PLACE_OF_COMMANDS = ["check", "export", "init", "replay", "serve", "store"]
A_FILE = "net.json"


def cases(options, commands):
    """What is typed, what must be offered, and what must not."""
    long_options = [name for name in options if name.startswith("--")]
    words = commands + IN_PLACE_OF_COMMANDS
    yield [""], words, ["--json", A_FILE]
    yield ["--"], long_options, ["--depth"]
    yield ["-I", "models", "--json", ""], words, [A_FILE]
    yield ["--report-"], ["--report-file"], ["--report"]
    yield ["tree", "--"], ["--depth", "--json", "--help"], ["--project", "--unfold"]
    yield ["-m", "tree", "graph", "--"], ["--unfold", "--json", "--help"], ["--model", "--depth-x"]
    yield ["count", "--"], ["--json", "--help"], ["--depth", "--model"]
    yield ["export", "--"], ["--format", "--json"], ["--model"]
    yield ["check", "--"], ["--report", "--model"], ["--depth"]
    yield ["help", ""], commands, ["--json", A_FILE]
    yield ["load", ""], [A_FILE], ["tree"]
    for option in ["--project", "-m", "-d", "--report-file", "--connect"]:
        yield [option, ""], [A_FILE], ["tree", "check"]
    yield ["--path", ""], [], ["tree", "check"]
    yield ["--report", ""], ["text", "tap", "junit", "json"], ["tree", A_FILE]
    yield ["--interface", ""], ["1", "3", "3_1"], ["tree", A_FILE]
    yield ["--log-level", ""], ["off", "trace"], ["tree", A_FILE]
    yield ["--timeout", ""], [], ["tree", "check", A_FILE]


def offered_wrongly(shell, ask, script, program, typed, wanted, unwanted):
    offered = ask(script, program, *typed)
    line = f"{shell}: orvhost {' '.join(typed)}"
    return ([f"{line}: {name} is not offered" for name in wanted if name not in offered] +
            [f"{line}: {name} is offered" for name in unwanted if name in offered])


def differing_files(folder, options):
    """Files of shells that are not there are at least like that of bash."""
    problems = []
    texts = {shell: "".join(line for line in (folder / name).open()
                            if not line.lstrip().startswith(("#", "complete ")))
             for shell, name, _ in SHELLS}
    named = {shell: {word for word in re.findall(r"(?<!\S)-{1,2}[a-zA-Z][a-z-]*", text)
                     if word in options} for shell, text in texts.items()}
    # What is taken out of the program's help; fish also shows the summaries.
    parts = {shell: {part.replace(r"  +(.*)/\1\t\2/", r"  .*/\1/")
                     for part in re.findall(r"sed -nE ('[^']*'|\"[^\"]*\")", text)}
             for shell, text in texts.items()}
    for shell, name, _ in SHELLS[1:]:
        problems += [f"{name}: {word} is not treated as in orvhost.bash"
                     for word in sorted(named[shell] ^ named["bash"] | parts[shell] ^ parts["bash"])]
    return problems


def wrong_completions(orvhost, folder, options, commands):
    problems = differing_files(folder, options)
    asked = [one for one in SHELLS if shutil.which(one[0])]
    with tempfile.TemporaryDirectory() as place:
        (Path(place) / A_FILE).touch()
        os.chdir(place)
        for shell, name, ask in asked:
            for case in cases(options, commands):
                problems += offered_wrongly(shell, ask, folder / name, orvhost, *case)
            for value in ["tap", "junit"]:
                typed = ["--report", "=", value[0]] if shell == "bash" else [f"--report={value[0]}"]
                if value not in ask(folder / name, orvhost, *typed):
                    problems.append(f"{shell}: orvhost {''.join(typed)}: {value} is not offered")
        os.chdir("/")
    return problems, [shell for shell, _, _ in asked]


def main():
    orvhost, generator, source = sys.argv[1:]
    orvhost = str(Path(orvhost).resolve())
    folder = Path(source).resolve() / "src/host/cli/install"
    options, commands = options_of(orvhost), commands_of(orvhost)
    problems = missing_in_page(folder / "orvhost.1", options)
    problems += missing_in_page(
        Path(source) / "examples/generator/orv-ran-generate.1", options_of(generator))
    page = page_text(folder / "orvhost.1")
    problems += [f"orvhost.1: the command {name} is missing" for name in commands
                 if not re.search(rf"^{name}( |$)", page, re.MULTILINE)]
    wrong, shells = wrong_completions(orvhost, folder, options, commands)
    problems += wrong
    print("\n".join(problems) or f"{len(options)} options, {len(commands)} commands; completion of "
          + ", ".join(shells))
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
