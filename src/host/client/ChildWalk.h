// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_HOST_CLIENT_CHILDWALK_H
#define ORV_HOST_CLIENT_CHILDWALK_H

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace OrvHost {

class ClientSession;
struct ClassDef;

/// The classes to ask for when children of an object are counted or walked: the tables take one
/// class at a time, and the model lists the possible ones.
class ChildWalk {
public:
    /// \p dn is external; empty: the top level. With \p oneClass only that class, even if the model
    /// does not know it, so that the component gives the answer. Without \p oneClass, throws
    /// OperationError if there is no object \p dn.
    ChildWalk(ClientSession& session, std::string dn, const std::optional<std::string>& oneClass);

    const std::vector<std::string>& classes() const { return mClasses; }

    /// Called for each child; false ends the walk.
    using Visit = std::function<bool(const std::string& className, const std::string& name)>;

    /// Walks the children, class after class.
    void forEach(unsigned long txHandle, const Visit& visit) const;

private:
    ClientSession& mSession;
    std::string mDn;
    std::vector<std::string> mClasses;
};

}

#endif
