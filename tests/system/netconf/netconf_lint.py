# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Replies of a server checked by yanglint."""

import pathlib
import re
import subprocess
import xml.etree.ElementTree as ElementTree

MONITORING = "urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring"


class Lint:
    """yanglint with the modules of a server."""

    def __init__(self, yanglint, folder, client):
        """client.plain: the answer to an operation."""
        self.yanglint = yanglint
        self.folder = pathlib.Path(folder)
        asked = f'<get><filter><netconf-state xmlns="{MONITORING}"><schemas/></netconf-state></filter></get>'
        state = ElementTree.fromstring(client.plain(asked))
        self.modules = []
        for schema in state.iter(f"{{{MONITORING}}}schema"):
            name = schema.findtext(f"{{{MONITORING}}}identifier")
            text = ElementTree.fromstring(client.plain(
                f'<get-schema xmlns="{MONITORING}"><identifier>{name}</identifier></get-schema>'))
            file = self.folder / f"{name}.yang"
            file.write_text(text.findtext(f"{{{MONITORING}}}data"))
            # Those that libyang has in itself, and parts of others, cannot be named as well.
            if file.read_text().startswith("module") and name not in self.INSIDE:
                self.modules.append(file)

    INSIDE = {"yang", "ietf-yang-metadata", "ietf-inet-types", "ietf-yang-types", "ietf-yang-schema-mount",
              "ietf-yang-structure-ext", "ietf-datastores"}

    def run(self, *words):
        ended = subprocess.run(
            [self.yanglint, "-p", self.folder, *words], capture_output=True, text=True, timeout=60)
        return "" if ended.returncode == 0 else ended.stderr + ended.stdout

    def file(self, name, text):
        path = self.folder / name
        path.write_text(text)
        return path

    def complaint(self, request, reply):
        """What is wrong with a reply; empty: nothing."""
        question = self.file("request.xml", request)
        answer = self.file("reply.xml", reply)
        wrong = self.run("-t", "nc-reply", "-R", question, *self.modules, answer)
        # In the text, since values can have prefixes.
        data = re.search(r"<data>\s*(<.*)</data>", reply, re.DOTALL)
        if wrong or data is None:
            return wrong
        kind = "getconfig" if "<get-config>" in request else "get"
        return self.run("-t", kind, *self.modules, self.file("data.xml", data.group(1)))

    def complaint_on_event(self, event, reply):
        """reply: one with all data, which the event names parts of."""
        data = self.file("data.xml", re.search(r"<data>(.*)</data>", reply, re.DOTALL).group(1))
        return self.run("-t", "nc-notif", "-O", data, *self.modules, self.file("event.xml", event))
