// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_EDITS_STATEBEFORE_H
#define ORV_HOST_CLIENT_EDITS_STATEBEFORE_H

#include "model/Model.h"

#include <string>
#include <vector>

namespace OrvHost {

/// The objects as they are before a plan is carried out. All DNs are external, in values too. The
/// answers must not change while a plan is made. One thread.
class StateBefore {
public:
    virtual ~StateBefore() = default;

    virtual bool exists(const std::string& dn) = 0;

    /// The values of all attributes of an object that exists, in the order of \p moc, its class. An
    /// attribute that is not set has its default, or no values.
    virtual std::vector<AttributeValue> attributes(const std::string& dn, const ClassDef& moc) = 0;

    /// The names of the children of one class; \p dn empty: the top level.
    virtual std::vector<std::string> children(const std::string& dn,
                                              const std::string& className) = 0;
};

}

#endif
