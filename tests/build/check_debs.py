#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Makes the Debian packages twice from one build and checks what is in them.

usage: check_debs.py BUILD SOURCE
"""

import filecmp
import os
import pathlib
import re
import subprocess
import sys
import tempfile

DOC = "share/doc/orv_ext_cm/"
# Each package with files that it must have, as patterns without the prefix, and packages that it
# must depend on.
PACKAGES = {
    "liborv-common0": ([r"lib/.*liborv_common\.so\.0", r"lib/.*liborv_common\.so\.0\.\d+\.\d+"],
                       ["libc6", "libstdc++6"]),
    "libext-cm": ([r"lib/.*libext_cm\.so", r"lib/.*orv-record\.so"], ["liborv-common0", "libpocofoundation80"]),
    "orv-ext-cm-dev": (
        [r"include/orv/MoInterceptorBase\.h", r"include/orv/Refusal\.h",
         r"lib/.*liborv_common\.so", r"lib/.*pkgconfig/orv_ext_cm\.pc",
         r"lib/.*pkgconfig/orv_common\.pc", r"lib/.*OrvExtCmConfig\.cmake",
         DOC + "examples/interceptor/CMakeLists.txt", DOC + "examples/embedding/MinimalHost.cpp"],
        ["liborv-common0", "libext-cm", "libpoco-dev"]),
    "orv-host-dev": (
        [r"include/orv/host/runtime/Host\.h", r"include/orv/host/detail/store/MoTree\.h",
         r"lib/.*liborv_host_client\.a", r"lib/.*liborv_host_yang\.a", r"lib/.*pkgconfig/orv_host\.pc",
         r"lib/.*OrvExtCm-host\.cmake", r"lib/.*OrvExtCm-host_yang\.cmake",
         DOC + "examples/host/MastHost.cpp"],
        ["orv-ext-cm-dev"]),
    "orvhost": (
        ["bin/orvhost", "bin/orv-ran-generate", r"share/man/man1/orvhost\.1\.gz",
         r"share/man/man1/orv-ran-generate\.1\.gz", "share/bash-completion/completions/orvhost",
         "share/zsh/vendor-completions/_orvhost", "share/fish/vendor_completions.d/orvhost.fish",
         "share/orv_ext_cm/models/ran-element.yang", "share/orv_ext_cm/data/harbour.json",
         "share/orv_ext_cm/scenarios/demo.orv"],
        ["liborv-common0", "libext-cm", "libyang2"]),
    "orv-validate": (
        ["bin/orv-validate", r"libexec/orv-validate/component_test", r"share/man/man1/orv-validate\.1\.gz",
         "share/bash-completion/completions/orv-validate"],
        ["liborv-common0"]),
    "orv-ext-cm-doc": (
        [DOC + "README.md", DOC + "CHANGELOG.md", DOC + "docs/embedding.md",
         DOC + "docs/writing-an-interceptor.md", DOC + "docs/pictures/equipment.svg"], []),
}


def run(*command, **options):
    done = subprocess.run([str(word) for word in command], text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, check=False, **options)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}\n{done.stdout}")
    return done.stdout


def make(build, folder):
    """The packages in `folder`, by name."""
    run("cpack", "--config", build / "CPackConfig.cmake", "-B", folder,
        "-D", "CPACK_PACKAGING_INSTALL_PREFIX=/usr", cwd=folder,
        env={**os.environ, "SOURCE_DATE_EPOCH": "1700000000"})
    return {path.name.partition("_")[0]: path for path in folder.glob("*.deb")}


def field(package, name):
    return run("dpkg-deb", "--field", package, name).strip()


def problems_of(name, package, source):
    wanted, depends = PACKAGES[name]
    wanted = [*wanted, f"share/doc/{name}/copyright", rf"share/doc/{name}/changelog\.Debian\.gz"]
    entries = [line.split(maxsplit=5) for line in run("dpkg-deb", "--contents", package).splitlines()]
    files = [entry[5].partition(" -> ")[0] for entry in entries if not entry[0].startswith("d")]
    for pattern in wanted:
        if not any(re.fullmatch(r"\./usr/" + pattern, file) for file in files):
            yield f"no {pattern}"
    for entry in entries:
        if entry[1] != "root/root":
            yield f"{entry[5]} belongs to {entry[1]}"
    needed = re.split(r"[ ,|]+", field(package, "Depends"))
    for other in depends:
        if other not in needed:
            yield f"does not depend on {other}"
    if not field(package, "Version").startswith(version_of(source)):
        yield f"the version {field(package, 'Version')}"
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        run("dpkg-deb", "--raw-extract", package, root)
        yield from problems_of_files(name, root)


def problems_of_files(name, root):
    for path in root.rglob("*"):
        if path.is_file() and not path.is_symlink() and path.read_bytes()[:4] == b"\x7fELF":
            if ".debug_info" in run("readelf", "--sections", "--wide", path):
                yield f"{path.name} is not stripped"
    for path in root.rglob("orv_ext_cm.pc"):
        if not re.search(r"^Requires: orv_common = ", path.read_text(), re.MULTILINE):
            yield "orv_ext_cm.pc does not require orv_common"
    if name == "liborv-common0":
        triggers = root / "DEBIAN/triggers"
        if not triggers.is_file() or "activate-noawait ldconfig" not in triggers.read_text():
            yield "does not trigger ldconfig"
        if "liborv_common 0 liborv-common0" not in (root / "DEBIAN/shlibs").read_text():
            yield "shlibs does not name the package"


def version_of(source):
    text = (source / "CMakeLists.txt").read_text()
    return re.search(r"^project\(orv_ext_cm VERSION ([\d.]+)", text, re.MULTILINE)[1]


def main():
    build, source = (pathlib.Path(word).resolve() for word in sys.argv[1:])
    with tempfile.TemporaryDirectory() as first, tempfile.TemporaryDirectory() as second:
        packages, again = make(build, pathlib.Path(first)), make(build, pathlib.Path(second))
        if set(packages) != set(PACKAGES):
            return f"the packages {sorted(packages)}"
        problems = [f"{name}: {problem}" for name, package in packages.items()
                    for problem in problems_of(name, package, source)]
        problems += [f"{name}: two packages of one build differ" for name in packages
                     if not filecmp.cmp(packages[name], again[name], shallow=False)]
    return "\n".join(problems) or 0


sys.exit(main())
