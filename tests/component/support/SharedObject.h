// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_SHAREDOBJECT_H
#define ORV_TESTS_COMPONENT_SUPPORT_SHAREDOBJECT_H

#include <string>

namespace Scripted {

/// A shared object while it is open. Its symbols serve what is opened later.
class SharedObject {
public:
    /// Opens what the environment variable \p variable names, or else \p fallback, a path as seen
    /// from the folder of the program. Throws std::runtime_error if that cannot be done.
    SharedObject(const char* variable, const char* fallback);
    SharedObject(const SharedObject&) = delete;
    SharedObject& operator=(const SharedObject&) = delete;
    ~SharedObject();

    /// The address of \p name. Throws std::runtime_error if there is none.
    void* symbol(const char* name) const;

    const std::string& path() const { return mPath; }

private:
    std::string mPath;
    void* mHandle;
};

}

#endif
