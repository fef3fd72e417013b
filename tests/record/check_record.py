#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks orv-record and `orvhost replay`: recordings of different hosts have no difference on the same
build, and show the first one on a build with a fault; bad files are told with their place.

usage: check_record.py ROOT ORVHOST ORV_RECORD LIBEXT_CM FAULTY_EXT_CM COMPONENT_TEST FAULTS_TEST SOAK LIFE_TEST
"""
import os
import pathlib
import resource
import subprocess
import sys
import tempfile

HEAD = b"orv-record 1\n"
SAME, DIFFERENT, USAGE, UNPLAYABLE = 0, 1, 2, 3
LOAD_FAILED = 3


class Bench:
    def __init__(self, programs, folder):
        (self.root, self.orvhost, self.recorder, self.component, self.faulty, self.component_test,
         self.faults_test, self.soak, self.life_test) = programs
        self.folder = pathlib.Path(folder)
        self.problems = []

    def expect(self, name, holds, text=""):
        if not holds:
            self.problems.append(f"{name} does not hold. {text}")

    def record(self, name, command, limit=None, code=0, **variables):
        """Runs a host with the recorder; returns the recordings and what the host printed."""
        file = self.folder / f"{name}.orvrec"
        environment = {**os.environ, "ORV_COMPONENT_LIBRARY": self.recorder,
                       "ORV_RECORD_COMPONENT": self.component, "ORV_RECORD_FILE": str(file),
                       **variables}
        done = subprocess.run(
            command, env=environment, capture_output=True, text=True, timeout=300, check=False,
            cwd=self.root,
            preexec_fn=limit and (lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))))
        text = done.stdout + done.stderr
        self.expect(f"{name}: the host ends with {code}", done.returncode == code,
                    f"{done.returncode}: {text}")
        return sorted(self.folder.glob(f"{name}.orvrec*")), text

    def demo(self, name, *options, **variables):
        models = ["-I", "examples/models", "-m", "ran-element", "-m", "ran-equipment",
                  "-m", "ran-function"]
        return self.record(name, [
            self.orvhost, "--project", "", "--ext-cm", self.recorder, *models,
            "-d", "examples/data/harbour.json", "--me-id", "Harbour",
            "-f", "examples/scenarios/demo.orv", *options], **variables)

    def replay(self, name, code, parts, *arguments, **variables):
        done = subprocess.run([self.orvhost, "replay", *map(str, arguments)],
                              env={**os.environ, **variables}, capture_output=True, text=True,
                              timeout=300, check=False)
        text = done.stdout + done.stderr
        self.expect(f"{name}: ends with {code}", done.returncode == code,
                    f"{done.returncode}: {text}")
        for part in parts:
            self.expect(f"{name}: prints {part!r}", part in text, text)

    def same(self, name, recordings, least=1):
        self.expect(f"{name}: there are recordings", len(recordings) >= least, str(recordings))
        for recording in recordings:
            self.replay(f"{name} {recording.name}", SAME, ["no difference"], recording,
                        "--ext-cm", self.component)


def check_hosts(bench):
    demo, _ = bench.demo("demo")
    bench.same("demo", demo)
    bench.expect("a recording is for its owner alone", demo[0].stat().st_mode & 0o777 == 0o600)
    again, _ = bench.demo("demo")
    bench.same("second recording", again, least=2)
    for case in ["HostFaults.*/SetMoAttributeBidirectional", "HostFaults.*/Validate",
                 "ThrowingHost.*/GetMoAttributeIntercepted"]:
        name = "faults-" + case.rsplit("/", 1)[1]
        faults, _ = bench.record(name, [bench.faults_test, f"--gtest_filter=Operations/{case}"])
        bench.same(case, faults)
    calls_back, _ = bench.record("interceptor", [
        bench.component_test, "--gtest_filter=Interceptors.CallsTheComponentBack_IsServed"])
    bench.same("interceptor that calls back", calls_back)
    return demo[0]


def check_lives(bench):
    """What a host may do without the recorder it may do with it; each opening has a recording."""
    cases = {"TerminatedTwice_ValuesAreReleasedAfterTheEnd": 1,
             "BegunAgain_AnInterceptorIsStillThere": 1,
             "ClosedAndOpened_IsAFreshComponent": 2,
             "ClosedAsItIs_ValuesOfTheHostAreReleased": 1,
             "Forked_TheChildIsServedAndNotRecorded": 1,
             "NoMemory_TheInterceptorIsAskedByTheNextOperation": 1,
             "NoMemory_NoInterceptorIsPassedOverOrAskedTooLong": 1,
             "LogSinkThrowsAnInt_ItReachesTheHost": 1,
             "EndOfProcess_Started": 1,
             "EndOfProcess_Terminated": 1,
             "EndOfProcess_ClosedByAStaticObject": 1}
    for case, openings in cases.items():
        command = [bench.life_test, f"--gtest_filter=RecorderLife.{case}"]
        bench.record(f"direct-{case}", command, ORV_COMPONENT_LIBRARY=bench.component)
        recordings, text = bench.record(case, command)
        bench.expect(f"{case}: one test runs", "Running 1 test " in text, text)
        bench.expect(f"{case}: there are {openings} recordings", len(recordings) == openings,
                     str(recordings))
        bench.same(case, recordings)


def blocks(recording):
    """Where the blocks begin, and the end of the last one."""
    places = [len(HEAD)]
    while places[-1] < len(recording) and recording[places[-1]:places[-1] + 1] == b"B":
        at = places[-1]
        places.append(at + 9 + int.from_bytes(recording[at + 1:at + 5], "little"))
    return places


def is_whole(recording):
    """True if there is one block behind the other, to the end."""
    return recording.startswith(HEAD) and blocks(recording)[-1] == len(recording)


def life_case(bench, case, **variables):
    recordings, text = bench.record(
        case, [bench.life_test, f"--gtest_filter=RecorderLife.{case}"], **variables)
    bench.expect(f"{case}: one test runs", "Running 1 test " in text, text)
    return recordings


def check_log_sink(bench):
    """A host whose log sink throws at the line that says that the recording ends."""
    bench.same("limit and log sink", life_case(
        bench, "LogSinkThrowsAnIntForTheEnd_TheHostIsServed", ORV_RECORD_LIMIT="1"))


def check_long_call(bench):
    """A call with many inside is written in parts; without its end it is not played."""
    whole = life_case(bench, "CallWithManyInside_IsWrittenAsItRuns")
    bench.same("long call", whole)
    recording = whole[0].read_bytes()
    places = blocks(recording)
    sizes = [end - begin for begin, end in zip(places, places[1:])]
    bench.expect("no block is much larger than a megabyte", max(sizes) < 1_200_000, str(sizes))
    first = next(place for place, size in zip(places, sizes) if size > 1_000_000)
    no_end = f"byte {first}: the call that begins here has no end in the file"
    parts = [at for at, size in enumerate(sizes) if size > 1_000_000]
    bench.expect("a call has several parts", len(parts) > 2, str(sizes))
    cut = bench.folder / "cut"
    cut.write_bytes(recording[:places[parts[1]]])
    bench.replay("the process died in a long call", UNPLAYABLE, ["no difference so far", no_end],
                 cut, "--ext-cm", bench.component)
    # What comes behind cannot be played either, nor what overlaps.
    cut.write_bytes(recording[:places[parts[1]]] + block(b"", begin=1 << 40) + b"x")
    bench.replay("others behind it", UNPLAYABLE, [no_end, "no record begins here"], cut,
                 "--ext-cm", bench.component)
    limited = life_case(bench, "CallWithManyInside_EndsTheRecording", ORV_RECORD_LIMIT="2")
    bench.expect("the limit holds in a long call", limited[0].stat().st_size <= 2_000_000)
    bench.replay("the limit in a long call", UNPLAYABLE, [no_end], limited[0], "--ext-cm",
                 bench.component)


def check_threads_without_space(bench):
    """The thread whose block does not fit ends the recording; none writes behind it."""
    limit = 250_000
    for run in range(3):
        recordings, _ = bench.record(
            f"threads-{run}",
            [bench.life_test, "--gtest_filter=RecorderLife.NoSpace_AllThreadsAreServed"],
            limit=limit)
        content = recordings[0].read_bytes()
        bench.expect(f"recording {run} of {len(content)} bytes is near its limit",
                     limit / 2 < len(content) <= limit)
        bench.expect(f"recording {run} is whole", is_whole(content))


def check_difference(bench, demo):
    bench.replay("fault", DIFFERENT, [
        "Resource 2: validate(2)", "  recorded  host's VekMgmtSpiThreadContext 2: addMessage(1, ",
        "is not in range (0..2).", "  came      "], demo, "--component", bench.faulty)
    bench.replay("fault in JSON", DIFFERENT, ['"difference":{'], demo, "--json", "--component",
                 bench.faulty)


def check_soak(bench):
    soak = [bench.soak, "--operations", "1500", "--transactions", "20", "--threads", "1", "--seed",
            "4"]
    whole, _ = bench.record("soak", soak)
    bench.same("soak", whole)
    bench.replay("soak on the faulty build", DIFFERENT, ["came"], whole[0], "--ext-cm", bench.faulty)
    bench.expect("the soak fills more than a megabyte", whole[0].stat().st_size > 1_000_000)
    limited, _ = bench.record("limited", soak, ORV_RECORD_LIMIT="1")
    bench.expect("the limit holds", limited[0].stat().st_size <= 1_000_000)
    bench.same("limited", limited)
    # As on a full disk: the host goes on, and what was written is whole.
    full, _ = bench.record("full", soak, limit=500_000)
    bench.expect("the file stays below", full[0].stat().st_size <= 500_000)
    bench.same("full", full)


def check_bad_files(bench, demo):
    bytes_ = demo.read_bytes()
    bad = bench.folder / "bad"
    bad.write_bytes(bytes_[:-10])
    bench.replay("cut off", UNPLAYABLE, ["no difference so far", "byte ", "in the middle"], bad)
    bad.write_bytes(bytes_[:3000] + bytes([bytes_[3000] ^ 1]) + bytes_[3001:])
    bench.replay("damaged", UNPLAYABLE, ["byte ", "checksum"], bad)
    bad.write_bytes(bytes_ + b"x")
    bench.replay("something behind", UNPLAYABLE, ["no record begins here"], bad)
    bad.write_text("{}")
    bench.replay("no recording", UNPLAYABLE, ["is no recording"], bad)
    bench.replay("no file", UNPLAYABLE, ["cannot be read"], bench.folder / "none")
    bench.replay("no component", UNPLAYABLE, ["cannot be opened"], demo, "--component", bad)
    bench.replay("no words", USAGE, ["replay needs FILE"])
    bench.replay("two components", USAGE, ["at most one --component"], demo, "-C", "a", "-C", "b")
    bench.replay("a model", USAGE, ["--model cannot be combined with replay"], demo, "-m", "x")
    bench.replay("a server", USAGE, ["replay cannot be combined with --connect"], demo,
                 "--connect", "x")
    bad.write_bytes(b"")
    bench.replay("empty", UNPLAYABLE, ["is no recording"], bad)
    bench.replay("a folder", UNPLAYABLE, ["cannot be read: Is a directory"], bench.folder)
    overlapping, _ = bench.record("overlapping", [
        bench.component_test, "--gtest_filter=Iteration.RouterAtWork_OtherThreadsAreServed"])
    bench.replay("two threads at once", UNPLAYABLE, ["overlap"], overlapping[0])


def number(value):
    low, high = value & 0x7f, value >> 7
    return bytes([low]) if high == 0 else bytes([low | 0x80]) + number(high)


def block(events, begin=1):
    """A record that no recorder has written, with the right checksum."""
    body = number(begin) + number(begin + 1) + number(1) + events
    checksum = 2166136261
    for byte in body:
        checksum = (checksum ^ byte) * 16777619 & 0xffffffff
    return b"B" + len(body).to_bytes(4, "little") + checksum.to_bytes(4, "little") + body


BEGIN, END = 1, 2
COMPONENT, HOST = 0, 1
LIFE, PORTAL, MO_3_1, RELEASE, UNKNOWN = 1, 2, 5, 11, 99


def call(side, shape, slot, values):
    return bytes([BEGIN, side, shape, slot, 0, 1]) + number(len(values)) + values


def check_forged_files(bench, demo):
    """A file may come from anybody: what no recorder writes is told, and does no harm."""
    head = HEAD
    init = call(COMPONENT, LIFE, 0, b"\1\0")
    get_portal = call(HOST, PORTAL, 0, number(2) + b"1")
    text = number(2) + b"x"
    millions = b"\1" + text + b"\1" + b"\1" + text + b"\5" + number(4_000_000) + b"\1"
    later = 1 << 40
    forged = {
        "an unknown event": (head + block(b"\x63"), "an event of an unknown kind"),
        "an answer alone": (head + block(bytes([END, 0, 0, 0])), "an answer without a call"),
        "no end": (head + block(call(COMPONENT, LIFE, 3, b"")), "a call without an end"),
        "an unknown table": (head + block(call(COMPONENT, UNKNOWN, 0, b"")), "that no component has"),
        "an unknown step of life": (head + block(call(COMPONENT, LIFE, 9, b"\0")),
                                    "that no component has"),
        "no component yet": (head + block(call(COMPONENT, LIFE, 1, b"\0")), "has not registered"),
        "a strange release": (head + block(call(COMPONENT, RELEASE, 0, b"\1")), "that was not given"),
        "too short": (head + block(init[:-2]), "longer than its record"),
        "a long number": (head + block(call(COMPONENT, RELEASE, 0, b"\xff" * 11)),
                          "a number that does not end"),
        "calls in calls": (head + block((init + get_portal) * 100_000), "nested deeper"),
        # What follows needs a component that has registered: a recording goes before it.
        "an unknown slot": (demo.read_bytes() + block(call(COMPONENT, MO_3_1, 9, b"\1"), later),
                            "a slot that the table does not have"),
        "millions of values": (demo.read_bytes() + block(call(COMPONENT, MO_3_1, 0, millions), later),
                               "more values than its record has"),
    }
    file = bench.folder / "forged"
    for name, (bytes_, told) in forged.items():
        file.write_bytes(bytes_)
        bench.replay(f"forged: {name}", UNPLAYABLE, ["byte ", told], file, "--ext-cm",
                     bench.component)


def check_settings(bench):
    nowhere, text = bench.demo("nowhere", ORV_RECORD_FILE=str(bench.folder / "none" / "x"))
    bench.expect("nothing is written", not nowhere)
    bench.expect("it is said once", text.count("nothing is recorded") == 1, text)
    for limit in ["0", "-1", "1x", "1000001"]:
        _, text = bench.demo("limits", code=LOAD_FAILED, ORV_RECORD_LIMIT=limit)
        bench.expect(f"limit {limit} is refused", f"ORV_RECORD_LIMIT is '{limit}'" in text, text)
    _, text = bench.demo("absent", code=LOAD_FAILED, ORV_RECORD_COMPONENT="/none/libext_cm.so")
    bench.expect("a component that is not there is named", "/none/libext_cm.so" in text, text)
    other = str(pathlib.Path(bench.component).with_name("liborv_common.so"))
    _, text = bench.demo("other", code=LOAD_FAILED, ORV_RECORD_COMPONENT=other)
    bench.expect("what is no component is named", f"{other} has no entry points" in text, text)
    _, text = bench.demo("itself", code=LOAD_FAILED, ORV_RECORD_COMPONENT=bench.recorder)
    bench.expect("the recorder does not record itself", "is the recorder itself" in text, text)


def check_project(bench, demo):
    """What a project loads beside the component is not what a recording is played against."""
    bench.replay("a variable", SAME, ["no difference"], demo, "--ext-cm", bench.component,
                 ORVHOST_COMPONENT=bench.faulty)


def main():
    with tempfile.TemporaryDirectory() as folder:
        bench = Bench(sys.argv[1:], folder)
        demo = check_hosts(bench)
        check_difference(bench, demo)
        check_lives(bench)
        check_threads_without_space(bench)
        check_log_sink(bench)
        check_long_call(bench)
        check_soak(bench)
        check_bad_files(bench, demo)
        check_forged_files(bench, demo)
        check_settings(bench)
        check_project(bench, demo)
    print("\n".join(bench.problems) or "all as expected")
    return 1 if bench.problems else 0


if __name__ == "__main__":
    sys.exit(main())
