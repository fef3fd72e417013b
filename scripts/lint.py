#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Runs clang-tidy, and shows what it finds and nothing else.

usage: lint.py BUILD SOURCE...
       lint.py BUILD --changed [COMMIT]

BUILD is a build directory of clang. With --changed the sources are those of src and examples that
changed since COMMIT, and for each header that changed one source that includes it. Without COMMIT,
changed is what the branch adds to the main branch; on the main branch, what the last commit does.
"""

import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
LINTED = ("src/", "examples/")
COUNT = re.compile(r"^\d+ warnings?( and \d+ errors?)? (generated|treated as errors?)\.?$")


def git(*arguments):
    result = subprocess.run(["git", *arguments], cwd=ROOT, text=True, capture_output=True)
    return result.stdout.strip() if result.returncode == 0 else None


def base_commit():
    head = git("rev-parse", "HEAD")
    for branch in ["origin/HEAD", "origin/main", "main"]:
        base = git("merge-base", "HEAD", branch)
        if base and base != head:
            return base
    return git("rev-parse", "--verify", "--quiet", "HEAD~1")


def changed_since(commit):
    """Names relative to the root, of files that still exist. Without a commit, of all files."""
    if commit:
        names = git("diff", "--name-only", "--diff-filter=d", commit)
    else:
        names = git("ls-files")
    if names is None:
        sys.exit(f"lint.py: git does not know the commit {commit}")
    return [name for name in names.splitlines() if name.startswith(LINTED)]


def compiled_sources(build):
    listed = build / "compile_commands.json"
    if not listed.is_file():
        sys.exit(f"lint.py: {listed} is missing: configure the preset first")
    commands = json.loads(listed.read_text())
    paths = {pathlib.Path(entry["file"]) for entry in commands}
    return sorted(path for path in paths
                  if path.is_relative_to(ROOT) and str(path.relative_to(ROOT)).startswith(LINTED))


def reader_of(header, sources):
    """A source in which clang-tidy sees the header: that of the same name, or the first to include
    it."""
    name = pathlib.Path(header).name
    for source in sources:
        if source == (ROOT / header).with_suffix(".cpp"):
            return source
    include = re.compile(rf'^#include ["<]([^">]*/)?{re.escape(name)}[">]', re.MULTILINE)
    return next((source for source in sources if include.search(source.read_text())), None)


def changed_sources(build, commit):
    sources = compiled_sources(build)
    found = set()
    for name in changed_since(commit):
        if name.endswith(".cpp") and ROOT / name in sources:
            found.add(ROOT / name)
        elif name.endswith(".h"):
            reader = reader_of(name, sources)
            if reader is None:
                print(f"not looked at, because no source includes it: {name}")
            else:
                found.add(reader)
    return sorted(found)


def findings(build, source):
    """What clang-tidy says about a source, and whether the source passes."""
    result = subprocess.run(["clang-tidy", "-p", build, "--quiet", source], text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    lines = [line for line in result.stdout.splitlines() if line and not COUNT.match(line)]
    return "\n".join(lines), result.returncode == 0


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    build = pathlib.Path(sys.argv[1])
    if sys.argv[2] == "--changed":
        commit = sys.argv[3] if len(sys.argv) > 3 and sys.argv[3] else base_commit()
        sources = changed_sources(build, commit)
        print(f"{len(sources)} sources", flush=True)
    else:
        sources = [pathlib.Path(name) for name in sys.argv[2:]]
    failed = False
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for text, is_content in pool.map(lambda source: findings(build, source), sources):
            if text:
                print(text, flush=True)
            failed = failed or not is_content
    sys.exit(1 if failed else 0)


main()
