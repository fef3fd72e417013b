// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "UniDirStorage.h"

namespace OrvExtCmRouterService {

UniDirStorage::~UniDirStorage() {
    clear();
}

UniDirStorage::ValueNode::ValueNode(std::string const& namingValue) : value(namingValue) {}

UniDirStorage::ValueNode::~ValueNode() {
    for (auto const& entry : types) {
        delete entry.second;
    }
}

UniDirStorage::TypeNode::TypeNode(std::string const& className) : type(className) {}

UniDirStorage::TypeNode::~TypeNode() {
    for (auto const& entry : values) {
        delete entry.second;
    }
}

void UniDirStorage::clear() {
    for (auto const& entry : transactions) {
        delete entry.second;
    }
    transactions.clear();
}

}
