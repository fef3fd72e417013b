// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ReferenceList.h"

#include <algorithm>

namespace OrvHost {

ReferenceList::ReferenceList(const std::vector<std::string>& dns) {
    mDns.reserve(dns.size());
    for (const std::string& dn : dns) {
        add(dn);
    }
}

std::size_t ReferenceList::count(const std::string& dn) const {
    const auto found = mPlaces.find(dn);
    return found != mPlaces.end() ? found->second.size() : 0;
}

std::vector<std::string> ReferenceList::dns() const {
    std::vector<std::string> all;
    all.reserve(mSize);
    for (const std::optional<std::string>& dn : mDns) {
        if (dn) {
            all.push_back(*dn);
        }
    }
    return all;
}

void ReferenceList::add(const std::string& dn) {
    mPlaces[dn].push_back(mDns.size());
    mDns.emplace_back(dn);
    ++mSize;
}

void ReferenceList::removeFirst(const std::string& dn) {
    const auto found = mPlaces.find(dn);
    if (found == mPlaces.end()) {
        return;
    }
    mDns[found->second.front()].reset();
    found->second.erase(found->second.begin());
    if (found->second.empty()) {
        mPlaces.erase(found);
    }
    --mSize;
}

void ReferenceList::setHeld(const std::string& dn, bool isHeld) {
    const auto found = mPlaces.find(dn);
    if (found == mPlaces.end()) {
        if (isHeld) {
            add(dn);
        }
        return;
    }
    const std::vector<std::size_t> places = found->second;
    const std::size_t kept = isHeld ? 1 : 0;
    for (std::size_t at = kept; at < places.size(); ++at) {
        mDns[places[at]].reset();
    }
    mSize -= places.size() - kept;
    if (isHeld) {
        found->second.resize(1);
    } else {
        mPlaces.erase(found);
    }
}

bool ReferenceList::hasSameAs(const ReferenceList& other) const {
    return mSize == other.mSize &&
           std::all_of(mPlaces.begin(), mPlaces.end(), [&](const auto& each) {
               return other.count(each.first) == each.second.size();
           });
}

}
