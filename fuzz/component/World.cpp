// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "World.h"

#include "Names.h"

#include <algorithm>

namespace Fuzz {

World::World(ByteSource& source) {
    const std::uint64_t missing = source.number(2);
    for (std::size_t index = 0; index < kGoodDns; ++index) {
        if ((missing >> (index / 2) & 1U) == 0) {
            mMos.insert(goodDn(index, Form::Internal));
        }
    }
}

std::vector<std::string> World::children(const std::string& dn,
                                         const std::string& className) const {
    const std::string start = dn.empty() ? className + "=" : dn + "," + className + "=";
    std::vector<std::string> names;
    for (auto each = mMos.lower_bound(start); each != mMos.end() && each->starts_with(start);
         ++each) {
        if (each->find(',', start.size()) == std::string::npos) {
            names.push_back(each->substr(start.size()));
        }
    }
    return names;
}

OrvReturnT World::create(const std::string& dn) {
    return mMos.insert(dn).second ? OrvOk : OrvAlreadyExist;
}

OrvReturnT World::remove(const std::string& dn) {
    if (mMos.erase(dn) == 0) {
        return OrvNotExist;
    }
    const auto first = mMos.lower_bound(dn + ",");
    auto last = first;
    while (last != mMos.end() && last->starts_with(dn + ",")) {
        ++last;
    }
    mMos.erase(first, last);
    return OrvOk;
}

OrvReturnT World::set(const char* dn, const char* attribute,
                      const OrvMoAttributeValueContainer_3* value) {
    if (dn == nullptr || attribute == nullptr || value == nullptr || !exists(dn)) {
        return OrvNotExist;
    }
    if (value->type != OrvMoAttributeTypeMoRef_3 || value->values == nullptr) {
        mReferences.erase({dn, attribute});
        return OrvOk;
    }
    std::vector<std::string>& written = mReferences[{dn, attribute}];
    written.clear();
    std::for_each(value->values, value->values + value->count, [&](const auto& slot) {
        written.emplace_back(slot.moRef != nullptr ? slot.moRef : "");
    });
    return OrvOk;
}

const std::vector<std::string>& World::references(const std::string& dn,
                                                  const std::string& attribute) const {
    static const std::vector<std::string> kNone;
    const auto found = mReferences.find({dn, attribute});
    return found != mReferences.end() ? found->second : kNone;
}

}
