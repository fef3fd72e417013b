// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_RECORD_RECORDER_LASTING_H
#define ORV_RECORD_RECORDER_LASTING_H

#include <functional>

/// \file
/// What ends when. The host knows one shared object, the recorder, and its rule for the component
/// is: what it gave may be used until it is closed. So the component that is recorded is open
/// exactly as long as the recorder is: its state and what it gave last over orvLCMterminate, and
/// into another orvLCMinit, as they do without a recorder. When the host closes the recorder, the
/// component is closed with it, and all objects of the recorder end. At the end of the
/// process nothing is closed, called or destroyed: objects of the host that end later, and its
/// threads, may still use everything.

namespace OrvRecord {

/// Calls \p work when the host closes the recorder, after what this function got before. Throws
/// std::bad_alloc.
void atClose(std::function<void()> work);

/// To be called after each call that may have made static objects of the component. When the
/// process ends, before these objects do, the recorder makes itself stay until the last: a host may
/// close it with a static object of its own, which ends after them.
void noticeEndOfProcess();

/// The one object of the type \p Object. It lives until the host closes the recorder. Threads: any.
template <class Object>
Object& lasting() {
    static Object* const object = [] {
        auto* const made = new Object;
        atClose([made] { delete made; });
        return made;
    }();
    return *object;
}

}

#endif
