// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "ModelFingerprint.h"

#include <cstdint>
#include <unordered_map>

namespace OrvHost {

namespace {

std::string quoted(std::string_view text) {
    return "'" + std::string(text) + "'";
}

template <class Items, class TextOf>
std::string listOf(const Items& items, const TextOf& textOf) {
    std::string text;
    for (const auto& item : items) {
        text += (text.empty() ? "" : " ") + textOf(item);
    }
    return text;
}

const char* nameOf(ValueKind kind) {
    switch (kind) {
    case ValueKind::Bool:
        return "boolean";
    case ValueKind::Int:
        return "integer";
    case ValueKind::Uint:
        return "unsigned integer";
    case ValueKind::Double:
        return "decimal";
    case ValueKind::Enumeration:
        return "enumeration";
    case ValueKind::Struct:
        return "struct";
    case ValueKind::String:
        return "text";
    case ValueKind::MoRef:
        return "reference";
    }
    return "";
}

std::string itself(const std::string& text) {
    return text;
}

std::string textOf(const ChoiceDef& choice) {
    return choice.name + (choice.isMandatory ? "!" : "") + "{" +
           listOf(choice.cases,
                  [](const ChoiceCase& one) {
                      return one.name + (one.isDefault ? "*" : "") + "(" +
                             listOf(one.attributes, itself) + "; " + listOf(one.required, itself) +
                             ")";
                  }) +
           "; " + listOf(choice.around, itself) + "}";
}

/// Collects the facts of a model.
class Facts {
public:
    explicit Facts(const Model& model) : mModel(model) {}

    std::vector<ModelFact> all() {
        for (std::size_t at = 0; at < mModel.classes.size(); ++at) {
            addClass(mModel.classes[at], at);
        }
        for (const BiDirAssociation& one : mModel.biDirAssociations) {
            add("association of " + textOf(one.ends[0]) + " and " + textOf(one.ends[1]), "");
        }
        for (const UniDirAssociation& one : mModel.uniDirAssociations) {
            add("association from class " + quoted(mModel.classes[one.owner].name) + " to " +
                    textOf(one.end),
                "");
        }
        return std::move(mFacts);
    }

private:
    // Two associations can be alike.
    void add(std::string subject, std::string text) {
        const std::size_t times = ++mTimes[subject];
        if (times > 1) {
            subject += " (" + std::to_string(times) + ")";
        }
        mFacts.push_back({std::move(subject), std::move(text)});
    }

    std::string classNames(const std::vector<ClassIndex>& classes) const {
        return listOf(classes, [&](ClassIndex moc) { return mModel.classes[moc].name; });
    }

    void addClass(const ClassDef& moc, std::size_t place) {
        const std::string subject = "class " + quoted(moc.name);
        add(subject,
            "place " + std::to_string(place) + (moc.isTopLevel ? ", top level" : "") + ", " +
                toText(moc.instances) + " under one parent, children: " + classNames(moc.children) +
                ", keys: " + listOf(moc.keys, itself) + ", choices: " +
                listOf(moc.choices, [](const ChoiceDef& choice) { return textOf(choice); }));
        for (std::size_t at = 0; at < moc.attributes.size(); ++at) {
            addAttribute(moc.attributes[at], at, " of " + subject);
        }
    }

    void addAttribute(const AttributeDef& def, std::size_t place, const std::string& of) {
        const TypeDef& type = def.type;
        std::string text = "place " + std::to_string(place) + ", " + nameOf(type.kind) + " (" +
                           type.description + "), " + toText(def.multiplicity);
        text += def.isNaming ? ", names" : "";
        text += def.keyPosition ? ", key " + std::to_string(*def.keyPosition) : "";
        text += def.isWritable ? "" : ", set by the system";
        text += def.isConditional ? ", conditional" : "";
        text += type.isFalseAbsent ? ", false is absent" : "";
        text += type.enumerators.empty() ? "" : ", one of: " + listOf(type.enumerators, quoted);
        text += type.targets.empty() ? "" : ", to: " + classNames(type.targets);
        text += listOf(type.choices, [](const ChoiceDef& choice) { return textOf(choice); });
        text += def.defaultValue ? ", by default: " + textOf(*def.defaultValue) : "";
        const std::string subject = "attribute " + quoted(def.name) + of;
        add(subject, std::move(text));
        for (std::size_t at = 0; at < type.members.size(); ++at) {
            addAttribute(type.members[at], at, " of " + subject);
        }
    }

    std::string textOf(const AssociationEnd& end) const {
        return quoted(end.name) + " (class " + quoted(mModel.classes[end.moc].name) + ", " +
               toText(end.cardinality) + (end.keepAtDelete ? ", kept at deletion)" : ")");
    }
    static std::string textOf(const ChoiceDef& choice) { return OrvHost::textOf(choice); }
    static std::string textOf(const AttributeValue& value) {
        return listOf(value.values, [](const Value& one) { return quoted(toText(one)); });
    }

    const Model& mModel;
    std::vector<ModelFact> mFacts;
    std::unordered_map<std::string, std::size_t> mTimes;
};

using FactTexts = std::unordered_map<std::string_view, std::string_view>;

FactTexts bySubject(const std::vector<ModelFact>& facts) {
    FactTexts texts;
    for (const ModelFact& fact : facts) {
        texts.emplace(fact.subject, fact.text);
    }
    return texts;
}

}

std::vector<ModelFact> modelFacts(const Model& model) {
    return Facts(model).all();
}

// The hash that is known as FNV-1a: simple, and the same everywhere.
std::string fingerprintOf(const std::vector<ModelFact>& facts) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    const auto add = [&hash](std::string_view text) {
        for (const char one : text) {
            hash = (hash ^ static_cast<unsigned char>(one)) * 0x100000001B3U;
        }
        hash = (hash ^ 0xFFU) * 0x100000001B3U; // where a text ends
    };
    for (const ModelFact& fact : facts) {
        add(fact.subject);
        add(fact.text);
    }
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (int shift = 60; shift >= 0; shift -= 4) {
        text += kDigits[hash >> static_cast<unsigned>(shift) & 0xFU];
    }
    return text;
}

std::string firstDifference(const std::vector<ModelFact>& before,
                            const std::vector<ModelFact>& after) {
    const FactTexts now = bySubject(after);
    for (const ModelFact& fact : before) {
        const auto found = now.find(fact.subject);
        if (found == now.end()) {
            return fact.subject + " is not there any more";
        }
    }
    const FactTexts then = bySubject(before);
    for (const ModelFact& fact : after) {
        const auto found = then.find(fact.subject);
        if (found == then.end()) {
            return fact.subject + " is new";
        }
    }
    for (const ModelFact& fact : before) {
        const std::string_view text = now.find(fact.subject)->second;
        if (text != fact.text) {
            return fact.subject + " was: " + fact.text + "; it is: " + std::string(text);
        }
    }
    return before == after ? std::string() : "the order of what it defines";
}

}
