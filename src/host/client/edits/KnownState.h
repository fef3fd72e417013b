// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_KNOWNSTATE_H
#define ORV_HOST_CLIENT_EDITS_KNOWNSTATE_H

#include "StateBefore.h"
#include "client/CancellationToken.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace OrvHost {

/// Remembers what was asked about the model and the state before, so that each object is asked for
/// once. One thread.
class KnownState {
public:
    /// All are borrowed; \p token may be null.
    KnownState(const Model& model, StateBefore& before, const CancellationToken* token)
        : mModel(model), mBefore(before), mToken(token) {}

    const Model& model() const { return mModel; }

    /// Throws CancelledError. For work that asks for no further object.
    void throwIfCancelled() const;

    /// The class that an external DN leads to, or null.
    const ClassDef* classOf(const std::string& dn);
    ClassIndex indexOf(const ClassDef& moc) const {
        return static_cast<ClassIndex>(&moc - mModel.classes.data());
    }

    /// False if the model has no such object at that place.
    bool exists(const std::string& dn);

    /// The values before; no values if the object does not exist or its class has no such
    /// attribute.
    const AttributeValue& value(const std::string& dn, const std::string& attribute);

    /// The DNs of all children, class after class; \p dn empty: the top level.
    std::vector<std::string> children(const std::string& dn);

private:
    struct Object {
        const ClassDef* moc = nullptr;
        std::optional<bool> exists;
        std::optional<std::vector<AttributeValue>> values;
    };

    Object& object(const std::string& dn);
    const ClassDef* findClass(const std::string& dn);

    const Model& mModel;
    StateBefore& mBefore;
    const CancellationToken* mToken;
    std::unordered_map<std::string, Object> mObjects;
};

/// The DN of the parent; empty for an object at the top level.
std::string parentOf(const std::string& dn);

}

#endif
