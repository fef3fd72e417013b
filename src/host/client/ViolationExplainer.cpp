// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ViolationExplainer.h"

#include "ClientSession.h"
#include "DnResolver.h"
#include "ErrorExplainer.h"
#include "MeIdTranslator.h"

#include <regex>

namespace OrvHost {

namespace {

/// The form of a message: the numbers of the parts that name the object and the attribute, 0 for
/// none.
struct MessageForm {
    std::regex pattern;
    std::size_t dn;
    std::size_t attribute;
};

// The component's messages about an attribute of an object; the last one is the router's.
const std::vector<MessageForm>& attributeForms() {
    static const std::vector<MessageForm> forms{
        {std::regex(R"(Multiplicity of attribute (\S+) in (.+) is not in range \(.*\)\.)"), 2, 1},
        {std::regex(R"(Attribute (\S+) in (.+) contains -?\d+ .* which is not within cardinality)"
                    R"( range \(.*\)\.)"),
         2, 1},
        {std::regex(R"(Attribute (\S+) in (.+) is not a MO ref\.)"), 2, 1},
        {std::regex(R"(\S+ is not a valid type for attribute (\S+) in (.*[^.])\.?)"), 2, 1},
        {std::regex(R"((.+): the mandatory attribute '(\S+)' of class '\S+' has no value)"), 1, 2},
    };
    return forms;
}

std::string toExternal(const std::string& dn) {
    const std::string external = Orv::MeIdTranslator::instance()->toExternalDn(dn);
    return external.empty() ? dn : external;
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
    std::smatch parts;
    for (const MessageForm& form : attributeForms()) {
        if (std::regex_match(message, parts, form.pattern)) {
            explainAttribute(toExternal(parts[form.dn]), parts[form.attribute], violation);
            return violation;
        }
    }
    static const std::regex rule(R"((.+?): attribute '([^']+)': (?:.|\n)+)");
    static const std::regex unknown(R"((.+) does not correspond to a valid MO type\.)");
    static const std::regex members(
        R"(there are (\d+) objects of class '(\S+)'(?: under (.+)| at the top level), expected (\S+))");
    static const std::regex conflict("the transaction met a conflict: (.+)");
    if (std::regex_match(message, parts, rule)) {
        explainRule(toExternal(parts[1]), parts[2], violation);
    } else if (std::regex_match(message, parts, unknown)) {
        explainClass(toExternal(parts[1]), violation);
    } else if (std::regex_match(message, parts, members)) {
        violation.object = parts[3].matched ? toExternal(parts[3]) : "/";
        violation.found = parts[1].str() + " of class " + parts[2].str();
        violation.allowed = parts[4].str();
    } else if (std::regex_match(message, parts, conflict)) {
        violation.found = ErrorExplainer(mSession).inClientsWords(parts[1]);
        violation.allowed = "nothing but to abort, and to do the same again in a new transaction";
    }
    return violation;
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

void ViolationExplainer::explainClass(const std::string& dn, Violation& violation) const {
    const ClassDef* moc = nullptr;
    const std::string reason = DnResolver(mSession.model()).whyNoDn(dn, &moc);
    violation.found = dn;
    violation.allowed = reason.empty() ? "the DN of an object of the model" : reason;
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
