#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Random edits by ncclient, and the same change of the network by single commands in the shell: both
must end in equal data and give equal messages. An edit names both sides of associations, in any
order; the shell does in turn what the planner of edits does: deletes, creates, values, references.

usage: netconf_random_edits.py ORVHOST EXT_CM EXAMPLES [EDITS [SEED]]
"""

import collections
import json
import random
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

from netconf_server_test import (
    BASE, ELEMENT, EXAMPLES, EXT_CM, ORVHOST, Server, config, equipment)

EDITS = int(sys.argv[4]) if len(sys.argv) > 4 else 40
SEED = int(sys.argv[5]) if len(sys.argv) > 5 else 1
ABOVE = "ManagedElement=Harbour,Equipment=1"
# An antenna takes two units and a unit four antennas and one sector: limits that are broken at times.
UNITS = [f"{ABOVE},RadioUnit={number}" for number in range(1, 7)]
ANTENNAS = [f"{ABOVE},AntennaUnit={unit},Antenna={number}"
            for unit, number in ((1, 1), (1, 2), (2, 1))]
SECTORS = [f"{ABOVE},Sector={number}" for number in (1, 2)]
# The attribute of a unit, and of the other side.
LINKS = {"antennaRef": ANTENNAS, "sectorRef": SECTORS}


class Shell:
    """The shell, with a command and its answer in turn."""

    def __init__(self):
        words = [ORVHOST, "-I", EXAMPLES / "models"]
        for module in ("ran-element", "ran-equipment", "ran-function"):
            words += ["-m", module]
        words += ["-d", EXAMPLES / "data/harbour.json", "--me-id", "Harbour", "--ext-cm", EXT_CM]
        words += ["--json", "--keep-going", "-f", "-"]
        self.process = subprocess.Popen(
            [str(word) for word in words], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL, text=True)

    def ask(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline()
        if not answer:
            raise EOFError(f"the shell has ended at: {line}")
        return json.loads(answer)

    def do(self, line):
        answer = self.ask(line)
        if "error" in answer:
            raise AssertionError(f"{line}: {answer}")
        return answer

    def values(self, dn, attribute):
        value = self.do(f"get {dn} {attribute}")["attributes"][attribute]
        return value if value is not None else []

    def close(self):
        self.process.stdin.close()
        self.process.stdout.close()
        return self.process.wait(60)


class Change:
    """What is wished. An attribute that an edit names is wished as a whole, with what it had before;
    so all links of a change stand at the same sides, else these would contradict each other."""

    def __init__(self, chance, known):
        self.deleted, self.created, self.labels = [], [], {}
        self.links = {}  # (unit, attribute, other) -> its operation
        self.chance = chance
        self.sides = "other" if chance.random() < 0.3 else chance.choice(("unit", "both"))
        units = chance.sample(UNITS, chance.choice((1, 1, 2, 3)))
        if chance.random() < 0.25:
            self.delete([unit for unit in units if unit in known])
            return
        for unit in units:
            self.add(unit, known)

    def delete(self, units):
        """A sector keeps its reference to a deleted unit, so it is taken away, too: a unit that is
        made again under that name would find a reference to it that it does not have."""
        self.deleted = units
        self.sides = "other"
        for unit in units:
            for sector in SECTORS:
                self.links[unit, "sectorRef", sector] = "remove"

    def add(self, unit, known):
        if unit not in known:
            self.created.append(unit)
        if unit not in known or self.chance.random() < 0.2:
            self.labels[unit] = f"label {self.chance.randrange(100)}"
        for _ in range(self.chance.randrange(4)):
            attribute = self.chance.choice(list(LINKS))
            # To move a unit changes two sectors.
            if attribute == "sectorRef" and any(key[1] == attribute for key in self.links):
                continue
            other = self.chance.choice(LINKS[attribute])
            self.links[unit, attribute, other] = self.chance.choices(("merge", "remove"), (3, 2))[0]

    def edit(self):
        """The content of an edit-config, in an order by chance, each link at one side or both."""
        contents = collections.defaultdict(list)
        for unit in self.created:
            contents[unit] = []
        for unit, label in self.labels.items():
            contents[unit].append(element("userLabel", label))
        for (unit, attribute, other), operation in self.links.items():
            if self.sides != "other":
                contents[unit].append(element(attribute, other, operation))
            if self.sides != "unit":
                contents[other].append(element("radioUnitRef", unit, operation))
        parts = [xml_of(unit, operation="delete") for unit in self.deleted]
        for dn, inside in contents.items():
            self.chance.shuffle(inside)
            operation = "create" if dn in self.created else ""
            parts.append(xml_of(dn, "".join(inside), operation))
        self.chance.shuffle(parts)
        return "".join(parts)

    def run(self, shell):
        for unit in self.deleted:
            shell.do(f"delete {unit}")
        for unit in self.created:
            shell.do(f"create {unit}")
        for unit, label in self.labels.items():
            shell.do(f"set {unit} 'userLabel={label}'")
        for (unit, attribute, other), operation in self.links.items():
            if self.sides == "other":
                self.set_entry(shell, other, "radioUnitRef", unit, operation)
            elif attribute == "antennaRef":
                self.set_entry(shell, unit, attribute, other, operation)
            else:
                shell.do(f"set {unit} {attribute}={other if operation == 'merge' else 'null'}")

    @staticmethod
    def set_entry(shell, dn, attribute, entry, operation):
        values = shell.values(dn, attribute)
        if (operation == "merge") == (entry in values):
            return
        values = values + [entry] if operation == "merge" else [
            one for one in values if one != entry]
        shell.do(f"set {dn} '{attribute}={json.dumps(values)}'")


def element(name, text, operation="merge"):
    return f'<{name} xmlns:nc="{BASE}" nc:operation="{operation}">{text}</{name}>'


def xml_of(dn, content="", operation=""):
    """An object below the equipment, with the elements above it."""
    steps = [step.split("=") for step in dn[len(ABOVE) + 1:].split(",")]
    for at, (name, value) in reversed(list(enumerate(steps))):
        is_last = at == len(steps) - 1
        mark = f' xmlns:nc="{BASE}" nc:operation="{operation}"' if operation and is_last else ""
        key = name[0].lower() + name[1:] + "Id"
        content = f"<{name}{mark}><{key}>{value}</{key}>{content}</{name}>"
    return content


def facts(node, above=""):
    """All values below a node, with their places; the order of siblings does not matter."""
    name = node.tag.rsplit("}", 1)[1]
    key = "".join(leaf.text for leaf in node if leaf.tag.lower().endswith("}" + name.lower() + "id"))
    place = f"{above}/{name}{key}"
    if len(node) == 0:
        return [f"{place}={node.text}"]
    return sorted(fact for child in node for fact in facts(child, place))


class Play:
    def __init__(self, folder):
        self.folder = folder
        self.server = Server(folder, "--log-level", "warning")
        self.client = self.server.connect()
        self.shell = Shell()
        self.chance = random.Random(SEED)
        self.counts = collections.Counter()

    def data(self):
        wanted = ("subtree", f'<ManagedElement xmlns="{ELEMENT}"/>')
        of_client = self.client.get(filter=wanted).data_xml
        saved = f"{self.folder}/saved.xml"
        self.shell.do(f"save {saved}")
        [top] = ElementTree.fromstring(of_client.encode())
        return facts(top), facts(ElementTree.parse(saved).getroot())

    def step(self):
        known = {unit for unit in UNITS if "error" not in self.shell.ask(f"get {unit}")}
        change = Change(self.chance, known)
        target = self.chance.choice(("running", "candidate"))
        content = equipment(change.edit())
        reply = self.client.edit_config(target=target, config=config(content))
        if reply.ok and target == "candidate":
            reply = self.client.validate("candidate")
        if not reply.ok and any("violation" not in (error.info or "") for error in reply.errors):
            raise AssertionError(f"{content}: {reply}")
        self.shell.do("begin")
        change.run(self.shell)
        verdict = self.shell.ask("validate")
        expected = verdict.get("error", {}).get("messages", [])
        messages = [] if reply.ok else [error.message for error in reply.errors]
        if messages != expected:
            raise AssertionError(f"{content}:\nthe server says {messages}\nthe shell {expected}")
        self.counts["refused" if messages else "valid"] += 1
        self.counts["with several messages"] += len(messages) > 1
        self.shell.do("abort" if messages else "commit")
        if target == "candidate":
            ended = self.client.discard_changes() if messages else self.client.commit()
            if not ended.ok:
                raise AssertionError(f"{content}: {ended}")
        of_client, of_shell = self.data()
        if of_client != of_shell:
            only = [list((collections.Counter(one) - collections.Counter(other)).elements())
                    for one, other in ((of_client, of_shell), (of_shell, of_client))]
            raise AssertionError(f"{content}:\nonly the server has {only[0]}\nthe shell {only[1]}")

    def close(self):
        self.client.close_session()
        return self.server.stop()[1], self.shell.close()


def main():
    with tempfile.TemporaryDirectory() as folder:
        play = Play(folder)
        try:
            for _ in range(EDITS):
                play.step()
        finally:
            ended = play.close()
        # The shell's status is that of its refused commands, which are meant.
        if ended[0] != 0 or ended[1] < 0:
            print(f"the server ended with {ended[0]}, the shell with {ended[1]}:",
                  play.server.last_messages(), file=sys.stderr)
            return 1
    print(f"seed {SEED}:", ", ".join(f"{count} {what}" for what, count in play.counts.items()))
    # Of 40 edits, both kinds are sure to come.
    return 0 if EDITS < 40 or (play.counts["valid"] and play.counts["refused"]) else 1


if __name__ == "__main__":
    sys.exit(main())
