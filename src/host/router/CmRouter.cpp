// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "CmRouter.h"

#include <stdexcept>
#include <utility>

namespace OrvHost {

CmRouter::CmRouter(const Model& model, MoStore& store, ThreadContext& threadContext)
    : mCore(store, threadContext),
      mTable1(mCore),
      mTable3(mCore),
      mTable3_1(mCore),
      mResource(orvSpiOfferedBy(OrvOamSpiTransactionalResource_2_ExtCmId, OrvOamSpiCmRouterService),
                mCore) {
    if (&store.model() != &model) {
        throw std::logic_error("the store was built over another model");
    }
}

void CmRouter::setActionHandler(ActionHandler handler) {
    mCore.setActionHandler(std::move(handler));
}

void CmRouter::setRules(const RuleCheck* rules) {
    mCore.setRules(rules);
}

std::optional<RuleCost> CmRouter::ruleCostOf(unsigned long txHandle) const {
    return mCore.transaction(txHandle)->ruleCost;
}

ChangeSet CmRouter::changesOf(unsigned long txHandle) const {
    return mCore.transaction(txHandle)->store->changes();
}

void CmRouter::setAuthorLookup(AuthorLookup lookup) {
    mCore.setAuthorLookup(std::move(lookup));
}

}
