#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Messages by hand, in both framings, over OpenSSH and at the socket. Each reply is checked by
yanglint against the modules that the server gives.

usage: netconf_messages_test.py ORVHOST EXT_CM EXAMPLES YANGLINT [unittest arguments]
"""

import pathlib
import re
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

YANGLINT = pathlib.Path(sys.argv.pop(4)).resolve()
ARGUMENTS = sys.argv[4:]
del sys.argv[4:]

from netconf_lint import MONITORING, Lint
from netconf_server_test import (  # the arguments above are not for it
    BASE, CHUNKED_HELLO, DELETE, ELEMENT, EQUIPMENT, FUNCTION, HELLO, LocalClient, Server,
    SshClient, antenna, element, equipment, radio_unit)

MODELS = pathlib.Path(__file__).resolve().parent / "models"
PLANT = "urn:orv:test:plant"
LIBRARY = "urn:ietf:params:xml:ns:yang:ietf-yang-library"
NOTIFICATION = "urn:ietf:params:xml:ns:netconf:notification:1.0"
EVENTS = "urn:ietf:params:xml:ns:yang:ietf-netconf-notifications"


def fitting(name, content=""):
    return element(f'<Fitting xmlns="{PLANT}"><fittingId>{name}</fittingId>{content}</Fitting>')


class Client:
    """One of the two transports, in one of the two framings."""

    def __init__(self, server, transport, is_chunked):
        hello = CHUNKED_HELLO if is_chunked else HELLO
        if transport == "ssh":
            self.wire = SshClient(server, hello=hello)
        else:
            self.wire = LocalClient(server, greet=False)
            self.wire.send(hello)
            self.wire.hello = self.wire.receive()
        self.is_chunked = is_chunked
        self.name = f"{transport}, {'chunks' if is_chunked else 'base 1.0'}"
        self.number = 0

    def send(self, message):
        if self.is_chunked:
            data = message.encode()
            middle = len(data) // 2
            text = "".join(f"\n#{len(part)}\n{part.decode()}" for part in (data[:middle], data[middle:]) if part)
            self.wire.send(text + "\n##\n")
        else:
            self.wire.send(message + "]]>]]>")

    def receive(self):
        if not self.is_chunked:
            return self.wire.receive()
        chunks = b""
        while True:
            begin = self.bytes_until(b"\n", 2)
            if begin == b"\n##\n":
                return chunks.decode()
            chunks += self.bytes(int(begin[2:-1]))

    def bytes(self, number):
        while len(self.wire.rest) < number:
            more = self.wire.recv(65536)
            if not more:
                raise EOFError
            self.wire.rest += more
        taken, self.wire.rest = self.wire.rest[:number], self.wire.rest[number:]
        return taken

    def bytes_until(self, end, times):
        taken = b""
        while taken.count(end) < times:
            taken += self.bytes(1)
        return taken

    def rpc(self, operation):
        self.number += 1
        return f'<rpc xmlns="{BASE}" message-id="m{self.number}">{operation}</rpc>'

    def plain(self, operation):
        self.send(self.rpc(operation))
        return self.receive()

    def close(self):
        self.wire.close()


class MessageCase(unittest.TestCase):
    """All cases of a class share a server, and leave the data as they found it."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.server = Server(folder.name, models=["-I", MODELS, "-m", "plant"])
        cls.addClassCleanup(cls.server.stop)
        modules = tempfile.TemporaryDirectory()
        cls.addClassCleanup(modules.cleanup)
        client = Client(cls.server, "unix", False)
        cls.lint = Lint(YANGLINT, modules.name, client)
        client.close()

    def each_client(self):
        for transport in ("ssh", "unix"):
            for is_chunked in (False, True):
                client = Client(self.server, transport, is_chunked)
                self.addCleanup(client.close)
                yield client

    def ask(self, client, operation):
        request = client.rpc(operation)
        client.send(request)
        reply = client.receive()
        self.assertIn(f'message-id="m{client.number}"', reply)
        wrong = self.lint.complaint(request, reply)
        if wrong:
            self.fail(f"{client.name}: {wrong}\n{request}\n{reply[:5000]}")
        return reply

    def ok(self, client, operation):
        reply = self.ask(client, operation)
        self.assertRegex(reply, "<ok/></rpc-reply>$")

    def error(self, client, operation, tag, *texts):
        reply = self.ask(client, operation)
        self.assertIn(f"<error-tag>{tag}</error-tag>", reply)
        for text in texts:
            self.assertIn(text, reply)
        self.assertNotIn("<ok/>", reply)

    def data(self, client, operation):
        """The reply with the white space between elements left out."""
        return re.sub(r">\s+<", "><", self.ask(client, operation))

    def edit(self, content, target="running", options=""):
        return (f"<edit-config><target><{target}/></target>{options}<config>{content}</config>"
                "</edit-config>")

    @staticmethod
    def get_config(content, store="running"):
        return f"<get-config><source><{store}/></source>{content}</get-config>"

    def subtree(self, content):
        return self.get_config(f"<filter>{content}</filter>")

    def xpath(self, expression):
        names = f'xmlns:e="{ELEMENT}" xmlns:q="{EQUIPMENT}" xmlns:f="{FUNCTION}" xmlns:p="{PLANT}"'
        return self.get_config(f'<filter type="xpath" {names} select="{expression}"/>')


class ReadTest(MessageCase):
    def test_what_is_wrong_in_a_reply_is_seen(self):
        client = Client(self.server, "unix", False)
        self.addCleanup(client.close)
        request = client.rpc(self.subtree(radio_unit(1)))
        client.send(request)
        reply = client.receive()
        self.assertEqual(self.lint.complaint(request, reply), "")
        for right, wrong in ((">UNLOCKED<", ">OPEN<"), ("<userLabel>", "<label>"), ("<data>", "<date>")):
            self.assertNotEqual(self.lint.complaint(request, reply.replace(right, wrong)), "", wrong)

    def test_get_and_get_config_of_every_model(self):
        filters = ["", "<filter/>"]
        for module, top in ((ELEMENT, element("")), (EQUIPMENT, equipment("")),
                            (FUNCTION, element(f'<GNBDUFunction xmlns="{FUNCTION}"/>'
                                               f'<GNBCUCPFunction xmlns="{FUNCTION}"/>')),
                            (PLANT, element(f'<Fitting xmlns="{PLANT}"/>')),
                            (LIBRARY, f'<yang-library xmlns="{LIBRARY}"/>'),
                            (MONITORING, f'<netconf-state xmlns="{MONITORING}"/>')):
            filters.append(f"<filter>{top}</filter>")
        defaults = "urn:ietf:params:xml:ns:yang:ietf-netconf-with-defaults"
        for client in self.each_client():
            for one in filters:
                self.ask(client, f"<get>{one}</get>")
                for mode in ("", "trim", "report-all", "report-all-tagged"):
                    wanted = f'<with-defaults xmlns="{defaults}">{mode}</with-defaults>' if mode else ""
                    self.ask(client, f"<get-config><source><running/></source>{one}{wanted}</get-config>")

    def test_subtree_filters(self):
        key = "<managedElementId>Harbour</managedElementId>"
        for client in self.each_client():
            # Containment, selection, content match; nothing; namespaces; attributes are ignored.
            self.assertIn(f"{key}<Equipment", self.data(client, self.subtree(
                f'<ManagedElement xmlns="{ELEMENT}"><Equipment xmlns="{EQUIPMENT}"/></ManagedElement>')))
            found = self.data(client, self.subtree(equipment("<RadioUnit><userLabel/></RadioUnit>")))
            self.assertIn("<radioUnitId>1</radioUnitId><userLabel>Crane mast</userLabel></RadioUnit>", found)
            found = self.data(client, self.subtree(
                equipment("<RadioUnit><userLabel>Terminal roof</userLabel></RadioUnit>")))
            self.assertEqual(re.findall("<radioUnitId>(.)<", found), ["2"])
            self.assertIn("<antennaRef>", found)
            for nothing in ("", element("<userLabel>No such label</userLabel>"),
                            '<ManagedElement xmlns="urn:other"/>'):
                self.assertRegex(self.data(client, self.subtree(nothing)), "<data[^>]*/>|></data>")
            self.assertIn("<userLabel>Harbour</userLabel>", self.data(
                client, self.subtree('<ManagedElement xmlns="" x="1"><userLabel/></ManagedElement>')))

    def test_xpath_functions(self):
        units = "/e:ManagedElement/q:Equipment/q:RadioUnit"
        for client in self.each_client():
            for name, material in (("a", "steel"), ("b", "metal")):
                self.ok(client, self.edit(fitting(
                    name, f'<material xmlns:x="{PLANT}">x:{material}</material><grade>HEAVY</grade>')))
            for expression, found in (
                (f"{units}[re-match(q:userLabel, '.*roof')]", "RadioUnit 2"),
                (f"{units}[starts-with(q:userLabel, 'Crane') and not(contains(q:userLabel, 'x'))]", "RadioUnit 1"),
                (f"{units}[last()]", "RadioUnit 2"),
                (f"{units}[position() = 1]", "RadioUnit 1"),
                (f"{units}[count(q:antennaRef) = 2][string-length(q:userLabel) = 10]", "RadioUnit 1"),
                (f"{units}[translate(normalize-space(q:userLabel), 'C', 'c') = 'crane mast']", "RadioUnit 1"),
                (f"{units}[substring-before(q:userLabel, ' ') = 'Terminal'][1]", "RadioUnit 2"),
                (f"{units}[concat(q:radioUnitId, '-', local-name()) = '2-RadioUnit']", "RadioUnit 2"),
                (f"{units}[number(q:radioUnitId) + 1 = floor(2.5)]", "RadioUnit 1"),
                (f"{units}[sum(../q:AntennaUnit/q:Antenna/q:electricalTilt) > 0][boolean(q:sectorRef)][2]",
                 "RadioUnit 2"),
                ("//p:Fitting[derived-from(p:material, 'p:metal')]", "Fitting a"),
                ("//p:Fitting[derived-from-or-self(p:material, 'p:metal')]", "Fitting a, Fitting b"),
                ("//p:Fitting[enum-value(p:grade) = 7][p:fittingId = 'b']", "Fitting b"),
                (f"{units}[1] | //p:Fitting[1]", "Fitting a, RadioUnit 1"),
                ("//p:Fitting[false()]", ""),
            ):
                with self.subTest(expression):
                    reply = ElementTree.fromstring(
                        self.ask(client, self.xpath(expression.replace(">", "&gt;"))))
                    names = [f"{kind} {one[0].text}" for kind, space in
                             (("Fitting", PLANT), ("RadioUnit", EQUIPMENT))
                             for one in reply.iter(f"{{{space}}}{kind}")]
                    self.assertEqual(", ".join(names), found)
            self.error(client, self.xpath("count(//*)"), "operation-failed")
            # Requests that the library refuses, and yanglint, too.
            for wrong in ("//x:RadioUnit", f"{units}[", "no-such()"):
                self.assertIn("<error-tag>operation-failed<", client.plain(self.xpath(wrong)))
            for name in "ab":
                self.ok(client, self.edit(element(
                    f'<Fitting xmlns="{PLANT}" {DELETE}><fittingId>{name}</fittingId></Fitting>')))

    def test_get_schema(self):
        def ask_for(name, more=""):
            return (f'<get-schema xmlns="{MONITORING}"><identifier>{name}</identifier>{more}'
                    "</get-schema>")

        for client in self.each_client():
            reply = self.ask(client, ask_for("plant"))
            self.assertIn("module plant {", reply)
            self.assertEqual(self.ask(client, ask_for(
                "plant", "<version>2026-11-22</version><format>yang</format>"))
                .replace(f"m{client.number}", ""), reply.replace(f"m{client.number - 1}", ""))
            self.error(client, ask_for("no-such-module"), "invalid-value", "no-such-module")
            self.error(client, ask_for("plant", "<version>2001-01-01</version>"), "invalid-value")
            self.error(client, ask_for("plant", "<format>yin</format>"), "invalid-value")

    def test_yang_library(self):
        for client in self.each_client():
            found = ElementTree.fromstring(self.ask(
                client, f'<get><filter><yang-library xmlns="{LIBRARY}"/></filter></get>'))
            names = {one.findtext(f"{{{LIBRARY}}}name") for one in found.iter(f"{{{LIBRARY}}}module")}
            self.assertLessEqual({"plant", "ran-equipment", "ietf-netconf-monitoring"}, names)
            identifier = found.find(f".//{{{LIBRARY}}}content-id").text
            self.assertRegex(client.wire.hello, f"yang-library:1.1\\?[^<]*content-id={identifier}<")


class WriteTest(MessageCase):
    def test_edit_config(self):
        none = "<default-operation>none</default-operation>"
        label = "<userLabel>Quay</userLabel>"
        for client in self.each_client():
            before = self.data(client, self.get_config(""))
            create = radio_unit(9).replace("<RadioUnit", f'<RadioUnit xmlns:nc="{BASE}" nc:operation="create"')
            delete = create.replace('"create"', '"delete"')
            self.ok(client, self.edit(create))
            self.error(client, self.edit(create), "data-exists", "radioUnitId=&apos;9&apos;"
                       if "&apos;" in before else "radioUnitId='9'")
            self.ok(client, self.edit(radio_unit(9, label), options=none))
            self.assertNotIn("Quay", self.data(client, self.subtree(radio_unit(9))))
            self.ok(client, self.edit(radio_unit(9, label), options="<test-option>test-only</test-option>"))
            self.assertNotIn("Quay", self.data(client, self.subtree(radio_unit(9))))
            self.ok(client, self.edit(radio_unit(9, label)))
            self.assertIn("Quay", self.data(client, self.subtree(radio_unit(9))))
            twice = equipment(2 * f"<RadioUnit><radioUnitId>9</radioUnitId>{2 * label}</RadioUnit>")
            self.error(client, self.edit(twice), "bad-element")
            self.error(client, self.edit(radio_unit(9, "<x/>")), "unknown-element", "<bad-element>x<")
            self.ok(client, self.edit(delete))
            self.error(client, self.edit(delete), "data-missing", "error-path")
            self.ok(client, self.edit(delete.replace('"delete"', '"remove"')))
            self.assertEqual(self.data(client, self.get_config("")).replace(f'"m{client.number}"', ""),
                             before.replace('"m1"', ""))

    def test_copy_config(self):
        def copy(target, source):
            return f"<copy-config><target><{target}/></target><source>{source}</source></copy-config>"

        for client in self.each_client():
            whole = re.search("<data[^>]*>(.*)</data>", self.data(client, self.get_config(""))).group(1)
            changed = whole.replace("<userLabel>Crane mast<", "<userLabel>Old mast<")
            self.assertNotEqual(changed, whole)
            self.ok(client, copy("candidate", f"<config>{changed}</config>"))
            self.assertIn("Crane mast", self.data(client, self.subtree(radio_unit(1))))
            self.ok(client, copy("running", "<candidate/>"))
            self.assertIn("Old mast", self.data(client, self.subtree(radio_unit(1))))
            self.ok(client, copy("running", f"<config>{whole}</config>"))
            self.assertIn("Crane mast", self.data(client, self.subtree(radio_unit(1))))
            self.ok(client, self.edit(radio_unit(1, "<userLabel>x</userLabel>"), "candidate"))
            self.ok(client, copy("candidate", "<running/>"))
            self.assertIn("Crane mast", self.data(client, self.get_config("", "candidate")))
            self.error(client, copy("running", "<running/>"), "invalid-value")

    def test_lock(self):
        def of(operation, store="running"):
            return f"<{operation}><target><{store}/></target></{operation}>"

        for client in self.each_client():
            other = Client(self.server, "unix", False)
            self.addCleanup(other.close)
            session = re.search("<session-id>(.*?)<", client.wire.hello).group(1)
            for store in ("running", "candidate"):
                self.error(client, of("unlock", store), "operation-failed")
                self.ok(client, of("lock", store))
                for one in (client, other):
                    self.error(one, of("lock", store), "lock-denied", f"<session-id>{session}</session-id>")
                self.error(other, of("unlock", store), "operation-failed")
                self.error(other, self.edit(radio_unit(1), store), "in-use", f"session {session}")
                self.ok(client, self.edit(radio_unit(1), store))
                self.ok(client, of("unlock", store))

    def test_instance_identifier(self):
        path = f'<place xmlns:x="{ELEMENT}">/x:ManagedElement[x:managedElementId="Harbour"]/x:userLabel</place>'
        for client in self.each_client():
            self.ok(client, self.edit(fitting("a", path)))
            self.assertIn(
                f"<place xmlns:ran-element=\"{ELEMENT}\">/ran-element:ManagedElement"
                "[ran-element:managedElementId='Harbour']/ran-element:userLabel</place>",
                self.data(client, self.subtree(fitting("a"))))
            for wrong in ("/x:ManagedElement", "/ran-element:NoSuch", "Harbour"):
                self.error(client, self.edit(fitting("a", f"<place>{wrong}</place>")), "invalid-value",
                           "<bad-element>place</bad-element>")
            self.ok(client, self.edit(element(
                f'<Fitting xmlns="{PLANT}" {DELETE}><fittingId>a</fittingId></Fitting>')))

    def test_anyxml(self):
        """The objects of the server have none; it is refused, and nothing of the edit is made."""
        drawing = '<drawing><svg xmlns="urn:other" a="1">text<b/></svg></drawing>'
        for client in self.each_client():
            self.error(client, self.edit(fitting("a", drawing)), "operation-not-supported", "drawing")
            self.assertNotIn("<fittingId>", self.data(client, self.get_config("")))

    def test_actions(self):
        def act(content):
            return f'<action xmlns="urn:ietf:params:xml:ns:yang:1">{content}</action>'

        for client in self.each_client():
            self.ok(client, act(radio_unit(1, "<blink><seconds>3</seconds></blink>")))
            self.ok(client, act(element("<restart><reason>PLANNED</reason></restart>")))
            self.error(client, act(radio_unit(77, "<blink/>")), "data-missing", "radioUnitId='77'")
            self.error(client, act(element("<restart/>")), "missing-element", "/ran-element:restart<",
                       "<bad-element>reason</bad-element>")
            # These the library refuses before the server sees them.
            for wrong in (radio_unit(1, "<blink><no-such/></blink>"), radio_unit(1, "<no-such/>"),
                          radio_unit(1, "<blink><seconds>x</seconds></blink>"), element("")):
                reply = client.plain(act(wrong))
                self.assertIn("<error-tag>operation-failed</error-tag>", reply)


class ProtocolTest(MessageCase):
    def test_notifications(self):
        subscribe = f'<create-subscription xmlns="{NOTIFICATION}"/>'
        for client in self.each_client():
            writer = Client(self.server, "unix", False)
            self.addCleanup(writer.close)
            self.ask(writer, self.subtree(""))  # its session has begun before others listen
            self.ok(client, subscribe)
            self.error(client, subscribe, "operation-failed")
            for label in ("Quay", "Harbour"):
                self.ok(writer, self.edit(element(f"<userLabel>{label}</userLabel>")))
                event = client.receive()
                self.assertIn(f'<netconf-config-change xmlns="{EVENTS}"', event)
                wrong = self.lint.complaint_on_event(event, writer.plain(self.get_config("")))
                if wrong:
                    self.fail(f"{client.name}: {wrong}\n{event}")
            for wrong in ("<stream>x</stream>", "<startTime>2026-01-01T00:00:00Z</startTime>"):
                reply = self.ask(writer, subscribe[:-2] + f">{wrong}</create-subscription>")
                self.assertIn("<rpc-error>", reply)

    def test_framing(self):
        """Several messages at once, byte by byte, and what is not well-formed."""
        label = self.subtree(element("<userLabel/>"))
        for client in self.each_client():
            message = client.rpc(label)
            for _ in range(3):
                client.send(message)
            for _ in range(3):
                self.assertIn("<userLabel>Harbour</userLabel>", client.receive())
            framed = "".join(f"\n#1\n{one}" for one in message) + "\n##\n" if client.is_chunked \
                else message + "]]>]]>"
            for one in framed:
                client.wire.send(one)
            self.assertIn("<userLabel>Harbour</userLabel>", client.receive())
            client.send(f'<rpc xmlns="{BASE}" message-id="8"><get></rpc>')
            self.assertRegex(client.receive(), 'message-id="8".*tag mismatch')
            # What has no envelope has no answer in base 1.0; the session goes on.
            client.send(f'<rpc xmlns="{BASE}" message-id="8"')
            if client.is_chunked:
                self.assertIn("malformed-message", client.receive())
            self.assertIn("<userLabel>Harbour</userLabel>", client.plain(label))
            session = re.search("<session-id>(.*?)<", client.wire.hello).group(1)
            counts = self.ask(client, f'<get><filter><netconf-state xmlns="{MONITORING}"><sessions><session>'
                              f"<session-id>{session}</session-id><in-bad-rpcs/></session></sessions>"
                              "</netconf-state></filter></get>")
            self.assertIn("<in-bad-rpcs>2</in-bad-rpcs>", counts)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *ARGUMENTS])
