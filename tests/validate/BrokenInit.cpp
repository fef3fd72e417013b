// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A component that can be loaded and is broken on purpose: its start crashes, hangs, ends the
// process as if all were well, or writes without end.

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

extern "C" int orvLCMinit(void*, const char*) {
#if defined(INIT_CRASHES)
    std::abort();
#elif defined(INIT_HANGS)
    for (;;) {
        pause();
    }
#elif defined(INIT_ENDS)
    _exit(0);
#elif defined(INIT_TALKS)
    for (;;) {
        puts("and another thing");
    }
#endif
}

extern "C" void orvLCMterminate() {}
