#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks orv-validate: its exit codes, its reports, and what it says of broken shared objects.

usage: check_validate.py ORV_VALIDATE LIBEXT_CM LIBORV_COMMON INIT_CRASHES INIT_HANGS INIT_ENDS INIT_TALKS
"""
import os
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

FEW = ["--filter", "calls/Start.*"]
PASSED, FAILED, USAGE, NOT_LOADABLE = 0, 1, 2, 3


class Checks:
    def __init__(self, program):
        self.program = program
        self.problems = []

    def run(self, name, code, parts, *arguments):
        """Runs the program; each of the parts must be in what it prints. Returns what it prints."""
        done = subprocess.run([self.program, *arguments], capture_output=True, text=True,
                              timeout=300, check=False)
        text = done.stdout + done.stderr
        if done.returncode != code:
            self.problems.append(f"{name}: ended with {done.returncode}, expected {code}: {text}")
        for part in parts:
            if part not in text:
                self.problems.append(f"{name}: expected {part!r} in: {text}")
        return done.stdout

    def expect(self, name, holds):
        if not holds:
            self.problems.append(f"{name} does not hold")


def check_reports(checks, library, folder):
    text = checks.run("text", PASSED, ["ok  calls/Start.", " cases, 0 failed"], library, *FEW)
    names = checks.run("list", PASSED, ["calls/Start."], "--list", *FEW).splitlines()
    checks.expect("one line for each case", text.count("ok  ") == len(names) > 10)
    tap = checks.run("tap", PASSED, [f"1..{len(names)}", "ok 1 - calls/Start."], library,
                     "--format", "tap", *FEW)
    checks.expect("one test in TAP for each case", tap.count("\nok ") == len(names))
    path = os.path.join(folder, "report.xml")
    checks.run("junit", PASSED, [f"{len(names)} cases, 0 failed"], library, "--format", "junit",
               "-o", path, *FEW)
    suite = ElementTree.parse(path).getroot().find("testsuite")
    checks.expect("one case in JUnit for each case", len(suite.findall("testcase")) == len(names))
    every = checks.run("all names", PASSED, [], "--list").splitlines()
    os.environ["GTEST_FILTER"] = "-*Init*"
    checks.expect("the environment takes no case away",
                  checks.run("filtered", PASSED, [], "--list").splitlines() == every)
    del os.environ["GTEST_FILTER"]
    groups = {name.split("/")[0] for name in every}
    checks.expect("all groups are listed", groups == {
        "calls", "children", "faults", "hostile", "locks", "threads", "translation"})
    checks.expect("each name is there once", len(every) == len(set(every)) > 1500)


def check_broken(checks, crashes, hangs, ends, talks, folder):
    one = ["--filter", "calls/Init.*", "--timeout", "1"]
    checks.run("crash", FAILED, ["CRASHED  calls/Init.", "SIGABRT"], crashes, *one)
    checks.run("hang", FAILED, ["TIMED OUT  calls/Init.", "not done after 1 seconds"], hangs, *one)
    checks.run("end", FAILED, ["CRASHED  calls/Init.", "in the middle of the case"], ends, *one)
    checks.run("endless output", FAILED, ["TIMED OUT  calls/Init."], talks, *one)
    tap = checks.run("crash in TAP", FAILED, ["not ok 1 - calls/Init."], crashes, "--format", "tap",
                     *one)
    checks.expect("no test in TAP is ok", "\nok " not in tap)
    path = os.path.join(folder, "broken.xml")
    checks.run("crash in JUnit", FAILED, [], crashes, "--format", "junit", "-o", path, *one)
    suite = ElementTree.parse(path).getroot().find("testsuite")
    checks.expect("errors in JUnit", int(suite.get("errors")) == len(suite.findall(".//error")) > 0)


def check_not_loadable(checks, library, other_library, folder):
    def file(name, content):
        path = os.path.join(folder, name)
        with open(path, "wb") as out:
            out.write(content)
        return path

    with open(library, "rb") as whole:
        content = bytearray(whole.read())
    content[18:20] = b"\xff\x7e"
    cases = {
        os.path.join(folder, "nowhere.so"): "there is no such file",
        folder: "this is not a file",
        file("text.so", b"not a shared object"): "not an ELF file",
        file("empty.so", b""): "not an ELF file",
        file("elsewhere.so", bytes(content)): "another architecture",
        file("cut.so", open(library, "rb").read(4096)): "cut.so",
        other_library: "does not export orvLCMinit",
    }
    for path, reason in cases.items():
        checks.run(path, NOT_LOADABLE, [path, reason], path, *FEW)


def check_usage(checks, library):
    checks.run("no library", USAGE, ["which component?"])
    checks.run("no such option", USAGE, ["--nonsense"], "--nonsense", library)
    checks.run("no such format", USAGE, ["--format"], "--format", "html", library)
    checks.run("no case", USAGE, ["no case matches"], "--filter", "nothing", library)
    checks.run("report nowhere", USAGE, ["cannot be written"], library, "-o", "/nonexistent/x",
               *FEW)
    checks.run("many groups in process", USAGE, ["one group"], "--in-process", library)
    checks.run("in process", PASSED, ["[  PASSED  ] 1 test."], "--in-process", "--filter",
               "calls/Start.AllThere_LooksUpInOrder", library)
    checks.run("help", PASSED, ["--filter"], "--help")


def main():
    program, library, other_library, crashes, hangs, ends, talks = sys.argv[1:]
    checks = Checks(program)
    with tempfile.TemporaryDirectory() as folder:
        check_reports(checks, library, folder)
        check_broken(checks, crashes, hangs, ends, talks, folder)
        check_not_loadable(checks, library, other_library, folder)
    check_usage(checks, library)
    for problem in checks.problems:
        print(problem)
    return 1 if checks.problems else 0


if __name__ == "__main__":
    sys.exit(main())
