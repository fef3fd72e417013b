// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_AUDIT_INSTANCESOURCE_H
#define ORV_HOST_AUDIT_INSTANCESOURCE_H

#include "model/Value.h"

#include <functional>
#include <span>
#include <string_view>

namespace OrvHost {

/// One object of the data: its internal DN, and its attributes, each only once. The naming
/// attribute may be left out. Borrowed.
struct Instance {
    std::string_view dn;
    std::span<const NamedValue> attributes;
};

/// The objects to be checked, for example data that was read, or a store.
class InstanceSource {
public:
    using Visitor = std::function<void(const Instance& instance)>;

    virtual ~InstanceSource() = default;

    /// Shows every object once; an instance is valid until the visitor returns. The function is
    /// called more than once and must show the same objects in the same order each time.
    virtual void visit(const Visitor& visitor) const = 0;
};

/// Objects in an array.
class InstanceSpan : public InstanceSource {
public:
    /// The array that `instances` refers to must outlive this object.
    explicit InstanceSpan(std::span<const Instance> instances) : mInstances(instances) {}

    void visit(const Visitor& visitor) const override {
        for (const Instance& instance : mInstances) {
            visitor(instance);
        }
    }

private:
    std::span<const Instance> mInstances;
};

}

#endif
