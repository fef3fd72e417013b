// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#ifndef ORV_TESTS_SOAK_STOREAUDIT_H
#define ORV_TESTS_SOAK_STOREAUDIT_H

#include "audit/InstanceSource.h"
#include "store/MoStore.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Soak {

/// All committed objects of a store, read directly, without router and component.
class StoreAudit : public OrvHost::InstanceSource {
public:
    /// \p store must outlive this object.
    explicit StoreAudit(OrvHost::MoStore& store);

    void visit(const Visitor& visitor) const override;

    std::size_t objects() const;

    /// Recounts both sides of each bidirectional association and checks bounds, classes and targets
    /// of all references. Returns the problems, one text each.
    std::vector<std::string> problems() const;

private:
    void visitBelow(const std::string& dn, const std::vector<OrvHost::ClassIndex>& classes,
                    const Visitor& visitor) const;

    const OrvHost::Model& mModel;
    std::unique_ptr<OrvHost::StoreTransaction> mTransaction;
};

}

#endif
