// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "PictureReader.h"

#include "cli/CliError.h"
#include "cli/Diagnosis.h"
#include "cli/Session.h"

#include <unordered_set>
#include <utility>

namespace OrvHost {

namespace {

bool holdsReferences(const TypeDef& type) {
    if (type.kind == ValueKind::MoRef) {
        return true;
    }
    for (const AttributeDef& member : type.members) {
        if (holdsReferences(member.type)) {
            return true;
        }
    }
    return false;
}

/// Calls \p visit with each value: with a single one, with each of several, or not at all if there
/// is none.
template <class Visit>
void forEachValue(const JsonValue& value, const Visit& visit) {
    if (value.is_array()) {
        for (const JsonValue& element : value) {
            visit(element);
        }
    } else if (!value.is_null()) {
        visit(value);
    }
}

// A value that is not a text is a reference without a target.
std::string targetIn(const JsonValue& value) {
    return value.is_string() ? value.get<std::string>() : std::string();
}

void addLinks(const std::string& path, const TypeDef& type, const JsonValue& value,
              std::vector<PicturedLink>& links) {
    forEachValue(value, [&](const JsonValue& each) {
        if (type.kind == ValueKind::MoRef) {
            links.push_back({path, targetIn(each)});
            return;
        }
        for (const AttributeDef& member : type.members) {
            if (each.is_object() && each.contains(member.name)) {
                addLinks(path + "." + member.name, member.type, each[member.name], links);
            }
        }
    });
}

AttributeValue referencesIn(const JsonValue& value) {
    AttributeValue references{ValueKind::MoRef, {}};
    forEachValue(value,
                 [&](const JsonValue& each) { references.values.emplace_back(targetIn(each)); });
    return references;
}

/// Counts objects level by level, and throws if there are too many.
class Room {
public:
    explicit Room(const TreeExtent& extent) : mExtent(extent) {}

    void take(std::uint64_t objects) {
        if (objects == 0) {
            return;
        }
        mText += (mText.empty() ? "" : " + ") + std::to_string(objects);
        mTaken += objects;
        if (mTaken > mExtent.objects) {
            throw AnswerError("that is more than " + std::to_string(mExtent.objects) +
                              " objects; level by level: " + mText +
                              ". Draw less with --depth or from another DN, or raise --limit");
        }
    }

private:
    const TreeExtent& mExtent;
    std::string mText;
    std::uint64_t mTaken = 0;
};

}

TreePicture PictureReader::read(const TreeExtent& extent) {
    mPicture = {};
    mPicture.title = extent.dn.empty() ? "/" : extent.dn;
    Room room(extent);
    Level level = begin(extent);
    room.take(mPicture.objects.size());
    std::uint64_t below = countBelow(level);
    for (std::uint64_t depth = 0; depth < extent.depth && below > 0; ++depth) {
        room.take(below);
        level = addBelow(level);
        below = countBelow(level);
    }
    readOutside(extent.objects);
    return std::move(mPicture);
}

PictureReader::Level PictureReader::begin(const TreeExtent& extent) {
    if (extent.dn.empty()) {
        return {{}};
    }
    if (!mSession.client().exists(mTxHandle, extent.dn)) {
        throw OperationError(OrvNotExist, {"existsMo", extent.dn, {}, {}}, {});
    }
    mPicture.objects.push_back(readObject(extent.dn));
    return {{extent.dn, 0}};
}

std::uint64_t PictureReader::countBelow(const Level& level) {
    std::uint64_t sum = 0;
    for (const Parent& parent : level) {
        const std::uint64_t count = countChildren(parent.dn);
        if (parent.position) {
            mPicture.objects[*parent.position].hiddenBelow = count;
        }
        sum += count;
    }
    return sum;
}

PictureReader::Level PictureReader::addBelow(const Level& level) {
    Level next;
    for (const Parent& parent : level) {
        for (const std::string& className : childClasses(parent.dn)) {
            mSession.client().forEachChild(
                mTxHandle, parent.dn, className, [&](const std::string& name) {
                    next.push_back({childOf(parent.dn, className, name), mPicture.objects.size()});
                    mPicture.objects.push_back(readObject(next.back().dn));
                    mPicture.objects.back().parent = parent.position;
                    return true;
                });
        }
        if (parent.position) {
            mPicture.objects[*parent.position].hiddenBelow = 0;
        }
    }
    return next;
}

void PictureReader::readOutside(std::uint64_t limit) {
    std::unordered_set<std::string> known;
    for (const PicturedObject& object : mPicture.objects) {
        known.insert(object.dn);
    }
    for (const PicturedObject& object : mPicture.objects) {
        for (const PicturedLink& link : object.links) {
            if (!known.insert(link.target).second) {
                continue;
            }
            if (mPicture.outside.size() < limit) {
                readOutside(link.target);
            } else {
                mPicture.unread.insert(link.target);
            }
        }
    }
}

// An object that the model does not allow, or that clients cannot name, is not read: it does not
// exist.
void PictureReader::readOutside(const std::string& dn) {
    const bool isPossible = !dn.empty() && Diagnosis(mSession).classOf(dn) != nullptr;
    if (isPossible && mSession.client().exists(mTxHandle, dn)) {
        mPicture.outside.push_back(readObject(dn));
    }
}

PicturedObject PictureReader::readObject(const std::string& dn) const {
    PicturedObject object;
    object.dn = dn;
    if (const ClassDef* moc = Diagnosis(mSession).classOf(dn)) {
        object.className = moc->name;
        readReferences(*moc, object);
    }
    return object;
}

void PictureReader::readReferences(const ClassDef& moc, PicturedObject& object) const {
    std::vector<std::string> names;
    for (const AttributeDef& attribute : moc.attributes) {
        if (holdsReferences(attribute.type)) {
            names.push_back(attribute.name);
        }
    }
    if (names.empty()) {
        return;
    }
    const JsonValue values = mSession.client().get(mTxHandle, object.dn, names, &moc);
    for (const auto& [name, value] : values.items()) {
        const TypeDef& type = moc.findAttribute(name)->type;
        addLinks(name, type, value, object.links);
        if (type.kind == ValueKind::MoRef) {
            object.references.emplace_back(name, referencesIn(value));
        }
    }
}

unsigned long long PictureReader::countChildren(const std::string& dn) const {
    unsigned long long count = 0;
    for (const std::string& className : childClasses(dn)) {
        count += mSession.client().count(mTxHandle, dn, className);
    }
    return count;
}

std::vector<std::string> PictureReader::childClasses(const std::string& dn) const {
    const Diagnosis diagnosis(mSession);
    const ClassDef* moc = dn.empty() ? nullptr : diagnosis.classOf(dn);
    const bool isKnown = dn.empty() || moc != nullptr;
    return isKnown ? diagnosis.childClasses(moc) : std::vector<std::string>();
}

}
