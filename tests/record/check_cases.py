#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Runs the component tests' cases with orv-record in front of the component: a host must not notice
the recorder, except for what docs/record.md says.

usage: check_cases.py ORV_VALIDATE ORV_RECORD LIBEXT_CM
"""
import fnmatch
import os
import pathlib
import re
import subprocess
import sys
import tempfile

GROUPS = ["calls", "translation", "hostile", "children", "threads"]
# What a host notices, and the cases that look for it.
NOTICED = {
    "addresses are those of the recorder": [
        "calls/Conversion.Many_NoNames_KeepsTheProducersArrayAndRelease",
        "calls/Action.ResultWithoutValues_KeepsTheRoutersContainerAndRelease",
        "calls/Interceptors.Initialize_ValidCache_TheFirstAnswerStandsForBothIdentities",
    ],
    "the component is opened by orvLCMinit": [
        "calls/InterceptorBase.Initialize_BeforeTheComponentIsRegistered_LogsAndReturns",
        "calls/InterceptorBase.Initialize_NoHostAttached_LogsThreeAndReturns",
    ],
    "a table that is changed after it was looked up": ["calls/NeverEndingList.*"],
    "an interceptor that comes or goes during an operation": [
        "calls/Order.Set*_InterceptorThat*WhileReferencesAreRecorded_*"],
    "values are read whose texts are no texts": [
        "hostile/Lies/LyingValue.*NoPointer", "hostile/Ids/LyingId.*/OfType5",
        "hostile/Ids/LyingId.*/OfType14"],
    "traces of the lookups for interceptors": [
        "calls/*Traces.*", "calls/Reads.GetMoAttribute_Level8_TracesItsArguments",
        "calls/TracedHost.GetMoAttribute_NullResult_IsTracedToo"],
}


def run(validate, recorder, component, folder):
    words = [word for group in GROUPS for word in ("--filter", f"{group}/*")]
    return subprocess.run(
        [validate, *words, "--timeout", "300", recorder], capture_output=True, text=True,
        timeout=1500, check=False,
        env={**os.environ, "ORV_RECORD_COMPONENT": component,
             "ORV_RECORD_FILE": str(pathlib.Path(folder) / "case.orvrec")})


def failures(report):
    """The story of each case that failed: a line, and those below it, which are indented."""
    stories = re.finditer(r"^(?:FAILED|CRASHED|TIMED OUT) +(\S+).*\n(?:[ \t].*\n|\n)*", report,
                          re.MULTILINE)
    return {story[1]: story[0] for story in stories}


def main():
    validate, recorder, component = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        done = run(validate, recorder, component, folder)
        stories = failures(done.stdout)
        recordings = len(list(pathlib.Path(folder).iterdir()))
    noticed = [pattern for patterns in NOTICED.values() for pattern in patterns]
    passed = re.findall(r"^ok +(\S+)", done.stdout, re.MULTILINE)
    failed = [story for name, story in stories.items()
              if not any(fnmatch.fnmatchcase(name, pattern) for pattern in noticed)]
    print(*failed, done.stderr, f"{len(passed)} cases passed, {recordings} recordings, "
          f"{len(failed)} failures that are not expected", sep="\n")
    # A loader that failed, or a recorder that does nothing, would leave little behind.
    return 0 if not failed and len(passed) > 500 and recordings > 500 else 1


if __name__ == "__main__":
    sys.exit(main())
