#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Checks that no file includes a header of a layer that is closed to it, and that what stands above
the client library knows no table.

usage: check_layers.py ROOT        checks the tree at ROOT
       check_layers.py --self-test checks that each kind of violation is seen
"""

import pathlib
import re
import sys
import tempfile

BELOW_COMPONENT = ["src/spi", "src/common/inc", "src/orv_common"]

# The folders of the component with those that each may use. The classes above them use all.
ROOMS = {
    "src/ext_cm/src/messages": [],
    "src/ext_cm/src/values": [],
    "src/ext_cm/src/model": ["src/ext_cm/src/messages"],
    "src/ext_cm/src/life": ["src/ext_cm/src/messages", "src/ext_cm/src/values"],
    "src/ext_cm/src/associations": ["src/ext_cm/src/values"],
}

# The rooms of the reference host with those that each may use, lowest first: a room uses only rooms
# that stand before it, so there is no circle.
HOST_ROOMS = {
    "src/host/base": [],
    "src/host/model": ["src/host/base"],
    "src/host/model/building": ["src/host/base", "src/host/model"],
    "src/host/repository": ["src/host/base", "src/host/model"],
    "src/host/audit": ["src/host/base", "src/host/model"],
    "src/host/store": ["src/host/base", "src/host/model"],
    "src/host/store_postgresql": ["src/host/base", "src/host/model", "src/host/store"],
    "src/host/store_sqlite": ["src/host/base", "src/host/model", "src/host/store"],
    "src/host/transactions": ["src/host/base"],
    "src/host/router": [
        "src/host/base", "src/host/model", "src/host/store", "src/host/transactions"],
    "src/host/runtime": [
        "src/host/base", "src/host/model", "src/host/repository", "src/host/audit",
        "src/host/store", "src/host/transactions", "src/host/router"],
    "src/host/yang/source": ["src/host/base", "src/host/model"],
    "src/host/yang/types": ["src/host/base", "src/host/model", "src/host/yang/source"],
    "src/host/yang/schema": [
        "src/host/base", "src/host/model", "src/host/model/building", "src/host/yang/source",
        "src/host/yang/types"],
    "src/host/yang/instances": [
        "src/host/base", "src/host/model", "src/host/yang/source", "src/host/yang/types",
        "src/host/yang/schema"],
    "src/host/yang/rules": [
        "src/host/base", "src/host/model", "src/host/yang/source", "src/host/yang/types",
        "src/host/yang/schema", "src/host/yang/instances"],
}

# What stands above the component: the client library, and the rooms of the server and of orvhost,
# lowest first.
CLIENT = "src/host/client"
NETCONF_ROOMS = ["src/host/netconf/wire", "src/host/netconf/core", "src/host/netconf/server"]
CLI_ROOMS = [
    "src/host/cli/output",
    "src/host/cli/errors",
    "src/host/cli/input",
    "src/host/cli/session",
    "src/host/cli/setup",
    "src/host/cli/graph",
    "src/host/cli/commands",
    "src/host/cli/shell",
    "src/host/cli/remote",
    "src/host/cli/check",
    "src/host/cli/replay",
    "src/host/cli/serve",
]

# Each layer with the layers that it may include besides itself. The deepest directory counts.
LAYERS = {
    "src/spi": [],
    "src/common/inc": ["src/spi"],
    "src/orv_common": ["src/spi", "src/common/inc"],
    "src/ext_cm": [*BELOW_COMPONENT, *ROOMS],
    **{room: [*BELOW_COMPONENT, *lower] for room, lower in ROOMS.items()},
    **{room: [*BELOW_COMPONENT, *lower] for room, lower in HOST_ROOMS.items()},
    CLIENT: [*BELOW_COMPONENT, *HOST_ROOMS],
    "src/validate": [],
    "src/record": BELOW_COMPONENT,
    "src/record/recorder": [*BELOW_COMPONENT, "src/record"],
    "src/record/replay": [*BELOW_COMPONENT, "src/record"],
    **{
        room: [*BELOW_COMPONENT, *HOST_ROOMS, CLIENT, *NETCONF_ROOMS[:at]]
        for at, room in enumerate(NETCONF_ROOMS)
    },
    **{
        room: [*BELOW_COMPONENT, *HOST_ROOMS, CLIENT, *CLI_ROOMS[:at]]
        for at, room in enumerate(CLI_ROOMS)
    },
    # Only the program that serves knows the server.
    "src/host/cli/serve": [
        *BELOW_COMPONENT, *HOST_ROOMS, CLIENT, *NETCONF_ROOMS, *CLI_ROOMS[:-1]],
    # Only the program that plays recordings knows the player.
    "src/host/cli/replay": ["src/record/replay", *CLI_ROOMS],
    "src/host/cli": [*BELOW_COMPONENT, *HOST_ROOMS, CLIENT, *CLI_ROOMS],
    "examples/interceptor": ["src/spi", "src/common/inc", "src/orv_common"],
}

# What interceptor components see of the component.
PUBLIC_HEADERS = ["MoInterceptorBase.h", "ExtCmInterceptorRepository.h"]
PUBLIC_TO = ["examples/interceptor", "src/record/recorder", "src/record/replay"]

# In this folder those who use the package find all public headers.
PUBLIC_FOLDER = re.compile(r"^orv/(host/(detail/)?)?")

# Where the sources of any layer might look for a header.
INCLUDE_ROOTS = ["src/spi", "src/common/inc", "src/orv_common/inc", "src/ext_cm/src", "src/host"]

# Headers of other projects that stay at one place, or at two.
KEPT_APART = {
    "libyang/": ["src/host/yang", "src/host/netconf"],
    "nc_server.h": ["src/host/netconf/server"],
    "libssh/": ["src/host/netconf/server"],
    "libpq-fe.h": ["src/host/store_postgresql"],
    "sqlite3.h": ["src/host/store_sqlite"],
}

# What stands above the component. It goes through the client library and knows no table.
ABOVE_CLIENT = [
    "src/host/cli",
    "src/host/netconf",
    "bench",
    "examples/embedding",
    "examples/host",
    "tests/property/edits",
    "tests/soak",
    "tests/system",
]

# What gives a table away: its header, its name or that of its records, or that it is looked up. The
# identity under which a table is offered may be named, and asked for with find<void>.
TABLE_HEADER = re.compile(
    r"^(Orv|Vek)(OamSpi|MoAttributeValue)|^router/ContainerConversion\.h$|^client/OfferedTable\.h$")
TABLE_NAME = re.compile(
    r"\b(Orv|Vek)(OamSpi\w*_\d|Mo(Named)?AttributeValue\w*|MoStructMember\w*)\b")
TABLE_LOOKUP = re.compile(r"\bfind<(?!void>)|\brequireOffered<|\bget(Vek)?Interface\w*\(")

# The files there that know tables all the same, with the reason. The other files of the benchmarks
# call what these hand them.
MEASURES_CALLS = "measures calls of the tables, without the conversions of the client library"
IS_HOST = "replaces functions of the host's tables, on the other side of the component"
WITH_TABLES = {
    "bench/BenchHost.cpp": MEASURES_CALLS,
    "bench/BenchHost.h": MEASURES_CALLS,
    "bench/ClientWorkloads.cpp": MEASURES_CALLS,
    "bench/HostThreads.cpp": MEASURES_CALLS,
    "bench/HostWorld.cpp": MEASURES_CALLS,
    "bench/HostWorld.h": MEASURES_CALLS,
    "bench/ResourceWorkloads.cpp": MEASURES_CALLS,
    "bench/ThreadWorkloads.cpp": MEASURES_CALLS,
    "bench/Values.h": MEASURES_CALLS,
    "bench/Version1Workloads.cpp": MEASURES_CALLS,
    "bench/Version3Workloads.cpp": MEASURES_CALLS,
    "bench/HostSlots.cpp": IS_HOST,
    "examples/embedding/MinimalHost.cpp": "is a host itself, without the reference host",
    "tests/soak/RouterTap.cpp": IS_HOST,
    "tests/system/netconf/WaitingInterceptor.cpp": "is a component",
    "tests/system/netconf/NetconfConfirmedCommitTest.cpp":
        "takes part in transactions, as a component does, to commit something between two steps",
}

INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)', re.MULTILINE)


def layer_of(root, path):
    relative = path.relative_to(root).as_posix()
    inside = [layer for layer in LAYERS if relative.startswith(layer + "/")]
    return max(inside, key=len, default=None)


def candidates(root, source, name):
    name = PUBLIC_FOLDER.sub("", name)
    for place in [source.parent, *(root / directory for directory in INCLUDE_ROOTS)]:
        path = (place / name).resolve()
        if path.is_file() and path.is_relative_to(root):
            yield path


def is_open(root, source, header):
    own, other = layer_of(root, source), layer_of(root, header)
    if other is None or other == own or other in LAYERS[own]:
        return True
    return own in PUBLIC_TO and other == "src/ext_cm" and header.name in PUBLIC_HEADERS


def violation(root, source, name):
    for prefix, homes in KEPT_APART.items():
        place = layer_of(root, source) + "/"
        if name.startswith(prefix) and not any(place.startswith(home + "/") for home in homes):
            return f"{name} belongs to {' and '.join(homes)}"
    found = list(candidates(root, source, name))
    if not found or any(is_open(root, source, header) for header in found):
        return None
    return f"{name} is a header of {layer_of(root, found[0])}"


def knows_table(line):
    include = INCLUDE.match(line)
    if include:
        name = include.group(1) or include.group(2)
        return TABLE_HEADER.search(PUBLIC_FOLDER.sub("", name)) is not None
    return TABLE_NAME.search(line) is not None or TABLE_LOOKUP.search(line) is not None


def tables_above_client(root):
    kept = set()
    for folder in ABOVE_CLIENT:
        for source in sources(root / folder):
            relative = source.relative_to(root).as_posix()
            for line in filter(knows_table, source.read_text().splitlines()):
                kept.add(relative)
                if relative not in WITH_TABLES:
                    yield f"{relative}: '{line.strip()}' knows a table; go through {CLIENT}"
    for relative in WITH_TABLES:
        if relative not in kept:
            yield f"{relative}: knows no table, so it needs no exception in WITH_TABLES"


def circles():
    for rooms in (ROOMS, HOST_ROOMS):
        order = list(rooms)
        for room, lower in rooms.items():
            for other in lower:
                if other not in order[: order.index(room)]:
                    yield f"{room} may use {other}, which does not stand before it"


def sources(folder):
    return [path for path in sorted(folder.rglob("*")) if path.suffix in (".h", ".cpp")]


def homeless(root):
    for source in sources(root / "src"):
        if layer_of(root, source) is None:
            yield f"{source.relative_to(root)}: stands in no layer"


def violations(root):
    yield from circles()
    yield from homeless(root)
    yield from tables_above_client(root)
    for layer in LAYERS:
        for source in sources(root / layer):
            if layer_of(root, source) != layer:
                continue
            for match in INCLUDE.finditer(source.read_text()):
                problem = violation(root, source, match.group(1) or match.group(2))
                if problem:
                    yield f"{source.relative_to(root)}: {problem}"


# Files of a small tree: name, text, and how many violations there are in it.
SELF_TEST = [
    ("src/spi/Table.h", "#include <cstddef>\n", 0),
    ("src/spi/Upward.h", '#include "Binder.h"\n', 1),
    ("src/common/inc/Binder.h", '#include "Table.h"\n', 0),
    ("src/common/inc/Upward.h", '#include "../../orv_common/inc/Helper.h"\n', 1),
    ("src/orv_common/inc/Helper.h", '#include "Binder.h"\n#include "Table.h"\n', 0),
    ("src/orv_common/src/Helper.cpp", '#include "Helper.h"\n#include <Service.h>\n', 1),
    ("src/ext_cm/src/Service.h", '#include "Helper.h"\n', 0),
    ("src/ext_cm/src/MoInterceptorBase.h", '#include "Service.h"\n', 0),
    ("src/ext_cm/src/Service.cpp", '#  include "store/Store.h"\n', 1),
    ("src/ext_cm/src/values/Value.h", '#include "Helper.h"\n', 0),
    ("src/ext_cm/src/values/Upward.h", '#include "Service.h"\n', 1),
    ("src/ext_cm/src/values/Aside.h", '#include "model/Reader.h"\n', 1),
    ("src/ext_cm/src/model/Reader.h", '#include "messages/Trace.h"\n', 0),
    ("src/ext_cm/src/messages/Trace.h", '#include "values/Value.h"\n', 1),
    ("src/ext_cm/src/Other.cpp", '#include "model/Reader.h"\n#include "values/Value.h"\n', 0),
    ("src/host/Stray.h", "#include <cstddef>\n", 1),
    ("src/host/attic/Stray.h", "#include <cstddef>\n", 1),
    ("src/host/base/Error.h", '#include "Helper.h"\n', 0),
    ("src/host/base/Upward.h", '#include "store/Store.h"\n', 1),
    ("src/host/store/Store.h", '#include "Helper.h"\n#include "base/Error.h"\n', 0),
    ("src/host/store/Store.cpp", '#include "store/Store.h"\n#include "../../ext_cm/src/Service.h"\n',
     1),
    ("src/host/store/Engine.cpp", "#include <sqlite3.h>\n", 1),
    ("src/host/store/Engine2.cpp", "#include <libpq-fe.h>\n", 1),
    ("src/host/store_postgresql/Log.h", '#include "store/Store.h"\n#include <libpq-fe.h>\n', 0),
    ("src/host/store_sqlite/Other.h", '#include "store_postgresql/Log.h"\n', 1),
    ("src/host/store/Upward.h", '#include "store_sqlite/Log.h"\n', 1),
    ("src/host/store_sqlite/Log.h", '#include "store/Store.h"\n#include <sqlite3.h>\n', 0),
    ("src/host/store/Aside.h", '#include "transactions/Service2.h"\n', 1),
    ("src/host/transactions/Service2.h", '#include "base/Error.h"\n', 0),
    ("src/host/transactions/Aside.h", '#include "../store/Store.h"\n', 1),
    ("src/host/router/Router.h", '#include "transactions/Service2.h"\n#include "store/Store.h"\n', 0),
    ("src/host/model/Model.cpp", '#include "MoInterceptorBase.h"\n', 1),
    ("src/host/model/Model.h", '#include "building/Builder.h"\n', 1),
    ("src/host/model/Reader.cpp", "#include <libyang/libyang.h>\n", 1),
    ("src/host/model/Reader2.cpp", '#include "yang/schema/Reader.h"\n', 1),
    ("src/host/model/building/Builder.h", '#include "model/Model.h"\n', 0),
    ("src/host/repository/Aside.h", '#include "model/building/Builder.h"\n', 1),
    ("src/host/yang/source/Upward.h", '#include "yang/schema/Reader.h"\n', 1),
    ("src/host/yang/schema/Reader.h",
     '#include <libyang/libyang.h>\n#include "model/building/Builder.h"\n', 0),
    ("src/host/yang/schema/Aside.h", '#include "store/Store.h"\n', 1),
    ("src/host/yang/schema/Upward.h", '#include "../../cli/Command.h"\n', 1),
    ("src/host/cli/Command.h", '#include "yang/schema/Reader.h"\n#include "store/Store.h"\n', 0),
    ("src/host/client/Calls.h", '#include "OrvOamSpiTable.h"\n#include "store/Store.h"\n', 0),
    ("src/host/client/Upward.h", '#include "cli/Command.h"\n', 1),
    ("src/host/netconf/wire/Error.h", '#include <libyang/libyang.h>\n#include "client/Calls.h"\n', 0),
    ("src/host/netconf/wire/Upward.h", '#include "netconf/server/Hub.h"\n', 1),
    ("src/host/netconf/core/Aside.h", "#include <nc_server.h>\n", 1),
    ("src/host/netconf/core/Found.cpp", "auto* table = host.find<OrvOamSpiTable_3>(id);\n", 1),
    ("src/host/netconf/server/Hub.h", '#include <libssh/server.h>\n#include "netconf/wire/Error.h"\n', 0),
    ("src/host/cli/serve/Serve.h", '#include "netconf/server/Hub.h"\n', 0),
    ("src/host/cli/shell/Aside.h", '#include "netconf/server/Hub.h"\n', 1),
    ("src/host/cli/output/Json.h", '#include "client/Calls.h"\n', 0),
    ("src/host/cli/output/Table.h", '#include "OrvOamSpiTable.h"\n#include "Table.h"\n', 1),
    ("src/host/cli/output/Found.cpp", "auto* table = host.find<OrvOamSpiTable_3>(id);\n", 1),
    ("src/host/cli/output/Offered.cpp", "#include <orv/VekOamSpiTable.h>\n", 1),
    ("src/host/cli/output/Upward.h", '#include "cli/shell/Prompt.h"\n', 1),
    ("src/host/cli/shell/Prompt.h", '#include "cli/output/Json.h"\n', 0),
    ("bench/Workload.cpp", '#include "client/Calls.h"\n// OrvOamSpiTable, in general\n', 0),
    ("bench/Found.cpp", '#include "client/OfferedTable.h"\nrequireOffered<T>(host, id);\n', 2),
    ("bench/BenchHost.h", '#include "OrvOamSpiTable.h"\nOrvOamSpiTable_3* table;\n', 0),
    ("bench/HostSlots.cpp", '#include "BenchHost.h"\n', 1),
    ("tests/soak/Actor.cpp", "router.getVekInterface3()->existsMo(1, dn, &exists);\n", 1),
    ("tests/soak/Writer.cpp", "OrvMoAttributeValueResult_3 result{};\n", 1),
    ("tests/system/HostTest.cpp", "host.find<void>(OrvOamSpiTable_3_ExtCmId);\n", 0),
    ("tests/property/edits/World.h", '#include "router/ContainerConversion.h"\n', 1),
    ("examples/host/Host.cpp", "#include <orv/host/client/Calls.h>\n", 0),
    ("examples/host/Table.cpp", "#include <orv/host/detail/router/ContainerConversion.h>\n", 1),
    ("tests/component/Stage.cpp", '#include "OrvOamSpiTable.h"\n', 0),
    ("examples/interceptor/src/Sample.cpp",
     '#include <orv/MoInterceptorBase.h>\n#include <orv/Binder.h>\n#include <orv/Service.h>\n', 1),
    ("src/common/inc/Folder.h", "#include <orv/Helper.h>\n", 1),
]


def self_test():
    with tempfile.TemporaryDirectory() as directory:
        root = pathlib.Path(directory).resolve()
        for name, text, _ in SELF_TEST:
            path = root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        seen = list(violations(root))
    wrong = [
        f"{name}: {count} expected, seen: {[line for line in seen if line.startswith(name + ':')]}"
        for name, _, count in SELF_TEST
        if count != sum(line.startswith(name + ":") for line in seen)
    ]
    print("\n".join(wrong))
    return not wrong


def main():
    if sys.argv[1] == "--self-test":
        sys.exit(0 if self_test() else 1)
    seen = list(violations(pathlib.Path(sys.argv[1]).resolve()))
    print("\n".join(seen))
    sys.exit(1 if seen else 0)


main()
