// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_RECORDER_LASTING_H
#define ORV_RECORD_RECORDER_LASTING_H

#include <functional>

namespace OrvRecord {

/// Calls \p work when the shared object is closed after the component was terminated, after what
/// this function got before. Throws
/// std::bad_alloc.
void atUnload(std::function<void()> work);

/// From now on the end of the shared object is its unloading. Before, it is that of the process,
/// with threads of the host that may still call.
void expectUnload(bool isExpected);

/// The one object of the type \p Object. It lives until the shared object is unloaded; at the end
/// of a process it is not destroyed. Threads: any.
template <class Object>
Object& lasting() {
    static Object* const object = [] {
        auto* const made = new Object;
        atUnload([made] { delete made; });
        return made;
    }();
    return *object;
}

}

#endif
