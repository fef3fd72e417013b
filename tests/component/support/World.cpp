// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "World.h"

#include <algorithm>
#include <utility>

namespace Scripted {

namespace {

std::string lastStep(const std::string& dn) {
    const std::size_t comma = dn.rfind(',');
    return comma == std::string::npos ? dn : dn.substr(comma + 1);
}

bool isBelow(const std::string& dn, const std::string& ancestor) {
    return dn.size() > ancestor.size() && dn.compare(0, ancestor.size(), ancestor) == 0 &&
           dn[ancestor.size()] == ',';
}

}

std::string parentOf(const std::string& dn) {
    const std::size_t comma = dn.rfind(',');
    return comma == std::string::npos ? "" : dn.substr(0, comma);
}

std::string classOf(const std::string& dn) {
    const std::string step = lastStep(dn);
    return step.substr(0, step.find_first_of(".="));
}

std::string namingValueOf(const std::string& dn) {
    const std::string step = lastStep(dn);
    const std::size_t equals = step.find('=');
    return equals == std::string::npos ? "" : step.substr(equals + 1);
}

std::string childDn(const std::string& parent, const std::string& step) {
    return parent.empty() ? step : parent + "," + step;
}

World::MoBuilder& World::MoBuilder::with(const std::string& attribute, const Value& value) {
    mWorld.set(mDn, attribute, value);
    return *this;
}

World::MoBuilder World::mo(const std::string& dn) {
    create(dn, {});
    return MoBuilder(*this, dn);
}

bool World::exists(const std::string& dn) const {
    const std::lock_guard<std::mutex> guard(mMutex);
    return mMos.count(dn) > 0;
}

std::optional<Value> World::attribute(const std::string& dn, const std::string& name) const {
    const std::lock_guard<std::mutex> guard(mMutex);
    const auto mo = mMos.find(dn);
    if (mo == mMos.end()) {
        return std::nullopt;
    }
    const auto attribute = mo->second.attributes.find(name);
    return attribute != mo->second.attributes.end() ? std::optional<Value>(attribute->second)
                                                    : mUnset(classOf(dn), name);
}

std::vector<std::string> World::references(const std::string& dn, const std::string& name) const {
    std::vector<std::string> texts;
    const std::optional<Value> value = attribute(dn, name);
    if (value) {
        for (const Slot& slot : value->slots()) {
            texts.push_back(slot.text.value_or("(null)"));
        }
    }
    return texts;
}

std::vector<std::string> World::children(const std::string& parent,
                                         const std::string& className) const {
    const std::lock_guard<std::mutex> guard(mMutex);
    std::vector<std::pair<std::size_t, std::string>> found;
    for (const auto& [dn, mo] : mMos) {
        if (parentOf(dn) == parent && classOf(dn) == className) {
            found.emplace_back(mo.order, namingValueOf(dn));
        }
    }
    std::sort(found.begin(), found.end());
    std::vector<std::string> names;
    for (auto& [order, name] : found) {
        names.push_back(std::move(name));
    }
    return names;
}

OrvReturnT World::set(const std::string& dn, const std::string& name, const Value& value) {
    const std::lock_guard<std::mutex> guard(mMutex);
    const auto mo = mMos.find(dn);
    if (mo == mMos.end()) {
        return OrvNotExist;
    }
    mo->second.attributes.insert_or_assign(name, value);
    return OrvOk;
}

OrvReturnT World::create(const std::string& dn, const NamedValues& attributes) {
    {
        const std::lock_guard<std::mutex> guard(mMutex);
        const auto [mo, fresh] = mMos.try_emplace(dn);
        if (!fresh) {
            return OrvAlreadyExist;
        }
        mo->second.order = mNextOrder++;
    }
    for (const auto& [name, value] : attributes) {
        set(dn, name, value);
    }
    return OrvOk;
}

OrvReturnT World::remove(const std::string& dn) {
    const std::lock_guard<std::mutex> guard(mMutex);
    if (mMos.erase(dn) == 0) {
        return OrvNotExist;
    }
    std::erase_if(mMos, [&](const auto& mo) { return isBelow(mo.first, dn); });
    return OrvOk;
}

}
