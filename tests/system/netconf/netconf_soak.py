#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Eight clients edit at random, fight for locks and kill each other; then every association is
recounted from both sides, and the server's memory must have grown by nothing but the list that the
component keeps, whose size the server logs.

usage: netconf_soak.py ORVHOST EXT_CM EXAMPLES [MINUTES [SEED]] [--sanitized]
--sanitized: memory is not compared; a sanitizer keeps freed blocks, and notes about all
"""

import collections
import os
import pathlib
import random
import re
import sys
import tempfile
import threading
import time
import xml.etree.ElementTree as ElementTree

from netconf_server_test import LocalClient, Server, antenna, equipment, rpc

CLIENTS = 8
# Megabytes that the server may have more at the end than when it started, besides the list: its
# sessions' threads and what the allocator keeps for them. And which part of the list the estimate
# of its blocks may be wrong by.
WORKING_MEMORY = 40
UNCERTAIN = 0.1
IS_SANITIZED = "--sanitized" in sys.argv
if IS_SANITIZED:
    sys.argv.remove("--sanitized")
MINUTES = float(sys.argv[4]) if len(sys.argv) > 4 else 0.25
SEED = int(sys.argv[5]) if len(sys.argv) > 5 else 1
# Radio units of the example, to which others refer. Those up to UNITS are made with references of their
# own. Only later ones are deleted, and these hold no references: a sector keeps its reference to a
# deleted unit, and the unit that is made again under its name does not get the other side.
LASTING_UNITS = 2
UNITS = 5
ANTENNAS = (antenna(1, 1), antenna(1, 2), antenna(2, 1))
# What a client of many must expect. Anything else is a failure.
EXPECTED = {"in-use", "lock-denied", "operation-failed", "data-missing", "data-exists",
            "invalid-value"}
# Class and attribute of both sides.
ASSOCIATIONS = (
    (("RadioUnit", "sectorRef"), ("Sector", "radioUnitRef")),
    (("RadioUnit", "antennaRef"), ("Antenna", "radioUnitRef")),
    (("BasebandUnit", "standbyRef"), ("BasebandUnit", "standbyForRef")),
)


class Tally:
    """What the clients have done; for all threads."""

    def __init__(self):
        self.mutex = threading.Lock()
        self.counts = collections.Counter()
        self.failures = []
        self.sessions = {}

    def count(self, what):
        with self.mutex:
            self.counts[what] += 1

    def fail(self, text):
        with self.mutex:
            self.failures.append(text)


class Actor(threading.Thread):
    def __init__(self, server, tally, number, end):
        super().__init__()
        self.server, self.tally, self.number, self.end = server, tally, number, end
        self.random = random.Random(SEED * 1000 + number)
        self.client = None

    def run(self):
        try:
            while time.monotonic() < self.end:
                self.use_a_session()
        except Exception as failure:  # every failure of a thread must reach the verdict
            self.tally.fail(f"client {self.number}: {failure!r}")

    def use_a_session(self):
        self.client = LocalClient(self.server)
        session = int(re.search(r"<session-id>(\d+)<", self.client.hello).group(1))
        with self.tally.mutex:
            self.tally.sessions[self.number] = session
        try:
            for _ in range(self.random.randrange(20, 200)):
                if time.monotonic() >= self.end:
                    break
                self.act(session)
        except TimeoutError:
            raise  # a server that does not answer
        except (EOFError, OSError):
            # A killed session ends without an answer.
            self.tally.count("session lost")
        finally:
            self.client.close()

    def act(self, session):
        action = self.random.choices(
            (self.edit_running, self.edit_candidate, self.fight, self.read, self.kill),
            (40, 30, 10, 10, 1))[0]
        action(session)

    def ask(self, operation, what):
        answer = self.client.ask(rpc(operation))
        tags = re.findall(r"<error-tag>([^<]*)<", answer)
        for tag in tags:
            if tag not in EXPECTED:
                self.tally.fail(f"{what}: {answer[:1000]}")
        self.tally.count(f"{what}: {tags[0] if tags else 'ok'}")
        return not tags

    def edit(self, target):
        self.ask(f"<edit-config><target><{target}/></target><config>{self.content()}</config>"
                 "</edit-config>", f"edit {target}")

    def edit_running(self, _):
        self.edit("running")

    def edit_candidate(self, _):
        for _ in range(self.random.randrange(1, 5)):
            self.edit("candidate")
        self.ask(self.random.choice(("<commit/>", "<commit/>", "<discard-changes/>")), "end")

    def content(self):
        chance = self.random
        kind = chance.randrange(5)
        unit = f"<radioUnitId>{chance.randrange(1, UNITS + 1)}</radioUnitId>"
        if kind == 0:
            sector = chance.randrange(1, 3)
            reference = f"ManagedElement=Harbour,Equipment=1,Sector={sector}"
            return equipment(f"<RadioUnit>{unit}<sectorRef>{reference}</sectorRef></RadioUnit>")
        if kind == 1:
            place = chance.choice(ANTENNAS)
            change = chance.choice(("merge", "remove"))
            return equipment(
                f"<RadioUnit>{unit}<antennaRef {operation(change)}>{place}</antennaRef></RadioUnit>")
        if kind == 2:
            short_lived = f"<radioUnitId>{chance.randrange(UNITS + 1, UNITS + 4)}</radioUnitId>"
            change = chance.choice(("merge", "remove"))
            return equipment(f"<RadioUnit {operation(change)}>{short_lived}</RadioUnit>")
        if kind == 3:
            label = f"<userLabel>{chance.randrange(100)}</userLabel>"
            return equipment(f"<RadioUnit>{unit}{label}</RadioUnit>")
        reference = f"ManagedElement=Harbour,Equipment=1,RadioUnit={chance.randrange(1, LASTING_UNITS + 1)}"
        sector = f"<sectorId>{chance.randrange(1, 3)}</sectorId>"
        change = chance.choice(("merge", "remove"))
        return equipment(f"<Sector>{sector}<radioUnitRef {operation(change)}>{reference}"
                         "</radioUnitRef></Sector>")

    def fight(self, _):
        store = self.random.choice(("running", "candidate"))
        target = f"<target><{store}/></target>"
        if self.ask(f"<lock>{target}</lock>", "lock"):
            self.edit(store)
            self.ask(f"<unlock>{target}</unlock>", "unlock")

    def read(self, _):
        self.ask("<get-config><source><candidate/></source></get-config>", "read")

    def kill(self, session):
        with self.tally.mutex:
            others = [one for one in self.tally.sessions.values() if one != session]
        if others:
            self.ask(f"<kill-session><session-id>{self.random.choice(others)}</session-id>"
                     "</kill-session>", "kill")


def operation(name):
    return f'xmlns:nc="urn:ietf:params:xml:ns:netconf:base:1.0" nc:operation="{name}"'


def references(node, above, objects, found):
    """Adds the DNs of objects, and (class, attribute) -> the pairs of DNs (holder, target)."""
    name = node.tag.rsplit("}", 1)[1]
    key = next((leaf.text for leaf in node
                if leaf.tag.rsplit("}", 1)[1].lower() == name.lower() + "id"), None)
    own = above
    if key is not None:
        own = f"{above},{name}={key}" if above else f"{name}={key}"
        objects.add(own)
    for child in node:
        attribute = child.tag.rsplit("}", 1)[1]
        if attribute.endswith("Ref"):
            found[name, attribute].add((own, child.text))
        else:
            references(child, own, objects, found)


def recount(server):
    """How many references were compared, and those that stand on one side only.

    A reference to an object that does not exist is allowed, and has no other side.
    """
    client = LocalClient(server)
    answer = client.ask(rpc("<get-config><source><running/></source></get-config>"))
    client.close()
    objects, found = set(), collections.defaultdict(set)
    references(ElementTree.fromstring(answer), "", objects, found)
    wrong, compared = [], 0
    for one, other in ASSOCIATIONS:
        there = {(holder, target) for holder, target in found[one] if target in objects}
        back = {(target, holder) for holder, target in found[other] if target in objects}
        compared += len(there | back)
        wrong += [f"{one} and {other}: {pair}" for pair in sorted(there ^ back)]
    return compared, wrong


def memory(server):
    status = pathlib.Path(f"/proc/{server.process.pid}/status").read_text()
    return int(re.search(r"VmRSS:\s+(\d+)", status).group(1)) / 1024


class MemoryLog(threading.Thread):
    """Reads the log through a pipe, since a file would grow by a line for each request, and keeps
    what it says about memory."""

    LINE = re.compile(r"memory: \d+ MB, of which (\d+) MB for (\d+) written reference")

    def __init__(self, folder):
        super().__init__(daemon=True)  # without a server it would wait for ever
        self.path = pathlib.Path(folder) / "log"
        self.megabytes = self.entries = None
        os.mkfifo(self.path)

    def run(self):
        with self.path.open(encoding="utf-8") as log:
            for line in log:
                if found := self.LINE.search(line):
                    self.megabytes, self.entries = map(int, found.groups())


def memory_failures(start, end, log):
    """What memory() gave at the start and at the end."""
    if not log.entries:
        return ["the server has not logged how large the component's list is"]
    grown = end - start
    print(f"{log.megabytes} MB of it for {log.entries} written references; "
          f"the rest grew by {grown - log.megabytes:.1f} MB")
    if not IS_SANITIZED and abs(grown - log.megabytes) > WORKING_MEMORY + UNCERTAIN * log.megabytes:
        return ["memory is not level"]
    return []


def main():
    tally = Tally()
    with tempfile.TemporaryDirectory() as folder:
        log = MemoryLog(folder)
        log.start()
        server = Server(folder, "--log-level", "info", "--log-file", log.path)
        at_start = memory(server)
        try:
            end = time.monotonic() + MINUTES * 60
            actors = [Actor(server, tally, number, end) for number in range(CLIENTS)]
            for actor in actors:
                actor.start()
            while any(actor.is_alive() for actor in actors):
                print(f"{memory(server):.1f} MB, {sum(tally.counts.values())} requests", flush=True)
                for actor in actors:
                    actor.join(max(1.0, MINUTES * 60 / 20 / CLIENTS))
            compared, wrong = recount(server)
            at_end = memory(server)
            print(f"{at_end:.1f} MB; {compared} references recounted", flush=True)
        finally:
            status = server.stop()[1]
            log.join()
    for what, count in sorted(tally.counts.items()):
        print(f"{count:9} {what}")
    failures = tally.failures + wrong + memory_failures(at_start, at_end, log)
    if status != 0:
        failures.append(f"the server ended with status {status}")
    for needed in ("edit running: ok", "edit candidate: ok", "end: ok", "lock: ok",
                   "lock: lock-denied", "kill: ok"):
        if tally.counts[needed] == 0:
            failures.append(f"it never came to '{needed}'")
    if compared == 0:
        failures.append("there was nothing to recount")
    for failure in failures[:20]:
        print(failure, file=sys.stderr)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
