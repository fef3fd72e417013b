// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelBuilder.h"

#include "ModelResolver.h"

#include <utility>

namespace OrvHost {

ModelBuilder& ModelBuilder::add(ClassSpec spec) {
    mSpec.classes.push_back(std::move(spec));
    return *this;
}

ModelBuilder& ModelBuilder::contain(std::string parent, std::string child, SourcePosition source) {
    mSpec.containments.push_back({std::move(parent), std::move(child), std::move(source)});
    return *this;
}

ModelBuilder& ModelBuilder::add(ReferenceSpec spec) {
    mSpec.references.push_back(std::move(spec));
    return *this;
}

ModelBuilder& ModelBuilder::biDir(ReferenceSpec first, ReferenceSpec second) {
    first.to(second.owner).pointedBackBy(second.attribute);
    second.to(first.owner).pointedBackBy(first.attribute);
    return add(std::move(first)).add(std::move(second));
}

ModelBuilder& ModelBuilder::uniDir(const ReferenceSpec& spec,
                                   const std::vector<std::string>& targets) {
    for (const std::string& target : targets) {
        ReferenceSpec one = spec;
        one.opposite.clear();
        add(std::move(one.to(target)));
    }
    return *this;
}

Model ModelBuilder::build() const {
    return ModelResolver(mSpec).resolve();
}

}
