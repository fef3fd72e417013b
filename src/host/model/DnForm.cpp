// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "DnForm.h"

#include "base/DnView.h"

#include <utility>

namespace OrvHost {

namespace {

/// True for `Class.attribute=...` with an attribute that names the objects of the class.
bool namesItsAttribute(const Model& model, const DnStep& step) {
    const std::string_view className = step.className();
    if (className.size() == step.type().size() || !step.hasEquals()) {
        return false;
    }
    const auto moc = model.findClass(className);
    const AttributeDef* def =
        moc ? model.classes[*moc].findAttribute(step.type().substr(className.size() + 1)) : nullptr;
    return def != nullptr && def->isNaming;
}

bool isShort(const Model& model, std::string_view dn) {
    if (!ShortDn::mayBeLong(dn)) {
        return true;
    }
    for (const DnStep step : DnView(dn).steps()) {
        if (namesItsAttribute(model, step)) {
            return false;
        }
    }
    return true;
}

std::string shortened(const Model& model, std::string_view dn) {
    std::string result;
    bool isFirst = true;
    for (const DnStep step : DnView(dn).steps()) {
        result += std::exchange(isFirst, false) ? "" : ",";
        if (namesItsAttribute(model, step)) {
            result += step.className();
            result += step.text().substr(step.type().size());
        } else {
            result += step.text();
        }
    }
    return result;
}

}

std::string shortDn(const Model& model, std::string dn) {
    return isShort(model, dn) ? std::move(dn) : shortened(model, dn);
}

void ShortDn::shorten(const Model& model) {
    if (!isShort(model, mGiven)) {
        mChanged = shortened(model, mGiven);
    }
}

void shortenReferences(const Model& model, AttributeValue& value) {
    if (value.kind != ValueKind::MoRef && value.kind != ValueKind::Struct) {
        return;
    }
    for (Value& one : value.values) {
        if (value.kind == ValueKind::MoRef) {
            auto* dn = std::get_if<std::string>(&one);
            if (dn != nullptr && !isShort(model, *dn)) {
                *dn = shortened(model, *dn);
            }
        } else if (auto* whole = std::get_if<StructValue>(&one)) {
            shortenReferences(model, whole->members);
        }
    }
}

void shortenReferences(const Model& model, std::vector<NamedValue>& values) {
    for (NamedValue& named : values) {
        shortenReferences(model, named.second);
    }
}

}
