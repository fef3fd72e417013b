// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_DNRESOLVER_H
#define ORV_HOST_CLIENT_DNRESOLVER_H

#include "base/DnView.h"
#include "base/RootObject.h"
#include "model/Model.h"

#include <string>
#include <vector>

namespace OrvHost {

/// What the model says about external DNs: which class a DN leads to, and why it leads to none. It
/// asks no component, so it does not know which objects exist.
///
/// Threads: any.
class DnResolver {
public:
    /// \p model must outlive this object.
    explicit DnResolver(const Model& model) : mModel(model) {}

    /// Why \p dn (external) cannot name an object of the model; empty if it can. \p moc receives
    /// the class that the DN leads to.
    std::string whyNoDn(const std::string& dn, const ClassDef** moc) const;

    /// Why \p dn begins with a name of the element at the root that clients do not use, for
    /// example its internal name; empty if it does not.
    std::string whyOtherRoot(const std::string& dn) const;

    /// The class that \p dn leads to, or null.
    const ClassDef* classOf(const std::string& dn) const;

    /// Names for "expected one of": the child classes of \p parent, or the classes at the top level
    /// if it is null.
    std::vector<std::string> childClasses(const ClassDef* parent) const;

    /// Why no object of class \p className can stand under one of class \p parent (null: at the top
    /// level); empty if it can.
    std::string whyNotUnder(const ClassDef* parent, const std::string& className) const;

private:
    const Model& mModel;
};

/// The names of all classes, in the order of the model.
std::vector<std::string> classNames(const Model& model);

/// True for Class=value with a value that can name an object.
bool isNamingStep(const DnStep& step);

}

#endif
