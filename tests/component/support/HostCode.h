// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_COMPONENT_SUPPORT_HOSTCODE_H
#define ORV_TESTS_COMPONENT_SUPPORT_HOSTCODE_H

namespace Scripted {

/// While one of these lives, its thread runs code of the host and not of the component, so that
/// what is allocated does not count as the component's.
class HostCode {
public:
    HostCode() { ++sDepth; }
    HostCode(const HostCode&) = delete;
    HostCode& operator=(const HostCode&) = delete;
    ~HostCode() { --sDepth; }

    /// True if the calling thread is in the host's code.
    static bool runs() { return sDepth > 0; }

private:
    static inline thread_local int sDepth = 0;
};

template <auto Function>
struct AsHostCode;

template <class Answer, class... Arguments, Answer (*Function)(Arguments...)>
struct AsHostCode<Function> {
    static Answer call(Arguments... arguments) {
        const HostCode here;
        return Function(arguments...);
    }
};

/// The entry for \p Function in a table of the host: it runs the function as HostCode.
template <auto Function>
constexpr auto asHostCode = &AsHostCode<Function>::call;

}

#endif
