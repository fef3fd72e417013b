// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryReader.h"

#include "OrvException.h"

namespace OrvHost {

namespace {

using Handle = unsigned long long;

[[noreturn]] void fail(const char* entry, OrvReturnT code) {
    throw Orv::OrvException(code, "The model repository answered %s with code %d.", entry, code);
}

/// The value, or nothing if the code says "not there" or "end of the list".
template <class Value>
std::optional<Value> valueIfThere(const Orv::ModelAnswer<Value>& answer) {
    if (!answer.isOffered) {
        throw Orv::OrvException("The model repository has no entry %s.", answer.entry);
    }
    if (answer.code == OrvNotExist) {
        return std::nullopt;
    }
    if (answer.code != OrvOk) {
        fail(answer.entry, answer.code);
    }
    return answer.value;
}

/// The value, which must be there.
template <class Value>
Value valueOf(const Orv::ModelAnswer<Value>& answer) {
    const std::optional<Value> value = valueIfThere(answer);
    if (!value) {
        fail(answer.entry, OrvNotExist);
    }
    return *value;
}

std::string textOf(const Orv::ModelAnswer<const char*>& answer) {
    const char* const text = valueOf(answer);
    return text != nullptr ? text : "";
}

/// The whole list that begins with \p first; \p next steps on from a handle.
template <class Next>
std::vector<Handle> listOf(const Orv::ModelAnswer<Handle>& first, const Next& next) {
    std::vector<Handle> all;
    std::optional<Handle> handle = valueIfThere(first);
    while (handle) {
        all.push_back(*handle);
        const Orv::ModelAnswer<Handle> answer = next(all.back());
        handle = valueIfThere(answer);
        if (handle == all.back()) {
            throw Orv::OrvException("The model repository stands still in %s.", answer.entry);
        }
    }
    return all;
}

}

using Moc = RepositoryReader::Moc;
using Attribute = RepositoryReader::Attribute;

std::optional<Moc> RepositoryReader::findClass(const std::string& dn) const {
    return valueIfThere(mModel.mocOfDn(dn.c_str()));
}

std::string RepositoryReader::nameOf(Properties properties) const {
    return textOf(mModel.generalName(properties));
}

std::string RepositoryReader::nameOfClass(Moc moc) const {
    return nameOf(valueOf(mModel.mocProperties(moc)));
}

std::vector<Moc> RepositoryReader::childrenOf(Moc moc) const {
    std::vector<Moc> children = listOf(mModel.firstContainment(moc), [&](Handle current) {
        return mModel.nextContainment(current);
    });
    for (Moc& each : children) {
        each = valueOf(mModel.containedMoc(each));
    }
    return children;
}

std::vector<Attribute> RepositoryReader::attributesOf(Moc moc) const {
    return listOf(mModel.firstAttribute(moc),
                  [&](Handle current) { return mModel.nextAttribute(current); });
}

std::vector<RepositoryReader::BiDir> RepositoryReader::biDirsOf(Moc moc) const {
    return listOf(mModel.firstBiDir(moc),
                  [&](Handle current) { return mModel.nextBiDir(current, moc); });
}

std::vector<RepositoryReader::UniDir> RepositoryReader::uniDirsOf(Moc moc) const {
    return listOf(mModel.firstUniDir(moc),
                  [&](Handle current) { return mModel.nextUniDir(current); });
}

std::string RepositoryReader::nameOfAttribute(Attribute attribute) const {
    return nameOf(valueOf(mModel.attributeProperties(attribute)));
}

Moc RepositoryReader::classOfAttribute(Attribute attribute) const {
    return valueOf(mModel.attributeMoc(attribute));
}

RepositoryReader::Type RepositoryReader::typeOf(Attribute attribute) const {
    return valueOf(mModel.attributeType(attribute));
}

int RepositoryReader::typeCodeOf(Type type) const {
    return valueOf(mModel.typeCode(type));
}

long long RepositoryReader::boundOfType(Type type, int identifier) const {
    return valueOf(mModel.typeBound(type, identifier));
}

Moc RepositoryReader::referencedClass(Type type) const {
    return valueOf(mModel.referencedMoc(type));
}

RepositoryReader::End RepositoryReader::firstEnd(BiDir association) const {
    return valueOf(mModel.firstEnd(association));
}

RepositoryReader::End RepositoryReader::secondEnd(BiDir association) const {
    return valueOf(mModel.secondEnd(association));
}

RepositoryReader::End RepositoryReader::endOf(UniDir association) const {
    return valueOf(mModel.uniDirEnd(association));
}

Moc RepositoryReader::classOfEnd(End end) const {
    return valueOf(mModel.endMoc(end));
}

Attribute RepositoryReader::attributeOfEnd(End end) const {
    return valueOf(mModel.endAttribute(end));
}

std::string RepositoryReader::textOfEnd(End end, int identifier) const {
    return textOf(mModel.endText(end, identifier));
}

bool RepositoryReader::isKeptAtDelete(End end) const {
    return valueOf(mModel.endKeepsAtDelete(end));
}

long long RepositoryReader::boundOfEnd(End end, int identifier) const {
    return valueOf(mModel.endBound(end, identifier));
}

}
