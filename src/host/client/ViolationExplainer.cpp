// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ViolationExplainer.h"

#include "ClientSession.h"
#include "DnResolver.h"
#include "ErrorExplainer.h"
#include "ExternalDn.h"
#include "base/TextScanner.h"
#include "edits/References.h"

#include <optional>
#include <string_view>

namespace OrvHost {

namespace {

/// What a message about an attribute of an object says.
struct AttributeMessage {
    std::string_view dn; ///< internal
    std::string_view attribute;
    std::optional<CountProblem> count{};
    bool isAboutValues = false; ///< the count is that of the attribute's values
    std::optional<long long> lower{};
};

bool isWord(std::string_view text) {
    return !text.empty() && text.find_first_of(" \t\r\n") == std::string_view::npos;
}

/// "(<lower>..<upper>)." at the end.
std::optional<long long> takeLowerBound(TextScanner& text) {
    if (!text.takeEnd(").")) {
        return std::nullopt;
    }
    const auto bounds = text.afterLast("(");
    return bounds ? numberIn(TextScanner(*bounds).before("..").value_or("")) : std::nullopt;
}

/// "Multiplicity of attribute <attribute> in <DN> is not in range (<lower>..<upper>)."
std::optional<AttributeMessage> readMultiplicity(std::string_view message) {
    TextScanner text(message);
    if (!text.take("Multiplicity of attribute ")) {
        return std::nullopt;
    }
    const auto lower = takeLowerBound(text);
    const auto attribute = text.before(" in ");
    if (!lower || !text.takeEnd(" is not in range ") || !attribute || !isWord(*attribute)) {
        return std::nullopt;
    }
    return AttributeMessage{text.rest(), *attribute, {}, true, lower};
}

/// "Attribute <attribute> in <DN> contains <count> <class> which is not within cardinality range
/// (<lower>..<upper>)."
std::optional<AttributeMessage> readCardinality(std::string_view message) {
    TextScanner text(message);
    if (!text.take("Attribute ")) {
        return std::nullopt;
    }
    const auto lower = takeLowerBound(text);
    const auto attribute = text.before(" in ");
    if (!lower || !text.takeEnd(" which is not within cardinality range ") || !attribute ||
        !isWord(*attribute)) {
        return std::nullopt;
    }
    TextScanner counted(text.afterLast(" contains ").value_or(""));
    const auto count = numberIn(counted.before(" ").value_or(""));
    if (!count) {
        return std::nullopt;
    }
    return AttributeMessage{text.rest(), *attribute,
                            *count < *lower ? CountProblem::TooFew : CountProblem::TooMany};
}

/// "Attribute <attribute> in <DN> is not a MO ref."
std::optional<AttributeMessage> readNoReference(std::string_view message) {
    TextScanner text(message);
    if (!text.take("Attribute ") || !text.takeEnd(" is not a MO ref.")) {
        return std::nullopt;
    }
    const auto attribute = text.before(" in ");
    return attribute && isWord(*attribute)
               ? std::optional(AttributeMessage{text.rest(), *attribute})
               : std::nullopt;
}

/// "<class or reference> is not a valid type for attribute <attribute> in <DN>", with or without a
/// full stop.
std::optional<AttributeMessage> readWrongType(std::string_view message) {
    TextScanner text(message);
    if (!text.beforeLast(" is not a valid type for attribute ")) {
        return std::nullopt;
    }
    const auto attribute = text.before(" in ");
    text.takeEnd(".");
    return attribute && isWord(*attribute) && !text.rest().empty()
               ? std::optional(AttributeMessage{text.rest(), *attribute})
               : std::nullopt;
}

/// The router's: "<DN>: the mandatory attribute '<attribute>' of class '<class>' has no value"
std::optional<AttributeMessage> readMandatory(std::string_view message) {
    TextScanner text(message);
    if (!text.takeEnd("' has no value")) {
        return std::nullopt;
    }
    const auto dn = text.beforeLast(": the mandatory attribute '");
    const auto attribute = text.before("' of class '");
    return dn && attribute && isWord(*attribute) ? std::optional(AttributeMessage{*dn, *attribute})
                                                 : std::nullopt;
}

std::optional<AttributeMessage> readAttributeMessage(std::string_view message) {
    for (const auto read :
         {readMultiplicity, readCardinality, readNoReference, readWrongType, readMandatory}) {
        if (auto found = read(message)) {
            return found;
        }
    }
    return std::nullopt;
}

struct MembersMessage {
    std::string_view count;
    std::string_view className;
    std::string_view parent; ///< empty: the top level
    std::string_view expected;
};

/// The router's: "there are <count> objects of class '<class>' under <DN>, expected <range>", or
/// "at the top level".
std::optional<MembersMessage> readMembers(std::string_view message) {
    TextScanner text(message);
    if (!text.take("there are ")) {
        return std::nullopt;
    }
    MembersMessage found;
    found.expected = text.afterLast(", expected ").value_or("");
    found.count = text.before(" objects of class '").value_or("");
    found.className = text.before("'").value_or("");
    const bool isAtTop = text.rest() == " at the top level";
    if (!isAtTop && text.take(" under ")) {
        found.parent = text.rest();
    }
    return numberIn(found.count) && !found.expected.empty() && (isAtTop || !found.parent.empty())
               ? std::optional(found)
               : std::nullopt;
}

struct RuleMessage {
    std::string_view dn;
    std::string_view attribute;
};

/// "<DN>: attribute '<attribute>': <what the rule says>"
std::optional<RuleMessage> readRule(std::string_view message) {
    TextScanner text(message);
    const auto dn = text.before(": attribute '");
    const auto attribute = text.before("': ");
    return dn && !dn->empty() && attribute && !attribute->empty() && !text.rest().empty()
               ? std::optional(RuleMessage{*dn, *attribute})
               : std::nullopt;
}

std::string countText(const Bounds& bounds) {
    const std::string text = toText(bounds);
    return text + (text == "1" ? " value" : " values");
}

// Adds a line for each class that the references of an attribute may have.
void addTargets(const Model& model, ClassIndex moc, const std::string& attribute,
                std::vector<std::string>& targets) {
    const auto add = [&](const AssociationEnd& end) {
        targets.push_back(toText(end.cardinality) + " of class " + model.classes[end.moc].name);
    };
    for (const BiDirAssociation& association : model.biDirAssociations) {
        for (const int far : {0, 1}) {
            const bool isHere = association.ends[1 - far].moc == moc;
            if (isHere && association.ends[far].name == attribute) {
                add(association.ends[far]);
            }
        }
    }
    for (const UniDirAssociation& association : model.uniDirAssociations) {
        if (association.owner == moc && association.end.name == attribute) {
            add(association.end);
        }
    }
}

}

std::string allowedText(const Model& model, ClassIndex moc, const std::string& attribute) {
    const AttributeDef* def = model.classes[moc].findAttribute(attribute);
    std::string text = def != nullptr ? countText(def->multiplicity) : std::string();
    std::vector<std::string> targets;
    addTargets(model, moc, attribute, targets);
    for (const std::string& target : targets) {
        text += (text.empty() ? "" : ", ") + target;
    }
    return text;
}

std::vector<Violation>
ViolationExplainer::explain(const std::vector<ThreadContext::Message>& messages) {
    std::vector<Violation> violations;
    for (const ThreadContext::Message& message : messages) {
        if (message.kind == ThreadContext::Verdict) {
            violations.push_back(explain(message.text));
        }
    }
    return violations;
}

Violation ViolationExplainer::explain(const std::string& message) {
    Violation violation;
    violation.message = message;
    if (const auto read = readAttributeMessage(message)) {
        violation.count = read->count;
        explainAttribute(externalDn(read->dn), std::string(read->attribute), violation);
        const auto* found = std::get_if<ReadValue>(&violation.found);
        if (read->isAboutValues && found != nullptr) {
            violation.count = static_cast<long long>(found->slots.size()) < *read->lower
                                  ? CountProblem::TooFew
                                  : CountProblem::TooMany;
        }
        return violation;
    }
    TextScanner unknown(message);
    TextScanner conflict(message);
    if (const auto rule = readRule(message)) {
        explainRule(externalDn(rule->dn), std::string(rule->attribute), violation);
    } else if (unknown.takeEnd(" does not correspond to a valid MO type.")) {
        explainClass(std::string(unknown.rest()), violation);
    } else if (const auto members = readMembers(message)) {
        violation.object = members->parent.empty() ? "/" : externalDn(members->parent);
        violation.found =
            std::string(members->count) + " of class " + std::string(members->className);
        violation.allowed = std::string(members->expected);
    } else if (conflict.take("the transaction met a conflict: ")) {
        violation.found = ErrorExplainer(mSession).inClientsWords(std::string(conflict.rest()));
        violation.allowed = "nothing but to abort, and to do the same again in a new transaction";
    } else if (const auto dn = TextScanner(message).before(": ")) {
        explainObject(externalDn(*dn), violation);
    }
    return violation;
}

// Other messages of the router begin with the object.
void ViolationExplainer::explainObject(const std::string& dn, Violation& violation) const {
    if (DnResolver(mSession.model()).classOf(dn) != nullptr) {
        violation.object = dn;
    }
}

void ViolationExplainer::explainAttribute(const std::string& dn, const std::string& attribute,
                                          Violation& violation) {
    violation.object = dn;
    violation.attribute = attribute;
    const Model& model = mSession.model();
    const ClassDef* moc = DnResolver(model).classOf(dn);
    if (moc == nullptr) {
        return;
    }
    violation.found = valuesOf(dn, attribute);
    std::string allowed =
        allowedText(model, static_cast<ClassIndex>(moc - model.classes.data()), attribute);
    if (!allowed.empty()) {
        violation.allowed = std::move(allowed);
    }
}

// What a rule allows is in its message. It can be about a member of a struct: "box/member".
void ViolationExplainer::explainRule(const std::string& dn, const std::string& attribute,
                                     Violation& violation) {
    violation.object = dn;
    violation.attribute = attribute;
    violation.found = valuesOf(dn, attribute.substr(0, attribute.find_first_of("/[")));
}

// The message does not say which attribute holds the DN, but the transaction wrote it.
void ViolationExplainer::explainClass(const std::string& internal, Violation& violation) const {
    const std::string dn = externalDn(internal);
    const ClassDef* moc = nullptr;
    const std::string reason = DnResolver(mSession.model()).whyNoDn(dn, &moc);
    violation.found = dn;
    violation.allowed = reason.empty() ? "the DN of an object of the model" : reason;
    const ChangeSet changes = mSession.host().router().changesOf(mTxHandle);
    for (const ObjectChange& object : changes.objects) {
        for (const AttributeChange& attribute : object.attributes) {
            forEachReference(attribute.after, [&](const std::string& target) {
                if (target == internal) {
                    violation.object = externalDn(object.dn);
                    violation.attribute = attribute.name;
                }
            });
        }
    }
}

// The violation itself can make the read fail, too. Always version 3: with other versions a read
// could make the component join, and the transaction does not accept new participants any more.
ReadValue ViolationExplainer::valuesOf(const std::string& dn, const std::string& attribute) {
    try {
        const ClassDef* moc = DnResolver(mSession.model()).classOf(dn);
        return mSession.clients().version3().get(mTxHandle, dn, attribute, moc);
    } catch (const std::exception&) {
        return {};
    }
}

}
