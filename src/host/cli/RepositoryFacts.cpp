// SPDX-FileCopyrightText: The orv_ext_cm authors
// SPDX-License-Identifier: Apache-2.0

#include "RepositoryFacts.h"

#include "CliError.h"
#include "runtime/Host.h"
#include "runtime/InterfaceIdentity.h"

#include <deque>

namespace OrvHost {

namespace {

constexpr VekMgmtSpiInterface_1 kRepository{"VekOamSpiModelRepositoryService",
                                            "VekOamSpiModelRepository", "4"};

void check(OrvReturnT code, const char* operation) {
    if (code != OrvOk) {
        throw OperationError(code, {operation, {}, {}, {}}, {});
    }
}

// For first and next steps: false at the end of the list.
bool stepped(OrvReturnT code, const char* operation) {
    if (code == OrvNotExist) {
        return false;
    }
    check(code, operation);
    return true;
}

}

RepositoryFacts::RepositoryFacts(Host& host)
    : mModel(host.model()), mTable(host.find<VekOamSpiModelRepository_4>(kRepository)) {
    if (mTable == nullptr) {
        throw LoadError("nobody offers " + identityText(kRepository));
    }
}

RepositoryFacts::Moc RepositoryFacts::find(const std::string& className) const {
    const auto index = mModel.findClass(className);
    const std::string dn = index ? exampleDn(mModel, *index) : std::string();
    Moc moc = 0;
    if (!dn.empty()) {
        stepped(mTable->dnLookup->getMocFromDn(dn.c_str(), 1, &moc), "getMocFromDn");
    }
    return moc;
}

std::vector<std::string> RepositoryFacts::children(Moc moc) const {
    std::vector<std::string> names;
    VekOamSpiMrContainmentHandle_4T containment = 0;
    bool isThere =
        stepped(mTable->mocQueries->getFirstContainment(moc, &containment), "getFirstContainment");
    while (isThere) {
        Moc child = 0;
        check(mTable->containment->getContainedMoc(containment, &child), "getContainedMoc");
        names.push_back(nameOf(child));
        isThere = stepped(mTable->containment->getNextContainment(containment, &containment),
                          "getNextContainment");
    }
    return names;
}

std::vector<AttributeFacts> RepositoryFacts::attributes(Moc moc) const {
    std::vector<AttributeFacts> facts;
    VekOamSpiMrAttributeHandle_4T attribute = 0;
    bool isThere =
        stepped(mTable->mocQueries->getFirstAttribute(moc, &attribute), "getFirstAttribute");
    while (isThere) {
        facts.push_back(attributeFacts(attribute));
        isThere =
            stepped(mTable->attribute->getNextAttribute(attribute, &attribute), "getNextAttribute");
    }
    return facts;
}

AttributeFacts RepositoryFacts::attributeFacts(VekOamSpiMrAttributeHandle_4T attribute) const {
    AttributeFacts facts;
    VekOamSpiMrGeneralPropertiesHandle_4T properties = 0;
    check(mTable->attribute->getAttributeGeneralProperties(attribute, &properties),
          "getAttributeGeneralProperties");
    facts.name = textOf(properties);
    VekOamSpiMrTypeHandle_4T type = 0;
    check(mTable->attribute->getAttributeType(attribute, &type), "getAttributeType");
    check(mTable->attributeType->getTypeCode(type, &facts.typeCode), "getTypeCode");
    long long lower = 0;
    long long upper = 0;
    check(mTable->attributeType->getTypeIntProperty(type, VekOamSpiMrLowerBound_4, &lower),
          "getTypeIntProperty");
    check(mTable->attributeType->getTypeIntProperty(type, VekOamSpiMrUpperBound_4, &upper),
          "getTypeIntProperty");
    facts.multiplicity = {lower, upper};
    if (facts.typeCode == VekOamSpiMrTypeMoRef_4) {
        Moc referenced = 0;
        check(mTable->referenceType->getReferencedMoc(type, &referenced), "getReferencedMoc");
        facts.referencedClass = nameOf(referenced);
    }
    return facts;
}

std::vector<ReferenceFacts> RepositoryFacts::references(Moc moc) const {
    std::vector<ReferenceFacts> references;
    addBiDirectional(moc, references);
    addUniDirectional(moc, references);
    return references;
}

// The attribute that refers to an end's class lives in the class at the other end, so of a class
// that stands at both ends there are two.
void RepositoryFacts::addBiDirectional(Moc moc, std::vector<ReferenceFacts>& references) const {
    VekOamSpiMrBiDirAssociationHandle_4T association = 0;
    bool isThere = stepped(mTable->mocQueries->getFirstBiDirAssociation(moc, &association),
                           "getFirstBiDirAssociation");
    while (isThere) {
        VekOamSpiMrAssociationEndHandle_4T ends[2] = {0, 0};
        check(mTable->biDirAssociation->getFirstEnd(association, &ends[0]), "getFirstEnd");
        check(mTable->biDirAssociation->getSecondEnd(association, &ends[1]), "getSecondEnd");
        for (const int far : {0, 1}) {
            if (mocOf(ends[1 - far]) == moc) {
                references.push_back(referenceFacts(moc, ends[far]));
                references.back().opposite = nameOfEnd(ends[1 - far]);
            }
        }
        isThere = stepped(
            mTable->biDirAssociation->getNextBiDirAssociation(association, moc, &association),
            "getNextBiDirAssociation");
    }
}

void RepositoryFacts::addUniDirectional(Moc moc, std::vector<ReferenceFacts>& references) const {
    VekOamSpiMrUniDirAssociationHandle_4T association = 0;
    bool isThere = stepped(mTable->mocQueries->getFirstUniDirAssociation(moc, &association),
                           "getFirstUniDirAssociation");
    while (isThere) {
        VekOamSpiMrAssociationEndHandle_4T end = 0;
        check(mTable->uniDirAssociation->getUniDirEnd(association, &end), "getUniDirEnd");
        references.push_back(referenceFacts(moc, end));
        isThere =
            stepped(mTable->uniDirAssociation->getNextUniDirAssociation(association, &association),
                    "getNextUniDirAssociation");
    }
}

ReferenceFacts RepositoryFacts::referenceFacts(Moc owner,
                                               VekOamSpiMrAssociationEndHandle_4T end) const {
    const VekOamSpiMrAssociationEnd_4& table = *mTable->associationEnd;
    ReferenceFacts facts;
    facts.owner = nameOf(owner);
    facts.attribute = nameOfEnd(end);
    facts.target = nameOf(mocOf(end));
    long long lower = 0;
    long long upper = 0;
    check(table.getEndIntProperty(end, VekOamSpiMrLowerBound_4, &lower), "getEndIntProperty");
    check(table.getEndIntProperty(end, VekOamSpiMrUpperBound_4, &upper), "getEndIntProperty");
    facts.cardinality = {lower, upper};
    const char* role = nullptr;
    check(table.getEndStringProperty(end, VekOamSpiMrEndRole_4, &role), "getEndStringProperty");
    facts.role = role;
    check(table.getEndBoolProperty(end, VekOamSpiMrEndKeepAtDelete_4, &facts.keepAtDelete),
          "getEndBoolProperty");
    return facts;
}

RepositoryFacts::Moc RepositoryFacts::mocOf(VekOamSpiMrAssociationEndHandle_4T end) const {
    Moc moc = 0;
    check(mTable->associationEnd->getEndMoc(end, &moc), "getEndMoc");
    return moc;
}

std::string RepositoryFacts::nameOfEnd(VekOamSpiMrAssociationEndHandle_4T end) const {
    const char* name = nullptr;
    check(mTable->associationEnd->getEndStringProperty(end, VekOamSpiMrEndName_4, &name),
          "getEndStringProperty");
    return name;
}

std::string RepositoryFacts::nameOf(Moc moc) const {
    VekOamSpiMrGeneralPropertiesHandle_4T properties = 0;
    check(mTable->mocQueries->getMocGeneralProperties(moc, &properties), "getMocGeneralProperties");
    return textOf(properties);
}

std::string RepositoryFacts::textOf(VekOamSpiMrGeneralPropertiesHandle_4T properties) const {
    const char* text = nullptr;
    check(mTable->generalProperties->getGeneralStringProperty(properties, VekOamSpiMrGeneralName_4,
                                                              &text),
          "getGeneralStringProperty");
    return text;
}

// Breadth first from the class upwards, so that classes which contain themselves end the walk.
std::string exampleDn(const Model& model, ClassIndex moc) {
    std::vector<bool> seen(model.classes.size());
    std::deque<std::pair<ClassIndex, std::string>> open{{moc, ""}};
    while (!open.empty()) {
        const auto [current, below] = open.front();
        open.pop_front();
        if (seen[current]) {
            continue;
        }
        seen[current] = true;
        const ClassDef& definition = model.classes[current];
        std::string dn = definition.name + "=1" + (below.empty() ? "" : ",") + below;
        if (definition.isTopLevel) {
            return dn;
        }
        for (const ClassIndex parent : definition.parents) {
            open.emplace_back(parent, dn);
        }
    }
    return {};
}

}
