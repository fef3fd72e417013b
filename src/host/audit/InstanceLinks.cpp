// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "InstanceLinks.h"

#include "base/Join.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace OrvHost {

namespace {

/// The end whose objects hold the attribute that is named after end `named`.
std::size_t holderSide(std::size_t named) {
    return 1 - named;
}

}

InstanceLinks::InstanceLinks(const Model& model, const InstanceTable& table)
    : mModel(model), mTable(table), mSides(model.biDirAssociations.size()) {}

void InstanceLinks::add(std::size_t association, std::size_t named, InstanceTable::Index holder,
                        InstanceTable::Index target) {
    const Link link = holderSide(named) == 0 ? Link{holder, target} : Link{target, holder};
    mSides[association][named].push_back(link);
}

void InstanceLinks::compare(InstanceReport& report) {
    for (std::size_t association = 0; association < mSides.size(); ++association) {
        // If both ends use one attribute, its values are both sides at once, and a problem is
        // reported once.
        if (isSymmetric(association)) {
            Sides& sides = mSides[association];
            sortSide(association, 1, report);
            for (const Link& link : sides[1]) {
                sides[0].push_back({link.second, link.first});
            }
            std::sort(sides[0].begin(), sides[0].end());
            reportMissing(association, 1, report);
        } else {
            sortSide(association, 1, report);
            sortSide(association, 0, report);
            reportMissing(association, 1, report);
            reportMissing(association, 0, report);
        }
        mSides[association] = {};
    }
}

bool InstanceLinks::isSymmetric(std::size_t association) const {
    const auto& ends = mModel.biDirAssociations[association].ends;
    return ends[0].moc == ends[1].moc && ends[0].name == ends[1].name;
}

void InstanceLinks::sortSide(std::size_t association, std::size_t named, InstanceReport& report) {
    Links& links = mSides[association][named];
    std::sort(links.begin(), links.end());
    for (auto next = std::adjacent_find(links.begin(), links.end()); next != links.end();) {
        InstanceProblem problem = describe(association, named, *next);
        problem.kind = InstanceProblemKind::RepeatedTarget;
        problem.text = joined({problem.dn, ": attribute ", problem.attribute, " names ",
                               problem.otherDn, " more than once, expected once."});
        report.problems.push_back(std::move(problem));
        next = std::adjacent_find(std::upper_bound(next, links.end(), *next), links.end());
    }
    links.erase(std::unique(links.begin(), links.end()), links.end());
}

void InstanceLinks::reportMissing(std::size_t association, std::size_t named,
                                  InstanceReport& report) {
    const Links& present = mSides[association][named];
    const Links& other = mSides[association][holderSide(named)];
    Links missing;
    std::set_difference(present.begin(), present.end(), other.begin(), other.end(),
                        std::back_inserter(missing));
    const std::string& back = mModel.biDirAssociations[association].ends[holderSide(named)].name;
    for (const Link& link : missing) {
        InstanceProblem problem = describe(association, named, link);
        problem.kind = InstanceProblemKind::MissingBackPointer;
        problem.text =
            joined({problem.dn, ": attribute ", problem.attribute, " names ", problem.otherDn,
                    ", but attribute ", back, " of ", problem.otherDn, " does not name it back."});
        report.repairs.push_back({problem.otherDn, back, problem.dn});
        report.problems.push_back(std::move(problem));
    }
}

InstanceProblem InstanceLinks::describe(std::size_t association, std::size_t named,
                                        const Link& link) const {
    const bool isHolderFirst = holderSide(named) == 0;
    InstanceProblem problem;
    problem.dn = mTable.dn(isHolderFirst ? link.first : link.second);
    problem.otherDn = mTable.dn(isHolderFirst ? link.second : link.first);
    problem.attribute = mModel.biDirAssociations[association].ends[named].name;
    return problem;
}

}
