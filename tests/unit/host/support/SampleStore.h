// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_HOST_SUPPORT_SAMPLESTORE_H
#define ORV_TESTS_HOST_SUPPORT_SAMPLESTORE_H

#include "base/HostError.h"
#include "store/MoStore.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace OrvHost {

/// Network (top level) contains Node and Box; Node contains Card (numbers as names, a mandatory
/// kind) and Rack; Rack must contain one or two Fan; Box contains Box. A Node has an attribute of
/// each kind.
const Model& sampleStoreModel();

inline AttributeValue text(std::string value) {
    return {ValueKind::String, {std::move(value)}};
}
AttributeValue texts(const std::vector<std::string>& values);
AttributeValue refs(const std::vector<std::string>& dns);
inline AttributeValue integer(std::int64_t value) {
    return {ValueKind::Int, {value}};
}
inline AttributeValue natural(std::uint64_t value) {
    return {ValueKind::Uint, {value}};
}
inline AttributeValue choice(std::string name) {
    return {ValueKind::Enumeration, {std::move(name)}};
}
inline AttributeValue none(ValueKind kind) {
    return {kind, {}};
}

/// The names that a walk over children returns.
std::vector<std::string> namesOf(const StoreTransaction& transaction, const std::string& parent,
                                 const std::string& className);

/// The error that \p call throws; a HostError with OrvOk and an empty text if it throws nothing.
HostError errorOf(const std::function<void()>& call);
OrvReturnT codeOf(const std::function<void()>& call);

/// A store over the sample model with Network=1, and Node=a and Node=b below it.
struct SampleStore {
    SampleStore();

    const Model& model = sampleStoreModel();
    MoStore store{model};
};

}

#endif
