#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0
"""Loads every module of public sets of YANG modules as a model, each in a process of its own.

Prints for each set how many modules there are, how many orvhost takes, why it refuses the others,
how many end it in any other way than an answer, and how many lists with keys became classes, structs
and nothing, if all modules that are taken are read as one model. The sets are directories in
ORV_PUBLIC_MODULES; without it the script ends with status 77, which CTest shows as "not run".

With --check the status is 1 if one process crashed or did not end in time, or if a set has fewer
modules that are taken than KNOWN_SETS says.
"""

import argparse
import collections
import concurrent.futures
import os
import pathlib
import re
import subprocess
import sys

SKIPPED = 77
LOAD_FAILED = 3 # the exit status of orvhost

# The sets: name, further directories to search, and the least share of modules that is taken.
KNOWN_SETS = {
    "3gpp": ([], 1.0),
    "ietf": ([], 0.92),
    "openconfig": (["ietf"], 1.0),
}

# What differs from one message of a kind to the next.
VARIABLE = [
    (re.compile(r"\(at [^)]*\)"), ""),
    (re.compile(r'"[^"]*"'), '"..."'),
    (re.compile(r"'[^']*'"), "'...'"),
    (re.compile(r"looked for .*"), "..."),
    (re.compile(r"(?:Attribute|Association end|Class) \S+:"), "Attribute ...:"),
    (re.compile(r"/\S+"), "/..."),
    (re.compile(r"\d+"), "N"),
]
POSITION = re.compile(r"^\S+\.yang(?::\d+)?: ")


def kind_of(message):
    """The message without what is particular to one module."""
    text = POSITION.sub("", message.removeprefix("orvhost: "))
    for pattern, replacement in VARIABLE:
        text = pattern.sub(replacement, text)
    return " ".join(text.split())[:110]


def modules_in(directory):
    """The names of the modules, without submodules, each once."""
    names = set()
    for file in directory.glob("**/*.yang"):
        text = file.read_text(encoding="utf-8", errors="replace")
        text = re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.DOTALL)
        if re.match(r"\s*module\s", text):
            names.add(file.stem.split("@")[0])
    return sorted(names)


def run(command, seconds):
    """Exit status and text of a program; the status is None if it did not end in time."""
    try:
        done = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.PIPE, timeout=seconds, check=False)
    except subprocess.TimeoutExpired:
        return None, ""
    return done.returncode, done.stderr.decode("utf-8", errors="replace")


def fate_of(options, search, module):
    """What becomes of one module: "taken", "refused", "crashed" or "too slow", and why."""
    command = [options.orvhost]
    for directory in search:
        command += ["-I", directory]
    command += options.option + ["-m", module, "-c", "model"]
    status, text = run(command, options.seconds)
    if status is None:
        return module, "too slow", ""
    if status == 0:
        return module, "taken", ""
    is_answer = status == LOAD_FAILED and "Sanitizer" not in text
    return module, "refused" if is_answer else "crashed", text.strip()


def parser_takes(options, search, module):
    """True if yanglint takes the module, plain or with all that it refers to implemented."""
    files = [file for stem in (module, module + "@*")
             for file in pathlib.Path(search[0]).glob(f"**/{stem}.yang")]
    command = [options.yanglint]
    for directory in search:
        command += ["-p", directory]
    return any(run(command + extra + [str(files[0])], options.seconds)[0] == 0
               for extra in ([], ["-i"]))


def report_lists(options, search, modules):
    """Prints what became of the lists with keys of all modules that are taken, read as one model.
    Returns what is wrong."""
    done = subprocess.run([options.list_fates] + modules + ["--"] + search, check=False,
                          stdin=subprocess.DEVNULL, capture_output=True, timeout=options.seconds,
                          text=True, errors="replace")
    if done.returncode != 0:
        return [f"the modules that are taken cannot be read together: {done.stderr.strip()}"]
    for line in done.stdout.splitlines():
        print("  lists with " + line)
    return []


def report_set(options, pool, name, root):
    """Prints the table of one set; returns what is wrong with it."""
    others, least_share = KNOWN_SETS[name]
    search = [str(root / directory) for directory in [name] + others]
    modules = modules_in(root / name)[::options.every]
    fates = list(pool.map(lambda module: fate_of(options, search, module), modules))
    counts = collections.Counter(fate for _, fate, _ in fates)
    print(f"{name}: {len(modules)} modules, {counts['taken']} taken, {counts['refused']} refused, "
          f"{counts['crashed']} crashed, {counts['too slow']} too slow", flush=True)
    if options.yanglint:
        parsed = list(pool.map(lambda module: parser_takes(options, search, module), modules))
        lost = [fate for fate, is_parsed in zip(fates, parsed) if is_parsed and fate[1] != "taken"]
        share = 1 - len(lost) / max(1, sum(parsed))
        print(f"  yanglint takes {sum(parsed)}; orvhost does not take {len(lost)} of these: "
              f"{share:.1%}")
    kinds = collections.defaultdict(list)
    for module, fate, text in fates:
        if fate != "taken":
            kinds[(fate, kind_of(text.splitlines()[0] if text else ""))].append((module, text))
    for (fate, kind), members in sorted(kinds.items(), key=lambda item: -len(item[1])):
        print(f"  {len(members):4} {fate}: {kind}")
        for module, text in members if options.verbose else []:
            print(f"         {module}: " + text.replace("\n", "\n             "))
    problems = [f"{name}: {module} {fate}: {text}" for module, fate, text in fates
                if fate in ("crashed", "too slow")]
    if options.list_fates:
        taken = [module for module, fate, _ in fates if fate == "taken"]
        problems += [f"{name}: {problem}" for problem in report_lists(options, search, taken)]
    if options.every == 1 and counts["taken"] < least_share * len(modules):
        problems.append(f"{name}: {counts['taken']} of {len(modules)} modules are taken, "
                        f"expected at least {least_share:.0%}")
    return problems


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("orvhost", help="the program orvhost")
    parser.add_argument("--yanglint", help="the program yanglint, to compare with")
    parser.add_argument("--list-fates", help="the program list_fates, to count what becomes of lists")
    parser.add_argument("--set", action="append", help="only this set",
                        choices=list(KNOWN_SETS))
    parser.add_argument("--option", action="append", default=[], help="an option for orvhost")
    parser.add_argument("--every", type=int, default=1, metavar="N",
                        help="only every Nth module, without a look at the share")
    parser.add_argument("--seconds", type=float, default=60, help="limit for one module")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="processes at a time")
    parser.add_argument("--verbose", action="store_true", help="print every refusal")
    parser.add_argument("--check", action="store_true", help="fail if a set is worse than it was")
    options = parser.parse_args()

    root = os.environ.get("ORV_PUBLIC_MODULES")
    if not root:
        print("ORV_PUBLIC_MODULES does not name a directory of public YANG modules")
        return SKIPPED
    problems = []
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for name in options.set or list(KNOWN_SETS):
            problems += report_set(options, pool, name, pathlib.Path(root))
    if options.check:
        for problem in problems:
            print(problem)
        return 1 if problems else 0
    return 0


if __name__ == "__main__":
    sys.exit(main())
