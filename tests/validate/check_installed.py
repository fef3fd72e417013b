#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Installs orv-validate elsewhere and runs it there on a copy of the component.

usage: check_installed.py CMAKE BUILD_FOLDER LIBEXT_CM LIBRARY_FOLDER LIBDIR
"""
import glob
import os
import shutil
import subprocess
import sys
import tempfile

CASES = ["calls/Start.*", "calls/Interceptors.*", "hostile/TranslatorLife.*", "locks/Locks.*"]


def main():
    cmake, build, library, libraries, libdir = sys.argv[1:]
    with tempfile.TemporaryDirectory() as prefix:
        subprocess.run([cmake, "--install", build, "--prefix", prefix], check=True,
                       stdout=subprocess.DEVNULL)
        os.makedirs(os.path.join(prefix, libdir), exist_ok=True)
        for path in glob.glob(os.path.join(libraries, "liborv_common.so*")):
            shutil.copy(path, os.path.join(prefix, libdir), follow_symlinks=False)
        shipped = shutil.copy(library, os.path.join(prefix, "shipped.so"))
        filters = [word for case in CASES for word in ("--filter", case)]
        # A name without a directory is a file here, and not a library of the system.
        done = subprocess.run([os.path.join(prefix, "bin", "orv-validate"),
                               os.path.basename(shipped), *filters],
                              capture_output=True, text=True, cwd=prefix, check=False)
        print(done.stdout + done.stderr)
        used = subprocess.run(["ldd", os.path.join(prefix, "libexec/orv-validate/component_test")],
                              capture_output=True, text=True, check=True).stdout
        if f"{prefix}/" not in used:
            print("the installed cases do not use the installed library:\n" + used)
            return 1
        return done.returncode


if __name__ == "__main__":
    sys.exit(main())
