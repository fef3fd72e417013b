#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Installs the package into an empty prefix and builds the sample interceptor against it.

usage: check_package.py find_package|pkg_config|add_subdirectory|headers
           --source SOURCE --build BUILD --compiler COMPILER --run TEST-PROGRAM

The built sample is then loaded into the test program's host, beside the installed component.
`headers` compiles every installed header alone. `add_subdirectory` installs nothing.
"""

import argparse
import os
import pathlib
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


class Package:
    def __init__(self, options, directory):
        self.options = options
        self.directory = directory
        self.prefix = directory / "prefix"
        # A copy, so that nothing of the tree is reached from the sample.
        self.sample = directory / "sample"
        shutil.copytree(options.source / "examples/interceptor", self.sample)

    def install(self):
        run("cmake", "--install", self.options.build, "--prefix", self.prefix)

    def configure_and_build(self, source, *settings):
        build = self.directory / "build"
        run("cmake", "-G", "Ninja", "-S", source, "-B", build,
            f"-DCMAKE_CXX_COMPILER={self.options.compiler}", *settings)
        run("cmake", "--build", build, "--target", "cell_state_interceptor")
        return build

    def try_out(self, sample, component):
        run(self.options.run, env={**os.environ, "ORV_SAMPLE_LIBRARY": str(sample),
                                   "ORV_COMPONENT_LIBRARY": str(component)})

    def find_package(self):
        self.install()
        build = self.configure_and_build(self.sample, f"-DCMAKE_PREFIX_PATH={self.prefix}")
        self.try_out(only(build, "libcell_state_interceptor.so"),
                     only(self.prefix, "libext_cm.so"))

    def pkg_config(self):
        self.install()
        lookup = only(self.prefix, "orv_ext_cm.pc").parent
        environment = {**os.environ, "PKG_CONFIG_PATH": str(lookup)}
        flags = run("pkg-config", "--cflags", "--libs", "orv_ext_cm", env=environment).split()
        libraries = run("pkg-config", "--variable=libdir", "orv_ext_cm", env=environment).strip()
        sample = self.directory / "libcell_state_interceptor.so"
        run(self.options.compiler, "-std=c++17", "-Wall", "-Wextra", "-Werror", "-shared", "-fPIC",
            "-fvisibility=hidden", *self.sample.glob("src/*.cpp"), "-o", sample, *flags,
            f"-Wl,-rpath,{libraries}")
        self.try_out(sample, only(self.prefix, "libext_cm.so"))

    def add_subdirectory(self):
        consumer = self.options.source / "tests/build/consumers/add_subdirectory"
        build = self.configure_and_build(consumer, f"-DPACKAGE_SOURCE={self.options.source}",
                                         f"-DSAMPLE_SOURCE={self.sample}")
        self.try_out(only(build, "libcell_state_interceptor.so"), only(build, "libext_cm.so"))

    def headers(self):
        self.install()
        include = only(self.prefix, "MoInterceptorBase.h").parent
        run(self.options.source / "tests/build/check_headers.py", self.options.compiler, "c++17",
            include)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("way", choices=["find_package", "pkg_config", "add_subdirectory", "headers"])
    parser.add_argument("--source", type=pathlib.Path, required=True)
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--compiler", required=True)
    parser.add_argument("--run", required=True)
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as directory:
        getattr(Package(options, pathlib.Path(directory)), options.way)()


main()
