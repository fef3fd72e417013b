#!/bin/sh
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

# The whole soak test: a million operations in ten thousand transactions on four threads, in an
# optimised build. Arguments go to the program, for example "--seed 5" or "--transactions 500"; the
# preset comes from the environment, for example PRESET=tsan.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
preset=${PRESET:-release}

cd "$root"
cmake --preset "$preset"
cmake --build "build/$preset" --target orv_soak
"build/$preset/bin/orv_soak" "$@"
