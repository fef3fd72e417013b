// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DataSet.h"

#include "MeIdTranslator.h"
#include "audit/InstanceChecker.h"
#include "base/DnView.h"
#include "base/HostError.h"
#include "base/Join.h"
#include "model/DnForm.h"
#include "store/MoStore.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>

namespace OrvHost {

namespace {

/// The objects of a data set, by the DN of their parent and class.
class DataSetView : public ObjectView {
public:
    explicit DataSetView(const std::vector<StartObject>& objects) {
        for (const StartObject& object : objects) {
            const DnView dn(object.dn);
            mObjects.emplace(object.dn, &object);
            mNames[std::string(dn.siblingPrefix())].emplace_back(dn.last().value());
        }
    }

    bool exists(const std::string& dn) const override { return mObjects.count(dn) > 0; }

    std::vector<NamedValue> valuesOf(const std::string& dn) const override {
        return mObjects.at(dn)->attributes;
    }

    std::vector<std::string> namesOf(const std::string& parentDn,
                                     const std::string& className) const override {
        const auto found = mNames.find(DnView(parentDn).childPrefix(className));
        return found == mNames.end() ? std::vector<std::string>() : found->second;
    }

private:
    std::unordered_map<std::string, const StartObject*> mObjects;
    std::unordered_map<std::string, std::vector<std::string>> mNames;
};

AttributeValue& valueOf(StartObject& object, const std::string& attribute) {
    for (auto& [name, value] : object.attributes) {
        if (name == attribute) {
            return value;
        }
    }
    object.attributes.emplace_back(attribute, AttributeValue{ValueKind::MoRef, {}});
    return object.attributes.back().second;
}

}

void DataSet::add(StartObject object) {
    object.dn = shortDn(mModel, std::move(object.dn));
    shortenReferences(mModel, object.attributes);
    const auto known = mByDn.find(object.dn);
    if (known == mByDn.end()) {
        mByDn.emplace(object.dn, mObjects.size());
        mObjects.push_back(std::move(object));
    } else if (isMention(mObjects[known->second])) {
        mObjects[known->second] = std::move(object);
    } else if (!isMention(object)) {
        mObjects.push_back(std::move(object));
    }
}

bool DataSet::isMention(const StartObject& object) const {
    const auto moc = mModel.findClass(DnView(object.dn).last().className());
    return std::all_of(object.attributes.begin(), object.attributes.end(),
                       [&](const NamedValue& attribute) {
                           const AttributeDef* def =
                               moc ? mModel.classes[*moc].findAttribute(attribute.first) : nullptr;
                           return def != nullptr && def->isGivenByName();
                       });
}

void DataSet::visit(const Visitor& visitor) const {
    for (const StartObject& object : mObjects) {
        visitor({object.dn, object.attributes});
    }
}

std::vector<std::string> DataSet::check() const {
    std::vector<std::string> texts;
    for (const InstanceProblem& problem : InstanceChecker(mModel).check(*this).problems) {
        texts.push_back(place(problem.dn) + problem.text);
    }
    return texts;
}

std::vector<std::string> DataSet::checkRules(const RuleCheck& rules) const {
    std::vector<std::string> texts;
    for (const RuleViolation& violation : rules.checkAll(DataSetView(mObjects)).violations) {
        texts.push_back(place(violation.dn) + toText(violation));
    }
    return texts;
}

std::vector<std::string> DataSet::unreachable() const {
    std::vector<std::string> texts;
    for (const std::string& dn : topLevelDns()) {
        if (Orv::MeIdTranslator::instance()->toExternalDn(dn).empty()) {
            texts.push_back(place(dn) + dn +
                            ": no client can name this object: data speaks internal names, where "
                            "the element at the root is ManagedElement=1, and it must have an "
                            "identity by which clients know it.");
        }
    }
    return texts;
}

std::vector<std::string> DataSet::misnamedInLists() const {
    const std::string identity = Orv::MeIdTranslator::instance()->identity();
    std::vector<std::string> texts;
    for (const std::string& dn : topLevelDns()) {
        const std::string external = Orv::MeIdTranslator::instance()->toExternalDn(dn);
        if (!external.empty() && DnView(external).last().value() != identity) {
            texts.push_back(
                joined({place(dn), dn, ": lists of the top level show this object as ",
                        DnView(dn).last().className(), "=", identity, "; name it by its DN."}));
        }
    }
    return texts;
}

std::vector<std::string> DataSet::topLevelDns() const {
    std::vector<std::string> dns;
    for (const StartObject& object : mObjects) {
        if (!DnView(object.dn).hasParent()) {
            dns.push_back(object.dn);
        }
    }
    return dns;
}

std::vector<std::string> DataSet::repair() {
    const InstanceReport report = InstanceChecker(mModel).check(*this);
    std::vector<std::string> texts;
    for (const MissingReference& missing : report.repairs) {
        StartObject& object = mObjects[mByDn.at(missing.dn)];
        valueOf(object, missing.attribute).values.emplace_back(missing.value);
        texts.push_back(place(missing.dn) + missing.dn + ": added " + missing.value + " to " +
                        missing.attribute);
    }
    return texts;
}

std::vector<std::string> DataSet::moveInto(MoStore& store, const Progress& progress) {
    std::vector<std::string> problems;
    std::unordered_set<std::string> refused;
    std::size_t done = 0;
    for (const std::size_t position : parentsFirst()) {
        StartObject& object = mObjects[position];
        if (refused.count(std::string(DnView(object.dn).parent().text())) > 0) {
            refused.insert(object.dn);
        } else {
            try {
                store.load(object.dn, object.attributes);
            } catch (const HostError& error) {
                problems.push_back(place(object.dn) + error.what());
                refused.insert(object.dn);
            }
        }
        object.attributes = {};
        if (progress) {
            progress(++done, mObjects.size());
        }
    }
    mObjects.clear();
    mByDn.clear();
    return problems;
}

std::string DataSet::place(const std::string& dn) const {
    const auto found = mByDn.find(dn);
    if (found == mByDn.end() || mObjects[found->second].source.file.empty()) {
        return {};
    }
    return toText(mObjects[found->second].source) + ": ";
}

std::vector<std::size_t> DataSet::parentsFirst() const {
    std::vector<std::size_t> order(mObjects.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<std::size_t> depths;
    depths.reserve(mObjects.size());
    for (const StartObject& object : mObjects) {
        depths.push_back(DnView(object.dn).depth());
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return depths[left] < depths[right];
    });
    return order;
}

}
