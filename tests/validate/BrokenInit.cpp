// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

// A component that is broken on purpose. Its start (INIT_) crashes, hangs, ends the process as if
// all were well, writes without end, registers nothing, or leaves a process behind; or it hangs,
// writes or ends the process when it is loaded (LOAD_) or unloaded (UNLOAD_).

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

namespace {

[[maybe_unused, noreturn]] void hang() {
    for (;;) {
        pause();
    }
}

[[maybe_unused]] struct OutsideOfInit {
    OutsideOfInit() {
#if defined(LOAD_HANGS)
        hang();
#elif defined(LOAD_ENDS)
        _exit(0);
#elif defined(LOAD_TALKS)
        puts("1..1\nok 1 - all is well");
        fflush(stdout);
#endif
    }
    ~OutsideOfInit() {
#if defined(UNLOAD_ENDS)
        _exit(0);
#endif
    }
} outsideOfInit;

}

extern "C" int orvLCMinit(void*, const char*) {
#if defined(INIT_CRASHES)
    std::abort();
#elif defined(INIT_HANGS)
    hang();
#elif defined(INIT_ENDS)
    _exit(0);
#elif defined(INIT_TALKS)
    for (;;) {
        puts("and another thing");
    }
#elif defined(INIT_FORKS)
    if (fork() == 0) {
        hang();
    }
    return 0;
#else
    return 0;
#endif
}

extern "C" void orvLCMterminate() {}
