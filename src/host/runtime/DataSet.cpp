// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DataSet.h"

#include "MeIdTranslator.h"
#include "audit/InstanceChecker.h"
#include "base/Counted.h"
#include "base/DnView.h"
#include "base/HostError.h"
#include "base/Join.h"
#include "model/DnForm.h"
#include "store/MoStore.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>

namespace OrvHost {

/// The objects of a data set, by the DN of their parent and class.
class DataSet::View : public ObjectView {
public:
    explicit View(const DataSet& data) : mData(data) {
        for (const Entry& object : data.mObjects) {
            const DnView dn(object.dn);
            mNames[std::string(dn.siblingPrefix())].emplace_back(dn.last().value());
        }
    }

    bool exists(const std::string& dn) const override { return mData.mByDn.count(dn) > 0; }

    std::vector<NamedValue> valuesOf(const std::string& dn) const override {
        return mData.mValues.unpack(mData.mObjects[mData.mByDn.at(dn)].attributes);
    }

    std::vector<std::string> namesOf(const std::string& parentDn,
                                     const std::string& className) const override {
        const auto found = mNames.find(DnView(parentDn).childPrefix(className));
        return found == mNames.end() ? std::vector<std::string>() : found->second;
    }

private:
    const DataSet& mData;
    std::unordered_map<std::string, std::vector<std::string>> mNames;
};

namespace {

constexpr std::size_t kShownRepeats = 10;

AttributeValue& valueOf(std::vector<NamedValue>& attributes, const std::string& attribute) {
    for (auto& [name, value] : attributes) {
        if (name == attribute) {
            return value;
        }
    }
    attributes.emplace_back(attribute, AttributeValue{ValueKind::MoRef, {}});
    return attributes.back().second;
}

}

DataSet::Entry DataSet::entryOf(StartObject object) {
    shortenReferences(mModel, object.attributes);
    Entry entry;
    entry.isMention = isMention(object);
    entry.attributes = mValues.pack(object.attributes);
    entry.file = &*mFiles.insert(std::move(object.source.file)).first;
    entry.line = object.source.line;
    entry.dn = std::move(object.dn);
    return entry;
}

void DataSet::add(StartObject object) {
    object.dn = shortDn(mModel, std::move(object.dn));
    Entry entry = entryOf(std::move(object));
    const auto known = mByDn.find(entry.dn);
    if (known == mByDn.end()) {
        mObjects.push_back(std::move(entry));
        mByDn.emplace(mObjects.back().dn, mObjects.size() - 1);
    } else if (mObjects[known->second].isMention) {
        Entry& mention = mObjects[known->second];
        entry.dn.swap(mention.dn); // the text that is the key stays, with its memory
        mention = std::move(entry);
    } else if (!entry.isMention) {
        mObjects.push_back(std::move(entry));
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
    std::vector<NamedValue> attributes;
    for (const Entry& object : mObjects) {
        mValues.unpack(object.attributes, attributes);
        visitor({object.dn, attributes});
    }
}

DataReport DataSet::check(Associations associations) const {
    DataReport report;
    report.problems = repeatedObjects();
    for (const InstanceProblem& problem : InstanceChecker(mModel).check(*this).problems) {
        if (problem.kind == InstanceProblemKind::RepeatedObject) {
            continue; // it is said above, with both places
        }
        const bool isOfAssociations = isOfAssociation(problem.kind);
        const bool isNote = problem.kind == InstanceProblemKind::NoReference ||
                            problem.kind == InstanceProblemKind::NoTarget ||
                            (isOfAssociations && associations == Associations::AsTheyAre);
        report.isAboutAssociations |= isOfAssociations && !isNote;
        (isNote ? report.notes : report.problems).push_back(place(problem.dn) + problem.text);
    }
    return report;
}

std::vector<std::string> DataSet::repeatedObjects() const {
    std::vector<std::string> texts;
    std::size_t all = 0;
    for (std::size_t position = 0; position < mObjects.size(); ++position) {
        const Entry& object = mObjects[position];
        const std::size_t first = mByDn.at(object.dn);
        if (first == position || ++all > kShownRepeats) {
            continue;
        }
        const std::string other = positionOf(mObjects[first]);
        texts.push_back(place(object) + object.dn + ": there is more than one object of this name" +
                        (other.empty() ? "." : "; the first one is at " + other + "."));
    }
    if (all > kShownRepeats) {
        texts.push_back(counted(all - kShownRepeats, "more object") +
                        " of a name that is there already.");
    }
    return texts;
}

std::vector<std::string> DataSet::checkRules(const RuleCheck& rules) const {
    std::vector<std::string> texts;
    for (const RuleViolation& violation : rules.checkAll(View(*this)).violations) {
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
    for (const Entry& object : mObjects) {
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
        Entry& object = mObjects[mByDn.at(missing.dn)];
        std::vector<NamedValue> attributes = mValues.unpack(object.attributes);
        valueOf(attributes, missing.attribute).values.emplace_back(missing.value);
        object.attributes = mValues.pack(attributes);
        object.isMention = false;
        texts.push_back(place(missing.dn) + missing.dn + ": added " + missing.value + " to " +
                        missing.attribute);
    }
    return texts;
}

std::vector<std::string> DataSet::moveInto(MoStore& store, const Progress& progress) {
    std::vector<std::string> problems;
    std::unordered_set<std::string> refused;
    std::vector<NamedValue> attributes;
    std::size_t done = 0;
    for (const std::size_t position : parentsFirst()) {
        Entry& object = mObjects[position];
        if (refused.count(std::string(DnView(object.dn).parent().text())) > 0) {
            refused.insert(object.dn);
        } else {
            try {
                mValues.unpack(object.attributes, attributes);
                store.load(object.dn, attributes);
            } catch (const HostError& error) {
                problems.push_back(place(object.dn) + error.what());
                refused.insert(object.dn);
            }
        }
        object.attributes = std::string();
        if (progress) {
            progress(++done, mObjects.size());
        }
    }
    mByDn.clear();
    mObjects.clear();
    return problems;
}

std::string DataSet::place(std::string_view dn) const {
    const auto found = mByDn.find(dn);
    return found == mByDn.end() ? std::string() : place(mObjects[found->second]);
}

std::string DataSet::place(const Entry& object) {
    const std::string position = positionOf(object);
    return position.empty() ? position : position + ": ";
}

std::string DataSet::positionOf(const Entry& object) {
    return object.file->empty() ? std::string() : toText(SourcePosition{*object.file, object.line});
}

std::vector<std::size_t> DataSet::parentsFirst() const {
    std::vector<std::size_t> order(mObjects.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<std::size_t> depths;
    depths.reserve(mObjects.size());
    for (const Entry& object : mObjects) {
        depths.push_back(DnView(object.dn).depth());
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
        return depths[left] < depths[right];
    });
    return order;
}

}
