#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""What a get-config of a whole large network costs, for the client, the server and other sessions.

usage: netconf_large_reply.py ORVHOST EXT_CM ORV_RAN_GENERATE EXAMPLES [OBJECTS]

Reads OBJECTS (100,000 by default) over SSH with ncclient, while a session at the UNIX socket reads a
leaf every millisecond. Prints the time until ncclient has the reply, the length of the text, how much
memory the server needed meanwhile, and the longest time that the other session waited. It asserts
nothing: the numbers depend on the machine.
"""

import multiprocessing
import pathlib
import socket
import subprocess
import sys
import tempfile
import time

from ncclient import manager

BASE = "urn:ietf:params:xml:ns:netconf:base:1.0"
END = b"]]>]]>"
HELLO = (f'<hello xmlns="{BASE}"><capabilities><capability>urn:ietf:params:netconf:base:1.0'
         "</capability></capabilities></hello>").encode() + END
LEAF = (f'<rpc xmlns="{BASE}" message-id="1"><get-config><source><running/></source><filter>'
        '<ManagedElement xmlns="urn:orv:example:ran-element"><managedElementId>1</managedElementId>'
        "<userLabel/></ManagedElement></filter></get-config></rpc>").encode() + END


class Other:
    """A session at the UNIX socket that reads a leaf again and again, in a process of its own."""

    def __init__(self, path):
        self.ours, theirs = multiprocessing.Pipe()
        self.process = multiprocessing.Process(target=self.run, args=(str(path), theirs))
        self.process.start()
        self.ours.recv()

    def waits(self):
        """The seconds of each read since the last call, sorted."""
        self.ours.send("more")
        return sorted(self.ours.recv())

    def end(self):
        self.ours.send("end")
        self.process.join()

    @staticmethod
    def run(path, pipe):
        client = socket.socket(socket.AF_UNIX)
        client.connect(path)

        def receive():
            rest = b""
            while END not in rest:
                rest += client.recv(65536)

        client.sendall(HELLO)
        receive()
        pipe.send("ready")
        waits = []
        while True:
            begin = time.monotonic()
            client.sendall(LEAF)
            receive()
            waits.append(time.monotonic() - begin)
            if pipe.poll():
                if pipe.recv() == "end":
                    return
                pipe.send(waits)
                waits = []
            time.sleep(0.001)


def memory(process, name):
    for line in pathlib.Path(f"/proc/{process.pid}/status").read_text().splitlines():
        if line.startswith(name + ":"):
            return int(line.split()[1]) * 1024
    raise RuntimeError(name)


def measure(folder, orvhost, ext_cm, generate, examples, objects):
    data, key, path = folder / "data.json", folder / "key", folder / "socket"
    subprocess.run([generate, "-n", str(objects), str(data)], check=True)
    subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", str(key)], check=True)
    words = [orvhost, "-I", examples / "models"]
    for module in ("ran-element", "ran-equipment", "ran-function"):
        words += ["-m", module]
    words += ["-d", data, "--ext-cm", ext_cm, "--log-level", "off", "serve",
              "--netconf-ssh", "127.0.0.1:0", "--netconf-unix", path,
              "--netconf-user", f"alice={key}.pub", "--host-key", folder / "host_key"]
    other = None
    process = subprocess.Popen([str(word) for word in words], stdout=subprocess.PIPE, text=True)
    try:
        port = int(process.stdout.readline().rsplit(":", 1)[1])
        process.stdout.readline()
        client = manager.connect(host="127.0.0.1", port=port, username="alice",
                                 key_filename=str(key), hostkey_verify=False, allow_agent=False,
                                 look_for_keys=False, timeout=600)
        client.huge_tree = True
        other = Other(path)
        time.sleep(3)
        quiet = other.waits()[-1]
        before = memory(process, "VmRSS")
        pathlib.Path(f"/proc/{process.pid}/clear_refs").write_text("5")  # begins VmHWM anew
        begin = time.monotonic()
        reply = client.get_config("running")
        seconds = time.monotonic() - begin
        peak = memory(process, "VmHWM") - before
        waits = other.waits()
        length = len(reply.xml.encode())
        print(f"get-config of {objects} objects, {length / 1e6:.1f} MB: {seconds:.1f} s by ncclient")
        print(f"memory of the server: {before / 1e6:.0f} MB, and {peak / 1e6:.0f} MB for the reply, "
              f"{peak / length:.1f} times the text")
        print(f"a leaf for another session meanwhile: median {waits[len(waits) // 2] * 1e3:.1f} ms, "
              f"longest {waits[-1] * 1e3:.0f} ms of {len(waits)}; before: longest {quiet * 1e3:.0f} ms")
        client.close_session()
    finally:
        if other is not None:
            other.end()
        process.terminate()
        process.wait(30)


def main():
    if len(sys.argv) not in (5, 6):
        sys.exit(__doc__)
    programs = [pathlib.Path(argument).resolve() for argument in sys.argv[1:5]]
    objects = int(sys.argv[5]) if len(sys.argv) == 6 else 100000
    with tempfile.TemporaryDirectory() as folder:
        measure(pathlib.Path(folder), *programs, objects)


if __name__ == "__main__":
    main()
