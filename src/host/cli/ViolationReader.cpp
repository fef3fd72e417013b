// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ViolationReader.h"

#include "ClassReport.h"
#include "Diagnosis.h"
#include "MeIdTranslator.h"
#include "Session.h"

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

std::vector<Violation> ViolationReader::read(const std::vector<ThreadContext::Message>& messages) {
    std::vector<Violation> violations;
    for (const ThreadContext::Message& message : messages) {
        if (message.kind == ThreadContext::Verdict) {
            violations.push_back({message.text, explain(message.text)});
        }
    }
    return violations;
}

JsonValue ViolationReader::explain(const std::string& message) {
    std::smatch parts;
    for (const MessageForm& form : attributeForms()) {
        if (std::regex_match(message, parts, form.pattern)) {
            return explainAttribute(toExternal(parts[form.dn]), parts[form.attribute]);
        }
    }
    static const std::regex unknown(R"((.+) does not correspond to a valid MO type\.)");
    if (std::regex_match(message, parts, unknown)) {
        return explainClass(toExternal(parts[1]));
    }
    static const std::regex members(
        R"(there are (\d+) objects of class '(\S+)'(?: under (.+)| at the top level), expected (\S+))");
    if (std::regex_match(message, parts, members)) {
        return {{"object", parts[3].matched ? toExternal(parts[3]) : "/"},
                {"found", parts[1].str() + " of class " + parts[2].str()},
                {"allowed", parts[4].str()}};
    }
    static const std::regex conflict("the transaction met a conflict: (.+)");
    if (std::regex_match(message, parts, conflict)) {
        return {{"found", Diagnosis(mSession).inClientsWords(parts[1])},
                {"allowed", "nothing but to abort, and to do the same again in a new transaction"}};
    }
    return JsonValue::object();
}

JsonValue ViolationReader::explainAttribute(const std::string& dn, const std::string& attribute) {
    JsonValue details{{"object", dn}, {"attribute", attribute}};
    const ClassDef* moc = Diagnosis(mSession).classOf(dn);
    if (moc == nullptr) {
        return details;
    }
    const Model& model = mSession.model();
    details["found"] = valuesOf(dn, attribute);
    const std::string allowed =
        allowedText(model, static_cast<ClassIndex>(moc - model.classes.data()), attribute);
    if (!allowed.empty()) {
        details["allowed"] = allowed;
    }
    return details;
}

JsonValue ViolationReader::explainClass(const std::string& dn) const {
    const ClassDef* moc = nullptr;
    const std::string reason = Diagnosis(mSession).whyNoDn(dn, &moc);
    return {{"found", dn},
            {"allowed", reason.empty() ? "the DN of an object of the model" : reason}};
}

// The violation itself can make the read fail, too. Always version 3: with other versions a read
// could make the component join, and the transaction does not accept new participants any more.
JsonValue ViolationReader::valuesOf(const std::string& dn, const std::string& attribute) {
    try {
        const ClassDef* moc = Diagnosis(mSession).classOf(dn);
        return mSession.clients().version3().get(mTxHandle, dn, attribute, moc);
    } catch (const std::exception&) {
        return nullptr;
    }
}

}
