#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""The server as its clients use it: ncclient, OpenSSH, and clients that mean no good.

usage: netconf_server_test.py ORVHOST EXT_CM EXAMPLES [--yanglint YANGLINT] [--garbage CONNECTIONS]
       [unittest arguments]

With yanglint, the replies to requests that are no garbage are checked by it.
"""

import json
import os
import pathlib
import re
import select
import signal
import socket
import stat
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import xml.etree.ElementTree as ElementTree

import paramiko
from ncclient import manager
from ncclient.operations import RPC, RaiseMode
from ncclient.transport.errors import AuthenticationError

from netconf_lint import Lint

ORVHOST, EXT_CM, EXAMPLES = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
UNITTEST_ARGUMENTS = sys.argv[4:]
YANGLINT = None
if UNITTEST_ARGUMENTS[:1] == ["--yanglint"]:
    YANGLINT = pathlib.Path(UNITTEST_ARGUMENTS[1]).resolve()
    del UNITTEST_ARGUMENTS[:2]
GARBAGE = 2000
if UNITTEST_ARGUMENTS[:1] == ["--garbage"]:
    GARBAGE = int(UNITTEST_ARGUMENTS[1])
    del UNITTEST_ARGUMENTS[:2]

BASE = "urn:ietf:params:xml:ns:netconf:base:1.0"
END = "]]>]]>"
HELLO = (
    f'<hello xmlns="{BASE}"><capabilities><capability>urn:ietf:params:netconf:base:1.0'
    f"</capability></capabilities></hello>{END}"
)
CHUNKED_HELLO = HELLO.replace("base:1.0</", "base:1.1</")
ELEMENT = "urn:orv:example:ran-element"
EQUIPMENT = "urn:orv:example:ran-equipment"
FUNCTION = "urn:orv:example:ran-function"
DELETE = f'xmlns:nc="{BASE}" nc:operation="delete"'


def rpc(content):
    return f'<rpc xmlns="{BASE}" message-id="7">{content}</rpc>{END}'


def element(content):
    key = "<managedElementId>Harbour</managedElementId>"
    return f'<ManagedElement xmlns="{ELEMENT}">{key}{content}</ManagedElement>'


def equipment(content):
    return element(
        f'<Equipment xmlns="{EQUIPMENT}"><equipmentId>1</equipmentId>{content}</Equipment>'
    )


def radio_unit(name, content=""):
    return equipment(f"<RadioUnit><radioUnitId>{name}</radioUnitId>{content}</RadioUnit>")


def config(content):
    return f'<config xmlns="{BASE}">{content}</config>'


def antenna(unit, number):
    return f"ManagedElement=Harbour,Equipment=1,AntennaUnit={unit},Antenna={number}"


LABEL = element("<userLabel/>")
GET_LABEL = rpc(
    f"<get-config><source><running/></source><filter>{LABEL}</filter></get-config>"
)


class Replies:
    """What was asked and answered, for yanglint."""

    waiting = []
    known = set()

    @classmethod
    def add(cls, request, reply):
        if YANGLINT and "<rpc-reply" in reply and len(reply) < 1 << 20:
            cls.waiting.append((request, reply))

    @classmethod
    def watch_ncclient(cls):
        wrap, deliver = RPC._wrap, RPC.deliver_reply

        def wrap_and_keep(self, operation):
            self.kept = wrap(self, operation)
            return self.kept

        def deliver_and_add(self, raw):
            cls.add(*(text if isinstance(text, str) else text.decode() for text in (self.kept, raw)))
            deliver(self, raw)

        RPC._wrap, RPC.deliver_reply = wrap_and_keep, deliver_and_add

    @classmethod
    def complaints(cls, server):
        """What is wrong with those since the last call. Equal ones are looked at once."""
        found = []
        pairs, cls.waiting = cls.waiting, []
        number = re.compile(r'message-id="[^"]*"|urn:uuid:[-0-9a-f]*')
        new = [pair for pair in pairs if tuple(number.sub("", text) for text in pair) not in cls.known]
        if not new:
            return found
        with tempfile.TemporaryDirectory() as folder:
            client = LocalClient(server)
            lint = Lint(YANGLINT, folder, client)
            client.close()
            for request, reply in new:
                key = tuple(number.sub("", text) for text in (request, reply))
                if key in cls.known:
                    continue
                cls.known.add(key)
                wrong = lint.complaint(request, reply)
                if wrong and "<rpc-error" in reply:
                    # The request itself may be what yanglint does not understand.
                    mark = re.search(r'message-id="[^"]*"', reply)
                    wrong = lint.complaint(
                        f'<rpc xmlns="{BASE}" {mark.group() if mark else ""}><get/></rpc>', reply)
                if wrong:
                    found.append(f"{request}\n{reply}\n{wrong}")
        return found


def run(*words):
    subprocess.run(words, check=True, stdout=subprocess.DEVNULL)


class Server:
    """orvhost serve with keys and files in a folder of its own."""

    def __init__(self, folder, *options, variables=None, models=(),
                 data=("-d", EXAMPLES / "data/harbour.json")):
        """models: options for further models. data: options for data."""
        self.folder = pathlib.Path(folder)
        self.key = self.folder / "key"
        if not self.key.exists():
            run("ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self.key)
        self.socket = self.folder / "socket"
        words = [ORVHOST, "-I", EXAMPLES / "models"]
        for module in ("ran-element", "ran-equipment", "ran-function"):
            words += ["-m", module]
        words += models
        words += [*data, "--me-id", "Harbour", "--ext-cm", EXT_CM]
        words += ["serve", "--netconf-ssh", "127.0.0.1:0", "--netconf-unix", self.socket]
        words += ["--netconf-user", f"alice={self.key}.pub", "--host-key", self.folder / "host_key"]
        words += ["--netconf-user", f"reader={self.key}.pub", "--netconf-read-only", "reader"]
        self.messages = self.folder / "messages"
        with self.messages.open("w") as messages:
            self.process = subprocess.Popen(
                [str(word) for word in [*words, *options]],
                stdout=subprocess.PIPE, stderr=messages, text=True,
                env={**os.environ, **(variables or {})},
            )
        self.lines = [self.process.stdout.readline() for _ in range(2)]
        if not self.lines[1]:
            self.process.stdout.close()
            self.process.wait(30)
            raise RuntimeError("the server did not start: " + self.last_messages())
        self.port = int(self.lines[0].rsplit(":", 1)[1])

    def connect(self, user="alice", **options):
        if not options:
            options = {"key_filename": str(self.key)}
        client = manager.connect(
            host="127.0.0.1", port=self.port, username=user, hostkey_verify=False,
            allow_agent=False, look_for_keys=False, timeout=30, **options,
        )
        client.raise_mode = RaiseMode.NONE
        return client

    def tcp(self):
        return socket.create_connection(("127.0.0.1", self.port), timeout=30)

    def last_messages(self):
        return self.messages.read_text()[-5000:]

    def stop(self, number=signal.SIGTERM):
        """The seconds until it ended, and its status."""
        begin = time.monotonic()
        self.process.send_signal(number)
        status = self.process.wait(30)
        self.process.stdout.close()
        return time.monotonic() - begin, status


class LocalClient:
    """Hand-made messages over the UNIX socket."""

    def __init__(self, server, greet=True):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(30)
        self.socket.connect(str(server.socket))
        self.rest = b""
        if greet:
            self.send(HELLO)
            self.hello = self.receive()

    def send(self, text):
        self.socket.sendall(text.encode())

    def recv(self, size):
        return self.socket.recv(size)

    def receive(self):
        while END.encode() not in self.rest:
            more = self.recv(65536)
            if not more:
                raise EOFError
            self.rest += more
        message, self.rest = self.rest.split(END.encode(), 1)
        return message.decode()

    def receive_chunks(self):
        answer = b""
        while not answer.endswith(b"\n##\n"):
            more = self.recv(65536)
            if not more:
                raise EOFError
            answer += more
        return answer.decode()

    def ask(self, text):
        self.send(text)
        reply = self.receive()
        Replies.add(text.replace(END, ""), reply)
        return reply

    def plain(self, operation):
        self.send(rpc(operation))
        return self.receive()

    def close(self):
        self.socket.close()


class SshClient(LocalClient):
    """The same over OpenSSH's client."""

    def __init__(self, server, hello=HELLO):
        self.process = subprocess.Popen(
            ["ssh", "-F", "none", "-p", str(server.port), "-i", server.key, "-s",
             "-o", "StrictHostKeyChecking=no", "-o", "UserKnownHostsFile=/dev/null",
             "-o", "IdentitiesOnly=yes", "-o", "LogLevel=ERROR", "alice@127.0.0.1", "netconf"],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, bufsize=0,
        )
        self.rest = b""
        self.send(hello)
        self.hello = self.receive()

    def send(self, text):
        data = text.encode()
        while data:
            data = data[self.process.stdin.write(data):]

    def recv(self, size):
        ready, _, _ = select.select([self.process.stdout], [], [], 30)
        if not ready:
            raise TimeoutError
        return os.read(self.process.stdout.fileno(), size)

    def close(self):
        self.process.terminate()
        self.process.wait(30)
        self.process.stdin.close()
        self.process.stdout.close()


class ServerCase(unittest.TestCase):
    """Each case has a fresh server."""

    options = ()

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.server = Server(self.folder, *self.options)
        self.addCleanup(self.end)

    def end(self):
        if self.server.process.returncode is None:
            complaints = Replies.complaints(self.server)
            seconds, status = self.server.stop()
            self.assertEqual(status, 0, self.server.last_messages())
            self.assertLess(seconds, 3)
            self.assertEqual(complaints, [])

    def connect(self, *arguments, **options):
        client = self.server.connect(*arguments, **options)
        self.addCleanup(self.leave, client)
        return client

    @staticmethod
    def leave(client):
        if client.connected:
            client.close_session()

    def local(self, **options):
        client = LocalClient(self.server, **options)
        self.addCleanup(client.close)
        return client

    def ssh(self, **options):
        client = SshClient(self.server, **options)
        self.addCleanup(client.close)
        return client

    def assert_serves(self):
        self.assertIn("<userLabel>Harbour</userLabel>", self.local().ask(GET_LABEL))
        self.assertIn("<userLabel>Harbour</userLabel>", self.ssh().ask(GET_LABEL))

    def assert_ok(self, reply):
        self.assertTrue(reply.ok, str(reply))


class ScenarioTest(ServerCase):
    """Scenarios of the examples that are an edit and a validation, with the same messages."""

    def setUp(self):
        super().setUp()
        self.client = self.connect()

    def edit(self, content, target="candidate"):
        return self.client.edit_config(target=target, config=config(content))

    def units(self, unit, number, store="candidate"):
        wanted = equipment(
            f"<AntennaUnit><antennaUnitId>{unit}</antennaUnitId><Antenna><antennaId>{number}"
            "</antennaId><radioUnitRef/></Antenna></AntennaUnit>"
        )
        found = self.client.get_config(store, filter=("subtree", wanted)).data_ele
        return [one.text[-1] for one in found.iter(f"{{{EQUIPMENT}}}radioUnitRef")]

    def exists(self, name, store="candidate"):
        found = self.client.get_config(store, filter=("subtree", radio_unit(name)))
        return f"<radioUnitId>{name}<" in found.data_xml

    def move(self):
        old = "".join(f"<antennaRef {DELETE}>{antenna(1, at)}</antennaRef>" for at in (1, 2))
        return self.edit(radio_unit(1, f"{old}<antennaRef>{antenna(2, 1)}</antennaRef>"))

    def test_move_antenna(self):
        self.assert_ok(self.move())
        self.assertEqual(self.units(1, 1), [])
        self.assertEqual(self.units(1, 2), ["2"])
        self.assertEqual(sorted(self.units(2, 1)), ["1", "2"])
        self.assertEqual(self.units(1, 1, "running"), ["1"])
        self.assert_ok(self.client.validate("candidate"))
        self.assert_ok(self.client.commit())
        self.assertEqual(self.units(1, 1, "running"), [])

    def test_demo(self):
        self.assert_ok(self.move())
        self.assert_ok(self.client.commit())
        third = f"<antennaRef>{antenna(2, 1)}</antennaRef>"
        self.assert_ok(self.edit(radio_unit(3, third)))
        refused = self.client.validate("candidate")
        self.assertEqual(
            [error.message for error in refused.errors],
            ["Multiplicity of attribute radioUnitRef in ManagedElement=1,Equipment=1,"
             "AntennaUnit=2,Antenna=1 is not in range (0..2)."],
        )
        self.assert_ok(self.client.discard_changes())
        self.assertFalse(self.exists(3))
        self.assertEqual(sorted(self.units(2, 1)), ["1", "2"])

    def test_too_many_radio_units(self):
        label = "<userLabel>Lighthouse</userLabel>"
        self.assert_ok(
            self.edit(radio_unit(3, f"{label}<antennaRef>{antenna(1, 2)}</antennaRef>"))
        )
        self.assertIn("3", self.units(1, 2))
        refused = self.client.validate("candidate")
        self.assertEqual(len(refused.errors), 1)
        error = refused.errors[0]
        self.assertEqual(
            error.message,
            "Multiplicity of attribute radioUnitRef in ManagedElement=1,Equipment=1,"
            "AntennaUnit=1,Antenna=2 is not in range (0..2).",
        )
        self.assertEqual(error.tag, "operation-failed")
        self.assertEqual(error.app_tag, "too-many-elements")
        self.assertIn("ManagedElement=Harbour,Equipment=1,RadioUnit=3", error.info)
        self.assert_ok(self.client.discard_changes())
        self.assertFalse(self.exists(3))
        self.assertEqual(self.units(1, 2), ["1", "2"])

    def test_frequency_needed(self):
        relation = (
            f'<GNBCUCPFunction xmlns="{FUNCTION}"><gNBCUCPFunctionId>1</gNBCUCPFunctionId>'
            "<NRCellCU><nRCellCUId>1</nRCellCUId><NRFreqRelation><nRFreqRelationId>1"
            f"</nRFreqRelationId><nRFrequencyRef {DELETE}/></NRFreqRelation></NRCellCU>"
            "</GNBCUCPFunction>"
        )
        self.assert_ok(self.edit(element(relation)))
        of_candidate = self.client.commit()
        self.assert_ok(self.client.discard_changes())
        for refused in (of_candidate, self.edit(element(relation), "running")):
            self.assertEqual(
                [error.message for error in refused.errors],
                ["Attribute nRFrequencyRef in ManagedElement=1,GNBCUCPFunction=1,NRCellCU=1,"
                 "NRFreqRelation=1 contains 0 NRFrequency which is not within cardinality range "
                 "(1..1)."],
            )
            self.assertIn("1 value, 1 of class NRFrequency", refused.errors[0].info)
        self.assertIn(
            "NRFrequency=634000",
            self.client.get_config("running", filter=("xpath", (
                {"f": FUNCTION}, "//f:NRFreqRelation/f:nRFrequencyRef"))).data_xml,
        )


class ProtocolTest(ServerCase):
    """What ncclient sees of the protocol."""

    def test_capabilities_are_those_that_there_are(self):
        names = [name.rsplit(":capability:", 1)[1] for name in self.connect().server_capabilities
                 if ":netconf:capability:" in name]
        names = sorted(name.split("?")[0] for name in names)
        self.assertEqual(names, ["candidate:1.0", "confirmed-commit:1.1", "interleave:1.0",
                                 "notification:1.0", "rollback-on-error:1.0", "validate:1.1", "with-defaults:1.0", "writable-running:1.0",
                                 "xpath:1.0", "yang-library:1.1"])

    def test_get_schema_gives_every_module_of_the_library(self):
        client = self.connect()
        library = "urn:ietf:params:xml:ns:yang:ietf-yang-library"
        found = client.get(filter=("subtree", f'<yang-library xmlns="{library}"/>')).data_ele
        kinds = ("module", "import-only-module", "submodule")
        names = [
            (one.findtext(f"{{{library}}}name"), one.findtext(f"{{{library}}}revision"))
            for kind in kinds for one in found.iter(f"{{{library}}}{kind}")
        ]
        self.assertIn(("ran-equipment", "2024-01-15"), names)
        for name, revision in names:
            text = client.get_schema(name, revision).data
            self.assertTrue(text.startswith(f"module {name} {{"), name)

    def test_a_client_that_knows_nothing_finds_every_module(self):
        client = self.connect()
        monitoring = "urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring"
        found = client.get(filter=("subtree", f'<netconf-state xmlns="{monitoring}"/>')).data_ele
        capabilities = [one.text for one in found.iter(f"{{{monitoring}}}capability")]
        self.assertEqual(sorted(capabilities), sorted(client.server_capabilities))
        schemas = list(found.iter(f"{{{monitoring}}}schema"))
        names = []
        for schema in schemas:
            name, revision = (schema.findtext(f"{{{monitoring}}}{leaf}")
                              for leaf in ("identifier", "version"))
            names.append(name)
            self.assertEqual(schema.findtext(f"{{{monitoring}}}location"), "NETCONF")
            text = client.get_schema(name, revision).data
            self.assertRegex(text, rf"^(sub)?module {name} {{", name)
            if text.startswith("module"):
                self.assertIn(schema.findtext(f"{{{monitoring}}}namespace"), text)
        self.assertIn("ran-equipment", names)
        self.assertIn("ietf-yang-library", names)

    def test_sessions_are_listed_and_counted(self):
        client, local = self.connect(), self.local()
        monitoring = "urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring"
        local.ask(rpc("<no-such-operation/>"))
        local.ask(GET_LABEL)

        def sessions():
            found = client.get(filter=(
                "subtree", f'<netconf-state xmlns="{monitoring}"><sessions/></netconf-state>'))
            return {
                one.findtext(f"{{{monitoring}}}session-id"): {
                    leaf.tag.rsplit("}", 1)[1]: leaf.text for leaf in one
                } for one in found.data_ele.iter(f"{{{monitoring}}}session")
            }

        own = sessions()[client.session_id]
        self.assertEqual(own["username"], "alice")
        self.assertTrue(own["transport"].endswith("netconf-ssh"), own)
        [other] = [one for one in sessions().values()
                   if one["transport"].endswith("unix-socket")]
        self.assertEqual(
            [other[leaf] for leaf in ("in-rpcs", "in-bad-rpcs", "out-rpc-errors")], ["1", "1", "1"])
        own = int(own["in-rpcs"])
        self.assertGreater(int(sessions()[client.session_id]["in-rpcs"]), own)

    def test_what_is_not_supported_is_refused(self):
        client = self.local()
        startup = "<startup/>"
        for operation in (
            f"<delete-config><target>{startup}</target></delete-config>",
            f"<copy-config><target>{startup}</target><source><running/></source></copy-config>",
            "<copy-config><target><running/></target><source><url>file:///x</url></source>"
            "</copy-config>",
        ):
            self.assertIn("<rpc-error>", client.ask(rpc(operation)))
        self.assertIn("Harbour", client.ask(GET_LABEL))

    def test_read_only_user(self):
        client = self.connect("reader")
        self.assertIn("Crane mast", client.get_config("running").data_xml)
        refused = client.edit_config(target="running", config=config(radio_unit(4)))
        self.assertEqual([error.tag for error in refused.errors], ["access-denied"])

    def label(self, client):
        found = client.get_config("running", filter=("subtree", LABEL)).data_ele
        return [one.text for one in found.iter(f"{{{ELEMENT}}}userLabel")]

    def test_confirmed_commit(self):
        first, second = self.connect(), self.connect()
        self.assertIn(":confirmed-commit:1.1", first.server_capabilities)
        change = config(element("<userLabel>Old harbour</userLabel>"))
        self.assert_ok(first.edit_config(target="candidate", config=change))
        self.assert_ok(first.commit(confirmed=True, timeout="600"))
        self.assertEqual(self.label(second), ["Old harbour"])
        self.assertEqual([error.tag for error in second.commit().errors], ["in-use"])
        first.close_session()
        for _ in range(600):
            if self.label(second) == ["Harbour"]:
                break
            time.sleep(0.05)
        self.assertEqual(self.label(second), ["Harbour"])
        self.assert_ok(second.edit_config(target="candidate", config=change))
        self.assert_ok(second.commit(confirmed=True, timeout="600", persist="x7"))
        third = self.connect()
        self.assert_ok(third.commit(persist_id="x7"))
        self.assertEqual(self.label(third), ["Old harbour"])

    def test_defaults(self):
        client = self.connect()
        modes = [name for name in client.server_capabilities if "with-defaults" in name]
        wanted = "?basic-mode=trim&also-supported=report-all,report-all-tagged"
        self.assertTrue(any(mode.endswith(wanted) for mode in modes), modes)
        wanted = ("subtree", equipment("<Cabinet/>"))
        for mode, shown in (("trim", ""), ("report-all", "<climate>INDOOR</climate>"),
                            ("report-all-tagged", ':default="true">INDOOR</climate>')):
            data = client.get_config("running", filter=wanted, with_defaults=mode).data_xml
            self.assertIn(shown, data)
            self.assertEqual(mode == "trim", "INDOOR" not in data)

    def events_of(self, client, wanted):
        """The next events with that text in them, without others."""
        while True:
            event = client.take_notification(timeout=30)
            self.assertIsNotNone(event, wanted)
            if wanted in event.notification_xml:
                return event.notification_xml

    def test_events(self):
        listener, writer = self.connect(), self.connect()
        self.assert_ok(listener.create_subscription())
        moved = radio_unit(1, f"<antennaRef {DELETE}>{antenna(1, 1)}</antennaRef>"
                              f"<antennaRef>{antenna(2, 1)}</antennaRef>")
        self.assert_ok(writer.edit_config(target="running", config=config(moved)))
        change = self.events_of(listener, "netconf-config-change")
        self.assertIn("<username>alice</username>", change)
        self.assertIn(f"<session-id>{writer.session_id}</session-id>", change)
        self.assertIn("radioUnitRef[.=", change)
        self.assertEqual(self.label(listener), ["Harbour"])  # requests are answered meanwhile
        writer.close_session()
        end = self.events_of(listener, "netconf-session-end")
        self.assertIn("<termination-reason>closed</termination-reason>", end)
        third = self.server.connect()
        self.events_of(listener, f"<session-id>{third.session_id}</session-id>")
        listener.kill_session(third.session_id)
        end = self.events_of(listener, "netconf-session-end")
        self.assertIn("<termination-reason>killed</termination-reason>", end)

    def test_events_that_are_filtered_or_not_read(self):
        name = "urn:ietf:params:xml:ns:yang:ietf-netconf-notifications"
        subscribe = ('<create-subscription '
                     'xmlns="urn:ietf:params:xml:ns:netconf:notification:1.0">'
                     f'<filter><netconf-config-change xmlns="{name}"/></filter>'
                     '</create-subscription>')
        listener, deaf = self.local(), self.local()
        for client in (listener, deaf):
            self.assertIn("<ok/>", client.ask(rpc(subscribe)))
        writer = self.local()
        labels = [f"label {number}" for number in range(1800)] + ["Harbour"]
        for label in labels:
            writer.ask(rpc("<edit-config><target><running/></target>"
                           + config(element(f"<userLabel>{label}</userLabel>"))
                           + "</edit-config>"))
            event = listener.receive()
            self.assertIn("<netconf-config-change", event)
            self.assertIn("userLabel</target>", event)
        self.assert_serves()
        with self.assertRaises(EOFError):
            for _ in labels:
                deaf.receive()

    def test_events_between_requests(self):
        listener, writer = self.local(), self.local()
        self.assertIn("<ok/>", listener.ask(rpc('<create-subscription xmlns='
                      '"urn:ietf:params:xml:ns:netconf:notification:1.0"/>')))

        def commit():
            for number in range(300):
                self.assertIn("<ok/>", writer.ask(rpc(
                    "<edit-config><target><running/></target>"
                    + config(element(f"<userLabel>label {number}</userLabel>"))
                    + "</edit-config>")))

        committing = threading.Thread(target=commit)
        committing.start()
        events = 0
        for _ in range(300):
            message = listener.ask(GET_LABEL)
            while "<notification" in message:
                events += "<netconf-config-change" in message
                message = listener.receive()
            self.assertIn("<userLabel>", message)
        while events < 300:
            events += "<netconf-config-change" in listener.receive()
        committing.join()

    def test_kill_session(self):
        first, second = self.connect(), self.connect()
        self.assert_ok(second.lock("running"))
        refused = first.edit_config(target="running", config=config(radio_unit(4)))
        self.assertEqual([error.tag for error in refused.errors], ["in-use"])
        self.assert_ok(first.kill_session(second.session_id))
        for _ in range(100):
            done = first.edit_config(target="running", config=config(radio_unit(4)))
            if done.ok:
                break
            time.sleep(0.05)
        self.assert_ok(done)
        with self.assertRaises(Exception):
            second.get_config("running")

    def test_messages_by_hand_in_chunks_and_without(self):
        for client in (self.local(), self.ssh()):
            self.assertIn("urn:ietf:params:netconf:base:1.1", client.hello)
            self.assertIn("<userLabel>Harbour</userLabel>", client.ask(GET_LABEL))
            self.assertIn("<userLabel>Harbour</userLabel>", client.ask(GET_LABEL))
        chunked = self.local(greet=False)
        chunked.send(CHUNKED_HELLO)
        chunked.receive()
        message = GET_LABEL[: -len(END)]
        for part in (message[:50], message[50:]):
            chunked.send(f"\n#{len(part)}\n{part}")
        chunked.send("\n##\n")
        self.assertIn("<userLabel>Harbour</userLabel>", chunked.receive_chunks())
        chunked.send("\n#4\n<rpc\n##\n")
        self.assertIn("malformed-message", chunked.receive_chunks())
        chunked.send(f"\n#{len(message)}\n{message}\n##\n")
        self.assertIn("<userLabel>Harbour</userLabel>", chunked.receive_chunks())


    def test_a_large_request_over_ssh(self):
        client = self.ssh(hello=CHUNKED_HELLO)
        message = GET_LABEL[: -len(END)]
        head, tail = message.split("><", 1)
        parts = [f"{head}>", *([" " * (1 << 20)] * 16), f"<{tail}"]
        for _ in range(2):
            for part in parts:
                client.send(f"\n#{len(part)}\n{part}")
            client.send("\n##\n")
            self.assertIn("<userLabel>Harbour</userLabel>", client.receive_chunks())

    def test_a_large_reply_has_all_objects(self):
        client = self.local()
        cabinets = [f"big-{number}-" + "x" * 200 for number in range(6000)]
        for begin in range(0, len(cabinets), 2000):
            content = "".join(f"<Cabinet><cabinetId>{name}</cabinetId></Cabinet>"
                              for name in cabinets[begin:begin + 2000])
            self.assertIn("<ok/>", client.ask(rpc(
                "<edit-config><target><candidate/></target>" + config(equipment(content))
                + "</edit-config>")))
        reply = client.ask(rpc("<get-config><source><candidate/></source></get-config>"))
        self.assertGreater(len(reply), 1 << 20)
        found = [one.text for one in ElementTree.fromstring(reply).iter(
            "{urn:orv:example:ran-equipment}cabinetId")]
        self.assertEqual(sorted(found), sorted(["1", *cabinets]))
        self.assertIn("<ok/>", client.ask(rpc("<discard-changes/>")))

    def test_a_client_that_has_sent_all_gets_all_replies(self):
        client = self.ssh()
        client.send(3 * GET_LABEL)
        client.process.stdin.close()
        for _ in range(3):
            self.assertIn("<userLabel>Harbour</userLabel>", client.receive())
        self.assertEqual(client.process.wait(30), 0)

    def test_the_client_hangs_up_first(self):
        # What a client still sends when the connection has ended makes it take a session that
        # ended well for a lost one.
        with paramiko.SSHClient() as client:
            client.set_missing_host_key_policy(paramiko.AutoAddPolicy())
            client.connect("127.0.0.1", self.server.port, "alice", key_filename=str(self.server.key),
                           allow_agent=False, look_for_keys=False)
            channel = client.get_transport().open_session()
            channel.invoke_subsystem("netconf")
            channel.sendall((HELLO + rpc("<close-session/>")).encode())
            while channel.recv(65536):
                pass
            self.assertEqual(channel.recv_exit_status(), 0)
            client.get_transport().global_request("still-there", wait=True)
            self.assertTrue(client.get_transport().is_active())


class LogInTest(ServerCase):
    """Keys, passwords and files."""

    def setUp(self):
        self.hashed = tempfile.NamedTemporaryFile("w", suffix=".passwords")
        self.addCleanup(self.hashed.close)
        known = subprocess.run(["openssl", "passwd", "-6", "open sesame"], check=True,
                               capture_output=True, text=True).stdout
        self.hashed.write(f"# users\ncarol:{known}")
        self.hashed.flush()
        self.options = ("--netconf-passwords", self.hashed.name)
        super().setUp()

    def test_the_host_key_is_made_once_and_for_the_owner_only(self):
        key = self.folder / "host_key"
        self.assertEqual(stat.S_IMODE(key.stat().st_mode), 0o600)
        made = key.read_bytes()
        self.end()
        self.server = Server(self.folder, *self.options)
        self.assertEqual(key.read_bytes(), made)
        self.assert_serves()
        self.end()
        key.chmod(0o644)
        with self.assertRaises(RuntimeError):
            Server(self.folder, *self.options)

    def test_the_socket_is_for_its_owner_only_and_goes_with_the_server(self):
        self.assertEqual(stat.S_IMODE(self.server.socket.stat().st_mode), 0o600)
        self.server.process.kill()
        self.server.process.wait()
        self.server.process.stdout.close()
        self.assertTrue(self.server.socket.exists())
        self.server = Server(self.folder, *self.options)
        self.assert_serves()
        self.end()
        self.assertFalse(self.server.socket.exists())

    def test_a_password(self):
        self.assertIn("Harbour", self.connect("carol", password="open sesame")
                      .get_config("running", filter=("subtree", LABEL)).data_xml)
        for user, password in (("carol", "open"), ("carol", ""), ("alice", "open sesame"),
                               ("nobody", "open sesame")):
            with self.assertRaises(AuthenticationError):
                self.connect(user, password=password)

    def test_another_key(self):
        other = self.folder / "other"
        run("ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", other)
        with self.assertRaises(AuthenticationError):
            self.connect(key_filename=str(other))
        with self.assertRaises(AuthenticationError):
            self.connect("nobody", key_filename=str(self.server.key))

    def test_no_other_service(self):
        client = subprocess.run(
            ["ssh", "-F", "none", "-p", str(self.server.port), "-i", self.server.key,
             "-o", "StrictHostKeyChecking=no", "-o", "UserKnownHostsFile=/dev/null",
             "-o", "LogLevel=ERROR", "alice@127.0.0.1", "echo", "hello"],
            stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60,
        )
        self.assertNotEqual(client.returncode, 0)
        self.assertEqual(client.stdout, "")


class OptionsTest(unittest.TestCase):
    """Options that cannot be used are refused, with the reason."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.open = self.folder / "open"
        self.open.write_text("carol:$6$salt$hash\n")
        self.open.chmod(0o644)
        self.plain = self.folder / "plain"
        self.plain.write_text("carol:secret\n")
        self.plain.chmod(0o600)
        self.setting = self.folder / "setting"
        self.setting.write_text("carol:$6$abc\n")
        self.setting.chmod(0o600)

    def refusal(self, *options):
        words = [ORVHOST, "-I", EXAMPLES / "models", "-m", "ran-element", "--ext-cm", EXT_CM]
        words += ["--log-level", "off", *options]
        ended = subprocess.run([str(word) for word in words], stdin=subprocess.DEVNULL,
                               capture_output=True, text=True, timeout=120)
        self.assertNotEqual(ended.returncode, 0)
        self.assertEqual(ended.stdout, "")
        return ended.stderr

    def test_refusals(self):
        key = ("--host-key", self.folder / "host_key")
        for options, reason in (
            (("serve",), "nobody can log in by SSH"),
            (("serve", "--netconf-user", "alice"), "NAME=KEYFILE was expected"),
            (("serve", "--netconf-user", "alice=/missing"), "/missing: cannot be read: there is no such file"),
            (("serve", "--netconf-user", f"alice={self.plain}"), "a public key was expected"),
            (("serve", "--netconf-passwords", self.open), "mode 0600 was expected"),
            (("serve", "--netconf-passwords", self.plain), "NAME:HASH was expected"),
            (("serve", "--netconf-unix", self.plain), "exists already"),
            (("serve", "--netconf-passwords", self.setting), "NAME:HASH was expected"),
            (("serve", "--netconf-unix", self.folder / "socket", "--netconf-read-only", "no one"),
             "user no one, who may only read, cannot log in"),
            (("--netconf-unix", self.folder / "socket"), "can only be used with serve"),
            (("--store", self.folder / "store", "--unconfirmed-note", self.plain),
             "can only be used with serve"),
            (("serve", "--unconfirmed-note", self.plain), "can only be used with --store"),
            (("serve", "--store", self.folder / "store", "--unconfirmed-note", "/missing/note"),
             "--unconfirmed-note: /missing/note: no file can be made in this directory"),
            (("serve", "--store", self.folder / "store", "--unconfirmed-note", self.plain),
             f"--unconfirmed-note: {self.plain}: a note of a confirmed commit was expected"),
            (("--candidate-timeout", 5), "can only be used with serve"),
            (("serve", "tree"), "serve cannot be combined with commands"),
        ):
            with self.subTest(options):
                self.assertIn(reason, self.refusal(*options, *(key if options[0] == "serve" else ())))

    def test_empty_paths(self):
        for option in ("--netconf-unix", "--netconf-passwords", "--host-key", "--shell-unix",
                       "--unconfirmed-note"):
            with self.subTest(option):
                self.assertIn(f"{option}: '' names no file; the path of one was expected",
                              self.refusal("serve", "--store", self.folder / "store", option, ""))

    def test_addresses(self):
        run("ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self.folder / "key")
        user = ("--netconf-user", f"alice={self.folder / 'key'}.pub")
        for address in ("8300", "localhost:8300", "127.0.0.1:", "127.0.0.1:99999", "192.0.2.1:1"):
            with self.subTest(address):
                said = self.refusal("serve", *user, "--netconf-ssh", address,
                                    "--host-key", self.folder / "host_key")
                self.assertIn(address.split(":")[0], said)


class StopTest(ServerCase):
    """The end of the server, and its log."""

    def test_signals_end_it_with_sessions_open(self):
        for number in (signal.SIGTERM, signal.SIGINT):
            with self.subTest(number):
                self.local().send(GET_LABEL[:50])
                self.local(greet=False)
                self.addCleanup(self.server.tcp().close)
                client = self.server.connect()
                edited = client.edit_config(target="candidate", config=config(radio_unit(4)))
                self.assert_ok(edited)
                seconds, status = self.server.stop(number)
                self.assertEqual(status, 0)
                self.assertLess(seconds, 3)
                with self.assertRaises(Exception):
                    client.get_config("running")
                self.server = Server(self.folder)

    def test_the_service_manager_is_told(self):
        self.end()
        for address in (str(self.folder / "notify"), f"\0orvhost-test-{os.getpid()}"):
            with self.subTest(address), socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as told:
                told.bind(address)
                told.settimeout(30)
                name = address.replace("\0", "@")
                self.server = Server(self.folder, variables={"NOTIFY_SOCKET": name})
                self.assertEqual(told.recv(100), b"READY=1")
                self.assert_serves()
                self.end()
                self.assertEqual(told.recv(100), b"STOPPING=1")

    def test_a_search_that_takes_long_does_not_delay_the_end(self):
        client = self.local()
        client.send(rpc('<get><filter type="xpath" select="//*[//*[//*[//*]]]"/></get>'))
        time.sleep(1)
        self.assert_serves()
        seconds, status = self.server.stop()
        self.assertEqual(status, 0)
        self.assertLess(seconds, 3)

    def test_the_log_says_who_did_what_and_is_opened_again(self):
        self.end()
        log = self.folder / "log"
        self.server = Server(self.folder, "--log-file", log, "--log-format", "json")
        sector = "<sectorRef>ManagedElement=Harbour,Equipment=1,Sector=1</sectorRef>"
        self.assert_ok(self.connect().edit_config(target="running",
                                                  config=config(radio_unit(4, sector))))
        texts = [json.loads(line)["text"] for line in log.read_text().splitlines()]
        self.assertTrue(any(text.startswith("alice, session ") and text.endswith("edit-config: done")
                            for text in texts), texts)
        log.rename(self.folder / "old")
        self.server.process.send_signal(signal.SIGHUP)
        for _ in range(100):
            if log.exists():
                break
            time.sleep(0.02)
        self.assert_serves()
        self.assertIn("get-config: done", log.read_text())
        # Both sides of an association.
        self.assertRegex(log.read_text(),
                         r"memory: \d+ MB, of which 0 MB for 2 written references, which")

    def test_a_confirmed_commit_that_waited_is_told_at_the_next_start(self):
        self.end()
        for options, name in (((), "store.unconfirmed"),
                              (("--unconfirmed-note", self.folder / "note"), "note")):
            with self.subTest(options), tempfile.TemporaryDirectory() as stores:
                store = pathlib.Path(stores) / "store"
                self.server = Server(self.folder, "--store", store, *options)
                client = self.local()
                self.assertIn("<ok/>", client.ask(rpc(
                    "<edit-config><target><candidate/></target>" + config(radio_unit(4))
                    + "</edit-config>")))
                self.assertIn("<ok/>", client.ask(rpc("<commit><confirmed/></commit>")))
                notes = [pathlib.Path(stores) / "store.unconfirmed", self.folder / "note"]
                self.assertEqual([one.name for one in notes if one.exists()], [name])
                self.server.process.kill()
                self.server.process.wait()
                self.server.process.stdout.close()
                self.server = Server(self.folder, "--store", store, *options, data=())
                self.assertIn("was neither confirmed nor taken back",
                              self.server.messages.read_text())
                self.assertEqual([one.name for one in notes if one.exists()], [])
                self.end()

    def refusal_of_another(self, *options):
        """What a server says that does not start, in a folder of its own."""
        with tempfile.TemporaryDirectory() as folder, self.assertRaises(RuntimeError) as refused:
            Server(folder, *options)
        return str(refused.exception)

    def test_a_note_that_another_server_uses_is_refused(self):
        self.end()
        note = self.folder / "note"
        options = ("--unconfirmed-note", note)
        self.server = Server(self.folder, "--store", self.folder / "store", *options)
        client = self.local()
        self.assertIn("<ok/>", client.ask(rpc(
            "<edit-config><target><candidate/></target>" + config(radio_unit(4))
            + "</edit-config>")))
        self.assertIn("<ok/>", client.ask(rpc("<commit><confirmed/></commit>")))
        said = self.refusal_of_another("--store", self.folder / "other", *options)
        self.assertIn(f"--unconfirmed-note: {note} is in use by process {self.server.process.pid} ",
                      said)
        self.assertTrue(note.exists())

    def test_a_start_that_fails_leaves_the_note(self):
        self.end()
        note = self.folder / "note"
        note.write_text("a confirmed commit of carol, which began\n")
        options = ("--store", self.folder / "store", "--unconfirmed-note", note)
        for wrong in (("--netconf-ssh", "192.0.2.1:1"), ("--netconf-unix", note),
                      ("--shell-unix", note)):
            with self.subTest(wrong):
                said = self.refusal_of_another(*options, *wrong)
                self.assertNotIn("carol", said)
                self.assertIn("carol", note.read_text())
        self.server = Server(self.folder, *options, data=())
        self.assertIn("a confirmed commit of carol", self.server.messages.read_text())
        self.assertFalse(note.exists())


class HostileTest(ServerCase):
    """Clients that mean no good: the server serves the next one."""

    def test_silent_clients_and_half_messages_keep_nobody_waiting(self):
        silent = [self.server.tcp() for _ in range(20)]
        mute = [self.local(greet=False) for _ in range(5)]
        halves = [self.local() for _ in range(5)] + [self.ssh()]
        for half in halves:
            half.send(GET_LABEL[:60])
        begin = time.monotonic()
        self.assert_serves()
        self.assertLess(time.monotonic() - begin, 5)
        for half in halves:
            half.send(GET_LABEL[60:])
            self.assertIn("<userLabel>Harbour</userLabel>", half.receive())
        for one in [*silent, *mute]:
            one.close()

    def test_more_silent_clients_than_there_may_be_lock_nobody_out(self):
        silent = [self.server.tcp() for _ in range(300)]
        self.assert_serves()
        for one in silent:
            one.close()

    def test_a_long_name_in_a_violation(self):
        sector = "range (1.." + "x" * 300000
        config = ('<ManagedElement xmlns="urn:orv:example:ran-element"><managedElementId>Harbour'
                  '</managedElementId><Equipment xmlns="urn:orv:example:ran-equipment"><equipmentId>1'
                  f'</equipmentId><Sector><sectorId>{sector}</sectorId></Sector></Equipment>'
                  '</ManagedElement>')
        reply = self.ssh().ask(rpc(f"<validate><source><config>{config}</config></source></validate>"))
        self.assertIn("the mandatory attribute", reply)
        self.assertNotIn("error-app-tag", reply)
        self.assert_serves()

    def test_clients_that_vanish(self):
        for text in ("", HELLO, HELLO + GET_LABEL, HELLO + GET_LABEL[:70],
                     HELLO + rpc("<lock><target><running/></target></lock>")):
            for _ in range(5):
                client = self.local(greet=False)
                client.send(text)
                client.close()
        killed = self.ssh()
        killed.ask(rpc("<lock><target><candidate/></target></lock>"))
        killed.process.kill()
        client = self.connect()
        for store in ("running", "candidate"):
            for _ in range(100):
                reply = client.lock(store)
                if reply.ok:
                    break
                time.sleep(0.05)
            self.assert_ok(reply)

    def test_garbage(self):
        for number in range(GARBAGE):
            size = (1, 200, 5000)[number % 3]
            garbage = self.server.tcp()
            try:
                garbage.sendall(b"SSH-2.0-x\r\n" * (size % 2) + os.urandom(size))
            except OSError:
                pass
            garbage.close()
        for text in ("\0", "<" * 1000, "</hello>" + END, "<hello/>" + END, "\n#99999999999\n"):
            client = self.local(greet=False)
            client.send(text)
            client.close()
        nested = "<a>" * 20000 + "</a>" * 20000
        deep = rpc(f"<get><filter>{nested}</filter></get>")
        self.assertIn("<rpc-error>", self.local().ask(deep))
        self.assert_serves()

    def test_a_message_without_an_end_is_cut_off(self):
        client = self.ssh(hello=CHUNKED_HELLO)
        chunk = f"\n#{1 << 20}\n" + " " * (1 << 20)
        with self.assertRaises((BrokenPipeError, EOFError)):
            for _ in range(80):
                client.send(chunk)
            client.receive()
        self.assert_serves()

    def test_a_reply_that_nobody_reads(self):
        whole = rpc("<get-config><source><running/></source></get-config>")
        for client in (self.local(), self.ssh()):
            client.send(whole * 40)
        self.assert_serves()


if __name__ == "__main__":
    if YANGLINT:
        Replies.watch_ncclient()
    unittest.main(argv=[sys.argv[0], *UNITTEST_ARGUMENTS])
