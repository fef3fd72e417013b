#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""The shells of a server, as `orvhost --connect` uses them, and clients that mean no good.

usage: shell_server_test.py ORVHOST EXT_CM EXAMPLES [unittest arguments]
"""

import fcntl
import json
import os
import pathlib
import pty
import re
import select
import signal
import socket
import stat
import struct
import subprocess
import sys
import tempfile
import termios
import threading
import time
import unittest

from netconf_server_test import (
    EXAMPLES, EXT_CM, ORVHOST, UNITTEST_ARGUMENTS, LocalClient, Server, config, radio_unit, rpc)

UNIT = "ManagedElement=Harbour,Equipment=1,RadioUnit="
CABINET = "ManagedElement=Harbour,Equipment=1,Cabinet="
EDIT = rpc("<edit-config><target><candidate/></target>"
           + config(radio_unit(1, "<userLabel>mine</userLabel>")) + "</edit-config>")
VERSION = 1
HELLO = {"version": VERSION, "json": False, "echo": False, "answerColours": False, "errorColours": False, "typed": False,
         "interface": "3_1"}


def frame(kind, body=b""):
    return kind.encode() + struct.pack(">I", len(body)) + body


def line(text, place=""):
    return frame("L", place.encode() + b"\0" + text.encode())


def waiting_in(receiving):
    """The bytes that a socket has received and nobody has read."""
    return struct.unpack("i", fcntl.ioctl(receiving, termios.FIONREAD, b"\0" * 4))[0]


class RawShell:
    """Hand-made messages to a shell."""

    def __init__(self, path, hello=None):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(str(path))  # waits if many want to
        self.socket.settimeout(60)
        self.rest = b""
        if hello is not None:
            self.send(frame("H", json.dumps(hello).encode()))
            self.welcome = self.receive()

    def send(self, data):
        self.socket.sendall(data)

    def receive(self):
        """Kind and body of the next message; None at the end."""
        while len(self.rest) < 5 or len(self.rest) < 5 + struct.unpack(">I", self.rest[1:5])[0]:
            try:
                more = self.socket.recv(1 << 16)
            except ConnectionResetError:  # it has not read all that was sent
                more = b""
            if not more:
                return None
            self.rest += more
        size = struct.unpack(">I", self.rest[1:5])[0]
        kind, body = self.rest[:1].decode(), self.rest[5:5 + size]
        self.rest = self.rest[5 + size:]
        return kind, body.decode(errors="replace")

    def ask(self, text):
        """Output, errors, and how things stand then."""
        self.send(line(text))
        return self.answer()

    def answer(self):
        out = errors = ""
        while True:
            kind, body = self.receive()
            if kind == "O":
                out += body
            elif kind == "E":
                errors += body
            else:
                assert kind == "D", (kind, body)
                return out, errors, json.loads(body)

    def last_words(self):
        """What the server says at the end, or nothing."""
        said = None
        while True:
            message = self.receive()
            if message is None:
                return said
            said = message

    def close(self):
        self.socket.close()


class Typist:
    """orvhost --connect at a terminal."""

    def __init__(self, path):
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.environ.update(TERM="dumb", HOME=str(pathlib.Path(path).parent))
            os.execv(ORVHOST, [str(ORVHOST), "--connect", str(path), "--history", ""])
        self.unread = ""

    def type(self, keys):
        os.write(self.terminal, keys.encode())

    def wait_for(self, text):
        """What came until then."""
        end = time.monotonic() + 60
        while text not in self.unread:
            ready, _, _ = select.select([self.terminal], [], [], end - time.monotonic())
            if not ready:
                raise TimeoutError(f"{text!r} did not come; seen: {self.unread[-2000:]!r}")
            try:
                self.unread += os.read(self.terminal, 65536).decode(errors="replace")
            except OSError as end_of_program:
                raise EOFError(self.unread[-2000:]) from end_of_program
        seen, self.unread = self.unread.split(text, 1)
        return seen

    def finish(self):
        while True:
            try:
                if not os.read(self.terminal, 65536):
                    break
            except OSError:
                break
        os.close(self.terminal)
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])

    def kill(self):
        os.kill(self.process, signal.SIGKILL)
        self.finish()


class ShellCase(unittest.TestCase):
    """Each case has a fresh server."""

    options = ()

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.path = self.folder / "shell"
        self.start(*self.options)
        self.addCleanup(self.end)

    def start(self, *options, variables=None):
        self.server = Server(self.folder, "--shell-unix", self.path, *options, variables=variables)
        self.told = self.server.process.stdout.readline()

    def end(self):
        if self.server.process.returncode is None:
            seconds, status = self.server.stop()
            self.assertEqual(status, 0, self.server.last_messages())
            self.assertLess(seconds, 3)

    def run_shell(self, *words, text=None):
        return subprocess.run([str(word) for word in (ORVHOST, "--connect", self.path, *words)],
                              input=text, capture_output=True, text=True, timeout=120,
                              stdin=subprocess.DEVNULL if text is None else None)

    def raw(self, **changes):
        shell = RawShell(self.path, {**HELLO, **changes})
        self.addCleanup(shell.close)
        return shell

    def raw_when_free(self):
        """A shell as soon as there is room: those that vanish are noticed one after the other."""
        end = time.monotonic() + 60
        while True:
            try:
                shell = self.raw()
                if shell.welcome is not None and shell.welcome[0] == "H":
                    return shell
            except (BrokenPipeError, ConnectionResetError):
                pass
            self.assertLess(time.monotonic(), end, self.server.last_messages())
            time.sleep(0.02)

    def local(self):
        client = LocalClient(self.server)
        self.addCleanup(client.close)
        return client

    def typist(self):
        return Typist(self.path)

    def assert_serves(self):
        answer = self.run_shell("exists", UNIT + "1")
        self.assertEqual((answer.stdout, answer.stderr, answer.returncode), ("yes\n", "", 0))

    def wait_for_log(self, text):
        end = time.monotonic() + 60
        while text not in self.server.messages.read_text():
            self.assertLess(time.monotonic(), end, self.server.last_messages())
            time.sleep(0.02)


class UseTest(ShellCase):
    """What somebody does with a shell."""

    def test_the_server_says_how_to_connect(self):
        self.assertEqual(self.told,
                         f"shell at the socket {self.path}: orvhost --connect {self.path}\n")

    def test_commands_are_one_session(self):
        done = self.run_shell("-c", "begin work", "-c", f"create {UNIT}9", "-c", "commit",
                              "-c", f"exists {UNIT}9", "--echo")
        self.assertEqual(done.stderr, "")
        self.assertEqual(done.stdout,
                         f"orvhost> begin work\ntransaction work\norvhost[work]> create {UNIT}9\n"
                         f"created\norvhost[work]> commit\ncommitted\norvhost> exists {UNIT}9\nyes\n")
        self.assertEqual(done.returncode, 0)
        self.assertEqual(self.run_shell("exists", UNIT + "9").stdout, "yes\n")

    def test_scripts_are_read_by_the_client(self):
        script = self.folder / "script.orv"
        script.write_text(f"# one that fails\nbegin\nget {UNIT}7\ncreate {UNIT}9\n")
        for words, place in ((("-f", script), script), (("source", script), script)):
            with self.subTest(words):
                done = self.run_shell(*words)
                self.assertTrue(done.stderr.startswith(f"{place}:3: get: "), done.stderr)
                self.assertEqual((done.stdout, done.returncode), ("transaction t1\n", 1))
        done = self.run_shell("--keep-going", "-f", "-", text=script.read_text())
        self.assertEqual((done.stdout, done.returncode), ("transaction t1\ncreated\n", 1))
        self.assertIn("stdin:3: get: ", done.stderr)
        self.assertIn("note: transaction t1 was still open, with 1 writing command; it is aborted",
                      done.stderr)
        self.assertEqual(self.run_shell("exists", UNIT + "9").stdout, "no\n")
        done = self.run_shell("source", self.folder / "none")
        self.assertIn("there is no such file", done.stderr)
        self.assertEqual(done.returncode, 1)
        done = self.run_shell("--json", "source")
        self.assertEqual(json.loads(done.stdout)["command"], "source")
        self.assertEqual(done.returncode, 2)

    def test_the_status_of_the_command_is_that_of_the_program(self):
        for words, status in (((f"get {UNIT}7",), 2), (("-c", f"get {UNIT}7"), 1),
                              (("-c", "get"), 2), (("-c", "ls"), 0), (("-c", "'open"), 2)):
            with self.subTest(words):
                self.assertEqual(self.run_shell(*words).returncode, status)

    def test_the_version_of_the_interface(self):
        self.assertEqual(self.run_shell("--interface", "1", "interface").stdout, "version 1\n")

    def test_scenarios_answer_as_without_a_server(self):
        words = [ORVHOST, "-I", EXAMPLES / "models", "-m", "ran-element", "-m", "ran-equipment",
                 "-m", "ran-function", "-d", EXAMPLES / "data/harbour.json", "--me-id", "Harbour",
                 "--ext-cm", EXT_CM]
        rest = ["--echo", "--keep-going", "-f", EXAMPLES / "scenarios/demo.orv"]
        local = subprocess.run([str(word) for word in (*words, *rest)], capture_output=True,
                               text=True, stdin=subprocess.DEVNULL, timeout=120)
        served = self.run_shell(*rest)
        self.assertEqual(served.stdout, local.stdout)
        self.assertEqual(served.stderr, local.stderr)
        self.assertEqual(served.returncode, local.returncode)

    def test_json(self):
        done = self.run_shell("--json", "-c", f"exists {UNIT}1", "-c", f"get {UNIT}7")
        documents = [json.loads(text) for text in done.stdout.splitlines()]
        self.assertEqual(documents[0]["exists"], True)
        self.assertEqual(documents[1]["error"]["name"], "OrvNotExist")
        self.assertEqual((done.stderr, done.returncode), ("", 1))

    def test_help_says_what_a_shell_does_not_have(self):
        text = self.run_shell("help").stdout
        self.assertIn("Not in a server's shell: save, backup, load; 'help COMMAND' says why.", text)
        self.assertNotIn("\nsave ", text)
        self.assertIn("\nwatch ", text)
        self.assertIn("A server's shell does not have it: it would write a file",
                      self.run_shell("help", "save").stdout)
        documents = json.loads(self.run_shell("--json", "help").stdout)["commands"]
        self.assertEqual({one["name"] for one in documents if "whyNotServed" in one},
                         {"save", "backup", "load"})

    def test_what_a_shell_does_not_have_is_refused(self):
        written = self.folder / "written"
        for command, reason in (
            (f"save {written}", "it would write a file where the server runs"),
            (f"backup {written}", "it would write a file where the server runs"),
            (f"load {self.folder}", "it would read a file where the server runs"),
            (f"graph -o {written}.svg", "writes no files"),
            ("graph", "does not call Graphviz"),
            (f"graph --html -o {written}.html", "writes no files"),
            (f"diff committed {self.folder}", "reads no files"),
            (f"expect ok : save {written}", "got:      error"),
            ("expect : " * 5000 + "ls", "got:      error"),  # would need much of the stack
        ):
            with self.subTest(command):
                done = self.run_shell("-c", command)
                self.assertIn(reason, done.stderr)
                self.assertNotEqual(done.returncode, 0)
        # The client runs scripts; a client that sends `source` all the same gets no file.
        out, errors, state = self.raw().ask(f"source {self.server.key}")
        self.assertEqual((out, state["status"]), ("", 1))
        self.assertIn("reads no files", errors)
        self.assertFalse(list(self.folder.glob("written*")))
        self.assertTrue(self.run_shell("graph", "--dot").stdout.startswith("digraph"))
        self.assert_serves()

    def test_two_transactions_are_compared(self):
        done = self.run_shell("-c", "begin a", "-c", f"create {UNIT}9", "-c", "diff committed a")
        self.assertIn(f"+ {UNIT}9", done.stdout)

    def test_what_is_said_of_a_picture_is_said_to_the_client(self):
        cabinets = "".join(f"create {CABINET}{number}\n" for number in range(1000, 1120))
        drawn = self.run_shell("-f", "-", text=f"begin\n{cabinets}graph --dot\nabort\n")
        self.assertEqual(drawn.returncode, 0, drawn.stderr)
        self.assertIn("note: folded: ", drawn.stderr)
        self.assertNotIn("note: folded: ", drawn.stdout)
        offered = re.findall("'(graph [^']*)'", drawn.stderr)
        self.assertEqual(len(offered), 3, drawn.stderr)  # a part, each object, a page
        for command in offered:
            done = self.run_shell("-f", "-", text=f"begin\n{cabinets}{command}\nabort\n")
            self.assertEqual((done.returncode, done.stderr), (0, ""), command)
            self.assertIn("<html" if "--html" in command else "digraph", done.stdout, command)

    def test_what_belongs_to_the_server_cannot_be_combined(self):
        for words, reason in ((("-m", "ran-element", "tree"), "--model cannot be combined"),
                              (("--store", "x", "tree"), "--store cannot be combined"),
                              (("check", "x.orv"), "check cannot be combined"),
                              (("serve",), "serve cannot be combined"),
                              (("init",), "init cannot be combined")):
            with self.subTest(words):
                done = self.run_shell(*words)
                self.assertIn(reason, done.stderr)
                self.assertEqual(done.returncode, 2)

    def test_the_prompt(self):
        typist = self.typist()
        typist.wait_for("'help' lists the commands")
        typist.wait_for("orvhost> ")
        typist.type("begin work\r")
        typist.wait_for("orvhost[work]> ")
        sector = "ManagedElement=Harbour,Equipment=1,Sector=77"
        typist.type(f"cre\t{UNIT[:-4]}\t9 sectorRef={sector}\r")
        typist.wait_for("created")
        typist.wait_for("orvhost[work]> ")
        typist.type("validate\r")
        typist.wait_for("note: references to objects that do not exist")
        typist.wait_for("orvhost[work]> ")
        typist.type("quit\r")
        typist.wait_for("Not committed, and lost at the end: work. End? [y/N] ")
        typist.type("n\r")
        typist.wait_for("orvhost[work]> ")
        typist.type("commit\r")
        typist.wait_for("committed")
        typist.wait_for("orvhost> ")
        typist.type("\x04")
        self.assertEqual(typist.finish(), 0)
        self.assertEqual(self.run_shell("exists", UNIT + "9").stdout, "yes\n")

    def test_a_line_that_is_too_long(self):
        done = self.run_shell("-f", "-", text="get " + "x" * (1 << 20) + "\n")
        self.assertIn("is too long for a server's shell", done.stderr)
        self.assertEqual(done.returncode, 2)
        self.assert_serves()

    def test_the_log_says_who_did_what_and_no_values(self):
        self.run_shell("-c", f"set {UNIT}1 userLabel=verysecret",
                       "-c", f"expect ok : set {UNIT}1 userLabel=verysecret")
        self.wait_for_log(", shell 1: ends")
        log = self.server.messages.read_text()
        self.assertIn(", shell 1: begins", log)
        self.assertIn(", shell 1: set: done", log)
        self.assertIn(", shell 1: expect : set: done", log)
        self.assertNotIn("verysecret", log)


class OthersTest(ShellCase):
    """Shells beside shells and NETCONF clients."""

    def test_two_shells_conflict(self):
        first, second = self.raw(), self.raw()
        first.ask("begin a")
        second.ask("begin b")
        self.assertEqual(first.ask(f"set {UNIT}1 userLabel=first")[0], "set\n")
        _, errors, state = second.ask(f"set {UNIT}1 userLabel=second")
        self.assertIn("OrvHostWriteConflict", errors)
        self.assertIn(", shell 1", errors)
        self.assertEqual(state["status"], 1)
        self.assertEqual(first.ask("commit")[0], "committed\n")
        self.assertEqual(self.run_shell("get", UNIT + "1", "userLabel").stdout, "first\n")

    def test_a_candidate_is_in_use_for_shells_and_the_other_way_round(self):
        client, shell = self.local(), self.raw()
        self.assertIn("<ok/>", client.ask(EDIT))
        errors = shell.ask(f"set {UNIT}1 userLabel=other")[1]
        self.assertIn("candidate", errors)
        self.assertIn("OrvHostWriteConflict", errors)
        self.assertIn("<ok/>", client.ask(rpc("<discard-changes/>")))
        shell.ask("begin")
        self.assertEqual(shell.ask(f"set {UNIT}1 userLabel=other")[0], "set\n")
        refusal = client.ask(EDIT)
        self.assertIn("<error-tag>in-use</error-tag>", refusal)
        self.assertIn(", shell 1", refusal)
        shell.close()
        self.wait_for_log(", shell 1: ends")
        self.assertIn("<ok/>", client.ask(EDIT))

    def test_a_lock_of_running_is_respected(self):
        client, shell = self.local(), self.raw()
        self.assertIn("<ok/>", client.ask(rpc("<lock><target><running/></target></lock>")))
        for command in (f"set {UNIT}1 userLabel=other", "commit"):
            if command == "commit":
                shell.ask("begin work")
                shell.ask(f"set {UNIT}1 userLabel=other")
            _, errors, state = shell.ask(command)
            self.assertIn("of NETCONF has locked running", errors)
            self.assertEqual(state["status"], 1)
        self.assertEqual(state["uncommitted"], [{"transaction": "work", "writes": 1}])
        self.assertIn("<ok/>", client.ask(rpc("<unlock><target><running/></target></unlock>")))
        self.assertEqual(shell.ask("commit")[0], "committed\n")

    def test_a_confirmed_commit_that_waits_is_respected(self):
        client, shell = self.local(), self.raw()
        self.assertIn("<ok/>", client.ask(EDIT))
        self.assertIn("<ok/>", client.ask(rpc("<commit><confirmed/></commit>")))
        self.assertIn("waits for its confirmation",
                      shell.ask(f"set {UNIT}2 userLabel=other")[1])
        self.assertIn("<ok/>", client.ask(rpc("<commit/>")))
        self.assertEqual(shell.ask(f"set {UNIT}2 userLabel=other")[0], "set and committed\n")

    def test_events_say_who(self):
        client = self.local()
        client.ask('<rpc xmlns="urn:ietf:params:xml:ns:netconf:base:1.0" message-id="8">'
                   '<create-subscription xmlns="urn:ietf:params:xml:ns:netconf:notification:1.0"/>'
                   "</rpc>]]>]]>")
        self.run_shell("set", UNIT + "1", "userLabel=other")
        event = client.receive()
        self.assertIn("<username>", event)
        self.assertIn("<session-id>0</session-id>", event)
        self.assertIn("userLabel", event)

    def test_an_open_transaction_ends_after_a_while_without_commands(self):
        self.end()
        self.start("--candidate-timeout", 1)
        idle, forgotten = self.raw(), self.raw()
        forgotten.ask("begin work")
        forgotten.ask(f"create {UNIT}9")
        kind, why = forgotten.last_words()
        self.assertEqual((kind, why),
                         ("B", "no command came for 1 s while a transaction was open"))
        self.assertEqual(idle.ask(f"exists {UNIT}9")[0], "no\n")  # it had nothing open


class LongTest(ShellCase):
    """Answers that are long."""

    def setUp(self):
        super().setUp()
        self.end()
        cabinets = [{"cabinetId": f"{number}-" + "x" * 200} for number in range(20000)]
        self.data = self.folder / "cabinets.json"
        self.data.write_text(json.dumps({"ran-element:ManagedElement": [{
            "managedElementId": "1", "ran-equipment:Equipment": [{
                "equipmentId": "1", "Cabinet": cabinets}]}]}))
        self.start("-d", self.data)

    def test_ctrl_c_cancels_the_command_and_the_transaction_stays(self):
        typist = self.typist()
        typist.wait_for("orvhost> ")
        typist.type("begin work\r")
        typist.wait_for("orvhost[work]> ")
        typist.type("tree\r")
        typist.wait_for("Cabinet=5-")
        typist.type("\x03")
        seen = typist.wait_for("tree: cancelled")
        self.assertNotIn("Cabinet=19999-", seen)
        typist.wait_for("orvhost[work]> ")
        typist.type("transactions\r")
        typist.wait_for("*  work")
        typist.wait_for("orvhost[work]> ")
        typist.type("quit\r")
        self.assertEqual(typist.finish(), 0)

    def test_a_cancel_of_a_command_that_waits_for_its_reader(self):
        shell = self.raw()
        shell.send(line("tree"))
        shell.send(frame("X", b"1"))
        out, errors, state = shell.answer()
        self.assertEqual((errors, state["status"]), ("tree: cancelled\n", 1))
        self.assertNotIn("Cabinet=19999-", out)
        self.wait_for_log(", shell 1: tree: cancelled")
        shell.send(frame("X", b"1"))  # comes too late, and is not meant for the next one
        self.assertEqual(shell.ask(f"exists {UNIT}1")[0], "yes\n")

    def test_the_whole_answer_comes_to_a_slow_reader(self):
        with subprocess.Popen([str(ORVHOST), "--connect", str(self.path), "tree"],
                              stdout=subprocess.PIPE, stdin=subprocess.DEVNULL) as client:
            first = client.stdout.read(10)
            self.wait_for_log(": tree: done")  # the server does not wait for the reader
            text = (first + client.stdout.read()).decode()
        self.assertEqual(client.returncode, 0)
        self.assertEqual(text.count("Cabinet="), 20001)

    def send_tree(self, shell):
        """And reads nothing of the answer."""
        shell.send(line("tree"))
        size, before = 0, -1
        while size != before:  # until the socket is full
            before, size = size, waiting_in(shell.socket)
            time.sleep(0.2)

    def log_of_end(self):
        self.wait_for_log("shell 1: ends")
        return self.server.messages.read_text()

    def test_who_does_not_read_waits_and_costs_others_nothing(self):
        shell = self.raw()
        shell.ask("begin work")
        shell.ask(f"create {UNIT}9")
        self.send_tree(shell)
        self.assertEqual(self.run_shell("-c", f"create {UNIT}8").stdout, "created and committed\n")
        client = self.local()
        self.assertIn("<ok/>", client.ask(EDIT))
        self.assertIn("<ok/>", client.ask(rpc("<commit/>")))
        out, errors, state = shell.answer()
        self.assertEqual((errors, state["status"]), ("", 0))
        self.assertEqual(out.count("Cabinet="), 20001)
        self.assertEqual(shell.ask("commit")[0], "committed\n")

    def test_a_terminal_that_is_not_read_holds_back_neither_the_server_nor_ctrl_c(self):
        typist = self.typist()
        typist.wait_for("orvhost> ")
        typist.type("tree\r")
        self.wait_for_log(": tree: done")
        os.kill(typist.process, signal.SIGINT)
        seen = typist.wait_for("the rest of its answer is not shown")
        self.assertNotIn("Cabinet=19999-", seen)
        typist.wait_for("orvhost> ")
        typist.type("quit\r")
        self.assertEqual(typist.finish(), 0)

    def test_a_terminal_that_was_stopped_goes_on(self):
        with subprocess.Popen([str(ORVHOST), "--connect", str(self.path), "tree"],
                              stdout=subprocess.PIPE, stdin=subprocess.DEVNULL) as client:
            first = client.stdout.read(10)
            client.send_signal(signal.SIGSTOP)
            self.assert_serves()
            client.send_signal(signal.SIGCONT)
            text = (first + client.stdout.read()).decode()
        self.assertEqual(client.returncode, 0)
        self.assertEqual(text.count("Cabinet="), 20001)

    def test_who_does_not_read_for_long_is_ended(self):
        self.end()
        self.start("-d", self.data, "--candidate-timeout", 1)
        shell = self.raw()
        shell.ask("begin work")
        shell.ask(f"create {UNIT}9")
        shell.send(line("tree"))
        self.assert_serves()
        log = self.log_of_end()
        self.assertEqual(log.count("shell 1: is ended: it does not read its answers"), 1, log)
        self.assertNotIn("has gone", log)
        self.assertEqual(self.run_shell("-c", f"create {UNIT}9").stdout, "created and committed\n")

    def test_who_goes_before_the_end_of_an_answer_has_gone(self):
        shell = self.raw()
        self.send_tree(shell)
        shell.close()
        log = self.log_of_end()
        self.assertEqual(log.count("shell 1: has gone before the end of an answer"), 1, log)
        self.assertNotIn("does not read", log)

    def test_the_end_of_the_server_while_an_answer_is_not_read(self):
        shell = self.raw()
        self.send_tree(shell)
        self.assert_serves()
        self.end()
        log = self.log_of_end()
        self.assertNotIn("does not read", log)
        self.assertNotIn("has gone", log)


class SocketTest(ShellCase):
    """Where the socket is, and who can use it."""

    def refusal(self, path):
        words = [ORVHOST, "-I", EXAMPLES / "models", "-m", "ran-element", "--ext-cm", EXT_CM,
                 "--log-level", "off", "serve", "--shell-unix", path]
        ended = subprocess.run([str(word) for word in words], stdin=subprocess.DEVNULL,
                               capture_output=True, text=True, timeout=120)
        self.assertEqual((ended.stdout, ended.returncode), ("", 3))
        return ended.stderr

    def test_it_is_for_its_owner_and_goes_with_the_server(self):
        self.assertEqual(stat.S_IMODE(self.path.stat().st_mode), 0o600)
        self.end()
        self.assertFalse(self.path.exists())

    def test_a_socket_of_a_dead_server_is_replaced(self):
        self.server.process.kill()
        self.server.process.wait()
        self.server.process.stdout.close()
        self.assertTrue(self.path.exists())
        done = self.run_shell("tree")
        self.assertIn("no server listens there", done.stderr)
        self.assertEqual(done.returncode, 3)
        self.start()
        self.assert_serves()

    def test_a_socket_that_is_served_is_not(self):
        self.assertIn("exists already; another program listens there", self.refusal(self.path))
        self.assert_serves()
        datagrams = self.folder / "datagrams"
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as other:
            other.bind(str(datagrams))
            self.assertIn("it is not known whether a program listens there",
                          self.refusal(datagrams))
            self.assertTrue(datagrams.exists())

    def test_the_socket_of_another_server_stays_there(self):
        first, first_path = self.server, self.path
        first_path.unlink()
        self.path = self.folder / "other"
        other = self.folder / "folder"
        other.mkdir()
        self.server = Server(other, "--shell-unix", first_path)
        self.addCleanup(self.end)
        self.server.process.stdout.readline()
        self.assertEqual(first.stop()[1], 0)
        self.path = first_path
        self.assert_serves()
        self.assertIn("<ok/>", self.local().ask(rpc("<discard-changes/>")))

    def test_paths_that_cannot_be_used(self):
        plain = self.folder / "plain"
        plain.write_text("text")
        self.assertIn("exists already, and is no socket", self.refusal(plain))
        self.assertEqual(plain.read_text(), "text")
        long = self.folder / ("x" * 108)
        self.assertIn("is too long for a socket: a path of at most 107 bytes", self.refusal(long))
        self.assertIn("No such file or directory", self.refusal(self.folder / "none/shell"))
        for mode in (0o777, 0o1777, 0o770):
            open_folder = self.folder / f"open{mode}"
            open_folder.mkdir()
            open_folder.chmod(mode)
            self.assertIn("others can write into the folder", self.refusal(open_folder / "shell"))
            self.assertFalse((open_folder / "shell").exists())
            below = open_folder / "below"
            below.mkdir(0o700)
            if mode & stat.S_ISVTX:  # only the owner can move what is below
                continue
            self.assertIn(f"others can write into the folder {open_folder};",
                          self.refusal(below / "shell"))
            (self.folder / f"link{mode}").symlink_to(below)
            self.assertIn(f"others can write into the folder {open_folder};",
                          self.refusal(self.folder / f"link{mode}" / "shell"))

    def test_links_that_others_can_exchange(self):
        safe = self.folder / "safe"
        (safe / "below").mkdir(0o700, parents=True)
        open_folder = self.folder / "open"
        open_folder.mkdir()
        open_folder.chmod(0o777)
        (open_folder / "away").symlink_to(safe)
        (open_folder / "onward").symlink_to("away")
        others = (("first", open_folder / "away"), ("relative", "open/onward/../safe/below"),
                  ("last", "first"))
        for name, target in others:  # no folder that others can write into is above both ends
            (self.folder / name).symlink_to(target)
            with self.subTest(name):
                self.assertIn(f"others can write into the folder {open_folder};",
                              self.refusal(self.folder / name / "shell"))
        (self.folder / "round").symlink_to("round")
        self.assertIn("Too many levels of symbolic links",
                      self.refusal(self.folder / "round" / "shell"))
        if os.geteuid() == 0:  # nobody else can give a link away
            foreign = self.folder / "foreign"
            foreign.symlink_to(safe)
            os.chown(foreign, 65534, 65534, follow_symlinks=False)
            self.assertIn(f"the symbolic link {foreign} belongs to somebody else",
                          self.refusal(foreign / "shell"))

    def test_links_that_nobody_else_can_exchange(self):
        self.end()
        (self.folder / "safe/below").mkdir(0o700, parents=True)
        (self.folder / "absolute").symlink_to(self.folder / "safe")
        (self.folder / "relative").symlink_to("./absolute//below/../below")
        self.path = self.folder / "relative" / "shell"
        self.start()
        self.assert_serves()
        self.assertTrue((self.folder / "safe/below/shell").is_socket())

    def test_where_no_shell_is(self):
        for path, reason in ((self.folder / "none", "there is no such socket"),
                             (self.folder / ("x" * 108), "is too long for a socket"),
                             (self.server.socket, "something answers there that is no shell")):
            done = subprocess.run([str(ORVHOST), "--connect", str(path), "tree"], text=True,
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=60)
            self.assertIn(reason, done.stderr)
            self.assertEqual((done.stdout, done.returncode), ("", 3))

    def test_shells_alone(self):
        words = [ORVHOST, "-I", EXAMPLES / "models", "-m", "ran-element", "--ext-cm", EXT_CM,
                 "serve", "--shell-unix", self.folder / "alone"]
        with subprocess.Popen([str(word) for word in words], stdout=subprocess.PIPE, text=True,
                              stderr=subprocess.DEVNULL) as server:
            self.assertIn("orvhost --connect", server.stdout.readline())
            server.send_signal(signal.SIGTERM)
            self.assertEqual(server.stdout.read(), "")
        self.assertEqual(server.returncode, 0)


class StopTest(ShellCase):
    """The end of the server, and of clients."""

    def test_shells_are_told_and_what_they_have_open_is_aborted(self):
        typist, raw = self.typist(), self.raw()
        typist.wait_for("orvhost> ")
        typist.type("begin work\r")
        typist.wait_for("orvhost[work]> ")
        typist.type(f"create {UNIT}9\r")
        typist.wait_for("created")
        typist.wait_for("orvhost[work]> ")
        self.end()
        typist.wait_for("the server ends; what was not committed is aborted")
        typist.wait_for("note: transaction work was still open, with 1 writing command; it is aborted")
        self.assertEqual(typist.finish(), 3)
        self.assertEqual(raw.last_words(),
                         ("B", "the server ends; what was not committed is aborted"))

    def begin_confirmed_commit(self, *options, variables=None):
        """A server with a store, a confirmed commit and a shell with an open transaction."""
        self.end()
        self.store = ("--store", self.folder / f"store{time.monotonic_ns()}")
        self.start(*self.store, *options, variables=variables)
        self.client, shell = self.local(), self.raw()
        self.assertIn("<ok/>", self.client.ask(EDIT))
        self.assertIn("<ok/>", self.client.ask(rpc("<commit><confirmed/></commit>")))
        shell.ask("begin work")
        return shell

    def wait_for_file(self, path):
        end = time.monotonic() + 60
        while not path.exists():
            self.assertLess(time.monotonic(), end, self.server.last_messages())
            time.sleep(0.01)

    def label_in_store(self):
        words = [ORVHOST, "-I", EXAMPLES / "models", "-m", "ran-element", "-m", "ran-equipment",
                 "-m", "ran-function", "--me-id", "Harbour", "--ext-cm", EXT_CM]
        done = subprocess.run(
            [str(word) for word in (*words, *self.store, "get", f"{UNIT}1", "userLabel")],
            capture_output=True, text=True, stdin=subprocess.DEVNULL, timeout=120)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout.strip()

    def test_a_confirmed_commit_is_taken_back_although_a_shell_has_written_to_its_object(self):
        for _ in range(5):  # what went wrong here was a matter of chance
            shell = self.begin_confirmed_commit()
            self.assertEqual(shell.ask(f"set {UNIT}1 userLabel=other")[0], "set\n")
            self.assertEqual(shell.ask(f"get {UNIT}1 userLabel")[2]["status"], 0)
            self.end()
            self.assertIn("is taken back: its session has ended", self.server.messages.read_text())
            self.assertEqual(self.label_in_store(), "Crane mast")

    def test_a_command_that_waits_for_a_commit_does_not_keep_the_server(self):
        shell = self.begin_confirmed_commit()
        self.assertEqual(shell.ask(f"set {UNIT}1 userLabel=other")[0], "set\n")
        shell.send(line("commits 99 10"))
        time.sleep(0.2)  # it waits by now, or has not begun yet
        self.end()
        self.assertIn("is taken back: its session has ended", self.server.messages.read_text())
        self.assertEqual(self.label_in_store(), "Crane mast")

    def test_what_a_command_that_does_not_end_keeps_from_being_taken_back_is_logged(self):
        hold = self.folder / "hold"
        shell = self.begin_confirmed_commit(
            "-C", EXT_CM.parent / "libwaiting_interceptor.so",
            variables={"ORV_TEST_HOLD": str(hold)})
        hold.touch()
        shell.send(line(f"set {UNIT}1 userLabel=other"))
        self.wait_for_file(hold.with_name("hold.held"))
        self.end()
        told = self.server.messages.read_text()
        self.assertRegex(told, r", shell 1: is still at work\n")
        self.assertRegex(told, r"the server ends, and what the confirmed commit of \S+, session 1 "
                               "has changed stays: it was neither confirmed nor taken back\n")
        self.assertIn("a request is still at work; the program ends without it\n", told)
        self.assertEqual(self.label_in_store(), "mine")
        note = self.store[1].with_name(self.store[1].name + ".unconfirmed")
        self.assertIn("was neither confirmed nor taken back when the server ended",
                      note.read_text())

    def test_the_server_dies(self):
        typist = self.typist()
        typist.wait_for("orvhost> ")
        self.server.process.kill()
        self.server.process.wait()
        self.server.process.stdout.close()
        typist.wait_for("the server has closed the connection")
        self.assertEqual(typist.finish(), 3)

    def test_a_client_that_is_killed_has_written_nothing(self):
        typist = self.typist()
        typist.wait_for("orvhost> ")
        typist.type("begin work\r")
        typist.wait_for("orvhost[work]> ")
        typist.type(f"create {UNIT}9\r")
        typist.wait_for("created")
        typist.kill()
        self.wait_for_log("shell 1: ends")
        self.assertIn("shell 1: transaction work is aborted", self.server.messages.read_text())
        # No conflict is left, either.
        self.assertEqual(self.run_shell("-c", f"create {UNIT}9").stdout, "created and committed\n")


class HostileTest(ShellCase):
    """Clients that mean no good: the server serves the next one."""

    def assert_ended(self, shell, why):
        kind, said = shell.last_words()
        self.assertEqual(kind, "B")
        self.assertIn(why, said)
        shell.close()

    def test_messages_that_are_none(self):
        for data, why in (
            (b"GET / HTTP/1.1\r\n\r\n", "at most 4096 were expected"),
            (b"\xff" * 1000, "at most 4096 were expected"),
            (frame("L", b"\0ls"), "a hello was expected"),
            (frame("H", b"{}"), "a hello in JSON was expected"),
            (frame("H", b"\xff\xfe"), "a hello in JSON was expected"),
            (frame("H", b'{"version": 1, "json": 7}'), "a hello in JSON was expected"),
            (frame("H", b'{"version": 2}'), "the client speaks version 2"),
            (frame("H", b"[" * 4096), "a hello in JSON was expected"),
            (frame("H", json.dumps({**HELLO, "interface": "9"}).encode()), "9"),
        ):
            with self.subTest(data[:40]):
                shell = RawShell(self.path)
                shell.send(data)
                self.assert_ended(shell, why)
        flood = RawShell(self.path)
        self.addCleanup(flood.close)
        with self.assertRaises((BrokenPipeError, ConnectionResetError)):
            flood.send(b"\xff" * 10000000)
        for data, why in (
            (frame("H", b"{}"), "a request was expected"),
            (frame("L", b"ls"), "a line with its place was expected"),
            (b"L\xff\xff\xff\xff", "at most 1048576 were expected"),
            (line("tree") + line("tree"), "before the answer to the one before"),
        ):
            with self.subTest(data):
                shell = self.raw()
                shell.send(data)
                self.assert_ended(shell, why)
        self.assert_serves()

    def test_words_that_are_none(self):
        shell = self.raw()
        for body in (b"", b"\0", b"\xff\xfe\0\xff", b"set\0" + b"[" * 100000):
            shell.send(frame("W", body))
            self.assertNotEqual(shell.answer()[2]["status"], 0)
        for text in ("set " + UNIT + "1 userLabel=" + "[" * 100000, "ls\0x",
                     "get " + "A=1," * 100000 + "A=1"):
            self.assertNotEqual(shell.ask(text)[2]["status"], 0)
        for text in (b"", b"\xff", b"get " + b"ManagedElement=" * 1000, b"expect : " * 1000):
            shell.send(frame("T", text))
            self.assertEqual(shell.receive()[0], "C")
        self.assert_serves()

    def test_silence_and_half_messages_end_after_a_while(self):
        silent = RawShell(self.path)
        half = self.raw()
        half.ask("begin work")
        half.ask(f"create {UNIT}9")
        half.send(line("commit")[:-3])
        half_hello = RawShell(self.path)
        half_hello.send(b"H\0")
        drip = self.raw()

        def send_slowly():
            try:
                for byte in line("x" * 1000):
                    drip.send(bytes([byte]))
                    time.sleep(0.5)
            except OSError:  # it is ended
                pass

        dripping = threading.Thread(target=send_slowly)
        dripping.start()
        self.addCleanup(dripping.join)
        self.assert_serves()
        for shell in (half, half_hello, drip):
            self.assert_ended(shell, "a message was not whole within 10 s")
        self.assert_ended(silent, "no hello came")
        self.assertEqual(self.run_shell("exists", UNIT + "9").stdout, "no\n")

    def test_more_shells_than_there_may_be(self):
        shells = [self.raw() for _ in range(32)]
        done = self.run_shell("tree")
        self.assertIn("too many shells are open", done.stderr)
        self.assertEqual(done.returncode, 3)
        self.assertEqual(shells[0].ask(f"exists {UNIT}1")[0], "yes\n")
        shells[5].close()
        self.wait_for_log("shell 6: ends")
        for _ in range(100):  # its place is free a moment later
            done = self.run_shell("exists", UNIT + "1")
            if done.returncode == 0:
                break
        self.assertEqual(done.stdout, "yes\n")

    def test_clients_that_vanish(self):
        for sent in (b"", b"H", frame("H", json.dumps(HELLO).encode())[:20]):
            for _ in range(100):
                shell = RawShell(self.path)
                shell.send(sent)
                shell.close()
        for _ in range(30):
            shell = self.raw_when_free()
            shell.send(line("begin work"))
            shell.close()
        self.raw_when_free().close()
        self.assert_serves()


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *UNITTEST_ARGUMENTS])
