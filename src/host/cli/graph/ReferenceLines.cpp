// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ReferenceLines.h"

#include "audit/AssociationAudit.h"
#include "base/DnView.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>
#include <utility>

namespace OrvHost {

namespace {

std::string classIn(const std::string& dn) {
    return std::string(DnView(dn).last().className());
}

/// The association that allows \p owner to name objects of \p target in that attribute, or null.
const ReferenceDescription* findAssociation(const std::vector<ClassDescription>& classes,
                                            const std::string& owner, const std::string& attribute,
                                            const std::string& target) {
    const ClassDescription* moc = findDescription(classes, owner);
    if (moc == nullptr) {
        return nullptr;
    }
    const auto found = std::find_if(
        moc->references.begin(), moc->references.end(), [&](const ReferenceDescription& reference) {
            return reference.attribute == attribute && reference.target == target;
        });
    return found == moc->references.end() ? nullptr : &*found;
}

}

ReferenceLines::ReferenceLines(const std::vector<ClassDescription>& classes,
                               const TreePicture& picture,
                               const std::vector<InstanceProblem>& violations) {
    for (const InstanceProblem& problem : violations) {
        picture.throwIfCancelled();
        mWrong.emplace(Link{problem.dn, problem.attribute, problem.otherDn}, problem.text);
    }
    const std::vector<Link> links = linksOf(picture, picture.objects);
    const std::vector<Link> outside = linksOf(picture, picture.outside);
    for (const Link& link : links) {
        picture.throwIfCancelled();
        if (picture.unread.count(link.target) > 0) {
            ++mUnread;
        } else {
            draw(classes, link);
        }
    }
    // Of the references that outside objects hold, only those are drawn that are part of a
    // violation of an object inside.
    for (const Link& link : outside) {
        picture.throwIfCancelled();
        if (mWrong.count(link) > 0) {
            draw(classes, link);
        }
    }
}

std::vector<ReferenceLines::Link>
ReferenceLines::linksOf(const TreePicture& picture, const std::vector<PicturedObject>& objects) {
    std::vector<Link> links;
    for (const PicturedObject& object : objects) {
        picture.throwIfCancelled();
        for (const PicturedLink& link : object.links) {
            links.push_back({object.dn, link.attribute, link.target});
            ++mLinks[links.back()];
        }
    }
    return links;
}

void ReferenceLines::draw(const std::vector<ClassDescription>& classes, const Link& link) {
    if (!mDone.insert(link).second) {
        return;
    }
    ReferenceLine line;
    line.from = link.holder;
    line.to = link.target;
    line.attribute = link.attribute;
    line.count = mLinks.at(link);
    line.violation = violationOf(link);
    const ReferenceDescription* association =
        findAssociation(classes, classIn(link.holder), link.attribute, classIn(link.target));
    if (association != nullptr) {
        line.kind = LineKind::OneWay;
        const Link back{link.target, association->opposite, link.holder};
        const auto found = mLinks.find(back);
        if (!association->opposite.empty() && found != mLinks.end()) {
            mDone.insert(back);
            line.kind = LineKind::BothWays;
            line.violation = line.violation.empty() ? violationOf(back) : line.violation;
            if (back < link || link < back) {
                // It is not the same reference, of an object to itself.
                line.back = back.attribute;
                line.backCount = found->second;
            }
        }
    }
    mLines.push_back(std::move(line));
}

std::size_t ReferenceLines::references() const {
    return std::accumulate(mLines.begin(), mLines.end(), std::size_t{0},
                           [](std::size_t sum, const ReferenceLine& line) {
                               return sum + line.count + line.backCount;
                           });
}

std::string ReferenceLines::violationOf(const Link& link) const {
    const auto found = mWrong.find(link);
    return found == mWrong.end() ? std::string() : found->second;
}

std::vector<InstanceProblem> violationsIn(const Model& model, const TreePicture& picture) {
    std::unordered_set<std::string> drawn;
    for (const PicturedObject& object : picture.objects) {
        picture.throwIfCancelled();
        drawn.insert(object.dn);
    }
    std::vector<InstanceProblem> problems = auditAssociations(model, picture);
    problems.erase(std::remove_if(problems.begin(), problems.end(),
                                  [&](const InstanceProblem& problem) {
                                      picture.throwIfCancelled();
                                      const bool isOfOthers = drawn.count(problem.dn) == 0 &&
                                                              drawn.count(problem.otherDn) == 0;
                                      return isOfOthers ||
                                             picture.unread.count(problem.otherDn) > 0;
                                  }),
                   problems.end());
    return problems;
}

}
