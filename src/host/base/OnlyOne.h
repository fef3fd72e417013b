// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_BASE_ONLYONE_H
#define ORV_HOST_BASE_ONLYONE_H

#include <stdexcept>

namespace OrvHost {

/// First member of a class of which one object at a time can live in a process, because the
/// functions of its tables are handed no object. A second one throws std::logic_error before it
/// takes over anything.
///
/// Threads: objects of one class are made and destroyed by one thread at a time.
template <class T>
class OnlyOne {
public:
    OnlyOne() {
        if (isThere) {
            throw std::logic_error("there is a host in this process already");
        }
        isThere = true;
    }
    OnlyOne(const OnlyOne&) = delete;
    OnlyOne& operator=(const OnlyOne&) = delete;
    ~OnlyOne() { isThere = false; }

private:
    static inline bool isThere = false;
};

}

#endif
