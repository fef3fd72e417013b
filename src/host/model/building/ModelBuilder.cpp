// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelBuilder.h"

#include "ModelResolver.h"

#include <utility>

namespace OrvHost {

ModelBuilder& ModelBuilder::add(ClassDraft draft) {
    mDraft.classes.push_back(std::move(draft));
    return *this;
}

ModelBuilder& ModelBuilder::contain(std::string parent, std::string child, SourcePosition source) {
    mDraft.containments.push_back({std::move(parent), std::move(child), std::move(source)});
    return *this;
}

ModelBuilder& ModelBuilder::add(ReferenceDraft draft) {
    mDraft.references.push_back(std::move(draft));
    return *this;
}

ModelBuilder& ModelBuilder::biDir(ReferenceDraft first, ReferenceDraft second) {
    first.to(second.owner).pointedBackBy(second.attribute);
    second.to(first.owner).pointedBackBy(first.attribute);
    return add(std::move(first)).add(std::move(second));
}

ModelBuilder& ModelBuilder::uniDir(const ReferenceDraft& draft,
                                   const std::vector<std::string>& targets) {
    for (const std::string& target : targets) {
        ReferenceDraft one = draft;
        one.opposite.clear();
        add(std::move(one.to(target)));
    }
    return *this;
}

Model ModelBuilder::build() const {
    return ModelResolver(mDraft).resolve();
}

}
