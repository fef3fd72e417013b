// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "NamedRecords.h"

#include "router/ContainerConversion.h"

namespace OrvHost {

NamedRecords::NamedRecords(const std::vector<NamedValue>& values) : mRecords(values.size()) {
    mPointers.reserve(values.size() + 1);
    for (std::size_t at = 0; at < values.size(); ++at) {
        mRecords[at].name = values[at].first.c_str();
        ContainerConversion<Records3>::fill(mRecords[at].value, values[at].second, mMemory);
        mPointers.push_back(&mRecords[at]);
    }
    mPointers.push_back(nullptr);
}

std::vector<std::string> namesOf(const std::vector<NamedValue>& values) {
    std::vector<std::string> names;
    names.reserve(values.size());
    for (const NamedValue& value : values) {
        names.push_back(value.first);
    }
    return names;
}

}
