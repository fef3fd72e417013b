#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks orv-validate: its exit codes, its reports, and what it says of broken shared objects.

usage: check_validate.py ORV_VALIDATE LIBEXT_CM LIBORV_COMMON BROKEN...

BROKEN: shared objects of BrokenInit.cpp, which are known by their names.
"""
import os
import pty
import signal
import subprocess
import sys
import tempfile
import time
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
                              timeout=1000, check=False) # all cases, with sanitizers
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


def check_broken(checks, broken, folder):
    crashes = broken["init_crashes"]
    one = ["--filter", "calls/Init.*", "--timeout", "1"]
    checks.run("crash", FAILED, ["CRASHED  calls/Init.", "SIGABRT"], crashes, *one)
    checks.run("hang", FAILED, ["TIMED OUT  calls/Init.", "not done after 1 seconds"],
               broken["init_hangs"], *one)
    checks.run("end", FAILED, ["CRASHED  calls/Init.", "in the middle of the case"],
               broken["init_ends"], *one)
    checks.run("endless output", FAILED, ["TIMED OUT  calls/Init."], broken["init_talks"],
               *one)
    tap = checks.run("crash in TAP", FAILED, ["not ok 1 - calls/Init."], crashes, "--format", "tap",
                     *one)
    checks.expect("no test in TAP is ok", "\nok " not in tap)
    path = os.path.join(folder, "broken.xml")
    checks.run("crash in JUnit", FAILED, [], crashes, "--format", "junit", "-o", path, *one)
    suite = ElementTree.parse(path).getroot().find("testsuite")
    checks.expect("errors in JUnit", int(suite.get("errors")) == len(suite.findall(".//error")) > 0)
    text = checks.run("nothing registered", FAILED, [
        "FAILED  calls/Start.", "Expected: orvLCMinit calls registerComponent",
        "Came: it has registered nothing"], broken["init_registers_nothing"], *FEW)
    checks.expect("nothing registered is no crash", "CRASHED" not in text)
    text = checks.run("process left behind", FAILED, ["FAILED  calls/Init."], broken["init_forks"],
                      *one)
    checks.expect("a process left behind takes no time", "TIMED OUT" not in text)
    checks.run("end at unload", FAILED, ["CRASHED  calls/Init.", "in the middle of the case"],
               broken["unload_ends"], *one)
    tap = checks.run("words at load", FAILED, [], broken["load_talks"], "--format", "tap", *one)
    checks.expect("TAP has nothing of the component", tap.startswith("TAP version 14\n1.."))
    for name, reason in [("load_hangs", "not done after 1 seconds"),
                         ("load_ends", "status 0 before it was loaded")]:
        checks.run(name, NOT_LOADABLE, [broken[name], reason], broken[name], *one)


SET = "OrvOamSpiManagedObject_3.setMoAttribute"
OPEN = "OrvOamSpiManagedObject_3.newMoIterator"
REFERENCES = ["--filter", "calls/Set.Reference_TheFarSideFollows", "--timeout", "2"]
STORY = [ # of the case REFERENCES, with a component that does not come back from the second call
    "  loading the component\n",
    "  orvLCMinit(accessor, null) -> 0\n",
    "    Portal1.registerComponent('OrvOamSpiExtCmRouterService') -> 0\n",
    "  OrvMgmtSpiComponent_1.start(HostStart) -> 0\n",
    f"  {SET}(1, 'ManagedElement=paris,Unit=7', 'cells', "
    "MoRef['ManagedElement=paris,Cell=1', 'ManagedElement=paris,Cell=2']) -> 0\n",
    f"> {SET}(1, 'ManagedElement=paris,Unit=7', 'cells', "
    "MoRef['ManagedElement=paris,Cell=2', 'ManagedElement=paris,Cell=3']) has not returned\n",
    "    Portal1.getInterface('broken', 'Nothing', '1') -> -2\n"]


def are_in_order(parts, text):
    """True if text has all the parts, each behind the one before it."""
    place = 0
    for part in parts:
        place = text.find(part, place)
        if place < 0:
            return False
        place += len(part)
    return True


def check_stories(checks, broken, library, folder):
    """The call in which a component broke, its arguments, and what came before it."""
    ends = {
        "call_crashes": f"the process was ended by SIGSEGV, in {SET}",
        "call_is_killed": f"the process was ended by SIGKILL, in {SET}",
        "call_ends": f"the process ended in the middle of the case, with status 0, in {SET}"}
    for name, reason in ends.items():
        text = checks.run(name, FAILED, [reason], broken[name], *REFERENCES)
        checks.expect(f"{name}: the story: {text}", are_in_order(STORY, text))
        checks.expect(f"{name}: one step has not returned",
                      text.count("\n    > ") == text.count("has not returned") == 1)
    tap = checks.run("story in TAP", FAILED, [ends["call_crashes"]], broken["call_crashes"],
                     "--format", "tap", *REFERENCES)
    checks.expect(f"the story in TAP: {tap}", are_in_order(STORY, tap))
    path = os.path.join(folder, "story.xml")
    checks.run("story in JUnit", FAILED, [], broken["call_crashes"], "--format", "junit", "-o",
               path, *REFERENCES)
    error = ElementTree.parse(path).getroot().find(".//error")
    checks.expect("the call in JUnit's message", error.get("message") == ends["call_crashes"])
    checks.expect(f"the story in JUnit: {error.text}", are_in_order(STORY, error.text))

    text = checks.run("throws", FAILED, ["FAILED  calls/Set.", "What the host did:\n"],
                      broken["call_throws"], *REFERENCES)
    checks.expect(f"what is thrown is in the story: {text}", are_in_order(
        [f"{SET}(", " -> 0\n", f"{SET}(", " -> an exception\n", "stop(Requested) -> 0\n"], text))
    # Many calls of the host take no step away, and many steps not the last one.
    text = checks.run("asks", FAILED, [f"not done after 2 seconds, in {SET}"], broken["call_asks"],
                      *REFERENCES)
    checks.expect(f"the last calls are kept: {text}", are_in_order(
        ["(883 earlier calls not shown)\n", "start(", f"> {SET}(", "'again'"], text))
    checks.expect("120 calls", text.count(" Portal1.getInterface('again'") == 120)
    text = checks.run("many steps", FAILED, [f"not done after 2 seconds, in {OPEN}"],
                      broken["call_hangs_after_200"], "--timeout", "2", "--filter",
                      "calls/Iteration.Thousands_AllDieWithTheirTransaction")
    step = "(2, 'ManagedElement=paris', 'Unit') -> 0, 4711\n"
    checks.expect(f"the last steps are kept: {text}", are_in_order(
        ["(144 earlier steps not shown)\n", "(2 earlier calls not shown)\n", f"  {OPEN}{step}",
         f"> {OPEN}(1, 'ManagedElement=paris', 'Unit') has not returned\n"], text))
    checks.expect("60 steps", text.count(f" {OPEN}(") == 60)
    # Values with which a case lies: one that contains itself, one that points nowhere.
    hangs = [broken["call_hangs_after_0"], "--timeout", "1"]
    checks.run("a ring", FAILED, [f"> {SET}(", "near: ..., inner: ...}]}]}]", ") has not returned"],
               *hangs, "--filter", "hostile/RingOfStructs.EachOperation_Refuses")
    checks.run("no pointer", FAILED, [f"> {SET}(", "String[?]) has not returned"], *hangs,
               "--filter", "hostile/*/TextThatIsNoPointer")

    text = checks.run("nothing under way", FAILED, ["status 0, in unloading the component\n"],
                      broken["unload_ends"], "--filter", "calls/Init.BothPortals_*")
    checks.expect("the end is told", are_in_order(["orvLCMterminate()\n",
                                                   "> unloading the component has"], text))
    text = checks.run("no story of what passes", PASSED, [], library, *FEW)
    checks.expect("a case that passes is one line",
                  len(text.splitlines()) == text.count("ok  ") + 1)


def check_all_need_the_component(checks, crashes):
    """With a component that cannot even start, hardly anything may pass."""
    text = checks.run("all cases", FAILED, [], crashes)
    passed = [line.split()[1] for line in text.splitlines() if line.startswith("ok  ")]
    checks.expect(f"only what needs no start passes: {passed}",
                  passed == ["calls/Terminate.BeforeInit_DoesNothing"])


def children_of(parent):
    """The processes that have this parent."""
    found = []
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{name}/stat", encoding="utf-8", errors="replace") as file:
                state, owner = file.read().rpartition(")")[2].split()[:2]
        except OSError:
            continue
        if int(owner) == parent and state != "Z":
            found.append(int(name))
    return found


def wait_until(holds):
    for _ in range(600):
        if holds():
            return True
        time.sleep(0.1)
    return False


def check_interruption(checks, hangs, folder):
    """One case passes at once, the other hangs: what is known, and what is left, at the end."""
    passing = "calls/Terminate.BeforeInit_DoesNothing"
    words = ["--filter", passing, "--filter", "calls/Init.BothPortals_*", "-j", "2"]
    for sent in (signal.SIGTERM, signal.SIGINT, signal.SIGKILL):
        for form in ("text", "tap", "junit"):
            name = f"{form} and {sent.name}"
            path = os.path.join(folder, f"{form}.{sent.name}")
            with subprocess.Popen([checks.program, hangs, *words, "--format", form, "-o", path],
                                  stdout=subprocess.PIPE, text=True) as run:
                known = path if form != "junit" else path + ".part"

                def is_running():
                    return len(children_of(run.pid)) == 1 and os.path.exists(known) and (
                        form == "junit" or passing in read(known))

                checks.expect(f"{name}: it comes case by case", wait_until(is_running))
                cases = children_of(run.pid)
                run.send_signal(sent)
                out = run.communicate(timeout=300)[0]
            checks.expect(f"{name}: ends by the signal", run.returncode == -sent)
            checks.expect(f"{name}: no case goes on", wait_until(
                lambda: not any(os.path.exists(f"/proc/{case}") for case in cases)))
            if sent == signal.SIGKILL:
                checks.expect(f"{name}: what is known is there",
                              not os.path.exists(path) if form == "junit" else
                              passing in read(path))
                continue
            said = f"ended by {sent.name} after "
            checks.expect(f"{name}: it says so", said in out and said in read(path))
            if form == "junit":
                suite = ElementTree.parse(path).getroot().find("testsuite")
                checks.expect(f"{name}: no green run", int(suite.get("errors")) == 1)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def check_progress(checks, library, folder):
    """A terminal shows how far the run is, if the report goes elsewhere."""
    ours, theirs = pty.openpty()
    with subprocess.Popen([checks.program, library, *FEW, "-o", os.path.join(folder, "progress")],
                          stdout=subprocess.DEVNULL, stderr=theirs) as run:
        os.close(theirs)
        shown = b""
        try:
            while part := os.read(ours, 4096):
                shown += part
        except OSError:
            pass # the other end is closed
    os.close(ours)
    checks.expect(f"progress: {shown}", b"1 of " in shown and b", 0 failed" in shown)


def check_not_loadable(checks, library, other_library, interceptor, folder):
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
        interceptor: "libext_cm.so, as interceptors are",
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
    program, library, other_library, interceptor, *paths = sys.argv[1:]
    broken = {os.path.basename(path).split("validate_")[1].split(".")[0]: path for path in paths}
    checks = Checks(program)
    with tempfile.TemporaryDirectory() as folder:
        check_reports(checks, library, folder)
        check_broken(checks, broken, folder)
        check_stories(checks, broken, library, folder)
        check_interruption(checks, broken["init_hangs"], folder)
        check_progress(checks, library, folder)
        check_not_loadable(checks, library, other_library, interceptor, folder)
    check_all_need_the_component(checks, broken["init_crashes"])
    check_usage(checks, library)
    for problem in checks.problems:
        print(problem)
    return 1 if checks.problems else 0


if __name__ == "__main__":
    sys.exit(main())
