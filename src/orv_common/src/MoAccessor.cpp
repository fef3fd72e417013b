// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "MoAccessor.h"

#include "OrvOamSpiManagedObject_3.h"
#include "Portal.h"

#include <string_view>
#include <unordered_set>

namespace Orv {

namespace {

// An open iterator of the router, ended by the destructor.
class RouterIterator {
public:
    RouterIterator(OrvOamSpiManagedObject_3& router, unsigned long long handle)
        : mRouter(router), mHandle(handle) {}
    RouterIterator(const RouterIterator&) = delete;
    RouterIterator& operator=(const RouterIterator&) = delete;
    // If ending the iterator fails, no answer changes. An exception of the host must not leave the
    // destructor: it would end the process.
    ~RouterIterator() {
        try {
            mRouter.finalizeMoIterator(mHandle);
        } catch (...) { // NOLINT(bugprone-empty-catch)
        }
    }

    OrvReturnT next(char** name) { return mRouter.nextMo(mHandle, name); }

private:
    OrvOamSpiManagedObject_3& mRouter;
    unsigned long long mHandle;
};

// No parent has two children of one class and name, and none has so many children. If a router
// repeats names or never stops giving new ones, the walk ends.
constexpr std::size_t mostRepeats = 1000;
constexpr std::size_t mostChildren = 10000000;

// The router gives the naming value only.
OrvReturnT appendChildren(RouterIterator& iterator, const std::string& prefix,
                          std::list<std::string>& children) {
    std::unordered_set<std::string_view> known; // names in the list, which stay where they are
    for (std::size_t repeats = 0; repeats < mostRepeats && known.size() < mostChildren;) {
        char* name = nullptr;
        const OrvReturnT code = iterator.next(&name);
        if (code != OrvOk || name == nullptr) {
            return code;
        }
        const std::string_view child = children.emplace_back(prefix + name);
        if (!known.insert(child.substr(prefix.size())).second) {
            children.pop_back();
            ++repeats;
        }
    }
    return OrvFailure;
}

}

// The table of the router has no slot that takes a lock policy or a limit.
MoAccessor::MoAccessor(OrvLockPolicyT /*policy*/, int /*limit*/) {}

OrvReturnT MoAccessor::getChildren(const std::string& parentDn, const std::string& className,
                                   std::list<std::string>& children) {
    auto* router = Portal::instance()->getInterface<OrvOamSpiManagedObject_3>(
        OrvOamSpiManagedObject_3_RouterId);
    if (router == nullptr) {
        return OrvFailure;
    }
    unsigned long long handle = 0;
    const OrvReturnT code =
        router->newMoIterator(transactionHandle(), parentDn.c_str(), className.c_str(), &handle);
    if (code != OrvOk) {
        return code;
    }
    RouterIterator iterator(*router, handle);
    const std::string parent = parentDn.empty() ? parentDn : parentDn + ",";
    return appendChildren(iterator, parent + className + "=", children);
}

}
