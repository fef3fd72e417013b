// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "Undoing.h"

#include "MeIdTranslator.h"
#include "client/edits/References.h"

#include <map>

namespace OrvHost {

namespace {

/// A DN that clients cannot name stays as it is.
std::string externalDn(const std::string& dn) {
    const std::string external = Orv::MeIdTranslator::instance()->toExternalDn(dn);
    return external.empty() ? dn : external;
}

/// What became of an object, all its entries together.
struct Fate {
    std::string className;
    bool wasThere = true;
    bool isThere = true;
    std::map<std::string, AttributeValue> before;
};

}

Wish undoing(const ChangeSet& changes, const Model& model) {
    std::map<std::string, Fate> fates;
    std::vector<const std::string*> order;
    for (const ObjectChange& change : changes.objects) {
        const auto [place, isNew] = fates.try_emplace(change.dn);
        Fate& fate = place->second;
        if (isNew) {
            fate = {change.className, change.kind != ObjectChange::Kind::Created, true, {}};
            order.push_back(&place->first);
        }
        fate.isThere = change.kind != ObjectChange::Kind::Deleted;
        for (const AttributeChange& attribute : change.attributes) {
            // Of an object that was deleted and made again, the first entry has what was before.
            fate.before.emplace(attribute.name, attribute.before);
        }
    }
    Wish wish;
    wish.repeated = Wish::Repeated::IsWished;
    for (const std::string* dn : order) {
        Fate& fate = fates.find(*dn)->second;
        WishedObject object{externalDn(*dn), {}};
        if (!fate.wasThere) {
            wish.edits.push_back({EditKind::Remove, object.dn, {}});
            continue;
        }
        const auto moc = model.findClass(fate.className);
        for (auto& [name, value] : fate.before) {
            const AttributeDef* def = moc ? model.classes[*moc].findAttribute(name) : nullptr;
            if (def == nullptr || !def->isWritable || def->isGivenByName()) {
                continue;
            }
            // What must have a value cannot be set to none.
            if (value.values.empty() && def->multiplicity.lower > 0 && def->defaultValue) {
                value = *def->defaultValue;
            }
            changeReferences(value, externalDn);
            object.attributes.emplace_back(name, std::move(value));
        }
        const EditKind kind = fate.isThere ? EditKind::Set : EditKind::Create;
        wish.edits.push_back({kind, object.dn, {object}});
    }
    return wish;
}

}
