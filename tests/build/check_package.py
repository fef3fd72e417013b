#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Installs the package into an empty prefix and builds examples against it, as its users do.

usage: check_package.py find_package|pkg_config|add_subdirectory|headers|host
           --source SOURCE --build BUILD --compiler COMPILER --run TEST-PROGRAM
           [--sanitize SANITIZERS]

The sample interceptor is built and then loaded into the test program's host, beside the installed
component. `host` builds hosts with the libraries of the reference host. `headers` compiles every
installed header of the tables and the helper library alone. `add_subdirectory` installs nothing: a
project with warnings of its own takes the package and the examples in as parts of itself.
"""

import argparse
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile


def run(*command, **options):
    result = subprocess.run([str(word) for word in command], text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, **options)
    if result.returncode != 0:
        sys.exit(f"{' '.join(str(word) for word in command)}\n{result.stdout}")
    return result.stdout


def only(directory, name):
    found = list(directory.rglob(name))
    if len(found) != 1:
        sys.exit(f"{name}: {len(found)} found below {directory}")
    return found[0]


def fails(*command, prints, **options):
    """The command does not end with status 0, and says why."""
    result = subprocess.run([str(word) for word in command], text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, check=False, **options)
    if result.returncode == 0 or prints not in result.stdout:
        sys.exit(f"{' '.join(str(word) for word in command)}\nis to fail with: {prints}\n"
                 f"status {result.returncode}\n{result.stdout}")


def texts_below(folder):
    return {path.relative_to(folder).as_posix(): path.read_text()
            for path in folder.rglob("*.h")}


class Package:
    def __init__(self, options, directory):
        self.options = options
        self.directory = directory
        self.prefix = directory / "prefix"
        # A copy, so that nothing of the tree is reached from the examples.
        self.examples = directory / "examples"
        for name in ["interceptor", "embedding", "host"]:
            shutil.copytree(options.source / "examples" / name, self.examples / name)
        self.sample = self.examples / "interceptor"

    def install(self):
        run("cmake", "--install", self.options.build, "--prefix", self.prefix)

    def configure(self, source, build):
        return ["cmake", "-G", "Ninja", "-S", source, "-B", build,
                f"-DCMAKE_CXX_COMPILER={self.options.compiler}"]

    def configure_and_build(self, source, *settings, targets=("cell_state_interceptor",),
                            folder="build", **options):
        build = self.directory / folder
        run(*self.configure(source, build), *settings, **options)
        run("cmake", "--build", build, "--target", *targets)
        return build

    def check_commands(self, build):
        """Nobody else gets our warnings as errors, and users do not see where our headers are."""
        commands = json.loads((build / "compile_commands.json").read_text())
        users = 0
        for entry in commands:
            words = shlex.split(entry["command"])
            if "-Werror" in words:
                sys.exit(f"-Werror in the command of {entry['file']}")
            if pathlib.Path(entry["file"]).is_relative_to(self.examples):
                users += 1
                for word in words:
                    if word.startswith(f"-I{self.options.source}/src"):
                        sys.exit(f"{word} in the command of {entry['file']}")
        if users == 0:
            sys.exit("no command of an example")

    def try_out(self, sample, component):
        run(self.options.run, env={**os.environ, "ORV_SAMPLE_LIBRARY": str(sample),
                                   "ORV_COMPONENT_LIBRARY": str(component)})

    def find_package(self):
        self.install()
        build = self.configure_and_build(self.sample, f"-DCMAKE_PREFIX_PATH={self.prefix}")
        self.try_out(only(build, "libcell_state_interceptor.so"),
                     only(self.prefix, "libext_cm.so"))
        self.use_as_shown()
        # The other example is a project of its own, too.
        settings = [f"-DCMAKE_PREFIX_PATH={self.prefix}", *self.sanitizers()]
        host = self.configure_and_build(self.examples / "embedding", *settings,
                                        targets=("minimal_host",), folder="host")
        run(only(host, "minimal_host"), only(self.prefix, "libext_cm.so"))

    def sanitizers(self):
        """What a program must bring for the libraries that it loads."""
        if not self.options.sanitize:
            return []
        return [f"-DCMAKE_EXE_LINKER_FLAGS=-fsanitize={self.options.sanitize}"]

    def use_as_shown(self):
        """Builds with the lines of the pages what the examples are made of."""
        consumer = self.directory / "consumer"
        shutil.copytree(self.options.source / "tests/build/consumers/find_package", consumer)
        shutil.copy(self.examples / "embedding/MinimalHost.cpp", consumer / "my_host.cpp")
        sources = sorted(self.sample.glob("src/*.cpp"))
        (consumer / "my_interceptor.cpp").write_text(
            "".join(f'#include "{source}"\n' for source in sources))
        settings = [f"-DCMAKE_PREFIX_PATH={self.prefix}", *self.sanitizers()]
        build = self.configure_and_build(consumer, *settings,
                                         targets=("my_host", "my_interceptor"), folder="shown")
        component = only(self.prefix, "libext_cm.so")
        run(only(build, "my_host"), component)
        self.try_out(only(build, "libmy_interceptor.so"), component)

    def pkg_config(self):
        self.install()
        lookup = only(self.prefix, "orv_ext_cm.pc").parent
        environment = {**os.environ, "PKG_CONFIG_PATH": str(lookup)}
        flags = run("pkg-config", "--cflags", "--libs", "orv_ext_cm", env=environment).split()
        libraries = run("pkg-config", "--variable=libdir", "orv_ext_cm", env=environment).strip()
        sample = self.directory / "libcell_state_interceptor.so"
        run(self.options.compiler, "-std=c++17", "-Wall", "-Wextra", "-shared", "-fPIC",
            "-fvisibility=hidden", *self.sample.glob("src/*.cpp"), "-o", sample, *flags,
            f"-Wl,-rpath,{libraries}")
        self.try_out(sample, only(self.prefix, "libext_cm.so"))

    def host(self):
        """The libraries of the reference host."""
        self.install()
        found = [f"-DCMAKE_PREFIX_PATH={self.prefix}", *self.sanitizers()]
        component = only(self.prefix, "libext_cm.so")
        # Whoever uses no part that needs other libraries needs no pkg-config for them.
        alone = {**os.environ, "PKG_CONFIG_LIBDIR": str(self.directory / "nothing")}
        build = self.configure_and_build(self.examples / "host", *found, targets=("mast_host",),
                                         folder="alone", env=alone)
        self.try_host(only(build, "mast_host"), component)
        parts = self.options.source / "tests/build/consumers/host_parts"
        build = self.configure_and_build(parts, *found, targets=("all",), folder="parts")
        self.try_parts(build, component)
        self.check_missing(parts, found, alone)
        self.host_by_pkg_config(component)

    def try_host(self, program, component):
        """The example ends with a refused transaction, and says what is wrong with a library."""
        fails(program, component, prints="Mast=a has ManagedElement=north,Antenna=3\n"
              "refused: Attribute antennas in ManagedElement=1,Mast=a contains 3 Antenna")
        missing = self.directory / "missing.so"
        fails(program, missing, prints=f"mast_host: {missing}: cannot be opened as a shared object")
        helper = component.with_name("liborv_common.so")
        fails(program, helper, prints=f"mast_host: {helper}: has no entry point orvLCMinit")
        fails(program, prints="usage: mast_host LIBEXT_CM")

    def try_parts(self, build, component):
        program, store = only(build, "host_parts"), self.directory / "network.db"
        for commit in (1, 2):
            text = run(program, component, self.options.source / "examples", store)
            if text != f"commit {commit}\n":
                sys.exit(f"host_parts: {text}")
        fails(program, component, self.directory, store, prints="ran-equipment")
        fails(only(build, "shared_store"), f"host={self.directory}",
              prints="the store of PostgreSQL: ")

    def check_missing(self, parts, found, alone):
        """A part that is not there, or that lacks what it needs, is named."""
        build = self.directory / "missing"
        fails(*self.configure(parts, build), *found, env=alone,
              prints="component host_yang needs libyang, which pkg-config does not find")
        fails(*self.configure(parts, build), *found, "-DPKG_CONFIG_EXECUTABLE=/nonexistent",
              prints="component host_yang needs pkg-config to find libyang")
        for config in self.prefix.rglob("OrvExtCm-host_yang*.cmake"):
            config.unlink()
        fails(*self.configure(parts, build), *found, "-UPKG_CONFIG_EXECUTABLE",
              prints="component host_yang is not installed, but these are: host,")
        for config in self.prefix.rglob("OrvExtCm-host*.cmake"):
            config.unlink()
        fails(*self.configure(parts, build), *found,
              prints="component host_yang is not installed, and no other one is")

    def host_by_pkg_config(self, component):
        self.try_host(self.build_by_pkg_config(self.examples / "host/MastHost.cpp", "orv_host"),
                      component)
        # Each part by its own file alone: it must say all that the part needs.
        consumers = self.options.source / "tests/build/consumers"
        alone = consumers / "host_part_alone"
        program = self.build_by_pkg_config(alone / "ModelOfModule.cpp", "orv_host_yang")
        for name, answer in [("Mast", "there\n"), ("Lamp", "not there\n")]:
            self.expect_text(answer, program, alone / "mast.yang", name)
        fails(program, self.directory / "none.yang", prints="none.yang: cannot be read")
        program = self.build_by_pkg_config(alone / "StoreInFile.cpp", "orv_host_store_sqlite")
        for answer in ["new\n", "known\n"]:
            self.expect_text(answer, program, self.directory / "alone.db")
        fails(program, self.directory, prints=f"the store {self.directory} cannot be used")
        program = self.build_by_pkg_config(consumers / "host_parts/SharedStore.cpp",
                                           "orv_host_store_postgresql")
        fails(program, f"host={self.directory}", prints="the store of PostgreSQL: ")

    def expect_text(self, expected, *command):
        text = run(*command)
        if text != expected:
            sys.exit(f"{' '.join(map(str, command))}\nprints {text!r}, not {expected!r}")

    def build_by_pkg_config(self, source, package):
        lookup = only(self.prefix, f"{package}.pc").parent
        environment = {**os.environ, "PKG_CONFIG_PATH": str(lookup)}
        flags = run("pkg-config", "--cflags", "--libs", package, env=environment).split()
        libraries = run("pkg-config", "--variable=libdir", package, env=environment).strip()
        program = self.directory / source.stem
        sanitize = [f"-fsanitize={self.options.sanitize}"] if self.options.sanitize else []
        run(self.options.compiler, "-std=c++20", "-Wall", "-Wextra", source, "-o", program,
            *sanitize, *flags, f"-Wl,-rpath,{libraries}")
        return program

    def add_subdirectory(self):
        consumer = self.options.source / "tests/build/consumers/add_subdirectory"
        build = self.configure_and_build(consumer, f"-DPACKAGE_SOURCE={self.options.source}",
                                         f"-DEXAMPLES={self.examples}",
                                         "-DORV_BUILD_HOST_LIBRARIES=ON",
                                         targets=("cell_state_interceptor", "minimal_host",
                                                  "mast_host"))
        self.check_commands(build)
        component = only(build, "libext_cm.so")
        self.try_out(only(build, "libcell_state_interceptor.so"), component)
        run(only(build, "minimal_host"), component)
        self.try_host(only(build, "mast_host"), component)

    def headers(self):
        self.install()
        include = only(self.prefix, "MoInterceptorBase.h").parent.parent
        run(self.options.source / "tests/build/check_headers.py", self.options.compiler, "c++17",
            include)
        # What a build shows to those who take it in is what an installation has.
        installed = texts_below(include / "orv")
        staged = texts_below(self.options.build / "include/orv")
        if installed != staged:
            sys.exit("installed or staged, but not both: "
                     f"{sorted({name for name, _ in installed.items() ^ staged.items()})}")
        self.check_pages(installed)

    def check_pages(self, headers):
        """The pages of the libraries show no class that a user is promised nothing of."""
        public, inner = set(), set()
        for name, text in headers.items():
            classes = re.findall(r"^(?:class|struct|enum class) (\w+)(?= *[{:])", text, re.MULTILINE)
            (inner if name.startswith("host/detail/") else public).update(classes)
        if len(public) < 100 or not inner - public:
            sys.exit(f"{len(public)} classes in public headers, {len(inner)} in others")
        for page in ["client.md", "host-in-fifty-lines.md"]:
            text = (self.options.source / "docs" / page).read_text()
            shown = {word for code in re.findall(r"```.*?```|`[^`]+`", text, re.DOTALL)
                     for word in re.findall(r"\w+", code)}
            if named := sorted(shown & inner - public):
                sys.exit(f"docs/{page} shows what is only in <orv/host/detail/...>: {named}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("way", choices=["find_package", "pkg_config", "add_subdirectory", "headers",
                                         "host"])
    parser.add_argument("--source", type=pathlib.Path, required=True)
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--run", required=True)
    parser.add_argument("--sanitize", default="", help="what the package was built with")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as directory:
        getattr(Package(options, pathlib.Path(directory)), options.way)()


main()
